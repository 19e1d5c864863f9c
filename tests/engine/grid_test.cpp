// The grid search, the grid check and the fill values on drawn pages, at the four resolutions
// a scanner is used at, grey and 1-bit, and with the distortions of a scan.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <tuple>

#include "common/test_support.h"
#include "engine/engine_calls.h"
#include "synthscan/distortions.h"

namespace xun::testing {
namespace {

// Four choices by five questions; question 1 marked A in full, 3 marked C in light pencil (grey
// pages only), 5 marked D.
GridSpec AnswerGrid(bool pencil) {
  GridSpec grid;
  grid.left = 150;
  grid.top = 200;
  grid.rows = 5;
  grid.cols = 4;
  grid.pitch_x = 25;
  grid.pitch_y = 20;
  grid.bubble_w = 17;
  grid.bubble_h = 12;
  grid.marks = {{{0, 0}, 0}, {{4, 3}, 0}};
  if (pencil) grid.marks[{2, 2}] = 128;
  return grid;
}

// A second grid of another size on the same page, so the sizes do not mix.
GridSpec WideGrid() {
  GridSpec grid;
  grid.left = 400;
  grid.top = 150;
  grid.rows = 2;
  grid.cols = 10;
  grid.pitch_x = 20;
  grid.pitch_y = 25;
  grid.bubble_w = 16;
  grid.bubble_h = 14;
  grid.marks = {{{1, 9}, 0}};
  return grid;
}

SyntheticPage DrawnPage(int dpi, bool pencil) {
  SyntheticPage page(8.5, 5, dpi);
  page.DrawGrid(AnswerGrid(pencil));
  page.DrawGrid(WideGrid());
  page.DrawClutter({100, 330, 500, 100}, 7);
  return page;
}

// Every edge within `tolerance` units of where it was drawn, every fill on the right side.
void ExpectGrid(const GridSpec& grid, const CheckedGrid& checked, double tolerance,
                int blank_at_most = 15) {
  ASSERT_EQ(checked.code, XUNREC_OK);
  EXPECT_EQ(checked.results[0], grid.rows);
  EXPECT_EQ(checked.results[1], grid.cols);
  EXPECT_NEAR(checked.results[2], grid.bubble_w, tolerance);
  EXPECT_NEAR(checked.results[3], grid.bubble_h, tolerance);
  EXPECT_EQ(checked.results[4], 3);  // both axes seen on the image
  for (int c = 0; c < grid.cols; ++c)
    EXPECT_NEAR(checked.Left(c), grid.BubbleLeft(c), tolerance) << "column " << c;
  for (int r = 0; r < grid.rows; ++r)
    EXPECT_NEAR(checked.Top(r, grid.cols), grid.BubbleTop(r), tolerance) << "row " << r;
  for (int r = 0; r < grid.rows; ++r)
    for (int c = 0; c < grid.cols; ++c) {
      const int fill = checked.Fill(r, c, grid.rows);
      if (grid.marks.count({r, c}))
        EXPECT_GE(fill, 85) << "marked bubble " << r << "," << c;
      else
        EXPECT_LE(fill, blank_at_most) << "blank bubble " << r << "," << c;
    }
}

class DrawnGrid : public ::testing::TestWithParam<std::tuple<int, std::string>> {};

TEST_P(DrawnGrid, IsFoundAndCheckedWhereItWasDrawn) {
  const auto& [dpi, format] = GetParam();
  const bool grey = format != "pcx";
  TempFolder folder;
  const std::string file = DrawnPage(dpi, grey).Save(folder.File("page." + format), format);
  LoadedImage loaded(file, dpi);
  ASSERT_EQ(loaded.Code(), XUNREC_OK);

  for (const GridSpec& grid : {AnswerGrid(grey), WideGrid()}) {
    // Searched without hints, and with wrong ones: they only bound the bubble size.
    for (const int16_t hint : {0, 2}) {
      int16_t rows = hint, cols = hint;
      EXPECT_EQ(
          XUNREC_search_omr_field(static_cast<int16_t>(grid.left), static_cast<int16_t>(grid.top),
                                  grid.Right(), grid.Bottom(), &rows, &cols),
          XUNREC_OK);
      EXPECT_EQ(rows, grid.rows);
      EXPECT_EQ(cols, grid.cols);
    }
    ExpectGrid(grid, CheckGrid(grid), 1.0);
  }
}

INSTANTIATE_TEST_SUITE_P(Resolutions, DrawnGrid,
                         ::testing::Combine(::testing::Values(150, 200, 300, 600),
                                            ::testing::Values("png", "pcx")),
                         [](const auto& param_info) {
                           return std::to_string(std::get<0>(param_info.param)) + "dpi_" +
                                  std::get<1>(param_info.param);
                         });

TEST(DrawnGrid, HoldsOnARotatedBlurredNoisyScan) {
  for (const double degrees : {1.0, -2.0})
    for (const GridSpec& grid : {AnswerGrid(true), WideGrid()}) {
      SCOPED_TRACE(degrees);
      // Turned about the grid's middle: its corners move by up to two units, its rows and
      // columns on average not at all.
      SyntheticPage page = DrawnPage(200, true);
      synthscan::Distortions scanner;
      scanner.rotate = degrees;
      scanner.blur = 1.0;
      scanner.noise = 12;
      // The scanner turns about the page's middle; a shift brings the grid's middle back.
      const double x = (grid.left + grid.Right()) / 2.0, y = (grid.top + grid.Bottom()) / 2.0;
      const cv::Matx23d turn = synthscan::PageToPixels(scanner, page.Grey().size(), 200);
      scanner.shift_x = x - (turn(0, 0) * x + turn(0, 1) * y + turn(0, 2)) / 2.0;
      scanner.shift_y = y - (turn(1, 0) * x + turn(1, 1) * y + turn(1, 2)) / 2.0;
      page.Grey() = synthscan::Distort(page.Grey(), scanner, 200, 3);
      TempFolder folder;
      LoadedImage loaded(page.Save(folder.File("scan.tiff"), "tiff"), 200);
      ASSERT_EQ(loaded.Code(), XUNREC_OK);
      // Turning smears each printed stroke over two pixels, so a blank bubble's letter weighs
      // more; it still reads far from a mark.
      ExpectGrid(grid, CheckGrid(grid), 2.0, 30);
    }
}

TEST(DrawnGrid, MoreColumnsThanAskedForIsAMismatch) {
  TempFolder folder;
  const std::string file = DrawnPage(200, false).Save(folder.File("page.png"), "png");
  LoadedImage loaded(file, 200);
  GridSpec grid = WideGrid();
  grid.cols = 8;
  grid.pitch_x = 25;  // the same rectangle as ten columns of 20
  EXPECT_EQ(CheckGrid(grid).code, XUNREC_GRID_MISMATCH);
}

// Printed in drop-out ink the bubbles vanish from the scan: the rectangle is divided evenly, and
// the marks that show still read as marks.
TEST(DrawnGrid, DropOutBubblesAreAnEvenDivision) {
  GridSpec grid = AnswerGrid(false);
  SyntheticPage page(8.5, 5, 200);
  for (const auto& [at, grey] : grid.marks)
    page.FillEllipse(
        {grid.BubbleLeft(at.second), grid.BubbleTop(at.first), grid.bubble_w, grid.bubble_h}, grey);
  TempFolder folder;
  LoadedImage loaded(page.Save(folder.File("dropout.pcx"), "pcx"), 200);
  CheckedGrid checked = CheckGrid(grid);
  ASSERT_EQ(checked.code, XUNREC_OK);
  EXPECT_EQ(checked.results[0], grid.rows);
  for (int c = 0; c < grid.cols; ++c)
    EXPECT_NEAR(checked.Left(c) + checked.results[2] / 2.0, grid.BubbleLeft(c) + grid.bubble_w / 2,
                1.5);
  for (int r = 0; r < grid.rows; ++r)
    EXPECT_NEAR(checked.Top(r, grid.cols) + checked.results[3] / 2.0,
                grid.BubbleTop(r) + grid.bubble_h / 2, 1.5);
  EXPECT_GE(checked.Fill(0, 0, grid.rows), 85);
  EXPECT_GE(checked.Fill(4, 3, grid.rows), 85);
  EXPECT_LE(checked.Fill(1, 1, grid.rows), 15);

  // Nothing printed and nothing marked: still the even division, no bubble seen.
  SyntheticPage blank(8.5, 5, 200);
  LoadedImage reloaded(blank.Save(folder.File("blank.pcx"), "pcx"), 200);
  checked = CheckGrid(grid);
  ASSERT_EQ(checked.code, XUNREC_OK);
  EXPECT_EQ(checked.results[4], 0);
  EXPECT_EQ(checked.Left(1) - checked.Left(0), 25);
  int16_t rows = 0, cols = 0;
  EXPECT_EQ(XUNREC_search_omr_field(150, 200, grid.Right(), grid.Bottom(), &rows, &cols),
            XUNREC_NO_GRID);
  EXPECT_EQ(rows, 0);
}

}  // namespace
}  // namespace xun::testing
