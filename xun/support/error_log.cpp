#include "xun/support/error_log.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "xun/support/error_reporter.h"
#include "xun/support/runtime_error.h"
#include "xun/support/text.h"

namespace xun::basError {

std::filesystem::path LibraryFolder() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<const void*>(&LibraryFolder), &info) == 0 || !info.dli_fname)
    return {};
  std::error_code ec;
  const std::filesystem::path file = std::filesystem::canonical(info.dli_fname, ec);
  if (ec) return {};
  return file.parent_path();
}

std::filesystem::path LogFilePath() {
  const std::filesystem::path folder = LibraryFolder();
  return folder.empty() ? folder : folder / "Error.log";
}

namespace detail {

bool LogAvailable() {
  return !LibraryFolder().empty();
}

namespace {

// Creates the log with its byte-order mark already in it, atomically: a private file holding the
// mark is linked into place, so two reporters starting a new log at once cannot both write one.
void CreateLogWithByteOrderMark(const std::filesystem::path& path) {
  std::error_code ec;
  if (std::filesystem::exists(path, ec)) return;
  const std::string staging = path.string() + "." + std::to_string(::getpid()) + ".new";
  const int fd = ::open(staging.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) return;  // the append below reports what is wrong
  const bool written = ::write(fd, "\xFF\xFE", 2) == 2;
  ::close(fd);
  if (written) (void)::link(staging.c_str(), path.c_str());  // EEXIST: another reporter won
  ::unlink(staging.c_str());
}

}  // namespace

void AppendToLog(const std::string& line) {
  const std::filesystem::path path = LogFilePath();
  if (path.empty()) Raise(kErrPathNotFound);
  CreateLogWithByteOrderMark(path);
  const int fd = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
  if (fd < 0) throw std::system_error(errno, std::generic_category());
  std::string bytes;
  struct stat st {};
  // Only when the log could not be created with its mark (no hard links here).
  if (::fstat(fd, &st) == 0 && st.st_size == 0) bytes = "\xFF\xFE";
  bytes += text::Utf8ToUtf16LEBytes(line + "\r\n");
  // One write per line, so lines of concurrent reporters never mix.
  const ssize_t written = ::write(fd, bytes.data(), bytes.size());
  const int write_errno = errno;
  ::close(fd);
  if (written < 0) throw std::system_error(write_errno, std::generic_category());
  if (static_cast<size_t>(written) != bytes.size()) Raise(kErrDiskFull);
}

}  // namespace detail
}  // namespace xun::basError
