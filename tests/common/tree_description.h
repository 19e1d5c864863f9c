// Every stored property of a template tree as text, one "path.Property=value" per line, so two
// trees compare with one expectation and a difference names the property that differs.
#pragma once

#include <string>

#include "xun/xun.h"

namespace xun::testing {

// Keys made fresh by the library (UUIDs of objects the file does not name) and the folder of a
// page's own image copy are left out with `stable_only`, since they differ between two reads.
std::string DescribeTree(const clsXUNTemplate& t, bool stable_only = false);

}  // namespace xun::testing
