#include "xun/templatefile/section_reader.h"

#include <bitset>
#include <optional>
#include <utility>

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

}  // namespace xun::basTemplate::detail
