// Every stored property of a template tree as text, one "path.Property=value" per line, so two
// trees compare with one expectation and a difference names the property that differs.
#pragma once

#include <string>

#include "xun/xun.h"

namespace xun::testing {

// With `file_view` only what a saved file holds (docs/template-reader.md, "What does not come
// back"): no keys (a file without them gets fresh ones on every read), no path of a page's own
// image copy, text as the cleaner leaves it (tabs and line breaks as blanks, trimmed; names and
// list items without their characters), for each region only the key groups its kind writes
// (docs/template-file.md), and of the named extra values only the older region settings.
std::string DescribeTree(const clsXUNTemplate& t, bool file_view = false);

}  // namespace xun::testing
