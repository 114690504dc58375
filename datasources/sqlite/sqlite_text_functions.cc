#include "datasources/sqlite/sqlite_text_functions.h"

#include <memory>
#include <string>
#include <string_view>

#include "datasources/common/value_text.h"
#include "datasources/sqlite/sqlite_util.h"
#include "platform/utf8.h"
#include "tarnsheets/data_source.h"

namespace tarnsheets {
namespace {

void FoldFunction(sqlite3_context* context, int, sqlite3_value** argv) {
  if (sqlite3_value_type(argv[0]) == SQLITE_NULL) {
    sqlite3_result_null(context);
    return;
  }
  const unsigned char* text = sqlite3_value_text(argv[0]);
  const int size = sqlite3_value_bytes(argv[0]);
  int i = 0;
  bool capitals = false;
  for (; i < size && text[i] < 0x80; ++i) capitals = capitals || (text[i] >= 'A' && text[i] <= 'Z');
  if (i == size && !capitals) {
    sqlite3_result_value(context, argv[0]);
    return;
  }
  const std::string folded =
      utf8::Fold(std::string_view(reinterpret_cast<const char*>(text), static_cast<size_t>(size)));
  sqlite3_result_text(context, folded.data(), static_cast<int>(folded.size()), SQLITE_TRANSIENT);
}

void TextMatchesFunction(sqlite3_context* context, int, sqlite3_value** argv) {
  auto* condition = static_cast<QueryCondition*>(sqlite3_get_auxdata(context, 1));
  if (condition == nullptr) {
    const unsigned char* text = sqlite3_value_text(argv[1]);
    const int size = sqlite3_value_bytes(argv[1]);
    auto parsed = std::make_unique<QueryCondition>();
    std::string reason;
    if (text == nullptr ||
        !QueryCondition::Parse(
            std::string_view(reinterpret_cast<const char*>(text), static_cast<size_t>(size)),
            FieldShape{kDataTypeText, 0, 0}, {}, parsed.get(), &reason)) {
      sqlite3_result_int(context, 0);
      return;
    }
    condition = parsed.release();
    sqlite3_set_auxdata(context, 1, condition,
                        [](void* p) { delete static_cast<QueryCondition*>(p); });
    // SQLite may have dropped it at once: it is asked for again.
    condition = static_cast<QueryCondition*>(sqlite3_get_auxdata(context, 1));
    if (condition == nullptr) {
      sqlite3_result_error_nomem(context);
      return;
    }
  }
  if (sqlite3_value_type(argv[0]) == SQLITE_NULL) {
    sqlite3_result_int(context, 0);
    return;
  }
  const unsigned char* text = sqlite3_value_text(argv[0]);
  const int size = sqlite3_value_bytes(argv[0]);
  sqlite3_result_int(context, condition->MatchesText(std::string_view(
                                  reinterpret_cast<const char*>(text), static_cast<size_t>(size)))
                                  ? 1
                                  : 0);
}

}  // namespace

void RegisterTextFunctions(sqlite3* db) {
  if (sqlite3_create_function_v2(db, "tarn_fold", 1,
                                 SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS, nullptr,
                                 FoldFunction, nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw DatabaseFailure(db, "register tarn_fold");
  }
  if (sqlite3_create_function_v2(db, "tarn_text_matches", 2,
                                 SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS, nullptr,
                                 TextMatchesFunction, nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw DatabaseFailure(db, "register tarn_text_matches");
  }
}

}  // namespace tarnsheets
