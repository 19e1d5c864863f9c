// Template file bytes to UTF-8 text: the only place the reader knows about encodings.
#pragma once

#include <string>
#include <string_view>

namespace xun::basTemplate::detail {

struct DecodedText {
  std::string text;                // UTF-8; the line cursor walks it in place
  bool odd_trailing_byte = false;  // UTF-16 text with half a code unit at its end
};

// True when the bytes start with the UTF-16LE byte-order mark, the sign of a "Unicode" file.
bool IsUtf16LEText(std::string_view bytes) noexcept;

// Decodes a whole file: UTF-16LE after its byte-order mark (lone surrogates become U+FFFD),
// otherwise Windows-1252. Takes the bytes so plain ASCII, which needs no conversion, keeps their
// buffer: a read then holds the file once, not twice.
DecodedText DecodeTemplateText(std::string bytes);

}  // namespace xun::basTemplate::detail
