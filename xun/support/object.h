// The common base of every object the library hands out, so any of them fits in a Variant.
#pragma once

#include <memory>

#include "xun/export.h"

namespace xun {

class XUN_API Object {
 public:
  virtual ~Object();

 protected:
  Object() = default;
  Object(const Object&) = default;
  Object& operator=(const Object&) = default;
};

using ObjectPtr = std::shared_ptr<Object>;

}  // namespace xun
