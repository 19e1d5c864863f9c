// Text to hexadecimal and back, over the text's UTF-16LE bytes.
#include <string>

#include "xun/support/runtime_error.h"
#include "xun/support/text.h"
#include "xun/support/trap.h"
#include "xun/support/value_helpers.h"

namespace xun::basPublic {
namespace {

constexpr char kUpperDigits[] = "0123456789ABCDEF";

// The value of one hexadecimal digit, or -1.
int DigitValue(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  return -1;
}

}  // namespace

std::string UnicodeToHex(const std::string& sText) {
  return Trap("basPublic.UnicodeToHex", std::string{}, [&] {
    const std::string bytes = text::Utf8ToUtf16LEBytes(sText);
    std::string hex;
    hex.reserve(bytes.size() * 2);
    for (const char byte : bytes) {
      const auto b = static_cast<unsigned char>(byte);
      hex += kUpperDigits[b >> 4];
      hex += kUpperDigits[b & 0x0F];
    }
    return hex;
  });
}

std::string HexToUnicode(const std::string& sHex) {
  return Trap("basPublic.HexToUnicode", std::string{}, [&] {
    // Counted in characters, so a lone non-ASCII character is "too short" rather than bad hex.
    const std::u16string hex = text::Utf8ToUtf16(sHex);
    if (hex.size() < 2) return std::string{};

    // One byte per pair of digits; an odd count ends with a one-digit pair, so 5 digits give
    // 3 bytes and 7 give 4.
    std::string bytes;
    bytes.reserve((hex.size() + 1) / 2);
    for (size_t i = 0; i < hex.size(); i += 2) {
      int value = 0;
      for (size_t j = i; j < i + 2 && j < hex.size(); ++j) {
        const int digit = DigitValue(hex[j]);
        if (digit < 0) Raise(kErrTypeMismatch);
        value = value * 16 + digit;
      }
      bytes += static_cast<char>(value);
    }

    // An odd byte count would leave half a code unit; it becomes a unit of its own (high byte
    // zero) instead of being dropped, so no digit the caller wrote is lost.
    std::u16string units;
    units.reserve((bytes.size() + 1) / 2);
    for (size_t i = 0; i < bytes.size(); i += 2) {
      const auto lo = static_cast<unsigned char>(bytes[i]);
      const auto hi = i + 1 < bytes.size() ? static_cast<unsigned char>(bytes[i + 1]) : 0u;
      units += static_cast<char16_t>(lo | (hi << 8));
    }
    return text::Utf16ToUtf8(units);
  });
}

}  // namespace xun::basPublic
