#include "apps/demo/demo_window.h"

#include <QAction>
#include <QCalendarWidget>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QInputDialog>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QScreen>
#include <QScrollArea>
#include <QSplitter>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <algorithm>
#include <cmath>
#include <exception>
#include <utility>

#include "datasources/sqlite/sqlite_data_source.h"
#include "family/registry.h"
#include "tarnsheets/appointment_sheet.h"
#include "tarnsheets/currency_sheet.h"
#include "tarnsheets/data_source.h"
#include "tarnsheets/failure.h"
#include "tarnsheets/messages.h"
#include "tarnsheets/property_bag.h"
#include "tarnsheets/toolkit.h"
#include "toolkits/qt/qt_toolkit.h"

namespace tarnsheets {
namespace {

QString Q(const std::string& text) { return QString::fromStdString(text); }

std::string EditStatusName(int32_t status) {
  switch (status) {
    case dsBrowse:
      return HostText("Browse", "浏览");
    case dsQuery:
      return HostText("Query", "查询");
    case dsNewRecord:
      return HostText("New record", "新记录");
    case dsCopyRecord:
      return HostText("Copied record", "复制的记录");
    case dsClosed:
      return HostText("Closed", "已关闭");
    default:
      return std::to_string(status);
  }
}

// The host commands that every entity sheet gets on its caption strip.
std::vector<std::pair<std::string, std::string>> HostCommands() {
  return {{"Mail", HostText("Mail", "邮件")}, {"Print", HostText("Print", "打印")}};
}

}  // namespace

std::string HostText(const char* english, const char* chinese) {
  return MessageLanguage() == kLanguageChinese ? chinese : english;
}

QPoint DropDownPosition(const QRect& button, const QSize& size, const QRect& screen) {
  int x = button.x() + button.width() - size.width();
  int y = button.y() + button.height();
  if (y + size.height() > screen.y() + screen.height() &&
      button.y() - size.height() >= screen.y()) {
    y = button.y() - size.height();
  }
  x = std::max(screen.x(), std::min(x, screen.x() + screen.width() - size.width()));
  y = std::max(screen.y(), std::min(y, screen.y() + screen.height() - size.height()));
  return QPoint(x, y);
}

DemoWindow::DemoWindow(QtToolkit& toolkit, std::string database, std::string config_directory)
    : toolkit_(toolkit),
      database_(std::move(database)),
      config_directory_(std::move(config_directory)) {
  setWindowTitle(Q(HostText("TarnSheets demo", "TarnSheets 演示")) + " — " + Q(database_));
  auto* splitter = new QSplitter(this);
  list_ = new QListWidget(splitter);
  for (const ControlClass& c : ControlClasses()) list_->addItem(Q(std::string(c.name)));
  list_->setMinimumWidth(160);
  area_ = new QScrollArea(splitter);
  area_->setWidgetResizable(false);
  splitter->addWidget(list_);
  splitter->addWidget(area_);
  splitter->setStretchFactor(1, 1);
  setCentralWidget(splitter);

  edit_status_ = new QLabel(this);
  position_ = new QLabel(this);
  statusBar()->addPermanentWidget(edit_status_);
  statusBar()->addPermanentWidget(position_);
  BuildMenus();

  connect(list_, &QListWidget::currentTextChanged, this, [this](const QString& text) {
    if (bound_ != nullptr && Q(bound_->ClassName()) == text) return;
    if (!ShowControl(text.toStdString()) && bound_ != nullptr) {
      // Stay on the control that could not be left.
      const QList<QListWidgetItem*> items =
          list_->findItems(Q(bound_->ClassName()), Qt::MatchExactly);
      if (!items.isEmpty()) {
        QSignalBlocker block(list_);
        list_->setCurrentItem(items.front());
      }
    }
  });
  resize(1100, 700);
}

DemoWindow::~DemoWindow() { CloseControl(); }

void DemoWindow::BuildMenus() {
  struct Group {
    const char* english;
    const char* chinese;
    std::vector<const char*> names;
  };
  const std::vector<Group> groups = {
      {"&Query", "查询(&Q)", {"New Query", "Refine Query", "Execute Query"}},
      {"&Edit", "编辑(&E)", {"Undo", "Redo", "Cut", "Copy", "Paste", "Delete"}},
      {"&Record",
       "记录(&R)",
       {"Add New Record", "Copy Record", "Delete Record", "Cancel Record", "", "First Record",
        "Previous Record", "Next Record", "Last Record", "", "Refresh"}},
  };
  const std::map<std::string, QKeySequence> shortcuts = {
      {"Add New Record", QKeySequence(Qt::CTRL | Qt::Key_N)},
      {"New Query", QKeySequence(Qt::Key_F7)},
      {"Execute Query", QKeySequence(Qt::Key_F8)},
      {"Undo", QKeySequence(Qt::CTRL | Qt::Key_Z)},
      {"Redo", QKeySequence(Qt::CTRL | Qt::Key_Y)},
      {"Refresh", QKeySequence(Qt::Key_F5)},
      {"Previous Record", QKeySequence(Qt::CTRL | Qt::Key_PageUp)},
      {"Next Record", QKeySequence(Qt::CTRL | Qt::Key_PageDown)},
  };
  QToolBar* toolbar = addToolBar(Q(HostText("Commands", "命令")));
  toolbar->setToolButtonStyle(Qt::ToolButtonTextOnly);
  const std::vector<std::string> on_toolbar = {"First Record", "Previous Record", "Next Record",
                                               "Last Record",  "Add New Record",  "Cancel Record",
                                               "New Query",    "Execute Query"};
  for (const Group& group : groups) {
    QMenu* menu = menuBar()->addMenu(Q(HostText(group.english, group.chinese)));
    for (const char* name : group.names) {
      if (*name == '\0') {
        menu->addSeparator();
        continue;
      }
      // The command's name is what the user reads: it is what the sheet answers to.
      QAction* action = menu->addAction(QString::fromUtf8(name));
      const std::string command = name;
      if (auto s = shortcuts.find(command); s != shortcuts.end()) action->setShortcut(s->second);
      connect(action, &QAction::triggered, this, [this, command] { RunCommand(command); });
      commands_[command] = action;
      if (std::find(on_toolbar.begin(), on_toolbar.end(), command) != on_toolbar.end()) {
        toolbar->addAction(action);
      }
    }
    if (group.english == groups.back().english) {
      menu->addSeparator();
      save_ = menu->addAction(Q(HostText("Save", "保存")));
      save_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_S));
      connect(save_, &QAction::triggered, this, [this] { SaveRecord(); });
      toolbar->addAction(save_);
      leave_query_ = menu->addAction(Q(HostText("Leave Query", "退出查询")));
      leave_query_->setShortcut(QKeySequence(Qt::Key_Escape));
      connect(leave_query_, &QAction::triggered, this, [this] { LeaveQuery(); });
      go_to_ = menu->addAction(Q(HostText("Go to Record...", "转到记录...")));
      go_to_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_G));
      connect(go_to_, &QAction::triggered, this, [this] { AskGoToRecord(); });
    }
  }
  QMenu* view = menuBar()->addMenu(Q(HostText("&View", "视图(&V)")));
  record_buttons_ = view->addAction(Q(HostText("Record buttons", "记录按钮")));
  record_buttons_->setCheckable(true);
  connect(record_buttons_, &QAction::toggled, this, [this](bool on) { ToggleRecordButtons(on); });
  QAction* larger = view->addAction(Q(HostText("Larger text", "放大文字")));
  larger->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Plus));
  connect(larger, &QAction::triggered, this, [this] { ChangeFontSize(1); });
  QAction* smaller = view->addAction(Q(HostText("Smaller text", "缩小文字")));
  smaller->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Minus));
  connect(smaller, &QAction::triggered, this, [this] { ChangeFontSize(-1); });
  view->addSeparator();
  // "Focus" is a status, not a command: it shows whether the focus is inside the control.
  focus_ = view->addAction(QString::fromUtf8("Focus"));
  focus_->setCheckable(true);
  focus_->setEnabled(false);
}

