#include "xun/reading/region_image.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

namespace xun::reading::detail {
namespace {

// The largest cut: a whole Letter page at 600 dpi is 34 megapixels.
constexpr double kMaxPixels = 40e6;

}  // namespace

PageFit WholePageFit(double xdpi, double ydpi) {
  PageFit fit;
  fit.transform = cv::Matx33d(xdpi / 100, 0, 0, 0, ydpi / 100, 0, 0, 0, 1);
  fit.model = "scale";
  return fit;
}

RegionCut CutRegion(const cv::Mat& grey, const PageFit& fit, const cv::Rect2d& area, double margin,
                    double min_pixels_per_unit, std::string& why) {
  RegionCut cut;
  const cv::Rect2d grown(area.x - margin, area.y - margin, area.width + 2 * margin,
                         area.height + 2 * margin);
  if (grown.width <= 0 || grown.height <= 0) {
    why = "the region has no area";
    return cut;
  }
  // Whether any of it lies on the scan: the corners' bounding box against the image.
  double min_x = 1e300, min_y = 1e300, max_x = -1e300, max_y = -1e300;
  for (const cv::Point2d corner : {grown.tl(), cv::Point2d(grown.x + grown.width, grown.y),
                                   grown.br(), cv::Point2d(grown.x, grown.y + grown.height)}) {
    const cv::Point2d p = fit.Map(corner);
    min_x = std::min(min_x, p.x);
    min_y = std::min(min_y, p.y);
    max_x = std::max(max_x, p.x);
    max_y = std::max(max_y, p.y);
  }
  if (max_x <= 0 || max_y <= 0 || min_x >= grey.cols || min_y >= grey.rows) {
    why = "the region lies off the scan";
    return cut;
  }
  const cv::Point2d middle(grown.x + grown.width / 2, grown.y + grown.height / 2);
  const cv::Size2d scale = fit.ScaleAt(middle);
  double ppu = std::max(min_pixels_per_unit, (scale.width + scale.height) / 2);
  ppu = std::min(ppu, std::sqrt(kMaxPixels / (grown.width * grown.height)));
  const cv::Size size(std::max(1, static_cast<int>(std::lround(grown.width * ppu))),
                      std::max(1, static_cast<int>(std::lround(grown.height * ppu))));
  // Each cut pixel's centre, in page units, mapped onto the scan.
  const cv::Matx33d to_page(1 / ppu, 0, grown.x + 0.5 / ppu, 0, 1 / ppu, grown.y + 0.5 / ppu, 0, 0,
                            1);
  const cv::Matx33d to_scan = fit.transform * to_page;
  cv::warpPerspective(grey, cut.image, cv::Mat(to_scan), size,
                      cv::INTER_LINEAR | cv::WARP_INVERSE_MAP, cv::BORDER_CONSTANT,
                      cv::Scalar(255));
  cut.origin = grown.tl();
  cut.pixels_per_unit = ppu;
  return cut;
}

void ErasePrinted(RegionCut& cut, const std::vector<printing::PrintedShape>& printed,
                  double slack) {
  const double ppu = cut.pixels_per_unit;
  const auto at = [&](double x, double y) {
    return cv::Point(static_cast<int>(std::lround((x - cut.origin.x) * ppu)),
                     static_cast<int>(std::lround((y - cut.origin.y) * ppu)));
  };
  for (const printing::PrintedShape& shape : printed) {
    const double left = std::min(shape.left, shape.right),
                 right = std::max(shape.left, shape.right), top = std::min(shape.top, shape.bottom),
                 bottom = std::max(shape.top, shape.bottom);
    if (shape.kind == printing::PrintedShape::Kind::Label) {
      cv::rectangle(cut.image, at(left - slack, top - slack), at(right + slack, bottom + slack),
                    cv::Scalar(255), cv::FILLED);
      continue;
    }
    // An outline: a band along each edge, as wide as the line and the slack either side.
    const double half = shape.line / 2 + slack;
    const cv::Rect2d edges[] = {{left - half, top - half, right - left + 2 * half, 2 * half},
                                {left - half, bottom - half, right - left + 2 * half, 2 * half},
                                {left - half, top - half, 2 * half, bottom - top + 2 * half},
                                {right - half, top - half, 2 * half, bottom - top + 2 * half}};
    for (const cv::Rect2d& e : edges)
      cv::rectangle(cut.image, at(e.x, e.y), at(e.x + e.width, e.y + e.height), cv::Scalar(255),
                    cv::FILLED);
  }
}

}  // namespace xun::reading::detail
