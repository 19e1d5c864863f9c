#include <string>

#include "xun/support/numeric.h"
#include "xun/support/text.h"
#include "xun/support/trap.h"
#include "xun/templatefile/bas_template.h"

namespace xun::basTemplate {

std::string CleanTemplateValues(const std::string& sValue, bool bStripTabs,
                                const std::string& sStripCharacters) {
  return Trap("basTemplate.CleanTemplateValues", std::string(), [&] {
    std::string value(text::Trim(sValue));
    if (value.empty()) return value;
    if (bStripTabs) value = text::ReplaceAll(value, "\t", " ");
    value = text::ReplaceAll(value, "\r\n", " ");
    value = text::ReplaceAll(value, "\r", " ");
    value = text::ReplaceAll(value, "\n", " ");
    for (const std::string_view code : text::Split(sStripCharacters, ",")) {
      if (text::Trim(code).empty()) continue;
      // Codes name characters (code points), so the UTF-8 form of each is removed.
      const std::u16string unit(1, static_cast<char16_t>(CInt(Val(code))));
      value = text::ReplaceAll(value, text::Utf16ToUtf8(unit), "");
    }
    return value;
  });
}

}  // namespace xun::basTemplate
