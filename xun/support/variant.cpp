#include "xun/support/variant.h"

#include <chrono>
#include <cmath>
#include <ctime>
#include <limits>

#include "xun/support/numeric.h"
#include "xun/support/runtime_error.h"
#include "xun/support/text.h"

namespace xun {
namespace {

// Days from 1970-01-01 to the civil date (proleptic Gregorian), and back.
int64_t DaysFromCivil(int64_t y, unsigned m, unsigned d) {
  y -= m <= 2;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const auto yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<int64_t>(doe) - 719468;
}

void CivilFromDays(int64_t z, int64_t& y, unsigned& m, unsigned& d) {
  z += 719468;
  const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const auto doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  y = static_cast<int64_t>(yoe) + era * 400;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  d = doy - (153 * mp + 2) / 5 + 1;
  m = mp + (mp < 10 ? 3 : -9);
  y += m <= 2;
}

// 1899-12-30, day 0 of the serial, counted from 1970-01-01.
constexpr int64_t kSerialEpoch = -25569;

std::string TwoDigits(unsigned value) {
  std::string s = std::to_string(value);
  return value < 10 ? "0" + s : s;
}

}  // namespace

Currency Currency::FromDouble(double value) {
  const double scaled = RoundHalfEven(value * 10000.0);
  if (std::isnan(scaled) || scaled < -9.2233720368547758e18 || scaled >= 9.2233720368547758e18)
    Raise(kErrOverflow);
  return Currency{static_cast<int64_t>(scaled)};
}

Date Date::Now() {
  const auto now = std::chrono::system_clock::now();
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  std::tm local{};
  localtime_r(&seconds, &local);
  const int64_t days = DaysFromCivil(local.tm_year + 1900, static_cast<unsigned>(local.tm_mon + 1),
                                     static_cast<unsigned>(local.tm_mday));
  const double time = (local.tm_hour * 3600.0 + local.tm_min * 60.0 + local.tm_sec) / 86400.0;
  return Date{static_cast<double>(days - kSerialEpoch) + time};
}

double Decimal::ToDouble() const noexcept {
  double magnitude = static_cast<double>(hi) * 18446744073709551616.0 + static_cast<double>(lo);
  magnitude /= std::pow(10.0, scale);
  return negative ? -magnitude : magnitude;
}

std::string Decimal::ToText() const {
  __extension__ using u128 = unsigned __int128;
  u128 magnitude = (static_cast<u128>(hi) << 64) | lo;
  std::string digits;
  do {
    digits.insert(digits.begin(), static_cast<char>('0' + static_cast<int>(magnitude % 10)));
    magnitude /= 10;
  } while (magnitude != 0);
  if (scale > 0) {
    if (digits.size() <= scale) digits.insert(0, scale - digits.size() + 1, '0');
    digits.insert(digits.size() - scale, ".");
    while (digits.back() == '0')
      digits.pop_back();
    if (digits.back() == '.') digits.pop_back();
  }
  const bool zero = digits == "0";
  return (negative && !zero) ? "-" + digits : digits;
}

bool Variant::IsNumber() const noexcept {
  switch (Kind()) {
    case VariantKind::Boolean:
    case VariantKind::Byte:
    case VariantKind::Integer:
    case VariantKind::Long:
    case VariantKind::Single:
    case VariantKind::Double:
    case VariantKind::Currency:
    case VariantKind::Date:
    case VariantKind::Decimal:
      return true;
    default:
      return false;
  }
}

const VariantArray* Variant::GetArray() const noexcept {
  if (const auto* array = std::get_if<std::shared_ptr<const VariantArray>>(&value_))
    return array->get();
  return nullptr;
}

std::string Variant::ToText() const {
  switch (Kind()) {
    case VariantKind::Empty:
      return {};
    case VariantKind::Null:
      Raise(kErrInvalidUseOfNull);
    case VariantKind::Boolean:
      return std::get<bool>(value_) ? "True" : "False";
    case VariantKind::Byte:
      return std::to_string(std::get<uint8_t>(value_));
    case VariantKind::Integer:
      return std::to_string(std::get<int16_t>(value_));
    case VariantKind::Long:
      return std::to_string(std::get<int32_t>(value_));
    case VariantKind::Single:
      return FormatNumber(std::get<float>(value_), 7);
    case VariantKind::Double:
      return FormatNumber(std::get<double>(value_), 15);
    case VariantKind::Currency: {
      const int64_t scaled = std::get<Currency>(value_).scaled;
      const bool negative = scaled < 0;
      const uint64_t magnitude =
          negative ? static_cast<uint64_t>(-(scaled + 1)) + 1 : static_cast<uint64_t>(scaled);
      std::string text = std::to_string(magnitude / 10000);
      std::string fraction = std::to_string(magnitude % 10000);
      fraction.insert(0, 4 - fraction.size(), '0');
      while (!fraction.empty() && fraction.back() == '0')
        fraction.pop_back();
      if (!fraction.empty()) text += "." + fraction;
      return negative ? "-" + text : text;
    }
    case VariantKind::Date:
      return FormatGeneralDate(std::get<Date>(value_));
    case VariantKind::String:
      return std::get<std::string>(value_);
    case VariantKind::Decimal:
      return std::get<Decimal>(value_).ToText();
    case VariantKind::Object:
    case VariantKind::Error:
    case VariantKind::Array:
      break;
  }
  Raise(kErrTypeMismatch);
}

double Variant::ToDouble() const {
  switch (Kind()) {
    case VariantKind::Empty:
      return 0.0;
    case VariantKind::Null:
      Raise(kErrInvalidUseOfNull);
    case VariantKind::Boolean:
      return std::get<bool>(value_) ? -1.0 : 0.0;
    case VariantKind::Byte:
      return std::get<uint8_t>(value_);
    case VariantKind::Integer:
      return std::get<int16_t>(value_);
    case VariantKind::Long:
      return std::get<int32_t>(value_);
    case VariantKind::Single:
      return std::get<float>(value_);
    case VariantKind::Double:
      return std::get<double>(value_);
    case VariantKind::Currency:
      return std::get<Currency>(value_).ToDouble();
    case VariantKind::Date:
      return std::get<Date>(value_).serial;
    case VariantKind::Decimal:
      return std::get<Decimal>(value_).ToDouble();
    case VariantKind::String: {
      const std::string& s = std::get<std::string>(value_);
      if (IsNumericText(s)) return Val(s);
      const std::string_view trimmed = text::Trim(s);
      if (text::EqualsText(trimmed, "True")) return -1.0;
      if (text::EqualsText(trimmed, "False")) return 0.0;
      Raise(kErrTypeMismatch);
    }
    case VariantKind::Object:
    case VariantKind::Error:
    case VariantKind::Array:
      break;
  }
  Raise(kErrTypeMismatch);
}

int16_t Variant::ToInteger() const {
  return CInt(ToDouble());
}

int32_t Variant::ToLong() const {
  return CLng(ToDouble());
}

bool Variant::ToBoolean() const {
  if (const auto* b = std::get_if<bool>(&value_)) return *b;
  return ToDouble() != 0.0;
}

std::string FormatGeneralDate(Date date) {
  const double serial = date.serial;
  const double whole = std::floor(serial);
  int64_t seconds = std::llround((serial - whole) * 86400.0);
  int64_t day = static_cast<int64_t>(whole);
  if (seconds >= 86400) {
    seconds -= 86400;
    ++day;
  }
  std::string out;
  if (day != 0) {
    int64_t y;
    unsigned m, d;
    CivilFromDays(day + kSerialEpoch, y, m, d);
    out = std::to_string(m) + "/" + std::to_string(d) + "/" + std::to_string(y);
  }
  if (seconds != 0 || day == 0) {
    const auto hours = static_cast<unsigned>(seconds / 3600);
    const auto minutes = static_cast<unsigned>((seconds / 60) % 60);
    const auto secs = static_cast<unsigned>(seconds % 60);
    const unsigned hour12 = hours % 12 == 0 ? 12 : hours % 12;
    if (!out.empty()) out += " ";
    out += std::to_string(hour12) + ":" + TwoDigits(minutes) + ":" + TwoDigits(secs) +
           (hours < 12 ? " AM" : " PM");
  }
  return out;
}

}  // namespace xun
