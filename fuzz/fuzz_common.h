// Shared by the fuzz targets: a quiet library, a scratch folder, and the round-trip check.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "common/tree_description.h"
#include "xun/xun.h"

namespace xun::fuzz {

// Takes every report and answers 0, so nothing is shown and nothing goes to Error.log.
class QuietHandler : public IErrorHandler {
 public:
  bool Silent() override { return true; }
  void Silent(bool) override {}
  Variant RaiseError(Variant&, int32_t&, std::string&, std::string&, std::string&, std::string&,
                     std::string&, std::string&, int32_t&, std::string&, std::string&, std::string&,
                     int32_t&) override {
    return Variant(int16_t{0});
  }
};

// One folder per process, removed at exit, so parallel fuzzing jobs never share files.
class Scratch {
 public:
  Scratch() {
    // Every save syncs its file and folder; on a memory file system that costs nothing, and the
    // fuzzer runs about three times faster. The library's own temporary copies follow TMPDIR.
    if (std::filesystem::is_directory("/dev/shm")) setenv("TMPDIR", "/dev/shm", 0);
    folder_ = std::filesystem::temp_directory_path() / ("xun-fuzz-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder_);
    basError::SetHandler(std::make_shared<QuietHandler>());
    basError::SetMessageBox([](const MessageBoxRequest&) {});
  }
  ~Scratch() {
    std::error_code ec;
    std::filesystem::remove_all(folder_, ec);
  }
  // A path in the folder with no file at it: a save onto an existing file would back it up.
  std::string Fresh(const std::string& name) const {
    const std::filesystem::path path = folder_ / name;
    std::error_code ec;
    std::filesystem::remove(path, ec);
    std::filesystem::remove(path.string() + ".old", ec);
    return path.string();
  }

 private:
  std::filesystem::path folder_;
};

inline std::string ReadBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline void WriteBytes(const std::string& path, const uint8_t* data, size_t size) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  if (!out) std::abort();
}

// Reads `input` for editing; when it reads, it must save, read back as the same tree, and save
// again: a plain file to the same bytes, an archive (whose zip headers carry times and random
// salts) to an equal tree once more. Anything else is a fault of the library.
inline void CheckRoundTrip(const Scratch& scratch, const std::string& input) {
  auto read = clsXUNTemplate::Create();
  if (!read->Read(input, true)) return;
  const std::string first = scratch.Fresh("first.omr");
  if (!read->Save(first, false)) std::abort();
  auto again = clsXUNTemplate::Create();
  if (!again->Read(first, true)) std::abort();
  const std::string saved_tree = testing::DescribeTree(*read, true);
  if (testing::DescribeTree(*again, true) != saved_tree) std::abort();
  const std::string second = scratch.Fresh("second.omr");
  if (!again->Save(second, false)) std::abort();
  const std::string first_bytes = ReadBytes(first);
  if (first_bytes.compare(0, 2, "PK") != 0) {
    if (ReadBytes(second) != first_bytes) std::abort();
  } else {
    auto third = clsXUNTemplate::Create();
    if (!third->Read(second, true)) std::abort();
    if (testing::DescribeTree(*third, true) != saved_tree) std::abort();
    third->Free();
  }
  read->Free();
  again->Free();
}

}  // namespace xun::fuzz
