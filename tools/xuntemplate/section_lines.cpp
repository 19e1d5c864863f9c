#include "section_lines.h"

#include <fstream>
#include <iterator>

#include "tool.h"

namespace xuntool {
namespace {

// Headers are plain ASCII, so UTF-16 text only needs its code units, and a character outside
// ASCII can stand as a placeholder.
std::u32string CodeUnits(const std::string& bytes, bool utf16) {
  std::u32string units;
  if (!utf16) {
    for (unsigned char c : bytes)
      units += static_cast<char32_t>(c);
    return units;
  }
  for (std::size_t i = 2; i + 1 < bytes.size(); i += 2)
    units += static_cast<char32_t>(static_cast<unsigned char>(bytes[i]) |
                                   (static_cast<unsigned char>(bytes[i + 1]) << 8));
  return units;
}

std::string HeaderOf(const std::u32string& line) {
  std::size_t begin = 0, end = line.size();
  auto blank = [](char32_t c) { return c == U' ' || c == U'\t'; };
  while (begin < end && blank(line[begin]))
    ++begin;
  while (end > begin && blank(line[end - 1]))
    --end;
  std::string out;
  for (std::size_t i = begin; i < end; ++i) {
    const char32_t c = line[i];
    out += c < 128 ? static_cast<char>(c >= U'a' && c <= U'z' ? c - 32 : c) : '?';
  }
  return out;
}

}  // namespace

SectionLines FindSectionLines(const std::string& path) {
  SectionLines out;
  const FileKind kind = KindOfFile(path);
  if (kind == FileKind::Archive) return out;
  std::ifstream in(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  const std::u32string units = CodeUnits(bytes, kind == FileKind::Utf16);
  // Lines end at CR LF, LF or CR, as the reader counts them.
  int32_t number = 0;
  std::size_t start = 0;
  while (start < units.size()) {
    std::size_t end = start;
    while (end < units.size() && units[end] != U'\r' && units[end] != U'\n')
      ++end;
    ++number;
    const std::string header = HeaderOf(units.substr(start, end - start));
    if (header == "[PAGE]") out.pages.push_back(number);
    if (header == "[FIELD]") out.regions.push_back(number);
    if (header == "[QUESTION]") out.questions.push_back(number);
    if (header == "[LINK]" || header == "[JOIN]") out.links.push_back(number);
    if (end < units.size() && units[end] == U'\r' && end + 1 < units.size() &&
        units[end + 1] == U'\n')
      ++end;
    start = end + 1;
  }
  return out;
}

}  // namespace xuntool
