// Keeping a backup copy of a file before it is overwritten.
#include <chrono>
#include <filesystem>
#include <string>
#include <system_error>
#include <thread>

#include "xun/support/file_helpers.h"
#include "xun/support/runtime_error.h"
#include "xun/support/trap.h"

namespace xun::basPublic {
namespace {

namespace fs = std::filesystem;

// Another process (a virus scanner, an editor saving) may hold the file for a moment, so each
// step is tried for about five seconds before the failure is reported.
constexpr int kAttempts = 50;
constexpr std::chrono::milliseconds kPause{100};

template <class Step>
void Retry(const char* what, const fs::path& path, Step&& step) {
  std::error_code ec;
  for (int attempt = 1;; ++attempt) {
    ec.clear();
    if (step(ec)) return;
    if (attempt == kAttempts) throw fs::filesystem_error(what, path, ec);
    std::this_thread::sleep_for(kPause);
  }
}

}  // namespace

bool FileBackup(const std::string& sPath) {
  return Trap("basPublic.FileBackup", false, [&] {
    const fs::path source(sPath);
    if (!fs::is_regular_file(source)) Raise(kErrFileNotFound);
    const fs::path backup(sPath + ".old");
    Retry("FileBackup: delete", backup, [&](std::error_code& ec) {
      fs::remove(backup, ec);
      return !ec;
    });
    Retry("FileBackup: copy", source, [&](std::error_code& ec) {
      fs::copy_file(source, backup, fs::copy_options::overwrite_existing, ec);
      return !ec;
    });
    return true;
  });
}

}  // namespace xun::basPublic
