// The property bag: where a container keeps a control's persisted properties, key by key.
//
// Every read and write names a default. A value equal to its default is not stored, and a key that
// is not stored reads as its default, so a bag holds only what differs from a new control.
#ifndef TARNSHEETS_PROPERTY_BAG_H_
#define TARNSHEETS_PROPERTY_BAG_H_

#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "tarnsheets/types.h"
#include "tarnsheets/variant.h"

namespace tarnsheets {

class PropertyBag {
 public:
  virtual ~PropertyBag() = default;

  // The stored value of `key` converted to the type of `default_value`, or `default_value` when
  // the key is not stored. An Empty default returns the stored value as it is. A numeric or
  // Boolean default converts a stored number, Boolean or numeric text; a text default takes the
  // text of any stored value. Fails with 13 ("Type mismatch: property "Key" ...") when the stored
  // value cannot be converted or the key holds a font; 6 when a number is out of range.
  virtual Variant ReadProperty(const std::string& key, const Variant& default_value) const = 0;
  // Stores `value` under `key`, or removes the key when `value` equals `default_value` (same type
  // and value, or both numbers of equal value).
  virtual void WriteProperty(const std::string& key, const Variant& value,
                             const Variant& default_value) = 0;

  // The same for font values. Reading a key that holds no font fails with 13.
  virtual Font ReadFontProperty(const std::string& key, const Font& default_value) const = 0;
  virtual void WriteFontProperty(const std::string& key, const Font& value,
                                 const Font& default_value) = 0;

  // Typed reads over ReadProperty, with its failures.
  int32_t ReadLong(const std::string& key, int32_t default_value) const {
    return ReadProperty(key, Variant(default_value)).ToLong();
  }
  int16_t ReadInteger(const std::string& key, int16_t default_value) const {
    return ReadProperty(key, Variant(default_value)).ToInteger();
  }
  bool ReadBool(const std::string& key, bool default_value) const {
    return ReadProperty(key, Variant(default_value)).ToBool();
  }
  std::string ReadString(const std::string& key, const std::string& default_value) const {
    return ReadProperty(key, Variant(default_value)).AsText();
  }
  double ReadDouble(const std::string& key, double default_value) const {
    return ReadProperty(key, Variant(default_value)).ToDouble();
  }
  // A colour is stored as a 32-bit value; system colours keep their top bit.
  Color ReadColor(const std::string& key, Color default_value) const {
    return static_cast<Color>(
        ReadProperty(key, Variant(static_cast<int32_t>(default_value))).ToLong());
  }
  void WriteColor(const std::string& key, Color value, Color default_value) {
    WriteProperty(key, Variant(static_cast<int32_t>(value)),
                  Variant(static_cast<int32_t>(default_value)));
  }
};

// A bag in memory that keeps its keys in the order of their first write.
class MemoryPropertyBag : public PropertyBag {
 public:
  using Value = std::variant<Variant, Font>;

  Variant ReadProperty(const std::string& key, const Variant& default_value) const override;
  void WriteProperty(const std::string& key, const Variant& value,
                     const Variant& default_value) override;
  Font ReadFontProperty(const std::string& key, const Font& default_value) const override;
  void WriteFontProperty(const std::string& key, const Font& value,
                         const Font& default_value) override;

  // Stores a value as it is, with no default: for tests and hosts that load a stored bag.
  void Set(const std::string& key, Value value);
  bool Contains(const std::string& key) const;
  void Clear() { entries_.clear(); }

  // The stored keys with their values, in the order of their first write. A key removed by a
  // write of its default and written again later goes to the end.
  const std::vector<std::pair<std::string, Value>>& Entries() const { return entries_; }
  // One line "KEY=VALUE" per stored key, in that order; values as Variant::Literal writes them,
  // fonts as Font("MS Sans Serif", 8.25, bold=False, italic=False, underline=False,
  // strikethrough=False, charset=0).
  std::vector<std::string> TranscriptLines() const;

 private:
  const Value* Find(const std::string& key) const;

  std::vector<std::pair<std::string, Value>> entries_;
};

// The literal of a font as the bag transcript writes it.
std::string FontLiteral(const Font& font);

}  // namespace tarnsheets

#endif  // TARNSHEETS_PROPERTY_BAG_H_
