#include "datasources/recordset/memory_recordset.h"

#include <algorithm>
#include <limits>
#include <utility>

#include <nlohmann/json.hpp>

#include "datasources/recordset/recordset_arguments.h"
#include "tarnsheets/failure.h"

namespace tarnsheets {
namespace {

[[noreturn]] void FailJson(const std::string& what) {
  throw Failure(kErrRecordsetArguments, "The rows are no JSON array of objects: " + what);
}

std::vector<size_t> AllRows(size_t count) {
  std::vector<size_t> rows(count);
  for (size_t i = 0; i < count; ++i) rows[i] = i;
  return rows;
}

// The cell that a JSON value gives; `where` names its row and key for a failure.
Variant CellFromJson(const nlohmann::json& value, const std::string& where) {
  switch (value.type()) {
    case nlohmann::json::value_t::null:
      return Variant::Null();
    case nlohmann::json::value_t::boolean:
      return Variant(value.get<bool>());
    case nlohmann::json::value_t::string:
      return Variant(value.get<std::string>());
    case nlohmann::json::value_t::number_integer: {
      const int64_t n = value.get<int64_t>();
      if (n >= std::numeric_limits<int32_t>::min() && n <= std::numeric_limits<int32_t>::max()) {
        return Variant(static_cast<int32_t>(n));
      }
      return Variant(static_cast<double>(n));
    }
    case nlohmann::json::value_t::number_unsigned: {
      const uint64_t n = value.get<uint64_t>();
      if (n <= static_cast<uint64_t>(std::numeric_limits<int32_t>::max())) {
        return Variant(static_cast<int32_t>(n));
      }
      return Variant(static_cast<double>(n));
    }
    case nlohmann::json::value_t::number_float:
      return Variant(value.get<double>());
    default:
      FailJson(where + ": an array or object is no cell value");
  }
}

}  // namespace

MemoryRecordset::MemoryRecordset(std::vector<std::string> columns,
                                 std::vector<std::vector<Variant>> rows) {
  for (size_t i = 0; i < columns.size(); ++i) {
    if (columns[i].empty())
      FailRecordsetArguments("Column " + std::to_string(i + 1) + " has no name.");
    for (size_t j = 0; j < i; ++j) {
      if (EqualsIgnoringAsciiCase(columns[i], columns[j])) {
        FailRecordsetArguments("The column \"" + columns[i] + "\" is given twice.");
      }
    }
  }
  for (size_t r = 0; r < rows.size(); ++r) {
    if (rows[r].size() != columns.size()) {
      FailRecordsetArguments("Row " + std::to_string(r + 1) + " has " +
                             std::to_string(rows[r].size()) + " cells for " +
                             std::to_string(columns.size()) + " columns.");
    }
  }
  columns_ = std::move(columns);
  rows_ = std::move(rows);
  visible_ = AllRows(rows_.size());
}

std::unique_ptr<MemoryRecordset> MemoryRecordset::FromJson(std::string_view json) {
  auto recordset = std::make_unique<MemoryRecordset>();
  recordset->LoadJson(json);
  return recordset;
}

void MemoryRecordset::LoadJson(std::string_view json) {
  nlohmann::json document;
  try {
    document = nlohmann::json::parse(json.begin(), json.end());
  } catch (const nlohmann::json::parse_error& error) {
    // The library's text reads "[json.exception.parse_error.101] parse error at line 1, column 5:
    // ..."; the bracketed tag says nothing to a user.
    std::string what = error.what();
    const size_t tag_end = what.find("] ");
    if (what.starts_with("[json.exception") && tag_end != std::string::npos) {
      what.erase(0, tag_end + 2);
    }
    FailJson("malformed at byte " + std::to_string(error.byte) + ": " + what);
  }
  if (!document.is_array()) FailJson("the text holds a " + std::string(document.type_name()));

  std::vector<std::string> columns;
  std::vector<std::vector<Variant>> rows;
  for (size_t r = 0; r < document.size(); ++r) {
    const nlohmann::json& object = document[r];
    const std::string row_name = "row " + std::to_string(r + 1);
    if (!object.is_object()) FailJson(row_name + " is a " + std::string(object.type_name()));
    std::vector<Variant> row(columns.size());  // Empty where the row lacks a key
    for (auto it = object.begin(); it != object.end(); ++it) {
      const std::string where = row_name + ", key \"" + it.key() + "\"";
      if (it.key().empty()) FailJson(where + ": a column needs a name");
      size_t column = 0;
      while (column < columns.size() && !EqualsIgnoringAsciiCase(columns[column], it.key()))
        ++column;
      if (column == columns.size()) {
        columns.push_back(it.key());
        row.emplace_back();
        for (auto& earlier : rows) earlier.emplace_back();
      } else if (columns[column] != it.key()) {
        FailJson(where + ": the column is already named \"" + columns[column] + "\"");
      }
      row[column] = CellFromJson(it.value(), where);
    }
    rows.push_back(std::move(row));
  }

  // Everything is read: only now does the recordset change.
  columns_ = std::move(columns);
  rows_ = std::move(rows);
  filter_text_ = Variant(int32_t{0});
  visible_ = AllRows(rows_.size());
  position_ = 0;
}

void MemoryRecordset::SetFilter(const Variant& filter) {
  const std::string text = FilterTextOf(filter);
  // Parse and check the columns before anything changes.
  std::vector<size_t> filter_columns;
  const RecordsetFilter parsed = ParseFilterOver(text, columns_, &filter_columns);
  std::vector<size_t> visible = VisibleRows(parsed, filter_columns);

  filter_text_ = parsed.PassesAll() ? Variant(int32_t{0}) : Variant(text);
  visible_ = std::move(visible);
  position_ = 0;
}

RowsArray MemoryRecordset::GetRows(int32_t rows, const Variant& start,
                                   const std::vector<Variant>& fields) {
  const std::vector<size_t> columns = ResolveGetRowsFields(columns_, fields);
  const size_t first = GetRowsFirst(rows, start, position_, visible_.size());

  const size_t rest = visible_.size() - first;
  const size_t count = rows == kGetRowsRest ? rest : std::min(rest, static_cast<size_t>(rows));
  RowsArray array(static_cast<int32_t>(columns.size()), static_cast<int32_t>(count));
  for (size_t c = 0; c < columns.size(); ++c) {
    for (size_t r = 0; r < count; ++r) {
      array.At(static_cast<int32_t>(c), static_cast<int32_t>(r)) =
          rows_[visible_[first + r]][columns[c]];
    }
  }
  position_ = first + count;
  return array;
}

std::vector<size_t> MemoryRecordset::VisibleRows(const RecordsetFilter& filter,
                                                 const std::vector<size_t>& filter_columns) const {
  std::vector<size_t> visible;
  for (size_t r = 0; r < rows_.size(); ++r) {
    const std::vector<Variant>& row = rows_[r];
    if (filter.Matches([&](size_t i) { return row[filter_columns[i]]; })) visible.push_back(r);
  }
  return visible;
}

}  // namespace tarnsheets
