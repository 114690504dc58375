#include "datasources/sqlite/sqlite_data_source.h"

#include <sqlite3.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

#include "datasources/sqlite/sqlite_query.h"
#include "datasources/sqlite/sqlite_schema.h"
#include "datasources/sqlite/sqlite_text_functions.h"
#include "datasources/sqlite/sqlite_util.h"

namespace tarnsheets {
// --- Creation ---------------------------------------------------------------------------------

std::unique_ptr<SqliteDataSource> SqliteDataSource::Create(const std::string& path,
                                                           const std::string& table,
                                                           Dialogs* dialogs,
                                                           SqliteSourceOptions options) {
  sqlite3* db = nullptr;
  // A source is used on one thread, the one its signals are raised on: its connection goes
  // without SQLite's own mutex, which every call would otherwise take and release.
  const int flags = (options.read_only ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE) |
                    SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX;
  const int rc = sqlite3_open_v2(path.c_str(), &db, flags, nullptr);
  if (rc != SQLITE_OK) {
    Failure f = DatabaseFailure(db, "open \"" + path + "\"");
    sqlite3_close(db);
    throw f;
  }
  try {
    sqlite3_extended_result_codes(db, 1);
    sqlite3_busy_timeout(db, options.busy_timeout_ms);
    // Reading the schema proves that the file is a database.
    ExecuteSql(db, "SELECT count(*) FROM sqlite_schema", "read \"" + path + "\"");
    const bool read_only = options.read_only || sqlite3_db_readonly(db, "main") == 1;
    if (!read_only) {
      ExecuteSql(db, "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL",
                 "put \"" + path + "\" in WAL mode");
    }
    RegisterTextFunctions(db);
    std::unique_ptr<SqliteDataSource> source(
        new SqliteDataSource(db, path, table, dialogs, std::move(options)));
    db = nullptr;  // owned by the source now
    source->read_only_ = read_only;
    source->ReadSchema();
    source->ReadSymbols();
    source->PrepareCounter();
    return source;
  } catch (...) {
    if (db != nullptr) sqlite3_close(db);
    throw;
  }
}

SqliteDataSource::SqliteDataSource(sqlite3* db, std::string path, std::string table,
                                   Dialogs* dialogs, SqliteSourceOptions options)
    : RecordSource(dialogs),
      db_(db),
      path_(std::move(path)),
      table_(std::move(table)),
      quoted_table_(QuoteIdentifier(table_)),
      options_(std::move(options)),
      where_(std::make_unique<Where>()) {
  SetMessageTitle(kSqliteSourceTitle);
}

SqliteDataSource::~SqliteDataSource() {
  ClearStatementCache();
  sqlite3_close(db_);
}

void SqliteDataSource::ExecuteForTest(const std::string& sql) {
  ExecuteSql(db_, sql, "run \"" + sql + "\"");
}

// --- Reading ----------------------------------------------------------------------------------

sqlite3_stmt* SqliteDataSource::Cached(const std::string& sql) {
  auto it = statements_.find(sql);
  if (it != statements_.end()) return it->second;
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v3(db_, sql.c_str(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT,
                         &statement, nullptr) != SQLITE_OK) {
    sqlite3_finalize(statement);
    throw DatabaseFailure(db_, "read \"" + table_ + "\"");
  }
  statements_.emplace(sql, statement);
  return statement;
}

void SqliteDataSource::ClearStatementCache() {
  std::set<sqlite3_stmt*> finalized;
  for (auto& [sql, statement] : statements_) {
    if (finalized.insert(statement).second) sqlite3_finalize(statement);
  }
  statements_.clear();
  for (sqlite3_stmt*& s : move_statements_) s = nullptr;
}

void SqliteDataSource::BindWhere(sqlite3_stmt* statement, int* index) const {
  for (const SqlValue& v : where_->params) v.Bind(statement, (*index)++);
}

std::string SqliteDataSource::MoveSql(MoveTo to) const {
  std::string sql = "SELECT " + column_list_ + " FROM " + quoted_table_;
  std::string condition = where_->sql.empty() ? std::string() : "(" + where_->sql + ")";
  const auto add = [&condition](const std::string& part) {
    condition += condition.empty() ? part : " AND " + part;
  };
  if (to == MoveTo::kNext) add(key_sql_ + " > ?");
  if (to == MoveTo::kPrevious) add(key_sql_ + " < ?");
  if (to == MoveTo::kPosition) add(key_sql_ + " >= ?");
  if (!condition.empty()) sql += " WHERE " + condition;
  const bool ascending = to == MoveTo::kFirst || to == MoveTo::kNext || to == MoveTo::kPosition;
  sql += " ORDER BY " + key_sql_ + (ascending ? " LIMIT 1" : " DESC LIMIT 1");
  if (to == MoveTo::kPosition) sql += " OFFSET ?";
  return sql;
}

bool SqliteDataSource::FetchRow(MoveTo to, const SqlValue& from, int64_t offset, SqlValue* key,
                                std::vector<SqlValue>* row) {
  if (to == MoveTo::kPosition) return FetchAtPosition(offset + 1, key, row);
  sqlite3_stmt*& statement = move_statements_[static_cast<int>(to)];
  if (statement == nullptr) statement = Cached(MoveSql(to));
  ResetOnExit reset(statement);
  int index = 1;
  BindWhere(statement, &index);
  if (to == MoveTo::kNext || to == MoveTo::kPrevious) from.Bind(statement, index);
  return StepRow(statement, key, row);
}

bool SqliteDataSource::StepRow(sqlite3_stmt* statement, SqlValue* key, std::vector<SqlValue>* row) {
  const int rc = sqlite3_step(statement);
  if (rc == SQLITE_DONE) return false;
  if (rc != SQLITE_ROW) throw DatabaseFailure(db_, "read a record of \"" + table_ + "\"");
  if (key != nullptr) *key = SqlValue::FromColumn(statement, 0);
  row->resize(columns_.size());
  for (size_t i = 0; i < columns_.size(); ++i) {
    (*row)[i] = SqlValue::FromColumn(statement, static_cast<int>(i) + 1);
  }
  return true;
}

bool SqliteDataSource::ReadRowByKey(const SqlValue& key, std::vector<SqlValue>* row,
                                    SqlValue* key_read) {
  sqlite3_stmt* statement =
      Cached("SELECT " + column_list_ + " FROM " + quoted_table_ + " WHERE " + key_sql_ + " = ?");
  ResetOnExit reset(statement);
  key.Bind(statement, 1);
  return StepRow(statement, key_read, row);
}

int64_t SqliteDataSource::CountRows() {
  sqlite3_stmt* statement = nullptr;
  if (where_->sql.empty() && has_counter_) {
    statement = Cached("SELECT row_count FROM tarn_row_count WHERE table_name = ?");
    ResetOnExit reset(statement);
    sqlite3_bind_text(statement, 1, table_.c_str(), -1, SQLITE_TRANSIENT);
    const int rc = sqlite3_step(statement);
    if (rc == SQLITE_ROW) return sqlite3_column_int64(statement, 0);
    if (rc != SQLITE_DONE) throw DatabaseFailure(db_, "count the records of \"" + table_ + "\"");
    has_counter_ = false;  // the counter row was removed: count instead
  }
  statement = Cached("SELECT count(*) FROM " + quoted_table_ +
                     (where_->sql.empty() ? std::string() : " WHERE " + where_->sql));
  ResetOnExit reset(statement);
  int index = 1;
  BindWhere(statement, &index);
  if (sqlite3_step(statement) != SQLITE_ROW) {
    throw DatabaseFailure(db_, "count the records of \"" + table_ + "\"");
  }
  return sqlite3_column_int64(statement, 0);
}

int64_t SqliteDataSource::PositionOf(const SqlValue& key, bool* present) {
  // The first '?' (in the result) and the last are the key; the query's values stand between.
  sqlite3_stmt* statement = Cached(
      "SELECT count(*), count(CASE WHEN " + key_sql_ + " = ? THEN 1 END) FROM " + quoted_table_ +
      " WHERE " + (where_->sql.empty() ? std::string() : "(" + where_->sql + ") AND ") + key_sql_ +
      " <= ?");
  ResetOnExit reset(statement);
  key.Bind(statement, 1);
  int index = 2;
  BindWhere(statement, &index);
  key.Bind(statement, index);
  if (sqlite3_step(statement) != SQLITE_ROW) {
    throw DatabaseFailure(db_, "find the position of a record of \"" + table_ + "\"");
  }
  if (present != nullptr) *present = sqlite3_column_int64(statement, 1) != 0;
  return sqlite3_column_int64(statement, 0);
}

int64_t SqliteDataSource::DataVersion() {
  sqlite3_stmt* statement = Cached("PRAGMA data_version");
  ResetOnExit reset(statement);
  if (sqlite3_step(statement) != SQLITE_ROW) {
    throw DatabaseFailure(db_, "see other users' changes of \"" + table_ + "\"");
  }
  return sqlite3_column_int64(statement, 0);
}

void SqliteDataSource::DropPositionIndex() { position_index_.Drop(); }

void SqliteDataSource::ReadPositionIndex() {
  DropPositionIndex();
  // The keys alone, in key order, through the key's index.
  sqlite3_stmt* statement = Cached("SELECT " + key_sql_ + " FROM " + quoted_table_ +
                                   (where_->sql.empty() ? std::string() : " WHERE " + where_->sql) +
                                   " ORDER BY " + key_sql_);
  ResetOnExit reset(statement);
  int index = 1;
  BindWhere(statement, &index);
  if (position_index_.Read(statement) != SQLITE_DONE) {
    throw DatabaseFailure(db_, "read the positions of \"" + table_ + "\"");
  }
}

bool SqliteDataSource::FetchAtPosition(int64_t position, SqlValue* key,
                                       std::vector<SqlValue>* row) {
  if (position < 1) return false;
  if (position_index_.Empty()) ReadPositionIndex();
  SqlValue from;
  int64_t offset = 0;
  if (!position_index_.KeyBefore(position, &from, &offset)) return false;
  sqlite3_stmt*& statement = move_statements_[static_cast<int>(MoveTo::kPosition)];
  if (statement == nullptr) statement = Cached(MoveSql(MoveTo::kPosition));
  ResetOnExit reset(statement);
  int index = 1;
  BindWhere(statement, &index);
  from.Bind(statement, index++);
  sqlite3_bind_int64(statement, index, offset);
  return StepRow(statement, key, row);
}

bool SqliteDataSource::IsLastRow(const SqlValue& key) {
  SqlValue next;
  std::vector<SqlValue> ignored;
  return !FetchRow(MoveTo::kNext, key, 0, &next, &ignored);
}

void SqliteDataSource::MakeCurrent(SqlValue key, std::vector<SqlValue> row) {
  current_key_ = std::move(key);
  current_row_ = std::move(row);
  current_gone_ = false;
  rows_before_ = 0;
}

void SqliteDataSource::ForgetCurrent() {
  current_key_ = SqlValue();
  current_row_.clear();
  current_gone_ = false;
  rows_before_ = 0;
}

void SqliteDataSource::Reread(bool keep_current) {
  DropPositionIndex();
  // The version first: a commit of another user after it is seen at the next call.
  const int64_t version = DataVersion();
  file_version_ = FileVersion();
  const int64_t count = CountRows();
  SqlValue key;
  std::vector<SqlValue> row;
  int64_t position = 0;
  bool found = false;
  if (keep_current && current_key_.type != SQLITE_NULL) {
    found = ReadRowByKey(current_key_, &row) && RowPassesWhere(current_key_);
    if (found) {
      key = current_key_;
    } else {
      found = FetchRow(MoveTo::kNext, current_key_, 0, &key, &row) ||
              FetchRow(MoveTo::kLast, SqlValue(), 0, &key, &row);
    }
    if (found) position = PositionOf(key);
  } else {
    found = FetchRow(MoveTo::kFirst, SqlValue(), 0, &key, &row);
    if (found) position = 1;
  }
  data_version_ = version;
  count_ = static_cast<int32_t>(std::min<int64_t>(count, std::numeric_limits<int32_t>::max()));
  if (found) {
    MakeCurrent(std::move(key), std::move(row));
    position_ = static_cast<int32_t>(position);
    if (count_ < position_) count_ = position_;
  } else {
    ForgetCurrent();
    position_ = 0;
  }
}

unsigned SqliteDataSource::FileVersion() const {
  unsigned version = 0;
  sqlite3_file_control(db_, "main", SQLITE_FCNTL_DATA_VERSION, &version);
  return version;
}

void SqliteDataSource::SeeOtherUsersChanges(bool before_move) {
  if (before_move) {
    // A move reads the database anyway: FindMoveTarget looks after that read, at no cost while
    // nobody else writes (and sees there what any earlier read of the connection saw). Only what
    // could refuse the move before it reads, an empty set or a position beyond the count, is
    // checked here.
    if (count_ == 0 || move_position_ > count_) {
      CatchUpWithOtherUsers();
    }
    return;
  }
  // RecordCount and AbsolutePosition are read many times for each record a sheet shows, so they
  // start no read of their own: they answer what the last read of the connection saw, and catch
  // up only when that read saw another user's commit (a look at the pager, free). A move or
  // Refresh reads and so sees every commit.
  if (!MaySeeOtherUsersChanges()) return;
  try {
    CatchUpWithOtherUsers();
  } catch (const Failure&) {
    // RecordCount and AbsolutePosition answer what is known; the next move or Refresh, which
    // read the database themselves, report the failure.
  }
}

bool SqliteDataSource::CatchUpWithOtherUsers() {
  const int64_t version = DataVersion();
  const unsigned file_version = FileVersion();
  if (version == data_version_) {
    file_version_ = file_version;
    return false;
  }
  // Positions may have moved: the index is read again at the next positional move.
  DropPositionIndex();
  // Everything is read before anything changes: a failure leaves the set as it was known.
  const int32_t count =
      static_cast<int32_t>(std::min<int64_t>(CountRows(), std::numeric_limits<int32_t>::max()));
  int32_t position = position_;
  bool gone = current_gone_;
  int32_t before = rows_before_;
  if (pending_ == Pending::kNewRow) {
    position = count + 1;
  } else if (current_key_.type != SQLITE_NULL) {
    bool present = false;
    const int64_t through = PositionOf(current_key_, &present);
    gone = !present;
    if (present) {
      position = static_cast<int32_t>(through);
      before = position - 1;
    } else {
      // The record shown is gone: it keeps its place between its neighbours.
      before = static_cast<int32_t>(through);
      position = count == 0 ? 0 : std::clamp<int32_t>(before + 1, 1, count);
    }
  }
  data_version_ = version;
  file_version_ = file_version;
  count_ = std::max(count, pending_ == Pending::kNewRow ? 0 : position);
  position_ = position;
  current_gone_ = gone;
  rows_before_ = before;
  return true;
}

bool SqliteDataSource::RowPassesWhere(const SqlValue& key) {
  if (where_->sql.empty()) return true;
  sqlite3_stmt* statement = Cached("SELECT 1 FROM " + quoted_table_ + " WHERE (" + where_->sql +
                                   ") AND " + key_sql_ + " = ?");
  ResetOnExit reset(statement);
  int index = 1;
  BindWhere(statement, &index);
  key.Bind(statement, index);
  const int rc = sqlite3_step(statement);
  if (rc != SQLITE_ROW && rc != SQLITE_DONE) {
    throw DatabaseFailure(db_, "read a record of \"" + table_ + "\"");
  }
  return rc == SQLITE_ROW;
}

void SqliteDataSource::RunCached(const char* sql, const char* what) {
  sqlite3_stmt* statement = Cached(sql);
  ResetOnExit reset(statement);
  if (sqlite3_step(statement) != SQLITE_DONE) {
    throw DatabaseFailure(db_, std::string(what) + " \"" + table_ + "\"");
  }
}

std::string SqliteDataSource::NextMovePlanForTest() {
  Statement plan(db_, "EXPLAIN QUERY PLAN " + MoveSql(MoveTo::kNext), "explain a move");
  std::string out;
  while (sqlite3_step(plan.get()) == SQLITE_ROW) {
    const unsigned char* detail = sqlite3_column_text(plan.get(), 3);
    if (!out.empty()) out += "; ";
    if (detail != nullptr) out += reinterpret_cast<const char*>(detail);
  }
  return out;
}

// --- Values -----------------------------------------------------------------------------------

Variant SqliteDataSource::FromSql(int index, const SqlValue& v) const {
  const Column& c = columns_[index];
  switch (v.type) {
    case SQLITE_NULL:
      return Variant::Null();
    case SQLITE_INTEGER:
      if (c.data_type == kDataTypeMoney || c.data_type == kDataTypeNumber) {
        return Variant(static_cast<double>(v.integer));
      }
      if (c.data_type == kDataTypeDate) return Variant(Date{static_cast<double>(v.integer)});
      if (v.integer >= std::numeric_limits<int32_t>::min() &&
          v.integer <= std::numeric_limits<int32_t>::max()) {
        return Variant(static_cast<int32_t>(v.integer));
      }
      return Variant(static_cast<double>(v.integer));
    case SQLITE_FLOAT:
      if (c.data_type == kDataTypeDate) return Variant(Date{v.real});
      return Variant(v.real);
    default: {
      if (c.data_type == kDataTypeDate) {
        Date d;
        if (ParseIsoDate(v.text, &d)) return Variant(d);
      }
      return Variant(v.text);
    }
  }
}

SqlValue SqliteDataSource::ToSql(int index, const Variant& value) const {
  SqlValue v;
  switch (value.Type()) {
    case VariantType::kEmpty:
    case VariantType::kNull:
      break;
    case VariantType::kInteger:
    case VariantType::kLong:
      v.type = SQLITE_INTEGER;
      v.integer = value.ToLong();
      break;
    case VariantType::kDouble: {
      const double d = value.ToDouble();
      if (columns_[index].data_type == kDataTypeWholeNumber && d == std::floor(d) &&
          std::fabs(d) < 9.0e15) {
        v.type = SQLITE_INTEGER;
        v.integer = static_cast<int64_t>(d);
      } else {
        v.type = SQLITE_FLOAT;
        v.real = d;
      }
      break;
    }
    case VariantType::kBoolean:
      v.type = SQLITE_INTEGER;
      v.integer = value.BoolValue() ? 1 : 0;
      break;
    case VariantType::kDate:
      v = SqlTextValue(StoredDateText(value.DateValue()));
      break;
    case VariantType::kString:
      v = SqlTextValue(value.StringValue());
      break;
  }
  return v;
}

// --- The set ----------------------------------------------------------------------------------

Variant SqliteDataSource::StoredValue(int index) const {
  return FromSql(index, current_row_[index]);
}

std::string SqliteDataSource::FieldRefusal(int index, bool new_record) const {
  if (new_record || columns_[index].update_trigger) return std::string();
  return columns_[index].name + " of a stored record cannot be changed: no INSTEAD OF UPDATE " +
         "trigger of the view \"" + table_ + "\" takes it.";
}

std::string SqliteDataSource::NewRecordRefusal() const {
  if (takes_inserts_) return std::string();
  return "The view \"" + table_ + "\" takes no new records (it has no INSTEAD OF INSERT trigger).";
}

std::string SqliteDataSource::DeletionRefusal() const {
  if (takes_deletes_) return std::string();
  return "The view \"" + table_ + "\" deletes no records (it has no INSTEAD OF DELETE trigger).";
}

int64_t SqliteDataSource::CurrentKey() const {
  if (!HasStoredCurrent()) return 0;
  const int64_t ticket = ++next_ticket_;
  RememberedKey& slot = remembered_keys_[ticket % std::size(remembered_keys_)];
  slot.ticket = ticket;
  slot.key = current_key_;
  slot.data_version = data_version_;
  return ticket;
}

const SqliteDataSource::RememberedKey* SqliteDataSource::Remembered(int64_t ticket) const {
  if (ticket <= 0) return nullptr;
  const RememberedKey& slot = remembered_keys_[ticket % std::size(remembered_keys_)];
  return slot.ticket == ticket ? &slot : nullptr;
}

void SqliteDataSource::ReadSetFromStart() {
  Where where;
  if (!BuildWhere(last_conditions_, &where)) {
    // A condition that no longer reads lets nothing through.
    where.sql = "0";
    where.params.clear();
  }
  ClearStatementCache();
  *where_ = std::move(where);
  Reread(false);
}

void SqliteDataSource::ReadSetAgain() { Reread(true); }

void SqliteDataSource::ForgetSet() {
  DropPositionIndex();
  ForgetCurrent();
  position_ = 0;
  count_ = 0;
}

bool SqliteDataSource::FindMoveTarget(MoveTo to, bool again) {
  // After MoveRecordBefore the row found before still holds unless a listener moved, stored or
  // closed meanwhile, or another user's changes were seen; only then is it looked for again.
  if (again && current_key_ == mark_key_ && position_ == mark_position_ &&
      status_ == mark_status_ && data_version_ == mark_version_ &&
      (to != MoveTo::kPosition || target_position_ == move_position_)) {
    return true;
  }
  bool found = SeekMoveTarget(to);
  // The read saw what other users stored until now: when that is anything new, the count and
  // the positions are read again, and the target with them.
  if (MaySeeOtherUsersChanges() && CatchUpWithOtherUsers()) found = SeekMoveTarget(to);
  mark_key_ = current_key_;
  mark_position_ = position_;
  mark_status_ = status_;
  mark_version_ = data_version_;
  return found;
}

bool SqliteDataSource::SeekMoveTarget(MoveTo to) {
  // Where a record deleted by another user stood, its neighbours are the records before and
  // after the gap.
  const int32_t before = current_gone_ ? rows_before_ : position_ - 1;
  const int32_t after = current_gone_ ? rows_before_ + 1 : position_ + 1;
  const bool has_current = current_key_.type != SQLITE_NULL;
  switch (to) {
    case MoveTo::kFirst:
      target_position_ = 1;
      return FetchRow(to, SqlValue(), 0, &target_key_, &target_row_);
    case MoveTo::kLast:
      target_position_ = count_;
      return FetchRow(to, SqlValue(), 0, &target_key_, &target_row_);
    case MoveTo::kNext:
      target_position_ = after;
      return has_current && FetchRow(to, current_key_, 0, &target_key_, &target_row_);
    case MoveTo::kPrevious:
      target_position_ = before;
      return has_current && FetchRow(to, current_key_, 0, &target_key_, &target_row_);
    case MoveTo::kPosition:
      target_position_ = move_position_;
      return FetchAtPosition(move_position_, &target_key_, &target_row_);
  }
  return false;
}

void SqliteDataSource::EnterMoveTarget() {
  MakeCurrent(std::move(target_key_), std::move(target_row_));
  position_ = std::max<int32_t>(1, target_position_);
  // Another user may have added rows since the count was read.
  if (count_ < position_) count_ = position_;
}

void SqliteDataSource::ReturnTo(int64_t ticket, int32_t position) {
  const RememberedKey* remembered = Remembered(ticket);
  std::vector<SqlValue> row;
  if (remembered != nullptr && count_ > 0 && ReadRowByKey(remembered->key, &row)) {
    const bool moved_on = remembered->data_version != data_version_;
    MakeCurrent(remembered->key, std::move(row));
    // Records that other users stored meanwhile move it: its place is read again.
    position_ =
        moved_on ? static_cast<int32_t>(PositionOf(current_key_)) : std::min(position, count_);
    if (position_ < 1) position_ = 1;
    if (count_ < position_) count_ = position_;
    return;
  }
  SqlValue key;
  if (count_ > 0 && FetchRow(MoveTo::kFirst, SqlValue(), 0, &key, &row)) {
    MakeCurrent(std::move(key), std::move(row));
    position_ = 1;
  } else {
    ForgetCurrent();
    position_ = 0;
  }
}

void SqliteDataSource::ReturnFromNewRecord(int64_t key, int32_t position) {
  ReturnTo(key, position);
}

void SqliteDataSource::ReturnFromQuery(int64_t key, int32_t position) { ReturnTo(key, position); }

}  // namespace tarnsheets
