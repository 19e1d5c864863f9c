// Writing pages: a black-and-white page as a 1-bit PCX file, the form the library keeps page
// images in, and a grey page as a PNG file, the form pages are printed in.
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

}  // namespace xun::imagefile
