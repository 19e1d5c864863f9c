// Page images are kept as PCX files, which browsers cannot show; render turns them into BMP,
// which they can, without an image library.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace xuntool {

struct BitmapImage {
  int32_t width = 0, height = 0;
  int32_t xdpi = 0, ydpi = 0;  // from the PCX header; 0 when unset
  std::string bmp;             // a complete .bmp file
};

// Monochrome, 256-colour and 24-bit PCX files. nullopt, with the reason in *why, for anything
// else or a damaged file; a file cut short is drawn white where its data ends.
std::optional<BitmapImage> PcxToBmp(const std::string& path, std::string* why);

std::string Base64(const std::string& bytes);

}  // namespace xuntool
