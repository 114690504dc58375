#include "apps/script/script_value.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string>

#include "tarnsheets/failure.h"
#include "tarnsheets/property_bag.h"

namespace tarnsheets {

ScriptValue ScriptValue::Of(Variant v) {
  ScriptValue s;
  s.value = std::move(v);
  return s;
}

ScriptValue ScriptValue::Nothing() {
  ScriptValue s;
  s.kind = Kind::kNothing;
  return s;
}

ScriptValue ScriptValue::Object() {
  ScriptValue s;
  s.kind = Kind::kObject;
  return s;
}

ScriptValue ScriptValue::ObjectOrNothing(bool present) { return present ? Object() : Nothing(); }

ScriptValue ScriptValue::OfColor(Color c) {
  ScriptValue s;
  s.kind = Kind::kColor;
  s.color = c;
  return s;
}

ScriptValue ScriptValue::OfRect(const SheetRect& r) {
  ScriptValue s;
  s.kind = Kind::kRect;
  s.rect = r;
  return s;
}

ScriptValue ScriptValue::OfFont(const Font& f) {
  ScriptValue s;
  s.kind = Kind::kFont;
  s.font = f;
  return s;
}

ScriptValue ScriptValue::OfFloat(float f) {
  // The shortest text that reads back as the same float, then that text as a double.
  char buf[64];
  const auto result = std::to_chars(buf, buf + sizeof buf, f);
  *result.ptr = '\0';
  return Of(Variant(std::strtod(buf, nullptr)));
}

std::string ScriptValue::ToString() const {
  switch (kind) {
    case Kind::kVariant:
      return value.Literal();
    case Kind::kNothing:
      return "Nothing";
    case Kind::kObject:
      return "Object";
    case Kind::kColor:
      return std::to_string(color);
    case Kind::kRect:
      return "(" + std::to_string(rect.Left) + "," + std::to_string(rect.Top) + "," +
             std::to_string(rect.Right) + "," + std::to_string(rect.Bottom) + ")";
    case Kind::kFont:
      return FontLiteral(font);
  }
  return "";
}

const Variant& ScriptValue::AsVariant() const {
  if (kind == Kind::kVariant) return value;
  throw PlatformFailure(kErrTypeMismatch);
}

bool ScriptValue::ToBool() const { return AsVariant().ToBool(); }

int32_t ScriptValue::ToLong() const {
  if (kind == Kind::kColor) return static_cast<int32_t>(color);
  return AsVariant().ToLong();
}

double ScriptValue::ToDouble() const {
  if (kind == Kind::kColor) return color;
  return AsVariant().ToDouble();
}

std::string ScriptValue::ToText() const { return AsVariant().ToText(); }

Color ScriptValue::ToColor() const {
  if (kind == Kind::kColor) return color;
  const double d = std::nearbyint(AsVariant().ToDouble());
  if (d < -2147483648.0 || d > 4294967295.0) throw PlatformFailure(kErrOverflow);
  return static_cast<Color>(static_cast<int64_t>(d) & 0xFFFFFFFF);
}

std::string StringLiteral(const std::string& text) { return Variant(text).Literal(); }

}  // namespace tarnsheets
