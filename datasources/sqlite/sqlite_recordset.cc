#include "datasources/sqlite/sqlite_recordset.h"

#include <sqlite3.h>

#include <algorithm>

#include "datasources/recordset/recordset_arguments.h"
#include "datasources/sqlite/sqlite_util.h"

namespace tarnsheets {

std::unique_ptr<SqliteRecordset> SqliteRecordset::Open(const std::string& path,
                                                       const std::string& query) {
  sqlite3* db = nullptr;
  if (sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, nullptr) !=
      SQLITE_OK) {
    Failure f = DatabaseFailure(db, "open \"" + path + "\"");
    sqlite3_close(db);
    throw f;
  }
  std::unique_ptr<SqliteRecordset> rs(new SqliteRecordset(db, query));
  sqlite3_busy_timeout(db, 2000);
  sqlite3_stmt* statement = nullptr;
  const char* tail = nullptr;
  if (sqlite3_prepare_v2(db, query.c_str(), static_cast<int>(query.size()), &statement, &tail) !=
      SQLITE_OK) {
    sqlite3_finalize(statement);
    throw DatabaseFailure(db, "prepare the query \"" + query + "\" on \"" + path + "\"");
  }
  Statement owned;
  const std::string rest = tail != nullptr ? std::string(tail) : std::string();
  const int columns = statement != nullptr ? sqlite3_column_count(statement) : 0;
  for (int i = 0; i < columns; ++i) rs->columns_.push_back(sqlite3_column_name(statement, i));
  const bool read_only = statement != nullptr && sqlite3_stmt_readonly(statement) != 0;
  sqlite3_finalize(statement);
  if (rest.find_first_not_of(" \t\r\n;") != std::string::npos) {
    FailRecordsetArguments("The query \"" + query + "\" holds more than one statement.");
  }
  if (columns == 0 || !read_only) {
    FailRecordsetArguments("The query \"" + query + "\" is no SELECT: it returns no rows.");
  }
  rs->SetFilter(Variant(int32_t{0}));
  return rs;
}

SqliteRecordset::SqliteRecordset(sqlite3* db, std::string query)
    : db_(db), query_(std::move(query)) {}

SqliteRecordset::~SqliteRecordset() { sqlite3_close(db_); }

template <typename Fn>
int32_t SqliteRecordset::Scan(const RecordsetFilter& filter,
                              const std::vector<size_t>& filter_columns, Fn&& row) {
  Statement statement(db_, query_, "run the query \"" + query_ + "\"");
  int32_t passed = 0;
  int rc;
  while ((rc = sqlite3_step(statement.get())) == SQLITE_ROW) {
    sqlite3_stmt* s = statement.get();
    if (!filter.PassesAll() && !filter.Matches([&](size_t i) {
          return CellVariant(s, static_cast<int>(filter_columns[i]));
        })) {
      continue;
    }
    if (!row(passed++, s)) return passed;
  }
  if (rc != SQLITE_DONE) throw DatabaseFailure(db_, "run the query \"" + query_ + "\"");
  return passed;
}

void SqliteRecordset::SetFilter(const Variant& filter) {
  const std::string text = FilterTextOf(filter);
  // Parse and check the columns before anything changes.
  std::vector<size_t> filter_columns;
  RecordsetFilter parsed = ParseFilterOver(text, columns_, &filter_columns);
  const int32_t count = Scan(parsed, filter_columns, [](int32_t, sqlite3_stmt*) { return true; });
  filter_text_ = parsed.PassesAll() ? Variant(int32_t{0}) : Variant(text);
  filter_ = std::move(parsed);
  filter_columns_ = std::move(filter_columns);
  count_ = count;
  position_ = 0;
}

RowsArray SqliteRecordset::GetRows(int32_t rows, const Variant& start,
                                   const std::vector<Variant>& fields) {
  const std::vector<size_t> columns = ResolveGetRowsFields(columns_, fields);
  const int32_t first = static_cast<int32_t>(GetRowsFirst(rows, start, position_, count_));
  const int32_t rest = count_ - first;
  const int32_t wanted = rows == kGetRowsRest ? rest : std::min(rest, rows);
  // The rows are read again: another connection may have changed them since the count.
  std::vector<std::vector<Variant>> read;
  Scan(filter_, filter_columns_, [&](int32_t index, sqlite3_stmt* s) {
    if (index < first) return true;
    std::vector<Variant> cells;
    for (size_t c : columns) cells.push_back(CellVariant(s, static_cast<int>(c)));
    read.push_back(std::move(cells));
    return static_cast<int32_t>(read.size()) < wanted;
  });
  if (read.empty()) throw Failure(kErrNoCurrentRecord, kNoCurrentRecordDescription);
  RowsArray array(static_cast<int32_t>(columns.size()), static_cast<int32_t>(read.size()));
  for (size_t r = 0; r < read.size(); ++r) {
    for (size_t c = 0; c < columns.size(); ++c) {
      array.At(static_cast<int32_t>(c), static_cast<int32_t>(r)) = std::move(read[r][c]);
    }
  }
  position_ = first + static_cast<int32_t>(read.size());
  return array;
}

}  // namespace tarnsheets
