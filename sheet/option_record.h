// The seven ways in which an entity sheet departs from the model sheet `UserInfo`. Every other
// behaviour is the same engine on all seventeen sheets; these members are the only switches.
#ifndef TARNSHEETS_SHEET_OPTION_RECORD_H_
#define TARNSHEETS_SHEET_OPTION_RECORD_H_

#include <string_view>

namespace tarnsheets {

struct OptionRecord {
  // A right-button press on `Lbl_Caption` opens the pop-up menu, as a press on a title does.
  // False on `UserInfo` and `Opportunity`, whose caption press only gives the focus back.
  bool CaptionMenu;
  // After an update the record is shown again (and the status handler runs) only while
  // `EditStatus` is 0. True on `UserInfo`, `Opportunity`, `Contact`, `Activity`.
  bool RedrawOnlyWhenIdle;
  // The edit status engine has an arm for unknown status values, which disables copy and
  // delete when `RecordCount` is below 1. False on the two company sheets only.
  bool StatusElseArm;
  // A `RecordCount` below 0 counts as records when a field's text is read. `Activity` only.
  bool NegativeCountShows;
  // `Lbl_CaptionSpace` takes the width of `Lbl_Caption` when the caption is laid out.
  // `PriceList` only.
  bool CaptionSpaceFollows;
  // The host is asked through the event `NewRecord` before a new record starts.
  // `Competitor` only.
  bool NewRecordEvent;
  // The default that the key "Caption" is written against: "UserInfo" on `UserInfo`,
  // "Opportunity" on all sixteen others.
  std::string_view CaptionDefault;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_SHEET_OPTION_RECORD_H_
