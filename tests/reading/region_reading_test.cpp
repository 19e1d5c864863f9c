// Reading barcode, OCR and image-clip regions of printed, filled-in, scanned forms: symbols and
// text are read where the fit puts their regions, split and checked as the regions say; clips
// are written in every format and read back.
#include <Magick++.h>
#include <ZXing/BitMatrix.h>
#include <ZXing/MultiFormatWriter.h>
#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "common/answer_sheet.h"
#include "common/test_support.h"
#include "synthscan/image_files.h"
#include "synthscan/printed_page.h"
#include "synthscan/synthetic_scan.h"
#include "xun/reading/form_reader.h"
#include "xun/xun.h"

namespace xun::reading {
namespace {

namespace ss = xun::synthscan;
namespace fs = std::filesystem;

constexpr int kDpi = 200;

std::shared_ptr<clsXUNField> AddRegion(clsXUNPage& page, const std::string& name, xunRecogType kind,
                                       xunFieldType type, int left, int top, int right,
                                       int bottom) {
  auto field = clsXUNField::Create();
  field->FieldName(name);
  field->RecognitionType(kind);
  field->FieldType(type);
  field->Left(static_cast<int16_t>(left));
  field->Top(static_cast<int16_t>(top));
  field->Right(static_cast<int16_t>(right));
  field->Bottom(static_cast<int16_t>(bottom));
  page.Fields()->Add(field);
  return field;
}

cv::Rect Pixels(double left, double top, double right, double bottom) {
  const double k = kDpi / 100.0;
  return cv::Rect(cv::Point(static_cast<int>(left * k), static_cast<int>(top * k)),
                  cv::Point(static_cast<int>(right * k), static_cast<int>(bottom * k)));
}

// A symbol of whole modules (3 pixels a bar, 6 a square of a matrix symbol) from the page point
// given; a linear one as tall as `bottom` says.
void DrawBarcode(cv::Mat& page, ZXing::BarcodeFormat format, const std::string& text, double left,
                 double top, double bottom) {
  const ZXing::BitMatrix symbol = ZXing::MultiFormatWriter(format).setMargin(0).encode(text, 0, 0);
  const cv::Rect box = Pixels(left, top, left + 1, bottom);
  const bool linear = symbol.height() == 1;
  const int module = linear ? 3 : 6;
  for (int y = 0; y < symbol.height(); ++y)
    for (int x = 0; x < symbol.width(); ++x)
      if (symbol.get(x, y))
        cv::rectangle(
            page,
            cv::Rect(box.x + x * module, box.y + y * module, module, linear ? box.height : module),
            cv::Scalar(0), cv::FILLED);
}

// Machine-printed text, DejaVu Sans at `points`, its top left at the page point given.
void DrawText(cv::Mat& page, const std::string& text, double left, double top, double points) {
  const int width = 700, height = 150;
  Magick::Image image(Magick::Geometry(width, height), Magick::Color("white"));
  const double pixels = points * kDpi / 72.0;
  image.draw({Magick::DrawableFont("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"),
              Magick::DrawablePointSize(pixels), Magick::DrawableFillColor("black"),
              Magick::DrawableStrokeColor(Magick::Color()), Magick::DrawableText(0, pixels, text)});
  cv::Mat drawn(height, width, CV_8UC1);
  image.write(0, 0, width, height, "I", Magick::CharPixel, drawn.data);
  const cv::Rect at = Pixels(left, top, left + 1, top + 1);
  cv::Mat target = page(cv::Rect(at.x, at.y, width, height));
  cv::min(target, drawn, target);
}

// The answer sheet (bubbles to register by) with a region of every other kind beside it.
class RegionReadingTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    Magick::InitializeMagick(nullptr);
    folder_ = new testing::TempFolder();
    form_ = testing::AnswerSheet();
    clsXUNPage& page = *form_->Pages()->Item(1);
    AddRegion(page, "Code", xunRecogTypeBarcode, xunFieldTypeBarcodeCode128, 400, 80, 800, 160)
        ->BarcodeDistance(20);
    auto split =
        AddRegion(page, "Pair", xunRecogTypeBarcode, xunFieldTypeBarcodeAuto, 400, 180, 800, 260);
    split->NumCols(2);
    split->BarcodeDelimiter("/");
    auto joined =
        AddRegion(page, "Joined", xunRecogTypeBarcode, xunFieldTypeBarcodeAuto, 400, 280, 800, 360);
    joined->BarcodeDelimiter("/");
    AddRegion(page, "Length", xunRecogTypeBarcode, xunFieldTypeBarcodeCode39, 400, 380, 800, 440)
        ->BarcodeLength(8);
    AddRegion(page, "Empty", xunRecogTypeBarcode, xunFieldTypeBarcodeAuto, 400, 460, 800, 520);
    AddRegion(page, "Name", xunRecogTypeOCR, xunFieldTypeOCRTesseract, 400, 540, 800, 600);
    AddRegion(page, "Strict", xunRecogTypeOCR, xunFieldTypeOCRTesseract, 400, 620, 800, 680)
        ->Threshold(100);
    auto digits =
        AddRegion(page, "Number", xunRecogTypeOCR, xunFieldTypeOCRSimple, 400, 700, 800, 760);
    digits->DataType(xunDataTypeNumeric);
    AddRegion(page, "Blank", xunRecogTypeOCR, xunFieldTypeOCRSimple, 400, 780, 800, 840);
    // A clip in each format, side by side under the bubbles.
    const std::vector<std::pair<xunImageClipType, xunImageClipCompression>> clips = {
        {xunImageClipTypeTIF, xunImageClipCompressionUncompressed},
        {xunImageClipTypeTIF, xunImageClipCompressionGroup3},
        {xunImageClipTypeTIF, xunImageClipCompressionGroup4},
        {xunImageClipTypeTIF, xunImageClipCompressionLZW},
        {xunImageClipTypeJPG, xunImageClipCompressionUnknown},
        {xunImageClipTypePCXDCX, xunImageClipCompressionUnknown},
        {xunImageClipTypePDF, xunImageClipCompressionUnknown}};
    for (size_t i = 0; i < clips.size(); ++i) {
      const int left = 100 + static_cast<int>(i % 4) * 170,
                top = 870 + static_cast<int>(i / 4) * 100;
      auto clip = AddRegion(page, "Clip" + std::to_string(i), xunRecogTypeImage,
                            xunFieldTypeImageClip, left, top, left + 150, top + 80);
      clip->ImageClipType(clips[i].first);
      clip->ImageClipCompression(clips[i].second);
      clip->ImageClipFile("{form}-{region}");
      clip->ImageClipAddColumn(i != 0);
    }
    auto data =
        AddRegion(page, "Data", xunRecogTypeImage, xunFieldTypeImageClipData, 610, 970, 760, 1050);
    data->ImageClipAddColumn(true);
    // A pattern that would reach out of the folder, with the page and item in it.
    auto named =
        AddRegion(page, "Named", xunRecogTypeImage, xunFieldTypeImageClip, 775, 970, 840, 1050);
    named->ImageClipType(xunImageClipTypeTIF);
    named->ImageClipFile("a/../{page}_{item}.TIF");
    named->ImageClipAddColumn(true);
    for (const auto& field : *page.Fields())
      field->Questions()->Update();

