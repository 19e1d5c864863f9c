#include <string>

#include "xun/model/field.h"
#include "xun/support/text.h"
#include "xun/support/trap.h"
#include "xun/templatefile/bas_template.h"

namespace xun::basTemplate {

// CR LF goes first in both directions, so a CR LF pair is one token rather than a CR token
// followed by an LF token.

void SetBarcodeDelimiter(clsXUNField& oField, const std::string& sDelimiter) {
  Trap("basTemplate.SetBarcodeDelimiter", [&] {
    std::string value = text::ReplaceAll(sDelimiter, "<--@CRLF-->", "\r\n");
    value = text::ReplaceAll(value, "<--@CR-->", "\r");
    value = text::ReplaceAll(value, "<--@LF-->", "\n");
    value = text::ReplaceAll(value, "<--@TAB-->", "\t");
    oField.BarcodeDelimiter(std::move(value));
  });
}

std::string GetBarcodeDelimiter(const clsXUNField& oField) {
  return Trap("basTemplate.GetBarcodeDelimiter", std::string(), [&] {
    std::string value = text::ReplaceAll(oField.BarcodeDelimiter(), "\r\n", "<--@CRLF-->");
    value = text::ReplaceAll(value, "\r", "<--@CR-->");
    value = text::ReplaceAll(value, "\n", "<--@LF-->");
    return text::ReplaceAll(value, "\t", "<--@TAB-->");
  });
}

}  // namespace xun::basTemplate
