// The OMR regions of a template page and where their bubbles lie, taken from the one grid
// definition (xun::BubbleGrid).
#pragma once

#include <compare>
#include <memory>
#include <string>
#include <vector>

#include "xun/xun.h"

namespace xun::synthscan {

struct OmrRegion {
  std::string name;
  std::shared_ptr<clsXUNField> field;
  BubbleGrid grid;
};

// The regions of `page` that have bubbles, in the page's order.
std::vector<OmrRegion> OmrRegionsOf(const clsXUNPage& page);

// One bubble: its region's name, grid row and column (1-based).
struct BubbleAt {
  std::string region;
  int row = 0, col = 0;
  auto operator<=>(const BubbleAt&) const = default;
};

}  // namespace xun::synthscan
