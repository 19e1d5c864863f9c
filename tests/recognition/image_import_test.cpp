// Importing pages of generated image files: the page's own PCX file and the image facts it sets,
// the drop-out conversion, and refusals that leave the page as it was.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "common/test_support.h"
#include "recognition/scripted_engine.h"
#include "recognition/test_images.h"
#include "xun/xun.h"

namespace xun {
namespace {

namespace fs = std::filesystem;
using testing::ScopedEngine;
using testing::ScopedHandler;
using testing::ScriptedEngine;
using testing::TempFolder;

class ImageImportTest : public ::testing::Test {
 protected:
  void SetUp() override {
    engine_->filled_pixels = 777;
    form_ = clsXUNTemplate::Create();
    page_ = clsXUNPage::Create();
    form_->Pages()->Add(page_);
  }
  void TearDown() override { form_->Free(); }

  std::shared_ptr<ScriptedEngine> engine_ = std::make_shared<ScriptedEngine>();
  ScopedEngine installed_{engine_};
  TempFolder folder_;
  std::shared_ptr<clsXUNTemplate> form_;
  std::shared_ptr<clsXUNPage> page_;
};

TEST_F(ImageImportTest, TakesTheAskedPageOfEveryMultiPageFormat) {
  for (const std::string format : {"TIFF", "DCX"}) {
    SCOPED_TRACE(format);
    const std::string file = folder_.File("scan." + format);
    testing::WritePages({testing::BlankPage(170, 220, 100), testing::BlankPage(340, 450, 200),
                         testing::BlankPage(510, 660, 300)},
                        file, format);
    ASSERT_TRUE(page_->ImageImport(file, 2));
    EXPECT_EQ(page_->ImageWidth(), 340);
    EXPECT_EQ(page_->ImageHeight(), 450);
    EXPECT_EQ(page_->XDPI(), 200);
    EXPECT_EQ(page_->YDPI(), 200);
    EXPECT_EQ(page_->FilledPixels(), 777);
    EXPECT_EQ(fs::path(page_->ImageFile()).extension(), ".pcx");
    EXPECT_EQ(engine_->Calls().end()[-3], "load " + page_->ImageFile() + " 0 200 200 340 450");
    EXPECT_EQ(engine_->Calls().end()[-2], "image 1 1 169 224");

    // A 1-bit PCX that carries its resolution.
    const std::string pcx = testing::ReadFileBytes(page_->ImageFile());
    ASSERT_GT(pcx.size(), 128u);
    EXPECT_EQ(pcx[0], '\x0A');
    EXPECT_EQ(pcx[3], 1) << "bits per pixel";
    EXPECT_EQ(static_cast<unsigned char>(pcx[12]) | static_cast<unsigned char>(pcx[13]) << 8, 200);
  }
}

TEST_F(ImageImportTest, ReadsSinglePageFormats) {
  struct Case {
    std::string format;
    int dpi;
  };
  for (const Case& c : {Case{"PNG", 150}, Case{"JPEG", 300}, Case{"PCX", 200}}) {
    SCOPED_TRACE(c.format);
    const std::string file = folder_.File("page." + c.format);
    testing::WritePages({testing::BlankPage(300, 400, c.dpi)}, file, c.format);
    ASSERT_TRUE(page_->ImageImport(file));
    EXPECT_EQ(page_->XDPI(), c.dpi);
    EXPECT_EQ(page_->ImageHeight(), 400);
  }
}

TEST_F(ImageImportTest, AnImageWithoutResolutionCoversTheTemplatePage) {
  const std::string file = folder_.File("bare.png");
  testing::WritePages({testing::BlankPage(1700, 2200, 0)}, file, "PNG");
  form_->PageWidth(8.5);
  form_->PageHeight(11);
  ASSERT_TRUE(page_->ImageImport(file));
  EXPECT_EQ(page_->XDPI(), 200);
  EXPECT_EQ(page_->YDPI(), 200);
}

TEST_F(ImageImportTest, DropOutColourRemovesTheFormsInkButKeepsMarks) {
  Magick::Image scan = testing::BlankPage(200, 100, 100);
  testing::FillRect(scan, 10, 10, 40, 40, "#E03030");    // a red printed bubble
  testing::FillRect(scan, 60, 10, 90, 40, "#303030");    // a pencil mark
  testing::FillRect(scan, 110, 10, 140, 40, "#C0C0C0");  // light grey: not dark enough
  const std::string file = folder_.File("colour.png");
  testing::WritePages({scan}, file, "PNG");

  page_->DropOutColor(xunTemplateDropOutColorRed);
  form_->ReadType(xunTemplateReadTypeClassic);
  ASSERT_TRUE(page_->ImageImport(file));
  EXPECT_FALSE(testing::IsBlack(page_->ImageFile(), 25, 25));
  EXPECT_TRUE(testing::IsBlack(page_->ImageFile(), 75, 25));
  EXPECT_FALSE(testing::IsBlack(page_->ImageFile(), 125, 25));

  // Office forms carry no drop-out ink: the red stays.
  form_->ReadType(xunTemplateReadTypeOffice);
  ASSERT_TRUE(page_->ImageImport(file));
  EXPECT_TRUE(testing::IsBlack(page_->ImageFile(), 25, 25));

  // A threshold above the red's lead over the other channels keeps it too.
  form_->ReadType(xunTemplateReadTypeClassic);
  page_->DropOutThreshold(90);
  ASSERT_TRUE(page_->ImageImport(file));
  EXPECT_TRUE(testing::IsBlack(page_->ImageFile(), 25, 25));
}

TEST_F(ImageImportTest, ReplacesThePreviousImageAndRefusalsChangeNothing) {
  const std::string file = folder_.File("two.tif");
  testing::WritePages({testing::BlankPage(170, 220, 100), testing::BlankPage(340, 440, 200)}, file,
                      "TIFF");
  ASSERT_TRUE(page_->ImageImport(file, 1));
  const std::string first = page_->ImageFile();
  ASSERT_TRUE(page_->ImageImport(file, 2));
  EXPECT_FALSE(fs::exists(first)) << "the page owned its previous image";
  const std::string second = page_->ImageFile();

  const std::string junk = folder_.File("junk.tif");
  testing::WriteFileBytes(junk, std::string(300, 'j'));
  ScopedHandler handler;
  EXPECT_FALSE(page_->ImageImport(file, 3));
  EXPECT_FALSE(page_->ImageImport(file, 0));
  EXPECT_FALSE(page_->ImageImport(folder_.File("none.tif")));
  EXPECT_FALSE(page_->ImageImport(junk));
  EXPECT_EQ(
      handler.LocationsAndNumbers(),
      (std::vector<std::string>{"clsXUNPage.ImageImport #9", "clsXUNPage.ImageImport #9",
                                "clsXUNPage.ImageImport #53", "clsXUNPage.ImageImport #481"}));
  EXPECT_EQ(handler.reports()[0].description, "The image file has no page 3.");
  EXPECT_EQ(page_->ImageFile(), second);
  EXPECT_TRUE(fs::exists(second));
  EXPECT_EQ(page_->ImageWidth(), 340);
}

TEST_F(ImageImportTest, AnEngineThatCannotLoadLeavesThePageUnmeasured) {
  const std::string file = folder_.File("page.png");
  testing::WritePages({testing::BlankPage(100, 100, 100)}, file, "PNG");
  engine_->load_code = 2;
  ScopedHandler handler;
  EXPECT_TRUE(page_->ImageImport(file));
  EXPECT_EQ(page_->FilledPixels(), -1);
  EXPECT_EQ(engine_->Calls().back(), "unload");
  EXPECT_EQ(handler.LocationsAndNumbers(),
            (std::vector<std::string>{"clsXUNPage.ImageImport #75"}));
}

}  // namespace
}  // namespace xun
