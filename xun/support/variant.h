// A value of any kind, with the classic conversions to text, number and Boolean.
#pragma once

#include <compare>
#include <concepts>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

#include "xun/export.h"
#include "xun/support/bounded_array.h"
#include "xun/support/object.h"

namespace xun {

enum class VariantKind : int32_t {
  Empty,
  Null,
  Boolean,
  Byte,
  Integer,  // 16-bit
  Long,     // 32-bit
  Single,
  Double,
  Currency,
  Date,
  String,
  Decimal,
  Object,
  Error,
  Array,
};

// A fixed-point amount with four decimal places, stored as the value times 10,000.
struct Currency {
  int64_t scaled = 0;
  XUN_API static Currency FromDouble(double value);  // error 6 outside the range
  double ToDouble() const noexcept { return static_cast<double>(scaled) / 10000.0; }
  friend auto operator<=>(const Currency&, const Currency&) = default;
};

// A date and time as a day serial: whole days since 30 December 1899, the fraction is the time.
struct Date {
  double serial = 0;
  XUN_API static Date Now();  // local time
  friend auto operator<=>(const Date&, const Date&) = default;
};

// A 96-bit scaled decimal: magnitude (hi:lo) / 10^scale, with a sign.
struct Decimal {
  uint64_t lo = 0;
  uint32_t hi = 0;
  uint8_t scale = 0;  // 0..28
  bool negative = false;
  XUN_API double ToDouble() const noexcept;
  XUN_API std::string ToText() const;
  friend bool operator==(const Decimal&, const Decimal&) = default;
};

// An error value. The "missing" marker of an omitted optional argument is one of these.
struct ErrorValue {
  int32_t code = 0;
  static constexpr int32_t kMissing = static_cast<int32_t>(0x80020004);  // parameter not found
  friend bool operator==(const ErrorValue&, const ErrorValue&) = default;
};

struct NullValue {
  friend bool operator==(const NullValue&, const NullValue&) = default;
};

class Variant;
using VariantArray = BoundedArray<Variant>;

class XUN_API Variant {
 public:
  Variant() = default;  // Empty
  Variant(bool value) : value_(value) {}
  Variant(uint8_t value) : value_(value) {}
  Variant(int16_t value) : value_(value) {}
  Variant(int32_t value) : value_(value) {}
  Variant(float value) : value_(value) {}
  Variant(double value) : value_(value) {}
  Variant(Currency value) : value_(value) {}
  Variant(Date value) : value_(value) {}
  Variant(std::string value) : value_(std::move(value)) {}
  Variant(std::string_view value) : value_(std::string(value)) {}
  Variant(const char* value) : value_(std::string(value)) {}
  Variant(Decimal value) : value_(value) {}
  Variant(ErrorValue value) : value_(value) {}
  Variant(NullValue value) : value_(value) {}
  Variant(VariantArray value) : value_(std::make_shared<const VariantArray>(std::move(value))) {}
  template <class T>
  requires std::derived_from<T, Object> Variant(std::shared_ptr<T> object)
      : value_(ObjectPtr(std::move(object))) {}
  Variant(std::nullptr_t) : value_(ObjectPtr()) {}  // the "Nothing" object reference

  static Variant Null() { return Variant(NullValue{}); }
  static Variant Missing() { return Variant(ErrorValue{ErrorValue::kMissing}); }

  VariantKind Kind() const noexcept { return static_cast<VariantKind>(value_.index()); }
  bool IsEmpty() const noexcept { return Kind() == VariantKind::Empty; }
  bool IsNull() const noexcept { return Kind() == VariantKind::Null; }
  bool IsObject() const noexcept { return Kind() == VariantKind::Object; }
  bool IsError() const noexcept { return Kind() == VariantKind::Error; }
  bool IsMissing() const noexcept {
    return IsError() && std::get<ErrorValue>(value_).code == ErrorValue::kMissing;
  }
  // Numbers of every width, currency, date, decimal and Boolean.
  bool IsNumber() const noexcept;

  // The stored value of one kind, or nullptr when the variant holds another kind.
  template <class T>
  const T* Get() const noexcept {
    return std::get_if<T>(&value_);
  }
  // The object held, cast to T, or nullptr.
  template <class T>
  std::shared_ptr<T> GetObject() const noexcept {
    if (const auto* object = std::get_if<ObjectPtr>(&value_))
      return std::dynamic_pointer_cast<T>(*object);
    return nullptr;
  }
  const VariantArray* GetArray() const noexcept;

  // The classic conversions. Each raises the classic error for a value it cannot convert:
  // 13 (type mismatch) for objects, errors, arrays and non-numeric text; 94 for Null; 6 for a
  // number outside the target range.
  std::string ToText() const;  // CStr
  double ToDouble() const;     // CDbl
  int16_t ToInteger() const;   // CInt: rounds halves to even
  int32_t ToLong() const;      // CLng: rounds halves to even
  bool ToBoolean() const;      // CBool

  // Same kind and same value (objects: the same object).
  friend bool operator==(const Variant& a, const Variant& b) { return a.value_ == b.value_; }

 private:
  std::variant<std::monostate, NullValue, bool, uint8_t, int16_t, int32_t, float, double, Currency,
               Date, std::string, Decimal, ObjectPtr, ErrorValue,
               std::shared_ptr<const VariantArray>>
      value_;
};

// The classic "General Date" text of a date: "11/22/2026 10:49:21 AM"; the date alone when the
// time is midnight, the time alone when the date is the zero day.
XUN_API std::string FormatGeneralDate(Date date);

}  // namespace xun
