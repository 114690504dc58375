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
#include <QCalendarWidget>
#include <QGuiApplication>
#include <QLabel>
#include <QMenu>
#include <QScreen>

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

// The first column of the first row that `sql` gives, read from the file through a connection of
// its own; "<no row>" or "<null>" when there is none.
std::string ReadOne(const std::string& database, const std::string& sql) {
  sqlite3* db = nullptr;
  EXPECT_EQ(sqlite3_open_v2(database.c_str(), &db, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
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
    return ReadOne(*database_, "SELECT \"" + column + "\" FROM \"" + table +
                                   "\" WHERE rowid = " + std::to_string(rowid));
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

    // Go to Record moves to the n-th record of the set; a position outside it is refused.
    ASSERT_NE(ActionNamed(window, "Go to Record..."), nullptr);
    EXPECT_TRUE(ActionNamed(window, "Go to Record...")->isEnabled());
    EXPECT_TRUE(window.GoToRecord(7));
    EXPECT_TRUE(HasLabel(window, "7 / 12"));
    EXPECT_EQ(std::to_string(window.Current()->Source().CurrentRowIdForTest()),
              ReadOne(db, "SELECT rowid FROM Opportunity ORDER BY rowid LIMIT 1 OFFSET 6"));
    EXPECT_TRUE(next->isEnabled());
    EXPECT_TRUE(previous->isEnabled());
    EXPECT_FALSE(window.GoToRecord(13));
    EXPECT_TRUE(HasLabel(window, "7 / 12"));
    EXPECT_EQ(window.StatusMessageForTest(), "There is no record 13 to go to here.");

    // F7 enters a query: the moves go off and Esc is on offer.
    ActionNamed(window, "New Query")->trigger();
    EXPECT_TRUE(HasLabel(window, "Query"));
    EXPECT_FALSE(ActionNamed(window, "First Record")->isEnabled());
    EXPECT_FALSE(ActionNamed(window, "Go to Record...")->isEnabled());
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

TEST(DemoDropDownTest, OpensUnderTheButtonWithTheRightEdgesLinedUp) {
  const QRect screen(0, 0, 1280, 900);
  const QRect button(500, 160, 16, 16);
  EXPECT_EQ(DropDownPosition(button, QSize(120, 130), screen), QPoint(396, 176));
}

TEST(DemoDropDownTest, OpensAboveTheButtonWhenItDoesNotFitBelow) {
  const QRect screen(0, 0, 1280, 900);
  EXPECT_EQ(DropDownPosition(QRect(500, 800, 16, 16), QSize(120, 130), screen), QPoint(396, 670));
}

TEST(DemoDropDownTest, StaysInsideTheScreen) {
  const QRect screen(0, 0, 1280, 900);
  // A button near the left edge: the list cannot reach left of the screen.
  EXPECT_EQ(DropDownPosition(QRect(10, 100, 16, 16), QSize(240, 180), screen), QPoint(0, 116));
  // A button past the right edge (a window half off the screen): the list comes back inside.
  EXPECT_EQ(DropDownPosition(QRect(1300, 100, 16, 16), QSize(240, 180), screen), QPoint(1040, 116));
  // Taller than the room above and below: the top of the screen.
  EXPECT_EQ(DropDownPosition(QRect(500, 100, 16, 16), QSize(240, 880), screen), QPoint(276, 20));
}

// Records the Rect of the Button events, as the host received it.
class ButtonRecorder : public SheetEvents {
 public:
  void Button(const std::string& FieldName, SheetRect& Rect) override {
    field = FieldName;
    rect = Rect;
    ++count;
  }
  std::string field;
  SheetRect rect;
  int count = 0;
};

class DemoDropDownWindowTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("tarnsheets-demo-dropdown-" + std::to_string(::getpid()));
    fs::remove_all(dir_);
    db_ = (dir_ / "s.db").string();
    ASSERT_TRUE(EnsureSampleDatabase(db_, 5, 3));
    toolkit_ = std::make_unique<QtToolkit>(QtToolkit::DialogMode::kAnswered);
    window_ = std::make_unique<DemoWindow>(*toolkit_, db_, (dir_ / "config").string());
    window_->resize(1000, 400);
    window_->show();
    ASSERT_TRUE(window_->ShowControl("Opportunity"));
    window_->Current()->AddObserver(&recorder_);
    toolkit_->ProcessEvents();
  }
  void TearDown() override {
    if (window_ != nullptr && window_->Current() != nullptr) {
      window_->Current()->RemoveObserver(&recorder_);
    }
    window_.reset();
    toolkit_.reset();
    fs::remove_all(dir_);
  }

  // The control of `name` (Cmd_Value, Txt_Value) whose Tag is `tag`.
  Control* Tagged(const std::string& name, const std::string& tag) {
    for (const std::shared_ptr<Control>& c : window_->Current()->Control().Host().AllControls()) {
      if (c->Name() == name && c->Tag() == tag) return c.get();
    }
    return nullptr;
  }
  std::string EditorText(const std::string& tag) {
    auto* editor = dynamic_cast<Container*>(Tagged("Txt_Value", tag));
    if (editor == nullptr) return "<no editor>";
    for (const std::shared_ptr<Control>& inner : editor->Children()) {
      if (auto* box = dynamic_cast<TextBox*>(inner.get()); box != nullptr && box->Visible()) {
        return box->Text();
      }
    }
    return "<no text box>";
  }
  // The drop button's place on the screen in pixels, from the Rect of the Button event.
  QRect ButtonPixels() const {
    const SheetRect& r = recorder_.rect;
    return QRect(r.Left / 15, r.Top / 15, (r.Right - r.Left) / 15, (r.Bottom - r.Top) / 15);
  }
  // Clicks the drop button of `tag` and lets the deferred drop-down open.
  void ClickDropButton(const std::string& tag) {
    Control* button = Tagged("Cmd_Value", tag);
    ASSERT_NE(button, nullptr) << "no drop button for " << tag;
    toolkit_->Click(*button);
    toolkit_->ProcessEvents();
    ASSERT_EQ(recorder_.count, 1);
    EXPECT_EQ(recorder_.field, tag);
    // The Rect is the button's window rectangle in twips.
    const SheetRect pixels = toolkit_->WindowRect(*button);
    EXPECT_EQ(ButtonPixels(), QRect(pixels.Left, pixels.Top, pixels.Right - pixels.Left,
                                    pixels.Bottom - pixels.Top));
  }
  void SaveWithTheMenu() {
    QAction* save = ActionNamed(*window_, "Save");
    ASSERT_NE(save, nullptr);
    save->trigger();
    EXPECT_EQ(window_->StatusMessageForTest(), "Saved.");
  }
  std::string Stored(const std::string& column) {
    const int64_t rowid = window_->Current()->Source().CurrentRowIdForTest();
    return ReadOne(
        db_, "SELECT \"" + column + "\" FROM Opportunity WHERE rowid = " + std::to_string(rowid));
  }

  fs::path dir_;
  std::string db_;
  std::unique_ptr<QtToolkit> toolkit_;
  std::unique_ptr<DemoWindow> window_;
  ButtonRecorder recorder_;
};

TEST_F(DemoDropDownWindowTest, PickListOpensAtTheButtonsRectAndTheChoiceIsShownAndStored) {
  ClickDropButton("SSTAGE_NAME");
  QMenu* list = window_->PickListForTest();
  ASSERT_NE(list, nullptr) << "no pick list opened";
  EXPECT_TRUE(list->isVisible());
  // Under the button, right edges lined up.
  const QRect button = ButtonPixels();
  EXPECT_EQ(list->geometry().top(), button.bottom() + 1);
  EXPECT_EQ(list->geometry().right(), button.right());
  QStringList values;
  for (QAction* a : list->actions()) values << a->text();
  EXPECT_EQ(values, QStringList({"Prospecting", "Qualification", "Proposal", "Negotiation",
                                 "Closed Won", "Closed Lost"}));

  QAction* negotiation = list->actions().at(3);
  negotiation->trigger();
  toolkit_->ProcessEvents();
  EXPECT_EQ(window_->Current()->Source().Fields(Variant("SSTAGE_NAME")).Value().AsText(),
            "Negotiation");
  EXPECT_EQ(EditorText("SSTAGE_NAME"), "Negotiation");
  EXPECT_EQ(window_->StatusMessageForTest(), "SSTAGE_NAME = Negotiation");
  SaveWithTheMenu();
  EXPECT_EQ(Stored("SSTAGE_NAME"), "Negotiation");
}

TEST_F(DemoDropDownWindowTest, CalendarOpensAtTheButtonsRectOnTheFieldsDateAndTheChoiceIsStored) {
  const Variant before = window_->Current()->Source().Fields(Variant("F_OPPCLSDATE")).Value();
  ASSERT_TRUE(before.IsDate());
  const Date::Parts was = before.DateValue().ToParts();
  ClickDropButton("F_OPPCLSDATE");
  QCalendarWidget* calendar = window_->CalendarForTest();
  ASSERT_NE(calendar, nullptr) << "no calendar opened";
  EXPECT_TRUE(calendar->isVisible());
  EXPECT_EQ(window_->PickListForTest(), nullptr);
  EXPECT_EQ(calendar->selectedDate(), QDate(was.year, was.month, was.day));
  const QRect button = ButtonPixels();
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  // The window is wider than the offscreen screen and the button lies past its right edge: the
  // calendar is moved back onto the screen.
  ASSERT_GT(button.right(), screen.right());
  // The offscreen platform sets every top-level window, popups included, 2 pixels in for a frame.
  const QPoint asked = DropDownPosition(button, calendar->size(), screen);
  EXPECT_EQ(asked, QPoint(screen.right() + 1 - calendar->width(), button.bottom() + 1));
  EXPECT_LE((calendar->pos() - asked).manhattanLength(), 4)
      << calendar->pos().x() << "," << calendar->pos().y();

  emit calendar->clicked(QDate(2031, 3, 14));
  toolkit_->ProcessEvents();
  EXPECT_EQ(window_->CalendarForTest(), nullptr) << "the calendar stays open after the choice";
  const Variant after = window_->Current()->Source().Fields(Variant("F_OPPCLSDATE")).Value();
  ASSERT_TRUE(after.IsDate());
  const Date::Parts now = after.DateValue().ToParts();
  EXPECT_EQ(now.year, 2031);
  EXPECT_EQ(now.month, 3);
  EXPECT_EQ(now.day, 14);
  EXPECT_EQ(now.hour, was.hour);
  EXPECT_EQ(now.minute, was.minute);
  EXPECT_EQ(EditorText("F_OPPCLSDATE"), "2031-03-14");
  SaveWithTheMenu();
  EXPECT_EQ(Stored("F_OPPCLSDATE").substr(0, 10), "2031-03-14");
}

}  // namespace
}  // namespace tarnsheets
