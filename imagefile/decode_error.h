// Why a page image could not be decoded. Each caller turns the failure into its own code.
#pragma once

#include <stdexcept>
#include <string>

namespace xun::imagefile {

enum class DecodeFailure {
  kNotFound,     // no such file, or not a regular file (a folder)
  kReadFailed,   // the file exists but reading it failed
  kNotAnImage,   // not one of the page image formats, empty, truncated, damaged, lying header
  kTooLarge,     // over the file size, side or pixel limit (limits.h)
  kNoSuchPage,   // the file has fewer pages than asked for
  kOutOfMemory,  // the image library could not allocate
};

// what() is a short explanation fit to follow "Invalid picture: " and the like: the image
// library's own reason where it gave one.
class DecodeError : public std::runtime_error {
 public:
  DecodeError(DecodeFailure failure, const std::string& what)
      : std::runtime_error(what), failure_(failure) {}
  DecodeFailure Failure() const noexcept { return failure_; }

 private:
  DecodeFailure failure_;
};

}  // namespace xun::imagefile
