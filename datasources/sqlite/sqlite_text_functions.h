// The SQL functions of ours that every connection of the SQLite source has: the text functions
// of query by example, by the same rules as the memory source (value_text.h, platform/utf8.h).
//
//   tarn_text_matches(x, condition)  1 when the text x matches the text condition as typed (a
//                                    prefix without regard to case, '*' and '?' wildcards), by
//                                    QueryCondition's own rules; 0 for NULL. The parsed condition
//                                    is kept by SQLite for the whole statement.
//   tarn_fold(x)                     x folded by utf8::Fold (for a host's own SQL); NULL stays
//                                    NULL, and ASCII text without capitals comes back as it is.
#ifndef TARNSHEETS_DATASOURCES_SQLITE_SQLITE_TEXT_FUNCTIONS_H_
#define TARNSHEETS_DATASOURCES_SQLITE_SQLITE_TEXT_FUNCTIONS_H_

#include <sqlite3.h>

namespace tarnsheets {

// Registers tarn_fold and tarn_text_matches on `db`. Fails with Failure(kErrDatabase).
void RegisterTextFunctions(sqlite3* db);

}  // namespace tarnsheets

#endif  // TARNSHEETS_DATASOURCES_SQLITE_SQLITE_TEXT_FUNCTIONS_H_
