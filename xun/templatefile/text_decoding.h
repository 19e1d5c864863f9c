// Template file bytes to UTF-8 text: the only place the reader knows about encodings.
#pragma once

#include <string>
#include <string_view>

namespace xun::basTemplate::detail {

enum class TextEncoding { Windows1252, Utf16LE, Utf16BE };

// The decoded text of a file. Plain ASCII needs no conversion and is used where it lies, so a
// read holds the file once; the caller keeps those bytes alive while the text is in use.
class DecodedText {
 public:
  std::string_view text() const noexcept { return converted_ ? std::string_view(owned_) : source_; }
  bool odd_trailing_byte() const noexcept { return odd_trailing_byte_; }

 private:
  friend DecodedText DecodeText(std::string_view bytes, TextEncoding encoding);
  std::string_view source_;
  std::string owned_;
  bool converted_ = false;
  bool odd_trailing_byte_ = false;  // UTF-16 text with half a code unit at its end
};

// The encoding a byte-order mark announces (FF FE UTF-16LE, FE FF UTF-16BE); Windows-1252 for
// bytes without one.
TextEncoding EncodingByMark(std::string_view bytes) noexcept;

// The length of the byte-order mark of `encoding` the bytes start with; 0 when they have none.
size_t MarkLength(std::string_view bytes, TextEncoding encoding) noexcept;

// Decodes the bytes in `encoding`, after its byte-order mark when they start with one, straight
// to UTF-8: one buffer the size of the text, no copy in between.
DecodedText DecodeText(std::string_view bytes, TextEncoding encoding);

}  // namespace xun::basTemplate::detail
