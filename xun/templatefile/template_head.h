// What the first bytes of a file tell before it is read: the encoding of its text, and whether it
// is plainly no template at all, so such a file is refused without decoding the rest of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "xun/templatefile/text_decoding.h"

namespace xun::basTemplate::detail {

// How much of a file is looked at: a template opens its first section within a few lines, so a
// file that shows none in this much text is not one.
inline constexpr size_t kTemplateHeadSize = size_t{64} << 10;

struct TemplateHead {
  TextEncoding encoding = TextEncoding::Windows1252;
  // The file is larger than the head, and no line of the head opens a section the reader knows.
  bool plainly_not_a_template = false;
};

// Looks at the start of a file of `file_size` bytes; `start` holds at least its first
// kTemplateHeadSize bytes (all of it when it is smaller), more is ignored.
// The encoding: a byte-order mark decides; without one, Windows-1252 unless only UTF-16
// (little-endian, then big-endian) shows a section header, which is how a UTF-16 file without a
// mark is told (its ASCII characters carry zero bytes, so it never shows one as Windows-1252).
TemplateHead LookAtHead(std::string_view start, uint64_t file_size);

}  // namespace xun::basTemplate::detail
