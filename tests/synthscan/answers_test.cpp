// The marks to make: a marks file read line by line with its faults named, and a made-up class
// whose answers have the mix the reading tests need.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "common/test_support.h"
#include "synthscan/answers.h"
#include "synthscan_support.h"

namespace xun::testing {
namespace {

using synthscan::MarkKind;

class MarksFile : public ::testing::Test {
 protected:
  void TearDown() override { form_->Free(); }
  synthscan::MarkPlan Read(const std::string& text) {
    WriteFileBytes(folder_.File("marks.csv"), text);
    return synthscan::ReadMarksFile(folder_.File("marks.csv"), *form_->Pages()->Item(1));
  }
  std::string Fault(const std::string& text) {
    try {
      Read(text);
    } catch (const std::runtime_error& e) {
      return e.what();
    }
    return "read without a fault";
  }
  std::shared_ptr<clsXUNTemplate> form_ = AnswerSheet();
  TempFolder folder_;
};

TEST_F(MarksFile, ReadsEveryMarkLine) {
  const synthscan::MarkPlan plan = Read(
      "region,row,col,kind\r\n# the first two questions\nAnswers,1,2,full\n\n"
      " Answers , 2 , 5 , partial:80 \nAnswers,20,1,heavy-erased\nAnswers,1,2,cross\n");
  ASSERT_EQ(plan.size(), 3u);
  // A later line for the same bubble wins.
  EXPECT_EQ(plan.at({"Answers", 1, 2}).kind, MarkKind::kCross);
  EXPECT_EQ(plan.at({"Answers", 2, 5}), (synthscan::Mark{MarkKind::kPartial, 80}));
  EXPECT_EQ(plan.at({"Answers", 20, 1}).kind, MarkKind::kHeavyErased);
}

TEST_F(MarksFile, NamesTheLineAtFault) {
  const std::string file = folder_.File("marks.csv");
  EXPECT_EQ(Fault("Answers,1,1,full\nAnswers,1,1\n"), file + ":2: expected region,row,col,kind");
  EXPECT_EQ(Fault("Questions,1,1,full\n"), file + ":1: no OMR region 'Questions' on the page");
  EXPECT_EQ(Fault("#\nAnswers,21,1,full\n"), file + ":2: row '21' is not 1 to 20");
  EXPECT_EQ(Fault("Answers,1,0,full\n"), file + ":1: column '0' is not 1 to 5");
  EXPECT_EQ(Fault("Answers,1,x,full\n"), file + ":1: column 'x' is not 1 to 5");
  EXPECT_EQ(Fault("Answers,1,1,scribble\n"), file + ":1: 'scribble' is not a mark");
  EXPECT_EQ(Fault("Answers,1,1,full,extra\n"), file + ":1: expected region,row,col,kind");
  // The column names only on the first line.
  EXPECT_EQ(Fault("Answers,1,1,full\nregion,row,col,kind\n"),
            file + ":2: no OMR region 'region' on the page");
  EXPECT_EQ(Fault(""), "read without a fault");
  EXPECT_THROW(synthscan::ReadMarksFile(folder_.File("missing.csv"), *form_->Pages()->Item(1)),
               std::runtime_error);
}

TEST(RandomMarks, AreTheMixOfAClass) {
  auto form = AnswerSheet();
  const clsXUNPage& page = *form->Pages()->Item(1);
  EXPECT_EQ(synthscan::RandomMarks(page, 11), synthscan::RandomMarks(page, 11));
  EXPECT_NE(synthscan::RandomMarks(page, 11), synthscan::RandomMarks(page, 12));

  std::set<std::string> hard_kinds;
  int one_clear = 0, blank = 0, several = 0, lines = 0;
  for (uint32_t seed = 1; seed <= 6; ++seed) {
    const synthscan::MarkPlan plan = synthscan::RandomMarks(page, seed);
    for (int row = 1; row <= 20; ++row, ++lines) {
      int clear = 0, marks = 0;
      for (int col = 1; col <= 5; ++col) {
        const auto mark = plan.find({"Answers", row, col});
        if (mark == plan.end()) continue;
        ++marks;
        if (mark->second.kind == MarkKind::kFull || mark->second.kind == MarkKind::kLight)
          ++clear;
        else
          hard_kinds.insert(synthscan::MarkName(mark->second));
      }
      one_clear += marks == 1 && clear == 1;
      blank += marks == 0;
      several += clear >= 2;
    }
  }
  EXPECT_GT(one_clear, lines / 2);
  EXPECT_GT(blank, 0);
  EXPECT_GT(several, 0);
  EXPECT_EQ(hard_kinds, (std::set<std::string>{"partial:45", "partial:85", "tick", "cross", "dot",
                                               "erased", "heavy-erased"}));
  form->Free();
}

// A grid question (a student number down columns) is answered a column at a time.
TEST(RandomMarks, AnswerAGridQuestionColumnByColumn) {
  auto form = AnswerSheet();
  auto grid = form->Pages()->Item(1)->Fields()->Item(1);
  grid->FieldType(xunFieldTypeOMRGrid);
  grid->Orient(xunOrientationTypeOMRCol);
  grid->Questions()->Update();
  ASSERT_EQ(grid->Questions()->Count(), 1);
  int columns_with_one = 0;
  for (uint32_t seed = 1; seed <= 10; ++seed) {
    const synthscan::MarkPlan plan = synthscan::RandomMarks(*form->Pages()->Item(1), seed);
    for (int col = 1; col <= 5; ++col) {
      int marks = 0;
      for (int row = 1; row <= 20; ++row)
        marks += static_cast<int>(plan.count({"Answers", row, col}));
      columns_with_one += marks == 1;
    }
  }
  // Were the grid one line, a single mark would be all it got.
  EXPECT_GT(columns_with_one, 25);
  form->Free();
}

}  // namespace
}  // namespace xun::testing
