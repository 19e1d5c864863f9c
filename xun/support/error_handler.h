// The host's error handler: installed with clsXUNTemplate::SetError, it receives every report.
#pragma once

#include <cstdint>
#include <string>

#include "xun/export.h"
#include "xun/support/variant.h"

namespace xun {

// A host derives from this and overrides what it offers. The base members throw error 438,
// which is how a handler that lacks a member behaves: the reporter then falls back to its own
// "Application Error" message. RaiseError may throw xun::HostError to fail the caller.
class XUN_API IErrorHandler {
 public:
  virtual ~IErrorHandler();

  virtual bool Silent();
  virtual void Silent(bool value);

  // Receives one report; the result is converted to a 16-bit integer, the reporter's result.
  virtual Variant RaiseError(Variant& vNumber, int32_t& lKind, std::string& sDescription,
                             std::string& sLocation, std::string& sTitle, std::string& sText1,
                             std::string& sText2, std::string& sText3, int32_t& lValue1,
                             std::string& sText4, std::string& sText5, std::string& sText6,
                             int32_t& lValue2);
};

}  // namespace xun
