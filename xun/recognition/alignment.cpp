// Aligning regions on a page image: the engine moves a grid's rectangle to where it finds it.
#include <filesystem>

#include "xun/model/field.h"
#include "xun/model/fields.h"
#include "xun/model/page.h"
#include "xun/recognition/bas_externs.h"
#include "xun/recognition/bas_image.h"
#include "xun/recognition/image_session.h"
#include "xun/support/runtime_error.h"
#include "xun/support/trap.h"

namespace xun {
namespace {

// How far, in 100-dpi pixels, the engine may look for a grid around its rectangle: a quarter of
// an inch covers the drift of a sheet in a scanner.
constexpr int16_t kAlignSearchDistance = 25;

void RequireResolution(int16_t x, int16_t y) {
  if (x <= 0 || y <= 0) throw RuntimeError(kErrInvalidCall, "The resolution must be positive.");
}

// The page's image file and size; the resolution is the caller's.
void RequireImageFileAndSize(const clsXUNPage& page) {
  std::error_code ec;
  if (page.ImageFile().empty() || !std::filesystem::is_regular_file(page.ImageFile(), ec))
    detail::RequirePageImage(page);  // reports which of the two is missing
  if (page.ImageWidth() <= 0 || page.ImageHeight() <= 0)
    throw RuntimeError(kErrInvalidCall, "The page image has no size.");
}

}  // namespace

namespace detail {

bool AlignOnLoadedImage(clsXUNField& field) {
  if (field.RecognitionType() != xunRecogTypeOMR) return true;
  if (field.Right() <= field.Left() || field.Bottom() <= field.Top() || field.NumRows() <= 0 ||
      field.NumCols() <= 0)
    return false;
  // Seeded with the rectangle as it is: an engine that writes nothing moves nothing.
  int16_t left = field.Left(), top = field.Top(), right = field.Right(), bottom = field.Bottom();
  const int16_t code = basExterns::CAlignOMRField(field.Left(), field.Top(), field.Right(),
                                                  field.Bottom(), field.NumRows(), field.NumCols(),
                                                  kAlignSearchDistance, left, top, right, bottom);
  if (code != 0 || right <= left || bottom <= top) return false;
  // Registration offsets are relative to the rectangle, so they move with it.
  field.Left(left);
  field.Top(top);
  field.Right(right);
  field.Bottom(bottom);
  return true;
}

}  // namespace detail

namespace basImage {

bool AlignOMRField(const std::shared_ptr<clsXUNField>& oField) {
  return Trap("basImage.AlignOMRField", false, [&] {
    if (!oField) Raise(kErrObjectNotSet);
    return detail::AlignOnLoadedImage(*oField);
  });
}

}  // namespace basImage

bool clsXUNField::Align(int16_t iXResolution, int16_t iYResolution) {
  return Trap("clsXUNField.Align", false, [&] {
    RequireResolution(iXResolution, iYResolution);
    const std::shared_ptr<clsXUNPage> page = Page();
    if (!page) Raise(kErrObjectNotSet);
    RequireImageFileAndSize(*page);
    if (recognition_type_ != xunRecogTypeOMR) return true;
    detail::ImageSession session(page->ImageFile(), iXResolution, iYResolution, page->ImageWidth(),
                                 page->ImageHeight());
    session.RequireLoaded();
    return detail::AlignOnLoadedImage(*this);
  });
}

bool clsXUNPage::Align(int16_t iXResolution, int16_t iYResolution) {
  return Trap("clsXUNPage.Align", false, [&] {
    RequireResolution(iXResolution, iYResolution);
    RequireImageFileAndSize(*this);
    detail::ImageSession session(image_file_, iXResolution, iYResolution, image_width_,
                                 image_height_);
    session.RequireLoaded();
    bool all = true;
    if (fields_)
      for (const std::shared_ptr<clsXUNField>& field : *fields_)
        all = detail::AlignOnLoadedImage(*field) && all;
    // The image was taken at this resolution; the pixel count follows it.
    xdpi_ = iXResolution;
    ydpi_ = iYResolution;
    detail::CountFilledPixels(*this);
    return all;
  });
}

}  // namespace xun
