// The timing-mark search: exactly the marks of the tracks, not the filled bubbles, text, logo or
// lone box around them.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "common/test_support.h"
#include "engine/engine_calls.h"

namespace xun::testing {
namespace {

struct DrawnMarks {
  SyntheticPage page;
  std::vector<UnitBox> marks;  // sorted by top, then left
};

DrawnMarks PageWithTracks(int dpi) {
  DrawnMarks drawn{SyntheticPage(8.5, 11, dpi), {}};
  // A track down the left edge, one mark a row, and one along the top.
  for (int i = 0; i < 20; ++i)
    drawn.marks.push_back({30, 100.0 + i * 40, 25, 8});
  for (int i = 0; i < 12; ++i)
    drawn.marks.push_back({150.0 + i * 50, 30, 10, 20});
  for (const UnitBox& m : drawn.marks)
    drawn.page.FillBox(m);
  // What is not a timing mark: a row of filled bubbles, a paragraph, a logo, a lone box, and a
  // few boxes of mixed sizes in a line.
  GridSpec bubbles;
  bubbles.left = 150;
  bubbles.top = 300;
  bubbles.cols = 8;
  bubbles.pitch_x = 30;
  bubbles.bubble_w = 22;
  bubbles.bubble_h = 22;
  bubbles.pitch_y = 30;
  for (int c = 0; c < bubbles.cols; ++c)
    bubbles.marks[{0, c}] = 0;
  drawn.page.DrawGrid(bubbles);
  drawn.page.DrawClutter({150, 400, 600, 200}, 3);
  drawn.page.FillBox({600, 700, 120, 120});  // a logo
  drawn.page.FillBox({300, 750, 30, 10});    // a lone box
  drawn.page.FillBox({150, 900, 10, 10});
  drawn.page.FillBox({200, 900, 30, 30});
  drawn.page.FillBox({250, 900, 60, 10});
  std::sort(drawn.marks.begin(), drawn.marks.end(), [](const UnitBox& a, const UnitBox& b) {
    return a.top != b.top ? a.top < b.top : a.left < b.left;
  });
  return drawn;
}

std::vector<XUNREC_MarkArea> Search(int16_t max_marks, int16_t& code) {
  std::vector<XUNREC_MarkArea> found(static_cast<size_t>(std::max<int16_t>(max_marks, 1)));
  int16_t count = 0;
  code = XUNREC_get_mark_areas(1, 1, 849, 1099, 5, 5, max_marks, &count, found.data());
  found.resize(static_cast<size_t>(count));
  return found;
}

class TimingMarks : public ::testing::TestWithParam<std::string> {};

TEST_P(TimingMarks, AreExactlyTheMarksOfTheTracks) {
  for (const int dpi : {150, 300}) {
    DrawnMarks drawn = PageWithTracks(dpi);
    TempFolder folder;
    LoadedImage loaded(drawn.page.Save(folder.File("page." + GetParam()), GetParam()), dpi);
    ASSERT_EQ(loaded.Code(), XUNREC_OK);
    int16_t code = -1;
    const std::vector<XUNREC_MarkArea> found = Search(512, code);
    ASSERT_EQ(code, XUNREC_OK);
    ASSERT_EQ(found.size(), drawn.marks.size()) << dpi << " dpi";
    for (size_t i = 0; i < found.size(); ++i) {
      EXPECT_NEAR(found[i].left, drawn.marks[i].left, 1);
      EXPECT_NEAR(found[i].top, drawn.marks[i].top, 1);
      EXPECT_NEAR(found[i].width, drawn.marks[i].width, 1);
      EXPECT_NEAR(found[i].height, drawn.marks[i].height, 1);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, TimingMarks, ::testing::Values("png", "pcx"));

TEST(TimingMarks, TooManyForTheArrayAndNoneAtAll) {
  DrawnMarks drawn = PageWithTracks(200);
  TempFolder folder;
  {
    LoadedImage loaded(drawn.page.Save(folder.File("page.png"), "png"), 200);
    int16_t code = -1;
    const std::vector<XUNREC_MarkArea> found = Search(10, code);
    EXPECT_EQ(code, XUNREC_TOO_MANY_MARKS);
    EXPECT_EQ(found.size(), 10u);
    // Marks smaller than asked for are left out.
    std::vector<XUNREC_MarkArea> big(64);
    int16_t count = 0;
    EXPECT_EQ(XUNREC_get_mark_areas(1, 1, 849, 1099, 20, 20, 64, &count, big.data()),
              XUNREC_NO_MARKS);
    EXPECT_EQ(XUNREC_get_mark_areas(1, 1, 849, 1099, 10, 20, 64, &count, big.data()), XUNREC_OK);
    EXPECT_EQ(count, 12);
  }
  SyntheticPage blank(8.5, 11, 200);
  blank.DrawClutter({100, 100, 600, 300}, 1);
  LoadedImage loaded(blank.Save(folder.File("blank.png"), "png"), 200);
  int16_t code = -1;
  EXPECT_TRUE(Search(512, code).empty());
  EXPECT_EQ(code, XUNREC_NO_MARKS);
}

}  // namespace
}  // namespace xun::testing
