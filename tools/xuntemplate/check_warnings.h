// What the library accepts but a template maker wants to know about.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "section_lines.h"
#include "xun/xun.h"

namespace xuntool {

struct Warning {
  int32_t line = 0;  // 0 when the file's lines are unknown
  std::string text;
};

// Regions outside the page or with an empty rectangle, overlapping regions on a page, duplicate
// data column names, questions whose choices and codes differ in length, questions of OMR regions
// whose choices do not match the bubbles along them, and link groups that link nothing (no
// region, or a single one). In template order.
std::vector<Warning> CollectWarnings(const xun::clsXUNTemplate& t, const SectionLines& lines);

}  // namespace xuntool
