#include "engine/image_file.h"

#include <algorithm>
#include <atomic>

#include "engine/engine_error.h"
#include "engine/xunrec.h"
#include "imagefile/decode_error.h"
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

cv::Mat DecodeGrey(const std::string& path) {
  try {
    const auto file = xun::imagefile::ImageFile::Open(path, {MaxPixels()});
    cv::Mat grey;
    file.DecodeGrey(0, [&grey](int32_t width, int32_t height) {
      grey.create(height, width, CV_8UC1);
      return xun::imagefile::GreyRows{grey.data, grey.step};
    });
    return grey;
  } catch (const DecodeError& e) {
    throw EngineError(CodeOf(e.Failure()));
  }
}

}  // namespace xunrec