bool DemoWindow::ShowControl(const std::string& class_name) {
  if (bound_ != nullptr) {
    // The focus leaves the control first: a record that cannot be saved keeps it (ExitFocus).
    if (!toolkit_.FocusOutside() ||
        (toolkit_.GetFocus() != nullptr &&
         toolkit_.IsChild(bound_->Control().Host(), *toolkit_.GetFocus()))) {
      Say(HostText("The record could not be saved; the focus stays in the sheet.",
                   "记录无法保存，焦点留在表单中。"));
      return false;
    }
    CloseControl();
  }
  ++generation_;
  std::shared_ptr<Form> form = toolkit_.CreateForm("FrmDemo");
  std::unique_ptr<BoundControl> bound;
  try {
    std::unique_ptr<MemoryPropertyBag> stored;
    try {
      if (auto bag = ReadStoredProperties(config_directory_, class_name)) stored = std::move(*bag);
    } catch (const std::exception& e) {
      Say(HostText("Stored properties ignored: ", "已忽略保存的属性：") + e.what());
    }
    bound =
        BoundControl::Open(toolkit_, *form, class_name, database_, stored.get(), HostCommands());
  } catch (const std::exception& e) {
    toolkit_.Unload(*form);
    QMessageBox::warning(this, Q(HostText("TarnSheets demo", "TarnSheets 演示")),
                         Q(HostText("Cannot show ", "无法显示 ") + class_name + ":\n" + e.what()));
    return false;
  }
  form_ = form;
  bound_ = std::move(bound);
  bound_->AddObserver(this);
  UserControl& host = bound_->Control().Host();
  form_->SetClientSize(host.Width(), host.Height());
  QWidget* widget = toolkit_.WidgetOf(*form_);
  area_->setWidget(widget);
  form_->Show();
  FitControl();
  {
    QSignalBlocker block(record_buttons_);
    record_buttons_->setEnabled(bound_->AsSheet() != nullptr);
    record_buttons_->setChecked(bound_->AsSheet() != nullptr && bound_->AsSheet()->Style() == 1);
  }
  {
    // The list shows the control shown, whoever chose it.
    QSignalBlocker block(list_);
    const QList<QListWidgetItem*> items = list_->findItems(Q(class_name), Qt::MatchExactly);
    if (!items.isEmpty()) list_->setCurrentItem(items.front());
  }
  UpdateCommands();
  Say(HostText("Showing ", "显示 ") + bound_->Caption());
  return true;
}

