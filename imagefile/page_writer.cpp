#include "imagefile/page_writer.h"

#include <cstdio>
#include <stdexcept>

#include "imagefile/magick.h"

namespace xun::imagefile {
namespace {

CompressionType CompressionOf(CutFormat::Compression compression) {
  switch (compression) {
    case CutFormat::Compression::kNone:
      return NoCompression;
    case CutFormat::Compression::kGroup3:
      return Group3Compression;
    case CutFormat::Compression::kGroup4:
      return Group4Compression;
    case CutFormat::Compression::kLzw:
      return LZWCompression;
    case CutFormat::Compression::kJpeg:
      return JPEGCompression;
    case CutFormat::Compression::kDefault:
      break;
  }
  return UndefinedCompression;
}

std::string Encode(int32_t width, int32_t height, const uint8_t* pixels, double xdpi, double ydpi,
                   ImageType type, const char* format,
                   CompressionType compression = UndefinedCompression, unsigned long quality = 0) {
  if (width <= 0 || height <= 0 || !pixels) throw std::invalid_argument("the page has no pixels");
  magick::Start();
  magick::Exception exception;
  magick::ImageList page(ConstituteImage(static_cast<unsigned long>(width),
                                         static_cast<unsigned long>(height), "I", CharPixel, pixels,
                                         &exception.info));
  if (!page || exception.Failed()) magick::FailNotAnImage(exception, "the page cannot be made");
  SetImageType(page.get(), type);
  page->x_resolution = xdpi;
  page->y_resolution = ydpi;
  page->units = PixelsPerInchResolution;
  magick::Info info = magick::InfoFor(format);
  if (compression != UndefinedCompression) {
    page->compression = compression;
    info->compression = compression;
  }
  if (quality) info->quality = quality;
  std::snprintf(page->magick, sizeof page->magick, "%s", format);
  size_t size = 0;
  void* blob = ImageToBlob(info.get(), page.get(), &size, &exception.info);
  if (!blob || exception.Failed()) {
    if (blob) MagickFree(blob);
    magick::FailNotAnImage(exception, "the page cannot be written");
  }
  std::string bytes(static_cast<const char*>(blob), size);
  MagickFree(blob);
  return bytes;
}

}  // namespace

std::string EncodeBilevelPcx(int32_t width, int32_t height, const std::vector<uint8_t>& pixels,
                             double xdpi, double ydpi) {
  if (pixels.size() != static_cast<std::size_t>(width) * static_cast<std::size_t>(height))
    throw std::invalid_argument("the pixels do not fill the page");
  return Encode(width, height, pixels.data(), xdpi, ydpi, BilevelType, "PCX");
}

std::string EncodeGreyPng(int32_t width, int32_t height, const uint8_t* pixels, double dpi) {
  return Encode(width, height, pixels, dpi, dpi, GrayscaleType, "PNG");
}

std::string EncodeCut(int32_t width, int32_t height, const uint8_t* pixels, double dpi,
                      const CutFormat& format) {
  return Encode(width, height, pixels, dpi, dpi, format.bilevel ? BilevelType : GrayscaleType,
                format.format, CompressionOf(format.compression),
                // JPEG, in a file of its own or inside a PDF: a clip a person reads, kept sharp.
                90);
}

}  // namespace xun::imagefile
