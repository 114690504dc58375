// `titles read`: ReadTitlesInformation over an in-memory recordset built from a JSON array of
// row objects.
#ifndef TARNSHEETS_APPS_SCRIPT_TITLES_READER_H_
#define TARNSHEETS_APPS_SCRIPT_TITLES_READER_H_

#include <string>
#include <string_view>

namespace tarnsheets {

class ClsSheetsTitles;

// Builds the recordset from `json` (throws ScriptError naming `origin` when it is no JSON array
// of row objects), then returns what ReadTitlesInformation(recordset, columns_name,
// other_condition) returns.
bool ReadTitlesFromJson(ClsSheetsTitles& titles, std::string_view json, const std::string& origin,
                        const std::string& columns_name, const std::string& other_condition);

}  // namespace tarnsheets

#endif  // TARNSHEETS_APPS_SCRIPT_TITLES_READER_H_
