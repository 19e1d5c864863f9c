// The lenient conversion of any value to a Boolean.
#include <string>
#include <string_view>

#include "xun/support/numeric.h"
#include "xun/support/runtime_error.h"
#include "xun/support/text.h"
#include "xun/support/trap.h"
#include "xun/support/value_helpers.h"

namespace xun::basPublic {
namespace {

// Reads a number out of text; a number too large for a double is certainly not zero.
bool NonZeroNumber(std::string_view text) {
  try {
    return Val(text) != 0.0;
  } catch (const RuntimeError& e) {
    if (e.Number() == kErrOverflow) return true;
    throw;
  }
}

bool TextToBoolean(std::string_view value) {
  const std::string_view trimmed = text::Trim(value);
  if (trimmed.empty()) return false;
  if (IsNumericText(trimmed)) return NonZeroNumber(trimmed);
  if (text::EqualsText(trimmed, "True")) return true;
  if (text::EqualsText(trimmed, "False")) return false;
  return NonZeroNumber(trimmed);
}

}  // namespace

bool CBoolean(const Variant& vValue) {
  return Trap("basPublic.CBoolean", false, [&] {
    if (const auto* text = vValue.Get<std::string>()) return TextToBoolean(*text);
    if (vValue.IsNumber()) return vValue.ToBoolean();
    // Empty, Null, objects, error values (Missing too) and arrays.
    return false;
  });
}

}  // namespace xun::basPublic
