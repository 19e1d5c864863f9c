#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "common/test_support.h"
#include "xun/model/page.h"
#include "xun/model/pages.h"
#include "xun/model/template.h"

namespace xun {
namespace {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;

// A row-oriented OMR region: one item and one question per row.
std::shared_ptr<clsXUNField> OmrRegion(int16_t rows, int16_t cols = 4) {
  auto field = clsXUNField::Create();
  field->RecognitionType(xunRecogTypeOMR);
  field->FieldType(xunFieldTypeOMRMult);
  field->Orient(xunOrientationTypeOMRRow);
  field->NumRows(rows);
  field->NumCols(cols);
  for (int16_t row = 0; row < rows; ++row)
    testing::AddQuestion(*field, clsXUNQuestion::Create());
  return field;
}

std::shared_ptr<clsXUNPage> PageOf(std::initializer_list<std::shared_ptr<clsXUNField>> fields) {
  auto page = clsXUNPage::Create();
  for (const auto& field : fields)
    page->Fields()->Add(field);
  return page;
}

class PageTest : public ::testing::Test {
 protected:
  Strings Reported() const { return handler_.LocationsAndNumbers(); }
  Strings Keys() const {
    Strings out;
    for (const auto& page : *pages_)
      out.push_back(page->Key());
    return out;
  }
  std::shared_ptr<clsXUNPage> AddPage(const std::string& key) {
    auto page = clsXUNPage::Create();
    page->Key(key);
    pages_->Add(page);
    return page;
  }

  testing::ScopedHandler handler_;
  std::shared_ptr<clsXUNPages> pages_ = clsXUNPages::Create();
};

TEST_F(PageTest, AddFreshensEmptyOrTakenKeysAndFillsTheColumnWidth) {
  auto owner = clsXUNTemplate::Create();
  owner->ColumnWidth(1.5f);
  pages_->Template(owner);
  auto first = AddPage("P");
  auto second = clsXUNPage::Create();
  second->Key("p");  // keys compare without letter case
  second->ColumnWidth(2.0f);
  EXPECT_TRUE(pages_->Add(second));
  auto third = AddPage("");

  const std::regex fresh("[0-9A-F]{32}");
  EXPECT_TRUE(std::regex_match(second->Key(), fresh)) << second->Key();
  EXPECT_TRUE(std::regex_match(third->Key(), fresh)) << third->Key();
  EXPECT_EQ(pages_->Item(second->Key()), second);
  EXPECT_EQ(Keys().front(), "P");
  EXPECT_EQ(first->ColumnWidth(), 1.5f);
  EXPECT_EQ(second->ColumnWidth(), 2.0f);

  first->Key("Q");  // ignored: the list holds the page under its old key
  EXPECT_EQ(first->Key(), "P");

  auto loose = clsXUNPages::Create();  // no template: 0 stays
  auto page = clsXUNPage::Create();
  loose->Add(page);
  EXPECT_EQ(page->ColumnWidth(), 0.0f);
  EXPECT_FALSE(pages_->Add(nullptr));
  EXPECT_EQ(Reported(), Strings{"clsXUNPages.Add #91"});
}

TEST_F(PageTest, MoveChecksAnchorsWithThePageButAppliesThemWithout) {
  auto a = AddPage("A");
  AddPage("B");
  AddPage("C");
  EXPECT_FALSE(pages_->Move("A"));
  EXPECT_FALSE(pages_->Move("A", "X"));
  EXPECT_FALSE(pages_->Move("X", 1));
  EXPECT_EQ(Keys(), (Strings{"A", "B", "C"}));
  EXPECT_TRUE(Reported().empty());

  EXPECT_TRUE(pages_->Move("A", std::nullopt, 2));  // after the 2nd of B, C
  EXPECT_EQ(Keys(), (Strings{"B", "C", "A"}));
  EXPECT_EQ(a->Pages(), pages_);

  EXPECT_FALSE(pages_->Move("A", "A"));  // the anchor left with the page
  EXPECT_EQ(Keys(), (Strings{"B", "C"}));
  EXPECT_EQ(a->Pages(), nullptr);
  EXPECT_EQ(Reported(), Strings{"clsXUNPages.Move #5"});
}

TEST_F(PageTest, RemoveFreesThePage) {
  auto a = AddPage("A");
  auto b = AddPage("B");
  EXPECT_TRUE(pages_->Remove("A"));
  EXPECT_EQ(a->Fields(), nullptr);
  EXPECT_EQ(a->Pages(), nullptr);
  EXPECT_FALSE(pages_->Remove("A"));

  pages_->Template(clsXUNTemplate::Create());
  pages_->Free();
  EXPECT_EQ(b->Fields(), nullptr);
  EXPECT_EQ(pages_->Template(), nullptr);
  EXPECT_TRUE(Reported().empty());
}

TEST_F(PageTest, CountsOverRegionsAndQuestions) {
  auto page = clsXUNPage::Create();
  auto fields = clsXUNFields::Create();
  page->Fields(fields);
  EXPECT_EQ(fields->Page(), page);

  auto head = OmrRegion(5), tail = OmrRegion(5);
  head->LinkGroup(1);
  head->LinkStart(true);
  tail->LinkGroup(1);
  head->Questions()->Item(2)->Grade(true);
  tail->Questions()->Item(1)->Grade(true);
  tail->Questions()->Item(3)->SubjectiveField(true);
  fields->Add(head);
  fields->Add(tail);
  EXPECT_EQ(page->NumQuestions(), 5);  // the chain counts once
  EXPECT_EQ(page->NumItems(), 5);      // the chain's second region has no items of its own
  EXPECT_EQ(page->NumGradedItems(), 2);
  EXPECT_EQ(page->NumSubjectiveItems(), 1);

  for (int i = 0; i < 2; ++i) {  // every bubble of a Boolean region is an item
    auto big = clsXUNField::Create();
    big->RecognitionType(xunRecogTypeOMR);
    big->FieldType(xunFieldTypeOMRBoolean);
    big->NumRows(100);
    big->NumCols(200);
    fields->Add(big);
  }
  EXPECT_EQ(page->NumItems(), 0);
  EXPECT_EQ(Reported(), Strings{"clsXUNPage.NumItems #6"});
}

TEST_F(PageTest, LargeFieldIsTheFirstOmrRegionWithMostBubbles) {
  EXPECT_EQ(PageOf({OmrRegion(1, 1)})->LargeField(), 0);
  auto barcode = OmrRegion(30, 30);
  barcode->RecognitionType(xunRecogTypeBarcode);
  EXPECT_EQ(PageOf({barcode, OmrRegion(2, 5), OmrRegion(5, 2)})->LargeField(), 2);
  EXPECT_EQ(PageOf({OmrRegion(2, 5), OmrRegion(3, 5)})->LargeField(), 2);
}

TEST_F(PageTest, ItemIndexesOfRegionsAndPages) {
  auto page = PageOf({OmrRegion(4), OmrRegion(0), OmrRegion(2)});
  EXPECT_EQ(page->GetItemIndex(3), 5);
  EXPECT_EQ(page->GetItemIndex(2), 4);  // no items: the count before it
  EXPECT_EQ(page->GetItemIndex(2, false), 4);
  EXPECT_EQ(page->GetItemIndex(3, false), 6);
  EXPECT_EQ(page->GetItemIndex(9), 0);
  EXPECT_EQ(page->GetItemIndex(0), 0);

  EXPECT_EQ(page->ReturnIndex(), 0);
  auto owner = clsXUNTemplate::Create();
  owner->Pages()->Add(PageOf({OmrRegion(3)}));
  owner->Pages()->Add(page);
  EXPECT_EQ(page->ReturnIndex(), 2);
  EXPECT_EQ(page->Template(), owner);
  EXPECT_EQ(page->ReturnIndex(true), 4);
  EXPECT_TRUE(Reported().empty());
}

TEST_F(PageTest, CopyOwnsItsRegionsMarksAndImageFile) {
  testing::TempFolder folder;
  const std::string image = folder.File("scan.pcx");
  testing::WriteFileBytes(image, std::string("PCX\0\x01\xff", 6));
  auto source = OmrRegion(3);
  auto clip = clsXUNField::Create();
  clip->RecognitionType(xunRecogTypeImage);
  clip->ImageLinkQuestionKey(source->Questions()->Item(2)->Key());
  auto page = PageOf({source, clip});
  pages_->Add(page);
  page->Attributes()->Add("a", Variant(int32_t{1}));
  page->TimingMarks()->AddMark(10, 20, 30, 40);
  page->TimingMarks()->AddMark(10, 900, 30, 40);
  page->ImageFile(image);
  page->ColumnWidth(2.5f);

  auto copy = page->Copy();
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->Key(), "");
  EXPECT_EQ(copy->ColumnWidth(), 2.5f);  // unlike the template's Copy
  EXPECT_EQ(copy->NumFields(), 2);
  EXPECT_EQ(copy->Fields()->Page(), copy);
  const std::string copied_key = copy->Fields()->Item(1)->Questions()->Item(2)->Key();
  EXPECT_NE(copied_key, clip->ImageLinkQuestionKey());
  EXPECT_EQ(copy->Fields()->Item(2)->ImageLinkQuestionKey(), copied_key);
  EXPECT_NE(copy->Attributes(), page->Attributes());
  EXPECT_EQ(copy->Attributes()->Keys(), Strings{"a"});
  EXPECT_EQ(copy->TimingMarks()->AsString(), "10,20,30,40\t10,900,30,40");
  EXPECT_NE(copy->ImageFile(), image);
  EXPECT_EQ(fs::path(copy->ImageFile()).extension(), ".pcx");
  EXPECT_EQ(testing::ReadFileBytes(copy->ImageFile()), testing::ReadFileBytes(image));

