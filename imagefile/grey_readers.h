// PNG and JPEG pages read row by row straight to grey with the formats' own libraries (libpng,
// libjpeg): a byte a pixel, where the image library holds eight. Scans come as these two formats
// most of all, and a batch of them read on every core must fit in little memory.
//
// The same grey as the image library's (imagefile/luma.h, transparency on white paper) and the
// same refusals: the size is checked from the header before the caller's buffer is asked for; an
// error or a warning of damaged data (a truncated file, a bad checksum) is kNotAnImage.
#pragma once

#include <string_view>

#include "imagefile/grey_target.h"
#include "imagefile/limits.h"

namespace xun::imagefile {

// False, before anything is asked of `target`, for a file the image library must read instead:
// an interlaced PNG (its passes would need the whole page in colour), a CMYK JPEG.
bool ReadPngGrey(std::string_view bytes, const Limits& limits, const GreyTarget& target);
bool ReadJpegGrey(std::string_view bytes, const Limits& limits, const GreyTarget& target);

}  // namespace xun::imagefile
