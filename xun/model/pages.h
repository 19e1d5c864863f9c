// The pages of a template.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "xun/export.h"
#include "xun/model/keyed_object_list.h"
#include "xun/model/page.h"

namespace xun {

class XUN_API clsXUNPages : public Object {
 public:
  static std::shared_ptr<clsXUNPages> Create();

  // The template that owns this list (back reference).
  std::shared_ptr<clsXUNTemplate> Template() const { return template_.lock(); }
  void Template(const std::shared_ptr<clsXUNTemplate>& value) { template_ = value; }
  auto begin() const { return items_.begin(); }  // NewEnum
  auto end() const { return items_.end(); }
  int32_t Count() const noexcept { return items_.Count(); }
  // Moves the page at `index` before or after another; Before/After are checked before the page
  // is taken out but applied after, so positions count the list without it.
  bool Move(const Index& index, std::optional<Index> Before = std::nullopt,
            std::optional<Index> After = std::nullopt);
  // Adds the page under its key (a fresh key when empty or taken); a page with ColumnWidth 0
  // takes the template's.
  bool Add(const std::shared_ptr<clsXUNPage>& oPage, std::optional<Index> Before = std::nullopt,
           std::optional<Index> After = std::nullopt);
  // Frees and removes the page; False without a report when there is none.
  bool Remove(const Index& index);
  bool RemoveAll();
  std::shared_ptr<clsXUNPage> Item(const Index& index) const;
  bool Exists(const Index& index) const noexcept { return items_.Exists(index); }
  void Free();

 private:
  template <class>
  friend struct detail::ObjectAllocator;
  clsXUNPages() = default;
  std::weak_ptr<clsXUNTemplate> template_;
  detail::KeyedObjectList<clsXUNPage, clsXUNPages> items_;
};

}  // namespace xun
