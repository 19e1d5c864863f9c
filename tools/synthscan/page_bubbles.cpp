#include "synthscan/page_bubbles.h"

namespace xun::synthscan {

std::vector<OmrRegion> OmrRegionsOf(const clsXUNPage& page) {
  std::vector<OmrRegion> regions;
  if (!page.Fields()) return regions;
  for (const auto& field : *page.Fields()) {
    if (!field || field->RecognitionType() != xunRecogTypeOMR) continue;
    BubbleGrid grid = BubbleGrid::Of(*field);
    if (!grid.Empty()) regions.push_back({field->FieldName(), field, std::move(grid)});
  }
  return regions;
}

}  // namespace xun::synthscan
