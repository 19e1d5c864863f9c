// The marks to make on a page: read from a marks file, or made up from a seed as a class of
// respondents would make them.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "synthscan/marks.h"
#include "synthscan/page_bubbles.h"

namespace xun::synthscan {

// Every bubble that gets a mark; the others stay blank.
using MarkPlan = std::map<BubbleAt, Mark>;

// Reads a marks file of `region,row,col,kind` lines (kind as MarkName writes it; blank lines
// and lines starting with '#' skipped, as is a first line that names the columns). Throws
// std::runtime_error naming the file and line of the first bad line.
MarkPlan ReadMarksFile(const std::string& file, const clsXUNPage& page);

// A made-up class's answers: each answer line (the bubbles of one question, or of one column
// or row of a grid question) gets mostly one clear mark, sometimes none, sometimes several,
// sometimes one of the hard kinds; every hard kind turns up once there are enough lines.
MarkPlan RandomMarks(const clsXUNPage& page, uint32_t seed);

}  // namespace xun::synthscan
