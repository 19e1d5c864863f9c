// The [Link] section (older files: [JOIN]): the next regions of the page form one link group.
#include <string>

#include "xun/support/text.h"
#include "xun/templatefile/template_reader.h"

namespace xun::basTemplate::detail {

bool ReadLink(ReaderContext& ctx) {
  ctx.section_line = ctx.cursor.LineNumber();
  int32_t count = 0;
  ReadSectionKeys(ctx.cursor, [&](std::string_view key, std::string_view value) {
    const std::string upper = text::ToUpper(key);
    if (upper == "LINKEDFIELDS" || upper == "JOINEDFIELDS") count = Int32Value(value);
    return true;
  });
  // The number itself is advanced by ReadTemplate after every [Link], used or not.
  ctx.open_link_group = ctx.next_link_group;
  ctx.link_regions_left = count > 0 ? count : 0;
  ctx.link_start_next = count > 0;
  return true;
}

}  // namespace xun::basTemplate::detail
