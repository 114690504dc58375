// The platform's failure for a member reached through an object reference that is not set, and
// the checks that raise it. Internal to the engine.
#ifndef TARNSHEETS_SHEET_REQUIRE_H_
#define TARNSHEETS_SHEET_REQUIRE_H_

#include <string>

#include "tarnsheets/data_source.h"
#include "tarnsheets/failure.h"
#include "tarnsheets/titles.h"

namespace tarnsheets {

inline constexpr int32_t kErrObjectNotSet = 91;

inline Failure ObjectNotSet(const char* what) {
  return Failure(kErrObjectNotSet,
                 std::string("Object variable or With block variable not set (") + what + ")");
}

inline DataSource& Require(DataSource* data_source) {
  if (data_source == nullptr) throw ObjectNotSet("SheetRecordset");
  return *data_source;
}

inline ClsSheetsTitle& Require(const ClsSheetsTitles::TitleRef& title) {
  if (!title) throw ObjectNotSet("SheetTitles item");
  return *title;
}

}  // namespace tarnsheets

#endif  // TARNSHEETS_SHEET_REQUIRE_H_
