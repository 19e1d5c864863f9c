#include "imaging/barcode_reader.h"

#include <ZXing/BarcodeFormat.h>
#include <ZXing/DecodeHints.h>
#include <ZXing/ImageView.h>
#include <ZXing/ReadBarcode.h>
#include <ZXing/Result.h>

#include <utility>

#include "imaging/barcode_formats.h"
#include "imaging/page_image.h"

namespace xun::imaging {
namespace {

xunFieldType TypeOf(const ZXing::Result& result) {
  // GS1-128 is Code 128 with the FNC1 marker, which the symbology identifier "]C1" shows.
  if (result.format() == ZXing::BarcodeFormat::Code128 && result.symbologyIdentifier() == "]C1")
    return xunFieldTypeBarcodeUcc128;
  for (const auto& [format, type] : kBarcodeFormats)
    if (format == result.format()) return type;
  return xunFieldTypeOMRNone;
}

}  // namespace

std::optional<detail::FoundBarcode> ReadBarcode(const std::string& file, int32_t left, int32_t top,
                                                int32_t right, int32_t bottom) {
  const GreyImage grey = ReadGreyRegion(file, left, top, right, bottom);
  ZXing::BarcodeFormats formats;
  for (const auto& entry : kBarcodeFormats)
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
