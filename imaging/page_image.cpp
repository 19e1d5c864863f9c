#include "imaging/page_image.h"

#include <magick/api.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <mutex>

#include "xun/support/numeric.h"
#include "xun/support/runtime_error.h"

namespace xun::imaging {

using detail::DropOutRule;
using detail::ImportedPage;

namespace {

// The classic "Invalid picture" error, with what the image library said.
constexpr int32_t kErrInvalidPicture = 481;

std::once_flag magick_started;

void StartMagick() {
  std::call_once(magick_started, [] { InitializeMagick(nullptr); });
}

struct Exception {
  Exception() { GetExceptionInfo(&info); }
  ~Exception() { DestroyExceptionInfo(&info); }
  Exception(const Exception&) = delete;
  Exception& operator=(const Exception&) = delete;
  bool Failed() const { return info.severity >= ErrorException; }
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

[[noreturn]] void RaiseInvalidPicture(const std::string& why) {
  throw RuntimeError(kErrInvalidPicture,
                     why.empty() ? "Invalid picture" : "Invalid picture: " + why);
}

[[noreturn]] void RaiseInvalidPicture(const Exception& exception) {
  std::string why = exception.info.reason ? exception.info.reason : "";
  if (exception.info.description) why += std::string(" (") + exception.info.description + ")";
  RaiseInvalidPicture(why);
}

std::string ReadBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw RuntimeError(kErrFileNotFound, "File not found: " + path);
  std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  if (in.bad()) Raise(kErrDeviceIO);
  return bytes;
}

// The image library would guess among dozens of formats (some of which read other files); only
// the page image formats are handed to it, each to its own reader.
const char* SniffFormat(const std::string& bytes) {
  const auto starts = [&](std::string_view magic) {
    return bytes.size() >= magic.size() && std::string_view(bytes).substr(0, magic.size()) == magic;
  };
  if (starts({"II*\0", 4}) || starts({"MM\0*", 4})) return "TIFF";
  if (starts("\x89PNG\r\n\x1a\n")) return "PNG";
  if (starts("\xFF\xD8\xFF")) return "JPEG";
  if (starts("\xB1\x68\xDE\x3A")) return "DCX";
  if (bytes.size() >= 128 && bytes[0] == '\x0A' && bytes[1] >= 0 && bytes[1] <= 5 &&
      (bytes[2] == 0 || bytes[2] == 1))
    return "PCX";
  RaiseInvalidPicture("not a TIFF, PNG, JPEG, PCX or DCX image");
}

// Frames first..first+count-1 of the image (count 0: all); only sizes when `ping`.
ImageList Decode(const std::string& bytes, const char* format, unsigned long first,
                 unsigned long count, bool ping) {
  StartMagick();
  Info info(CloneImageInfo(nullptr));
  if (!info) Raise(kErrOutOfMemory);
  std::snprintf(info->magick, sizeof info->magick, "%s", format);
  info->affirm = MagickTrue;
  info->subimage = first;
  info->subrange = count;
  Exception exception;
  ImageList list(ping ? PingBlob(info.get(), bytes.data(), bytes.size(), &exception.info)
                      : BlobToImage(info.get(), bytes.data(), bytes.size(), &exception.info));
  if (!list || exception.Failed()) RaiseInvalidPicture(exception);
  return list;
}

// Dots per inch from the file, 0 when it does not say.
double FileResolution(double value, ResolutionType units) {
  if (units == PixelsPerInchResolution) return value;
  if (units == PixelsPerCentimeterResolution) return value * 2.54;
  return 0;
}

int16_t Resolution(double from_file, unsigned long pixels, double inches) {
  double dpi = from_file;
  if (!(dpi > 0)) dpi = inches > 0 ? pixels / inches : 100;
  const int16_t rounded = CInt(dpi);
  if (rounded <= 0) Raise(kErrOverflow);
  return rounded;
}

// The drop-out test of docs/recognition.md: a pixel whose drop-out channel stands out from
// both other channels by more than the threshold is the form's own ink, not a mark.
bool DroppedOut(double r, double g, double b, const DropOutRule& rule, double threshold) {
  if (!rule.drop_colour) return false;
  if ((rule.colour & xunTemplateDropOutColorRed) && r - std::max(g, b) > threshold) return true;
  if ((rule.colour & xunTemplateDropOutColorGreen) && g - std::max(r, b) > threshold) return true;
  if ((rule.colour & xunTemplateDropOutColorBlue) && b - std::max(r, g) > threshold) return true;
  return false;
}

struct Rgb {
  double r, g, b;
};

// A pixel as red, green and blue from 0 to 1, transparency blended onto white paper.
Rgb PixelColour(const PixelPacket& p, bool has_alpha) {
  Rgb c{static_cast<double>(p.red) / MaxRGB, static_cast<double>(p.green) / MaxRGB,
        static_cast<double>(p.blue) / MaxRGB};
  if (has_alpha) {
    const double clear = static_cast<double>(p.opacity) / MaxRGB;
    c = {c.r + (1 - c.r) * clear, c.g + (1 - c.g) * clear, c.b + (1 - c.b) * clear};
  }
  return c;
}

double Luminance(const Rgb& c) {
  return 0.299 * c.r + 0.587 * c.g + 0.114 * c.b;
}

template <class Visit>
void ForEachRow(Image* image, long left, long top, unsigned long width, unsigned long height,
                Visit&& visit) {
  if (image->colorspace == CMYKColorspace) TransformColorspace(image, RGBColorspace);
  for (unsigned long y = 0; y < height; ++y) {
    Exception exception;
    const PixelPacket* row =
        AcquireImagePixels(image, left, top + static_cast<long>(y), width, 1, &exception.info);
    if (!row) RaiseInvalidPicture(exception);
    visit(y, row);
  }
}

}  // namespace

ImportedPage ImportImagePage(const std::string& file, int32_t page_index, const DropOutRule& rule,
                             double page_width, double page_height) {
  const std::string bytes = ReadBytes(file);
  const char* format = SniffFormat(bytes);
  const auto missing_page = [&] {
    return RuntimeError(kErrSubscript,
                        "The image file has no page " + std::to_string(page_index) + ".");
  };
  if (page_index < 1) throw missing_page();
  const auto index = static_cast<unsigned long>(page_index - 1);

  // Sizes first, so a page that is missing or too large is refused before it is decoded.
  {
    ImageList frames = Decode(bytes, format, 0, 0, true);
    if (GetImageListLength(frames.get()) <= index) throw missing_page();
    const Image* frame = GetImageFromList(frames.get(), static_cast<long>(index));
    if (!frame || frame->columns == 0 || frame->rows == 0) RaiseInvalidPicture("empty image");
    if (frame->columns > 32767 || frame->rows > 32767) Raise(kErrOverflow);
  }
  // Readers that honour a page request give that page alone; the others (DCX) give every page
  // up to it.
  ImageList frames = Decode(bytes, format, index, 1, false);
  const size_t length = GetImageListLength(frames.get());
  Image* frame = length == 1      ? frames.get()
                 : length > index ? GetImageFromList(frames.get(), static_cast<long>(index))
                                  : nullptr;
  if (!frame) throw missing_page();
  if (frame->columns > 32767 || frame->rows > 32767) Raise(kErrOverflow);

  ImportedPage page;
  page.width = static_cast<int16_t>(frame->columns);
  page.height = static_cast<int16_t>(frame->rows);
  page.xdpi =
      Resolution(FileResolution(frame->x_resolution, frame->units), frame->columns, page_width);
  page.ydpi =
      Resolution(FileResolution(frame->y_resolution, frame->units), frame->rows, page_height);

  const double threshold = std::clamp<int16_t>(rule.threshold, 0, 100) / 100.0;
  const bool has_alpha = frame->matte != MagickFalse;
  std::vector<uint8_t> bilevel(frame->columns * frame->rows, 255);
  ForEachRow(frame, 0, 0, frame->columns, frame->rows,
             [&](unsigned long y, const PixelPacket* row) {
               uint8_t* out = &bilevel[y * frame->columns];
               for (unsigned long x = 0; x < frame->columns; ++x) {
                 const Rgb c = PixelColour(row[x], has_alpha);
                 if (!DroppedOut(c.r, c.g, c.b, rule, threshold) && Luminance(c) < 0.5) out[x] = 0;
               }
             });

  Exception exception;
  ImageList pcx(ConstituteImage(frame->columns, frame->rows, "I", CharPixel, bilevel.data(),
                                &exception.info));
  if (!pcx || exception.Failed()) RaiseInvalidPicture(exception);
  SetImageType(pcx.get(), BilevelType);
  pcx->x_resolution = page.xdpi;
  pcx->y_resolution = page.ydpi;
  pcx->units = PixelsPerInchResolution;
  std::snprintf(pcx->magick, sizeof pcx->magick, "%s", "PCX");
  Info info(CloneImageInfo(nullptr));
  if (!info) Raise(kErrOutOfMemory);
  std::snprintf(info->magick, sizeof info->magick, "%s", "PCX");
  size_t size = 0;
  void* blob = ImageToBlob(info.get(), pcx.get(), &size, &exception.info);
  if (!blob || exception.Failed()) {
    if (blob) MagickFree(blob);
    RaiseInvalidPicture(exception);
  }
  page.pcx.assign(static_cast<const char*>(blob), size);
  MagickFree(blob);
  return page;
}

GreyImage ReadGreyRegion(const std::string& file, int32_t left, int32_t top, int32_t right,
                         int32_t bottom) {
  const std::string bytes = ReadBytes(file);
  ImageList frames = Decode(bytes, SniffFormat(bytes), 0, 1, false);
  Image* frame = frames.get();
  left = std::max(left, 0);
  top = std::max(top, 0);
  right = std::min<int64_t>(right, static_cast<int64_t>(frame->columns));
  bottom = std::min<int64_t>(bottom, static_cast<int64_t>(frame->rows));
  if (right <= left || bottom <= top)
    throw RuntimeError(kErrInvalidCall, "The region lies outside the page image.");
  GreyImage grey;
  grey.width = right - left;
  grey.height = bottom - top;
  grey.pixels.resize(static_cast<size_t>(grey.width) * static_cast<size_t>(grey.height));
  const bool has_alpha = frame->matte != MagickFalse;
  ForEachRow(frame, left, top, static_cast<unsigned long>(grey.width),
             static_cast<unsigned long>(grey.height), [&](unsigned long y, const PixelPacket* row) {
               uint8_t* out = &grey.pixels[y * static_cast<size_t>(grey.width)];
               for (int32_t x = 0; x < grey.width; ++x)
                 out[x] =
                     static_cast<uint8_t>(Luminance(PixelColour(row[x], has_alpha)) * 255 + 0.5);
             });
  return grey;
}

std::string EncodeGrey(const uint8_t* pixels, int32_t width, int32_t height, int32_t dpi,
                       const char* format) {
  StartMagick();
  Exception exception;
  ImageList image(ConstituteImage(static_cast<unsigned long>(width),
                                  static_cast<unsigned long>(height), "I", CharPixel, pixels,
                                  &exception.info));
  if (!image || exception.Failed()) RaiseInvalidPicture(exception);
  SetImageType(image.get(), GrayscaleType);
  image->x_resolution = dpi;
  image->y_resolution = dpi;
  image->units = PixelsPerInchResolution;
  std::snprintf(image->magick, sizeof image->magick, "%s", format);
  Info info(CloneImageInfo(nullptr));
  if (!info) Raise(kErrOutOfMemory);
  std::snprintf(info->magick, sizeof info->magick, "%s", format);
  size_t size = 0;
  void* blob = ImageToBlob(info.get(), image.get(), &size, &exception.info);
  if (!blob || exception.Failed()) {
    if (blob) MagickFree(blob);
    RaiseInvalidPicture(exception);
  }
  std::string bytes(static_cast<const char*>(blob), size);
  MagickFree(blob);
  return bytes;
}

}  // namespace xun::imaging
