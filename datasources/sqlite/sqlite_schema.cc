#include "datasources/sqlite/sqlite_schema.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "datasources/sqlite/sqlite_data_source.h"
#include "datasources/sqlite/sqlite_util.h"

namespace tarnsheets {
namespace {

std::string Upper(std::string_view s) {
  std::string out(s);
  for (char& c : out) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
  }
  return out;
}

std::string SqlLiteral(std::string_view text) {
  std::string out = "'";
  for (char c : text) {
    if (c == '\'') out += '\'';
    out += c;
  }
  out += '\'';
  return out;
}

std::string TriggerName(const std::string& table, const char* what) {
  return QuoteIdentifier(std::string("tarn_count_") + what + "_" + table);
}

}  // namespace

// --- Tables of ours -----------------------------------------------------------------------------

bool HasTable(sqlite3* db, const char* name) {
  Statement s(db, "SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name = ?1",
              "read the schema");
  sqlite3_bind_text(s.get(), 1, name, -1, SQLITE_STATIC);
  return sqlite3_step(s.get()) == SQLITE_ROW;
}

bool HasRowCounter(sqlite3* db, const std::string& table) {
  Statement s(db,
              "SELECT (SELECT count(*) FROM sqlite_schema WHERE type = 'trigger' AND name IN (?1, "
              "?2)) = 2 AND EXISTS (SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name = "
              "'tarn_row_count')",
              "read the schema");
  const std::string insert = "tarn_count_insert_" + table;
  const std::string remove = "tarn_count_delete_" + table;
  sqlite3_bind_text(s.get(), 1, insert.c_str(), -1, SQLITE_TRANSIENT);
  sqlite3_bind_text(s.get(), 2, remove.c_str(), -1, SQLITE_TRANSIENT);
  if (sqlite3_step(s.get()) != SQLITE_ROW) throw DatabaseFailure(db, "read the schema");
  if (sqlite3_column_int(s.get(), 0) == 0) return false;
  Statement row(db, "SELECT 1 FROM tarn_row_count WHERE table_name = ?1", "read the row count");
  sqlite3_bind_text(row.get(), 1, table.c_str(), -1, SQLITE_TRANSIENT);
  return sqlite3_step(row.get()) == SQLITE_ROW;
}

void InstallRowCounter(sqlite3* db, const std::string& table) {
  const std::string t = QuoteIdentifier(table);
  const std::string name = SqlLiteral(table);
  ExecuteSql(db, "BEGIN IMMEDIATE", "begin installing the row counter of " + table);
  try {
    ExecuteSql(db,
               "CREATE TABLE IF NOT EXISTS tarn_row_count (table_name TEXT PRIMARY KEY, "
               "row_count INTEGER NOT NULL);"
               "DROP TRIGGER IF EXISTS " +
                   TriggerName(table, "insert") + ";DROP TRIGGER IF EXISTS " +
                   TriggerName(table, "delete") + ";CREATE TRIGGER " +
                   TriggerName(table, "insert") + " AFTER INSERT ON " + t +
                   " BEGIN UPDATE tarn_row_count SET row_count = row_count + 1 WHERE table_name "
                   "= " +
                   name + "; END;CREATE TRIGGER " + TriggerName(table, "delete") +
                   " AFTER DELETE ON " + t +
                   " BEGIN UPDATE tarn_row_count SET row_count = row_count - 1 WHERE table_name "
                   "= " +
                   name + "; END;INSERT OR REPLACE INTO tarn_row_count VALUES (" + name +
                   ", (SELECT count(*) FROM " + t + "));COMMIT",
               "install the row counter of " + table);
  } catch (...) {
    if (sqlite3_get_autocommit(db) == 0) sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
    throw;
  }
}

// --- The source's columns, key, triggers and symbols ---------------------------------------------

