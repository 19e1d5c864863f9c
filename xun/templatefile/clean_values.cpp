#include <bitset>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "xun/support/numeric.h"
#include "xun/support/text.h"
#include "xun/support/trap.h"
#include "xun/templatefile/bas_template.h"
#include "xun/templatefile/clean_text.h"

namespace xun::basTemplate {

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
      const std::u16string unit(1, static_cast<char16_t>(CInt(Val(code))));
      value = text::ReplaceAll(value, text::Utf16ToUtf8(unit), "");
    }
    return value;
  });
}

}  // namespace xun::basTemplate

namespace xun::basTemplate::detail {

namespace {

// The ASCII characters a code list ("46,33,39") names; none when a code is outside ASCII or does
// not convert, so such a list always takes the cleaner's own path (and its error reports).
std::optional<std::bitset<128>> AsciiSetOf(const std::string& codes) {
  std::bitset<128> set;
  try {
    for (const std::string_view code : text::Split(codes, ",")) {
      if (text::Trim(code).empty()) continue;
      const int16_t character = CInt(Val(code));
      if (character < 0 || character >= 128) return std::nullopt;
      set.set(static_cast<size_t>(character));
    }
  } catch (...) {
    return std::nullopt;
  }
  return set;
}

// The few code lists of a read, each converted once.
const std::optional<std::bitset<128>>& CachedAsciiSet(const std::string& codes) {
  thread_local std::vector<std::pair<std::string, std::optional<std::bitset<128>>>> cache;
  for (const auto& [list, set] : cache)
    if (list == codes) return set;
  if (cache.size() >= 16) cache.clear();
  cache.emplace_back(codes, AsciiSetOf(codes));
  return cache.back().second;
}

}  // namespace

std::string CleanText(std::string_view value, bool strip_tabs,
                      const std::string& strip_characters) {
  if (value.empty()) return {};
  bool clean = value.front() != ' ' && value.back() != ' ';
  if (clean) {
    const std::optional<std::bitset<128>>* set = nullptr;
    if (!strip_characters.empty()) {
      set = &CachedAsciiSet(strip_characters);
      clean = set->has_value();
    }
    for (size_t i = 0; clean && i < value.size(); ++i) {
      const auto c = static_cast<unsigned char>(value[i]);
      if (c == '\r' || c == '\n' || (strip_tabs && c == '\t') || (set && c < 128 && (**set)[c]))
        clean = false;
    }
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
