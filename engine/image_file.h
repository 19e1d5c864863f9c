// Decoding an image file into 8-bit grey with the project's decoder (imagefile/), kept apart so
// no other file of the engine sees it.
#pragma once

#include <opencv2/core.hpp>

#include <cstdint>
#include <string>

namespace xunrec {

// The pixel limit in force: the decoder's own (imagefile/limits.h) unless set lower (the fuzz
// target does, to stay fast).
int64_t MaxPixels();
void SetMaxPixels(int64_t pixels);

// Page `page` (from 0) of a TIFF, PNG, JPEG, PCX or DCX file as grey, 0 black, transparency on
// white paper. The size is checked before the pixels are decoded: nothing larger than MaxPixels()
// or 32767 either way is allocated. Throws EngineError (file not found, not an image, too large;
// not an image for a page the file does not have).
cv::Mat DecodeGrey(const std::string& path, int32_t page = 0);

// How many pages the file holds (a TIFF or DCX may hold several). Throws EngineError.
int32_t PageCount(const std::string& path);

}  // namespace xunrec
