// Fresh keys for pages, regions and questions.
#pragma once

#include <string>

#include "xun/export.h"

namespace xun {

// A random (version 4) UUID in upper-case hexadecimal without hyphens: 32 characters.
XUN_API std::string NewObjectKey();

}  // namespace xun
