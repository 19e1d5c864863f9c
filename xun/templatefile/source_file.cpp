#include "xun/templatefile/source_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

#include "xun/support/runtime_error.h"

namespace xun::basTemplate::detail {
namespace {

[[noreturn]] void RaiseOpenError(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      Raise(kErrFileNotFound);
    case EACCES:
    case EPERM:
      Raise(kErrPermissionDenied);
    default:
      Raise(kErrPathFileAccess);
  }
}

// Copy errors that mean "not between these two files", not "failed": the bytes are then read and
// written instead.
bool KernelCannotCopy(int error) {
  return error == EXDEV || error == EINVAL || error == ENOSYS || error == EOPNOTSUPP ||
         error == EPERM;
}

bool WriteAll(int fd, const char* data, size_t size) {
  while (size > 0) {
    const ssize_t written = ::write(fd, data, size);
    if (written < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    data += written;
    size -= static_cast<size_t>(written);
  }
  return true;
}

}  // namespace

SourceFile::SourceFile(const std::string& path) {
  fd_ = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd_ < 0) RaiseOpenError(errno);
  struct stat info {};
  const bool stated = ::fstat(fd_, &info) == 0;
  if (!stated || !S_ISREG(info.st_mode) || info.st_size < 0) {
    ::close(fd_);
    fd_ = -1;
    Raise(stated ? kErrPathFileAccess : kErrDeviceIO);
  }
  size_ = static_cast<uint64_t>(info.st_size);
}

SourceFile::~SourceFile() {
  if (fd_ >= 0) ::close(fd_);
}

std::string SourceFile::Head(size_t count) const {
  std::string bytes(count, '\0');
  size_t have = 0;
  while (have < count) {
    const ssize_t n = ::pread(fd_, bytes.data() + have, count - have, static_cast<off_t>(have));
    if (n < 0) {
      if (errno == EINTR) continue;
      Raise(kErrDeviceIO);
    }
    if (n == 0) break;
    have += static_cast<size_t>(n);
  }
  bytes.resize(have);
  return bytes;
}

bool SourceFile::CopyTo(const std::string& target, uint64_t limit) const {
  const int out = ::open(target.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (out < 0) Raise(errno == EEXIST ? kErrFileExists : kErrPathFileAccess);
  auto give_up = [&](bool raise) {
    ::close(out);
    ::unlink(target.c_str());
    if (raise) Raise(kErrDeviceIO);
    return false;
  };

  // Never more than one byte past the limit: that byte is enough to know the file is too large.
  uint64_t copied = 0;
  bool in_kernel = true;
  std::vector<char> buffer;
  while (copied <= limit) {
    const size_t want = static_cast<size_t>(std::min<uint64_t>(limit + 1 - copied, 1u << 30));
    ssize_t n;
    if (in_kernel) {
      off_t from = static_cast<off_t>(copied);
      n = ::copy_file_range(fd_, &from, out, nullptr, want, 0);
      // A file that says it is empty may not be (files the kernel makes up as they are read);
      // reading tells.
      if ((n < 0 && KernelCannotCopy(errno)) || (n == 0 && copied == 0)) {
        in_kernel = false;
        continue;
      }
    } else {
      if (buffer.empty()) buffer.resize(size_t{256} << 10);
      n = ::pread(fd_, buffer.data(), std::min(want, buffer.size()), static_cast<off_t>(copied));
      if (n > 0 && !WriteAll(out, buffer.data(), static_cast<size_t>(n))) return give_up(true);
    }
    if (n < 0) {
      if (errno == EINTR) continue;
      return give_up(true);
    }
    if (n == 0) break;
    copied += static_cast<uint64_t>(n);
  }
  if (copied > limit) return give_up(false);
  if (::close(out) != 0) {
    ::unlink(target.c_str());
    Raise(kErrDeviceIO);
  }
  return true;
}

}  // namespace xun::basTemplate::detail
