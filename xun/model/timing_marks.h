// A page's timing marks, with their one-line text form and their array form.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "xun/export.h"
#include "xun/model/enums.h"
#include "xun/model/timing_mark.h"
#include "xun/support/bounded_array.h"
#include "xun/support/index.h"
#include "xun/support/keyed_collection.h"
#include "xun/support/variant.h"

namespace xun {

namespace detail {
struct TimingMarksInternals;
}

class XUN_API clsXUNTimingMarks : public Object {
 public:
  static std::shared_ptr<clsXUNTimingMarks> Create();

  auto begin() const { return items_.begin(); }  // NewEnum
  auto end() const { return items_.end(); }
  int32_t Count() const noexcept { return items_.Count(); }
  // Left, Top, Width, Height of every mark; unallocated when there are none.
  BoundedArray<xunReadArea> AsArray(int32_t lLowerBound = 1) const;
  // "10,20,30,40<tab>10,900,30,40": left, top, width, height per mark.
  std::string AsString(const std::string& sMarkDelimiter = "\t",
                       const std::string& sPropertyDelimiter = ",") const;
  // Adds one mark per mark text of at least four numbers; shorter mark texts are skipped.
  bool AddDelimitedString(const std::string& sMarks, const std::string& sMarkDelimiter = "\t",
                          const std::string& sPropertyDelimiter = ",");
  // Adds the marks in order; a mark of width 0 ends the array.
  bool AddArray(const BoundedArray<xunReadArea>& oMarkArr);
  bool AddMark(int16_t iLeft, int16_t iTop, int16_t iWidth, int16_t iHeight,
               std::optional<std::string> Key = std::nullopt);
  bool Add(const std::shared_ptr<clsXUNTimingMark>& oMark,
           std::optional<std::string> Key = std::nullopt);
  // True when removed; an Empty variant when there is no such mark.
  Variant Remove(const Index& index);
  std::shared_ptr<clsXUNTimingMark> Item(const Index& index) const;
  bool Exists(const Index& index) const noexcept;

 private:
  // The library's own: a host replaces the whole list instead.
  friend struct detail::TimingMarksInternals;
  bool RemoveAll();

  template <class>
  friend struct detail::ObjectAllocator;
  clsXUNTimingMarks() = default;
  OrderedKeyedCollection<std::shared_ptr<clsXUNTimingMark>> items_;
};

namespace detail {
struct TimingMarksInternals {
  static bool RemoveAll(clsXUNTimingMarks& list) { return list.RemoveAll(); }
};
}  // namespace detail

}  // namespace xun
