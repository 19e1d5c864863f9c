#include "xun/support/text.h"

#include <unicode/locid.h>
#include <unicode/ucnv.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <array>
#include <cstring>
#include <memory>

#include "xun/support/runtime_error.h"

namespace xun::text {
namespace {

bool IsAscii(std::string_view s) {
  for (unsigned char c : s)
    if (c >= 0x80) return false;
  return true;
}

struct ConverterCloser {
  void operator()(UConverter* c) const { ucnv_close(c); }
};
using ConverterPtr = std::unique_ptr<UConverter, ConverterCloser>;

// ICU's windows-1252 table maps the five unassigned bytes to C1 controls, the WHATWG mapping.
ConverterPtr OpenWindows1252() {
  UErrorCode status = U_ZERO_ERROR;
  ConverterPtr converter(ucnv_open("windows-1252", &status));
  if (U_FAILURE(status) || !converter) Raise(kErrInternal);
  return converter;
}

}  // namespace

std::u16string Utf8ToUtf16(std::string_view utf8) {
  std::u16string out;
  out.reserve(utf8.size());
  const auto* s = reinterpret_cast<const uint8_t*>(utf8.data());
  const int32_t length = static_cast<int32_t>(utf8.size());
  int32_t i = 0;
  while (i < length) {
    UChar32 c;
    U8_NEXT_OR_FFFD(s, i, length, c);
    if (c <= 0xFFFF) {
      out.push_back(static_cast<char16_t>(c));
    } else {
      out.push_back(static_cast<char16_t>(U16_LEAD(c)));
      out.push_back(static_cast<char16_t>(U16_TRAIL(c)));
    }
  }
  return out;
}

std::string Utf16ToUtf8(std::u16string_view utf16) {
  std::string out;
  out.reserve(utf16.size());
  const auto* s = reinterpret_cast<const UChar*>(utf16.data());
  const int32_t length = static_cast<int32_t>(utf16.size());
  int32_t i = 0;
  while (i < length) {
    UChar32 c;
    U16_NEXT_OR_FFFD(s, i, length, c);
    uint8_t buffer[4];
    int32_t n = 0;
    U8_APPEND_UNSAFE(buffer, n, c);  // c is a valid scalar value here
    out.append(reinterpret_cast<const char*>(buffer), static_cast<size_t>(n));
  }
  return out;
}

namespace {

// Walks the code points of UTF-16 bytes in one pass, as U16_NEXT_OR_FFFD would over code units:
// a lone surrogate becomes U+FFFD. An odd trailing byte is not looked at.
template <class OnCodePoint>
void ForEachUtf16CodePoint(std::string_view bytes, bool big_endian, OnCodePoint&& on_code_point) {
  const auto* b = reinterpret_cast<const unsigned char*>(bytes.data());
  const size_t units = bytes.size() / 2;
  const size_t high = big_endian ? 0 : 1;
  auto unit = [&](size_t i) -> UChar32 { return (b[2 * i + high] << 8) | b[2 * i + (1 - high)]; };
  for (size_t i = 0; i < units; ++i) {
    UChar32 c = unit(i);
    if (U16_IS_SURROGATE(c)) {
      if (U16_IS_SURROGATE_LEAD(c) && i + 1 < units && U16_IS_TRAIL(unit(i + 1))) {
        c = U16_GET_SUPPLEMENTARY(c, unit(i + 1));
        ++i;
      } else {
        c = 0xFFFD;
      }
    }
    on_code_point(c);
  }
}

}  // namespace

std::string Utf16BytesToUtf8(std::string_view bytes, bool big_endian, bool* odd_trailing_byte) {
  if (odd_trailing_byte) *odd_trailing_byte = (bytes.size() % 2) != 0;
  // Sized first, then filled: one buffer of the exact size, however large the text.
  size_t size = 0;
  ForEachUtf16CodePoint(bytes, big_endian,
                        [&](UChar32 c) { size += static_cast<size_t>(U8_LENGTH(c)); });
  std::string out(size, '\0');
  auto* p = reinterpret_cast<uint8_t*>(out.data());
  size_t n = 0;
  ForEachUtf16CodePoint(bytes, big_endian, [&](UChar32 c) { U8_APPEND_UNSAFE(p, n, c); });
  return out;
}

std::string Utf16LEBytesToUtf8(std::string_view bytes, bool* odd_trailing_byte) {
  return Utf16BytesToUtf8(bytes, false, odd_trailing_byte);
}

std::string Utf8ToUtf16LEBytes(std::string_view utf8) {
  const std::u16string units = Utf8ToUtf16(utf8);
  std::string bytes(units.size() * 2, '\0');
  for (size_t i = 0; i < units.size(); ++i) {
    bytes[2 * i] = static_cast<char>(units[i] & 0xFF);
    bytes[2 * i + 1] = static_cast<char>(units[i] >> 8);
  }
  return bytes;
}

namespace {

// The UTF-8 form of every Windows-1252 byte (one to three bytes), taken once from ICU's table so
// that a whole file is converted by lookup, with no UTF-16 copy of it in between.
struct Windows1252Utf8 {
  std::array<std::array<char, 3>, 256> bytes{};
  std::array<uint8_t, 256> length{};
};

Windows1252Utf8 BuildWindows1252Utf8() {
  Windows1252Utf8 table;
  ConverterPtr converter = OpenWindows1252();
  for (int byte = 0; byte < 256; ++byte) {
    const char in = static_cast<char>(byte);
    UChar unit = 0;
    UErrorCode status = U_ZERO_ERROR;
    // Every byte is one character of the Basic Multilingual Plane.
    const int32_t n = ucnv_toUChars(converter.get(), &unit, 1, &in, 1, &status);
    if (U_FAILURE(status) || n != 1 || U16_IS_SURROGATE(unit)) Raise(kErrInternal);
    auto* out = reinterpret_cast<uint8_t*>(table.bytes[byte].data());
    int32_t length = 0;
    U8_APPEND_UNSAFE(out, length, unit);
    table.length[byte] = static_cast<uint8_t>(length);
  }
  return table;
}

const Windows1252Utf8& Windows1252Table() {
  static const Windows1252Utf8 table = BuildWindows1252Utf8();
  return table;
}

}  // namespace

std::string Windows1252ToUtf8(std::string_view bytes) {
  if (IsAscii(bytes)) return std::string(bytes);
  const Windows1252Utf8& table = Windows1252Table();
  size_t size = 0;
  for (const unsigned char c : bytes)
    size += table.length[c];
  std::string out(size, '\0');
  char* p = out.data();
  for (const unsigned char c : bytes) {
    if (c < 0x80) {
      *p++ = static_cast<char>(c);
    } else {
      const uint8_t length = table.length[c];
      std::memcpy(p, table.bytes[c].data(), length);
      p += length;
    }
  }
  return out;
}

namespace {

// Substitutes "?" like the default callback, and records that something was lost.
void SubstituteAndRecord(const void* context, UConverterFromUnicodeArgs* args, const UChar* units,
                         int32_t length, UChar32 code_point, UConverterCallbackReason reason,
                         UErrorCode* status) {
  if (reason == UCNV_UNASSIGNED || reason == UCNV_ILLEGAL || reason == UCNV_IRREGULAR)
    *static_cast<bool*>(const_cast<void*>(context)) = false;
  UCNV_FROM_U_CALLBACK_SUBSTITUTE(nullptr, args, units, length, code_point, reason, status);
}

}  // namespace

std::string Utf8ToWindows1252(std::string_view utf8, bool* lossless) {
  if (lossless) *lossless = true;
  if (IsAscii(utf8)) return std::string(utf8);
  ConverterPtr converter = OpenWindows1252();
  UErrorCode status = U_ZERO_ERROR;
  ucnv_setSubstChars(converter.get(), "?", 1, &status);
  bool all_mapped = true;
  ucnv_setFromUCallBack(converter.get(), SubstituteAndRecord, &all_mapped, nullptr, nullptr,
                        &status);
  const std::u16string units = Utf8ToUtf16(utf8);
  // Windows-1252 is one byte per character, so one byte per code unit is always enough.
  std::string out(units.size() + 1, '\0');
  const int32_t n = ucnv_fromUChars(converter.get(), out.data(), static_cast<int32_t>(out.size()),
                                    reinterpret_cast<const UChar*>(units.data()),
                                    static_cast<int32_t>(units.size()), &status);
  if (U_FAILURE(status)) Raise(kErrInternal);
  out.resize(static_cast<size_t>(n));
  if (lossless) *lossless = all_mapped;
  return out;
}

bool FitsWindows1252(std::string_view utf8) {
  bool lossless = true;
  Utf8ToWindows1252(utf8, &lossless);
  return lossless;
}

size_t Utf16Length(std::string_view utf8) {
  if (IsAscii(utf8)) return utf8.size();
  return Utf8ToUtf16(utf8).size();
}

std::string FoldCase(std::string_view utf8) {
  if (IsAscii(utf8)) {
    std::string out(utf8);
    for (char& c : out)
      if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return out;
  }
  icu::UnicodeString s = icu::UnicodeString::fromUTF8(
      icu::StringPiece(utf8.data(), static_cast<int32_t>(utf8.size())));
  s.foldCase();
  std::string out;
  s.toUTF8String(out);
  return out;
}

std::string ToUpper(std::string_view utf8) {
  if (IsAscii(utf8)) {
    std::string out(utf8);
    for (char& c : out)
      if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return out;
  }
  icu::UnicodeString s = icu::UnicodeString::fromUTF8(
      icu::StringPiece(utf8.data(), static_cast<int32_t>(utf8.size())));
  s.toUpper(icu::Locale::getRoot());
  std::string out;
  s.toUTF8String(out);
  return out;
}

int CompareText(std::string_view a, std::string_view b) {
  const std::string fa = FoldCase(a);
  const std::string fb = FoldCase(b);
  // UTF-8 byte order is code point order.
  return fa.compare(fb) < 0 ? -1 : (fa == fb ? 0 : 1);
}

std::vector<std::string_view> Split(std::string_view text, std::string_view delimiter) {
  std::vector<std::string_view> pieces;
  if (text.empty()) return pieces;
  if (delimiter.empty()) {
    pieces.push_back(text);
    return pieces;
  }
  size_t start = 0;
  for (size_t hit = text.find(delimiter); hit != std::string_view::npos;
       hit = text.find(delimiter, start)) {
    pieces.push_back(text.substr(start, hit - start));
    start = hit + delimiter.size();
  }
  pieces.push_back(text.substr(start));
  return pieces;
}

std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to) {
  if (from.empty()) return std::string(text);
  std::string out;
  out.reserve(text.size());
  size_t pos = 0;
  while (true) {
    const size_t hit = text.find(from, pos);
    if (hit == std::string_view::npos) break;
    out.append(text.substr(pos, hit - pos));
    out.append(to);
    pos = hit + from.size();
  }
  out.append(text.substr(pos));
  return out;
}

std::string XmlText(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        if (static_cast<unsigned char>(c) >= 0x20 || c == '\t') out += c;
    }
  }
  return out;
}

}  // namespace xun::text
