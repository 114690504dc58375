#include "tarnsheets/titles.h"

#include <utility>

#include "tarnsheets/dialogs.h"
#include "tarnsheets/failure.h"
#include "tarnsheets/messages.h"
#include "tarnsheets/recordset.h"
#include "titles/read_rows.h"

namespace tarnsheets {
namespace {

// The platform's failure for a member used on a title that is not there.
constexpr int32_t kErrObjectNotSet = 91;
constexpr const char* kObjectNotSetDescription = "Object variable or With block variable not set";

// Message numbers: the first word of an error text, the not-found texts, and the names of the
// language's columns in the table of titles.
constexpr int32_t kMsgNotFound = 602;
constexpr int32_t kMsgRecordsetIsNull = 603;
constexpr int32_t kMsgDisplayColumnName = 500;
constexpr int32_t kMsgDescriptionColumn = 501;
constexpr int32_t kMsgDisplayNameColumn = 502;

}  // namespace

ClsSheetsTitles::ClsSheetsTitles(Dialogs& dialogs) : dialogs_(dialogs) {}

ClsSheetsTitles::TitleRef ClsSheetsTitles::Add(const std::string& title_name) {
  try {
    auto title = std::make_shared<ClsSheetsTitle>();
    title->MultiLine = false;
    title->Name = title_name;
    if (!title_name.empty()) {
      mCol.Add(title, title_name);
    } else {
      mCol.Add(title);
    }
    return title;
  } catch (const Failure& failure) {
    ShowErrorBox(dialogs_, "Add", failure.Number(), failure.Description());
    return nullptr;
  }
}

ClsSheetsTitles::TitleRef ClsSheetsTitles::Item(const Variant& title_name) const {
  // Failures are ignored here: whatever is not there gives nothing.
  try {
    return mCol.Item(title_name);
  } catch (const Failure&) {
    return nullptr;
  }
}

int32_t ClsSheetsTitles::Count() const { return mCol.Count(); }

bool ClsSheetsTitles::Remove(const Variant& vnt_index_key) {
  try {
    mCol.Remove(vnt_index_key);
    return false;
  } catch (const Failure& failure) {
    ShowErrorBox(dialogs_, "Remove", failure.Number(), failure.Description());
    return true;
  }
}

bool ClsSheetsTitles::Clear() {
  try {
    while (mCol.Count() >= 1) mCol.Remove(1);
    return false;
  } catch (const Failure& failure) {
    ShowErrorBox(dialogs_, "Clear", failure.Number(), failure.Description());
    return true;
  }
}

std::vector<ClsSheetsTitles::TitleRef> ClsSheetsTitles::NewEnum() const {
  return std::vector<TitleRef>(mCol.begin(), mCol.end());
}

std::string ClsSheetsTitles::GetFieldDisplayName(const std::string& field_name) {
  return FindTitleField(field_name, /*by_name=*/true, "GetFieldDisplayName");
}

std::string ClsSheetsTitles::GetFieldName(const std::string& display_name) {
  return FindTitleField(display_name, /*by_name=*/false, "GetFieldName");
}

std::string ClsSheetsTitles::FindTitleField(const std::string& searched, bool by_name,
                                            const char* title) {
  try {
    const std::string wanted = FoldKeyCase(searched);
    for (int32_t i = 1; i <= mCol.Count(); ++i) {
      const TitleRef& entry = mCol.Item(i);
      const std::string& compared = by_name ? entry->Name : entry->DisplayName;
      if (FoldKeyCase(compared) == wanted) return by_name ? entry->DisplayName : entry->Name;
    }
    dialogs_.MessageBox(title, LoadMessage(kMsgNotFound) + searched + "'!",
                        MessageBoxStyle::kPlain);
    return std::string();
  } catch (const Failure& failure) {
    ShowErrorBox(dialogs_, title, failure.Number(), failure.Description());
    return std::string();
  }
}

bool ClsSheetsTitles::ReadTitlesInformation(Recordset& ado_recordset,
                                            const std::string& columns_name,
                                            const std::string& other_condition) {
  // Without a pending failure the report below carries number 0 and an empty description.
  int32_t number = 0;
  std::string description;
  try {
    // The group's name goes in as it stands; the filter stays on the recordset afterwards.
    std::string filter = "ColumnName='" + columns_name + "'";
    if (!other_condition.empty()) filter += " and " + other_condition;
    ado_recordset.SetFilter(Variant(filter));

    // The language's columns are named by the message table.
    const std::vector<Variant> fields = {Variant(LoadMessage(kMsgDisplayColumnName)),
                                         Variant("Name"),
                                         Variant(LoadMessage(kMsgDescriptionColumn)),
                                         Variant(LoadMessage(kMsgDisplayNameColumn)),
                                         Variant("MultiLine"),
                                         Variant("DisplayFormat"),
                                         Variant("DisplayCommand")};
    RowsArray rows;
    ReadRows(ado_recordset, fields, &rows);  // its result is not needed here

    if (rows.ColumnUpperBound() != 0) {
      const Variant& caption = rows.At(0, 0);
      caption_name_ = Variant(caption.IsNull() ? std::string() : caption.ToText());
      Clear();
      for (int32_t row = 0; row <= rows.RowUpperBound(); ++row) {
        // A null Name fails here, before Add is entered.
        Add(rows.At(1, row).ToText());
        // The cells go to the title at the last position. When Add refused a repeated Name, that
        // is the title of the row before, whose fields this row then overwrites.
        for (int32_t column = 2; column <= 6; ++column) {
          const Variant& cell = rows.At(column, row);
          if (cell.IsNull()) continue;
          TitleRef title = Item(Variant(Count()));
          if (!title) throw Failure(kErrObjectNotSet, kObjectNotSetDescription);
          switch (column) {
            case 2:
              title->Description = cell.ToText();
              break;
            case 3:
              title->DisplayName = cell.ToText();
              break;
            case 4:
              title->MultiLine = cell.ToBool();
              break;
            case 5:
              title->DisplayFormat = cell.ToText();
              break;
            case 6:
              title->DisplayCommand = cell.ToBool();
              break;
          }
        }
      }
      return false;
    }
    // An array of one column: say that the group's recordset is null, then fall into the failure
    // report with nothing pending, so that a second box follows with 0 and no description.
    dialogs_.MessageBox(std::string(), "'" + columns_name + LoadMessage(kMsgRecordsetIsNull),
                        MessageBoxStyle::kPlain);
  } catch (const Failure& failure) {
    number = failure.Number();
    description = failure.Description();
  }
  ShowErrorBox(dialogs_, "ReadTitlesInformation", number, description);
  return true;
}

}  // namespace tarnsheets
