#include "apps/demo/bound_control.h"

#include <sqlite3.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "apps/script/json_bag.h"
#include "apps/script/script_lexer.h"  // ScriptError, which the JSON bag throws
#include "data/sample_database.h"
#include "datasources/sqlite/sqlite_data_source.h"
#include "datasources/sqlite/sqlite_recordset.h"
#include "datasources/sqlite/sqlite_util.h"
#include "family/form_table.h"
#include "family/glyphs.h"
#include "family/registry.h"
#include "tarnsheets/appointment_sheet.h"
#include "tarnsheets/currency_sheet.h"
#include "tarnsheets/failure.h"
#include "tarnsheets/messages.h"
#include "tarnsheets/property_bag.h"
#include "tarnsheets/titles.h"
#include "tarnsheets/toolkit.h"
#include "tarnsheets/user_commands.h"

namespace tarnsheets {
namespace {

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

// $VARIABLE/tarnsheets, else $HOME/FALLBACK/tarnsheets.
std::string UserDirectory(const char* variable, const char* fallback) {
  std::string base = Environment(variable);
  if (base.empty()) {
    const std::string home = Environment("HOME");
    if (home.empty()) {
      throw Failure(
          kErrInvalidProcedureCall,
          std::string("Neither ") + variable + " nor HOME is set: no place for the demo's files");
    }
    base = home + "/" + fallback;
  }
  return base + "/tarnsheets";
}

std::string StoredPropertiesPath(const std::string& directory, const std::string& class_name) {
  return directory + "/" + class_name + ".json";
}

}  // namespace

std::string DemoDataDirectory() { return UserDirectory("XDG_DATA_HOME", ".local/share"); }

std::string DemoConfigDirectory() { return UserDirectory("XDG_CONFIG_HOME", ".config"); }

bool EnsureSampleDatabase(const std::string& path, int64_t opportunities, int64_t rows_per_table) {
  namespace fs = std::filesystem;
  if (fs::exists(path)) return false;
  const fs::path parent = fs::path(path).parent_path();
  std::error_code error;
  if (!parent.empty()) fs::create_directories(parent, error);
  if (error) {
    throw Failure(kErrDatabase, "Cannot create the directory \"" + parent.string() +
                                    "\" for the sample database: " + error.message());
  }
  SampleDatabaseOptions options;
  options.opportunities = opportunities;
  options.rows_per_table = rows_per_table;
  BuildSampleDatabase(path, options);
  return true;
}

std::vector<std::string> ReadLookupValues(const std::string& database, const std::string& column) {
  sqlite3* db = nullptr;
  if (sqlite3_open_v2(database.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
    Failure failure = DatabaseFailure(db, "open \"" + database + "\" for the pick lists");
    sqlite3_close(db);
    throw failure;
  }
  std::vector<std::string> values;
  try {
    Statement s(db,
                "SELECT Value, ChineseValue FROM LookupValue WHERE ColumnName = ?1 "
                "ORDER BY SortOrder",
                "read the pick list of " + column);
    sqlite3_bind_text(s.get(), 1, column.c_str(), -1, SQLITE_TRANSIENT);
    const bool chinese = MessageLanguage() == kLanguageChinese;
    while (sqlite3_step(s.get()) == SQLITE_ROW) {
      const int pick = chinese && sqlite3_column_type(s.get(), 1) != SQLITE_NULL ? 1 : 0;
      const unsigned char* text = sqlite3_column_text(s.get(), pick);
      values.emplace_back(text == nullptr ? "" : reinterpret_cast<const char*>(text));
    }
  } catch (...) {
    sqlite3_close(db);
    throw;
  }
  sqlite3_close(db);
  return values;
}

std::optional<std::unique_ptr<MemoryPropertyBag>> ReadStoredProperties(
    const std::string& directory, const std::string& class_name) {
  const std::string path = StoredPropertiesPath(directory, class_name);
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  std::stringstream text;
  text << in.rdbuf();
  auto bag = std::make_unique<MemoryPropertyBag>();
  try {
    BagFromJson(text.str(), path, bag.get());
  } catch (const ScriptError& error) {
    throw std::runtime_error(error.what());
  }
  return bag;
}

void WriteStoredProperties(const std::string& directory, const std::string& class_name,
                           const MemoryPropertyBag& bag) {
  namespace fs = std::filesystem;
  std::error_code error;
  fs::create_directories(directory, error);
  const std::string path = StoredPropertiesPath(directory, class_name);
  if (error) {
    throw std::runtime_error("cannot create the directory of \"" + path + "\": " + error.message());
  }
  // Written beside and renamed, so that a failed write leaves the old file as it was.
  const std::string temporary = path + ".new";
  {
    std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
    out << BagToJson(bag);
    if (!out.flush()) {
      fs::remove(temporary, error);
      throw std::runtime_error("cannot write \"" + path + "\"");
    }
  }
  fs::rename(temporary, path, error);
  if (error) {
    fs::remove(temporary, error);
    throw std::runtime_error("cannot write \"" + path + "\": " + error.message());
  }
}

std::unique_ptr<BoundControl> BoundControl::Open(
    Toolkit& toolkit, Container& parent, const std::string& class_name, const std::string& database,
    const PropertyBag* bag, const std::vector<std::pair<std::string, std::string>>& host_commands) {
  if (FindControlClass(class_name) == nullptr) {
    throw Failure(kErrInvalidProcedureCall,
                  "There is no control of the class \"" + class_name + "\"");
  }
  std::unique_ptr<BoundControl> bound(new BoundControl());
  bound->toolkit_ = &toolkit;
  bound->class_name_ = class_name;
  bound->database_ = database;
  // The table is opened first: it must outlive the control, and a missing table stops everything
  // before a control exists.
  bound->source_ = SqliteDataSource::Create(database, class_name, &toolkit);

  const std::string name = class_name + "1";
  if (class_name == "Currency") {
    auto currency = bag != nullptr ? CurrencySheet::Load(toolkit, parent, CurrencyForm(), name,
                                                         *bag, FamilyGlyphPictures())
                                   : CurrencySheet::Create(toolkit, parent, CurrencyForm(), name,
                                                           FamilyGlyphPictures());
    bound->currency_ = currency.get();
    bound->control_ = std::move(currency);
  } else if (class_name == "Appointment") {
    auto appointment = bag != nullptr ? AppointmentSheet::Load(toolkit, parent, AppointmentForm(),
                                                               name, *bag, FamilyGlyphPictures())
                                      : AppointmentSheet::Create(toolkit, parent, AppointmentForm(),
                                                                 name, FamilyGlyphPictures());
    bound->appointment_ = appointment.get();
    bound->control_ = std::move(appointment);
  } else {
    bound->control_ = CreateControl(toolkit, parent, class_name, name, bag);
    bound->sheet_ = dynamic_cast<Sheet*>(bound->control_.get());
    if (bound->sheet_ == nullptr) {
      throw Failure(kErrInvalidProcedureCall,
                    "The control \"" + class_name + "\" is no entity sheet");
    }
  }

  // The titles of the class in the process's language; the message table names the columns.
  ClsSheetsTitles* titles = nullptr;
  if (bound->sheet_ != nullptr) titles = &bound->sheet_->SheetTitles();
  if (bound->currency_ != nullptr) titles = &bound->currency_->SheetTitles();
  if (bound->appointment_ != nullptr) titles = &bound->appointment_->SheetTitles();
  auto recordset = SqliteRecordset::Open(database, "SELECT * FROM SheetTitles");
  if (titles->ReadTitlesInformation(*recordset, class_name)) {
    // The box has told the user already; the sheet completes what is missing from the source.
  }

  if (bound->sheet_ != nullptr) {
    for (const auto& [command, display] : host_commands) {
      bound->sheet_->SheetUserCommands().Add(command, display);
    }
    bound->sheet_->SetSheetRecordset(bound->source_.get());
  } else if (bound->currency_ != nullptr) {
    bound->currency_->SetSheetRecordset(bound->source_.get());
  } else {
    bound->appointment_->SetSheetRecordset(bound->source_.get());
  }
  bound->source_->Open();
  // Currency builds its rows from the titles only here, and follows moves only through it.
  if (bound->currency_ != nullptr) bound->currency_->InitDisplay();
  return bound;
}

BoundControl::~BoundControl() {
  if (control_ != nullptr) {
    if (sheet_ != nullptr) sheet_->SetSheetRecordset(nullptr);
    if (currency_ != nullptr) currency_->SetSheetRecordset(nullptr);
    if (appointment_ != nullptr) appointment_->SetSheetRecordset(nullptr);
  }
  control_.reset();
  source_.reset();
}

void BoundControl::AddObserver(SheetEvents* observer) {
  if (sheet_ != nullptr) sheet_->AddObserver(observer);
  if (currency_ != nullptr) currency_->AddObserver(observer);
  if (appointment_ != nullptr) appointment_->AddObserver(observer);
}

void BoundControl::RemoveObserver(SheetEvents* observer) {
  if (sheet_ != nullptr) sheet_->RemoveObserver(observer);
  if (currency_ != nullptr) currency_->RemoveObserver(observer);
  if (appointment_ != nullptr) appointment_->RemoveObserver(observer);
}

ControlStatus BoundControl::Status(const std::string& command) {
  if (sheet_ != nullptr) return sheet_->GetControlStatus(command);
  if (appointment_ != nullptr) return appointment_->GetControlStatus(command);
  // Currency: the host's own reading of its data source, by the rules of the command table.
  const int32_t status = source_->EditStatus();
  const bool open = status != dsClosed && status != dsQuery && source_->RecordCount() >= 1;
  if (command == "First Record" || command == "Last Record") return open ? csEnabled : csDisabled;
  if (command == "Previous Record") {
    return open && source_->AbsolutePosition() >= 2 ? csEnabled : csDisabled;
  }
  if (command == "Next Record") {
    return open && source_->AbsolutePosition() < source_->RecordCount() ? csEnabled : csDisabled;
  }
  if (command == "Refresh") return status != dsClosed ? csEnabled : csDisabled;
  return csNotSupported;
}

bool BoundControl::Command(const std::string& command) {
  if (sheet_ != nullptr) return sheet_->ControlCommand(command);
  if (appointment_ != nullptr) return appointment_->ControlCommand(command);
  // Currency: a move stores the field being edited first, as a sheet's move does, then shows
  // the record by building the rows again.
  bool failed = false;
  if (command == "Refresh") {
    if (currency_->Save()) return false;
    failed = source_->Refresh();
  } else if (command == "First Record" || command == "Previous Record" ||
             command == "Next Record" || command == "Last Record") {
    // Only a field that was entered can be stored; Currency reports an error for none.
    tarnsheets::Control* focus = toolkit_->GetFocus();
    if (focus != nullptr && toolkit_->IsChild(currency_->Host(), *focus) &&
        currency_->SaveField()) {
      return true;
    }
    if (command == "First Record") failed = source_->MoveFirst();
    if (command == "Previous Record") failed = source_->MovePrevious();
    if (command == "Next Record") failed = source_->MoveNext();
    if (command == "Last Record") failed = source_->MoveLast();
  } else {
    return true;
  }
  currency_->InitDisplay();
  return failed;
}

bool BoundControl::Save() {
  if (sheet_ != nullptr) return sheet_->Save();
  if (appointment_ != nullptr) return appointment_->Save();
  return currency_->Save();
}

std::string BoundControl::Caption() {
  ClsSheetsTitles* titles = nullptr;
  if (sheet_ != nullptr) titles = &sheet_->SheetTitles();
  if (currency_ != nullptr) titles = &currency_->SheetTitles();
  if (appointment_ != nullptr) titles = &appointment_->SheetTitles();
  const Variant& caption = titles->CaptionName();
  return caption.IsString() && !caption.StringValue().empty() ? caption.StringValue() : class_name_;
}

void BoundControl::WriteProperties(PropertyBag& bag) const { control_->WriteProperties(bag); }

}  // namespace tarnsheets
