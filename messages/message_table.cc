#include "messages/message_table.h"

#include <array>

#include "tarnsheets/messages.h"

namespace tarnsheets {
namespace {

// English (1033). 104 and 110 differ only by the access key; 501 is the name of a database
// column, misspelling included.
constexpr std::array<MessageEntry, 22> kMessages1033 = {{
    {1, "Error:"},
    {101, "&New Record"},
    {102, "&Delete Record"},
    {103, "&Copy Record"},
    {104, "C&ancel"},
    {107, "New"},
    {108, "Delete"},
    {109, "Copy"},
    {110, "Cancel"},
    {213, "Type Mismatch!"},
    {500, "EnglishDisplayColumnName"},
    {501, "EnglishDecription"},
    {502, "EnglishDisplayName"},
    {600, "OK"},
    {601, "Error"},
    {602, "It doesn't find '"},
    {603, "' recordset is null."},
    {604, "You have not specified the field."},
    {605, "You have not specified the field for display."},
    {700, "What"},
    {701, "When"},
    {702, "Who"},
}};

// Simplified Chinese (2052). The punctuation is full-width where the texts have it (1, 213, 603)
// and ASCII elsewhere (the access keys, the quotes, the "!" of 604 and 605); 104 has no access
// key.
constexpr std::array<MessageEntry, 22> kMessages2052 = {{
    {1, "错误："},
    {101, "新建记录(&N)"},
    {102, "删除记录(&D)"},
    {103, "复制记录(&C)"},
    {104, "取消"},
    {107, "新建"},
    {108, "删除"},
    {109, "复制"},
    {110, "取消"},
    {213, "数据类型不匹配！"},
    {500, "ChineseDisplayColumnName"},
    {501, "ChineseDecription"},
    {502, "ChineseDisplayName"},
    {600, "确定"},
    {601, "错误"},
    {602, "没有找到'"},
    {603, "'的记录集为空！"},
    {604, "没有设置字段!"},
    {605, "没有设置可显示的字段!"},
    {700, "何事"},
    {701, "何时"},
    {702, "何人"},
}};

}  // namespace

std::span<const MessageEntry> MessageTable(int32_t language) {
  switch (language) {
    case kLanguageEnglish:
      return kMessages1033;
    case kLanguageChinese:
      return kMessages2052;
    default:
      return {};
  }
}

}  // namespace tarnsheets
