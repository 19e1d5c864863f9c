#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "common/test_support.h"
#include "xun/model/fields.h"
#include "xun/model/page.h"
#include "xun/model/pages.h"
#include "xun/model/template.h"

namespace xun {
namespace {

using FieldPtr = std::shared_ptr<clsXUNField>;
using Strings = std::vector<std::string>;

class Field : public ::testing::Test {
 protected:
  Strings Reported() const { return handler_.LocationsAndNumbers(); }
  static FieldPtr Region(int32_t recog, int32_t type, int16_t rows = 0, int16_t cols = 0,
                         int32_t orient = 0) {
    FieldPtr field = clsXUNField::Create();
    field->RecognitionType(static_cast<xunRecogType>(recog));
    field->FieldType(static_cast<xunFieldType>(type));
    field->NumRows(rows);
    field->NumCols(cols);
    field->Orient(static_cast<xunOrientationType>(orient));
    return field;
  }
  // One question per role; a negative role is that role hidden (IDAdd False).
  static void AddQuestions(const FieldPtr& field, std::vector<int32_t> roles) {
    for (int32_t role : roles) {
      auto question = clsXUNQuestion::Create();
      question->IDType(static_cast<xunIDType>(role < 0 ? -role : role));
      question->IDAdd(role > 0);
      testing::AddQuestion(*field, question);
    }
  }
  static void VerifyDB(const FieldPtr& field, std::vector<std::string> columns) {
    field->DB()->Table("T");
    field->DB()->LookupField("L");
    field->DB()->DSNName("D");
    for (const std::string& column : columns)
      field->DB()->ReturnFields()->Add(column);
  }

