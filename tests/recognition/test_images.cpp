#include "recognition/test_images.h"

#include <ZXing/BitMatrix.h>
#include <ZXing/MultiFormatWriter.h>

namespace xun::testing {

Magick::Image BlankPage(int width, int height, int dpi) {
  Magick::InitializeMagick(nullptr);
  Magick::Image page(Magick::Geometry(width, height), Magick::Color("white"));
  page.type(Magick::TrueColorType);
  if (dpi > 0) {
    page.resolutionUnits(Magick::PixelsPerInchResolution);
    page.density(Magick::Geometry(dpi, dpi));
  }
  return page;
}

void FillRect(Magick::Image& image, int left, int top, int right, int bottom,
              const std::string& colour) {
  image.fillColor(colour);
  image.strokeColor(colour);
  image.draw(Magick::DrawableRectangle(left, top, right, bottom));
}

void DrawBarcode(Magick::Image& page, ZXing::BarcodeFormat format, const std::string& text,
                 int left, int top, int width, int height, bool vertical) {
  const ZXing::BitMatrix bits =
      ZXing::MultiFormatWriter(format).setMargin(10).encode(text, width, height);
  const auto grey = ZXing::ToMatrix<uint8_t>(bits);
  Magick::Image code(static_cast<unsigned>(grey.width()), static_cast<unsigned>(grey.height()), "I",
                     Magick::CharPixel, grey.data());
  if (vertical) code.rotate(90);
  page.composite(code, left, top, Magick::OverCompositeOp);
}

void WritePages(std::vector<Magick::Image> pages, const std::string& path,
                const std::string& format) {
  for (Magick::Image& page : pages)
    page.magick(format);
  Magick::writeImages(pages.begin(), pages.end(), format + ":" + path, true);
}

bool IsBlack(const std::string& path, int x, int y) {
  Magick::Image image(path);
  const Magick::ColorRGB colour = image.pixelColor(x, y);
  return colour.red() < 0.5;
}

}  // namespace xun::testing
