#include "imaging/print_raster.h"

#include <ZXing/BitMatrix.h>
#include <ZXing/MultiFormatWriter.h>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

#include "imaging/barcode_formats.h"
#include "imaging/page_image.h"
#include "xun/support/runtime_error.h"

namespace xun::imaging {
namespace {

using printing::PrintedShape;

// A page beyond this many pixels is refused before anything is allocated (a tabloid page at
// 1200 dpi fits).
constexpr double kMaxPixels = 300e6;
// Sub-pixel precision of OpenCV's drawing calls: coordinates in 1/16 pixel.
constexpr int kShift = 4;
constexpr double kOne = 1 << kShift;

// Page units to pixels. A pixel's centre is at (i + 0.5) pixels in page terms, while OpenCV
// draws point i at that centre, hence the half pixel.
struct Scale {
  double s;
  double Px(double units) const { return units * s; }
  int Fixed(double units) const { return static_cast<int>(std::lround((units * s - 0.5) * kOne)); }
  int Edge(double units) const { return static_cast<int>(std::lround(units * s)); }
  int Stroke(double units) const { return std::max(1, static_cast<int>(std::lround(units * s))); }
};

cv::Rect PixelsOf(const PrintedShape& shape, const Scale& scale, const cv::Size& page) {
  const cv::Rect r(cv::Point(scale.Edge(shape.left), scale.Edge(shape.top)),
                   cv::Point(scale.Edge(shape.right), scale.Edge(shape.bottom)));
  return r & cv::Rect(cv::Point(0, 0), page);
}

void DrawImageUnder(cv::Mat& page, const printing::PageLayout& layout, int32_t dpi) {
  const GreyImage image =
      ReadGreyRegion(layout.image_file, 0, 0, std::numeric_limits<int32_t>::max(),
                     std::numeric_limits<int32_t>::max());
  const cv::Mat source(image.height, image.width, CV_8UC1,
                       const_cast<uint8_t*>(image.pixels.data()));
  // The image covers what it scanned at its own resolution, or the whole page without one.
  const double w =
      layout.image_xdpi > 0 ? image.width * double(dpi) / layout.image_xdpi : page.cols;
  const double h =
      layout.image_ydpi > 0 ? image.height * double(dpi) / layout.image_ydpi : page.rows;
  const cv::Size size(std::max(1, static_cast<int>(std::lround(w))),
                      std::max(1, static_cast<int>(std::lround(h))));
  if (double(size.width) * size.height > kMaxPixels) Raise(kErrOverflow);
  cv::Mat scaled;
  cv::resize(source, scaled, size, 0, 0, cv::INTER_AREA);
  const cv::Rect on = cv::Rect(cv::Point(0, 0), size) & cv::Rect(cv::Point(0, 0), page.size());
  scaled(on).copyTo(page(on));
}

// Hershey fonts draw ASCII only: a label with other characters is left out.
bool Printable(const std::string& text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
    return static_cast<unsigned char>(c) >= 0x20 && static_cast<unsigned char>(c) < 0x7f;
  });
}

void DrawLabel(cv::Mat& page, const PrintedShape& shape, const Scale& scale) {
  if (!Printable(shape.text)) return;
  const int thickness = scale.Stroke(shape.line);
  const double box_w = scale.Px(shape.right - shape.left),
               box_h = scale.Px(shape.bottom - shape.top);
  if (box_w < 2 || box_h < 2) return;
  int baseline = 0;
  const cv::Size unit =
      cv::getTextSize(shape.text, cv::FONT_HERSHEY_SIMPLEX, 1.0, thickness, &baseline);
  const double font = std::min(box_h / unit.height, box_w / unit.width);
  const cv::Size text =
      cv::getTextSize(shape.text, cv::FONT_HERSHEY_SIMPLEX, font, thickness, &baseline);
  const double x =
      shape.centred ? scale.Px(shape.left) + (box_w - text.width) / 2 : scale.Px(shape.left);
  const double y = scale.Px(shape.top) + (box_h + text.height) / 2;
  cv::putText(page, shape.text,
              cv::Point(static_cast<int>(std::lround(x)), static_cast<int>(std::lround(y))),
              cv::FONT_HERSHEY_SIMPLEX, font,
              cv::Scalar(255 * (1 - std::clamp(shape.ink, 0.0, 1.0))), thickness, cv::LINE_AA);
}

