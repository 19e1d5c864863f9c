#include "engine/ink.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace xunrec {
namespace {

// Darker than the paper around it by this much (of 255) is ink: light pencil (40% grey) passes;
// scanner noise, paper texture and the grey fringe a blurred scan puts around every stroke do
// not.
constexpr double kLocalContrast = 64;
// This dark is ink whatever surrounds it: the inside of a solid area larger than the
// neighbourhood (a logo, a thick bar) is as dark as its surroundings.
constexpr double kAbsoluteDark = 64;
// Below this range from paper to ink (of 255) a page is not taken to have less contrast still:
// it is blank, or all one grey.
constexpr int kMinRange = 96;

// The grey of the paper and of the darkest ink, from a sample of the page: the median and the
// 0.2nd percentile. A scan with little contrast (a faint copy, a dark scanner setting) has the
// two close together.
std::pair<int, int> PaperAndInk(const cv::Mat& grey) {
  std::array<int64_t, 256> counts{};
  int64_t n = 0;
  const int step = std::max(1, std::min(grey.rows, grey.cols) / 400);
  for (int y = 0; y < grey.rows; y += step) {
    const uint8_t* row = grey.ptr<uint8_t>(y);
    for (int x = 0; x < grey.cols; x += step, ++n)
      ++counts[row[x]];
  }
  const auto level = [&](double share) {
    int64_t seen = 0;
    for (int v = 0; v < 256; ++v)
      if ((seen += counts[static_cast<size_t>(v)]) > share * static_cast<double>(n)) return v;
    return 255;
  };
  return {level(0.5), level(0.002)};
}

// Whether every pixel is black (0) or white (255): the first grey pixel ends the look.
bool BlackAndWhite(const cv::Mat& grey) {
  for (int y = 0; y < grey.rows; ++y) {
    const uint8_t* row = grey.ptr<uint8_t>(y);
    for (int x = 0; x < grey.cols; ++x)
      if (row[x] != 0 && row[x] != 255) return false;
  }
  return true;
}

int Odd(double value, int minimum) {
  const int n = std::max(minimum, static_cast<int>(std::lround(value)));
  return n | 1;
}

}  // namespace

InkRule InkRuleOf(const cv::Mat& grey, int dpi) {
  InkRule rule;
  if (BlackAndWhite(grey)) {
    rule.bilevel = true;
    return rule;
  }
  // Grey: each pixel against the mean of half an inch around it, so uneven lighting and light
  // pencil are both handled. No smoothing first: it would widen every stroke by a pixel, and the
  // contrast asked for is well above scanner noise.
  const auto [paper, ink] = PaperAndInk(grey);
  const double range = std::clamp(paper - ink, kMinRange, 255) / 255.0;
  rule.window = Odd(dpi / 2.0, 3);
  rule.contrast = static_cast<int>(std::floor(kLocalContrast * range));
  rule.solid = ink + kAbsoluteDark * range;
  return rule;
}

}  // namespace xunrec
