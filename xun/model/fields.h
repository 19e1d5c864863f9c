// The regions of one page.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "xun/export.h"
#include "xun/model/field.h"
#include "xun/model/keyed_object_list.h"
#include "xun/support/variant.h"

namespace xun {

namespace detail {
struct FieldsInternals;
}

class XUN_API clsXUNFields : public Object {
 public:
  static std::shared_ptr<clsXUNFields> Create();

  // The page that owns this list (back reference).
  std::shared_ptr<clsXUNPage> Page() const { return page_.lock(); }
  void Page(const std::shared_ptr<clsXUNPage>& value) { page_ = value; }
  auto begin() const { return items_.begin(); }  // NewEnum
  auto end() const { return items_.end(); }
  int32_t Count() const noexcept { return items_.Count(); }
  // Adds the region under its key (a fresh key when empty or taken) and points it back here.
  bool Add(const std::shared_ptr<clsXUNField>& oField, std::optional<Index> Before = std::nullopt,
           std::optional<Index> After = std::nullopt);
  // Frees and removes the region: True, or an Empty variant when there is none.
  Variant Remove(const Index& index);
  bool RemoveAll();
  std::shared_ptr<clsXUNField> Item(const Index& index) const;
  bool Exists(const Index& index) const noexcept { return items_.Exists(index); }
  void Free();

 private:
  friend struct detail::FieldsInternals;
  template <class>
  friend struct detail::ObjectAllocator;
  clsXUNFields() = default;
  std::weak_ptr<clsXUNPage> page_;
  detail::KeyedObjectList<clsXUNField, clsXUNFields> items_;
};

namespace detail {
// For region linking, which keeps each link group a run of neighbouring regions.
struct FieldsInternals {
  // Puts the list's regions in the given order, without freeing any. `order` must hold exactly
  // the list's regions; otherwise error 5 and the list is left as it was.
  static void Reorder(clsXUNFields& list, const std::vector<std::shared_ptr<clsXUNField>>& order);
};
}  // namespace detail

}  // namespace xun