  testing::ScopedHandler handler_;
};

TEST_F(Field, OnlyOcrTouchesTheThreshold) {
  FieldPtr field = clsXUNField::Create();
  field->RecognitionType(xunRecogTypeOCR);
  EXPECT_EQ(field->Threshold(), 70);
  field->Threshold(5);
  field->RecognitionType(xunRecogTypeOMR);
  EXPECT_EQ(field->Threshold(), 5);
}

TEST_F(Field, MarksAndItemsByKind) {
  enum { OMR = 1, Image, Barcode, OCR };
  auto with = [](FieldPtr field, const char* delimiter, bool add_column) {
    field->BarcodeDelimiter(delimiter);
    field->ImageClipAddColumn(add_column);
    return field;
  };
  const struct {
    FieldPtr field;
    int16_t items;
    int32_t marks;
  } cases[] = {
      {Region(OMR, xunFieldTypeOMRBoolean, 3, 4), 12, 12},
      {Region(OMR, xunFieldTypeOMRMult, 5, 4, 1), 5, 20},
      {Region(OMR, xunFieldTypeOMRRank, 5, 4, 2), 4, 20},
      {Region(OMR, xunFieldTypeOMRMult, 5, 4, 0), 0, 20},
      {Region(OMR, xunFieldTypeOMRGrid, 5, 4), 1, 20},
      {with(Region(Image, xunFieldTypeImageClipData, 5, 4), "", true), 2, 0},
      {with(Region(Image, xunFieldTypeImageClip, 5, 4), "", true), 1, 0},
      {with(Region(Barcode, xunFieldTypeBarcodeCode128, 1, 3), ",", false), 3, 0},
      {with(Region(Barcode, xunFieldTypeBarcodeEAN13, 1, 3), ",", false), 1, 0},
      {Region(Barcode, xunFieldTypeBarcodeCode128, 1, 3), 1, 0},
      {Region(OCR, xunFieldTypeOCRSimple, 5, 4), 1, 0},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.field->NumItems(), c.items) << &c - cases;
    EXPECT_EQ(c.field->NumMarks(), c.marks) << &c - cases;
  }
  // 16-bit arithmetic: a boolean grid too large is reported by NumMarks, a sum by the count.
  EXPECT_EQ(Region(OMR, xunFieldTypeOMRBoolean, 300, 200)->NumItems(), 0);
  FieldPtr wide = with(Region(Barcode, xunFieldTypeBarcodeAuto, 1, 32767), ",", false);
  VerifyDB(wide, {"x"});
  EXPECT_EQ(wide->NumItems(), 0);
  EXPECT_EQ(Reported(), (Strings{"clsXUNField.NumMarks #6", "clsXUNField.CalculateNumItems #6"}));
}

TEST_F(Field, HiddenQuestionsAndDatabaseColumnsShapeTheItems) {
  FieldPtr field = Region(xunRecogTypeOMR, xunFieldTypeOMRMult, 4, 3, 1);
  AddQuestions(field, {0, -xunIDTypeForm, 0, xunIDTypePage, 0});
  EXPECT_EQ(field->NumItems(), 3);
  EXPECT_EQ(field->CalculateNumItems(true), 4);
  field->Questions()->Item(2)->IDAdd(true);
  EXPECT_EQ(field->NumItems(), 4);
  field->Questions()->Item(2)->IDAdd(false);
  EXPECT_EQ(field->IDQuestion(xunIDTypeAny), 2);
  EXPECT_EQ(field->IDQuestion(xunIDTypePage), 4);
  EXPECT_EQ(field->NumIDs(xunIDTypeAny, true), 1);

  VerifyDB(field, {"a", "b"});
  EXPECT_EQ(field->NumItems(), 5);
  // Visible questions first; a fourth visible one would exceed the region's own three items.
  const int16_t expected[] = {0, 1, 0, 2, 3, 0, 0};
  for (int16_t q = 0; q <= 6; ++q)
    EXPECT_EQ(field->GetItemIndex(q), expected[q]) << "question " << q;

  field->DB()->DSNName("");
  EXPECT_FALSE(field->DBVerify());
  field->DB()->Connect("C");
  EXPECT_TRUE(field->DBVerify());
  field->DB()->LookupField("");
  EXPECT_FALSE(field->DBVerify());
}

TEST_F(Field, LinkedRegionsCarryTheirItemsAtTheGroupsFirst) {
  auto form = clsXUNTemplate::Create();
  form->Pages()->Add(clsXUNPage::Create());
  form->Pages()->Add(clsXUNPage::Create());
  auto fields = form->Pages()->Item(2)->Fields();
  std::vector<FieldPtr> regions;
  for (int16_t group : {0, 1, 1, 2, 2}) {
    regions.push_back(Region(xunRecogTypeOMR, xunFieldTypeOMRMult, 3, 2, 1));
    regions.back()->LinkGroup(group);
    AddQuestions(regions.back(), {regions.size() == 3 ? -xunIDTypeForm : 0, 0, 0});
    fields->Add(regions.back());
  }
  form->Pages()->Item(1)->Fields()->Add(Region(xunRecogTypeOCR, 0));
  regions[2]->LinkStart(true);  // starts group 1 after its other region in page order
  EXPECT_EQ(regions[1]->NumItems(), 0);
  EXPECT_EQ(regions[1]->CalculateNumItems(true), 3);
  EXPECT_EQ(regions[2]->NumItems(), 2);
  // Question q of a follower is question q of the start, whose first question is hidden.
  EXPECT_EQ(regions[1]->GetItemIndex(1), 0);
  EXPECT_EQ(regions[1]->GetItemIndex(2), 1);
  EXPECT_EQ(regions[1]->ReturnIndex(), 2);
  EXPECT_EQ(regions[1]->ReturnIndex(true), 1 + 3 + 1);
  // Group 2 has no start: its first region in page order carries it, with no items.
  EXPECT_EQ(regions[4]->GetItemIndex(1), 0);
  form->Free();
}

TEST_F(Field, ListKeysAndRemoval) {
  auto list = clsXUNFields::Create();
  FieldPtr first = clsXUNField::Create(), second = clsXUNField::Create();
  first->Key("A");
  second->Key("a");
  EXPECT_TRUE(list->Add(first));
  EXPECT_TRUE(list->Add(second, 1));
  EXPECT_EQ(second->Key().size(), 32u);
  first->Key("B");  // ignored while in the list
  EXPECT_EQ(list->Item("A"), first);
  EXPECT_FALSE(list->Add(nullptr));

  EXPECT_TRUE(list->Remove("missing").IsEmpty());
  auto questions = first->Questions();
  EXPECT_TRUE(list->Remove("A").ToBoolean());
  EXPECT_EQ(first->Fields(), nullptr);
  EXPECT_EQ(questions->Field(), nullptr);
  EXPECT_TRUE(list->RemoveAll());
  EXPECT_EQ(second->Questions(), nullptr);
  EXPECT_EQ(Reported(), Strings{"clsXUNFields.Add #91"});
}

TEST_F(Field, CopyIsDeepAndKeepsLinkAndKeyOnlyWhenAsked) {
  FieldPtr field = Region(xunRecogTypeOMR, xunFieldTypeOMRMult, 3, 2, 1);
  field->Key("K");
  field->LinkGroup(2);
  field->LinkStart(true);
  field->Attributes()->Add("a", Variant(int16_t{1}));
  field->Extra()->AddDelimitedString("4,5", ",");
  VerifyDB(field, {"col"});
  AddQuestions(field, {0, 0});
  auto list = clsXUNFields::Create();
  list->Add(field);
  auto link = [](const FieldPtr& f) {
    return std::make_tuple(f->Key(), f->LinkGroup(), f->LinkStart(), f->Fields());
  };

  FieldPtr copy = field->Copy();
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(link(copy), std::make_tuple("", 0, false, nullptr));
  EXPECT_EQ(copy->NumItems(), 4);
  EXPECT_EQ(copy->Questions()->Field(), copy);
  for (int32_t q = 1; q <= 2; ++q) {
    EXPECT_EQ(copy->Questions()->Item(q)->Key().size(), 32u);
    EXPECT_NE(copy->Questions()->Item(q)->Key(), field->Questions()->Item(q)->Key());
  }
  EXPECT_NE(copy->Attributes(), field->Attributes());
  EXPECT_EQ(copy->Attributes()->Keys(), Strings{"a"});
  EXPECT_EQ(copy->Extra()->AsString(","), "4,5");
  copy->Extra()->Add(6);
  copy->DB()->ReturnFields()->Add("more");
  EXPECT_EQ(field->Extra()->Count() + field->DB()->ReturnFields()->Count(), 3);

  FieldPtr kept = field->Copy(true, true, false);
  EXPECT_EQ(link(kept), std::make_tuple("K", 2, true, nullptr));
  EXPECT_EQ(kept->Attributes()->Count(), 0);
  EXPECT_TRUE(Reported().empty());
}

}  // namespace
}  // namespace xun
