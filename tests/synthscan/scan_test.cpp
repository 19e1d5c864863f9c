// Whole scans of the answer sheet: every bubble's truth agrees with its pixels, the truth's
// transform says where the page landed, and a seed gives one scan.
#include <gtest/gtest.h>

#include <map>

#include "synthscan/answers.h"
#include "synthscan/printed_page.h"
#include "synthscan_support.h"

namespace xun::testing {
namespace {

using synthscan::Distortions;
using synthscan::MakeScan;
using synthscan::Scan;
using synthscan::Truth;

constexpr int kDpi = 150;

class SheetScan : public ::testing::Test {
 protected:
  void SetUp() override {
    form_ = AnswerSheet();
    printed_ = synthscan::PrintedPage(*form_, 1, kDpi);
  }
  void TearDown() override { form_->Free(); }

  Scan ScanOf(const synthscan::MarkPlan& plan, const Distortions& d, uint32_t seed = 1) {
    return MakeScan(*form_, 1, printed_, kDpi, plan, d, seed);
  }
  const clsXUNPage& Page() const { return *form_->Pages()->Item(1); }

  std::shared_ptr<clsXUNTemplate> form_;
  cv::Mat printed_;
};

// Whatever a careful reader calls marked is dark, whatever they call unmarked is close to
// paper, on a straight scan and on a turned, moved one.
TEST_F(SheetScan, TruthAgreesWithThePixels) {
  Distortions moved;
  moved.rotate = -1.5;
  moved.scale = 0.99;
  moved.shift_x = 12;
  moved.shift_y = -8;
  for (const Distortions& d : {Distortions{}, moved})
    for (const uint32_t seed : {3u, 4u}) {
      const Scan scan = ScanOf(synthscan::RandomMarks(Page(), seed), d, seed);
      const cv::Mat blank = ScanOf({}, d, seed).image;
      ASSERT_EQ(scan.bubbles.size(), 100u);
      std::map<Truth, int> seen;
      for (const synthscan::BubbleTruth& b : scan.bubbles) {
        const Ink ink = AddedInk(scan, blank, b.rect);
        ++seen[b.truth];
        SCOPED_TRACE(b.at.region + " " + std::to_string(b.at.row) + "," + std::to_string(b.at.col) +
                     " " + synthscan::MarkName(b.mark));
        if (b.truth == Truth::kMarked) {
          EXPECT_GE(ink.darkness, 0.38);
        }
        if (b.truth == Truth::kUnmarked) {
          EXPECT_LE(ink.darkness, 0.12);
        }
        if (b.mark.kind == synthscan::MarkKind::kFull) {
          EXPECT_GE(ink.dark_share, 0.95);
        }
        if (b.mark.kind == synthscan::MarkKind::kBlank) {
          EXPECT_LE(ink.dark_share, 0.01);
        }
      }
      EXPECT_GT(seen[Truth::kMarked], 10);
      EXPECT_GT(seen[Truth::kUnmarked], 50);
      EXPECT_GT(seen[Truth::kAmbiguous], 0);
    }
}

// The dark centre of a window of `image` around `at` (pixel edges), weighted by darkness.
cv::Point2d DarkCentre(const cv::Mat& image, cv::Point2d at, double half_width,
                       double half_height) {
  const cv::Rect window =
      cv::Rect(
          cv::Point(static_cast<int>(at.x - half_width), static_cast<int>(at.y - half_height)),
          cv::Point(static_cast<int>(at.x + half_width), static_cast<int>(at.y + half_height))) &
      cv::Rect(0, 0, image.cols, image.rows);
  cv::Mat ink;
  cv::subtract(cv::Scalar(255), image(window), ink);
  const cv::Moments m = cv::moments(ink);
  return {window.x + m.m10 / m.m00 + 0.5, window.y + m.m01 / m.m00 + 0.5};
}

TEST_F(SheetScan, TransformSaysWhereThePrintLanded) {
  Distortions d;
  d.rotate = 2.5;
  d.scale = 1.015;
  d.shift_x = 23;
  d.shift_y = -17;
  const Scan straight = ScanOf({}, Distortions{});
  const Scan moved = ScanOf({}, d);
  const double k = kDpi / 100.0;
  const auto expect_landing = [&](double cx, double cy, double half_w, double half_h) {
    // Where the print has it, and where the transform sends that.
    const cv::Point2d printed =
        DarkCentre(straight.image, {cx * k, cy * k}, half_w * k, half_h * k);
    EXPECT_NEAR(printed.x, cx * k, 1.0);
    EXPECT_NEAR(printed.y, cy * k, 1.0);
    const cv::Point2d expected = synthscan::OnScan(moved, printed.x / k, printed.y / k);
    const cv::Point2d found = DarkCentre(moved.image, expected, half_w * k, half_h * k);
    EXPECT_NEAR(found.x, expected.x, 1.0) << cx << "," << cy;
    EXPECT_NEAR(found.y, expected.y, 1.0) << cx << "," << cy;
    // Not where it was: the page did move.
    EXPECT_GT(cv::norm(expected - printed), 5.0);
  };
  for (const auto& mark : *Page().TimingMarks())
    expect_landing(mark->Left() + mark->Width() / 2.0, mark->Top() + mark->Height() / 2.0,
                   mark->Width() * 0.9, mark->Height() * 1.2);
  const BubbleGrid grid = BubbleGrid::Of(*Page().Fields()->Item(1));
  for (const auto& [r, c] :
       {std::pair{1, 1}, std::pair{1, 5}, std::pair{20, 1}, std::pair{20, 5}}) {
    const BubbleRect b = grid.Bubble(r, c);
    expect_landing((b.Left + b.Right) / 2.0, (b.Top + b.Bottom) / 2.0, (b.Right - b.Left) * 0.8,
                   (b.Bottom - b.Top) * 0.8);
  }
}

TEST_F(SheetScan, OneSeedOneScan) {
  Distortions d;
  d.rotate = 0.7;
  d.noise = 10;
  d.blur = 0.8;
  d.jpeg = 60;
  const synthscan::MarkPlan plan = synthscan::RandomMarks(Page(), 9);
  const Scan first = ScanOf(plan, d, 5), again = ScanOf(plan, d, 5), other = ScanOf(plan, d, 6);
  EXPECT_EQ(cv::norm(first.image, again.image, cv::NORM_INF), 0);
  EXPECT_GT(cv::norm(first.image, other.image, cv::NORM_L1), 0);
}

TEST_F(SheetScan, RefusesWhatIsNotOnThePage) {
  EXPECT_THROW(ScanOf({{{"Answers", 21, 1}, {synthscan::MarkKind::kFull, 0}}}, Distortions{}),
               std::invalid_argument);
  EXPECT_THROW(ScanOf({{{"Elsewhere", 1, 1}, {synthscan::MarkKind::kFull, 0}}}, Distortions{}),
               std::invalid_argument);
  EXPECT_THROW(MakeScan(*form_, 2, printed_, kDpi, {}, Distortions{}, 1), std::invalid_argument);
  // A print at another resolution is not this page at 150 dpi.
  EXPECT_THROW(MakeScan(*form_, 1, printed_, 200, {}, Distortions{}, 1), std::invalid_argument);
}

}  // namespace
}  // namespace xun::testing
