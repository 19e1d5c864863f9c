// Importing a page of an image file as the page's own black-and-white PCX image.
#include <filesystem>

#include "xun/model/page.h"
#include "xun/model/template.h"
#include "xun/recognition/image_session.h"
#include "xun/recognition/imaging_module.h"
#include "xun/support/error_reporter.h"
#include "xun/support/file_helpers.h"
#include "xun/support/runtime_error.h"
#include "xun/support/trap.h"
#include "xun/templatefile/file_layer.h"

namespace xun {

bool clsXUNPage::ImageImport(const std::string& sImportFile, int32_t lImagePageIndex) {
  return Trap("clsXUNPage.ImageImport", false, [&] {
    namespace fs = std::filesystem;
    const std::shared_ptr<clsXUNTemplate> owner = Template();
    detail::DropOutRule rule;
    // Office forms are printed without drop-out ink; every other kind may carry it.
    rule.drop_colour = !owner || owner->ReadType() != xunTemplateReadTypeOffice;
    rule.colour = drop_out_color_;
    rule.threshold = drop_out_threshold_;
    const detail::ImportedPage imported = detail::Imaging().import_page(
        sImportFile, lImagePageIndex, rule, owner ? owner->PageWidth() : 0,
        owner ? owner->PageHeight() : 0);

    const std::string own_file = basPublic::GetUniqueFileName("", ".pcx", "");
    if (own_file.empty()) Raise(kErrPathFileAccess);
    fs::remove(own_file);
    // Written whole or not at all; the page changes only once its new image is in place.
    basTemplate::detail::ReplaceFileContent(own_file, imported.pcx);

    std::error_code ec;
    if (!image_file_.empty() && fs::is_regular_file(image_file_, ec)) fs::remove(image_file_, ec);
    image_file_ = own_file;
    xdpi_ = imported.xdpi;
    ydpi_ = imported.ydpi;
    image_width_ = imported.width;
    image_height_ = imported.height;

    // The count comes from the engine, as at every later save, so the two always agree. Until it
    // answers the page is "not measured".
    filled_pixels_ = -1;
    detail::ImageSession session(*this);
    if (session.Loaded()) {
      detail::CountFilledPixels(*this);
    } else {
      // The image is imported; only its count is missing, so that is reported and the import
      // stands.
      try {
        session.RequireLoaded();
      } catch (const RuntimeError& e) {
        basError::ReportError(0, Variant(e.Number()), basError::kKindRuntime, e.Description(),
                              "clsXUNPage.ImageImport");
      }
    }
    return true;
  });
}

}  // namespace xun
