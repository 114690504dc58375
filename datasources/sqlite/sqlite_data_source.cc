#include "datasources/sqlite/sqlite_data_source.h"

#include <sqlite3.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

#include "datasources/sqlite/sqlite_util.h"

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

void AppendUtf8(char32_t c, std::string* out) {
  if (c < 0x80) {
    *out += static_cast<char>(c);
  } else if (c < 0x800) {
    *out += static_cast<char>(0xC0 | (c >> 6));
    *out += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    *out += static_cast<char>(0xE0 | (c >> 12));
    *out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    *out += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    *out += static_cast<char>(0xF0 | (c >> 18));
    *out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    *out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    *out += static_cast<char>(0x80 | (c & 0x3F));
  }
}

// The folded text as UTF-8. Code points below 0x100 that were invalid bytes come back as the same
// byte, so that a text and its fold stay comparable byte for byte.
std::string FoldedUtf8(std::string_view text) {
  std::string out;
  for (char32_t c : FoldCase(text)) AppendUtf8(c, &out);
  return out;
}

// tarn_fold(x): the case fold of our comparisons, for text conditions in SQL.
void FoldFunction(sqlite3_context* context, int, sqlite3_value** argv) {
  if (sqlite3_value_type(argv[0]) == SQLITE_NULL) {
    sqlite3_result_null(context);
    return;
  }
  const unsigned char* text = sqlite3_value_text(argv[0]);
  const int size = sqlite3_value_bytes(argv[0]);
  const std::string folded =
      FoldedUtf8(std::string_view(reinterpret_cast<const char*>(text), static_cast<size_t>(size)));
  sqlite3_result_text(context, folded.data(), static_cast<int>(folded.size()), SQLITE_TRANSIENT);
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
  const int flags =
      (options.read_only ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE) | SQLITE_OPEN_URI;
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
      throw Failure(kErrDatabase, "There is no table " + where + ".");
    }
    if (rc != SQLITE_ROW) throw DatabaseFailure(db_, "read the schema of " + where);
    const std::string type = reinterpret_cast<const char*>(sqlite3_column_text(kind.get(), 0));
    if (type != "table") {
      throw Failure(kErrDatabase, where + " is a " + type +
                                      ", not a table: a record set needs the rows of a table.");
    }
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
  if (primary_keys != 1) {
    for (Column& c : columns_) c.rowid_alias = false;
  }
  for (Column& c : columns_) c.updatable = !c.rowid_alias;

  std::unordered_map<std::string, int> index_by_name;
  for (size_t i = 0; i < columns_.size(); ++i) {
    index_by_name.emplace(columns_[i].name, static_cast<int>(i));
  }

  // The metadata table, when the database has one.
  bool has_meta = false;
  {
    Statement s(db_,
                "SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name = 'tarn_field_meta'",
                "read the schema");
    has_meta = sqlite3_step(s.get()) == SQLITE_ROW;
  }
  if (has_meta) {
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
        c.updatable = sqlite3_column_int64(meta.get(), 4) != 0;
      }
      const unsigned char* reference = sqlite3_column_text(meta.get(), 5);
      if (reference != nullptr) c.reference = reinterpret_cast<const char*>(reference);
    }
    if (rc != SQLITE_DONE) throw DatabaseFailure(db_, "read tarn_field_meta");
  }

  column_list_ = "rowid";
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

bool SqliteDataSource::FetchRow(MoveTo to, int64_t from_rowid, int64_t* rowid,
                                std::vector<SqlValue>* row) {
  sqlite3_stmt*& statement = move_statements_[static_cast<int>(to)];
  if (statement == nullptr) {
    std::string sql = "SELECT " + column_list_ + " FROM " + quoted_table_;
    std::string condition = where_->sql.empty() ? std::string() : "(" + where_->sql + ")";
    const auto add = [&condition](const char* part) {
      condition += condition.empty() ? part : std::string(" AND ") + part;
    };
    if (to == MoveTo::kNext) add("rowid > ?");
    if (to == MoveTo::kPrevious) add("rowid < ?");
    if (!condition.empty()) sql += " WHERE " + condition;
    sql += to == MoveTo::kFirst || to == MoveTo::kNext ? " ORDER BY rowid LIMIT 1"
                                                       : " ORDER BY rowid DESC LIMIT 1";
    statement = Cached(sql);
  }
  ResetOnExit reset(statement);
  int index = 1;
  BindWhere(statement, &index);
  if (to == MoveTo::kNext || to == MoveTo::kPrevious) {
    sqlite3_bind_int64(statement, index, from_rowid);
  }
  return StepRow(statement, rowid, row);
}

