#include "xun/templatefile/template_head.h"

#include "xun/templatefile/section_headers.h"
#include "xun/templatefile/section_reader.h"

namespace xun::basTemplate::detail {
namespace {

// True when a whole line of the head, decoded as `encoding`, opens a known section. The head of
// a larger file ends inside a line, whose start could pass for a header ("[Form]" of
// "[Form]er"), so that line is left out.
bool ShowsSection(std::string_view head, TextEncoding encoding, bool whole_file) {
  const DecodedText decoded = DecodeText(head, encoding);
  std::string_view text = decoded.text();
  if (!whole_file) {
    const size_t last_break = text.find_last_of("\r\n");
    text = last_break == std::string_view::npos ? std::string_view() : text.substr(0, last_break);
  }
  for (LineCursor cursor(text); !cursor.AtEnd(); cursor.Next())
    if (SectionOpenedBy(cursor.Current())) return true;
  return false;
}

}  // namespace

TemplateHead LookAtHead(std::string_view start, uint64_t file_size) {
  const std::string_view head = start.substr(0, kTemplateHeadSize);
  const bool whole_file = file_size <= head.size();
  TemplateHead result;
  result.encoding = EncodingByMark(head);
  bool shows = ShowsSection(head, result.encoding, whole_file);
  // Without a mark only a file with zero bytes can be UTF-16 (each ASCII character carries one).
  // Windows-1252 was tried first, so a zero byte in a value of an ANSI file changes nothing.
  if (!shows && result.encoding == TextEncoding::Windows1252 &&
      head.find('\0') != std::string_view::npos) {
    for (const TextEncoding utf16 : {TextEncoding::Utf16LE, TextEncoding::Utf16BE}) {
      if (ShowsSection(head, utf16, whole_file)) {
        result.encoding = utf16;
        shows = true;
        break;
      }
    }
  }
  result.plainly_not_a_template = !shows && !whole_file;
  return result;
}

}  // namespace xun::basTemplate::detail
