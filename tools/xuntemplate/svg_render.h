// One page of a template drawn as SVG, as a person wants to see it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "xun/xun.h"

namespace xuntool {

// The page outline at its size (1 unit = 1 pixel at 100 dpi), the page image underneath when
// there is one, every region coloured by kind with its name, OMR bubble grids, timing marks,
// identification regions dashed, link groups joined by a line, and a legend below the page.
// What could not be drawn is added to `notes`. `page` is 1-based and must exist.
std::string RenderPageSvg(const xun::clsXUNTemplate& t, int32_t page,
                          std::vector<std::string>& notes);

}  // namespace xuntool
