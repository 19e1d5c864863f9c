#include "xun/model/field_extra.h"

#include <string_view>
#include <vector>

#include "xun/support/numeric.h"
#include "xun/support/text.h"
#include "xun/support/trap.h"

namespace xun {
std::shared_ptr<clsXUNFieldExtra> clsXUNFieldExtra::Create() {
  return MakeObject<clsXUNFieldExtra>();
}

bool clsXUNFieldExtra::Add(int16_t Item, std::optional<std::string> Key,
                           std::optional<Index> Before, std::optional<Index> After) {
  return Trap("clsXUNFieldExtra.Add", [&] { items_.Add(Item, std::move(Key), Before, After); });
}

bool clsXUNFieldExtra::AddArray(const BoundedArray<int16_t>& Value) {
  // Untrapped by design: a failure ends the loop without a report and what was added stays. The
  // bounds of an unallocated array fail too.
  try {
    const int32_t upper = Value.UBound();
    for (int64_t i = Value.LBound(); i <= upper; ++i)
      items_.Add(Value[static_cast<int32_t>(i)]);
    return true;
  } catch (...) {
    return false;
  }
}

bool clsXUNFieldExtra::AddDelimitedString(const std::string& Items, const std::string& sDelimiter) {
  return Trap("clsXUNFieldExtra.AddDelimitedString", [&] {
    for (std::string_view piece : text::Split(Items, sDelimiter))
      items_.Add(CInt(Val(piece)));
  });
}

bool clsXUNFieldExtra::Remove(const Index& index) {
  return Trap("clsXUNFieldExtra.Remove", [&] { items_.Remove(index); });
}

bool clsXUNFieldExtra::RemoveAll() {
  return Trap("clsXUNFieldExtra.RemoveAll", [&] {
    for (int32_t position = items_.Count(); position >= 1; --position)
      items_.Remove(position);
  });
}

int16_t clsXUNFieldExtra::Item(const Index& index) const {
  const int16_t* item = items_.Find(index);
  return item ? *item : int16_t{0};
}

void clsXUNFieldExtra::Item(const Index& index, int16_t value) {
  if (!items_.Exists(index)) return;
  // Insert-then-remove rather than overwrite: the new entry has no key, so a keyed entry loses
  // its key when assigned. Callers rely on this; do not "fix" it.
  items_.Add(value, std::nullopt, std::nullopt, index);
  items_.Remove(index);
}

std::optional<std::string> clsXUNFieldExtra::KeyOf(const Index& index) const {
  if (!items_.Exists(index)) return std::nullopt;
  return items_.KeyOf(index);
}

std::vector<int16_t> clsXUNFieldExtra::UnnamedValues() const {
  std::vector<int16_t> values;
  values.reserve(static_cast<size_t>(items_.Count()));
  for (int32_t position = 1; position <= items_.Count(); ++position)
    if (!items_.KeyOf(position)) values.push_back(items_.Item(position));
  return values;
}

bool clsXUNFieldExtra::ReplaceUnnamedValues(const std::vector<int16_t>& values) {
  return Trap("clsXUNFieldExtra.ReplaceUnnamedValues", [&] {
    // Built aside and swapped in, so a failure leaves the list as it was.
    Collection rebuilt;
    for (const int16_t value : values)
      rebuilt.Add(value);
    for (int32_t position = 1; position <= items_.Count(); ++position)
      if (std::optional<std::string> key = items_.KeyOf(position))
        rebuilt.Add(items_.Item(position), std::move(key));
    items_ = std::move(rebuilt);
  });
}

bool clsXUNFieldExtra::SetNamed(const std::string& key, int16_t value) {
  return Trap("clsXUNFieldExtra.SetNamed", [&] {
    if (int16_t* item = items_.Find(key))
      *item = value;
    else
      items_.Add(value, key);
  });
}

std::shared_ptr<clsXUNFieldExtra> clsXUNFieldExtra::Copy() const {
  return Trap("clsXUNFieldExtra.Copy", std::shared_ptr<clsXUNFieldExtra>(), [&] {
    std::shared_ptr<clsXUNFieldExtra> copy = Create();
    for (int32_t position = 1; position <= items_.Count(); ++position)
      copy->items_.Add(items_.Item(position), items_.KeyOf(position));
    return copy;
  });
}

std::string clsXUNFieldExtra::AsString(const std::string& sDelimiter) const {
  return Trap("clsXUNFieldExtra.AsString", std::string(), [&] {
    std::string joined;
    bool first = true;
    for (int16_t item : items_) {
      if (!first) joined += sDelimiter;
      joined += std::to_string(item);
      first = false;
    }
    return joined;
  });
}

BoundedArray<int16_t> clsXUNFieldExtra::AsArray(int32_t lLowerBound) const {
  return Trap("clsXUNFieldExtra.AsArray", BoundedArray<int16_t>(), [&] {
    if (items_.Count() < 1) return BoundedArray<int16_t>();
    return BoundedArray<int16_t>(lLowerBound, std::vector<int16_t>(begin(), end()));
  });
}

}  // namespace xun
