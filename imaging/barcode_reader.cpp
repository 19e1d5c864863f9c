#include "imaging/barcode_reader.h"

#include <ZXing/BarcodeFormat.h>
#include <ZXing/DecodeHints.h>
#include <ZXing/ImageView.h>
#include <ZXing/ReadBarcode.h>
#include <ZXing/Result.h>

#include <utility>

#include "imaging/page_image.h"

namespace xun::imaging {
namespace {

// The symbologies a barcode region can be set to that ZXing reads. Code 39 Extended cannot be
// told from Code 39 by the symbol, and the 2-of-5 variants other than interleaved, Code 11,
// Patch, Code 32 and Postnet are not read: such a barcode is simply not found.
constexpr std::pair<ZXing::BarcodeFormat, xunFieldType> kFormats[] = {
    {ZXing::BarcodeFormat::Code39, xunFieldTypeBarcodeCode39},
    {ZXing::BarcodeFormat::Codabar, xunFieldTypeBarcodeCodaBar},
    {ZXing::BarcodeFormat::ITF, xunFieldTypeBarcodeInterleaved2of5},
    {ZXing::BarcodeFormat::Code93, xunFieldTypeBarcodeCode93},
    {ZXing::BarcodeFormat::Code128, xunFieldTypeBarcodeCode128},
    {ZXing::BarcodeFormat::EAN13, xunFieldTypeBarcodeEAN13},
    {ZXing::BarcodeFormat::EAN8, xunFieldTypeBarcodeEAN8},
    {ZXing::BarcodeFormat::UPCA, xunFieldTypeBarcodeUPCA},
    {ZXing::BarcodeFormat::UPCE, xunFieldTypeBarcodeUPCE},
    {ZXing::BarcodeFormat::PDF417, xunFieldTypeBarcodePDF417},
    {ZXing::BarcodeFormat::DataMatrix, xunFieldTypeBarcodeDataMatrix},
    {ZXing::BarcodeFormat::QRCode, xunFieldTypeBarcodeQRCode},
};

xunFieldType TypeOf(const ZXing::Result& result) {
  // GS1-128 is Code 128 with the FNC1 marker, which the symbology identifier "]C1" shows.
  if (result.format() == ZXing::BarcodeFormat::Code128 && result.symbologyIdentifier() == "]C1")
    return xunFieldTypeBarcodeUcc128;
  for (const auto& [format, type] : kFormats)
    if (format == result.format()) return type;
  return xunFieldTypeOMRNone;
}

}  // namespace

std::optional<detail::FoundBarcode> ReadBarcode(const std::string& file, int32_t left, int32_t top,
                                                int32_t right, int32_t bottom) {
  const GreyImage grey = ReadGreyRegion(file, left, top, right, bottom);
  ZXing::BarcodeFormats formats;
  for (const auto& entry : kFormats)
    formats |= entry.first;
  ZXing::DecodeHints hints;
  hints.setFormats(formats);
  hints.setTryHarder(true);
  hints.setTryRotate(true);
  const ZXing::Result result = ZXing::ReadBarcode(
      ZXing::ImageView(grey.pixels.data(), grey.width, grey.height, ZXing::ImageFormat::Lum),
      hints);
  if (!result.isValid()) return std::nullopt;
  const xunFieldType type = TypeOf(result);
  if (type == xunFieldTypeOMRNone) return std::nullopt;
  return detail::FoundBarcode{type, result.orientation()};
}

}  // namespace xun::imaging
