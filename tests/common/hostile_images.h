// Image files that must be refused, written the same way for every path that decodes them (the
// engine's load and the image module's import and barcode read).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/test_support.h"

namespace xun::testing {

// A PNG signature, an IHDR chunk claiming the size and an empty IDAT: the header is sound, the
// pixels are missing.
std::string PngHeader(uint32_t width, uint32_t height);

// A 1-bit PCX header claiming width x height, with `data` bytes of pixels after it.
std::string PcxHeader(uint16_t width, uint16_t height, std::size_t data);

// A DCX file holding the given PCX files as its pages.
std::string Dcx(const std::vector<std::string>& pages);

// How a file must be refused.
enum class Refusal {
  kNotFound,
  kNotAnImage,
  kTooLarge,
  // The image library wants some pixel data before it tells a PNG's size; either answer means
  // nothing of that size was allocated.
  kTooLargeOrNotAnImage,
};

struct HostileFile {
  std::string name, path;
  Refusal refusal;
};

// Writes them into `folder`, the truncated ones cut from the good files given: a missing file,
// the folder itself, an empty file, text, truncated PNG and PCX, PNG and PCX headers of 60000 x
// 60000, a PCX within the sides but over the pixel limit, a PCX header claiming far more pixels
// than the file holds, a PNG of 0 x 0.
std::vector<HostileFile> WriteHostileFiles(const TempFolder& folder, const std::string& good_png,
                                           const std::string& good_pcx);

}  // namespace xun::testing
