// Which printed shapes register a scanned page: its bubbles, which every OMR form shows; or its
// timing marks, when the bubbles are printed in a drop-out ink the scanner does not see.
#pragma once

#include <optional>
#include <string>

#include "xun/reading/page_fit.h"
#include "xun/reading/reading_plan.h"
#include "xun/reading/scanned_page.h"

namespace xun::reading::detail {

struct Registration {
  PageFit fit;     // page units to the scanned page's pixels
  std::string by;  // "bubbles", "timing marks" or "the whole scan"
};

// The fit of `plan`'s page to `page` (at `xdpi` x `ydpi`, the page's size on the image). A page
// whose bubbles show is registered by them; a drop-out page by its timing marks, of which one
// may be missing or smudged; a page of only barcodes or text with no timing marks is the whole
// scan, scaled. Nothing, with `why`, when the page cannot be registered.
std::optional<Registration> RegisterPage(const ScannedPage& page, double xdpi, double ydpi,
                                         const PagePlan& plan, std::string& why);

}  // namespace xun::reading::detail
