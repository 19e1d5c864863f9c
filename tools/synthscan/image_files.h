// Page images in and out of files: read by the project's one decoder (imagefile/), written by
// GraphicsMagick as grey or 1-bit PNG, JPEG or TIFF.
#pragma once

#include <opencv2/core.hpp>

#include <string>
#include <vector>

namespace xun::synthscan {

enum class ImageFormat { kPng, kJpeg, kTiff };

// The format a file name asks for by its extension (.png, .jpg/.jpeg, .tif/.tiff). Throws
// std::invalid_argument for any other.
ImageFormat FormatOfFileName(const std::string& file);

// The image of `file` as 8-bit grey; its resolution in `dpi` (0 when it does not say). Throws
// std::runtime_error when it cannot be read.
cv::Mat ReadGreyImage(const std::string& file, int& dpi);

// Writes `grey` (8-bit) to `file` at `dpi`, in the format of its name: 1-bit when `bilevel`
// (PNG or TIFF only), JPEG at `jpeg_quality`. Throws std::runtime_error when it cannot.
void WriteGreyImage(const std::string& file, const cv::Mat& grey, int dpi, bool bilevel,
                    int jpeg_quality);

// Several grey pages as one multi-page TIFF (LZW), as a scanner's document feeder gives them.
void WriteGreyTiffPages(const std::string& file, const std::vector<cv::Mat>& pages, int dpi);

// `grey` after it has been saved as a JPEG at `quality` and read back.
cv::Mat JpegRoundTrip(const cv::Mat& grey, int quality);

}  // namespace xun::synthscan