void SqliteDataSource::ReadSchema() {
  const std::string where = "\"" + table_ + "\" in \"" + path_ + "\"";
  {
    Statement kind(db_, "SELECT type FROM sqlite_schema WHERE name = ?1", "read the schema");
    sqlite3_bind_text(kind.get(), 1, table_.c_str(), -1, SQLITE_TRANSIENT);
    const int rc = sqlite3_step(kind.get());
    if (rc == SQLITE_DONE) {
      throw Failure(kErrDatabase, "There is no table or view " + where + ".");
    }
    if (rc != SQLITE_ROW) throw DatabaseFailure(db_, "read the schema of " + where);
    const std::string type = reinterpret_cast<const char*>(sqlite3_column_text(kind.get(), 0));
    if (type != "table" && type != "view") {
      throw Failure(kErrDatabase, where + " is " + (type == "index" ? "an " : "a ") + type +
                                      ", not a table or a view: a record set needs rows.");
    }
    is_view_ = type == "view";
  }
  Statement info(db_, "SELECT name, type, pk FROM pragma_table_info(?1) ORDER BY cid",
                 "read the columns of " + where);
  sqlite3_bind_text(info.get(), 1, table_.c_str(), -1, SQLITE_TRANSIENT);
  int primary_keys = 0;
  int rc;
  while ((rc = sqlite3_step(info.get())) == SQLITE_ROW) {
    Column c;
    c.name = reinterpret_cast<const char*>(sqlite3_column_text(info.get(), 0));
    const unsigned char* type = sqlite3_column_text(info.get(), 1);
    c.declared_type = type != nullptr ? reinterpret_cast<const char*>(type) : "";
    const std::string t = Upper(c.declared_type);
    if (sqlite3_column_int(info.get(), 2) > 0) {
      ++primary_keys;
      c.rowid_alias = t == "INTEGER";
    }
    const auto has = [&t](const char* part) { return t.find(part) != std::string::npos; };
    if (has("MONEY") || has("CURRENCY")) {
      c.data_type = kDataTypeMoney;
    } else if (has("DATETIME") || has("TIMESTAMP")) {
      c.data_type = kDataTypeDate;
      c.date_kind = kDateKindDateTime;
    } else if (has("DATE")) {
      c.data_type = kDataTypeDate;
      c.date_kind = kDateKindDate;
    } else if (has("TIME")) {
      c.data_type = kDataTypeDate;
      c.date_kind = kDateKindTime;
    } else if (has("BOOL")) {
      c.data_type = kDataTypeYesNo;
    } else if (has("INT")) {
      c.data_type = kDataTypeWholeNumber;
    } else if (has("REAL") || has("FLOA") || has("DOUB") || has("NUM") || has("DEC")) {
      c.data_type = kDataTypeNumber;
      c.number_kind = kNumberKindFixed2;
    }
    columns_.push_back(std::move(c));
  }
  if (rc != SQLITE_DONE) throw DatabaseFailure(db_, "read the columns of " + where);
  if (columns_.empty()) throw Failure(kErrDatabase, where + " has no columns.");
  if (primary_keys != 1) {
    for (Column& c : columns_) c.rowid_alias = false;
  }
  for (size_t i = 0; i < columns_.size(); ++i) {
    columns_[i].updatable = !columns_[i].rowid_alias;
    if (columns_[i].rowid_alias) key_field_ = static_cast<int>(i);
  }

  std::unordered_map<std::string, int> index_by_name;
  for (size_t i = 0; i < columns_.size(); ++i) {
    index_by_name.emplace(columns_[i].name, static_cast<int>(i));
  }
  if (is_view_) {
    ChooseViewKey(index_by_name);
    ProbeViewTriggers();
  }

  // The metadata table, when the database has one.
  if (HasTable(db_, "tarn_field_meta")) {
    Statement meta(db_,
                   "SELECT column_name, data_type, date_kind, number_kind, updatable, "
                   "reference_name FROM tarn_field_meta WHERE table_name = ?1",
                   "read tarn_field_meta");
    sqlite3_bind_text(meta.get(), 1, table_.c_str(), -1, SQLITE_TRANSIENT);
    while ((rc = sqlite3_step(meta.get())) == SQLITE_ROW) {
      const unsigned char* name_text = sqlite3_column_text(meta.get(), 0);
      const std::string name = name_text != nullptr ? reinterpret_cast<const char*>(name_text) : "";
      const std::string at = "tarn_field_meta row of \"" + table_ + "\".\"" + name + "\"";
      auto it = index_by_name.find(name);
      if (it == index_by_name.end()) {
        throw Failure(kErrDatabase, at + ": the table has no such column");
      }
      Column& c = columns_[it->second];
      const auto number = [&](int col, int32_t low, int32_t high, int32_t* out, const char* what) {
        if (sqlite3_column_type(meta.get(), col) == SQLITE_NULL) return;
        const int64_t v = sqlite3_column_int64(meta.get(), col);
        if (v < low || v > high) {
          throw Failure(kErrDatabase, at + ": " + what + " " + std::to_string(v) +
                                          " is not one of " + std::to_string(low) + " to " +
                                          std::to_string(high));
        }
        *out = static_cast<int32_t>(v);
      };
      number(1, kDataTypeText, kDataTypeWholeNumber, &c.data_type, "data_type");
      number(2, kDateKindDateTime, kDateKindMinute, &c.date_kind, "date_kind");
      number(3, kNumberKindWhole, kNumberKindPercent, &c.number_kind, "number_kind");
      if (sqlite3_column_type(meta.get(), 4) != SQLITE_NULL) {
        // A view's column stays unwritable without a trigger that takes it.
        c.updatable = sqlite3_column_int64(meta.get(), 4) != 0 && (!is_view_ || c.updatable);
      }
      const unsigned char* reference = sqlite3_column_text(meta.get(), 5);
      if (reference != nullptr) c.reference = reinterpret_cast<const char*>(reference);
    }
    if (rc != SQLITE_DONE) throw DatabaseFailure(db_, "read tarn_field_meta");
  }

  column_list_ = key_sql_;
  std::vector<RecordFieldDefinition> definitions;
  for (const Column& c : columns_) {
    column_list_ += ", " + QuoteIdentifier(c.name);
    if (!c.reference.empty() && index_by_name.count(c.reference) == 0) {
      throw Failure(kErrDatabase, "Column \"" + c.name + "\" of " + where + ": the reference \"" +
                                      c.reference + "\" names no column");
    }
    definitions.push_back(RecordFieldDefinition{c.name, c.data_type, c.date_kind, c.number_kind,
                                                c.updatable, c.reference});
  }
  DefineFields(std::move(definitions));
}

