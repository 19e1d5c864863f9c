#include "xun/reading/scan_pages.h"

#include "engine/engine_error.h"
#include "engine/image_file.h"

namespace xun::reading {

std::vector<ScanPage> PagesOf(const std::vector<std::string>& files) {
  std::vector<ScanPage> pages;
  for (const std::string& file : files) {
    int32_t count = 1;
    try {
      count = std::max(1, xunrec::PageCount(file));
    } catch (const xunrec::EngineError&) {
    }
    for (int32_t frame = 0; frame < count; ++frame)
      pages.push_back({file, frame});
  }
  return pages;
}

}  // namespace xun::reading
