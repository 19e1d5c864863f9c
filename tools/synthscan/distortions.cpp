#include "synthscan/distortions.h"

#include <opencv2/imgproc.hpp>

#include <cmath>
#include <numbers>
#include <stdexcept>

#include "synthscan/image_files.h"

namespace xun::synthscan {
namespace {

// Floyd-Steinberg: each pixel's rounding error goes on to the pixels not yet decided, so grey
// survives as a density of black dots.
cv::Mat Dither(const cv::Mat& grey) {
  cv::Mat1f level;
  grey.convertTo(level, CV_32F);
  cv::Mat out(grey.size(), CV_8UC1);
  for (int y = 0; y < level.rows; ++y)
    for (int x = 0; x < level.cols; ++x) {
      const float old = level(y, x);
      const float chosen = old < 128 ? 0.0f : 255.0f;
      out.at<uint8_t>(y, x) = static_cast<uint8_t>(chosen);
      const float error = old - chosen;
      if (x + 1 < level.cols) level(y, x + 1) += error * 7 / 16;
      if (y + 1 < level.rows) {
        if (x > 0) level(y + 1, x - 1) += error * 3 / 16;
        level(y + 1, x) += error * 5 / 16;
        if (x + 1 < level.cols) level(y + 1, x + 1) += error * 1 / 16;
      }
    }
  return out;
}

}  // namespace

std::string Refusal(const Distortions& d) {
  if (!(std::abs(d.rotate) <= 3)) return "rotation must be within 3 degrees either way";
  if (!(std::abs(d.scale - 1) <= 0.02 + 1e-9)) return "scale must be within 2% of 1";
  if (!(std::abs(d.shift_x) <= 30) || !(std::abs(d.shift_y) <= 30))
    return "shift must be within 0.3 inch (30 page units) either way";
  if (!(d.blur >= 0 && d.blur <= 10)) return "blur must be 0 to 10 pixels";
  if (!(d.noise >= 0 && d.noise <= 100)) return "noise must be 0 to 100 grey levels";
  if (!(d.contrast > 0 && d.contrast <= 1)) return "contrast must be above 0 and at most 1";
  if (d.jpeg < 0 || d.jpeg > 100) return "JPEG quality must be 1 to 100 (0 for none)";
  return "";
}

cv::Matx23d PageToPixels(const Distortions& d, cv::Size size, int dpi) {
  const double to_pixels = dpi / 100.0;
  const double angle = d.rotate * std::numbers::pi / 180;
  // Counter-clockwise on screen, where y runs down.
  const double a = d.scale * std::cos(angle), b = d.scale * std::sin(angle);
  const double cx = size.width / 2.0, cy = size.height / 2.0;
  return {a * to_pixels,  b * to_pixels, cx - (a * cx + b * cy) + d.shift_x * to_pixels,
          -b * to_pixels, a * to_pixels, cy - (-b * cx + a * cy) + d.shift_y * to_pixels};
}

cv::Mat Distort(const cv::Mat& printed, const Distortions& d, int dpi, uint32_t seed) {
  const std::string refusal = Refusal(d);
  if (!refusal.empty()) throw std::invalid_argument(refusal);
  CV_Assert(printed.type() == CV_8UC1);
  cv::Mat scan = printed.clone();

  if (d.rotate != 0 || d.scale != 1 || d.shift_x != 0 || d.shift_y != 0) {
    // The printed page in pixels is the page at `dpi`, so the move in pixels is the page's move
    // less that scale. OpenCV counts from pixel centres, the page from pixel edges.
    const cv::Matx23d units = PageToPixels(d, printed.size(), dpi);
    const double to_units = 100.0 / dpi;
    cv::Matx23d move(units(0, 0) * to_units, units(0, 1) * to_units, units(0, 2),
                     units(1, 0) * to_units, units(1, 1) * to_units, units(1, 2));
    move(0, 2) += 0.5 * (move(0, 0) + move(0, 1)) - 0.5;
    move(1, 2) += 0.5 * (move(1, 0) + move(1, 1)) - 0.5;
    cv::warpAffine(printed, scan, cv::Mat(move), printed.size(), cv::INTER_LINEAR,
                   cv::BORDER_CONSTANT, cv::Scalar(255));
  }
  if (d.blur > 0) cv::GaussianBlur(scan, scan, cv::Size(0, 0), d.blur);
  if (d.contrast != 1) scan.convertTo(scan, CV_8U, d.contrast, 128 * (1 - d.contrast));
  if (d.noise > 0) {
    cv::Mat1f noise(scan.size());
    cv::RNG random(seed);
    random.fill(noise, cv::RNG::NORMAL, 0.0, d.noise);
    cv::Mat1f sum;
    scan.convertTo(sum, CV_32F);
    sum += noise;
    sum.convertTo(scan, CV_8U);  // saturates at black and white
  }
  if (d.jpeg > 0) scan = JpegRoundTrip(scan, d.jpeg);
  if (d.dither) scan = Dither(scan);
  return scan;
}

}  // namespace xun::synthscan
