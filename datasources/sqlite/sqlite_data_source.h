// SqliteDataSource: the data-source contract answered from a table or a view of a SQLite
// database file.
//
// It raises the same signals in the same order as the memory source and refuses the same things
// with the same texts, so that a sheet cannot tell the two apart: both run the status machine of
// RecordSource (datasources/common/record_source.h). A source, like a sheet, is used on one
// thread at a time; its connection is opened without SQLite's mutex. What is particular to it:
//
// The key. Records are ordered and found by a key: the rowid of a table; for a view (which has no
// rowid) the column named for it in tarn_source_key, else its first column. A view's key must be
// unique and never NULL; this is not checked. SQLite flattens a simple view into its table, so
// a move over a view keyed by an indexed column (the table's INTEGER PRIMARY KEY, a unique index)
// runs through that index just as over the table.
//
// Bounded memory and cost. The table is never loaded. The source holds the current row only (and
// the pending one); a move reads one row through the key's index ("the next row after key k that
// passes the query": WHERE key > ? ORDER BY key LIMIT 1).
//
// Positional moves. MoveToPosition(n) goes through a sparse position index of the set: the key
// of every kPositionIndexStep-th record (positions 1, 1 + step, 1 + 2 step, ...), read by one
// pass over the keys in key order with the executed query's WHERE the first time a positional
// move needs it. The move then reads "WHERE key >= <key at the step below n> ... ORDER BY key
// LIMIT 1 OFFSET (n - 1) % step": at most step - 1 keys are stepped over, whatever n. The index
// holds 8 bytes per step for integer keys (about 125 KB per million records), a SqlValue per step
// for other keys. It is dropped, and read again at the next positional move, whenever the set
// may have changed: a new, copied or deleted record stored by the source, a change of the key or
// any store over a view or within an executed query, another user's commit seen, ExecuteQuery,
// Refresh and Close.
//
// RecordCount comes from a row counter that the database maintains by triggers (see below), or
// from one COUNT(*) when the set is filtered by a query, comes from a view (a view has no
// triggers of ours: that COUNT(*) scans what the view reads, at open, Refresh, ExecuteQuery and
// when another user's commit is seen), or when the counter cannot be installed.
// AbsolutePosition is kept by the moves.
//
// Other users are never locked out, and their changes are seen. The database is put in WAL mode;
// every statement is reset as soon as it has been read, so no read transaction stays open between
// calls, and another connection may write while a sheet shows a record. A move, after its own
// read, asks the pager's data version whether another connection committed since the set was
// read, which costs nothing while nobody else writes. RecordCount and AbsolutePosition read
// nothing of their own (a sheet asks them many times for each record it shows): they belong to
// the record last read, and change with the next read, as its values do. When another user did
// commit, the count is read again and the position of the current record is one COUNT of the keys
// up to it, so that AbsolutePosition never stands beyond RecordCount. A current record that
// another user deleted stays shown until the user moves; MoveNext and MovePrevious then go to the
// records after and before the place where it stood. Changed values of other records show when a
// move reaches them; those of the current record at Refresh (a store of it is refused, below).
//
// Every store is a transaction (BEGIN IMMEDIATE ... COMMIT). UpdateRecord inserts a new or copied
// record, or updates the changed columns of a stored one on the condition that every column still
// holds what was read; when another connection has changed or deleted the row since, nothing is
// written, the reason is shown and UpdateRecord returns a non-zero number, with the record still
// pending. DeleteRecord likewise. Over a table the condition is part of the UPDATE or DELETE;
// over a view, whose INSTEAD OF triggers SQLite does not count as changes, the row is read again
// and compared inside the same transaction before it is written. A failure of SQLite while
// storing (busy, locked, constraint, disk full, read-only, corrupt) is shown with SQLite's
// message, rolled back, and leaves the record pending; UpdateRecord then returns SQLite's result
// code. A failure of SQLite while reading (open, move, refresh) throws Failure(kErrDatabase) with
// SQLite's message; RecordCount and AbsolutePosition then answer what was known.
//
// Views are written only through their INSTEAD OF triggers. SQLite is asked at Create which it
// has: a column is Updatable when the INSTEAD OF UPDATE trigger takes it, or when the view takes
// new records (it is then written in new records only; a change of it in a stored record is
// refused saying why). Without an INSTEAD OF INSERT trigger NewRecord and CopyRecord are refused,
// without an INSTEAD OF DELETE trigger DeleteRecord; a view with none of the three is ReadOnly.
// A new record stored through a view is found again by its key when it gives one, else as the
// record with the highest key that holds the values given; when the view does not show it, the
// last record becomes current.
//
// The schema it reads besides the table (all optional):
//
//   CREATE TABLE tarn_field_meta (       -- one row per described column
//     table_name TEXT NOT NULL, column_name TEXT NOT NULL,
//     data_type INTEGER, date_kind INTEGER, number_kind INTEGER,  -- the kDataType... numbers
//     updatable INTEGER,                 -- 0 or 1 (a view's column needs its trigger as well)
//     reference_name TEXT,               -- money columns: the column holding the currency code
//     PRIMARY KEY (table_name, column_name));
//   CREATE TABLE tarn_source_key (table_name TEXT PRIMARY KEY, column_name TEXT NOT NULL);
//     -- the key column of a view (read for views only; a table is ordered by its rowid)
//   CREATE TABLE tarn_row_count (table_name TEXT PRIMARY KEY, row_count INTEGER NOT NULL);
//     -- kept by the triggers tarn_count_insert_<table> and tarn_count_delete_<table>
//   the currency table (default "Currency"), whose code column ("CurrencyCode") a money
//   field's ReferenceName column holds, and whose symbol column ("Symbol") gives Symbol.
//
// A column without a row in tarn_field_meta takes its type from its declared type (for a view,
// that of the table column it shows): INT → whole number, REAL/FLOA/DOUB/NUM/DEC → number
// ("#,##0.00"), MONEY/CURRENCY → money, DATETIME/TIMESTAMP → date and time, DATE → date, TIME →
// time, BOOL → yes/no, anything else text. The INTEGER PRIMARY KEY column of a table is not
// updatable; every other column of a table is. A copied record leaves the key column empty.
//
// Values: dates are stored as the text "yyyy-mm-dd hh:nn:ss" and read back as Date; money and
// number fields read as Double, whole numbers as Long (Double beyond 32 bits), yes/no as numbers,
// text as text. Query conditions (the rules of value_text.h) become a WHERE clause of bound
// parameters; a text condition is "tarn_text_matches(column, ?)", a SQL function of ours that
// runs QueryCondition's own matching (value_text.h) on the stored text, so that it matches
// exactly as the memory source does. A condition without wildcards of its own compares as the
// text is read and stops at the first character that differs: no folded copy is made.
#ifndef TARNSHEETS_DATASOURCES_SQLITE_SQLITE_DATA_SOURCE_H_
#define TARNSHEETS_DATASOURCES_SQLITE_SQLITE_DATA_SOURCE_H_

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "datasources/common/record_source.h"
#include "datasources/common/value_text.h"
#include "datasources/sqlite/sqlite_position_index.h"
#include "datasources/sqlite/sqlite_schema.h"
#include "datasources/sqlite/sqlite_util.h"
#include "tarnsheets/data_source.h"
#include "tarnsheets/dialogs.h"

