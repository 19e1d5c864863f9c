// Region registration, bubble search, alignment, filled pixels and timing marks, driven through a
// scripted engine: what is asked of the engine, in which order, and what the regions and pages
// hold afterwards.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "common/test_support.h"
#include "recognition/scripted_engine.h"
#include "xun/xun.h"

namespace xun {
namespace {

using testing::ScopedEngine;
using testing::ScopedHandler;
using testing::ScriptedEngine;
using testing::TempFolder;

struct Fixture {
  Fixture() : engine(std::make_shared<ScriptedEngine>()), installed(engine) {
    image = folder.File("page.pcx");
    testing::WriteFileBytes(image, "stands in for an image; the scripted engine never reads it");
    form = clsXUNTemplate::Create();
    page = clsXUNPage::Create();
    form->Pages()->Add(page);
    page->ImageFile(image);
    page->XDPI(200);
    page->YDPI(200);
    page->ImageWidth(1700);
    page->ImageHeight(2200);
    grid = AddGrid(2, 3);
  }
  ~Fixture() {
    page->ImageFile("");  // the page would delete the file; the folder does that
    form->Free();
  }
  std::shared_ptr<clsXUNField> AddGrid(int16_t rows, int16_t cols) {
    auto field = clsXUNField::Create();
    field->FieldName("Q");
    field->RecognitionType(xunRecogTypeOMR);
    field->FieldType(xunFieldTypeOMRMult);
    field->Orient(xunOrientationTypeOMRRow);
    field->NumRows(rows);
    field->NumCols(cols);
    field->Left(100);
    field->Top(200);
    field->Right(160);  // cells of 20 by 20
    field->Bottom(240);
    page->Fields()->Add(field);
    return field;
  }
  std::string Load() const { return "load " + image + " 0 200 200 1700 2200"; }
  std::vector<int16_t> Extra(const clsXUNField& field) const {
    std::vector<int16_t> values;
    for (const int16_t v : *field.Extra())
      values.push_back(v);
    return values;
  }

