// SqliteDataSource: the data-source contract answered from a table of a SQLite database file.
//
// It raises the same signals in the same order as the memory source and refuses the same things
// with the same texts, so that a sheet cannot tell the two apart: both run the status machine of
// RecordSource (datasources/common/record_source.h). What is particular to it:
//
// Bounded memory and cost. The table is never loaded. The source holds the current row only (and
// the pending one); a move reads one row through the rowid index ("the next row after rowid r
// that passes the query"). RecordCount comes from a row counter that the database maintains by
// triggers (see below), or from one COUNT(*) when the set is filtered by a query or the counter
// cannot be installed; AbsolutePosition is kept by the moves and read again by Refresh.
//
// Other users are never locked out. The database is put in WAL mode; every statement is reset as
// soon as it has been read, so no read transaction stays open between calls, and another
// connection may write while a sheet shows a record. Changes of other users show at Refresh (or
// ExecuteQuery); until then moves still find their rows through the index.
//
// Every store is a transaction (BEGIN IMMEDIATE ... COMMIT). UpdateRecord inserts a new or copied
// record, or updates the changed columns of a stored one on the condition that every column still
// holds what was read; when another connection has changed or deleted the row since, nothing is
// written, the reason is shown and UpdateRecord returns a non-zero number, with the record still
// pending. DeleteRecord likewise. A failure of SQLite while storing (busy, locked, constraint,
// disk full, read-only, corrupt) is shown with SQLite's message, rolled back, and leaves the
// record pending; UpdateRecord then returns SQLite's result code. A failure of SQLite while
// reading (open, move, refresh) throws Failure(kErrDatabase) with SQLite's message.
//
// The schema it reads besides the table (all optional):
//
//   CREATE TABLE tarn_field_meta (       -- one row per described column
//     table_name TEXT NOT NULL, column_name TEXT NOT NULL,
//     data_type INTEGER, date_kind INTEGER, number_kind INTEGER,  -- the kDataType... numbers
//     updatable INTEGER,                 -- 0 or 1
//     reference_name TEXT,               -- money columns: the column holding the currency code
//     PRIMARY KEY (table_name, column_name));
//   CREATE TABLE tarn_row_count (table_name TEXT PRIMARY KEY, row_count INTEGER NOT NULL);
//     -- kept by the triggers tarn_count_insert_<table> and tarn_count_delete_<table>
//   the currency table (default "Currency"), whose code column ("CurrencyCode") a money
//   field's ReferenceName column holds, and whose symbol column ("Symbol") gives Symbol.
//
// A column without a row in tarn_field_meta takes its type from its declared type: INT → whole
// number, REAL/FLOA/DOUB/NUM/DEC → number ("#,##0.00"), MONEY/CURRENCY → money, DATETIME/
// TIMESTAMP → date and time, DATE → date, TIME → time, BOOL → yes/no, anything else text. The
// INTEGER PRIMARY KEY column is not updatable; every other column is.
//
// Values: dates are stored as the text "yyyy-mm-dd hh:nn:ss" and read back as Date; money and
// number fields read as Double, whole numbers as Long (Double beyond 32 bits), yes/no as numbers,
// text as text. Query conditions (the rules of value_text.h) become a WHERE clause of bound
// parameters; a text condition compares through the SQL function tarn_fold (our case folding)
// with GLOB, so that it matches exactly as the memory source does.
#ifndef TARNSHEETS_DATASOURCES_SQLITE_SQLITE_DATA_SOURCE_H_
#define TARNSHEETS_DATASOURCES_SQLITE_SQLITE_DATA_SOURCE_H_

#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "datasources/common/record_source.h"
#include "datasources/memory/value_text.h"
#include "tarnsheets/data_source.h"
#include "tarnsheets/dialogs.h"

struct sqlite3;
struct sqlite3_stmt;

namespace tarnsheets {

struct SqlValue;

// Installs the row counter of `table` in the database of `db`: the table tarn_row_count, its row
// for `table` (filled by one COUNT(*)) and the triggers that keep it on every insert and delete.
// One transaction; fails with Failure(kErrDatabase) and changes nothing.
void InstallRowCounter(sqlite3* db, const std::string& table);

// The title of the source's message boxes.
inline constexpr const char kSqliteSourceTitle[] = "TarnDataSource";

struct SqliteSourceOptions {
  // Opens the file read-only (SQLITE_OPEN_READONLY): ReadOnly answers True. A file that SQLite
  // can only open read-only (a "mode=ro" URI, a read-only medium) is read-only as well.
  bool read_only = false;
  // How long a store waits for another connection's write lock before it fails as busy.
  int busy_timeout_ms = 2000;
  // Installs the row counter (table tarn_row_count and its two triggers) when the table lacks it
  // and the file is writable. Without a counter an unfiltered RecordCount costs one COUNT(*) at
  // open and at Refresh.
  bool install_row_counter = true;
  // The currency table and its columns.
  std::string currency_table = "Currency";
  std::string currency_code_column = "CurrencyCode";
  std::string currency_symbol_column = "Symbol";
};

class SqliteDataSource final : public RecordSource {
 public:
  // Opens `path` (a file name or a "file:" URI) and reads the columns of `table`, closed (status
  // 99). Fails with Failure(kErrDatabase) naming the file and SQLite's message when the file
  // cannot be opened or is no database, and when the table does not exist; nothing is created.
  // `dialogs` may be nullptr: refusals are then silent.
  static std::unique_ptr<SqliteDataSource> Create(const std::string& path, const std::string& table,
                                                  Dialogs* dialogs,
                                                  SqliteSourceOptions options = {});
  ~SqliteDataSource() override;

  // SetDialogs(Dialogs*) of RecordSource sets where refusals are shown.

