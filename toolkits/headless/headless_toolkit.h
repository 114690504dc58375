// The headless toolkit: a complete, deterministic toolkit without a screen.
//
// It is the offscreen twin of the Qt toolkit: the engine's tests and the script host run on it.
// Everything a user does is driven through the methods under "Driving"; everything the controls
// show is readable through the methods under "Inspection".
//
// Fixed behaviour that tests may compute with:
// - Screen: 15 twips per pixel on both axes until SetTwipsPerPixel changes it.
// - Text metrics of a font of size S points, for a text of N characters (code points) in its
//   longest line and L lines (L = 1 + number of "\n"; "\r\n" counts once):
//     TextWidth  = round(N * S * 10) twips
//     TextHeight = round(L * S * 24) twips
//   (round: to the nearest whole twip, halves away from zero). Bold and other styles do not count.
// - System colours resolve to: 0x80000005 window background 0xFFFFFF, 0x80000008 window text
//   0x000000, 0x8000000A active border 0xB4B4B4, 0x8000000F button face 0xF0F0F0, 0x80000012
//   button text 0x000000, 0x80000010 button shadow 0xA0A0A0, 0x80000014 highlight 0xFFFFFF,
//   0x8000000D highlight 0xD77800 (blue), 0x8000000E highlight text 0xFFFFFF; any other system
//   colour resolves to 0x000000.
// - Default sizes of new controls (twips, width x height): Label 1215 x 255, TextBox 1215 x 285,
//   CommandButton 1215 x 375, PictureBox / Frame / Shape / Image 1215 x 615, UserControl
//   2400 x 1200; a Form has a client area of 4800 x 3600 at (0, 0) of the screen and no frame.
// - Default colours: BackColor 0x80000005 on text boxes, 0x8000000F on every other kind, except a
//   shape: BackColor 0xFFFFFF with BackStyle 0, BorderColor 0x80000008, BorderWidth 1, FillStyle 1.
//   ForeColor 0x80000008. A new control takes the font of its parent (Font{} on a form).
// - TabIndex: a new control gets the next number of its owner's counter (0, 1, 2, ...). Setting a
//   TabIndex does not renumber the others; equal numbers keep creation order.
// - Tab order: the children of a container sorted by TabIndex, depth-first: a picture box comes
//   before its own children, a frame is passed through, a user control's children follow in their
//   own order (a user control whose TabStop is False is skipped whole); a user control with
//   CanGetFocus and no child that can take the focus is one stop. A stop is a text box, command
//   button, picture box or such a user control with TabStop True, visible and enabled inside
//   visible, enabled containers. Tab and Shift+Tab wrap at the window's edges.
// - Focus move from A to B (either may be none):
//     Validate on A, then on each user control being left, innermost first (Cancel: stop, the focus
//     stays on A, nothing else happens);
//     LostFocus on A, then on each user control being left, innermost first;
//     ExitFocus on each user control being left, innermost first;
//     EnterFocus on each user control being entered, outermost first;
//     GotFocus on each user control being entered, outermost first, then on B.
//   GetFocus reports B from the LostFocus of A on. A handler that moves the focus again ends the
//   move that raised it; each control gets LostFocus only after GotFocus and ExitFocus only after
//   EnterFocus, so events stay paired. Switching between windows (showing or closing a form)
//   raises no focus events: each window keeps its own focused control.
// - A line's end point is not drawn (as the platform's line); a filled box includes both corners.
#ifndef TARNSHEETS_TOOLKITS_HEADLESS_HEADLESS_TOOLKIT_H_
#define TARNSHEETS_TOOLKITS_HEADLESS_HEADLESS_TOOLKIT_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tarnsheets/toolkit.h"
#include "toolkits/common/dialog_recorder.h"  // DialogRecord
#include "toolkits/common/focus_rules.h"

namespace tarnsheets {

class HNode;
class HForm;

// One operation on a drawing surface since its last Cls.
struct DrawOp {
  enum class Kind { kLine, kBox, kPicture };
  Kind kind = Kind::kLine;
  Twips x1 = 0, y1 = 0, x2 = 0, y2 = 0;  // kPicture: x1, y1 is the top-left corner
  Color color = 0;                       // as given (a system colour stays unresolved)
  Picture picture;                       // kPicture only

  // "line 0,0-3375,0 #BB5522", "box 15,15-180,180 #80000005", "picture PictureClip1 7x7 at 60,60"
  std::string ToString() const;
};

class HeadlessToolkit : public Toolkit, private FocusHost {
 public:
  HeadlessToolkit();
  ~HeadlessToolkit() override;
  HeadlessToolkit(const HeadlessToolkit&) = delete;
  HeadlessToolkit& operator=(const HeadlessToolkit&) = delete;

