// The argument that addresses an entry of a list: a 1-based position or a key.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace xun {

class Index {
 public:
  template <std::integral I>
  requires(!std::same_as<I, bool>) Index(I position) : position_(static_cast<int64_t>(position)) {}
  Index(std::string key) : is_key_(true), key_(std::move(key)) {}
  Index(std::string_view key) : is_key_(true), key_(key) {}
  Index(const char* key) : is_key_(true), key_(key) {}

  bool IsPosition() const noexcept { return !is_key_; }
  bool IsKey() const noexcept { return is_key_; }
  // Only meaningful for the matching kind: 0 for a key, "" for a position.
  int64_t Position() const noexcept { return position_; }
  const std::string& Key() const noexcept { return key_; }

  friend bool operator==(const Index&, const Index&) = default;

 private:
  bool is_key_ = false;
  int64_t position_ = 0;
  std::string key_;
};

}  // namespace xun
