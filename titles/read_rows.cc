#include "titles/read_rows.h"

namespace tarnsheets {

bool ReadRows(Recordset& ado_recordset, const std::vector<Variant>& fields, RowsArray* rows) {
  *rows = ado_recordset.GetRows(kGetRowsRest, Variant(kBookmarkFirst), fields);
  return ado_recordset.Eof() || !(ado_recordset.RecordCount() > rows->RowUpperBound() + 1);
}

}  // namespace tarnsheets
