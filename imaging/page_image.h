// Page images imported and read through the project's decoder (imagefile/).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "xun/recognition/imaging_module.h"

namespace xun::imaging {

// See ImagingModule::import_page.
detail::ImportedPage ImportImagePage(const std::string& file, int32_t page_index,
                                     const detail::DropOutRule& rule, double page_width,
                                     double page_height);

// An 8-bit grey image, 0 black.
struct GreyImage {
  int32_t width = 0, height = 0;
  std::vector<uint8_t> pixels;
};

// The grey values of the rectangle [left, right) x [top, bottom) of the first image in a file,
// clipped to the image; error 5 when nothing of it lies on the image.
GreyImage ReadGreyRegion(const std::string& file, int32_t left, int32_t top, int32_t right,
                         int32_t bottom);

}  // namespace xun::imaging

namespace xun::imaging {

// An 8-bit grey image (row after row, 0 black) as the bytes of a grey PNG file, with its
// resolution in dots per inch recorded.
std::string EncodeGrey(const uint8_t* pixels, int32_t width, int32_t height, int32_t dpi);

}  // namespace xun::imaging
