// The demo host's model: one public control of the family bound to its table of the sample sales
// database, with its titles read from the database's table of titles in the process's language.
// The Qt window, the screenshot mode and the smoke test all go through it; it knows nothing of Qt
// beyond the toolkit interface, so that it can run on any toolkit.
#ifndef TARNSHEETS_APPS_DEMO_BOUND_CONTROL_H_
#define TARNSHEETS_APPS_DEMO_BOUND_CONTROL_H_

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tarnsheets/sheet.h"
#include "tarnsheets/types.h"

namespace tarnsheets {

class AppointmentSheet;
class Container;
class CurrencySheet;
class MemoryPropertyBag;
class PropertyBag;
class SqliteDataSource;
class Toolkit;

// The command names that a host's menus are written against, in the order of the command table.
// "Focus" is a status only: GetControlStatus knows it, ControlCommand does not.
inline constexpr std::array<std::string_view, 19> kSheetCommandNames = {
    "New Query",     "Refine Query", "Execute Query", "Undo",         "Redo",
    "Cut",           "Copy",         "Paste",         "Delete",       "Add New Record",
    "Delete Record", "Copy Record",  "Cancel Record", "First Record", "Previous Record",
    "Next Record",   "Last Record",  "Focus",         "Refresh"};

// Where the demo keeps its files: $XDG_DATA_HOME/tarnsheets (else ~/.local/share/tarnsheets) for
// the sample database, $XDG_CONFIG_HOME/tarnsheets (else ~/.config/tarnsheets) for the stored
// properties. Fails with Failure(kErrInvalidProcedureCall) when neither variable nor HOME is set.
std::string DemoDataDirectory();
std::string DemoConfigDirectory();

// Creates the sample database at `path` (and its directory) when there is no file there yet.
// Returns true when it was created. Fails with Failure(kErrDatabase) saying what failed.
bool EnsureSampleDatabase(const std::string& path, int64_t opportunities = 1000,
                          int64_t rows_per_table = 40);

// The values that the drop button of `column` offers, from the table LookupValue of `database`,
// in their order and in the process's language (the English value where a Chinese one is
// missing). Empty when the column has none. Fails with Failure(kErrDatabase) naming the file.
std::vector<std::string> ReadLookupValues(const std::string& database, const std::string& column);

// The stored properties of a control class: `directory`/<Class>.json. Reading a missing file gives
// nullopt; a broken file fails with std::runtime_error naming the file and what is wrong.
std::optional<std::unique_ptr<MemoryPropertyBag>> ReadStoredProperties(
    const std::string& directory, const std::string& class_name);
// Writes the file (and its directory); fails with std::runtime_error naming the file.
void WriteStoredProperties(const std::string& directory, const std::string& class_name,
                           const MemoryPropertyBag& bag);

class BoundControl {
 public:
  // Creates the public control `class_name` inside `parent` (restored from `bag` when given),
  // fills its titles from the table SheetTitles of `database` in the process's language, adds
  // `host_commands` (name, display text) to an entity sheet's SheetUserCommands, opens the table
  // named after the class and binds it; the control then shows the first record. Refusals of the
  // data source are shown through `toolkit`. Fails with Failure naming the class or the file;
  // nothing is left behind then.
  static std::unique_ptr<BoundControl> Open(
      Toolkit& toolkit, Container& parent, const std::string& class_name,
      const std::string& database, const PropertyBag* bag = nullptr,
      const std::vector<std::pair<std::string, std::string>>& host_commands = {});
  // Unbinds the control, destroys it and closes the table. Nothing pending is saved.
  ~BoundControl();
  BoundControl(const BoundControl&) = delete;
  BoundControl& operator=(const BoundControl&) = delete;

  const std::string& ClassName() const { return class_name_; }
  SheetControl& Control() const { return *control_; }
  // The control's own interface; exactly one of the three is non-null.
  Sheet* AsSheet() const { return sheet_; }
  CurrencySheet* AsCurrency() const { return currency_; }
  AppointmentSheet* AsAppointment() const { return appointment_; }
  SqliteDataSource& Source() const { return *source_; }
  const std::string& Database() const { return database_; }

  void AddObserver(SheetEvents* observer);
  void RemoveObserver(SheetEvents* observer);

  // A command of kSheetCommandNames as the host's menu sees it. The entity sheets and Appointment
  // answer GetControlStatus and ControlCommand themselves. Currency has no command surface: the
  // host offers the record moves and "Refresh" on its data source and shows the moved record by
  // InitDisplay; every other name is 2 (csNotSupported) there.
  ControlStatus Status(const std::string& command);
  // Carries the command out; true when it failed.
  bool Command(const std::string& command);
  // Save of the control: true when the save failed or was stopped.
  bool Save();

  // The caption of the bound table: CaptionName of the titles.
  std::string Caption();
  // The stored properties of the control, as the container asks for them.
  void WriteProperties(PropertyBag& bag) const;

 private:
  BoundControl() = default;

  Toolkit* toolkit_ = nullptr;
  std::string class_name_;
  std::string database_;
  std::unique_ptr<SqliteDataSource> source_;  // outlives the control that listens to it
  std::unique_ptr<SheetControl> control_;
  Sheet* sheet_ = nullptr;
  CurrencySheet* currency_ = nullptr;
  AppointmentSheet* appointment_ = nullptr;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_APPS_DEMO_BOUND_CONTROL_H_
