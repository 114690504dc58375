// The values of the script language and how a transcript prints them.
#ifndef TARNSHEETS_APPS_SCRIPT_SCRIPT_VALUE_H_
#define TARNSHEETS_APPS_SCRIPT_SCRIPT_VALUE_H_

#include <string>

#include "tarnsheets/types.h"
#include "tarnsheets/variant.h"

namespace tarnsheets {

// A value as a script writes it or a transcript prints it: a Variant, an object reference
// (Nothing or an object), a colour, the record of a screen rectangle, or a font.
struct ScriptValue {
  enum class Kind { kVariant, kNothing, kObject, kColor, kRect, kFont };
  Kind kind = Kind::kVariant;
  Variant value;
  Color color = 0;
  SheetRect rect;
  Font font;

  static ScriptValue Of(Variant v);
  static ScriptValue Nothing();
  static ScriptValue Object();
  // An object reference: Object when `present`, else Nothing.
  static ScriptValue ObjectOrNothing(bool present);
  static ScriptValue OfColor(Color c);
  static ScriptValue OfRect(const SheetRect& r);
  static ScriptValue OfFont(const Font& f);
  // A 32-bit float printed by its shortest decimal form (8.25, 10), not by its double expansion.
  static ScriptValue OfFloat(float f);

  // True, False, -1234.5, "text" (with escapes), Empty, Null, Nothing, Object,
  // #2026-03-01 00:00:00#, a colour as a decimal integer, a rectangle as (Left,Top,Right,Bottom),
  // a font as Font("MS Sans Serif", 8.25, bold=False, ...).
  std::string ToString() const;

  // Conversions for arguments; each fails as the platform's conversion does (13 type mismatch,
  // 94 invalid use of Null, 6 overflow). An object or rectangle fails with 13.
  const Variant& AsVariant() const;
  bool ToBool() const;
  int32_t ToLong() const;
  double ToDouble() const;
  std::string ToText() const;
  // A number from -2^31 to 2^32 - 1: negative Longs are taken as their 32-bit pattern (the hex
  // literal &H80000005 and 2147483653 are the same system colour).
  Color ToColor() const;
};

// The text of a string literal with escapes: "a \"b\"".
std::string StringLiteral(const std::string& text);

}  // namespace tarnsheets

#endif  // TARNSHEETS_APPS_SCRIPT_SCRIPT_VALUE_H_
