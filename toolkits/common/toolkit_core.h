// What every toolkit of the library does the same way, whatever shows the controls: the tree of
// controls (creation, control arrays, unloading), the focus and the order of its events, the
// dialogs' record and answers, the drawing log, and the sequences a user's keys and mouse drive.
//
// For toolkit implementers, not hosts. The headless and the Qt toolkit derive from ToolkitCore
// and supply what differs: the controls they make (NewControl), their views (the hooks below),
// painting, metrics and how a key or a mouse button reaches a control. The rules of focus and of
// the events are in the banner of toolkits/headless/headless_toolkit.h.
#ifndef TARNSHEETS_TOOLKITS_COMMON_TOOLKIT_CORE_H_
#define TARNSHEETS_TOOLKITS_COMMON_TOOLKIT_CORE_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tarnsheets/toolkit.h"
#include "toolkits/common/dialog_recorder.h"  // DialogRecord
#include "toolkits/common/draw_log.h"         // DrawOp
#include "toolkits/common/focus_rules.h"

namespace tarnsheets {

class ControlNode;
struct WindowState;

class ToolkitCore : public Toolkit, private FocusHost {
 public:
  ~ToolkitCore() override;
  ToolkitCore(const ToolkitCore&) = delete;
  ToolkitCore& operator=(const ToolkitCore&) = delete;

  // Toolkit.
  Twips TwipsPerPixelX() const override { return tppx_; }
  Twips TwipsPerPixelY() const override { return tppy_; }
  Control* GetFocus() const override;
  bool IsChild(const Control& parent, const Control& child) const override;
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
  // Fails with 5, naming the menu, when `owner` is not a form or user control or `parent_menu`
  // is not a menu of `owner`; with 360 when `owner` has a control of that name and index.
  std::shared_ptr<Menu> CreateMenu(Container& owner, Menu* parent_menu, const std::string& name,
                                   int32_t index = -1) override;
  std::shared_ptr<UserControl> CreateUserControl(Container& parent, const std::string& class_name,
                                                 const std::string& name,
                                                 int32_t index = -1) override;
  std::shared_ptr<Control> LoadControl(const Control& element0, int32_t index) override;
  void Unload(Control& control) override;
  // Load the first time, then the form is shown and becomes the active window. A toolkit that
  // answers its dialogs records the form and clicks its answer button (the Default button, else
  // the first visible, enabled button in tab order); one that waits for the user records it and
  // runs until the form is hidden or unloaded. The window active before becomes active again.
  void ShowModal(Form& form) override;
  // Recorded, reported to the observer, then answered OK at once or shown to the user.
  void MessageBox(const std::string& title, const std::string& text,
                  MessageBoxStyle style) override;

  // Screen. Fails with 5 unless both are positive.
  void SetTwipsPerPixel(Twips x, Twips y);

  // Driving, as a user would. Keys and typing go to the control that holds the focus of the
  // active window; with no focus they do nothing.
  //
  // A key: KeyDown, then what the key does, then KeyUp. Tab (Shift+Tab with kShiftMask) moves the
  // focus and raises no key events. Back (8), Return (13), Escape (27) and Space (32) also raise
  // KeyPress between KeyDown and the edit. Delete (46) deletes the selection or the character
  // after the caret; Left, Right, Home and End move the caret (with kShiftMask: extend the
  // selection). Return on a form with a visible, enabled Default button clicks it instead (no
  // KeyPress) unless the focus is on a multi-line text box. Space released on a command button
  // clicks it. A handler that changes KeyCode in KeyDown changes the key that acts.
  void PressKey(int16_t key_code, int16_t shift = 0);
  void PressTab() { PressKey(kKeyTab, 0); }
  void PressShiftTab() { PressKey(kKeyTab, kShiftMask); }
  // KeyDown alone (a key held down repeats KeyDown) and KeyUp alone.
  void KeyDownOnly(int16_t key_code, int16_t shift = 0);
  void KeyUpOnly(int16_t key_code, int16_t shift = 0);
  // Types each character: KeyDown (the upper-case letter or digit code, 32 for a blank, 0 for
  // anything else), KeyPress with the character (its UTF-16 value), the edit, Change, KeyUp.
  void TypeText(std::string_view utf8);
  // A press of the left button on `control`: the focus moves there first when the control takes
  // the focus (a Validate that cancels stops the click), then MouseDown, MouseUp, Click. A menu
  // item is clicked as ClickMenu does.
  void Click(Control& control, float x = 0, float y = 0);
  // MouseDown with button 2 (text boxes and focusable user controls take the focus first), then
  // MouseUp. No Click.
  void RightClick(Control& control, float x = 0, float y = 0);
  // A click, then DblClick and the second release.
  void DoubleClick(Control& control);
  // The single mouse events, with the focus change of a press for MouseDown.
  void MouseDown(Control& control, int16_t button, int16_t shift = 0, float x = 0, float y = 0);
  void MouseUp(Control& control, int16_t button, int16_t shift = 0, float x = 0, float y = 0);
  void MouseMove(Control& control, int16_t button, int16_t shift = 0, float x = 0, float y = 0);
  // Clicks a menu item when it and the menus above it are enabled and it is visible.
  void ClickMenu(Menu& item);
  // The user clicks outside every window of the application: the focus leaves the active window
  // with the events of a focus move to no control. Returns false when a Validate cancelled.
  bool FocusOutside();
  // Raises Paint on a user control or form, as a repaint does, and paints the control again.
  void Repaint(Control& control);

