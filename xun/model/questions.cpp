#include "xun/model/questions.h"

#include <optional>
#include <string>
#include <utility>

#include "xun/model/field.h"
#include "xun/model/field_db.h"
#include "xun/model/string_items.h"
#include "xun/support/numeric.h"
#include "xun/support/runtime_error.h"
#include "xun/support/trap.h"

namespace xun {
namespace {

// The label a forced choice (or code) k gets: k-1 in a numeric region, else the letters A to Z,
// and k itself beyond Z.
std::string DefaultLabel(int32_t k, bool numeric) {
  if (numeric) return std::to_string(k - 1);
  if (k <= 26) return std::string(1, static_cast<char>('A' + k - 1));
  return std::to_string(k);
}

// Cuts entries from the end or appends default labels until the list holds `count` entries.
void ForceCount(clsXUNStringItems& list, int32_t count, bool numeric) {
  while (list.Count() > count)
    list.Remove(list.Count());
  while (list.Count() < count)
    list.Add(DefaultLabel(list.Count() + 1, numeric));
}

// The number of bubbles each question of an OMR region has; nullopt when the orientation does
// not say.
std::optional<int32_t> BubblesPerQuestion(const clsXUNField& field) {
  if (field.FieldType() == xunFieldTypeOMRBoolean) return 1;
  if (field.Orient() == xunOrientationTypeOMRRow) return field.NumCols();
  if (field.Orient() == xunOrientationTypeOMRCol) return field.NumRows();
  return std::nullopt;
}

}  // namespace

std::shared_ptr<clsXUNQuestions> clsXUNQuestions::Create() {
  return MakeObject<clsXUNQuestions>();
}

std::shared_ptr<clsXUNQuestion> clsXUNQuestions::Item(const Index& index) const {
  return Trap("clsXUNQuestions.Item", std::shared_ptr<clsXUNQuestion>(),
              [&] { return items_.Find(index); });
}

bool clsXUNQuestions::Update() {
  return Trap("clsXUNQuestions.Update", false, [&] {
    const std::shared_ptr<clsXUNField> field = Field();
    if (!field) Raise(kErrObjectNotSet);

    // Database return columns are items of the region but not questions.
    int32_t target = field->CalculateNumItems(true);
    if (field->DBVerify() && field->DB() && field->DB()->ReturnFields())
      target -= field->DB()->ReturnFields()->Count();
    if (target < 0) target = 0;

    while (Count() > target)
      items_.Take(Count());
    while (Count() < target) {
      std::shared_ptr<clsXUNQuestion> question = clsXUNQuestion::Create();
      question->QuestionName(target == 1 ? field->FieldName()
                                         : field->FieldName() + "_" + std::to_string(Count() + 1));
      items_.Add(question, SharedFrom(this), std::nullopt, std::nullopt);
    }

    if (field->RecognitionType() != xunRecogTypeOMR) return true;
    const std::optional<int32_t> bubbles = BubblesPerQuestion(*field);
    if (!bubbles) return true;
    const bool numeric = field->DataType() == xunDataTypeNumeric;
    for (const std::shared_ptr<clsXUNQuestion>& question : items_) {
      if (!question->Choices()) question->Choices(clsXUNStringItems::Create());
      if (!question->Codes()) question->Codes(clsXUNStringItems::Create());
      ForceCount(*question->Choices(), *bubbles, numeric);
      ForceCount(*question->Codes(), *bubbles, numeric);
    }
    return true;
  });
}

void clsXUNQuestions::Free() {
  Trap("clsXUNQuestions.Free", [&] {
    for (const std::shared_ptr<clsXUNQuestion>& question : items_)
      question->Free();
    while (items_.Count() > 0)
      items_.Take(items_.Count());
    field_.reset();
  });
}

bool clsXUNQuestions::Add(const std::shared_ptr<clsXUNQuestion>& oQuestion,
                          std::optional<Index> Before, std::optional<Index> After) {
  return Trap("clsXUNQuestions.Add", false, [&] {
    items_.Add(oQuestion, SharedFrom(this), Before, After);
    return true;
  });
}

bool clsXUNQuestions::Remove(const Index& index) {
  return Trap("clsXUNQuestions.Remove", false, [&] {
    // An absent question is not a failure, as for pages. The question is not freed: with weak
    // back references nothing can leak, and a host may still hold it.
    if (!items_.Exists(index)) return false;
    items_.Take(index);
    return true;
  });
}

bool clsXUNQuestions::RemoveAll() {
  return Trap("clsXUNQuestions.RemoveAll", false, [&] {
    for (int32_t position = items_.Count(); position >= 1; --position)
      items_.Take(position);
    return items_.Count() == 0;
  });
}

}  // namespace xun
