// The Qt toolkit: the library's controls on Qt 6 Widgets.
//
// A host creates one QtToolkit (it creates the QApplication when there is none yet) and hands it to
// the controls it creates. Every control is a real widget; the engine's rules of focus and events
// are kept by this toolkit, not by Qt's defaults:
// - Tab and Shift+Tab follow TabIndex over the eligible stops exactly as the headless toolkit
//   does (see toolkits/headless/headless_toolkit.h): a text box, command button, picture box or a
//   user control that takes the focus itself, with TabStop True, visible and enabled inside
//   visible, enabled containers; depth-first, wrapping at the window's edges. Qt's own focus chain
//   is switched off (every widget has Qt::NoFocus); the toolkit sets the widget focus itself.
// - A focus move raises Validate (which can keep the focus), LostFocus, ExitFocus and EnterFocus
//   of the user controls left and entered, then GotFocus, in the headless toolkit's order. A mouse
//   press that would move the focus is swallowed when Validate cancels.
// - Keys: KeyDown, then KeyPress for characters and for Back, Return, Escape and Space, then the
//   widget's own edit (a KeyPress handler may replace or swallow the character), Change, and KeyUp
//   when the key is released. Return clicks the form's Default button unless a multi-line box has
//   the focus. Ctrl+C, Ctrl+X, Ctrl+V and Ctrl+Z on a text box run Copy, Cut, Paste and the
//   one-level Undo of the TextBox interface.
// - Lengths: twips per pixel is 1440 / the primary screen's logical DPI, until SetTwipsPerPixel.
// - System colours resolve from the application's QPalette.
// - Text boxes: a multi-line box keeps "\r\n" line breaks in Text (the widget shows "\n");
//   SelStart and SelLength count characters of Text.
//
// Driving and inspection have the same names and meaning as the headless toolkit's, so that the
// same behaviour tests run on both. Driving sends real QKeyEvent and QMouseEvent objects to the
// widgets, which do the editing. With DialogMode::kAnswered, message boxes, modal forms and pop-up
// menus are recorded and answered at once (OK, the default button, the pop-up answer) instead of
// running a modal loop; with kInteractive they are recorded and then shown to the user.
#ifndef TARNSHEETS_TOOLKITS_QT_QT_TOOLKIT_H_
#define TARNSHEETS_TOOLKITS_QT_QT_TOOLKIT_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tarnsheets/toolkit.h"
#include "toolkits/common/dialog_recorder.h"  // DialogRecord
#include "toolkits/common/focus_rules.h"
#include "toolkits/headless/headless_toolkit.h"  // DrawOp: shared by both toolkits

class QEvent;
class QObject;
class QWidget;

namespace tarnsheets {

class QtNode;
class QtForm;
class QtEventBridge;
class QtTextBox;

class QtToolkit : public Toolkit, private FocusHost {
 public:
  enum class DialogMode {
    kInteractive,  // boxes, modal forms and pop-up menus wait for the user
    kAnswered,     // recorded and answered at once: for tests and offscreen rendering
  };

  // Creates the QApplication when the process has none yet (it then lives until the process
  // ends). REQUIRES: called on the thread that runs (or will run) the Qt event loop.
  explicit QtToolkit(DialogMode mode = DialogMode::kInteractive);
  ~QtToolkit() override;
  QtToolkit(const QtToolkit&) = delete;
  QtToolkit& operator=(const QtToolkit&) = delete;

  DialogMode Mode() const { return mode_; }
  void SetDialogMode(DialogMode mode) { mode_ = mode; }

