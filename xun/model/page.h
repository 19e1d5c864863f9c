// One page of a form: its regions, timing marks, attributes and page image facts.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "xun/export.h"
#include "xun/model/enums.h"
#include "xun/model/fields.h"
#include "xun/model/fwd.h"
#include "xun/model/keyed_object_list.h"
#include "xun/model/timing_marks.h"
#include "xun/support/dictionary.h"
#include "xun/support/object.h"

namespace xun {

class XUN_API clsXUNPage : public Object, public detail::ListMember<clsXUNPages> {
 public:
  static std::shared_ptr<clsXUNPage> Create();

  DictionaryPtr Attributes() const { return attributes_; }
  void Attributes(DictionaryPtr value) { attributes_ = std::move(value); }
  std::shared_ptr<clsXUNTimingMarks> TimingMarks() const { return timing_marks_; }
  void TimingMarks(std::shared_ptr<clsXUNTimingMarks> value) { timing_marks_ = std::move(value); }
  // Setting a list also points the list back at this page.
  std::shared_ptr<clsXUNFields> Fields() const { return fields_; }
  void Fields(std::shared_ptr<clsXUNFields> value);
  // The list that holds this page (back reference).
  std::shared_ptr<clsXUNPages> Pages() const { return Owner(); }
  void Pages(const std::shared_ptr<clsXUNPages>& value) { SetOwner(value); }
  // The key let is ignored while the page is in a list.
  const std::string& Key() const { return MemberKey(); }
  void Key(std::string value) { SetMemberKey(std::move(value)); }
  int16_t NumItems() const;
  int16_t NumGradedItems() const;
  int16_t NumSubjectiveItems() const;
  // Questions of a linked chain count once, at its first region.
  int16_t NumQuestions() const;
  int16_t NumFields() const;
  // The position of the OMR region with the most bubbles (the first on a tie), 0 when no OMR
  // region has more than one.
  int16_t LargeField() const;
  // The position of the page's first region holding a question of that identification role.
  int16_t IDField(xunIDType eIDType) const;
  // The number of questions of that identification role on the page.
  int16_t NumIDs(xunIDType eIDType) const;
  // Makes page lImagePageIndex of an image file this page's own image.
  bool ImageImport(const std::string& sImportFile, int32_t lImagePageIndex = 1);
  // The page's own image file, deleted by Free.
  const std::string& ImageFile() const { return image_file_; }
  void ImageFile(std::string value) { image_file_ = std::move(value); }
  // 0 means: take the template's.
  float ColumnWidth() const;
  void ColumnWidth(float value);
  // A new page with copies of the regions, timing marks and (when asked) attributes, and its
  // own copy of the image file.
  std::shared_ptr<clsXUNPage> Copy(bool bKeepKey = false, bool bCopyAttributes = true) const;
  bool Align(int16_t iXResolution, int16_t iYResolution);
  // The 1-based number of the first item of region iFieldIndex (bStart) or of its last item.
  int16_t GetItemIndex(int16_t iFieldIndex, bool bStart = true) const;
  // Frees the regions, breaks the references and deletes the page's image file.
  void Free();
  // The 1-based position in the page list; with bInTemplate the template item number of the
  // page's first item.
  int32_t ReturnIndex(bool bInTemplate = false) const;
  // Links the given OMR regions of this page into a new link group.
  bool Link(const std::vector<std::shared_ptr<clsXUNField>>& oFields, bool bVerbose = true);
  // Takes the region out of its link group.
  bool UnLink(const std::shared_ptr<clsXUNField>& oField);
  // The first, last, next and previous region of a link group, or nullptr.
  std::shared_ptr<clsXUNField> LinkFirst(int16_t iLinkGroup) const;
  std::shared_ptr<clsXUNField> LinkLast(int16_t iLinkGroup) const;
  std::shared_ptr<clsXUNField> LinkNext(const std::shared_ptr<clsXUNField>& oField) const;
  std::shared_ptr<clsXUNField> LinkPrevious(const std::shared_ptr<clsXUNField>& oField) const;
  const std::string& Tag() const { return tag_; }
  void Tag(std::string value) { tag_ = std::move(value); }
  int16_t NumTimingMarks() const;
  int16_t XDPI() const { return xdpi_; }
  void XDPI(int16_t value) { xdpi_ = value; }
  int16_t YDPI() const { return ydpi_; }
  void YDPI(int16_t value) { ydpi_ = value; }
  int16_t ImageWidth() const { return image_width_; }
  void ImageWidth(int16_t value) { image_width_ = value; }
  int16_t ImageHeight() const { return image_height_; }
  void ImageHeight(int16_t value) { image_height_ = value; }
  int16_t DropOutThreshold() const { return drop_out_threshold_; }
  void DropOutThreshold(int16_t value) { drop_out_threshold_ = value; }
  xunTemplateDropOutColor DropOutColor() const { return drop_out_color_; }
  void DropOutColor(xunTemplateDropOutColor value) { drop_out_color_ = value; }
  int16_t WeightedRotate() const { return weighted_rotate_; }
  void WeightedRotate(int16_t value) { weighted_rotate_ = value; }
  int32_t FilledPixels() const { return filled_pixels_; }
  void FilledPixels(int32_t value) { filled_pixels_ = value; }
  // Registers the page's regions with the help of its timing marks.
  bool RegisterHybrid();
  // Finds the page's timing marks on its image and makes them the page's list.
  bool FindTimingMarks();

  // The template that holds this page, through its list.
  std::shared_ptr<clsXUNTemplate> Template() const;

 private:
  template <class>
  friend struct detail::ObjectAllocator;
  clsXUNPage();
  DictionaryPtr attributes_;
  std::shared_ptr<clsXUNTimingMarks> timing_marks_;
  std::shared_ptr<clsXUNFields> fields_;
  std::string image_file_;
  float column_width_ = 0;
  std::string tag_;
  int16_t xdpi_ = 0, ydpi_ = 0, image_width_ = 0, image_height_ = 0;
  int16_t drop_out_threshold_ = 20;
  xunTemplateDropOutColor drop_out_color_ = xunTemplateDropOutColorNone;
  int16_t weighted_rotate_ = -1;
  int32_t filled_pixels_ = -1;
};

}  // namespace xun