    cv::Mat printed = ss::PrintedPage(*form_, 1, kDpi);
    DrawBarcode(printed, ZXing::BarcodeFormat::Code128, "AB-1234", 430, 100, 150);
    DrawBarcode(printed, ZXing::BarcodeFormat::Code39, "LEFT", 420, 200, 250);
    DrawBarcode(printed, ZXing::BarcodeFormat::Code128, "RIGHT", 620, 200, 250);
    DrawBarcode(printed, ZXing::BarcodeFormat::Code128, "ONE", 420, 300, 350);
    DrawBarcode(printed, ZXing::BarcodeFormat::QRCode, "TWO", 620, 295, 355);
    DrawBarcode(printed, ZXing::BarcodeFormat::Code39, "12345", 420, 395, 435);
    DrawText(printed, "MARY SMITH", 420, 555, 16);
    DrawText(printed, "JOHN BROWN", 420, 635, 16);
    DrawText(printed, "3141592", 420, 715, 16);
    for (size_t i = 0; i < clips.size(); ++i) {
      // A black square in the middle of each clip region.
      const double left = 100 + static_cast<double>(i % 4) * 170, top = 870 + (i / 4) * 100.0;
      cv::rectangle(printed, Pixels(left + 55, top + 20, left + 95, top + 60), cv::Scalar(0),
                    cv::FILLED);
    }
    ss::Distortions d;
    d.rotate = 1.2;
    d.scale = 1.01;
    d.shift_x = 12;
    d.shift_y = -8;
    d.blur = 0.6;
    d.noise = 4;
    const ss::Scan scan = ss::MakeScan(*form_, 1, printed, kDpi, ss::MarkPlan{}, d, 7);
    ss::WriteGreyImage(folder_->File("form7.png"), scan.image, kDpi, false, 0);
  }
  static void TearDownTestSuite() {
    form_->Free();
    form_.reset();
    delete folder_;
  }

