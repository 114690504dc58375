// SFCheck: the check editor of a sheet. Each element of a sheet's Chk_Value array is one.
//
// A private control of a fixed 13 by 13 pixels that draws everything itself: a one-pixel border
// and a 7 by 7 pixel glyph in the middle. Beside off (0) and on (1) it knows a third value,
// undetermined (2), shown by a dither, which a click or the space bar reaches only in EditMode 1.
//
// The control lives in a toolkit user control of class "SFCheck" (Host()) that takes the focus
// itself. The owner places it, sets its Tag and TabIndex and listens to its focus (GotFocus,
// LostFocus) on Host().Events(); the control uses the host's EnterFocus, ExitFocus, MouseDown,
// MouseUp, Click, KeyDown, KeyPress, KeyUp, Resize and Paint callbacks, which the owner must leave
// alone, and repeats what it raises through Events().
#ifndef TARNSHEETS_EDITORS_SF_CHECK_H_
#define TARNSHEETS_EDITORS_SF_CHECK_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "tarnsheets/property_bag.h"
#include "tarnsheets/toolkit.h"
#include "tarnsheets/types.h"

namespace tarnsheets {

// The events SFCheck raises, by number. Arguments by reference: a listener that changes KeyCode
// in KeyDown or KeyUp changes what the control does with the key.
struct SFCheckEvents {
  std::function<void(int16_t& KeyCode, int16_t& Shift)> KeyDown;  // 1, first thing in key down
  std::function<void(int16_t& KeyAscii)> KeyPress;                // 2
  std::function<void(int16_t& KeyCode, int16_t& Shift)> KeyUp;    // 3, first thing in key up
  std::function<void(int16_t& Button, int16_t& Shift, float& X, float& Y)> MouseDown;  // 4
  std::function<void(int16_t& Button, int16_t& Shift, float& X, float& Y)> MouseUp;    // 5
  // 6: raised by ToggleValue after every step, also when the value did not change.
  std::function<void()> Click;
};

// The value ToggleValue steps to from `value` in `edit_mode`: 0 -> 1 -> 0 in EditMode other than
// 1; 0 -> 1 -> 2 -> 0 in EditMode 1; any other value stays.
int32_t NextCheckValue(int32_t value, int32_t edit_mode);

class SFCheck {
 public:
  static constexpr const char* kClassName = "SFCheck";
  // The control's fixed size in pixels, and its glyphs'.
  static constexpr int32_t kSizePixels = 13;
  static constexpr Color kDefaultBorderColor = 0xBB5522;
  static constexpr Color kSunkenDark = 0x000000;
  static constexpr Color kSunkenLight = 0xE0E0E0;
  // The background as designed, and the pressed look.
  static constexpr Color kRestingBackColor = kSysWindowBackground;
  static constexpr Color kPressedBackColor = kSysButtonFace;

  // Creates a new control in `parent`, as a form designer places it: the object is created (it
  // draws its resting border), the initial properties of a new control are set, and it takes its
  // fixed size.
  static std::shared_ptr<SFCheck> Create(Toolkit& toolkit, Container& parent,
                                         const std::string& name, int32_t index = -1);
  // Builds the control on `host`, a user control of class "SFCheck", and runs the creation step
  // only; the caller follows with InitProperties or ReadProperties.
  static std::shared_ptr<SFCheck> Attach(Toolkit& toolkit, std::shared_ptr<UserControl> host);
  // A new element `index` of the array that `element0` heads: a hidden copy of the host that
  // reads the properties element 0 writes now. Fails with 360 when the index is loaded already.
  static std::shared_ptr<SFCheck> LoadElement(Toolkit& toolkit, const SFCheck& element0,
                                              int32_t index);

  SFCheck(const SFCheck&) = delete;
  SFCheck& operator=(const SFCheck&) = delete;
  // Detaches the control's handlers from the host.
  ~SFCheck();

  UserControl& Host() const { return *host_; }
  const std::shared_ptr<UserControl>& HostPtr() const { return host_; }
  SFCheckEvents& Events() { return events_; }

  // Properties in the order the control declares them. Each setter reports the change to the
  // container under the property's name.
  bool Locked() const { return locked_; }
  void SetLocked(bool v);  // no redraw
  Color BorderColor() const { return border_color_; }
  void SetBorderColor(Color v);  // no redraw
  int32_t EditMode() const { return edit_mode_; }
  void SetEditMode(int32_t v);  // no redraw
  int32_t Value() const { return value_; }
  // Stores and draws the value; raises no event. A value outside 0 to 2 is kept and not drawn.
  void SetValue(int32_t v);
  int32_t Appearance() const { return appearance_; }
  // Stores and draws the resting border.
  void SetAppearance(int32_t v);
  bool Enabled() const;
  void SetEnabled(bool v);

  // Steps Value through its setter and raises Click (event 6); does nothing while Locked.
  void ToggleValue();
  // Paints the inside for Value: an empty box, the check mark or the dither, centred.
  void DrawValue();
  // All four lines in BorderColor: top, right, bottom, left.
  void DrawFocusBorder();
  // Top, left, right, bottom: sunken for Appearance 1, else in the back colour (invisible).
  void DrawRestingBorder();

  // Persistence: six keys, a value equal to its default not stored. Failures of the bag pass to
  // the caller.
  void InitProperties();
  void ReadProperties(const PropertyBag& bag);
  void WriteProperties(PropertyBag& bag) const;

  // The two glyphs as the control blits them.
  static const Picture& PictureClip1();
  static const Picture& PictureClip2();

 private:
  SFCheck(Toolkit& toolkit, std::shared_ptr<UserControl> host);

  void Build();
  void Notify(const std::string& key) { host_->NotifyPropertyChanged(key); }
  void PaintGlyph(const Picture& picture);
  void FillInside();

  void UserControl_MouseDown(int16_t& button, int16_t& shift, float& x, float& y);
  void UserControl_MouseUp(int16_t& button, int16_t& shift, float& x, float& y);
  void UserControl_Click();
  void UserControl_KeyDown(int16_t& key_code, int16_t& shift);
  void UserControl_KeyUp(int16_t& key_code, int16_t& shift);
  void UserControl_KeyPress(int16_t& key_ascii);
  void UserControl_Resize();
  void UserControl_Paint();

  Toolkit& toolkit_;
  std::shared_ptr<UserControl> host_;
  SFCheckEvents events_;

  // The control's own state, changed by its setters and handlers only. Zero until the
  // initial-properties or read-properties step gives it values, so the border drawn at creation
  // is that of an Appearance other than 1.
  int32_t value_ = 0;
  int32_t edit_mode_ = 0;
  int32_t appearance_ = 0;
  Color border_color_ = 0;
  bool locked_ = false;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_EDITORS_SF_CHECK_H_