void DemoWindow::CloseControl() {
  if (bound_ == nullptr) return;
  StoreProperties();
  bound_->RemoveObserver(this);
  bound_.reset();
  if (area_ != nullptr && area_->widget() != nullptr) area_->takeWidget();
  if (form_ != nullptr) toolkit_.Unload(*form_);
  form_.reset();
}

void DemoWindow::StoreProperties() {
  if (bound_ == nullptr) return;
  MemoryPropertyBag bag;
  try {
    bound_->WriteProperties(bag);
    WriteStoredProperties(config_directory_, bound_->ClassName(), bag);
  } catch (const std::exception& e) {
    Say(HostText("Properties not stored: ", "属性未保存：") + e.what());
  }
}

void DemoWindow::FitControl() {
  if (bound_ == nullptr || form_ == nullptr) return;
  // The sheets lay themselves out for any size; Appointment keeps its designed geometry.
  UserControl& host = bound_->Control().Host();
  const Twips tx = toolkit_.TwipsPerPixelX(), ty = toolkit_.TwipsPerPixelY();
  const QSize view = area_->viewport()->size();
  Twips width = host.Width(), height = host.Height();
  if (bound_->AsSheet() != nullptr) width = std::max<Twips>(width, (view.width() - 2) * tx);
  if (bound_->AsSheet() != nullptr && width != host.Width()) host.SetWidth(width);
  form_->SetClientSize(std::max<Twips>(width, host.Width()),
                       std::max<Twips>(height, host.Height()));
  (void)ty;
}

