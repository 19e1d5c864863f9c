#include "engine/page_image.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <utility>

#include "engine/engine_error.h"
#include "engine/ink.h"
#include "engine/xunrec.h"

namespace xunrec {

cv::Mat Binarise(const cv::Mat& grey, int dpi) {
  const InkRule rule = InkRuleOf(grey, dpi);
  cv::Mat dark;
  if (rule.bilevel) {
    cv::compare(grey, 128, dark, cv::CMP_LT);
    return dark;
  }
  // Each pixel against the mean around it, then the solid level, row by row rather than through
  // a mask of the page: a reader holds one page per core.
  cv::adaptiveThreshold(grey, dark, 255, cv::ADAPTIVE_THRESH_MEAN_C, cv::THRESH_BINARY_INV,
                        rule.window, rule.contrast);
  for (int y = 0; y < grey.rows; ++y) {
    const uint8_t* g = grey.ptr<uint8_t>(y);
    uint8_t* d = dark.ptr<uint8_t>(y);
    for (int x = 0; x < grey.cols; ++x)
      if (g[x] < rule.solid) d[x] = 255;
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
