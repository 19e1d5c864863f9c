#include "xun/model/template.h"

#include <cmath>
#include <filesystem>
#include <system_error>

#include "xun/model/page.h"
#include "xun/support/error_reporter.h"
#include "xun/support/numeric.h"
#include "xun/support/text.h"
#include "xun/support/trap.h"
#include "xun/support/value_helpers.h"
#include "xun/templatefile/bas_template.h"
#include "xun/templatefile/replace_content.h"

namespace xun {
namespace {

// Sums a 16-bit count over the pages; an overflow is error 6.
template <class F>
int16_t SumOverPages(const std::shared_ptr<clsXUNPages>& pages, F&& count) {
  int16_t total = 0;
  if (!pages) return total;
  for (const auto& page : *pages)
    total = Add16(total, count(*page));
  return total;
}

void ReportRefusal(const std::string& text, const std::string& title, bool bVerbose) {
  basError::ReportError(0, Variant::Missing(), basError::kKindValidation, text,
                        "clsXUNTemplate.Save", title, {}, {}, {}, 1, {}, {}, {}, 0,
                        Variant(!bVerbose));
}

void RequireKeyLength(const std::string& k1, const std::string& k2, const std::string& k3) {
  for (const std::string* key : {&k1, &k2, &k3})
    if (text::Utf16Length(*key) != 8) Raise(kErrInvalidPropertyValue);
}

}  // namespace

clsXUNTemplate::clsXUNTemplate() : attributes_(Dictionary::Create()) {}

std::shared_ptr<clsXUNTemplate> clsXUNTemplate::Create() {
  std::shared_ptr<clsXUNTemplate> created = MakeObject<clsXUNTemplate>();
  created->Pages(clsXUNPages::Create());
  return created;
}

void clsXUNTemplate::Pages(std::shared_ptr<clsXUNPages> value) {
  pages_ = std::move(value);
  if (pages_) pages_->Template(SharedFrom(this));
}

Variant clsXUNTemplate::CleanValues(const std::string& Value, bool stripTabs,
                                    const std::string& additionalStripChars) const {
  return Trap("clsXUNTemplate.CleanValues", Variant(std::string()), [&] {
    return Variant(basTemplate::CleanTemplateValues(Value, stripTabs, additionalStripChars));
  });
}

int16_t clsXUNTemplate::NumPages() const {
  // Not trapped: a page list cannot hold more pages than a 16-bit count in practice, and the
  // value is clamped rather than failing.
  if (!pages_) return 0;
  return static_cast<int16_t>(std::min<int32_t>(pages_->Count(), INT16_MAX));
}

int16_t clsXUNTemplate::NumDBVerify() const {
  return Trap("clsXUNTemplate.NumDBVerify", int16_t{0}, [&] {
    return SumOverPages(pages_, [](const clsXUNPage& page) {
      int16_t n = 0;
      if (page.Fields())
        for (const auto& field : *page.Fields())
          if (field->DBVerify()) n = Add16(n, 1);
      return n;
    });
  });
}

int16_t clsXUNTemplate::NumFields() const {
  return Trap("clsXUNTemplate.NumFields", int16_t{0}, [&] {
    return SumOverPages(pages_, [](const clsXUNPage& page) { return page.NumFields(); });
  });
}

int16_t clsXUNTemplate::NumQuestions() const {
  // The location names the page on purpose: the count is the page's.
  return Trap("clsXUNPage.NumQuestions", int16_t{0}, [&] {
    return SumOverPages(pages_, [](const clsXUNPage& page) { return page.NumQuestions(); });
  });
}

int16_t clsXUNTemplate::NumItems() const {
  return Trap("clsXUNTemplate.NumItems", int16_t{0}, [&] {
    return SumOverPages(pages_, [](const clsXUNPage& page) { return page.NumItems(); });
  });
}

int16_t clsXUNTemplate::NumGradedItems() const {
  return Trap("clsXUNTemplate.NumGradedItems", int16_t{0}, [&] {
    return SumOverPages(pages_, [](const clsXUNPage& page) { return page.NumGradedItems(); });
  });
}

int16_t clsXUNTemplate::NumSubjectiveItems() const {
  return Trap("clsXUNTemplate.NumSubjectiveItems", int16_t{0}, [&] {
    return SumOverPages(pages_, [](const clsXUNPage& page) { return page.NumSubjectiveItems(); });
  });
}

bool clsXUNTemplate::ReadBatch(const std::string& sBatchFile,
                               const std::string& sDefaultTemplateDir) {
  return Trap("clsXUNTemplate.ReadBatch", false,
              [&] { return basTemplate::ReadBatch(*this, sBatchFile, sDefaultTemplateDir); });
}

bool clsXUNTemplate::Read(const std::string& sTemplateFile, bool bForEdit) {
  // Whatever the outcome, a host's error passing through included: a template read for reading
  // only can never be saved.
  struct SetEditable {
    clsXUNTemplate& t;
    bool value;
    ~SetEditable() { t.editable_ = value; }
  } set_editable{*this, bForEdit};
  return Trap("clsXUNTemplate.Read", false,
              [&] { return basTemplate::ReadReplacing(sTemplateFile, *this, bForEdit); });
}

bool clsXUNTemplate::SaveBatch(const std::string& sBatchTemplate, const std::string& sTemplate,
                               const std::vector<std::string>& vHeaderTemplates) {
  return Trap("clsXUNTemplate.SaveBatch", false,
              [&] { return basTemplate::SaveBatch(sBatchTemplate, sTemplate, vHeaderTemplates); });
}

bool clsXUNTemplate::Save(const std::string& sTemplateFile, bool bVerbose, bool* bInvalid,
                          bool bRegister) {
  return Trap("clsXUNTemplate.Save", false, [&] {
    if (!editable_) {
      ReportRefusal(
          "The specified template was opened for reading only and cannot be saved. Open the "
          "template for editing before attempting to save it.",
          "Read Only", bVerbose);
      return false;
    }
    // A bare file name lies in the current folder; an empty name names no file in any folder.
    std::filesystem::path folder = std::filesystem::path(sTemplateFile).parent_path();
    if (folder.empty()) folder = ".";
    std::error_code ec;
    if (sTemplateFile.empty() || !std::filesystem::is_directory(folder, ec)) {
      ReportRefusal("Operation cannot be completed. The specified folder does not exist.",
                    "Invalid Save Folder", bVerbose);
      return false;
    }
    return basTemplate::SaveTemplate(sTemplateFile, *this, bVerbose, bInvalid, bRegister);
  });
}

bool clsXUNTemplate::Append(const std::shared_ptr<clsXUNTemplate>& oAppend) {
  return Trap("clsXUNTemplate.Append", false, [&] {
    const std::vector<std::shared_ptr<clsXUNTemplate>> members{SharedFrom(this), oAppend};
    return basTemplate::MergeTemplates(members, *this);
  });
}

void clsXUNTemplate::Clear() {
  Trap("clsXUNTemplate.Clear", [&] {
    if (pages_) {
      // The page images go on purpose, temporary or not.
      for (const auto& page : *pages_) {
        std::error_code ec;
        if (!page->ImageFile().empty() && std::filesystem::is_regular_file(page->ImageFile(), ec))
          std::filesystem::remove(page->ImageFile());
      }
      pages_->Free();
    }
    Pages(clsXUNPages::Create());
    if (attributes_) attributes_->RemoveAll();
    attributes_ = Dictionary::Create();
    name_.clear();
    version_.clear();  // empty, not "8"
    manufacturer_.clear();
    description_.clear();
    header_count_ = header_page_count_ = header_item_count_ = 0;
    orientation_ = xunOrientationTypeFormPortrait;
    page_height_ = 11;
    page_width_ = 8.5;
    state_.reset();
  });
}

bool clsXUNTemplate::SetError(std::shared_ptr<IErrorHandler> oErr) {
  return Trap("clsXUNTemplate.SetError", false, [&] {
    const bool set = oErr != nullptr;
    basError::SetHandler(std::move(oErr));
    return set;
  });
}

std::shared_ptr<clsXUNTemplate> clsXUNTemplate::Copy(bool bCopyAttributes, bool bKeepKey) const {
  return Trap("clsXUNTemplate.Copy", std::shared_ptr<clsXUNTemplate>(), [&] {
    std::shared_ptr<clsXUNTemplate> copy = Create();
    if (bCopyAttributes) copy->Attributes(basPublic::CopyDictionary(attributes_));
    copy->Columns(columns_);
    copy->compatible_version_ = compatible_version_;
    copy->version_ = version_;
    copy->Description(description_);
    copy->Duplex(duplex_);
    copy->HeaderCount(header_count_);
    copy->HeaderItemCount(header_item_count_);
    copy->HeaderPageCount(header_page_count_);
    copy->Manufacturer(manufacturer_);
    copy->Name(name_);
    copy->Orientation(orientation_);
    copy->PageHeight(page_height_);
    copy->PageWidth(page_width_);
    copy->RDDName(rdd_name_);
    copy->ReadType(read_type_);
    copy->RowBottomMargin(row_bottom_margin_);
    copy->RowTopMargin(row_top_margin_);
    copy->SelfScore(self_score_);
    copy->Tag(tag_);
    // ColumnWidth is deliberately not copied: the copy keeps its own initial value.
    if (pages_)
      for (const auto& page : *pages_) {
        std::shared_ptr<clsXUNPage> page_copy = page->Copy(bKeepKey, bCopyAttributes);
        if (!page_copy) Raise(kErrObjectNotSet);
        copy->Pages()->Add(page_copy);
      }
    return copy;
  });
}

int32_t clsXUNTemplate::TwipsTo100DPI(int32_t lValue) const {
  return Trap("clsXUNTemplate.TwipsTo100DPI", int32_t{0}, [&] {
    // 1440 twips per inch over 100 dots per inch; the classic "0" format rounds halves away
    // from zero.
    return CLng(std::round(static_cast<double>(lValue) / 14.4));
  });
}

void clsXUNTemplate::Free() {
  Trap("clsXUNTemplate.Free", [&] {
    if (pages_) pages_->Free();
    pages_.reset();
    state_.reset();
    attributes_.reset();
  });
}

float clsXUNTemplate::ColumnWidth() const {
  return column_width_;
}
void clsXUNTemplate::ColumnWidth(float value) {
  column_width_ = value;
}
float clsXUNTemplate::RowTopMargin() const {
  return row_top_margin_;
}
void clsXUNTemplate::RowTopMargin(float value) {
  row_top_margin_ = value;
}
float clsXUNTemplate::RowBottomMargin() const {
  return row_bottom_margin_;
}
void clsXUNTemplate::RowBottomMargin(float value) {
  row_bottom_margin_ = value;
}

std::string clsXUNTemplate::Encrypt(const std::string& sValue, const std::string& sKey1,
                                    const std::string& sKey2, const std::string& sKey3) const {
  return Trap("clsXUNTemplate.Encrypt", std::string(), [&] {
    RequireKeyLength(sKey1, sKey2, sKey3);
    bool hex = true;
    return basPublic::Encrypt(sValue, sKey1, sKey2, sKey3, hex);
  });
}

std::string clsXUNTemplate::Decrypt(const std::string& sValue, const std::string& sKey1,
                                    const std::string& sKey2, const std::string& sKey3) const {
  return Trap("clsXUNTemplate.Decrypt", std::string(), [&] {
    RequireKeyLength(sKey1, sKey2, sKey3);
    return basPublic::HexToUnicode(basPublic::Decrypt(sValue, sKey1, sKey2, sKey3));
  });
}

}  // namespace xun
