// The error reporter: the one way out of every failure in the library.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "xun/export.h"
#include "xun/support/error_handler.h"
#include "xun/support/variant.h"

namespace xun::basError {

// Report kinds.
inline constexpr int32_t kKindRuntime = 0;     // a run-time error caught by a trap
inline constexpr int32_t kKindValidation = 2;  // a message a validation composed itself

// Hands one report to the host's handler, or, with none installed, appends it to Error.log
// beside the library. Returns the handler's answer as a 16-bit integer, 0 without a handler.
// Never throws, except xun::HostError thrown by the handler, which passes through.
// Arguments 7 to 14 are passed through to the handler unchanged.
XUN_API int16_t ReportError(int32_t lErl, const Variant& vNumber, int32_t lKind,
                            const std::string& sDescription, const std::string& sLocation,
                            const std::string& sTitle = {}, const std::string& sText1 = {},
                            const std::string& sText2 = {}, const std::string& sText3 = {},
                            int32_t lValue1 = 1, const std::string& sText4 = {},
                            const std::string& sText5 = {}, const std::string& sText6 = {},
                            int32_t lValue2 = 0, const Variant& vSilent = Variant::Missing());

// The location as every report shows it: "Office Template - " + location, and "; Line: N" when
// the line is known (greater than 0).
XUN_API std::string FullLocation(const std::string& sLocation, int32_t lErl);

// The handler slot of this thread. Setting nullptr removes the handler.
XUN_API void SetHandler(std::shared_ptr<IErrorHandler> handler);
XUN_API std::shared_ptr<IErrorHandler> Handler();

// The folder of the loaded library file, and the log in it. Empty when it cannot be found.
XUN_API std::filesystem::path LibraryFolder();
XUN_API std::filesystem::path LogFilePath();

}  // namespace xun::basError
