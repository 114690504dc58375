// Property bags as JSON objects, for `create CLASS from FILE` and `save-properties FILE`.
//
// One JSON object, one member per stored key, in the bag's order. Values: true/false are
// Booleans, a whole number in the 32-bit range a Long, any other number a Double, a string a
// text, null is Null; {"date": "yyyy-mm-dd hh:nn:ss"} a date, {"empty": true} Empty, and
// {"font": {"name": "MS Sans Serif", "size": 8.25, "bold": false, "italic": false,
// "underline": false, "strikethrough": false, "charset": 0}} a font (members left out keep the
// values of a new font).
#ifndef TARNSHEETS_APPS_SCRIPT_JSON_BAG_H_
#define TARNSHEETS_APPS_SCRIPT_JSON_BAG_H_

#include <string>
#include <string_view>

#include "tarnsheets/property_bag.h"

namespace tarnsheets {

// Fills `bag` from the JSON text. Throws ScriptError naming `origin` and saying what is wrong
// (broken JSON with its byte offset, a member of an unknown form with its key); `bag` is then
// unchanged.
void BagFromJson(std::string_view json, const std::string& origin, MemoryPropertyBag* bag);

// The bag as a JSON object, indented by two blanks, with a final newline.
std::string BagToJson(const MemoryPropertyBag& bag);

}  // namespace tarnsheets

#endif  // TARNSHEETS_APPS_SCRIPT_JSON_BAG_H_
