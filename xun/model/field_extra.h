// An ordered list of 16-bit integers with optional keys: a region's extra values. The unnamed
// values hold the bubble grid that registration found (docs/recognition.md); named values hold
// settings older template files keep on the region ("IDAdd", "IDType", "IDValue",
// "TestVersionID", "ImageFillValue"). Both are kept in the template file.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "xun/export.h"
#include "xun/support/bounded_array.h"
#include "xun/support/index.h"
#include "xun/support/keyed_collection.h"
#include "xun/support/object.h"

namespace xun {

// Unlike the string list, every mutator answers whether it ran to the end.
class XUN_API clsXUNFieldExtra : public Object {
  using Collection = OrderedKeyedCollection<int16_t>;

 public:
  static std::shared_ptr<clsXUNFieldExtra> Create();

  // The values in list order.
  Collection::const_iterator begin() const noexcept { return items_.begin(); }
  Collection::const_iterator end() const noexcept { return items_.end(); }

  int32_t Count() const noexcept { return items_.Count(); }

  // Appends, or inserts before/after the entry at `Before`/`After`, under an optional unique key.
  bool Add(int16_t Item, std::optional<std::string> Key = std::nullopt,
           std::optional<Index> Before = std::nullopt, std::optional<Index> After = std::nullopt);
  // Appends every element from LBound to UBound without keys; false, without a report, when an
  // element could not be added or the array is unallocated.
  bool AddArray(const BoundedArray<int16_t>& Value);
  // Appends the pieces of `Items` split at every `sDelimiter`, each read as a number and rounded
  // (halves to even); a piece outside the 16-bit range fails and ends the work.
  bool AddDelimitedString(const std::string& Items, const std::string& sDelimiter = "\t");
  // Removes the entry at `index`; an index that does not exist is a failure.
  bool Remove(const Index& index);
  bool RemoveAll();

  // The value at `index`, or 0 when there is none.
  int16_t Item(const Index& index) const;
  // Replaces the value at `index`; the entry loses its key. Does nothing when there is none.
  void Item(const Index& index, int16_t value);

  bool Exists(const Index& index) const noexcept { return items_.Exists(index); }
  // The key of the entry at `index`: nullopt for an unnamed value or when there is no entry.
  std::optional<std::string> KeyOf(const Index& index) const;
  // The unnamed values in list order: the registration layout, which named values never
  // disturb wherever they stand.
  std::vector<int16_t> UnnamedValues() const;
  // Replaces the unnamed values by `values`, placed before the first named value; the named
  // values stay as they are.
  bool ReplaceUnnamedValues(const std::vector<int16_t>& values);
  // Sets the value named `key`, keeping its place when there is one, else appending it.
  bool SetNamed(const std::string& key, int16_t value);
  // A free-standing copy, names included.
  std::shared_ptr<clsXUNFieldExtra> Copy() const;

  // The values in plain decimal, joined with `sDelimiter` between them.
  std::string AsString(const std::string& sDelimiter = "\t") const;
  // The values from `lLowerBound` on; unallocated when the list is empty.
  BoundedArray<int16_t> AsArray(int32_t lLowerBound = 0) const;

 private:
  template <class>
  friend struct detail::ObjectAllocator;
  clsXUNFieldExtra() = default;

  Collection items_;
};

}  // namespace xun
