#include "xun/model/bubble_grid.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "xun/model/field.h"
#include "xun/model/grid_registration.h"
#include "xun/support/runtime_error.h"
#include "xun/support/trap.h"

namespace xun {
namespace detail {
namespace {

// Every bubble edge must be a 16-bit page position: the edges of the first and last bubble of
// each line are checked, so every edge between them fits as well.
std::vector<int16_t> Edges(int32_t origin, const std::vector<int32_t>& offsets, int32_t size) {
  std::vector<int16_t> edges;
  edges.reserve(offsets.size());
  for (const int32_t offset : offsets) {
    const int64_t edge = int64_t{origin} + offset;
    if (edge < std::numeric_limits<int16_t>::min() ||
        edge + size > std::numeric_limits<int16_t>::max())
      Raise(kErrOverflow);
    edges.push_back(static_cast<int16_t>(edge));
  }
  return edges;
}

// The offsets of `count` lines from the first at `start`, `pitch` apart.
std::vector<int32_t> Pitched(int32_t start, int32_t pitch, int32_t count) {
  std::vector<int32_t> offsets;
  offsets.reserve(static_cast<size_t>(count));
  for (int32_t i = 0; i < count; ++i)
    offsets.push_back(start + i * pitch);
  return offsets;
}

}  // namespace

BubbleGrid GridOf(const clsXUNField& field) {
  BubbleGrid grid;
  if (field.RecognitionType() != xunRecogTypeOMR || field.NumRows() < 1 || field.NumCols() < 1)
    return grid;
  std::vector<int32_t> lefts, tops;
  int32_t width = 0, height = 0;
  if (const std::optional<GridRegistration> registration = ReadRegistration(field)) {
    lefts.assign(registration->lefts.begin(), registration->lefts.end());
    tops.assign(registration->tops.begin(), registration->tops.end());
    width = registration->width;
    height = registration->height;
    grid.registered_ = true;
  } else {
    if (field.ColGap() < 1 || field.RowGap() < 1) return grid;
    lefts = Pitched(field.StartCol(), field.ColGap(), field.NumCols());
    tops = Pitched(field.StartRow(), field.RowGap(), field.NumRows());
    // A printed bubble takes half its pitch, leaving as much paper between neighbours.
    width = std::max(1, field.ColGap() / 2);
    height = std::max(1, field.RowGap() / 2);
  }
  grid.lefts_ = Edges(field.Left(), lefts, width);
  grid.tops_ = Edges(field.Top(), tops, height);
  grid.width_ = static_cast<int16_t>(width);
  grid.height_ = static_cast<int16_t>(height);
  return grid;
}

}  // namespace detail

BubbleGrid BubbleGrid::Of(const clsXUNField& oField) {
  return Trap("BubbleGrid.Of", BubbleGrid(), [&] { return detail::GridOf(oField); });
}

BubbleRect BubbleGrid::Bubble(int32_t iRow, int32_t iCol) const noexcept {
  if (iRow < 1 || iRow > NumRows() || iCol < 1 || iCol > NumCols()) return {};
  const int16_t left = lefts_[static_cast<size_t>(iCol - 1)];
  const int16_t top = tops_[static_cast<size_t>(iRow - 1)];
  // GridOf checked that every bubble ends inside 16 bits.
  return {top, left, static_cast<int16_t>(top + height_), static_cast<int16_t>(left + width_)};
}

BubbleRect BubbleGrid::Enclosing(int32_t iFirstRow, int32_t iLastRow, int32_t iFirstCol,
                                 int32_t iLastCol) const noexcept {
  if (iFirstRow < 1 || iFirstRow > iLastRow || iLastRow > NumRows() || iFirstCol < 1 ||
      iFirstCol > iLastCol || iLastCol > NumCols())
    return {};
  // A registration's edges need not increase, so every line of the block is looked at.
  const auto [left, right] =
      std::minmax_element(lefts_.begin() + (iFirstCol - 1), lefts_.begin() + iLastCol);
  const auto [top, bottom] =
      std::minmax_element(tops_.begin() + (iFirstRow - 1), tops_.begin() + iLastRow);
  return {*top, *left, static_cast<int16_t>(*bottom + height_),
          static_cast<int16_t>(*right + width_)};
}

}  // namespace xun
