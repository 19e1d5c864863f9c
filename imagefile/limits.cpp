#include "imagefile/limits.h"

#include <string>

#include "imagefile/decode_error.h"

namespace xun::imagefile {

void CheckPageSize(int64_t width, int64_t height, const Limits& limits) {
  if (width <= 0 || height <= 0) throw DecodeError(DecodeFailure::kNotAnImage, "empty image");
  if (width > kMaxSide || height > kMaxSide || width * height > limits.max_pixels)
    throw DecodeError(
        DecodeFailure::kTooLarge,
        std::to_string(width) + " x " + std::to_string(height) + " pixels is too large");
}

}  // namespace xun::imagefile
