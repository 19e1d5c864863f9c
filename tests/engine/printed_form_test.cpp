// The engine on the answer sheet as the library prints it, filled in and scanned (synthscan): at
// the four resolutions a scanner is used at, straight and through a scanner's distortions.
#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>

#include <string>
#include <vector>

#include "common/answer_sheet.h"
#include "common/test_support.h"
#include "engine/engine_calls.h"
#include "synthscan/answers.h"
#include "synthscan/image_files.h"
#include "synthscan/printed_page.h"
#include "synthscan/synthetic_scan.h"

namespace xun::testing {
namespace {

using synthscan::Distortions;

// The sheet on a page just large enough for it, so that 600 dpi stays quick.
constexpr double kWidth = 4, kHeight = 7.5;
constexpr int16_t kRows = 20, kCols = 5;
constexpr int16_t kLeft = 150, kTop = 100, kRight = 350, kBottom = 700;

struct Scanner {
  std::string name;
  Distortions distortions;
};

std::vector<Scanner> Scanners(int dpi) {
  std::vector<Scanner> scanners{{"straight", {}}};
  Distortions grey;
  grey.blur = 0.4 * dpi / 100;  // a scanner's optics soften by a fixed share of an inch
  grey.noise = 8;
  grey.jpeg = 60;
  scanners.push_back({"blurred_noisy_jpeg60", grey});
  Distortions black_and_white;
  black_and_white.dither = true;
  scanners.push_back({"dithered", black_and_white});
  if (dpi <= 300) {
    Distortions flat;
    flat.contrast = 0.5;
    scanners.push_back({"half_contrast", flat});
    Distortions rough;
    rough.jpeg = 15;
    scanners.push_back({"jpeg15", rough});
    Distortions moved;
    moved.rotate = 0.5;
    moved.scale = 1.005;
    moved.shift_x = 9;
    moved.shift_y = -6;
    scanners.push_back({"moved", moved});
  }
  return scanners;
}

// A scan of the sheet saved where the engine can load it.
struct ScanFile {
  synthscan::Scan scan;
  std::string file;
};

class PrintedForm : public ::testing::TestWithParam<int> {
 public:
  void SetUp() override {
    form_ = AnswerSheet(kWidth, kHeight);
    printed_ = synthscan::PrintedPage(*form_, 1, GetParam());
  }
  void TearDown() override { form_->Free(); }

  ScanFile Scan(const Distortions& d, const synthscan::MarkPlan& plan, const std::string& name) {
    ScanFile made{synthscan::MakeScan(*form_, 1, printed_, GetParam(), plan, d, 1),
                  folder_.File(name + ".png")};
    synthscan::WriteGreyImage(made.file, made.scan.image, GetParam(), d.dither, 0);
    return made;
  }
  const clsXUNPage& Page() const { return *form_->Pages()->Item(1); }

