// A registered OMR region's bubbles as its Extra holds them (layout in docs/recognition.md):
// read by the grid geometry, written by registration. Only the unnamed values carry it, so named
// settings kept in Extra may stand anywhere in the list.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "xun/model/fwd.h"

namespace xun::detail {

struct GridRegistration {
  int16_t rows = 0, cols = 0;
  int16_t width = 0, height = 0;  // of every bubble
  std::vector<int16_t> lefts;     // each column's left edge, as an offset from the region's Left
  std::vector<int16_t> tops;      // each row's top edge, as an offset from the region's Top
  std::vector<int16_t> fills;     // the blank fill of every bubble in percent, row by row
};

// The registration of the region's current grid: its unnamed Extra values have exactly the
// layout for NumRows by NumCols, with bubbles of positive size. nullopt otherwise (a changed
// grid size unregisters the region), and for a region that is not OMR.
std::optional<GridRegistration> ReadRegistration(const clsXUNField& field);

// Replaces the unnamed values of `extra` with `registration`; named entries stay, after them.
void WriteRegistration(clsXUNFieldExtra& extra, const GridRegistration& registration);

}  // namespace xun::detail
