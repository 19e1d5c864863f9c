// Text in the library is UTF-8. These helpers convert at the edges (Windows-1252, UTF-16LE) and
// compare text without regard to letter case, Unicode-aware.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "xun/export.h"

namespace xun::text {

// UTF-8 <-> UTF-16. Malformed input (bad UTF-8 sequences, lone surrogates) becomes U+FFFD;
// nothing throws on odd input.
XUN_API std::u16string Utf8ToUtf16(std::string_view utf8);
XUN_API std::string Utf16ToUtf8(std::u16string_view utf16);

// UTF-16 bytes (little- or big-endian, no byte-order mark) -> UTF-8 in one pass, lone surrogates
// becoming U+FFFD. An odd trailing byte cannot be decoded: it is left out and
// `odd_trailing_byte` (when given) is set, so the caller can report it.
XUN_API std::string Utf16BytesToUtf8(std::string_view bytes, bool big_endian,
                                     bool* odd_trailing_byte = nullptr);
// The same for UTF-16LE.
XUN_API std::string Utf16LEBytesToUtf8(std::string_view bytes, bool* odd_trailing_byte = nullptr);
// UTF-8 -> UTF-16LE bytes (no byte-order mark).
XUN_API std::string Utf8ToUtf16LEBytes(std::string_view utf8);

// Windows-1252 bytes -> UTF-8 in one pass. The five bytes without a character (0x81, 0x8D, 0x8F,
// 0x90, 0x9D) map to the C1 controls of the same value, so every byte round-trips.
XUN_API std::string Windows1252ToUtf8(std::string_view bytes);
// UTF-8 -> Windows-1252. A character the code page cannot hold becomes "?" and clears
// `lossless` (when given).
XUN_API std::string Utf8ToWindows1252(std::string_view utf8, bool* lossless = nullptr);
// True when every character of the text can be held in Windows-1252.
XUN_API bool FitsWindows1252(std::string_view utf8);

// Length in UTF-16 code units: the "number of characters" of the classic string functions.
XUN_API size_t Utf16Length(std::string_view utf8);

// Case folding (full Unicode folding, locale-independent): two texts that differ only in letter
// case fold to the same text.
XUN_API std::string FoldCase(std::string_view utf8);
// Upper-casing (root locale) for matching section headers and keys.
XUN_API std::string ToUpper(std::string_view utf8);
// Compares as text, ignoring letter case: <0, 0, >0.
XUN_API int CompareText(std::string_view a, std::string_view b);
inline bool EqualsText(std::string_view a, std::string_view b) {
  return CompareText(a, b) == 0;
}

// Removes leading and trailing spaces (space characters only, as the classic Trim does).
// Inline: the template reader trims every line and value.
inline std::string_view TrimLeft(std::string_view text) noexcept {
  size_t start = 0;
  while (start < text.size() && text[start] == ' ')
    ++start;
  return text.substr(start);
}
inline std::string_view Trim(std::string_view text) noexcept {
  text = TrimLeft(text);
  size_t stop = text.size();
  while (stop > 0 && text[stop - 1] == ' ')
    --stop;
  return text.substr(0, stop);
}

// The pieces between occurrences of `delimiter` (exact match), empty pieces included, as the
// classic Split: "a,,b," gives four pieces; empty text gives none; an empty delimiter gives the
// whole text as one piece. The pieces view into `text`.
XUN_API std::vector<std::string_view> Split(std::string_view text, std::string_view delimiter);

// Replaces every occurrence of `from` (not empty) by `to`.
XUN_API std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to);

// Text for XML content and attributes (the SVG pictures): markup characters as entities, control
// characters XML cannot hold dropped.
XUN_API std::string XmlText(std::string_view text);

}  // namespace xun::text
