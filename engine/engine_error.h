// A failure inside the engine, carrying the code the entry point answers.
#pragma once

#include <cstdint>

namespace xunrec {

class EngineError {
 public:
  explicit EngineError(int16_t code) : code_(code) {}
  int16_t Code() const { return code_; }

 private:
  int16_t code_;
};

}  // namespace xunrec
