// The Qt toolkit: the library's controls on Qt 6 Widgets.
//
// A host creates one QtToolkit (it creates the QApplication when there is none yet) and hands it to
// the controls it creates. Every control is a real widget; the engine's rules of focus and events
// are kept by this toolkit, not by Qt's defaults:
// - Tab and Shift+Tab follow TabIndex over the eligible stops exactly as the headless toolkit
//   does (both keep the rules of toolkits/common; see toolkits/headless/headless_toolkit.h for
//   them in full): a text box, command button, picture box or a
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
// Driving and inspection are ToolkitCore's, with the same meaning as in the headless toolkit, so
// that the same behaviour tests run on both. Driving sends real QKeyEvent and QMouseEvent objects
// to the widgets, which do the editing. With DialogMode::kAnswered, message boxes, modal forms and
// pop-up menus are recorded and answered at once (OK, the default button, the pop-up answer)
// instead of running a modal loop; with kInteractive they are recorded and then shown to the user.
#ifndef TARNSHEETS_TOOLKITS_QT_QT_TOOLKIT_H_
#define TARNSHEETS_TOOLKITS_QT_QT_TOOLKIT_H_

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "tarnsheets/toolkit.h"
#include "toolkits/common/toolkit_core.h"

class QEvent;
class QObject;
class QWidget;

namespace tarnsheets {

class ControlNode;
class QtNode;
class QtEventBridge;
class QtTextBox;

class QtToolkit : public ToolkitCore {
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
  SheetRect WindowRect(const Control& control) const override;
  Color ResolveColor(Color color) const override;
  std::string ClipboardText() const override;
  void SetClipboardText(const std::string& text) override;

  // Inspection: the control's widget as Qt paints it, pixel by pixel, row by row from the top
  // (RGB colours).
  std::vector<Color> RenderPixels(const Control& control, int32_t* width, int32_t* height) const;

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
  QtNode& QtNodeFor(const Control& control) const;

  // ToolkitCore: the widgets, and real Qt events for the user's keys and mouse.
  std::shared_ptr<Control> NewControl(ControlKind kind, const std::string& class_name,
                                      const std::string& name, int32_t index,
                                      bool multi_line) override;
  void Realize(ControlNode& node) override;
  void FormActivated(Form* form) override;
  // The widget focus follows the focused control.
  void FocusMoved(Form& form) override { ApplyWidgetFocus(form); }
  void TwipsPerPixelChanged() override;
  void RepaintView(Control& control) override;
  bool AnswersDialogs() const override { return mode_ == DialogMode::kAnswered; }
  void ShowMessageBox(const std::string& title, const std::string& text,
                      MessageBoxStyle style) override;
  void ShowModalWindow(Form& form) override;
  void RunModalLoop(Form& form) override;
  std::string AskPopupMenu(Menu& menu) override;
  void SendKey(int16_t key_code, int16_t shift, bool press, bool release) override;
  void SendCharacter(uint32_t cp) override;
  void SendMouse(Control& control, MouseAction action, int16_t button, int16_t shift, float x,
                 float y) override;

  void ApplyWidgetFocus(Form& form);
  void SendKeyEvent(int16_t key_code, int16_t shift, bool press, bool release, uint32_t character);

  DialogMode mode_;
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
