#include "engine/bubble_fill.h"

#include <opencv2/imgproc.hpp>

#include <cmath>

namespace xunrec {
namespace {

// The share of the bubble, either way, that is measured.
constexpr double kInnerShare = 0.7;

}  // namespace

std::vector<int16_t> FillPercents(const PageImage& page, const Grid& grid) {
  const int w = std::max(1, static_cast<int>(std::lround(kInnerShare * grid.bubble.width)));
  const int h = std::max(1, static_cast<int>(std::lround(kInnerShare * grid.bubble.height)));
  cv::Mat mask = cv::Mat::zeros(h, w, CV_8UC1);
  cv::ellipse(mask, cv::RotatedRect(cv::Point2f(w / 2.0f, h / 2.0f), cv::Size2f(w, h), 0),
              cv::Scalar(255), cv::FILLED);
  const double area = std::max(1, cv::countNonZero(mask));
  const cv::Rect image(cv::Point(0, 0), page.Size());

  std::vector<int16_t> fill;
  fill.reserve(grid.bubble_centres.size());
  cv::Mat both;
  for (const cv::Point2d& c : grid.bubble_centres) {
    const cv::Rect at(static_cast<int>(std::lround(c.x - w / 2.0)),
                      static_cast<int>(std::lround(c.y - h / 2.0)), w, h);
    // Off the image counts as paper.
    const cv::Rect on = at & image;
    int dark = 0;
    if (!on.empty()) {
      cv::bitwise_and(page.Dark()(on), mask(on - at.tl()), both);
      dark = cv::countNonZero(both);
    }
    fill.push_back(static_cast<int16_t>(std::lround(100.0 * dark / area)));
  }
  return fill;
}

}  // namespace xunrec