void DemoWindow::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  FitControl();
}

void DemoWindow::closeEvent(QCloseEvent* event) {
  if (bound_ != nullptr && !toolkit_.FocusOutside()) {
    Say(HostText("The record could not be saved; the focus stays in the sheet.",
                 "记录无法保存，焦点留在表单中。"));
    event->ignore();
    return;
  }
  CloseControl();
  event->accept();
}

void DemoWindow::RunCommand(const std::string& name) {
  if (bound_ == nullptr) return;
  try {
    if (bound_->Command(name)) Say(name + HostText(": not carried out", "：未执行"));
  } catch (const std::exception& e) {
    Say(name + ": " + e.what());
  }
  UpdateCommands();
}

void DemoWindow::SaveRecord() {
  if (bound_ == nullptr) return;
  const bool failed = bound_->Save();
  Say(failed ? HostText("The record was not saved.", "记录未保存。")
             : HostText("Saved.", "已保存。"));
  UpdateCommands();
}

void DemoWindow::LeaveQuery() {
  if (bound_ == nullptr || bound_->Source().EditStatus() != dsQuery) return;
  bound_->Source().CancelQuery();
  if (bound_->AsCurrency() != nullptr) bound_->AsCurrency()->InitDisplay();
  UpdateCommands();
}

bool DemoWindow::GoToRecord(int32_t position) {
  if (bound_ == nullptr) return false;
  bool refused = true;
  try {
    refused = bound_->Source().MoveToPosition(position);
  } catch (const std::exception& e) {
    Say(HostText("Go to record: ", "转到记录：") + e.what());
    UpdateCommands();
    return false;
  }
  if (refused) {
    Say(HostText("There is no record ", "没有记录 ") + std::to_string(position) +
        HostText(" to go to here.", "可转到。"));
  }
  UpdateCommands();
  return !refused;
}

void DemoWindow::AskGoToRecord() {
  if (bound_ == nullptr) return;
  const int32_t count = bound_->Source().RecordCount();
  if (count < 1) return;
  bool ok = false;
  const int position = QInputDialog::getInt(
      this, Q(HostText("Go to Record", "转到记录")),
      Q(HostText("Record (1 to ", "记录（1 至 ") + std::to_string(count) + HostText("):", "）：")),
      bound_->Source().AbsolutePosition(), 1, count, 1, &ok);
  if (ok) GoToRecord(position);
}

void DemoWindow::UpdateCommands() {
  if (bound_ == nullptr) {
    for (auto& [name, action] : commands_) action->setEnabled(false);
    save_->setEnabled(false);
    leave_query_->setEnabled(false);
    go_to_->setEnabled(false);
    UpdateStatus();
    return;
  }
  // Read afresh on every change: what the control offers is its own answer at this moment.
  for (auto& [name, action] : commands_) {
    action->setEnabled(bound_->Status(name) == csEnabled);
  }
  const int32_t status = bound_->Source().EditStatus();
  save_->setEnabled(status != dsClosed);
  leave_query_->setEnabled(status == dsQuery);
  go_to_->setEnabled(status != dsClosed && status != dsQuery && bound_->Source().RecordCount() > 0);
  focus_->setChecked(bound_->Status("Focus") == csEnabled);
  UpdateStatus();
}

void DemoWindow::UpdateStatus() {
  if (bound_ == nullptr) {
    edit_status_->clear();
    position_->clear();
    return;
  }
  SqliteDataSource& source = bound_->Source();
  edit_status_->setText(Q(EditStatusName(source.EditStatus())));
  position_->setText(QString::number(source.AbsolutePosition()) + " / " +
                     QString::number(source.RecordCount()));
}

