#include "datasources/sqlite/sqlite_data_source.h"

#include <sqlite3.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

#include "datasources/sqlite/sqlite_util.h"
#include "platform/utf8.h"

namespace tarnsheets {
namespace {

bool IsTextType(int32_t t) { return t == kDataTypeText || t == kDataTypePlainText; }

std::string Upper(std::string_view s) {
  std::string out(s);
  for (char& c : out) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
  }
  return out;
}

std::string_view Trim(std::string_view s) {
  const size_t a = s.find_first_not_of(" \t");
  if (a == std::string_view::npos) return {};
  return s.substr(a, s.find_last_not_of(" \t") - a + 1);
}

// tarn_fold(x): the case fold of our comparisons as UTF-8 (for a host's own SQL), by utf8::Fold:
// bytes that are no valid UTF-8 stand as they are. ASCII text without capitals is handed back as
// it is.
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

// tarn_text_matches(x, condition): whether x matches the text condition as typed (a prefix
// without regard to case, '*' and '?' wildcards), by QueryCondition's own rules. The parsed
// condition is kept by SQLite for the whole statement. NULL matches nothing.
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

SqlValue TextValue(std::string text) {
  SqlValue v;
  v.type = SQLITE_TEXT;
  v.text = std::move(text);
  return v;
}

SqlValue RealValue(double d) {
  SqlValue v;
  v.type = SQLITE_FLOAT;
  v.real = d;
  return v;
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

// A query operand: [lo, hi) for a date without time, exact otherwise.
struct Operand {
  SqlValue lo, hi;
  bool exact = true;
};

bool ReadOperand(std::string_view text, int32_t data_type, int32_t number_kind,
                 const std::vector<std::string>& symbols, Operand* out) {
  text = Trim(text);
  if (data_type == kDataTypeDate) {
    std::string s(text);
    const size_t blank = s.find_first_of(" T");
    for (size_t i = 0; i < s.size() && i < blank; ++i) {
      if (s[i] == '/') s[i] = '-';
    }
    Date d;
    if (!ParseIsoDate(s, &d)) return false;
    out->exact = s.find(':') != std::string::npos;
    out->lo = TextValue(StoredDateText(d));
    out->hi = out->exact ? out->lo : TextValue(StoredDateText(Date{d.serial + 1}));
    return true;
  }
  double v = 0;
  std::string reason;
  const bool percent = data_type == kDataTypeNumber && number_kind == kNumberKindPercent;
  if (!ReadAmount(text, data_type == kDataTypeMoney ? symbols : std::vector<std::string>{}, percent,
                  &v, &reason)) {
    return false;
  }
  out->lo = out->hi = RealValue(v);
  out->exact = true;
  return true;
}

}  // namespace

// --- Row counter ------------------------------------------------------------------------------

namespace {

// True when the database of `db` has a table called `name` (the optional metadata tables).
bool HasTable(sqlite3* db, const char* name) {
  Statement s(db, "SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name = ?1",
              "read the schema");
  sqlite3_bind_text(s.get(), 1, name, -1, SQLITE_STATIC);
  return sqlite3_step(s.get()) == SQLITE_ROW;
}

std::string TriggerName(const std::string& table, const char* what) {
  return QuoteIdentifier(std::string("tarn_count_") + what + "_" + table);
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

}  // namespace

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

size_t SqliteDataSource::PositionIndexBytesForTest() const {
  size_t bytes =
      index_integers_.capacity() * sizeof(int64_t) + index_values_.capacity() * sizeof(SqlValue);
  for (const SqlValue& v : index_values_) {
    if (v.text.capacity() > sizeof(std::string)) bytes += v.text.capacity();
  }
  return bytes;
}

void SqliteDataSource::DropPositionIndex() {
  index_integers_ = {};
  index_values_ = {};
}

void SqliteDataSource::ReadPositionIndex() {
  DropPositionIndex();
  // The keys alone, in key order, through the key's index.
  sqlite3_stmt* statement = Cached("SELECT " + key_sql_ + " FROM " + quoted_table_ +
                                   (where_->sql.empty() ? std::string() : " WHERE " + where_->sql) +
                                   " ORDER BY " + key_sql_);
  ResetOnExit reset(statement);
  int index = 1;
  BindWhere(statement, &index);
  std::vector<int64_t> integers;
  std::vector<SqlValue> values;
  bool all_integers = true;
  int64_t row = 0;
  int rc;
  while ((rc = sqlite3_step(statement)) == SQLITE_ROW) {
    if (row++ % kPositionIndexStep != 0) continue;
    if (all_integers && sqlite3_column_type(statement, 0) == SQLITE_INTEGER) {
      integers.push_back(sqlite3_column_int64(statement, 0));
      continue;
    }
    if (all_integers) {
      // A key that is no integer: every key is kept as it is stored.
      all_integers = false;
      values.reserve(integers.size() + 1);
      for (int64_t k : integers) {
        SqlValue v;
        v.type = SQLITE_INTEGER;
        v.integer = k;
        values.push_back(std::move(v));
      }
      integers = {};
    }
    values.push_back(SqlValue::FromColumn(statement, 0));
  }
  if (rc != SQLITE_DONE) throw DatabaseFailure(db_, "read the positions of \"" + table_ + "\"");
  integers.shrink_to_fit();
  values.shrink_to_fit();
  index_integers_ = std::move(integers);
  index_values_ = std::move(values);
}

bool SqliteDataSource::FetchAtPosition(int64_t position, SqlValue* key,
                                       std::vector<SqlValue>* row) {
  if (position < 1) return false;
  if (index_integers_.empty() && index_values_.empty()) ReadPositionIndex();
  const size_t step = static_cast<size_t>((position - 1) / kPositionIndexStep);
  if (step >= index_integers_.size() + index_values_.size()) return false;
  SqlValue from;
  if (!index_integers_.empty()) {
    from.type = SQLITE_INTEGER;
    from.integer = index_integers_[step];
  } else {
    from = index_values_[step];
  }
  sqlite3_stmt*& statement = move_statements_[static_cast<int>(MoveTo::kPosition)];
  if (statement == nullptr) statement = Cached(MoveSql(MoveTo::kPosition));
  ResetOnExit reset(statement);
  int index = 1;
  BindWhere(statement, &index);
  from.Bind(statement, index++);
  sqlite3_bind_int64(statement, index, (position - 1) % kPositionIndexStep);
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
      v = TextValue(StoredDateText(value.DateValue()));
      break;
    case VariantType::kString:
      v = TextValue(value.StringValue());
      break;
  }
  return v;
}

// --- Query by example -------------------------------------------------------------------------

bool SqliteDataSource::BuildWhere(const std::vector<std::string>& conditions, Where* where) {
  where->sql.clear();
  where->params.clear();
  for (size_t i = 0; i < columns_.size(); ++i) {
    const std::string_view text = Trim(conditions[i]);
    if (text.empty()) continue;
    const Column& c = columns_[i];
    const std::string col = QuoteIdentifier(c.name);
    std::string clause;
    if (IsTextType(c.data_type)) {
      // A prefix without regard to case; '*' and '?' are the wildcards, everything else (SQL's
      // own wildcards and brackets too) stands for itself.
      clause = "tarn_text_matches(" + col + ", ?)";
      where->params.push_back(TextValue(std::string(text)));
    } else if (c.data_type == kDataTypeYesNo) {
      if (text == "1") {
        clause = col + " IS NOT NULL AND " + col + " <> 0";
      } else if (text == "0") {
        clause = col + " IS NULL OR " + col + " = 0";
      } else {
        return false;
      }
    } else if (c.data_type == kDataTypeDate || c.data_type == kDataTypeMoney ||
               c.data_type == kDataTypeNumber || c.data_type == kDataTypeWholeNumber) {
      const std::vector<std::string> symbols = AllSymbols();
      Operand a, b;
      const size_t range = text.find("..");
      if (range != std::string_view::npos) {
        if (!ReadOperand(text.substr(0, range), c.data_type, c.number_kind, symbols, &a) ||
            !ReadOperand(text.substr(range + 2), c.data_type, c.number_kind, symbols, &b)) {
          return false;
        }
        clause = col + " >= ? AND " + col + (b.exact ? " <= ?" : " < ?");
        where->params.push_back(a.lo);
        where->params.push_back(b.exact ? b.lo : b.hi);
      } else {
        static const char* const kOps[] = {"<=", ">=", "<>", "<", ">", "="};
        std::string op = "=";
        std::string_view operand = text;
        for (const char* o : kOps) {
          const std::string_view token(o);
          if (text.substr(0, token.size()) == token) {
            op = o;
            operand = text.substr(token.size());
            break;
          }
        }
        if (!ReadOperand(operand, c.data_type, c.number_kind, symbols, &a)) return false;
        if (a.exact) {
          clause = col + " " + op + " ?";
          where->params.push_back(a.lo);
        } else if (op == "=") {
          clause = col + " >= ? AND " + col + " < ?";
          where->params.push_back(a.lo);
          where->params.push_back(a.hi);
        } else if (op == "<>") {
          clause = "(" + col + " < ? OR " + col + " >= ?)";
          where->params.push_back(a.lo);
          where->params.push_back(a.hi);
        } else if (op == "<" || op == ">=") {
          clause = col + " " + op + " ?";
          where->params.push_back(a.lo);
        } else {  // "<=" and ">" take the whole day
          clause = col + (op == "<=" ? " < ?" : " >= ?");
          where->params.push_back(a.hi);
        }
        // Texts in a number column compare with no number, as in the memory source.
        if (c.data_type != kDataTypeDate) clause += " AND typeof(" + col + ") <> 'text'";
      }
    } else {
      return false;
    }
    if (!where->sql.empty()) where->sql += " AND ";
    where->sql += "(" + clause + ")";
  }
  return true;
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

// --- Storing ----------------------------------------------------------------------------------

int32_t SqliteDataSource::StoreChanges() { return Store(); }
int32_t SqliteDataSource::StoreNewRecord() { return Store(); }

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

int32_t SqliteDataSource::Store() {
  static constexpr char kChanged[] =
      "The record was changed by another user since it was read. Nothing was stored: read it "
      "again (Refresh) and repeat your changes.";
  static constexpr char kDeleted[] =
      "The record was deleted by another user since it was read. Nothing was stored.";
  int32_t code = 0;
  std::string failure;
  SqlValue new_key;
  std::vector<SqlValue> new_row;
  bool new_found = true;
  bool key_changed = false;
  bool patch_read_row = false;
  try {
    RunCached("BEGIN IMMEDIATE", "begin storing the record in");
    if (pending_ == Pending::kChanges) {
      // The statement is cached by the set of changed columns.
      std::string cache_key = "update:";
      bool any = false;
      for (size_t i = 0; i < columns_.size(); ++i) {
        cache_key += changed_[i] ? '1' : '0';
        any = any || changed_[i];
      }
      // Over a view the trigger's changes are not counted by SQLite: the row is compared with
      // what was read before the update, in the same transaction.
      if (any && is_view_ && !RowStillAsRead(kChanged, kDeleted, &failure)) code = 1;
      if (any && code == 0) {
        sqlite3_stmt* statement = nullptr;
        auto cached = statements_.find(cache_key);
        if (cached != statements_.end()) {
          statement = cached->second;
        } else {
          std::string sql = "UPDATE " + quoted_table_ + " SET ";
          bool first = true;
          for (size_t i = 0; i < columns_.size(); ++i) {
            if (!changed_[i]) continue;
            sql += std::string(first ? "" : ", ") + QuoteIdentifier(columns_[i].name) + " = ?";
            first = false;
          }
          // The update of a table holds only while every column still holds what was read: a
          // row that another user changed or deleted meanwhile is not overwritten.
          sql += " WHERE " + key_sql_ + " = ?";
          if (!is_view_) {
            for (const Column& c : columns_) sql += " AND " + QuoteIdentifier(c.name) + " IS ?";
          }
          statement = Cached(sql);
          statements_.emplace(cache_key, statement);
        }
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
        if (!is_view_ && sqlite3_changes(db_) == 0) {
          std::vector<SqlValue> now;
          code = 1;
          failure = ReadRowByKey(current_key_, &now) ? kChanged : kDeleted;
        }
      }
      if (code == 0) {
        // The row now holds what was read with the changed columns as bound. (A value that the
        // column's affinity converted still compares equal in the next update's check.)
        new_key = current_key_;
        key_changed = key_field_ >= 0 && changed_[key_field_];
        if (key_changed) new_key = ToSql(key_field_, pending_values_[key_field_]);
        // A view's trigger may store something else than was bound: read what it shows now.
        // Otherwise the row as read takes the changed values once the store holds.
        std::vector<SqlValue> stored;
        if (any && (is_view_ || key_changed) && ReadRowByKey(new_key, &stored)) {
          new_row = std::move(stored);
        } else {
          patch_read_row = true;
        }
      }
    } else {
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
      const std::string sql = names.empty() ? "INSERT INTO " + quoted_table_ + " DEFAULT VALUES"
                                            : "INSERT INTO " + quoted_table_ + " (" + names +
                                                  ") VALUES (" + marks + ")";
      sqlite3_stmt* statement = Cached(sql);
      ResetOnExit reset(statement);
      for (size_t i = 0; i < values.size(); ++i) values[i].Bind(statement, static_cast<int>(i) + 1);
      if (sqlite3_step(statement) != SQLITE_DONE) {
        throw DatabaseFailure(db_, "store the new record in \"" + table_ + "\"");
      }
      if (is_view_) {
        // A trigger's insert leaves no rowid behind: the record is looked for in the view.
        new_found = FindInsertedViewRow(given, &new_key, &new_row);
      } else {
        new_key.type = SQLITE_INTEGER;
        new_key.integer = sqlite3_last_insert_rowid(db_);
        if (!ReadRowByKey(new_key, &new_row)) {
          throw DatabaseFailure(db_, "read the stored record of \"" + table_ + "\"");
        }
      }
    }
    if (code != 0) {
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
  if (code != 0) {
    Say(failure);
    return code;
  }
  // A new record, a new key, or a change that may take a record into or out of the set (the
  // executed query's WHERE, a view's own condition) moves positions.
  if (pending_ != Pending::kChanges || key_changed || is_view_ || !where_->sql.empty()) {
    DropPositionIndex();
  }

  if (pending_ == Pending::kChanges) {
    if (patch_read_row) {
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
  } else if (!new_found) {
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
  } else {
    // The stored record stands where its key puts it; a new key is the highest as a rule.
    MakeCurrent(std::move(new_key), std::move(new_row));
    ++count_;
    position_ = IsLastRow(current_key_) ? count_ : static_cast<int32_t>(PositionOf(current_key_));
    if (position_ < 1) position_ = 1;
    if (count_ < position_) count_ = position_;
  }
  return 0;
}

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
