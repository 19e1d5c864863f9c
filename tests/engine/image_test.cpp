// Loading images, hostile files among them, the dark-pixel count, and the codes of calls that
// cannot be answered.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include <opencv2/imgproc.hpp>

#include "common/test_support.h"
#include "engine/engine_calls.h"

namespace xun::testing {
namespace {

std::string Bytes(const std::string& path) {
  return ReadFileBytes(path);
}

// A PNG signature, an IHDR chunk claiming the size and an empty IDAT: the header is sound, the
// pixels are missing.
std::string PngHeader(uint32_t width, uint32_t height) {
  std::string png("\x89PNG\r\n\x1a\n", 8);
  const auto be32 = [](std::string& out, uint32_t v) {
    for (int shift = 24; shift >= 0; shift -= 8)
      out += static_cast<char>((v >> shift) & 0xFF);
  };
  const auto chunk = [&](const std::string& type, const std::string& data) {
    be32(png, static_cast<uint32_t>(data.size()));
    const std::string body = type + data;
    png += body;
    uint32_t crc = 0xFFFFFFFF;
    for (const char c : body) {
      crc ^= static_cast<uint8_t>(c);
      for (int bit = 0; bit < 8; ++bit)
        crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
    }
    be32(png, crc ^ 0xFFFFFFFF);
  };
  std::string header;
  be32(header, width);
  be32(header, height);
  header += std::string("\x08\x00\x00\x00\x00", 5);
  chunk("IHDR", header);
  chunk("IDAT", "");
  return png;
}

// A 1-bit PCX header claiming width x height, with `data` bytes of pixels after it.
std::string PcxHeader(uint16_t width, uint16_t height, size_t data) {
  std::string pcx(128, '\0');
  pcx[0] = 0x0A;
  pcx[1] = 5;
  pcx[2] = 1;
  pcx[3] = 1;  // bits per pixel
  pcx[8] = static_cast<char>((width - 1) & 0xFF);
  pcx[9] = static_cast<char>((width - 1) >> 8);
  pcx[10] = static_cast<char>((height - 1) & 0xFF);
  pcx[11] = static_cast<char>((height - 1) >> 8);
  pcx[65] = 1;  // planes
  const uint16_t line = static_cast<uint16_t>((width + 15) / 16 * 2);
  pcx[66] = static_cast<char>(line & 0xFF);
  pcx[67] = static_cast<char>(line >> 8);
  return pcx + std::string(data, '\xFF');
}

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

  const auto write = [&](const std::string& name, const std::string& bytes) {
    WriteFileBytes(folder.File(name), bytes);
    return folder.File(name);
  };
  EXPECT_EQ(Load(folder.File("missing.png")), XUNREC_FILE_NOT_FOUND);
  EXPECT_EQ(Load(folder.path()), XUNREC_FILE_NOT_FOUND);
  EXPECT_EQ(Load(write("empty.png", "")), XUNREC_NOT_AN_IMAGE);
  EXPECT_EQ(Load(write("text.png", "not an image at all, just some words")), XUNREC_NOT_AN_IMAGE);
  const std::string good_png = Bytes(png), good_pcx = Bytes(pcx);
  EXPECT_EQ(Load(write("truncated.png", good_png.substr(0, good_png.size() / 2))),
            XUNREC_NOT_AN_IMAGE);
  EXPECT_EQ(Load(write("truncated.pcx", good_pcx.substr(0, 200))), XUNREC_NOT_AN_IMAGE);
  // The image library wants some pixel data before it tells a PNG's size; either way nothing of
  // that size is allocated.
  EXPECT_THAT(Load(write("huge.png", PngHeader(60000, 60000))),
              ::testing::AnyOf(XUNREC_IMAGE_TOO_LARGE, XUNREC_NOT_AN_IMAGE));
  EXPECT_EQ(Load(write("huge.pcx", PcxHeader(60000, 60000, 64))), XUNREC_IMAGE_TOO_LARGE);
  // Within the limits, but far more pixels than the file holds.
  EXPECT_EQ(Load(write("lying.pcx", PcxHeader(4000, 4000, 300))), XUNREC_NOT_AN_IMAGE);
  EXPECT_EQ(Load(write("zero.png", PngHeader(0, 0))), XUNREC_NOT_AN_IMAGE);

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
