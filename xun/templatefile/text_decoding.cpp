#include "xun/templatefile/text_decoding.h"

#include "xun/support/text.h"

namespace xun::basTemplate::detail {

bool IsUtf16LEText(std::string_view bytes) noexcept {
  return bytes.size() >= 2 && static_cast<unsigned char>(bytes[0]) == 0xFF &&
         static_cast<unsigned char>(bytes[1]) == 0xFE;
}

DecodedLines DecodeTemplateText(std::string_view bytes) {
  DecodedLines decoded;
  std::string text;
  if (IsUtf16LEText(bytes)) {
    text = text::Utf16LEBytesToUtf8(bytes.substr(2), &decoded.odd_trailing_byte);
  } else {
    text = text::Windows1252ToUtf8(bytes);
  }
  decoded.lines = SplitLines(text);
  return decoded;
}

std::vector<std::string> SplitLines(std::string_view text) {
  std::vector<std::string> lines;
  size_t start = 0;
  while (start < text.size()) {
    const size_t end = text.find_first_of("\r\n", start);
    if (end == std::string_view::npos) {
      lines.emplace_back(text.substr(start));
      break;
    }
    lines.emplace_back(text.substr(start, end - start));
    start = end + 1;
    if (text[end] == '\r' && start < text.size() && text[start] == '\n') ++start;
  }
  return lines;
}

}  // namespace xun::basTemplate::detail
