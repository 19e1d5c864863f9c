#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "xun/support/numeric.h"
#include "xun/support/runtime_error.h"
#include "xun/support/text.h"
#include "xun/support/trap.h"
#include "xun/templatefile/bas_template.h"
#include "xun/templatefile/clean_text.h"

namespace xun::basTemplate {
namespace {

constexpr char32_t kLastCodePoint = 0x10FFFF;

// The character a code of the list names: a code point, written in decimal (a fraction rounds
// half to even). A code that names no character (negative, a surrogate half, beyond the last
// code point, too large for a number) removes nothing; text never holds a surrogate half, since
// decoding makes a lone one U+FFFD.
std::optional<char32_t> CharacterOfCode(std::string_view code) {
  double value = 0;
  try {
    value = RoundHalfEven(Val(code));
  } catch (const RuntimeError&) {
    return std::nullopt;
  }
  if (!(value >= 0 && value <= kLastCodePoint)) return std::nullopt;
  const auto character = static_cast<char32_t>(value);
  if (character >= 0xD800 && character <= 0xDFFF) return std::nullopt;
  return character;
}

std::string Utf8Of(char32_t character) {
  std::u16string units;
  if (character >= 0x10000) {
    const char32_t offset = character - 0x10000;
    units = {static_cast<char16_t>(0xD800 + (offset >> 10)),
             static_cast<char16_t>(0xDC00 + (offset & 0x3FF))};
  } else {
    units = {static_cast<char16_t>(character)};
  }
  return text::Utf16ToUtf8(units);
}

}  // namespace

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
      if (const std::optional<char32_t> character = CharacterOfCode(code))
        value = text::ReplaceAll(value, Utf8Of(*character), "");
    }
    return value;
  });
}

}  // namespace xun::basTemplate

namespace xun::basTemplate::detail {

namespace {

// The bytes that make a value need the cleaner: line breaks, tabs when they are stripped, and
// the ASCII characters a code list ("46,33,39") names. Not usable when a code names a character
// outside ASCII, so such a list always takes the cleaner's own path.
struct StopBytes {
  bool usable = true;
  std::array<bool, 256> stop{};
};

StopBytes StopBytesOf(const std::string& codes, bool strip_tabs) {
  StopBytes bytes;
  bytes.stop['\r'] = bytes.stop['\n'] = true;
  bytes.stop['\t'] = strip_tabs;
  for (const std::string_view code : text::Split(codes, ",")) {
    if (text::Trim(code).empty()) continue;
    const std::optional<char32_t> character = CharacterOfCode(code);
    if (!character) continue;  // names nothing to remove
    if (*character >= 128) {
      bytes.usable = false;
      break;
    }
    bytes.stop[*character] = true;
  }
  return bytes;
}

// The few code lists of a read, each converted once.
const StopBytes& CachedStopBytes(const std::string& codes, bool strip_tabs) {
  struct Cached {
    std::string codes;
    bool strip_tabs;
    StopBytes bytes;
  };
  thread_local std::vector<Cached> cache;
  for (const Cached& cached : cache)
    if (cached.strip_tabs == strip_tabs && cached.codes == codes) return cached.bytes;
  if (cache.size() >= 16) cache.clear();
  cache.push_back({codes, strip_tabs, StopBytesOf(codes, strip_tabs)});
  return cache.back().bytes;
}

}  // namespace

std::string CleanText(std::string_view value, bool strip_tabs,
                      const std::string& strip_characters) {
  if (value.empty()) return {};
  bool clean = value.front() != ' ' && value.back() != ' ';
  if (clean) {
    const StopBytes& bytes = CachedStopBytes(strip_characters, strip_tabs);
    clean = bytes.usable;
    for (size_t i = 0; clean && i < value.size(); ++i)
      clean = !bytes.stop[static_cast<unsigned char>(value[i])];
  }
  if (clean) return std::string(value);
  return CleanTemplateValues(std::string(value), strip_tabs, strip_characters);
}

std::string FileText(std::string_view value, bool strip_tabs, const std::string& strip_characters) {
  std::string clean = CleanText(value, strip_tabs, strip_characters);
  const std::string_view trimmed = text::Trim(clean);
  if (trimmed.size() == clean.size()) return clean;
  return std::string(trimmed);
}

}  // namespace xun::basTemplate::detail
