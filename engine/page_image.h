// The current image: the grey page, its black-and-white version and the integral image that
// makes a dark-pixel count cost the same for any rectangle; and the mapping between page units
// (1/100 inch) and image pixels.
#pragma once

#include <opencv2/core.hpp>

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "engine/image_file.h"

namespace xunrec {

// A rectangle in page units, as the entry points take it: [left, right) x [top, bottom).
struct UnitRect {
  int left = 0, top = 0, right = 0, bottom = 0;
};

class PageImage {
 public:
  // Decodes the file and binarises it (1-bit input as it is, grey input with a local adaptive
  // threshold). Width and height, when positive, must be the file's. Throws EngineError.
  static std::unique_ptr<PageImage> Load(const std::string& path, int xdpi, int ydpi, int width,
                                         int height);
  // The same for a page already decoded (8-bit grey, 0 black).
  static std::unique_ptr<PageImage> FromGrey(cv::Mat grey, int xdpi, int ydpi);

  const cv::Mat& Grey() const { return grey_; }
  // 255 where the page is dark (ink, pencil), 0 on paper.
  const cv::Mat& Dark() const { return dark_; }
  cv::Size Size() const { return grey_.size(); }
  int XDpi() const { return xdpi_; }
  int YDpi() const { return ydpi_; }

  // Page units to pixels and back, along each axis.
  double XPixels(double units) const { return units * xdpi_ / 100.0; }
  double YPixels(double units) const { return units * ydpi_ / 100.0; }
  double XUnits(double pixels) const { return pixels * 100.0 / xdpi_; }
  double YUnits(double pixels) const { return pixels * 100.0 / ydpi_; }

  // The pixels of a rectangle in page units, clipped to the image. Throws BAD_RECTANGLE for an
  // empty rectangle or one wholly off the image.
  cv::Rect Pixels(const UnitRect& rect) const;
  // The pixels of a rectangle, not clipped (it may reach off the image).
  cv::Rect UnclippedPixels(const UnitRect& rect) const;

  // The dark pixels of a pixel rectangle inside the image, from the integral image.
  int64_t DarkCount(const cv::Rect& pixels) const;

 private:
  PageImage() = default;

  cv::Mat grey_, dark_;
  // CV_32S, (rows + 1) x (cols + 1), of dark pixels counted as 1: made at the first count, since
  // a reader that only measures bubbles never needs its 4 bytes a pixel.
  mutable cv::Mat integral_;
  mutable std::once_flag integral_made_;
  int xdpi_ = 100, ydpi_ = 100;
};

// The black-and-white image of a grey page at the given resolution (255 dark). Exposed for the
// tests, which check counts against it.
cv::Mat Binarise(const cv::Mat& grey, int dpi);

}  // namespace xunrec
