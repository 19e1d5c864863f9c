// The password of template archives.
#pragma once

#include <string>

namespace xun::basTemplate::detail {

// The fixed password every template archive is written and read with. Built one character at a
// time so it never appears as one piece of text in the library file.
std::string ArchivePassword();

}  // namespace xun::basTemplate::detail
