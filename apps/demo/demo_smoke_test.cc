// The demo host end to end on Qt's offscreen platform: every public control opens on its table of
// a fresh sample database, moves to its second record, takes a typed value in a text field as a
// user types it, saves, and the value is found in the database file afterwards.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

#include <QAction>
#include <QLabel>

#include "apps/demo/bound_control.h"
#include "apps/demo/demo_window.h"
#include "datasources/sqlite/sqlite_data_source.h"
#include "family/registry.h"
#include "tarnsheets/data_source.h"
#include "tarnsheets/property_bag.h"
#include "tarnsheets/toolkit.h"
#include "toolkits/qt/qt_toolkit.h"

namespace tarnsheets {
namespace {

namespace fs = std::filesystem;

// Characters of a UTF-8 text, as a text box counts them (the sample texts lie in the BMP).
size_t CharacterCount(const std::string& text) {
  size_t n = 0;
  for (unsigned char c : text) n += (c & 0xC0) != 0x80;
  return n;
}

class DemoSmokeTest : public ::testing::TestWithParam<std::string> {
 protected:
  static void SetUpTestSuite() {
    directory_ = new fs::path(fs::temp_directory_path() /
                              ("tarnsheets-demo-smoke-" + std::to_string(::getpid())));
    fs::remove_all(*directory_);
    fs::create_directories(*directory_);
    database_ = new std::string((*directory_ / "sample.db").string());
    ASSERT_TRUE(EnsureSampleDatabase(*database_, /*opportunities=*/30, /*rows_per_table=*/6));
    toolkit_ = new QtToolkit(QtToolkit::DialogMode::kAnswered);
  }
  static void TearDownTestSuite() {
    delete toolkit_;
    toolkit_ = nullptr;
    fs::remove_all(*directory_);
    delete directory_;
    delete database_;
  }

  // The visible text box of a visible, unlocked SFText bound to an updatable text column that is
  // not a code (which other rows refer to); nullptr when the control has none.
  static TextBox* EditableTextField(UserControl& host, SqliteDataSource& source,
                                    std::string* field) {
    for (const std::shared_ptr<Control>& c : host.AllControls()) {
      if (c->TypeName() != "SFText" || c->Tag().empty() || !c->Visible()) continue;
      const std::string& tag = c->Tag();
      if (tag.find("Code") != std::string::npos || tag.find("CODE") != std::string::npos) continue;
      try {
        DataSourceField& f = source.Fields(Variant(tag));
        if (f.DataType() != kDataTypeText || !f.Updatable()) continue;
      } catch (const Failure&) {
        continue;
      }
      auto* editor = dynamic_cast<Container*>(c.get());
      if (editor == nullptr) continue;
      for (const std::shared_ptr<Control>& inner : editor->Children()) {
        auto* box = dynamic_cast<TextBox*>(inner.get());
        if (box != nullptr && box->Visible() && !box->Locked()) {
          *field = tag;
          return box;
        }
      }
    }
    return nullptr;
  }

