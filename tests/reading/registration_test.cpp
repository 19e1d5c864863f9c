// Which printed shapes register a page: its bubbles when they show; its timing marks when the
// bubbles are printed in a drop-out ink the scanner does not see, one of them allowed to be
// missing.
#include <gtest/gtest.h>

#include <map>
#include <opencv2/imgproc.hpp>
#include <string>

#include "common/choice_grid.h"
#include "common/expected_answers.h"
#include "common/test_support.h"
#include "synthscan/answers.h"
#include "synthscan/image_files.h"
#include "synthscan/printed_page.h"
#include "synthscan/synthetic_scan.h"
#include "xun/reading/form_reader.h"
#include "xun/xun.h"

namespace xun::reading {
namespace {

namespace ss = xun::synthscan;

constexpr int kDpi = 200;

// A letter page with a track of 10 timing marks down its left edge and, unless `marks_only`, a
// grid of 15 questions by 4 choices.
std::shared_ptr<clsXUNTemplate> Form(bool drop_out, bool marks_only) {
  auto form = clsXUNTemplate::Create();
  form->PageWidth(8.5);
  form->PageHeight(11);
  auto page = clsXUNPage::Create();
  form->Pages()->Add(page);
  for (int i = 0; i < 10; ++i)
    page->TimingMarks()->AddMark(30, static_cast<int16_t>(100 + 95 * i), 30, 12);
  if (drop_out) page->DropOutColor(xunTemplateDropOutColorRed);
  if (!marks_only) testing::AddChoiceGrid(*page, "Answers", 15, 4, 200, 200);
  return form;
}

class RegistrationTest : public ::testing::Test {
 protected:
  // A filled scan of `form` printed as `printed` shows it (a drop-out print: the marks only),
  // turned and moved.
  ss::Scan ScanOf(const clsXUNTemplate& form, const cv::Mat& printed, const std::string& name) {
    ss::Distortions d;
    d.rotate = -2;
    d.shift_x = 20;
    d.shift_y = -15;
    d.noise = 4;
    ss::Scan scan =
        ss::MakeScan(form, 1, printed, kDpi, ss::RandomMarks(*form.Pages()->Item(1), 4), d, 4);
    ss::WriteGreyImage(folder_.File(name), scan.image, kDpi, false, 0);
    return scan;
  }
  testing::TempFolder folder_;
};

TEST_F(RegistrationTest, ADropOutPageIsPlacedByItsTimingMarks) {
  const auto form = Form(true, false);
  const auto marks_only = Form(true, true);
  cv::Mat printed = ss::PrintedPage(*marks_only, 1, kDpi);
  const ss::Scan scan = ScanOf(*form, printed, "drop-out.png");
  const FormReader reader(*form);
  const FormRecord record = reader.Read({folder_.File("drop-out.png")});
  ASSERT_TRUE(record.pages[0].registered) << record.pages[0].error;
  EXPECT_EQ(record.pages[0].registered_by, "timing marks");
  EXPECT_EQ(record.pages[0].bubbles_found, 10);
  size_t compared = 0;
  const std::map<std::string, std::string> expected = testing::ExpectedAnswers(*form, scan);
  for (const ItemAnswer& a : record.answers) {
    const auto it = expected.find(a.name);
    if (it == expected.end() || a.status == AnswerStatus::Doubtful) continue;
    EXPECT_EQ(a.value, it->second) << a.name;
    ++compared;
  }
  EXPECT_GE(compared, 10u);

  // One mark smudged away: the other nine still place the page. Two: the page is refused.
  const auto erase = [&](int mark) {
    const double px = kDpi / 100.0;
    cv::rectangle(printed, cv::Rect2d(25 * px, (95 + 95 * mark) * px, 40 * px, 22 * px),
                  cv::Scalar(255), cv::FILLED);
  };
  erase(3);
  ScanOf(*form, printed, "one-missing.png");
  const FormRecord nine = reader.Read({folder_.File("one-missing.png")});
  ASSERT_TRUE(nine.pages[0].registered) << nine.pages[0].error;
  EXPECT_EQ(nine.pages[0].bubbles_found, 9);
  erase(7);
  ScanOf(*form, printed, "two-missing.png");
  const FormRecord eight = reader.Read({folder_.File("two-missing.png")});
  EXPECT_FALSE(eight.pages[0].registered);
  EXPECT_NE(eight.pages[0].error.find("timing marks"), std::string::npos) << eight.pages[0].error;
}

TEST_F(RegistrationTest, APageWhoseBubblesShowIsPlacedByThem) {
  const auto form = Form(false, false);
  ScanOf(*form, ss::PrintedPage(*form, 1, kDpi), "printed.png");
  const FormRecord record = FormReader(*form).Read({folder_.File("printed.png")});
  ASSERT_TRUE(record.pages[0].registered) << record.pages[0].error;
  EXPECT_EQ(record.pages[0].registered_by, "bubbles");
  EXPECT_EQ(record.pages[0].bubbles_printed, 60);

  // The same page declared drop-out but with no timing marks cannot be placed: said so.
  const auto bare = Form(true, false);
  bare->Pages()->Item(1)->TimingMarks(clsXUNTimingMarks::Create());
  const FormRecord none = FormReader(*bare).Read({folder_.File("printed.png")});
  EXPECT_FALSE(none.pages[0].registered);
  EXPECT_NE(none.pages[0].error.find("drop-out"), std::string::npos) << none.pages[0].error;
}

}  // namespace
}  // namespace xun::reading
