// Any bytes behind a zip signature, so every input takes the reader's archive path.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "fuzz/fuzz_common.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const xun::fuzz::Scratch scratch;
  static constexpr uint8_t kZipLocalHeader[] = {'P', 'K', 3, 4};
  std::vector<uint8_t> bytes;
  if (size < sizeof kZipLocalHeader || std::memcmp(data, kZipLocalHeader, 4) != 0)
    bytes.assign(std::begin(kZipLocalHeader), std::end(kZipLocalHeader));
  bytes.insert(bytes.end(), data, data + size);
  const std::string input = scratch.Fresh("input.zip");
  xun::fuzz::WriteBytes(input, bytes.data(), bytes.size());
  xun::fuzz::CheckRoundTrip(scratch, input);
  return 0;
}
