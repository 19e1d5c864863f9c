#include <gtest/gtest.h>

#include <filesystem>

#include "common/test_support.h"
#include "xun/xun.h"

namespace xun {
namespace {

using testing::ScopedHandler;
using testing::ScopedMessageCapture;

std::shared_ptr<clsXUNField> AddRegion(const std::shared_ptr<clsXUNPage>& page, xunRecogType kind,
                                       xunFieldType type, int16_t rows, int16_t cols,
                                       int questions) {
  auto field = clsXUNField::Create();
  field->RecognitionType(kind);
  field->FieldType(type);
  field->Orient(xunOrientationTypeOMRRow);
  field->NumRows(rows);
  field->NumCols(cols);
  field->FieldName("R" + std::to_string(page->Fields()->Count() + 1));
  for (int q = 1; q <= questions; ++q) {
    auto question = clsXUNQuestion::Create();
    question->QuestionName(field->FieldName() + "Q" + std::to_string(q));
    testing::AddQuestion(*field, question);
  }
  page->Fields()->Add(field);
  return field;
}

std::shared_ptr<clsXUNPage> AddPage(const std::shared_ptr<clsXUNTemplate>& t) {
  auto page = clsXUNPage::Create();
  t->Pages()->Add(page);
  return page;
}

TEST(Template, CreationClearAndCopy) {
  auto t = clsXUNTemplate::Create();
  EXPECT_EQ(t->Version(), "8");
  EXPECT_EQ(t->PageWidth(), 0);
  EXPECT_TRUE(t->Editable());
  EXPECT_FALSE(t->Valid());
  EXPECT_EQ(t->Pages()->Template(), t);

  testing::TempFolder folder;
  const std::string image = folder.File("page.pcx");
  testing::WriteFileBytes(image, "image");
  AddPage(t)->ImageFile(image);
  t->Name("form");
  t->ColumnWidth(0.25f);
  t->Tag("kept");

  auto copy = t->Copy();
  ASSERT_TRUE(copy);
  EXPECT_EQ(copy->Name(), "form");
  EXPECT_FLOAT_EQ(copy->ColumnWidth(), 0.167f);  // deliberately not copied
  EXPECT_EQ(copy->NumPages(), 1);
  EXPECT_NE(copy->Pages()->Item(1), t->Pages()->Item(1));

  t->Clear();
  EXPECT_EQ(t->Version(), "");
  EXPECT_EQ(t->PageWidth(), 8.5);
  EXPECT_EQ(t->PageHeight(), 11);
  EXPECT_EQ(t->NumPages(), 0);
  EXPECT_EQ(t->Tag(), "kept");
  EXPECT_FALSE(std::filesystem::exists(image)) << "Clear deletes the page images";
  copy->Free();
}

TEST(Template, TwipsAndKeys) {
  ScopedHandler handler;
  auto t = clsXUNTemplate::Create();
  EXPECT_EQ(t->TwipsTo100DPI(1440), 100);
  EXPECT_EQ(t->TwipsTo100DPI(7), 0);
  EXPECT_EQ(t->TwipsTo100DPI(8), 1);
  EXPECT_EQ(t->TwipsTo100DPI(-8), -1);
  EXPECT_EQ(t->TwipsTo100DPI(36), 3);  // 2.5 rounds away from zero

  const std::string secret = "pässwörd 東京";
  const std::string cipher = t->Encrypt(secret, "key-one!", "key-two!", "keythree");
  EXPECT_FALSE(cipher.empty());
  EXPECT_EQ(t->Decrypt(cipher, "key-one!", "key-two!", "keythree"), secret);
  EXPECT_TRUE(handler.reports().empty());
  EXPECT_EQ(t->Encrypt(secret, "short!!", "key-two!", "keythree"), "");
  ASSERT_EQ(handler.Locations(), std::vector<std::string>{"clsXUNTemplate.Encrypt"});
  EXPECT_EQ(handler.reports()[0].number, Variant(380));
}

TEST(Template, SaveRefusals) {
  ScopedHandler handler;
  auto t = clsXUNTemplate::Create();
  t->Save("/nonexistent-folder-xun/form.omr", false);
  t->Read("/nonexistent-folder-xun/form.omr");  // without bForEdit: read only from now on
  EXPECT_FALSE(t->Editable());
  handler->reports.clear();
  EXPECT_FALSE(t->Save("/tmp/form.omr", true));
  ASSERT_EQ(handler.reports().size(), 1u);
  const testing::Report& r = handler.reports()[0];
  EXPECT_EQ(r.title, "Read Only");
  EXPECT_EQ(r.kind, 2);
  EXPECT_TRUE(r.number.IsMissing());
  EXPECT_FALSE(r.silent_during_call);
  EXPECT_EQ(r.description,
            "The specified template was opened for reading only and cannot be saved. Open the "
            "template for editing before attempting to save it.");

  auto editable = clsXUNTemplate::Create();
  handler->reports.clear();
  EXPECT_FALSE(editable->Save("/nonexistent-folder-xun/form.omr", false));
  ASSERT_EQ(handler.reports().size(), 1u) << "the writer is not called";
  EXPECT_EQ(handler.reports()[0].title, "Invalid Save Folder");
  EXPECT_EQ(handler.reports()[0].description,
            "Operation cannot be completed. The specified folder does not exist.");
  EXPECT_TRUE(handler.reports()[0].silent_during_call);
}

TEST(Template, CountsOverflowAndReport) {
  ScopedHandler handler;
  auto t = clsXUNTemplate::Create();
  EXPECT_EQ(t->NumDBVerify(), 0);
  // Two pages of 20,000 single-mark items each: every page counts, the template cannot.
  for (int p = 0; p < 2; ++p)
    AddRegion(AddPage(t), xunRecogTypeOMR, xunFieldTypeOMRBoolean, 100, 200, 0);
  EXPECT_EQ(t->Pages()->Item(1)->NumItems(), 20000);
  EXPECT_EQ(t->NumItems(), 0);
  EXPECT_EQ(t->NumQuestions(), 0);
  ASSERT_EQ(handler.Locations(), std::vector<std::string>{"clsXUNTemplate.NumItems"});
  EXPECT_EQ(handler.reports()[0].number, Variant(6));
}

// Page 1: a 3-question multiple-choice region whose first question is a hidden form ID, then a
// barcode. Page 2: an OCR region with two database return columns.
class ItemLookup : public ::testing::Test {
 protected:
  void SetUp() override {
    page1 = AddPage(t);
    mult = AddRegion(page1, xunRecogTypeOMR, xunFieldTypeOMRMult, 3, 4, 3);
    mult->Questions()->Item(1)->IDType(xunIDTypeForm);
    barcode = AddRegion(page1, xunRecogTypeBarcode, xunFieldTypeBarcodeCode39, 1, 1, 1);
    page2 = AddPage(t);
    ocr = AddRegion(page2, xunRecogTypeOCR, xunFieldTypeOCRSimple, 1, 1, 1);
    ocr->DB()->Table("people");
    ocr->DB()->LookupField("id");
    ocr->DB()->Connect("dsn");
    ocr->DB()->ReturnFields()->Add("first");
    ocr->DB()->ReturnFields()->Add("last");
  }
  std::shared_ptr<clsXUNTemplate> t = clsXUNTemplate::Create();
  std::shared_ptr<clsXUNPage> page1, page2;
  std::shared_ptr<clsXUNField> mult, barcode, ocr;
};

TEST_F(ItemLookup, NumbersAgreeWithTheCounts) {
  EXPECT_EQ(t->NumItems(), 6);
  EXPECT_EQ(t->GetItemIndex(1), 1);
  EXPECT_EQ(t->GetItemIndex(1, 0, false), 3);
  EXPECT_EQ(t->GetItemIndex(2), 4);
  EXPECT_EQ(t->GetItemIndex(2, 1, false), 6);
  EXPECT_EQ(t->GetItemIndex(1, 2), 3);
  EXPECT_EQ(t->GetItemIndex(3), 0);
  EXPECT_EQ(t->GetItemIndex(1, 9), 0);
  EXPECT_EQ(page2->ReturnIndex(true), 4);
  EXPECT_EQ(ocr->ReturnIndex(true), 4);
  EXPECT_EQ(mult->Questions()->Item(1)->ReturnIndex(true), 0) << "hidden: no item";
  EXPECT_EQ(mult->Questions()->Item(3)->ReturnIndex(true), 2);
}

TEST_F(ItemLookup, QuestionsAndNamesOfEveryItem) {
  EXPECT_EQ(t->GetQuestion(1), mult->Questions()->Item(2));
  EXPECT_EQ(t->GetQuestion(3), barcode->Questions()->Item(1));
  EXPECT_EQ(t->GetQuestion(5), nullptr) << "a database column has no question";
  EXPECT_EQ(t->GetField(5), ocr);
  EXPECT_EQ(t->GetField(7), nullptr);
  EXPECT_EQ(t->GetQuestion(0), nullptr);
  const auto names = t->GetActualNames();
  ASSERT_EQ(names.LBound(), 1);
  EXPECT_EQ(names.Elements(),
            (std::vector<std::string>{"R1Q2", "R1Q3", "R2Q1", "R1Q1", "first", "last"}));
  const auto questions = t->GetActualQuestions();
  ASSERT_EQ(questions.UBound(), 6);
  for (int16_t i = 1; i <= 6; ++i)
    EXPECT_EQ(questions[i], t->GetQuestion(i)) << i;
  EXPECT_FALSE(clsXUNTemplate::Create()->GetActualNames().IsAllocated());
}

TEST_F(ItemLookup, LinkedChainItemsBelongToItsFirstRegion) {
  auto second = AddRegion(page1, xunRecogTypeOMR, xunFieldTypeOMRMult, 3, 4, 3);
  second->Questions()->Item(1)->IDType(xunIDTypeForm);
  mult->LinkGroup(1);
  mult->LinkStart(true);
  second->LinkGroup(1);
  EXPECT_EQ(t->NumItems(), 6) << "the second region of the chain adds nothing";
  EXPECT_EQ(second->Questions()->Item(3)->ReturnIndex(true), 2);
  EXPECT_EQ(t->GetFirstAvailableLinkGroup(), 2);
  barcode->LinkGroup(3);
  EXPECT_EQ(t->GetFirstAvailableLinkGroup(), 2);
  ocr->LinkGroup(2);
  EXPECT_EQ(t->GetFirstAvailableLinkGroup(), 4);
}

TEST_F(ItemLookup, TestVersionIndex) {
  EXPECT_EQ(t->GetTestVersionIndex(), 0);
  barcode->Questions()->Item(1)->TestVersionID(true);
  EXPECT_EQ(t->GetTestVersionIndex(), 3);
}

TEST_F(ItemLookup, IdentificationRules) {
  std::string why;
  EXPECT_TRUE(t->IDFieldsExist(xunIDTypeForm));
  EXPECT_FALSE(t->IDFieldsExist(xunIDTypePage));
  EXPECT_FALSE(t->IDFieldsValid(xunIDTypeForm, false, &why));
  EXPECT_EQ(why, "The form ID region does not have a form ID value.");
  mult->Questions()->Item(1)->IDValue("F1");
  EXPECT_TRUE(t->IDFieldsValid(xunIDTypeForm));
  EXPECT_TRUE(t->IDFieldsValid(xunIDTypeAny)) << "only the roles present are checked";

  EXPECT_FALSE(t->IDFieldsValid(xunIDTypePage, false, &why));
  EXPECT_EQ(why, "Page 1 does not contain a page ID region.");
  for (const auto& region : {barcode, ocr}) {
    region->Questions()->Item(1)->IDType(xunIDTypePage);
    region->Questions()->Item(1)->IDValue("P");
  }
  EXPECT_FALSE(t->IDFieldsValid(xunIDTypePage, false, &why));
  EXPECT_EQ(why, "Pages 1 and 2 have the same page ID value.");
  ocr->Questions()->Item(1)->IDValue("P2");
  EXPECT_TRUE(t->IDFieldsValid(xunIDTypePage));
  ocr->Read(false);
  EXPECT_FALSE(t->IDFieldsValid(xunIDTypeAny, false, &why));
  EXPECT_EQ(why, "The page ID region on page 2 must be read.");

  EXPECT_FALSE(t->IDFieldsValid(xunIDTypeRespondent, false, &why));
  EXPECT_EQ(why, "The template does not contain a respondent tracker region.");

  ScopedHandler handler;
  ScopedMessageCapture messages;
  EXPECT_FALSE(t->IDFieldsValid(xunIDTypeRespondent, true));
  ASSERT_EQ(messages.messages().size(), 1u);
  EXPECT_EQ(messages.messages()[0].title, "Identification Error");
  EXPECT_EQ(handler.Locations(), std::vector<std::string>{"clsXUNTemplate.IDFieldsValid"});

  EXPECT_EQ(page1->IDField(xunIDTypePage), 2);
  EXPECT_EQ(page1->NumIDs(xunIDTypeAny), 2);
  EXPECT_EQ(mult->IDQuestion(xunIDTypeForm), 1);
  EXPECT_EQ(mult->NumIDs(xunIDTypeForm, true), 0);
}

// Every number the item list gives back leads to the same item: a question's ReturnIndex(True) is
// the item GetQuestion answers it for, each region starts where GetItemIndex says, and there is a
// name for every item NumItems counts.
void ExpectOneItemList(const clsXUNTemplate& t) {
  const int16_t items = t.NumItems();
  const auto names = t.GetActualNames();
  EXPECT_EQ(names.IsAllocated() ? names.UBound() : 0, items);
  EXPECT_EQ(t.GetField(static_cast<int16_t>(items + 1)), nullptr);
  for (int16_t i = 1; i <= items; ++i) {
    SCOPED_TRACE(i);
    const auto field = t.GetField(i);
    ASSERT_NE(field, nullptr);
    EXPECT_LE(field->ReturnIndex(true), i);
    EXPECT_GT(field->ReturnIndex(true) + field->NumItems(), i);
    if (const auto question = t.GetQuestion(i)) {
      EXPECT_EQ(question->ReturnIndex(true), i);
    }
  }
}

// An OCR region with two hidden identification questions counts -1 items: it adds none, and
// the regions after it are numbered as if it had none.
TEST_F(ItemLookup, ARegionWithFewerItemsThanHiddenQuestionsAddsNone) {
  ExpectOneItemList(*t);
  auto ids = AddRegion(page1, xunRecogTypeOCR, xunFieldTypeOCRSimple, 1, 1, 2);
  for (const auto& question : *ids->Questions())
    question->IDType(xunIDTypeRespondent);
  auto after = AddRegion(page1, xunRecogTypeOMR, xunFieldTypeOMRMult, 2, 4, 2);
  ASSERT_EQ(ids->NumItems(), -1);
  EXPECT_EQ(page1->NumItems(), 5);
  EXPECT_EQ(t->NumItems(), 8);
  EXPECT_EQ(page1->GetItemIndex(3, true), 3) << "no item: the count before it";
  EXPECT_EQ(page1->GetItemIndex(4, true), 4);
  EXPECT_EQ(after->ReturnIndex(true), 4);
  EXPECT_EQ(after->Questions()->Item(1)->ReturnIndex(true), 4);
  EXPECT_EQ(t->GetQuestion(4), after->Questions()->Item(1));
  EXPECT_EQ(page2->ReturnIndex(true), 6);
  EXPECT_EQ(
      t->GetActualNames().Elements(),
      (std::vector<std::string>{"R1Q2", "R1Q3", "R2Q1", "R4Q1", "R4Q2", "R1Q1", "first", "last"}));
  ExpectOneItemList(*t);
}

// Each rule is checked over the whole template before the next, and the rules count regions.
TEST_F(ItemLookup, IdentificationRulesInTheirOrderCountRegions) {
  std::string why;
  // Two respondent trackers in one region are one region.
  for (int q = 1; q <= 2; ++q)
    mult->Questions()->Item(q)->IDType(xunIDTypeRespondent);
  EXPECT_TRUE(t->IDFieldsValid(xunIDTypeRespondent, false, &why)) << why;
  // Page 1's tracker is not read and page 2 holds two: "at most one per page" comes first.
  mult->Read(false);
  for (const auto& region : {barcode, ocr})
    region->Questions()->Item(1)->IDType(xunIDTypeRespondent);
  AddRegion(page2, xunRecogTypeOCR, xunFieldTypeOCRSimple, 1, 1, 1)
      ->Questions()
      ->Item(1)
      ->IDType(xunIDTypeRespondent);
  EXPECT_FALSE(t->IDFieldsValid(xunIDTypeRespondent, false, &why));
  EXPECT_EQ(why, "Page 1 contains more than one respondent tracker region.");
  barcode->Questions()->Item(1)->IDType(xunIDTypeNone);
  EXPECT_FALSE(t->IDFieldsValid(xunIDTypeRespondent, false, &why));
  EXPECT_EQ(why, "Page 2 contains more than one respondent tracker region.");
  page2->Fields()->Item(2)->Questions()->Item(1)->IDType(xunIDTypeNone);
  EXPECT_FALSE(t->IDFieldsValid(xunIDTypeRespondent, false, &why));
  EXPECT_EQ(why, "The respondent tracker region on page 1 must be read.");

  // Page IDs: an unread region on page 1 waits until every page has its one region.
  for (const auto& question : *mult->Questions())
    question->IDType(xunIDTypePage);
  EXPECT_FALSE(t->IDFieldsValid(xunIDTypePage, false, &why));
  EXPECT_EQ(why, "Page 2 does not contain a page ID region.");
  ocr->Questions()->Item(1)->IDType(xunIDTypePage);
  EXPECT_FALSE(t->IDFieldsValid(xunIDTypePage, false, &why));
  EXPECT_EQ(why, "The page ID region on page 1 must be read.");

  // Two form ID questions of one region are one form ID region.
  for (const auto& question : *mult->Questions()) {
    question->IDType(xunIDTypeForm);
    question->IDValue("F");
  }
  mult->Read(true);
  EXPECT_TRUE(t->IDFieldsValid(xunIDTypeForm, false, &why)) << why;
  ocr->Questions()->Item(1)->IDType(xunIDTypeForm);
  EXPECT_FALSE(t->IDFieldsValid(xunIDTypeForm, false, &why));
  EXPECT_EQ(why, "The template contains more than one form ID region.");
}

TEST(Template, SetErrorIsPerThreadAndDroppingATreeLeaksNothing) {
  auto t = clsXUNTemplate::Create();
  auto handler = std::make_shared<testing::RecordingHandler>();
  EXPECT_TRUE(t->SetError(handler));
  EXPECT_EQ(basError::Handler(), handler);
  EXPECT_FALSE(t->SetError(nullptr));
  EXPECT_EQ(basError::Handler(), nullptr);
  // A whole tree dropped without Free: the sanitizer build checks nothing leaks.
  auto page = AddPage(t);
  auto field = AddRegion(page, xunRecogTypeOMR, xunFieldTypeOMRMult, 2, 2, 2);
  auto bubbles = clsXUNBubbles::Create();
  bubbles->Add(clsXUNBubble::Create());
}

}  // namespace
}  // namespace xun
