#include "xun/support/object_key.h"

#include <openssl/rand.h>

#include <array>

#include "xun/support/runtime_error.h"

namespace xun {

std::string NewObjectKey() {
  std::array<unsigned char, 16> bytes{};
  if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) Raise(kErrInternal);
  bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0F) | 0x40);  // version 4
  bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3F) | 0x80);  // RFC 4122 variant
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string key;
  key.reserve(32);
  for (unsigned char b : bytes) {
    key.push_back(kHex[b >> 4]);
    key.push_back(kHex[b & 0x0F]);
  }
  return key;
}

}  // namespace xun
