// Printing the blank form of a template page as an image.
#pragma once

#include <cstdint>
#include <string>

#include "xun/export.h"
#include "xun/model/fwd.h"

namespace xun {

// Writes the blank form of page iPage (1-based) as a grey PNG at iDpi dots per inch (50 to
// 1200): the page's size at that resolution, with the density recorded, drawn from
// printing::LayoutOf over the page's own image when it has one. The file is replaced in one step,
// so a failure leaves what was there. Failures are reported at "PrintPage" and give false: error
// 9 for a page that does not exist, 5 for a resolution out of range, 6 for an image too large, 53
// when the image module cannot be loaded.
XUN_API bool PrintPage(const clsXUNTemplate& oTemplate, int32_t iPage, const std::string& sFile,
                       int32_t iDpi = 300);

}  // namespace xun
