// The demo host's main window: the nineteen controls in a list, the chosen one bound to its table
// of the sample database, a menu bar and a toolbar built from the command names, and a status bar
// with the edit status and "position / count". It answers the controls' events as a real host
// does: drop buttons open a pick list or a calendar at the field, accepted values show in the
// status bar, host commands are answered, and the focus stays in a sheet whose record cannot be
// saved. Each control's properties are stored as JSON in the user's config directory.
#ifndef TARNSHEETS_APPS_DEMO_DEMO_WINDOW_H_
#define TARNSHEETS_APPS_DEMO_DEMO_WINDOW_H_

#include <QCalendarWidget>
#include <QMainWindow>
#include <QMenu>
#include <QPoint>
#include <QPointer>
#include <QRect>
#include <QSize>
#include <map>
#include <memory>
#include <string>

#include "apps/demo/bound_control.h"
#include "tarnsheets/sheet.h"
#include "tarnsheets/variant.h"

class QAction;
class QLabel;
class QListWidget;
class QScrollArea;

namespace tarnsheets {

class Form;
class QtToolkit;

// A text of the host in the process's language.
std::string HostText(const char* english, const char* chinese);

// Where a drop-down of `size` pixels opens for a drop button at `button` (pixels of the screen):
// below the button with its right edge on the button's, so that it lies under the field's editor
// as a combo box's list does; above the button when it does not fit below; always inside
// `screen` (the available area of the button's screen) as far as the size allows.
QPoint DropDownPosition(const QRect& button, const QSize& size, const QRect& screen);

class DemoWindow : public QMainWindow, public SheetEvents {
 public:
  // `database` must exist; `config_directory` is where the stored properties go.
  DemoWindow(QtToolkit& toolkit, std::string database, std::string config_directory);
  ~DemoWindow() override;

  // Shows `class_name`, storing the properties of the control shown before. Returns false (and
  // keeps the present control) when the focus cannot leave it, or when the new one fails to open
  // (the reason is shown).
  bool ShowControl(const std::string& class_name);
  BoundControl* Current() const { return bound_.get(); }
  // Moves the control's data source to the record at `position` (Record > Go to Record...), as
  // a "go to record n" box does. Returns false, saying why in the status bar, when the source
  // refuses (a position outside the set, query mode, a pending new record).
  bool GoToRecord(int32_t position);

  // The pick list or the calendar that a drop button opened and that is still open; nullptr
  // otherwise. For tests that choose in them as a user does.
  QMenu* PickListForTest() const { return pick_list_.data(); }
  QCalendarWidget* CalendarForTest() const { return calendar_.data(); }
  // The text of the status bar's message.
  QString StatusMessageForTest() const;

  // SheetEvents.
  void Text(const std::string& FieldName, const std::string& TextValue, SheetRect& Rect,
            bool& Cancel, int32_t& User, std::shared_ptr<SheetForm>& Frm, int32_t& Mode,
            std::shared_ptr<SheetForm>& ParentForm) override;
  void Button(const std::string& FieldName, SheetRect& Rect) override;
  void SheetStatusChange() override;
  void ExitFocus(bool& Cancel) override;
  void EnterFocus() override;
  void UserCommand(const std::string& Name) override;
  void NewRecord(int32_t& User) override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void BuildMenus();
  void RunCommand(const std::string& name);
  void SaveRecord();
  void LeaveQuery();
  void AskGoToRecord();
  void UpdateCommands();
  void UpdateStatus();
  void Say(const std::string& text);
  void StoreProperties();
  void CloseControl();
  void FitControl();
  void OpenPickList(const std::string& field, const QRect& button);
  void OpenCalendar(const std::string& field, const QRect& button);
  void PlaceDropDown(QWidget& popup, const QRect& button);
  void PutValue(const std::string& field, const Variant& value);
  void ChangeFontSize(float delta);
  void ToggleRecordButtons(bool on);

  QtToolkit& toolkit_;
  std::string database_;
  std::string config_directory_;

  // The control shown and the toolkit form that holds it; replaced by ShowControl.
  std::shared_ptr<Form> form_;
  std::unique_ptr<BoundControl> bound_;
  int generation_ = 0;  // counts ShowControl, so that deferred pop-ups find their control gone

  QListWidget* list_ = nullptr;
  QScrollArea* area_ = nullptr;
  QLabel* edit_status_ = nullptr;
  QLabel* position_ = nullptr;
  std::map<std::string, QAction*> commands_;
  QAction* save_ = nullptr;
  QAction* leave_query_ = nullptr;
  QAction* go_to_ = nullptr;
  QAction* record_buttons_ = nullptr;
  QAction* focus_ = nullptr;
  // The open drop-down, at most one; each deletes itself when it closes.
  QPointer<QMenu> pick_list_;
  QPointer<QCalendarWidget> calendar_;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_APPS_DEMO_DEMO_WINDOW_H_
