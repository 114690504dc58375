#include "apps/script/json_bag.h"

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "apps/script/script_lexer.h"

namespace tarnsheets {
namespace {

using Json = nlohmann::ordered_json;

[[noreturn]] void Fail(const std::string& origin, const std::string& key, const std::string& what) {
  throw ScriptError(origin + ": property \"" + key + "\": " + what);
}

Font FontFromJson(const Json& j, const std::string& origin, const std::string& key) {
  if (!j.is_object()) Fail(origin, key, "\"font\" must be an object");
  Font font;
  for (const auto& [member, value] : j.items()) {
    if (member == "name" && value.is_string()) {
      font.name = value.get<std::string>();
    } else if (member == "size" && value.is_number()) {
      font.size = value.get<double>();
    } else if (member == "bold" && value.is_boolean()) {
      font.bold = value.get<bool>();
    } else if (member == "italic" && value.is_boolean()) {
      font.italic = value.get<bool>();
    } else if (member == "underline" && value.is_boolean()) {
      font.underline = value.get<bool>();
    } else if (member == "strikethrough" && value.is_boolean()) {
      font.strikethrough = value.get<bool>();
    } else if (member == "charset" && value.is_number_integer()) {
      font.charset = static_cast<int16_t>(value.get<int>());
    } else {
      Fail(origin, key, "font member \"" + member + "\" is unknown or of the wrong type");
    }
  }
  return font;
}

MemoryPropertyBag::Value ValueFromJson(const Json& j, const std::string& origin,
                                       const std::string& key) {
  switch (j.type()) {
    case Json::value_t::null:
      return Variant::Null();
    case Json::value_t::boolean:
      return Variant(j.get<bool>());
    case Json::value_t::number_integer:
    case Json::value_t::number_unsigned: {
      const double d = j.get<double>();
      if (d >= std::numeric_limits<int32_t>::min() && d <= std::numeric_limits<int32_t>::max()) {
        return Variant(static_cast<int32_t>(j.get<int64_t>()));
      }
      return Variant(d);
    }
    case Json::value_t::number_float:
      return Variant(j.get<double>());
    case Json::value_t::string:
      return Variant(j.get<std::string>());
    case Json::value_t::object:
      if (j.size() == 1 && j.contains("font")) return FontFromJson(j["font"], origin, key);
      if (j.size() == 1 && j.contains("empty") && j["empty"] == true) return Variant();
      if (j.size() == 1 && j.contains("date") && j["date"].is_string()) {
        Date date;
        if (!ParseIsoDate(j["date"].get<std::string>(), &date)) {
          Fail(origin, key, "\"date\" is no date of the form yyyy-mm-dd hh:nn:ss");
        }
        return Variant(date);
      }
      Fail(origin, key,
           "an object must be {\"font\": {...}}, {\"date\": \"...\"} or "
           "{\"empty\": true}");
    default:
      Fail(origin, key, "arrays are not property values");
  }
}

Json ValueToJson(const MemoryPropertyBag::Value& value) {
  if (const Font* font = std::get_if<Font>(&value)) {
    Json f = Json::object();
    f["name"] = font->name;
    f["size"] = font->size;
    f["bold"] = font->bold;
    f["italic"] = font->italic;
    f["underline"] = font->underline;
    f["strikethrough"] = font->strikethrough;
    f["charset"] = font->charset;
    return Json{{"font", f}};
  }
  const Variant& v = std::get<Variant>(value);
  switch (v.Type()) {
    case VariantType::kEmpty:
      return Json{{"empty", true}};
    case VariantType::kNull:
      return nullptr;
    case VariantType::kInteger:
    case VariantType::kLong:
      return v.ToLong();
    case VariantType::kDouble:
      return v.ToDouble();
    case VariantType::kBoolean:
      return v.BoolValue();
    case VariantType::kDate:
      return Json{{"date", DateText(v.DateValue())}};
    case VariantType::kString:
      return v.StringValue();
  }
  return nullptr;
}

}  // namespace

void BagFromJson(std::string_view json, const std::string& origin, MemoryPropertyBag* bag) {
  Json j;
  try {
    j = Json::parse(json);
  } catch (const Json::parse_error& e) {
    throw ScriptError(origin + ": broken JSON at byte " + std::to_string(e.byte));
  }
  if (!j.is_object()) throw ScriptError(origin + ": a property bag must be a JSON object");
  std::vector<std::pair<std::string, MemoryPropertyBag::Value>> values;
  for (const auto& [key, value] : j.items()) {
    values.emplace_back(key, ValueFromJson(value, origin, key));
  }
  for (auto& [key, value] : values) bag->Set(key, std::move(value));
}

std::string BagToJson(const MemoryPropertyBag& bag) {
  Json j = Json::object();
  for (const auto& [key, value] : bag.Entries()) j[key] = ValueToJson(value);
  return j.dump(2) + "\n";
}

}  // namespace tarnsheets
