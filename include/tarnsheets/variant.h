// Variant: the dynamically typed value that crosses every interface of the library.
//
// It holds Empty, Null, a 16-bit integer, a 32-bit integer, a double, a Boolean, a date or a
// text (UTF-8). Conversions follow the platform's rules: converting Null to anything but text
// concatenation fails with 94, a text that is not a number fails with 13, an integer out of range
// fails with 6.
#ifndef TARNSHEETS_VARIANT_H_
#define TARNSHEETS_VARIANT_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace tarnsheets {

// A point in time as the platform keeps it: days since 1899-12-30, the fraction being the time
// of day. Day 0 with a fraction is a time alone; a whole number is a date at midnight.
struct Date {
  double serial = 0;

  // REQUIRES: month 1..12, day 1..31, hour 0..23, minute and second 0..59.
  static Date FromParts(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);

  struct Parts {
    int year, month, day, hour, minute, second;
  };
  // Broken down, to the nearest second.
  Parts ToParts() const;

  friend bool operator==(const Date&, const Date&) = default;
};

enum class VariantType { kEmpty, kNull, kInteger, kLong, kDouble, kBoolean, kDate, kString };

class Variant {
 public:
  Variant() = default;  // Empty
  Variant(int16_t v) : value_(v) {}
  Variant(int32_t v) : value_(v) {}
  Variant(double v) : value_(v) {}
  Variant(bool v) : value_(BoolBox{v}) {}
  Variant(Date v) : value_(v) {}
  Variant(std::string v) : value_(std::move(v)) {}
  Variant(std::string_view v) : value_(std::string(v)) {}
  Variant(const char* v) : value_(std::string(v)) {}

  static Variant Empty() { return Variant(); }
  static Variant Null() {
    Variant v;
    v.value_ = NullBox{};
    return v;
  }

  VariantType Type() const { return static_cast<VariantType>(value_.index()); }
  bool IsEmpty() const { return Type() == VariantType::kEmpty; }
  bool IsNull() const { return Type() == VariantType::kNull; }
  bool IsString() const { return Type() == VariantType::kString; }
  bool IsDate() const { return Type() == VariantType::kDate; }
  bool IsBoolean() const { return Type() == VariantType::kBoolean; }
  // Integer, Long or Double.
  bool IsNumber() const;

  // The text as string concatenation gives it: Null and Empty give "", Booleans "True"/"False",
  // dates "yyyy-mm-dd hh:nn:ss" (the date alone at midnight, the time alone on day zero),
  // numbers their shortest round-trip form without exponent for ordinary magnitudes.
  std::string AsText() const;
  // As AsText, but Null fails with 94, as an explicit conversion to text does.
  std::string ToText() const;

  // Numeric conversions. Empty is 0, a Boolean -1 or 0, a date its serial, a text is parsed
  // (failing with 13 when it is no number); Null fails with 94.
  double ToDouble() const;
  // Rounded half to even, as the platform rounds; out of range fails with 6.
  int32_t ToLong() const;
  int16_t ToInteger() const;
  // A number is True when it is not 0; a text must be "True", "False" or a number.
  bool ToBool() const;
  // As a date: a date as is, a number as a serial, a text in ISO form; otherwise 13.
  Date ToDate() const;

  // The test `value = 0`: True for Empty and for any value that equals zero; False for Null
  // (a comparison with Null is never True). A text that is no number fails with 13.
  bool EqualsZero() const;

  // Direct access. REQUIRES: the matching type.
  const std::string& StringValue() const { return std::get<std::string>(value_); }
  int32_t LongValue() const { return std::get<int32_t>(value_); }
  Date DateValue() const { return std::get<Date>(value_); }
  bool BoolValue() const { return std::get<BoolBox>(value_).value; }

  // The value as a script or a transcript writes it: True, False, -1234.5, "text" (with the
  // escapes \" \\ \n \r \t), Empty, Null, #2026-03-01 00:00:00#.
  std::string Literal() const;

  // Same type and same value.
  friend bool operator==(const Variant& a, const Variant& b) { return a.value_ == b.value_; }

 private:
  struct NullBox {
    friend bool operator==(NullBox, NullBox) { return true; }
  };
  struct BoolBox {
    bool value;
    friend bool operator==(BoolBox, BoolBox) = default;
  };
  // The index order matches VariantType.
  std::variant<std::monostate, NullBox, int16_t, int32_t, double, BoolBox, Date, std::string>
      value_;
};

// The text form of a number: shortest round-trip, fixed notation for magnitudes from 1e-15 up to
// 1e21, scientific beyond.
std::string NumberText(double value);

// The text form of a date as Variant::AsText gives it.
std::string DateText(Date date);

// Parses a number as an explicit conversion does: blanks around it, an optional sign, digits with
// an optional fraction and exponent, or &H hex. Returns false when the text is no number.
bool ParseNumber(std::string_view text, double* out);

// Parses "yyyy-mm-dd hh:nn:ss", "yyyy-mm-dd hh:nn", "yyyy-mm-dd", "hh:nn:ss" or "hh:nn" (a 'T'
// may stand for the blank). Returns false when the text is none of these or no valid date.
bool ParseIsoDate(std::string_view text, Date* out);

}  // namespace tarnsheets

#endif  // TARNSHEETS_VARIANT_H_
