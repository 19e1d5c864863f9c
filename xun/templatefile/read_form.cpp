// The [Form] section: the template's own settings.
#include <string>

#include "xun/model/template.h"
#include "xun/support/numeric.h"
#include "xun/support/value_helpers.h"
#include "xun/templatefile/section_keys.h"
#include "xun/templatefile/template_reader.h"

namespace xun::basTemplate::detail {
namespace {

// Older files carry paper sizes rounded to two places; these pairs are replaced by the exact
// sizes. The odd last pair is as older files wrote it.
void CorrectPaperSize(clsXUNTemplate& t) {
  struct Correction {
    const char* as_read;
    double width, height;
  };
  static constexpr Correction kCorrections[] = {{"8.28x11.72", 8.268, 11.693},
                                                {"5.76x8.28", 5.827, 8.268},
                                                {"4.13x5.83", 4.134, 5.827},
                                                {"6.96x9.88", 7.165, 10.118}};
  const std::string pair = FormatNumber(t.PageWidth()) + "x" + FormatNumber(t.PageHeight());
  for (const Correction& c : kCorrections) {
    if (pair == c.as_read) {
      t.PageWidth(c.width);
      t.PageHeight(c.height);
      return;
    }
  }
}

}  // namespace

bool ReadForm(ReaderContext& ctx) {
  ctx.section_line = ctx.cursor.LineNumber();
  clsXUNTemplate& t = ctx.tmpl;
  KeyHint hint;
  const bool read = ReadSectionKeys(ctx.cursor, [&](std::string_view key, std::string_view value) {
    const SectionKey<clsXUNTemplate>* entry = FindFormKey(key, &hint);
    return !entry || ReadKeyValue(*entry, t, value, ctx);
  });
  if (!read) return false;
  CorrectPaperSize(t);
  return true;
}

}  // namespace xun::basTemplate::detail
