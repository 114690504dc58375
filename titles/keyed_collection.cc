#include "tarnsheets/keyed_collection.h"

#include "platform/utf8.h"

namespace tarnsheets {

std::string FoldKeyCase(std::string_view text) { return utf8::Fold(text); }

bool KeysEqual(std::string_view a, std::string_view b) { return utf8::EqualsFolded(a, b); }

}  // namespace tarnsheets
