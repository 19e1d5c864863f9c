// How large an image file and a page may be. Checked before any pixel is allocated, so a header
// that claims a huge page costs nothing.
#pragma once

#include <cstdint>

namespace xun::imagefile {

// Pixels either way: page image sizes are 16-bit throughout.
inline constexpr int32_t kMaxSide = 32767;
// Pixels in one page: a legal page at 600 dpi (43 million) fits.
inline constexpr int64_t kMaxPixels = 48'000'000;
// Bytes in one file, which is read whole.
inline constexpr int64_t kMaxFileBytes = 256LL * 1024 * 1024;

struct Limits {
  // At most kMaxPixels; a caller may set it lower (a fuzz target does, to stay fast).
  int64_t max_pixels = kMaxPixels;
};

// Refuses a page of `width` x `height` pixels: empty (kNotAnImage), over kMaxSide either way or
// over the pixel limit (kTooLarge). A DecodeError.
void CheckPageSize(int64_t width, int64_t height, const Limits& limits);

}  // namespace xun::imagefile
