// Unique file names for temporary files, and the random numbers behind them.
#include <errno.h>  // program_invocation_short_name
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <random>
#include <string>

#include "xun/support/file_helpers.h"
#include "xun/support/runtime_error.h"
#include "xun/support/text.h"
#include "xun/support/trap.h"

namespace xun::basPublic {
namespace {

namespace fs = std::filesystem;

std::string Hex(uint32_t value, bool upper) {
  char buffer[16];
  std::snprintf(buffer, sizeof buffer, upper ? "%X" : "%x", value);
  return buffer;
}

// The first `count` characters (UTF-16 code units, as the classic Left counts them).
std::string Left(std::string_view text, size_t count) {
  const std::u16string units = text::Utf8ToUtf16(text);
  return text::Utf16ToUtf8(std::u16string_view(units).substr(0, count));
}

// Something occupies the name: a file, a folder, or even a dangling link, which creating the
// file would follow.
bool Occupied(const fs::path& path) {
  std::error_code ec;
  return fs::exists(fs::symlink_status(path, ec));
}

}  // namespace

int32_t RandomNumber(int32_t lLower, int32_t lUpper) {
  return Trap("basPublic.RandomNumber", int32_t{0}, [&] {
    if (lLower > lUpper) Raise(kErrInvalidCall);
    thread_local std::mt19937 generator{std::random_device{}()};
    return std::uniform_int_distribution<int32_t>(lLower, lUpper)(generator);
  });
}

std::string GetUniqueFileName(const std::string& sPrefix, const std::string& sExtension,
                              const std::string& sFolder) {
  return Trap("basPublic.GetUniqueFileName", std::string{}, [&] {
    const fs::path folder = sFolder.empty() ? fs::temp_directory_path() : fs::path(sFolder);
    const std::string prefix = sPrefix.empty() ? Left(program_invocation_short_name, 5) : sPrefix;
    // Any stable per-process value will do; the process id keeps concurrent processes apart.
    const std::string tag = Hex(static_cast<uint32_t>(getpid()), false).substr(0, 3);
    for (;;) {
      const std::string extension =
          sExtension.empty() ? "." + Hex(static_cast<uint32_t>(RandomNumber(0, 4095)), false)
                             : sExtension;
      const fs::path path =
          folder /
          (prefix + tag + Hex(static_cast<uint32_t>(RandomNumber(0, 1048575)), true) + extension);
      if (!Occupied(path)) return path.string();
    }
  });
}

}  // namespace xun::basPublic