namespace tarnsheets {

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
  // Opens `path` (a file name or a "file:" URI) and reads the columns of `table`, a table or a
  // view, closed (status 99). Fails with Failure(kErrDatabase) naming the file and SQLite's
  // message when the file cannot be opened or is no database, when there is no table or view of
  // that name, and when tarn_field_meta or tarn_source_key name a column it lacks; nothing is
  // created. `dialogs` may be nullptr: refusals are then silent.
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
  // MoveToPosition(int32_t) of RecordSource: through the position index (above).

  // The number of records between two keys of the position index. At 256 a positional move in
  // a million records stepped over 128 keys on average and took 9 us; at 64 it takes 5 us, for
  // 125 KB of index.
  static constexpr int32_t kPositionIndexStep = 64;

  // The table's or view's name.
  const std::string& TableName() const { return table_; }
  // True when the records come from a view.
  bool IsView() const { return is_view_; }
  // The name of the key that orders the records: "rowid" for a table, a column for a view.
  const std::string& KeyName() const { return key_name_; }
  // The rowid of the current stored record of a table, 0 when there is none (or over a view).
  int64_t CurrentRowIdForTest() const {
    return current_key_.type == SQLITE_INTEGER ? current_key_.integer : 0;
  }
  // The current record's key as stored; NULL when no stored record is current.
  const SqlValue& CurrentKeyForTest() const { return current_key_; }
  // SQLite's plan (EXPLAIN QUERY PLAN, the details joined by "; ") of the statement of MoveNext.
  std::string NextMovePlanForTest();
  // Runs `sql` on the source's own connection (pragmas of fault tests).
  void ExecuteForTest(const std::string& sql);
  // The number of keys in the position index; 0 while it is not read.
  size_t PositionIndexSizeForTest() const { return position_index_.Size(); }
  // The memory that the position index holds, in bytes.
  size_t PositionIndexBytesForTest() const { return position_index_.Bytes(); }
  // The source's connection, for benchmarks that compare with raw SQLite on the same settings.
  sqlite3* ConnectionForTest() const { return db_; }

