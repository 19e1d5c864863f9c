// Opening the libraries the template library loads at run time (the recognition engine, the
// image module): beside this library first, as a program finds the libraries it ships with, then
// wherever the dynamic loader looks.
#pragma once

#include <string>

namespace xun::detail {

// The handle of `library` (a file name, or a path with a "/"), opened with RTLD_NOW and kept
// private to it; nullptr when it cannot be opened.
void* OpenBesideLibrary(const std::string& library);

}  // namespace xun::detail
