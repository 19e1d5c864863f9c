// The [Form] section: the template's own settings.
#include <string>

#include "xun/model/template.h"
#include "xun/support/numeric.h"
#include "xun/support/value_helpers.h"
#include "xun/templatefile/template_reader.h"

namespace xun::basTemplate::detail {
namespace {

constexpr const char* kNotValidText =
    "The specified template is not valid for reading. Please open the template in the Template "
    "Editor and correct all problems before attempting to open the template for reading.\r\n\r\n"
    "Operation aborted.";

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
  const bool read =
      ReadSectionKeys(ctx.cursor, [&](const std::string& key, const std::string& value) {
        if (key == "ATTRIBUTES") {
          DictionaryPtr attributes = Dictionary::Create();
          basPublic::StringToDictionary(value, attributes, "\t", "|");
          t.Attributes(attributes);
        } else if (key == "COLUMNS") {
          t.Columns(Int16Value(value));
        } else if (key == "COLUMNWIDTH") {
          t.ColumnWidth(SingleValue(value));
        } else if (key == "DESCRIPTION") {
          t.Description(TextValue(value));
        } else if (key == "DUPLEX") {
          t.Duplex(FlagValue(value));
        } else if (key == "HEADERCOUNT") {
          t.HeaderCount(Int16Value(value));
        } else if (key == "HEADERITEMCOUNT") {
          t.HeaderItemCount(Int16Value(value));
        } else if (key == "HEADERPAGECOUNT") {
          t.HeaderPageCount(Int16Value(value));
        } else if (key == "ORIENTATION") {
          t.Orientation(static_cast<xunOrientationType>(Int16Value(value)));
        } else if (key == "PAGEHEIGHT") {
          t.PageHeight(NumberValue(value));
        } else if (key == "PAGEWIDTH") {
          t.PageWidth(NumberValue(value));
        } else if (key == "RDDNAME") {
          t.RDDName(TextValue(value));
        } else if (key == "READTYPE") {
          t.ReadType(static_cast<xunTemplateReadType>(Int16Value(value)));
        } else if (key == "ROWBOTTOMMARGIN") {
          t.RowBottomMargin(SingleValue(value));
        } else if (key == "ROWTOPMARGIN") {
          t.RowTopMargin(SingleValue(value));
        } else if (key == "SELFSCORE") {
          t.SelfScore(FlagValue(value));
        } else if (key == "TAG") {
          t.Tag(TextValue(value));
        } else if (key == "VERSION") {
          xun::detail::TemplateInternals::SetVersion(t, TextValue(value));
        } else if (key == "COMPATIBLEVERSION") {
          xun::detail::TemplateInternals::SetCompatibleVersion(t, TextValue(value));
        } else if (key == "MANUFACTURER") {
          t.Manufacturer(TextValue(value));
        } else if (key == "VALID") {
          const bool valid = FlagValue(value);
          xun::detail::TemplateInternals::SetValid(t, valid);
          if (!valid && !ctx.for_edit) {
            FailRead("Form Error", kNotValidText, "basTemplate.ReadForm", ctx.section_line);
            return false;
          }
        }
        return true;
      });
  if (!read) return false;
  CorrectPaperSize(t);
  return true;
}

}  // namespace xun::basTemplate::detail
