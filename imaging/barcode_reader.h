// Barcodes read with ZXing-cpp.
#pragma once

#include <optional>
#include <string>

#include "xun/recognition/imaging_module.h"

namespace xun::imaging {

// See ImagingModule::read_barcode.
std::optional<detail::FoundBarcode> ReadBarcode(const std::string& file, int32_t left, int32_t top,
                                                int32_t right, int32_t bottom);

}  // namespace xun::imaging
