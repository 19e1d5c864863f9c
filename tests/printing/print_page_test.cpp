// Printed pages as files: size, resolution, what is dark where, and what a failure leaves.
#include <gtest/gtest.h>

#include <Magick++.h>

#include <cmath>
#include <string>

#include "common/test_support.h"
#include "xun/xun.h"

namespace xun {
namespace {

using testing::ScopedHandler;

// A printed file's grey pixels.
struct Printed {
  explicit Printed(const std::string& file) : image(file) {}
  int Grey(double units_x, double units_y, int dpi) {
    const auto x = static_cast<ssize_t>(std::floor(units_x * dpi / 100));
    const auto y = static_cast<ssize_t>(std::floor(units_y * dpi / 100));
    return static_cast<int>(std::lround(Magick::ColorGray(image.pixelColor(x, y)).shade() * 255));
  }
  Magick::Image image;
};

class PrintPageTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Magick::InitializeMagick(nullptr);  // the test draws with the image library itself
    ASSERT_TRUE(exam_->Read(std::string(XUN_EXAMPLES_DIR) + "/exam.omr"));
  }
  void TearDown() override { exam_->Free(); }
  std::shared_ptr<clsXUNField> Region(const std::string& name) {
    for (const auto& field : *exam_->Pages()->Item(1)->Fields())
      if (field->FieldName() == name) return field;
    return nullptr;
  }
  testing::TempFolder folder_;
  std::shared_ptr<clsXUNTemplate> exam_ = clsXUNTemplate::Create();
};

TEST_F(PrintPageTest, ThePageAtItsResolutionWithInkWhereTheLayoutPutsIt) {
  ScopedHandler handler;
  const std::string file = folder_.File("exam.png");
  for (const int dpi : {100, 150, 300}) {
    SCOPED_TRACE(dpi);
    ASSERT_TRUE(PrintPage(*exam_, 1, file, dpi));
    Printed printed(file);
    EXPECT_EQ(printed.image.columns(), 850u * dpi / 100);
    EXPECT_EQ(printed.image.rows(), 1100u * dpi / 100);
    // PNG keeps dots per metre, which GraphicsMagick gives back per centimetre.
    const double per_inch = printed.image.resolutionUnits() == Magick::PixelsPerCentimeterResolution
                                ? printed.image.xResolution() * 2.54
                                : printed.image.xResolution();
    EXPECT_NEAR(per_inch, dpi, 0.5);
    EXPECT_EQ(printed.Grey(20, 32, dpi), 0);  // inside the timing mark

    const BubbleRect b = BubbleGrid::Of(*Region("Answers")).Bubble(2, 3);
    const double middle = (b.Top + b.Bottom) / 2.0;
    // The outline just inside the bubble's edge, paper just outside it.
    EXPECT_LT(printed.Grey(b.Left + 0.5, middle, dpi), 100);
    EXPECT_GT(printed.Grey(b.Left - 1.5, middle, dpi), 230);
    EXPECT_LT(printed.Grey((b.Left + b.Right) / 2.0, b.Bottom - 0.5, dpi), 100);
    // Inside, only the light label: nothing darker than its ink.
    const double centre = (b.Left + b.Right) / 2.0;
    int darkest = 255;
    for (double x = centre - 5; x <= centre + 5; x += 0.5)
      for (double y = middle - 3; y <= middle + 3; y += 0.5)
        darkest = std::min(darkest, printed.Grey(x, y, dpi));
    EXPECT_LT(darkest, 250);  // the label is there
    EXPECT_GT(darkest, 255 * (1 - printing::kBubbleLabelInk) - 8);
  }
  EXPECT_TRUE(handler.reports().empty());
}

TEST_F(PrintPageTest, ThePrintedIdentificationBarcodeReadsBack) {
  const std::string file = folder_.File("exam.png");
  ASSERT_TRUE(PrintPage(*exam_, 1, file, 200));
  const auto page = exam_->Pages()->Item(1);
  ASSERT_TRUE(page->ImageImport(file));
  xunFieldType type = xunFieldTypeOMRNone;
  ASSERT_TRUE(Region("FormID")->GetBarcodeType(type));
  EXPECT_EQ(type, xunFieldTypeBarcodeCode128);
}

TEST_F(PrintPageTest, ThePageImageIsPrintedUnderneath) {
  // A page image with a black block where the form has nothing.
  Magick::Image scan(Magick::Geometry(850, 1100), Magick::Color("white"));
  scan.resolutionUnits(Magick::PixelsPerInchResolution);
  scan.density(Magick::Geometry(100, 100));
  scan.fillColor("black");
  scan.draw(Magick::DrawableRectangle(600, 800, 700, 900));
  const std::string image = folder_.File("scan.png");
  scan.write(image);
  ASSERT_TRUE(exam_->Pages()->Item(1)->ImageImport(image));
  const std::string file = folder_.File("printed.png");
  ASSERT_TRUE(PrintPage(*exam_, 1, file, 150));
  Printed printed(file);
  EXPECT_EQ(printed.Grey(650, 850, 150), 0);
  EXPECT_EQ(printed.Grey(500, 850, 150), 255);
}

TEST_F(PrintPageTest, RefusalsAreReportedAndLeaveTheFileAsItWas) {
  const std::string file = folder_.File("kept.png");
  testing::WriteFileBytes(file, "the user's own file");
  ScopedHandler handler;
  EXPECT_FALSE(PrintPage(*exam_, 2, file, 300));
  EXPECT_FALSE(PrintPage(*exam_, 1, file, 49));
  EXPECT_FALSE(PrintPage(*exam_, 1, file, 1201));
  EXPECT_FALSE(PrintPage(*exam_, 1, "", 300));
  EXPECT_FALSE(PrintPage(*exam_, 1, folder_.File("no/such/folder.png"), 300));
  // A page of a size no printer takes: refused before anything is drawn.
  exam_->PageWidth(300);
  exam_->PageHeight(300);
  EXPECT_FALSE(PrintPage(*exam_, 1, file, 1200));
  EXPECT_EQ(handler.LocationsAndNumbers(),
            (std::vector<std::string>{"PrintPage #9", "PrintPage #5", "PrintPage #5",
                                      "PrintPage #5", "PrintPage #76", "PrintPage #6"}));
  EXPECT_EQ(testing::ReadFileBytes(file), "the user's own file");
}

}  // namespace
}  // namespace xun
