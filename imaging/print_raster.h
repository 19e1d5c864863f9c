// A page layout drawn as a grey raster (OpenCV), for printing.
#pragma once

#include <cstdint>
#include <string>

#include "xun/printing/page_layout.h"

namespace xun::imaging {

// See ImagingModule::print_page.
std::string PrintRaster(const printing::PageLayout& layout, int32_t dpi);

}  // namespace xun::imaging
