// Barcode type detection on generated page images: symbology and direction, and a region without
// a barcode.
#include <gtest/gtest.h>

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
using testing::ScriptedEngine;

struct Symbol {
  ZXing::BarcodeFormat format;
  std::string text;
  xunFieldType type;
  int width, height;
};

const std::vector<Symbol> kSymbols = {
    {ZXing::BarcodeFormat::Code128, "XUN-2026-0042", xunFieldTypeBarcodeCode128, 400, 120},
    {ZXing::BarcodeFormat::Code39, "FORM42", xunFieldTypeBarcodeCode39, 400, 120},
    {ZXing::BarcodeFormat::Code93, "PAGE7", xunFieldTypeBarcodeCode93, 400, 120},
    {ZXing::BarcodeFormat::Codabar, "A123456B", xunFieldTypeBarcodeCodaBar, 400, 120},
    {ZXing::BarcodeFormat::ITF, "12345678", xunFieldTypeBarcodeInterleaved2of5, 400, 120},
    {ZXing::BarcodeFormat::EAN13, "5901234123457", xunFieldTypeBarcodeEAN13, 400, 120},
    {ZXing::BarcodeFormat::EAN8, "96385074", xunFieldTypeBarcodeEAN8, 300, 120},
    {ZXing::BarcodeFormat::UPCA, "036000291452", xunFieldTypeBarcodeUPCA, 400, 120},
    {ZXing::BarcodeFormat::QRCode, "respondent 314", xunFieldTypeBarcodeQRCode, 200, 200},
    {ZXing::BarcodeFormat::DataMatrix, "respondent 314", xunFieldTypeBarcodeDataMatrix, 200, 200},
    {ZXing::BarcodeFormat::PDF417, "respondent 314", xunFieldTypeBarcodePDF417, 400, 160},
};

class BarcodeTypeTest : public ::testing::Test {
 protected:
  // One 200-dpi page holding the symbol at (200, 200) pixels, imported as the page's image, and a
  // barcode region around it (100-dpi units: half the pixel values).
  std::shared_ptr<clsXUNField> RegionAround(const Symbol& symbol, bool vertical) {
    Magick::Image scan = testing::BlankPage(1000, 1000, 200);
    testing::DrawBarcode(scan, symbol.format, symbol.text, 200, 200, symbol.width, symbol.height,
                         vertical);
    const std::string file = folder_.File("scan.png");
    testing::WritePages({scan}, file, "PNG");
    if (!page_->ImageImport(file)) return nullptr;
    auto field = clsXUNField::Create();
    field->RecognitionType(xunRecogTypeBarcode);
    const int w = vertical ? symbol.height : symbol.width,
              h = vertical ? symbol.width : symbol.height;
    field->Left(90);
    field->Top(90);
    field->Right(static_cast<int16_t>(110 + w / 2));
    field->Bottom(static_cast<int16_t>(110 + h / 2));
    page_->Fields()->Add(field);
    return field;
  }
  void SetUp() override {
    form_ = clsXUNTemplate::Create();
    page_ = clsXUNPage::Create();
    form_->Pages()->Add(page_);
  }
  void TearDown() override { form_->Free(); }

  ScopedEngine installed_{std::make_shared<ScriptedEngine>()};
  testing::TempFolder folder_;
  std::shared_ptr<clsXUNTemplate> form_;
  std::shared_ptr<clsXUNPage> page_;
};

TEST_F(BarcodeTypeTest, DetectsEverySymbologyAndItsDirection) {
  ScopedHandler handler;
  for (const Symbol& symbol : kSymbols) {
    for (const bool vertical : {false, true}) {
      SCOPED_TRACE(symbol.text + (vertical ? " vertical" : " horizontal"));
      const auto field = RegionAround(symbol, vertical);
      ASSERT_NE(field, nullptr);
      xunFieldType type = xunFieldTypeOMRNone;
      xunOrientationType orientation = xunOrientationTypeNone;
      ASSERT_TRUE(field->GetBarcodeType(type, &orientation));
      EXPECT_EQ(type, symbol.type);
      // Square symbols have no direction of their own; bars do.
      if (symbol.width != symbol.height) {
        EXPECT_EQ(orientation, vertical ? xunOrientationTypeBarcodeVertical
                                        : xunOrientationTypeBarcodeHorizontal);
      }
      page_->Fields()->RemoveAll();
    }
  }
  EXPECT_TRUE(handler.reports().empty());
}

TEST_F(BarcodeTypeTest, NoBarcodeIsAnAnswerAndBadRegionsAreReported) {
  const auto field = RegionAround(kSymbols[0], false);
  ASSERT_NE(field, nullptr);
  field->Left(400);  // blank paper beside the symbol
  field->Right(480);
  xunFieldType type = xunFieldTypeBarcodeAuto;
  ScopedHandler handler;
  EXPECT_FALSE(field->GetBarcodeType(type));
  EXPECT_EQ(type, xunFieldTypeBarcodeAuto);
  EXPECT_TRUE(handler.reports().empty());

  field->Left(900);  // the image is 500 wide at 100 dpi
  field->Right(950);
  EXPECT_FALSE(field->GetBarcodeType(type));
  auto loose = clsXUNField::Create();
  EXPECT_FALSE(loose->GetBarcodeType(type));
  EXPECT_EQ(handler.LocationsAndNumbers(),
            (std::vector<std::string>{"clsXUNField.GetBarcodeType #5",
                                      "clsXUNField.GetBarcodeType #91"}));
}

}  // namespace
}  // namespace xun
