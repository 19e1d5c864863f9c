// What a printed page shows: every shape where the template puts it.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "common/test_support.h"
#include "xun/xun.h"

namespace xun::printing {
namespace {

using Kind = PrintedShape::Kind;

std::vector<PrintedShape> OfKind(const PageLayout& layout, Kind kind) {
  std::vector<PrintedShape> found;
  for (const PrintedShape& shape : layout.shapes)
    if (shape.kind == kind) found.push_back(shape);
  return found;
}

bool Covers(const PrintedShape& shape, const BubbleRect& r) {
  return shape.left == r.Left && shape.top == r.Top && shape.right == r.Right &&
         shape.bottom == r.Bottom;
}

// The label drawn inside `bubble`, "" when there is none.
std::string LabelIn(const PageLayout& layout, const BubbleRect& bubble) {
  for (const PrintedShape& s : OfKind(layout, Kind::Label))
    if (s.left >= bubble.Left && s.right <= bubble.Right && s.top >= bubble.Top &&
        s.bottom <= bubble.Bottom)
      return s.text;
  return "";
}

class PageLayoutTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(exam_->Read(std::string(XUN_EXAMPLES_DIR) + "/exam.omr")); }
  void TearDown() override { exam_->Free(); }
  std::shared_ptr<clsXUNField> Region(const std::string& name) {
    for (const auto& field : *exam_->Pages()->Item(1)->Fields())
      if (field->FieldName() == name) return field;
    return nullptr;
  }
  std::shared_ptr<clsXUNTemplate> exam_ = clsXUNTemplate::Create();
};

TEST_F(PageLayoutTest, BubblesLieOnTheGridGeometryWithTheirChoicesInside) {
  const PageLayout layout = LayoutOf(*exam_, 1);
  EXPECT_EQ(layout.width, 850);
  EXPECT_EQ(layout.height, 1100);
  const std::vector<PrintedShape> bubbles = OfKind(layout, Kind::Bubble);
  ASSERT_EQ(bubbles.size(), 60u + 20u);  // the student number's 10 x 6 and the answers' 5 x 4

  // The answers are read by rows: the k-th bubble of a row holds the row question's k-th choice.
  const BubbleGrid answers = BubbleGrid::Of(*Region("Answers"));
  size_t at = 60;
  for (int16_t r = 1; r <= 5; ++r)
    for (int16_t c = 1; c <= 4; ++c, ++at) {
      EXPECT_TRUE(Covers(bubbles[at], answers.Bubble(r, c))) << r << "," << c;
      EXPECT_EQ(bubbles[at].line, kBubbleLine);
      EXPECT_EQ(LabelIn(layout, answers.Bubble(r, c)),
                std::string(1, static_cast<char>('A' + c - 1)));
    }
  // The student number is read by columns: each column holds the digits down its rows.
  const BubbleGrid student = BubbleGrid::Of(*Region("Student"));
  EXPECT_TRUE(Covers(bubbles[0], student.Bubble(1, 1)));
  for (int16_t c = 1; c <= 6; ++c)
    for (int16_t r = 1; r <= 10; ++r)
      EXPECT_EQ(LabelIn(layout, student.Bubble(r, c)), std::to_string(r - 1));
  for (const PrintedShape& label : OfKind(layout, Kind::Label)) {
    if (label.text.size() == 1) {
      EXPECT_EQ(label.ink, kBubbleLabelInk);
    }
  }
}

TEST_F(PageLayoutTest, TimingMarksAreSolidAndIdentificationBarcodesCarryTheirValue) {
  const PageLayout layout = LayoutOf(*exam_, 1);
  const std::vector<PrintedShape> solid = OfKind(layout, Kind::Solid);
  ASSERT_EQ(solid.size(), 1u);
  const auto mark = exam_->Pages()->Item(1)->TimingMarks()->Item(1);
  EXPECT_EQ(solid[0].left, mark->Left());
  EXPECT_EQ(solid[0].bottom, mark->Top() + mark->Height());

  const auto form_id = Region("FormID");
  const std::vector<PrintedShape> symbols = OfKind(layout, Kind::Barcode);
  ASSERT_EQ(symbols.size(), 1u);
  EXPECT_EQ(symbols[0].text, "EXAM-A");
  EXPECT_EQ(symbols[0].barcode, xunFieldTypeBarcodeCode128);
  // Inside its region's outline, which is the heavier one of an identification region.
  EXPECT_GT(symbols[0].left, form_id->Left());
  EXPECT_LT(symbols[0].right, form_id->Right());
  const std::vector<PrintedShape> boxes = OfKind(layout, Kind::Box);
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_GT(boxes[0].line, kRegionLine);

  // Without an ID value, only the outline and the region's name, at its left.
  form_id->Questions()->Item(1)->IDValue("");
  const PageLayout plain = LayoutOf(*exam_, 1);
  EXPECT_TRUE(OfKind(plain, Kind::Barcode).empty());
  bool named = false;
  for (const PrintedShape& label : OfKind(plain, Kind::Label))
    named = named || (label.text == "FormID" && !label.centred && label.left > form_id->Left());
  EXPECT_TRUE(named);
}

TEST_F(PageLayoutTest, PageSizeFollowsTheTemplate) {
  exam_->PageWidth(11);
  exam_->PageHeight(8.5);
  double w = 0, h = 0;
  PageSizeOf(*exam_, w, h);
  EXPECT_EQ(w, 1100);
  EXPECT_EQ(h, 850);
  // A landscape form given upright is turned.
  exam_->PageWidth(8.5);
  exam_->PageHeight(14);
  exam_->Orientation(xunOrientationTypeFormLandscape);
  PageSizeOf(*exam_, w, h);
  EXPECT_EQ(w, 1400);
  EXPECT_EQ(h, 850);
  // Without a size the page is printed as Letter.
  exam_->PageWidth(0);
  EXPECT_EQ(LayoutOf(*exam_, 1).width, 850);
  EXPECT_EQ(LayoutOf(*exam_, 1).height, 1100);
  EXPECT_EQ(testing::RaisedError([&] { LayoutOf(*exam_, 2); }), kErrSubscript);
  EXPECT_EQ(testing::RaisedError([&] { LayoutOf(*exam_, 0); }), kErrSubscript);
}

TEST_F(PageLayoutTest, ARegisteredGridIsPrintedWhereItWasFound) {
  auto scanned = clsXUNTemplate::Create();
  ASSERT_TRUE(scanned->Read(std::string(XUN_EXAMPLES_DIR) + "/scanned.omr"));
  const auto page = scanned->Pages()->Item(1);
  EXPECT_FALSE(LayoutOf(*scanned, 1).image_file.empty());
  for (const auto& field : *page->Fields()) {
    if (field->RecognitionType() != xunRecogTypeOMR) continue;
    ASSERT_TRUE(field->IsRegistered());
    // Moved registration: the printed bubbles follow it.
    auto extra = field->Extra();
    extra->Item(5, static_cast<int16_t>(extra->Item(5) + 3));
    const BubbleGrid grid = BubbleGrid::Of(*field);
    ASSERT_TRUE(grid.Registered());
    bool found = false;
    for (const PrintedShape& s : OfKind(LayoutOf(*scanned, 1), Kind::Bubble))
      found = found || Covers(s, grid.Bubble(1, 1));
    EXPECT_TRUE(found) << field->FieldName();
  }
  scanned->Free();
}

}  // namespace
}  // namespace xun::printing
