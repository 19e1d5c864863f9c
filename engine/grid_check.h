// Checking a grid of known size: exactly rows x columns bubbles in the rectangle, with the edges
// refined from the dark-pixel profiles, or an even division where the bubbles do not show.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/page_image.h"

namespace xunrec {

// The most bubbles a grid may have (what the 16-bit counts of the callers allow).
inline constexpr int64_t kMaxBubbles = 32767;

struct Grid {
  std::vector<double> column_centres, row_centres;  // image pixels
  cv::Size2d bubble;                                // image pixels
  // Each bubble's own centre where it shows (a scan turned a little moves the corners of a grid
  // off its rows and columns), rows x columns with the row index running fastest.
  std::vector<cv::Point2d> bubble_centres;
  bool columns_seen = false, rows_seen = false;  // false: an even division of the rectangle
};

// Throws EngineError: BAD_RECTANGLE, GRID_MISMATCH (more evenly spaced rows or columns than
// asked for), NO_GRID (cells smaller than a pixel).
Grid CheckGrid(const PageImage& page, const UnitRect& rect, int rows, int cols);

// The grid in page units, as the result array holds it: bubble size, the left edge of each
// column and the top edge of each row, every bubble kept inside the rectangle.
struct GridUnits {
  int16_t width = 0, height = 0;
  std::vector<int16_t> lefts, tops;
};
GridUnits ToUnits(const PageImage& page, const UnitRect& rect, const Grid& grid);

}  // namespace xunrec
