#include "tarnsheets/variant.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

#include "tarnsheets/failure.h"

namespace tarnsheets {
namespace {

// Days since 1970-01-01 of a proleptic Gregorian date.
constexpr int64_t DaysFromCivil(int64_t y, unsigned m, unsigned d) {
  y -= m <= 2;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const unsigned yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<int64_t>(doe) - 719468;
}

void CivilFromDays(int64_t z, int* y, int* m, int* d) {
  z += 719468;
  const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const unsigned doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const int64_t yy = static_cast<int64_t>(yoe) + era * 400;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  *d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  *m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  *y = static_cast<int>(yy + (*m <= 2));
}

constexpr int64_t kSerialEpoch = DaysFromCivil(1899, 12, 30);

std::string TwoDigits(int v) {
  char buf[8];
  std::snprintf(buf, sizeof buf, "%02d", v);
  return buf;
}

double RoundHalfEven(double v) { return std::nearbyint(v); }

std::string_view Trim(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.remove_suffix(1);
  return s;
}

bool ParseUnsigned(std::string_view s, int* out) {
  if (s.empty()) return false;
  int v = 0;
  auto [p, ec] = std::from_chars(s.data(), s.data() + s.size(), v);
  if (ec != std::errc() || p != s.data() + s.size()) return false;
  *out = v;
  return true;
}

}  // namespace

Date Date::FromParts(int year, int month, int day, int hour, int minute, int second) {
  const int64_t days =
      DaysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day)) - kSerialEpoch;
  const double frac = (hour * 3600.0 + minute * 60.0 + second) / 86400.0;
  // Before the epoch the fraction counts away from zero, as the platform keeps it.
  return Date{days < 0 ? static_cast<double>(days) - frac : static_cast<double>(days) + frac};
}

Date::Parts Date::ToParts() const {
  double whole = std::trunc(serial);
  double frac = std::fabs(serial - whole);
  int64_t secs = std::llround(frac * 86400.0);
  if (secs >= 86400) {
    secs -= 86400;
    whole += serial < 0 ? -1 : 1;
  }
  Parts p{};
  CivilFromDays(static_cast<int64_t>(whole) + kSerialEpoch, &p.year, &p.month, &p.day);
  p.hour = static_cast<int>(secs / 3600);
  p.minute = static_cast<int>((secs / 60) % 60);
  p.second = static_cast<int>(secs % 60);
  return p;
}

std::string NumberText(double value) {
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value < 0 ? "-Infinity" : "Infinity";
  if (value == 0) return "0";
  char buf[400];
  const double mag = std::fabs(value);
  const auto fmt =
      (mag >= 1e-15 && mag < 1e21) ? std::chars_format::fixed : std::chars_format::scientific;
  auto [p, ec] = std::to_chars(buf, buf + sizeof buf, value, fmt);
  (void)ec;
  return std::string(buf, p);
}

std::string DateText(Date date) {
  const Date::Parts p = date.ToParts();
  const bool has_time = p.hour != 0 || p.minute != 0 || p.second != 0;
  const bool day_zero = std::trunc(date.serial) == 0 && std::fabs(date.serial) * 86400.0 >= 0.5;
  const std::string time =
      TwoDigits(p.hour) + ":" + TwoDigits(p.minute) + ":" + TwoDigits(p.second);
  if (day_zero) return time;
  char ymd[32];
  std::snprintf(ymd, sizeof ymd, "%04d-%02d-%02d", p.year, p.month, p.day);
  return has_time ? std::string(ymd) + " " + time : std::string(ymd);
}

bool ParseNumber(std::string_view text, double* out) {
  std::string_view s = Trim(text);
  if (s.empty()) return false;
  if (s.size() > 2 && s[0] == '&' && (s[1] == 'H' || s[1] == 'h')) {
    uint32_t v = 0;
    auto [p, ec] = std::from_chars(s.data() + 2, s.data() + s.size(), v, 16);
    if (ec != std::errc() || p != s.data() + s.size()) return false;
    // Hex literals up to 8 digits are signed 32-bit values, as the platform reads them.
    *out = s.size() - 2 > 4 ? static_cast<double>(static_cast<int32_t>(v))
                            : static_cast<double>(static_cast<int16_t>(v));
    return true;
  }
  bool negative = false;
  if (s.front() == '+' || s.front() == '-') {
    negative = s.front() == '-';
    s.remove_prefix(1);
  }
  if (s.empty() || !(std::isdigit(static_cast<unsigned char>(s.front())) || s.front() == '.')) {
    return false;
  }
  double v = 0;
  auto [p, ec] = std::from_chars(s.data(), s.data() + s.size(), v, std::chars_format::general);
  if (ec != std::errc() || p != s.data() + s.size()) return false;
  *out = negative ? -v : v;
  return true;
}

