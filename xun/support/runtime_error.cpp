#include "xun/support/runtime_error.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <new>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace xun {
namespace {

struct ErrorText {
  int32_t number;
  std::string_view text;
};

// Sorted by number: looked up with a binary search.
constexpr std::array kErrorTexts{
    ErrorText{3, "Return without GoSub"},
    ErrorText{5, "Invalid procedure call or argument"},
    ErrorText{6, "Overflow"},
    ErrorText{7, "Out of memory"},
    ErrorText{9, "Subscript out of range"},
    ErrorText{10, "This array is fixed or temporarily locked"},
    ErrorText{11, "Division by zero"},
    ErrorText{13, "Type mismatch"},
    ErrorText{14, "Out of string space"},
    ErrorText{28, "Out of stack space"},
    ErrorText{35, "Sub or Function not defined"},
    ErrorText{48, "Error in loading DLL"},
    ErrorText{49, "Bad DLL calling convention"},
    ErrorText{51, "Internal error"},
    ErrorText{52, "Bad file name or number"},
    ErrorText{53, "File not found"},
    ErrorText{54, "Bad file mode"},
    ErrorText{55, "File already open"},
    ErrorText{57, "Device I/O error"},
    ErrorText{58, "File already exists"},
    ErrorText{59, "Bad record length"},
    ErrorText{61, "Disk full"},
    ErrorText{62, "Input past end of file"},
    ErrorText{63, "Bad record number"},
    ErrorText{67, "Too many files"},
    ErrorText{68, "Device unavailable"},
    ErrorText{70, "Permission denied"},
    ErrorText{71, "Disk not ready"},
    ErrorText{74, "Can't rename with different drive"},
    ErrorText{75, "Path/File access error"},
    ErrorText{76, "Path not found"},
    ErrorText{91, "Object variable or With block variable not set"},
    ErrorText{92, "For loop not initialized"},
    ErrorText{93, "Invalid pattern string"},
    ErrorText{94, "Invalid use of Null"},
    ErrorText{380, "Invalid property value"},
    ErrorText{381, "Invalid property array index"},
    ErrorText{424, "Object required"},
    ErrorText{429, "ActiveX component can't create object"},
    ErrorText{438, "Object doesn't support this property or method"},
    ErrorText{440, "Automation error"},
    ErrorText{445, "Object doesn't support this action"},
    ErrorText{449, "Argument not optional"},
    ErrorText{450, "Wrong number of arguments or invalid property assignment"},
    ErrorText{453, "Specified DLL function not found"},
    ErrorText{457, "This key is already associated with an element of this collection"},
    ErrorText{458, "Variable uses an Automation type not supported in Visual Basic"},
    ErrorText{32811, "Element not found"},
};

static_assert(std::is_sorted(kErrorTexts.begin(), kErrorTexts.end(),
                             [](const ErrorText& a, const ErrorText& b) {
                               return a.number < b.number;
                             }));

int32_t FromErrc(const std::error_code& code) {
  if (code == std::errc::no_such_file_or_directory) return kErrFileNotFound;
  if (code == std::errc::permission_denied || code == std::errc::operation_not_permitted ||
      code == std::errc::read_only_file_system)
    return kErrPermissionDenied;
  if (code == std::errc::file_exists) return kErrFileExists;
  if (code == std::errc::no_space_on_device) return kErrDiskFull;
  if (code == std::errc::not_a_directory) return kErrPathNotFound;
  if (code == std::errc::io_error) return kErrDeviceIO;
  if (code == std::errc::not_enough_memory) return kErrOutOfMemory;
  return kErrPathFileAccess;
}

}  // namespace

std::string_view ErrorDescription(int32_t number) noexcept {
  auto it = std::lower_bound(kErrorTexts.begin(), kErrorTexts.end(), number,
                             [](const ErrorText& e, int32_t n) { return e.number < n; });
  if (it != kErrorTexts.end() && it->number == number) return it->text;
  return "Application-defined or object-defined error";
}

RuntimeError::RuntimeError(int32_t number)
    : number_(number), description_(ErrorDescription(number)) {}

RuntimeError::RuntimeError(int32_t number, std::string description)
    : number_(number), description_(std::move(description)) {}

void Raise(int32_t number) {
  throw RuntimeError(number);
}

HostError::HostError(int32_t number, std::string description)
    : number_(number), description_(std::move(description)) {}

RuntimeError ToRuntimeError(std::exception_ptr error) noexcept {
  try {
    std::rethrow_exception(error);
  } catch (const RuntimeError& e) {
    return e;
  } catch (const std::bad_alloc&) {
    return RuntimeError(kErrOutOfMemory);
  } catch (const std::filesystem::filesystem_error& e) {
    return RuntimeError(FromErrc(e.code()));
  } catch (const std::system_error& e) {
    return RuntimeError(FromErrc(e.code()));
  } catch (const std::out_of_range&) {
    return RuntimeError(kErrSubscript);
  } catch (const std::length_error&) {
    return RuntimeError(kErrOutOfMemory);
  } catch (const std::invalid_argument&) {
    return RuntimeError(kErrInvalidCall);
  } catch (const std::overflow_error&) {
    return RuntimeError(kErrOverflow);
  } catch (const std::range_error&) {
    return RuntimeError(kErrOverflow);
  } catch (...) {
    return RuntimeError(kErrInternal);
  }
}

}  // namespace xun
