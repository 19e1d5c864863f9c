// How the library's reports reach Python: every report becomes xuntemplate.Error, every message
// the library would show becomes a warning (xuntemplate.Message).
#pragma once

#include <pybind11/pybind11.h>

#include <cstdint>
#include <optional>
#include <string>

#include "xun/xun.h"

namespace xunpy {

// One report of the library, carried out of it as the host error it lets pass.
class ReportedError : public xun::HostError {
 public:
  ReportedError(std::optional<int32_t> number, std::string location, std::string text,
                std::string title);

  std::optional<int32_t> number;
  std::string location;
  std::string text;
  std::string title;
  // The line of the template file, when a read failed at a known section.
  int32_t line = 0;
};

// Installs, on the calling thread, the handler that turns reports into ReportedError and the
// message-box service that keeps the messages for ShowMessages. Cheap after the first call.
void InstallOnThisThread();

// Held around every call into the library (py::call_guard): installs the services, and turns the
// messages the call showed into warnings once it is done.
class CallGuard {
 public:
  CallGuard();
  ~CallGuard();
  CallGuard(const CallGuard&) = delete;
  CallGuard& operator=(const CallGuard&) = delete;
};

// Forgets the messages shown so far on this thread (they were turned into an error instead).
void DropMessages();

// The last message shown on this thread, if any: title and text.
std::optional<std::pair<std::string, std::string>> LastMessage();

// Raises xuntemplate.Error built from these parts (a Python exception is set; throws
// pybind11::error_already_set).
[[noreturn]] void RaiseError(std::optional<int32_t> number, const std::string& location,
                             const std::string& text, const std::string& title, int32_t line = 0);

}  // namespace xunpy
