// The pages a scanner gave: one image file a page, or several pages in one multi-page TIFF or
// DCX file, in the order given.
#pragma once

#include <string>
#include <vector>

#include "xun/reading/export.h"

namespace xun::reading {

// One page of a scan: a file and the page within it, from 0.
struct ScanPage {
  std::string file;
  int32_t frame = 0;
};

// Every page of the files in order: each page of a TIFF or DCX, one of any other file. A file
// that cannot be opened counts as one page; reading it gives the reason.
XUN_READING_API std::vector<ScanPage> PagesOf(const std::vector<std::string>& files);

}  // namespace xun::reading
