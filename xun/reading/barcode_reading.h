// Barcode regions: the symbols on a region's cut, read with ZXing and shared among its items.
#pragma once

#include <vector>

#include "xun/reading/region_image.h"
#include "xun/reading/region_plan.h"
#include "xun/reading/region_value.h"

namespace xun::reading::detail {

// One value for each of the region's parts (docs/reading.md, "Barcode regions"): the barcodes
// joined by the delimiter when the region gives one item, else each in the item of the column
// of the region it stands in.
std::vector<RegionValue> ReadBarcodes(const RegionCut& cut, const RegionPlan& region);

}  // namespace xun::reading::detail
