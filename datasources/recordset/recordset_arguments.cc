#include "datasources/recordset/recordset_arguments.h"

#include "tarnsheets/failure.h"
#include "tarnsheets/recordset.h"

namespace tarnsheets {

void FailRecordsetArguments(const std::string& what) {
  throw Failure(kErrRecordsetArguments, std::string(kRecordsetArgumentsDescription) + " " + what);
}

bool EqualsIgnoringAsciiCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    char x = a[i], y = b[i];
    if (x >= 'A' && x <= 'Z') x = static_cast<char>(x + 32);
    if (y >= 'A' && y <= 'Z') y = static_cast<char>(y + 32);
    if (x != y) return false;
  }
  return true;
}

int32_t FindColumnIgnoringCase(const std::vector<std::string>& columns, std::string_view name) {
  for (size_t i = 0; i < columns.size(); ++i) {
    if (EqualsIgnoringAsciiCase(columns[i], name)) return static_cast<int32_t>(i);
  }
  return -1;
}

std::string FilterTextOf(const Variant& filter) {
  if (filter.IsString()) return filter.StringValue();
  if (filter.IsEmpty() || (filter.IsNumber() && filter.ToDouble() == 0)) return std::string();
  FailRecordsetArguments("A filter is a text, or 0 for none; " + filter.Literal() + " is neither.");
}

RecordsetFilter ParseFilterOver(const std::string& text, const std::vector<std::string>& columns,
                                std::vector<size_t>* filter_columns) {
  RecordsetFilter parsed = RecordsetFilter::Parse(text);
  filter_columns->clear();
  for (const std::string& name : parsed.Columns()) {
    const int32_t column = FindColumnIgnoringCase(columns, name);
    if (column < 0) {
      throw Failure(kErrItemNotFound, std::string(kItemNotFoundDescription) + " Filter \"" + text +
                                          "\": no column \"" + name + "\".");
    }
    filter_columns->push_back(static_cast<size_t>(column));
  }
  return parsed;
}

std::vector<size_t> ResolveGetRowsFields(const std::vector<std::string>& columns,
                                         const std::vector<Variant>& fields) {
  std::vector<size_t> out;
  if (fields.empty()) {
    for (size_t i = 0; i < columns.size(); ++i) out.push_back(i);
    return out;
  }
  for (const Variant& field : fields) {
    if (field.IsString()) {
      const int32_t column = FindColumnIgnoringCase(columns, field.StringValue());
      if (column < 0) {
        throw Failure(kErrItemNotFound, std::string(kItemNotFoundDescription) + " No column \"" +
                                            field.StringValue() + "\".");
      }
      out.push_back(static_cast<size_t>(column));
    } else if (field.IsNumber()) {
      const int32_t ordinal = field.ToLong();
      if (ordinal < 0 || static_cast<size_t>(ordinal) >= columns.size()) {
        throw Failure(kErrItemNotFound, std::string(kItemNotFoundDescription) +
                                            " No column at ordinal " + field.AsText() + ".");
      }
      out.push_back(static_cast<size_t>(ordinal));
    } else {
      FailRecordsetArguments("GetRows: the column " + field.Literal() +
                             " is neither a name nor an ordinal.");
    }
  }
  return out;
}

size_t GetRowsFirst(int32_t rows, const Variant& start, size_t position, size_t count) {
  size_t first = position;
  if (!start.IsEmpty()) {
    if (!start.IsNumber()) {
      FailRecordsetArguments("GetRows: Start " + start.Literal() + " is no bookmark.");
    }
    switch (start.ToLong()) {
      case kBookmarkCurrent:
        first = position;
        break;
      case kBookmarkFirst:
        first = 0;
        break;
      case kBookmarkLast:
        first = count == 0 ? 0 : count - 1;
        break;
      default:
        FailRecordsetArguments("GetRows: Start " + start.Literal() + " is no bookmark.");
    }
  }
  if (rows == 0 || rows < kGetRowsRest) {
    FailRecordsetArguments("GetRows: Rows " + std::to_string(rows) +
                           " is neither -1 nor a count above 0.");
  }
  if (first >= count) throw Failure(kErrNoCurrentRecord, kNoCurrentRecordDescription);
  return first;
}

}  // namespace tarnsheets
