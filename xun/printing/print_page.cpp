#include "xun/printing/print_page.h"

#include "xun/printing/page_layout.h"
#include "xun/recognition/imaging_module.h"
#include "xun/support/runtime_error.h"
#include "xun/support/trap.h"
#include "xun/templatefile/file_layer.h"

namespace xun {

bool PrintPage(const clsXUNTemplate& oTemplate, int32_t iPage, const std::string& sFile,
               int32_t iDpi) {
  return Trap("PrintPage", false, [&] {
    if (iDpi < 50 || iDpi > 1200 || sFile.empty()) Raise(kErrInvalidCall);
    const printing::PageLayout layout = printing::LayoutOf(oTemplate, iPage);
    const std::string png = detail::Imaging().print_page(layout, iDpi);
    basTemplate::detail::ReplaceFileContent(sFile, png);
    return true;
  });
}

}  // namespace xun
