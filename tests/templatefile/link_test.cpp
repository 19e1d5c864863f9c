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

using Regions = std::vector<std::shared_ptr<clsXUNField>>;

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

struct Sheet {
  Sheet() {
    form->PageWidth(8.5);
    form->PageHeight(11);
    form->Pages()->Add(page);
  }
  ~Sheet() { form->Free(); }
  std::shared_ptr<clsXUNTemplate> form = clsXUNTemplate::Create();
  std::shared_ptr<clsXUNPage> page = clsXUNPage::Create();
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& field : *page->Fields())
      names.push_back(field->FieldName() + ":" + std::to_string(field->LinkGroup()) +
                      (field->LinkStart() ? "*" : ""));
    return names;
  }
  // Every code of every question of the page.
  std::string AllCodes() const {
    std::string all;
    for (const auto& field : *page->Fields())
      for (const auto& question : *field->Questions())
        all += question->Codes()->AsString(",") + ";";
    return all;
  }
  std::string Codes(int16_t region, int16_t question = 1) const {
    return page->Fields()->Item(region)->Questions()->Item(question)->Codes()->AsString(",");
  }
};

std::string Refusal(const std::string& reason) {
  return "An error occurred attempting to link the selected regions. " + reason +
         " Link operation aborted.";
}

// Each rule, checked in order against the first selected region: the exact text and title, one
// report at basTemplate.LinkOMR, and nothing changed.
TEST(Link, RefusalsNameTheFirstBrokenRuleAndChangeNothing) {
  struct Case {
    const char* what;
    std::function<Regions(Sheet&)> build;
    std::string text;
  };
  const std::vector<Case> cases = {
      {"OMR with barcode, other values differing too",
       [](Sheet& s) {
         auto barcode = clsXUNField::Create();
         barcode->FieldName("Code");
         barcode->RecognitionType(xunRecogTypeBarcode);
         barcode->DataType(xunDataTypeNumeric);
         s.page->Fields()->Add(barcode);
         return Regions{AddOMR(s.page, "A", 3, 4), barcode};
       },
       Refusal("Only OMR regions can be linked.")},
      {"data types",
       [](Sheet& s) {
         return Regions{AddOMR(s.page, "A", 3, 4),
                        AddOMR(s.page, "B", 3, 4, xunFieldTypeOMRGrid, xunDataTypeNumeric)};
       },
       Refusal("Regions must have the same data type to be linked.")},
      {"field types",
       [](Sheet& s) {
         return Regions{AddOMR(s.page, "A", 3, 4), AddOMR(s.page, "B", 3, 4, xunFieldTypeOMRGrid)};
       },
       Refusal("Disparate OMR region types cannot be linked.")},
      {"read and not read",
       [](Sheet& s) {
         auto b = AddOMR(s.page, "B", 3, 4);
         b->Read(false);
         return Regions{AddOMR(s.page, "A", 3, 4), b};
       },
       Refusal("Regions must all be read or all not read in order to be linked.")},
      {"multiple response with three and four questions",
       [](Sheet& s) {
         return Regions{AddOMR(s.page, "A", 3, 4), AddOMR(s.page, "B", 4, 4)};
       },
       Refusal("Multiple Response OMR regions must contain the same number of questions in "
               "order to be linked.")},
      {"two boolean regions alike in every other way",
       [](Sheet& s) {
         return Regions{AddOMR(s.page, "A", 2, 2, xunFieldTypeOMRBoolean),
                        AddOMR(s.page, "B", 2, 2, xunFieldTypeOMRBoolean)};
       },
       Refusal("Boolean regions cannot be linked.")},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Sheet sheet;
    auto other = AddOMR(sheet.page, "Linked", 3, 4);
    Regions selected = c.build(sheet);
    // One region of the selection already belongs to a group, which must stay as it was.
    selected.front()->LinkGroup(7);
    selected.front()->LinkStart(true);
    other->LinkGroup(7);
    const auto names = sheet.Names();
    const std::string codes = sheet.AllCodes();
    testing::ScopedHandler handler;
    testing::ScopedMessageCapture messages;
    EXPECT_FALSE(sheet.page->Link(selected));
    ASSERT_EQ(messages.messages().size(), 1u);
    EXPECT_EQ(messages.messages()[0].title, "Link Error");
    EXPECT_EQ(messages.messages()[0].text, c.text);
    EXPECT_EQ(handler.Locations(), std::vector<std::string>{"basTemplate.LinkOMR"});
    EXPECT_EQ(handler.reports()[0].title, "Link Error");
    EXPECT_EQ(sheet.Names(), names);
    EXPECT_EQ(sheet.AllCodes(), codes);
  }
}

