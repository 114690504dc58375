#include "datasources/sqlite/sqlite_recordset.h"

#include <sqlite3.h>

#include <algorithm>

#include "datasources/sqlite/sqlite_util.h"

namespace tarnsheets {
namespace {

[[noreturn]] void FailArguments(const std::string& what) {
  throw Failure(kErrRecordsetArguments, std::string(kRecordsetArgumentsDescription) + " " + what);
}

bool EqualsNoCase(const std::string& a, const std::string& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    char x = a[i], y = b[i];
    if (x >= 'A' && x <= 'Z') x = static_cast<char>(x + 32);
    if (y >= 'A' && y <= 'Z') y = static_cast<char>(y + 32);
    if (x != y) return false;
  }
  return true;
}

}  // namespace

std::unique_ptr<SqliteRecordset> SqliteRecordset::Open(const std::string& path,
                                                       const std::string& query) {
  sqlite3* db = nullptr;
  if (sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, nullptr) !=
      SQLITE_OK) {
    Failure f = DatabaseFailure(db, "open \"" + path + "\"");
    sqlite3_close(db);
    throw f;
  }
  std::unique_ptr<SqliteRecordset> rs(new SqliteRecordset(db, query));
  sqlite3_busy_timeout(db, 2000);
  sqlite3_stmt* statement = nullptr;
  const char* tail = nullptr;
  if (sqlite3_prepare_v2(db, query.c_str(), static_cast<int>(query.size()), &statement, &tail) !=
      SQLITE_OK) {
    sqlite3_finalize(statement);
    throw DatabaseFailure(db, "prepare the query \"" + query + "\" on \"" + path + "\"");
  }
  Statement owned;
  const std::string rest = tail != nullptr ? std::string(tail) : std::string();
  const int columns = statement != nullptr ? sqlite3_column_count(statement) : 0;
  for (int i = 0; i < columns; ++i) rs->columns_.push_back(sqlite3_column_name(statement, i));
  const bool read_only = statement != nullptr && sqlite3_stmt_readonly(statement) != 0;
  sqlite3_finalize(statement);
  if (rest.find_first_not_of(" \t\r\n;") != std::string::npos) {
    FailArguments("The query \"" + query + "\" holds more than one statement.");
  }
  if (columns == 0 || !read_only) {
    FailArguments("The query \"" + query + "\" is no SELECT: it returns no rows.");
  }
  rs->SetFilter(Variant(int32_t{0}));
  return rs;
}

SqliteRecordset::SqliteRecordset(sqlite3* db, std::string query)
    : db_(db), query_(std::move(query)) {}

SqliteRecordset::~SqliteRecordset() { sqlite3_close(db_); }

int32_t SqliteRecordset::FindColumn(const std::string& name) const {
  for (size_t i = 0; i < columns_.size(); ++i) {
    if (EqualsNoCase(columns_[i], name)) return static_cast<int32_t>(i);
  }
  return -1;
}

template <typename Fn>
int32_t SqliteRecordset::Scan(const RecordsetFilter& filter, const std::vector<int>& filter_columns,
                              Fn&& row) {
  Statement statement(db_, query_, "run the query \"" + query_ + "\"");
  int32_t passed = 0;
  int rc;
  while ((rc = sqlite3_step(statement.get())) == SQLITE_ROW) {
    sqlite3_stmt* s = statement.get();
    if (!filter.PassesAll() &&
        !filter.Matches([&](size_t i) { return CellVariant(s, filter_columns[i]); })) {
      continue;
    }
    if (!row(passed++, s)) return passed;
  }
  if (rc != SQLITE_DONE) throw DatabaseFailure(db_, "run the query \"" + query_ + "\"");
  return passed;
}

