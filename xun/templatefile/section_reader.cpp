#include "xun/templatefile/section_reader.h"

#include "xun/support/numeric.h"
#include "xun/support/text.h"
#include "xun/templatefile/bas_template.h"

namespace xun::basTemplate::detail {

void UpperKey(std::string_view key, std::string& out) {
  key = text::Trim(key);
  out.assign(key);
  for (char& c : out) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x80) {
      out = text::ToUpper(key);
      return;
    }
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
}

std::string HeaderOf(std::string_view line) {
  const std::string_view trimmed = text::Trim(line);
  if (trimmed.empty() || trimmed.front() != '[') return {};
  return text::ToUpper(trimmed);
}

double NumberValue(const std::string& value) {
  return Val(text::Trim(value));
}

bool FlagValue(const std::string& value) {
  return NumberValue(value) != 0;
}

int16_t Int16Value(const std::string& value) {
  return CInt(NumberValue(value));
}

int32_t Int32Value(const std::string& value) {
  return CLng(NumberValue(value));
}

std::string TextValue(const std::string& value, const std::string& strip_characters) {
  return CleanText(value, true, strip_characters);
}

}  // namespace xun::basTemplate::detail