TEST(Link, QuietRefusalIsReportedButNotShown) {
  Sheet sheet;
  auto a = AddOMR(sheet.page, "A", 2, 2, xunFieldTypeOMRBoolean);
  auto b = AddOMR(sheet.page, "B", 2, 2, xunFieldTypeOMRBoolean);
  testing::ScopedHandler handler;
  testing::ScopedMessageCapture messages;
  EXPECT_FALSE(sheet.page->Link({a, b}, false));
  EXPECT_TRUE(messages.messages().empty());
  ASSERT_EQ(handler.reports().size(), 1u);
  EXPECT_TRUE(handler.reports()[0].silent_during_call);
}

TEST(Link, GridsWithDifferentQuestionCountsLink) {
  Sheet sheet;
  auto a = AddOMR(sheet.page, "A", 3, 4, xunFieldTypeOMRGrid);
  auto b = AddOMR(sheet.page, "B", 5, 4, xunFieldTypeOMRGrid);
  b->Questions()->Add(clsXUNQuestion::Create());
  testing::ScopedHandler handler;
  EXPECT_TRUE(sheet.page->Link({a, b}));
  EXPECT_TRUE(handler.reports().empty());
  EXPECT_EQ(sheet.Names(), (std::vector<std::string>{"A:1*", "B:1"}));
}

// Mistakes of the caller are run-time errors: nothing is shown and nothing changes.
TEST(Link, SelectionMustBeTwoRegionsOfThisPage) {
  Sheet sheet;
  auto a = AddOMR(sheet.page, "A", 3, 4);
  auto b = AddOMR(sheet.page, "B", 3, 4);
  auto elsewhere = clsXUNPage::Create();
  auto stranger = AddOMR(elsewhere, "C", 3, 4);
  testing::ScopedHandler handler;
  testing::ScopedMessageCapture messages;
  EXPECT_FALSE(sheet.page->Link({a, stranger}));
  EXPECT_FALSE(sheet.page->Link({a, a}));
  EXPECT_FALSE(sheet.page->Link({a, nullptr}));
  EXPECT_EQ(handler.LocationsAndNumbers(),
            (std::vector<std::string>{"basTemplate.LinkOMR #5", "basTemplate.LinkOMR #5",
                                      "basTemplate.LinkOMR #91"}));
  EXPECT_TRUE(messages.messages().empty());
  EXPECT_EQ(sheet.Names(), (std::vector<std::string>{"A:0", "B:0"}));
  (void)b;
}

// Group numbers come from NextLink: the lowest number no region of the template uses, across
// pages, so a number freed by UnLink is handed out again.
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
  EXPECT_EQ(a->LinkGroup(), 2);
  EXPECT_EQ(c->LinkGroup(), 3);
  EXPECT_EQ(sheet.form->GetFirstAvailableLinkGroup(), 4);
  ASSERT_TRUE(sheet.page->UnLink(a));  // group 2 falls apart
  EXPECT_EQ(basTemplate::NextLink(*sheet.page), 2);
  EXPECT_EQ(basTemplate::LinkCount(*sheet.page, 3), 2);
  EXPECT_EQ(basTemplate::LinkCount(*sheet.page, 2), 0);
}

// The group becomes one run of neighbours at its first region's place, in page order, whatever
// order the regions were selected in.
TEST(Link, GroupBecomesOneRunInPageOrder) {
  Sheet sheet;
  auto a = AddOMR(sheet.page, "A", 3, 4), b = AddOMR(sheet.page, "B", 3, 4);
  auto c = AddOMR(sheet.page, "C", 3, 4), d = AddOMR(sheet.page, "D", 3, 4);
  ASSERT_TRUE(sheet.page->Link({d, b}));
  EXPECT_EQ(sheet.Names(), (std::vector<std::string>{"A:0", "B:1*", "D:1", "C:0"}));
  EXPECT_EQ(sheet.page->NumQuestions(), 9);  // the group's questions count once
  EXPECT_EQ(d->NumItems(), 0);
  (void)a;
  (void)c;
}

