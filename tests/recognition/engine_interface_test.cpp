// The basExterns wrappers: pass-through of arguments, codes and out-values; the behaviour with no
// engine; the dlopen binding against stand-in engine libraries.
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "common/test_support.h"
#include "recognition/scripted_engine.h"
#include "xun/xun.h"

namespace xun {
namespace {

using testing::ScopedEngine;
using testing::ScopedHandler;
using testing::ScriptedEngine;

// Calls every wrapper once; returns the codes in table order.
std::vector<int16_t> CallEveryWrapper(int16_t& rows, int16_t& cols, int32_t& filled,
                                      std::array<int16_t, 4>& aligned, int16_t& mark_count,
                                      std::array<xunReadArea, 4>& marks) {
  std::array<int16_t, 2 + 3 + 5> results{};
  std::array<int16_t, 6> fill{};
  return {basExterns::CLoadImage("page.pcx", 0, 200, 300, 1700, 3300),
          basExterns::CUnloadImage(),
          basExterns::CSearchOMR(10, 20, 110, 220, rows, cols),
          basExterns::CCheckOMR(2, 3, 10, 20, 110, 220, results.data()),
          basExterns::CCheckOMRFill(2, 3, 10, 20, 110, 220, results.data(), fill.data()),
          basExterns::CCheckImage(1, 1, 849, 1099, filled),
          basExterns::CAlignOMRField(10, 20, 110, 220, 2, 3, 25, aligned[0], aligned[1], aligned[2],
                                     aligned[3]),
          basExterns::CGetMarksAreas(1, 1, 849, 1099, 5, 5, 4, mark_count, marks.data())};
}

TEST(EngineWrappers, PassArgumentsAndReturnCodesUnchanged) {
  auto engine = std::make_shared<ScriptedEngine>();
  engine->load_code = -3;  // any non-zero code, negative too, comes back as it is
  engine->search_code = 17;
  engine->found_rows = 4;
  engine->found_cols = 5;
  engine->align_dx = 3;
  engine->marks = {{1, 2, 3, 4}};
  ScopedEngine installed(engine);
  ScopedHandler handler;

  int16_t rows = 2, cols = 3, mark_count = 0;
  int32_t filled = -1;
  std::array<int16_t, 4> aligned{10, 20, 110, 220};
  std::array<xunReadArea, 4> marks{};
  EXPECT_EQ(CallEveryWrapper(rows, cols, filled, aligned, mark_count, marks),
            (std::vector<int16_t>{-3, 0, 17, 0, 0, 0, 0, 0}));
  EXPECT_EQ(engine->Calls(),
            (std::vector<std::string>{
                "load page.pcx 0 200 300 1700 3300", "unload", "search 10 20 110 220 2 3",
                "check 2 3 10 20 110 220", "checkfill 2 3 10 20 110 220", "image 1 1 849 1099",
                "align 10 20 110 220 2 3 25 10 20 110 220", "marks 1 1 849 1099 5 5 4"}));
  EXPECT_EQ(rows, 4);
  EXPECT_EQ(cols, 5);
  EXPECT_EQ(filled, 4321);
  EXPECT_EQ(aligned, (std::array<int16_t, 4>{13, 20, 113, 220}));
  EXPECT_EQ(mark_count, 1);
  EXPECT_EQ(marks[0], (xunReadArea{1, 2, 3, 4}));
  EXPECT_TRUE(handler.reports().empty()) << "non-zero codes are the callers' to report";
}

TEST(EngineWrappers, AbsentEngineReportsOncePerWrapperAndAnswersZero) {
  ScopedEngine installed(std::make_shared<DynamicRecognitionEngine>("libXUNRec90-absent.so"));
  ScopedHandler handler;
  int16_t rows = 2, cols = 3, mark_count = -7;
  int32_t filled = -1;
  std::array<int16_t, 4> aligned{10, 20, 110, 220};
  std::array<xunReadArea, 4> marks{};
  EXPECT_EQ(CallEveryWrapper(rows, cols, filled, aligned, mark_count, marks),
            std::vector<int16_t>(8, 0));
  // Nothing was written: the reports, not the codes, say the engine is missing.
  EXPECT_EQ(rows, 2);
  EXPECT_EQ(filled, -1);
  EXPECT_EQ(mark_count, -7);
  EXPECT_EQ(aligned, (std::array<int16_t, 4>{10, 20, 110, 220}));
  EXPECT_EQ(
      handler.LocationsAndNumbers(),
      (std::vector<std::string>{"basExterns.CLoadImage #53", "basExterns.CUnloadImage #53",
                                "basExterns.CSearchOMR #53", "basExterns.CCheckOMR #53",
                                "basExterns.CCheckOMRFill #53", "basExterns.CCheckImage #53",
                                "basExterns.CAlignOMRField #53", "basExterns.CGetMarksAreas #53"}));
  EXPECT_EQ(handler.reports()[0].description, "File not found: libXUNRec90-absent.so");
}

TEST(EngineWrappers, AnEngineThatThrowsIsReportedAtTheWrapper) {
  auto engine = std::make_shared<ScriptedEngine>();
  engine->throw_on = "image";
  engine->image_code = 9;
  ScopedEngine installed(engine);
  ScopedHandler handler;
  int32_t filled = -1;
  EXPECT_EQ(basExterns::CCheckImage(1, 1, 2, 2, filled), 0);
  EXPECT_EQ(handler.Locations(), (std::vector<std::string>{"basExterns.CCheckImage"}));
}

TEST(EngineWrappers, DynamicBindingCallsTheLibraryAndRecordsErrno) {
  ScopedEngine installed(std::make_shared<DynamicRecognitionEngine>(XUN_FAKE_ENGINE));
  ScopedHandler handler;
  EXPECT_EQ(basExterns::CLoadImage("page.pcx", 0, 300, 300, 10, 10), 300);
  EXPECT_EQ(basExterns::LastDllError(), 42);
  EXPECT_EQ(basExterns::CLoadImage("x.pcx", 0, 300, 300, 10, 10), 0);
  int16_t rows = 0, cols = 0, count = 0;
  EXPECT_EQ(basExterns::CSearchOMR(1, 2, 3, 4, rows, cols), 0);
  EXPECT_EQ(rows * 100 + cols, 709);
  int32_t filled = 0;
  EXPECT_EQ(basExterns::CCheckImage(1, 1, 11, 21, filled), 0);
  EXPECT_EQ(filled, 200);
  std::array<xunReadArea, 3> marks{};
  EXPECT_EQ(basExterns::CGetMarksAreas(1, 1, 9, 9, 5, 5, 3, count, marks.data()), 3);
  EXPECT_EQ(marks[0], (xunReadArea{1, 2, 3, 4}));
  EXPECT_EQ(basExterns::CUnloadImage(), 0);
  EXPECT_TRUE(handler.reports().empty());
}

TEST(EngineWrappers, DynamicBindingReportsAMissingEntryPoint) {
  ScopedEngine installed(std::make_shared<DynamicRecognitionEngine>(XUN_FAKE_ENGINE_PARTIAL));
  ScopedHandler handler;
  EXPECT_EQ(basExterns::CUnloadImage(), 0);
  EXPECT_EQ(basExterns::CLoadImage("x.pcx", 0, 1, 1, 1, 1), 0) << "the others still work";
  ASSERT_EQ(handler.LocationsAndNumbers(),
            (std::vector<std::string>{"basExterns.CUnloadImage #453"}));
  EXPECT_NE(handler.reports()[0].description.find("XUNREC_unload_image"), std::string::npos);
}

}  // namespace
}  // namespace xun
