// The synthscan program end to end: a template in, a scan and its truth file out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <cstdlib>
#include <filesystem>

#include "common/test_support.h"
#include "synthscan/distortions.h"
#include "synthscan/image_files.h"
#include "synthscan/printed_page.h"
#include "synthscan_support.h"

namespace xun::testing {
namespace {

class Program : public ::testing::Test {
 protected:
  void SetUp() override {
    form_ = AnswerSheet();
    ASSERT_TRUE(form_->Save(folder_.File("sheet.omr"), false));
  }
  void TearDown() override { form_->Free(); }

  // The program's exit code; what it said on standard error in `said`.
  int Run(const std::string& arguments) {
    const std::string command = std::string(SYNTHSCAN_PROGRAM) + " " + folder_.File("sheet.omr") +
                                " " + arguments + " 2>" + folder_.File("stderr.txt");
    const int status = std::system(command.c_str());
    said = ReadFileBytes(folder_.File("stderr.txt"));
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  cv::Mat Image(const std::string& name, int& dpi) {
    return synthscan::ReadGreyImage(folder_.File(name), dpi);
  }
  nlohmann::json Truth(const std::string& name) {
    return nlohmann::json::parse(ReadFileBytes(folder_.File(name)));
  }

  std::shared_ptr<clsXUNTemplate> form_;
  TempFolder folder_;
  std::string said;
};

TEST_F(Program, WritesTheScanAndItsTruth) {
  ASSERT_EQ(
      Run("--random 3 --dpi 150 --rotate 1 --shift-x 10 --noise 5 -o " + folder_.File("scan.png")),
      0)
      << said;
  int dpi = 0;
  const cv::Mat scan = Image("scan.png", dpi);
  EXPECT_EQ(dpi, 150);
  EXPECT_EQ(scan.size(), cv::Size(1275, 1650));

  const nlohmann::json truth = Truth("scan.truth.json");
  EXPECT_EQ(truth["template"], folder_.File("sheet.omr"));
  EXPECT_EQ(truth["page"], 1);
  EXPECT_EQ(truth["dpi"], 150);
  EXPECT_EQ(truth["marks"], "random 3");
  EXPECT_EQ(truth["distortions"]["rotate"], 1.0);
  EXPECT_EQ(truth["distortions"]["shift_x"], 10.0);
  EXPECT_EQ(truth["distortions"]["noise"], 5.0);
  synthscan::Distortions d;
  d.rotate = 1;
  d.shift_x = 10;
  const cv::Matx23d expected = synthscan::PageToPixels(d, scan.size(), 150);
  for (int r = 0; r < 2; ++r)
    for (int c = 0; c < 3; ++c)
      EXPECT_DOUBLE_EQ(truth["page_to_pixels"][r][c].get<double>(), expected(r, c));

  const BubbleGrid grid = BubbleGrid::Of(*form_->Pages()->Item(1)->Fields()->Item(1));
  ASSERT_EQ(truth["bubbles"].size(), 100u);
  int marked = 0;
  for (const nlohmann::json& b : truth["bubbles"]) {
    const BubbleRect rect = grid.Bubble(b["row"].get<int>(), b["col"].get<int>());
    EXPECT_EQ(b["region"], "Answers");
    EXPECT_EQ(b["rect"]["left"], rect.Left);
    EXPECT_EQ(b["rect"]["top"], rect.Top);
    EXPECT_EQ(b["rect"]["right"], rect.Right);
    EXPECT_EQ(b["rect"]["bottom"], rect.Bottom);
    EXPECT_THAT(b["truth"].get<std::string>(), ::testing::AnyOf("marked", "unmarked", "ambiguous"));
    marked += b["truth"] == "marked";
  }
  EXPECT_GT(marked, 10);
}

TEST_F(Program, MarksFromAFileOnABlackAndWhiteTiff) {
  WriteFileBytes(folder_.File("marks.csv"),
                 "Answers,1,1,full\nAnswers,2,3,tick\nAnswers,3,4,dot\n");
  ASSERT_EQ(Run("--marks " + folder_.File("marks.csv") + " --dpi 150 --dither -o " +
                folder_.File("scan.tif")),
            0)
      << said;
  int dpi = 0;
  const cv::Mat scan = Image("scan.tif", dpi);
  cv::Mat1b grey;
  cv::inRange(scan, 1, 254, grey);
  EXPECT_EQ(cv::countNonZero(grey), 0);
  const nlohmann::json truth = Truth("scan.truth.json");
  EXPECT_EQ(truth["distortions"]["dither"], true);
  const auto bubble = [&](int row, int col) { return truth["bubbles"][(row - 1) * 5 + col - 1]; };
  EXPECT_EQ(bubble(1, 1)["kind"], "full");
  EXPECT_EQ(bubble(1, 1)["truth"], "marked");
  EXPECT_EQ(bubble(2, 3)["truth"], "ambiguous");
  EXPECT_EQ(bubble(3, 4)["kind"], "dot");
  EXPECT_EQ(bubble(3, 4)["truth"], "unmarked");
  EXPECT_EQ(bubble(1, 2)["kind"], "blank");
}

TEST_F(Program, AGivenPrintIsThePrintItMakes) {
  const cv::Mat printed = synthscan::PrintedPage(*form_, 1, 150);
  synthscan::WriteGreyImage(folder_.File("printed.png"), printed, 150, false, 0);
  ASSERT_EQ(Run("--random 1 --dpi 150 --jpeg 15 -o " + folder_.File("own.jpg")), 0) << said;
  ASSERT_EQ(Run("--random 1 --dpi 150 --jpeg 15 --printed " + folder_.File("printed.png") + " -o " +
                folder_.File("given.jpg")),
            0)
      << said;
  int dpi = 0;
  EXPECT_EQ(cv::norm(Image("own.jpg", dpi), Image("given.jpg", dpi), cv::NORM_INF), 0);
  EXPECT_EQ(dpi, 150);
}

TEST_F(Program, SaysWhatIsWrong) {
  const cv::Mat printed = synthscan::PrintedPage(*form_, 1, 150);
  synthscan::WriteGreyImage(folder_.File("printed.png"), printed, 150, false, 0);
  const std::string out = " -o " + folder_.File("scan.png");
  EXPECT_NE(Run("--random 1 --printed " + folder_.File("printed.png") + " --dpi 300" + out), 0);
  EXPECT_THAT(said, ::testing::HasSubstr("is not the page at 300 dpi"));
  EXPECT_NE(Run("--random 1 --rotate 5" + out), 0);
  EXPECT_THAT(said, ::testing::HasSubstr("rotation must be within 3 degrees"));
  EXPECT_NE(Run(out), 0);
  EXPECT_THAT(said, ::testing::HasSubstr("--marks FILE or --random SEED"));
  EXPECT_NE(Run("--random 1 --page 2" + out), 0);
  EXPECT_THAT(said, ::testing::HasSubstr("has no page 2"));
  EXPECT_NE(Run("--random 1 --dpi 250" + out), 0);
  EXPECT_NE(Run("--random 1 -o " + folder_.File("scan.bmp")), 0);
  EXPECT_THAT(said, ::testing::HasSubstr("must end in .png"));
  EXPECT_NE(Run("--random 1 --dither -o " + folder_.File("scan.jpg")), 0);
  EXPECT_FALSE(std::filesystem::exists(folder_.File("scan.png")));
}

}  // namespace
}  // namespace xun::testing
