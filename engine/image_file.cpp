#include "engine/image_file.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <fstream>
#include <string_view>

#include "engine/engine_error.h"
#include "engine/xunrec.h"
#include "imagefile/decode_error.h"
#include "imagefile/file_format.h"
#include "imagefile/image_file.h"

namespace xunrec {
namespace {

using xun::imagefile::DecodeError;
using xun::imagefile::DecodeFailure;

std::atomic<int64_t> pixel_limit{xun::imagefile::kMaxPixels};

int16_t CodeOf(DecodeFailure failure) {
  switch (failure) {
    case DecodeFailure::kNotFound:
      return XUNREC_FILE_NOT_FOUND;
    case DecodeFailure::kTooLarge:
      return XUNREC_IMAGE_TOO_LARGE;
    case DecodeFailure::kOutOfMemory:
      return XUNREC_OUT_OF_MEMORY;
    case DecodeFailure::kReadFailed:
    case DecodeFailure::kNotAnImage:
    case DecodeFailure::kNoSuchPage:
      break;
  }
  return XUNREC_NOT_AN_IMAGE;
}

}  // namespace

int64_t MaxPixels() {
  return pixel_limit;
}

void SetMaxPixels(int64_t pixels) {
  pixel_limit = std::min(pixels, xun::imagefile::kMaxPixels);
}

cv::Mat DecodeGrey(const std::string& path, int32_t page) {
  try {
    const auto file = xun::imagefile::ImageFile::Open(path, {MaxPixels()});
    cv::Mat grey;
    file.DecodeGrey(page, [&grey](int32_t width, int32_t height) {
      grey.create(height, width, CV_8UC1);
      return xun::imagefile::GreyRows{grey.data, grey.step};
    });
    return grey;
  } catch (const DecodeError& e) {
    throw EngineError(CodeOf(e.Failure()));
  }
}

int32_t PageCount(const std::string& path) {
  // Only a TIFF or a DCX holds several pages, and its first bytes tell: a batch of PNG or JPEG
  // scans is not read twice for this.
  {
    std::ifstream in(path, std::ios::binary);
    char first[128] = {};
    in.read(first, sizeof first);
    const char* format =
        xun::imagefile::SniffFormat(std::string_view(first, static_cast<size_t>(in.gcount())));
    if (format && std::strcmp(format, "TIFF") != 0 && std::strcmp(format, "DCX") != 0) return 1;
  }
  try {
    return xun::imagefile::ImageFile::Open(path, {MaxPixels()}).PageCount();
  } catch (const DecodeError& e) {
    throw EngineError(CodeOf(e.Failure()));
  }
}

}  // namespace xunrec
