#include "xun/recognition/imaging_module.h"

#include <dlfcn.h>

#include <mutex>

#include "xun/recognition/library_loader.h"
#include "xun/support/runtime_error.h"

namespace xun::detail {

const ImagingModule& Imaging() {
  static std::mutex mutex;
  static const ImagingModule* loaded = nullptr;
  const std::lock_guard lock(mutex);
  // Tried again on every call while it cannot be had, as the engine is.
  if (loaded) return *loaded;
  void* handle = OpenBesideLibrary(kImagingLibraryName);
  if (!handle)
    throw RuntimeError(kErrFileNotFound, std::string("File not found: ") + kImagingLibraryName);
  using Entry = const ImagingModule* (*)();
  const auto entry = reinterpret_cast<Entry>(dlsym(handle, kImagingEntryPoint));
  const ImagingModule* module = entry ? entry() : nullptr;
  if (!module || module->version != ImagingModule::kVersion || !module->import_page ||
      !module->read_barcode || !module->print_page) {
    dlclose(handle);
    throw RuntimeError(kErrDllFunctionNotFound, std::string("Can't find DLL entry point ") +
                                                    kImagingEntryPoint + " in " +
                                                    kImagingLibraryName);
  }
  // Kept open for the life of the process: the table points into it.
  loaded = module;
  return *loaded;
}

}  // namespace xun::detail