  // Toolkit.
  Twips TwipsPerPixelX() const override { return tppx_; }
  Twips TwipsPerPixelY() const override { return tppy_; }
  SheetRect WindowRect(const Control& control) const override;
  Color ResolveColor(Color color) const override;
  Control* GetFocus() const override;
  bool IsChild(const Control& parent, const Control& child) const override;
  std::string ClipboardText() const override;
  void SetClipboardText(const std::string& text) override;
  std::shared_ptr<Form> CreateForm(const std::string& name) override;
  std::shared_ptr<Label> CreateLabel(Container& parent, const std::string& name,
                                     int32_t index = -1) override;
  std::shared_ptr<TextBox> CreateTextBox(Container& parent, const std::string& name,
                                         int32_t index = -1, bool multi_line = false) override;
  std::shared_ptr<CommandButton> CreateCommandButton(Container& parent, const std::string& name,
                                                     int32_t index = -1) override;
  std::shared_ptr<PictureBox> CreatePictureBox(Container& parent, const std::string& name,
                                               int32_t index = -1) override;
  std::shared_ptr<Shape> CreateShape(Container& parent, const std::string& name,
                                     int32_t index = -1) override;
  std::shared_ptr<Frame> CreateFrame(Container& parent, const std::string& name,
                                     int32_t index = -1) override;
  std::shared_ptr<Image> CreateImage(Container& parent, const std::string& name,
                                     int32_t index = -1) override;
  std::shared_ptr<Menu> CreateMenu(Container& owner, Menu* parent_menu, const std::string& name,
                                   int32_t index = -1) override;
  std::shared_ptr<UserControl> CreateUserControl(Container& parent, const std::string& class_name,
                                                 const std::string& name,
                                                 int32_t index = -1) override;
  std::shared_ptr<Control> LoadControl(const Control& element0, int32_t index) override;
  void Unload(Control& control) override;
  void ShowModal(Form& form) override;
  void MessageBox(const std::string& title, const std::string& text,
                  MessageBoxStyle style) override;

  // Screen: overrides the DPI-derived twips per pixel; every control is laid out again.
  // Fails with 5 unless both are positive.
  void SetTwipsPerPixel(Twips x, Twips y);

  // Driving, as a user would; see the headless toolkit for the exact sequences. Keys go to the
  // widget of the control that holds the focus of the active window; with no focus they do
  // nothing.
  void PressKey(int16_t key_code, int16_t shift = 0);
  void PressTab() { PressKey(kKeyTab, 0); }
  void PressShiftTab() { PressKey(kKeyTab, kShiftMask); }
  void KeyDownOnly(int16_t key_code, int16_t shift = 0);
  void KeyUpOnly(int16_t key_code, int16_t shift = 0);
  void TypeText(std::string_view utf8);
  void Click(Control& control, float x = 0, float y = 0);
  void RightClick(Control& control, float x = 0, float y = 0);
  void DoubleClick(Control& control);
  void MouseDown(Control& control, int16_t button, int16_t shift = 0, float x = 0, float y = 0);
  void MouseUp(Control& control, int16_t button, int16_t shift = 0, float x = 0, float y = 0);
  void MouseMove(Control& control, int16_t button, int16_t shift = 0, float x = 0, float y = 0);
  // Clicks a menu item when it and the menus above it are enabled and it is visible.
  void ClickMenu(Menu& item);
  // The user clicks outside every window of the application. Returns false when a Validate
  // cancelled.
  bool FocusOutside();
  // Raises Paint on a user control or form and draws its widget again.
  void Repaint(Control& control);

  // Inspection.
  const std::vector<DialogRecord>& DialogLog() const { return dialogs_.Records(); }
  void ClearDialogLog() { dialogs_.Clear(); }
  void SetDialogObserver(std::function<void(const DialogRecord&)> observer) {
    dialogs_.SetObserver(std::move(observer));
  }
  // Answers pop-up menus in DialogMode::kAnswered: the name of the item to click ("" closes).
  void SetPopupMenuAnswer(std::function<std::string(const Menu&)> answer) {
    popup_answer_ = std::move(answer);
  }
  // The drawing operations of a user control or picture box since its last Cls.
  const std::vector<DrawOp>& DrawOps(const Control& control) const;
  int32_t ClsCount(const Control& control) const;
  // The control's widget as Qt paints it, pixel by pixel, row by row from the top (RGB colours).
  std::vector<Color> RenderPixels(const Control& control, int32_t* width, int32_t* height) const;
  const std::vector<std::string>& NotifiedProperties(const UserControl& control) const;
  void ClearNotifiedProperties(UserControl& control);
  std::vector<Control*> TabOrder(Form& form);
  Form* ActiveForm() const;
  bool CanTakeFocus(const Control& control) const;

