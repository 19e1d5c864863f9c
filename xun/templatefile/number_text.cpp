#include "xun/templatefile/number_text.h"

#include <charconv>
#include <cmath>

#include "xun/support/runtime_error.h"

namespace xun::basTemplate::detail {
namespace {

template <class T>
std::string Shortest(T value) {
  if (!std::isfinite(value)) Raise(kErrOverflow);
  if (value == 0) return "0";  // also -0, which would otherwise keep its sign
  // Fixed notation of the largest double needs 309 digits; the smallest subnormal 2^-1074
  // needs 2 + 323 zeros + 1 digit. 400 holds both with a sign.
  char buffer[400];
  const auto [end, ec] =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed);
  if (ec != std::errc()) Raise(kErrOverflow);
  return std::string(buffer, end);
}

}  // namespace

std::string ShortestDecimal(double value) {
  return Shortest(value);
}

std::string ShortestDecimal(float value) {
  return Shortest(value);
}

}  // namespace xun::basTemplate::detail
