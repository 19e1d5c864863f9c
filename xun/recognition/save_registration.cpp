#include "xun/recognition/save_registration.h"

#include <string>

#include "xun/model/field.h"
#include "xun/model/fields.h"
#include "xun/model/page.h"
#include "xun/model/pages.h"
#include "xun/model/template.h"
#include "xun/recognition/bas_image.h"
#include "xun/recognition/image_session.h"
#include "xun/support/error_reporter.h"
#include "xun/support/message_box.h"

namespace xun::detail {
namespace {

void Tell(const std::string& title, const std::string& text, bool bVerbose) {
  if (bVerbose) basError::ShowMessage(title, text, MessageBoxIcon::Exclamation);
  basError::ReportError(0, Variant::Missing(), basError::kKindValidation, text,
                        "basTemplate.SaveTemplate", title, {}, {}, {}, 1, {}, {}, {}, 0,
                        Variant(!bVerbose));
}

void TellInvalidImage(int32_t page_number, bool bVerbose) {
  const std::string n = std::to_string(page_number);
  // "templage" is the message's own spelling; hosts match on it.
  Tell("Region Registration Error",
       "The image file for templage page " + n +
           " is invalid. Please select or scan an image for page " + n +
           " before using the template.",
       bVerbose);
}

void TellRegionFailure(int16_t code, int32_t page_number, const clsXUNField& field, bool bVerbose) {
  // A region the engine cannot be asked about is the region's own fault; anything else went
  // wrong on the image.
  const char* title = code == basImage::kRegisterInvalidRegion ? "Invalid Region Registration"
                                                               : "Region Registration Error";
  Tell(title,
       "An error occurred attempting to register a region. Please adjust the region borders "
       "and/or region properties where appropriate to allow for region registration before using "
       "the template.\r\n\r\nPage: " +
           std::to_string(page_number) + "\r\nRegion: " + field.FieldName(),
       bVerbose);
}

}  // namespace

void RegisterForSave(clsXUNTemplate& oTemplate, bool bRegister, bool bVerbose) {
  const std::shared_ptr<clsXUNPages> pages = oTemplate.Pages();
  if (!pages) return;
  int32_t page_number = 0;
  for (const std::shared_ptr<clsXUNPage>& page : *pages) {
    ++page_number;
    // A page that names no image (a template built without images) has nothing to register
    // against or to count.
    if (page->ImageFile().empty()) continue;
    const std::shared_ptr<clsXUNFields> fields = page->Fields();
    const bool registers = bRegister && fields && fields->Count() > 0;
    if (!PageImageUsable(*page)) {
      if (registers) {
        TellInvalidImage(page_number, bVerbose);
      }
      continue;
    }
    ImageSession session(*page);
    if (!session.Loaded()) {
      if (registers) {
        TellInvalidImage(page_number, bVerbose);
      }
      continue;
    }
    if (registers) {
      for (const std::shared_ptr<clsXUNField>& field : *fields) {
        const int16_t code = RegisterOnLoadedImage(*field, *page);
        if (code == 0) continue;
        TellRegionFailure(code, page_number, *field, bVerbose);
      }
    }
    CountFilledPixels(*page);
  }
}

}  // namespace xun::detail
