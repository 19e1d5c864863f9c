// A page image file (TIFF, PNG, JPEG, PCX or DCX) opened for decoding, with the limits checked
// before any pixel is allocated. The one place the project decodes image files: the engine and
// the image module both link it. Failures are DecodeErrors.
#pragma once

#include <cstdint>
#include <string>

#include "imagefile/decoded_page.h"
#include "imagefile/grey_target.h"
#include "imagefile/limits.h"

namespace xun::imagefile {

class ImageFile {
 public:
  // Reads the file whole and recognises its format by its first bytes. kNotFound when it is not
  // a regular file, kTooLarge over kMaxFileBytes, kReadFailed, kNotAnImage for any other format.
  static ImageFile Open(const std::string& path, const Limits& limits = {});

  // "TIFF", "PNG", "JPEG", "PCX" or "DCX".
  const char* Format() const noexcept { return format_; }

  // How many pages the file holds: those of a TIFF or DCX, 1 for the other formats. A TIFF's
  // page headers are read for it, no pixel. kNotAnImage when they cannot be read.
  int32_t PageCount() const;

  // Page `index` (0-based). Its size is read first (header only) and refused when it is empty
  // (kNotAnImage) or over the limits (kTooLarge); only then is it decoded, alone where the format
  // allows. kNoSuchPage when the file has no such page; kNotAnImage when the decoder fails or
  // warns of a damaged file.
  DecodedPage Decode(int32_t index) const;

  // Page `index` as 8-bit grey into the caller's buffer, the grey DecodedPage::ReadGrey gives,
  // with the same refusals. PNG and JPEG are read row by row by their own libraries
  // (grey_readers.h), a byte a pixel; other formats through the image library.
  void DecodeGrey(int32_t index, const GreyTarget& target) const;

 private:
  ImageFile(std::string bytes, const char* format, const Limits& limits)
      : bytes_(std::move(bytes)), format_(format), limits_(limits) {}

  std::string bytes_;
  const char* format_;
  Limits limits_;
};

}  // namespace xun::imagefile
