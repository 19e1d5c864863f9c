// The trap that every trapped public member runs its body through.
#pragma once

#include <exception>
#include <string_view>
#include <type_traits>
#include <utility>

#include "xun/export.h"
#include "xun/support/runtime_error.h"

namespace xun {

// Reports the exception in flight (mapped to a run-time error) at `location` in the standard
// form. HostError is rethrown unchanged.
XUN_API void ReportCurrentException(std::string_view location);

// Runs `body`; on a failure reports it at `location` and returns `fallback` (the member's empty
// result). Only xun::HostError escapes.
template <class R, class F>
R Trap(std::string_view location, R fallback, F&& body) {
  try {
    return std::forward<F>(body)();
  } catch (const HostError&) {
    throw;
  } catch (...) {
    ReportCurrentException(location);
    return fallback;
  }
}

// The same for members without a result. Returns false when the body failed.
template <class F>
requires std::is_void_v<std::invoke_result_t<F>>
bool Trap(std::string_view location, F&& body) {
  try {
    std::forward<F>(body)();
    return true;
  } catch (const HostError&) {
    throw;
  } catch (...) {
    ReportCurrentException(location);
    return false;
  }
}

}  // namespace xun
