// Template file bytes to UTF-8 lines: the only place the reader knows about encodings.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace xun::basTemplate::detail {

struct DecodedLines {
  // The whole decoded text, on the heap so the line views stay valid when this is moved. One
  // buffer and a view per line, rather than a string per line, halves the memory of a read.
  std::unique_ptr<const std::string> text;
  std::vector<std::string_view> lines;  // UTF-8, without line ends, pointing into text
  bool odd_trailing_byte = false;       // UTF-16 text with half a code unit at its end
};

// True when the bytes start with the UTF-16LE byte-order mark, the sign of a "Unicode" file.
bool IsUtf16LEText(std::string_view bytes) noexcept;

// Decodes a whole file: UTF-16LE after its byte-order mark (lone surrogates become U+FFFD),
// otherwise Windows-1252. Lines end at CR LF, and also at a lone LF or CR.
DecodedLines DecodeTemplateText(std::string_view bytes);
// The same, reusing the bytes' buffer when they need no conversion (plain ASCII).
DecodedLines DecodeTemplateText(std::string&& bytes);

// Splits UTF-8 text into lines as above; a line end at the very end opens no further line.
std::vector<std::string> SplitLines(std::string_view text);

}  // namespace xun::basTemplate::detail
