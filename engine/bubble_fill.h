// How full each bubble is: the share of dark pixels inside an ellipse of 0.7 of the bubble, so
// the printed outline does not count.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/grid_check.h"
#include "engine/page_image.h"

namespace xunrec {

// Percent (0-100) for every bubble, rows x columns with the row index running fastest.
std::vector<int16_t> FillPercents(const PageImage& page, const Grid& grid);

}  // namespace xunrec