void DemoWindow::Say(const std::string& text) { statusBar()->showMessage(Q(text), 8000); }

void DemoWindow::ToggleRecordButtons(bool on) {
  if (bound_ == nullptr || bound_->AsSheet() == nullptr) return;
  bound_->AsSheet()->SetStyle(on ? 1 : 0);
  StoreProperties();
}

void DemoWindow::ChangeFontSize(float delta) {
  if (bound_ == nullptr) return;
  auto next = [delta](float size) { return std::clamp(size + delta, 6.0f, 20.0f); };
  if (Sheet* s = bound_->AsSheet()) s->SetFontSize(next(s->FontSize()));
  if (CurrencySheet* c = bound_->AsCurrency()) c->SetFontSize(next(c->FontSize()));
  if (AppointmentSheet* a = bound_->AsAppointment()) a->SetFontSize(next(a->FontSize()));
  StoreProperties();
}

// --- Events.

void DemoWindow::Text(const std::string& FieldName, const std::string& TextValue, SheetRect& Rect,
                      bool& Cancel, int32_t& User, std::shared_ptr<SheetForm>& Frm, int32_t& Mode,
                      std::shared_ptr<SheetForm>& ParentForm) {
  (void)Rect, (void)Cancel, (void)User, (void)Frm, (void)Mode, (void)ParentForm;
  Say(FieldName + " = " + TextValue);
}

void DemoWindow::Button(const std::string& FieldName, SheetRect& Rect) {
  if (bound_ == nullptr) return;
  // Rect is the drop button's place on the screen in twips. The sheet scaled Left and Right by
  // the vertical unit and Top and Bottom by the horizontal one; this undoes exactly that.
  const double tx = toolkit_.TwipsPerPixelX(), ty = toolkit_.TwipsPerPixelY();
  const int left = static_cast<int>(std::lround(Rect.Left / ty));
  const int right = static_cast<int>(std::lround(Rect.Right / ty));
  const int top = static_cast<int>(std::lround(Rect.Top / tx));
  const int bottom = static_cast<int>(std::lround(Rect.Bottom / tx));
  const QRect button(left, top, right - left, bottom - top);
  bool is_date = false;
  try {
    is_date = bound_->Source().Fields(Variant(FieldName)).DataType() == kDataTypeDate;
  } catch (const Failure&) {
    // A button whose field the table lacks: a pick list, which will be empty.
  }
  // The drop-down opens after the click is done, so that the button's release does not close it.
  const int generation = generation_;
  QTimer::singleShot(0, this, [this, generation, FieldName, button, is_date] {
    if (generation != generation_ || bound_ == nullptr) return;
    if (is_date) {
      OpenCalendar(FieldName, button);
    } else {
      OpenPickList(FieldName, button);
    }
  });
}

QString DemoWindow::StatusMessageForTest() const { return statusBar()->currentMessage(); }

void DemoWindow::PlaceDropDown(QWidget& popup, const QRect& button) {
  QScreen* screen = QGuiApplication::screenAt(button.center());
  if (screen == nullptr) screen = QGuiApplication::primaryScreen();
  const QRect area =
      screen != nullptr ? screen->availableGeometry() : QRect(0, 0, 1 << 15, 1 << 15);
  popup.move(DropDownPosition(button, popup.sizeHint(), area));
}

void DemoWindow::OpenPickList(const std::string& field, const QRect& button) {
  std::vector<std::string> values;
  try {
    values = ReadLookupValues(database_, field);
  } catch (const Failure& f) {
    Say(f.Description());
    return;
  }
  if (values.empty()) {
    Say(HostText("No pick list for ", "没有可选值：") + field);
    return;
  }
  if (pick_list_ != nullptr) pick_list_->close();
  if (calendar_ != nullptr) calendar_->close();
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  for (const std::string& v : values) menu->addAction(Q(v));
  const int generation = generation_;
  connect(menu, &QMenu::triggered, this, [this, field, generation](QAction* chosen) {
    if (generation != generation_ || bound_ == nullptr) return;
    PutValue(field, Variant(chosen->text().toStdString()));
  });
  pick_list_ = menu;
  PlaceDropDown(*menu, button);
  menu->popup(menu->pos());
}

