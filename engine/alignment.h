// Aligning a grid: where the rows x columns bubbles of a rectangle lie on the image, within a
// search distance.
#pragma once

#include "engine/page_image.h"

namespace xunrec {

// The rectangle moved to where its grid lies. The grid is taken as one bubble in the middle of
// each cell of an even division of the rectangle; it is matched as a whole, with a border of one
// cell around it where bubbles count against the match, so it cannot slip by one pitch along a
// longer row of bubbles. Throws EngineError: ALIGN_WEAK, ALIGN_AMBIGUOUS, ALIGN_TOO_FAR,
// BAD_ARGUMENT, BAD_RECTANGLE.
UnitRect AlignGrid(const PageImage& page, const UnitRect& rect, int rows, int cols, int distance);

}  // namespace xunrec
