// The image library's handles, owned, and its start. Private to this folder: no other part of
// the project includes the image library's headers.
#pragma once

#include <magick/api.h>

#include <memory>
#include <string>

#include "imagefile/decode_error.h"

namespace xun::imagefile::magick {

// Starts the image library once per process, with its own width, height and pixel limits set to
// ours, so no reader allocates past them even when its header lied to the ping.
void Start();

struct Exception {
  Exception() { GetExceptionInfo(&info); }
  ~Exception() { DestroyExceptionInfo(&info); }
  Exception(const Exception&) = delete;
  Exception& operator=(const Exception&) = delete;
  // A damaged file may still give an image, with a warning: it is refused all the same.
  bool Failed() const {
    return info.severity >= ErrorException || info.severity == CorruptImageWarning;
  }
  // The reason the library gave, with its description; "" when it gave none.
  std::string Reason() const;
  ExceptionInfo info;
};

struct ListDeleter {
  void operator()(Image* image) const { DestroyImageList(image); }
};
using ImageList = std::unique_ptr<Image, ListDeleter>;

struct InfoDeleter {
  void operator()(ImageInfo* info) const { DestroyImageInfo(info); }
};
using Info = std::unique_ptr<ImageInfo, InfoDeleter>;

// An ImageInfo for one format's reader; kOutOfMemory when it cannot be made.
Info InfoFor(const char* format);

// The image library failed: kTooLarge when it ran into a resource limit (its width, height or
// pixel limit, or memory), else kNotAnImage; its reason, else `fallback`, as the text.
[[noreturn]] void FailNotAnImage(const Exception& exception, const std::string& fallback);

}  // namespace xun::imagefile::magick