  // --- The contract: RecordSource's.

 private:
  // --- Storage over the table or view: RecordSource's storage operations.
  void SeeOtherUsersChanges(bool before_move) override;
  int32_t StoredCount() const override { return count_; }
  bool HasStoredCurrent() const override {
    return pending_ != Pending::kNewRow && current_key_.type != SQLITE_NULL;
  }
  Variant StoredValue(int index) const override;
  bool StoredRowEditable(int32_t row) const override { return row >= 1 && row <= count_; }
  // A ticket for the current key (kept in remembered_keys_), 0 when no stored record is current.
  int64_t CurrentKey() const override;
  // A copied record gets a key of its own.
  bool CopiesField(int index) const override { return index != key_field_; }
  std::string FieldRefusal(int index, bool new_record) const override;
  std::string NewRecordRefusal() const override;
  std::string DeletionRefusal() const override;
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
    bool rowid_alias = false;    // the INTEGER PRIMARY KEY column of a table
    bool update_trigger = true;  // a view's INSTEAD OF UPDATE trigger takes it
    std::string reference;
  };
  // The WHERE clause of the executed query: SQL of column names and '?' only, and its values.
  struct Where {
    std::string sql;  // empty: every row
    std::vector<SqlValue> params;
  };
  // A key remembered for the return after a new record or a query.
  struct RememberedKey {
    int64_t ticket = 0;
    SqlValue key;
    int64_t data_version = 0;
  };

  SqliteDataSource(sqlite3* db, std::string path, std::string table, Dialogs* dialogs,
                   SqliteSourceOptions options);
  void ReadSchema();
  // The key column of a view: its row in tarn_source_key, else its first column.
  void ChooseViewKey(const std::unordered_map<std::string, int>& index_by_name);
  // What the INSTEAD OF triggers of a view take: asks SQLite to prepare (never run) an INSERT, a
  // DELETE and an UPDATE of each column.
  void ProbeViewTriggers();
  void ReadSymbols();
  void PrepareCounter();

  // Reading rows. Every SELECT reads the key first, then column_list_.
  // The SQL of a move: "SELECT key, columns FROM t WHERE <where> [AND key > / < / >= ?] ORDER BY
  // key [DESC] LIMIT 1 [OFFSET ?]" (kPosition: ">= ?" and the OFFSET).
  std::string MoveSql(MoveTo to) const;
  // Runs the cached statement of `to` from key `from` (kNext, kPrevious), or reads the record at
  // 0-based `offset` (kPosition, through FetchAtPosition). Returns false (and changes nothing) when
  // there is no such row.
  bool FetchRow(MoveTo to, const SqlValue& from, int64_t offset, SqlValue* key,
                std::vector<SqlValue>* row);
  // The row of `key`, whether or not it passes the executed query, and its key as read (unless
  // `key_read` is nullptr).
  bool ReadRowByKey(const SqlValue& key, std::vector<SqlValue>* row, SqlValue* key_read = nullptr);
  // Steps `statement`, a SELECT of the key and column_list_ whose parameters are bound: false when
  // it finds no row, otherwise the row's key (unless `key` is nullptr) and values. Fails with
  // Failure(kErrDatabase).
  bool StepRow(sqlite3_stmt* statement, SqlValue* key, std::vector<SqlValue>* row);
  bool RowPassesWhere(const SqlValue& key);
  bool IsLastRow(const SqlValue& key);
  // The record at 1-based `position` of the set, through the position index (read first when it
  // is not). Returns false (and changes nothing) when there is no such record.
  bool FetchAtPosition(int64_t position, SqlValue* key, std::vector<SqlValue>* row);
  // Reads the position index: one pass over the keys of the set in key order.
  void ReadPositionIndex();
  // Forgets the position index: the set may have changed.
  void DropPositionIndex();
  int64_t CountRows();
  // The number of records of the set whose key is at most `key`; *present tells whether `key`
  // itself is one of them. One COUNT over the key's index.
  int64_t PositionOf(const SqlValue& key, bool* present = nullptr);
  // PRAGMA data_version of the connection: changes exactly when another connection committed.
  // One short read transaction.
  int64_t DataVersion();
  // The data version of the connection's pager (SQLITE_FCNTL_DATA_VERSION): changes when a read
  // of this connection saw another connection's commit, and at every commit of its own. Costs no
  // read of the database.
  unsigned FileVersion() const;
  // True when a read since the last look at data_version may have seen another user's commit.
  bool MaySeeOtherUsersChanges() const { return FileVersion() != file_version_; }
  // Reads data_version; when another user committed since the set was read, reads the count and
  // the position of the current record again and returns true.
  bool CatchUpWithOtherUsers();
  // Finds the target of a move in the set as it is known (FindMoveTarget without the checks).
  bool SeekMoveTarget(MoveTo to);
  sqlite3_stmt* Cached(const std::string& sql);
  // Steps a cached statement without results (BEGIN, COMMIT); fails with DatabaseFailure.
  void RunCached(const char* sql, const char* what);
  void BindWhere(sqlite3_stmt* statement, int* index) const;
  void ClearStatementCache();
  // Reads the set again from the database: count, then the current row (or the first one).
  void Reread(bool keep_current);
  void MakeCurrent(SqlValue key, std::vector<SqlValue> row);
  void ForgetCurrent();
  // The key remembered under `ticket`, nullptr when there is none.
  const RememberedKey* Remembered(int64_t ticket) const;
  // Makes the remembered record current again at `position`, or the first record; the position
  // is read again when other users stored meanwhile.
  void ReturnTo(int64_t ticket, int32_t position);

  // Storing (sqlite_store.cc). StoreChanges and StoreNewRecord store what is pending in one
  // transaction. They return 0 on success, with the stored row current; otherwise they show why,
  // leave the record pending and return 1 for a conflict with another user or SQLite's result
  // code.
  //
  // Runs `write` between BEGIN IMMEDIATE and COMMIT. When `write` returns false (a conflict, its
  // reason in the string it is given) or a Failure is thrown, rolls back and shows why. Returns
  // 0, 1 for a conflict, or SQLite's result code.
  int32_t StoreInTransaction(const std::function<bool(std::string* failure)>& write);
  // The UPDATE of the changed columns, cached by the set of changed columns; over a table with
  // the condition that every column still holds what was read.
  sqlite3_stmt* UpdateStatement();
  // Runs the UPDATE of the current row with the pending values. Fails with DatabaseFailure.
  void RunUpdate();
  // The update path over a table: the condition is part of the UPDATE; a row that no longer
  // holds what was read is not changed. False, with the reason, on such a conflict.
  bool UpdateTableRow(std::string* failure);
  // The update path over a view, whose trigger's changes SQLite does not count: the row is
  // compared with what was read first. False, with the reason, on a conflict.
  bool UpdateViewRow(std::string* failure);
  // Runs the INSERT of the pending record; returns the values it gave, by column (NULL where the
  // column takes its default). Fails with DatabaseFailure.
  std::vector<SqlValue> InsertPendingRecord();
  // The insert path over a table: the new row is read back by its rowid.
  void InsertTableRecord(SqlValue* key, std::vector<SqlValue>* row);
  // The insert path over a view: the new record is looked for in the view (FindInsertedViewRow).
  // False when the view does not show it.
  bool InsertViewRecord(SqlValue* key, std::vector<SqlValue>* row);
  // Inside the store's transaction: whether the current row still holds what was read. Otherwise
  // sets *failure to the reason ("changed by another user", "deleted by another user").
  bool RowStillAsRead(const char* changed, const char* deleted, std::string* failure);
  // Inside the store's transaction, over a view: finds the record that an INSERT just stored
  // through the view's trigger, by its key when `values` give one, else as the highest key whose
  // columns hold the values given.
  bool FindInsertedViewRow(const std::vector<SqlValue>& values, SqlValue* key,
                           std::vector<SqlValue>* row);
  // Translates query conditions into *where (sqlite_query.cc); false when one of them does not
  // read.
  bool BuildWhere(const std::vector<std::string>& conditions, Where* where);

  SqlValue ToSql(int index, const Variant& value) const;
  Variant FromSql(int index, const SqlValue& value) const;

  // The connection and what was read of the schema; fixed after Create.
  sqlite3* db_ = nullptr;
  std::string path_;
  std::string table_;
  std::string quoted_table_;
  std::string column_list_;  // the key, then every column, quoted
  SqliteSourceOptions options_;
  std::vector<Column> columns_;
  bool has_counter_ = false;
  bool is_view_ = false;
  std::string key_name_ = "rowid";  // the key as named in messages
  std::string key_sql_ = "rowid";   // the key as SQL: rowid, or the view's quoted key column
  int key_field_ = -1;              // the column that holds the key (a rowid alias), or -1
  bool takes_inserts_ = true;       // false for a view without INSTEAD OF INSERT trigger
  bool takes_deletes_ = true;       // false for a view without INSTEAD OF DELETE trigger
  // Prepared statements by SQL text, and the five moves of the executed query among them.
  std::unordered_map<std::string, sqlite3_stmt*> statements_;
  sqlite3_stmt* move_statements_[5] = {nullptr, nullptr, nullptr, nullptr, nullptr};

  // The set as read; every signal is raised only after these hold their new values.
  SqlValue current_key_;               // NULL: no stored record is current
  std::vector<SqlValue> current_row_;  // the current row as read
  int32_t count_ = 0;                  // rows in the set
  std::unique_ptr<Where> where_;
  // Another user deleted the current record (or changed it out of the query): it is still shown,
  // and rows_before_ records of the set stand before where it stood.
  bool current_gone_ = false;
  int32_t rows_before_ = 0;
  // PRAGMA data_version when count_ and position_ were last read from the database, and the
  // pager's version at that moment.
  int64_t data_version_ = 0;
  unsigned file_version_ = 0;

  // The target of a move, found by FindMoveTarget, and what held when it was found.
  SqlValue target_key_;
  std::vector<SqlValue> target_row_;
  int32_t target_position_ = 0;
  SqlValue mark_key_;
  int32_t mark_position_ = 0;
  int32_t mark_status_ = dsClosed;
  int64_t mark_version_ = 0;

  // The position index: the keys at positions 1, 1 + step, ... of the set. Empty: not read.
  SqlitePositionIndex position_index_{kPositionIndexStep};

  // Keys handed out by CurrentKey (at most two are ever waiting: a new record's and a query's).
  mutable RememberedKey remembered_keys_[4];
  mutable int64_t next_ticket_ = 0;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_DATASOURCES_SQLITE_SQLITE_DATA_SOURCE_H_
