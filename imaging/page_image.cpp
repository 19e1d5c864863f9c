#include "imaging/page_image.h"

#include <algorithm>
#include <string>

#include "imagefile/decode_error.h"
#include "imagefile/image_file.h"
#include "imagefile/page_writer.h"
#include "xun/support/numeric.h"
#include "xun/support/runtime_error.h"

namespace xun::imaging {

using detail::DropOutRule;
using detail::ImportedPage;
using imagefile::DecodeError;
using imagefile::DecodeFailure;

namespace {

// The classic "Invalid picture" error, with what the decoder said.
constexpr int32_t kErrInvalidPicture = 481;

// Rows converted at a time, so the colour pixels never exist for the whole page.
constexpr int32_t kStrip = 64;

// The decoder's failures as the library's errors.
[[noreturn]] void RaiseDecodeError(const DecodeError& e, const std::string& file) {
  switch (e.Failure()) {
    case DecodeFailure::kNotFound:
      throw RuntimeError(kErrFileNotFound, "File not found: " + file);
    case DecodeFailure::kReadFailed:
      Raise(kErrDeviceIO);
    case DecodeFailure::kNoSuchPage:
      throw RuntimeError(kErrSubscript, e.what());
    case DecodeFailure::kTooLarge:
      Raise(kErrOverflow);
    case DecodeFailure::kOutOfMemory:
      Raise(kErrOutOfMemory);
    case DecodeFailure::kNotAnImage:
      break;
  }
  throw RuntimeError(kErrInvalidPicture, std::string("Invalid picture: ") + e.what());
}

template <class Work>
auto Decoding(const std::string& file, Work&& work) {
  try {
    return work();
  } catch (const DecodeError& e) {
    RaiseDecodeError(e, file);
  }
}

int16_t Resolution(double from_file, int32_t pixels, double inches) {
  double dpi = from_file;
  if (!(dpi > 0)) dpi = inches > 0 ? pixels / inches : 100;
  const int16_t rounded = CInt(dpi);
  if (rounded <= 0) Raise(kErrOverflow);
  return rounded;
}

// The drop-out test of docs/recognition.md: a pixel whose drop-out channel stands out from
// both other channels by more than the threshold is the form's own ink, not a mark.
bool DroppedOut(double r, double g, double b, const DropOutRule& rule, double threshold) {
  if (!rule.drop_colour) return false;
  if ((rule.colour & xunTemplateDropOutColorRed) && r - std::max(g, b) > threshold) return true;
  if ((rule.colour & xunTemplateDropOutColorGreen) && g - std::max(r, b) > threshold) return true;
  if ((rule.colour & xunTemplateDropOutColorBlue) && b - std::max(r, g) > threshold) return true;
  return false;
}

bool Dark(double r, double g, double b) {
  return 0.299 * r + 0.587 * g + 0.114 * b < 0.5;
}

}  // namespace

ImportedPage ImportImagePage(const std::string& file, int32_t page_index, const DropOutRule& rule,
                             double page_width, double page_height) {
  return Decoding(file, [&] {
    const imagefile::ImageFile image = imagefile::ImageFile::Open(file);
    if (page_index < 1)
      throw RuntimeError(kErrSubscript,
                         "The image file has no page " + std::to_string(page_index) + ".");
    const imagefile::DecodedPage frame = image.Decode(page_index - 1);
    const int32_t width = frame.Width(), height = frame.Height();

    ImportedPage page;
    page.width = static_cast<int16_t>(width);
    page.height = static_cast<int16_t>(height);
    page.xdpi = Resolution(frame.XDpi(), width, page_width);
    page.ydpi = Resolution(frame.YDpi(), height, page_height);

    const double threshold = std::clamp<int16_t>(rule.threshold, 0, 100) / 100.0;
    std::vector<uint8_t> bilevel(static_cast<size_t>(width) * static_cast<size_t>(height), 255);
    std::vector<uint8_t> rgb(static_cast<size_t>(width) * 3 * kStrip);
    for (int32_t top = 0; top < height; top += kStrip) {
      const int32_t rows = std::min(kStrip, height - top);
      frame.ReadRgb({0, top, width, rows}, rgb.data(), static_cast<size_t>(width) * 3);
      for (size_t i = 0; i < static_cast<size_t>(width) * rows; ++i) {
        const double r = rgb[3 * i] / 255.0, g = rgb[3 * i + 1] / 255.0, b = rgb[3 * i + 2] / 255.0;
        if (!DroppedOut(r, g, b, rule, threshold) && Dark(r, g, b))
          bilevel[static_cast<size_t>(top) * width + i] = 0;
      }
    }
    page.pcx = imagefile::EncodeBilevelPcx(width, height, bilevel, page.xdpi, page.ydpi);
    return page;
  });
}

GreyImage ReadGreyRegion(const std::string& file, int32_t left, int32_t top, int32_t right,
                         int32_t bottom) {
  return Decoding(file, [&] {
    const imagefile::DecodedPage frame = imagefile::ImageFile::Open(file).Decode(0);
    left = std::max(left, 0);
    top = std::max(top, 0);
    right = std::min(right, frame.Width());
    bottom = std::min(bottom, frame.Height());
    if (right <= left || bottom <= top)
      throw RuntimeError(kErrInvalidCall, "The region lies outside the page image.");
    GreyImage grey;
    grey.width = right - left;
    grey.height = bottom - top;
    grey.pixels.resize(static_cast<size_t>(grey.width) * static_cast<size_t>(grey.height));
    frame.ReadGrey({left, top, grey.width, grey.height}, grey.pixels.data(),
                   static_cast<size_t>(grey.width));
    return grey;
  });
}

std::string EncodeGrey(const uint8_t* pixels, int32_t width, int32_t height, int32_t dpi) {
  return Decoding("", [&] { return imagefile::EncodeGreyPng(width, height, pixels, dpi); });
}

}  // namespace xun::imaging
