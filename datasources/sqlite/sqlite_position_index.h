// SqlitePositionIndex: a sparse index of the positions of a record set, for positional moves
// that step over a bounded number of keys whatever the position.
//
// It holds the key of every step-th record (positions 1, 1 + step, 1 + 2 step, ...), read by one
// pass over the keys of the set in key order. A move to position n then reads "the record at
// offset (n - 1) % step from the key at KeyBefore(n)": at most step - 1 keys are stepped over.
// Integer keys (a table's rowid, most views) take 8 bytes each; as soon as one key is no
// integer, every key is kept as a SqlValue.
#ifndef TARNSHEETS_DATASOURCES_SQLITE_SQLITE_POSITION_INDEX_H_
#define TARNSHEETS_DATASOURCES_SQLITE_SQLITE_POSITION_INDEX_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "datasources/sqlite/sqlite_util.h"

namespace tarnsheets {

class SqlitePositionIndex {
 public:
  // REQUIRES: step >= 1.
  explicit SqlitePositionIndex(int64_t step) : step_(step) {}

  int64_t Step() const { return step_; }
  // True while the index is not read (or was dropped).
  bool Empty() const { return integers_.empty() && values_.empty(); }
  // The number of keys held.
  size_t Size() const { return integers_.size() + values_.size(); }
  // The memory that the index holds, in bytes.
  size_t Bytes() const;

  // Forgets every key: the set may have changed.
  void Drop();
  // Reads the index from `keys_in_order`, a prepared statement (its parameters bound) whose first
  // column is the key of every record of the set in key order; steps it to the end. Returns
  // SQLite's result code when a step fails (SQLITE_DONE on success); the index is then empty.
  int Read(sqlite3_stmt* keys_in_order);
  // The key stored for the step that holds 1-based `position`, and the offset of `position`
  // from it. False when the set has no such position (or the index is empty).
  bool KeyBefore(int64_t position, SqlValue* key, int64_t* offset) const;

 private:
  int64_t step_;
  std::vector<int64_t> integers_;  // while every key is an integer
  std::vector<SqlValue> values_;   // otherwise
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_DATASOURCES_SQLITE_SQLITE_POSITION_INDEX_H_
