#include "xun/templatefile/section_reader.h"

#include "xun/support/numeric.h"
#include "xun/support/text.h"
#include "xun/templatefile/bas_template.h"

namespace xun::basTemplate::detail {

const std::string& LineCursor::Current() const {
  static const std::string kNone;
  return AtEnd() ? kNone : (*lines_)[pos_];
}

bool ReadSectionKeys(LineCursor& cursor, const KeyHandler& on_key) {
  cursor.Next();
  while (!cursor.AtEnd()) {
    const std::string_view line = text::TrimLeft(cursor.Current());
    if (line.empty() || line.front() == '[') break;
    const size_t equals = line.find('=');
    if (equals != std::string_view::npos) {
      const std::string key = text::ToUpper(text::Trim(line.substr(0, equals)));
      if (!on_key(key, std::string(line.substr(equals + 1)))) return false;
    }
    cursor.Next();
  }
  return true;
}

std::string HeaderOf(const std::string& line) {
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
  return CleanTemplateValues(value, true, strip_characters);
}

}  // namespace xun::basTemplate::detail