  // --- Life cycle: Open() and Close() of RecordSource.
  // Open opens the set: status 99 to 0 on the first record, then SysDataSourceInit and
  // EditStatusChange; it does nothing when already open. A read failure throws as described
  // above. Close drops any pending record or change, sets status 99 and raises EditStatusChange.

  // HasPendingRecord() of RecordSource: true while a change of the current record or a new or
  // copied record is pending.
  // The table's name.
  const std::string& TableName() const { return table_; }
  // The rowid of the current stored record, 0 when there is none.
  int64_t CurrentRowIdForTest() const { return current_rowid_; }
  // Runs `sql` on the source's own connection (pragmas of fault tests).
  void ExecuteForTest(const std::string& sql);
  // The source's connection, for benchmarks that compare with raw SQLite on the same settings.
  sqlite3* ConnectionForTest() const { return db_; }

  // --- The contract: RecordSource's.

 private:
  // --- Storage over the table: RecordSource's storage operations.
  int32_t StoredCount() const override { return count_; }
  bool HasStoredCurrent() const override {
    return pending_ != Pending::kNewRow && current_rowid_ != 0;
  }
  Variant StoredValue(int index) const override;
  bool StoredRowEditable(int32_t row) const override { return row >= 1 && row <= count_; }
  int64_t CurrentKey() const override { return current_rowid_; }
  // A copied record gets a key of its own.
  bool CopiesField(int index) const override { return !columns_[index].rowid_alias; }
  void ReadSetFromStart() override;
  void ReadSetAgain() override;
  void ForgetSet() override;
  bool FindMoveTarget(MoveTo to, bool again) override;
  void EnterMoveTarget() override;
  int32_t StoreChanges() override;
  int32_t StoreNewRecord() override;
  bool DeleteStoredCurrent() override;
  void ReturnFromNewRecord(int64_t key, int32_t position) override;
  void ReturnFromQuery(int64_t key, int32_t position) override;

  struct Column {
    std::string name;
    std::string declared_type;
    int32_t data_type = kDataTypeText;
    int32_t date_kind = kDateKindDateTime;
    int32_t number_kind = kNumberKindWhole;
    bool updatable = true;
    bool rowid_alias = false;  // the INTEGER PRIMARY KEY column
    std::string reference;
  };
  // The WHERE clause of the executed query: SQL of column names and '?' only, and its values.
  struct Where {
    std::string sql;  // empty: every row
    std::vector<SqlValue> params;
  };

  SqliteDataSource(sqlite3* db, std::string path, std::string table, Dialogs* dialogs,
                   SqliteSourceOptions options);
  void ReadSchema();
  void ReadSymbols();
  void PrepareCounter();

  // Reading rows. `Fetch` runs a cached statement "SELECT rowid, columns FROM table WHERE
  // <where> [AND rowid > / < ?] ORDER BY rowid [DESC] LIMIT 1" and makes the row found current.
  // Returns false (and changes nothing) when there is none.
  bool FetchRow(MoveTo to, int64_t from_rowid, int64_t* rowid, std::vector<SqlValue>* row);
  bool ReadRowById(int64_t rowid, std::vector<SqlValue>* row);
  // Steps `statement`, a SELECT of column_list_ whose parameters are bound: false when it finds
  // no row, otherwise the row's rowid (unless `rowid` is nullptr) and values. Fails with
  // Failure(kErrDatabase).
  bool StepRow(sqlite3_stmt* statement, int64_t* rowid, std::vector<SqlValue>* row);
  bool RowPassesWhere(int64_t rowid);
  bool IsLastRow(int64_t rowid);
  int64_t CountRows();
  int64_t PositionOf(int64_t rowid);
  sqlite3_stmt* Cached(const std::string& sql);
  // Steps a cached statement without results (BEGIN, COMMIT); fails with DatabaseFailure.
  void RunCached(const char* sql, const char* what);
  void BindWhere(sqlite3_stmt* statement, int* index) const;
  void ClearStatementCache();
  // Reads the set again from the database: count, then the current row (or the first one).
  void Reread(bool keep_current);

  // Stores what is pending (a change or a new record) in one transaction. Returns 0 on success,
  // with the stored row current; otherwise shows why, leaves the record pending and returns 1
  // for a conflict with another user or SQLite's result code.
  int32_t Store();
  // Translates query conditions into *where; false when one of them does not read.
  bool BuildWhere(const std::vector<std::string>& conditions, Where* where);

  SqlValue ToSql(int index, const Variant& value) const;
  Variant FromSql(int index, const SqlValue& value) const;

  // The connection and what was read of the schema; fixed after Create.
  sqlite3* db_ = nullptr;
  std::string path_;
  std::string table_;
  std::string quoted_table_;
  std::string column_list_;  // "rowid", then every column, quoted
  SqliteSourceOptions options_;
  std::vector<Column> columns_;
  bool has_counter_ = false;
  // Prepared statements by SQL text, and the four moves of the executed query among them.
  std::unordered_map<std::string, sqlite3_stmt*> statements_;
  sqlite3_stmt* move_statements_[4] = {nullptr, nullptr, nullptr, nullptr};

  // The set as read; every signal is raised only after these hold their new values.
  int64_t current_rowid_ = 0;          // 0: no stored record is current
  std::vector<SqlValue> current_row_;  // the current row as read
  int32_t count_ = 0;                  // rows in the set
  std::unique_ptr<Where> where_;

  // The target of a move, found by FindMoveTarget, and what held when it was found.
  int64_t target_rowid_ = 0;
  std::vector<SqlValue> target_row_;
  int32_t target_position_ = 0;
  int64_t mark_rowid_ = 0;
  int32_t mark_position_ = 0;
  int32_t mark_status_ = dsClosed;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_DATASOURCES_SQLITE_SQLITE_DATA_SOURCE_H_
