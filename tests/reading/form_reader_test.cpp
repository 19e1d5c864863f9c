// Reading printed, filled, scanned forms: every answer a careful person would agree on is read
// right through the scanner's distortions, the rest are flagged; blank sheets read blank; what
// is not this form is refused with a reason.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "common/expected_answers.h"
#include "common/test_support.h"
#include "synthscan/image_files.h"
#include "synthscan/printed_page.h"
#include "synthscan/synthetic_scan.h"
#include "xun/reading/form_reader.h"
#include "xun/xun.h"

namespace xun::reading {
namespace {

namespace ss = xun::synthscan;

class FormReaderTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(exam_->Read(std::string(XUN_EXAMPLES_DIR) + "/exam.omr")); }
  void TearDown() override { exam_->Free(); }

  // A scan of the exam marked by class `seed`, written as a file the reader reads.
  ss::Scan ScanOf(uint32_t seed, int dpi, const ss::Distortions& d, const std::string& name,
                  bool blank = false) {
    const cv::Mat& printed = Printed(dpi);
    const ss::MarkPlan plan =
        blank ? ss::MarkPlan{} : ss::RandomMarks(*exam_->Pages()->Item(1), seed);
    ss::Scan scan = ss::MakeScan(*exam_, 1, printed, dpi, plan, d, seed);
    ss::WriteGreyImage(folder_.File(name), scan.image, dpi, d.dither, d.jpeg);
    return scan;
  }
  const cv::Mat& Printed(int dpi) {
    cv::Mat& printed = printed_[dpi];
    if (printed.empty()) printed = ss::PrintedPage(*exam_, 1, dpi);
    return printed;
  }
  std::map<std::string, ItemAnswer> Answers(const FormRecord& record) {
    std::map<std::string, ItemAnswer> answers;
    for (const ItemAnswer& a : record.answers)
      answers[a.name] = a;
    return answers;
  }

  testing::TempFolder folder_;
  std::shared_ptr<clsXUNTemplate> exam_ = clsXUNTemplate::Create();
  std::map<int, cv::Mat> printed_;
};

TEST_F(FormReaderTest, ClearAnswersAreReadRightThroughEveryScanner) {
  const FormReader reader(*exam_);
  struct Case {
    int dpi;
    ss::Distortions d;
  };
  std::vector<Case> cases = {{150, {}}, {200, {}}, {300, {}}, {600, {}}};
  ss::Distortions skewed;
  skewed.rotate = 3;
  skewed.scale = 1.02;
  skewed.shift_x = 30;
  skewed.shift_y = -30;
  cases.push_back({200, skewed});
  skewed.rotate = -3;
  skewed.scale = 0.98;
  skewed.blur = 1.2;
  skewed.noise = 8;
  skewed.jpeg = 15;
  cases.push_back({300, skewed});
  ss::Distortions flat;
  flat.contrast = 0.5;
  flat.rotate = 1.5;
  cases.push_back({200, flat});
  ss::Distortions bilevel;
  bilevel.dither = true;
  bilevel.rotate = -2;
  cases.push_back({200, bilevel});
  int compared = 0;
  for (size_t i = 0; i < cases.size(); ++i) {
    const std::string name = "scan" + std::to_string(i) + (cases[i].d.jpeg ? ".jpg" : ".png");
    const ss::Scan scan = ScanOf(static_cast<uint32_t>(11 + i), cases[i].dpi, cases[i].d, name);
    const FormRecord record = reader.Read({folder_.File(name)});
    SCOPED_TRACE(name);
    ASSERT_TRUE(record.pages[0].registered) << record.pages[0].error;
    EXPECT_LT(record.pages[0].fit_error, 1.0);
    // Every printed bubble judged, none marked that the truth calls unmarked or the other way.
    ASSERT_EQ(record.pages[0].bubbles.size(), scan.bubbles.size());
    std::map<ss::BubbleAt, ss::Truth> truth;
    for (const ss::BubbleTruth& b : scan.bubbles)
      truth[b.at] = b.truth;
    for (const BubbleReading& b : record.pages[0].bubbles) {
      const ss::Truth t = truth[{b.region, b.row, b.col}];
      const MarkState opposite = t == ss::Truth::kMarked     ? MarkState::Unmarked
                                 : t == ss::Truth::kUnmarked ? MarkState::Marked
                                                             : MarkState::Doubtful;
      if (t != ss::Truth::kAmbiguous) {
        EXPECT_NE(b.state, opposite) << b.region << " " << b.row << "," << b.col;
      }
    }
    std::map<std::string, ItemAnswer> answers = Answers(record);
    for (const auto& [item, value] : testing::ExpectedAnswers(*exam_, scan)) {
      // A doubtful answer may be wrong: it goes to a person. Any other must be right.
      if (answers[item].status == AnswerStatus::Doubtful) continue;
      EXPECT_EQ(answers[item].value, value) << item;
      ++compared;
    }
  }
  EXPECT_GT(compared, 30);
}

