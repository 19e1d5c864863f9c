#include "xun/reading/scanned_page.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <vector>

namespace xun::reading::detail {
namespace {

// The small copy's resolution, about: bubbles are still 15 pixels or more across.
constexpr int kSmallDpi = 100;
// The share of the bubble, either way, that is measured: as the engine measures it.
constexpr double kInnerShare = 0.7;

// For each f x f block of `grey` (whole blocks only): its middle pixel, from which the mean of
// half an inch around is taken (a thousand samples and more: as good as every pixel, at a
// fraction of the cost), and its darkest pixel. The rows of a block are compared a whole row at
// a time (OpenCV's vector code), then folded f by f.
void SampleAndDarkest(const cv::Mat& grey, int f, cv::Mat& sample, cv::Mat& darkest) {
  const int columns = grey.cols / f, rows = grey.rows / f;
  sample.create(rows, columns, CV_8UC1);
  darkest.create(rows, columns, CV_8UC1);
  cv::Mat mins(1, grey.cols, CV_8UC1);
  for (int y = 0; y < rows; ++y) {
    grey.row(y * f).copyTo(mins);
    for (int r = 1; r < f; ++r)
      cv::min(mins, grey.row(y * f + r), mins);
    const uint8_t* n = mins.ptr<uint8_t>(0);
    const uint8_t* middle = grey.ptr<uint8_t>(y * f + f / 2);
    uint8_t* m = sample.ptr<uint8_t>(y);
    uint8_t* d = darkest.ptr<uint8_t>(y);
    for (int x = 0; x < columns; ++x) {
      const uint8_t* block = n + x * f;
      uint8_t low = block[0];
      for (int k = 1; k < f; ++k)
        low = std::min(low, block[k]);
      m[x] = middle[x * f + f / 2];
      d[x] = low;
    }
  }
}

}  // namespace

ScannedPage::ScannedPage(cv::Mat grey, int dpi)
    : grey_(std::move(grey)),
      rule_(xunrec::InkRuleOf(grey_, dpi)),
      // A black-and-white scan has its grey dithered into dots, and the darkest of a large block
      // would catch one in most blocks of a light mark or noisy paper: its blocks cover no more
      // than 3 x 3 pixels.
      factor_(std::max(1, rule_.bilevel ? std::min(3, dpi / kSmallDpi) : dpi / kSmallDpi)) {
  const int f = factor_;
  // Whole blocks of f x f pixels; the last few columns and rows of a page hold no bubble.
  const cv::Mat whole = grey_(cv::Rect(0, 0, grey_.cols / f * f, grey_.rows / f * f));
  cv::Mat small_grey, darkest;
  if (f == 1) {
    small_grey = whole;
    darkest = whole;
  } else {
    SampleAndDarkest(whole, f, small_grey, darkest);
  }
  const int window = std::max(3, (rule_.window / f) | 1);
  cv::boxFilter(small_grey, small_mean_, -1, cv::Size(window, window), cv::Point(-1, -1), true,
                cv::BORDER_REPLICATE | cv::BORDER_ISOLATED);
  small_dark_.create(small_grey.size(), CV_8UC1);
  for (int y = 0; y < small_dark_.rows; ++y) {
    const uint8_t* d = darkest.ptr<uint8_t>(y);
    const uint8_t* m = small_mean_.ptr<uint8_t>(y);
    uint8_t* to = small_dark_.ptr<uint8_t>(y);
    for (int x = 0; x < small_dark_.cols; ++x)
      to[x] = rule_.IsInk(d[x], m[x]) ? 255 : 0;
  }
}

std::vector<int16_t> ScannedPage::FillPercents(const std::vector<cv::Point2d>& centres,
                                               cv::Size2d bubble) const {
  const int w = std::max(1, static_cast<int>(std::lround(kInnerShare * bubble.width)));
  const int h = std::max(1, static_cast<int>(std::lround(kInnerShare * bubble.height)));
  cv::Mat mask = cv::Mat::zeros(h, w, CV_8UC1);
  cv::ellipse(mask, cv::RotatedRect(cv::Point2f(w / 2.0f, h / 2.0f), cv::Size2f(w, h), 0),
              cv::Scalar(255), cv::FILLED);
  const double area = std::max(1, cv::countNonZero(mask));

  std::vector<int16_t> fills;
  fills.reserve(centres.size());
  for (const cv::Point2d& c : centres) {
    const int left = static_cast<int>(std::lround(c.x - w / 2.0));
    const int top = static_cast<int>(std::lround(c.y - h / 2.0));
    // The mean around the bubble: half an inch round it varies too little across a bubble to
    // be taken pixel by pixel.
    const int mx = std::clamp(static_cast<int>(c.x) / factor_, 0, small_mean_.cols - 1);
    const int my = std::clamp(static_cast<int>(c.y) / factor_, 0, small_mean_.rows - 1);
    const int mean = small_mean_.at<uint8_t>(my, mx);
    int ink = 0;
    for (int y = std::max(0, -top); y < h && top + y < grey_.rows; ++y) {
      const uint8_t* m = mask.ptr<uint8_t>(y);
      const uint8_t* g = grey_.ptr<uint8_t>(top + y);
      for (int x = std::max(0, -left); x < w && left + x < grey_.cols; ++x)
        if (m[x] && rule_.IsInk(g[left + x], mean)) ++ink;
    }
    fills.push_back(static_cast<int16_t>(std::lround(100.0 * ink / area)));
  }
  return fills;
}

}  // namespace xun::reading::detail
