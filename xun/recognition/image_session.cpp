#include "xun/recognition/image_session.h"

#include <filesystem>

#include "xun/model/page.h"
#include "xun/recognition/bas_externs.h"
#include "xun/recognition/bas_image.h"
#include "xun/support/numeric.h"
#include "xun/support/runtime_error.h"
#include "xun/support/trap.h"

namespace xun {
namespace detail {
namespace {

// The engine has one current image for the whole process.
std::mutex engine_image;
thread_local bool in_session = false;

}  // namespace

ImageSession::ImageSession(const std::string& file, int16_t xdpi, int16_t ydpi, int16_t width,
                           int16_t height)
    : file_(file) {
  // A nested sequence would unload the outer one's image under it; waiting would deadlock.
  if (in_session) Raise(kErrInvalidCall);
  lock_ = std::unique_lock(engine_image);
  in_session = true;
  try {
    code_ = basImage::LoadImage(file, xdpi, ydpi, width, height);
  } catch (...) {
    // Only a host's error gets here; the image is unloaded all the same.
    Unload();
    throw;
  }
}

ImageSession::ImageSession(const clsXUNPage& page)
    : ImageSession(page.ImageFile(), page.XDPI(), page.YDPI(), page.ImageWidth(),
                   page.ImageHeight()) {}

ImageSession::~ImageSession() {
  Unload();
}

void ImageSession::Unload() noexcept {
  try {
    basExterns::CUnloadImage();
  } catch (...) {
    // A host's handler may turn the unload's report into an error; a destructor cannot pass it
    // on, and the report has reached the host already.
  }
  in_session = false;
}

void ImageSession::RequireLoaded() const {
  if (Loaded()) return;
  throw RuntimeError(kErrPathFileAccess, "The recognition engine could not load the image file " +
                                             file_ + " (code " + std::to_string(code_) + ").");
}

bool PageImageUsable(const clsXUNPage& page) {
  std::error_code ec;
  return !page.ImageFile().empty() && std::filesystem::is_regular_file(page.ImageFile(), ec) &&
         page.XDPI() > 0 && page.YDPI() > 0 && page.ImageWidth() > 0 && page.ImageHeight() > 0;
}

void RequirePageImage(const clsXUNPage& page) {
  std::error_code ec;
  if (page.ImageFile().empty()) throw RuntimeError(kErrFileNotFound, "The page has no image file.");
  if (!std::filesystem::is_regular_file(page.ImageFile(), ec))
    throw RuntimeError(kErrFileNotFound, "File not found: " + page.ImageFile());
  if (page.XDPI() <= 0 || page.YDPI() <= 0 || page.ImageWidth() <= 0 || page.ImageHeight() <= 0)
    throw RuntimeError(kErrInvalidCall, "The page image has no resolution or size.");
}

// Computed in floating point in this order and rounded halves to even, as the engine expects.
int16_t PageRight(const clsXUNPage& page) {
  return CInt(100.0 / page.XDPI() * page.ImageWidth() - 1);
}

int16_t PageBottom(const clsXUNPage& page) {
  return CInt(100.0 / page.YDPI() * page.ImageHeight() - 1);
}

bool CountFilledPixels(clsXUNPage& page) {
  if (page.XDPI() <= 0 || page.YDPI() <= 0 || page.ImageWidth() <= 0 || page.ImageHeight() <= 0)
    return false;
  const int16_t right = PageRight(page), bottom = PageBottom(page);
  // An engine that answers success without writing leaves -1: nothing was measured, and the
  // page keeps the count it had.
  int32_t filled = -1;
  if (basExterns::CCheckImage(1, 1, right, bottom, filled) != 0 || filled < 0) return false;
  page.FilledPixels(filled);
  return true;
}

}  // namespace detail

namespace basImage {

int16_t LoadImage(const std::string& sImageFile, int16_t iXDPI, int16_t iYDPI, int16_t iWidth,
                  int16_t iHeight) {
  return Trap("basImage.LoadImage", int16_t{0},
              [&] { return basExterns::CLoadImage(sImageFile, 0, iXDPI, iYDPI, iWidth, iHeight); });
}

bool CalculateFilledPixels(const std::shared_ptr<clsXUNPage>& oPage) {
  return Trap("basImage.CalculateFilledPixels", false, [&] {
    if (!oPage) Raise(kErrObjectNotSet);
    return detail::CountFilledPixels(*oPage);
  });
}

}  // namespace basImage
}  // namespace xun
