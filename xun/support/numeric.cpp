#include "xun/support/numeric.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <system_error>

namespace xun {
namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// Scans a number at the start of `text` (no blanks). Returns the length scanned and whether any
// digit was seen.
size_t ScanNumber(std::string_view text, bool& has_digits) {
  size_t i = 0;
  has_digits = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
  while (i < text.size() && IsDigit(text[i]))
    ++i, has_digits = true;
  if (i < text.size() && text[i] == '.') {
    ++i;
    while (i < text.size() && IsDigit(text[i]))
      ++i, has_digits = true;
  }
  if (!has_digits) return 0;
  // An exponent counts only when digits follow it; "D" is the classic double exponent letter.
  if (i < text.size() && (text[i] == 'e' || text[i] == 'E' || text[i] == 'd' || text[i] == 'D')) {
    size_t j = i + 1;
    if (j < text.size() && (text[j] == '+' || text[j] == '-')) ++j;
    if (j < text.size() && IsDigit(text[j])) {
      while (j < text.size() && IsDigit(text[j]))
        ++j;
      i = j;
    }
  }
  return i;
}

double ParseScanned(std::string_view number) {
  // Most numbers in a template are short whole numbers ("0", "-1", "300"): below 2^53 they are
  // exact as doubles, so they need no general conversion.
  if (number.size() <= 16) {
    const bool negative = number.front() == '-';
    size_t i = (negative || number.front() == '+') ? 1 : 0;
    int64_t whole = 0;
    for (; i < number.size() && IsDigit(number[i]); ++i)
      whole = whole * 10 + (number[i] - '0');
    if (i == number.size()) {
      const auto value = static_cast<double>(whole);
      return negative ? -value : value;  // "-0" is negative zero, as the general path reads it
    }
  }
  std::string buffer(number);
  for (char& c : buffer)
    if (c == 'd' || c == 'D') c = 'e';
  const char* first = buffer.data();
  if (*first == '+') ++first;
  double value = 0;
  auto [end, ec] = std::from_chars(first, buffer.data() + buffer.size(), value);
  (void)end;
  if (ec == std::errc::result_out_of_range) {
    // Too small underflows to zero harmlessly; too large is the classic error 6.
    const auto e_pos = buffer.find_first_of("eE");
    if (e_pos != std::string::npos && e_pos + 1 < buffer.size() && buffer[e_pos + 1] == '-')
      return 0.0;
    Raise(kErrOverflow);
  }
  return value;
}

}  // namespace

double Val(std::string_view text) {
  size_t start = 0;
  while (start < text.size() && IsBlank(text[start]))
    ++start;
  bool has_digits = false;
  const size_t length = ScanNumber(text.substr(start), has_digits);
  if (!has_digits) return 0.0;
  return ParseScanned(text.substr(start, length));
}

bool IsNumericText(std::string_view text) {
  size_t start = 0;
  while (start < text.size() && IsBlank(text[start]))
    ++start;
  size_t stop = text.size();
  while (stop > start && IsBlank(text[stop - 1]))
    --stop;
  bool has_digits = false;
  const std::string_view core = text.substr(start, stop - start);
  return ScanNumber(core, has_digits) == core.size() && has_digits;
}

double RoundHalfEven(double value) noexcept {
  return std::nearbyint(value);
}

int16_t CInt(double value) {
  const double rounded = RoundHalfEven(value);
  if (std::isnan(rounded) || rounded < -32768.0 || rounded > 32767.0) Raise(kErrOverflow);
  return static_cast<int16_t>(rounded);
}

int32_t CLng(double value) {
  const double rounded = RoundHalfEven(value);
  if (std::isnan(rounded) || rounded < -2147483648.0 || rounded > 2147483647.0) Raise(kErrOverflow);
  return static_cast<int32_t>(rounded);
}

std::string FormatNumber(double value, int significant_digits) {
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value < 0 ? "-Infinity" : "Infinity";
  if (value == 0.0) return "0";
  char buffer[64];
  auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general,
                                 significant_digits);
  if (ec != std::errc()) return "0";
  std::string text(buffer, end);
  // to_chars writes "1e+15" / "1e-05"; the classic form has a capital E.
  for (char& c : text)
    if (c == 'e') c = 'E';
  return text;
}

}  // namespace xun
