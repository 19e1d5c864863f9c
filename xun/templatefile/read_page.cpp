// The [Page] section: a new page at the end of the template.
#include <string>

#include "xun/model/template.h"
#include "xun/templatefile/section_keys.h"
#include "xun/templatefile/template_reader.h"

namespace xun::basTemplate::detail {

bool ReadPage(ReaderContext& ctx) {
  ctx.section_line = ctx.cursor.LineNumber();
  // A link group never spans pages.
  ctx.link_regions_left = 0;
  ctx.link_start_next = false;

  const std::shared_ptr<clsXUNPage> page = clsXUNPage::Create();
  KeyHint hint;
  ReadSectionKeys(ctx.cursor, [&](std::string_view key, std::string_view value) {
    const SectionKey<clsXUNPage>* entry = FindPageKey(key, &hint);
    return !entry || ReadKeyValue(*entry, *page, value, ctx);
  });
  // Added only now: a page's key cannot change once it is in the list.
  ctx.tmpl.Pages()->Add(page);
  return true;
}

}  // namespace xun::basTemplate::detail
