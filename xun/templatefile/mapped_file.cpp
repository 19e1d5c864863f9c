#include "xun/templatefile/mapped_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "xun/support/runtime_error.h"

namespace xun::basTemplate::detail {

// Only files the reader made itself are mapped: nobody else truncates them while mapped, which
// would turn a read of the lost part into a bus error.
MappedFile::MappedFile(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) Raise(kErrPermissionDenied);
  struct stat info {};
  if (::fstat(fd, &info) != 0 || info.st_size < 0) {
    ::close(fd);
    Raise(kErrDeviceIO);
  }
  size_ = static_cast<size_t>(info.st_size);
  if (size_ > 0) {
    data_ = ::mmap(nullptr, size_, PROT_READ, MAP_PRIVATE, fd, 0);
    if (data_ == MAP_FAILED) {
      data_ = nullptr;
      size_ = 0;
      ::close(fd);
      Raise(kErrDeviceIO);
    }
    // The text is read once, front to back.
    ::madvise(data_, size_, MADV_SEQUENTIAL);
  }
  ::close(fd);
}

MappedFile::~MappedFile() {
  if (data_) ::munmap(data_, size_);
}

}  // namespace xun::basTemplate::detail
