// Reading a page's barcode, OCR and image-clip regions from its registered scan: each region cut
// out where the fit puts it and read as its kind says.
#pragma once

#include <opencv2/core.hpp>

#include <vector>

#include "xun/reading/image_clips.h"
#include "xun/reading/page_fit.h"
#include "xun/reading/read_options.h"
#include "xun/reading/reading_plan.h"
#include "xun/reading/region_value.h"

namespace xun::reading::detail {

// For each of the page's image regions (PagePlan::image_regions), one value for each of its
// parts. Never throws: a region that cannot be read gives Unread values with why.
std::vector<std::vector<RegionValue>> ReadRegions(const PagePlan& plan, const cv::Mat& grey,
                                                  const PageFit& fit, const ReadOptions& options,
                                                  const ClipNames& names);

}  // namespace xun::reading::detail