 private:
  std::shared_ptr<clsXUNTemplate> form_;
  cv::Mat printed_;
  TempFolder folder_;
};

// The region's rectangle where the scan put it: moved with the page's middle, so the grid stays
// in it (a turn of half a degree moves its corners by a few units at most).
struct Rect16 {
  int16_t left, top, right, bottom;
};

Rect16 RegionOn(const synthscan::Scan& scan) {
  const double k = scan.dpi / 100.0;
  const cv::Point2d middle =
      synthscan::OnScan(scan, (kLeft + kRight) / 2.0, (kTop + kBottom) / 2.0);
  const int16_t dx = static_cast<int16_t>(std::lround(middle.x / k - (kLeft + kRight) / 2.0));
  const int16_t dy = static_cast<int16_t>(std::lround(middle.y / k - (kTop + kBottom) / 2.0));
  return {static_cast<int16_t>(kLeft + dx), static_cast<int16_t>(kTop + dy),
          static_cast<int16_t>(kRight + dx), static_cast<int16_t>(kBottom + dy)};
}

struct Checked {
  int16_t code = -1;
  std::vector<int16_t> results = std::vector<int16_t>(kRows + kCols + 5, -1);
  std::vector<int16_t> fill = std::vector<int16_t>(kRows * kCols, -1);
  int16_t Left(int col) const { return results[static_cast<size_t>(5 + col - 1)]; }
  int16_t Top(int row) const { return results[static_cast<size_t>(5 + kCols + row - 1)]; }
  int16_t Fill(int row, int col) const {
    return fill[static_cast<size_t>((col - 1) * kRows + row - 1)];
  }
};

Checked Check(const Rect16& r) {
  Checked checked;
  checked.code = XUNREC_check_omr_field_fill(kRows, kCols, r.left, r.top, r.right, r.bottom,
                                             checked.results.data(), checked.fill.data());
  return checked;
}

TEST_P(PrintedForm, GridIsFoundWhereItWasPrinted) {
  const synthscan::MarkPlan plan = synthscan::RandomMarks(Page(), 2);
  const ScanFile made = Scan(Distortions{}, plan, "straight");
  LoadedImage loaded(made.file, GetParam());
  ASSERT_EQ(loaded.Code(), XUNREC_OK);
  int16_t rows = 0, cols = 0;
  ASSERT_EQ(XUNREC_search_omr_field(kLeft, kTop, kRight, kBottom, &rows, &cols), XUNREC_OK);
  EXPECT_EQ(rows, kRows);
  EXPECT_EQ(cols, kCols);
  const Checked checked = Check({kLeft, kTop, kRight, kBottom});
  ASSERT_EQ(checked.code, XUNREC_OK);
  const BubbleGrid grid = BubbleGrid::Of(*Page().Fields()->Item(1));
  EXPECT_NEAR(checked.results[2], grid.BubbleWidth(), 1);
  EXPECT_NEAR(checked.results[3], grid.BubbleHeight(), 1);
  for (int c = 1; c <= kCols; ++c)
    EXPECT_NEAR(checked.Left(c), grid.Bubble(1, c).Left, 1) << "column " << c;
  for (int r = 1; r <= kRows; ++r)
    EXPECT_NEAR(checked.Top(r), grid.Bubble(r, 1).Top, 1) << "row " << r;
}

// The fills the engine reads for the blank and the fully marked bubbles of a random class's
// sheet, through each scanner, the grid searched and checked where the scan put it.
struct Fills {
  std::string scanner;
  std::vector<int> blank, full;
};

std::vector<Fills> ReadFills(PrintedForm& test, const std::vector<Scanner>& scanners) {
  std::vector<Fills> read;
  const synthscan::MarkPlan plan = synthscan::RandomMarks(test.Page(), 5);
  for (const Scanner& scanner : scanners) {
    SCOPED_TRACE(scanner.name);
    const ScanFile made = test.Scan(scanner.distortions, plan, scanner.name);
    LoadedImage loaded(made.file, test.GetParam());
    EXPECT_EQ(loaded.Code(), XUNREC_OK);
    const Rect16 region = RegionOn(made.scan);
    int16_t rows = 0, cols = 0;
    EXPECT_EQ(
        XUNREC_search_omr_field(region.left, region.top, region.right, region.bottom, &rows, &cols),
        XUNREC_OK);
    EXPECT_EQ(rows, kRows);
    EXPECT_EQ(cols, kCols);
    const Checked checked = Check(region);
    EXPECT_EQ(checked.code, XUNREC_OK);
    Fills fills{scanner.name, {}, {}};
    for (const synthscan::BubbleTruth& b : made.scan.bubbles) {
      if (b.mark.kind == synthscan::MarkKind::kBlank)
        fills.blank.push_back(checked.Fill(b.at.row, b.at.col));
      if (b.mark.kind == synthscan::MarkKind::kFull)
        fills.full.push_back(checked.Fill(b.at.row, b.at.col));
    }
    EXPECT_GT(fills.blank.size(), 40u);
    EXPECT_GT(fills.full.size(), 10u);
    read.push_back(std::move(fills));
  }
  return read;
}

// 600 dpi pages are large: the straight scan and the black-and-white one are enough there.
std::vector<Scanner> ScannersFor(int dpi) {
  std::vector<Scanner> scanners = Scanners(dpi);
  if (dpi >= 600) scanners.erase(scanners.begin() + 1);
  return scanners;
}

TEST_P(PrintedForm, BlankAndFullBubblesReadApartThroughAScanner) {
  for (const Fills& fills : ReadFills(*this, ScannersFor(GetParam()))) {
    SCOPED_TRACE(fills.scanner);
    for (const int fill : fills.full)
      EXPECT_GE(fill, 85);
    for (const int fill : fills.blank)
      EXPECT_LE(fill, 15);
  }
}

TEST_P(PrintedForm, AlignmentRecoversAShiftUpToTheSearchDistance) {
  constexpr int16_t kDistance = 20;
  struct Shift {
    double dx, dy;
    bool within;
  };
  std::vector<Shift> shifts{{0, 0, true},   {20, 0, true},  {-13, 17, true},
                            {0, -20, true}, {28, 0, false}, {-5, 29, false}};
  if (GetParam() >= 600) shifts = {{-13, 17, true}, {28, 0, false}};
  for (const Shift shift : shifts) {
    SCOPED_TRACE(std::to_string(shift.dx) + "," + std::to_string(shift.dy));
    Distortions d;
    d.shift_x = shift.dx;
    d.shift_y = shift.dy;
    const ScanFile made = Scan(d, synthscan::RandomMarks(Page(), 3), "shifted");
    LoadedImage loaded(made.file, GetParam());
    ASSERT_EQ(loaded.Code(), XUNREC_OK);
    int16_t l = 0, t = 0, r = 0, b = 0;
    const int16_t code = XUNREC_align_omr_field(kLeft, kTop, kRight, kBottom, kRows, kCols,
                                                kDistance, &l, &t, &r, &b);
    if (!shift.within) {
      EXPECT_NE(code, XUNREC_OK);
      continue;
    }
    ASSERT_EQ(code, XUNREC_OK);
    EXPECT_NEAR(l, kLeft + shift.dx, 1);
    EXPECT_NEAR(t, kTop + shift.dy, 1);
    EXPECT_EQ(r - l, kRight - kLeft);
    EXPECT_EQ(b - t, kBottom - kTop);
  }
}

TEST_P(PrintedForm, TimingMarksAreExactlyThePrintedOnes) {
  const ScanFile made = Scan(Distortions{}, synthscan::RandomMarks(Page(), 4), "marks");
  LoadedImage loaded(made.file, GetParam());
  ASSERT_EQ(loaded.Code(), XUNREC_OK);
  std::vector<XUNREC_MarkArea> found(64);
  int16_t count = 0;
  ASSERT_EQ(XUNREC_get_mark_areas(1, 1, static_cast<int16_t>(kWidth * 100 - 1),
                                  static_cast<int16_t>(kHeight * 100 - 1), 5, 5, 64, &count,
                                  found.data()),
            XUNREC_OK);
  std::vector<std::shared_ptr<clsXUNTimingMark>> printed;
  for (const auto& mark : *Page().TimingMarks())
    printed.push_back(mark);
  ASSERT_EQ(count, static_cast<int16_t>(printed.size()));
  for (size_t i = 0; i < printed.size(); ++i) {
    EXPECT_NEAR(found[i].left, printed[i]->Left(), 1) << i;
    EXPECT_NEAR(found[i].top, printed[i]->Top(), 1) << i;
    EXPECT_NEAR(found[i].width, printed[i]->Width(), 1) << i;
    EXPECT_NEAR(found[i].height, printed[i]->Height(), 1) << i;
  }
}

// On a black-and-white scan a dark pixel is a black one: counted here straight from the image.
TEST_P(PrintedForm, DarkPixelsAreTheBlackOnesOfABlackAndWhiteScan) {
  Distortions d;
  d.dither = true;
  d.rotate = -0.8;
  d.noise = 10;
  const ScanFile made = Scan(d, synthscan::RandomMarks(Page(), 6), "bw");
  LoadedImage loaded(made.file, GetParam());
  ASSERT_EQ(loaded.Code(), XUNREC_OK);
  cv::Mat1b black;
  cv::compare(made.scan.image, 128, black, cv::CMP_LT);
  const double k = GetParam() / 100.0;
  const auto px = [&](int units) { return static_cast<int>(std::lround(units * k)); };
  for (const cv::Rect units :
       {cv::Rect(kLeft, kTop, kRight - kLeft, kBottom - kTop), cv::Rect(0, 0, 400, 750),
        cv::Rect(15, 95, 40, 30), cv::Rect(161, 111, 7, 3), cv::Rect(300, 600, 300, 300)}) {
    int32_t pixels = -1;
    ASSERT_EQ(XUNREC_check_image_field(static_cast<int16_t>(units.x), static_cast<int16_t>(units.y),
                                       static_cast<int16_t>(units.br().x),
                                       static_cast<int16_t>(units.br().y), &pixels),
              XUNREC_OK);
    const cv::Rect on_image = cv::Rect(cv::Point(px(units.x), px(units.y)),
                                       cv::Point(px(units.br().x), px(units.br().y))) &
                              cv::Rect(0, 0, black.cols, black.rows);
    EXPECT_EQ(pixels, cv::countNonZero(black(on_image))) << units;
  }
}

INSTANTIATE_TEST_SUITE_P(Resolutions, PrintedForm, ::testing::Values(150, 200, 300, 600),
                         [](const auto& param_info) {
                           return std::to_string(param_info.param) + "dpi";
                         });

}  // namespace
}  // namespace xun::testing
