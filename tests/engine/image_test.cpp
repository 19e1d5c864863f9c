// Loading images, hostile files among them, the dark-pixel count, and the codes of calls that
// cannot be answered.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include <opencv2/imgproc.hpp>

#include "common/hostile_images.h"
#include "common/test_support.h"
#include "engine/engine_calls.h"

namespace xun::testing {
namespace {

int16_t Load(const std::string& path) {
  const int16_t code = XUNREC_load_image(path.c_str(), 0, 200, 200, 0, 0);
  XUNREC_unload_image();
  return code;
}

TEST(HostileFiles, AreRefusedWithACode) {
  TempFolder folder;
  SyntheticPage page(2, 2, 200);
  page.FillBox({20, 20, 50, 50});
  const std::string png = page.Save(folder.File("good.png"), "png");
  const std::string pcx = page.Save(folder.File("good.pcx"), "pcx");
  ASSERT_EQ(Load(png), XUNREC_OK);
  ASSERT_EQ(Load(pcx), XUNREC_OK);

  for (const HostileFile& file :
       WriteHostileFiles(folder, ReadFileBytes(png), ReadFileBytes(pcx))) {
    const int16_t code = Load(file.path);
    switch (file.refusal) {
      case Refusal::kNotFound:
        EXPECT_EQ(code, XUNREC_FILE_NOT_FOUND) << file.name;
        break;
      case Refusal::kNotAnImage:
        EXPECT_EQ(code, XUNREC_NOT_AN_IMAGE) << file.name;
        break;
      case Refusal::kTooLarge:
        EXPECT_EQ(code, XUNREC_IMAGE_TOO_LARGE) << file.name;
        break;
      case Refusal::kTooLargeOrNotAnImage:
        EXPECT_THAT(code, ::testing::AnyOf(XUNREC_IMAGE_TOO_LARGE, XUNREC_NOT_AN_IMAGE))
            << file.name;
        break;
    }
  }
  // Only the first page is read: a huge second page of a DCX does not matter.
  const std::string good_pcx = ReadFileBytes(pcx);
  WriteFileBytes(folder.File("two.dcx"), Dcx({good_pcx, PcxHeader(60000, 60000, 64)}));
  EXPECT_EQ(Load(folder.File("two.dcx")), XUNREC_OK);
  WriteFileBytes(folder.File("huge_first.dcx"), Dcx({PcxHeader(60000, 60000, 64), good_pcx}));
  EXPECT_EQ(Load(folder.File("huge_first.dcx")), XUNREC_IMAGE_TOO_LARGE);

  // A failed load leaves no image behind, even after a good one.
  ASSERT_EQ(XUNREC_load_image(png.c_str(), 0, 200, 200, 0, 0), XUNREC_OK);
  EXPECT_EQ(XUNREC_load_image(folder.File("missing.png").c_str(), 0, 200, 200, 0, 0),
            XUNREC_FILE_NOT_FOUND);
  int32_t pixels = -1;
  EXPECT_EQ(XUNREC_check_image_field(0, 0, 100, 100, &pixels), XUNREC_NO_IMAGE);
  EXPECT_EQ(XUNREC_unload_image(), XUNREC_NO_IMAGE);
}

TEST(HostileCalls, AnswerACodeAndWriteNothing) {
  int16_t rows = 0, cols = 0, l = 0, t = 0, r = 0, b = 0, count = 0;
  int16_t results[16] = {}, fill[16] = {};
  int32_t pixels = -1;
  XUNREC_MarkArea marks[4];
  // No image loaded.
  EXPECT_EQ(XUNREC_search_omr_field(0, 0, 100, 100, &rows, &cols), XUNREC_NO_IMAGE);
  EXPECT_EQ(XUNREC_check_omr_field(2, 2, 0, 0, 100, 100, results), XUNREC_NO_IMAGE);
  EXPECT_EQ(XUNREC_check_omr_field_fill(2, 2, 0, 0, 100, 100, results, fill), XUNREC_NO_IMAGE);
  EXPECT_EQ(XUNREC_check_image_field(0, 0, 100, 100, &pixels), XUNREC_NO_IMAGE);
  EXPECT_EQ(XUNREC_align_omr_field(0, 0, 100, 100, 2, 2, 25, &l, &t, &r, &b), XUNREC_NO_IMAGE);
  EXPECT_EQ(XUNREC_get_mark_areas(0, 0, 100, 100, 5, 5, 4, &count, marks), XUNREC_NO_IMAGE);
  EXPECT_EQ(pixels, -1);
  EXPECT_EQ(XUNREC_find_classic(), XUNREC_NOT_SUPPORTED);
  EXPECT_EQ(XUNREC_read_classic(), XUNREC_NOT_SUPPORTED);

  TempFolder folder;
  SyntheticPage page(2, 2, 200);
  LoadedImage loaded(page.Save(folder.File("page.png"), "png"), 200);
  // Null pointers, bad counts and arguments.
  EXPECT_EQ(XUNREC_load_image(nullptr, 0, 200, 200, 0, 0), XUNREC_BAD_ARGUMENT);
  LoadedImage reloaded(folder.File("page.png"), 200);
  EXPECT_EQ(XUNREC_search_omr_field(0, 0, 100, 100, nullptr, &cols), XUNREC_BAD_ARGUMENT);
  EXPECT_EQ(XUNREC_check_omr_field(2, 2, 0, 0, 100, 100, nullptr), XUNREC_BAD_ARGUMENT);
  EXPECT_EQ(XUNREC_check_omr_field(0, 2, 0, 0, 100, 100, results), XUNREC_BAD_ARGUMENT);
  EXPECT_EQ(XUNREC_check_omr_field(2000, 2000, 0, 0, 100, 100, results), XUNREC_BAD_ARGUMENT);
  EXPECT_EQ(XUNREC_check_omr_field_fill(2, 2, 0, 0, 100, 100, results, nullptr),
            XUNREC_BAD_ARGUMENT);
  EXPECT_EQ(XUNREC_check_image_field(0, 0, 100, 100, nullptr), XUNREC_BAD_ARGUMENT);
  EXPECT_EQ(XUNREC_align_omr_field(0, 0, 100, 100, 2, 2, 25, &l, nullptr, &r, &b),
            XUNREC_BAD_ARGUMENT);
  EXPECT_EQ(XUNREC_align_omr_field(0, 0, 100, 100, 2, 2, -1, &l, &t, &r, &b), XUNREC_BAD_ARGUMENT);
  EXPECT_EQ(XUNREC_get_mark_areas(0, 0, 100, 100, 5, 5, 0, &count, marks), XUNREC_BAD_ARGUMENT);
  EXPECT_EQ(XUNREC_get_mark_areas(0, 0, 100, 100, 5, 5, 4, &count, nullptr), XUNREC_BAD_ARGUMENT);
  // Empty rectangles and rectangles off the image (two inches square: 0..200).
  EXPECT_EQ(XUNREC_check_image_field(50, 50, 50, 60, &pixels), XUNREC_BAD_RECTANGLE);
  EXPECT_EQ(XUNREC_check_image_field(60, 50, 50, 60, &pixels), XUNREC_BAD_RECTANGLE);
  EXPECT_EQ(XUNREC_check_image_field(300, 300, 400, 400, &pixels), XUNREC_BAD_RECTANGLE);
  EXPECT_EQ(XUNREC_check_image_field(-400, -400, -300, -300, &pixels), XUNREC_BAD_RECTANGLE);
  EXPECT_EQ(XUNREC_check_omr_field(2, 2, 300, 300, 400, 400, results), XUNREC_BAD_RECTANGLE);
  EXPECT_EQ(XUNREC_align_omr_field(-32768, -32768, 32767, 32767, 2, 2, 32767, &l, &t, &r, &b),
            XUNREC_BAD_RECTANGLE);
  EXPECT_EQ(pixels, -1);
  // A size that is not the file's.
  EXPECT_EQ(XUNREC_load_image(folder.File("page.png").c_str(), 0, 200, 200, 401, 400),
            XUNREC_SIZE_MISMATCH);
  EXPECT_EQ(XUNREC_load_image(folder.File("page.png").c_str(), 0, 0, 200, 400, 400),
            XUNREC_BAD_ARGUMENT);
  EXPECT_EQ(XUNREC_load_image(folder.File("page.png").c_str(), 0, 200, 200, 400, 400), XUNREC_OK);
}

// Black boxes of known area on a white page: the count is their area, for any rectangle, on a
// 1-bit and on a grey page.
TEST(DarkPixels, CountWhatWasDrawn) {
  for (const std::string format : {"pcx", "png"}) {
    SyntheticPage page(4, 3, 300);
    page.FillBox({20, 20, 100, 50});
    page.FillBox({200, 150, 33, 77});
    page.FillBox({350, 250, 60, 60});  // reaches off the page's right and bottom edges
    if (format == "png") page.FillBox({10, 200, 20, 20}, 235);  // grey, too light to be ink
    TempFolder folder;
    LoadedImage loaded(page.Save(folder.File("page." + format), format), 300);
    ASSERT_EQ(loaded.Code(), XUNREC_OK);
    cv::Mat black;
    cv::compare(page.Grey(), 128, black, cv::CMP_LT);
    for (const cv::Rect units :
         {cv::Rect(0, 0, 400, 300), cv::Rect(1, 1, 398, 298), cv::Rect(50, 30, 200, 200),
          cv::Rect(210, 160, 5, 5), cv::Rect(300, 200, 500, 500), cv::Rect(-50, -50, 100, 100)}) {
      int32_t pixels = -1;
      ASSERT_EQ(
          XUNREC_check_image_field(static_cast<int16_t>(units.x), static_cast<int16_t>(units.y),
                                   static_cast<int16_t>(units.x + units.width),
                                   static_cast<int16_t>(units.y + units.height), &pixels),
          XUNREC_OK);
      const cv::Rect on_page = cv::Rect(page.Px(units.x), page.Px(units.y), page.Px(units.width),
                                        page.Px(units.height)) &
                               cv::Rect(0, 0, black.cols, black.rows);
      EXPECT_EQ(pixels, cv::countNonZero(black(on_page))) << format << " " << units;
    }
  }
}

}  // namespace
}  // namespace xun::testing
