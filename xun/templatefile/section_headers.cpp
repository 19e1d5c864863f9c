#include "xun/templatefile/section_headers.h"

#include <string>

#include "xun/templatefile/section_reader.h"

namespace xun::basTemplate::detail {
namespace {

struct KnownHeader {
  std::string_view header;  // as HeaderOf gives it
  Section section;
};

// [Join] opens a link group as [Link] does.
constexpr KnownHeader kKnownHeaders[] = {
    {"[QUESTION]", Section::Question}, {"[FIELD]", Section::Region}, {"[PAGE]", Section::Page},
    {"[FORM]", Section::Form},         {"[LINK]", Section::Link},    {"[JOIN]", Section::Link},
};

}  // namespace

std::optional<Section> SectionOpenedBy(std::string_view line) {
  const std::string header = HeaderOf(line);
  if (header.empty()) return std::nullopt;
  for (const KnownHeader& known : kKnownHeaders)
    if (header == known.header) return known.section;
  return std::nullopt;
}

}  // namespace xun::basTemplate::detail
