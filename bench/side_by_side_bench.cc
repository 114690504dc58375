// The Opportunity sheet on the Qt toolkit over the SQLite data source, side by side with what a Qt
// developer would build instead: a QDataWidgetMapper over a QSqlTableModel, mapped to as many
// QLineEdits and QCheckBoxes as the sheet has text and check editors (15 and 1). Both run in this
// one process, on the same generated database file and table, in offscreen windows.
//
//   open to last      from the file name to the last record shown with the right record count.
//                     Ours: SqliteDataSource::Create, SetSheetRecordset, Open, MoveLast.
//                     Theirs: open a QSQLITE connection, QSqlTableModel::select, fetchMore until
//                     the model has every row (its rowCount is only the rows fetched so far, and
//                     the mapper's toLast goes to the last row fetched), toLast.
//   memory            resident set after reaching the last record, less the resident set before
//                     opening (the forms exist already; freed heap is trimmed before each side).
//   next record       one step forward from the first record, timed over a run of moves, the
//                     widgets updated but not painted (the event loop runs after the run).
//                     Theirs calls fetchMore when the next row is not fetched yet, as a host must.
//                     Ours has the focus in its name editor, where the edit left it.
//   next, painted     the same with the event loop run after every move, so that each record is
//                     painted into the window's backing store before the next move: what a user
//                     stepping through records waits for.
//   (next record, next painted and the jumps are measured in turns, a run or a jump of one side
//   and then of the other, so that a busy moment of the machine weighs on both alike.)
//   jump to row k     theirs: QDataWidgetMapper::setCurrentIndex(k) on a model that has fetched
//                     every row. Ours: SqliteDataSource::MoveToPosition(k) on the whole table
//                     (the first jump after opening is shown on its own), and the same jumps
//                     of the source with no sheet bound.
//   find by name      a search by the record's name: ours by query by example (NewQuery, the
//                     condition, ExecuteQuery; the set is then the matching records); theirs
//                     QSqlTableModel::setFilter with F_OPPNAME = 'name', select, toFirst.
//   edit and store    ours: click into the name editor, select its text, type the new name key
//                     by key, Save. Theirs: QLineEdit::setText, QDataWidgetMapper::submit,
//                     QSqlTableModel::submitAll (edit strategy OnManualSubmit). The value is read
//                     back from the file through a separate connection after every store.
//
// Every result is checked against the file through a separate SQLite connection (the name shown,
// the position and count), and the program fails when a check fails. Each side runs once untimed
// first, so that both find the file in the page cache; then both run the same number of
// repetitions and the table shows medians.
//
// Usage: side_by_side_bench [--rows N]... [--repetitions R] [--moves M] [--jumps J]
//        (default: --rows 10000 --rows 1000000 --repetitions 5 --moves 1000 --jumps 30)
#include <malloc.h>
#include <sqlite3.h>
#include <unistd.h>

#include <QApplication>
#include <QCheckBox>
#include <QDataWidgetMapper>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlTableModel>
#include <QString>
#include <QWidget>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "data/sample_database.h"
#include "datasources/sqlite/sqlite_data_source.h"
#include "editors/sf_check.h"
#include "editors/sf_text.h"
#include "family/form_table.h"
#include "family/glyphs.h"
#include "sheet/sheet_engine.h"
#include "tarnsheets/failure.h"
#include "tarnsheets/sheet.h"
#include "tarnsheets/titles.h"
#include "toolkits/qt/qt_toolkit.h"

