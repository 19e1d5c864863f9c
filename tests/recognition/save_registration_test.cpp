// What a save does with page images: registration and filled pixels before writing, its
// messages, and the archive that carries the imported images back.
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "common/test_support.h"
#include "recognition/scripted_engine.h"
#include "recognition/test_images.h"
#include "xun/xun.h"

namespace xun {
namespace {

using testing::ScopedEngine;
using testing::ScopedHandler;
using testing::ScopedMessageCapture;
using testing::ScriptedEngine;

class SaveRegistrationTest : public ::testing::Test {
 protected:
  void SetUp() override {
    form_ = clsXUNTemplate::Create();
    form_->ReadType(xunTemplateReadTypeClassic);
    const std::string scan = folder_.File("scan.tif");
    testing::WritePages({testing::BlankPage(850, 1100, 100), testing::BlankPage(1700, 2200, 200)},
                        scan, "TIFF");
    for (int i = 1; i <= 2; ++i) {
      auto page = clsXUNPage::Create();
      form_->Pages()->Add(page);
      ASSERT_TRUE(page->ImageImport(scan, i));
      auto field = clsXUNField::Create();
      field->FieldName("Q" + std::to_string(i));
      field->RecognitionType(xunRecogTypeOMR);
      field->FieldType(xunFieldTypeOMRMult);
      field->Orient(xunOrientationTypeOMRRow);
      field->NumRows(2);
      field->NumCols(2);
      field->Left(100);
      field->Top(100);
      field->Right(140);
      field->Bottom(140);
      page->Fields()->Add(field);
      field->Questions()->Update();
    }
  }
  void TearDown() override { form_->Free(); }
  std::shared_ptr<clsXUNField> Field(int page) const {
    return form_->Pages()->Item(page)->Fields()->Item(1);
  }

  std::shared_ptr<ScriptedEngine> engine_ = std::make_shared<ScriptedEngine>();
  ScopedEngine installed_{engine_};
  testing::TempFolder folder_;
  std::shared_ptr<clsXUNTemplate> form_;
};

TEST_F(SaveRegistrationTest, ImportedImagesAndRegistrationsTravelInTheArchive) {
  engine_->filled_pixels = 1234;
  const std::string target = folder_.File("form.omr");
  bool invalid = true;
  ASSERT_TRUE(form_->Save(target, false, &invalid, true));
  EXPECT_FALSE(invalid);
  EXPECT_EQ(testing::ReadFileBytes(target).substr(0, 2), "PK");
  // After the two imports (load, count, unload), one load per page registers and counts.
  std::vector<std::string> ops;
  for (const std::string& call : engine_->Calls())
    ops.push_back(call.substr(0, call.find(' ')));
  EXPECT_EQ(std::vector<std::string>(ops.begin() + 6, ops.end()),
            (std::vector<std::string>{"load", "checkfill", "image", "unload", "load", "checkfill",
                                      "image", "unload"}));

  auto read = clsXUNTemplate::Create();
  ASSERT_TRUE(read->Read(target, true)) << basTemplate::LastReadDiagnostic().text;
  for (int i = 1; i <= 2; ++i) {
    SCOPED_TRACE(i);
    const auto original = form_->Pages()->Item(i);
    const auto copy = read->Pages()->Item(i);
    EXPECT_EQ(testing::ReadFileBytes(copy->ImageFile()),
              testing::ReadFileBytes(original->ImageFile()));
    EXPECT_EQ(copy->XDPI(), original->XDPI());
    EXPECT_EQ(copy->ImageHeight(), original->ImageHeight());
    EXPECT_EQ(copy->FilledPixels(), 1234);
    EXPECT_TRUE(copy->Fields()->Item(1)->IsRegistered());
  }
  read->Free();
}

TEST_F(SaveRegistrationTest, RegionsThatCannotBeRegisteredAreShownAndReported) {
  Field(2)->Right(90);      // an empty rectangle: nothing the engine can be asked about
  engine_->check_code = 8;  // and the engine fails the other
  ScopedMessageCapture messages;
  ScopedHandler handler;
  bool invalid = true;
  ASSERT_TRUE(form_->Save(folder_.File("form.omr"), true, &invalid, true));
  EXPECT_FALSE(invalid) << "validity is the file's own rule";
  ASSERT_EQ(messages.messages().size(), 2u);
  EXPECT_EQ(messages.messages()[0].title, "Region Registration Error");
  EXPECT_EQ(messages.messages()[0].text,
            "An error occurred attempting to register a region. Please adjust the region borders "
            "and/or region properties where appropriate to allow for region registration before "
            "using the template.\r\n\r\nPage: 1\r\nRegion: Q1");
  EXPECT_EQ(messages.messages()[1].title, "Invalid Region Registration");
  EXPECT_EQ(handler.Locations(),
            (std::vector<std::string>{"basTemplate.SaveTemplate", "basTemplate.SaveTemplate"}));
}

TEST_F(SaveRegistrationTest, AMissingPageImageIsReportedInItsOwnWords) {
  form_->Pages()->Item(2)->ImageFile(folder_.File("gone.pcx"));
  ScopedHandler handler;
  ScopedMessageCapture messages;
  ASSERT_TRUE(form_->Save(folder_.File("form.omr"), true, nullptr, true));
  ASSERT_EQ(messages.messages().size(), 1u);
  EXPECT_EQ(messages.messages()[0].text,
            "The image file for templage page 2 is invalid. Please select or scan an image for "
            "page 2 before using the template.");

  // Without registration nothing is shown; the pixels are still counted.
  ScopedMessageCapture quiet;
  engine_->filled_pixels = 99;
  ASSERT_TRUE(form_->Save(folder_.File("form.omr"), true, nullptr, false));
  EXPECT_TRUE(quiet.messages().empty());
  EXPECT_EQ(form_->Pages()->Item(1)->FilledPixels(), 99);
}

TEST_F(SaveRegistrationTest, AbsentEngineKeepsTheCountsAndReportsEachCall) {
  const int32_t counted = form_->Pages()->Item(1)->FilledPixels();
  ScopedEngine absent(std::make_shared<DynamicRecognitionEngine>("libXUNRec90-absent.so"));
  ScopedHandler handler;
  bool invalid = false;
  ASSERT_TRUE(form_->Save(folder_.File("form.omr"), false, &invalid, false));
  EXPECT_FALSE(invalid);
  EXPECT_EQ(form_->Pages()->Item(1)->FilledPixels(), counted);
  EXPECT_EQ(handler.Locations().size(), 6u) << "load, count and unload for each of two pages";
}

}  // namespace
}  // namespace xun
