#include "xun/templatefile/text_decoding.h"

#include <cstdint>
#include <cstring>

#include "xun/support/text.h"

namespace xun::basTemplate::detail {
namespace {

bool StartsWith(std::string_view bytes, unsigned char first, unsigned char second) noexcept {
  return bytes.size() >= 2 && static_cast<unsigned char>(bytes[0]) == first &&
         static_cast<unsigned char>(bytes[1]) == second;
}

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

TextEncoding EncodingByMark(std::string_view bytes) noexcept {
  if (StartsWith(bytes, 0xFF, 0xFE)) return TextEncoding::Utf16LE;
  if (StartsWith(bytes, 0xFE, 0xFF)) return TextEncoding::Utf16BE;
  return TextEncoding::Windows1252;
}

size_t MarkLength(std::string_view bytes, TextEncoding encoding) noexcept {
  return encoding != TextEncoding::Windows1252 && EncodingByMark(bytes) == encoding ? 2 : 0;
}

DecodedText DecodeText(std::string_view bytes, TextEncoding encoding) {
  DecodedText decoded;
  bytes.remove_prefix(MarkLength(bytes, encoding));
  if (encoding != TextEncoding::Windows1252) {
    decoded.owned_ = text::Utf16BytesToUtf8(bytes, encoding == TextEncoding::Utf16BE,
                                            &decoded.odd_trailing_byte_);
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
