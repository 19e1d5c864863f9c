#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/test_support.h"
#include "xun/model/template.h"

namespace xun {
namespace {

using Strings = std::vector<std::string>;

Strings Entries(const std::shared_ptr<clsXUNStringItems>& list) {
  return list ? Strings(list->begin(), list->end()) : Strings{};
}

std::shared_ptr<clsXUNQuestion> NewQuestion(const Strings& choices = {}, std::string key = {}) {
  auto question = clsXUNQuestion::Create();
  for (const std::string& choice : choices)
    question->Choices()->Add(choice);
  question->Key(std::move(key));
  return question;
}

// An OMR region at (100, 200) whose grid starts 10 right and 20 down, bubbles 30 by 40 apart.
std::shared_ptr<clsXUNField> Omr(xunFieldType type, xunOrientationType orient, int16_t rows,
                                 int16_t cols, int questions = 0) {
  auto field = clsXUNField::Create();
  field->RecognitionType(xunRecogTypeOMR);
  field->FieldType(type);
  field->Orient(orient);
  field->Left(100);
  field->Top(200);
  field->StartCol(10);
  field->StartRow(20);
  field->ColGap(30);
  field->RowGap(40);
  field->NumRows(rows);
  field->NumCols(cols);
  for (int i = 0; i < questions; ++i)
    testing::AddQuestion(*field, NewQuestion());
  return field;
}

TEST(Question, Defaults) {
  auto question = clsXUNQuestion::Create();
  EXPECT_EQ(question->MultsReturn(), "MULT");
  EXPECT_EQ(question->BlanksReturn(), "BLANK");
  EXPECT_EQ(question->DuplicateReturn(), "DUP");
  EXPECT_EQ(question->ErrorReturn(), "ERROR #");
  EXPECT_EQ(question->Correct(), 1.0);
  EXPECT_TRUE(question->Discriminate());
  ASSERT_TRUE(question->Choices() && question->Codes());
  EXPECT_NE(question->Choices(), question->Codes());
  EXPECT_EQ(question->Choices()->Count() + question->Codes()->Count(), 0);
}

// A host gets a region's questions from Update: the list's own adding and removing, and the
// timing-mark list's RemoveAll, are not in the public interface.
template <class List>
concept HostCanAdd = requires(List& list, std::shared_ptr<clsXUNQuestion> q) {
  list.Add(q);
};
template <class List>
concept HostCanRemove = requires(List& list) {
  list.Remove(1);
};
template <class List>
concept HostCanRemoveAll = requires(List& list) {
  list.RemoveAll();
};
static_assert(!HostCanAdd<clsXUNQuestions> && !HostCanRemove<clsXUNQuestions> &&
              !HostCanRemoveAll<clsXUNQuestions> && !HostCanRemoveAll<clsXUNTimingMarks>);
static_assert(HostCanRemoveAll<clsXUNStringItems>, "the check itself sees public members");

// Adding and removing are the library's own (the reader, copies).
TEST(Questions, KeyRulesAndRemoval) {
  using Internals = detail::QuestionsInternals;
  testing::ScopedHandler handler;
  auto list = clsXUNQuestions::Create();
  auto keyed = NewQuestion({}, "abc");
  auto same = NewQuestion({}, "ABC");
  auto unkeyed = NewQuestion();
  EXPECT_TRUE(Internals::Add(*list, keyed));
  EXPECT_TRUE(Internals::Add(*list, same));
  EXPECT_TRUE(Internals::Add(*list, unkeyed, 1));
  for (const auto& fresh : {same, unkeyed}) {
    EXPECT_EQ(fresh->Key().size(), 32u);
    EXPECT_EQ(fresh->Key().find_first_not_of("0123456789ABCDEF"), std::string::npos);
  }
  EXPECT_EQ(list->Item(1), unkeyed);
  keyed->Key("other");  // ignored in a list, which holds it under "abc"
  EXPECT_EQ(keyed->Key(), "abc");
  EXPECT_EQ(list->Item("ABC"), keyed);
  EXPECT_FALSE(Internals::Remove(*list, 9));
  EXPECT_TRUE(Internals::Remove(*list, "abc"));
  EXPECT_TRUE(handler.reports().empty());

  list->Free();
  EXPECT_EQ(list->Count(), 0);
  EXPECT_EQ(same->Questions(), nullptr);
  EXPECT_EQ(same->Choices(), nullptr);
}

TEST(Question, CopyOwnsItsListsAndIsInNoList) {
  auto original = NewQuestion({"a", "b"}, "K1");
  original->QuestionName("Q1");
  original->NAChoiceAll(3);
  original->AllCodes(clsXUNStringItems::Create());
  detail::QuestionsInternals::Add(*clsXUNQuestions::Create(), original);

  auto copy = original->Copy();
  ASSERT_TRUE(copy);
  EXPECT_EQ(copy->Key(), "");
  EXPECT_EQ(copy->Questions(), nullptr);
  EXPECT_EQ(copy->QuestionName(), "Q1");
  EXPECT_EQ(copy->NAChoiceAll(), 3);
  copy->Choices()->Add("c");
  copy->AllCodes()->Add("y");
  EXPECT_EQ(Entries(original->Choices()), (Strings{"a", "b"}));
  EXPECT_EQ(original->AllCodes()->Count(), 0);
  EXPECT_EQ(original->Copy(true)->Key(), "K1");
}

TEST(Question, SchemaTakesTypeFromRegionAndWidthFromCodes) {
  auto loose = NewQuestion();
  loose->QuestionName("Q");
  EXPECT_EQ(loose->Schema(), "Q,Text,1");

  auto field = clsXUNField::Create();
  field->DataType(xunDataTypeNumeric);
  auto question = NewQuestion();
  question->QuestionName("Age");
  question->Codes()->AddDelimitedString("1,10,\xC3\xA9\xC3\xA9", ",");  // two characters
  testing::AddQuestion(*field, question);
  EXPECT_EQ(question->Schema(), "Age,Numeric,2");
  field->DataType(xunDataTypeAlphaNumeric);
  question->Codes()->Add("100");
  EXPECT_EQ(question->Schema(), "Age,Numeric,2");  // kept until refreshed
  EXPECT_EQ(question->Schema(true), "Age,AlphaNumeric,3");
}

TEST(Question, AllChoicesGatherAcrossTheLinkGroupInPageOrder) {
  auto page = clsXUNPage::Create();
  std::vector<std::shared_ptr<clsXUNField>> fields;  // linked, unlinked, linked
  for (const Strings& second_choices : {Strings{"a", "b"}, Strings{"v"}, Strings{"c", "d", "e"}}) {
    fields.push_back(clsXUNField::Create());
    page->Fields()->Add(fields.back());
    testing::AddQuestion(*fields.back(), NewQuestion({"x"}));
    testing::AddQuestion(*fields.back(), NewQuestion(second_choices));
  }
  fields[0]->LinkGroup(1);
  fields[0]->LinkStart(true);
  fields[2]->LinkGroup(1);
  fields[2]->Questions()->Item(2)->Codes()->Add("3");
  fields[2]->Questions()->Item(2)->NAChoice(2);

  for (const auto& field : {fields[0], fields[2]}) {
    auto question = field->Questions()->Item(2);
    EXPECT_EQ(Entries(question->AllChoices()), (Strings{"a", "b", "c", "d", "e"}));
    EXPECT_EQ(Entries(question->AllCodes()), (Strings{"3"}));
    EXPECT_EQ(question->NAChoiceAll(), 4);  // "d": past the first region's two choices
  }
  EXPECT_EQ(fields[0]->Questions()->Item(1)->NAChoiceAll(), 0);
  auto own = fields[1]->Questions()->Item(2);
  EXPECT_EQ(Entries(own->AllChoices()), (Strings{"v"}));
  EXPECT_NE(own->AllChoices(), own->Choices());
  own->NAChoice(1);
  EXPECT_EQ(own->NAChoiceAll(), 1);
  auto set = clsXUNStringItems::Create();
  own->AllChoices(set);
  EXPECT_EQ(own->AllChoices(), set);
  page->Free();
}

TEST(Questions, UpdateFollowsTheRegion) {
  testing::ScopedHandler handler;
  auto field = Omr(xunFieldTypeOMRMult, xunOrientationTypeOMRRow, 3, 4);
  field->FieldName("Q");
  field->DataType(xunDataTypeNumeric);
  auto questions = field->Questions();
  ASSERT_TRUE(questions->Update());
  ASSERT_EQ(questions->Count(), 3);
  auto kept = questions->Item(1);
  for (int i = 1; i <= 3; ++i) {
    EXPECT_EQ(questions->Item(i)->QuestionName(), "Q_" + std::to_string(i));
    EXPECT_EQ(questions->Item(i)->Choices()->AsString(","), "0,1,2,3");
    EXPECT_EQ(questions->Item(i)->Codes()->AsString(","), "0,1,2,3");
  }
  // Removed from the end; entries cut or appended with the label of their position.
  field->NumRows(1);
  field->NumCols(2);
  ASSERT_TRUE(questions->Update());
  ASSERT_EQ(questions->Count(), 1);
  EXPECT_EQ(questions->Item(1), kept);
  EXPECT_EQ(kept->Choices()->AsString(","), "0,1");
  field->DataType(xunDataTypeText);
  field->NumCols(28);
  ASSERT_TRUE(questions->Update());
  EXPECT_EQ(kept->Codes()->AsString(""), "01CDEFGHIJKLMNOPQRSTUVWXYZ2728");

  // One question takes the region's name; database columns are no questions; the choices of
  // other kinds are left alone.
  auto barcode = clsXUNField::Create();
  barcode->RecognitionType(xunRecogTypeBarcode);
  barcode->FieldName("Code");
  barcode->DB()->Table("T");
  barcode->DB()->LookupField("L");
  barcode->DB()->Connect("C");
  barcode->DB()->ReturnFields()->AddDelimitedString("c1,c2", ",");
  ASSERT_TRUE(barcode->Questions()->Update());
  ASSERT_EQ(barcode->Questions()->Count(), 1);
  EXPECT_EQ(barcode->Questions()->Item(1)->QuestionName(), "Code");
  barcode->Questions()->Item(1)->Choices()->Add("x");
  ASSERT_TRUE(barcode->Questions()->Update());
  EXPECT_EQ(Entries(barcode->Questions()->Item(1)->Choices()), (Strings{"x"}));
  EXPECT_TRUE(handler.reports().empty());

  EXPECT_FALSE(clsXUNQuestions::Create()->Update());  // no region to follow
  EXPECT_EQ(handler.Locations(), (Strings{"clsXUNQuestions.Update"}));
}

TEST(Questions, ReturnIndexNumbersItemsAcrossTheTemplate) {
  auto tmpl = clsXUNTemplate::Create();
  auto page1 = clsXUNPage::Create();
  auto page2 = clsXUNPage::Create();
  tmpl->Pages()->Add(page1);
  tmpl->Pages()->Add(page2);
  auto a = Omr(xunFieldTypeOMRMult, xunOrientationTypeOMRRow, 2, 4, 2);
  auto hidden = clsXUNField::Create();
  testing::AddQuestion(*hidden, NewQuestion());
  hidden->Questions()->Item(1)->IDType(xunIDTypeForm);  // IDAdd False: no item
  auto c = Omr(xunFieldTypeOMRMult, xunOrientationTypeOMRRow, 3, 4, 3);
  auto d = Omr(xunFieldTypeOMRMult, xunOrientationTypeOMRRow, 3, 4, 3);
  c->LinkGroup(1);
  c->LinkStart(true);
  d->LinkGroup(1);
  for (const auto& [page, field] : {std::pair{page1, a}, {page1, hidden}, {page2, c}, {page2, d}})
    page->Fields()->Add(field);

  EXPECT_EQ(a->Questions()->Item(2)->ReturnIndex(true), 2);
  EXPECT_EQ(hidden->Questions()->Item(1)->ReturnIndex(true), 0);
  EXPECT_EQ(c->Questions()->Item(3)->ReturnIndex(true), 5);
  EXPECT_EQ(d->Questions()->Item(2)->ReturnIndex(true), 4);  // the group's first region's item
  EXPECT_EQ(d->Questions()->Item(2)->ReturnIndex(), 2);
  EXPECT_EQ(NewQuestion()->ReturnIndex(true), 0);
  tmpl->Free();
}

}  // namespace
}  // namespace xun
