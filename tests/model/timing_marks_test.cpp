#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/test_support.h"
#include "xun/model/timing_marks.h"

namespace xun {
namespace {

using Areas = std::vector<xunReadArea>;
using Strings = std::vector<std::string>;

class TimingMarks : public ::testing::Test {
 protected:
  static Areas AreasOf(const clsXUNTimingMarks& marks) {
    Areas out;
    for (const auto& mark : marks)
      out.push_back({mark->Left(), mark->Top(), mark->Width(), mark->Height()});
    return out;
  }
  Strings Reported() const { return handler_.LocationsAndNumbers(); }

  testing::ScopedHandler handler_;
  std::shared_ptr<clsXUNTimingMarks> marks_ = clsXUNTimingMarks::Create();
};

TEST_F(TimingMarks, TextFormIsLeftTopWidthHeightAndRoundTrips) {
  EXPECT_EQ(marks_->AsString(), "");
  marks_->AddMark(10, 20, 30, 40, "first");
  marks_->AddMark(10, 900, 30, 40);
  marks_->AddMark(-7, 0, 1, -2);
  EXPECT_EQ(marks_->AsString(), "10,20,30,40\t10,900,30,40\t-7,0,1,-2");
  EXPECT_EQ(marks_->AsString("||", "; "), "10; 20; 30; 40||10; 900; 30; 40||-7; 0; 1; -2");

  for (const auto& [marks, properties] :
       {std::pair<std::string, std::string>{"\t", ","}, {"||", "; "}}) {
    auto back = clsXUNTimingMarks::Create();
    EXPECT_TRUE(back->AddDelimitedString(marks_->AsString(marks, properties), marks, properties));
    EXPECT_EQ(AreasOf(*back), AreasOf(*marks_));
    EXPECT_FALSE(back->Exists("first"));  // keys are not part of the text
  }
  EXPECT_TRUE(handler_.reports().empty());
}

TEST_F(TimingMarks, MarkTextsNeedFourNumbersEachRoundedHalfToEven) {
  EXPECT_TRUE(marks_->AddDelimitedString("1,2,3\t2.5,3.5,-2.5,7,99\t x,12abc,,1\t\t5,6"));
  EXPECT_EQ(AreasOf(*marks_), (Areas{{2, 4, -2, 7}, {0, 12, 0, 1}}));

  // A value beyond 16 bits fails the call; the marks before it stay.
  marks_ = clsXUNTimingMarks::Create();
  EXPECT_FALSE(marks_->AddDelimitedString("1,1,1,1\t2,2,2,40000\t3,3,3,3"));
  EXPECT_EQ(AreasOf(*marks_), (Areas{{1, 1, 1, 1}}));
  EXPECT_EQ(Reported(), (Strings{"clsXUNTimingMarks.AddDelimitedString #6"}));
}

TEST_F(TimingMarks, ArrayFormBoundsAndZeroWidthEnd) {
  EXPECT_FALSE(marks_->AsArray().IsAllocated());
  EXPECT_FALSE(marks_->AddArray(BoundedArray<xunReadArea>()));  // unallocated: no report
  const Areas areas{{1, 2, 3, 4}, {5, 6, 0, 8}, {9, 10, 11, 12}};
  EXPECT_TRUE(marks_->AddArray(BoundedArray<xunReadArea>(-3, areas)));
  EXPECT_EQ(AreasOf(*marks_), (Areas{{1, 2, 3, 4}}));

  marks_->AddMark(9, 10, 11, 12);
  EXPECT_EQ(marks_->AsArray(), BoundedArray<xunReadArea>(1, {areas[0], areas[2]}));
  EXPECT_EQ(marks_->AsArray(0), BoundedArray<xunReadArea>(0, {areas[0], areas[2]}));
  EXPECT_TRUE(handler_.reports().empty());
}

TEST_F(TimingMarks, DuplicateKeyFailsAndRemoveGivesTrueOrEmpty) {
  auto mark = clsXUNTimingMark::Create();
  EXPECT_TRUE(marks_->Add(mark, "K"));
  EXPECT_FALSE(marks_->AddMark(2, 2, 2, 2, "k"));
  EXPECT_FALSE(marks_->Add(clsXUNTimingMark::Create(), "K"));
  EXPECT_EQ(Reported(), (Strings{"clsXUNTimingMarks.Add #457", "clsXUNTimingMarks.Add #457"}));
  EXPECT_EQ(marks_->Item("k"), mark);  // the mark itself, not a copy
  EXPECT_TRUE(marks_->Remove(2).IsEmpty());
  EXPECT_EQ(marks_->Remove("K"), Variant(true));
  EXPECT_EQ(marks_->Count(), 0);
}

TEST_F(TimingMarks, MoreThan32767MarksOverflowTheTextForm) {
  for (int i = 0; i < 32768; ++i)
    marks_->AddMark(1, 2, 3, 4);
  EXPECT_EQ(marks_->AsString(), "");
  EXPECT_EQ(Reported(), (Strings{"clsXUNTimingMarks.AsString #6"}));
  marks_->Remove(1);
  EXPECT_EQ(marks_->AsString().size(), 32767u * 8 - 1);
}

}  // namespace
}  // namespace xun
