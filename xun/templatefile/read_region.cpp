// The [Field] section: a new region at the end of the current page.
#include <string>

#include "xun/model/template.h"
#include "xun/support/runtime_error.h"
#include "xun/templatefile/bas_template.h"
#include "xun/templatefile/section_keys.h"
#include "xun/templatefile/template_reader.h"

namespace xun::basTemplate {
namespace detail {
namespace {

constexpr const char* kRegionErrorText =
    "An error occurred reading the [Field] section of the template file. One or more region "
    "parameters are missing or invalid.";

}  // namespace

bool ReadRegion(ReaderContext& ctx) {
  ctx.section_line = ctx.cursor.LineNumber();
  const auto pages = ctx.tmpl.Pages();
  const std::shared_ptr<clsXUNPage> page =
      pages && pages->Count() > 0 ? pages->Item(pages->Count()) : nullptr;
  if (!page) Raise(kErrObjectNotSet);  // a [Field] before any [Page]: not a template file

  const std::shared_ptr<clsXUNField> field = clsXUNField::Create();
  ctx.region_carried = {};
  KeyHint field_hint, database_hint;
  ReadSectionKeys(ctx.cursor, [&](std::string_view key, std::string_view value) {
    if (const SectionKey<clsXUNField>* entry = FindFieldKey(key, &field_hint))
      return ReadKeyValue(*entry, *field, value, ctx);
    if (const SectionKey<clsXUNFieldDB>* entry = FindDatabaseKey(key, &database_hint))
      return ReadKeyValue(*entry, *field->DB(), value, ctx);
    return true;
  });

  if (ctx.link_regions_left > 0) {
    field->LinkGroup(ctx.open_link_group);
    field->LinkStart(ctx.link_start_next);
    ctx.link_start_next = false;
    --ctx.link_regions_left;
  }

  // Added after the keys: a region's key cannot change once it is in the list.
  page->Fields()->Add(field);
  if (!CheckRegionRequired(*field)) {
    FailRead("Region Error",
             std::string(kRegionErrorText) +
                 "\r\n\r\nRegion: " + std::to_string(page->Fields()->Count()) +
                 "\r\nPage: " + std::to_string(pages->Count()),
             "basTemplate.ReadRegion", ctx.section_line);
    return false;
  }
  return true;
}

}  // namespace detail

}  // namespace xun::basTemplate
