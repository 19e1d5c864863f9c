// How colour becomes grey, in one place for every reader of the decoder.
#pragma once

#include <cstdint>

namespace xun::imagefile {

// Luminance in 14-bit fixed point (0.299, 0.587, 0.114), rounded: the grey of the usual image
// libraries to the last level. A grey pixel (r = g = b) keeps its value.
inline uint8_t Luma(uint32_t r, uint32_t g, uint32_t b) {
  return static_cast<uint8_t>((r * 4899 + g * 9617 + b * 1868 + (1u << 13)) >> 14);
}

// A value with coverage `alpha` over white paper.
inline uint8_t OnPaper(uint32_t value, uint32_t alpha) {
  return static_cast<uint8_t>((value * alpha + 127) / 255 + (255 - alpha));
}

}  // namespace xun::imagefile
