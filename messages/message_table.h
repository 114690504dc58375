// The message table: one constant table per language, numbers ascending.
#ifndef TARNSHEETS_MESSAGES_MESSAGE_TABLE_H_
#define TARNSHEETS_MESSAGES_MESSAGE_TABLE_H_

#include <cstdint>
#include <span>
#include <string_view>

namespace tarnsheets {

struct MessageEntry {
  int32_t number;
  std::string_view text;  // UTF-8
};

// The table of `language` (1033 or 2052); an empty span for any other language.
std::span<const MessageEntry> MessageTable(int32_t language);

}  // namespace tarnsheets

#endif  // TARNSHEETS_MESSAGES_MESSAGE_TABLE_H_
