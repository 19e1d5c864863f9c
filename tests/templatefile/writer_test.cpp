#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "common/test_support.h"
#include "xun/templatefile/bas_template.h"
#include "xun/templatefile/number_text.h"
#include "xun/xun.h"

namespace xun {
namespace {

using basTemplate::detail::ShortestDecimal;
using testing::RaisedError;
using testing::ReadFileBytes;
using testing::ScopedHandler;
using testing::TempFolder;

TEST(WriterNumbers, ShortestPlainDecimal) {
  EXPECT_EQ(ShortestDecimal(0.1), "0.1");
  EXPECT_EQ(ShortestDecimal(8.268), "8.268");
  EXPECT_EQ(ShortestDecimal(1e21), "1000000000000000000000");
  EXPECT_EQ(ShortestDecimal(-0.0), "0");
  EXPECT_EQ(ShortestDecimal(3.0), "3");
  EXPECT_EQ(ShortestDecimal(0.167f), "0.167");  // not the digits of the widened double
  EXPECT_EQ(RaisedError([] { ShortestDecimal(std::nan("")); }), 6);
  EXPECT_EQ(RaisedError([] { ShortestDecimal(std::numeric_limits<double>::infinity()); }), 6);
}

TEST(WriterHelpers, BarcodeDelimiterAndItemCount) {
  auto field = clsXUNField::Create();
  field->BarcodeDelimiter("\r\n");
  EXPECT_EQ(basTemplate::GetBarcodeDelimiter(*field), "<--@CRLF-->");
  basTemplate::SetBarcodeDelimiter(*field, "<--@CRLF-->");
  EXPECT_EQ(field->BarcodeDelimiter(), "\r\n");
  field->BarcodeDelimiter("\n");
  EXPECT_EQ(basTemplate::GetBarcodeDelimiter(*field), "<--@LF-->");
  basTemplate::SetBarcodeDelimiter(*field, "<--@CR--><--@LF--><--@TAB-->");
  EXPECT_EQ(field->BarcodeDelimiter(), "\r\n\t");

  auto list = clsXUNStringItems::Create();
  list->AddDelimitedString("a\tb\tc\td\te");
  basTemplate::ForceNumItems(list, 3);
  EXPECT_EQ(list->AsString(","), "a,b,c");
  basTemplate::ForceNumItems(list, 7);
  EXPECT_EQ(list->AsString(","), "a,b,c,,,,");

  ScopedHandler handler;
  field->Left(10);
  field->Right(32760);
  basTemplate::ApplyOffsets(*field, 5, 0, 10, 0);  // Right would overflow: nothing moves
  EXPECT_EQ(field->Left(), 10);
  ASSERT_EQ(handler.Locations(), std::vector<std::string>{"basTemplate.ApplyOffsets"});
}

// One page, one OMR region with one question, keys fixed so the file text is known.
std::shared_ptr<clsXUNTemplate> TinyTemplate(const std::string& region_name) {
  auto form = clsXUNTemplate::Create();
  form->Name("Survey");
  form->PageWidth(8.5);
  form->PageHeight(11);
  auto page = clsXUNPage::Create();
  page->Key("P1");
  form->Pages()->Add(page);
  auto field = clsXUNField::Create();
  field->Key("F1");
  field->RecognitionType(xunRecogTypeOMR);
  field->FieldType(xunFieldTypeOMRMult);
  field->Orient(xunOrientationTypeOMRRow);
  field->NumRows(1);
  field->NumCols(2);
  field->FieldName(region_name);
  field->Left(10);
  field->Top(20);
  field->Right(110);
  field->Bottom(40);
  field->ColGap(50);
  field->RowGap(20);
  auto question = clsXUNQuestion::Create();
  question->Key("K1");
  question->QuestionName("Q1");
  question->Choices(clsXUNStringItems::Create());
  question->Codes(clsXUNStringItems::Create());
  question->Choices()->AddDelimitedString("A\tB");
  question->Codes()->AddDelimitedString("1\t2");
  testing::AddQuestion(*field, question);
  page->Fields()->Add(field);
  return form;
}

std::string TinyTemplateText(const std::string& region_name) {
  return "[Form]\r\n"
         "Attributes=FormIDFieldsValid|False\tPageIDFieldsValid|False\t"
         "RespondentIDFieldsValid|False\r\n"
         "Columns=0\r\nColumnWidth=0.167\r\nDescription=\r\nDuplex=0\r\nHeaderCount=0\r\n"
         "HeaderItemCount=0\r\nHeaderPageCount=0\r\nName=Survey\r\nNumPages=1\r\nNumFields=1\r\n"
         "NumItems=1\r\nOrientation=0\r\nPageHeight=11\r\nPageWidth=8.5\r\nRDDName=\r\n"
         "ReadType=1\r\nRowBottomMargin=0.05\r\nRowTopMargin=0.05\r\nSelfScore=0\r\nTag=\r\n"
         "Version=8\r\nCompatibleVersion=8\r\nValid=-1\r\n"
         "[Page]\r\n"
         "Attributes=\r\nColumnWidth=0.167\r\nDropOutColor=0\r\nDropOutThreshold=20\r\nKey=P1\r\n"
         "LargeField=1\r\nNumFields=1\r\nNumItems=1\r\nTag=\r\nTimingMarks=\r\n"
         "WeightedRotate=-1\r\nXDPI=0\r\nYDPI=0\r\nImageWidth=0\r\nImageHeight=0\r\n"
         "FilledPixels=-1\r\n"
         "[Field]\r\n"
         "Attributes=\r\nName=" +
         region_name +
         "\r\nNumItems=1\r\nRecogType=1\r\nFieldType=1\r\nDataType=0\r\nOrient=1\r\n"
         "Read=-1\r\nKey=F1\r\nTag=\r\nExtra=\r\nColGap=50\r\nNumCols=2\r\nNumRows=1\r\n"
         "RowGap=20\r\nStartCol=0\r\nStartRow=0\r\nThreshold=3\r\nPattern=\r\n"
         "Left=10\r\nRight=110\r\nTop=20\r\nBottom=40\r\n"
         "[Question]\r\n"
         "QuestionText=\r\nQuestionName=Q1\r\nKey=K1\r\nTag=\r\nChoices=A\tB\r\nCodes=1\t2\r\n"
         "MultsAllowed=0\r\nBlanksFlag=0\r\nBlanksReturn=BLANK\r\nDuplicateReturn=DUP\r\n"
         "ErrorReturn=ERROR #\r\nMultsReturn=MULT\r\nDiscriminate=-1\r\nNAChoice=0\r\n"
         "IDType=0\r\nIDValue=\r\nIDAdd=0\r\nRequired=0\r\nTally=0\r\nGrade=0\r\nCorrect=1\r\n"
         "Incorrect=0\r\nExtraCredit=0\r\nNoResponse=0\r\nRespondentID=0\r\nRubric=0\r\n"
         "SubjectiveField=0\r\nSubjectivePoints=0\r\nTestVersionID=0\r\n";
}

TEST(WriterSave, ExactTextInWindows1252OrUtf16) {
  ScopedHandler handler;
  TempFolder folder;
  bool invalid = true;
  // The name is cleaned on the way out: "Q.(1)" is stored as "Q1"; "é" fits Windows-1252.
  auto form = TinyTemplate("Q.(1)é");
  ASSERT_TRUE(basTemplate::SaveTemplate(folder.File("a.omr"), *form, false, &invalid, false));
  EXPECT_EQ(ReadFileBytes(folder.File("a.omr")), text::Utf8ToWindows1252(TinyTemplateText("Q1é")));
  EXPECT_FALSE(invalid);
  EXPECT_TRUE(form->Valid());

  // A name Windows-1252 cannot hold makes the file UTF-16LE with a byte-order mark.
  ASSERT_TRUE(basTemplate::SaveTemplate(folder.File("b.omr"), *TinyTemplate("東京"), false,
                                        &invalid, false));
  EXPECT_EQ(ReadFileBytes(folder.File("b.omr")),
            "\xFF\xFE" + text::Utf8ToUtf16LEBytes(TinyTemplateText("東京")));
  // Saved again over itself as plain ASCII, the file keeps its Unicode encoding.
  ASSERT_TRUE(
      basTemplate::SaveTemplate(folder.File("b.omr"), *TinyTemplate("Q1"), false, &invalid, false));
  EXPECT_EQ(ReadFileBytes(folder.File("b.omr")),
            "\xFF\xFE" + text::Utf8ToUtf16LEBytes(TinyTemplateText("Q1")));
  EXPECT_TRUE(handler.reports().empty());
}

TEST(WriterSave, InvalidTemplateIsFlagged) {
  ScopedHandler handler;
  TempFolder folder;
  auto form = TinyTemplate("Q1");
  form->Pages()->Item(1)->Fields()->Item(1)->Questions()->Item(1)->Codes()->RemoveAll();
  bool invalid = false;
  ASSERT_TRUE(basTemplate::SaveTemplate(folder.File("a.omr"), *form, false, &invalid, false));
  EXPECT_TRUE(invalid);
  EXPECT_FALSE(form->Valid());
  EXPECT_NE(ReadFileBytes(folder.File("a.omr")).find("\r\nValid=0\r\n"), std::string::npos);
}

TEST(WriterSave, DatabaseKeysOnlyWhenVerified) {
  ScopedHandler handler;
  TempFolder folder;
  auto form = TinyTemplate("Q1");
  auto db = form->Pages()->Item(1)->Fields()->Item(1)->DB();
  db->Password("secret");
  db->Table("People");
  ASSERT_TRUE(basTemplate::SaveTemplate(folder.File("a.omr"), *form, false, nullptr, false));
  EXPECT_EQ(ReadFileBytes(folder.File("a.omr")).find("\r\nDB"), std::string::npos);

  db->LookupField("ID");
  db->Name("staff.db");  // now DBVerify holds
  ASSERT_TRUE(basTemplate::SaveTemplate(folder.File("a.omr"), *form, false, nullptr, false));
  const std::string written = ReadFileBytes(folder.File("a.omr"));
  EXPECT_NE(written.find("\r\nDBTable=People\r\nDBField=ID\r\n"), std::string::npos);
  EXPECT_NE(written.find("\r\nDBPassword="), std::string::npos);
  EXPECT_EQ(written.find("secret"), std::string::npos);
  EXPECT_TRUE(handler.reports().empty());
}

TEST(WriterSave, IdentificationSummaryInAttributes) {
  ScopedHandler handler;
  TempFolder folder;
  auto form = TinyTemplate("Q1");
  form->Attributes()->Add("PageIDField", Variant("stale"));
  auto question = form->Pages()->Item(1)->Fields()->Item(1)->Questions()->Item(1);
  question->IDType(xunIDTypeForm);
  question->IDValue("F7");
  question->IDAdd(true);
  ASSERT_TRUE(basTemplate::SaveTemplate(folder.File("a.omr"), *form, false, nullptr, false));
  const DictionaryPtr attributes = form->Attributes();
  EXPECT_TRUE(attributes->Item("FormIDFieldsValid") == Variant(true));
  EXPECT_EQ(attributes->Item("FormIDField").ToText(), "Q1");
  EXPECT_EQ(attributes->Item("FormIDQuestion").ToText(), "1");
  EXPECT_EQ(attributes->Item("FormIDIndex").ToText(), "1");
  EXPECT_EQ(attributes->Item("FormIDValue").ToText(), "F7");
  EXPECT_TRUE(attributes->Item("FormIDAdd") == Variant(true));
  EXPECT_TRUE(attributes->Item("PageIDFieldsValid") == Variant(false));
  EXPECT_FALSE(attributes->Exists("PageIDField"));
  EXPECT_FALSE(attributes->Exists("RespondentIDField"));
}

TEST(WriterSave, KeepsBackupOfReplacedFile) {
  ScopedHandler handler;
  TempFolder folder;
  const std::string target = folder.File("a.omr");
  testing::WriteFileBytes(target, "old");
  ASSERT_TRUE(basTemplate::SaveTemplate(target, *TinyTemplate("Q1"), false, nullptr, false));
  EXPECT_EQ(ReadFileBytes(target + ".old"), "old");
  EXPECT_EQ(ReadFileBytes(target), text::Utf8ToWindows1252(TinyTemplateText("Q1")));
}

}  // namespace
}  // namespace xun
