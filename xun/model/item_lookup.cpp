// The template's running item list: which question and region stand behind each item number.
#include <algorithm>
#include <string>
#include <vector>

#include "xun/model/item_walk.h"
#include "xun/support/trap.h"
#include "xun/templatefile/bas_template.h"

namespace xun {

namespace detail {

bool IsHiddenQuestion(const clsXUNQuestion& question) {
  return question.IDType() >= xunIDTypeForm && !question.IDAdd();
}

int16_t ItemShare(const clsXUNField& field) {
  return std::max<int16_t>(field.NumItems(), 0);
}

}  // namespace detail

std::shared_ptr<clsXUNQuestion> clsXUNTemplate::GetQuestion(int16_t iItemIndex) const {
  return Trap("clsXUNTemplate.GetQuestion", std::shared_ptr<clsXUNQuestion>(), [&] {
    std::shared_ptr<clsXUNQuestion> found;
    if (iItemIndex < 1) return found;
    detail::WalkItems(*this, iItemIndex, [&](const detail::ItemSlot& slot) {
      found = slot.question;
      return false;
    });
    return found;
  });
}

std::shared_ptr<clsXUNField> clsXUNTemplate::GetField(int16_t iItemIndex) const {
  return Trap("clsXUNTemplate.GetField", std::shared_ptr<clsXUNField>(), [&] {
    std::shared_ptr<clsXUNField> found;
    if (iItemIndex < 1) return found;
    detail::WalkItems(*this, iItemIndex, [&](const detail::ItemSlot& slot) {
      found = slot.field;
      return false;
    });
    return found;
  });
}

int16_t clsXUNTemplate::GetItemIndex(int16_t iPageIndex, int16_t iFieldIndex, bool bStart) const {
  return Trap("clsXUNTemplate.GetItemIndex", int16_t{0}, [&]() -> int16_t {
    if (!pages_ || iPageIndex < 1 || iPageIndex > pages_->Count()) return 0;
    int16_t before = 0;
    for (int16_t p = 1; p < iPageIndex; ++p)
      before = Add16(before, pages_->Item(p)->NumItems());
    const auto page = pages_->Item(iPageIndex);
    if (iFieldIndex == 0) {
      const int16_t count = page->NumItems();
      if (bStart) return Add16(before, count > 0 ? 1 : 0);
      return Add16(before, count);
    }
    if (!page->Fields() || !page->Fields()->Exists(iFieldIndex)) return 0;
    return Add16(before, page->GetItemIndex(iFieldIndex, bStart));
  });
}

int16_t clsXUNTemplate::GetTestVersionIndex() const {
  return Trap("clsXUNTemplate.GetTestVersionIndex", int16_t{0}, [&]() -> int16_t {
    if (!pages_) return 0;
    for (const auto& page : *pages_) {
      if (!page->Fields()) continue;
      for (const auto& field : *page->Fields()) {
        if (!field->Questions()) continue;
        for (const auto& question : *field->Questions())
          if (question->TestVersionID()) return static_cast<int16_t>(question->ReturnIndex(true));
      }
    }
    return 0;
  });
}

BoundedArray<std::string> clsXUNTemplate::GetActualNames() const {
  return Trap("clsXUNTemplate.GetActualNames", BoundedArray<std::string>(), [&] {
    std::vector<std::string> names;
    detail::WalkItems(*this, 1, [&](const detail::ItemSlot& slot) {
      if (slot.is_db_column)
        names.push_back(slot.db_column);
      else if (slot.question && !slot.question->QuestionName().empty())
        names.push_back(slot.question->QuestionName());
      else
        names.push_back(slot.field->FieldName() + "_" + std::to_string(slot.within));
      return true;
    });
    return names.empty() ? BoundedArray<std::string>()
                         : BoundedArray<std::string>(1, std::move(names));
  });
}

BoundedArray<std::shared_ptr<clsXUNQuestion>> clsXUNTemplate::GetActualQuestions() const {
  using Result = BoundedArray<std::shared_ptr<clsXUNQuestion>>;
  return Trap("clsXUNTemplate.GetActualQuestions", Result(), [&] {
    std::vector<std::shared_ptr<clsXUNQuestion>> questions;
    detail::WalkItems(*this, 1, [&](const detail::ItemSlot& slot) {
      questions.push_back(slot.question);
      return true;
    });
    return questions.empty() ? Result() : Result(1, std::move(questions));
  });
}

int16_t clsXUNTemplate::GetFirstAvailableLinkGroup() const {
  return Trap("clsXUNTemplate.GetFirstAvailableLinkGroup", int16_t{0},
              [&] { return basTemplate::NextLink(*this); });
}

}  // namespace xun
