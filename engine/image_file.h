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

// The first page of a TIFF, PNG, JPEG, PCX or DCX file as grey, 0 black, transparency on white
// paper. The size is checked before the pixels are decoded: nothing larger than MaxPixels() or
// 32767 either way is allocated. Throws EngineError (file not found, not an image, too large).
cv::Mat DecodeGrey(const std::string& path);

}  // namespace xunrec
