#include "datasources/sqlite/sqlite_position_index.h"

#include <utility>

namespace tarnsheets {

size_t SqlitePositionIndex::Bytes() const {
  size_t bytes = integers_.capacity() * sizeof(int64_t) + values_.capacity() * sizeof(SqlValue);
  for (const SqlValue& v : values_) {
    if (v.text.capacity() > sizeof(std::string)) bytes += v.text.capacity();
  }
  return bytes;
}

void SqlitePositionIndex::Drop() {
  integers_ = {};
  values_ = {};
}

int SqlitePositionIndex::Read(sqlite3_stmt* keys_in_order) {
  Drop();
  std::vector<int64_t> integers;
  std::vector<SqlValue> values;
  bool all_integers = true;
  int64_t row = 0;
  int rc;
  while ((rc = sqlite3_step(keys_in_order)) == SQLITE_ROW) {
    if (row++ % step_ != 0) continue;
    if (all_integers && sqlite3_column_type(keys_in_order, 0) == SQLITE_INTEGER) {
      integers.push_back(sqlite3_column_int64(keys_in_order, 0));
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
    values.push_back(SqlValue::FromColumn(keys_in_order, 0));
  }
  if (rc != SQLITE_DONE) return rc;
  integers.shrink_to_fit();
  values.shrink_to_fit();
  integers_ = std::move(integers);
  values_ = std::move(values);
  return rc;
}

bool SqlitePositionIndex::KeyBefore(int64_t position, SqlValue* key, int64_t* offset) const {
  if (position < 1) return false;
  const size_t step = static_cast<size_t>((position - 1) / step_);
  if (step >= Size()) return false;
  if (!integers_.empty()) {
    *key = SqlValue();
    key->type = SQLITE_INTEGER;
    key->integer = integers_[step];
  } else {
    *key = values_[step];
  }
  *offset = (position - 1) % step_;
  return true;
}

}  // namespace tarnsheets
