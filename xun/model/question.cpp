#include "xun/model/question.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "xun/model/field.h"
#include "xun/model/fields.h"
#include "xun/model/page.h"
#include "xun/model/questions.h"
#include "xun/support/numeric.h"
#include "xun/support/runtime_error.h"
#include "xun/support/text.h"
#include "xun/support/trap.h"

namespace xun {
namespace {

// The 1-based position of the question in its list, 0 when it is in none.
int32_t PositionOf(const clsXUNQuestion& question) {
  const std::shared_ptr<clsXUNQuestions> list = question.Questions();
  if (!list) return 0;
  int32_t position = 0;
  for (const std::shared_ptr<clsXUNQuestion>& member : *list) {
    ++position;
    if (member.get() == &question) return position;
  }
  return 0;
}

// Visits the question at the same position in every region of its link group, in page order,
// until `visit` returns false. A question of an unlinked region (or of one outside a page) is
// its own group. The page is held for the whole walk, so no region goes away under it.
template <class Visit>
void ForEachLinked(const clsXUNQuestion& self, Visit&& visit) {
  const std::shared_ptr<clsXUNField> field = self.Field();
  const std::shared_ptr<clsXUNPage> page =
      field && field->LinkGroup() >= 1 ? field->Page() : nullptr;
  const std::shared_ptr<clsXUNFields> fields = page ? page->Fields() : nullptr;
  const int32_t position = PositionOf(self);
  if (!fields || position < 1) {
    visit(self);
    return;
  }
  for (const std::shared_ptr<clsXUNField>& member : *fields) {
    if (!member || member->LinkGroup() != field->LinkGroup()) continue;
    const std::shared_ptr<clsXUNQuestions> questions = member->Questions();
    const std::shared_ptr<clsXUNQuestion> linked = questions ? questions->Item(position) : nullptr;
    if (linked && !visit(*linked)) return;
  }
}

// A new list holding the strings that `list_of` gives for each question of the link group.
template <class ListOf>
std::shared_ptr<clsXUNStringItems> Gather(const clsXUNQuestion& self, ListOf list_of) {
  std::shared_ptr<clsXUNStringItems> all = clsXUNStringItems::Create();
  ForEachLinked(self, [&](const clsXUNQuestion& question) {
    if (const std::shared_ptr<clsXUNStringItems> items = list_of(question))
      for (const std::string& item : *items)
        all->Add(item);
    return true;
  });
  return all;
}

// The first and last grid row and column of a question's bubbles (1-based, inclusive).
struct GridSpan {
  int16_t first_row, last_row, first_col, last_col;
};

// Where question `position` of the region lies in its grid; nullopt when it has no bubbles
// there (not an OMR region, another orientation, or beyond the grid).
std::optional<GridSpan> PlotIn(const clsXUNField& field, int32_t position) {
  if (position < 1 || field.RecognitionType() != xunRecogTypeOMR) return std::nullopt;
  const xunOrientationType orient = field.Orient();
  if (orient != xunOrientationTypeOMRRow && orient != xunOrientationTypeOMRCol) return std::nullopt;
  const int16_t rows = field.NumRows();
  const int16_t cols = field.NumCols();
  if (rows < 1 || cols < 1) return std::nullopt;
  if (field.FieldType() == xunFieldTypeOMRBoolean) {
    // Every bubble is a question of its own, taken in reading order.
    if (position > Mul16(rows, cols)) return std::nullopt;
    const int32_t at = position - 1;
    const bool by_rows = orient == xunOrientationTypeOMRRow;
    const int16_t row = To16(by_rows ? at / cols + 1 : at % rows + 1);
    const int16_t col = To16(by_rows ? at % cols + 1 : at / rows + 1);
    return GridSpan{row, row, col, col};
  }
  if (orient == xunOrientationTypeOMRRow) {
    if (position > rows) return std::nullopt;
    const int16_t row = To16(position);
    return GridSpan{row, row, 1, cols};
  }
  if (position > cols) return std::nullopt;
  const int16_t col = To16(position);
  return GridSpan{1, rows, col, col};
}

struct Rect {
  int16_t top, left, bottom, right;
};

// The pixel cell of grid row `row`, column `col` (1-based). The grid origin is an offset from
// the region's corner, so the grid moves with the region.
Rect CellAt(const clsXUNField& field, int32_t row, int32_t col) {
  const int16_t left = Add16(Add16(field.Left(), field.StartCol()), Mul16(col - 1, field.ColGap()));
  const int16_t top = Add16(Add16(field.Top(), field.StartRow()), Mul16(row - 1, field.RowGap()));
  return Rect{top, left, Add16(top, field.RowGap()), Add16(left, field.ColGap())};
}

}  // namespace

std::shared_ptr<clsXUNQuestion> clsXUNQuestion::Create() {
  return std::shared_ptr<clsXUNQuestion>(new clsXUNQuestion());
}

clsXUNQuestion::clsXUNQuestion() {
  Trap("clsXUNQuestion.Class_Initialize", [&] {
    choices_ = clsXUNStringItems::Create();
    codes_ = clsXUNStringItems::Create();
  });
}

std::string clsXUNQuestion::Schema(bool bRefresh) {
  return Trap("clsXUNQuestion.Schema", std::string(), [&] {
    if (!schema_ || bRefresh) {
      const std::shared_ptr<clsXUNField> field = Field();
      const xunDataType data_type = field ? field->DataType() : xunDataTypeNone;
      const char* type = data_type == xunDataTypeNumeric        ? "Numeric"
                         : data_type == xunDataTypeAlphaNumeric ? "AlphaNumeric"
                                                                : "Text";
      size_t width = 1;
      if (codes_)
        for (const std::string& code : *codes_)
          width = std::max(width, text::Utf16Length(code));
      schema_ = question_name_ + "," + type + "," + std::to_string(width);
    }
    return *schema_;
  });
}

void clsXUNQuestion::SubjectivePoints(double value) {
  Trap("clsXUNQuestion.SubjectivePoints", [&] {
    if (!std::isfinite(value) || value < 0) Raise(kErrInvalidPropertyValue);
    subjective_points_ = value;
  });
}

std::shared_ptr<clsXUNStringItems> clsXUNQuestion::AllChoices() const {
  return Trap("clsXUNQuestion.AllChoices", std::shared_ptr<clsXUNStringItems>(), [&] {
    if (all_choices_) return all_choices_;
    return Gather(*this, [](const clsXUNQuestion& question) { return question.Choices(); });
  });
}

std::shared_ptr<clsXUNStringItems> clsXUNQuestion::AllCodes() const {
  return Trap("clsXUNQuestion.AllCodes", std::shared_ptr<clsXUNStringItems>(), [&] {
    if (all_codes_) return all_codes_;
    return Gather(*this, [](const clsXUNQuestion& question) { return question.Codes(); });
  });
}

int16_t clsXUNQuestion::NAChoiceAll() const {
  return Trap("clsXUNQuestion.NAChoiceAll", int16_t{0}, [&] {
    if (na_choice_all_) return *na_choice_all_;
    // The first not-applicable choice of the group, counted past the choices of the regions
    // before it, so it indexes AllChoices.
    int16_t before = 0;
    int16_t found = 0;
    ForEachLinked(*this, [&](const clsXUNQuestion& question) {
      if (question.NAChoice() > 0) {
        found = Add16(before, question.NAChoice());
        return false;
      }
      const std::shared_ptr<clsXUNStringItems> choices = question.Choices();
      before = Add16(before, choices ? choices->Count() : 0);
      return true;
    });
    return found;
  });
}

int32_t clsXUNQuestion::ReturnIndex(bool bInTemplate) const {
  return Trap("clsXUNQuestion.ReturnIndex", int32_t{0}, [&] {
    const int32_t position = PositionOf(*this);
    if (!bInTemplate || position < 1) return position;
    const std::shared_ptr<clsXUNField> field = Field();
    const std::shared_ptr<clsXUNPage> page = field ? field->Page() : nullptr;
    // Outside a template there are no template item numbers: the position, as for a page.
    if (!page || !page->Template()) return position;
    const int16_t item = field->GetItemIndex(To16(position));
    if (item < 1) return int32_t{0};
    return field->ReturnIndex(true) + item - 1;
  });
}

void clsXUNQuestion::Free() {
  Trap("clsXUNQuestion.Free", [&] {
    choices_.reset();
    codes_.reset();
    all_choices_.reset();
    all_codes_.reset();
    SetOwner(nullptr);
  });
}

bool clsXUNQuestion::Plot(int16_t& iStartRow, int16_t& iEndRow, int16_t& iStartCol,
                          int16_t& iEndCol) const {
  return Trap("clsXUNQuestion.Plot", false, [&] {
    const std::shared_ptr<clsXUNField> field = Field();
    if (!field) return false;
    const std::optional<GridSpan> span = PlotIn(*field, PositionOf(*this));
    if (!span) return false;
    iStartRow = span->first_row;
    iEndRow = span->last_row;
    iStartCol = span->first_col;
    iEndCol = span->last_col;
    return true;
  });
}

bool clsXUNQuestion::LocateBubble(int16_t iColIndex, int16_t iRowIndex, int16_t& iTop,
                                  int16_t& iLeft, int16_t& iBottom, int16_t& iRight) const {
  return Trap("clsXUNQuestion.LocateBubble", false, [&] {
    const std::shared_ptr<clsXUNField> field = Field();
    if (!field) return false;
    const std::optional<GridSpan> span = PlotIn(*field, PositionOf(*this));
    if (!span || iColIndex < 1 || iRowIndex < 1) return false;
    const int32_t row = span->first_row + iRowIndex - 1;
    const int32_t col = span->first_col + iColIndex - 1;
    if (row > span->last_row || col > span->last_col) return false;
    const Rect cell = CellAt(*field, row, col);
    iTop = cell.top;
    iLeft = cell.left;
    iBottom = cell.bottom;
    iRight = cell.right;
    return true;
  });
}

bool clsXUNQuestion::Locate(int16_t& iTop, int16_t& iLeft, int16_t& iBottom,
                            int16_t& iRight) const {
  return Trap("clsXUNQuestion.Locate", false, [&] {
    const std::shared_ptr<clsXUNField> field = Field();
    if (!field) return false;
    if (field->RecognitionType() != xunRecogTypeOMR) {
      iTop = field->Top();
      iLeft = field->Left();
      iBottom = field->Bottom();
      iRight = field->Right();
      return true;
    }
    const std::optional<GridSpan> span = PlotIn(*field, PositionOf(*this));
    if (!span) return false;
    const Rect first = CellAt(*field, span->first_row, span->first_col);
    const Rect last = CellAt(*field, span->last_row, span->last_col);
    iTop = first.top;
    iLeft = first.left;
    iBottom = last.bottom;
    iRight = last.right;
    return true;
  });
}

std::shared_ptr<clsXUNQuestion> clsXUNQuestion::Copy(bool bKeepKey) const {
  return Trap("clsXUNQuestion.Copy", std::shared_ptr<clsXUNQuestion>(), [&] {
    // Member-wise first, so every value comes along; then the parts a copy must not share.
    std::shared_ptr<clsXUNQuestion> copy(new clsXUNQuestion(*this));
    copy->SetOwner(nullptr);
    copy->SetMemberKey(bKeepKey ? Key() : std::string());
    copy->choices_ = choices_ ? choices_->Copy() : clsXUNStringItems::Create();
    copy->codes_ = codes_ ? codes_->Copy() : clsXUNStringItems::Create();
    if (all_choices_) copy->all_choices_ = all_choices_->Copy();
    if (all_codes_) copy->all_codes_ = all_codes_->Copy();
    // The schema depends on the region, which the copy may not share: computed afresh.
    copy->schema_.reset();
    return copy;
  });
}

std::shared_ptr<clsXUNField> clsXUNQuestion::Field() const {
  const std::shared_ptr<clsXUNQuestions> list = Questions();
  return list ? list->Field() : nullptr;
}

}  // namespace xun
