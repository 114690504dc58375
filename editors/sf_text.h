// SFText: the text editor of a sheet. Each element of a sheet's Txt_Value array is one.
//
// A small private control that hosts two text boxes, Txt_Text(0) single-line and Txt_Text(1)
// multi-line, and shows the one its Style asks for, because a text box cannot change between the
// two forms at run time. It draws its own one-pixel border in the gap around the visible box,
// shows by the border's colour whether it holds the focus, and repeats the boxes' events to its
// owner.
//
// The control lives in a toolkit user control of class "SFText" (Host()). The owner places and
// moves that control, sets its Tag, TabIndex and visibility, and listens to its focus (GotFocus,
// LostFocus, Validate) on Host().Events(). The control itself uses the host's EnterFocus,
// ExitFocus, Resize and Paint callbacks; the owner must leave those alone.
#ifndef TARNSHEETS_EDITORS_SF_TEXT_H_
#define TARNSHEETS_EDITORS_SF_TEXT_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/control_array.h"
#include "tarnsheets/property_bag.h"
#include "tarnsheets/toolkit.h"
#include "tarnsheets/types.h"

namespace tarnsheets {

// The events SFText raises, in their declared order. Arguments by reference are the box's own: a
// listener that changes KeyAscii changes what the box does with the key.
struct SFTextEvents {
  std::function<void()> Click;                                                         // 1
  std::function<void()> DblClick;                                                      // 2
  std::function<void()> Change;                                                        // 3
  std::function<void(int16_t& KeyCode, int16_t& Shift)> KeyDown;                       // 4
  std::function<void(int16_t& KeyAscii)> KeyPress;                                     // 5
  std::function<void(int16_t& KeyCode, int16_t& Shift)> KeyUp;                         // 6
  std::function<void(int16_t& Button, int16_t& Shift, float& X, float& Y)> MouseDown;  // 7
  std::function<void(int16_t& Button, int16_t& Shift, float& X, float& Y)> MouseMove;  // 8
  std::function<void(int16_t& Button, int16_t& Shift, float& X, float& Y)> MouseUp;    // 9
  // 10. Declared for the owner's benefit and never raised by the control itself; the toolkit's
  // Validate on Host() is what comes when the focus is about to leave.
  std::function<void(bool& Cancel)> Validate;
};

class SFText {
 public:
  static constexpr const char* kClassName = "SFText";
  // The size the control is designed at.
  static constexpr Twips kDesignedWidth = 3375;
  static constexpr Twips kDesignedHeight = 825;
  // The text both boxes hold by design, and the default of the persisted "Text".
  static constexpr const char* kDesignText = "OrrinText";
  static constexpr Color kDefaultBorderColor = 0xBB5522;
  // The resting border: left and top black, right and bottom light grey.
  static constexpr Color kSunkenDark = 0x000000;
  static constexpr Color kSunkenLight = 0xE0E0E0;

  // Creates a new control in `parent` at the designed size, as a form designer places it: the
  // object is created (the border is drawn for a control without the focus), then the initial
  // properties of a new control are set. A host that loads stored properties calls
  // ReadProperties afterwards.
  static std::shared_ptr<SFText> Create(Toolkit& toolkit, Container& parent,
                                        const std::string& name, int32_t index = -1);
  // Builds the control inside `host`, a user control of class "SFText" that has no children yet
  // (a fresh one from CreateUserControl or LoadControl), and runs the creation step only; the
  // caller follows with InitProperties or ReadProperties.
  static std::shared_ptr<SFText> Attach(Toolkit& toolkit, std::shared_ptr<UserControl> host);
  // A new element `index` of the array that `element0` heads: the toolkit loads a hidden copy of
  // the host, and the new control reads the properties that element 0 writes now, so it starts as
  // element 0 is. Fails with 360 when the index is loaded already.
  static std::shared_ptr<SFText> LoadElement(Toolkit& toolkit, const SFText& element0,
                                             int32_t index);

  SFText(const SFText&) = delete;
  SFText& operator=(const SFText&) = delete;
  // Detaches the control's handlers from the host and the boxes.
  ~SFText();

