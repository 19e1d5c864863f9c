#include "xun/templatefile/text_decoding.h"

#include "xun/support/text.h"

namespace xun::basTemplate::detail {

bool IsUtf16LEText(std::string_view bytes) noexcept {
  return bytes.size() >= 2 && static_cast<unsigned char>(bytes[0]) == 0xFF &&
         static_cast<unsigned char>(bytes[1]) == 0xFE;
}

namespace {

bool IsAscii(std::string_view bytes) noexcept {
  for (const char c : bytes)
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  return true;
}

// Where the line starting at `start` ends; a plain loop, since find_first_of calls memchr on
// the set for every byte.
size_t LineEnd(std::string_view text, size_t start) noexcept {
  for (size_t i = start; i < text.size(); ++i)
    if (text[i] == '\r' || text[i] == '\n') return i;
  return std::string_view::npos;
}

// Calls on_line with each line of text as SplitLines documents it.
template <class OnLine>
void ForEachLine(std::string_view text, OnLine&& on_line) {
  size_t start = 0;
  while (start < text.size()) {
    const size_t end = LineEnd(text, start);
    if (end == std::string_view::npos) {
      on_line(text.substr(start));
      break;
    }
    on_line(text.substr(start, end - start));
    start = end + 1;
    if (text[end] == '\r' && start < text.size() && text[start] == '\n') ++start;
  }
}

DecodedLines LinesOf(std::string text, bool odd_trailing_byte) {
  DecodedLines decoded;
  decoded.odd_trailing_byte = odd_trailing_byte;
  decoded.text = std::make_unique<const std::string>(std::move(text));
  // Counted first so the views are allocated once: growing by doubling would hold up to three
  // times the final size at its peak.
  size_t count = 0;
  ForEachLine(*decoded.text, [&](std::string_view) { ++count; });
  decoded.lines.reserve(count);
  ForEachLine(*decoded.text, [&](std::string_view line) { decoded.lines.push_back(line); });
  return decoded;
}

}  // namespace

DecodedLines DecodeTemplateText(std::string_view bytes) {
  if (IsUtf16LEText(bytes)) {
    bool odd = false;
    std::string text = text::Utf16LEBytesToUtf8(bytes.substr(2), &odd);
    return LinesOf(std::move(text), odd);
  }
  return LinesOf(text::Windows1252ToUtf8(bytes), false);
}

DecodedLines DecodeTemplateText(std::string&& bytes) {
  if (!IsUtf16LEText(bytes) && IsAscii(bytes)) return LinesOf(std::move(bytes), false);
  return DecodeTemplateText(std::string_view(bytes));
}

std::vector<std::string> SplitLines(std::string_view text) {
  std::vector<std::string> lines;
  ForEachLine(text, [&](std::string_view line) { lines.emplace_back(line); });
  return lines;
}

}  // namespace xun::basTemplate::detail
