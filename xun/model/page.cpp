#include "xun/model/page.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <unordered_map>

#include "xun/model/item_walk.h"
#include "xun/model/pages.h"
#include "xun/model/template.h"
#include "xun/support/file_helpers.h"
#include "xun/support/numeric.h"
#include "xun/support/runtime_error.h"
#include "xun/support/trap.h"
#include "xun/support/value_helpers.h"
#include "xun/templatefile/bas_template.h"
#include "xun/templatefile/link_groups.h"

namespace xun {
namespace {

namespace fs = std::filesystem;

// A file (not a folder) of that name exists; an empty name or an unreadable path is no file.
bool FileExists(const std::string& path) {
  if (path.empty()) return false;
  std::error_code ec;
  const fs::file_status status = fs::status(path, ec);
  return !ec && fs::exists(status) && !fs::is_directory(status);
}

// The region list, or error 91 when a caller (or Free) took it away.
const clsXUNFields& FieldList(const std::shared_ptr<clsXUNFields>& fields) {
  if (!fields) Raise(kErrObjectNotSet);
  return *fields;
}

const clsXUNQuestions& QuestionList(const clsXUNField& field) {
  const std::shared_ptr<clsXUNQuestions> questions = field.Questions();
  if (!questions) Raise(kErrObjectNotSet);
  return *questions;
}

// Counts the questions of every region that satisfy `test`, in 16-bit arithmetic.
template <class Test>
int16_t CountQuestions(const std::shared_ptr<clsXUNFields>& fields, Test test) {
  int16_t count = 0;
  for (const std::shared_ptr<clsXUNField>& field : FieldList(fields))
    for (const std::shared_ptr<clsXUNQuestion>& question : QuestionList(*field))
      if (test(*question)) count = Add16(count, 1);
  return count;
}

}  // namespace

clsXUNPage::clsXUNPage() = default;

std::shared_ptr<clsXUNPage> clsXUNPage::Create() {
  std::shared_ptr<clsXUNPage> page = MakeObject<clsXUNPage>();
  // The region list points back at the page, which needs the page held first.
  Trap("clsXUNPage.Class_Initialize", [&] {
    page->attributes_ = Dictionary::Create();
    page->timing_marks_ = clsXUNTimingMarks::Create();
    page->Fields(clsXUNFields::Create());
  });
  return page;
}

void clsXUNPage::Fields(std::shared_ptr<clsXUNFields> value) {
  fields_ = std::move(value);
  if (fields_) fields_->Page(SharedFrom(this));
}

int16_t clsXUNPage::NumItems() const {
  return Trap("clsXUNPage.NumItems", int16_t{0}, [&] {
    // Linked regions after the first already give 0.
    return detail::WalkRegions(*this, 0, [](const detail::RegionSlot&) { return true; });
  });
}

int16_t clsXUNPage::NumGradedItems() const {
  return Trap("clsXUNPage.NumGradedItems", int16_t{0}, [&] {
    return CountQuestions(fields_, [](const clsXUNQuestion& q) { return q.Grade(); });
  });
}

int16_t clsXUNPage::NumSubjectiveItems() const {
  return Trap("clsXUNPage.NumSubjectiveItems", int16_t{0}, [&] {
    return CountQuestions(fields_, [](const clsXUNQuestion& q) { return q.SubjectiveField(); });
  });
}

int16_t clsXUNPage::NumQuestions() const {
  return Trap("clsXUNPage.NumQuestions", int16_t{0}, [&] {
    int16_t count = 0;
    for (const std::shared_ptr<clsXUNField>& field : FieldList(fields_))
      if (field->LinkGroup() == 0 || field->LinkStart())
        count = Add16(count, QuestionList(*field).Count());
    return count;
  });
}

int16_t clsXUNPage::NumFields() const {
  return Trap("clsXUNPage.NumFields", int16_t{0}, [&] { return To16(FieldList(fields_).Count()); });
}

int16_t clsXUNPage::LargeField() const {
  return Trap("clsXUNPage.LargeField", int16_t{0}, [&] {
    int16_t largest = 0, position = 0;
    int32_t most_marks = 0;
    for (const std::shared_ptr<clsXUNField>& field : FieldList(fields_)) {
      position = Add16(position, 1);
      if (field->RecognitionType() != xunRecogTypeOMR) continue;
      // Strictly greater: the first of equally large regions wins.
      if (const int32_t marks = field->NumMarks(); marks > most_marks) {
        largest = position;
        most_marks = marks;
      }
    }
    return most_marks > 1 ? largest : int16_t{0};
  });
}

int16_t clsXUNPage::IDField(xunIDType eIDType) const {
  return Trap("clsXUNPage.IDField", int16_t{0}, [&] {
    int16_t position = 0;
    for (const std::shared_ptr<clsXUNField>& field : FieldList(fields_)) {
      position = Add16(position, 1);
      if (field->IDQuestion(eIDType) > 0) return position;
    }
    return int16_t{0};
  });
}

int16_t clsXUNPage::NumIDs(xunIDType eIDType) const {
  return Trap("clsXUNPage.NumIDs", int16_t{0}, [&] {
    int16_t count = 0;
    for (const std::shared_ptr<clsXUNField>& field : FieldList(fields_))
      count = Add16(count, field->NumIDs(eIDType));
    return count;
  });
}

float clsXUNPage::ColumnWidth() const {
  return Trap("clsXUNPage.ColumnWidth", 0.0f, [&] { return column_width_; });
}

void clsXUNPage::ColumnWidth(float value) {
  Trap("clsXUNPage.ColumnWidth", [&] { column_width_ = value; });
}

std::shared_ptr<clsXUNPage> clsXUNPage::Copy(bool bKeepKey, bool bCopyAttributes) const {
  return Trap("clsXUNPage.Copy", std::shared_ptr<clsXUNPage>(), [&] {
    std::shared_ptr<clsXUNPage> copy = Create();
    if (bCopyAttributes) copy->Attributes(basPublic::CopyDictionary(attributes_));

    // Old question key to the key its copy received, so image-link regions can follow. Should
    // two regions share a question key, the first region's question keeps the mapping.
    std::unordered_map<std::string, std::string> question_keys;
    const std::shared_ptr<clsXUNFields> copied_fields = copy->Fields();
    if (!copied_fields) Raise(kErrObjectNotSet);
    for (const std::shared_ptr<clsXUNField>& field : FieldList(fields_)) {
      std::shared_ptr<clsXUNField> field_copy = field->Copy(true, bKeepKey, bCopyAttributes);
      if (!field_copy) Raise(kErrObjectNotSet);
      if (!copied_fields->Add(field_copy)) Raise(kErrInvalidCall);
      const clsXUNQuestions& originals = QuestionList(*field);
      const clsXUNQuestions& copies = QuestionList(*field_copy);
      auto copied = copies.begin();
      for (auto original = originals.begin(); original != originals.end() && copied != copies.end();
           ++original, ++copied)
        question_keys.emplace((*original)->Key(), (*copied)->Key());
    }
    for (const std::shared_ptr<clsXUNField>& field_copy : *copied_fields) {
      const auto mapped = question_keys.find(field_copy->ImageLinkQuestionKey());
      if (mapped != question_keys.end()) field_copy->ImageLinkQuestionKey(mapped->second);
    }

    copy->column_width_ = column_width_;
    copy->drop_out_color_ = drop_out_color_;
    copy->drop_out_threshold_ = drop_out_threshold_;
    copy->image_file_ = image_file_;
    copy->image_height_ = image_height_;
    copy->image_width_ = image_width_;
    copy->Key(bKeepKey ? Key() : std::string());
    copy->filled_pixels_ = filled_pixels_;
    copy->tag_ = tag_;

    // Values only: the copied marks get keys of their own.
    if (!timing_marks_) Raise(kErrObjectNotSet);
    std::shared_ptr<clsXUNTimingMarks> marks = clsXUNTimingMarks::Create();
    marks->AddArray(timing_marks_->AsArray());
    copy->timing_marks_ = std::move(marks);

    copy->weighted_rotate_ = weighted_rotate_;
    copy->xdpi_ = xdpi_;
    copy->ydpi_ = ydpi_;

    // Free deletes a page's image file, so the copy must own a file of its own.
    if (FileExists(image_file_)) {
      const std::string own_file = basPublic::GetUniqueFileName("", ".pcx", "");
      if (own_file.empty()) Raise(kErrPathFileAccess);
      fs::remove(own_file);
      fs::copy_file(image_file_, own_file);
      copy->image_file_ = own_file;
    }
    return copy;
  });
}

int16_t clsXUNPage::GetItemIndex(int16_t iFieldIndex, bool bStart) const {
  return Trap("clsXUNPage.GetItemIndex", int16_t{0}, [&] {
    if (!FieldList(fields_).Exists(iFieldIndex)) return int16_t{0};
    int16_t index = 0;
    detail::WalkRegions(*this, 0, [&](const detail::RegionSlot& slot) {
      if (slot.position < iFieldIndex) return true;
      if (!bStart)
        index = Add16(slot.before, slot.items);
      else
        index = slot.items > 0 ? Add16(slot.before, 1) : slot.before;
      return false;
    });
    return index;
  });
}

void clsXUNPage::Free() {
  Trap("clsXUNPage.Free", [&] {
    if (fields_) fields_->Free();
    fields_.reset();
    SetOwner(nullptr);
    // The page owns its image file. Removing a directory entry needs no write permission on the
    // file itself, so read-only files go too.
    if (FileExists(image_file_)) fs::remove(image_file_);
    timing_marks_.reset();
    attributes_.reset();
  });
}

int32_t clsXUNPage::ReturnIndex(bool bInTemplate) const {
  return Trap("clsXUNPage.ReturnIndex", int32_t{0}, [&] {
    const std::shared_ptr<clsXUNPages> pages = Pages();
    if (!pages) return int32_t{0};
    int32_t index = 0, position = 0;
    for (const std::shared_ptr<clsXUNPage>& page : *pages) {
      ++position;
      if (page->Key() == Key()) {
        index = position;
        break;
      }
    }
    if (bInTemplate) {
      if (const std::shared_ptr<clsXUNTemplate> owner = pages->Template())
        return static_cast<int32_t>(owner->GetItemIndex(To16(index), 0, true));
    }
    return index;
  });
}

bool clsXUNPage::Link(const std::vector<std::shared_ptr<clsXUNField>>& oFields, bool bVerbose) {
  return Trap("clsXUNPage.Link", false,
              [&] { return basTemplate::LinkOMR(*this, oFields, bVerbose); });
}

bool clsXUNPage::UnLink(const std::shared_ptr<clsXUNField>& oField) {
  return Trap("clsXUNPage.UnLink", false, [&] {
    if (!oField) Raise(kErrObjectNotSet);
    if (!fields_ || oField->Fields() != fields_) Raise(kErrInvalidCall);
    return basTemplate::detail::LeaveGroup(*this, oField);
  });
}

std::shared_ptr<clsXUNField> clsXUNPage::LinkFirst(int16_t iLinkGroup) const {
  return Trap("clsXUNPage.LinkFirst", std::shared_ptr<clsXUNField>(), [&] {
    const auto members = basTemplate::detail::GroupMembers(*this, iLinkGroup);
    return members.empty() ? nullptr : members.front();
  });
}

std::shared_ptr<clsXUNField> clsXUNPage::LinkLast(int16_t iLinkGroup) const {
  return Trap("clsXUNPage.LinkLast", std::shared_ptr<clsXUNField>(), [&] {
    const auto members = basTemplate::detail::GroupMembers(*this, iLinkGroup);
    return members.empty() ? nullptr : members.back();
  });
}

namespace {

// The region `step` places from `field` within its group on `page`; nullptr past either end, for
// an unlinked region or for one of another page.
std::shared_ptr<clsXUNField> GroupNeighbour(const clsXUNPage& page,
                                            const std::shared_ptr<clsXUNField>& field, int step) {
  if (!field || field->LinkGroup() < 1) return nullptr;
  const auto members = basTemplate::detail::GroupMembers(page, field->LinkGroup());
  const auto at = std::find(members.begin(), members.end(), field);
  if (at == members.end()) return nullptr;
  const auto index = (at - members.begin()) + step;
  if (index < 0 || index >= static_cast<std::ptrdiff_t>(members.size())) return nullptr;
  return members[static_cast<size_t>(index)];
}

}  // namespace

std::shared_ptr<clsXUNField> clsXUNPage::LinkNext(
    const std::shared_ptr<clsXUNField>& oField) const {
  return Trap("clsXUNPage.LinkNext", std::shared_ptr<clsXUNField>(),
              [&] { return GroupNeighbour(*this, oField, 1); });
}

std::shared_ptr<clsXUNField> clsXUNPage::LinkPrevious(
    const std::shared_ptr<clsXUNField>& oField) const {
  return Trap("clsXUNPage.LinkPrevious", std::shared_ptr<clsXUNField>(),
              [&] { return GroupNeighbour(*this, oField, -1); });
}

int16_t clsXUNPage::NumTimingMarks() const {
  return Trap("clsXUNPage.NumTimingMarks", int16_t{0}, [&] {
    if (!timing_marks_) Raise(kErrObjectNotSet);
    return To16(timing_marks_->Count());
  });
}

// ImageImport, Align, FindTimingMarks and RegisterHybrid work on the page image: they live with
// the rest of the image work in xun/recognition.

std::shared_ptr<clsXUNTemplate> clsXUNPage::Template() const {
  const std::shared_ptr<clsXUNPages> pages = Pages();
  return pages ? pages->Template() : nullptr;
}

}  // namespace xun
