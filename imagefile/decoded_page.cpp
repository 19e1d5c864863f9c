#include "imagefile/decoded_page.h"

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

#include "imagefile/frames.h"
#include "imagefile/luma.h"

namespace xun::imagefile {
namespace {

// Rows of colour pixels fetched at a time.
constexpr int32_t kStrip = 64;

double PerInch(double value, ResolutionType units) {
  if (units == PixelsPerInchResolution) return value;
  if (units == PixelsPerCentimeterResolution) return value * 2.54;
  return 0;
}

enum class Kind { kGrey, kRgb };

// One row of dispatched pixels (RGB, or RGBA when `kAlpha`) into the output. A loop of its own
// for each case, so the common one (grey from RGB) has no branch inside and vectorises.
template <Kind kKind, bool kAlpha>
void ConvertRow(const uint8_t* in, int32_t width, uint8_t* to) {
  constexpr int kChannels = kAlpha ? 4 : 3;
  for (int32_t x = 0; x < width; ++x, in += kChannels) {
    uint32_t r = in[0], g = in[1], b = in[2];
    if constexpr (kAlpha) {
      r = OnPaper(r, in[3]);
      g = OnPaper(g, in[3]);
      b = OnPaper(b, in[3]);
    }
    if constexpr (kKind == Kind::kGrey) {
      *to++ = Luma(r, g, b);
    } else {
      *to++ = static_cast<uint8_t>(r);
      *to++ = static_cast<uint8_t>(g);
      *to++ = static_cast<uint8_t>(b);
    }
  }
}

template <Kind kKind, bool kAlpha>
void ReadPixels(Image* page, const PixelRect& rect, uint8_t* out, std::size_t stride) {
  constexpr int kChannels = kAlpha ? 4 : 3;
  const std::size_t row_bytes = static_cast<std::size_t>(rect.width) * kChannels;
  std::vector<uint8_t> strip(row_bytes * static_cast<std::size_t>(std::min(kStrip, rect.height)));
  for (int32_t y = 0; y < rect.height; y += kStrip) {
    const int32_t rows = std::min(kStrip, rect.height - y);
    magick::Exception exception;
    if (DispatchImage(page, rect.left, rect.top + y, static_cast<unsigned long>(rect.width),
                      static_cast<unsigned long>(rows), kAlpha ? "RGBA" : "RGB", CharPixel,
                      strip.data(), &exception.info) != MagickPass)
      magick::FailNotAnImage(exception, "the pixels cannot be read");
    for (int32_t row = 0; row < rows; ++row)
      ConvertRow<kKind, kAlpha>(strip.data() + static_cast<std::size_t>(row) * row_bytes,
                                rect.width, out + static_cast<std::size_t>(y + row) * stride);
  }
}

template <Kind kKind>
void ReadPixels(Image* page, const PixelRect& rect, uint8_t* out, std::size_t stride) {
  if (rect.left < 0 || rect.top < 0 || rect.width <= 0 || rect.height <= 0 ||
      int64_t{rect.left} + rect.width > static_cast<int64_t>(page->columns) ||
      int64_t{rect.top} + rect.height > static_cast<int64_t>(page->rows))
    throw std::invalid_argument("the rectangle does not lie on the page");
  if (page->matte != MagickFalse)
    ReadPixels<kKind, true>(page, rect, out, stride);
  else
    ReadPixels<kKind, false>(page, rect, out, stride);
}

}  // namespace

DecodedPage::DecodedPage(std::unique_ptr<Frames> frames) : frames_(std::move(frames)) {}
DecodedPage::~DecodedPage() = default;
DecodedPage::DecodedPage(DecodedPage&&) noexcept = default;
DecodedPage& DecodedPage::operator=(DecodedPage&&) noexcept = default;

int32_t DecodedPage::Width() const noexcept {
  return static_cast<int32_t>(frames_->page->columns);
}

int32_t DecodedPage::Height() const noexcept {
  return static_cast<int32_t>(frames_->page->rows);
}

double DecodedPage::XDpi() const noexcept {
  return PerInch(frames_->page->x_resolution, frames_->page->units);
}

double DecodedPage::YDpi() const noexcept {
  return PerInch(frames_->page->y_resolution, frames_->page->units);
}

void DecodedPage::ReadGrey(const PixelRect& rect, uint8_t* out, std::size_t stride) const {
  ReadPixels<Kind::kGrey>(frames_->page, rect, out, stride);
}

void DecodedPage::ReadRgb(const PixelRect& rect, uint8_t* out, std::size_t stride) const {
  ReadPixels<Kind::kRgb>(frames_->page, rect, out, stride);
}

}  // namespace xun::imagefile
