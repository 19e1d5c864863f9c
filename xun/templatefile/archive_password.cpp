#include "xun/templatefile/archive_password.h"

namespace xun::basTemplate::detail {

std::string ArchivePassword() {
  // Stored shifted by one so that no run of these bytes spells the password.
  static constexpr unsigned char kShifted[] = {0x52, 0x38, 0x68, 0x7C, 0x24, 0x4E, 0x33, 0x77};
  std::string password;
  password.reserve(sizeof kShifted);
  for (const unsigned char code : kShifted)
    password.push_back(static_cast<char>(code - 1));
  return password;
}

}  // namespace xun::basTemplate::detail
