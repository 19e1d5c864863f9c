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

}  // namespace

DecodedText DecodeTemplateText(std::string_view bytes) {
  DecodedText decoded;
  if (IsUtf16LEText(bytes)) {
    decoded.owned_ = text::Utf16LEBytesToUtf8(bytes.substr(2), &decoded.odd_trailing_byte_);
    decoded.converted_ = true;
  } else if (IsAscii(bytes)) {
    decoded.source_ = bytes;
  } else {
    decoded.owned_ = text::Windows1252ToUtf8(bytes);
    decoded.converted_ = true;
  }
  return decoded;
}

}  // namespace xun::basTemplate::detail
