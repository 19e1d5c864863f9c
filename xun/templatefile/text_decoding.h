// Template file bytes to UTF-8 text: the only place the reader knows about encodings.
#pragma once

#include <string>
#include <string_view>

namespace xun::basTemplate::detail {

// The decoded text of a file. Plain ASCII needs no conversion and is used where it lies, so a
// read holds the file once; the caller keeps those bytes alive while the text is in use.
class DecodedText {
 public:
  std::string_view text() const noexcept { return converted_ ? std::string_view(owned_) : source_; }
  bool odd_trailing_byte() const noexcept { return odd_trailing_byte_; }

 private:
  friend DecodedText DecodeTemplateText(std::string_view bytes);
  std::string_view source_;
  std::string owned_;
  bool converted_ = false;
  bool odd_trailing_byte_ = false;  // UTF-16 text with half a code unit at its end
};

// True when the bytes start with the UTF-16LE byte-order mark, the sign of a "Unicode" file.
bool IsUtf16LEText(std::string_view bytes) noexcept;

// Decodes a whole file: UTF-16LE after its byte-order mark (lone surrogates become U+FFFD),
// otherwise Windows-1252.
DecodedText DecodeTemplateText(std::string_view bytes);

}  // namespace xun::basTemplate::detail
