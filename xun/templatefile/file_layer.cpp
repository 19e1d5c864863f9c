#include "xun/templatefile/file_layer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>

#include "xun/support/file_helpers.h"
#include "xun/support/runtime_error.h"

namespace xun::basTemplate::detail {
namespace {

namespace fs = std::filesystem;

struct FaultState {
  std::optional<FaultPlan> plan;
  std::array<int, 4> calls{};
};
thread_local FaultState fault_state;

// Counts the call and tells whether the plan wants it to fail.
bool InjectFault(FaultPlan::Op op) {
  FaultState& state = fault_state;
  const int call = ++state.calls[op];
  if (!state.plan || state.plan->op != op) return false;
  return state.plan->persistent ? call >= state.plan->nth : call == state.plan->nth;
}

[[noreturn]] void RaiseErrno(int error) {
  switch (error) {
    case ENOSPC:
    case EDQUOT:
      Raise(kErrDiskFull);
    case EACCES:
    case EPERM:
    case EROFS:
      Raise(kErrPermissionDenied);
    case ENOENT:
    case ENOTDIR:
      Raise(kErrPathNotFound);
    case EIO:
      Raise(kErrDeviceIO);
    default:
      Raise(kErrPathFileAccess);
  }
}

std::string FolderOf(const std::string& target) {
  const fs::path folder = fs::path(target).parent_path();
  return folder.empty() ? std::string(".") : folder.string();
}

}  // namespace

FileSink::FileSink(std::string target) : target_(std::move(target)) {
  const std::string folder = FolderOf(target_);
  // A replacement keeps the permissions of the file it replaces.
  mode_t mode = 0666;
  struct stat existing {};
  if (::stat(target_.c_str(), &existing) == 0) mode = existing.st_mode & 07777;
  // The unique name is only a proposal (another process may take it first), so O_EXCL decides.
  for (int attempt = 0; fd_ < 0; ++attempt) {
    temp_ = basPublic::GetUniqueFileName("~xun", ".tmp", folder);
    if (temp_.empty()) Raise(kErrPathFileAccess);
    fd_ = ::open(temp_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (fd_ < 0 && (errno != EEXIST || attempt >= 16)) {
      const int error = errno;
      temp_.clear();
      RaiseErrno(error);
    }
  }
  // open() applies the umask; an explicit fchmod gives the replaced file's own mode back.
  if (mode != 0666) (void)::fchmod(fd_, mode);
}

FileSink::~FileSink() {
  if (!committed_) Discard();
}

void FileSink::Discard() noexcept {
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
  if (!temp_.empty()) ::unlink(temp_.c_str());
  temp_.clear();
}

void FileSink::Write(std::string_view bytes) {
  if (fd_ < 0) Raise(kErrBadFileMode);
  while (!bytes.empty()) {
    const ssize_t written = InjectFault(FaultPlan::Write)
                                ? (errno = EIO, -1)
                                : ::write(fd_, bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      const int error = errno;
      Discard();
      RaiseErrno(error);
    }
    bytes.remove_prefix(static_cast<size_t>(written));
  }
}

void FileSink::Commit() {
  if (fd_ < 0) Raise(kErrBadFileMode);
  // Without the sync a crash after the rename could leave an empty or partial target.
  if (InjectFault(FaultPlan::Flush) ? (errno = EIO, true) : ::fsync(fd_) != 0) {
    const int error = errno;
    Discard();
    RaiseErrno(error);
  }
  // close() can report a delayed write error; the descriptor is gone either way.
  const int fd = fd_;
  fd_ = -1;
  if (InjectFault(FaultPlan::Close) ? (::close(fd), errno = EIO, true) : ::close(fd) != 0) {
    const int error = errno;
    Discard();
    RaiseErrno(error);
  }
  if (InjectFault(FaultPlan::Rename) ? (errno = EIO, true)
                                     : ::rename(temp_.c_str(), target_.c_str()) != 0) {
    const int error = errno;
    Discard();
    RaiseErrno(error);
  }
  committed_ = true;
  temp_.clear();
  // The rename is done and cannot be taken back; a folder that cannot be synced (some file
  // systems refuse fsync on a directory) still holds the new file, so this is best effort.
  const int dir = ::open(FolderOf(target_).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dir >= 0) {
    (void)::fsync(dir);
    ::close(dir);
  }
}

void ReplaceFileContent(const std::string& target, std::string_view bytes) {
  FileSink sink(target);
  sink.Write(bytes);
  sink.Commit();
}

void SetFaultPlanForTesting(std::optional<FaultPlan> plan) {
  fault_state = FaultState{plan, {}};
}

}  // namespace xun::basTemplate::detail