TEST_F(FormReaderTest, ABlankSheetReadsBlankEverywhere) {
  const FormReader reader(*exam_);
  ss::Distortions d;
  d.rotate = 2;
  d.noise = 6;
  d.blur = 1;
  ScanOf(1, 200, d, "blank.png", true);
  const FormRecord record = reader.Read({folder_.File("blank.png")});
  ASSERT_TRUE(record.pages[0].registered);
  EXPECT_FALSE(record.NeedsReview());
  for (const ItemAnswer& a : record.answers) {
    EXPECT_EQ(a.status, AnswerStatus::Blank) << a.name;
    EXPECT_EQ(a.value, "BLANK");
  }
}

TEST_F(FormReaderTest, WhatIsNotThisFormIsRefusedWithAReason) {
  const FormReader reader(*exam_);
  // Another form's page: the survey's bubbles are not where the exam's are.
  auto survey = clsXUNTemplate::Create();
  ASSERT_TRUE(survey->Read(std::string(XUN_EXAMPLES_DIR) + "/survey.omr"));
  ASSERT_TRUE(PrintPage(*survey, 1, folder_.File("survey.png"), 200));
  survey->Free();
  // A picture: noise.
  cv::Mat noise(2200, 1700, CV_8UC1);
  cv::randu(noise, 0, 256);
  ss::WriteGreyImage(folder_.File("noise.png"), noise, 200, false, 0);
  testing::WriteFileBytes(folder_.File("broken.png"), "\x89PNG\r\n\x1a\nbroken");

  for (const std::string name : {"survey.png", "noise.png", "broken.png", "missing.png"}) {
    const FormRecord record = reader.Read({folder_.File(name)});
    SCOPED_TRACE(name);
    EXPECT_FALSE(record.pages[0].registered);
    EXPECT_FALSE(record.pages[0].error.empty());
    EXPECT_TRUE(record.NeedsReview());
    for (const ItemAnswer& a : record.answers) {
      EXPECT_EQ(a.status, AnswerStatus::Error);
      EXPECT_EQ(a.value, "ERROR #");
    }
  }
  EXPECT_EQ(reader.Read({}).answers.size(), 6u);
  EXPECT_FALSE(reader.Read({}).error.empty());
}

// The pages of a form come as one image file each or all in one multi-page TIFF, and read the same
// either way; pages too many or too few are said so.
TEST_F(FormReaderTest, AMultiPageTiffIsTheFormsPagesInOrder) {
  auto quiz = clsXUNTemplate::Create();
  ASSERT_TRUE(quiz->Read(std::string(XUN_EXAMPLES_DIR) + "/batch-quiz.omr"));
  ASSERT_EQ(quiz->NumPages(), 2);
  std::vector<cv::Mat> scans;
  for (int page = 1; page <= 2; ++page) {
    ss::Distortions d;
    d.rotate = page == 1 ? 1 : -1;
    scans.push_back(ss::MakeScan(*quiz, page, ss::PrintedPage(*quiz, page, 150), 150,
                                 ss::RandomMarks(*quiz->Pages()->Item(page), 5), d, 5)
                        .image);
    ss::WriteGreyImage(folder_.File("page" + std::to_string(page) + ".png"), scans.back(), 150,
                       false, 0);
  }
  ss::WriteGreyTiffPages(folder_.File("form.tif"), scans, 150);
  ss::WriteGreyTiffPages(folder_.File("three.tif"), {scans[0], scans[1], scans[0]}, 150);
  const FormReader reader(*quiz);
  quiz->Free();

  const FormRecord apart = reader.Read({folder_.File("page1.png"), folder_.File("page2.png")});
  const FormRecord together = reader.Read({folder_.File("form.tif")});
  ASSERT_TRUE(together.error.empty()) << together.error;
  ASSERT_EQ(together.pages.size(), 2u);
  for (int p = 0; p < 2; ++p) {
    EXPECT_TRUE(together.pages[static_cast<size_t>(p)].registered);
    EXPECT_EQ(together.pages[static_cast<size_t>(p)].frame, p);
  }
  ASSERT_EQ(together.answers.size(), apart.answers.size());
  size_t read = 0;
  for (size_t i = 0; i < apart.answers.size(); ++i) {
    EXPECT_EQ(together.answers[i].value, apart.answers[i].value) << apart.answers[i].name;
    if (apart.answers[i].status != AnswerStatus::Error) ++read;
  }
  EXPECT_GT(read, 10u);

  const FormRecord three = reader.Read({folder_.File("three.tif")});
  EXPECT_EQ(three.error, "3 pages scanned for a form of 2 pages");
  EXPECT_TRUE(three.NeedsReview());
  const FormRecord one = reader.Read({folder_.File("page1.png")});
  EXPECT_EQ(one.error, "1 page scanned for a form of 2 pages");
  EXPECT_FALSE(one.pages[1].error.empty());
}

}  // namespace
}  // namespace xun::reading