  // Qt side.
  // The widget that shows `control`; nullptr for a menu and for an unloaded control.
  QWidget* WidgetOf(const Control& control) const;
  // Renders the control's widget (a form, user control or any other control with a widget) to a
  // PNG file. Fails with 5, naming the control or the file, when there is no widget or the file
  // cannot be written; nothing is written then.
  void SaveScreenshot(const Control& control, const std::string& png_path) const;
  // Runs the pending Qt events (paints, deferred deletions) once.
  void ProcessEvents();

  // For the controls' own use.
  void SetFocusTo(Control& control);
  void ActivateForm(QtForm* form);
  void RecordDialog(DialogRecord record);
  void RunPopupMenu(Menu& menu);
  void Register(QtNode* node) { nodes_.insert(node); }
  void Forget(QtNode* node) { nodes_.erase(node); }
  QtNode* NodeOfWidget(const QWidget* widget) const;
  QtEventBridge& Bridge() { return *bridge_; }
  // Single-line boxes that were shown a text while without the focus keep their caret where
  // the widget left it until the window next paints, is clicked, typed into or gives one of them
  // the focus: a run of records shown faster than the screen repaints places each caret once.
  // A box is in the list exactly while its caret waits: it defers once and forgets once.
  void DeferCaretHome(QtTextBox* box);
  void ForgetDeferredCaret(QtTextBox* box);
  // Puts every deferred caret at the start of its box.
  void PlaceDeferredCarets();
  bool HasDeferredCaretsForTest() const { return !deferred_carets_.empty(); }

  // Called by the event bridge with a real Qt key or mouse event that `receiver` (the control's
  // widget or its viewport) is about to get. Returns true when the event is consumed; the widget's
  // own handling then runs through copies the toolkit forwards at the right moment.
  bool OnKey(QtNode& node, QObject* receiver, QEvent* event);
  bool OnMouse(QtNode& node, QObject* receiver, QEvent* event);

 private:
  QtNode& Node(const Control& control) const;
  QtForm* FormOf(const Control& control) const;

  // FocusHost: what the focus rules read of the controls.
  bool IsLoaded(const Control& control) const override;
  const std::vector<std::shared_ptr<Control>>& ChildrenOf(const Control& container) const override;
  int32_t TabIndexOf(const Control& control) const override;
  bool TabStopOf(const Control& control) const override;
  FocusMarks& MarksOf(const Control& control) override;
  WindowFocus& FocusOf(Form& form) override;
  // The widget focus follows the focused control.
  void FocusChanged(Form& form) override;

  void ApplyWidgetFocus(QtForm& form);
  void SendKey(int16_t key_code, int16_t shift, bool press, bool release, uint32_t character);
  void SendMouse(Control& control, int type, int16_t button, int16_t shift, float x, float y);
  template <typename T>
  std::shared_ptr<T> Adopt(Container& parent, std::shared_ptr<T> control);

  DialogMode mode_;
  Twips tppx_ = 15;
  Twips tppy_ = 15;
  std::vector<std::shared_ptr<Form>> forms_;
  QtForm* active_form_ = nullptr;
  DialogRecorder dialogs_;
  FocusRules rules_{*this};
  std::function<std::string(const Menu&)> popup_answer_;
  std::set<QtNode*> nodes_;
  std::unique_ptr<QtEventBridge> bridge_;
  std::vector<QtTextBox*> deferred_carets_;
  // Watches the application's events while a caret is deferred, to place it before painting.
  std::unique_ptr<QObject> caret_watch_;
  // Mouse bookkeeping of the real events: the press that Validate swallowed, the widget pressed,
  // and the release after a double click (no Click then).
  const QObject* swallowed_press_ = nullptr;
  const QObject* pressed_ = nullptr;
  bool after_double_click_ = false;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_TOOLKITS_QT_QT_TOOLKIT_H_
