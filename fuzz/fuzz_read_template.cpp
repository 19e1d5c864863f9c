// Any bytes as a template file: reading never crashes, and what reads saves stably.
#include <cstddef>
#include <cstdint>

#include "fuzz/fuzz_common.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const xun::fuzz::Scratch scratch;
  const std::string input = scratch.Fresh("input.omr");
  xun::fuzz::WriteBytes(input, data, size);
  xun::fuzz::CheckRoundTrip(scratch, input);
  return 0;
}