void SqliteDataSource::ChooseViewKey(const std::unordered_map<std::string, int>& index_by_name) {
  const std::string where = "view \"" + table_ + "\" in \"" + path_ + "\"";
  std::string name = columns_.front().name;
  if (HasTable(db_, "tarn_source_key")) {
    Statement key(db_, "SELECT column_name FROM tarn_source_key WHERE table_name = ?1",
                  "read tarn_source_key");
    sqlite3_bind_text(key.get(), 1, table_.c_str(), -1, SQLITE_TRANSIENT);
    const int rc = sqlite3_step(key.get());
    if (rc == SQLITE_ROW) {
      const unsigned char* text = sqlite3_column_text(key.get(), 0);
      name = text != nullptr ? reinterpret_cast<const char*>(text) : "";
      if (index_by_name.count(name) == 0) {
        throw Failure(kErrDatabase, "tarn_source_key row of \"" + table_ + "\": the " + where +
                                        " has no column \"" + name + "\"");
      }
    } else if (rc != SQLITE_DONE) {
      throw DatabaseFailure(db_, "read tarn_source_key");
    }
  }
  key_field_ = index_by_name.at(name);
  key_name_ = name;
  key_sql_ = QuoteIdentifier(name);
}

void SqliteDataSource::ProbeViewTriggers() {
  // SQLite prepares a write of a view only when an INSTEAD OF trigger takes it ("cannot modify
  // ... because it is a view" otherwise); preparing runs nothing.
  const auto prepares = [this](const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    const int rc = sqlite3_prepare_v2(db_, sql.c_str(), -1, &statement, nullptr);
    sqlite3_finalize(statement);
    return rc == SQLITE_OK;
  };
  takes_inserts_ = prepares("INSERT INTO " + quoted_table_ + " DEFAULT VALUES");
  takes_deletes_ = prepares("DELETE FROM " + quoted_table_ + " WHERE 0");
  bool takes_updates = false;
  for (Column& c : columns_) {
    c.update_trigger =
        prepares("UPDATE " + quoted_table_ + " SET " + QuoteIdentifier(c.name) + " = NULL WHERE 0");
    takes_updates = takes_updates || c.update_trigger;
    // A column that only the INSERT trigger takes is written in new records only.
    c.updatable = c.update_trigger || takes_inserts_;
  }
  // A view without any such trigger is read-only as a whole.
  if (!takes_inserts_ && !takes_deletes_ && !takes_updates) read_only_ = true;
}

void SqliteDataSource::ReadSymbols() {
  Statement has(db_,
                "SELECT (SELECT count(*) FROM pragma_table_info(?1) WHERE name IN (?2, ?3)) = 2",
                "read the currency table");
  sqlite3_bind_text(has.get(), 1, options_.currency_table.c_str(), -1, SQLITE_TRANSIENT);
  sqlite3_bind_text(has.get(), 2, options_.currency_code_column.c_str(), -1, SQLITE_TRANSIENT);
  sqlite3_bind_text(has.get(), 3, options_.currency_symbol_column.c_str(), -1, SQLITE_TRANSIENT);
  if (sqlite3_step(has.get()) != SQLITE_ROW || sqlite3_column_int(has.get(), 0) == 0) return;
  Statement s(db_,
              "SELECT " + QuoteIdentifier(options_.currency_code_column) + ", " +
                  QuoteIdentifier(options_.currency_symbol_column) + " FROM " +
                  QuoteIdentifier(options_.currency_table),
              "read the currency table");
  int rc;
  while ((rc = sqlite3_step(s.get())) == SQLITE_ROW) {
    const unsigned char* code = sqlite3_column_text(s.get(), 0);
    const unsigned char* symbol = sqlite3_column_text(s.get(), 1);
    if (code == nullptr) continue;
    symbols_[reinterpret_cast<const char*>(code)] =
        symbol != nullptr ? reinterpret_cast<const char*>(symbol) : "";
  }
  if (rc != SQLITE_DONE) throw DatabaseFailure(db_, "read the currency table");
}

void SqliteDataSource::PrepareCounter() {
  // A view has no triggers of ours: its records are counted.
  if (is_view_) return;
  has_counter_ = HasRowCounter(db_, table_);
  if (has_counter_ || read_only_ || !options_.install_row_counter) return;
  try {
    InstallRowCounter(db_, table_);
    has_counter_ = true;
  } catch (const Failure&) {
    // Another connection holds the write lock, or the file refuses writes: count instead.
    has_counter_ = false;
  }
}

}  // namespace tarnsheets
