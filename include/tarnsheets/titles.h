// Field titles: ClsSheetsTitle, the record of one field's title, and ClsSheetsTitles, the ordered
// keyed collection of them that a sheet owns and hands out through SheetTitles.
//
// The host fills the collection, with Add or from a table of titles in a recordset
// (ReadTitlesInformation); the sheet only reads it. Boolean results are inverted throughout:
// false means the operation worked, true that it failed, and a failure has then already been shown
// to the user in a critical message box titled with the operation's name.
#ifndef TARNSHEETS_TITLES_H_
#define TARNSHEETS_TITLES_H_

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tarnsheets/keyed_collection.h"
#include "tarnsheets/variant.h"

namespace tarnsheets {

class Dialogs;
class Recordset;

// One field's title. Plain data, read and written by the host; a new record has empty texts and
// false everywhere, apart from Name, which ClsSheetsTitles::Add fills.
class ClsSheetsTitle {
 public:
  static constexpr const char* kClassId = "17485acb-217a-49b0-8b5a-4d4374219d26";

  // The field's name as the data source knows it; also its key in the collection.
  std::string Name;
  // The text shown as the field's title.
  std::string DisplayName;
  // A longer text about the field.
  std::string Description;
  // The field is to be edited in several lines. Kept for the host; no sheet reads it.
  bool MultiLine = false;
  // The format in which the field's value is shown.
  std::string DisplayFormat;
  // The field's command button is offered (read by the Currency sheet only).
  bool DisplayCommand = false;
};

// The titles of one sheet, in insertion order, keyed by Name without regard to case.
class ClsSheetsTitles {
 public:
  static constexpr const char* kClassId = "94ec5ff5-45fe-45a0-b75f-e4eed498aeb2";

  using TitleRef = std::shared_ptr<ClsSheetsTitle>;

  // `dialogs` shows the boxes of the trapped failures and of the name searches; it must outlive
  // the collection.
  explicit ClsSheetsTitles(Dialogs& dialogs);
  ClsSheetsTitles(const ClsSheetsTitles&) = delete;
  ClsSheetsTitles& operator=(const ClsSheetsTitles&) = delete;

  // The display name of the whole group of columns. Empty until ReadTitlesInformation sets it to
  // a text; the host may assign any value.
  const Variant& CaptionName() const { return caption_name_; }
  void SetCaptionName(const Variant& caption_name) { caption_name_ = caption_name; }

  // Creates a title with MultiLine false and Name `title_name`, and adds it under the key
  // `title_name`, or without a key (reachable by position only) when `title_name` is empty.
  // Returns the new title. On failure (a key already present, in any case: 457) shows the box
  // "Add" and returns nullptr; the collection is then unchanged.
  TitleRef Add(const std::string& title_name = std::string());

  // The default member. The title under the key `title_name` when it is a text, else at the
  // one-based position it gives. Runs with failures ignored: a name or position that is not there
  // gives nullptr, and no box.
  TitleRef Item(const Variant& title_name) const;
  TitleRef operator[](const Variant& title_name) const { return Item(title_name); }

  int32_t Count() const;

  // Removes the title under a text key or at a position. Returns false on success; on failure
  // (5 for one that is not there) shows the box "Remove" and returns true.
  bool Remove(const Variant& vnt_index_key);

  // Removes the first title until the count is below 1. Returns false on success (at once on an
  // empty collection); on failure shows the box "Clear" and returns true.
  bool Clear();

  // The titles in order, as a snapshot: changing the collection while walking it is safe.
  std::vector<TitleRef> NewEnum() const;

  // The DisplayName of the first title whose Name matches `field_name` without regard to case.
  // Without a match shows the plain box "GetFieldDisplayName" (message 602, the searched text,
  // "'!") and returns the empty text; on a failure shows the critical box of that title and
  // returns the empty text.
  std::string GetFieldDisplayName(const std::string& field_name);

  // The Name of the first title whose DisplayName matches `display_name` without regard to case;
  // otherwise as GetFieldDisplayName, under the title "GetFieldName".
  std::string GetFieldName(const std::string& display_name);

  // Reads the titles of the group `columns_name` from a table of titles in the language of the
  // message table (its columns are named by messages 500 to 502). Leaves `ado_recordset` filtered
  // on "ColumnName='<columns_name>'" (joined by " and " to `other_condition` when that is not
  // empty); `columns_name` is put in as it stands, so a quote in it breaks the filter. The old
  // titles are cleared only once the rows have been read, so a failure to read them (no row in
  // the group, a missing column, a filter that cannot be parsed) leaves them in place; a failure
  // in the row loop leaves the titles added so far. Returns false on success; on failure shows
  // the box "ReadTitlesInformation" and returns true.
  bool ReadTitlesInformation(Recordset& ado_recordset, const std::string& columns_name,
                             const std::string& other_condition = std::string());

  // Range-for over the titles in order. The collection must not change during the walk; use
  // NewEnum for that.
  KeyedCollection<TitleRef>::const_iterator begin() const { return mCol.begin(); }
  KeyedCollection<TitleRef>::const_iterator end() const { return mCol.end(); }

 private:
  // The one search behind GetFieldDisplayName and GetFieldName.
  std::string FindTitleField(const std::string& searched, bool by_name, const char* title);

  Dialogs& dialogs_;
  Variant caption_name_;
  KeyedCollection<TitleRef> mCol;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_TITLES_H_
