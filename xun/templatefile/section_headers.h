// The section headers the reader knows. The reader dispatches on them, and a file that shows none
// of them near its start is not taken for a template, so both ask here.
#pragma once

#include <optional>
#include <string_view>

namespace xun::basTemplate::detail {

enum class Section { Form, Page, Region, Question, Link };

// The section the line opens: [Form], [Page], [Field], [Question], [Link] or [Join] in any letter
// case, blanks around it; none for any other line.
std::optional<Section> SectionOpenedBy(std::string_view line);

}  // namespace xun::basTemplate::detail
