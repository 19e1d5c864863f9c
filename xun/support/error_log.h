// Error.log: the record of reports made while no host handler is installed.
#pragma once

#include <string>

namespace xun::basError::detail {

// Appends one line (CR LF added) to Error.log beside the library, as UTF-16LE text; a new log
// starts with a byte-order mark. Raises a run-time error when the log cannot be written.
void AppendToLog(const std::string& line);

// True when the library's folder, and so the log's place, is known.
bool LogAvailable();

}  // namespace xun::basError::detail
