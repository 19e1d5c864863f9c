// Where the sections of a plain template file begin, so a warning about a page, region, question
// or link group can name its line. The file is a flat stream: the k-th [Field] header of a file
// that read without error is the k-th region of the template, and so on.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace xuntool {

struct SectionLines {
  std::vector<int32_t> pages, regions, questions, links;
};

// The 1-based line of every [Page], [Field], [Question] and [Link]/[Join] header, in file order.
// Empty for an archive, whose text is not at hand.
SectionLines FindSectionLines(const std::string& path);

// The line at `index` (0-based), 0 when unknown.
inline int32_t LineAt(const std::vector<int32_t>& lines, std::size_t index) {
  return index < lines.size() ? lines[index] : 0;
}

}  // namespace xuntool
