#include "imagefile/image_file.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string_view>
#include <utility>

#include "imagefile/decode_error.h"
#include "imagefile/file_format.h"
#include "imagefile/frames.h"
#include "imagefile/grey_readers.h"
#include "imagefile/magick.h"

namespace xun::imagefile {
namespace {

using magick::ImageList;

std::string ReadBytes(const std::string& path) {
  std::error_code ec;
  const auto status = std::filesystem::status(path, ec);
  const auto not_found = [&] { return DecodeError(DecodeFailure::kNotFound, "no such file"); };
  if (ec || !std::filesystem::is_regular_file(status)) throw not_found();
  const auto size = std::filesystem::file_size(path, ec);
  if (ec) throw not_found();
  if (size > static_cast<uintmax_t>(kMaxFileBytes))
    throw DecodeError(DecodeFailure::kTooLarge, "the file is larger than 256 MB");
  std::ifstream in(path, std::ios::binary);
  if (!in) throw not_found();
  // In one read: a scan is megabytes, and a character at a time costs a tenth of decoding it.
  std::string bytes(static_cast<size_t>(size), '\0');
  in.read(bytes.data(), static_cast<std::streamsize>(size));
  if (in.bad() || in.gcount() != static_cast<std::streamsize>(size))
    throw DecodeError(DecodeFailure::kReadFailed, "the file could not be read");
  return bytes;
}

DecodeError NoSuchPage(int32_t index) {
  return DecodeError(DecodeFailure::kNoSuchPage,
                     "The image file has no page " + std::to_string(int64_t{index} + 1) + ".");
}

// A DCX file is a table of up to 1023 offsets (ending with 0) to whole PCX files. Page `index`
// is the PCX its offset points to, up to the next page's offset (or the end of the file), where an
// 8-bit PCX keeps its palette. Decoded alone, so no page before it is ever decoded.
constexpr size_t kMaxDcxPages = 1023;

uint32_t DcxOffset(std::string_view bytes, size_t entry) {
  const size_t at = 4 + 4 * entry;
  if (entry >= kMaxDcxPages || at + 4 > bytes.size()) return 0;
  uint32_t value = 0;
  for (int byte = 3; byte >= 0; --byte)
    value = value << 8 | static_cast<uint8_t>(bytes[at + static_cast<size_t>(byte)]);
  return value;
}

size_t DcxPageCount(std::string_view bytes) {
  size_t pages = 0;
  while (DcxOffset(bytes, pages) != 0)
    ++pages;
  return pages;
}

std::string_view DcxPage(std::string_view bytes, int32_t index) {
  const auto wanted = static_cast<size_t>(index);
  if (wanted >= DcxPageCount(bytes)) throw NoSuchPage(index);
  const size_t from = DcxOffset(bytes, wanted), next = DcxOffset(bytes, wanted + 1);
  if (from >= bytes.size())
    throw DecodeError(DecodeFailure::kNotAnImage, "a page lies beyond the end of the file");
  const size_t to = next > from && next <= bytes.size() ? next : bytes.size();
  return bytes.substr(from, to - from);
}

// Frames first..first+count-1 of the file; only their sizes when `ping`.
ImageList Read(std::string_view bytes, const char* format, unsigned long first, unsigned long count,
               bool ping) {
  magick::Info info = magick::InfoFor(format);
  info->subimage = first;
  info->subrange = count;
  magick::Exception exception;
  ImageList list(ping ? PingBlob(info.get(), bytes.data(), bytes.size(), &exception.info)
                      : BlobToImage(info.get(), bytes.data(), bytes.size(), &exception.info));
  if (!list || exception.Failed()) magick::FailNotAnImage(exception, "the image cannot be read");
  return list;
}

void CheckSize(const Image& frame, const Limits& limits) {
  CheckPageSize(static_cast<int64_t>(frame.columns), static_cast<int64_t>(frame.rows), limits);
}

}  // namespace

ImageFile ImageFile::Open(const std::string& path, const Limits& limits) {
  std::string bytes = ReadBytes(path);
  const char* format = SniffFormat(bytes);
  if (!format)
    throw DecodeError(DecodeFailure::kNotAnImage, "not a TIFF, PNG, JPEG, PCX or DCX image");
  Limits checked = limits;
  checked.max_pixels = std::min(checked.max_pixels, kMaxPixels);
  return ImageFile(std::move(bytes), format, checked);
}

int32_t ImageFile::PageCount() const {
  if (std::strcmp(format_, "DCX") == 0) return static_cast<int32_t>(DcxPageCount(bytes_));
  if (std::strcmp(format_, "TIFF") != 0) return 1;
  const ImageList frames = Read(bytes_, format_, 0, 0, true);  // a range of 0: every page
  return static_cast<int32_t>(GetImageListLength(frames.get()));
}

DecodedPage ImageFile::Decode(int32_t index) const {
  if (index < 0) throw NoSuchPage(index);
  std::string_view bytes = bytes_;
  const char* format = format_;
  int32_t page = index;
  if (std::strcmp(format_, "DCX") == 0) {
    bytes = DcxPage(bytes_, index);
    format = "PCX";
    page = 0;
  }
  const auto wanted = static_cast<unsigned long>(page);
  // The size first: a page that is missing or claims to be huge is refused before anything is
  // allocated for it.
  {
    const ImageList frames = Read(bytes, format, 0, wanted + 1, true);
    if (GetImageListLength(frames.get()) <= wanted) throw NoSuchPage(index);
    CheckSize(*GetImageFromList(frames.get(), page), limits_);
  }
  // A reader that honours a page request (TIFF) gives that page alone; one that does not gives
  // every page up to it.
  auto frames = std::make_unique<DecodedPage::Frames>();
  frames->list = Read(bytes, format, wanted, 1, false);
  const size_t length = GetImageListLength(frames->list.get());
  frames->page = length == 1       ? frames->list.get()
                 : length > wanted ? GetImageFromList(frames->list.get(), page)
                                   : nullptr;
  if (!frames->page) throw NoSuchPage(index);
  // The decoder may disagree with its own header.
  CheckSize(*frames->page, limits_);
  if (frames->page->colorspace == CMYKColorspace &&
      TransformColorspace(frames->page, RGBColorspace) != MagickPass)
    throw DecodeError(DecodeFailure::kNotAnImage, "the colours cannot be converted");
  return DecodedPage(std::move(frames));
}

void ImageFile::DecodeGrey(int32_t index, const GreyTarget& target) const {
  if (index == 0) {
    if (std::strcmp(format_, "PNG") == 0 && ReadPngGrey(bytes_, limits_, target)) return;
    if (std::strcmp(format_, "JPEG") == 0 && ReadJpegGrey(bytes_, limits_, target)) return;
  }
  const DecodedPage page = Decode(index);
  const GreyRows rows = target(page.Width(), page.Height());
  page.ReadGrey({0, 0, page.Width(), page.Height()}, rows.first, rows.stride);
}

}  // namespace xun::imagefile
