// Hostile image files through the image module: importing a page and reading a barcode refuse
// each with the library's error, never a crash or a page-sized allocation, and leave the page as
// it was. The engine's side of the same files is in tests/engine/image_test.cpp.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "common/hostile_images.h"
#include "common/test_support.h"
#include "recognition/scripted_engine.h"
#include "recognition/test_images.h"
#include "xun/xun.h"

namespace xun {
namespace {

using testing::HostileFile;
using testing::Refusal;
using testing::ScopedEngine;
using testing::ScopedHandler;
using testing::ScriptedEngine;
using testing::TempFolder;

// Whether the reports are the one report of the library's error for the refusal, at `location`.
bool RefusedAs(const ScopedHandler& handler, const std::string& location, Refusal refusal) {
  const std::vector<std::string> reports = handler.LocationsAndNumbers();
  if (reports.size() != 1) return false;
  const auto is = [&](int32_t error) {
    return reports[0] == location + " #" + std::to_string(error);
  };
  switch (refusal) {
    case Refusal::kNotFound:
      return is(53);
    case Refusal::kNotAnImage:
      return is(481);
    case Refusal::kTooLarge:
      return is(6);
    case Refusal::kTooLargeOrNotAnImage:
      return is(6) || is(481);
  }
  return false;
}

class HostileImageTest : public ::testing::Test {
 protected:
  void SetUp() override {
    form_ = clsXUNTemplate::Create();
    page_ = clsXUNPage::Create();
    form_->Pages()->Add(page_);
    good_png_ = folder_.File("good.png");
    good_pcx_ = folder_.File("good.pcx");
    testing::WritePages({testing::BlankPage(200, 200, 100)}, good_png_, "PNG");
    testing::WritePages({testing::BlankPage(200, 200, 100)}, good_pcx_, "PCX");
    files_ = testing::WriteHostileFiles(folder_, testing::ReadFileBytes(good_png_),
                                        testing::ReadFileBytes(good_pcx_));
  }
  void TearDown() override { form_->Free(); }

  ScopedEngine installed_{std::make_shared<ScriptedEngine>()};
  TempFolder folder_;
  std::string good_png_, good_pcx_;
  std::vector<HostileFile> files_;
  std::shared_ptr<clsXUNTemplate> form_;
  std::shared_ptr<clsXUNPage> page_;
};

TEST_F(HostileImageTest, ImportRefusesEveryOneAndKeepsThePage) {
  ASSERT_TRUE(page_->ImageImport(good_png_));
  const std::string kept = page_->ImageFile();
  for (const HostileFile& file : files_) {
    SCOPED_TRACE(file.name);
    ScopedHandler handler;
    EXPECT_FALSE(page_->ImageImport(file.path));
    EXPECT_TRUE(RefusedAs(handler, "clsXUNPage.ImageImport", file.refusal))
        << ::testing::PrintToString(handler.LocationsAndNumbers());
    EXPECT_EQ(page_->ImageFile(), kept);
    EXPECT_EQ(page_->ImageWidth(), 200);
  }
}

TEST_F(HostileImageTest, ImportChecksTheAskedPageOfAMultiPageFile) {
  const std::string good = testing::ReadFileBytes(good_pcx_);
  const std::string file = folder_.File("pages.dcx");
  testing::WriteFileBytes(file, testing::Dcx({good, testing::PcxHeader(60000, 60000, 64),
                                              testing::PcxHeader(4000, 4000, 300), good}));
  ScopedHandler handler;
  EXPECT_TRUE(page_->ImageImport(file, 1));
  EXPECT_TRUE(page_->ImageImport(file, 4));
  EXPECT_FALSE(page_->ImageImport(file, 2));
  EXPECT_FALSE(page_->ImageImport(file, 3));
  EXPECT_FALSE(page_->ImageImport(file, 5));
  EXPECT_EQ(handler.LocationsAndNumbers(),
            (std::vector<std::string>{"clsXUNPage.ImageImport #6", "clsXUNPage.ImageImport #481",
                                      "clsXUNPage.ImageImport #9"}));
}

TEST_F(HostileImageTest, BarcodeReadingRefusesEveryOne) {
  auto field = clsXUNField::Create();
  field->RecognitionType(xunRecogTypeBarcode);
  field->Left(10);
  field->Top(10);
  field->Right(90);
  field->Bottom(90);
  page_->Fields()->Add(field);
  // A page that claims the hostile file as its image, as a damaged template could.
  page_->XDPI(100);
  page_->YDPI(100);
  page_->ImageWidth(200);
  page_->ImageHeight(200);
  for (const HostileFile& file : files_) {
    SCOPED_TRACE(file.name);
    page_->ImageFile(file.path);
    ScopedHandler handler;
    xunFieldType type = xunFieldTypeBarcodeAuto;
    EXPECT_FALSE(field->GetBarcodeType(type));
    EXPECT_EQ(type, xunFieldTypeBarcodeAuto);
    EXPECT_TRUE(RefusedAs(handler, "clsXUNField.GetBarcodeType", file.refusal))
        << ::testing::PrintToString(handler.LocationsAndNumbers());
  }
  // Not the page's to delete.
  page_->ImageFile("");
}

}  // namespace
}  // namespace xun
