// The blank form a scan starts from: printed by the library (xun::PrintPage), or a print of it
// that the caller already has.
#pragma once

#include <opencv2/core.hpp>

#include <string>

#include "xun/xun.h"

namespace xun::synthscan {

// The size in pixels of page images of `form` at `dpi`.
cv::Size PageSizeAt(const clsXUNTemplate& form, int dpi);

// Page `page` of `form` printed at `dpi`, as 8-bit grey. Throws std::runtime_error when the
// library cannot print it.
cv::Mat PrintedPage(const clsXUNTemplate& form, int page, int dpi);

// The printed page in `file`, which must be a print of `form` at `dpi` (its size in pixels is
// the page's size at `dpi`). Throws std::runtime_error otherwise.
cv::Mat PrintedPageFile(const std::string& file, const clsXUNTemplate& form, int dpi);

}  // namespace xun::synthscan