  // Inspection.
  const std::vector<DialogRecord>& DialogLog() const { return dialogs_.Records(); }
  void ClearDialogLog() { dialogs_.Clear(); }
  // Called with each record as it is taken, before the box or form is answered.
  void SetDialogObserver(std::function<void(const DialogRecord&)> observer) {
    dialogs_.SetObserver(std::move(observer));
  }
  // Answers pop-up menus where the toolkit answers its dialogs: returns the name of the item to
  // click ("" closes the menu). Without an answer a pop-up menu closes with no choice.
  void SetPopupMenuAnswer(std::function<std::string(const Menu&)> answer) {
    popup_answer_ = std::move(answer);
  }
  // The drawing operations of a user control or picture box since its last Cls (fails with 438
  // for the other kinds).
  const std::vector<DrawOp>& DrawOps(const Control& control) const;
  // How often the surface was cleared (Cls, and BackColor set).
  int32_t ClsCount(const Control& control) const;
  // Keys passed to NotifyPropertyChanged of a user control, in order (the latest
  // kNotifiedPropertiesKept of them).
  const std::vector<std::string>& NotifiedProperties(const UserControl& control) const;
  void ClearNotifiedProperties(UserControl& control);
  // The focus stops of a form in tab order.
  std::vector<Control*> TabOrder(Form& form);
  // The window that holds the input focus, nullptr when none does.
  Form* ActiveForm() const { return active_form_; }
  // Whether Click on the control would focus it: for tests of focus rules.
  bool CanTakeFocus(const Control& control) const;

  // For the controls' own use.
  void SetFocusTo(Control& control);  // fails with 5 as Control::SetFocus
  void ActivateForm(Form* form);
  void RecordDialog(DialogRecord record);
  void RunPopupMenu(Menu& menu);

 protected:
  ToolkitCore() = default;

  // The node of a control of this toolkit. Fails with 5, naming the control, for any other.
  ControlNode& Node(const Control& control) const;
  // The state of a form of this toolkit.
  WindowState& Window(Form& form) const;
  // The window `control` is on, nullptr when it is on none.
  Form* FormOf(const Control& control) const;
  FocusRules& Rules() { return rules_; }
  // The rectangle of `control` in screen pixels, from its position in twips.
  SheetRect WindowRectFromTwips(const Control& control) const;
  // The forms that are loaded, in creation order.
  const std::vector<std::shared_ptr<Form>>& Forms() const { return forms_; }

  // How a press of `button` on `control` went with the focus.
  enum class PressFocus {
    kTaken,     // the control does not take the focus on this press, or has taken it
    kNoWindow,  // the control would take it but is on no window
    kRefused,   // a Validate kept the focus where it was
  };
  PressFocus FocusOnPress(Control& control, int16_t button);

  // What the toolkit supplies.
  //
  // A new control of `kind` (`class_name` for user controls, `multi_line` for text boxes), not
  // yet in the tree.
  virtual std::shared_ptr<Control> NewControl(ControlKind kind, const std::string& class_name,
                                              const std::string& name, int32_t index,
                                              bool multi_line) = 0;
  // The control is in the tree with its defaults: the toolkit makes its view.
  virtual void Realize(ControlNode& node) { (void)node; }
  // The view of `form` follows a change of the active window or of its focused control.
  virtual void FormActivated(Form* form) { (void)form; }
  virtual void FocusMoved(Form& form) { (void)form; }
  virtual void TwipsPerPixelChanged() {}
  virtual void RepaintView(Control& control) { (void)control; }
  // True where dialogs are recorded and answered at once; false where they wait for the user.
  virtual bool AnswersDialogs() const { return true; }
  // Where dialogs wait for the user: the message box, the modal loop until `form` is hidden or
  // unloaded, the pop-up menu (returns the name of the item chosen, "" for none).
  virtual void ShowMessageBox(const std::string& title, const std::string& text,
                              MessageBoxStyle style) {
    (void)title, (void)text, (void)style;
  }
  virtual void RunModalLoop(Form& form) { (void)form; }
  virtual std::string AskPopupMenu(Menu& menu) {
    (void)menu;
    return "";
  }
  // Shows `form` as a modal window, before it becomes the active window.
  virtual void ShowModalWindow(Form& form) { (void)form; }
  // A key pressed (`press`) and or released (`release`) on the focused control, and a character
  // typed into it; the focus is not nullptr then.
  virtual void SendKey(int16_t key_code, int16_t shift, bool press, bool release) = 0;
  virtual void SendCharacter(uint32_t cp) = 0;
  enum class MouseAction { kDown, kUp, kMove, kDoubleClick };
  virtual void SendMouse(Control& control, MouseAction action, int16_t button, int16_t shift,
                         float x, float y) = 0;
  // A left click on a control other than a menu; by default the press and the release.
  virtual void ClickControl(Control& control, float x, float y);

 private:
  // FocusHost: what the focus rules read of the controls.
  bool IsLoaded(const Control& control) const override;
  const std::vector<std::shared_ptr<Control>>& ChildrenOf(const Control& container) const override;
  int32_t TabIndexOf(const Control& control) const override;
  bool TabStopOf(const Control& control) const override;
  FocusMarks& MarksOf(const Control& control) override;
  WindowFocus& FocusOf(Form& form) override;
  void FocusChanged(Form& form) override { FocusMoved(form); }

  // Puts `control` into the tree under `parent`: owner, default size, TabIndex, font.
  template <typename T>
  std::shared_ptr<T> Adopt(Container& parent, std::shared_ptr<Control> control);

  Twips tppx_ = 15;
  Twips tppy_ = 15;
  std::vector<std::shared_ptr<Form>> forms_;
  Form* active_form_ = nullptr;
  DialogRecorder dialogs_;
  FocusRules rules_{*this};
  std::function<std::string(const Menu&)> popup_answer_;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_TOOLKITS_COMMON_TOOLKIT_CORE_H_