void SqliteRecordset::SetFilter(const Variant& filter) {
  std::string text;
  if (filter.IsString()) {
    text = filter.StringValue();
  } else if (filter.IsEmpty() || (filter.IsNumber() && filter.ToDouble() == 0)) {
    text.clear();
  } else {
    FailArguments("A filter is a text, or 0 for none; " + filter.Literal() + " is neither.");
  }
  // Parse and check the columns before anything changes.
  RecordsetFilter parsed = RecordsetFilter::Parse(text);
  std::vector<int> filter_columns;
  for (const std::string& name : parsed.Columns()) {
    const int32_t column = FindColumn(name);
    if (column < 0) {
      throw Failure(kErrItemNotFound, std::string(kItemNotFoundDescription) + " Filter \"" + text +
                                          "\": no column \"" + name + "\".");
    }
    filter_columns.push_back(column);
  }
  const int32_t count = Scan(parsed, filter_columns, [](int32_t, sqlite3_stmt*) { return true; });
  filter_text_ = parsed.PassesAll() ? Variant(int32_t{0}) : Variant(text);
  filter_ = std::move(parsed);
  filter_columns_ = std::move(filter_columns);
  count_ = count;
  position_ = 0;
}

std::vector<int> SqliteRecordset::ResolveFields(const std::vector<Variant>& fields) const {
  std::vector<int> columns;
  if (fields.empty()) {
    for (size_t i = 0; i < columns_.size(); ++i) columns.push_back(static_cast<int>(i));
    return columns;
  }
  for (const Variant& field : fields) {
    if (field.IsString()) {
      const int32_t column = FindColumn(field.StringValue());
      if (column < 0) {
        throw Failure(kErrItemNotFound, std::string(kItemNotFoundDescription) + " No column \"" +
                                            field.StringValue() + "\".");
      }
      columns.push_back(column);
    } else if (field.IsNumber()) {
      const int32_t ordinal = field.ToLong();
      if (ordinal < 0 || static_cast<size_t>(ordinal) >= columns_.size()) {
        throw Failure(kErrItemNotFound, std::string(kItemNotFoundDescription) +
                                            " No column at ordinal " + field.AsText() + ".");
      }
      columns.push_back(ordinal);
    } else {
      FailArguments("GetRows: the column " + field.Literal() +
                    " is neither a name nor an ordinal.");
    }
  }
  return columns;
}

RowsArray SqliteRecordset::GetRows(int32_t rows, const Variant& start,
                                   const std::vector<Variant>& fields) {
  const std::vector<int> columns = ResolveFields(fields);
  int32_t first = position_;
  if (!start.IsEmpty()) {
    if (!start.IsNumber()) FailArguments("GetRows: Start " + start.Literal() + " is no bookmark.");
    switch (start.ToLong()) {
      case kBookmarkCurrent:
        first = position_;
        break;
      case kBookmarkFirst:
        first = 0;
        break;
      case kBookmarkLast:
        first = count_ == 0 ? 0 : count_ - 1;
        break;
      default:
        FailArguments("GetRows: Start " + start.Literal() + " is no bookmark.");
    }
  }
  if (rows == 0 || rows < kGetRowsRest) {
    FailArguments("GetRows: Rows " + std::to_string(rows) + " is neither -1 nor a count above 0.");
  }
  if (first >= count_) throw Failure(kErrNoCurrentRecord, kNoCurrentRecordDescription);
  const int32_t rest = count_ - first;
  const int32_t wanted = rows == kGetRowsRest ? rest : std::min(rest, rows);
  // The rows are read again: another connection may have changed them since the count.
  std::vector<std::vector<Variant>> read;
  Scan(filter_, filter_columns_, [&](int32_t index, sqlite3_stmt* s) {
    if (index < first) return true;
    std::vector<Variant> cells;
    for (int c : columns) cells.push_back(CellVariant(s, c));
    read.push_back(std::move(cells));
    return static_cast<int32_t>(read.size()) < wanted;
  });
  if (read.empty()) throw Failure(kErrNoCurrentRecord, kNoCurrentRecordDescription);
  RowsArray array(static_cast<int32_t>(columns.size()), static_cast<int32_t>(read.size()));
  for (size_t r = 0; r < read.size(); ++r) {
    for (size_t c = 0; c < columns.size(); ++c) {
      array.At(static_cast<int32_t>(c), static_cast<int32_t>(r)) = std::move(read[r][c]);
    }
  }
  position_ = first + static_cast<int32_t>(read.size());
  return array;
}

}  // namespace tarnsheets
