// Registering a region against its page image: the bubble grid the engine finds becomes the
// region's Extra (layout in docs/recognition.md).
#include <algorithm>
#include <vector>

#include "xun/model/bubble.h"
#include "xun/model/bubbles.h"
#include "xun/model/field.h"
#include "xun/model/page.h"
#include "xun/recognition/bas_externs.h"
#include "xun/recognition/bas_image.h"
#include "xun/recognition/image_session.h"
#include "xun/support/error_reporter.h"
#include "xun/support/numeric.h"
#include "xun/support/trap.h"

namespace xun {
namespace {

// Extra: rows, columns, bubble width and height, then the column and row offsets, then the
// fill of every bubble by rows.
constexpr int32_t kExtraHeader = 4;

// The engine's result array: rows and columns found, bubble width and height, one element of its
// own, then the left edge of every column and the top edge of every row.
constexpr int32_t kResultHeader = 5;

int32_t ExtraCount(int32_t rows, int32_t cols) {
  return kExtraHeader + cols + rows + rows * cols;
}

bool HasRectangle(const clsXUNField& field) {
  return field.Right() > field.Left() && field.Bottom() > field.Top();
}

// A grid the engine can be asked about: a rectangle, and rows and columns whose bubbles the
// 16-bit counts can hold.
bool HasGrid(const clsXUNField& field) {
  return HasRectangle(field) && field.NumRows() > 0 && field.NumCols() > 0 &&
         static_cast<int32_t>(field.NumRows()) * field.NumCols() <= 32767;
}

bool Increasing(const std::vector<int16_t>& values) {
  return std::adjacent_find(values.begin(), values.end(), std::greater_equal<>()) == values.end();
}

}  // namespace

namespace detail {

int16_t RegisterOnLoadedImage(clsXUNField& field, const clsXUNPage& page) {
  // Only a grid has anything to register; other regions must lie on the image.
  if (field.RecognitionType() != xunRecogTypeOMR) {
    const bool on_image = HasRectangle(field) && field.Left() >= 0 && field.Top() >= 0 &&
                          field.Right() <= PageRight(page) + 1 &&
                          field.Bottom() <= PageBottom(page) + 1;
    return on_image ? int16_t{0} : basImage::kRegisterInvalidRegion;
  }
  if (!HasGrid(field)) return basImage::kRegisterInvalidRegion;
  const int16_t rows = field.NumRows(), cols = field.NumCols();
  std::vector<int16_t> results(static_cast<size_t>(rows + cols + kResultHeader), 0);
  std::vector<int16_t> fill(static_cast<size_t>(rows) * static_cast<size_t>(cols), 0);
  // On a page scanned with a drop-out colour the printed bubbles vanish from the image, so there
  // is no blank fill to measure.
  const bool drop_out = page.DropOutColor() != xunTemplateDropOutColorNone;
  const int16_t code =
      drop_out ? basExterns::CCheckOMR(rows, cols, field.Left(), field.Top(), field.Right(),
                                       field.Bottom(), results.data())
               : basExterns::CCheckOMRFill(rows, cols, field.Left(), field.Top(), field.Right(),
                                           field.Bottom(), results.data(), fill.data());
  if (code != 0) return code;

  // What the engine found must be this region's grid, inside its rectangle.
  const int16_t width = results[2], height = results[3];
  const std::vector<int16_t> lefts(results.begin() + kResultHeader,
                                   results.begin() + kResultHeader + cols);
  const std::vector<int16_t> tops(results.begin() + kResultHeader + cols, results.end());
  const auto inside = [](int16_t from, int16_t size, int16_t low, int16_t high) {
    return from >= low && static_cast<int32_t>(from) + size <= high;
  };
  if (results[0] != rows || results[1] != cols || width <= 0 || height <= 0 || !Increasing(lefts) ||
      !Increasing(tops) || !inside(lefts.front(), 0, field.Left(), field.Right()) ||
      !inside(lefts.back(), width, field.Left(), field.Right()) ||
      !inside(tops.front(), 0, field.Top(), field.Bottom()) ||
      !inside(tops.back(), height, field.Top(), field.Bottom()))
    return basImage::kRegisterBadResult;

  const std::shared_ptr<clsXUNBubbles> bubbles = clsXUNBubbles::Create();
  for (int16_t r = 0; r < rows; ++r) {
    for (int16_t c = 0; c < cols; ++c) {
      const std::shared_ptr<clsXUNBubble> bubble = clsXUNBubble::Create();
      bubble->Left(lefts[c]);
      bubble->Top(tops[r]);
      bubble->Right(Add16(lefts[c], width));
      bubble->Bottom(Add16(tops[r], height));
      // The engine's array has the row index running fastest.
      const int16_t percent = fill[static_cast<size_t>(c) * rows + r];
      bubble->PercentFilled(std::clamp<int16_t>(percent, 0, 100));
      bubbles->Add(bubble);
    }
  }
  const bool built = field.BuildExtra(bubbles);
  bubbles->Free();
  return built ? int16_t{0} : basImage::kRegisterBadResult;
}

}  // namespace detail

namespace basImage {

int16_t RegisterOMR(const std::shared_ptr<clsXUNField>& oField) {
  return Trap("basImage.RegisterOMR", kRegisterFailed, [&] {
    if (!oField) Raise(kErrObjectNotSet);
    const std::shared_ptr<clsXUNPage> page = oField->Page();
    if (!page) Raise(kErrObjectNotSet);
    return detail::RegisterOnLoadedImage(*oField, *page);
  });
}

}  // namespace basImage

bool clsXUNField::IsRegistered() {
  return Trap("clsXUNField.IsRegistered", false, [&] {
    if (recognition_type_ != xunRecogTypeOMR) return true;
    if (!extra_ || !HasGrid(*this)) return false;
    // The layout is that of the unnamed values: named ones never count.
    const std::vector<int16_t> values = extra_->UnnamedValues();
    return std::ssize(values) == ExtraCount(num_rows_, num_cols_) && values[0] == num_rows_ &&
           values[1] == num_cols_ && values[2] > 0 && values[3] > 0;
  });
}

bool clsXUNField::BubbleSearch(int16_t& iNumCols, int16_t& iNumRows, int16_t& iResult) {
  return Trap("clsXUNField.BubbleSearch", false, [&] {
    const std::shared_ptr<clsXUNPage> page = Page();
    if (!page) Raise(kErrObjectNotSet);
    detail::RequirePageImage(*page);
    if (!HasRectangle(*this)) throw RuntimeError(kErrInvalidCall, "The region is empty.");
    detail::ImageSession session(*page);
    if (!session.Loaded()) {
      iResult = session.LoadCode();
      session.RequireLoaded();
    }
    int16_t rows = iNumRows, cols = iNumCols;
    iResult = basExterns::CSearchOMR(left_, top_, right_, bottom_, rows, cols);
    if (iResult != 0) return false;
    iNumRows = rows;
    iNumCols = cols;
    return true;
  });
}

int16_t clsXUNField::Register() {
  // A trapped failure must not read as 0, which means registered.
  return Trap("clsXUNField.Register", basImage::kRegisterFailed, [&] {
    const std::shared_ptr<clsXUNPage> page = Page();
    if (!page || !detail::PageImageUsable(*page)) return basImage::kRegisterNoImage;
    if (recognition_type_ == xunRecogTypeOMR && !HasGrid(*this))
      return basImage::kRegisterInvalidRegion;
    detail::ImageSession session(*page);
    if (!session.Loaded()) {
      // Reported here, the engine's code answered: nothing is searched on an image not loaded.
      try {
        session.RequireLoaded();
      } catch (const RuntimeError& e) {
        basError::ReportError(0, Variant(e.Number()), basError::kKindRuntime, e.Description(),
                              "clsXUNField.Register");
      }
      return session.LoadCode();
    }
    return detail::RegisterOnLoadedImage(*this, *page);
  });
}

bool clsXUNField::BuildExtra(const std::shared_ptr<clsXUNBubbles>& oBubbles) {
  return Trap("clsXUNField.BuildExtra", false, [&] {
    if (!oBubbles) Raise(kErrObjectNotSet);
    if (recognition_type_ != xunRecogTypeOMR || !HasGrid(*this))
      throw RuntimeError(kErrInvalidCall, "The region has no bubble grid.");
    const int32_t rows = num_rows_, cols = num_cols_;
    if (oBubbles->Count() != rows * cols)
      throw RuntimeError(kErrInvalidCall, "The bubbles do not fill the region's grid.");
    const auto bubble = [&](int32_t r, int32_t c) { return oBubbles->Item(r * cols + c + 1); };
    const std::shared_ptr<clsXUNBubble> first = bubble(0, 0);
    if (!first || first->Width() <= 0 || first->Height() <= 0)
      throw RuntimeError(kErrInvalidCall, "The bubbles have no size.");

    // Built whole first, so a failure leaves the old registration in place.
    std::vector<int16_t> values = {num_rows_, num_cols_, first->Width(), first->Height()};
    for (int32_t c = 0; c < cols; ++c)
      values.push_back(Sub16(bubble(0, c)->Left(), left_));
    for (int32_t r = 0; r < rows; ++r)
      values.push_back(Sub16(bubble(r, 0)->Top(), top_));
    for (int32_t r = 0; r < rows; ++r)
      for (int32_t c = 0; c < cols; ++c)
        values.push_back(bubble(r, c)->PercentFilled());

    // The grid geometry follows what was found: the first bubble's offset and the mean pitch.
    const int16_t start_col = values[kExtraHeader];
    const int16_t start_row = values[static_cast<size_t>(kExtraHeader + cols)];
    int16_t col_gap = col_gap_, row_gap = row_gap_;
    if (cols > 1)
      col_gap = CInt(
          static_cast<double>(values[static_cast<size_t>(kExtraHeader + cols - 1)] - start_col) /
          (cols - 1));
    if (rows > 1)
      row_gap = CInt(static_cast<double>(
                         values[static_cast<size_t>(kExtraHeader + cols + rows - 1)] - start_row) /
                     (rows - 1));

    if (!extra_) extra_ = clsXUNFieldExtra::Create();
    // Named values (older region settings) stay.
    if (!extra_->ReplaceUnnamedValues(values)) return false;
    start_col_ = start_col;
    start_row_ = start_row;
    col_gap_ = col_gap;
    row_gap_ = row_gap;
    return true;
  });
}

}  // namespace xun
