// Where the sections of a template begin, so a warning about a page, region, question or link
// group can name its line: the reader records the header of every section it reads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "xun/xun.h"

namespace xuntool {

using SectionLines = xun::basTemplate::ReadSectionLines;

// The line at `index` (0-based), 0 when unknown.
inline int32_t LineAt(const std::vector<int32_t>& lines, std::size_t index) {
  return index < lines.size() ? lines[index] : 0;
}

}  // namespace xuntool
