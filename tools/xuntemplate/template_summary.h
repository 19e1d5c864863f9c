// The at-a-glance description of a template tree, shared by `info` and `batch info`.
#pragma once

#include <ostream>

#include "xun/xun.h"

namespace xuntool {

// Size and orientation, read type, pages with their image facts, regions by kind, questions,
// items, identification regions and their validity, link groups.
void PrintSummary(std::ostream& out, const xun::clsXUNTemplate& t);

}  // namespace xuntool
