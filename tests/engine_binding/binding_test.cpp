// The engine as the library finds it: not linked into this program, opened by the default
// binding beside libXUNTemplate91.so, and used by region registration and the timing-mark
// search on a drawn page.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "common/test_support.h"
#include "engine/synthetic_page.h"
#include "xun/xun.h"

namespace xun {
namespace {

using testing::GridSpec;
using testing::SyntheticPage;
using testing::TempFolder;

GridSpec Grid() {
  GridSpec grid;
  grid.left = 100;
  grid.top = 150;
  grid.rows = 3;
  grid.cols = 4;
  grid.pitch_x = 25;
  grid.pitch_y = 20;
  grid.bubble_w = 16;
  grid.bubble_h = 12;
  grid.marks = {{{1, 2}, 0}};
  return grid;
}

std::string DrawPage(const TempFolder& folder) {
  SyntheticPage page(8.5, 4, 200);
  page.DrawGrid(Grid());
  for (int i = 0; i < 8; ++i)
    page.FillBox({20, 50.0 + i * 40, 20, 8});
  return page.Save(folder.File("page.pcx"), "pcx");
}

TEST(EngineBinding, TheDefaultEngineIsTheOneBesideTheLibrary) {
  TempFolder folder;
  const std::string file = DrawPage(folder);
  DynamicRecognitionEngine engine;
  ASSERT_EQ(engine.LoadImage(file.c_str(), 0, 200, 200, 1700, 800), 0);
  std::vector<int16_t> results(3 + 4 + 5), fill(12);
  EXPECT_EQ(engine.CheckOMRFieldFill(3, 4, 100, 150, 200, 210, results.data(), fill.data()), 0);
  EXPECT_EQ(results[0], 3);
  EXPECT_EQ(results[1], 4);
  std::vector<xunReadArea> marks(16);
  int16_t count = 0;
  EXPECT_EQ(engine.GetMarkAreas(1, 1, 849, 399, 5, 5, 16, count, marks.data()), 0);
  EXPECT_EQ(count, 8);
  EXPECT_EQ(marks[0], (xunReadArea{20, 50, 20, 8}));
  EXPECT_EQ(engine.UnloadImage(), 0);

  // The library that answered is the one in the folder of libXUNTemplate91.so.
  void* engine_library = dlopen("libXUNRec90.so", RTLD_NOW | RTLD_NOLOAD);
  ASSERT_NE(engine_library, nullptr);
  Dl_info info{};
  ASSERT_NE(dladdr(dlsym(engine_library, "XUNREC_load_image"), &info), 0);
  EXPECT_EQ(std::filesystem::canonical(std::filesystem::path(info.dli_fname).parent_path()),
            std::filesystem::canonical(basError::LibraryFolder()));
  dlclose(engine_library);
}

TEST(EngineBinding, RegistersARegionOnItsPageImage) {
  TempFolder folder;
  const std::string file = DrawPage(folder);
  auto form = clsXUNTemplate::Create();
  auto page = clsXUNPage::Create();
  form->Pages()->Add(page);
  page->ImageFile(file);
  page->XDPI(200);
  page->YDPI(200);
  page->ImageWidth(1700);
  page->ImageHeight(800);
  auto field = clsXUNField::Create();
  field->FieldName("Q");
  field->RecognitionType(xunRecogTypeOMR);
  field->FieldType(xunFieldTypeOMRMult);
  field->Orient(xunOrientationTypeOMRRow);
  const GridSpec grid = Grid();
  field->NumRows(static_cast<int16_t>(grid.rows));
  field->NumCols(static_cast<int16_t>(grid.cols));
  field->Left(static_cast<int16_t>(grid.left));
  field->Top(static_cast<int16_t>(grid.top));
  field->Right(grid.Right());
  field->Bottom(grid.Bottom());
  page->Fields()->Add(field);

  EXPECT_EQ(field->Register(), 0);
  EXPECT_TRUE(field->IsRegistered());
  std::vector<int16_t> extra;
  for (const int16_t v : *field->Extra())
    extra.push_back(v);
  ASSERT_EQ(extra.size(), 4u + 4 + 3 + 12);
  // Column and row offsets from the region's corner, then the blank fills by rows.
  for (int c = 0; c < grid.cols; ++c)
    EXPECT_NEAR(extra[4 + static_cast<size_t>(c)], grid.BubbleLeft(c) - grid.left, 1.0);
  for (int r = 0; r < grid.rows; ++r)
    EXPECT_NEAR(extra[8 + static_cast<size_t>(r)], grid.BubbleTop(r) - grid.top, 1.0);
  EXPECT_GE(extra[11 + 1 * 4 + 2], 85);
  EXPECT_LE(extra[11 + 0], 15);

  EXPECT_TRUE(page->FindTimingMarks());
  EXPECT_EQ(page->TimingMarks()->Count(), 8);
  page->ImageFile("");  // the folder deletes the file
  form->Free();
}

}  // namespace
}  // namespace xun