bool SqliteDataSource::StepRow(sqlite3_stmt* statement, int64_t* rowid,
                               std::vector<SqlValue>* row) {
  const int rc = sqlite3_step(statement);
  if (rc == SQLITE_DONE) return false;
  if (rc != SQLITE_ROW) throw DatabaseFailure(db_, "read a record of \"" + table_ + "\"");
  if (rowid != nullptr) *rowid = sqlite3_column_int64(statement, 0);
  row->resize(columns_.size());
  for (size_t i = 0; i < columns_.size(); ++i) {
    (*row)[i] = SqlValue::FromColumn(statement, static_cast<int>(i) + 1);
  }
  return true;
}

bool SqliteDataSource::ReadRowById(int64_t rowid, std::vector<SqlValue>* row) {
  sqlite3_stmt* statement =
      Cached("SELECT " + column_list_ + " FROM " + quoted_table_ + " WHERE rowid = ?");
  ResetOnExit reset(statement);
  sqlite3_bind_int64(statement, 1, rowid);
  return StepRow(statement, nullptr, row);
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

int64_t SqliteDataSource::PositionOf(int64_t rowid) {
  sqlite3_stmt* statement =
      Cached("SELECT count(*) FROM " + quoted_table_ + " WHERE " +
             (where_->sql.empty() ? std::string() : "(" + where_->sql + ") AND ") + "rowid <= ?");
  ResetOnExit reset(statement);
  int index = 1;
  BindWhere(statement, &index);
  sqlite3_bind_int64(statement, index, rowid);
  if (sqlite3_step(statement) != SQLITE_ROW) {
    throw DatabaseFailure(db_, "find the position of a record of \"" + table_ + "\"");
  }
  return sqlite3_column_int64(statement, 0);
}

bool SqliteDataSource::IsLastRow(int64_t rowid) {
  int64_t next = 0;
  std::vector<SqlValue> ignored;
  return !FetchRow(MoveTo::kNext, rowid, &next, &ignored);
}

void SqliteDataSource::Reread(bool keep_current) {
  const int64_t count = CountRows();
  int64_t rowid = 0;
  std::vector<SqlValue> row;
  int64_t position = 0;
  bool found = false;
  if (keep_current && current_rowid_ != 0) {
    found = ReadRowById(current_rowid_, &row) && RowPassesWhere(current_rowid_);
    if (found) {
      rowid = current_rowid_;
    } else {
      found = FetchRow(MoveTo::kNext, current_rowid_, &rowid, &row) ||
              FetchRow(MoveTo::kLast, 0, &rowid, &row);
    }
    if (found) position = PositionOf(rowid);
  } else {
    found = FetchRow(MoveTo::kFirst, 0, &rowid, &row);
    if (found) position = 1;
  }
  count_ = static_cast<int32_t>(std::min<int64_t>(count, std::numeric_limits<int32_t>::max()));
  if (found) {
    current_rowid_ = rowid;
    current_row_ = std::move(row);
    position_ = static_cast<int32_t>(position);
    if (count_ < position_) count_ = position_;
  } else {
    current_rowid_ = 0;
    current_row_.clear();
    position_ = 0;
  }
}

bool SqliteDataSource::RowPassesWhere(int64_t rowid) {
  if (where_->sql.empty()) return true;
  sqlite3_stmt* statement =
      Cached("SELECT 1 FROM " + quoted_table_ + " WHERE (" + where_->sql + ") AND rowid = ?");
  ResetOnExit reset(statement);
  int index = 1;
  BindWhere(statement, &index);
  sqlite3_bind_int64(statement, index, rowid);
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
      // A prefix without regard to case; '*' and '?' are the wildcards, '[' stands for itself.
      std::string pattern;
      for (char ch : FoldedUtf8(text)) {
        if (ch == '[') {
          pattern += "[[]";
        } else {
          pattern += ch;
        }
      }
      pattern += '*';
      clause = "tarn_fold(" + col + ") GLOB ?";
      where->params.push_back(TextValue(std::move(pattern)));
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
  current_rowid_ = 0;
  current_row_.clear();
  position_ = 0;
  count_ = 0;
}

bool SqliteDataSource::FindMoveTarget(MoveTo to, bool again) {
  // After MoveRecordBefore the row found before still holds unless a listener moved, stored or
  // closed meanwhile; only then is it looked for again.
  if (again && current_rowid_ == mark_rowid_ && position_ == mark_position_ &&
      status_ == mark_status_) {
    return true;
  }
  bool found = false;
  switch (to) {
    case MoveTo::kFirst:
      target_position_ = 1;
      found = FetchRow(to, 0, &target_rowid_, &target_row_);
      break;
    case MoveTo::kLast:
      target_position_ = count_;
      found = FetchRow(to, 0, &target_rowid_, &target_row_);
      break;
    case MoveTo::kNext:
      target_position_ = position_ + 1;
      found = current_rowid_ != 0 && FetchRow(to, current_rowid_, &target_rowid_, &target_row_);
      break;
    case MoveTo::kPrevious:
      target_position_ = position_ - 1;
      found = current_rowid_ != 0 && FetchRow(to, current_rowid_, &target_rowid_, &target_row_);
      break;
  }
  mark_rowid_ = current_rowid_;
  mark_position_ = position_;
  mark_status_ = status_;
  return found;
}

void SqliteDataSource::EnterMoveTarget() {
  current_rowid_ = target_rowid_;
  current_row_ = std::move(target_row_);
  position_ = std::max<int32_t>(1, target_position_);
  // Another user may have added rows since the count was read.
  if (count_ < position_) count_ = position_;
}

// --- Storing ----------------------------------------------------------------------------------

int32_t SqliteDataSource::StoreChanges() { return Store(); }
int32_t SqliteDataSource::StoreNewRecord() { return Store(); }

int32_t SqliteDataSource::Store() {
  int32_t code = 0;
  std::string failure;
  int64_t new_rowid = 0;
  std::vector<SqlValue> new_row;
  try {
    RunCached("BEGIN IMMEDIATE", "begin storing the record in");
    if (pending_ == Pending::kChanges) {
      // The statement is cached by the set of changed columns.
      std::string key = "update:";
      bool any = false;
      for (size_t i = 0; i < columns_.size(); ++i) {
        key += changed_[i] ? '1' : '0';
        any = any || changed_[i];
      }
      if (any) {
        sqlite3_stmt* statement = nullptr;
        auto cached = statements_.find(key);
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
          // The update holds only while every column still holds what was read: a row that
          // another user changed or deleted meanwhile is not overwritten.
          sql += " WHERE rowid = ?";
          for (const Column& c : columns_) sql += " AND " + QuoteIdentifier(c.name) + " IS ?";
          statement = Cached(sql);
          statements_.emplace(key, statement);
        }
        ResetOnExit reset(statement);
        int index = 1;
        for (size_t i = 0; i < columns_.size(); ++i) {
          if (changed_[i]) ToSql(static_cast<int>(i), pending_values_[i]).Bind(statement, index++);
        }
        sqlite3_bind_int64(statement, index++, current_rowid_);
        for (const SqlValue& v : current_row_) v.Bind(statement, index++);
        if (sqlite3_step(statement) != SQLITE_DONE) {
          throw DatabaseFailure(db_, "store the record in \"" + table_ + "\"");
        }
        if (sqlite3_changes(db_) == 0) {
          std::vector<SqlValue> now;
          code = 1;
          failure = ReadRowById(current_rowid_, &now)
                        ? "The record was changed by another user since it was read. Nothing "
                          "was stored: read it again (Refresh) and repeat your changes."
                        : "The record was deleted by another user since it was read. Nothing "
                          "was stored.";
        }
      }
      if (code == 0) {
        // The row now holds what was read with the changed columns as bound. (A value that the
        // column's affinity converted still compares equal in the next update's check.)
        new_rowid = current_rowid_;
        new_row = current_row_;
        for (size_t i = 0; i < columns_.size(); ++i) {
          if (changed_[i]) new_row[i] = ToSql(static_cast<int>(i), pending_values_[i]);
        }
      }
    } else {
      std::string names, marks;
      std::vector<SqlValue> values;
      for (size_t i = 0; i < columns_.size(); ++i) {
        SqlValue v = ToSql(static_cast<int>(i), pending_values_[i]);
        // Empty columns take their defaults; a copied record gets a key of its own.
        if (v.type == SQLITE_NULL) continue;
        if (columns_[i].rowid_alias && status_ == dsCopyRecord) continue;
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
      new_rowid = sqlite3_last_insert_rowid(db_);
      if (!ReadRowById(new_rowid, &new_row)) {
        throw DatabaseFailure(db_, "read the stored record of \"" + table_ + "\"");
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

  if (pending_ == Pending::kChanges) {
    current_row_ = std::move(new_row);
  } else {
    // The stored record stands where its key puts it; a new key is the highest as a rule.
    current_rowid_ = new_rowid;
    current_row_ = std::move(new_row);
    ++count_;
    position_ = IsLastRow(new_rowid) ? count_ : static_cast<int32_t>(PositionOf(new_rowid));
    if (position_ < 1) position_ = 1;
    if (count_ < position_) count_ = position_;
  }
  return 0;
}

bool SqliteDataSource::DeleteStoredCurrent() {
  std::string failure;
  try {
    ExecuteSql(db_, "BEGIN IMMEDIATE", "begin deleting the record in \"" + table_ + "\"");
    std::string sql = "DELETE FROM " + quoted_table_ + " WHERE rowid = ?";
    for (const Column& c : columns_) sql += " AND " + QuoteIdentifier(c.name) + " IS ?";
    sqlite3_stmt* statement = Cached(sql);
    {
      ResetOnExit reset(statement);
      int index = 1;
      sqlite3_bind_int64(statement, index++, current_rowid_);
      for (const SqlValue& v : current_row_) v.Bind(statement, index++);
      if (sqlite3_step(statement) != SQLITE_DONE) {
        throw DatabaseFailure(db_, "delete the record in \"" + table_ + "\"");
      }
    }
    if (sqlite3_changes(db_) == 0) {
      std::vector<SqlValue> now;
      failure = ReadRowById(current_rowid_, &now)
                    ? "The record was changed by another user since it was read. It was not "
                      "deleted: read it again (Refresh) first."
                    : "The record was already deleted by another user.";
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

  const int64_t deleted = current_rowid_;
  --count_;
  int64_t rowid = 0;
  std::vector<SqlValue> row;
  if (FetchRow(MoveTo::kNext, deleted, &rowid, &row)) {
    current_rowid_ = rowid;
    current_row_ = std::move(row);
    if (position_ > count_) position_ = count_;
  } else if (FetchRow(MoveTo::kPrevious, deleted, &rowid, &row)) {
    current_rowid_ = rowid;
    current_row_ = std::move(row);
    position_ = std::max<int32_t>(1, count_);
  } else {
    current_rowid_ = 0;
    current_row_.clear();
    position_ = 0;
    count_ = 0;
  }
  return true;
}

void SqliteDataSource::ReturnFromNewRecord(int64_t key, int32_t position) {
  current_rowid_ = 0;
  current_row_.clear();
  position_ = 0;
  if (count_ > 0) {
    int64_t rowid = 0;
    std::vector<SqlValue> row;
    if (key != 0 && ReadRowById(key, &row)) {
      current_rowid_ = key;
      position_ = std::min(position, count_);
    } else if (FetchRow(MoveTo::kFirst, 0, &rowid, &row)) {
      current_rowid_ = rowid;
      position_ = 1;
    }
    if (current_rowid_ != 0) {
      current_row_ = std::move(row);
      if (position_ < 1) position_ = 1;
    }
  }
}

void SqliteDataSource::ReturnFromQuery(int64_t key, int32_t position) {
  std::vector<SqlValue> row;
  if (key != 0 && ReadRowById(key, &row)) {
    current_rowid_ = key;
    current_row_ = std::move(row);
    position_ = std::min(position, count_);
    if (position_ < 1 && count_ > 0) position_ = 1;
  } else {
    int64_t rowid = 0;
    if (FetchRow(MoveTo::kFirst, 0, &rowid, &row)) {
      current_rowid_ = rowid;
      current_row_ = std::move(row);
      position_ = 1;
    } else {
      current_rowid_ = 0;
      current_row_.clear();
      position_ = 0;
    }
  }
}

}  // namespace tarnsheets
