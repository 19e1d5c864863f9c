// Recognising a page image format by a file's first bytes.
#pragma once

#include <string_view>

namespace xun::imagefile {

// "TIFF", "PNG", "JPEG", "PCX" or "DCX"; nullptr for anything else. Only these go to the image
// library, each to its own reader: left to guess, it would try dozens of formats, some of which
// read other files.
const char* SniffFormat(std::string_view bytes);

}  // namespace xun::imagefile
