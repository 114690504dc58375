// Storing: a change of a stored record (over a table, over a view), a new or copied record (over
// a table, over a view), and the deletion of a record, each in one transaction.
#include <sqlite3.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "datasources/sqlite/sqlite_data_source.h"
#include "datasources/sqlite/sqlite_util.h"

namespace tarnsheets {
namespace {

constexpr char kChangedBeforeStore[] =
    "The record was changed by another user since it was read. Nothing was stored: read it "
    "again (Refresh) and repeat your changes.";
constexpr char kDeletedBeforeStore[] =
    "The record was deleted by another user since it was read. Nothing was stored.";

}  // namespace

int32_t SqliteDataSource::StoreInTransaction(const std::function<bool(std::string*)>& write) {
  int32_t code = 0;
  std::string failure;
  try {
    RunCached("BEGIN IMMEDIATE", "begin storing the record in");
    if (!write(&failure)) {
      code = 1;
      ExecuteSql(db_, "ROLLBACK", "roll back");
    } else {
      RunCached("COMMIT", "store the record in");
    }
  } catch (const Failure& f) {
    if (sqlite3_get_autocommit(db_) == 0) sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
    code = sqlite3_extended_errcode(db_);
    if (code == SQLITE_OK) code = SQLITE_ERROR;
    failure = "The record could not be stored. " + f.Description();
  }
  if (code != 0) Say(failure);
  return code;
}

bool SqliteDataSource::RowStillAsRead(const char* changed, const char* deleted,
                                      std::string* failure) {
  std::vector<SqlValue> now;
  if (!ReadRowByKey(current_key_, &now)) {
    *failure = deleted;
    return false;
  }
  if (now != current_row_) {
    *failure = changed;
    return false;
  }
  return true;
}

// --- A change of a stored record
// ------------------------------------------------------------------

sqlite3_stmt* SqliteDataSource::UpdateStatement() {
  // The statement is cached by the set of changed columns.
  std::string cache_key = "update:";
  for (size_t i = 0; i < columns_.size(); ++i) cache_key += changed_[i] ? '1' : '0';
  auto cached = statements_.find(cache_key);
  if (cached != statements_.end()) return cached->second;
  std::string sql = "UPDATE " + quoted_table_ + " SET ";
  bool first = true;
  for (size_t i = 0; i < columns_.size(); ++i) {
    if (!changed_[i]) continue;
    sql += std::string(first ? "" : ", ") + QuoteIdentifier(columns_[i].name) + " = ?";
    first = false;
  }
  // The update of a table holds only while every column still holds what was read: a row that
  // another user changed or deleted meanwhile is not overwritten.
  sql += " WHERE " + key_sql_ + " = ?";
  if (!is_view_) {
    for (const Column& c : columns_) sql += " AND " + QuoteIdentifier(c.name) + " IS ?";
  }
  sqlite3_stmt* statement = Cached(sql);
  statements_.emplace(cache_key, statement);
  return statement;
}

void SqliteDataSource::RunUpdate() {
  sqlite3_stmt* statement = UpdateStatement();
  ResetOnExit reset(statement);
  int index = 1;
  for (size_t i = 0; i < columns_.size(); ++i) {
    if (changed_[i]) ToSql(static_cast<int>(i), pending_values_[i]).Bind(statement, index++);
  }
  // The row as read stays unchanged until the statement is reset: bound without copies.
  current_key_.BindUncopied(statement, index++);
  if (!is_view_) {
    for (const SqlValue& v : current_row_) v.BindUncopied(statement, index++);
  }
  if (sqlite3_step(statement) != SQLITE_DONE) {
    throw DatabaseFailure(db_, "store the record in \"" + table_ + "\"");
  }
}

bool SqliteDataSource::UpdateTableRow(std::string* failure) {
  RunUpdate();
  if (sqlite3_changes(db_) != 0) return true;
  std::vector<SqlValue> now;
  *failure = ReadRowByKey(current_key_, &now) ? kChangedBeforeStore : kDeletedBeforeStore;
  return false;
}

bool SqliteDataSource::UpdateViewRow(std::string* failure) {
  // SQLite does not count the changes of a view's trigger: the row is compared with what was
  // read before the update, in the same transaction.
  if (!RowStillAsRead(kChangedBeforeStore, kDeletedBeforeStore, failure)) return false;
  RunUpdate();
  return true;
}

int32_t SqliteDataSource::StoreChanges() {
  const bool any = std::find(changed_.begin(), changed_.end(), true) != changed_.end();
  const bool key_changed = key_field_ >= 0 && changed_[key_field_];
  SqlValue new_key;
  std::vector<SqlValue> new_row;
  bool read_back = false;
  const int32_t code = StoreInTransaction([&](std::string* failure) {
    if (any && !(is_view_ ? UpdateViewRow(failure) : UpdateTableRow(failure))) return false;
    new_key = key_changed ? ToSql(key_field_, pending_values_[key_field_]) : current_key_;
    // A view's trigger may store something else than was bound, and a new key moves the row:
    // what the database shows now is read.
    read_back = any && (is_view_ || key_changed) && ReadRowByKey(new_key, &new_row);
    return true;
  });
  if (code != 0) return code;
  // A new key, or a change that may take a record into or out of the set (the executed query's
  // WHERE, a view's own condition), moves positions.
  if (key_changed || is_view_ || !where_->sql.empty()) DropPositionIndex();
  if (!read_back) {
    // The row now holds what was read with the changed columns as bound. (A value that the
    // column's affinity converted still compares equal in the next update's check.)
    new_row = std::move(current_row_);
    for (size_t i = 0; i < columns_.size(); ++i) {
      if (changed_[i]) new_row[i] = ToSql(static_cast<int>(i), pending_values_[i]);
    }
  }
  MakeCurrent(std::move(new_key), std::move(new_row));
  if (key_changed) {
    position_ = std::max<int32_t>(1, static_cast<int32_t>(PositionOf(current_key_)));
    if (count_ < position_) count_ = position_;
  }
  return 0;
}

// --- A new or copied record
// -----------------------------------------------------------------------

std::vector<SqlValue> SqliteDataSource::InsertPendingRecord() {
  std::string names, marks;
  std::vector<SqlValue> values;
  std::vector<SqlValue> given(columns_.size());
  for (size_t i = 0; i < columns_.size(); ++i) {
    SqlValue v = ToSql(static_cast<int>(i), pending_values_[i]);
    // Empty columns take their defaults; a copied record gets a key of its own.
    if (v.type == SQLITE_NULL) continue;
    if (static_cast<int>(i) == key_field_ && status_ == dsCopyRecord) continue;
    given[i] = v;
    names += std::string(names.empty() ? "" : ", ") + QuoteIdentifier(columns_[i].name);
    marks += std::string(marks.empty() ? "" : ", ") + "?";
    values.push_back(std::move(v));
  }
  const std::string sql =
      names.empty() ? "INSERT INTO " + quoted_table_ + " DEFAULT VALUES"
                    : "INSERT INTO " + quoted_table_ + " (" + names + ") VALUES (" + marks + ")";
  sqlite3_stmt* statement = Cached(sql);
  ResetOnExit reset(statement);
  for (size_t i = 0; i < values.size(); ++i) values[i].Bind(statement, static_cast<int>(i) + 1);
  if (sqlite3_step(statement) != SQLITE_DONE) {
    throw DatabaseFailure(db_, "store the new record in \"" + table_ + "\"");
  }
  return given;
}

void SqliteDataSource::InsertTableRecord(SqlValue* key, std::vector<SqlValue>* row) {
  InsertPendingRecord();
  key->type = SQLITE_INTEGER;
  key->integer = sqlite3_last_insert_rowid(db_);
  if (!ReadRowByKey(*key, row)) {
    throw DatabaseFailure(db_, "read the stored record of \"" + table_ + "\"");
  }
}

bool SqliteDataSource::InsertViewRecord(SqlValue* key, std::vector<SqlValue>* row) {
  const std::vector<SqlValue> given = InsertPendingRecord();
  // A trigger's insert leaves no rowid behind: the record is looked for in the view.
  return FindInsertedViewRow(given, key, row);
}

bool SqliteDataSource::FindInsertedViewRow(const std::vector<SqlValue>& values, SqlValue* key,
                                           std::vector<SqlValue>* row) {
  // The key as the view gives it back (a text '7' may read as the number 7).
  if (key_field_ >= 0 && values[key_field_].type != SQLITE_NULL &&
      ReadRowByKey(values[key_field_], row, key)) {
    return true;
  }
  std::string sql = "SELECT " + column_list_ + " FROM " + quoted_table_;
  std::string condition;
  for (size_t i = 0; i < columns_.size(); ++i) {
    if (values[i].type == SQLITE_NULL) continue;
    condition +=
        std::string(condition.empty() ? "" : " AND ") + QuoteIdentifier(columns_[i].name) + " IS ?";
  }
  if (!condition.empty()) sql += " WHERE " + condition;
  sql += " ORDER BY " + key_sql_ + " DESC LIMIT 1";
  Statement statement(db_, sql, "find the stored record in \"" + table_ + "\"");
  int index = 1;
  for (const SqlValue& v : values) {
    if (v.type != SQLITE_NULL) v.Bind(statement.get(), index++);
  }
  return StepRow(statement.get(), key, row);
}

int32_t SqliteDataSource::StoreNewRecord() {
  SqlValue new_key;
  std::vector<SqlValue> new_row;
  bool found = true;
  const int32_t code = StoreInTransaction([&](std::string*) {
    if (is_view_) {
      found = InsertViewRecord(&new_key, &new_row);
    } else {
      InsertTableRecord(&new_key, &new_row);
    }
    return true;
  });
  if (code != 0) return code;
  DropPositionIndex();
  if (!found) {
    // The view's trigger stored a record that the view does not show (or that cannot be told
    // from others): the set is read again and the last record is current.
    count_ =
        static_cast<int32_t>(std::min<int64_t>(CountRows(), std::numeric_limits<int32_t>::max()));
    SqlValue key;
    std::vector<SqlValue> row;
    if (FetchRow(MoveTo::kLast, SqlValue(), 0, &key, &row)) {
      MakeCurrent(std::move(key), std::move(row));
      position_ = std::max<int32_t>(1, count_);
    } else {
      ForgetCurrent();
      position_ = 0;
    }
    return 0;
  }
  // The stored record stands where its key puts it; a new key is the highest as a rule.
  MakeCurrent(std::move(new_key), std::move(new_row));
  ++count_;
  position_ = IsLastRow(current_key_) ? count_ : static_cast<int32_t>(PositionOf(current_key_));
  if (position_ < 1) position_ = 1;
  if (count_ < position_) count_ = position_;
  return 0;
}

// --- Deletion
// -------------------------------------------------------------------------------------

bool SqliteDataSource::DeleteStoredCurrent() {
  static constexpr char kChanged[] =
      "The record was changed by another user since it was read. It was not deleted: read it "
      "again (Refresh) first.";
  static constexpr char kDeleted[] = "The record was already deleted by another user.";
  std::string failure;
  try {
    ExecuteSql(db_, "BEGIN IMMEDIATE", "begin deleting the record in \"" + table_ + "\"");
    // Over a view the trigger's deletion is not counted by SQLite: the row is compared with what
    // was read, in the same transaction, before it is deleted.
    if (!is_view_ || RowStillAsRead(kChanged, kDeleted, &failure)) {
      std::string sql = "DELETE FROM " + quoted_table_ + " WHERE " + key_sql_ + " = ?";
      if (!is_view_) {
        for (const Column& c : columns_) sql += " AND " + QuoteIdentifier(c.name) + " IS ?";
      }
      sqlite3_stmt* statement = Cached(sql);
      ResetOnExit reset(statement);
      int index = 1;
      current_key_.BindUncopied(statement, index++);
      if (!is_view_) {
        for (const SqlValue& v : current_row_) v.BindUncopied(statement, index++);
      }
      if (sqlite3_step(statement) != SQLITE_DONE) {
        throw DatabaseFailure(db_, "delete the record in \"" + table_ + "\"");
      }
      if (!is_view_ && sqlite3_changes(db_) == 0) {
        std::vector<SqlValue> now;
        failure = ReadRowByKey(current_key_, &now) ? kChanged : kDeleted;
      }
    }
    if (!failure.empty()) {
      ExecuteSql(db_, "ROLLBACK", "roll back");
    } else {
      ExecuteSql(db_, "COMMIT", "delete the record in \"" + table_ + "\"");
    }
  } catch (const Failure& f) {
    if (sqlite3_get_autocommit(db_) == 0) sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
    failure = "The record could not be deleted. " + f.Description();
  }
  if (!failure.empty()) {
    Say(failure);
    return false;
  }

  DropPositionIndex();
  const SqlValue deleted = current_key_;
  --count_;
  SqlValue key;
  std::vector<SqlValue> row;
  if (FetchRow(MoveTo::kNext, deleted, 0, &key, &row)) {
    MakeCurrent(std::move(key), std::move(row));
    if (position_ > count_) position_ = count_;
  } else if (FetchRow(MoveTo::kPrevious, deleted, 0, &key, &row)) {
    MakeCurrent(std::move(key), std::move(row));
    position_ = std::max<int32_t>(1, count_);
  } else {
    ForgetCurrent();
    position_ = 0;
    count_ = 0;
  }
  return true;
}

}  // namespace tarnsheets
