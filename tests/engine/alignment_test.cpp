// Alignment on drawn pages: a grid moved by up to the search distance is found within a unit; a
// grid moved further, or one that does not show, is a failure code.
#include <gtest/gtest.h>

#include <string>

#include "common/test_support.h"
#include "engine/engine_calls.h"

namespace xun::testing {
namespace {

constexpr int16_t kDistance = 25;

GridSpec Grid() {
  GridSpec grid;
  grid.left = 200;
  grid.top = 150;
  grid.rows = 4;
  grid.cols = 5;
  grid.pitch_x = 24;
  grid.pitch_y = 20;
  grid.bubble_w = 16;
  grid.bubble_h = 12;
  grid.marks = {{{1, 2}, 0}, {{3, 0}, 0}};
  return grid;
}

GridSpec Moved(GridSpec grid, double dx, double dy) {
  grid.left += dx;
  grid.top += dy;
  return grid;
}

struct Aligned {
  int16_t code;
  int16_t left, top, right, bottom;
};

Aligned Align(const GridSpec& expected, int16_t distance = kDistance) {
  Aligned a{};
  a.code = XUNREC_align_omr_field(
      static_cast<int16_t>(expected.left), static_cast<int16_t>(expected.top), expected.Right(),
      expected.Bottom(), static_cast<int16_t>(expected.rows), static_cast<int16_t>(expected.cols),
      distance, &a.left, &a.top, &a.right, &a.bottom);
  return a;
}

struct Shift {
  double dx, dy;
  int dpi;
};

class AlignedGrid : public ::testing::TestWithParam<Shift> {};

TEST_P(AlignedGrid, IsFoundWithinAUnitUpToTheSearchDistance) {
  const Shift shift = GetParam();
  SyntheticPage page(8.5, 4, shift.dpi);
  page.DrawGrid(Moved(Grid(), shift.dx, shift.dy));
  page.DrawClutter({50, 280, 600, 100}, 11);
  TempFolder folder;
  LoadedImage loaded(page.Save(folder.File("page.png"), "png"), shift.dpi);
  ASSERT_EQ(loaded.Code(), XUNREC_OK);
  const Aligned a = Align(Grid());
  ASSERT_EQ(a.code, XUNREC_OK);
  EXPECT_NEAR(a.left, Grid().left + shift.dx, 1.0);
  EXPECT_NEAR(a.top, Grid().top + shift.dy, 1.0);
  EXPECT_EQ(a.right - a.left, Grid().Right() - Grid().left);
  EXPECT_EQ(a.bottom - a.top, Grid().Bottom() - Grid().top);
}

INSTANTIATE_TEST_SUITE_P(Shifts, AlignedGrid,
                         ::testing::Values(Shift{0, 0, 200}, Shift{10, -7, 150},
                                           Shift{-25, 25, 300}, Shift{12.5, 3.3, 600},
                                           Shift{25, 0, 200}, Shift{-4, -18, 200}));

TEST(AlignedGrid, FailsBeyondTheSearchDistance) {
  for (const Shift shift : {Shift{35, 0, 200}, Shift{0, -32, 300}, Shift{30, 30, 150}}) {
    SyntheticPage page(8.5, 4, shift.dpi);
    page.DrawGrid(Moved(Grid(), shift.dx, shift.dy));
    TempFolder folder;
    LoadedImage loaded(page.Save(folder.File("page.pcx"), "pcx"), shift.dpi);
    const Aligned a = Align(Grid());
    EXPECT_NE(a.code, XUNREC_OK) << shift.dx << "," << shift.dy;
    // Asked with a distance that covers it, the same grid is found.
    EXPECT_EQ(Align(Grid(), 40).code, XUNREC_OK);
  }
}

TEST(AlignedGrid, DoesNotSlipAlongALongerRowOfBubbles) {
  // The region is the first five columns of a row of ten, moved by 8 units: it must not slip
  // a pitch to the right, where it would match five columns just as well without its border.
  GridSpec row = Grid();
  row.cols = 10;
  SyntheticPage page(8.5, 4, 200);
  page.DrawGrid(Moved(row, 8, 0));
  TempFolder folder;
  LoadedImage loaded(page.Save(folder.File("page.png"), "png"), 200);
  const Aligned a = Align(Grid());
  ASSERT_EQ(a.code, XUNREC_OK);
  EXPECT_NEAR(a.left, Grid().left + 8, 1.0);
}

TEST(AlignedGrid, FailsWhereNoGridShows) {
  SyntheticPage page(8.5, 4, 200);
  page.DrawClutter({50, 100, 600, 200}, 5);
  TempFolder folder;
  LoadedImage loaded(page.Save(folder.File("page.png"), "png"), 200);
  EXPECT_NE(Align(Grid()).code, XUNREC_OK);
}

}  // namespace
}  // namespace xun::testing
