// Barcode type detection: the symbology and direction of the barcode in a region of the page
// image, read by the image module.
#include "xun/model/field.h"
#include "xun/model/page.h"
#include "xun/recognition/image_session.h"
#include "xun/recognition/imaging_module.h"
#include "xun/support/runtime_error.h"
#include "xun/support/trap.h"

namespace xun {
namespace {

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
    const std::optional<detail::FoundBarcode> found = detail::Imaging().read_barcode(
        page->ImageFile(), ToImage(left_, page->XDPI()), ToImage(top_, page->YDPI()),
        ToImage(right_, page->XDPI()), ToImage(bottom_, page->YDPI()));
    // No barcode is an answer, not a failure: the caller's values stay as they were.
    if (!found) return false;
    const xunFieldType type = found->type;
    eBarcodeType = type;
    if (eOrientation) {
      // Bars across the page read left to right or right to left: horizontal.
      const int degrees = ((found->degrees % 360) + 360) % 360;
      const bool vertical = (degrees > 45 && degrees < 135) || (degrees > 225 && degrees < 315);
      *eOrientation =
          vertical ? xunOrientationTypeBarcodeVertical : xunOrientationTypeBarcodeHorizontal;
    }
    return true;
  });
}

}  // namespace xun
