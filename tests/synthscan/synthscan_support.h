// What the generator's tests share: measures of ink taken straight from the pixels.
#pragma once

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <cmath>
#include <memory>
#include <string>

#include "common/answer_sheet.h"
#include "synthscan/synthetic_scan.h"
#include "xun/xun.h"

namespace xun::testing {

// What a respondent added inside bubble `rect` (page units) of `scan`, against `blank`, the
// same scan of the unmarked form: over the paper of the blank inside the bubble's ellipse, shrunk
// by `inner` to keep the printed outline out, the share that is darker than mid grey, and the
// mean darkness laid over the paper (0 none, 1 black). The printed choice label is not counted.
struct Ink {
  double dark_share = 0, darkness = 0;
};

inline Ink AddedInk(const synthscan::Scan& scan, const cv::Mat& blank, const BubbleRect& rect,
                    double inner = 0.8) {
  const cv::Point2d centre =
      synthscan::OnScan(scan, (rect.Left + rect.Right) / 2.0, (rect.Top + rect.Bottom) / 2.0);
  const double to_pixels = std::hypot(scan.page_to_pixels(0, 0), scan.page_to_pixels(1, 0));
  const double angle = std::atan2(-scan.page_to_pixels(1, 0), scan.page_to_pixels(0, 0));
  // OpenCV draws about pixel centres; the transform gives pixel edges.
  const cv::RotatedRect ellipse(
      cv::Point2f(static_cast<float>(centre.x - 0.5), static_cast<float>(centre.y - 0.5)),
      cv::Size2f(static_cast<float>((rect.Right - rect.Left) * to_pixels * inner),
                 static_cast<float>((rect.Bottom - rect.Top) * to_pixels * inner)),
      static_cast<float>(-angle * 180 / CV_PI));
  const cv::Rect window = ellipse.boundingRect() & cv::Rect(0, 0, scan.image.cols, scan.image.rows);
  cv::Mat1b mask(window.size(), 0);
  cv::ellipse(mask,
              cv::RotatedRect(ellipse.center - cv::Point2f(static_cast<float>(window.x),
                                                           static_cast<float>(window.y)),
                              ellipse.size, ellipse.angle),
              cv::Scalar(255), cv::FILLED);
  int paper = 0, dark = 0;
  double darkness = 0;
  for (int y = 0; y < window.height; ++y)
    for (int x = 0; x < window.width; ++x) {
      const double under = blank.at<uint8_t>(window.y + y, window.x + x);
      if (!mask(y, x) || under < 200) continue;
      const double seen = scan.image.at<uint8_t>(window.y + y, window.x + x);
      ++paper;
      dark += seen < 128;
      darkness += std::max(0.0, 1 - seen / under);
    }
  return {static_cast<double>(dark) / paper, darkness / paper};
}

}  // namespace xun::testing
