// Writing pages: a black-and-white page as a 1-bit PCX file, the form the library keeps page
// images in, a grey page as a PNG file, the form pages are printed in, and cuts of scanned pages
// in the formats a template asks its image clips in.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace xun::imagefile {

// The file's bytes for a width x height page (`pixels` row by row, 0 black, anything else white)
// carrying the resolution. Throws DecodeError (kOutOfMemory, or kNotAnImage with the image
// library's reason) when it cannot be written.
std::string EncodeBilevelPcx(int32_t width, int32_t height, const std::vector<uint8_t>& pixels,
                             double xdpi, double ydpi);

// The same for an 8-bit grey page (0 black) as a grey PNG; `pixels` holds width x height values.
std::string EncodeGreyPng(int32_t width, int32_t height, const uint8_t* pixels, double dpi);

// How a cut is written.
struct CutFormat {
  enum class Compression : uint8_t { kNone, kGroup3, kGroup4, kLzw, kJpeg, kDefault };
  const char* format = "TIFF";  // the image library's name: TIFF, JPEG, PCX, DCX, PDF
  Compression compression = Compression::kDefault;
  bool bilevel = false;  // 1-bit (the fax compressions need it); else 8-bit grey
};

// The file's bytes for an 8-bit grey cut (0 black; when bilevel, anything but 0 is white).
// Throws as EncodeBilevelPcx.
std::string EncodeCut(int32_t width, int32_t height, const uint8_t* pixels, double dpi,
                      const CutFormat& format);

}  // namespace xun::imagefile
