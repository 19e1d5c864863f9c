#include "xun/support/trap.h"

#include <string>

#include "xun/support/error_reporter.h"

namespace xun {

void ReportCurrentException(std::string_view location) {
  const RuntimeError error = ToRuntimeError(std::current_exception());
  basError::ReportError(0, Variant(error.Number()), basError::kKindRuntime, error.Description(),
                        std::string(location));
}

}  // namespace xun
