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

// A key upper-cased for matching: ASCII keys (all of the format's own) here, without a call
// per key, anything else through text::ToUpper.
void UpperKeyNonAscii(std::string_view key, std::string& out);
inline void UpperKey(std::string_view key, std::string& out) {
  key = text::Trim(key);
  // Two plain loops, not one with an early exit, so the compiler can vectorise both.
  unsigned char high = 0;
  for (const char c : key)
    high |= static_cast<unsigned char>(c);
  if (high >= 0x80) return UpperKeyNonAscii(key, out);
  out.assign(key);
  for (char& c : out)
    c = static_cast<char>(c - ((c >= 'a' && c <= 'z') ? 'a' - 'A' : 0));
}

// Reads the key lines after the header the cursor stands on, up to the next line that begins
// with "[", an empty line or the end of the file, and leaves the cursor on that line. Lines
// without "=" are skipped. `on_key(key, value)` gets the upper-case key (a reused buffer) and the
// raw value of each key line (a view of the text), both valid during the call; false stops the
// section. Returns false when the handler stopped the section.
template <class OnKey>
bool ReadSectionKeys(LineCursor& cursor, OnKey&& on_key) {
  std::string key;
  cursor.Next();
  while (!cursor.AtEnd()) {
    const std::string_view line = text::TrimLeft(cursor.Current());
    if (line.empty() || line.front() == '[') break;
    const size_t equals = line.find('=');
    if (equals != std::string_view::npos) {
      UpperKey(line.substr(0, equals), key);
      if (!on_key(static_cast<const std::string&>(key), line.substr(equals + 1))) return false;
    }
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
