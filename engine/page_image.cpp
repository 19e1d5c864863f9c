#include "engine/page_image.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "engine/engine_error.h"
#include "engine/xunrec.h"

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

cv::Mat Binarise(const cv::Mat& grey, int dpi) {
  cv::Mat dark;
  // Only black and white: a 1-bit scan, taken as it is.
  if (BlackAndWhite(grey)) {
    cv::compare(grey, 128, dark, cv::CMP_LT);
    return dark;
  }
  // Grey: each pixel against the mean of half an inch around it, so uneven lighting and light
  // pencil are both handled. No smoothing first: it would widen every stroke by a pixel, and
  // the contrast asked for is well above scanner noise. Both levels are taken as shares of the
  // page's own range from paper to ink, so a scan of half the contrast reads as the original.
  const auto [paper, ink] = PaperAndInk(grey);
  const double range = std::clamp(paper - ink, kMinRange, 255) / 255.0;
  cv::adaptiveThreshold(grey, dark, 255, cv::ADAPTIVE_THRESH_MEAN_C, cv::THRESH_BINARY_INV,
                        Odd(dpi / 2.0, 3), kLocalContrast * range);
  // Row by row rather than through a mask of the page: a reader holds one page per core.
  const double solid = ink + kAbsoluteDark * range;
  for (int y = 0; y < grey.rows; ++y) {
    const uint8_t* g = grey.ptr<uint8_t>(y);
    uint8_t* d = dark.ptr<uint8_t>(y);
    for (int x = 0; x < grey.cols; ++x)
      if (g[x] < solid) d[x] = 255;
  }
  return dark;
}

std::unique_ptr<PageImage> PageImage::Load(const std::string& path, int xdpi, int ydpi, int width,
                                           int height) {
  if (xdpi <= 0 || ydpi <= 0 || width < 0 || height < 0) throw EngineError(XUNREC_BAD_ARGUMENT);
  cv::Mat grey = DecodeGrey(path);
  if ((width > 0 && width != grey.cols) || (height > 0 && height != grey.rows))
    throw EngineError(XUNREC_SIZE_MISMATCH);
  return FromGrey(std::move(grey), xdpi, ydpi);
}

std::unique_ptr<PageImage> PageImage::FromGrey(cv::Mat grey, int xdpi, int ydpi) {
  if (xdpi <= 0 || ydpi <= 0 || grey.type() != CV_8UC1) throw EngineError(XUNREC_BAD_ARGUMENT);
  std::unique_ptr<PageImage> page(new PageImage);
  page->grey_ = std::move(grey);
  page->xdpi_ = xdpi;
  page->ydpi_ = ydpi;
  page->dark_ = Binarise(page->grey_, std::max(xdpi, ydpi));
  return page;
}

cv::Rect PageImage::UnclippedPixels(const UnitRect& rect) const {
  const auto x = [&](int units) { return static_cast<int>(std::lround(XPixels(units))); };
  const auto y = [&](int units) { return static_cast<int>(std::lround(YPixels(units))); };
  return cv::Rect(cv::Point(x(rect.left), y(rect.top)), cv::Point(x(rect.right), y(rect.bottom)));
}

cv::Rect PageImage::Pixels(const UnitRect& rect) const {
  if (rect.right <= rect.left || rect.bottom <= rect.top) throw EngineError(XUNREC_BAD_RECTANGLE);
  const cv::Rect clipped = UnclippedPixels(rect) & cv::Rect(cv::Point(0, 0), Size());
  if (clipped.empty()) throw EngineError(XUNREC_BAD_RECTANGLE);
  return clipped;
}

int64_t PageImage::DarkCount(const cv::Rect& pixels) const {
  const cv::Rect r = pixels & cv::Rect(cv::Point(0, 0), Size());
  if (r.empty()) return 0;
  std::call_once(integral_made_, [this] {
    cv::Mat ones;
    cv::bitwise_and(dark_, cv::Scalar(1), ones);
    cv::integral(ones, integral_, CV_32S);
  });
  const auto at = [&](int y, int x) { return static_cast<int64_t>(integral_.at<int32_t>(y, x)); };
  return at(r.y + r.height, r.x + r.width) - at(r.y, r.x + r.width) - at(r.y + r.height, r.x) +
         at(r.y, r.x);
}

}  // namespace xunrec
