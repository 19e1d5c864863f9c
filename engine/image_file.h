// Decoding an image file into 8-bit grey (GraphicsMagick), kept apart so no other file of the
// engine sees the image library.
#pragma once

#include <opencv2/core.hpp>

#include <cstdint>
#include <string>

namespace xunrec {

// The largest image the engine decodes, in pixels (a legal page at 600 dpi fits), and the largest
// file it reads.
inline constexpr int64_t kMaxPixels = 48'000'000;
inline constexpr int64_t kMaxFileBytes = 256LL * 1024 * 1024;

// The pixel limit in force, kMaxPixels unless set lower (the fuzz target does, to stay fast).
int64_t MaxPixels();
void SetMaxPixels(int64_t pixels);

// The first page of a TIFF, PNG, JPEG, PCX or DCX file as grey, 0 black, transparency on white
// paper. The size is checked before the pixels are decoded: nothing larger than MaxPixels() or
// 32767 either way is allocated. Throws EngineError (file not found, not an image, too large).
cv::Mat DecodeGrey(const std::string& path);

}  // namespace xunrec