  static std::string StoredText(const std::string& table, const std::string& column,
                                int64_t rowid) {
    sqlite3* db = nullptr;
    EXPECT_EQ(sqlite3_open_v2(database_->c_str(), &db, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
    const std::string sql =
        "SELECT \"" + column + "\" FROM \"" + table + "\" WHERE rowid = " + std::to_string(rowid);
    sqlite3_stmt* s = nullptr;
    std::string text = "<no row>";
    if (sqlite3_prepare_v2(db, sql.c_str(), -1, &s, nullptr) == SQLITE_OK &&
        sqlite3_step(s) == SQLITE_ROW) {
      const unsigned char* t = sqlite3_column_text(s, 0);
      text = t == nullptr ? "<null>" : reinterpret_cast<const char*>(t);
    }
    sqlite3_finalize(s);
    sqlite3_close(db);
    return text;
  }

  static fs::path* directory_;
  static std::string* database_;
  static QtToolkit* toolkit_;
};

fs::path* DemoSmokeTest::directory_ = nullptr;
std::string* DemoSmokeTest::database_ = nullptr;
QtToolkit* DemoSmokeTest::toolkit_ = nullptr;

TEST_P(DemoSmokeTest, OpensMovesTakesATypedValueSavesAndFindsItStored) {
  const std::string class_name = GetParam();
  QtToolkit& tk = *toolkit_;
  tk.ClearDialogLog();
  std::shared_ptr<Form> form = tk.CreateForm("FrmSmoke");
  auto bound = BoundControl::Open(tk, *form, class_name, *database_, nullptr,
                                  {{"Mail", "Mail"}, {"Print", "Print"}});
  UserControl& host = bound->Control().Host();
  form->SetClientSize(host.Width(), host.Height());
  form->Show();
  tk.ProcessEvents();

  SqliteDataSource& source = bound->Source();
  EXPECT_EQ(source.EditStatus(), dsBrowse);
  EXPECT_EQ(source.AbsolutePosition(), 1);
  ASSERT_GE(source.RecordCount(), 2);
  EXPECT_EQ(bound->Status("Next Record"), csEnabled);
  EXPECT_EQ(bound->Status("Previous Record"), csDisabled);

  // Move as the menu does.
  EXPECT_FALSE(bound->Command("Next Record"));
  EXPECT_EQ(source.AbsolutePosition(), 2);
  EXPECT_EQ(bound->Status("Previous Record"), csEnabled);

  std::string field;
  TextBox* box = EditableTextField(host, source, &field);
  ASSERT_NE(box, nullptr) << class_name << " shows no editable text field";
  const std::string typed = "Smoke 测试 " + class_name;
  tk.Click(*box);
  ASSERT_EQ(tk.GetFocus(), box) << class_name << ": the click did not give the field the focus";
  box->SetSelStart(0);
  box->SetSelLength(static_cast<int32_t>(CharacterCount(box->Text())));
  tk.TypeText(typed);
  EXPECT_EQ(box->Text(), typed);

  // Ctrl+S of the demo: Save stores the field, then the record.
  EXPECT_FALSE(bound->Save()) << class_name << ": save of " << field << " failed";
  EXPECT_EQ(source.EditStatus(), dsBrowse);
  const int64_t rowid = source.CurrentRowIdForTest();
  ASSERT_NE(rowid, 0);
  for (const DialogRecord& d : tk.DialogLog()) {
    ADD_FAILURE() << class_name << ": unexpected box \"" << d.title << "\": " << d.text;
  }

  // Reopen: the value is in the file, and a new binding of the control shows it.
  bound.reset();
  tk.Unload(*form);
  EXPECT_EQ(StoredText(class_name, field, rowid), typed);

  std::shared_ptr<Form> again = tk.CreateForm("FrmSmoke2");
  auto reopened = BoundControl::Open(tk, *again, class_name, *database_);
  EXPECT_FALSE(reopened->Command("Next Record"));
  EXPECT_EQ(reopened->Source().Fields(Variant(field)).Value().AsText(), typed);
  reopened.reset();
  tk.Unload(*again);
  tk.ProcessEvents();
}

std::vector<std::string> AllClasses() {
  std::vector<std::string> names;
  for (const ControlClass& c : ControlClasses()) names.emplace_back(c.name);
  return names;
}

INSTANTIATE_TEST_SUITE_P(EveryControl, DemoSmokeTest, ::testing::ValuesIn(AllClasses()),
                         [](const ::testing::TestParamInfo<std::string>& info) {
                           return info.param;
                         });

TEST(DemoStoredPropertiesTest, PropertiesWrittenForAClassAreReadBackUnchanged) {
  const fs::path dir =
      fs::temp_directory_path() / ("tarnsheets-demo-props-" + std::to_string(::getpid()));
  fs::remove_all(dir);
  MemoryPropertyBag bag;
  bag.WriteProperty("Style", Variant(int32_t{0}), Variant(int32_t{1}));
  bag.WriteProperty("FontSize", Variant(11.0), Variant(9.0));
  WriteStoredProperties(dir.string(), "Opportunity", bag);
  auto read = ReadStoredProperties(dir.string(), "Opportunity");
  ASSERT_TRUE(read.has_value());
  EXPECT_EQ((*read)->ReadLong("Style", 1), 0);
  EXPECT_DOUBLE_EQ((*read)->ReadDouble("FontSize", 9.0), 11.0);
  EXPECT_FALSE(ReadStoredProperties(dir.string(), "Contact").has_value());
  fs::remove_all(dir);
}

TEST(DemoStoredPropertiesTest, ABrokenFileFailsNamingTheFile) {
  const fs::path dir =
      fs::temp_directory_path() / ("tarnsheets-demo-broken-" + std::to_string(::getpid()));
  fs::create_directories(dir);
  {
    std::ofstream broken(dir / "Quote.json");
    broken << "{\"Style\": ";
  }
  try {
    ReadStoredProperties(dir.string(), "Quote");
    ADD_FAILURE() << "a broken file was read";
  } catch (const std::runtime_error& e) {
    EXPECT_NE(std::string(e.what()).find("Quote.json"), std::string::npos) << e.what();
  }
  fs::remove_all(dir);
}

TEST(DemoDirectoriesTest, FollowTheUsersDataAndConfigDirectories) {
  ::setenv("XDG_DATA_HOME", "/tmp/xdg-data", 1);
  ::setenv("XDG_CONFIG_HOME", "/tmp/xdg-config", 1);
  EXPECT_EQ(DemoDataDirectory(), "/tmp/xdg-data/tarnsheets");
  EXPECT_EQ(DemoConfigDirectory(), "/tmp/xdg-config/tarnsheets");
  ::unsetenv("XDG_DATA_HOME");
  ::unsetenv("XDG_CONFIG_HOME");
  ::setenv("HOME", "/home/someone", 1);
  EXPECT_EQ(DemoDataDirectory(), "/home/someone/.local/share/tarnsheets");
  EXPECT_EQ(DemoConfigDirectory(), "/home/someone/.config/tarnsheets");
}

TEST(DemoPickListTest, ReadsTheLookupValuesOfAColumnInTheirOrder) {
  const fs::path dir =
      fs::temp_directory_path() / ("tarnsheets-demo-lookup-" + std::to_string(::getpid()));
  fs::remove_all(dir);
  const std::string db = (dir / "s.db").string();
  ASSERT_TRUE(EnsureSampleDatabase(db, 3, 2));
  EXPECT_FALSE(EnsureSampleDatabase(db, 3, 2));  // there already: left alone
  const std::vector<std::string> stages = ReadLookupValues(db, "SSTAGE_NAME");
  ASSERT_EQ(stages.size(), 6u);
  EXPECT_EQ(stages.front(), "Prospecting");
  EXPECT_EQ(stages.back(), "Closed Lost");
  EXPECT_TRUE(ReadLookupValues(db, "NO_SUCH_COLUMN").empty());
  fs::remove_all(dir);
}

QAction* ActionNamed(QWidget& window, const QString& text) {
  for (QAction* a : window.findChildren<QAction*>()) {
    if (a->text() == text) return a;
  }
  return nullptr;
}

bool HasLabel(QWidget& window, const QString& text) {
  for (QLabel* l : window.findChildren<QLabel*>()) {
    if (l->text() == text) return true;
  }
  return false;
}

TEST(DemoWindowTest, MenusFollowTheSheetStatusBarShowsPositionAndPropertiesAreStored) {
  const fs::path dir =
      fs::temp_directory_path() / ("tarnsheets-demo-window-" + std::to_string(::getpid()));
  fs::remove_all(dir);
  const std::string db = (dir / "s.db").string();
  ASSERT_TRUE(EnsureSampleDatabase(db, 12, 3));
  QtToolkit toolkit(QtToolkit::DialogMode::kAnswered);
  int32_t new_style = -1;
  {
    DemoWindow window(toolkit, db, (dir / "config").string());
    window.show();
    ASSERT_TRUE(window.ShowControl("Opportunity"));
    QAction* next = ActionNamed(window, "Next Record");
    QAction* previous = ActionNamed(window, "Previous Record");
    ASSERT_NE(next, nullptr);
    ASSERT_NE(previous, nullptr);
    EXPECT_TRUE(next->isEnabled());
    EXPECT_FALSE(previous->isEnabled());
    EXPECT_TRUE(HasLabel(window, "1 / 12"));
    EXPECT_TRUE(HasLabel(window, "Browse"));

    next->trigger();
    EXPECT_TRUE(previous->isEnabled());
    EXPECT_TRUE(HasLabel(window, "2 / 12"));
    ActionNamed(window, "Last Record")->trigger();
    EXPECT_FALSE(next->isEnabled());
    EXPECT_TRUE(HasLabel(window, "12 / 12"));

    // F7 enters a query: the moves go off and Esc is on offer.
    ActionNamed(window, "New Query")->trigger();
    EXPECT_TRUE(HasLabel(window, "Query"));
    EXPECT_FALSE(ActionNamed(window, "First Record")->isEnabled());
    QAction* leave = ActionNamed(window, "Leave Query");
    ASSERT_NE(leave, nullptr);
    EXPECT_TRUE(leave->isEnabled());
    leave->trigger();
    EXPECT_TRUE(HasLabel(window, "Browse"));

    // Showing or hiding the record buttons is a property of the sheet, stored when the control
    // changes.
    QAction* buttons = ActionNamed(window, "Record buttons");
    ASSERT_NE(buttons, nullptr);
    const bool shown = buttons->isChecked();
    EXPECT_EQ(shown, window.Current()->AsSheet()->Style() == 1);
    buttons->setChecked(!shown);
    new_style = shown ? 0 : 1;
    EXPECT_EQ(window.Current()->AsSheet()->Style(), new_style);
    ASSERT_TRUE(window.ShowControl("Contact"));
    EXPECT_EQ(window.Current()->ClassName(), "Contact");
  }
  auto stored = ReadStoredProperties((dir / "config").string(), "Opportunity");
  ASSERT_TRUE(stored.has_value());
  EXPECT_EQ((*stored)->ReadLong("Style", 1 - new_style), new_style);
  EXPECT_TRUE(ReadStoredProperties((dir / "config").string(), "Contact").has_value());
  {
    // Restored on the next start.
    DemoWindow window(toolkit, db, (dir / "config").string());
    ASSERT_TRUE(window.ShowControl("Opportunity"));
    ASSERT_NE(window.Current()->AsSheet(), nullptr);
    EXPECT_EQ(window.Current()->AsSheet()->Style(), new_style);
  }
  fs::remove_all(dir);
}

}  // namespace
}  // namespace tarnsheets