// The symbol drawn with whole modules, centred in its rectangle; one that cannot be made (a value
// the symbology cannot hold, a type ZXing does not write) is left out, its region's outline shows.
void DrawBarcode(cv::Mat& page, const PrintedShape& shape, const Scale& scale) {
  const ZXing::BarcodeFormat format = PrintedFormat(shape.barcode);
  const cv::Rect box = PixelsOf(shape, scale, page.size());
  if (format == ZXing::BarcodeFormat::None || box.width < 1 || box.height < 1) return;
  ZXing::BitMatrix symbol;
  try {
    symbol = ZXing::MultiFormatWriter(format).setMargin(0).encode(shape.text, 0, 0);
  } catch (const std::exception&) {
    return;
  }
  if (symbol.width() < 1 || symbol.height() < 1) return;
  // Linear symbols come as one row of modules, stretched here to the rectangle's height.
  const bool linear = symbol.height() == 1;
  const int module_w = box.width / symbol.width();
  const int module_h = linear ? box.height : box.height / symbol.height();
  const int module = linear ? module_w : std::min(module_w, module_h);
  if (module < 1 || (!linear && module_h < 1)) return;
  const int w = symbol.width() * module;
  const int h = linear ? box.height : symbol.height() * module;
  const int left = box.x + (box.width - w) / 2, top = box.y + (box.height - h) / 2;
  for (int y = 0; y < (linear ? 1 : symbol.height()); ++y)
    for (int x = 0; x < symbol.width(); ++x)
      if (symbol.get(x, y))
        cv::rectangle(page,
                      cv::Rect(left + x * module, top + y * (linear ? 0 : module), module,
                               linear ? h : module),
                      cv::Scalar(0), cv::FILLED);
}

void Draw(cv::Mat& page, const PrintedShape& shape, const Scale& scale) {
  switch (shape.kind) {
    case PrintedShape::Kind::Solid: {
      const cv::Rect r = PixelsOf(shape, scale, page.size());
      if (!r.empty()) cv::rectangle(page, r, cv::Scalar(0), cv::FILLED);
      break;
    }
    case PrintedShape::Kind::Box: {
      // The line inside the rectangle, as for bubbles.
      const int t = scale.Stroke(shape.line);
      const cv::Rect r = PixelsOf(shape, scale, page.size());
      for (const cv::Rect& side :
           {cv::Rect(r.x, r.y, r.width, t), cv::Rect(r.x, r.br().y - t, r.width, t),
            cv::Rect(r.x, r.y, t, r.height), cv::Rect(r.br().x - t, r.y, t, r.height)}) {
        const cv::Rect on = side & r;
        if (!on.empty()) cv::rectangle(page, on, cv::Scalar(0), cv::FILLED);
      }
      break;
    }
    case PrintedShape::Kind::Bubble: {
      const int t = scale.Stroke(shape.line);
      const double rx = scale.Px(shape.right - shape.left) / 2 - t / 2.0;
      const double ry = scale.Px(shape.bottom - shape.top) / 2 - t / 2.0;
      if (rx <= 0 || ry <= 0) break;
      const cv::Point centre(scale.Fixed((shape.left + shape.right) / 2),
                             scale.Fixed((shape.top + shape.bottom) / 2));
      cv::ellipse(page, centre,
                  cv::Size(static_cast<int>(std::lround(rx * kOne)),
                           static_cast<int>(std::lround(ry * kOne))),
                  0, 0, 360, cv::Scalar(0), t, cv::LINE_AA, kShift);
      break;
    }
    case PrintedShape::Kind::Label:
      DrawLabel(page, shape, scale);
      break;
    case PrintedShape::Kind::Barcode:
      DrawBarcode(page, shape, scale);
      break;
  }
}

}  // namespace

std::string PrintRaster(const printing::PageLayout& layout, int32_t dpi) {
  const Scale scale{dpi / 100.0};
  const double w = std::ceil(scale.Px(layout.width)), h = std::ceil(scale.Px(layout.height));
  if (!(w >= 1 && h >= 1) || w > 32767 || h > 32767 || w * h > kMaxPixels) Raise(kErrOverflow);
  cv::Mat page(static_cast<int>(h), static_cast<int>(w), CV_8UC1, cv::Scalar(255));
  if (!layout.image_file.empty()) DrawImageUnder(page, layout, dpi);
  for (const PrintedShape& shape : layout.shapes)
    Draw(page, shape, scale);
  return EncodeGrey(page.data, page.cols, page.rows, dpi);
}

}  // namespace xun::imaging
