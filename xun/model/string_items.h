// An ordered list of strings with optional keys: a question's choices and codes, and every other
// list of names or values a template holds as text.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "xun/export.h"
#include "xun/support/bounded_array.h"
#include "xun/support/index.h"
#include "xun/support/keyed_collection.h"
#include "xun/support/object.h"

namespace xun {

namespace detail {
struct StringItemsInternals;
}

class XUN_API clsXUNStringItems : public Object {
  using Collection = OrderedKeyedCollection<std::string>;

 public:
  static std::shared_ptr<clsXUNStringItems> Create();

  // The strings in list order.
  Collection::const_iterator begin() const noexcept { return items_.begin(); }
  Collection::const_iterator end() const noexcept { return items_.end(); }

  int32_t Count() const noexcept { return items_.Count(); }

  // Appends, or inserts before/after the entry at `Before`/`After`, under an optional unique key.
  void Add(const std::string& Item, std::optional<std::string> Key = std::nullopt,
           std::optional<Index> Before = std::nullopt, std::optional<Index> After = std::nullopt);
  // Appends every element from LBound to UBound without keys; stops silently at a failure.
  void AddArray(const BoundedArray<std::string>& Value);
  // Appends the pieces of `Items` split at every `sDelimiter`, empty pieces included.
  void AddDelimitedString(const std::string& Items, const std::string& sDelimiter = "\t");
  // Removes the entry at `index`; an index that does not exist is ignored.
  void Remove(const Index& index);
  void RemoveAll();

  // The string at `index`, or "" when there is none.
  std::string Item(const Index& index) const;
  // Replaces the string at `index`; the entry loses its key. Does nothing when there is none.
  void Item(const Index& index, const std::string& value);

  // The first position whose string equals `sItem` (0 exact, 1 ignoring case), or 0.
  int32_t Locate(const std::string& sItem, int32_t eCompareMethod = 1) const;
  bool Exists(const Index& index) const noexcept { return items_.Exists(index); }

  // The strings joined with `sDelimiter` between them.
  std::string AsString(const std::string& sDelimiter = "\t") const;
  // The strings from `lLowerBound` on; unallocated when the list is empty.
  BoundedArray<std::string> AsArray(int32_t lLowerBound = 1) const;
  // A new list with the same strings in the same order, without keys.
  std::shared_ptr<clsXUNStringItems> Copy() const;

 private:
  template <class>
  friend struct detail::ObjectAllocator;
  friend struct detail::StringItemsInternals;
  clsXUNStringItems() = default;

  Collection items_;
};

namespace detail {
// Filling a list whose items the caller has counted, for the library's reader only: one array of
// the right size, and each string moved in. Raises on failure, untrapped.
struct StringItemsInternals {
  static void Reserve(clsXUNStringItems& list, size_t count) { list.items_.Reserve(count); }
  static void Append(clsXUNStringItems& list, std::string item) {
    list.items_.Add(std::move(item));
  }
};
}  // namespace detail

}  // namespace xun
