// A picture of a read form for the person who reviews it: each scan with every bubble where the
// registration put it, coloured by its judgement, and what needs a look outlined with why.
#pragma once

#include <string>

#include "xun/reading/export.h"
#include "xun/reading/form_record.h"

namespace xun::reading {

// An SVG document that opens alone in a browser: the pages one under another, each scan read
// again from its file and embedded as a PNG at most `max_width` pixels wide; bubbles marked
// (blue, filled), doubtful (orange) and unmarked (green outline); every review reason of an item
// outlined in red over its bubbles with its name and why, the others written above their page.
// A scan that cannot be read again is drawn as a grey page that says so.
XUN_READING_API std::string ReviewSvg(const FormRecord& record, int max_width = 1000);

}  // namespace xun::reading
