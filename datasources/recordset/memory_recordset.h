// MemoryRecordset: a recordset over rows of Variants held in memory, with named columns.
//
// Loads from a JSON array of objects (one object per row; JSON null is a Null cell, a key that a
// row lacks an Empty one), filters with RecordsetFilter, and answers GetRows, EOF and RecordCount
// as a relational recordset does. Meant for tables of titles, fixtures and tests.
#ifndef TARNSHEETS_DATASOURCES_RECORDSET_MEMORY_RECORDSET_H_
#define TARNSHEETS_DATASOURCES_RECORDSET_MEMORY_RECORDSET_H_

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "datasources/recordset/filter.h"
#include "tarnsheets/recordset.h"
#include "tarnsheets/variant.h"

namespace tarnsheets {

class MemoryRecordset : public Recordset {
 public:
  // A recordset without columns and rows.
  MemoryRecordset() = default;

  // A recordset of `rows`, each holding one cell per column of `columns`, in that order. Fails
  // with kErrRecordsetArguments, naming the row, when a row has another number of cells, and
  // naming the column when a column name is empty or given twice.
  MemoryRecordset(std::vector<std::string> columns, std::vector<std::vector<Variant>> rows);

  // A recordset loaded from `json` (see LoadJson). Fails as LoadJson does.
  static std::unique_ptr<MemoryRecordset> FromJson(std::string_view json);

  // Replaces the columns and rows with those of `json`, a JSON array of objects. The columns are
  // the objects' keys in order of first appearance; text, number (a whole number in the 32-bit
  // range becomes a Long, any other a Double), true/false and null become Variants; a key that a
  // row lacks gives an Empty cell. Takes the filter off and stands on the first row. Malformed
  // JSON, or JSON of another shape (not an array, a row that is no object, a nested array or
  // object as a cell) fails with kErrRecordsetArguments and a description that says where (byte,
  // line and column; or row and key); the recordset is then unchanged.
  void LoadJson(std::string_view json);

  Variant Filter() const override { return filter_text_; }
  void SetFilter(const Variant& filter) override;
  RowsArray GetRows(int32_t rows, const Variant& start,
                    const std::vector<Variant>& fields) override;
  bool Eof() const override { return position_ >= visible_.size(); }
  int32_t RecordCount() const override { return static_cast<int32_t>(visible_.size()); }
  std::vector<std::string> ColumnNames() const override { return columns_; }

  // True when no row passes the filter (the current position is before the first row).
  bool Bof() const { return visible_.empty(); }
  // Stands on the first row that passes the filter.
  void MoveFirst() { position_ = 0; }

 private:
  // The rows that pass `filter`, whose columns are `filter_columns`.
  std::vector<size_t> VisibleRows(const RecordsetFilter& filter,
                                  const std::vector<size_t>& filter_columns) const;

  // The table.
  std::vector<std::string> columns_;
  std::vector<std::vector<Variant>> rows_;
  // The filter in force and the rows that pass it; position_ indexes visible_.
  Variant filter_text_ = Variant(int32_t{0});
  std::vector<size_t> visible_;
  size_t position_ = 0;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_DATASOURCES_RECORDSET_MEMORY_RECORDSET_H_