namespace tarnsheets {
namespace {

using Clock = std::chrono::steady_clock;

constexpr const char kTable[] = "Opportunity";
constexpr const char kNameField[] = "F_OPPNAME";

// A failed check: the benchmark stops and says what was wrong.
[[noreturn]] void Fail(const std::string& what) { throw std::runtime_error(what); }

void Check(bool ok, const std::string& what) {
  if (!ok) Fail(what);
}

double Seconds(Clock::duration d) { return std::chrono::duration<double>(d).count(); }

// Resident set of the process, in bytes.
int64_t ResidentBytes() {
  std::ifstream statm("/proc/self/statm");
  int64_t size = 0, resident = 0;
  statm >> size >> resident;
  return resident * sysconf(_SC_PAGESIZE);
}

// Returns freed heap to the system so that the next resident-set reading counts only what lives.
void TrimHeap() { malloc_trim(0); }

// The answers, read through a connection of our own.
class Truth {
 public:
  explicit Truth(const std::string& path) {
    if (sqlite3_open_v2(path.c_str(), &db_, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
      Fail("cannot open " + path + " for the checks");
    }
  }
  ~Truth() { sqlite3_close(db_); }
  Truth(const Truth&) = delete;
  Truth& operator=(const Truth&) = delete;

  int64_t Count() { return Integer("SELECT COUNT(*) FROM Opportunity"); }
  int64_t LastRowId() { return Integer("SELECT max(rowid) FROM Opportunity"); }
  // The name of the record at the 1-based position `position` in rowid order.
  std::string NameAt(int64_t position) {
    return Text("SELECT F_OPPNAME FROM Opportunity ORDER BY rowid LIMIT 1 OFFSET " +
                std::to_string(position - 1));
  }
  std::string NameOfRow(int64_t rowid) {
    return Text("SELECT F_OPPNAME FROM Opportunity WHERE rowid = " + std::to_string(rowid));
  }
  int64_t SignalAt(int64_t position) {
    return Integer("SELECT FORE_SIGNAL FROM Opportunity ORDER BY rowid LIMIT 1 OFFSET " +
                   std::to_string(position - 1));
  }
  // How many records carry exactly the name `name`.
  int64_t CountWithName(const std::string& name) {
    return Integer("SELECT COUNT(*) FROM Opportunity WHERE F_OPPNAME = '" + name + "'");
  }

 private:
  int64_t Integer(const std::string& sql) {
    sqlite3_stmt* s = nullptr;
    Check(sqlite3_prepare_v2(db_, sql.c_str(), -1, &s, nullptr) == SQLITE_OK, "check: " + sql);
    int64_t v = -1;
    if (sqlite3_step(s) == SQLITE_ROW) v = sqlite3_column_int64(s, 0);
    sqlite3_finalize(s);
    return v;
  }
  std::string Text(const std::string& sql) {
    sqlite3_stmt* s = nullptr;
    Check(sqlite3_prepare_v2(db_, sql.c_str(), -1, &s, nullptr) == SQLITE_OK, "check: " + sql);
    std::string v;
    if (sqlite3_step(s) == SQLITE_ROW && sqlite3_column_text(s, 0) != nullptr) {
      v = reinterpret_cast<const char*>(sqlite3_column_text(s, 0));
    }
    sqlite3_finalize(s);
    return v;
  }
  sqlite3* db_ = nullptr;
};

// Medians and spread of one measurement, in seconds per operation.
struct Sample {
  std::vector<double> values;
  double Median() const {
    std::vector<double> v = values;
    std::sort(v.begin(), v.end());
    if (v.empty()) return 0;
    return v.size() % 2 ? v[v.size() / 2] : (v[v.size() / 2 - 1] + v[v.size() / 2]) / 2;
  }
  double Min() const {
    return values.empty() ? 0 : *std::min_element(values.begin(), values.end());
  }
  double Max() const {
    return values.empty() ? 0 : *std::max_element(values.begin(), values.end());
  }
};

struct Settings {
  std::vector<int64_t> sizes;
  int repetitions = 5;
  int64_t moves = 1000;
  int64_t painted_moves = 300;
  int jumps = 30;
};

// What one side measured at one size.
struct Results {
  Sample open_to_last;
  int64_t memory_bytes = 0;
  Sample next_record;
  Sample next_painted;  // each move followed by the event loop's repaint
  Sample jump;
  Sample first_jump;  // ours: the first positional move after opening
  Sample find_by_name;
  Sample edit_and_store;
  Sample typing_only;       // ours: the typing part of edit and store
  Sample source_next_only;  // ours: MoveNext of the source with no sheet bound
  Sample source_jump_only;  // ours: MoveToPosition of the source with no sheet bound
  std::string notes;
};

// ---------------------------------------------------------------------------------------------
// Ours: the Opportunity sheet on the Qt toolkit over the SQLite data source.

class OurSide {
 public:
  explicit OurSide(QtToolkit& toolkit) : toolkit_(toolkit) {
    window_ = toolkit_.CreateForm("FrmSideBySide");
    window_->SetClientSize(10500, 2700);
    const FormTable* form = FindEntityForm(kTable);
    Check(form != nullptr, "no Opportunity form");
    sheet_ = Sheet::Create(toolkit_, *window_, *form, "Opportunity1", FamilyGlyphPictures());
    // The titles of every field the form shows, with the designed English text.
    for (const FieldRow& row : form->rows) {
      if (row.tag.empty()) continue;
      if (auto title = sheet_->SheetTitles().Add(std::string(row.tag))) {
        title->DisplayName = std::string(row.title.caption.empty() ? row.tag : row.title.caption);
      }
    }
    sheet_->SheetTitles().SetCaptionName(Variant("Opportunity"));
    window_->Show();
    toolkit_.ProcessEvents();
  }
  ~OurSide() { Close(); }

  // From the file name to the last record shown.
  void OpenToLast(const std::string& path) {
    Close();
    source_ = SqliteDataSource::Create(path, kTable, &toolkit_);
    sheet_->SetSheetRecordset(source_.get());
    source_->Open();
    source_->MoveLast();
  }
  void Close() {
    if (source_) {
      sheet_->SetSheetRecordset(nullptr);
      source_.reset();
    }
  }
  SqliteDataSource& Source() { return *source_; }
  SheetEngine& Engine() { return sheet_->EngineForTest(); }
  Sheet& TheSheet() { return *sheet_; }
  std::string ShownName() { return Engine().Txt_Value()(0).Text(); }
  int32_t ShownSignal() { return Engine().Chk_Value()(0).Value(); }
  TextBox& NameBox() {
    SFText& editor = Engine().Txt_Value()(0);
    return editor.Txt_Text(editor.ActiveBox());
  }

