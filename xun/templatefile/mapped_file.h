// A file's bytes mapped read-only into memory, for the reader's private copy of a template: the
// text is tokenized where it lies, with no heap buffer the size of the file.
#pragma once

#include <string>
#include <string_view>

namespace xun::basTemplate::detail {

class MappedFile {
 public:
  // Raises the run-time error of the failing call (permission denied, device I/O).
  explicit MappedFile(const std::string& path);
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;
  ~MappedFile();

  std::string_view bytes() const noexcept { return {static_cast<const char*>(data_), size_}; }

 private:
  void* data_ = nullptr;
  size_t size_ = 0;
};

}  // namespace xun::basTemplate::detail
