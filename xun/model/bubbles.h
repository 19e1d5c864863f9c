// The bubbles of a region, as bubble search finds them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "xun/export.h"
#include "xun/model/bubble.h"
#include "xun/support/index.h"
#include "xun/support/keyed_collection.h"
#include "xun/support/variant.h"

namespace xun {

class XUN_API clsXUNBubbles : public Object {
 public:
  static std::shared_ptr<clsXUNBubbles> Create();

  auto begin() const { return items_.begin(); }  // NewEnum
  auto end() const { return items_.end(); }
  // Empties the list, clearing each bubble's back reference.
  void Free();
  int32_t Count() const noexcept { return items_.Count(); }
  // Points the bubble back at this list, then adds it (shared, not copied).
  bool Add(const std::shared_ptr<clsXUNBubble>& oBubble,
           std::optional<std::string> Key = std::nullopt,
           std::optional<Index> Before = std::nullopt, std::optional<Index> After = std::nullopt);
  // True when removed; an Empty variant (not False) when there is no such bubble.
  Variant Remove(const Index& index);
  bool RemoveAll();
  std::shared_ptr<clsXUNBubble> Item(const Index& index) const;
  bool Exists(const Index& index) const noexcept;

 private:
  template <class>
  friend struct detail::ObjectAllocator;
  clsXUNBubbles() = default;
  OrderedKeyedCollection<std::shared_ptr<clsXUNBubble>> items_;
};

}  // namespace xun
