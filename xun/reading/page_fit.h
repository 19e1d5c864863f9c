// Where a template page lies on a scan: the transform from page units (1/100 inch) to the
// scan's pixels, found from the printed bubbles themselves (docs/reading.md, "Registration").
#pragma once

#include <opencv2/core.hpp>

#include <optional>
#include <string>
#include <vector>

namespace xun::reading::detail {

// What the template says is printed, in page units: the centre and size of every bubble of every
// OMR region, or of every timing mark.
struct PrintedBubbles {
  std::vector<cv::Point2d> centres;
  std::vector<cv::Size2d> sizes;  // one for each centre
  std::vector<cv::Rect2d> areas;  // where they are looked for: the OMR regions, or the marks
  const char* noun = "bubbles";   // what they are, for the reasons a page is refused
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

// Limits of the search: the largest turn and shift of a scan against its page, and the share of
// the printed shapes that must be found for the page to be this form's.
struct FitLimits {
  double max_degrees = 4.0;
  double max_shift_units = 45;  // a little over 0.4 inch
  double max_scale_change = 0.035;
  // A page of this form shows nearly all its bubbles (the fewest seen on the generator's scans:
  // 98.8%); a long grid placed a few rows off, as a page fed upside down or another form may
  // be, still finds 75%.
  double found_share = 0.85;
};

// Fits the page to the dark pixels of a scan at the given resolution. Nothing, with `why`, when
// too few of the printed bubbles show where any one placement of the page would put them: a
// blank or foreign image, or a page of another form.
std::optional<PageFit> FitPage(const cv::Mat& dark, double xdpi, double ydpi,
                               const PrintedBubbles& printed, const FitLimits& limits,
                               std::string& why);

}  // namespace xun::reading::detail