  static FormRecord Read(const ReadOptions& options) {
    const FormReader reader(*form_, {}, options);
    return reader.Read({folder_->File("form7.png")});
  }
  static std::map<std::string, ItemAnswer> Answers(const FormRecord& record) {
    std::map<std::string, ItemAnswer> answers;
    for (const ItemAnswer& a : record.answers)
      answers[a.name] = a;
    return answers;
  }
  // The record of the scan read with clips in the fixture's folder, read once.
  static const FormRecord& Record() {
    static const FormRecord record = Read({folder_->File("clips"), "eng"});
    return record;
  }

  static inline testing::TempFolder* folder_ = nullptr;
  static inline std::shared_ptr<clsXUNTemplate> form_;
};

TEST_F(RegionReadingTest, BarcodesAreReadSplitJoinedAndChecked) {
  ASSERT_TRUE(Record().pages[0].registered) << Record().pages[0].error;
  auto answers = Answers(Record());
  EXPECT_EQ(answers["Code"].value, "AB-1234");
  EXPECT_EQ(answers["Code"].status, AnswerStatus::Clear);
  EXPECT_GT(answers["Code"].confidence, 0.5);
  // Two items, each its own column's symbol, whatever the symbologies.
  EXPECT_EQ(answers["Pair_1"].value, "LEFT");
  EXPECT_EQ(answers["Pair_2"].value, "RIGHT");
  // One item: both, left to right, joined by the delimiter.
  EXPECT_EQ(answers["Joined"].value, "ONE/TWO");
  EXPECT_EQ(answers["Joined"].status, AnswerStatus::Clear);
  // Five characters where eight are wanted: not given as read, and why.
  EXPECT_EQ(answers["Length"].status, AnswerStatus::Doubtful);
  EXPECT_EQ(answers["Length"].value, "ERROR #");
  EXPECT_NE(answers["Length"].why.find("\"12345\""), std::string::npos) << answers["Length"].why;
  EXPECT_EQ(answers["Empty"].status, AnswerStatus::Blank);
  EXPECT_EQ(answers["Empty"].value, "BLANK");
}

TEST_F(RegionReadingTest, TextIsReadAndDoubtfulTextFlaggedWithItsClip) {
  auto answers = Answers(Record());
  EXPECT_EQ(answers["Name"].value, "MARY SMITH");
  EXPECT_EQ(answers["Name"].status, AnswerStatus::Clear) << answers["Name"].why;
  EXPECT_GE(answers["Name"].confidence, 0.7);
  EXPECT_TRUE(answers["Name"].clip.empty());
  EXPECT_EQ(answers["Number"].value, "3141592");
  EXPECT_EQ(answers["Blank"].status, AnswerStatus::Blank);
  // Below its region's 100%: doubtful, the text still given, its clip saved for a person.
  const ItemAnswer& strict = answers["Strict"];
  EXPECT_EQ(strict.value, "JOHN BROWN");
  EXPECT_EQ(strict.status, AnswerStatus::Doubtful);
  EXPECT_NE(strict.why.find("below the 100%"), std::string::npos) << strict.why;
  ASSERT_FALSE(strict.clip.empty());
  int dpi = 0;
  const cv::Mat clip = ss::ReadGreyImage(strict.clip, dpi);
  EXPECT_NEAR(clip.cols, 400 * dpi / 100, 2);
  EXPECT_TRUE(Record().NeedsReview());
}

