#include "synthscan/image_files.h"

#include <Magick++.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <stdexcept>

#include "imagefile/decode_error.h"
#include "imagefile/image_file.h"

namespace xun::synthscan {
namespace {

void StartMagick() {
  static const bool started = [] {
    Magick::InitializeMagick(nullptr);
    return true;
  }();
  (void)started;
}

Magick::Image ToMagick(const cv::Mat& grey) {
  CV_Assert(grey.type() == CV_8UC1);
  const cv::Mat packed = grey.isContinuous() ? grey : grey.clone();
  return Magick::Image(static_cast<unsigned>(packed.cols), static_cast<unsigned>(packed.rows), "I",
                       Magick::CharPixel, packed.data);
}

cv::Mat FromMagick(Magick::Image& image) {
  cv::Mat grey(static_cast<int>(image.rows()), static_cast<int>(image.columns()), CV_8UC1);
  image.write(0, 0, image.columns(), image.rows(), "I", Magick::CharPixel, grey.data);
  return grey;
}

}  // namespace

ImageFormat FormatOfFileName(const std::string& file) {
  std::string extension = std::filesystem::path(file).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (extension == ".png") return ImageFormat::kPng;
  if (extension == ".jpg" || extension == ".jpeg") return ImageFormat::kJpeg;
  if (extension == ".tif" || extension == ".tiff") return ImageFormat::kTiff;
  throw std::invalid_argument(file + ": the name must end in .png, .jpg, .jpeg, .tif or .tiff");
}

cv::Mat ReadGreyImage(const std::string& file, int& dpi) {
  // Decoded as the engine and the image module decode pages, so a print reads here as it reads
  // there.
  try {
    const imagefile::DecodedPage page = imagefile::ImageFile::Open(file).Decode(0);
    cv::Mat grey(page.Height(), page.Width(), CV_8UC1);
    page.ReadGrey({0, 0, page.Width(), page.Height()}, grey.data, grey.step);
    dpi = static_cast<int>(std::lround(page.XDpi()));
    return grey;
  } catch (const imagefile::DecodeError& e) {
    throw std::runtime_error(file + ": cannot be read as an image: " + e.what());
  }
}

void WriteGreyImage(const std::string& file, const cv::Mat& grey, int dpi, bool bilevel,
                    int jpeg_quality) {
  StartMagick();
  const ImageFormat format = FormatOfFileName(file);
  if (bilevel && format == ImageFormat::kJpeg)
    throw std::invalid_argument(file + ": a black-and-white scan is saved as PNG or TIFF");
  try {
    Magick::Image image = ToMagick(grey);
    image.resolutionUnits(Magick::PixelsPerInchResolution);
    image.density(Magick::Geometry(static_cast<unsigned>(dpi), static_cast<unsigned>(dpi)));
    if (bilevel) {
      image.type(Magick::BilevelType);
      image.depth(1);
    } else {
      image.type(Magick::GrayscaleType);
      image.depth(8);
    }
    switch (format) {
      case ImageFormat::kPng:
        image.magick("PNG");
        break;
      case ImageFormat::kJpeg:
        image.magick("JPEG");
        image.quality(static_cast<unsigned>(std::clamp(jpeg_quality, 1, 100)));
        break;
      case ImageFormat::kTiff:
        image.magick("TIFF");
        // Fax compression suits a black-and-white page; a grey one is kept lossless.
        image.compressType(bilevel ? Magick::Group4Compression : Magick::LZWCompression);
        break;
    }
    image.write(file);
  } catch (const Magick::Exception& e) {
    throw std::runtime_error(file + ": cannot be written: " + e.what());
  }
}

void WriteGreyTiffPages(const std::string& file, const std::vector<cv::Mat>& pages, int dpi) {
  StartMagick();
  try {
    std::vector<Magick::Image> images;
    for (const cv::Mat& page : pages) {
      Magick::Image& image = images.emplace_back(ToMagick(page));
      image.resolutionUnits(Magick::PixelsPerInchResolution);
      image.density(Magick::Geometry(static_cast<unsigned>(dpi), static_cast<unsigned>(dpi)));
      image.type(Magick::GrayscaleType);
      image.depth(8);
      image.magick("TIFF");
      image.compressType(Magick::LZWCompression);
    }
    Magick::writeImages(images.begin(), images.end(), file, true);
  } catch (const Magick::Exception& e) {
    throw std::runtime_error(file + ": cannot be written: " + e.what());
  }
}

cv::Mat JpegRoundTrip(const cv::Mat& grey, int quality) {
  StartMagick();
  Magick::Image image = ToMagick(grey);
  image.type(Magick::GrayscaleType);
  image.magick("JPEG");
  image.quality(static_cast<unsigned>(std::clamp(quality, 1, 100)));
  Magick::Blob blob;
  image.write(&blob);
  Magick::Image back(blob);
  return FromMagick(back);
}

}  // namespace xun::synthscan
