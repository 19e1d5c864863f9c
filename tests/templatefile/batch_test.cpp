// Batch templates: the batch file, the member checks of a merge, and reading a batch back into
// one tree.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "common/test_support.h"
#include "xun/xun.h"

namespace xun {
namespace {

namespace fs = std::filesystem;

std::shared_ptr<clsXUNField> AddRegion(const std::shared_ptr<clsXUNPage>& page,
                                       const std::string& name, xunIDType role,
                                       const std::string& value) {
  auto field = clsXUNField::Create();
  field->FieldName(name);
  field->RecognitionType(xunRecogTypeBarcode);
  field->FieldType(xunFieldTypeBarcodeCode128);
  page->Fields()->Add(field);
  auto question = clsXUNQuestion::Create();
  question->QuestionName(name);
  question->IDType(role);
  question->IDValue(value);
  question->IDAdd(true);  // an item of its own, so a template of one region has items
  testing::AddQuestion(*field, question);
  return field;
}

// A template of `pages` pages, each with a page ID region; `respondent` adds a respondent
// tracker to its first page.
std::shared_ptr<clsXUNTemplate> Member(const std::string& name, int pages,
                                       bool respondent = false) {
  auto form = clsXUNTemplate::Create();
  form->Name(name);
  form->Description(name + " description");
  form->PageWidth(8.5);
  form->PageHeight(11);
  for (int p = 1; p <= pages; ++p) {
    auto page = clsXUNPage::Create();
    form->Pages()->Add(page);
    page->Tag(name + "-" + std::to_string(p));
    AddRegion(page, "PageID", xunIDTypePage, name + std::to_string(p));
    if (respondent && p == 1) AddRegion(page, "Student", xunIDTypeRespondent, "");
  }
  return form;
}

std::vector<std::string> PageTags(const clsXUNTemplate& form) {
  std::vector<std::string> tags;
  for (const auto& page : *form.Pages())
    tags.push_back(page->Tag());
  return tags;
}

std::string MergeError(const std::string& reason) {
  return "An error occurred merging the templates. " + reason;
}

// The checks in their order, each with its exact text; a refused merge leaves the target as it
// was.
TEST(Merge, RefusalsAndTheirOrder) {
  struct Case {
    const char* what;
    std::vector<std::shared_ptr<clsXUNTemplate>> members;
    std::string text;
  };
  auto no_page_id = Member("Bare", 1);
  no_page_id->Pages()->Item(1)->Fields()->Item(1)->Questions()->Item(1)->IDType(xunIDTypeNone);
  auto wider = Member("Wide", 1);
  wider->PageWidth(8.5 + 1e-9);
  auto landscape = Member("Land", 1);
  landscape->Orientation(xunOrientationTypeFormLandscape);
  const std::vector<Case> cases = {
      {"a form alone still needs page IDs",
       {no_page_id},
       "All forms in a batch must contain page ID regions."},
      {"a header without page IDs, also too wide",
       {Member("H", 1), no_page_id, wider},
       "All forms in a batch must contain page ID regions."},
      {"respondent tracker in a header, checked before the size",
       {Member("H", 1, true), wider},
       "Batch headers cannot contain respondent tracker regions."},
      {"width off by a hair",
       {Member("H", 1), wider},
       "All forms in a batch must be the same size."},
      {"other orientation",
       {landscape, Member("F", 1)},
       "All forms in a batch must be the same size."},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    auto target = Member("Target", 1);
    testing::ScopedHandler handler;
    testing::ScopedMessageCapture messages;
    EXPECT_FALSE(basTemplate::MergeTemplates(c.members, *target));
    ASSERT_EQ(messages.messages().size(), 1u);
    EXPECT_EQ(messages.messages()[0].title, "Merge Error");
    EXPECT_EQ(messages.messages()[0].text, MergeError(c.text));
    EXPECT_EQ(handler.Locations(), std::vector<std::string>{"basTemplate.MergeTemplates"});
    EXPECT_EQ(PageTags(*target), std::vector<std::string>{"Target-1"});
    EXPECT_EQ(target->Name(), "Target");
  }
}

TEST(Merge, HeadersThenFormWithTheFormsSettings) {
  auto first = Member("Cover", 2), second = Member("Roster", 1), form = Member("Quiz", 2, true);
  form->Duplex(true);
  form->Attributes()->Add("Course", Variant("Physics"));
  // Each member numbers its link groups from 1; merged, each group keeps a number of its own.
  const auto first_region = [](const clsXUNTemplate& t, int16_t page) {
    return t.Pages()->Item(page)->Fields()->Item(1);
  };
  for (const auto& member : {first, form}) {
    first_region(*member, 1)->LinkGroup(1);
    first_region(*member, 1)->LinkStart(true);
  }
  auto merged = clsXUNTemplate::Create();
  testing::ScopedHandler handler;
  ASSERT_TRUE(basTemplate::MergeTemplates({first, second, form}, *merged));
  EXPECT_TRUE(handler.reports().empty());
  EXPECT_EQ(PageTags(*merged),
            (std::vector<std::string>{"Cover-1", "Cover-2", "Roster-1", "Quiz-1", "Quiz-2"}));
  EXPECT_EQ(merged->Name(), "Quiz");
  EXPECT_EQ(merged->Description(), "Quiz description");
  EXPECT_TRUE(merged->Duplex());
  EXPECT_EQ(merged->Attributes()->Item("Course"), Variant("Physics"));
  EXPECT_EQ(merged->HeaderCount(), 2);
  EXPECT_EQ(merged->HeaderPageCount(), 3);
  EXPECT_EQ(merged->HeaderItemCount(), 3);  // one page ID item per header page
  EXPECT_EQ(first_region(*merged, 1)->LinkGroup(), 1);
  EXPECT_EQ(first_region(*merged, 4)->LinkGroup(), 2);
  // The members keep their own pages and groups.
  EXPECT_EQ(first->NumPages(), 2);
  EXPECT_EQ(first_region(*form, 1)->LinkGroup(), 1);
}

TEST(Append, AddsThePagesAndRefusesWithoutTouchingTheTemplate) {
  auto head = Member("Head", 1);
  testing::ScopedHandler handler;
  testing::ScopedMessageCapture messages;
  auto tracked = Member("Tracked", 1, true);
  auto form = Member("Form", 1);
  EXPECT_FALSE(tracked->Append(form));  // the appending template becomes a header
  EXPECT_EQ(PageTags(*tracked), std::vector<std::string>{"Tracked-1"});
  ASSERT_TRUE(head->Append(form));
  EXPECT_EQ(PageTags(*head), (std::vector<std::string>{"Head-1", "Form-1"}));
  EXPECT_EQ(head->HeaderCount(), 1);
  EXPECT_EQ(head->HeaderPageCount(), 1);
  EXPECT_EQ(head->Name(), "Form");
  EXPECT_EQ(form->NumPages(), 1);
  ASSERT_TRUE(head->Append(head));  // its pages as they were before the call
  EXPECT_EQ(head->NumPages(), 4);
}

class Batch : public ::testing::Test {
 protected:
  void SaveMember(const std::shared_ptr<clsXUNTemplate>& form, const std::string& path) {
    ASSERT_TRUE(form->Save(path, false)) << path;
  }
  testing::TempFolder folder;
};

TEST_F(Batch, SaveBatchWritesFullPathsInOrder) {
  SaveMember(Member("Form", 1), folder.File("form.omr"));
  SaveMember(Member("One", 1), folder.File("one.omr"));
  SaveMember(Member("Two", 1), folder.File("two.omr"));
  const fs::path keep = fs::current_path();
  fs::current_path(folder.path());
  const bool saved = basTemplate::SaveBatch("batch.txt", "form.omr", {"two.omr", "./one.omr"});
  fs::current_path(keep);
  ASSERT_TRUE(saved);
  const std::string full = fs::canonical(folder.path()).string();
  EXPECT_EQ(testing::ReadFileBytes(folder.File("batch.rbf")),
            "[Template]\r\nName=" + full + "/form.omr\r\n[Headers]\r\nName=" + full +
                "/two.omr\r\nName=" + full + "/one.omr\r\n");
  EXPECT_FALSE(fs::exists(folder.File("batch.txt")));
}

TEST_F(Batch, SaveBatchRefusesMissingMembersHeadersFirst) {
  SaveMember(Member("Form", 1), folder.File("form.omr"));
  testing::ScopedHandler handler;
  testing::ScopedMessageCapture messages;
  auto form = clsXUNTemplate::Create();
  EXPECT_FALSE(form->SaveBatch(folder.File("b.rbf"), folder.File("none.omr"),
                               {folder.File("form.omr"), folder.File("gone.omr")}));
  EXPECT_FALSE(form->SaveBatch(folder.File("b.rbf"), folder.File("none.omr"), {}));
  ASSERT_EQ(messages.messages().size(), 2u);
  EXPECT_EQ(messages.messages()[0].title, "Template Does Not Exist");
  EXPECT_EQ(messages.messages()[0].text,
            "An error saving the batch template. The specified header template does not "
            "exist.\r\n\r\nHeader Template: " +
                folder.File("gone.omr"));
  EXPECT_EQ(messages.messages()[1].title, "Template Does Not Exist");
  EXPECT_EQ(messages.messages()[1].text,
            "An error saving the batch template. The specified template does not "
            "exist.\r\n\r\nTemplate: " +
                folder.File("none.omr"));
  EXPECT_EQ(handler.Locations(),
            (std::vector<std::string>{"basTemplate.SaveBatch", "basTemplate.SaveBatch"}));
  EXPECT_FALSE(fs::exists(folder.File("b.rbf")));
}

// SaveBatch, then ReadBatch into a template that already holds something: the merged tree
// replaces it, headers first.
TEST_F(Batch, ReadBatchReadsWhatSaveBatchWrote) {
  SaveMember(Member("Cover", 1), folder.File("cover.omr"));
  SaveMember(Member("Roster", 2), folder.File("roster.omr"));
  SaveMember(Member("Quiz", 2, true), folder.File("quiz.omr"));
  auto form = Member("Old", 3);
  ASSERT_TRUE(form->SaveBatch(folder.File("set.rbf"), folder.File("quiz.omr"),
                              {folder.File("cover.omr"), folder.File("roster.omr")}));
  testing::ScopedHandler handler;
  ASSERT_TRUE(form->ReadBatch(folder.File("set.rbf"), ""));
  EXPECT_TRUE(handler.reports().empty());
  EXPECT_EQ(PageTags(*form),
            (std::vector<std::string>{"Cover-1", "Roster-1", "Roster-2", "Quiz-1", "Quiz-2"}));
  EXPECT_EQ(form->HeaderCount(), 2);
  EXPECT_EQ(form->HeaderPageCount(), 3);
  EXPECT_EQ(form->Description(), "Quiz description");
  EXPECT_TRUE(form->Valid());
  // The merged tree saves and reads back like any template.
  ASSERT_TRUE(form->Save(folder.File("merged.omr"), false));
  auto again = clsXUNTemplate::Create();
  ASSERT_TRUE(again->Read(folder.File("merged.omr"), false));
  EXPECT_EQ(PageTags(*again), PageTags(*form));
  EXPECT_EQ(again->HeaderItemCount(), 3);
}

// Names that are not absolute: the default folder first, then the batch file's folder.
TEST_F(Batch, RelativeMembersLookInTheDefaultFolderFirst) {
  fs::create_directories(folder.File("default"));
  fs::create_directories(folder.File("batches"));
  SaveMember(Member("FromDefault", 1), folder.File("default/form.omr"));
  SaveMember(Member("BesideBatch", 1), folder.File("batches/form.omr"));
  SaveMember(Member("Header", 1), folder.File("batches/head.omr"));
  testing::WriteFileBytes(folder.File("batches/b.rbf"),
                          "[template]\r\nName=form.omr\r\n  [headers] \r\nName=head.omr\r\n");
  auto form = clsXUNTemplate::Create();
  ASSERT_TRUE(form->ReadBatch(folder.File("batches/b.rbf"), folder.File("default")));
  EXPECT_EQ(PageTags(*form), (std::vector<std::string>{"Header-1", "FromDefault-1"}));
  ASSERT_TRUE(form->ReadBatch(folder.File("batches/b.rbf"), folder.File("nowhere")));
  EXPECT_EQ(PageTags(*form), (std::vector<std::string>{"Header-1", "BesideBatch-1"}));
}

// Every line with "=" in a section names a member, blank lines (with or without blanks on them)
// inside the section included; the section ends only at the next header.
TEST_F(Batch, BlankLinesDoNotEndASection) {
  SaveMember(Member("Form", 1), folder.File("form.omr"));
  SaveMember(Member("One", 1), folder.File("one.omr"));
  SaveMember(Member("Two", 1), folder.File("two.omr"));
  SaveMember(Member("Three", 1), folder.File("three.omr"));
  testing::WriteFileBytes(folder.File("b.rbf"),
                          "[Template]\r\n\r\nName=form.omr\r\n[Headers]\r\nName=one.omr\r\n\r\n"
                          "Name=two.omr\r\n   \r\n\r\nName=three.omr\r\n\r\n[Other]\r\n"
                          "Name=one.omr\r\n");
  auto form = clsXUNTemplate::Create();
  testing::ScopedHandler handler;
  ASSERT_TRUE(form->ReadBatch(folder.File("b.rbf"), folder.path()));
  EXPECT_TRUE(handler.reports().empty());
  EXPECT_EQ(PageTags(*form), (std::vector<std::string>{"One-1", "Two-1", "Three-1", "Form-1"}));
  EXPECT_EQ(form->HeaderCount(), 3);
}

TEST_F(Batch, MemberThatCannotBeReadStopsTheBatch) {
  SaveMember(Member("Form", 1), folder.File("form.omr"));
  testing::WriteFileBytes(folder.File("broken.omr"), "[Form]\r\nVersion=8\r\n");
  for (const std::string& header : {std::string("missing.omr"), folder.File("broken.omr")}) {
    SCOPED_TRACE(header);
    testing::WriteFileBytes(folder.File("b.rbf"),
                            "[Template]\r\nName=form.omr\r\n[Headers]\r\nName=" + header + "\r\n");
    auto form = Member("Kept", 1);
    testing::ScopedHandler handler;
    testing::ScopedMessageCapture messages;
    EXPECT_FALSE(form->ReadBatch(folder.File("b.rbf"), ""));
    ASSERT_FALSE(messages.messages().empty());
    EXPECT_EQ(messages.messages().back().title, "Invalid Template");
    EXPECT_EQ(messages.messages().back().text,
              "An error occurred attempting to read the specified template file [" + header + "].");
    EXPECT_EQ(handler.Locations().back(), "basTemplate.ReadBatch");
    EXPECT_EQ(PageTags(*form), std::vector<std::string>{"Kept-1"});
  }
}

// A refused merge leaves the target as it was and no temporary copy or page image behind.
TEST_F(Batch, RefusedMergeLeavesNothingBehind) {
  auto header = Member("Header", 1, true);
  auto image_page = header->Pages()->Item(1);
  testing::WriteFileBytes(folder.File("page.pcx"), "image bytes");
  image_page->ImageFile(folder.File("page.pcx"));
  SaveMember(header, folder.File("head.omr"));  // an archive: the page image goes with it
  image_page->ImageFile("");
  SaveMember(Member("Form", 1), folder.File("form.omr"));
  ASSERT_TRUE(basTemplate::SaveBatch(folder.File("b.rbf"), folder.File("form.omr"),
                                     {folder.File("head.omr")}));

  testing::TempFolder private_tmp;
  const testing::ScopedTmpdir tmpdir(private_tmp.path());

  auto form = Member("Kept", 1);
  testing::ScopedMessageCapture messages;
  EXPECT_FALSE(form->ReadBatch(folder.File("b.rbf"), ""));
  ASSERT_EQ(messages.messages().size(), 1u);
  EXPECT_EQ(messages.messages()[0].text,
            MergeError("Batch headers cannot contain respondent tracker regions."));
  EXPECT_EQ(PageTags(*form), std::vector<std::string>{"Kept-1"});
  EXPECT_TRUE(fs::is_empty(private_tmp.path()));
}

}  // namespace
}  // namespace xun
