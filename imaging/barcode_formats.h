// Which ZXing symbology each barcode region type is, for reading and for printing.
#pragma once

#include <ZXing/BarcodeFormat.h>

#include <utility>

#include "xun/model/enums.h"

namespace xun::imaging {

// The symbologies a barcode region can be set to that ZXing reads. Code 39 Extended cannot be
// told from Code 39 by the symbol, and the 2-of-5 variants other than interleaved, Code 11,
// Patch, Code 32 and Postnet are not read: such a barcode is simply not found.
inline constexpr std::pair<ZXing::BarcodeFormat, xunFieldType> kBarcodeFormats[] = {
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

// The symbology a region of `type` prints: its own, Code 128 for "any" (Auto) and for GS1-128,
// Code 39 for Code 39 Extended; None for a type ZXing cannot write.
inline ZXing::BarcodeFormat PrintedFormat(xunFieldType type) {
  if (type == xunFieldTypeBarcodeAuto || type == xunFieldTypeBarcodeUcc128)
    return ZXing::BarcodeFormat::Code128;
  if (type == xunFieldTypeBarcodeCode39Extended) return ZXing::BarcodeFormat::Code39;
  for (const auto& [format, region_type] : kBarcodeFormats)
    if (region_type == type) return format;
  return ZXing::BarcodeFormat::None;
}

}  // namespace xun::imaging
