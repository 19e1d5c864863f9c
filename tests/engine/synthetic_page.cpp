#include "engine/synthetic_page.h"

#include <Magick++.h>

#include <opencv2/imgproc.hpp>

#include <cmath>
#include <random>

namespace xun::testing {

SyntheticPage::SyntheticPage(double width_inches, double height_inches, int dpi)
    : grey_(static_cast<int>(std::lround(width_inches * dpi)) > 0
                ? cv::Mat(static_cast<int>(std::lround(height_inches * dpi)),
                          static_cast<int>(std::lround(width_inches * dpi)), CV_8UC1,
                          cv::Scalar(255))
                : cv::Mat()),
      dpi_(dpi) {}

int SyntheticPage::Px(double units) const {
  return static_cast<int>(std::lround(units * dpi_ / 100.0));
}

void SyntheticPage::DrawGrid(const GridSpec& grid) {
  const int stroke = std::max(1, dpi_ / 150);
  const char* letters = "ABCDEFGHJK";
  for (int r = 0; r < grid.rows; ++r)
    for (int c = 0; c < grid.cols; ++c) {
      const UnitBox box{grid.BubbleLeft(c), grid.BubbleTop(r), grid.bubble_w, grid.bubble_h};
      const int x0 = Px(box.left), y0 = Px(box.top), x1 = Px(box.left + box.width),
                y1 = Px(box.top + box.height);
      // The outline's outer edge on the box: the path runs half a stroke inside.
      const cv::RotatedRect path(cv::Point2f((x0 + x1) / 2.0f, (y0 + y1) / 2.0f),
                                 cv::Size2f(x1 - x0 - stroke, y1 - y0 - stroke), 0);
      cv::ellipse(grey_, path, cv::Scalar(0), stroke, cv::LINE_8);
      const std::string letter(1, letters[c % 10]);
      int base = 0;
      const double scale =
          0.3 * (y1 - y0) / cv::getTextSize(letter, cv::FONT_HERSHEY_SIMPLEX, 1.0, 1, &base).height;
      const cv::Size size = cv::getTextSize(letter, cv::FONT_HERSHEY_SIMPLEX, scale, 1, &base);
      cv::putText(grey_, letter, cv::Point((x0 + x1 - size.width) / 2, (y0 + y1 + size.height) / 2),
                  cv::FONT_HERSHEY_SIMPLEX, scale, cv::Scalar(0), 1, cv::LINE_8);
      const auto mark = grid.marks.find({r, c});
      if (mark != grid.marks.end()) FillEllipse(box, mark->second);
    }
}

void SyntheticPage::FillBox(const UnitBox& box, int grey) {
  cv::rectangle(grey_,
                cv::Rect(cv::Point(Px(box.left), Px(box.top)),
                         cv::Point(Px(box.left + box.width), Px(box.top + box.height))),
                cv::Scalar(grey), cv::FILLED);
}

void SyntheticPage::FillEllipse(const UnitBox& box, int grey) {
  const int x0 = Px(box.left), y0 = Px(box.top), x1 = Px(box.left + box.width),
            y1 = Px(box.top + box.height);
  cv::ellipse(grey_,
              cv::RotatedRect(cv::Point2f((x0 + x1) / 2.0f, (y0 + y1) / 2.0f),
                              cv::Size2f(x1 - x0, y1 - y0), 0),
              cv::Scalar(grey), cv::FILLED);
}

void SyntheticPage::DrawClutter(const UnitBox& area, unsigned seed) {
  std::mt19937 random(seed);
  const double scale = Px(10) / 22.0;  // letters a tenth of an inch tall
  for (double y = area.top + 12; y < area.top + area.height; y += 15) {
    std::string line;
    for (int i = 0; i < 40; ++i)
      line += i % 6 == 5 ? ' ' : static_cast<char>('a' + random() % 26);
    cv::putText(grey_, line, cv::Point(Px(area.left), Px(y)), cv::FONT_HERSHEY_SIMPLEX, scale,
                cv::Scalar(0), std::max(1, dpi_ / 150), cv::LINE_8);
  }
}

std::string SyntheticPage::Save(const std::string& path, const std::string& format) const {
  Magick::InitializeMagick(nullptr);
  cv::Mat pixels = grey_;
  if (format == "pcx") cv::threshold(grey_, pixels, 127, 255, cv::THRESH_BINARY);
  Magick::Image image(static_cast<unsigned>(pixels.cols), static_cast<unsigned>(pixels.rows), "I",
                      Magick::CharPixel, pixels.data);
  image.resolutionUnits(Magick::PixelsPerInchResolution);
  image.density(Magick::Geometry(static_cast<unsigned>(dpi_), static_cast<unsigned>(dpi_)));
  if (format == "pcx") {
    image.type(Magick::BilevelType);
    image.magick("PCX");
  } else {
    image.type(Magick::GrayscaleType);
    image.magick(format == "tiff" ? "TIFF" : "PNG");
  }
  image.write(path);
  return path;
}

}  // namespace xun::testing
