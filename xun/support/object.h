// The common base of every object the library hands out, so any of them fits in a Variant.
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <utility>

#include "xun/export.h"

namespace xun {

class XUN_API Object : public std::enable_shared_from_this<Object> {
 public:
  virtual ~Object();

 protected:
  Object() = default;
  Object(const Object&) = default;
  Object& operator=(const Object&) = default;

  // This object as its own type. Only valid once the object is held by a shared_ptr, which
  // Create() guarantees; never call it from a constructor.
  template <class T>
  std::shared_ptr<T> SharedFrom(T* self) {
    (void)self;
    return std::static_pointer_cast<T>(shared_from_this());
  }
  template <class T>
  std::shared_ptr<const T> SharedFrom(const T* self) const {
    (void)self;
    return std::static_pointer_cast<const T>(shared_from_this());
  }
};

using ObjectPtr = std::shared_ptr<Object>;

namespace detail {

// The allocator every Create() hands std::allocate_shared, so an object and its control block come
// in one allocation, while the constructor stays private: each class befriends this template.
template <class T>
struct ObjectAllocator {
  using value_type = T;
  ObjectAllocator() = default;
  template <class U>
  ObjectAllocator(const ObjectAllocator<U>&) noexcept {}
  T* allocate(size_t n) { return std::allocator<T>().allocate(n); }
  void deallocate(T* p, size_t n) noexcept { std::allocator<T>().deallocate(p, n); }
  template <class U, class... Args>
  void construct(U* p, Args&&... args) {
    ::new (static_cast<void*>(p)) U(std::forward<Args>(args)...);
  }
  template <class U>
  void destroy(U* p) noexcept {
    p->~U();
  }
  friend bool operator==(const ObjectAllocator&, const ObjectAllocator&) noexcept { return true; }
};

}  // namespace detail

// A new T held by a shared_ptr, made in one allocation.
template <class T, class... Args>
std::shared_ptr<T> MakeObject(Args&&... args) {
  return std::allocate_shared<T>(detail::ObjectAllocator<T>(), std::forward<Args>(args)...);
}

}  // namespace xun
