// The sections of a template file, each written as UTF-8 text with CR LF line ends. Encoding to
// the file's code page happens once, when the whole text is complete.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "xun/model/fwd.h"

namespace xun::basTemplate::detail {

// Collects "[Section]" and "Key=Value" lines.
class TemplateText {
 public:
  void Section(std::string_view header);
  // The value exactly as given; callers clean text first.
  void Raw(std::string_view key, std::string_view value);
  void Bool(std::string_view key, bool value);
  void Int(std::string_view key, int32_t value);
  void Number(std::string_view key, double value);
  void Number(std::string_view key, float value);

  const std::string& str() const { return text_; }

 private:
  std::string text_;
};

// The name lists of the value cleaner.
inline constexpr const char* kIllegalNameCharacters = "46,33,39,91,93,44,34,40,41";
inline constexpr const char* kIllegalLabelCharacters = "44,34,40,41";
inline constexpr const char* kIllegalValueCharacters = "34,40,41";

// The keys of each section come from its table (section_keys.h).
void WriteFormSection(TemplateText& out, const clsXUNTemplate& form);
void WritePageSection(TemplateText& out, const clsXUNPage& page);
void WriteLinkSection(TemplateText& out, int32_t linked_fields);
void WriteFieldSection(TemplateText& out, const clsXUNField& field);
void WriteQuestionSection(TemplateText& out, const clsXUNQuestion& question,
                          const clsXUNField& field);

}  // namespace xun::basTemplate::detail
