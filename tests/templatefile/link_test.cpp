// Linking OMR regions: the refusals, group numbers, page order, codes, UnLink and navigation,
// and link groups through a save and a read.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "common/test_support.h"
#include "xun/xun.h"

namespace xun {
namespace {

std::shared_ptr<clsXUNField> AddOMR(const std::shared_ptr<clsXUNPage>& page,
                                    const std::string& name, int16_t rows, int16_t cols,
                                    xunFieldType type = xunFieldTypeOMRMult,
                                    xunDataType data = xunDataTypeText) {
  auto field = clsXUNField::Create();
  field->FieldName(name);
  field->RecognitionType(xunRecogTypeOMR);
  field->FieldType(type);
  field->DataType(data);
  field->Orient(xunOrientationTypeOMRRow);
  field->NumRows(rows);
  field->NumCols(cols);
  field->Right(400);
  field->Bottom(300);
  page->Fields()->Add(field);
  field->Questions()->Update();
  return field;
}

// "name:group" for each region of the page, with "*" on the first of a group.
std::vector<std::string> Names(const clsXUNPage& page) {
  std::vector<std::string> names;
  for (const auto& field : *page.Fields())
    names.push_back(field->FieldName() + ":" + std::to_string(field->LinkGroup()) +
                    (field->LinkStart() ? "*" : ""));
  return names;
}

// Every code of every question of the page.
std::string AllCodes(const clsXUNPage& page) {
  std::string all;
  for (const auto& field : *page.Fields())
    for (const auto& question : *field->Questions())
      all += question->Codes()->AsString(",") + ";";
  return all;
}

struct Sheet {
  Sheet() {
    form->PageWidth(8.5);
    form->PageHeight(11);
    form->Pages()->Add(page);
  }
  ~Sheet() { form->Free(); }
  std::vector<std::string> Names() const { return xun::Names(*page); }
  std::string Codes(int16_t region, int16_t question = 1) const {
    return page->Fields()->Item(region)->Questions()->Item(question)->Codes()->AsString(",");
  }
  std::shared_ptr<clsXUNTemplate> form = clsXUNTemplate::Create();
  std::shared_ptr<clsXUNPage> page = clsXUNPage::Create();
};

std::string Refusal(const std::string& reason) {
  return "An error occurred attempting to link the selected regions. " + reason +
         " Link operation aborted.";
}

// Each rule, checked in order against the first selected region: the exact text and title, one
// report at basTemplate.LinkOMR, and nothing changed.
TEST(Link, RefusalsNameTheFirstBrokenRuleAndChangeNothing) {
  // Each case spoils two alike multiple-response regions A and B; later rules broken as well
  // must not be the ones reported.
  const std::vector<std::pair<std::function<void(clsXUNField&, clsXUNField&)>, std::string>> cases =
      {
          {[](auto&, auto& b) {
             b.RecognitionType(xunRecogTypeBarcode);
             b.DataType(xunDataTypeNumeric);
           },
           "Only OMR regions can be linked."},
          {[](auto&, auto& b) {
             b.DataType(xunDataTypeNumeric);
             b.FieldType(xunFieldTypeOMRGrid);
           },
           "Regions must have the same data type to be linked."},
          {[](auto&, auto& b) { b.FieldType(xunFieldTypeOMRGrid); },
           "Disparate OMR region types cannot be linked."},
          {[](auto&, auto& b) { b.Read(false); },
           "Regions must all be read or all not read in order to be linked."},
          {[](auto&, auto& b) { testing::AddQuestion(b, clsXUNQuestion::Create()); },
           "Multiple Response OMR regions must contain the same number of questions in order to "
           "be linked."},
          {[](auto& a, auto& b) {
             a.FieldType(xunFieldTypeOMRBoolean);
             b.FieldType(xunFieldTypeOMRBoolean);
           },
           "Boolean regions cannot be linked."},
      };
  for (const auto& [spoil, reason] : cases) {
    SCOPED_TRACE(reason);
    Sheet sheet;
    auto other = AddOMR(sheet.page, "Linked", 3, 4);
    auto a = AddOMR(sheet.page, "A", 3, 4), b = AddOMR(sheet.page, "B", 3, 4);
    spoil(*a, *b);
    // A belongs to a group already, which must stay as it was.
    a->LinkGroup(7);
    a->LinkStart(true);
    other->LinkGroup(7);
    const auto names = sheet.Names();
    const std::string codes = AllCodes(*sheet.page);
    testing::ScopedHandler handler;
    testing::ScopedMessageCapture messages;
    EXPECT_FALSE(sheet.page->Link({a, b}));
    ASSERT_EQ(messages.messages().size(), 1u);
    EXPECT_EQ(messages.messages()[0].title, "Link Error");
    EXPECT_EQ(messages.messages()[0].text, Refusal(reason));
    EXPECT_EQ(handler.Locations(), std::vector<std::string>{"basTemplate.LinkOMR"});
    EXPECT_EQ(handler.reports()[0].title, "Link Error");
    EXPECT_EQ(sheet.Names(), names);
    EXPECT_EQ(AllCodes(*sheet.page), codes);
  }
}

// A quiet refusal is reported but not shown; an empty selection or one that is not of this page
// is the caller's mistake, a run-time error.
TEST(Link, QuietRefusalsAndCallerMistakes) {
  Sheet sheet;
  auto a = AddOMR(sheet.page, "A", 2, 2, xunFieldTypeOMRBoolean);
  auto b = AddOMR(sheet.page, "B", 2, 2, xunFieldTypeOMRBoolean);
  auto stranger = AddOMR(clsXUNPage::Create(), "C", 3, 4);
  testing::ScopedHandler handler;
  testing::ScopedMessageCapture messages;
  EXPECT_FALSE(sheet.page->Link({a, b}, false));
  EXPECT_FALSE(sheet.page->Link({a, stranger}));
  EXPECT_FALSE(sheet.page->Link({}));
  EXPECT_FALSE(sheet.page->Link({a, nullptr}));
  EXPECT_TRUE(messages.messages().empty());
  ASSERT_EQ(handler.reports().size(), 4u);
  EXPECT_EQ(handler.reports()[0].kind, basError::kKindValidation);
  EXPECT_TRUE(handler.reports()[0].silent_during_call);
  for (size_t i = 1; i < 4; ++i)
    EXPECT_EQ(handler.reports()[i].number.ToLong(), i < 3 ? 5 : 91);
  EXPECT_EQ(sheet.Names(), (std::vector<std::string>{"A:0", "B:0"}));
}

// The group becomes one run of neighbours at its first region's place, in page order, whatever
// the order of selection; grids pass with different question counts.
TEST(Link, GroupIsOneRunInPageOrder) {
  Sheet sheet;
  auto a = AddOMR(sheet.page, "A", 3, 4, xunFieldTypeOMRGrid);
  auto b = AddOMR(sheet.page, "B", 3, 4, xunFieldTypeOMRGrid);
  auto c = AddOMR(sheet.page, "C", 3, 4, xunFieldTypeOMRGrid);
  auto d = AddOMR(sheet.page, "D", 5, 4, xunFieldTypeOMRGrid);
  testing::AddQuestion(*b, clsXUNQuestion::Create());
  ASSERT_TRUE(sheet.page->Link({d, b}));
  EXPECT_EQ(sheet.Names(), (std::vector<std::string>{"A:0", "B:1*", "D:1", "C:0"}));
  EXPECT_EQ(sheet.page->NumQuestions(), 4);  // the group's questions count once, at B
  EXPECT_EQ(d->NumItems(), 0);

  const auto& page = *sheet.page;
  EXPECT_EQ(page.LinkFirst(1), b);
  EXPECT_EQ(page.LinkLast(1), d);
  EXPECT_EQ(page.LinkNext(b), d);
  EXPECT_EQ(page.LinkNext(d), nullptr);
  EXPECT_EQ(page.LinkPrevious(d), b);
  EXPECT_EQ(page.LinkPrevious(b), nullptr);
  EXPECT_EQ(page.LinkNext(a), nullptr);
  EXPECT_EQ(page.LinkFirst(2), nullptr);
  (void)c;
}

// Group numbers come from NextLink: the lowest number no region of the template uses, across
// pages. Linking regions of other groups takes them out of those groups first.
TEST(Link, GroupNumbersAreTheLowestFreeInTheTemplate) {
  Sheet sheet;
  auto second = clsXUNPage::Create();
  sheet.form->Pages()->Add(second);
  AddOMR(second, "Elsewhere", 3, 4)->LinkGroup(1);
  auto a = AddOMR(sheet.page, "A", 3, 4), b = AddOMR(sheet.page, "B", 3, 4);
  auto c = AddOMR(sheet.page, "C", 3, 4), d = AddOMR(sheet.page, "D", 3, 4);
  EXPECT_EQ(basTemplate::NextLink(*sheet.form), 2);
  ASSERT_TRUE(sheet.page->Link({a, b}));
  ASSERT_TRUE(sheet.page->Link({c, d}));
  EXPECT_EQ(sheet.form->GetFirstAvailableLinkGroup(), 4);
  EXPECT_EQ(basTemplate::LinkCount(*sheet.page, 3), 2);
  ASSERT_TRUE(sheet.page->Link({b, c}));  // both old groups fall apart; 2 is free again
  EXPECT_EQ(sheet.Names(), (std::vector<std::string>{"A:0", "B:2*", "C:2", "D:0"}));
  EXPECT_EQ(sheet.Codes(2), "A,B,C,D");
  EXPECT_EQ(sheet.Codes(3), "E,F,G,H");
  EXPECT_EQ(sheet.Codes(4), "A,B,C,D");  // alone again, D counts from the start
  EXPECT_EQ(basTemplate::LinkCount(*sheet.page, 3), 0);
}

// UnLink keeps what is left a proper group: a first region, one run of neighbours, codes that
// still run on; a group of one is no group.
TEST(Link, UnLinkTidiesTheGroupLeftBehind) {
  Sheet sheet;
  auto a = AddOMR(sheet.page, "A", 2, 2), b = AddOMR(sheet.page, "B", 2, 2);
  auto c = AddOMR(sheet.page, "C", 2, 2), d = AddOMR(sheet.page, "D", 2, 2);
  ASSERT_TRUE(sheet.page->Link({a, b, c, d}));
  EXPECT_EQ(sheet.Codes(4), "G,H");

  ASSERT_TRUE(sheet.page->UnLink(b));  // from the middle: moves behind the group
  EXPECT_EQ(sheet.Names(), (std::vector<std::string>{"A:1*", "C:1", "D:1", "B:0"}));
  EXPECT_EQ(sheet.Codes(3), "E,F");
  EXPECT_EQ(sheet.Codes(4), "A,B");  // alone, it counts from the group's first code

  ASSERT_TRUE(sheet.page->UnLink(a));  // the first: the next one starts the group
  EXPECT_EQ(sheet.Names(), (std::vector<std::string>{"A:0", "C:1*", "D:1", "B:0"}));
  EXPECT_EQ(sheet.Codes(2), "A,B");  // C now begins the numbering

  ASSERT_TRUE(sheet.page->UnLink(d));  // one left: the group is dissolved
  EXPECT_EQ(sheet.Names(), (std::vector<std::string>{"A:0", "C:0", "D:0", "B:0"}));
  EXPECT_FALSE(sheet.page->UnLink(d));  // not linked: nothing to do, nothing reported

  auto elsewhere = clsXUNPage::Create();
  testing::ScopedHandler handler;
  EXPECT_FALSE(elsewhere->UnLink(a));
  EXPECT_EQ(handler.LocationsAndNumbers(), std::vector<std::string>{"clsXUNPage.UnLink #5"});
}

// Codes run on from the first code of the group's first region: numbers (keeping zero padding),
// letters (numbers after Z), or the default labels when the first code is neither.
TEST(Link, ResetCodesContinuesAcrossTheGroup) {
  struct Case {
    xunDataType data;
    std::string first_codes;  // of the first region's first question
    std::string expected;     // the second region's first question
  };
  const std::vector<Case> cases = {
      {xunDataTypeNumeric, "0,1,2", "3,4,5"},
      {xunDataTypeNumeric, "1,2,3", "4,5,6"},
      {xunDataTypeNumeric, "08,09,10", "11,12,13"},
      {xunDataTypeText, "a,b,c", "d,e,f"},
      {xunDataTypeText, "X,Y,Z", "27,28,29"},
      {xunDataTypeText, "Yes,No,Maybe", "D,E,F"},
      {xunDataTypeNumeric, "Yes,No,Maybe", "3,4,5"},
      {xunDataTypeNumeric, "1,2,3,4", "4,5,6"},  // one code per choice: the fourth goes
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.first_codes);
    Sheet sheet;
    auto a = AddOMR(sheet.page, "A", 2, 3, xunFieldTypeOMRMult, c.data);
    auto b = AddOMR(sheet.page, "B", 2, 3, xunFieldTypeOMRMult, c.data);
    a->Questions()->Item(1)->Codes()->RemoveAll();
    a->Questions()->Item(1)->Codes()->AddDelimitedString(c.first_codes, ",");
    ASSERT_TRUE(sheet.page->Link({a, b}));
    EXPECT_EQ(sheet.Codes(2), c.expected);
    // The group answers as one region: its codes are one list without repeats.
    EXPECT_EQ(a->Questions()->Item(1)->AllCodes()->AsString(","),
              sheet.Codes(1) + "," + c.expected);
  }
}

// One region is linked like any selection: the rules hold against itself, and it forms a group
// of its own, leaving the group it was in (which, left with one region, dissolves).
TEST(Link, OneRegionFormsAGroupOfItsOwn) {
  Sheet sheet;
  auto a = AddOMR(sheet.page, "A", 2, 3), b = AddOMR(sheet.page, "B", 2, 3);
  auto c = AddOMR(sheet.page, "C", 2, 3);
  for (const auto& question : *c->Questions()) {
    question->Codes()->RemoveAll();
    for (const char* code : {"Y", "N", "N"})
      question->Codes()->Add(code);
  }
  ASSERT_TRUE(sheet.page->Link({a, b}));
  testing::ScopedHandler handler;
  testing::ScopedMessageCapture messages;
  EXPECT_TRUE(sheet.page->Link({c, c}));  // repeats count once
  EXPECT_EQ(sheet.Names(), (std::vector<std::string>{"A:1*", "B:1", "C:2*"}));
  EXPECT_EQ(sheet.Codes(3), "Y,Z,27") << "numbered as the first region of a group";
  EXPECT_EQ(basTemplate::LinkCount(*sheet.page, 2), 1);
  EXPECT_TRUE(sheet.page->Link({b}));
  EXPECT_EQ(sheet.Names(), (std::vector<std::string>{"A:0", "B:1*", "C:2*"}));
  EXPECT_TRUE(handler.reports().empty());
  EXPECT_TRUE(messages.messages().empty());
  EXPECT_EQ(sheet.page->NumQuestions(), 6) << "a group of one keeps its region's items";

  // A group of one survives a save and a read.
  testing::TempFolder folder;
  ASSERT_TRUE(sheet.form->Save(folder.File("one.omr"), false));
  auto read = clsXUNTemplate::Create();
  ASSERT_TRUE(read->Read(folder.File("one.omr"), true));
  EXPECT_EQ(Names(*read->Pages()->Item(1)), (std::vector<std::string>{"A:0", "B:1*", "C:2*"}));
  read->Free();

  // The rules still refuse: a Boolean region alone, a region that is not OMR alone.
  auto boolean = AddOMR(sheet.page, "D", 2, 2, xunFieldTypeOMRBoolean);
  auto barcode = AddOMR(sheet.page, "E", 2, 2);
  barcode->RecognitionType(xunRecogTypeBarcode);
  EXPECT_FALSE(sheet.page->Link({boolean}));
  EXPECT_FALSE(sheet.page->Link({barcode}));
  ASSERT_EQ(messages.messages().size(), 2u);
  EXPECT_EQ(messages.messages()[0].text, Refusal("Boolean regions cannot be linked."));
  EXPECT_EQ(messages.messages()[1].text, Refusal("Only OMR regions can be linked."));
  EXPECT_EQ(boolean->LinkGroup(), 0);
  EXPECT_EQ(barcode->LinkGroup(), 0);
}

// Groups survive a save and a read: the same regions, first regions and codes.
TEST(Link, GroupsSurviveSaveAndRead) {
  Sheet sheet;
  auto a = AddOMR(sheet.page, "A", 2, 3), b = AddOMR(sheet.page, "B", 2, 3);
  auto c = AddOMR(sheet.page, "C", 2, 3), d = AddOMR(sheet.page, "D", 2, 3);
  auto e = AddOMR(sheet.page, "E", 2, 3);
  ASSERT_TRUE(sheet.page->Link({a, c}));
  ASSERT_TRUE(sheet.page->Link({b, d, e}));
  testing::TempFolder folder;
  ASSERT_TRUE(sheet.form->Save(folder.File("linked.omr"), false));
  const std::string text = testing::ReadFileBytes(folder.File("linked.omr"));
  EXPECT_NE(text.find("[Link]\r\nLinkedFields=3\r\n[Field]\r\n"), std::string::npos);

  auto read = clsXUNTemplate::Create();
  ASSERT_TRUE(read->Read(folder.File("linked.omr"), true));
  const auto page = read->Pages()->Item(1);
  EXPECT_EQ(Names(*page), sheet.Names());
  EXPECT_EQ(AllCodes(*page), AllCodes(*sheet.page));
  EXPECT_EQ(page->LinkNext(page->LinkFirst(2)), page->Fields()->Item(4));
  read->Free();
}

}  // namespace
}  // namespace xun
