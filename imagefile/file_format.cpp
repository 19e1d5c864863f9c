#include "imagefile/file_format.h"

namespace xun::imagefile {

const char* SniffFormat(std::string_view bytes) {
  const auto starts = [&](std::string_view magic) {
    return bytes.substr(0, magic.size()) == magic;
  };
  if (starts({"II*\0", 4}) || starts({"MM\0*", 4})) return "TIFF";
  if (starts("\x89PNG\r\n\x1a\n")) return "PNG";
  if (starts("\xFF\xD8\xFF")) return "JPEG";
  if (starts("\xB1\x68\xDE\x3A")) return "DCX";
  // PCX has no magic number: the manufacturer byte, a known version, no or RLE encoding, and a
  // whole header.
  if (bytes.size() >= 128 && bytes[0] == '\x0A' && bytes[1] >= 0 && bytes[1] <= 5 &&
      (bytes[2] == 0 || bytes[2] == 1))
    return "PCX";
  return nullptr;
}

}  // namespace xun::imagefile
