// A filled-in, scanned page and the truth about every bubble on it: the printed form, marked by
// a plan, then put through a scanner.
#pragma once

#include <opencv2/core.hpp>

#include <cstdint>
#include <vector>

#include "synthscan/answers.h"
#include "synthscan/distortions.h"
#include "synthscan/truth.h"

namespace xun::synthscan {

struct BubbleTruth {
  BubbleAt at;
  Mark mark;
  Truth truth = Truth::kUnmarked;
  BubbleRect rect;  // page units, as printed
};

struct Scan {
  cv::Mat image;  // 8-bit grey; only black and white when dithered
  int page = 1;
  int dpi = 0;
  uint32_t seed = 0;
  Distortions distortions;
  cv::Matx23d page_to_pixels;        // page units to image pixels (pixel edges)
  std::vector<BubbleTruth> bubbles;  // every bubble of every OMR region, region by region
};

// Marks `printed` (page `page` of `form`, printed at `dpi`) as `plan` says and scans it. The hand
// that marks and the scanner's noise follow `seed`: same seed, same scan. Throws
// std::invalid_argument for a plan naming a bubble that is not on the page, or distortions out
// of range.
Scan MakeScan(const clsXUNTemplate& form, int page, const cv::Mat& printed, int dpi,
              const MarkPlan& plan, const Distortions& distortions, uint32_t seed);

// Where a point of the page (page units) lands on the scan (pixels).
cv::Point2d OnScan(const Scan& scan, double x, double y);

}  // namespace xun::synthscan
