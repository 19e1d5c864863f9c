#include "imagefile/magick.h"

#include <cstdio>
#include <mutex>

#include "imagefile/limits.h"

namespace xun::imagefile::magick {

void Start() {
  static std::once_flag started;
  std::call_once(started, [] {
    InitializeMagick(nullptr);
    SetMagickResourceLimit(WidthResource, static_cast<magick_int64_t>(kMaxSide));
    SetMagickResourceLimit(HeightResource, static_cast<magick_int64_t>(kMaxSide));
    SetMagickResourceLimit(PixelsResource, static_cast<magick_int64_t>(kMaxPixels));
  });
}

std::string Exception::Reason() const {
  std::string why = info.reason ? info.reason : "";
  if (info.description) why += std::string(why.empty() ? "" : " ") + "(" + info.description + ")";
  return why;
}

Info InfoFor(const char* format) {
  Start();
  Info info(CloneImageInfo(nullptr));
  if (!info) throw DecodeError(DecodeFailure::kOutOfMemory, "out of memory");
  std::snprintf(info->magick, sizeof info->magick, "%s", format);
  info->affirm = MagickTrue;
  return info;
}

void FailNotAnImage(const Exception& exception, const std::string& fallback) {
  const std::string why = exception.Reason();
  // The image library's own limits (set in Start) and its memory are resource limits: the page
  // is too large for them.
  const DecodeFailure failure = exception.info.severity == ResourceLimitError
                                    ? DecodeFailure::kTooLarge
                                    : DecodeFailure::kNotAnImage;
  throw DecodeError(failure, why.empty() ? fallback : why);
}

}  // namespace xun::imagefile::magick
