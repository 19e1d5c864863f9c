#include "xun/templatefile/text_decoding.h"

#include <cstdint>
#include <cstring>

#include "xun/support/text.h"

namespace xun::basTemplate::detail {

bool IsUtf16LEText(std::string_view bytes) noexcept {
  return bytes.size() >= 2 && static_cast<unsigned char>(bytes[0]) == 0xFF &&
         static_cast<unsigned char>(bytes[1]) == 0xFE;
}

namespace {

// Eight bytes at a time: the check runs over every byte of every plain file.
bool IsAscii(std::string_view bytes) noexcept {
  constexpr uint64_t kHighBits = 0x8080808080808080ULL;
  size_t i = 0;
  for (; i + 8 <= bytes.size(); i += 8) {
    uint64_t word;
    std::memcpy(&word, bytes.data() + i, sizeof word);
    if (word & kHighBits) return false;
  }
  for (; i < bytes.size(); ++i)
    if (static_cast<unsigned char>(bytes[i]) >= 0x80) return false;
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
