// A region: one rectangle of a page read in one way (OMR grid, barcode, OCR text, image clip).
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "xun/export.h"
#include "xun/model/enums.h"
#include "xun/model/field_db.h"
#include "xun/model/field_extra.h"
#include "xun/model/fwd.h"
#include "xun/model/keyed_object_list.h"
#include "xun/model/questions.h"
#include "xun/support/dictionary.h"
#include "xun/support/object.h"

namespace xun {

class XUN_API clsXUNField : public Object, public detail::ListMember<clsXUNFields> {
 public:
  static std::shared_ptr<clsXUNField> Create();

  DictionaryPtr Attributes() const { return attributes_; }
  void Attributes(DictionaryPtr value) { attributes_ = std::move(value); }
  // Setting a list also points the list back at this region.
  std::shared_ptr<clsXUNQuestions> Questions() const { return questions_; }
  void Questions(std::shared_ptr<clsXUNQuestions> value);
  // The list that holds this region (back reference).
  std::shared_ptr<clsXUNFields> Fields() const { return Owner(); }
  void Fields(const std::shared_ptr<clsXUNFields>& value) { SetOwner(value); }
  // Whether the region's Extra holds a registration against the page image.
  bool IsRegistered();
  std::shared_ptr<clsXUNFieldExtra> Extra() const { return extra_; }
  void Extra(std::shared_ptr<clsXUNFieldExtra> value) { extra_ = std::move(value); }
  std::shared_ptr<clsXUNFieldDB> DB() const { return db_; }
  void DB(std::shared_ptr<clsXUNFieldDB> value) { db_ = std::move(value); }
  xunRecogType RecognitionType() const { return recognition_type_; }
  // Setting OCR also sets Threshold to 70: OCR regions use another threshold scale.
  void RecognitionType(xunRecogType value);
  xunOrientationType Orient() const { return orient_; }
  void Orient(xunOrientationType value) { orient_ = value; }
  xunFieldType FieldType() const { return field_type_; }
  void FieldType(xunFieldType value) { field_type_ = value; }
  xunDataType DataType() const { return data_type_; }
  void DataType(xunDataType value) { data_type_ = value; }
  xunImageClipType ImageClipType() const { return image_clip_type_; }
  void ImageClipType(xunImageClipType value) { image_clip_type_ = value; }
  xunImageClipCompression ImageClipCompression() const { return image_clip_compression_; }
  void ImageClipCompression(xunImageClipCompression value) { image_clip_compression_ = value; }
  const std::string& ImageClipFile() const { return image_clip_file_; }
  void ImageClipFile(std::string value) { image_clip_file_ = std::move(value); }
  bool ImageClipAddColumn() const { return image_clip_add_column_; }
  void ImageClipAddColumn(bool value) { image_clip_add_column_ = value; }
  bool ImageFillPrompt() const { return image_fill_prompt_; }
  void ImageFillPrompt(bool value) { image_fill_prompt_ = value; }
  const std::string& ImageLinkValue() const { return image_link_value_; }
  void ImageLinkValue(std::string value) { image_link_value_ = std::move(value); }
  const std::string& ImageLinkQuestionKey() const { return image_link_question_key_; }
  void ImageLinkQuestionKey(std::string value) { image_link_question_key_ = std::move(value); }
  // The items (data columns) the region produces; 0 for a linked region after the first.
  int16_t NumItems() const;
  // Bubbles of an OMR region (rows x columns, 16-bit); 0 for other kinds.
  int32_t NumMarks() const;
  const std::string& FieldName() const { return field_name_; }
  void FieldName(std::string value) { field_name_ = std::move(value); }
  const std::string& BarcodeDelimiter() const { return barcode_delimiter_; }
  void BarcodeDelimiter(std::string value) { barcode_delimiter_ = std::move(value); }
  int16_t BarcodeDistance() const { return barcode_distance_; }
  void BarcodeDistance(int16_t value) { barcode_distance_ = value; }
  int16_t BarcodeLength() const { return barcode_length_; }
  void BarcodeLength(int16_t value) { barcode_length_ = value; }
  // The key let is ignored while the region is in a list.
  const std::string& Key() const { return MemberKey(); }
  void Key(std::string value) { SetMemberKey(std::move(value)); }
  int16_t Top() const { return top_; }
  void Top(int16_t value) { top_ = value; }
  int16_t Left() const { return left_; }
  void Left(int16_t value) { left_ = value; }
  int16_t Bottom() const { return bottom_; }
  void Bottom(int16_t value) { bottom_ = value; }
  int16_t Right() const { return right_; }
  void Right(int16_t value) { right_ = value; }
  // Bubble grid: the first row's and column's offset from the region's top-left corner, the
  // pitch between rows and columns, and the grid size.
  int16_t StartRow() const { return start_row_; }
  void StartRow(int16_t value) { start_row_ = value; }
  int16_t RowGap() const { return row_gap_; }
  void RowGap(int16_t value) { row_gap_ = value; }
  int16_t StartCol() const { return start_col_; }
  void StartCol(int16_t value) { start_col_ = value; }
  int16_t ColGap() const { return col_gap_; }
  void ColGap(int16_t value) { col_gap_ = value; }
  int16_t NumRows() const { return num_rows_; }
  void NumRows(int16_t value) { num_rows_ = value; }
  int16_t NumCols() const { return num_cols_; }
  void NumCols(int16_t value) { num_cols_ = value; }
  // Link group number; 0 when not linked.
  int16_t LinkGroup() const { return link_group_; }
  void LinkGroup(int16_t value) { link_group_ = value; }
  bool LinkStart() const { return link_start_; }
  void LinkStart(bool value) { link_start_ = value; }
  bool Read() const { return read_; }
  void Read(bool value) { read_ = value; }
  bool AutoDetect() const { return auto_detect_; }
  void AutoDetect(bool value) { auto_detect_ = value; }
  bool AutoIncrement() const { return auto_increment_; }
  void AutoIncrement(bool value) { auto_increment_ = value; }
  const std::string& DefaultFill() const { return default_fill_; }
  void DefaultFill(std::string value) { default_fill_ = std::move(value); }
  const std::string& Pattern() const { return pattern_; }
  void Pattern(std::string value) { pattern_ = std::move(value); }
  // Whether database verification is configured (see docs/object-model.md).
  bool DBVerify() const;
  // A free-standing deep copy: questions (each with a fresh key), extra values, database
  // settings and, when asked, attributes. Link settings and key only when asked to keep them.
  std::shared_ptr<clsXUNField> Copy(bool bKeepLink = false, bool bKeepKey = false,
                                    bool bCopyAttributes = true) const;
  int16_t Threshold() const { return threshold_; }
  void Threshold(int16_t value) { threshold_ = value; }
  // Searches the page image for the region's bubble grid.
  bool BubbleSearch(int16_t& iNumCols, int16_t& iNumRows, int16_t& iResult);
  // Registers the region against its page image; 0 on success.
  int16_t Register();
  // Fills Extra from the bubbles a search found.
  bool BuildExtra(const std::shared_ptr<clsXUNBubbles>& oBubbles);
  // The 1-based index of the region's first question of that identification role (any role
  // for xunIDTypeAny), 0 when there is none.
  int16_t IDQuestion(xunIDType eIDType) const;
  // The number of questions of that role; bVisibleOnly counts only those that add an item.
  int16_t NumIDs(xunIDType eIDType, bool bVisibleOnly = false) const;
  // Frees the questions and breaks every reference.
  void Free();
  // The item number of a question within the region (1-based), 0 when it produces no item.
  int16_t GetItemIndex(int16_t iQuestionIndex) const;
  // Detects the type and orientation of the barcode in the region on the page image.
  bool GetBarcodeType(xunFieldType& eBarcodeType, xunOrientationType* eOrientation = nullptr);
  // Aligns the region on an image of the given resolution.
  bool Align(int16_t iXResolution, int16_t iYResolution);
  // The 1-based position in its list; with bInTemplate the template item number of the
  // region's first item.
  int32_t ReturnIndex(bool bInTemplate = false) const;
  const std::string& Tag() const { return tag_; }
  void Tag(std::string value) { tag_ = std::move(value); }
  bool AutoIncrementSpansTemplates() const { return auto_increment_spans_templates_; }
  void AutoIncrementSpansTemplates(bool value) { auto_increment_spans_templates_ = value; }

