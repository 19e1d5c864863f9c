// Where a region's bubbles lie: the one grid that the questions, a drawing, a printed page and the
// reading of a scan share.
#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "common/test_support.h"
#include "xun/xun.h"

namespace xun {
namespace {

using Strings = std::vector<std::string>;
using Four = std::array<int16_t, 4>;  // top, left, bottom, right

// An OMR region at (100, 200) to (400, 600) whose first bubble's corner is 10 right and 20 down,
// bubbles 30 apart across and 40 down; Update gives it its questions.
std::shared_ptr<clsXUNField> Omr(xunFieldType type, xunOrientationType orient, int16_t rows,
                                 int16_t cols, xunDataType data = xunDataTypeText) {
  auto field = clsXUNField::Create();
  field->FieldName("Q");
  field->RecognitionType(xunRecogTypeOMR);
  field->FieldType(type);
  field->Orient(orient);
  field->DataType(data);
  field->Left(100);
  field->Top(200);
  field->Right(400);
  field->Bottom(600);
  field->StartCol(10);
  field->StartRow(20);
  field->ColGap(30);
  field->RowGap(40);
  field->NumRows(rows);
  field->NumCols(cols);
  field->Questions()->Update();
  return field;
}

Four Edges(const BubbleRect& r) {
  return {r.Top, r.Left, r.Bottom, r.Right};
}
// First and last row, first and last column.
std::optional<Four> PlotOf(const std::shared_ptr<clsXUNQuestion>& q) {
  Four v{};
  return q->Plot(v[0], v[1], v[2], v[3]) ? std::optional(v) : std::nullopt;
}
std::optional<Four> BubbleOf(const std::shared_ptr<clsXUNQuestion>& q, int16_t col, int16_t row) {
  Four v{};
  return q->LocateBubble(col, row, v[0], v[1], v[2], v[3]) ? std::optional(v) : std::nullopt;
}
std::optional<Four> LocateOf(const std::shared_ptr<clsXUNQuestion>& q) {
  Four v{};
  return q->Locate(v[0], v[1], v[2], v[3]) ? std::optional(v) : std::nullopt;
}

// Bubbles found on a scan of region `f`: column edges `lefts`, row edges `tops` (page pixels),
// 16 by 12 each, registered as the engine's findings would be.
void Register(clsXUNField& f, const std::vector<int16_t>& lefts, const std::vector<int16_t>& tops) {
  auto bubbles = clsXUNBubbles::Create();
  for (const int16_t top : tops)
    for (const int16_t left : lefts) {
      auto bubble = clsXUNBubble::Create();
      bubble->Left(left);
      bubble->Top(top);
      bubble->Right(static_cast<int16_t>(left + 16));
      bubble->Bottom(static_cast<int16_t>(top + 12));
      bubbles->Add(bubble);
    }
  ASSERT_TRUE(f.BuildExtra(bubbles));
}

// Every question's LocateBubble and Locate are the grid's bubbles over the rows and columns it
// plots.
void ExpectQuestionsOnTheGrid(const clsXUNField& f) {
  const BubbleGrid grid = BubbleGrid::Of(f);
  ASSERT_FALSE(grid.Empty());
  for (const auto& q : *f.Questions()) {
    const std::optional<Four> plot = PlotOf(q);
    if (!plot) continue;
    const auto [first_row, last_row, first_col, last_col] = *plot;
    EXPECT_EQ(LocateOf(q), Edges(grid.Enclosing(first_row, last_row, first_col, last_col)));
    for (int16_t r = first_row; r <= last_row; ++r)
      for (int16_t c = first_col; c <= last_col; ++c)
        EXPECT_EQ(BubbleOf(q, To16(c - first_col + 1), To16(r - first_row + 1)),
                  Edges(grid.Bubble(r, c)));
  }
}

TEST(Geometry, UnregisteredBubblesStartAtTheOffsetAndTakeHalfThePitch) {
  testing::ScopedHandler handler;
  auto f = Omr(xunFieldTypeOMRMult, xunOrientationTypeOMRRow, 3, 4);
  BubbleGrid grid = BubbleGrid::Of(*f);
  EXPECT_FALSE(grid.Registered());
  EXPECT_EQ(grid.NumRows(), 3);
  EXPECT_EQ(grid.NumCols(), 4);
  EXPECT_EQ(grid.BubbleWidth(), 15);
  EXPECT_EQ(grid.BubbleHeight(), 20);
  EXPECT_EQ(Edges(grid.Bubble(1, 1)), (Four{220, 110, 240, 125}));
  EXPECT_EQ(Edges(grid.Bubble(3, 4)), (Four{300, 200, 320, 215}));
  EXPECT_EQ(Edges(grid.Bubble(4, 1)), Four{}) << "outside the grid";
  EXPECT_EQ(Edges(grid.Enclosing(1, 3, 1, 4)), (Four{220, 110, 320, 215}));
  EXPECT_EQ(Edges(grid.Enclosing(2, 1, 1, 4)), Four{});
  ExpectQuestionsOnTheGrid(*f);

  f->Left(0);  // the grid moves with its region
  EXPECT_EQ(Edges(BubbleGrid::Of(*f).Bubble(1, 1)), (Four{220, 10, 240, 25}));

  // No bubbles: a pitch not set, a region of another kind, a grid without rows.
  f->ColGap(0);
  EXPECT_TRUE(BubbleGrid::Of(*f).Empty());
  EXPECT_FALSE(BubbleOf(f->Questions()->Item(1), 1, 1));
  EXPECT_TRUE(PlotOf(f->Questions()->Item(1))) << "rows and columns need no pitch";
  auto barcode = Omr(xunFieldTypeBarcodeAuto, xunOrientationTypeOMRRow, 3, 4);
  barcode->RecognitionType(xunRecogTypeBarcode);
  EXPECT_TRUE(BubbleGrid::Of(*barcode).Empty());
  EXPECT_TRUE(BubbleGrid().Empty());
  EXPECT_TRUE(handler.reports().empty());

  // A bubble beyond the 16-bit page: no grid, reported where it was asked for.
  auto far = Omr(xunFieldTypeOMRMult, xunOrientationTypeOMRRow, 3, 4);
  far->Top(32700);
  EXPECT_TRUE(BubbleGrid::Of(*far).Empty());
  EXPECT_FALSE(BubbleOf(far->Questions()->Item(1), 1, 1));
  EXPECT_FALSE(LocateOf(far->Questions()->Item(1)));
  EXPECT_EQ(
      handler.LocationsAndNumbers(),
      (Strings{"BubbleGrid.Of #6", "clsXUNQuestion.LocateBubble #6", "clsXUNQuestion.Locate #6"}));
}

TEST(Geometry, RegisteredBubblesComeFromExtraWhateverNamedValuesItHolds) {
  testing::ScopedHandler handler;
  auto f = Omr(xunFieldTypeOMRMult, xunOrientationTypeOMRRow, 2, 3);
  // Found off the nominal pitch: columns at 113, 149, 187 and rows at 226, 262.
  Register(*f, {113, 149, 187}, {226, 262});
  BubbleGrid grid = BubbleGrid::Of(*f);
  EXPECT_TRUE(grid.Registered());
  EXPECT_EQ(Edges(grid.Bubble(1, 2)), (Four{226, 149, 238, 165}));
  EXPECT_EQ(Edges(grid.Bubble(2, 3)), (Four{262, 187, 274, 203}));
  ExpectQuestionsOnTheGrid(*f);

  // Named settings may stand before and after the registration's values.
  f->Extra()->Add(1, "IDAdd", 1);
  f->Extra()->Add(3, "IDType");
  EXPECT_TRUE(f->IsRegistered());
  EXPECT_EQ(Edges(BubbleGrid::Of(*f).Bubble(2, 3)), (Four{262, 187, 274, 203}));
  EXPECT_TRUE(f->Copy(false, false)->IsRegistered()) << "a copy keeps the names";
  Register(*f, {113, 149, 190}, {226, 262});  // registering again keeps them
  EXPECT_EQ(f->Extra()->Item("IDAdd"), 1);
  EXPECT_EQ(f->Extra()->Item("IDType"), 3);
  EXPECT_EQ(Edges(BubbleGrid::Of(*f).Bubble(2, 3)), (Four{262, 190, 274, 206}));

  f->Top(300);  // the registration is held relative to the region
  EXPECT_EQ(Edges(BubbleGrid::Of(*f).Bubble(2, 3)), (Four{362, 190, 374, 206}));
  // Another grid size is no longer registered: back to the start and pitch, which registering
  // took from what was found (first bubble 13 right, 26 down; 38 and 36 apart).
  f->NumCols(4);
  grid = BubbleGrid::Of(*f);
  EXPECT_FALSE(grid.Registered());
  EXPECT_EQ(Edges(grid.Bubble(1, 1)), (Four{326, 113, 344, 132}));
  EXPECT_TRUE(handler.reports().empty());
}

// The exam's student number: one question read from six columns of ten digits.
TEST(Geometry, TheOneQuestionOfAWholeGridRegionCoversTheGrid) {
  for (const xunFieldType type :
       {xunFieldTypeOMRGrid, xunFieldTypeOMRAdd, xunFieldTypeOMRBinary, xunFieldTypeOMRList}) {
    SCOPED_TRACE(type);
    auto f = Omr(type, xunOrientationTypeOMRCol, 10, 6, xunDataTypeNumeric);
    ASSERT_EQ(f->Questions()->Count(), 1);
    const auto q = f->Questions()->Item(1);
    EXPECT_EQ(PlotOf(q), (Four{1, 10, 1, 6}));
    EXPECT_EQ(LocateOf(q), (Four{220, 110, 600, 275}));
    EXPECT_EQ(BubbleOf(q, 6, 10), (Four{580, 260, 600, 275}));
    EXPECT_FALSE(BubbleOf(q, 7, 1));
    ExpectQuestionsOnTheGrid(*f);
  }
  // Multiple-choice and boolean regions keep a line or a bubble per question.
  auto rows = Omr(xunFieldTypeOMRMult, xunOrientationTypeOMRRow, 3, 4);
  EXPECT_EQ(PlotOf(rows->Questions()->Item(2)), (Four{2, 2, 1, 4}));
  auto cols = Omr(xunFieldTypeOMRRank, xunOrientationTypeOMRCol, 3, 4);
  EXPECT_EQ(PlotOf(cols->Questions()->Item(2)), (Four{1, 3, 2, 2}));
  auto by_cols = Omr(xunFieldTypeOMRBoolean, xunOrientationTypeOMRCol, 3, 4);
  EXPECT_EQ(PlotOf(by_cols->Questions()->Item(6)), (Four{3, 3, 2, 2}));
  auto by_rows = Omr(xunFieldTypeOMRBoolean, xunOrientationTypeOMRRow, 3, 4);
  EXPECT_EQ(PlotOf(by_rows->Questions()->Item(6)), (Four{2, 2, 2, 2}));
  for (const auto& f : {rows, cols, by_cols, by_rows})
    ExpectQuestionsOnTheGrid(*f);
  auto unoriented = Omr(xunFieldTypeOMRGrid, xunOrientationTypeNone, 3, 4);
  EXPECT_FALSE(PlotOf(unoriented->Questions()->Item(1)));
}

TEST(Geometry, SchemaWidthHoldsTheWidestValue) {
  const auto schema = [](xunFieldType type, xunOrientationType orient, int16_t rows, int16_t cols,
                         xunDataType data) {
    return Omr(type, orient, rows, cols, data)->Questions()->Item(1)->Schema();
  };
  // A digit per column: six characters, not one.
  EXPECT_EQ(schema(xunFieldTypeOMRGrid, xunOrientationTypeOMRCol, 10, 6, xunDataTypeNumeric),
            "Q,Numeric,6");
  EXPECT_EQ(schema(xunFieldTypeOMRGrid, xunOrientationTypeOMRRow, 10, 6, xunDataTypeText),
            "Q,Text,10");
  // Six columns adding codes 0 to 9: at most 270.
  EXPECT_EQ(schema(xunFieldTypeOMRAdd, xunOrientationTypeOMRCol, 10, 6, xunDataTypeNumeric),
            "Q,Numeric,3");
  // Sixty bits: at most 1152921504606846975.
  EXPECT_EQ(schema(xunFieldTypeOMRBinary, xunOrientationTypeOMRCol, 10, 6, xunDataTypeNumeric),
            "Q,Numeric,19");
  // Every bubble's letter, six columns of ten.
  EXPECT_EQ(schema(xunFieldTypeOMRList, xunOrientationTypeOMRCol, 10, 6, xunDataTypeText),
            "Q,Text,60");
  // One answer per question: its longest code.
  EXPECT_EQ(schema(xunFieldTypeOMRMult, xunOrientationTypeOMRRow, 3, 12, xunDataTypeNumeric),
            "Q_1,Numeric,2");

  auto add = Omr(xunFieldTypeOMRAdd, xunOrientationTypeOMRRow, 2, 2, xunDataTypeNumeric);
  auto q = add->Questions()->Item(1);
  q->Codes()->RemoveAll();
  q->Codes()->AddDelimitedString("-2.5\t40");
  EXPECT_EQ(q->Schema(true), "Q,Numeric,5") << "a sign, two digits, a point and one decimal";
}

}  // namespace
}  // namespace xun
