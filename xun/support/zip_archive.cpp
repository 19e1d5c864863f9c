#include "xun/support/zip_archive.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zip.h>

#include <cctype>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "xun/support/runtime_error.h"

namespace xun::zip {
namespace {

namespace fs = std::filesystem;

struct ArchiveCloser {
  void operator()(zip_t* archive) const { zip_discard(archive); }
};
using ArchivePtr = std::unique_ptr<zip_t, ArchiveCloser>;

struct EntryCloser {
  void operator()(zip_file_t* file) const { zip_fclose(file); }
};
using EntryPtr = std::unique_ptr<zip_file_t, EntryCloser>;

struct SourceFreer {
  void operator()(zip_source_t* source) const { zip_source_free(source); }
};
using SourcePtr = std::unique_ptr<zip_source_t, SourceFreer>;

class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  int get() const { return fd_; }
  int release() { return std::exchange(fd_, -1); }

 private:
  int fd_;
};

// Refused content is a bad argument; an archive that cannot be read is a file access failure.
[[noreturn]] void Refuse() {
  Raise(kErrInvalidCall);
}
[[noreturn]] void Unreadable() {
  Raise(kErrPathFileAccess);
}

bool IsDirectoryName(std::string_view name) {
  return !name.empty() && name.back() == '/';
}

// Only regular files and folders are unpacked. Links are refused outright: even though they
// would be written as plain files here, an archive that carries one was not made by us.
void CheckFileType(zip_t* archive, zip_uint64_t index) {
  zip_uint8_t opsys = 0;
  zip_uint32_t attributes = 0;
  if (zip_file_get_external_attributes(archive, index, 0, &opsys, &attributes) != 0) Unreadable();
  if (opsys != ZIP_OPSYS_UNIX && opsys != ZIP_OPSYS_OS_X) return;  // no file type recorded
  const mode_t type = static_cast<mode_t>(attributes >> 16) & S_IFMT;
  if (type != 0 && type != S_IFREG && type != S_IFDIR) Refuse();
}

void WriteAll(int fd, const char* data, size_t size) {
  while (size > 0) {
    const ssize_t done = ::write(fd, data, size);
    if (done < 0) {
      if (errno == EINTR) continue;
      Raise(errno == ENOSPC ? kErrDiskFull : kErrDeviceIO);
    }
    data += done;
    size -= static_cast<size_t>(done);
  }
}

void ExtractEntry(zip_t* archive, zip_uint64_t index, const zip_stat_t& stat,
                  const fs::path& folder, const std::string& password) {
  const fs::path target = folder / stat.name;  // a checked relative name stays inside `folder`
  std::error_code ec;
  if (IsDirectoryName(stat.name)) {
    fs::create_directories(target, ec);
    if (ec) Unreadable();
    return;
  }
  fs::create_directories(target.parent_path(), ec);
  if (ec) Unreadable();

  EntryPtr entry(
      zip_fopen_index_encrypted(archive, index, 0, password.empty() ? nullptr : password.c_str()));
  if (!entry) Unreadable();  // wrong password, unknown method
  // O_EXCL: a name given twice must not overwrite what the first entry wrote.
  Descriptor out(
      ::open(target.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
  if (out.get() < 0) {
    if (errno == EEXIST) Refuse();
    Unreadable();
  }

  std::vector<char> buffer(size_t{1} << 16);
  uint64_t written = 0;
  for (;;) {
    // Read to the end even when the declared size is reached: the CRC is checked only there.
    const zip_int64_t got = zip_fread(entry.get(), buffer.data(), buffer.size());
    if (got < 0) Unreadable();
    if (got == 0) break;
    written += static_cast<uint64_t>(got);
    if (written > stat.size) Refuse();  // more data than declared: stop before writing it
    WriteAll(out.get(), buffer.data(), static_cast<size_t>(got));
  }
  if (written != stat.size) Refuse();
  if (zip_fclose(entry.release()) != 0) Unreadable();
  if (::close(out.release()) != 0) Raise(kErrDeviceIO);
}

}  // namespace

bool LooksLikeZip(std::string_view bytes) {
  const std::string_view head = bytes.substr(0, 4);
  return head == std::string_view("PK\x03\x04", 4) || head == std::string_view("PK\x05\x06", 4);
}

bool IsSafeEntryName(std::string_view name) {
  if (name.empty() || name.front() == '/') return false;
  if (name.find('\\') != std::string_view::npos) return false;
  if (name.find('\0') != std::string_view::npos) return false;
  if (name.size() >= 2 && name[1] == ':' && std::isalpha(static_cast<unsigned char>(name[0])))
    return false;
  if (IsDirectoryName(name)) name.remove_suffix(1);
  for (;;) {
    const size_t slash = name.find('/');
    const std::string_view part = name.substr(0, slash);
    if (part.empty() || part == "." || part == "..") return false;
    if (slash == std::string_view::npos) return true;
    name.remove_prefix(slash + 1);
  }
}

void ExtractArchive(const std::string& archive_path, const std::string& folder,
                    const std::string& password) {
  int code = 0;
  const ArchivePtr archive(zip_open(archive_path.c_str(), ZIP_CHECKCONS | ZIP_RDONLY, &code));
  if (!archive) Unreadable();
  const zip_int64_t count = zip_get_num_entries(archive.get(), 0);
  if (count < 0) Unreadable();
  if (count > kMaxEntries) Refuse();

  // Every entry is checked before the first byte is written.
  std::vector<zip_stat_t> stats(static_cast<size_t>(count));
  uint64_t total = 0;
  for (zip_uint64_t i = 0; i < stats.size(); ++i) {
    zip_stat_t& stat = stats[i];
    zip_stat_init(&stat);
    if (zip_stat_index(archive.get(), i, 0, &stat) != 0) Unreadable();
    if ((stat.valid & ZIP_STAT_NAME) == 0 || (stat.valid & ZIP_STAT_SIZE) == 0) Unreadable();
    if (!IsSafeEntryName(stat.name)) Refuse();
    CheckFileType(archive.get(), i);
    if (stat.size > kMaxEntrySize) Refuse();
    total += stat.size;
    if (total > kMaxTotalSize) Refuse();
  }
  for (zip_uint64_t i = 0; i < stats.size(); ++i)
    ExtractEntry(archive.get(), i, stats[i], fs::path(folder), password);
}

std::string BuildArchive(const std::vector<Entry>& entries, const std::string& password) {
  if (static_cast<int64_t>(entries.size()) > kMaxEntries) Refuse();
  uint64_t total = 0;
  std::set<std::string_view> names;
  for (const auto& [name, data] : entries) {
    if (!IsSafeEntryName(name) || IsDirectoryName(name) || !names.insert(name).second) Refuse();
    if (data.size() > kMaxEntrySize) Refuse();
    total += data.size();
    if (total > kMaxTotalSize) Refuse();
  }

  zip_error_t error;
  zip_error_init(&error);
  SourcePtr memory(zip_source_buffer_create(nullptr, 0, 0, &error));
  zip_error_fini(&error);
  if (!memory) Raise(kErrOutOfMemory);
  ArchivePtr archive(zip_open_from_source(memory.get(), ZIP_TRUNCATE, nullptr));
  if (!archive) Unreadable();
  // The archive now holds one reference to the buffer; keep ours for reading the result back.
  zip_source_keep(memory.get());

  const zip_uint16_t method = zip_encryption_method_supported(ZIP_EM_AES_256, 1)
                                  ? zip_uint16_t{ZIP_EM_AES_256}
                                  : zip_uint16_t{ZIP_EM_TRAD_PKWARE};
  for (const auto& [name, data] : entries) {
    // The data is not copied: `entries` outlives zip_close below.
    SourcePtr source(zip_source_buffer(archive.get(), data.data(), data.size(), 0));
    if (!source) Raise(kErrOutOfMemory);
    const zip_int64_t index =
        zip_file_add(archive.get(), name.c_str(), source.get(), ZIP_FL_ENC_UTF_8);
    if (index < 0) Unreadable();
    source.release();  // the archive owns it now
    const auto at = static_cast<zip_uint64_t>(index);
    if (zip_file_set_external_attributes(archive.get(), at, 0, ZIP_OPSYS_UNIX,
                                         static_cast<zip_uint32_t>(S_IFREG | 0644) << 16) != 0)
      Unreadable();
    if (!password.empty() &&
        zip_file_set_encryption(archive.get(), at, method, password.c_str()) != 0)
      Unreadable();
  }
  if (zip_close(archive.get()) != 0) Unreadable();
  archive.release();  // closed: zip_discard must not run

  if (zip_source_is_deleted(memory.get()) != 0)  // nothing was added
    return std::string("PK\x05\x06", 4) + std::string(18, '\0');
  zip_stat_t stat;
  zip_stat_init(&stat);
  if (zip_source_stat(memory.get(), &stat) != 0 || (stat.valid & ZIP_STAT_SIZE) == 0) Unreadable();
  std::string bytes(static_cast<size_t>(stat.size), '\0');
  if (zip_source_open(memory.get()) != 0) Unreadable();
  const zip_int64_t got = zip_source_read(memory.get(), bytes.data(), bytes.size());
  zip_source_close(memory.get());
  if (got < 0 || static_cast<uint64_t>(got) != bytes.size()) Unreadable();
  return bytes;
}

}  // namespace xun::zip
