// ReadRows: fetches every row of a recordset from its first record, for the title reader.
#ifndef TARNSHEETS_TITLES_READ_ROWS_H_
#define TARNSHEETS_TITLES_READ_ROWS_H_

#include <vector>

#include "tarnsheets/recordset.h"
#include "tarnsheets/variant.h"

namespace tarnsheets {

// Calls GetRows on `ado_recordset` for all rows from the first record, in the columns `fields`,
// and stores the array in `*rows`. Returns true when the recordset then stands at EOF or when its
// RecordCount is not greater than the number of rows read (after reading every row that is always
// so; the caller does not look at the result). Has no failure handling of its own: a failure of
// GetRows, such as the one for a filter that no row passes, passes to the caller and leaves
// `*rows` unchanged.
bool ReadRows(Recordset& ado_recordset, const std::vector<Variant>& fields, RowsArray* rows);

}  // namespace tarnsheets

#endif  // TARNSHEETS_TITLES_READ_ROWS_H_
