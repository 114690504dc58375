// SqliteRecordset: the recordset of the titles reader over a query of a SQLite database.
//
// It runs the host's SELECT (a query of the host's own, for example "SELECT * FROM SheetTitles")
// and answers Filter, GetRows, EOF and RecordCount as a relational recordset does. The Filter is
// parsed and evaluated by our own RecordsetFilter (datasources/recordset/filter.h), row by row;
// its text never reaches SQL. Memory stays bounded: SetFilter reads the query once to count the
// rows that pass, and GetRows reads it again, keeping only the rows it returns.
#ifndef TARNSHEETS_DATASOURCES_SQLITE_SQLITE_RECORDSET_H_
#define TARNSHEETS_DATASOURCES_SQLITE_SQLITE_RECORDSET_H_

#include <memory>
#include <string>
#include <vector>

#include "datasources/recordset/filter.h"
#include "tarnsheets/recordset.h"

struct sqlite3;

namespace tarnsheets {

class SqliteRecordset final : public Recordset {
 public:
  // Opens `path` read-only and prepares `query`. Fails with Failure(kErrDatabase) naming the file
  // or the query and SQLite's message; fails with kErrRecordsetArguments when the query is not
  // one SELECT (a second statement after it, or a statement that returns no columns).
  static std::unique_ptr<SqliteRecordset> Open(const std::string& path, const std::string& query);
  ~SqliteRecordset() override;

  Variant Filter() const override { return filter_text_; }
  void SetFilter(const Variant& filter) override;
  RowsArray GetRows(int32_t rows, const Variant& start,
                    const std::vector<Variant>& fields) override;
  bool Eof() const override { return position_ >= count_; }
  int32_t RecordCount() const override { return count_; }
  std::vector<std::string> ColumnNames() const override { return columns_; }

 private:
  SqliteRecordset(sqlite3* db, std::string query);
  // Runs the query and calls `row(visible_index)` for each row that passes `filter`, until it
  // returns false. Returns the number of rows that passed.
  template <typename Fn>
  int32_t Scan(const RecordsetFilter& filter, const std::vector<size_t>& filter_columns, Fn&& row);

  sqlite3* db_;
  std::string query_;
  std::vector<std::string> columns_;
  Variant filter_text_ = Variant(int32_t{0});
  RecordsetFilter filter_;
  std::vector<size_t> filter_columns_;
  int32_t count_ = 0;
  int32_t position_ = 0;  // index among the rows that pass
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_DATASOURCES_SQLITE_SQLITE_RECORDSET_H_
