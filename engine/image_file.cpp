#include "engine/image_file.h"

#include <magick/api.h>

#include <opencv2/imgproc.hpp>

#include <atomic>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <mutex>
#include <string_view>

#include "engine/engine_error.h"
#include "engine/xunrec.h"

namespace xunrec {
namespace {

std::once_flag magick_started;
std::atomic<int64_t> pixel_limit{kMaxPixels};

struct Exception {
  Exception() { GetExceptionInfo(&info); }
  ~Exception() { DestroyExceptionInfo(&info); }
  Exception(const Exception&) = delete;
  Exception& operator=(const Exception&) = delete;
  // A damaged file may still give an image, with a warning: it is refused all the same.
  bool Failed() const {
    return info.severity >= ErrorException || info.severity == CorruptImageWarning;
  }
  ExceptionInfo info;
};

struct ListDeleter {
  void operator()(Image* image) const { DestroyImageList(image); }
};
using ImageList = std::unique_ptr<Image, ListDeleter>;
struct InfoDeleter {
  void operator()(ImageInfo* info) const { DestroyImageInfo(info); }
};

[[noreturn]] void Fail(int16_t code) {
  throw EngineError(code);
}

std::string ReadBytes(const std::string& path) {
  std::error_code ec;
  const auto status = std::filesystem::status(path, ec);
  if (ec || !std::filesystem::is_regular_file(status)) Fail(XUNREC_FILE_NOT_FOUND);
  const auto size = std::filesystem::file_size(path, ec);
  if (ec) Fail(XUNREC_FILE_NOT_FOUND);
  if (size > static_cast<uintmax_t>(kMaxFileBytes)) Fail(XUNREC_IMAGE_TOO_LARGE);
  std::ifstream in(path, std::ios::binary);
  if (!in) Fail(XUNREC_FILE_NOT_FOUND);
  std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  if (in.bad()) Fail(XUNREC_NOT_AN_IMAGE);
  return bytes;
}

// Only page-image formats go to the image library, each to its own reader: left to guess, it
// would try dozens of formats, some of which read other files.
const char* SniffFormat(std::string_view bytes) {
  const auto starts = [&](std::string_view magic) {
    return bytes.substr(0, magic.size()) == magic;
  };
  if (starts({"II*\0", 4}) || starts({"MM\0*", 4})) return "TIFF";
  if (starts("\x89PNG\r\n\x1a\n")) return "PNG";
  if (starts("\xFF\xD8\xFF")) return "JPEG";
  if (starts("\xB1\x68\xDE\x3A")) return "DCX";
  if (bytes.size() >= 128 && bytes[0] == '\x0A' && bytes[1] >= 0 && bytes[1] <= 5 &&
      (bytes[2] == 0 || bytes[2] == 1))
    return "PCX";
  Fail(XUNREC_NOT_AN_IMAGE);
}

ImageList Decode(const std::string& bytes, const char* format, bool ping) {
  std::call_once(magick_started, [] { InitializeMagick(nullptr); });
  std::unique_ptr<ImageInfo, InfoDeleter> info(CloneImageInfo(nullptr));
  if (!info) Fail(XUNREC_OUT_OF_MEMORY);
  std::snprintf(info->magick, sizeof info->magick, "%s", format);
  info->affirm = MagickTrue;
  info->subimage = 0;
  info->subrange = 1;
  Exception exception;
  ImageList list(ping ? PingBlob(info.get(), bytes.data(), bytes.size(), &exception.info)
                      : BlobToImage(info.get(), bytes.data(), bytes.size(), &exception.info));
  if (!list || exception.Failed()) Fail(XUNREC_NOT_AN_IMAGE);
  return list;
}

void CheckSize(const Image& image, int64_t max_pixels) {
  if (image.columns == 0 || image.rows == 0) Fail(XUNREC_NOT_AN_IMAGE);
  if (image.columns > 32767 || image.rows > 32767 ||
      static_cast<int64_t>(image.columns) * static_cast<int64_t>(image.rows) > max_pixels)
    Fail(XUNREC_IMAGE_TOO_LARGE);
}

}  // namespace

int64_t MaxPixels() {
  return pixel_limit;
}

void SetMaxPixels(int64_t pixels) {
  pixel_limit = std::min(pixels, kMaxPixels);
}

cv::Mat DecodeGrey(const std::string& path) {
  const std::string bytes = ReadBytes(path);
  const char* format = SniffFormat(bytes);
  // The size first: a header that claims a huge page is refused before anything is allocated.
  CheckSize(*Decode(bytes, format, true), MaxPixels());
  ImageList image = Decode(bytes, format, false);
  CheckSize(*image, MaxPixels());
  if (image->colorspace == CMYKColorspace) TransformColorspace(image.get(), RGBColorspace);

  const int width = static_cast<int>(image->columns), height = static_cast<int>(image->rows);
  const bool alpha = image->matte != MagickFalse;
  cv::Mat grey(height, width, CV_8UC1);
  // In strips, so the colour pixels never exist for the whole page at once.
  constexpr int kStrip = 64;
  cv::Mat colour(kStrip, width, alpha ? CV_8UC4 : CV_8UC3);
  for (int y = 0; y < height; y += kStrip) {
    const int rows = std::min(kStrip, height - y);
    Exception exception;
    if (DispatchImage(image.get(), 0, y, static_cast<unsigned long>(width),
                      static_cast<unsigned long>(rows), alpha ? "RGBA" : "RGB", CharPixel,
                      colour.data, &exception.info) != MagickPass)
      Fail(XUNREC_NOT_AN_IMAGE);
    const cv::Mat strip = colour.rowRange(0, rows);
    cv::Mat out = grey.rowRange(y, y + rows);
    if (!alpha) {
      cv::cvtColor(strip, out, cv::COLOR_RGB2GRAY);
      continue;
    }
    // Transparent parts are white paper: grey * alpha + white * (1 - alpha).
    cv::Mat luma, cover;
    cv::cvtColor(strip, luma, cv::COLOR_RGBA2GRAY);
    cv::extractChannel(strip, cover, 3);
    cv::Mat paper = 255 - cover;
    cv::Mat inked;
    cv::multiply(luma, cover, inked, 1.0 / 255);
    cv::add(inked, paper, out);
  }
  return grey;
}

}  // namespace xunrec