bool ParseIsoDate(std::string_view text, Date* out) {
  std::string_view s = Trim(text);
  std::string_view date_part, time_part;
  const size_t sep = s.find_first_of(" T");
  if (s.find('-', 1) != std::string_view::npos) {
    date_part = s.substr(0, sep);
    if (sep != std::string_view::npos) time_part = Trim(s.substr(sep + 1));
  } else {
    time_part = s;
  }
  int y = 1899, mo = 12, d = 30, h = 0, mi = 0, se = 0;
  if (!date_part.empty()) {
    const size_t a = date_part.find('-', 1), b = date_part.find('-', a + 1);
    if (a == std::string_view::npos || b == std::string_view::npos) return false;
    if (!ParseUnsigned(date_part.substr(0, a), &y) ||
        !ParseUnsigned(date_part.substr(a + 1, b - a - 1), &mo) ||
        !ParseUnsigned(date_part.substr(b + 1), &d)) {
      return false;
    }
    if (mo < 1 || mo > 12 || d < 1 || y < 100 || y > 9999) return false;
    static const int kDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
    if (d > kDays[mo - 1] || (mo == 2 && d == 29 && !leap)) return false;
  }
  if (!time_part.empty()) {
    const size_t a = time_part.find(':');
    if (a == std::string_view::npos) return false;
    const size_t b = time_part.find(':', a + 1);
    if (!ParseUnsigned(time_part.substr(0, a), &h)) return false;
    if (b == std::string_view::npos) {
      if (!ParseUnsigned(time_part.substr(a + 1), &mi)) return false;
    } else if (!ParseUnsigned(time_part.substr(a + 1, b - a - 1), &mi) ||
               !ParseUnsigned(time_part.substr(b + 1), &se)) {
      return false;
    }
    if (h > 23 || mi > 59 || se > 59) return false;
  } else if (date_part.empty()) {
    return false;
  }
  *out = Date::FromParts(y, mo, d, h, mi, se);
  return true;
}

bool Variant::IsNumber() const {
  const VariantType t = Type();
  return t == VariantType::kInteger || t == VariantType::kLong || t == VariantType::kDouble;
}

std::string Variant::AsText() const {
  switch (Type()) {
    case VariantType::kEmpty:
    case VariantType::kNull:
      return std::string();
    case VariantType::kInteger:
      return std::to_string(std::get<int16_t>(value_));
    case VariantType::kLong:
      return std::to_string(std::get<int32_t>(value_));
    case VariantType::kDouble:
      return NumberText(std::get<double>(value_));
    case VariantType::kBoolean:
      return BoolValue() ? "True" : "False";
    case VariantType::kDate:
      return DateText(DateValue());
    case VariantType::kString:
      return StringValue();
  }
  return std::string();
}

std::string Variant::ToText() const {
  if (IsNull()) throw PlatformFailure(kErrInvalidUseOfNull);
  return AsText();
}

double Variant::ToDouble() const {
  switch (Type()) {
    case VariantType::kEmpty:
      return 0;
    case VariantType::kNull:
      throw PlatformFailure(kErrInvalidUseOfNull);
    case VariantType::kInteger:
      return std::get<int16_t>(value_);
    case VariantType::kLong:
      return std::get<int32_t>(value_);
    case VariantType::kDouble:
      return std::get<double>(value_);
    case VariantType::kBoolean:
      return BoolValue() ? -1 : 0;
    case VariantType::kDate:
      return DateValue().serial;
    case VariantType::kString: {
      double v = 0;
      if (!ParseNumber(StringValue(), &v)) throw PlatformFailure(kErrTypeMismatch);
      return v;
    }
  }
  return 0;
}

int32_t Variant::ToLong() const {
  const double v = RoundHalfEven(ToDouble());
  if (!(v >= std::numeric_limits<int32_t>::min() && v <= std::numeric_limits<int32_t>::max())) {
    throw PlatformFailure(kErrOverflow);
  }
  return static_cast<int32_t>(v);
}

int16_t Variant::ToInteger() const {
  const double v = RoundHalfEven(ToDouble());
  if (!(v >= std::numeric_limits<int16_t>::min() && v <= std::numeric_limits<int16_t>::max())) {
    throw PlatformFailure(kErrOverflow);
  }
  return static_cast<int16_t>(v);
}

bool Variant::ToBool() const {
  if (IsString()) {
    const std::string_view s = Trim(StringValue());
    if (s == "True" || s == "true" || s == "TRUE") return true;
    if (s == "False" || s == "false" || s == "FALSE") return false;
  }
  return ToDouble() != 0;
}

Date Variant::ToDate() const {
  switch (Type()) {
    case VariantType::kDate:
      return DateValue();
    case VariantType::kNull:
      throw PlatformFailure(kErrInvalidUseOfNull);
    case VariantType::kString: {
      Date d;
      if (ParseIsoDate(StringValue(), &d)) return d;
      throw PlatformFailure(kErrTypeMismatch);
    }
    default:
      return Date{ToDouble()};
  }
}

bool Variant::EqualsZero() const {
  if (IsNull()) return false;
  return ToDouble() == 0;
}

std::string Variant::Literal() const {
  switch (Type()) {
    case VariantType::kEmpty:
      return "Empty";
    case VariantType::kNull:
      return "Null";
    case VariantType::kDate: {
      const Date::Parts p = DateValue().ToParts();
      char buf[48];
      std::snprintf(buf, sizeof buf, "#%04d-%02d-%02d %02d:%02d:%02d#", p.year, p.month, p.day,
                    p.hour, p.minute, p.second);
      return buf;
    }
    case VariantType::kString: {
      std::string out = "\"";
      for (char c : StringValue()) {
        switch (c) {
          case '"':
            out += "\\\"";
            break;
          case '\\':
            out += "\\\\";
            break;
          case '\n':
            out += "\\n";
            break;
          case '\r':
            out += "\\r";
            break;
          case '\t':
            out += "\\t";
            break;
          default:
            out += c;
        }
      }
      return out + "\"";
    }
    default:
      return AsText();
  }
}

}  // namespace tarnsheets