// The compression tag of a little- or big-endian TIFF's first image.
int TiffCompression(const std::string& bytes) {
  const bool little = bytes.compare(0, 2, "II") == 0;
  const auto u16 = [&](size_t at) {
    const auto b = [&](size_t i) { return static_cast<unsigned>(static_cast<uint8_t>(bytes[i])); };
    return little ? b(at) | b(at + 1) << 8 : b(at) << 8 | b(at + 1);
  };
  const auto u32 = [&](size_t at) {
    return little ? u16(at) | u16(at + 2) << 16 : u16(at) << 16 | u16(at + 2);
  };
  const size_t ifd = u32(4);
  for (unsigned i = 0; i < u16(ifd); ++i)
    if (u16(ifd + 2 + 12 * i) == 259) return static_cast<int>(u16(ifd + 2 + 12 * i + 8));
  return -1;
}

TEST_F(RegionReadingTest, ClipsAreWrittenInEveryFormatAndReadBack) {
  auto answers = Answers(Record());
  const std::string folder = folder_->File("clips");
  const std::vector<std::pair<std::string, int>> files = {
      {"form7-Clip0.tif", 1}, {"form7-Clip1.tif", 3}, {"form7-Clip2.tif", 4},
      {"form7-Clip3.tif", 5}, {"form7-Clip4.jpg", 0}, {"form7-Clip5.pcx", 0}};
  for (size_t i = 0; i < files.size(); ++i) {
    SCOPED_TRACE(files[i].first);
    const ItemAnswer& a = answers["Clip" + std::to_string(i)];
    EXPECT_EQ(a.status, AnswerStatus::Clear) << a.why;
    EXPECT_EQ(a.clip, folder + "/" + files[i].first);
    // The first adds no column; the others give their file's name.
    EXPECT_EQ(a.value, i == 0 ? "" : files[i].first);
    if (files[i].second) {
      EXPECT_EQ(TiffCompression(testing::ReadFileBytes(a.clip)), files[i].second);
    }
    int dpi = 0;
    const cv::Mat clip = ss::ReadGreyImage(a.clip, dpi);
    EXPECT_NEAR(dpi, kDpi, 5);
    EXPECT_NEAR(clip.cols, 150 * kDpi / 100, 6);
    EXPECT_NEAR(clip.rows, 80 * kDpi / 100, 6);
    // The square drawn in the middle, on paper.
    EXPECT_LT(cv::mean(clip(cv::Rect(clip.cols / 2 - 20, clip.rows / 2 - 20, 40, 40)))[0], 60);
    EXPECT_GT(cv::mean(clip(cv::Rect(clip.cols / 2 - 20, 12, 40, 20)))[0], 200);
  }
  const std::string pdf = testing::ReadFileBytes(folder + "/form7-Clip6.pdf");
  EXPECT_EQ(pdf.substr(0, 5), "%PDF-");
  EXPECT_NE(pdf.find("/Image"), std::string::npos);
  EXPECT_EQ(answers["Clip6"].value, "form7-Clip6.pdf");
  // A clip with data: the data is keyed in by a person from the clip; then the clip's name.
  EXPECT_EQ(answers["Data_1"].status, AnswerStatus::Doubtful);
  EXPECT_EQ(answers["Data_1"].clip, folder + "/form7_Data.tif");
  EXPECT_EQ(answers["Data_2"].value, "form7_Data.tif");
  // The tokens replaced, the separators made harmless, the extension kept.
  const std::string named = "a_.._1_" + std::to_string(answers["Named"].item) + ".TIF";
  EXPECT_EQ(answers["Named"].value, named);
  EXPECT_TRUE(fs::exists(folder + "/" + named));
  // Nothing half-written is left beside them.
  for (const auto& entry : fs::directory_iterator(folder))
    EXPECT_NE(entry.path().filename().string()[0], '.') << entry.path();
}

