#include "xun/templatefile/text_decoding.h"

#include <utility>

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

}  // namespace

DecodedText DecodeTemplateText(std::string bytes) {
  DecodedText decoded;
  if (IsUtf16LEText(bytes)) {
    decoded.text =
        text::Utf16LEBytesToUtf8(std::string_view(bytes).substr(2), &decoded.odd_trailing_byte);
  } else if (IsAscii(bytes)) {
    decoded.text = std::move(bytes);
  } else {
    decoded.text = text::Windows1252ToUtf8(bytes);
  }
  return decoded;
}

}  // namespace xun::basTemplate::detail
