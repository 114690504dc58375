#include "apps/script/titles_reader.h"

#include <memory>

#include "apps/script/script_lexer.h"
#include "datasources/recordset/memory_recordset.h"
#include "tarnsheets/titles.h"

namespace tarnsheets {

bool ReadTitlesFromJson(ClsSheetsTitles& titles, std::string_view json, const std::string& origin,
                        const std::string& columns_name, const std::string& other_condition) {
  std::unique_ptr<MemoryRecordset> recordset;
  try {
    recordset = MemoryRecordset::FromJson(json);
  } catch (const Failure& failure) {
    throw ScriptError(origin + ": " + failure.Description());
  }
  return titles.ReadTitlesInformation(*recordset, columns_name, other_condition);
}

}  // namespace tarnsheets