TEST_F(RegionReadingTest, OneReaderReadsOnSeveralThreadsAtOnce) {
  const FormReader reader(*form_, {}, {folder_->File("threads"), "eng"});
  std::vector<FormRecord> records(2);
  std::vector<std::thread> threads;
  for (FormRecord& record : records)
    threads.emplace_back([&] { record = reader.Read({folder_->File("form7.png")}); });
  for (std::thread& thread : threads)
    thread.join();
  for (const FormRecord& record : records) {
    ASSERT_EQ(record.answers.size(), Record().answers.size());
    for (size_t i = 0; i < record.answers.size(); ++i) {
      EXPECT_EQ(record.answers[i].value, Record().answers[i].value) << record.answers[i].name;
      EXPECT_EQ(record.answers[i].status, Record().answers[i].status) << record.answers[i].name;
    }
  }
}

TEST_F(RegionReadingTest, WhatCannotBeDoneIsInTheAnswers) {
  // A clip folder that is a file, an OCR language that is not installed: those regions are
  // errors with why; the barcodes are read all the same.
  testing::WriteFileBytes(folder_->File("not-a-folder"), "x");
  auto answers = Answers(Read({folder_->File("not-a-folder"), "xx-missing"}));
  EXPECT_EQ(answers["Clip1"].status, AnswerStatus::Error);
  EXPECT_EQ(answers["Clip1"].value, "ERROR #");
  EXPECT_NE(answers["Clip1"].why.find("cannot write"), std::string::npos) << answers["Clip1"].why;
  EXPECT_EQ(answers["Name"].status, AnswerStatus::Error);
  EXPECT_NE(answers["Name"].why.find("xx-missing"), std::string::npos) << answers["Name"].why;
  EXPECT_EQ(answers["Code"].value, "AB-1234");
}

TEST(RegionReadingWithoutBubbles, APageOfOnlyABarcodeIsTakenAsTheWholeScan) {
  testing::TempFolder folder;
  auto form = clsXUNTemplate::Create();
  form->PageWidth(8.5);
  form->PageHeight(11);
  auto page = clsXUNPage::Create();
  form->Pages()->Add(page);
  AddRegion(*page, "Ticket", xunRecogTypeBarcode, xunFieldTypeBarcodeQRCode, 300, 300, 550, 550)
      ->BarcodeDistance(30);
  page->Fields()->Item(1)->Questions()->Update();
  cv::Mat printed = ss::PrintedPage(*form, 1, 200);
  // At 200 dpi: pixels are page units doubled.
  const ZXing::BitMatrix qr =
      ZXing::MultiFormatWriter(ZXing::BarcodeFormat::QRCode).setMargin(0).encode("T-0042", 0, 0);
  for (int y = 0; y < qr.height(); ++y)
    for (int x = 0; x < qr.width(); ++x)
      if (qr.get(x, y))
        cv::rectangle(printed, cv::Rect(700 + x * 8, 700 + y * 8, 8, 8), cv::Scalar(0), cv::FILLED);
  ss::Distortions d;
  d.shift_x = 20;
  d.rotate = 1;
  const ss::Scan scan = ss::MakeScan(*form, 1, printed, 200, ss::MarkPlan{}, d, 3);
  ss::WriteGreyImage(folder.File("ticket.png"), scan.image, 200, false, 0);
  const FormRecord record = FormReader(*form).Read({folder.File("ticket.png")});
  ASSERT_EQ(record.pages.size(), 1u);
  EXPECT_TRUE(record.pages[0].registered);
  EXPECT_EQ(record.pages[0].model, "scale");
  ASSERT_EQ(record.answers.size(), 1u);
  EXPECT_EQ(record.answers[0].value, "T-0042");
  EXPECT_FALSE(record.NeedsReview());
  form->Free();
}

}  // namespace
}  // namespace xun::reading