  // Toolkit.
  Twips TwipsPerPixelX() const override { return tppx_; }
  Twips TwipsPerPixelY() const override { return tppy_; }
  SheetRect WindowRect(const Control& control) const override;
  Color ResolveColor(Color color) const override;
  Control* GetFocus() const override;
  bool IsChild(const Control& parent, const Control& child) const override;
  std::string ClipboardText() const override { return clipboard_; }
  void SetClipboardText(const std::string& text) override { clipboard_ = text; }
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
  // Dialogs: recorded, reported to the observer, answered OK at once.
  void MessageBox(const std::string& title, const std::string& text,
                  MessageBoxStyle style) override;

  // Screen.
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
  // the focus (a Validate that cancels stops the click), then MouseDown, MouseUp, Click.
  void Click(Control& control, float x = 0, float y = 0);
  // MouseDown with button 2 (text boxes and focusable user controls take the focus first), then
  // MouseUp. No Click.
  void RightClick(Control& control, float x = 0, float y = 0);
  void DoubleClick(Control& control);
  // The single mouse events, with the focus change of a press for MouseDown.
  void MouseDown(Control& control, int16_t button, int16_t shift = 0, float x = 0, float y = 0);
  void MouseUp(Control& control, int16_t button, int16_t shift = 0, float x = 0, float y = 0);
  void MouseMove(Control& control, int16_t button, int16_t shift = 0, float x = 0, float y = 0);
  // Clicks a menu item when it is visible and enabled.
  void ClickMenu(Menu& item);
  // The user clicks outside every window of the application: the focus leaves the active window
  // with the events of a focus move to no control. Returns false when a Validate cancelled.
  bool FocusOutside();
  // Raises Paint on a user control or form, as a repaint does.
  void Repaint(Control& control);

  // Inspection.
  const std::vector<DialogRecord>& DialogLog() const { return dialogs_.Records(); }
  void ClearDialogLog() { dialogs_.Clear(); }
  // Called with each record as it is taken, before the box or form is answered.
  void SetDialogObserver(std::function<void(const DialogRecord&)> observer) {
    dialogs_.SetObserver(std::move(observer));
  }
  // Answers pop-up menus: returns the name of the item to click ("" closes the menu). Without an
  // answer a pop-up menu closes with no choice.
  void SetPopupMenuAnswer(std::function<std::string(const Menu&)> answer) {
    popup_answer_ = std::move(answer);
  }
  // The drawing operations of a user control or picture box since its last Cls.
  const std::vector<DrawOp>& DrawOps(const Control& control) const;
  // How often the surface was cleared (Cls, and BackColor set).
  int32_t ClsCount(const Control& control) const;
  // The surface as pixels, row by row from the top: the resolved back colour, then the recorded
  // operations in order. `width` and `height` receive the size in pixels.
  std::vector<Color> RenderPixels(const Control& control, int32_t* width, int32_t* height) const;
  // Keys passed to NotifyPropertyChanged of a user control, in order (the latest
  // kNotifiedPropertiesKept of them).
  const std::vector<std::string>& NotifiedProperties(const UserControl& control) const;
  void ClearNotifiedProperties(UserControl& control);
  // The focus stops of a form in tab order (see the banner).
  std::vector<Control*> TabOrder(Form& form);
  // The window that holds the input focus, nullptr when none does.
  Form* ActiveForm() const;
  // The control that Click on the control's window would focus: for tests of focus rules.
  bool CanTakeFocus(const Control& control) const;

  // For the controls' own use.
  void SetFocusTo(Control& control);  // fails with 5 as Control::SetFocus
  void ActivateForm(HForm* form);
  void RecordDialog(DialogRecord record);
  void RunPopupMenu(Menu& menu);
  uintptr_t NextHandle() { return ++last_handle_; }

 private:
  HNode& Node(const Control& control) const;
  HForm* FormOf(const Control& control) const;
  void HandleKey(Control& focus, int16_t key_code, int16_t shift, bool with_up);

  // FocusHost: what the focus rules read of the controls.
  bool IsLoaded(const Control& control) const override;
  const std::vector<std::shared_ptr<Control>>& ChildrenOf(const Control& container) const override;
  int32_t TabIndexOf(const Control& control) const override;
  bool TabStopOf(const Control& control) const override;
  FocusMarks& MarksOf(const Control& control) override;
  WindowFocus& FocusOf(Form& form) override;

  template <typename T>
  std::shared_ptr<T> Adopt(Container& parent, std::shared_ptr<T> control);

  Twips tppx_ = 15;
  Twips tppy_ = 15;
  std::string clipboard_;
  std::vector<std::shared_ptr<Form>> forms_;
  HForm* active_form_ = nullptr;
  DialogRecorder dialogs_;
  FocusRules rules_{*this};
  std::function<std::string(const Menu&)> popup_answer_;
  uintptr_t last_handle_ = 0x1000;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_TOOLKITS_HEADLESS_HEADLESS_TOOLKIT_H_
