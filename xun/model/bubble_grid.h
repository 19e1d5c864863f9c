// Where the bubbles of an OMR region lie on its page: the one definition that the questions'
// Plot/LocateBubble/Locate, the printed page of a generated form, a drawing of the template and
// the reading of a scan all work from (docs/object-model.md, "Grid geometry").
#pragma once

#include <cstdint>
#include <vector>

#include "xun/export.h"
#include "xun/model/fwd.h"

namespace xun {

class BubbleGrid;
namespace detail {
BubbleGrid GridOf(const clsXUNField& field);
}

// A rectangle in page pixels at 100 dpi: Right = Left + width, Bottom = Top + height.
struct BubbleRect {
  int16_t Top = 0, Left = 0, Bottom = 0, Right = 0;
  bool operator==(const BubbleRect&) const = default;
};

// The bubbles of one region, row by row and column by column. A value: it does not follow later
// changes to the region.
class XUN_API BubbleGrid {
 public:
  // A grid without bubbles.
  BubbleGrid() = default;

  // The grid of an OMR region: from its registration when it is registered, else from
  // StartRow/StartCol (the first bubble's top and left edge, as offsets from the region's Top and
  // Left), RowGap/ColGap (the pitch from one bubble's edge to the next) and a bubble of half the
  // pitch each way. Without bubbles for another kind of region, a grid without rows or columns,
  // or (unregistered) a pitch that is not positive. A bubble beyond the 16-bit page is error 6,
  // reported at "BubbleGrid.Of", and gives a grid without bubbles.
  static BubbleGrid Of(const clsXUNField& oField);

  int16_t NumRows() const noexcept { return static_cast<int16_t>(tops_.size()); }
  int16_t NumCols() const noexcept { return static_cast<int16_t>(lefts_.size()); }
  bool Empty() const noexcept { return tops_.empty() || lefts_.empty(); }
  // Whether the positions come from the region's registration against its page image.
  bool Registered() const noexcept { return registered_; }
  int16_t BubbleWidth() const noexcept { return width_; }
  int16_t BubbleHeight() const noexcept { return height_; }

  // The bubble of grid row iRow, column iCol (both 1-based); all 0 outside the grid.
  BubbleRect Bubble(int32_t iRow, int32_t iCol) const noexcept;
  // The smallest rectangle holding the bubbles of rows iFirstRow..iLastRow and columns
  // iFirstCol..iLastCol (1-based, inclusive); all 0 when that block is not inside the grid.
  BubbleRect Enclosing(int32_t iFirstRow, int32_t iLastRow, int32_t iFirstCol,
                       int32_t iLastCol) const noexcept;

 private:
  friend BubbleGrid detail::GridOf(const clsXUNField& field);

  std::vector<int16_t> lefts_;  // the left edge of each column, in page pixels
  std::vector<int16_t> tops_;   // the top edge of each row
  int16_t width_ = 0, height_ = 0;
  bool registered_ = false;
};

}  // namespace xun
