#include "xun/model/bubbles.h"

#include <utility>

#include "xun/support/runtime_error.h"
#include "xun/support/trap.h"

namespace xun {

std::shared_ptr<clsXUNBubbles> clsXUNBubbles::Create() {
  return MakeObject<clsXUNBubbles>();
}

void clsXUNBubbles::Free() {
  Trap("clsXUNBubbles.Free", [&] { RemoveAll(); });
}

bool clsXUNBubbles::Add(const std::shared_ptr<clsXUNBubble>& oBubble,
                        std::optional<std::string> Key, std::optional<Index> Before,
                        std::optional<Index> After) {
  return Trap("clsXUNBubbles.Add", false, [&] {
    if (!oBubble) Raise(kErrObjectNotSet);
    // Deliberate order: the back reference is set first, so a refused add (duplicate key, bad
    // anchor) leaves it pointing here.
    oBubble->Bubbles(SharedFrom(this));
    items_.Add(oBubble, std::move(Key), Before, After);
    return true;
  });
}

Variant clsXUNBubbles::Remove(const Index& index) {
  return Trap("clsXUNBubbles.Remove", Variant(), [&] {
    if (!Exists(index)) return Variant();
    items_.Item(index)->Bubbles(nullptr);
    items_.Remove(index);
    return Variant(true);
  });
}

bool clsXUNBubbles::RemoveAll() {
  return Trap("clsXUNBubbles.RemoveAll", false, [&] {
    for (int32_t position = items_.Count(); position >= 1; --position)
      Remove(position);
    return items_.Count() == 0;
  });
}

std::shared_ptr<clsXUNBubble> clsXUNBubbles::Item(const Index& index) const {
  return Trap("clsXUNBubbles.Item", std::shared_ptr<clsXUNBubble>(), [&] {
    const std::shared_ptr<clsXUNBubble>* found = items_.Find(index);
    return found ? *found : nullptr;
  });
}

bool clsXUNBubbles::Exists(const Index& index) const noexcept {
  const std::shared_ptr<clsXUNBubble>* found = items_.Find(index);
  return found && *found;
}

}  // namespace xun
