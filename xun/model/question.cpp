#include "xun/model/question.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "xun/model/bubble_grid.h"
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

// Whether the region's one item is read from its whole grid (grid, add, binary, list), rather
// than an item per line (multiple, rank) or per bubble (boolean).
bool ReadsWholeGrid(xunFieldType type) {
  return type != xunFieldTypeOMRMult && type != xunFieldTypeOMRRank &&
         type != xunFieldTypeOMRBoolean;
}

// Where question `position` of the region lies in its grid; nullopt when it has no bubbles
// there (not an OMR region, another orientation, or beyond the grid).
std::optional<GridSpan> PlotIn(const clsXUNField& field, int32_t position) {
  if (position < 1 || field.RecognitionType() != xunRecogTypeOMR) return std::nullopt;
  const xunOrientationType orient = field.Orient();
  if (orient != xunOrientationTypeOMRRow && orient != xunOrientationTypeOMRCol) return std::nullopt;
  const int16_t rows = field.NumRows();
  const int16_t cols = field.NumCols();
  if (rows < 1 || cols < 1) return std::nullopt;
  if (ReadsWholeGrid(field.FieldType())) {
    if (position > 1) return std::nullopt;
    return GridSpan{1, rows, 1, cols};
  }
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

// The number of characters the widest value of the question can have. A whole-grid region's
// value is made of its lines (rows by Orient 1, columns by Orient 2), each marked with one of the
// question's codes; other questions give one code.
size_t SchemaWidth(const clsXUNField* field, const clsXUNStringItems* codes) {
  size_t longest = 0, all = 0;
  double magnitude = 0;  // of all codes, read as numbers
  size_t decimals = 0;   // the most digits after a decimal point in one code
  bool negative = false;
  if (codes) {
    for (const std::string& code : *codes) {
      const size_t length = text::Utf16Length(code);
      longest = std::max(longest, length);
      all += length;
      const double value = Val(code);
      magnitude += std::fabs(value);
      negative = negative || value < 0;
      if (const size_t point = code.find('.'); point != std::string::npos && value != 0)
        decimals = std::max(decimals, code.size() - point - 1);
    }
  }
  const xunOrientationType orient = field ? field->Orient() : xunOrientationTypeNone;
  if (!field || field->RecognitionType() != xunRecogTypeOMR ||
      !ReadsWholeGrid(field->FieldType()) ||
      (orient != xunOrientationTypeOMRRow && orient != xunOrientationTypeOMRCol))
    return std::max<size_t>(longest, 1);
  const size_t rows = static_cast<size_t>(std::max<int16_t>(field->NumRows(), 0));
  const size_t cols = static_cast<size_t>(std::max<int16_t>(field->NumCols(), 0));
  const size_t lines = orient == xunOrientationTypeOMRRow ? rows : cols;
  const auto digits = [](double value) {
    return value < 10 ? size_t{1} : static_cast<size_t>(std::floor(std::log10(value))) + 1;
  };
  size_t width = 0;
  switch (field->FieldType()) {
    case xunFieldTypeOMRAdd: {
      // The sum of the marked bubbles' codes read as numbers; at most every bubble of every line
      // is marked.
      const double most = magnitude * static_cast<double>(lines);
      if (!std::isfinite(most)) return std::max<size_t>(longest, 1);
      width = digits(most) + (negative ? 1 : 0) + (decimals > 0 ? decimals + 1 : 0);
      break;
    }
    case xunFieldTypeOMRBinary:
      // Every bubble is one bit of a whole number written in decimal: 2^bubbles - 1 at most.
      width = rows * cols == 0 ? 1
                               : static_cast<size_t>(std::floor(static_cast<double>(rows * cols) *
                                                                std::log10(2.0))) +
                                     1;
      break;
    case xunFieldTypeOMRList:
      // The codes of every marked bubble, in reading order; every bubble may be marked.
      width = lines * all;
      break;
    default:
      // A grid writes one code per line: a six-column number is six characters.
      width = lines * std::max<size_t>(longest, 1);
  }
  return std::max<size_t>(width, 1);
}

}  // namespace

std::shared_ptr<clsXUNQuestion> clsXUNQuestion::Create() {
  return MakeObject<clsXUNQuestion>();
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
      const size_t width = SchemaWidth(field.get(), codes_.get());
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
    const BubbleGrid grid = detail::GridOf(*field);
    if (grid.Empty()) return false;
    const BubbleRect bubble = grid.Bubble(row, col);
    iTop = bubble.Top;
    iLeft = bubble.Left;
    iBottom = bubble.Bottom;
    iRight = bubble.Right;
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
    const BubbleGrid grid = detail::GridOf(*field);
    if (grid.Empty()) return false;
    const BubbleRect all =
        grid.Enclosing(span->first_row, span->last_row, span->first_col, span->last_col);
    iTop = all.Top;
    iLeft = all.Left;
    iBottom = all.Bottom;
    iRight = all.Right;
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
