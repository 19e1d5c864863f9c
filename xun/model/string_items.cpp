#include "xun/model/string_items.h"

#include <string_view>
#include <utility>
#include <vector>

#include "xun/support/runtime_error.h"
#include "xun/support/text.h"
#include "xun/support/trap.h"

namespace xun {
std::shared_ptr<clsXUNStringItems> clsXUNStringItems::Create() {
  return MakeObject<clsXUNStringItems>();
}

void clsXUNStringItems::Add(const std::string& Item, std::optional<std::string> Key,
                            std::optional<Index> Before, std::optional<Index> After) {
  Trap("clsXUNStringItems.Add", [&] { items_.Add(Item, std::move(Key), Before, After); });
}

void clsXUNStringItems::AddArray(const BoundedArray<std::string>& Value) {
  // Untrapped by design: a failure ends the loop without a report and what was added stays.
  try {
    for (const std::string& item : Value)
      items_.Add(item);
  } catch (...) {
  }
}

void clsXUNStringItems::AddDelimitedString(const std::string& Items,
                                           const std::string& sDelimiter) {
  Trap("clsXUNStringItems.AddDelimitedString", [&] {
    const std::vector<std::string_view> pieces = text::Split(Items, sDelimiter);
    AddArray(BoundedArray<std::string>(0, {pieces.begin(), pieces.end()}));
  });
}

void clsXUNStringItems::Remove(const Index& index) {
  Trap("clsXUNStringItems.Remove", [&] {
    if (items_.Exists(index)) items_.Remove(index);
  });
}

void clsXUNStringItems::RemoveAll() {
  Trap("clsXUNStringItems.RemoveAll", [&] {
    for (int32_t position = items_.Count(); position >= 1; --position)
      items_.Remove(position);
  });
}

std::string clsXUNStringItems::Item(const Index& index) const {
  return Trap("clsXUNStringItems.Item", std::string(), [&] {
    const std::string* item = items_.Find(index);
    return item ? *item : std::string();
  });
}

void clsXUNStringItems::Item(const Index& index, const std::string& value) {
  Trap("clsXUNStringItems.Item", [&] {
    if (!items_.Exists(index)) return;
    // Insert-then-remove rather than overwrite: the new entry has no key, so a keyed entry loses
    // its key when assigned. Callers rely on this; do not "fix" it.
    items_.Add(value, std::nullopt, std::nullopt, index);
    items_.Remove(index);
  });
}

int32_t clsXUNStringItems::Locate(const std::string& sItem, int32_t eCompareMethod) const {
  return Trap("clsXUNStringItems.Locate", int32_t{0}, [&] {
    if (eCompareMethod != 0 && eCompareMethod != 1) Raise(kErrInvalidCall);
    int32_t position = 0;
    for (const std::string& item : items_) {
      ++position;
      if (eCompareMethod == 0 ? item == sItem : text::EqualsText(item, sItem)) return position;
    }
    return int32_t{0};
  });
}

std::string clsXUNStringItems::AsString(const std::string& sDelimiter) const {
  return Trap("clsXUNStringItems.AsString", std::string(), [&] {
    std::string joined;
    bool first = true;
    for (const std::string& item : items_) {
      if (!first) joined += sDelimiter;
      joined += item;
      first = false;
    }
    return joined;
  });
}

BoundedArray<std::string> clsXUNStringItems::AsArray(int32_t lLowerBound) const {
  return Trap("clsXUNStringItems.AsArray", BoundedArray<std::string>(), [&] {
    if (items_.Count() < 1) return BoundedArray<std::string>();
    return BoundedArray<std::string>(lLowerBound, std::vector<std::string>(begin(), end()));
  });
}

std::shared_ptr<clsXUNStringItems> clsXUNStringItems::Copy() const {
  return Trap("clsXUNStringItems.Copy", std::shared_ptr<clsXUNStringItems>(), [&] {
    std::shared_ptr<clsXUNStringItems> copy = Create();
    if (Count() > 0) copy->AddArray(AsArray(1));
    return copy;
  });
}

}  // namespace xun