  // Finds the record named `name` by query by example. False when a step of the query refused.
  bool FindByName(const std::string& name) {
    if (source_->NewQuery()) return false;
    if (source_->SetFieldValue(Variant(kNameField), Variant(name))) return false;
    return !source_->ExecuteQuery();
  }

  // Types `text` over the name, as a user does, without storing.
  void TypeName(const std::string& text) {
    toolkit_.Click(NameBox());
    NameBox().SetSelStart(0);
    NameBox().SetSelLength(static_cast<int32_t>(NameBox().Text().size()));
    toolkit_.TypeText(text);
  }

 private:
  QtToolkit& toolkit_;
  std::shared_ptr<Form> window_;
  std::unique_ptr<Sheet> sheet_;
  std::unique_ptr<SqliteDataSource> source_;
};

// ---------------------------------------------------------------------------------------------
// Theirs: QDataWidgetMapper over QSqlTableModel.

class TheirSide {
 public:
  TheirSide() {
    window_ = std::make_unique<QWidget>();
    auto* layout = new QFormLayout(window_.get());
    const FormTable* form = FindEntityForm(kTable);
    for (const FieldRow& row : form->rows) {
      if (row.tag.empty()) continue;
      const QString title = QString::fromUtf8(row.title.caption.data(),
                                              static_cast<qsizetype>(row.title.caption.size()));
      if (row.editor.kind == EditorKind::kCheck) {
        auto* box = new QCheckBox(window_.get());
        layout->addRow(title, box);
        widgets_.push_back({std::string(row.tag), box});
        check_ = box;
      } else {
        auto* edit = new QLineEdit(window_.get());
        layout->addRow(title, edit);
        widgets_.push_back({std::string(row.tag), edit});
        if (row.tag == kNameField) name_edit_ = edit;
      }
    }
    Check(name_edit_ != nullptr && check_ != nullptr, "their form lacks the name or the check");
    window_->show();
    QApplication::processEvents();
  }
  ~TheirSide() { Close(); }

  int LineEdits() const { return static_cast<int>(widgets_.size()) - 1; }

  void OpenToLast(const std::string& path) {
    OpenSelected(path);
    FetchAll();
    mapper_->toLast();
  }
  // Opens the connection and the model, selected, on the first record.
  void OpenSelected(const std::string& path) {
    Close();
    connection_ = "side_by_side_" + std::to_string(++connections_);
    {
      QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", QString::fromStdString(connection_));
      db.setDatabaseName(QString::fromStdString(path));
      if (!db.open()) {
        Fail("QSQLITE cannot open " + path + ": " + db.lastError().text().toStdString());
      }
      // The durability our source works with (a commit syncs at checkpoints, not every time), so
      // that a store compares work, not settings.
      QSqlQuery pragma(db);
      if (!pragma.exec("PRAGMA synchronous = NORMAL")) Fail("PRAGMA synchronous on their side");
      model_ = std::make_unique<QSqlTableModel>(nullptr, db);
    }
    model_->setTable(kTable);
    model_->setEditStrategy(QSqlTableModel::OnManualSubmit);
    if (!model_->select()) Fail("select: " + model_->lastError().text().toStdString());
    mapper_ = std::make_unique<QDataWidgetMapper>();
    mapper_->setModel(model_.get());
    for (const auto& [tag, widget] : widgets_) {
      const int column = model_->fieldIndex(QString::fromStdString(tag));
      Check(column >= 0, "their model has no column " + tag);
      mapper_->addMapping(widget, column);
    }
    mapper_->toFirst();
  }
  void FetchAll() {
    while (model_->canFetchMore()) model_->fetchMore();
  }
  void Close() {
    mapper_.reset();
    model_.reset();
    if (!connection_.empty()) {
      QSqlDatabase::database(QString::fromStdString(connection_), false).close();
      QSqlDatabase::removeDatabase(QString::fromStdString(connection_));
      connection_.clear();
    }
  }
  // One step forward, fetching the next rows first when the model has not got them yet.
  void Next() {
    if (mapper_->currentIndex() + 1 >= model_->rowCount() && model_->canFetchMore()) {
      model_->fetchMore();
    }
    mapper_->toNext();
  }
  bool FindByName(const std::string& name) {
    QString quoted = QString::fromStdString(name);
    quoted.replace("'", "''");
    model_->setFilter(QString("F_OPPNAME = '%1'").arg(quoted));
    if (!model_->select()) return false;
    mapper_->toFirst();
    return true;
  }
  // setText, submit to the model, submit the model to the database. False when a step failed.
  bool EditAndStore(const std::string& text) {
    name_edit_->setText(QString::fromStdString(text));
    if (!mapper_->submit()) return false;
    return model_->submitAll();
  }
  // How many columns of the current row the mapper's submit marked as changed.
  int DirtyColumnsAfterSubmit(const std::string& text) {
    name_edit_->setText(QString::fromStdString(text));
    mapper_->submit();
    int dirty = 0;
    const int row = mapper_->currentIndex();
    for (int c = 0; c < model_->columnCount(); ++c) {
      if (model_->isDirty(model_->index(row, c))) ++dirty;
    }
    model_->revertAll();
    return dirty;
  }

