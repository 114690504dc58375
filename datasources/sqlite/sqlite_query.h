// Query by example over SQLite: the conditions of value_text.h as SQL of column names and bound
// parameters, so that a query runs in the database and matches exactly the records that the
// memory source matches.
//
// - text fields: "tarn_text_matches(column, ?)" with the condition as typed (a SQL function of
//   ours, sqlite_text_functions.h, that runs QueryCondition's own matching on the stored text);
// - yes/no fields: "1" and "0" as "column IS NOT NULL AND column <> 0" and its opposite;
// - number, money and date fields: "=a", "<a", "<=a", ">a", ">=a", "<>a", "a..b" or a bare "a"
//   as comparisons of bound values; a date without a time stands for its whole day, and a text
//   stored in a number column compares with no number.
#ifndef TARNSHEETS_DATASOURCES_SQLITE_SQLITE_QUERY_H_
#define TARNSHEETS_DATASOURCES_SQLITE_SQLITE_QUERY_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "datasources/sqlite/sqlite_util.h"

namespace tarnsheets {

// The SQL clause of one query condition `condition` (as typed, not empty after trimming) on the
// column named `column`, of type `data_type` and `number_kind`; `symbols` are the currency
// symbols a money amount may carry. Stores the clause in *clause_sql and appends its values to
// *params, in the order of its '?'. Returns false, leaving *clause_sql, when the condition does
// not read (values may then have been appended).
bool ConditionClause(std::string_view condition, const std::string& column, int32_t data_type,
                     int32_t number_kind, const std::vector<std::string>& symbols,
                     std::string* clause_sql, std::vector<SqlValue>* params);

}  // namespace tarnsheets

#endif  // TARNSHEETS_DATASOURCES_SQLITE_SQLITE_QUERY_H_
