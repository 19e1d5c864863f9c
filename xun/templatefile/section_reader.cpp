#include "xun/templatefile/section_reader.h"

#include <cmath>
#include <limits>

#include "xun/support/numeric.h"
#include "xun/support/runtime_error.h"
#include "xun/support/text.h"
#include "xun/templatefile/bas_template.h"

namespace xun::basTemplate::detail {

std::string HeaderOf(std::string_view line) {
  const std::string_view trimmed = text::Trim(line);
  if (trimmed.empty() || trimmed.front() != '[') return {};
  return text::ToUpper(trimmed);
}

double NumberValue(std::string_view value) {
  return Val(text::Trim(value));
}

float SingleValue(std::string_view value) {
  const double number = NumberValue(value);
  if (std::fabs(number) > std::numeric_limits<float>::max()) Raise(kErrOverflow);
  return static_cast<float>(number);
}

bool FlagValue(std::string_view value) {
  return NumberValue(value) != 0;
}

int16_t Int16Value(std::string_view value) {
  return CInt(NumberValue(value));
}

int32_t Int32Value(std::string_view value) {
  return CLng(NumberValue(value));
}

}  // namespace xun::basTemplate::detail
