// Small helpers over SQLite's C API shared by the SQLite data source, the SQLite recordset and the
// sample-database generator: a statement that finalizes itself, one SQL value as SQLite stores
// it, and failures that carry SQLite's own message.
#ifndef TARNSHEETS_DATASOURCES_SQLITE_SQLITE_UTIL_H_
#define TARNSHEETS_DATASOURCES_SQLITE_SQLITE_UTIL_H_

#include <sqlite3.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tarnsheets/failure.h"
#include "tarnsheets/variant.h"

namespace tarnsheets {

// The number of every failure that SQLite reports to a data source or recordset of ours. The
// description holds what was being done, SQLite's message and its result code.
inline constexpr int32_t kErrDatabase = kObjectErrorBase + 1000;

// A value as SQLite stores it: NULL, INTEGER, REAL, TEXT or BLOB (kept as bytes in `text`).
struct SqlValue {
  int type = SQLITE_NULL;
  int64_t integer = 0;
  double real = 0;
  std::string text;

  static SqlValue FromColumn(sqlite3_stmt* statement, int column);
  void Bind(sqlite3_stmt* statement, int index) const;
  // Binds text and bytes without a copy: the value must stay unchanged until the statement is
  // reset and its bindings cleared (a ResetOnExit in the same scope).
  void BindUncopied(sqlite3_stmt* statement, int index) const;
  friend bool operator==(const SqlValue&, const SqlValue&) = default;
};

// A text value.
SqlValue SqlTextValue(std::string text);

// "yyyy-mm-dd hh:nn:ss": the form in which every date is stored, so that text order is time order.
std::string StoredDateText(Date date);

// Quotes an identifier (a table or column name from the schema) for SQL: "name", with any double
// quote doubled. Values never go into SQL text; they are bound.
std::string QuoteIdentifier(std::string_view name);

// Failure(kErrDatabase) for the last error of `db`: "SQLite could not WHAT: MESSAGE (code N)".
Failure DatabaseFailure(sqlite3* db, const std::string& what);
Failure DatabaseFailure(int code, const std::string& message, const std::string& what);

// A prepared statement, finalized on destruction.
class Statement {
 public:
  Statement() = default;
  // Prepares `sql` on `db`; fails with DatabaseFailure, saying `what`.
  Statement(sqlite3* db, std::string_view sql, const std::string& what);
  Statement(Statement&& other) noexcept : statement_(other.statement_) {
    other.statement_ = nullptr;
  }
  Statement& operator=(Statement&& other) noexcept;
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;
  ~Statement();

  sqlite3_stmt* get() const { return statement_; }
  explicit operator bool() const { return statement_ != nullptr; }

 private:
  sqlite3_stmt* statement_ = nullptr;
};

// Resets and clears the bindings of a statement when the scope ends, so that no read transaction
// stays open between calls.
class ResetOnExit {
 public:
  explicit ResetOnExit(sqlite3_stmt* statement) : statement_(statement) {}
  ~ResetOnExit() {
    sqlite3_reset(statement_);
    sqlite3_clear_bindings(statement_);
  }
  ResetOnExit(const ResetOnExit&) = delete;
  ResetOnExit& operator=(const ResetOnExit&) = delete;

 private:
  sqlite3_stmt* statement_;
};

// Runs `sql` (one or more statements without results); fails with DatabaseFailure.
void ExecuteSql(sqlite3* db, const std::string& sql, const std::string& what);

// A cell of a recordset: NULL is Null, INTEGER a Long when it fits (a Double otherwise), REAL a
// Double, TEXT and BLOB a text.
Variant CellVariant(sqlite3_stmt* statement, int column);

}  // namespace tarnsheets

#endif  // TARNSHEETS_DATASOURCES_SQLITE_SQLITE_UTIL_H_
