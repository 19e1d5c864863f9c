// The line loop every section of a template file shares: where a section ends, how a key line
// splits into key and value, and how values read as numbers, flags and text.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace xun::basTemplate::detail {

// The decoded lines of a file and the line being looked at.
class LineCursor {
 public:
  explicit LineCursor(const std::vector<std::string_view>& lines) : lines_(&lines) {}
  bool AtEnd() const noexcept { return pos_ >= lines_->size(); }
  // The current line; empty at the end.
  std::string_view Current() const noexcept;
  // 1-based, as an editor shows it.
  int32_t LineNumber() const noexcept { return static_cast<int32_t>(pos_) + 1; }
  void Next() noexcept {
    if (!AtEnd()) ++pos_;
  }

 private:
  const std::vector<std::string_view>* lines_;
  size_t pos_ = 0;
};

// Called with the upper-case key and the raw value of each key line; false stops the section.
using KeyHandler = std::function<bool(const std::string& key, const std::string& value)>;

// Reads the key lines after the header the cursor stands on, up to the next line that begins
// with "[", an empty line or the end of the file, and leaves the cursor on that line. Lines
// without "=" are skipped. Returns false when the handler stopped the section.
bool ReadSectionKeys(LineCursor& cursor, const KeyHandler& on_key);

// The line as a section header: trimmed and upper-cased ("[FORM]"); empty when it is no header.
std::string HeaderOf(std::string_view line);

// Value conversions of the file format: the lenient leading number, a flag that is true for
// any number but 0, 16- and 32-bit whole numbers (error 6 out of range), and cleaned text.
double NumberValue(const std::string& value);
bool FlagValue(const std::string& value);
int16_t Int16Value(const std::string& value);
int32_t Int32Value(const std::string& value);
std::string TextValue(const std::string& value, const std::string& strip_characters = {});

// CleanTemplateValues, without its copies for a value that has nothing to clean (nearly every
// value of a file this library wrote).
std::string CleanText(std::string_view value, bool strip_tabs, const std::string& strip_characters);

}  // namespace xun::basTemplate::detail
