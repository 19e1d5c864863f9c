// The template: the top of the object tree, and the entry point for reading, saving, merging,
// copying and clearing a form template.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "xun/export.h"
#include "xun/model/enums.h"
#include "xun/model/pages.h"
#include "xun/support/bounded_array.h"
#include "xun/support/dictionary.h"
#include "xun/support/error_handler.h"
#include "xun/support/object.h"
#include "xun/support/variant.h"

namespace xun {

namespace detail {
struct TemplateInternals;
}

class XUN_API clsXUNTemplate : public Object {
 public:
  static std::shared_ptr<clsXUNTemplate> Create();

  // A slot for the caller; the template never looks inside it.
  std::shared_ptr<void> oState() const { return state_; }
  void oState(std::shared_ptr<void> value) { state_ = std::move(value); }
  // Character codes, joined with commas, that names, labels and values may not hold.
  std::string IllegalNameCharacters() const { return "46,33,39,91,93,44,34,40,41"; }
  std::string IllegalLabelCharacters() const { return "44,34,40,41"; }
  std::string IllegalValueCharacters() const { return "34,40,41"; }
  // Setting a list also points the list back at this template.
  std::shared_ptr<clsXUNPages> Pages() const { return pages_; }
  void Pages(std::shared_ptr<clsXUNPages> value);
  DictionaryPtr Attributes() const { return attributes_; }
  void Attributes(DictionaryPtr value) { attributes_ = std::move(value); }
  // The value as the template reader cleans it (text).
  Variant CleanValues(const std::string& Value, bool stripTabs = true,
                      const std::string& additionalStripChars = {}) const;
  double PageHeight() const { return page_height_; }
  void PageHeight(double value) { page_height_ = value; }
  double PageWidth() const { return page_width_; }
  void PageWidth(double value) { page_width_ = value; }
  xunOrientationType Orientation() const { return orientation_; }
  void Orientation(xunOrientationType value) { orientation_ = value; }
  const std::string& Name() const { return name_; }
  void Name(std::string value) { name_ = std::move(value); }
  const std::string& RDDName() const { return rdd_name_; }
  void RDDName(std::string value) { rdd_name_ = std::move(value); }
  // Counts, computed on every call in 16-bit arithmetic (an overflow is reported, result 0).
  int16_t NumPages() const;
  int16_t NumDBVerify() const;
  int16_t NumFields() const;
  int16_t NumQuestions() const;
  int16_t NumItems() const;
  int16_t NumGradedItems() const;
  int16_t NumSubjectiveItems() const;
  int16_t HeaderCount() const { return header_count_; }
  void HeaderCount(int16_t value) { header_count_ = value; }
  int16_t HeaderPageCount() const { return header_page_count_; }
  void HeaderPageCount(int16_t value) { header_page_count_ = value; }
  int16_t HeaderItemCount() const { return header_item_count_; }
  void HeaderItemCount(int16_t value) { header_item_count_ = value; }
  const std::string& Version() const { return version_; }
  const std::string& CompatibleVersion() const { return compatible_version_; }
  const std::string& Manufacturer() const { return manufacturer_; }
  void Manufacturer(std::string value) { manufacturer_ = std::move(value); }
  void Description(std::string value) { description_ = std::move(value); }
  const std::string& Description() const { return description_; }
  // Reads a batch file and merges its header templates and form template into this template.
  bool ReadBatch(const std::string& sBatchFile, const std::string& sDefaultTemplateDir);
  // Reads a template file in place of the content; Editable becomes bForEdit whatever the outcome.
  bool Read(const std::string& sTemplateFile, bool bForEdit = false);
  // Writes a batch file naming the form template and the header templates in order.
  bool SaveBatch(const std::string& sBatchTemplate, const std::string& sTemplate,
                 const std::vector<std::string>& vHeaderTemplates);
  // Saves to a template file. Refused for a template read for reading only, an empty name, or
  // a folder that does not exist. *bInvalid tells whether what was written is valid.
  bool Save(const std::string& sTemplateFile, bool bVerbose = true, bool* bInvalid = nullptr,
            bool bRegister = true);
  // Merges oAppend's pages into this template.
  bool Append(const std::shared_ptr<clsXUNTemplate>& oAppend);
  // Back to an empty Letter-size template; deletes the pages' image files.
  void Clear();
  // Installs the error handler of this thread (nullptr removes it); True when one is set.
  bool SetError(std::shared_ptr<IErrorHandler> oErr);
  // The question, region, and item numbers of the template's running item list (see
  // docs/object-model.md for the numbering).
  std::shared_ptr<clsXUNQuestion> GetQuestion(int16_t iItemIndex) const;
  std::shared_ptr<clsXUNField> GetField(int16_t iItemIndex) const;
  // The first (bStart) or last item of page iPageIndex, or of its region iFieldIndex when given
  // (1-based; 0 means the whole page).
  int16_t GetItemIndex(int16_t iPageIndex, int16_t iFieldIndex = 0, bool bStart = true) const;
  // The item of the first question that identifies the test version; 0 when there is none.
  int16_t GetTestVersionIndex() const;
  // The data column name of every item, and the question of every item (nullptr for an item
  // that has no question of its own), both indexed from 1.
  BoundedArray<std::string> GetActualNames() const;
  BoundedArray<std::shared_ptr<clsXUNQuestion>> GetActualQuestions() const;
  // A deep copy. ColumnWidth, Editable and Valid are deliberately not copied.
  std::shared_ptr<clsXUNTemplate> Copy(bool bCopyAttributes = true, bool bKeepKey = false) const;
  // Whether any question has that identification role (any role for xunIDTypeAny).
  bool IDFieldsExist(xunIDType eIDType) const;
  // The lowest link group number that no region uses yet.
  int16_t GetFirstAvailableLinkGroup() const;
  // Whether the identification regions of that role follow the rules of docs/object-model.md.
  // When not, the reason goes to *sMessage and, with bVerbose, is shown and reported.
  bool IDFieldsValid(xunIDType eIDType, bool bVerbose = false,
                     std::string* sMessage = nullptr) const;
  // Screen twips to pixels at 100 dots per inch, halves rounded away from zero.
  int32_t TwipsTo100DPI(int32_t lValue) const;
  bool Editable() const { return editable_; }
  bool Valid() const { return valid_; }
  // Frees the pages and releases the lists; meant as the last call.
  void Free();
  bool Duplex() const { return duplex_; }
  void Duplex(bool value) { duplex_ = value; }
  bool SelfScore() const { return self_score_; }
  void SelfScore(bool value) { self_score_ = value; }
  void Tag(std::string value) { tag_ = std::move(value); }
  const std::string& Tag() const { return tag_; }
  void ReadType(xunTemplateReadType value) { read_type_ = value; }
  xunTemplateReadType ReadType() const { return read_type_; }
  float ColumnWidth() const;
  void ColumnWidth(float value);
  int16_t Columns() const { return columns_; }
  void Columns(int16_t value) { columns_ = value; }
  float RowTopMargin() const;
  void RowTopMargin(float value);
  float RowBottomMargin() const;
  void RowBottomMargin(float value);
  // Scrambles a value with three 8-character keys (upper-case hexadecimal cipher text); any
  // other key length is refused (error 380, reported) with an empty result.
  std::string Encrypt(const std::string& sValue, const std::string& sKey1, const std::string& sKey2,
                      const std::string& sKey3) const;
  std::string Decrypt(const std::string& sValue, const std::string& sKey1, const std::string& sKey2,
                      const std::string& sKey3) const;

