// The cleaning of text values that the reader and the writer apply to every value.
#pragma once

#include <string>
#include <string_view>

namespace xun::basTemplate::detail {

// CleanTemplateValues, without its copies for a value that has nothing to clean (nearly every
// value of a file this library wrote).
std::string CleanText(std::string_view value, bool strip_tabs, const std::string& strip_characters);

// A text value as the template file holds it, the one cleaning of the writer and the reader:
// CleanText and then trimmed once more, since the cleaner trims before it turns tabs and line
// breaks into blanks and removes characters. Cleaning it again changes nothing, so what Save
// writes, Read takes back unchanged.
std::string FileText(std::string_view value, bool strip_tabs, const std::string& strip_characters);

}  // namespace xun::basTemplate::detail
