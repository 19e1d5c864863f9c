// Read replaces the content, a failed read leaves the template cleared, what Save marks valid
// reads for reading, and where Save refuses to write.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "common/test_support.h"
#include "common/tree_description.h"
#include "xun/xun.h"

namespace xun {
namespace {

namespace fs = std::filesystem;

using testing::DescribeTree;
using testing::ScopedHandler;
using testing::ScopedMessageCapture;
using testing::TempFolder;

std::shared_ptr<clsXUNField> AddOMR(const std::shared_ptr<clsXUNPage>& page,
                                    const std::string& name, xunFieldType type,
                                    xunOrientationType orient) {
  auto field = clsXUNField::Create();
  field->FieldName(name);
  field->RecognitionType(xunRecogTypeOMR);
  field->FieldType(type);
  field->Orient(orient);
  field->NumRows(2);
  field->NumCols(3);
  field->Right(300);
  field->Bottom(200);
  page->Fields()->Add(field);
  field->Questions()->Update();
  return field;
}

// A valid template of `pages` pages, one OMR region each, tagged `tag`.
std::shared_ptr<clsXUNTemplate> Form(int pages, const std::string& tag) {
  auto form = clsXUNTemplate::Create();
  form->PageWidth(8.5);
  form->PageHeight(11);
  form->Tag(tag);
  for (int p = 1; p <= pages; ++p) {
    auto page = clsXUNPage::Create();
    form->Pages()->Add(page);
    page->Tag(tag + "-" + std::to_string(p));
    AddOMR(page, "R" + std::to_string(p), xunFieldTypeOMRMult, xunOrientationTypeOMRRow);
  }
  return form;
}

bool SaveTo(clsXUNTemplate& form, const std::string& path, bool* invalid = nullptr) {
  return form.Save(path, false, invalid, false);
}

std::string Diagnostic() {
  const basTemplate::ReadDiagnostic d = basTemplate::LastReadDiagnostic();
  return d.title + ": " + d.text;
}

// A second read gives the template the second file's content only: its pages, and for every
// setting the file can hold the second file's value or, where it has none, a new template's.
TEST(ReadReplaces, SecondReadGivesWhatANewTemplateReads) {
  TempFolder folder;
  auto first = Form(2, "first");
  first->Attributes()->Add("Owner", Variant(std::string("Ann")));
  first->Description("First form");
  first->RDDName("first.rdd");
  first->ColumnWidth(0.25f);
  first->Columns(3);
  first->RowTopMargin(0.1f);
  first->Duplex(true);
  first->SelfScore(true);
  first->HeaderCount(2);
  first->HeaderPageCount(4);
  ASSERT_TRUE(SaveTo(*first, folder.File("first.omr")));
  ASSERT_TRUE(SaveTo(*Form(1, ""), folder.File("second.omr")));

  auto t = clsXUNTemplate::Create();
  const auto state = std::make_shared<int>(7);
  t->oState(state);
  t->Name("named by the host");
  t->Manufacturer("host");
  ASSERT_TRUE(t->Read(folder.File("first.omr"), true)) << Diagnostic();
  ASSERT_EQ(t->NumPages(), 2);
  ASSERT_EQ(t->Tag(), "first");
  ASSERT_TRUE(t->Read(folder.File("second.omr"), false)) << Diagnostic();

  auto fresh = clsXUNTemplate::Create();
  ASSERT_TRUE(fresh->Read(folder.File("second.omr"), false));
  EXPECT_EQ(DescribeTree(*t), DescribeTree(*fresh));
  EXPECT_EQ(t->NumPages(), 1);
  EXPECT_EQ(t->Tag(), "");
  EXPECT_FALSE(t->Attributes()->Exists("Owner"));
  EXPECT_EQ(t->RDDName(), "");
  EXPECT_FLOAT_EQ(t->ColumnWidth(), 0.167f);
  EXPECT_EQ(t->HeaderCount(), 0);
  EXPECT_FALSE(t->Duplex());
  // Not in the tree description: the names and versions, Valid.
  EXPECT_EQ(t->Name(), "");
  EXPECT_EQ(t->Manufacturer(), "");
  EXPECT_EQ(t->Version(), fresh->Version());
  EXPECT_EQ(t->CompatibleVersion(), fresh->CompatibleVersion());
  EXPECT_EQ(t->Valid(), fresh->Valid());
  // What no file holds stays the caller's.
  EXPECT_EQ(t->oState(), state);
  EXPECT_FALSE(t->Editable());
  // The pages belong to the template they are now in.
  EXPECT_EQ(t->Pages()->Template(), t);
}

// A read that fails part-way leaves what Clear would have left of the template before the read:
// no half-read pages, and no setting of the refused file.
TEST(ReadReplaces, FailedReadLeavesTheTemplateAsClearLeavesIt) {
  TempFolder folder;
  auto first = Form(2, "first");
  first->Columns(3);
  first->ColumnWidth(0.25f);
  ASSERT_TRUE(SaveTo(*first, folder.File("first.omr")));
  // Read up to a question without codes, after a [Form] of its own and a page with a region.
  testing::WriteFileBytes(folder.File("bad.omr"),
                          "[Form]\r\nVersion=8\r\nValid=-1\r\nTag=bad\r\nColumns=9\r\n"
                          "Attributes=Bad|1\r\nDescription=bad\r\n[Page]\r\nKey=P1\r\n"
                          "[Field]\r\nName=R\r\nRecogType=1\r\nFieldType=1\r\nOrient=1\r\n"
                          "NumCols=2\r\nNumRows=1\r\n[Question]\r\nChoices=A\tB\r\nCodes=\r\n");

  for (const bool for_edit : {true, false}) {
    SCOPED_TRACE(for_edit);
    auto t = clsXUNTemplate::Create();
    ASSERT_TRUE(t->Read(folder.File("first.omr"), true)) << Diagnostic();
    t->oState(std::make_shared<int>(7));
    const bool valid_before = t->Valid();
    auto expected = t->Copy();
    expected->ColumnWidth(t->ColumnWidth());  // Copy leaves it out on purpose
    expected->Clear();

    ScopedMessageCapture messages;
    EXPECT_FALSE(t->Read(folder.File("bad.omr"), for_edit));
    EXPECT_EQ(basTemplate::LastReadDiagnostic().title, "Question Error");
    EXPECT_EQ(t->Editable(), for_edit);
    if (for_edit) {
      EXPECT_EQ(DescribeTree(*t), DescribeTree(*expected));
    }
    EXPECT_EQ(t->NumPages(), 0);
    EXPECT_EQ(t->Attributes()->Count(), 0);
    EXPECT_EQ(t->Version(), "");
    EXPECT_EQ(t->Description(), "");
    EXPECT_DOUBLE_EQ(t->PageWidth(), 8.5);
    EXPECT_EQ(t->oState(), nullptr);
    // Kept by Clear, so as before the read; the refused file's values reach nothing.
    EXPECT_EQ(t->Tag(), "first");
    EXPECT_EQ(t->Columns(), 3);
    EXPECT_EQ(t->Valid(), valid_before);
  }
}

// Files on disk: the old pages' images go as Clear deletes them, whatever the outcome; what a
// failed read unpacked goes with it; the file read is never touched.
TEST(ReadReplaces, ImageFilesOfTheOldContentAndOfAFailedRead) {
  TempFolder folder;
  ASSERT_TRUE(SaveTo(*Form(1, "plain"), folder.File("plain.omr")));
  // An archive whose page image is unpacked before the read fails: its one question is a hidden
  // identification question, so the template has no items.
  auto no_items = Form(1, "archive");
  auto page = no_items->Pages()->Item(1);
  auto region = page->Fields()->Item(1);
  region->NumRows(1);
  region->Questions()->Update();
  region->Questions()->Item(1)->IDType(xunIDTypeForm);
  testing::WriteFileBytes(folder.File("scan.pcx"), "image bytes");
  page->ImageFile(folder.File("scan.pcx"));
  bool invalid = false;
  ASSERT_TRUE(SaveTo(*no_items, folder.File("archive.omr"), &invalid));
  ASSERT_TRUE(invalid);
  const std::string archive_bytes = testing::ReadFileBytes(folder.File("archive.omr"));

  auto with_image = [&](const std::string& name) {
    auto t = Form(1, "old");
    testing::WriteFileBytes(folder.File(name), "old image");
    t->Pages()->Item(1)->ImageFile(folder.File(name));
    return t;
  };

  TempFolder private_tmp;
  const testing::ScopedTmpdir tmpdir(private_tmp.path());
  ScopedMessageCapture messages;
  auto failed = with_image("old1.pcx");
  EXPECT_FALSE(failed->Read(folder.File("archive.omr"), true));
  EXPECT_EQ(basTemplate::LastReadDiagnostic().text,
            "An error occurred reading the template file. The template does not contain any "
            "items.");
  EXPECT_EQ(failed->NumPages(), 0);
  EXPECT_TRUE(fs::is_empty(private_tmp.path())) << "the failed read's own image copy is gone";
  EXPECT_FALSE(fs::exists(folder.File("old1.pcx")));
  EXPECT_EQ(testing::ReadFileBytes(folder.File("archive.omr")), archive_bytes);

  auto replaced = with_image("old2.pcx");
  EXPECT_TRUE(replaced->Read(folder.File("plain.omr"), true)) << Diagnostic();
  EXPECT_FALSE(fs::exists(folder.File("old2.pcx")));
  EXPECT_TRUE(fs::exists(folder.File("scan.pcx")));
}

// For every OMR kind with choices and both orientations: counts that disagree (more choices than
// codes, more than the bubbles along the question) are saved as valid and read for reading;
// only an empty list is refused, and then the file says it is not valid.
TEST(SavedValidReadsForReading, OnlyEmptyChoicesOrCodesRefuse) {
  TempFolder folder;
  const std::string file = folder.File("form.omr");
  for (int type = xunFieldTypeOMRMult; type <= xunFieldTypeOMRRank; ++type) {
    for (const xunOrientationType orient : {xunOrientationTypeOMRRow, xunOrientationTypeOMRCol}) {
      SCOPED_TRACE("type " + std::to_string(type) + ", orient " + std::to_string(orient));
      auto form = Form(0, "");
      auto page = clsXUNPage::Create();
      form->Pages()->Add(page);
      auto field = AddOMR(page, "R", static_cast<xunFieldType>(type), orient);
      for (const auto& question : *field->Questions())
        question->Choices()->Add("Extra");
      bool invalid = true;
      ASSERT_TRUE(SaveTo(*form, file, &invalid));
      EXPECT_FALSE(invalid);
      EXPECT_TRUE(clsXUNTemplate::Create()->Read(file, false)) << Diagnostic();

      field->Questions()->Item(1)->Codes()->RemoveAll();
      ASSERT_TRUE(SaveTo(*form, file, &invalid));
      EXPECT_TRUE(invalid);
      ScopedMessageCapture messages;
      EXPECT_FALSE(clsXUNTemplate::Create()->Read(file, true));
      EXPECT_EQ(basTemplate::LastReadDiagnostic().title, "Question Error");
    }
  }
}

// The writer judges what the file will hold: a name or a single choice that cleaning removes is
// missing, so the file is not marked valid (it would not read).
TEST(SavedValidReadsForReading, ValuesAreJudgedAsTheFileHoldsThem) {
  TempFolder folder;
  const std::string file = folder.File("form.omr");
  struct Case {
    const char* what;
    void (*spoil)(clsXUNField&);
    const char* title;
  };
  const Case cases[] = {
      {"name of removed characters", [](clsXUNField& f) { f.FieldName("(.)"); }, "Region Error"},
      {"name of blanks", [](clsXUNField& f) { f.FieldName("   "); }, "Region Error"},
      {"one choice cleaned away",
       [](clsXUNField& f) {
         auto choices = f.Questions()->Item(1)->Choices();
         choices->RemoveAll();
         choices->Add("(\"");
       },
       "Question Error"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    auto form = Form(1, "");
    c.spoil(*form->Pages()->Item(1)->Fields()->Item(1));
    bool invalid = false;
    ASSERT_TRUE(SaveTo(*form, file, &invalid));
    EXPECT_TRUE(invalid);
    ScopedMessageCapture messages;
    EXPECT_FALSE(clsXUNTemplate::Create()->Read(file, true));
    EXPECT_EQ(basTemplate::LastReadDiagnostic().title, c.title);
  }
}

// An empty name is refused like a missing folder, before the writer; a bare name is saved in the
// current folder.
TEST(SaveRefusals, EmptyNameAndBareName) {
  for (const bool verbose : {true, false}) {
    ScopedHandler handler;
    ScopedMessageCapture messages;
    EXPECT_FALSE(Form(1, "")->Save("", verbose, nullptr, false));
    ASSERT_EQ(handler.reports().size(), 1u) << "the writer is not called";
    const testing::Report& r = handler.reports()[0];
    EXPECT_EQ(r.title, "Invalid Save Folder");
    EXPECT_EQ(r.description, "Operation cannot be completed. The specified folder does not exist.");
    EXPECT_EQ(handler.Locations()[0], "clsXUNTemplate.Save");
    EXPECT_EQ(r.kind, 2);
    EXPECT_EQ(r.silent_during_call, !verbose);
  }

  TempFolder folder;
  const fs::path previous = fs::current_path();
  fs::current_path(folder.path());
  ScopedHandler handler;
  const bool saved = Form(1, "")->Save("bare.omr", false, nullptr, false);
  fs::current_path(previous);
  EXPECT_TRUE(saved);
  EXPECT_TRUE(handler.reports().empty());
  EXPECT_TRUE(fs::is_regular_file(folder.File("bare.omr")));
}

}  // namespace
}  // namespace xun