 private:
  friend struct detail::TemplateInternals;
  template <class>
  friend struct detail::ObjectAllocator;
  clsXUNTemplate();

  std::shared_ptr<void> state_;
  std::shared_ptr<clsXUNPages> pages_;
  DictionaryPtr attributes_;
  double page_height_ = 0, page_width_ = 0;
  xunOrientationType orientation_ = xunOrientationTypeFormPortrait;
  std::string name_, rdd_name_;
  int16_t header_count_ = 0, header_page_count_ = 0, header_item_count_ = 0;
  std::string version_ = "8", compatible_version_, manufacturer_, description_;
  bool editable_ = true, valid_ = false, duplex_ = false, self_score_ = false;
  std::string tag_;
  xunTemplateReadType read_type_ = xunTemplateReadTypeOffice;
  float column_width_ = 0.167f;
  int16_t columns_ = 0;
  float row_top_margin_ = 0.05f, row_bottom_margin_ = 0.05f;
};

namespace detail {
// The setters of read-only template state, for the reader and writer only.
struct TemplateInternals {
  static void SetVersion(clsXUNTemplate& t, std::string v) { t.version_ = std::move(v); }
  static void SetCompatibleVersion(clsXUNTemplate& t, std::string v) {
    t.compatible_version_ = std::move(v);
  }
  static void SetValid(clsXUNTemplate& t, bool v) { t.valid_ = v; }
  static void SetEditable(clsXUNTemplate& t, bool v) { t.editable_ = v; }
};
}  // namespace detail

}  // namespace xun