TEST(Link, NavigationFollowsPageOrder) {
  Sheet sheet;
  auto a = AddOMR(sheet.page, "A", 3, 4), b = AddOMR(sheet.page, "B", 3, 4);
  auto c = AddOMR(sheet.page, "C", 3, 4), loose = AddOMR(sheet.page, "Loose", 3, 4);
  ASSERT_TRUE(sheet.page->Link({c, a, b}));
  const auto& page = *sheet.page;
  EXPECT_EQ(page.LinkFirst(1), a);
  EXPECT_EQ(page.LinkLast(1), c);
  EXPECT_EQ(page.LinkNext(a), b);
  EXPECT_EQ(page.LinkNext(c), nullptr);
  EXPECT_EQ(page.LinkPrevious(b), a);
  EXPECT_EQ(page.LinkPrevious(a), nullptr);
  EXPECT_EQ(page.LinkNext(loose), nullptr);
  EXPECT_EQ(page.LinkFirst(2), nullptr);
  EXPECT_EQ(page.LinkFirst(0), nullptr);
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

// A region linked again leaves its old group, which is tidied as UnLink tidies it.
TEST(Link, RelinkingTakesRegionsOutOfTheirOldGroup) {
  Sheet sheet;
  auto a = AddOMR(sheet.page, "A", 2, 2), b = AddOMR(sheet.page, "B", 2, 2);
  auto c = AddOMR(sheet.page, "C", 2, 2), d = AddOMR(sheet.page, "D", 2, 2);
  ASSERT_TRUE(sheet.page->Link({a, b, c}));
  ASSERT_TRUE(sheet.page->Link({c, d}));
  EXPECT_EQ(sheet.Names(), (std::vector<std::string>{"A:1*", "B:1", "C:2*", "D:2"}));
  EXPECT_EQ(sheet.Codes(3), "A,B");
  EXPECT_EQ(sheet.Codes(4), "C,D");
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
      {xunDataTypeNumeric, "0,1,2", "3,4,5"},        {xunDataTypeNumeric, "1,2,3", "4,5,6"},
      {xunDataTypeNumeric, "08,09,10", "11,12,13"},  {xunDataTypeText, "a,b,c", "d,e,f"},
      {xunDataTypeText, "X,Y,Z", "27,28,29"},        {xunDataTypeText, "Yes,No,Maybe", "D,E,F"},
      {xunDataTypeNumeric, "Yes,No,Maybe", "3,4,5"},
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

// Each region keeps one code per choice; grids with different question counts number each
// question position over the regions that have it.
TEST(Link, ResetCodesGivesOneCodePerChoice) {
  Sheet sheet;
  auto a = AddOMR(sheet.page, "A", 1, 3, xunFieldTypeOMRGrid);
  auto b = AddOMR(sheet.page, "B", 2, 2, xunFieldTypeOMRGrid);
  a->Questions()->Item(1)->Codes()->RemoveAll();   // no codes at all
  b->Questions()->Item(1)->Codes()->Add("extra");  // one code too many
  auto second = clsXUNQuestion::Create();
  second->Choices()->AddDelimitedString("p,q", ",");
  b->Questions()->Add(second);
  ASSERT_TRUE(sheet.page->Link({a, b}));
  EXPECT_EQ(sheet.Codes(1), "A,B,C");
  EXPECT_EQ(sheet.Codes(2), "D,E");
  EXPECT_EQ(sheet.Codes(2, 2), "A,B");  // the only region with a second question
}

// Groups survive a save and a read: the same regions, the same first regions, the same codes.
TEST(Link, GroupsSurviveSaveAndRead) {
  Sheet sheet;
  auto a = AddOMR(sheet.page, "A", 2, 3), b = AddOMR(sheet.page, "B", 2, 3);
  auto c = AddOMR(sheet.page, "C", 2, 3), d = AddOMR(sheet.page, "D", 2, 3);
  auto e = AddOMR(sheet.page, "E", 2, 3);
  ASSERT_TRUE(sheet.page->Link({a, c}));
  ASSERT_TRUE(sheet.page->Link({b, d, e}));
  const auto names = sheet.Names();
  testing::TempFolder folder;
  ASSERT_TRUE(sheet.form->Save(folder.File("linked.omr"), false));
  const std::string text = testing::ReadFileBytes(folder.File("linked.omr"));
  EXPECT_NE(text.find("[Link]\r\nLinkedFields=2\r\n[Field]\r\n"), std::string::npos);
  EXPECT_NE(text.find("[Link]\r\nLinkedFields=3\r\n[Field]\r\n"), std::string::npos);

  auto read = clsXUNTemplate::Create();
  ASSERT_TRUE(read->Read(folder.File("linked.omr"), true))
      << basTemplate::LastReadDiagnostic().text;
  auto page = read->Pages()->Item(1);
  std::vector<std::string> read_names;
  for (const auto& field : *page->Fields()) {
    read_names.push_back(field->FieldName() + ":" + std::to_string(field->LinkGroup()) +
                         (field->LinkStart() ? "*" : ""));
    EXPECT_EQ(
        field->Questions()->Item(2)->Codes()->AsString(","),
        sheet.page->Fields()->Item(field->Key())->Questions()->Item(2)->Codes()->AsString(","));
  }
  EXPECT_EQ(read_names, names);
  EXPECT_EQ(basTemplate::LinkCount(*page, 2), 3);
  EXPECT_EQ(page->LinkNext(page->LinkFirst(2)), page->Fields()->Item(4));
  read->Free();
}

}  // namespace
}  // namespace xun