  // The item count; with bAll the count of the region's own bubbles and columns regardless of
  // linking and hidden identification questions (used by Questions().Update()).
  int16_t CalculateNumItems(bool bAll) const;
  // The page that holds this region, through its list.
  std::shared_ptr<clsXUNPage> Page() const;

 private:
  template <class>
  friend struct detail::ObjectAllocator;
  clsXUNField();
  DictionaryPtr attributes_;
  std::shared_ptr<clsXUNQuestions> questions_;
  std::shared_ptr<clsXUNFieldExtra> extra_;
  std::shared_ptr<clsXUNFieldDB> db_;
  xunRecogType recognition_type_ = static_cast<xunRecogType>(0);
  xunOrientationType orient_ = static_cast<xunOrientationType>(0);
  xunFieldType field_type_ = static_cast<xunFieldType>(0);
  xunDataType data_type_ = static_cast<xunDataType>(0);
  xunImageClipType image_clip_type_ = xunImageClipTypeUnknown;
  xunImageClipCompression image_clip_compression_ = xunImageClipCompressionUnknown;
  std::string image_clip_file_;
  bool image_clip_add_column_ = false, image_fill_prompt_ = false;
  std::string image_link_value_, image_link_question_key_, field_name_, barcode_delimiter_;
  int16_t barcode_distance_ = 0, barcode_length_ = 0;
  int16_t top_ = 0, left_ = 0, bottom_ = 0, right_ = 0;
  int16_t start_row_ = 0, row_gap_ = 0, start_col_ = 0, col_gap_ = 0, num_rows_ = 0, num_cols_ = 0;
  int16_t link_group_ = 0;
  bool link_start_ = false, read_ = true, auto_detect_ = false, auto_increment_ = false;
  std::string default_fill_, pattern_;
  int16_t threshold_ = 3;
  std::string tag_;
  bool auto_increment_spans_templates_ = false;
};

}  // namespace xun
