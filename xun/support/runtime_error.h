// Run-time failures inside the library: classic error numbers with their standard texts.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

#include "xun/export.h"

namespace xun {

// The classic run-time error numbers that the library raises.
enum ErrorNumber : int32_t {
  kErrInvalidCall = 5,
  kErrOverflow = 6,
  kErrOutOfMemory = 7,
  kErrSubscript = 9,
  kErrDivisionByZero = 11,
  kErrTypeMismatch = 13,
  kErrInternal = 51,
  kErrFileNotFound = 53,
  kErrBadFileMode = 54,
  kErrDeviceIO = 57,
  kErrFileExists = 58,
  kErrDiskFull = 61,
  kErrInputPastEnd = 62,
  kErrPermissionDenied = 70,
  kErrPathFileAccess = 75,
  kErrPathNotFound = 76,
  kErrObjectNotSet = 91,
  kErrInvalidUseOfNull = 94,
  kErrInvalidPropertyValue = 380,
  kErrCantCreateObject = 429,
  kErrNoSuchMember = 438,
  kErrAutomation = 440,
  kErrDllFunctionNotFound = 453,
  kErrDuplicateKey = 457,
  kErrElementNotFound = 32811,
};

// The standard description of a run-time error number; unknown numbers get the generic
// "Application-defined or object-defined error".
XUN_API std::string_view ErrorDescription(int32_t number) noexcept;

// A run-time failure: a classic error number and its description. Every trapped public member
// turns one of these into a report; callers never see it.
class XUN_API RuntimeError : public std::exception {
 public:
  explicit RuntimeError(int32_t number);
  RuntimeError(int32_t number, std::string description);

  int32_t Number() const noexcept { return number_; }
  const std::string& Description() const noexcept { return description_; }
  const char* what() const noexcept override { return description_.c_str(); }

 private:
  int32_t number_;
  std::string description_;
};

// Raises run-time error `number` with its standard description.
[[noreturn]] XUN_API void Raise(int32_t number);

// An error of the host's own: a host error handler throws it to turn a report into a failure of
// the caller. It passes through the reporter and every trap unchanged.
class XUN_API HostError : public std::exception {
 public:
  HostError(int32_t number, std::string description);

  int32_t Number() const noexcept { return number_; }
  const std::string& Description() const noexcept { return description_; }
  const char* what() const noexcept override { return description_.c_str(); }

 private:
  int32_t number_;
  std::string description_;
};

// Maps any exception in flight to a run-time error (number and description). HostError is not
// mapped: callers rethrow it before asking.
XUN_API RuntimeError ToRuntimeError(std::exception_ptr error) noexcept;

}  // namespace xun