  copy->Free();  // deletes the copy's file only
  EXPECT_TRUE(fs::exists(image));
  auto kept = page->Copy(true, false);
  EXPECT_EQ(kept->Key(), page->Key());
  EXPECT_EQ(kept->Attributes()->Count(), 0);  // a fresh dictionary, not the source's
  kept->Free();
  EXPECT_TRUE(Reported().empty());

  page->TimingMarks(nullptr);
  EXPECT_EQ(page->Copy(), nullptr);
  EXPECT_EQ(Reported(), Strings{"clsXUNPage.Copy #91"});
}

TEST_F(PageTest, FreeDeletesTheImageFileAndToleratesItsAbsence) {
  testing::TempFolder folder;
  auto page = PageOf({OmrRegion(2)});
  auto fields = page->Fields();
  page->ImageFile(folder.File("page.pcx"));
  testing::WriteFileBytes(page->ImageFile(), "x");
  fs::permissions(page->ImageFile(), fs::perms::owner_read);
  page->Free();
  EXPECT_FALSE(fs::exists(folder.File("page.pcx")));
  EXPECT_EQ(fields->Count(), 0);
  EXPECT_EQ(page->Fields(), nullptr);
  EXPECT_EQ(page->TimingMarks(), nullptr);
  EXPECT_EQ(page->Attributes(), nullptr);

  auto missing = clsXUNPage::Create();
  missing->ImageFile(folder.File("gone.pcx"));
  missing->Free();
  EXPECT_TRUE(Reported().empty());
}

}  // namespace
}  // namespace xun
