// Building a MemoryDataSource from a JSON fixture.
//
// The fixture is one object:
//   {"fields": [{"name": "F_OPPNAME", "type": 0}, {"name": "FORE_REVENUE", "type": 4,
//                "reference": "CURR_CODE"}, ...],
//    "rows": [{"F_OPPNAME": "Big deal", "FORE_REVENUE": -1234.5, ...}],
//    "symbols": {"USD": "$"}, "readOnly": false, "rowEditable": [true]}
// A field has "name" and "type" (0 to 6), and optionally "dateKind" (0 to 4), "numberKind"
// (0 to 2), "updatable" (default true) and "reference" (the field holding a money field's
// currency). In a row, JSON null is Null and a missing key is Empty; dates are written
// "yyyy-mm-dd hh:nn:ss", "yyyy-mm-dd" or "hh:nn:ss"; numbers and money are JSON numbers, whole
// numbers JSON integers, yes/no fields numbers or true/false, text fields strings.
// "rowEditable" may be shorter than "rows": the rest are editable.
//
// A malformed fixture fails with kErrInvalidProcedureCall and a description that names the file,
// the place (line:column where the parser stopped, for broken JSON, a JSON pointer such as
// /fields/2/type for a wrong value) and what is wrong; nothing is built.
#ifndef TARNSHEETS_DATASOURCES_MEMORY_MEMORY_FIXTURE_H_
#define TARNSHEETS_DATASOURCES_MEMORY_MEMORY_FIXTURE_H_

#include <memory>
#include <string>
#include <string_view>

#include "datasources/memory/memory_data_source.h"

namespace tarnsheets {

// Reads the fixture in the file at `path`. The source is returned closed.
std::unique_ptr<MemoryDataSource> LoadMemoryFixture(const std::string& path,
                                                    Dialogs* dialogs = nullptr);

// Reads a fixture from `json`; `origin` names it in failures (a file name, "<script>").
std::unique_ptr<MemoryDataSource> MemoryFixtureFromText(std::string_view json,
                                                        const std::string& origin,
                                                        Dialogs* dialogs = nullptr);

}  // namespace tarnsheets

#endif  // TARNSHEETS_DATASOURCES_MEMORY_MEMORY_FIXTURE_H_