  UserControl& Host() const { return *host_; }
  const std::shared_ptr<UserControl>& HostPtr() const { return host_; }
  // The constituent boxes; Txt_Text(i) fails with 340 for an index other than 0 and 1.
  TextBox& Txt_Text(int32_t index) const { return txt_text_(index); }

  SFTextEvents& Events() { return events_; }

  // Properties, in the order the control declares them. "Box" properties read and write the
  // visible box, Txt_Text(ActiveBox), only; every setter reports the change to the container
  // under the property's name.
  uintptr_t hwnd() const;  // read-only, Box

  Color BorderColor() const { return border_color_; }
  // Does not redraw: the next focus change shows the colour.
  void SetBorderColor(Color v);

  int32_t Style() const { return style_; }
  // Copies the text from the box of the old Style to the box of the new one, then shows the box
  // the new Style asks for. A Style of 2, old or new, names a box that does not exist and fails
  // with 340 before anything changes: Style 2 is reachable through stored properties only.
  void SetStyle(int32_t s);

  int32_t Appearance() const { return appearance_; }
  // 1 is the sunken look. Redraws the border.
  void SetAppearance(int32_t v);

  Color BackColor() const;
  void SetBackColor(Color v);
  Color ForeColor() const;
  void SetForeColor(Color v);
  bool Enabled() const;
  void SetEnabled(bool v);
  Font GetFont() const;
  void SetFont(const Font& v);
  int16_t BorderStyle() const;
  void SetBorderStyle(int16_t v);
  // Setting a different text raises the box's Change and so the control's Change.
  std::string Text() const;
  void SetText(const std::string& v);
  int32_t SelLength() const;
  void SetSelLength(int32_t v);
  int32_t SelStart() const;
  void SetSelStart(int32_t v);
  std::string SelText() const;
  void SetSelText(const std::string& v);
  int16_t Alignment() const;
  void SetAlignment(int16_t v);
  bool Locked() const;
  // Locks the visible box, then gives it the grey of a visited locked field only when the window
  // with the focus is a child of the box, which a text box never has: in practice the box takes
  // the normal background here and turns grey at its next focus arrival.
  void SetLocked(bool v);
  std::string PasswordChar() const;
  void SetPasswordChar(const std::string& v);

  // Redraws the visible box.
  void Refresh();
  // The name and description screen readers announce for the editor, on both boxes.
  void SetAccessibleText(const std::string& name, const std::string& description);

  // The index of the visible box: 0 for Style 0, 1 for Styles 1 and 2.
  int32_t ActiveBox() const { return active_box_; }
  bool HasFocus() const { return has_focus_; }

  // Persistence. InitProperties is the initial-properties step of a new control; ReadProperties
  // and WriteProperties use the fifteen keys, a value equal to its default not stored. Failures of
  // the bag (a stored value of the wrong type) pass to the caller.
  void InitProperties();
  void ReadProperties(const PropertyBag& bag);
  void WriteProperties(PropertyBag& bag) const;

  // Paints the one-pixel border: in BorderColor while the control holds the focus, sunken for
  // Appearance 1 otherwise, and no border (a cleared surface) for another Appearance.
  void DrawBorder();

 private:
  SFText(Toolkit& toolkit, std::shared_ptr<UserControl> host);

  void Build();
  void Initialize();
  void WireBox(TextBox& box);
  TextBox& VisibleBox() const { return txt_text_(active_box_); }
  // Shows the box that `style` asks for (with its scroll bar); other styles change nothing.
  void ShowBoxForStyle(int32_t style);
  void Notify(const std::string& key) { host_->NotifyPropertyChanged(key); }

  void UserControl_Resize();
  void UserControl_EnterFocus();
  void UserControl_ExitFocus();
  void Txt_Text_GotFocus(int32_t index);
  void Txt_Text_LostFocus(int32_t index);

  Toolkit& toolkit_;
  std::shared_ptr<UserControl> host_;
  ControlArray<TextBox> txt_text_;
  SFTextEvents events_;

  // The control's own state, changed by its property setters and handlers only. Zero until the
  // initial-properties or read-properties step gives it values.
  int32_t appearance_ = 0;
  int32_t style_ = 0;
  int32_t active_box_ = 0;
  Color border_color_ = 0;
  bool has_focus_ = false;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_EDITORS_SF_TEXT_H_
