// The common base of every object the library hands out, so any of them fits in a Variant.
#pragma once

#include <memory>

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

}  // namespace xun
