// Pages drawn by the tests (OpenCV), in page units of 1/100 inch, saved through GraphicsMagick
// as grey PNG or TIFF or as 1-bit PCX. What a scanner does to a page is synthscan's
// (synthscan/distortions.h).
#pragma once

#include <opencv2/core.hpp>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace xun::testing {

// A grid of outlined elliptic bubbles with a choice letter in each, every bubble centred in its
// cell of an even division of the region [left, left + cols * pitch_x) x [top, ...).
struct GridSpec {
  double left = 0, top = 0;
  int rows = 1, cols = 1;
  double pitch_x = 25, pitch_y = 20;
  double bubble_w = 16, bubble_h = 12;
  // Filled bubbles (row, column) and their grey (0 black, 128 light pencil).
  std::map<std::pair<int, int>, int> marks;

  int16_t Right() const { return static_cast<int16_t>(left + cols * pitch_x); }
  int16_t Bottom() const { return static_cast<int16_t>(top + rows * pitch_y); }
  double BubbleLeft(int col) const { return left + col * pitch_x + (pitch_x - bubble_w) / 2; }
  double BubbleTop(int row) const { return top + row * pitch_y + (pitch_y - bubble_h) / 2; }
};

// A rectangle in page units.
struct UnitBox {
  double left, top, width, height;
};

class SyntheticPage {
 public:
  SyntheticPage(double width_inches, double height_inches, int dpi);

  int Dpi() const { return dpi_; }
  cv::Mat& Grey() { return grey_; }
  int Px(double units) const;

  void DrawGrid(const GridSpec& grid);
  void FillBox(const UnitBox& box, int grey = 0);
  void FillEllipse(const UnitBox& box, int grey = 0);
  // Words of random letters and strokes, like a paragraph of small print.
  void DrawClutter(const UnitBox& area, unsigned seed);

  // "png", "tiff" (grey) or "pcx" (1-bit, black below half grey). Returns the path.
  std::string Save(const std::string& path, const std::string& format) const;

 private:
  cv::Mat grey_;
  int dpi_;
};

}  // namespace xun::testing
