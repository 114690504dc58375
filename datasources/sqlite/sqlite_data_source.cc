#include "datasources/sqlite/sqlite_data_source.h"

#include <sqlite3.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

#include "datasources/sqlite/sqlite_util.h"

namespace tarnsheets {
namespace {

bool IsNewRowStatus(int32_t s) { return s == dsNewRecord || s == dsCopyRecord; }
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

// --- The field object -------------------------------------------------------------------------

class SqliteDataSource::Field final : public DataSourceField {
 public:
  Field(SqliteDataSource* source, int index) : source_(source), index_(index) {}

  std::string FieldName() const override { return column().name; }
  int32_t DataType() const override { return column().data_type; }
  int32_t DateKind() const override { return column().date_kind; }
  int32_t NumberKind() const override { return column().number_kind; }
  bool Updatable() const override { return column().updatable; }
  std::string ReferenceName() const override { return column().reference; }

  void SetValue(const Variant& value, int32_t /*flag*/) override {
    SqliteDataSource& s = *source_;
    if (s.IsClosed()) return;
    if (s.IsQuery()) {
      s.conditions_[index_] = value.AsText();
      return;
    }
    if (s.pending_ == Pending::kNone) {
      if (!s.HasStoredCurrent()) return;
      s.BeginChanges();
    }
    s.pending_values_[index_] = value;
    s.changed_[index_] = true;
  }

  Variant Value(int32_t /*flag*/) const override {
    if (source_->IsQuery()) {
      const std::string& c = source_->conditions_[index_];
      return c.empty() ? Variant() : Variant(c);
    }
    return source_->CurrentValue(index_);
  }

  std::string Symbol(int32_t /*flag*/) const override {
    if (source_->IsQuery()) return std::string();
    return source_->SymbolOf(index_);
  }

 private:
  const Column& column() const { return source_->columns_[index_]; }

  SqliteDataSource* source_;
  int index_;
};

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
    : db_(db),
      path_(std::move(path)),
      table_(std::move(table)),
      quoted_table_(QuoteIdentifier(table_)),
      options_(std::move(options)),
      where_(std::make_unique<Where>()),
      dialogs_(dialogs) {}

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

