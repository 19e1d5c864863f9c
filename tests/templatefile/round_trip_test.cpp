#include <gtest/gtest.h>

#include "common/test_support.h"
#include "xun/xun.h"

namespace xun {
namespace {

std::shared_ptr<clsXUNTemplate> BuildSample(const std::string& region_name) {
  auto t = clsXUNTemplate::Create();
  // No Name: the form's name is written for information only and is not read back.
  t->PageWidth(8.5);
  t->PageHeight(11);
  t->Duplex(true);
  t->Attributes()->Add("Owner", Variant("Ünïcode | pipes"));
  auto page = clsXUNPage::Create();
  page->TimingMarks()->AddMark(10, 20, 30, 40);
  t->Pages()->Add(page);
  auto field = clsXUNField::Create();
  field->FieldName(region_name);
  field->RecognitionType(xunRecogTypeOMR);
  field->FieldType(xunFieldTypeOMRMult);
  field->DataType(xunDataTypeText);
  field->Orient(xunOrientationTypeOMRRow);
  field->NumRows(2);
  field->NumCols(3);
  field->Left(100);
  field->Right(400);
  field->Top(50);
  field->Bottom(120);
  page->Fields()->Add(field);
  field->Questions()->Update();
  field->Questions()->Item(2)->QuestionText("Second question");
  auto barcode = clsXUNField::Create();
  barcode->FieldName("Code");
  barcode->RecognitionType(xunRecogTypeBarcode);
  barcode->FieldType(xunFieldTypeBarcodeCode128);
  barcode->BarcodeDelimiter("\r\n");
  barcode->Questions()->Add(clsXUNQuestion::Create());
  page->Fields()->Add(barcode);
  return t;
}

// Saving, reading back and saving again gives the same bytes, in both encodings.
TEST(RoundTrip, SaveReadSaveIsStable) {
  for (const std::string name : {"Ratings", "Bewertung東京"}) {
    testing::TempFolder folder;
    auto original = BuildSample(name);
    ASSERT_TRUE(original->Save(folder.File("a.omr"), false));
    auto read = clsXUNTemplate::Create();
    ASSERT_TRUE(read->Read(folder.File("a.omr"), true)) << basTemplate::LastReadDiagnostic().text;
    EXPECT_EQ(read->NumItems(), original->NumItems());
    EXPECT_EQ(read->Attributes()->Item("Owner"), Variant("Ünïcode | pipes"));
    const auto field = read->Pages()->Item(1)->Fields()->Item(1);
    EXPECT_EQ(field->FieldName(), name);
    EXPECT_EQ(field->Questions()->Item(2)->QuestionText(), "Second question");
    EXPECT_EQ(read->Pages()->Item(1)->Fields()->Item(2)->BarcodeDelimiter(), "\r\n");
    EXPECT_EQ(read->Pages()->Item(1)->TimingMarks()->AsString(), "10,20,30,40");
    ASSERT_TRUE(read->Save(folder.File("b.omr"), false));
    EXPECT_EQ(testing::ReadFileBytes(folder.File("a.omr")),
              testing::ReadFileBytes(folder.File("b.omr")));
    original->Free();
    read->Free();
  }
}

}  // namespace
}  // namespace xun
