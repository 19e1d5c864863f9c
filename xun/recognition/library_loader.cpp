#include "xun/recognition/library_loader.h"

#include <dlfcn.h>

#include <filesystem>
#include <system_error>

#include "xun/support/error_reporter.h"

namespace xun::detail {

void* OpenBesideLibrary(const std::string& library) {
  const std::filesystem::path own_folder = basError::LibraryFolder();
  if (!own_folder.empty() && library.find('/') == std::string::npos) {
    const std::filesystem::path beside = own_folder / library;
    std::error_code ec;
    if (std::filesystem::is_regular_file(beside, ec))
      if (void* handle = dlopen(beside.c_str(), RTLD_NOW | RTLD_LOCAL)) return handle;
  }
  return dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
}

}  // namespace xun::detail
