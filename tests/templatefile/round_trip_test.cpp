// Save then Read gives the tree that was saved, for templates that use every region kind and
// every setting the file holds; a second Save gives the same bytes.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>

#include "common/test_support.h"
#include "common/tree_description.h"
#include "xun/xun.h"

namespace xun {
namespace {

std::shared_ptr<clsXUNField> Region(const std::string& name, xunRecogType recognition,
                                    xunFieldType type, int16_t left, int16_t top) {
  auto field = clsXUNField::Create();
  field->FieldName(name);
  field->RecognitionType(recognition);
  field->FieldType(type);
  field->DataType(xunDataTypeText);
  field->Left(left);
  field->Top(top);
  field->Right(static_cast<int16_t>(left + 300));
  field->Bottom(static_cast<int16_t>(top + 120));
  field->Tag("tag of " + name);
  return field;
}

std::shared_ptr<clsXUNQuestion> Question(const std::string& name, const std::string& choices,
                                         const std::string& codes) {
  auto q = clsXUNQuestion::Create();
  q->QuestionName(name);
  q->QuestionText("Text of " + name);
  if (!choices.empty()) q->Choices()->AddDelimitedString(choices);
  if (!codes.empty()) q->Codes()->AddDelimitedString(codes);
  return q;
}

// An OMR region of `type` with `questions` questions of five bubbles each.
std::shared_ptr<clsXUNField> OmrRegion(const std::string& name, xunFieldType type, int16_t top,
                                       int questions, xunOrientationType orient) {
  auto field = Region(name, xunRecogTypeOMR, type, 100, top);
  field->Orient(orient);
  field->NumRows(static_cast<int16_t>(orient == xunOrientationTypeOMRRow ? questions : 5));
  field->NumCols(static_cast<int16_t>(orient == xunOrientationTypeOMRRow ? 5 : questions));
  field->StartRow(12);
  field->RowGap(25);
  field->StartCol(14);
  field->ColGap(40);
  field->Threshold(4);
  field->Pattern("#,##0");
  field->Extra()->AddDelimitedString("3\t-7\t11");
  for (int i = 1; i <= questions; ++i)
    field->Questions()->Add(
        Question(name + "_" + std::to_string(i), "A\tB\tC\tD\tE", "1\t2\t3\t4\t5"));
  return field;
}

// Every region kind, every question setting, identification and linked regions, attributes of
// every kind the file holds with the characters its syntax uses.
std::shared_ptr<clsXUNTemplate> KitchenSink(const std::string& script) {
  auto t = clsXUNTemplate::Create();
  t->PageWidth(8.5);
  t->PageHeight(11);
  t->Duplex(true);
  t->SelfScore(true);
  t->Tag("form tag");
  t->ReadType(xunTemplateReadTypeHybrid);
  t->Columns(3);
  t->ColumnWidth(1.25F);
  t->RowTopMargin(0.5F);
  t->RowBottomMargin(0.75F);
  t->Manufacturer("Maker " + script);
  t->Description("A form = [with] ; the syntax's own characters, \"quoted\" | piped");
  t->RDDName("results.rdd");
  t->Attributes()->Add("Text", Variant("Ünïcode | pipes = [brackets] ; " + script));
  t->Attributes()->Add("Whole", Variant(int32_t{-42}));
  t->Attributes()->Add("Real", Variant(2.75));
  t->Attributes()->Add("Flag", Variant(true));

  auto page1 = clsXUNPage::Create();
  page1->Tag("first page");
  page1->XDPI(200);
  page1->YDPI(300);
  page1->ImageWidth(1700);
  page1->ImageHeight(3300);
  page1->DropOutThreshold(128);
  page1->DropOutColor(xunTemplateDropOutColorRed);
  page1->WeightedRotate(0);  // a Boolean in the file: -1 or 0 come back as they went
  page1->FilledPixels(123456);
  page1->ColumnWidth(2.5F);
  page1->Attributes()->Add("Side", Variant("front " + script));
  page1->TimingMarks()->AddMark(10, 20, 30, 40);
  page1->TimingMarks()->AddMark(10, 220, 30, 40);
  t->Pages()->Add(page1);

  const xunFieldType omr_types[] = {
      xunFieldTypeOMRMult,   xunFieldTypeOMRGrid, xunFieldTypeOMRAdd, xunFieldTypeOMRBoolean,
      xunFieldTypeOMRBinary, xunFieldTypeOMRList, xunFieldTypeOMRRank};
  int16_t top = 100;
  for (const xunFieldType type : omr_types) {
    const auto orient = type % 2 ? xunOrientationTypeOMRRow : xunOrientationTypeOMRCol;
    page1->Fields()->Add(OmrRegion("Omr" + std::to_string(type) + script, type, top, 2, orient));
    top = static_cast<int16_t>(top + 150);
  }
  // Two neighbouring regions linked into one group, then an unlinked one.
  auto linked1 = OmrRegion("LinkedA", xunFieldTypeOMRMult, 1200, 2, xunOrientationTypeOMRRow);
  auto linked2 = OmrRegion("LinkedB", xunFieldTypeOMRMult, 1350, 3, xunOrientationTypeOMRRow);
  linked1->LinkGroup(1);
  linked1->LinkStart(true);
  linked2->LinkGroup(1);
  page1->Fields()->Add(linked1);
  page1->Fields()->Add(linked2);

  // Every question setting, on one question each so a setting read into the wrong property
  // shows.
  auto settings = OmrRegion("Settings", xunFieldTypeOMRMult, 1500, 0, xunOrientationTypeOMRRow);
  const std::function<void(clsXUNQuestion&)> setters[] = {
      [](clsXUNQuestion& q) { q.Required(true); },
      [](clsXUNQuestion& q) { q.Discriminate(true); },
      [](clsXUNQuestion& q) { q.Tally(true); },
      [](clsXUNQuestion& q) {
        q.Grade(true);
        q.Correct(2.5);
        q.Incorrect(-0.25);
        q.NoResponse(0.1);
      },
      [](clsXUNQuestion& q) { q.ExtraCredit(true); },
      [](clsXUNQuestion& q) {
        q.SubjectiveField(true);
        q.SubjectivePoints(7.5);
        q.Rubric(true);
      },
      [](clsXUNQuestion& q) { q.MultsAllowed(1); },
      [](clsXUNQuestion& q) { q.NAChoice(3); },
      [](clsXUNQuestion& q) { q.BlanksFlag(xunBlanksFlagIgnoreTrailing); },
      [](clsXUNQuestion& q) {
        q.BlanksReturn("_");
        q.DuplicateReturn("D");
        q.MultsReturn("*");
        q.ErrorReturn("?");
      },
      [](clsXUNQuestion& q) { q.Tag("question tag"); },
      [](clsXUNQuestion& q) { q.TestVersionID(true); },
  };
  int n = 0;
  for (const auto& set : setters) {
    auto q = Question("S" + std::to_string(++n), "Yes\tNo", "Y\tN");
    set(*q);
    settings->Questions()->Add(q);
  }
  settings->NumRows(static_cast<int16_t>(n));
  settings->NumCols(2);
  settings->Read(false);
  page1->Fields()->Add(settings);

  // Identification: form, page and respondent.
  auto ids = OmrRegion("Ids", xunFieldTypeOMRGrid, 2900, 0, xunOrientationTypeOMRCol);
  const xunIDType roles[] = {xunIDTypeForm, xunIDTypePage, xunIDTypeRespondent};
  for (const xunIDType role : roles) {
    auto q = Question("Id" + std::to_string(role), "0\t1\t2\t3\t4", "0\t1\t2\t3\t4");
    q->IDType(role);
    if (role != xunIDTypeRespondent) q->IDValue(std::to_string(role * 11));
    q->IDAdd(role == xunIDTypePage);
    q->RespondentID(role == xunIDTypeRespondent);
    ids->Questions()->Add(q);
  }
  ids->NumCols(3);
  page1->Fields()->Add(ids);

  auto page2 = clsXUNPage::Create();
  page2->Tag("second page " + script);
  page2->DropOutColor(xunTemplateDropOutColorAll);
  t->Pages()->Add(page2);

  const xunFieldType barcode_types[] = {xunFieldTypeBarcodeCode39, xunFieldTypeBarcodeCode128,
                                        xunFieldTypeBarcodePDF417, xunFieldTypeBarcodeQRCode};
  const char* delimiters[] = {"\r\n", "\t", " ", "|"};
  top = 100;
  for (size_t i = 0; i < std::size(barcode_types); ++i) {
    auto barcode = Region("Barcode" + std::to_string(barcode_types[i]), xunRecogTypeBarcode,
                          barcode_types[i], 200, top);
    barcode->Orient(i % 2 ? xunOrientationTypeBarcodeVertical
                          : xunOrientationTypeBarcodeHorizontal);
    barcode->BarcodeDelimiter(delimiters[i]);
    barcode->BarcodeDistance(static_cast<int16_t>(i + 2));
    barcode->BarcodeLength(static_cast<int16_t>(8 + i));
    barcode->Threshold(5);
    barcode->DefaultFill("fill" + std::to_string(i));
    barcode->AutoIncrement(i == 1);
    barcode->AutoIncrementSpansTemplates(i == 1);
    barcode->AutoDetect(i == 2);
    barcode->Extra()->AddDelimitedString("4\t5");
    barcode->Questions()->Add(Question("BarcodeQ" + std::to_string(i), "", ""));
    page2->Fields()->Add(barcode);
    top = static_cast<int16_t>(top + 150);
  }

  const xunFieldType ocr_types[] = {xunFieldTypeOCRSimple, xunFieldTypeOCRMODI,
                                    xunFieldTypeOCRTesseract};
  const xunDataType data_types[] = {xunDataTypeNumeric, xunDataTypeText, xunDataTypeAlphaNumeric};
  for (size_t i = 0; i < std::size(ocr_types); ++i) {
    auto ocr = Region("Ocr" + std::to_string(i) + script, xunRecogTypeOCR, ocr_types[i], 200, top);
    ocr->DataType(data_types[i]);
    ocr->NumCols(static_cast<int16_t>(10 + i));
    ocr->DefaultFill("-");
    auto q = Question("OcrQ" + std::to_string(i), "", "");
    q->QuestionText(script + " " + script);
    ocr->Questions()->Add(q);
    page2->Fields()->Add(ocr);
    top = static_cast<int16_t>(top + 150);
  }

  const xunFieldType image_types[] = {xunFieldTypeImageClip, xunFieldTypeImageClipData,
                                      xunFieldTypeImageDataEntry};
  for (size_t i = 0; i < std::size(image_types); ++i) {
    auto image = Region("Image" + std::to_string(i), xunRecogTypeImage, image_types[i], 200, top);
    image->ImageClipFile("clip" + std::to_string(i) + ".tif");
    image->ImageClipType(xunImageClipTypeTIF);
    image->ImageClipCompression(xunImageClipCompressionGroup4);
    image->ImageClipAddColumn(i != 1);
    image->Extra()->AddDelimitedString("9");
    if (image_types[i] == xunFieldTypeImageDataEntry) {
      image->ImageLinkValue("link value");
      image->ImageLinkQuestionKey("LINKKEY");
      image->ImageFillPrompt(true);
    }
    image->Questions()->Add(Question("ImageQ" + std::to_string(i), "", ""));
    page2->Fields()->Add(image);
    top = static_cast<int16_t>(top + 150);
  }

  // A region verified against a database, with every database setting.
  auto lookup = Region("Lookup", xunRecogTypeOCR, xunFieldTypeOCRSimple, 200, top);
  lookup->Questions()->Add(Question("LookupQ", "", ""));
  auto db = lookup->DB();
  db->Name("students.db");
  db->Catalog("school");
  db->Table("pupils");
  db->LookupField("id");
  db->ReplaceField("name");
  db->ReturnFields()->AddDelimitedString("name\tclass\tyear");
  db->DBType(2);
  db->DirectoryBased(true);
  db->DSNName("dsn " + script);
  db->User("reader");
  db->Password("s3cret " + script);
  db->Unicode(true);
  page2->Fields()->Add(lookup);
  return t;
}

// Compares two tree descriptions line by line, so a failure names only the properties that
// differ.
void ExpectSameTree(const std::string& read, const std::string& saved) {
  const auto read_lines = text::Split(read, "\n");
  const auto saved_lines = text::Split(saved, "\n");
  int reported = 0;
  for (size_t i = 0; i < std::max(read_lines.size(), saved_lines.size()) && reported < 20; ++i) {
    const std::string_view r = i < read_lines.size() ? read_lines[i] : "(none)";
    const std::string_view s = i < saved_lines.size() ? saved_lines[i] : "(none)";
    if (r != s) {
      ADD_FAILURE() << "read back: " << r << "\nsaved:     " << s;
      ++reported;
    }
  }
}

// Saves `t`, reads it back and compares every property; then saves the read tree and compares
// bytes. Returns the first file's bytes.
std::string ExpectRoundTrip(clsXUNTemplate& t) {
  testing::TempFolder folder;
  EXPECT_TRUE(t.Save(folder.File("a.omr"), false));
  auto read = clsXUNTemplate::Create();
  EXPECT_TRUE(read->Read(folder.File("a.omr"), true)) << basTemplate::LastReadDiagnostic().text;
  // The save itself adds the identification summary to the attributes, so the tree is compared
  // as it stands after the save.
  ExpectSameTree(testing::DescribeTree(*read), testing::DescribeTree(t));
  EXPECT_TRUE(read->Save(folder.File("b.omr"), false));
  const std::string first = testing::ReadFileBytes(folder.File("a.omr"));
  EXPECT_EQ(first, testing::ReadFileBytes(folder.File("b.omr")));
  read->Free();
  return first;
}

TEST(RoundTrip, EveryKindAndSettingSurvivesInBothEncodings) {
  {
    SCOPED_TRACE("Latin text: the file stays Windows-1252");
    auto t = KitchenSink("Größe");
    EXPECT_NE(ExpectRoundTrip(*t).substr(0, 2), "\xFF\xFE");
    t->Free();
  }
  {
    SCOPED_TRACE("non-Latin text: the file becomes UTF-16");
    auto t = KitchenSink("東京 Αθήνα القاهرة");
    EXPECT_EQ(ExpectRoundTrip(*t).substr(0, 2), "\xFF\xFE");
    t->Free();
  }
}

TEST(RoundTrip, LinkGroupsComeBackAsGroups) {
  auto t = KitchenSink("x");
  testing::TempFolder folder;
  ASSERT_TRUE(t->Save(folder.File("a.omr"), false));
  auto read = clsXUNTemplate::Create();
  ASSERT_TRUE(read->Read(folder.File("a.omr"), true));
  std::shared_ptr<clsXUNField> a, b;
  for (const auto& field : *read->Pages()->Item(1)->Fields()) {
    if (field->FieldName() == "LinkedA") a = field;
    if (field->FieldName() == "LinkedB") b = field;
  }
  ASSERT_TRUE(a && b);
  EXPECT_NE(a->LinkGroup(), 0);
  EXPECT_EQ(a->LinkGroup(), b->LinkGroup());
  EXPECT_TRUE(a->LinkStart());
  EXPECT_FALSE(b->LinkStart());
  EXPECT_EQ(b->NumItems(), 0);  // only the group's first region counts items
  read->Free();
  t->Free();
}

}  // namespace
}  // namespace xun
