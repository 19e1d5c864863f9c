// Where a region lies on a scan: its rectangle cut out of the registered page as an upright image,
// whatever the page's turn, scale or shift on the scan.
#pragma once

#include <opencv2/core.hpp>

#include <string>
#include <vector>

#include "xun/printing/page_layout.h"
#include "xun/reading/page_fit.h"

namespace xun::reading::detail {

struct RegionCut {
  cv::Mat image;               // 8-bit grey, 0 black; paper where the scan ends
  cv::Point2d origin;          // the page point at the image's top left corner, in page units
  double pixels_per_unit = 1;  // on both axes
  double Dpi() const { return pixels_per_unit * 100; }
};

// The fit of a page that has no printed bubbles to register it by: the scan taken as the whole
// page, scaled only.
PageFit WholePageFit(double xdpi, double ydpi);

// `area` (page units) grown by `margin` on each side, cut from the registered scan at the scan's
// own resolution there, or at `min_pixels_per_unit` when that is finer. Empty, with `why`, when
// the area lies wholly off the scan.
RegionCut CutRegion(const cv::Mat& grey, const PageFit& fit, const cv::Rect2d& area, double margin,
                    double min_pixels_per_unit, std::string& why);

// Paints paper over what the blank form prints (outlines, names), grown by `slack` page units for
// the fit's error, so that only what was written or printed on the form is left.
void ErasePrinted(RegionCut& cut, const std::vector<printing::PrintedShape>& printed, double slack);

}  // namespace xun::reading::detail