  TempFolder folder;
  std::string image;
  std::shared_ptr<ScriptedEngine> engine;
  ScopedEngine installed;
  std::shared_ptr<clsXUNTemplate> form;
  std::shared_ptr<clsXUNPage> page;
  std::shared_ptr<clsXUNField> grid;
};

TEST(Register, StoresTheFoundGridInExtraWithinOneLoad) {
  Fixture f;
  ScopedHandler handler;
  EXPECT_FALSE(f.grid->IsRegistered());
  EXPECT_EQ(f.grid->Register(), 0);
  EXPECT_EQ(f.engine->Calls(),
            (std::vector<std::string>{f.Load(), "checkfill 2 3 100 200 160 240", "unload"}));
  // rows, cols, bubble 10 x 10, column offsets 5 25 45, row offsets 5 25, then the fills by
  // rows: the engine's column-major array read back in reading order.
  EXPECT_EQ(f.Extra(*f.grid),
            (std::vector<int16_t>{2, 3, 10, 10, 5, 25, 45, 5, 25, 11, 12, 13, 21, 22, 23}));
  EXPECT_TRUE(f.grid->IsRegistered());
  EXPECT_EQ(f.grid->StartCol(), 5);
  EXPECT_EQ(f.grid->ColGap(), 20);
  EXPECT_EQ(f.grid->RowGap(), 20);
  f.grid->NumRows(3);
  EXPECT_FALSE(f.grid->IsRegistered()) << "a registration belongs to its grid size";
  EXPECT_TRUE(handler.reports().empty());
}

TEST(Register, DropOutPagesAreCheckedWithoutFillValues) {
  Fixture f;
  f.page->DropOutColor(xunTemplateDropOutColorRed);
  EXPECT_EQ(f.grid->Register(), 0);
  EXPECT_EQ(f.engine->Calls()[1], "check 2 3 100 200 160 240");
  EXPECT_EQ(f.Extra(*f.grid).back(), 0);
}

TEST(Register, FailuresUnloadAndLeaveTheRegionAlone) {
  {
    Fixture f;
    ScopedHandler handler;
    f.engine->load_code = 7;
    EXPECT_EQ(f.grid->Register(), 7);
    EXPECT_EQ(f.engine->Calls(), (std::vector<std::string>{f.Load(), "unload"}))
        << "nothing is searched on an image that did not load";
    EXPECT_EQ(handler.LocationsAndNumbers(),
              (std::vector<std::string>{"clsXUNField.Register #75"}));
  }
  {
    Fixture f;
    f.grid->Extra()->Add(5);
    f.engine->check_code = 3;
    EXPECT_EQ(f.grid->Register(), 3);
    EXPECT_EQ(f.engine->Calls().back(), "unload");
    EXPECT_EQ(f.Extra(*f.grid), (std::vector<int16_t>{5}));
  }
  {
    Fixture f;
    f.engine->grid_rows_delta = 1;  // a grid of another size is not this region's
    EXPECT_EQ(f.grid->Register(), basImage::kRegisterBadResult);
    EXPECT_FALSE(f.grid->IsRegistered());
  }
  {
    Fixture f;
    f.engine->throw_on = "checkfill";
    ScopedHandler handler;
    EXPECT_EQ(f.grid->Register(), basImage::kRegisterBadResult);
    EXPECT_EQ(f.engine->Calls().back(), "unload") << "unloaded after the engine's failure too";
    EXPECT_EQ(handler.Locations(), (std::vector<std::string>{"basExterns.CCheckOMRFill"}));
  }
}

TEST(Register, RefusesWithoutAskingTheEngine) {
  Fixture f;
  f.grid->NumCols(0);
  EXPECT_EQ(f.grid->Register(), basImage::kRegisterInvalidRegion);
  f.page->XDPI(0);
  EXPECT_EQ(f.grid->Register(), basImage::kRegisterNoImage);
  auto loose = clsXUNField::Create();
  EXPECT_EQ(loose->Register(), basImage::kRegisterNoImage);
  EXPECT_TRUE(f.engine->Calls().empty());

  // Regions without a grid have nothing to register; they must lie on the image.
  auto barcode = clsXUNField::Create();
  barcode->RecognitionType(xunRecogTypeBarcode);
  barcode->Right(900);  // the image is 850 wide at 100 dpi
  barcode->Bottom(50);
  f.page->Fields()->Add(barcode);
  f.page->XDPI(200);
  EXPECT_EQ(barcode->Register(), basImage::kRegisterInvalidRegion);
  barcode->Right(850);
  EXPECT_EQ(barcode->Register(), 0);
  EXPECT_TRUE(barcode->IsRegistered());
}

TEST(Register, AbsentEngineLeavesTheRegionUnregistered) {
  Fixture f;
  ScopedEngine absent(std::make_shared<DynamicRecognitionEngine>("libXUNRec90-absent.so"));
  ScopedHandler handler;
  EXPECT_EQ(f.grid->Register(), basImage::kRegisterBadResult);
  EXPECT_FALSE(f.grid->IsRegistered());
  EXPECT_EQ(handler.Locations(),
            (std::vector<std::string>{"basExterns.CLoadImage", "basExterns.CCheckOMRFill",
                                      "basExterns.CUnloadImage"}));
}

TEST(BuildExtra, RefusesBubblesThatDoNotFillTheGrid) {
  Fixture f;
  ScopedHandler handler;
  f.grid->Extra()->Add(1);
  auto bubbles = clsXUNBubbles::Create();
  bubbles->Add(clsXUNBubble::Create());
  EXPECT_FALSE(f.grid->BuildExtra(bubbles));
  EXPECT_FALSE(f.grid->BuildExtra(nullptr));
  EXPECT_EQ(handler.LocationsAndNumbers(),
            (std::vector<std::string>{"clsXUNField.BuildExtra #5", "clsXUNField.BuildExtra #91"}));
  EXPECT_EQ(f.Extra(*f.grid), (std::vector<int16_t>{1}));
}

TEST(BubbleSearch, HandsBackTheFoundGridAndTheCode) {
  Fixture f;
  f.engine->found_rows = 4;
  f.engine->found_cols = 6;
  int16_t cols = 3, rows = 2, result = -1;
  EXPECT_TRUE(f.grid->BubbleSearch(cols, rows, result));
  EXPECT_EQ(f.engine->Calls(),
            (std::vector<std::string>{f.Load(), "search 100 200 160 240 2 3", "unload"}));
  EXPECT_EQ(rows * 100 + cols + result, 406);

  f.engine->search_code = 12;
  cols = 3, rows = 2;
  EXPECT_FALSE(f.grid->BubbleSearch(cols, rows, result));
  EXPECT_EQ(result, 12);
  EXPECT_EQ(rows * 100 + cols, 203) << "a failed search changes nothing";

  f.engine->load_code = 5;
  ScopedHandler handler;
  EXPECT_FALSE(f.grid->BubbleSearch(cols, rows, result));
  EXPECT_EQ(result, 5);
  EXPECT_EQ(f.engine->Calls().back(), "unload");
  EXPECT_EQ(handler.LocationsAndNumbers(),
            (std::vector<std::string>{"clsXUNField.BubbleSearch #75"}));
}

TEST(Align, PageMovesItsGridsAndCountsAtTheNewResolution) {
  Fixture f;
  auto second = f.AddGrid(1, 1);
  f.engine->align_dx = 4;
  f.engine->align_dy = -2;
  f.page->ImageWidth(1701);   // 100 / 200 * 1701 - 1 = 849.5: halves go to the even 850
  f.page->ImageHeight(2203);  // 1100.5 -> 1100
  EXPECT_TRUE(f.page->Align(200, 200));
  EXPECT_EQ(f.engine->Calls(),
            (std::vector<std::string>{"load " + f.image + " 0 200 200 1701 2203",
                                      "align 100 200 160 240 2 3 25 100 200 160 240",
                                      "align 100 200 160 240 1 1 25 100 200 160 240",
                                      "image 1 1 850 1100", "unload"}));
  EXPECT_EQ(f.grid->Left(), 104);
  EXPECT_EQ(second->Bottom(), 238);
  EXPECT_EQ(f.page->FilledPixels(), 4321);

  f.engine->align_code = 1;
  EXPECT_FALSE(f.page->Align(300, 300));
  EXPECT_EQ(f.grid->Left(), 104) << "a grid the engine cannot align stays where it was";
  EXPECT_EQ(f.page->XDPI(), 300);

  ScopedHandler handler;
  EXPECT_FALSE(f.grid->Align(0, 200));
  EXPECT_EQ(handler.LocationsAndNumbers(), (std::vector<std::string>{"clsXUNField.Align #5"}));
}

TEST(FilledPixels, NeverAskedForAPageWithoutResolutionOrSize) {
  Fixture f;
  for (int which = 0; which < 4; ++which) {
    f.page->XDPI(which == 0 ? 0 : 200);
    f.page->YDPI(which == 1 ? -1 : 200);
    f.page->ImageWidth(which == 2 ? 0 : 1700);
    f.page->ImageHeight(which == 3 ? 0 : 2200);
    EXPECT_FALSE(basImage::CalculateFilledPixels(f.page));
  }
  EXPECT_TRUE(f.engine->Calls().empty());
  EXPECT_EQ(f.page->FilledPixels(), -1);
}

TEST(TimingMarks, FoundMarksBecomeThePageListInReadingOrder) {
  Fixture f;
  f.engine->marks = {{10, 900, 30, 40}, {10, 20, 30, 40}, {0, 0, 0, 0}, {500, 20, 30, 40}};
  EXPECT_TRUE(f.page->FindTimingMarks());
  EXPECT_EQ(f.engine->Calls(),
            (std::vector<std::string>{f.Load(), "marks 1 1 849 1099 5 5 512", "unload"}));
  EXPECT_EQ(f.page->TimingMarks()->AsString(), "10,20,30,40\t500,20,30,40\t10,900,30,40");

  f.engine->marks.clear();
  EXPECT_FALSE(f.page->FindTimingMarks());
  EXPECT_EQ(f.page->NumTimingMarks(), 3) << "nothing found: the list stays";
}

TEST(TimingMarks, HybridRegistrationFindsMarksAndRegistersInOneLoad) {
  Fixture f;
  f.engine->marks = {{10, 20, 30, 40}};
  EXPECT_TRUE(f.page->RegisterHybrid());
  EXPECT_EQ(f.engine->Calls(),
            (std::vector<std::string>{f.Load(), "marks 1 1 849 1099 5 5 512",
                                      "checkfill 2 3 100 200 160 240", "unload"}));
  EXPECT_TRUE(f.grid->IsRegistered());
  EXPECT_EQ(f.page->NumTimingMarks(), 1);

  f.engine->marks.clear();
  EXPECT_FALSE(f.page->RegisterHybrid());
}

TEST(ImageSequences, NeverInterleaveAcrossThreads) {
  std::vector<std::unique_ptr<Fixture>> fixtures;
  fixtures.push_back(std::make_unique<Fixture>());
  fixtures.push_back(std::make_unique<Fixture>());
  // One engine for the process, as in production.
  auto engine = std::make_shared<ScriptedEngine>();
  engine->pause = std::chrono::microseconds(200);
  auto shared = std::make_unique<ScopedEngine>(engine);
  std::vector<std::thread> threads;
  for (auto& fixture : fixtures)
    threads.emplace_back([&f = *fixture] {
      for (int i = 0; i < 10; ++i)
        EXPECT_EQ(f.grid->Register(), 0);
    });
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_FALSE(engine->Interleaved());
  const std::vector<std::string> calls = engine->Calls();
  ASSERT_EQ(calls.size(), 60u);
  for (size_t i = 0; i < calls.size(); i += 3)
    EXPECT_EQ(calls[i + 2], "unload") << i;
  // Each restores the engine it replaced, so they go in the reverse order.
  shared.reset();
  fixtures.pop_back();
  fixtures.pop_back();
}

}  // namespace
}  // namespace xun
