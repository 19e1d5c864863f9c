// The one way the library writes a file: the bytes go to a temporary file beside the target,
// which then replaces the target in one step. A failure at any point leaves the previous target
// as it was and no temporary file behind.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "xun/export.h"

namespace xun::basTemplate::detail {

// A sink for one file. Write as often as needed, then Commit; a sink dropped without a
// successful Commit removes its temporary file. Every failure is a RuntimeError (file-system
// errors mapped to their classic numbers). Exported for the tests only.
class XUN_API FileSink {
 public:
  explicit FileSink(std::string target);
  ~FileSink();
  FileSink(const FileSink&) = delete;
  FileSink& operator=(const FileSink&) = delete;

  void Write(std::string_view bytes);
  // Flush to disk, close, rename over the target, then sync the folder so the rename lasts.
  void Commit();

 private:
  void Discard() noexcept;

  std::string target_, temp_;
  int fd_ = -1;
  bool committed_ = false;
};

// Writes `bytes` as the whole new content of `target` through a FileSink.
XUN_API void ReplaceFileContent(const std::string& target, std::string_view bytes);

// Test seam: make the nth call (1-based, counted per kind from when the plan is set) of one kind
// of file operation fail, once or for every later call too. Per thread; nullopt clears it.
struct FaultPlan {
  enum Op { Write, Flush, Close, Rename };
  Op op = Write;
  int nth = 1;
  bool persistent = false;
};
XUN_API void SetFaultPlanForTesting(std::optional<FaultPlan> plan);

}  // namespace xun::basTemplate::detail