  for (size_t i = 0; i < columns_.size(); ++i) {
    index_by_name_.emplace(columns_[i].name, static_cast<int>(i));
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
      auto it = index_by_name_.find(name);
      if (it == index_by_name_.end()) {
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

  money_fields_by_reference_.resize(columns_.size());
  column_list_ = "rowid";
  for (size_t i = 0; i < columns_.size(); ++i) {
    Column& c = columns_[i];
    column_list_ += ", " + QuoteIdentifier(c.name);
    if (c.reference.empty()) continue;
    auto it = index_by_name_.find(c.reference);
    if (it == index_by_name_.end()) {
      throw Failure(kErrDatabase, "Column \"" + c.name + "\" of " + where + ": the reference \"" +
                                      c.reference + "\" names no column");
    }
    c.reference_index = it->second;
    if (c.data_type == kDataTypeMoney) money_fields_by_reference_[it->second].push_back(int(i));
  }
  for (size_t i = 0; i < columns_.size(); ++i) {
    fields_.push_back(std::make_unique<Field>(this, static_cast<int>(i)));
  }
  conditions_.assign(columns_.size(), std::string());
  last_conditions_.assign(columns_.size(), std::string());
  changed_.assign(columns_.size(), false);
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
  const int rc = sqlite3_step(statement);
  if (rc == SQLITE_DONE) return false;
  if (rc != SQLITE_ROW) throw DatabaseFailure(db_, "read a record of \"" + table_ + "\"");
  *rowid = sqlite3_column_int64(statement, 0);
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
  const int rc = sqlite3_step(statement);
  if (rc == SQLITE_DONE) return false;
  if (rc != SQLITE_ROW) throw DatabaseFailure(db_, "read a record of \"" + table_ + "\"");
  row->resize(columns_.size());
  for (size_t i = 0; i < columns_.size(); ++i) {
    (*row)[i] = SqlValue::FromColumn(statement, static_cast<int>(i) + 1);
  }
  return true;
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

Variant SqliteDataSource::CurrentValue(int index) const {
  if (IsClosed()) return Variant();
  if (pending_ != Pending::kNone) return pending_values_[index];
  if (!HasStoredCurrent()) return Variant();
  return FromSql(index, current_row_[index]);
}

void SqliteDataSource::BeginChanges() {
  pending_values_.clear();
  for (size_t i = 0; i < columns_.size(); ++i) {
    pending_values_.push_back(FromSql(static_cast<int>(i), current_row_[i]));
  }
  std::fill(changed_.begin(), changed_.end(), false);
  pending_ = Pending::kChanges;
}

std::string SqliteDataSource::SymbolOf(int index) const {
  const Column& c = columns_[index];
  if (c.data_type != kDataTypeMoney || c.reference_index < 0) return std::string();
  const Variant code = CurrentValue(c.reference_index);
  auto it = symbols_.find(code.AsText());
  return it == symbols_.end() ? std::string() : it->second;
}

std::vector<std::string> SqliteDataSource::AllSymbols() const {
  std::vector<std::string> out;
  for (const auto& [code, symbol] : symbols_) out.push_back(symbol);
  return out;
}

FieldShape SqliteDataSource::ShapeOf(int index) const {
  const Column& c = columns_[index];
  return FieldShape{c.data_type, c.date_kind, c.number_kind};
}

int SqliteDataSource::IndexOf(const Variant& key) const {
  if (key.IsString()) {
    auto it = index_by_name_.find(key.StringValue());
    if (it == index_by_name_.end()) throw ItemNotFound(key);
    return it->second;
  }
  if (key.IsNumber()) {
    const double n = key.ToDouble();
    if (n != std::floor(n) || n < 1 || n > static_cast<double>(columns_.size())) {
      throw ItemNotFound(key);
    }
    return static_cast<int>(n) - 1;
  }
  throw Failure(
      kErrTypeMismatch,
      "Type mismatch: a field is named by its name or its number, not by " + key.Literal());
}

std::string SqliteDataSource::Quoted(const Variant& v) const {
  return v.IsString() ? "\"" + v.StringValue() + "\"" : v.Literal();
}

void SqliteDataSource::Say(const std::string& text) const {
  if (dialogs_ != nullptr) dialogs_->MessageBox(kSqliteSourceTitle, text, MessageBoxStyle::kPlain);
}

bool SqliteDataSource::Refuse(const std::string& text) {
  Say(text);
  return true;
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

// --- Storing ----------------------------------------------------------------------------------

int32_t SqliteDataSource::StorePending(bool* status_changed) {
  *status_changed = false;
  if (pending_ == Pending::kNone) return 0;
  if (pending_ == Pending::kChanges && !HasStoredCurrent()) {
    pending_ = Pending::kNone;
    pending_values_.clear();
    return 0;
  }
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
    const int32_t old = status_;
    if (IsNewRowStatus(status_)) status_ = dsBrowse;
    *status_changed = old != status_;
  }
  pending_ = Pending::kNone;
  pending_values_.clear();
  std::fill(changed_.begin(), changed_.end(), false);
  return 0;
}

bool SqliteDataSource::DropPending() {
  const Pending was = pending_;
  pending_ = Pending::kNone;
  pending_values_.clear();
  std::fill(changed_.begin(), changed_.end(), false);
  if (was != Pending::kNewRow) return false;
  current_rowid_ = 0;
  current_row_.clear();
  position_ = 0;
  if (count_ > 0) {
    int64_t rowid = 0;
    std::vector<SqlValue> row;
    if (return_rowid_ != 0 && ReadRowById(return_rowid_, &row)) {
      current_rowid_ = return_rowid_;
      position_ = std::min(return_position_, count_);
    } else if (FetchRow(MoveTo::kFirst, 0, &rowid, &row)) {
      current_rowid_ = rowid;
      position_ = 1;
    }
    if (current_rowid_ != 0) {
      current_row_ = std::move(row);
      if (position_ < 1) position_ = 1;
    }
  }
  const int32_t old = status_;
  if (IsNewRowStatus(status_)) status_ = dsBrowse;
  return old != status_;
}

// --- The contract -----------------------------------------------------------------------------

void SqliteDataSource::Open() {
  if (!IsClosed()) return;
  where_->sql.clear();
  where_->params.clear();
  ClearStatementCache();
  std::fill(last_conditions_.begin(), last_conditions_.end(), std::string());
  Reread(false);
  status_ = dsBrowse;
  RaiseSysDataSourceInit();
  RaiseEditStatusChange();
}

void SqliteDataSource::Close() {
  if (IsClosed()) return;
  pending_ = Pending::kNone;
  pending_values_.clear();
  current_rowid_ = 0;
  current_row_.clear();
  position_ = 0;
  count_ = 0;
  status_ = dsClosed;
  RaiseEditStatusChange();
}

int32_t SqliteDataSource::RecordCount() const {
  if (IsClosed()) return 0;
  return count_ + (pending_ == Pending::kNewRow ? 1 : 0);
}

int32_t SqliteDataSource::AbsolutePosition() const { return IsClosed() ? 0 : position_; }

bool SqliteDataSource::Refresh() {
  if (IsClosed()) return true;
  const bool status_changed = DropPending();
  Reread(true);
  RaiseSysDataSourceRefresh();
  if (status_changed) RaiseEditStatusChange();
  return false;
}

DataSourceField& SqliteDataSource::Fields(const Variant& key) { return *fields_[IndexOf(key)]; }

bool SqliteDataSource::Move(MoveTo to) {
  if (pending_ == Pending::kNewRow && !IsClosed() && !IsQuery()) {
    return Refuse(
        "The new record is not stored yet. Store it or cancel it before moving to "
        "another record.");
  }
  // Finds the target from what holds now: nothing when the set is closed, in a query or empty,
  // or when the move would pass either end.
  int64_t rowid = 0;
  std::vector<SqlValue> row;
  int32_t to_position = 0;
  const auto target = [&]() -> bool {
    if (IsClosed() || IsQuery() || pending_ == Pending::kNewRow || count_ == 0) return false;
    switch (to) {
      case MoveTo::kFirst:
        to_position = 1;
        return FetchRow(to, 0, &rowid, &row);
      case MoveTo::kLast:
        to_position = count_;
        return FetchRow(to, 0, &rowid, &row);
      case MoveTo::kNext:
        to_position = position_ + 1;
        return current_rowid_ != 0 && FetchRow(to, current_rowid_, &rowid, &row);
      case MoveTo::kPrevious:
        to_position = position_ - 1;
        return current_rowid_ != 0 && FetchRow(to, current_rowid_, &rowid, &row);
    }
    return false;
  };
  if (!target()) return true;
  const int64_t before_rowid = current_rowid_;
  const int32_t before_position = position_;
  const int32_t before_status = status_;
  if (RaiseMoveRecordBefore()) return true;
  // A listener may have moved, stored or closed meanwhile: decide again from what holds now.
  if (current_rowid_ != before_rowid || position_ != before_position || status_ != before_status) {
    if (!target()) return true;
  }
  bool status_changed = false;
  if (StorePending(&status_changed) != 0) return true;
  current_rowid_ = rowid;
  current_row_ = std::move(row);
  position_ = std::max<int32_t>(1, to_position);
  // Another user may have added rows since the count was read.
  if (count_ < position_) count_ = position_;
  RaiseSysMoveRecordAfter();
  return false;
}

bool SqliteDataSource::MoveFirst() { return Move(MoveTo::kFirst); }
bool SqliteDataSource::MovePrevious() { return Move(MoveTo::kPrevious); }
bool SqliteDataSource::MoveNext() { return Move(MoveTo::kNext); }
bool SqliteDataSource::MoveLast() { return Move(MoveTo::kLast); }

bool SqliteDataSource::RowEditable(int32_t row) const {
  if (IsClosed()) return false;
  if (row == 0) row = position_;
  if (pending_ == Pending::kNewRow && row == position_) return true;
  return row >= 1 && row <= count_;
}

int32_t SqliteDataSource::UpdateRecord() {
  if (pending_ == Pending::kNone || IsClosed() || IsQuery()) return 0;
  if (read_only_) {
    Say("The data is read-only: the record cannot be stored.");
    return 1;
  }
  bool status_changed = false;
  const int32_t code = StorePending(&status_changed);
  if (code != 0) return code;
  if (status_changed) RaiseEditStatusChange();
  RaiseSysUpdateRecordAfter();
  return 0;
}

bool SqliteDataSource::SetFieldValue(const Variant& field, const Variant& value, int32_t /*flag*/) {
  const int index = IndexOf(field);
  const Column& column = columns_[index];
  const std::string& name = column.name;
  if (IsClosed()) return Refuse("No record set is open: " + name + " cannot be changed.");
  if (IsQuery()) {
    const std::string text(Trim(value.AsText()));
    if (!text.empty()) {
      QueryCondition c;
      std::string reason;
      if (!QueryCondition::Parse(text, ShapeOf(index), AllSymbols(), &c, &reason)) {
        return Refuse("The condition \"" + text + "\" for " + name +
                      " is not understood: " + reason + ".");
      }
    }
    if (conditions_[index] != text) {
      conditions_[index] = text;
      RaiseValueQueryChange(name);
    }
    return false;
  }
  if (pending_ != Pending::kNewRow && !HasStoredCurrent()) {
    return Refuse("There is no current record: " + name + " cannot be changed.");
  }
  if (read_only_) return Refuse("The data is read-only: " + name + " cannot be changed.");
  if (!column.updatable) return Refuse(name + " cannot be changed.");
  if (!RowEditable(0)) return Refuse("This record cannot be changed.");
  const bool permitted =
      allow_modify_ || (pending_ == Pending::kNewRow && status_ == dsNewRecord && allow_add_new_) ||
      (pending_ == Pending::kNewRow && status_ == dsCopyRecord && allow_copy_);
  if (!permitted) return Refuse("Changing records is not allowed: " + name + " stays as it is.");
  Variant stored;
  std::string reason;
  if (!ReadFieldValue(value, ShapeOf(index), {SymbolOf(index)}, &stored, &reason)) {
    return Refuse("The value " + Quoted(value) + " cannot be stored in " + name + ": " + reason +
                  ".");
  }
  if (pending_ == Pending::kNone) BeginChanges();
  const bool currency_changed = !(pending_values_[index] == stored);
  pending_values_[index] = std::move(stored);
  changed_[index] = true;
  RaiseValueChange(Variant(), index + 1);
  if (currency_changed) {
    for (int money : money_fields_by_reference_[index]) RaiseSymbolChange(Variant(), money + 1);
  }
  return false;
}

void SqliteDataSource::DeleteRecord() {
  if (IsClosed()) return (void)Refuse("No record set is open: there is nothing to delete.");
  if (IsQuery()) return (void)Refuse("Records cannot be deleted while a query is entered.");
  if (pending_ == Pending::kNewRow) {
    // A pending new or copied record can always be thrown away.
    const bool status_changed = DropPending();
    if (status_changed) RaiseEditStatusChange();
    RaiseSysDeleteRecordAfter();
    return;
  }
  if (!HasStoredCurrent()) return (void)Refuse("There is no record to delete.");
  if (read_only_) return (void)Refuse("The data is read-only: the record cannot be deleted.");
  if (!allow_delete_) return (void)Refuse("Deleting records is not allowed.");
  if (!RowEditable(0)) return (void)Refuse("This record cannot be deleted.");
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
  if (!failure.empty()) return (void)Refuse(failure);

  pending_ = Pending::kNone;
  pending_values_.clear();
  std::fill(changed_.begin(), changed_.end(), false);
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
  RaiseSysDeleteRecordAfter();
}

void SqliteDataSource::CopyRecord() {
  if (IsClosed()) return (void)Refuse("No record set is open: there is nothing to copy.");
  if (IsQuery()) return (void)Refuse("Records cannot be copied while a query is entered.");
  if (read_only_) return (void)Refuse("The data is read-only: no record can be added.");
  if (!allow_copy_) return (void)Refuse("Copying records is not allowed.");
  if (pending_ != Pending::kNewRow && !HasStoredCurrent()) {
    return (void)Refuse("There is no record to copy.");
  }
  std::vector<Variant> values;
  for (size_t i = 0; i < columns_.size(); ++i) {
    values.push_back(columns_[i].rowid_alias ? Variant::Null() : CurrentValue(static_cast<int>(i)));
  }
  const int32_t old = status_;
  bool ignored = false;
  if (StorePending(&ignored) != 0) return;
  return_rowid_ = current_rowid_;
  return_position_ = position_;
  pending_values_ = std::move(values);
  pending_ = Pending::kNewRow;
  position_ = count_ + 1;
  status_ = dsCopyRecord;
  if (old != status_) RaiseEditStatusChange();
  RaiseSysCopyRecordAfter();
}

void SqliteDataSource::NewRecord(int32_t /*flag*/, const Variant& /*optional*/) {
  if (IsClosed()) return (void)Refuse("No record set is open: no record can be added.");
  if (IsQuery()) return (void)Refuse("Records cannot be added while a query is entered.");
  if (read_only_) return (void)Refuse("The data is read-only: no record can be added.");
  if (!allow_add_new_) return (void)Refuse("Adding records is not allowed.");
  const int32_t old = status_;
  bool ignored = false;
  if (StorePending(&ignored) != 0) return;
  return_rowid_ = current_rowid_;
  return_position_ = position_;
  pending_values_.assign(columns_.size(), Variant::Null());
  pending_ = Pending::kNewRow;
  position_ = count_ + 1;
  status_ = dsNewRecord;
  if (old != status_) RaiseEditStatusChange();
  RaiseSysNewRecordAfter();
}

void SqliteDataSource::UndoRecord() {
  if (IsClosed() || IsQuery()) return;
  const bool status_changed = DropPending();
  if (status_changed) RaiseEditStatusChange();
  RaiseSysUndoRecordAfter();
}

bool SqliteDataSource::EnterQuery(bool refine) {
  if (IsClosed()) return Refuse("No record set is open: there is nothing to query.");
  if (refine ? RaiseRefineQueryBefore() : RaiseNewQueryBefore()) return true;
  if (IsClosed()) return true;
  const int32_t old = status_;
  if (!IsQuery()) {
    bool ignored = false;
    if (StorePending(&ignored) != 0) return true;
    query_return_rowid_ = current_rowid_;
    query_return_position_ = position_;
  }
  if (refine) {
    conditions_ = last_conditions_;
  } else {
    std::fill(conditions_.begin(), conditions_.end(), std::string());
  }
  status_ = dsQuery;
  if (old != status_) RaiseEditStatusChange();
  if (refine) {
    RaiseSysRefineQueryAfter();
  } else {
    RaiseSysNewQueryAfter();
  }
  return false;
}

bool SqliteDataSource::NewQuery() { return EnterQuery(false); }
bool SqliteDataSource::RefineQuery() { return EnterQuery(true); }

bool SqliteDataSource::ExecuteQuery() {
  if (IsClosed()) return Refuse("No record set is open: there is nothing to query.");
  if (RaiseExecuteQueryBefore()) return true;
  if (IsClosed()) return true;
  const int32_t old = status_;
  if (IsQuery()) {
    last_conditions_ = conditions_;
  } else {
    bool ignored = false;
    if (StorePending(&ignored) != 0) return true;
  }
  Where where;
  if (!BuildWhere(last_conditions_, &where)) {
    // A condition that no longer reads lets nothing through.
    where.sql = "0";
    where.params.clear();
  }
  ClearStatementCache();
  *where_ = std::move(where);
  Reread(false);
  status_ = dsBrowse;
  RaiseSysDataSourceRefresh();
  if (old != status_) RaiseEditStatusChange();
  return false;
}

void SqliteDataSource::CancelQuery() {
  if (!IsQuery()) return;
  if (RaiseCancelQueryBefore()) return;
  if (!IsQuery()) return;
  std::fill(conditions_.begin(), conditions_.end(), std::string());
  std::vector<SqlValue> row;
  if (query_return_rowid_ != 0 && ReadRowById(query_return_rowid_, &row)) {
    current_rowid_ = query_return_rowid_;
    current_row_ = std::move(row);
    position_ = std::min(query_return_position_, count_);
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
  status_ = dsBrowse;
  RaiseEditStatusChange();
  RaiseSysCancelQueryAfter();
}

void SqliteDataSource::ParseFieldValue(const Variant& field, Variant& value, int32_t /*flag*/) {
  const int index = IndexOf(field);
  Variant parsed;
  std::string reason;
  if (!ReadFieldValue(value, ShapeOf(index), {SymbolOf(index)}, &parsed, &reason)) {
    throw Failure(kErrTypeMismatch, "Type mismatch: " + Quoted(value) + " is no value for " +
                                        columns_[index].name + " (" + reason + ")");
  }
  value = std::move(parsed);
}

}  // namespace tarnsheets
