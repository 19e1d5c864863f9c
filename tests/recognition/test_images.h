// Page images made by the tests themselves (GraphicsMagick), with barcodes drawn by ZXing.
#pragma once

#include <Magick++.h>
#include <ZXing/BarcodeFormat.h>

#include <string>
#include <vector>

namespace xun::testing {

// A white page of width x height pixels at the given resolution (0: none stored).
Magick::Image BlankPage(int width, int height, int dpi);
// A black (or other) filled rectangle.
void FillRect(Magick::Image& image, int left, int top, int right, int bottom,
              const std::string& colour = "black");
// The barcode of `text` in `format`, width x height pixels, put on the page at (left, top), turned
// a quarter when `vertical`.
void DrawBarcode(Magick::Image& page, ZXing::BarcodeFormat format, const std::string& text,
                 int left, int top, int width, int height, bool vertical = false);
// Writes the pages as one file (several pages where the format holds them).
void WritePages(std::vector<Magick::Image> pages, const std::string& path,
                const std::string& format);
// Whether the pixel of an image file is black.
bool IsBlack(const std::string& path, int x, int y);

}  // namespace xun::testing
