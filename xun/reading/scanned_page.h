// A scanned page as the reader looks at it: the grey page; a small black-and-white copy at about
// 100 dpi for finding the printed bubbles; and the fill of any bubble, measured on the grey page.
// The engine's page decides ink or paper for every pixel at full resolution; the reader needs
// that only inside the bubbles, so reading a page costs less than decoding it.
#pragma once

#include <opencv2/core.hpp>

#include <cstdint>
#include <vector>

#include "engine/ink.h"

namespace xun::reading::detail {

class ScannedPage {
 public:
  // `grey` 8-bit, 0 black; `dpi` its resolution (the larger of the two).
  ScannedPage(cv::Mat grey, int dpi);

  const cv::Mat& Grey() const { return grey_; }

  // 255 where the page is ink, at 1/Factor() of its resolution: a small pixel is ink when the
  // darkest of the pixels it covers is ink against the mean around them, so a hairline outline
  // stays whole.
  const cv::Mat& SmallDark() const { return small_dark_; }
  int Factor() const { return factor_; }

  // Per cent of ink in an ellipse of 0.7 of `bubble` about each centre (pixels of the page,
  // measured from pixel edges), as the engine measures a bubble (engine/bubble_fill.h); off the
  // page counts as paper.
  std::vector<int16_t> FillPercents(const std::vector<cv::Point2d>& centres,
                                    cv::Size2d bubble) const;

 private:
  cv::Mat grey_;
  xunrec::InkRule rule_;
  int factor_ = 1;
  cv::Mat small_mean_;  // the mean grey around each small pixel
  cv::Mat small_dark_;
};

}  // namespace xun::reading::detail
