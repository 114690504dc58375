// The headless toolkit: a complete, deterministic toolkit without a screen.
//
// It is the offscreen twin of the Qt toolkit: the engine's tests and the script host run on it.
// Everything a user does is driven through the methods under "Driving" (toolkits/common/
// toolkit_core.h); everything the controls show is readable through those under "Inspection".
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
#include <memory>
#include <string>
#include <vector>

#include "tarnsheets/toolkit.h"
#include "toolkits/common/toolkit_core.h"

namespace tarnsheets {

// The driving and inspection of ToolkitCore, with the fixed behaviour above.
class HeadlessToolkit : public ToolkitCore {
 public:
  HeadlessToolkit();
  ~HeadlessToolkit() override;
  HeadlessToolkit(const HeadlessToolkit&) = delete;
  HeadlessToolkit& operator=(const HeadlessToolkit&) = delete;

  // Toolkit.
  SheetRect WindowRect(const Control& control) const override;
  Color ResolveColor(Color color) const override;
  std::string ClipboardText() const override { return clipboard_; }
  void SetClipboardText(const std::string& text) override { clipboard_ = text; }

  // Inspection.
  //
  // The surface as pixels, row by row from the top: the resolved back colour, then the recorded
  // operations in order. `width` and `height` receive the size in pixels.
  std::vector<Color> RenderPixels(const Control& control, int32_t* width, int32_t* height) const;

  // For the controls' own use.
  uintptr_t NextHandle() { return ++last_handle_; }

 private:
  std::shared_ptr<Control> NewControl(ControlKind kind, const std::string& class_name,
                                      const std::string& name, int32_t index,
                                      bool multi_line) override;
  // The user's keys and mouse, simulated: the events in the order of the banner, the text box's
  // own editing (HTextBox), a click that a refused focus move swallows.
  void SendKey(int16_t key_code, int16_t shift, bool press, bool release) override;
  void SendCharacter(uint32_t cp) override;
  void SendMouse(Control& control, MouseAction action, int16_t button, int16_t shift, float x,
                 float y) override;
  void ClickControl(Control& control, float x, float y) override;
  // KeyDown, what the key does, then KeyUp when `with_up`.
  void HandleKey(Control& focus, int16_t key_code, int16_t shift, bool with_up);

  std::string clipboard_;
  uintptr_t last_handle_ = 0x1000;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_TOOLKITS_HEADLESS_HEADLESS_TOOLKIT_H_
