// Timing marks: solid rectangles in evenly spaced tracks along the page.
#pragma once

#include <vector>

#include "engine/page_image.h"
#include "engine/xunrec.h"

namespace xunrec {

// The marks in the rectangle, at least min_width x min_height page units, sorted by top and then
// left, in page units. A mark is a solid, nearly rectangular component (filled bubbles, text and
// outlines are not) in a track: three or more marks of one size in a line, evenly spaced. Logos
// and lone boxes are not in a track.
std::vector<XUNREC_MarkArea> FindTimingMarks(const PageImage& page, const UnitRect& rect,
                                             int min_width, int min_height);

}  // namespace xunrec
