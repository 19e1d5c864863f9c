// An array with a lower bound of its own, as the list conversions hand out (AsArray).
#pragma once

#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "xun/support/runtime_error.h"

namespace xun {

// Elements are addressed by their own index, LBound() to UBound(). A default-made array is
// unallocated: it has no bounds at all, which is different from an allocated empty array.
template <class T>
class BoundedArray {
 public:
  BoundedArray() = default;
  BoundedArray(int32_t lower_bound, std::vector<T> elements)
      : allocated_(true), lower_bound_(lower_bound), elements_(std::move(elements)) {
    if (!elements_.empty() &&
        static_cast<int64_t>(lower_bound) + static_cast<int64_t>(elements_.size()) - 1 >
            std::numeric_limits<int32_t>::max())
      Raise(kErrOverflow);
  }

  bool IsAllocated() const noexcept { return allocated_; }
  int32_t Count() const noexcept { return static_cast<int32_t>(elements_.size()); }
  bool empty() const noexcept { return elements_.empty(); }

  // Bounds of an unallocated array are "Subscript out of range", as they are for callers that
  // ask the classic way.
  int32_t LBound() const {
    if (!allocated_) Raise(kErrSubscript);
    return lower_bound_;
  }
  int32_t UBound() const {
    if (!allocated_) Raise(kErrSubscript);
    return static_cast<int32_t>(lower_bound_ + static_cast<int64_t>(elements_.size()) - 1);
  }

  T& operator[](int32_t index) { return elements_[Offset(index)]; }
  const T& operator[](int32_t index) const { return elements_[Offset(index)]; }

  auto begin() noexcept { return elements_.begin(); }
  auto end() noexcept { return elements_.end(); }
  auto begin() const noexcept { return elements_.begin(); }
  auto end() const noexcept { return elements_.end(); }

  const std::vector<T>& Elements() const noexcept { return elements_; }

  friend bool operator==(const BoundedArray&, const BoundedArray&) = default;

 private:
  size_t Offset(int32_t index) const {
    const int64_t offset = static_cast<int64_t>(index) - lower_bound_;
    if (!allocated_ || offset < 0 || offset >= static_cast<int64_t>(elements_.size()))
      Raise(kErrSubscript);
    return static_cast<size_t>(offset);
  }

  bool allocated_ = false;
  int32_t lower_bound_ = 0;
  std::vector<T> elements_;
};

}  // namespace xun
