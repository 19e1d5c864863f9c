#include "xun/support/object.h"

namespace xun {

// Anchors the vtable and type information in the library.
Object::~Object() = default;

}  // namespace xun
