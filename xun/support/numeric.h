// Number conversions with the classic rules: the lenient leading-number parse, rounding halves to
// the even neighbour, and 16-bit arithmetic that reports overflow (error 6).
#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "xun/export.h"
#include "xun/support/runtime_error.h"

namespace xun {

// The leading number of a text as a double: leading blanks (space, tab, CR, LF) are skipped, then
// an optional sign, digits with an optional decimal point, and an optional exponent are taken; the
// parse stops at the first character that does not belong to the number. Text without a leading
// number gives 0 ("12abc" gives 12, "x" and "" give 0). A number too large for a double is
// error 6.
XUN_API double Val(std::string_view text);

// True when the whole text, blanks around it aside, is one number of the form Val reads.
XUN_API bool IsNumericText(std::string_view text);

// Rounds to the nearest whole number, exact halves to the even neighbour (2.5 -> 2, 3.5 -> 4).
XUN_API double RoundHalfEven(double value) noexcept;

// Converts to a 16-bit or 32-bit integer after rounding halves to even; NaN or a value outside
// the range is error 6.
XUN_API int16_t CInt(double value);
XUN_API int32_t CLng(double value);

// 16-bit arithmetic: a result outside -32768..32767 is error 6.
inline int16_t Add16(int32_t a, int32_t b) {
  const int32_t sum = a + b;
  if (sum < std::numeric_limits<int16_t>::min() || sum > std::numeric_limits<int16_t>::max())
    Raise(kErrOverflow);
  return static_cast<int16_t>(sum);
}
inline int16_t Sub16(int32_t a, int32_t b) {
  return Add16(a, -b);
}
inline int16_t Mul16(int32_t a, int32_t b) {
  const int64_t product = static_cast<int64_t>(a) * b;
  if (product < std::numeric_limits<int16_t>::min() ||
      product > std::numeric_limits<int16_t>::max())
    Raise(kErrOverflow);
  return static_cast<int16_t>(product);
}
// Narrows a count or other whole number to 16 bits; out of range is error 6.
inline int16_t To16(int64_t value) {
  if (value < std::numeric_limits<int16_t>::min() || value > std::numeric_limits<int16_t>::max())
    Raise(kErrOverflow);
  return static_cast<int16_t>(value);
}

// The classic text form of a number: up to `significant_digits` significant digits, trailing
// zeros removed, scientific form ("1E+15", "1E-05") outside the plain range.
XUN_API std::string FormatNumber(double value, int significant_digits = 15);

}  // namespace xun
