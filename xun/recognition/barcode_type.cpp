// Barcode type detection: the symbology and direction of the barcode in a region of the page
// image, read with ZXing.
#include <ZXing/BarcodeFormat.h>
#include <ZXing/DecodeHints.h>
#include <ZXing/ImageView.h>
#include <ZXing/ReadBarcode.h>
#include <ZXing/Result.h>

#include <utility>

#include "xun/model/field.h"
#include "xun/model/page.h"
#include "xun/recognition/image_session.h"
#include "xun/recognition/page_image.h"
#include "xun/support/runtime_error.h"
#include "xun/support/trap.h"

namespace xun {
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

// Region coordinates are 100-dpi pixels; the image has the page's own resolution.
int32_t ToImage(int16_t value, int16_t dpi) {
  return static_cast<int32_t>(static_cast<int64_t>(value) * dpi / 100);
}

}  // namespace

bool clsXUNField::GetBarcodeType(xunFieldType& eBarcodeType, xunOrientationType* eOrientation) {
  return Trap("clsXUNField.GetBarcodeType", false, [&] {
    const std::shared_ptr<clsXUNPage> page = Page();
    if (!page) Raise(kErrObjectNotSet);
    detail::RequirePageImage(*page);
    if (right_ <= left_ || bottom_ <= top_)
      throw RuntimeError(kErrInvalidCall, "The region is empty.");
    const detail::GreyImage grey = detail::ReadGreyRegion(
        page->ImageFile(), ToImage(left_, page->XDPI()), ToImage(top_, page->YDPI()),
        ToImage(right_, page->XDPI()), ToImage(bottom_, page->YDPI()));

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
    // No barcode is an answer, not a failure: the caller's values stay as they were.
    if (!result.isValid()) return false;
    const xunFieldType type = TypeOf(result);
    if (type == xunFieldTypeOMRNone) return false;
    eBarcodeType = type;
    if (eOrientation) {
      // Bars across the page read left to right or right to left: horizontal.
      const int degrees = ((result.orientation() % 360) + 360) % 360;
      const bool vertical = (degrees > 45 && degrees < 135) || (degrees > 225 && degrees < 315);
      *eOrientation =
          vertical ? xunOrientationTypeBarcodeVertical : xunOrientationTypeBarcodeHorizontal;
    }
    return true;
  });
}

}  // namespace xun
