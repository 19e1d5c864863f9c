// What is ink on a grey page: one rule for the engine's black-and-white page and for the reader,
// which looks only at the pixels it needs.
#pragma once

#include <opencv2/core.hpp>

#include <cmath>
#include <cstdint>

namespace xunrec {

struct InkRule {
  // Only black and white (a 1-bit scan): ink is black.
  bool bilevel = false;
  // Ink is darker than the mean of the `window` x `window` pixels around it by `contrast` (of
  // 255), or darker than `solid` whatever surrounds it.
  int window = 3;
  int contrast = 0;
  double solid = 0;

  // `grey` a pixel's grey, `mean` the mean around it (rounded as a box filter rounds it).
  bool IsInk(int grey, int mean) const {
    return bilevel ? grey < 128 : (grey - mean <= -contrast || grey < solid);
  }
};

// The rule for a page scanned at `dpi`, from the page itself: the levels are shares of its own
// range from paper to ink, so a scan of half the contrast reads as the original.
InkRule InkRuleOf(const cv::Mat& grey, int dpi);

}  // namespace xunrec
