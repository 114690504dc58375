// The arguments of a recordset's SetFilter and GetRows, read the same way by every recordset (in
// memory, over a database): the filter text and its columns, GetRows' column list and its Start
// and Rows. Standard library only.
#ifndef TARNSHEETS_DATASOURCES_RECORDSET_RECORDSET_ARGUMENTS_H_
#define TARNSHEETS_DATASOURCES_RECORDSET_RECORDSET_ARGUMENTS_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "datasources/recordset/filter.h"
#include "tarnsheets/variant.h"

namespace tarnsheets {

// Fails with kErrRecordsetArguments: its description, then `what`.
[[noreturn]] void FailRecordsetArguments(const std::string& what);

// True when `a` and `b` are the same but for ASCII case.
bool EqualsIgnoringAsciiCase(std::string_view a, std::string_view b);

// The index of the column named `name` in `columns` (without regard to ASCII case), or -1.
int32_t FindColumnIgnoringCase(const std::vector<std::string>& columns, std::string_view name);

// The text of SetFilter's argument: a text as it is; Empty or the number 0 (no filter) as "".
// Anything else fails with kErrRecordsetArguments.
std::string FilterTextOf(const Variant& filter);

// Parses the filter `text` and finds the columns it names among `columns`: on return
// (*filter_columns)[i] is the column of the filter's Columns()[i]. Fails as RecordsetFilter::Parse
// does, and with kErrItemNotFound naming the filter and the column that `columns` lacks.
RecordsetFilter ParseFilterOver(const std::string& text, const std::vector<std::string>& columns,
                                std::vector<size_t>* filter_columns);

// The column indices of GetRows' `fields` (names, without regard to ASCII case, or 0-based
// ordinals); every column in order when `fields` is empty. An unknown name or an ordinal out of
// range fails with kErrItemNotFound, a field of another type with kErrRecordsetArguments.
std::vector<size_t> ResolveGetRowsFields(const std::vector<std::string>& columns,
                                         const std::vector<Variant>& fields);

// The index, among the `count` rows that pass the filter, of the first row that GetRows returns:
// `start` is Empty (the current row, `position`) or a bookmark. Checks `rows` too (-1 for the
// rest, or a count above 0). Fails with kErrRecordsetArguments for a bad Start or Rows, and with
// kErrNoCurrentRecord when the first row would lie past the last.
size_t GetRowsFirst(int32_t rows, const Variant& start, size_t position, size_t count);

}  // namespace tarnsheets

#endif  // TARNSHEETS_DATASOURCES_RECORDSET_RECORDSET_ARGUMENTS_H_
