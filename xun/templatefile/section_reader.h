// The line loop every section of a template file shares: where a section ends, how a key line
// splits into key and value, and how values read as numbers, flags and text.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "xun/support/text.h"

namespace xun::basTemplate::detail {

// Walks the lines of the decoded text in place: a line ends at CR LF, and also at a lone LF or
// CR; a line end at the very end opens no further line. No table of lines is built, so a read
// holds the text once and nothing per line.
class LineCursor {
 public:
  explicit LineCursor(std::string_view text) noexcept : text_(text) { FindLineEnd(); }
  bool AtEnd() const noexcept { return start_ >= text_.size(); }
  // The current line; empty at the end.
  std::string_view Current() const noexcept {
    return AtEnd() ? std::string_view() : text_.substr(start_, end_ - start_);
  }
  // 1-based, as an editor shows it.
  int32_t LineNumber() const noexcept { return line_; }
  void Next() noexcept {
    if (AtEnd()) return;
    start_ = end_;
    if (start_ < text_.size()) {
      const char ended_by = text_[start_++];
      if (ended_by == '\r' && start_ < text_.size() && text_[start_] == '\n') ++start_;
    }
    ++line_;
    FindLineEnd();
  }

 private:
  // memchr finds the LF of a CR LF file with vector instructions; only the part before it is
  // then searched for a lone CR, which ends a line too.
  void FindLineEnd() noexcept {
    const size_t rest = text_.size() - start_;
    if (rest == 0) {  // memchr must not see the null data of empty text
      end_ = start_;
      return;
    }
    const char* begin = text_.data() + start_;
    const void* lf = std::memchr(begin, '\n', rest);
    const size_t before_lf = lf ? static_cast<size_t>(static_cast<const char*>(lf) - begin) : rest;
    const void* cr = std::memchr(begin, '\r', before_lf);
    end_ = start_ + (cr ? static_cast<size_t>(static_cast<const char*>(cr) - begin) : before_lf);
  }

  std::string_view text_;
  size_t start_ = 0, end_ = 0;
  int32_t line_ = 1;
};

// Longer than any key of the format, with room to spare: a longer key (a whole line of garbage)
// matches nothing and is never copied to find that out.
inline constexpr size_t kLongestKey = 256;

// Whether the key as written is `upper` (a key of the format, ASCII, in upper case), ignoring
// ASCII case. A key outside ASCII is never `upper` here; text::ToUpper, which also gives the few
// letters outside ASCII whose capital is ASCII, decides those.
inline bool IsKeyIgnoringCase(std::string_view key, std::string_view upper) noexcept {
  if (key.size() != upper.size()) return false;
  for (size_t i = 0; i < key.size(); ++i) {
    const char c = key[i];
    if ((c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c) != upper[i]) return false;
  }
  return true;
}

// Reads the key lines after the header the cursor stands on, up to the next line that begins
// with "[", an empty line or the end of the file, and leaves the cursor on that line. Lines
// without "=" are skipped. `on_key(key, value)` gets the trimmed key as written and the raw value
// of each key line, both views of the text; false stops the section. Returns false when the
// handler stopped the section.
template <class OnKey>
bool ReadSectionKeys(LineCursor& cursor, OnKey&& on_key) {
  cursor.Next();
  while (!cursor.AtEnd()) {
    const std::string_view line = text::TrimLeft(cursor.Current());
    if (line.empty() || line.front() == '[') break;
    const size_t equals = line.find('=');
    if (equals != std::string_view::npos &&
        !on_key(text::Trim(line.substr(0, equals)), line.substr(equals + 1)))
      return false;
    cursor.Next();
  }
  return true;
}

// The line as a section header: trimmed and upper-cased ("[FORM]"); empty when it is no header.
std::string HeaderOf(std::string_view line);

// Value conversions of the file format: the lenient leading number, a flag that is true for
// any number but 0, 16- and 32-bit whole numbers (error 6 out of range). Text is cleaned by
// FileText (clean_text.h), as the writer cleans it.
double NumberValue(std::string_view value);
// A single-precision number; error 6 beyond its range, as a value the writer could not write
// back (an infinity) must not be read.
float SingleValue(std::string_view value);
bool FlagValue(std::string_view value);
int16_t Int16Value(std::string_view value);
int32_t Int32Value(std::string_view value);

}  // namespace xun::basTemplate::detail