void DemoWindow::OpenCalendar(const std::string& field, const QRect& button) {
  if (pick_list_ != nullptr) pick_list_->close();
  if (calendar_ != nullptr) calendar_->close();
  auto* calendar = new QCalendarWidget(this);
  calendar->setWindowFlags(Qt::Popup);
  calendar->setAttribute(Qt::WA_DeleteOnClose);
  Date::Parts now{};
  try {
    const Variant value = bound_->Source().Fields(Variant(field)).Value();
    if (value.IsDate()) {
      now = value.DateValue().ToParts();
      calendar->setSelectedDate(QDate(now.year, now.month, now.day));
    }
  } catch (const Failure&) {
  }
  const int generation = generation_;
  auto choose = [this, calendar, field, generation, now](QDate date) {
    if (!calendar->isVisible()) return;  // a double click clicks, then activates
    calendar->close();
    if (generation != generation_ || bound_ == nullptr) return;
    // The time of day that the field held stays.
    PutValue(field, Variant(Date::FromParts(date.year(), date.month(), date.day(), now.hour,
                                            now.minute, now.second)));
  };
  // A click on a day chooses it, and so do Return and a double click on the selected day.
  connect(calendar, &QCalendarWidget::clicked, this, choose);
  connect(calendar, &QCalendarWidget::activated, this, choose);
  calendar_ = calendar;
  calendar->adjustSize();
  PlaceDropDown(*calendar, button);
  calendar->show();
  calendar->setFocus();
}

void DemoWindow::PutValue(const std::string& field, const Variant& value) {
  // The value goes to the data source, which validates it and tells the sheet to show it.
  if (bound_->Source().SetFieldValue(Variant(field), value)) {
    Say(field + HostText(": value refused", "：值被拒绝"));
  } else {
    Say(field + " = " + value.AsText());
  }
  if (bound_->AsCurrency() != nullptr) bound_->AsCurrency()->InitDisplay();
  UpdateCommands();
}

void DemoWindow::SheetStatusChange() {
  // Raised while a control is being bound too, before it is ours.
  if (bound_ != nullptr) UpdateCommands();
}

void DemoWindow::ExitFocus(bool& Cancel) {
  if (bound_ == nullptr) return;
  // Leaving the control stores its record; while that fails the focus stays.
  Cancel = bound_->Save();
  if (Cancel) {
    Say(HostText("The record could not be saved; the focus stays in the sheet.",
                 "记录无法保存，焦点留在表单中。"));
  }
  UpdateCommands();
}

void DemoWindow::EnterFocus() {
  if (bound_ != nullptr) UpdateCommands();
}

void DemoWindow::UserCommand(const std::string& Name) {
  if (bound_ == nullptr) return;
  const std::string where = bound_->Caption() + " " +
                            std::to_string(bound_->Source().AbsolutePosition()) + " / " +
                            std::to_string(bound_->Source().RecordCount());
  if (Name == "Mail") {
    Say(HostText("Mail: a message about ", "邮件：已准备关于 ") + where +
        HostText(" is ready in your mail program.", " 的邮件。"));
  } else if (Name == "Print") {
    Say(HostText("Print: ", "打印：") + where +
        HostText(" sent to the printer.", " 已发送到打印机。"));
  } else {
    Say(HostText("Host command ", "宿主命令 ") + Name);
  }
}

void DemoWindow::NewRecord(int32_t& User) {
  User = 0;
  Say(HostText("A new record is started.", "开始新记录。"));
}

}  // namespace tarnsheets
