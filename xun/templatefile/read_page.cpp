// The [Page] section: a new page at the end of the template.
#include <string>

#include "xun/model/template.h"
#include "xun/support/text.h"
#include "xun/support/value_helpers.h"
#include "xun/templatefile/template_reader.h"

namespace xun::basTemplate::detail {

bool ReadPage(ReaderContext& ctx) {
  ctx.section_line = ctx.cursor.LineNumber();
  // A link group never spans pages.
  ctx.link_regions_left = 0;
  ctx.link_start_next = false;

  const std::shared_ptr<clsXUNPage> page = clsXUNPage::Create();
  ReadSectionKeys(ctx.cursor, [&](const std::string& key, const std::string& value) {
    if (key == "ATTRIBUTES") {
      DictionaryPtr attributes = Dictionary::Create();
      basPublic::StringToDictionary(value, attributes, "\t", "|");
      page->Attributes(attributes);
    } else if (key == "COLUMNWIDTH") {
      page->ColumnWidth(SingleValue(value));
    } else if (key == "DROPOUTCOLOR") {
      page->DropOutColor(static_cast<xunTemplateDropOutColor>(Int32Value(value)));
    } else if (key == "DROPOUTTHRESHOLD") {
      page->DropOutThreshold(Int16Value(value));
    } else if (key == "KEY") {
      page->Key(KeyValue(value));
    } else if (key == "TAG") {
      page->Tag(TextValue(value));
    } else if (key == "TIMINGMARKS") {
      page->TimingMarks()->RemoveAll();
      page->TimingMarks()->AddDelimitedString(std::string(text::Trim(value)), "\t", ",");
    } else if (key == "WEIGHTEDROTATE") {
      page->WeightedRotate(FlagValue(value) ? -1 : 0);
    } else if (key == "XDPI") {
      page->XDPI(Int16Value(value));
    } else if (key == "YDPI") {
      page->YDPI(Int16Value(value));
    } else if (key == "IMAGEWIDTH") {
      page->ImageWidth(Int16Value(value));
    } else if (key == "IMAGEHEIGHT") {
      page->ImageHeight(Int16Value(value));
    } else if (key == "FILLEDPIXELS") {
      page->FilledPixels(Int32Value(value));
    }
    return true;
  });
  // Added only now: a page's key cannot change once it is in the list.
  ctx.tmpl.Pages()->Add(page);
  return true;
}

}  // namespace xun::basTemplate::detail
