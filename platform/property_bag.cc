#include "tarnsheets/property_bag.h"

#include <algorithm>

#include "tarnsheets/failure.h"

namespace tarnsheets {
namespace {

const char* Expected(VariantType type) {
  switch (type) {
    case VariantType::kInteger:
    case VariantType::kLong:
    case VariantType::kDouble:
      return "a number";
    case VariantType::kBoolean:
      return "a Boolean";
    case VariantType::kDate:
      return "a date";
    case VariantType::kString:
      return "a text";
    default:
      return "a value";
  }
}

Failure Mismatch(const std::string& key, const std::string& held, const std::string& expected) {
  return Failure(kErrTypeMismatch, PlatformErrorDescription(kErrTypeMismatch) + ": property \"" +
                                       key + "\" holds " + held + " where " + expected +
                                       " is expected");
}

bool SameValue(const Variant& a, const Variant& b) {
  if (a == b) return true;
  if (a.IsNumber() && b.IsNumber()) return a.ToDouble() == b.ToDouble();
  return false;
}

}  // namespace

std::string FontLiteral(const Font& font) {
  auto flag = [](bool v) { return v ? "True" : "False"; };
  return "Font(" + Variant(font.name).Literal() + ", " + NumberText(font.size) +
         ", bold=" + flag(font.bold) + ", italic=" + flag(font.italic) +
         ", underline=" + flag(font.underline) + ", strikethrough=" + flag(font.strikethrough) +
         ", charset=" + std::to_string(font.charset) + ")";
}

const MemoryPropertyBag::Value* MemoryPropertyBag::Find(const std::string& key) const {
  for (const auto& entry : entries_) {
    if (entry.first == key) return &entry.second;
  }
  return nullptr;
}

bool MemoryPropertyBag::Contains(const std::string& key) const { return Find(key) != nullptr; }

void MemoryPropertyBag::Set(const std::string& key, Value value) {
  for (auto& entry : entries_) {
    if (entry.first == key) {
      entry.second = std::move(value);
      return;
    }
  }
  entries_.emplace_back(key, std::move(value));
}

Variant MemoryPropertyBag::ReadProperty(const std::string& key,
                                        const Variant& default_value) const {
  const Value* stored = Find(key);
  if (stored == nullptr) return default_value;
  if (std::holds_alternative<Font>(*stored)) {
    throw Mismatch(key, "a font", Expected(default_value.Type()));
  }
  const Variant& v = std::get<Variant>(*stored);
  const VariantType want = default_value.Type();
  if (want == VariantType::kEmpty || want == VariantType::kNull || v.Type() == want) return v;
  try {
    switch (want) {
      case VariantType::kString:
        return Variant(v.ToText());
      case VariantType::kInteger:
        return Variant(v.ToInteger());
      case VariantType::kLong:
        return Variant(v.ToLong());
      case VariantType::kDouble:
        return Variant(v.ToDouble());
      case VariantType::kBoolean:
        return Variant(v.ToBool());
      case VariantType::kDate:
        return Variant(v.ToDate());
      default:
        return v;
    }
  } catch (const Failure& f) {
    if (f.Number() == kErrOverflow) {
      throw Failure(kErrOverflow, PlatformErrorDescription(kErrOverflow) + ": property \"" + key +
                                      "\" holds " + v.Literal() + ", out of range for " +
                                      Expected(want));
    }
    throw Mismatch(key, v.Literal(), Expected(want));
  }
}

void MemoryPropertyBag::WriteProperty(const std::string& key, const Variant& value,
                                      const Variant& default_value) {
  if (SameValue(value, default_value)) {
    std::erase_if(entries_, [&](const auto& entry) { return entry.first == key; });
    return;
  }
  Set(key, value);
}

Font MemoryPropertyBag::ReadFontProperty(const std::string& key, const Font& default_value) const {
  const Value* stored = Find(key);
  if (stored == nullptr) return default_value;
  if (const Font* font = std::get_if<Font>(stored)) return *font;
  throw Mismatch(key, std::get<Variant>(*stored).Literal(), "a font");
}

void MemoryPropertyBag::WriteFontProperty(const std::string& key, const Font& value,
                                          const Font& default_value) {
  if (value == default_value) {
    std::erase_if(entries_, [&](const auto& entry) { return entry.first == key; });
    return;
  }
  Set(key, value);
}

std::vector<std::string> MemoryPropertyBag::TranscriptLines() const {
  std::vector<std::string> lines;
  for (const auto& [key, value] : entries_) {
    if (const Font* font = std::get_if<Font>(&value)) {
      lines.push_back(key + "=" + FontLiteral(*font));
    } else {
      lines.push_back(key + "=" + std::get<Variant>(value).Literal());
    }
  }
  return lines;
}

}  // namespace tarnsheets
