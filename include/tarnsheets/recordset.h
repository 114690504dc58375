// Recordset: the relational table that a host hands to ClsSheetsTitles::ReadTitlesInformation.
//
// The engine needs four operations of it: set (and read) a Filter, fetch the rows that pass it
// with GetRows, and ask EOF and RecordCount. Implementations: the in-memory recordset of
// datasources/recordset, and a recordset over a database. The failures use the numbers a
// relational recordset raises (see the constants below); the description says what was wrong.
#ifndef TARNSHEETS_RECORDSET_H_
#define TARNSHEETS_RECORDSET_H_

#include <cstdint>
#include <string>
#include <vector>

#include "tarnsheets/failure.h"
#include "tarnsheets/variant.h"

namespace tarnsheets {

// Failure numbers of a recordset.
// Bad arguments, and a filter that cannot be parsed.
inline constexpr int32_t kErrRecordsetArguments = 3001;
// GetRows (or another read of the current record) while BOF or EOF is True, for instance when no
// row passes the filter: "Either BOF or EOF is True, or the current record has been deleted.
// Requested operation requires a current record."
inline constexpr int32_t kErrNoCurrentRecord = 3021;
// A column name or ordinal that the recordset does not have: kErrItemNotFound of failure.h.

// The platform's descriptions of the three numbers above.
inline constexpr const char* kRecordsetArgumentsDescription =
    "Arguments are of the wrong type, are out of acceptable range, or are in conflict with one "
    "another.";
inline constexpr const char* kNoCurrentRecordDescription =
    "Either BOF or EOF is True, or the current record has been deleted. Requested operation "
    "requires a current record.";
inline constexpr const char* kItemNotFoundDescription =
    "Item cannot be found in the collection corresponding to the requested name or ordinal.";

// Arguments of GetRows.
inline constexpr int32_t kGetRowsRest = -1;     // Rows: all rows from Start to the end
inline constexpr int32_t kBookmarkCurrent = 0;  // Start: the current record
inline constexpr int32_t kBookmarkFirst = 1;    // Start: the first record
inline constexpr int32_t kBookmarkLast = 2;     // Start: the last record

// The two-dimensional array that GetRows returns, indexed by column, then by row, both from 0.
class RowsArray {
 public:
  RowsArray() = default;
  // An array of `columns` by `rows` Empty cells.
  RowsArray(int32_t columns, int32_t rows)
      : columns_(columns < 0 ? 0 : columns),
        rows_(rows < 0 ? 0 : rows),
        cells_(static_cast<size_t>(columns_) * static_cast<size_t>(rows_)) {}

  // The upper bounds of the two dimensions: the count minus 1 (-1 for an empty dimension).
  int32_t ColumnUpperBound() const { return columns_ - 1; }
  int32_t RowUpperBound() const { return rows_ - 1; }

  // The cell at (column, row). Fails with 9 (subscript out of range) outside the bounds.
  const Variant& At(int32_t column, int32_t row) const { return cells_[Offset(column, row)]; }
  Variant& At(int32_t column, int32_t row) { return cells_[Offset(column, row)]; }

 private:
  size_t Offset(int32_t column, int32_t row) const {
    if (column < 0 || column >= columns_ || row < 0 || row >= rows_) {
      throw PlatformFailure(kErrSubscriptOutOfRange);
    }
    return static_cast<size_t>(column) * static_cast<size_t>(rows_) + static_cast<size_t>(row);
  }

  int32_t columns_ = 0;
  int32_t rows_ = 0;
  std::vector<Variant> cells_;  // column-major
};

class Recordset {
 public:
  virtual ~Recordset() = default;

  // The filter in force: the text last assigned, or the number 0 when none is (no filter).
  virtual Variant Filter() const = 0;

  // Restricts the visible rows to those that pass `filter` and moves to the first of them. An
  // empty text or the number 0 takes the filter off. A filter that cannot be parsed, or that
  // names a column the recordset does not have, fails with a number and a description that says
  // where; the filter in force and the position are then unchanged.
  virtual void SetFilter(const Variant& filter) = 0;

  // Reads `rows` rows (kGetRowsRest for all to the end) from `start` (a kBookmark... constant;
  // Empty stands for the current record) into an array of the columns `fields` (names or
  // zero-based ordinals; an empty list gives every column in order), and moves past the rows
  // read. Fails with kErrNoCurrentRecord when `start` stands at EOF, in particular when no row
  // passes the filter, and with kErrItemNotFound for a column that is not there.
  virtual RowsArray GetRows(int32_t rows, const Variant& start,
                            const std::vector<Variant>& fields) = 0;

  // True when the current position is past the last visible row. (The name avoids the C
  // library's EOF macro.)
  virtual bool Eof() const = 0;

  // The number of rows that pass the filter in force.
  virtual int32_t RecordCount() const = 0;

  // The names of the columns, in order.
  virtual std::vector<std::string> ColumnNames() const = 0;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_RECORDSET_H_
