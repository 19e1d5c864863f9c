// The template file a read starts from, opened once: its size as it was opened, its first bytes,
// and the private copy the reader then works on.
#pragma once

#include <cstdint>
#include <string>

#include "xun/export.h"
#include "xun/support/zip_archive.h"

namespace xun::basTemplate::detail {

// The largest template file the reader opens, plain or zipped: as much as an archive may unpack
// in all, so one limit holds for both, and a template unpacked from an archive is always within
// it.
inline constexpr uint64_t kMaxTemplateFileSize = zip::kMaxTotalSize;
static_assert(zip::kMaxEntrySize <= kMaxTemplateFileSize);

// Exported for the tests only.
class XUN_API SourceFile {
 public:
  // Opens a regular file for reading, without waiting on anything else (a FIFO is refused, not
  // waited for). Raises 53 for a missing file, 70 without permission, 75 for anything that is not
  // a regular file.
  explicit SourceFile(const std::string& path);
  ~SourceFile();
  SourceFile(const SourceFile&) = delete;
  SourceFile& operator=(const SourceFile&) = delete;

  // The size when the file was opened.
  uint64_t size() const noexcept { return size_; }

  // Up to `count` bytes from the start of the file.
  std::string Head(size_t count) const;

  // Copies the file into `target`, a new file only the owner may read. The copy stops as soon as
  // more than `limit` bytes were found (the file grew while it was copied): it is then removed and
  // the answer is false. Any other failure removes it and raises the run-time error of the call.
  bool CopyTo(const std::string& target, uint64_t limit) const;

 private:
  int fd_ = -1;
  uint64_t size_ = 0;
};

}  // namespace xun::basTemplate::detail
