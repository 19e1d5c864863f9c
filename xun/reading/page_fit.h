// Where a template page lies on a scan: the transform from page units (1/100 inch) to the
// scan's pixels, found from the printed bubbles themselves (docs/reading.md, "Registration").
#pragma once

#include <opencv2/core.hpp>

#include <optional>
#include <string>
#include <vector>

namespace xun::reading::detail {

// What the template says is printed: the centre of every bubble of every OMR region, and the
// size of its bubbles, in page units.
struct PrintedBubbles {
  std::vector<cv::Point2d> centres;
  std::vector<cv::Size2d> sizes;  // one for each centre
  std::vector<cv::Rect2d> areas;  // the OMR regions, where the bubbles are looked for
};

struct PageFit {
  cv::Matx33d transform = cv::Matx33d::eye();  // page units to pixels (a homography)
  double error = 0;   // root mean square distance, in page units, of the bubbles fitted
  int found = 0;      // printed bubbles found where the fit puts them
  int printed = 0;    // printed bubbles in all
  std::string model;  // "similarity", "affine" or "perspective": the one that fitted best

  cv::Point2d Map(const cv::Point2d& units) const;
  // How many pixels one page unit spans at a point, along x and y.
  cv::Size2d ScaleAt(const cv::Point2d& units) const;
};

// Limits of the search: the largest turn and shift of a scan against its page.
struct FitLimits {
  double max_degrees = 4.0;
  double max_shift_units = 45;  // a little over 0.4 inch
  double max_scale_change = 0.035;
};

// Fits the page to the dark pixels of a scan at the given resolution. Nothing, with `why`, when
// too few of the printed bubbles show where any one placement of the page would put them: a
// blank or foreign image, or a page of another form.
std::optional<PageFit> FitPage(const cv::Mat& dark, double xdpi, double ydpi,
                               const PrintedBubbles& printed, const FitLimits& limits,
                               std::string& why);

}  // namespace xun::reading::detail
