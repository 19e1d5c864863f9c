// The argument that addresses an entry of a list: a 1-based position or a key.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace xun {

class Index {
 public:
  template <std::integral I>
    requires(!std::same_as<I, bool>)
  Index(I position) : value_(static_cast<int64_t>(position)) {}
  Index(std::string key) : value_(std::move(key)) {}
  Index(std::string_view key) : value_(std::string(key)) {}
  Index(const char* key) : value_(std::string(key)) {}

  bool IsPosition() const noexcept { return std::holds_alternative<int64_t>(value_); }
  bool IsKey() const noexcept { return !IsPosition(); }
  // Only meaningful for the matching kind.
  int64_t Position() const noexcept { return IsPosition() ? std::get<int64_t>(value_) : 0; }
  const std::string& Key() const noexcept {
    static const std::string kNone;
    return IsKey() ? std::get<std::string>(value_) : kNone;
  }

  friend bool operator==(const Index&, const Index&) = default;

 private:
  std::variant<int64_t, std::string> value_;
};

}  // namespace xun
