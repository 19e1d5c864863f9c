#include "xun/model/fields.h"

#include <unordered_set>

#include "xun/support/trap.h"

namespace xun {

std::shared_ptr<clsXUNFields> clsXUNFields::Create() {
  return MakeObject<clsXUNFields>();
}

bool clsXUNFields::Add(const std::shared_ptr<clsXUNField>& oField, std::optional<Index> Before,
                       std::optional<Index> After) {
  return Trap("clsXUNFields.Add", false, [&] {
    items_.Add(oField, SharedFrom(this), Before, After);
    return true;
  });
}

Variant clsXUNFields::Remove(const Index& index) {
  return Trap("clsXUNFields.Remove", Variant(), [&] {
    const std::shared_ptr<clsXUNField> field = items_.Find(index);
    if (!field) return Variant();
    field->Free();
    items_.Take(index);
    return Variant(true);
  });
}

bool clsXUNFields::RemoveAll() {
  return Trap("clsXUNFields.RemoveAll", false, [&] {
    for (int32_t position = items_.Count(); position >= 1; --position) {
      items_.Item(position)->Free();
      items_.Take(position);
    }
    return items_.Count() == 0;
  });
}

std::shared_ptr<clsXUNField> clsXUNFields::Item(const Index& index) const {
  return items_.Find(index);
}

void clsXUNFields::Free() {
  Trap("clsXUNFields.Free", [&] {
    RemoveAll();
    page_.reset();
  });
}

namespace detail {

void FieldsInternals::Reorder(clsXUNFields& list,
                              const std::vector<std::shared_ptr<clsXUNField>>& order) {
  std::unordered_set<const clsXUNField*> wanted;
  for (const std::shared_ptr<clsXUNField>& field : order)
    if (!field || field->Fields().get() != &list || !wanted.insert(field.get()).second)
      Raise(kErrInvalidCall);
  if (static_cast<int32_t>(wanted.size()) != list.items_.Count()) Raise(kErrInvalidCall);
  const std::shared_ptr<clsXUNFields> owner = list.SharedFrom(&list);
  // Taken out and added back under their own keys, which are unique, so nothing can be refused.
  while (list.items_.Count() > 0)
    list.items_.Take(list.items_.Count());
  for (const std::shared_ptr<clsXUNField>& field : order)
    list.items_.Add(field, owner, std::nullopt, std::nullopt);
}

}  // namespace detail
}  // namespace xun
