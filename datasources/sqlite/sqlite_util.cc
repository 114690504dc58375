#include "datasources/sqlite/sqlite_util.h"

#include <cstdio>
#include <limits>

namespace tarnsheets {

SqlValue SqlValue::FromColumn(sqlite3_stmt* statement, int column) {
  SqlValue v;
  v.type = sqlite3_column_type(statement, column);
  switch (v.type) {
    case SQLITE_INTEGER:
      v.integer = sqlite3_column_int64(statement, column);
      break;
    case SQLITE_FLOAT:
      v.real = sqlite3_column_double(statement, column);
      break;
    case SQLITE_TEXT:
    case SQLITE_BLOB: {
      const void* bytes = v.type == SQLITE_TEXT
                              ? static_cast<const void*>(sqlite3_column_text(statement, column))
                              : sqlite3_column_blob(statement, column);
      const int size = sqlite3_column_bytes(statement, column);
      if (bytes != nullptr) v.text.assign(static_cast<const char*>(bytes), size);
      break;
    }
    default:
      v.type = SQLITE_NULL;
  }
  return v;
}

SqlValue SqlTextValue(std::string text) {
  SqlValue v;
  v.type = SQLITE_TEXT;
  v.text = std::move(text);
  return v;
}

void SqlValue::Bind(sqlite3_stmt* statement, int index) const {
  switch (type) {
    case SQLITE_INTEGER:
      sqlite3_bind_int64(statement, index, integer);
      break;
    case SQLITE_FLOAT:
      sqlite3_bind_double(statement, index, real);
      break;
    case SQLITE_TEXT:
      sqlite3_bind_text(statement, index, text.data(), static_cast<int>(text.size()),
                        SQLITE_TRANSIENT);
      break;
    case SQLITE_BLOB:
      sqlite3_bind_blob(statement, index, text.data(), static_cast<int>(text.size()),
                        SQLITE_TRANSIENT);
      break;
    default:
      sqlite3_bind_null(statement, index);
  }
}

void SqlValue::BindUncopied(sqlite3_stmt* statement, int index) const {
  if (type == SQLITE_TEXT) {
    sqlite3_bind_text(statement, index, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
  } else if (type == SQLITE_BLOB) {
    sqlite3_bind_blob(statement, index, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
  } else {
    Bind(statement, index);
  }
}

std::string StoredDateText(Date date) {
  const Date::Parts p = date.ToParts();
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d %02d:%02d:%02d", p.year, p.month, p.day,
                p.hour, p.minute, p.second);
  return buffer;
}

std::string QuoteIdentifier(std::string_view name) {
  std::string out = "\"";
  for (char c : name) {
    if (c == '"') out += '"';
    out += c;
  }
  out += '"';
  return out;
}

Failure DatabaseFailure(int code, const std::string& message, const std::string& what) {
  return Failure(kErrDatabase, "SQLite could not " + what + ": " + message + " (" +
                                   sqlite3_errstr(code) + ", code " + std::to_string(code) + ")");
}

Failure DatabaseFailure(sqlite3* db, const std::string& what) {
  if (db == nullptr) return DatabaseFailure(SQLITE_NOMEM, "out of memory", what);
  return DatabaseFailure(sqlite3_extended_errcode(db), sqlite3_errmsg(db), what);
}

Statement::Statement(sqlite3* db, std::string_view sql, const std::string& what) {
  if (sqlite3_prepare_v3(db, sql.data(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT,
                         &statement_, nullptr) != SQLITE_OK) {
    sqlite3_finalize(statement_);
    statement_ = nullptr;
    throw DatabaseFailure(db, what);
  }
}

Statement& Statement::operator=(Statement&& other) noexcept {
  if (this != &other) {
    sqlite3_finalize(statement_);
    statement_ = other.statement_;
    other.statement_ = nullptr;
  }
  return *this;
}

Statement::~Statement() { sqlite3_finalize(statement_); }

void ExecuteSql(sqlite3* db, const std::string& sql, const std::string& what) {
  char* message = nullptr;
  const int rc = sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &message);
  if (rc != SQLITE_OK) {
    const std::string text = message != nullptr ? message : sqlite3_errmsg(db);
    sqlite3_free(message);
    throw DatabaseFailure(sqlite3_extended_errcode(db), text, what);
  }
}

Variant CellVariant(sqlite3_stmt* statement, int column) {
  switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER: {
      const int64_t v = sqlite3_column_int64(statement, column);
      if (v >= std::numeric_limits<int32_t>::min() && v <= std::numeric_limits<int32_t>::max()) {
        return Variant(static_cast<int32_t>(v));
      }
      return Variant(static_cast<double>(v));
    }
    case SQLITE_FLOAT:
      return Variant(sqlite3_column_double(statement, column));
    case SQLITE_TEXT:
    case SQLITE_BLOB: {
      const char* bytes = reinterpret_cast<const char*>(sqlite3_column_blob(statement, column));
      const int size = sqlite3_column_bytes(statement, column);
      return Variant(std::string(bytes == nullptr ? "" : bytes, bytes == nullptr ? 0 : size));
    }
    default:
      return Variant::Null();
  }
}

}  // namespace tarnsheets