  QSqlTableModel& Model() { return *model_; }
  QDataWidgetMapper& Mapper() { return *mapper_; }
  std::string ShownName() const { return name_edit_->text().toStdString(); }
  bool ShownSignal() const { return check_->isChecked(); }

 private:
  std::unique_ptr<QWidget> window_;
  std::vector<std::pair<std::string, QWidget*>> widgets_;
  QLineEdit* name_edit_ = nullptr;
  QCheckBox* check_ = nullptr;
  std::unique_ptr<QSqlTableModel> model_;
  std::unique_ptr<QDataWidgetMapper> mapper_;
  std::string connection_;
  int connections_ = 0;
};

// ---------------------------------------------------------------------------------------------

// Positions of the jumps: the same for both sides, spread over the whole table.
std::vector<int64_t> JumpTargets(int64_t rows, int jumps) {
  std::mt19937_64 random(20260301);
  std::uniform_int_distribution<int64_t> pick(1, rows);
  std::vector<int64_t> targets;
  for (int i = 0; i < jumps; ++i) targets.push_back(pick(random));
  return targets;
}

// The names at the jump targets, read before the jumps: reading one through the other connection
// steps over every record before it, which between two timed jumps would leave the processor's
// caches full of the file instead of what either side keeps.
std::map<int64_t, std::string> NamesAt(Truth& truth, const std::vector<int64_t>& targets) {
  std::map<int64_t, std::string> names;
  for (int64_t target : targets) names.emplace(target, truth.NameAt(target));
  return names;
}

void CheckOurLast(OurSide& ours, Truth& truth, int64_t rows) {
  Check(ours.Source().RecordCount() == rows,
        "ours: RecordCount " + std::to_string(ours.Source().RecordCount()));
  Check(ours.Source().AbsolutePosition() == rows,
        "ours: AbsolutePosition " + std::to_string(ours.Source().AbsolutePosition()));
  Check(ours.ShownName() == truth.NameAt(rows), "ours: last name shown \"" + ours.ShownName() +
                                                    "\", expected \"" + truth.NameAt(rows) + "\"");
  Check((ours.ShownSignal() != 0) == (truth.SignalAt(rows) != 0), "ours: last check shown");
}

void CheckTheirLast(TheirSide& theirs, Truth& truth, int64_t rows) {
  Check(theirs.Model().rowCount() == rows,
        "theirs: rowCount " + std::to_string(theirs.Model().rowCount()));
  Check(theirs.Mapper().currentIndex() == rows - 1,
        "theirs: currentIndex " + std::to_string(theirs.Mapper().currentIndex()));
  Check(theirs.ShownName() == truth.NameAt(rows), "theirs: last name shown \"" +
                                                      theirs.ShownName() + "\", expected \"" +
                                                      truth.NameAt(rows) + "\"");
  Check(theirs.ShownSignal() == (truth.SignalAt(rows) != 0), "theirs: last check shown");
}

std::string Megabytes(int64_t bytes) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%.2f MB", static_cast<double>(bytes) / (1024.0 * 1024.0));
  return buffer;
}

Results MeasureOurs(QtToolkit& toolkit, OurSide& ours, const std::string& path, int64_t rows,
                    const Settings& settings) {
  Results r;
  Truth truth(path);
  const int reps = settings.repetitions;
  toolkit.ClearDialogLog();

  // Warm-up, untimed.
  ours.OpenToLast(path);
  CheckOurLast(ours, truth, rows);
  ours.Close();

  // Memory: the source open on the last record, against the state before opening.
  TrimHeap();
  const int64_t before = ResidentBytes();
  ours.OpenToLast(path);
  r.memory_bytes = ResidentBytes() - before;
  CheckOurLast(ours, truth, rows);
  ours.Close();

  for (int i = 0; i < reps; ++i) {
    TrimHeap();
    const auto t0 = Clock::now();
    ours.OpenToLast(path);
    r.open_to_last.values.push_back(Seconds(Clock::now() - t0));
    CheckOurLast(ours, truth, rows);
    toolkit.ProcessEvents();
  }

  // Edit and store, on the last record of the open source.
  const int64_t last_rowid = truth.LastRowId();
  for (int i = -1; i < reps; ++i) {  // -1: warm-up
    const std::string text = "Ours edited " + std::to_string(i + 1);
    const auto t0 = Clock::now();
    ours.TypeName(text);
    const auto t1 = Clock::now();
    const bool failed = ours.TheSheet().Save();
    const auto t2 = Clock::now();
    Check(!failed, "ours: Save failed");
    Check(truth.NameOfRow(last_rowid) == text,
          "ours: stored \"" + truth.NameOfRow(last_rowid) + "\", expected \"" + text + "\"");
    Check(ours.ShownName() == text, "ours: shows \"" + ours.ShownName() + "\" after the store");
    if (i >= 0) {
      r.typing_only.values.push_back(Seconds(t1 - t0));
      r.edit_and_store.values.push_back(Seconds(t2 - t0));
    }
  }
  toolkit.ProcessEvents();

  // Showing records piles nothing up: the resident set before and after showing as many records
  // as the timed runs show, moved and painted.
  TrimHeap();
  const int64_t resident_before_moves = ResidentBytes();
  const int64_t moves = std::min<int64_t>(settings.moves, rows - 1);
  const int64_t painted_moves = std::min<int64_t>(settings.painted_moves, rows - 1);
  for (int i = -1; i < reps; ++i) {
    Check(!ours.Source().MoveFirst(), "ours: MoveFirst failed");
    for (int64_t m = 0; m < moves; ++m) {
      if (ours.Source().MoveNext()) Fail("ours: MoveNext failed");
    }
    toolkit.ProcessEvents();
    Check(!ours.Source().MoveFirst(), "ours: MoveFirst failed");
    for (int64_t m = 0; m < painted_moves; ++m) {
      if (ours.Source().MoveNext()) Fail("ours: MoveNext failed");
      toolkit.ProcessEvents();
    }
    Check(ours.ShownName() == truth.NameAt(painted_moves + 1), "ours: name after painted moves");
  }
  TrimHeap();
  r.notes += "ours: resident set " + Megabytes(ResidentBytes() - resident_before_moves) +
             " larger after " + std::to_string((reps + 1) * (moves + painted_moves)) +
             " moves shown; ";

  // The same moves of the source alone, to show what the sheet's display costs of a move.
  ours.TheSheet().SetSheetRecordset(nullptr);
  for (int i = -1; i < reps; ++i) {
    Check(!ours.Source().MoveFirst(), "ours: MoveFirst failed");
    const auto t0 = Clock::now();
    for (int64_t m = 0; m < moves; ++m) {
      if (ours.Source().MoveNext()) Fail("ours: MoveNext failed");
    }
    const double s = Seconds(Clock::now() - t0);
    Check(ours.Source().AbsolutePosition() == moves + 1, "ours: position after the moves");
    if (i >= 0) r.source_next_only.values.push_back(s / static_cast<double>(moves));
  }
  ours.TheSheet().SetSheetRecordset(&ours.Source());

  // The first positional move after opening builds the position index; it is reported on its own.
  const std::vector<int64_t> targets = JumpTargets(rows, settings.jumps);
  const std::map<int64_t, std::string> names = NamesAt(truth, targets);
  {
    const int64_t target = targets.back();
    const auto t0 = Clock::now();
    const bool refused = ours.Source().MoveToPosition(static_cast<int32_t>(target));
    r.first_jump.values.push_back(Seconds(Clock::now() - t0));
    Check(!refused && ours.ShownName() == names.at(target), "ours: the first jump");
  }
  toolkit.ProcessEvents();

  // The same jumps of the source alone, each after the same check through the other connection.
  ours.TheSheet().SetSheetRecordset(nullptr);
  for (int64_t target : targets) {
    const std::string& name = names.at(target);
    const auto t0 = Clock::now();
    const bool refused = ours.Source().MoveToPosition(static_cast<int32_t>(target));
    const double s = Seconds(Clock::now() - t0);
    Check(!refused && ours.Source().AbsolutePosition() == target,
          "ours: source alone not at " + std::to_string(target));
    Check(ours.Source().Fields(Variant(kNameField)).Value(0).AsText() == name,
          "ours: source alone at the wrong record after jumping to " + std::to_string(target));
    r.source_jump_only.values.push_back(s);
  }
  ours.TheSheet().SetSheetRecordset(&ours.Source());

  // Find by name: query by example on the name (NewQuery, the condition, ExecuteQuery).
  Check(ours.FindByName(truth.NameAt(targets.front())), "ours: warm-up query refused");
  for (int64_t target : targets) {
    const std::string name = truth.NameAt(target);
    const auto t0 = Clock::now();
    const bool found = ours.FindByName(name);
    const double s = Seconds(Clock::now() - t0);
    Check(found, "ours: query for \"" + name + "\" refused");
    Check(ours.ShownName() == name,
          "ours: the query shows \"" + ours.ShownName() + "\", expected \"" + name + "\"");
    Check(ours.Source().AbsolutePosition() == 1, "ours: not on the first match");
    r.find_by_name.values.push_back(s);
  }
  toolkit.ProcessEvents();
  ours.Close();

  int boxes = 0;
  for (const DialogRecord& d : toolkit.DialogLog()) {
    ++boxes;
    std::fprintf(stderr, "ours: dialog \"%s\": %s\n", d.title.c_str(), d.text.c_str());
  }
  Check(boxes == 0, "ours: a message box was shown during the run");
  return r;
}

Results MeasureTheirs(TheirSide& theirs, const std::string& path, int64_t rows,
                      const Settings& settings) {
  Results r;
  Truth truth(path);
  const int reps = settings.repetitions;

  theirs.OpenToLast(path);
  CheckTheirLast(theirs, truth, rows);
  theirs.Close();

  TrimHeap();
  const int64_t before = ResidentBytes();
  theirs.OpenToLast(path);
  r.memory_bytes = ResidentBytes() - before;
  CheckTheirLast(theirs, truth, rows);
  theirs.Close();

  for (int i = 0; i < reps; ++i) {
    TrimHeap();
    const auto t0 = Clock::now();
    theirs.OpenToLast(path);
    r.open_to_last.values.push_back(Seconds(Clock::now() - t0));
    CheckTheirLast(theirs, truth, rows);
    QApplication::processEvents();
  }

  // Edit and store on the last record. The model selects again after submitAll; the position
  // it is left on is reported, not repaired.
  const int64_t last_rowid = truth.LastRowId();
  r.notes += "their submit marked " +
             std::to_string(theirs.DirtyColumnsAfterSubmit("Their probe")) +
             " columns of the row as changed; ";
  int index_after_store = -2;
  int rows_after_store = -2;
  for (int i = -1; i < reps; ++i) {
    theirs.OpenToLast(path);  // untimed: back on the last record, every row fetched
    const std::string text = "Theirs edited " + std::to_string(i + 1);
    const auto t0 = Clock::now();
    const bool ok = theirs.EditAndStore(text);
    const double s = Seconds(Clock::now() - t0);
    Check(ok, "theirs: store failed: " + theirs.Model().lastError().text().toStdString());
    Check(truth.NameOfRow(last_rowid) == text,
          "theirs: stored \"" + truth.NameOfRow(last_rowid) + "\", expected \"" + text + "\"");
    index_after_store = theirs.Mapper().currentIndex();
    rows_after_store = theirs.Model().rowCount();
    if (i >= 0) r.edit_and_store.values.push_back(s);
  }
  r.notes += "after submitAll their mapper is at index " + std::to_string(index_after_store) +
             " of " + std::to_string(rows_after_store) + " rows fetched; ";

  // Find by name: a filter on the name, on the model the stores left open.
  const std::vector<int64_t> targets = JumpTargets(rows, settings.jumps);
  Check(theirs.FindByName(truth.NameAt(targets.front())), "theirs: warm-up filter failed");
  for (int64_t target : targets) {
    const std::string name = truth.NameAt(target);
    const auto t0 = Clock::now();
    const bool found = theirs.FindByName(name);
    const double s = Seconds(Clock::now() - t0);
    Check(found, "theirs: filter for \"" + name + "\" failed");
    Check(theirs.ShownName() == name, "theirs: the filter shows \"" + theirs.ShownName() + "\"");
    r.find_by_name.values.push_back(s);
  }
  QApplication::processEvents();
  theirs.Close();
  return r;
}

// Next record, next record painted and the jumps, measured in turns: a run of ours, then the
// same run of theirs, the side that goes first changing from one round to the next, so that
// whatever else the machine does at a moment weighs on both sides alike. Ours keeps the focus in
// its name editor, where the edit left it.
void MeasureMovesInTurns(QtToolkit& toolkit, OurSide& ours, TheirSide& theirs,
                         const std::string& path, int64_t rows, const Settings& settings,
                         Results& our, Results& their) {
  Truth truth(path);
  const int64_t moves = std::min<int64_t>(settings.moves, rows - 1);
  const int64_t painted_moves = std::min<int64_t>(settings.painted_moves, rows - 1);
  const std::string name_after[2] = {truth.NameAt(moves + 1), truth.NameAt(painted_moves + 1)};

  ours.OpenToLast(path);
  theirs.OpenSelected(path);  // as after opening: its first rows fetched, the rest on demand

  // One run of moves from the first record; seconds per move.
  auto our_run = [&](bool painted) {
    const int64_t n = painted ? painted_moves : moves;
    Check(!ours.Source().MoveFirst(), "ours: MoveFirst failed");
    toolkit.ProcessEvents();
    const auto t0 = Clock::now();
    for (int64_t m = 0; m < n; ++m) {
      if (ours.Source().MoveNext()) Fail("ours: MoveNext failed");
      if (painted) toolkit.ProcessEvents();
    }
    const double s = Seconds(Clock::now() - t0);
    Check(ours.Source().AbsolutePosition() == n + 1, "ours: position after the moves");
    Check(ours.ShownName() == name_after[painted], "ours: name after the moves");
    toolkit.ProcessEvents();
    return s / static_cast<double>(n);
  };
  auto their_run = [&](bool painted) {
    const int64_t n = painted ? painted_moves : moves;
    theirs.Mapper().toFirst();
    QApplication::processEvents();
    const auto t0 = Clock::now();
    for (int64_t m = 0; m < n; ++m) {
      theirs.Next();
      if (painted) QApplication::processEvents();
    }
    const double s = Seconds(Clock::now() - t0);
    Check(theirs.Mapper().currentIndex() == n, "theirs: position after the moves");
    Check(theirs.ShownName() == name_after[painted], "theirs: name after the moves");
    QApplication::processEvents();
    return s / static_cast<double>(n);
  };
  for (int i = -1; i < settings.repetitions; ++i) {  // -1: warm-up
    for (const bool painted : {false, true}) {
      double ours_s = 0, theirs_s = 0;
      if (i % 2 == 0) {
        ours_s = our_run(painted);
        theirs_s = their_run(painted);
      } else {
        theirs_s = their_run(painted);
        ours_s = our_run(painted);
      }
      if (i < 0) continue;
      (painted ? our.next_painted : our.next_record).values.push_back(ours_s);
      (painted ? their.next_painted : their.next_record).values.push_back(theirs_s);
    }
  }

  // Jumps, one of each side in turn. Theirs on a model that has fetched every row; ours by
  // MoveToPosition over the whole table, after an untimed first jump that builds the index.
  const std::vector<int64_t> targets = JumpTargets(rows, settings.jumps);
  const std::map<int64_t, std::string> names = NamesAt(truth, targets);
  theirs.OpenToLast(path);
  theirs.Mapper().setCurrentIndex(static_cast<int>(targets.front() - 1));
  Check(!ours.Source().MoveToPosition(static_cast<int32_t>(targets.front())), "ours: warm-up jump");
  QApplication::processEvents();
  auto our_jump = [&](int64_t target) {
    const auto t0 = Clock::now();
    const bool refused = ours.Source().MoveToPosition(static_cast<int32_t>(target));
    const double s = Seconds(Clock::now() - t0);
    Check(!refused, "ours: MoveToPosition " + std::to_string(target) + " refused");
    Check(ours.Source().AbsolutePosition() == target, "ours: not at the position jumped to");
    Check(ours.ShownName() == names.at(target),
          "ours: jump shows \"" + ours.ShownName() + "\", expected \"" + names.at(target) + "\"");
    our.jump.values.push_back(s);
  };
  auto their_jump = [&](int64_t target) {
    const auto t0 = Clock::now();
    theirs.Mapper().setCurrentIndex(static_cast<int>(target - 1));
    const double s = Seconds(Clock::now() - t0);
    Check(theirs.ShownName() == names.at(target), "theirs: jump shows the wrong name");
    their.jump.values.push_back(s);
  };
  for (size_t k = 0; k < targets.size(); ++k) {
    if (k % 2 == 0) {
      our_jump(targets[k]);
      their_jump(targets[k]);
    } else {
      their_jump(targets[k]);
      our_jump(targets[k]);
    }
  }
  toolkit.ProcessEvents();
  ours.Close();
  theirs.Close();
}

std::string Duration(double seconds) {
  char buffer[32];
  if (seconds >= 1) {
    std::snprintf(buffer, sizeof buffer, "%.3f s", seconds);
  } else if (seconds >= 1e-3) {
    std::snprintf(buffer, sizeof buffer, "%.3f ms", seconds * 1e3);
  } else {
    std::snprintf(buffer, sizeof buffer, "%.2f us", seconds * 1e6);
  }
  return buffer;
}

void PrintRow(const char* what, const std::string& ours, const std::string& theirs, double ratio) {
  std::printf("  %-34s %14s %16s %10.4g\n", what, ours.c_str(), theirs.c_str(), ratio);
}

void PrintTime(const char* what, const Sample& ours, const Sample& theirs) {
  PrintRow(what, Duration(ours.Median()), Duration(theirs.Median()),
           theirs.Median() > 0 ? ours.Median() / theirs.Median() : 0);
}

// The median of ours/theirs over the pairs measured side by side in turns (the same index in both).
double PairedRatio(const Sample& ours, const Sample& theirs) {
  Sample ratios;
  for (size_t i = 0; i < ours.values.size() && i < theirs.values.size(); ++i) {
    if (theirs.values[i] > 0) ratios.values.push_back(ours.values[i] / theirs.values[i]);
  }
  return ratios.Median();
}

void PrintSpread(const char* what, const Sample& s) {
  std::printf("    %-32s median %s, min %s, max %s, n=%zu\n", what, Duration(s.Median()).c_str(),
              Duration(s.Min()).c_str(), Duration(s.Max()).c_str(), s.values.size());
}

void RunSize(QtToolkit& toolkit, OurSide& ours, TheirSide& theirs, const std::filesystem::path& dir,
             int64_t rows, const Settings& settings) {
  const std::string path = (dir / ("opportunities_" + std::to_string(rows) + ".db")).string();
  SampleDatabaseOptions options;
  options.opportunities = rows;
  options.rows_per_table = 10;
  const auto built = Clock::now();
  BuildSampleDatabase(path, options);
  const double build_seconds = Seconds(Clock::now() - built);
  {
    Truth truth(path);
    Check(truth.Count() == rows, "the generated table has " + std::to_string(truth.Count()));
    const std::vector<int64_t> targets = JumpTargets(rows, settings.jumps);
    for (int64_t t : targets) {
      Check(truth.CountWithName(truth.NameAt(t)) == 1,
            "the name at row " + std::to_string(t) + " is not unique");
    }
  }

  Results our = MeasureOurs(toolkit, ours, path, rows, settings);
  Results their = MeasureTheirs(theirs, path, rows, settings);
  MeasureMovesInTurns(toolkit, ours, theirs, path, rows, settings, our, their);

  std::printf(
      "\nOpportunity table, %lld rows (file %s, built in %.1f s); %d repetitions, %lld "
      "moves per run, %d jumps; medians\n",
      static_cast<long long>(rows), Megabytes(std::filesystem::file_size(path)).c_str(),
      build_seconds, settings.repetitions,
      static_cast<long long>(std::min<int64_t>(settings.moves, rows - 1)), settings.jumps);
  std::printf("  %-34s %14s %16s %10s\n", "", "TarnSheets", "QDataWidgetMapper", "ours/theirs");
  PrintTime("next record (per move)", our.next_record, their.next_record);
  PrintTime("next record, painted", our.next_painted, their.next_painted);
  PrintTime("jump to a random record", our.jump, their.jump);
  PrintTime("find a record by name", our.find_by_name, their.find_by_name);
  PrintTime("open to the last record", our.open_to_last, their.open_to_last);
  PrintRow("memory at the last record (RSS)", Megabytes(our.memory_bytes),
           Megabytes(their.memory_bytes),
           their.memory_bytes > 0
               ? static_cast<double>(our.memory_bytes) / static_cast<double>(their.memory_bytes)
               : 0);
  PrintTime("edit one field and store it", our.edit_and_store, their.edit_and_store);
  std::printf(
      "  (jump: ours MoveToPosition, the first one after opening %s; theirs\n"
      "   setCurrentIndex on a model holding every row; edit: ours types the name key\n"
      "   by key, %s of the median, theirs setText)\n",
      Duration(our.first_jump.Median()).c_str(), Duration(our.typing_only.Median()).c_str());
  std::printf(
      "  ours/theirs of the pairs measured in turns, median: next %.3g, painted %.3g, jump %.3g\n",
      PairedRatio(our.next_record, their.next_record),
      PairedRatio(our.next_painted, their.next_painted), PairedRatio(our.jump, their.jump));
  std::printf("  spread:\n");
  PrintSpread("ours next record", our.next_record);
  PrintSpread("ours next, source alone", our.source_next_only);
  PrintSpread("ours jump, source alone", our.source_jump_only);
  PrintSpread("theirs next record", their.next_record);
  PrintSpread("ours next, painted", our.next_painted);
  PrintSpread("theirs next, painted", their.next_painted);
  PrintSpread("ours jump", our.jump);
  PrintSpread("ours find", our.find_by_name);
  PrintSpread("theirs jump", their.jump);
  PrintSpread("theirs find", their.find_by_name);
  PrintSpread("ours open to last", our.open_to_last);
  PrintSpread("theirs open to last", their.open_to_last);
  PrintSpread("ours edit and store", our.edit_and_store);
  PrintSpread("ours typing part", our.typing_only);
  PrintSpread("theirs edit and store", their.edit_and_store);
  std::printf("  notes: %s%s\n", our.notes.c_str(), their.notes.c_str());
  std::fflush(stdout);
}

int Run(int argc, char** argv) {
  Settings settings;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    auto value = [&](const char* name) -> int64_t {
      if (i + 1 >= argc) Fail(std::string(name) + " needs a number");
      char* end = nullptr;
      const long long v = std::strtoll(argv[++i], &end, 10);
      if (*end != '\0' || v < 1) Fail(std::string(name) + ": not a positive number: " + argv[i]);
      return v;
    };
    if (arg == "--rows") {
      settings.sizes.push_back(value("--rows"));
    } else if (arg == "--repetitions") {
      settings.repetitions = static_cast<int>(value("--repetitions"));
    } else if (arg == "--moves") {
      settings.moves = value("--moves");
    } else if (arg == "--jumps") {
      settings.jumps = static_cast<int>(value("--jumps"));
    } else {
      Fail("unknown argument " + arg +
           " (usage: side_by_side_bench [--rows N]... [--repetitions R] [--moves M] [--jumps J])");
    }
  }
  if (settings.sizes.empty()) settings.sizes = {10000, 1000000};
  for (int64_t rows : settings.sizes) Check(rows >= 2, "--rows must be at least 2");

  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  QtToolkit toolkit(QtToolkit::DialogMode::kAnswered);
  const std::filesystem::path dir =
      std::filesystem::temp_directory_path() / ("tarn_side_by_side_" + std::to_string(getpid()));
  std::filesystem::create_directories(dir);
  struct Cleanup {
    std::filesystem::path dir;
    ~Cleanup() {
      std::error_code ignored;
      std::filesystem::remove_all(dir, ignored);
    }
  } cleanup{dir};

  OurSide ours(toolkit);
  TheirSide theirs;
  std::printf(
      "Side by side: Opportunity sheet (%zu text editors, %zu check) on the Qt toolkit\n"
      "over the SQLite data source, against QDataWidgetMapper over QSqlTableModel (%d\n"
      "QLineEdits, 1 QCheckBox), offscreen, one process, Qt %s, SQLite %s\n",
      ours.Engine().Txt_Value().Elements().size(), ours.Engine().Chk_Value().Elements().size(),
      theirs.LineEdits(), qVersion(), sqlite3_libversion());
  for (int64_t rows : settings.sizes) RunSize(toolkit, ours, theirs, dir, rows, settings);
  return 0;
}

}  // namespace
}  // namespace tarnsheets

int main(int argc, char** argv) {
  try {
    return tarnsheets::Run(argc, argv);
  } catch (const tarnsheets::Failure& failure) {
    std::fprintf(stderr, "side_by_side_bench: %d %s\n", static_cast<int>(failure.Number()),
                 failure.Description().c_str());
  } catch (const std::exception& e) {
    std::fprintf(stderr, "side_by_side_bench: %s\n", e.what());
  }
  return 1;
}
