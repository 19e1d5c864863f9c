// Reading and writing page images (GraphicsMagick), kept apart so no other file sees the image
// library's headers.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "xun/model/enums.h"

namespace xun::detail {

// How a colour image becomes black and white (see docs/recognition.md).
struct DropOutRule {
  bool drop_colour = false;  // false for Office templates: their forms carry no drop-out ink
  xunTemplateDropOutColor colour = xunTemplateDropOutColorNone;
  int16_t threshold = 20;  // percent
};

// A page image turned into a black-and-white PCX file.
struct ImportedPage {
  std::string pcx;  // the file's bytes
  int16_t xdpi = 0, ydpi = 0, width = 0, height = 0;
};

// Reads page `page_index` (1-based) of an image file and converts it. An image without a
// resolution of its own is taken to cover a page of page_width by page_height inches (100 dots per
// inch when those are not positive). Failures are RuntimeErrors: 53 no such file, 9 no such
// page, 481 not an image, 6 too large.
ImportedPage ImportImagePage(const std::string& file, int32_t page_index, const DropOutRule& rule,
                             double page_width, double page_height);

// An 8-bit grey image, 0 black.
struct GreyImage {
  int32_t width = 0, height = 0;
  std::vector<uint8_t> pixels;
};

// The grey values of the rectangle [left, right) x [top, bottom) of the first image in a file,
// clipped to the image.
GreyImage ReadGreyRegion(const std::string& file, int32_t left, int32_t top, int32_t right,
                         int32_t bottom);

}  // namespace xun::detail
