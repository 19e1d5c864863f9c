// Each kind of mark, measured on the printed sheet: how dark it is, how much of the bubble it
// covers, and that no two hands make the same mark.
#include <gtest/gtest.h>

#include "synthscan/printed_page.h"
#include "synthscan_support.h"

namespace xun::testing {
namespace {

using synthscan::Mark;
using synthscan::MarkKind;

struct Expected {
  Mark mark;
  double min_darkness, max_darkness;  // over the paper inside the bubble
  double min_dark_share, max_dark_share;
};

// Five of each kind along a row of the sheet, scanned straight at 150 dpi.
TEST(Marks, LookAsTheirKindSays) {
  const Expected kinds[] = {
      {{MarkKind::kBlank, 0}, 0.0, 0.01, 0.0, 0.01},
      {{MarkKind::kFull, 0}, 0.8, 1.0, 0.95, 1.0},
      {{MarkKind::kLight, 0}, 0.38, 0.62, 0.2, 0.8},
      {{MarkKind::kPartial, 85}, 0.7, 1.0, 0.8, 1.0},
      {{MarkKind::kPartial, 45}, 0.2, 0.55, 0.2, 0.6},
      {{MarkKind::kTick, 0}, 0.2, 0.5, 0.25, 0.6},
      {{MarkKind::kCross, 0}, 0.4, 0.7, 0.4, 0.75},
      {{MarkKind::kDot, 0}, 0.0, 0.05, 0.0, 0.05},
      {{MarkKind::kErased, 0}, 0.04, 0.12, 0.0, 0.02},
      {{MarkKind::kHeavyErased, 0}, 0.22, 0.42, 0.0, 0.2},
  };
  auto form = AnswerSheet();
  const cv::Mat printed = synthscan::PrintedPage(*form, 1, 150);
  for (const uint32_t seed : {1u, 2u}) {
    synthscan::MarkPlan plan;
    int row = 1;
    for (const Expected& e : kinds) {
      for (int col = 1; col <= 5; ++col)
        plan[{"Answers", row, col}] = e.mark;
      ++row;
    }
    const synthscan::Scan scan =
        synthscan::MakeScan(*form, 1, printed, 150, plan, synthscan::Distortions{}, seed);
    for (const synthscan::BubbleTruth& b : scan.bubbles) {
      if (b.at.row > static_cast<int>(std::size(kinds))) continue;
      const Expected& e = kinds[b.at.row - 1];
      ASSERT_EQ(b.mark, e.mark);
      const Ink ink = AddedInk(scan, printed, b.rect);
      SCOPED_TRACE(synthscan::MarkName(e.mark) + " column " + std::to_string(b.at.col));
      EXPECT_GE(ink.darkness, e.min_darkness);
      EXPECT_LE(ink.darkness, e.max_darkness);
      EXPECT_GE(ink.dark_share, e.min_dark_share);
      EXPECT_LE(ink.dark_share, e.max_dark_share);
    }
    // A tick and a stray dot leave ink outside the bubble too; a dot is small wherever it is.
    const BubbleRect dot = scan.bubbles[7 * 5].rect;
    const cv::Rect around(static_cast<int>((dot.Left - 10) * 1.5),
                          static_cast<int>((dot.Top - 8) * 1.5),
                          static_cast<int>((dot.Right - dot.Left + 20) * 1.5),
                          static_cast<int>((dot.Bottom - dot.Top + 16) * 1.5));
    cv::Mat1b darker;
    cv::compare(scan.image(around), printed(around), darker, cv::CMP_LT);
    EXPECT_GT(cv::countNonZero(darker), 0);
    EXPECT_LT(cv::countNonZero(darker), 40);
  }
  form->Free();
}

// Hand-made: marks of one kind differ from bubble to bubble and are not the printed ellipse.
TEST(Marks, NoTwoAlike) {
  auto form = AnswerSheet();
  const cv::Mat printed = synthscan::PrintedPage(*form, 1, 150);
  synthscan::MarkPlan plan;
  for (int row = 1; row <= 4; ++row)
    plan[{"Answers", row, 1}] = {MarkKind::kFull, 0};
  const synthscan::Scan scan =
      synthscan::MakeScan(*form, 1, printed, 150, plan, synthscan::Distortions{}, 1);
  const double k = 1.5;
  std::vector<cv::Mat> shapes;
  for (int row = 1; row <= 4; ++row) {
    const BubbleRect b = scan.bubbles[static_cast<size_t>((row - 1) * 5)].rect;
    const cv::Rect box(static_cast<int>((b.Left - 4) * k), static_cast<int>((b.Top - 4) * k),
                       static_cast<int>((b.Right - b.Left + 8) * k),
                       static_cast<int>((b.Bottom - b.Top + 8) * k));
    cv::Mat1b dark;
    cv::compare(scan.image(box), 128, dark, cv::CMP_LT);
    shapes.push_back(dark);
  }
  for (size_t i = 1; i < shapes.size(); ++i) {
    cv::Mat differ;
    cv::bitwise_xor(shapes[0], shapes[i], differ);
    EXPECT_GT(cv::countNonZero(differ), 10) << "row " << i + 1;
  }
  form->Free();
}

TEST(Marks, NamesReadBack) {
  for (const char* name : {"blank", "full", "light", "partial:10", "partial:95", "tick", "cross",
                           "dot", "erased", "heavy-erased"}) {
    const auto mark = synthscan::ParseMark(name);
    ASSERT_TRUE(mark) << name;
    EXPECT_EQ(synthscan::MarkName(*mark), name);
  }
  EXPECT_EQ(synthscan::ParseMark("partial")->share, 50);
  for (const char* bad :
       {"", "Full", "partial:5", "partial:96", "partial:x", "partial:50%", "tick:3", "smudge"})
    EXPECT_FALSE(synthscan::ParseMark(bad)) << bad;
}

}  // namespace
}  // namespace xun::testing
