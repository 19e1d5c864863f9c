#include "imagefile/pcx_writer.h"

#include <cstdio>
#include <stdexcept>

#include "imagefile/magick.h"

namespace xun::imagefile {

std::string EncodeBilevelPcx(int32_t width, int32_t height, const std::vector<uint8_t>& pixels,
                             double xdpi, double ydpi) {
  if (width <= 0 || height <= 0 ||
      pixels.size() != static_cast<std::size_t>(width) * static_cast<std::size_t>(height))
    throw std::invalid_argument("the pixels do not fill the page");
  magick::Start();
  magick::Exception exception;
  magick::ImageList pcx(ConstituteImage(static_cast<unsigned long>(width),
                                        static_cast<unsigned long>(height), "I", CharPixel,
                                        pixels.data(), &exception.info));
  if (!pcx || exception.Failed()) magick::FailNotAnImage(exception, "the page cannot be made");
  SetImageType(pcx.get(), BilevelType);
  pcx->x_resolution = xdpi;
  pcx->y_resolution = ydpi;
  pcx->units = PixelsPerInchResolution;
  magick::Info info = magick::InfoFor("PCX");
  std::snprintf(pcx->magick, sizeof pcx->magick, "%s", "PCX");
  size_t size = 0;
  void* blob = ImageToBlob(info.get(), pcx.get(), &size, &exception.info);
  if (!blob || exception.Failed()) {
    if (blob) MagickFree(blob);
    magick::FailNotAnImage(exception, "the page cannot be written");
  }
  std::string bytes(static_cast<const char*>(blob), size);
  MagickFree(blob);
  return bytes;
}

}  // namespace xun::imagefile
