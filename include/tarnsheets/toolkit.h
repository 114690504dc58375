// The toolkit seam: the operations the library needs from a form toolkit.
//
// THIS HEADER IS FOR TOOLKIT IMPLEMENTERS AND FOR THE LIBRARY ITSELF, NOT FOR HOSTS. A host creates
// a toolkit (toolkits/headless or toolkits/qt) and hands it to the controls it creates; it never
// needs to call anything here. The engine manipulates controls only through these interfaces and
// receives their events through the callbacks in ControlEvents.
//
// Conventions shared by every interface below:
// - Lengths are twips, colours are toolkit colours (types.h). A system colour is resolved by the
//   toolkit only when something is drawn; a property reads back exactly what was set.
// - A property or method that a control kind does not have fails with Failure 438 ("Object doesn't
//   support this property or method") and changes nothing. Code that walks all controls of a form
//   and sets a font on each relies on that failure for labels-without-font kinds such as Shape.
// - Controls are shared objects. The parent container holds one reference, and every holder of a
//   std::shared_ptr keeps the object alive, so a control unloaded while one of its own handlers
//   runs stays valid until that handler returns. An unloaded control has no parent.
// - Events are std::function members of ControlEvents. The toolkit copies a callback before it
//   calls it, so a handler may replace callbacks, move the focus, load or unload controls and show
//   modal boxes. Arguments passed by reference are the toolkit's own: a handler that changes
//   KeyAscii or Cancel changes what the toolkit does next.
#ifndef TARNSHEETS_TOOLKIT_H_
#define TARNSHEETS_TOOLKIT_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tarnsheets/dialogs.h"
#include "tarnsheets/types.h"

namespace tarnsheets {

class Container;
class Form;
class Menu;

// Mouse buttons as MouseDown/MouseMove/MouseUp report them.
inline constexpr int16_t kLeftButton = 1;
inline constexpr int16_t kRightButton = 2;
inline constexpr int16_t kMiddleButton = 4;

// Bits of the Shift argument of key and mouse events.
inline constexpr int16_t kShiftMask = 1;
inline constexpr int16_t kCtrlMask = 2;
inline constexpr int16_t kAltMask = 4;

// Key codes of KeyDown/KeyUp (letters and digits are their upper-case ASCII codes).
inline constexpr int16_t kKeyBack = 8;
inline constexpr int16_t kKeyTab = 9;
inline constexpr int16_t kKeyReturn = 13;
inline constexpr int16_t kKeyEscape = 27;
inline constexpr int16_t kKeySpace = 32;
inline constexpr int16_t kKeyEnd = 35;
inline constexpr int16_t kKeyHome = 36;
inline constexpr int16_t kKeyLeft = 37;
inline constexpr int16_t kKeyUp = 38;
inline constexpr int16_t kKeyRight = 39;
inline constexpr int16_t kKeyDown = 40;
inline constexpr int16_t kKeyDelete = 46;

// The kinds of control a toolkit creates.
enum class ControlKind {
  kLabel,
  kTextBox,
  kCommandButton,
  kPictureBox,
  kShape,
  kFrame,
  kImage,
  kMenu,
  kUserControl,
  kForm,
};

// The type name the platform reports for a kind: "Label", "TextBox", "CommandButton",
// "PictureBox", "Shape", "Frame", "Image", "Menu", "UserControl", "Form". A user control reports
// its own class name instead (UserControl::TypeName).
inline const char* ControlKindTypeName(ControlKind kind) {
  switch (kind) {
    case ControlKind::kLabel:
      return "Label";
    case ControlKind::kTextBox:
      return "TextBox";
    case ControlKind::kCommandButton:
      return "CommandButton";
    case ControlKind::kPictureBox:
      return "PictureBox";
    case ControlKind::kShape:
      return "Shape";
    case ControlKind::kFrame:
      return "Frame";
    case ControlKind::kImage:
      return "Image";
    case ControlKind::kMenu:
      return "Menu";
    case ControlKind::kUserControl:
      return "UserControl";
    case ControlKind::kForm:
      return "Form";
  }
  return "";
}

// The length of a UTF-8 text in characters (code points), the unit of SelStart and SelLength.
inline int32_t TextLength(std::string_view text) {
  int32_t n = 0;
  for (const char c : text) {
    if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) ++n;
  }
  return n;
}

// A small pixel image: glyphs of buttons and check boxes. `pixels` holds width * height RGB colours
// (Rgb(), never system colours), row by row, the top row first. `id` names the picture in
// drawing records ("PictureClip1").
struct Picture {
  std::string id;
  int32_t width = 0;
  int32_t height = 0;
  std::vector<Color> pixels;

  // REQUIRES: 0 <= x < width, 0 <= y < height.
  Color PixelAt(int32_t x, int32_t y) const { return pixels[static_cast<size_t>(y * width + x)]; }

  friend bool operator==(const Picture&, const Picture&) = default;
};

// The callbacks a control raises. A kind raises only the events it has; the others stay unused.
struct ControlEvents {
  std::function<void()> Click;
  std::function<void()> DblClick;
  std::function<void()> Change;  // text boxes: after every change of Text
  std::function<void()> GotFocus;
  std::function<void()> LostFocus;
  // Cancel starts False; setting it True keeps the focus where it is and ends the focus move.
  std::function<void(bool& Cancel)> Validate;
  // KeyAscii 0 after the handler swallows the key; another value replaces it.
  std::function<void(int16_t& KeyAscii)> KeyPress;
  std::function<void(int16_t& KeyCode, int16_t& Shift)> KeyDown;
  std::function<void(int16_t& KeyCode, int16_t& Shift)> KeyUp;
  // X and Y are twips inside the control.
  std::function<void(int16_t& Button, int16_t& Shift, float& X, float& Y)> MouseDown;
  std::function<void(int16_t& Button, int16_t& Shift, float& X, float& Y)> MouseMove;
  std::function<void(int16_t& Button, int16_t& Shift, float& X, float& Y)> MouseUp;
  // Containers with a size of their own (user controls, picture boxes, forms): after the size
  // changed. Forms and user controls also get Paint when they are to be drawn again.
  std::function<void()> Resize;
  std::function<void()> Paint;
  // User controls: the focus entered or left the control's subtree (the control itself or any
  // control inside it).
  std::function<void()> EnterFocus;
  std::function<void()> ExitFocus;
  // Forms: Load when first shown, Unload when closed.
  std::function<void()> Load;
  std::function<void()> Unload;
};

// Every control. Getters and setters of the generic properties; kinds without one fail with 438.
class Control : public std::enable_shared_from_this<Control> {
 public:
  virtual ~Control() = default;

  virtual ControlKind Kind() const = 0;
  // "Label", "TextBox", ...; a user control gives its class name ("SFText", "SFCheck", a sheet's).
  virtual std::string TypeName() const = 0;
  virtual const std::string& Name() const = 0;
  // The index in its control array, -1 when the control is in no array.
  virtual int32_t Index() const = 0;
  // The container the control sits in; nullptr for a form and for an unloaded control. A menu's
  // parent is the form or user control that owns it.
  virtual Container* Parent() const = 0;
  // The form or user control whose controls collection holds this control (the nearest form or
  // user control above it); nullptr for a form and for an unloaded control.
  virtual Container* Owner() const = 0;
  // A number that identifies the control's window while it exists (0 for windowless kinds: label,
  // shape, image, menu).
  virtual uintptr_t Handle() const = 0;

  virtual Twips Left() const = 0;
  virtual Twips Top() const = 0;
  virtual Twips Width() const = 0;
  virtual Twips Height() const = 0;
  virtual void SetLeft(Twips v) = 0;
  virtual void SetTop(Twips v) = 0;
  virtual void SetWidth(Twips v) = 0;
  virtual void SetHeight(Twips v) = 0;
  // Left is required; an omitted argument keeps its current value. One Resize at most.
  void Move(Twips left, std::optional<Twips> top = std::nullopt,
            std::optional<Twips> width = std::nullopt, std::optional<Twips> height = std::nullopt) {
    DoMove(left, top, width, height);
  }

  virtual bool Visible() const = 0;
  virtual void SetVisible(bool v) = 0;
  virtual bool Enabled() const = 0;
  virtual void SetEnabled(bool v) = 0;
  virtual const std::string& Tag() const = 0;
  virtual void SetTag(const std::string& v) = 0;
  // Labels, shapes, images, frames and menus: 438 for TabStop; TabIndex exists on all but shapes,
  // images and menus.
  virtual bool TabStop() const = 0;
  virtual void SetTabStop(bool v) = 0;
  virtual int32_t TabIndex() const = 0;
  virtual void SetTabIndex(int32_t v) = 0;
  // Label, command button, frame, form, menu.
  virtual std::string Caption() const = 0;
  virtual void SetCaption(const std::string& v) = 0;
  // Not on shapes (BackColor only), images and menus.
  virtual Color ForeColor() const = 0;
  virtual void SetForeColor(Color v) = 0;
  virtual Color BackColor() const = 0;
  virtual void SetBackColor(Color v) = 0;
  // Not on shapes, images and menus.
  virtual Font GetFont() const = 0;
  virtual void SetFont(const Font& v) = 0;

  // Moves the focus here, with the events of a focus move. Fails with 5 when the control is hidden
  // or disabled, sits in a hidden or disabled container, or cannot take the focus. A Validate
  // handler that cancels leaves the focus where it was without failing.
  virtual void SetFocus() = 0;
  // Draws the control again now (user controls and forms: raises Paint).
  virtual void Refresh() = 0;

  ControlEvents& Events() { return events_; }
  const ControlEvents& Events() const { return events_; }

 protected:
  virtual void DoMove(Twips left, std::optional<Twips> top, std::optional<Twips> width,
                      std::optional<Twips> height) = 0;

 private:
  ControlEvents events_;
};

class Label : public Control {
 public:
  // 0 left, 1 right, 2 centre.
  virtual int16_t Alignment() const = 0;
  virtual void SetAlignment(int16_t v) = 0;
  // 0 transparent, 1 opaque.
  virtual int16_t BackStyle() const = 0;
  virtual void SetBackStyle(int16_t v) = 0;
  virtual bool WordWrap() const = 0;
  virtual void SetWordWrap(bool v) = 0;
};

// A text box is single-line or multi-line from its creation on; the form cannot change later.
// Positions (SelStart, SelLength) count characters (code points).
class TextBox : public Control {
 public:
  virtual bool MultiLine() const = 0;

  virtual const std::string& Text() const = 0;
  // Raises Change when the text differs from the current one; the caret goes to the start and the
  // selection is emptied.
  virtual void SetText(const std::string& v) = 0;
  virtual int32_t SelStart() const = 0;
  // Clamped to the text; empties the selection.
  virtual void SetSelStart(int32_t v) = 0;
  virtual int32_t SelLength() const = 0;
  // Clamped to the text after SelStart.
  virtual void SetSelLength(int32_t v) = 0;
  virtual std::string SelText() const = 0;
  // Replaces the selection (even in a locked box, as the platform's property does), leaves the
  // caret after the new text, raises Change when the text changed. Can be undone.
  virtual void SetSelText(const std::string& v) = 0;

  // A locked box refuses the user's edits (typing, cut, paste, clear, undo) but allows selection
  // and copy. Setting Text or SelText from code still works.
  virtual bool Locked() const = 0;
  virtual void SetLocked(bool v) = 0;
  // The empty text or one character shown in place of each character.
  virtual const std::string& PasswordChar() const = 0;
  virtual void SetPasswordChar(const std::string& v) = 0;
  // 0 left, 1 right, 2 centre.
  virtual int16_t Alignment() const = 0;
  virtual void SetAlignment(int16_t v) = 0;
  // 0 none, 1 fixed single.
  virtual int16_t BorderStyle() const = 0;
  virtual void SetBorderStyle(int16_t v) = 0;
  // The vertical scroll bar of a multi-line box, shown or hidden at run time.
  virtual bool ScrollBarVisible() const = 0;
  virtual void ShowScrollBar(bool show) = 0;

  // The standard edit operations. Copy puts the selection on the clipboard (nothing when it is
  // empty); Cut copies and deletes it; Paste replaces the selection with the clipboard's text;
  // Clear deletes the selection. Undo reverts the last edit and is itself an edit, so a second
  // Undo redoes what the first undid. Cut, Paste, Clear and Undo do nothing in a locked box.
  virtual void Copy() = 0;
  virtual void Cut() = 0;
  virtual void Paste() = 0;
  virtual void Clear() = 0;
  virtual void Undo() = 0;
  virtual bool CanUndo() const = 0;

  // The name and description that assistive technology (screen readers) announces for the box.
  // A toolkit without such a service ignores them.
  virtual void SetAccessibleText(const std::string& /*name*/, const std::string& /*description*/) {}
  // What was last given to SetAccessibleText; empty on a toolkit that ignores it.
  virtual std::string AccessibleName() const { return ""; }
  virtual std::string AccessibleDescription() const { return ""; }
};

class CommandButton : public Control {
 public:
  // A glyph instead of the caption; an empty picture (width 0) shows the caption again.
  virtual const Picture& GetPicture() const = 0;
  virtual void SetPicture(const Picture& v) = 0;
  // The button that Enter clicks on its form, and that a modal form is answered with.
  virtual bool Default() const = 0;
  virtual void SetDefault(bool v) = 0;
};

// A drawing surface, in twips from the control's top-left inner corner.
class Surface {
 public:
  virtual ~Surface() = default;

  // A line from (x1, y1) to (x2, y2), one pixel wide; the end point itself is not drawn, as the
  // platform's line.
  virtual void Line(Twips x1, Twips y1, Twips x2, Twips y2, Color color) = 0;
  // A filled box with corners (x1, y1) and (x2, y2), both included.
  virtual void Box(Twips x1, Twips y1, Twips x2, Twips y2, Color color) = 0;
  // The whole picture, one screen pixel per picture pixel, its top-left corner at (x, y).
  virtual void PaintPicture(const Picture& picture, Twips x, Twips y) = 0;
  // Clears the surface to the back colour; drawing done so far is gone.
  virtual void Cls() = 0;

  // The font of TextWidth and TextHeight.
  virtual Font DrawingFont() const = 0;
  virtual void SetDrawingFont(const Font& font) = 0;
  virtual Twips TextWidth(std::string_view text) const = 0;
  virtual Twips TextHeight(std::string_view text) const = 0;
  // The inner size in twips.
  virtual Twips ScaleWidth() const = 0;
  virtual Twips ScaleHeight() const = 0;
};

// A control that holds others: picture box, frame, user control, form.
class Container : public Control {
 public:
  // The direct children, in creation order, as a snapshot: a handler may change the container
  // while the caller walks the list, and the list keeps each control alive.
  virtual std::vector<std::shared_ptr<Control>> Children() const = 0;
  // A form or user control: every control of its controls collection (children, their
  // children, menus, ...) in creation order, without the insides of nested user controls, as a
  // snapshot. Other containers: their own subtree in the same order.
  virtual std::vector<std::shared_ptr<Control>> AllControls() const = 0;
  // The control by name and index (-1: not in an array); nullptr when there is none.
  virtual std::shared_ptr<Control> FindControl(std::string_view name, int32_t index = -1) const = 0;
  // The control in this container's subtree that holds the focus of its window; nullptr when the
  // focus is elsewhere.
  virtual Control* ActiveControl() const = 0;
};

class PictureBox : public Container {
 public:
  virtual Surface& Drawing() = 0;
  virtual const Picture& GetPicture() const = 0;
  virtual void SetPicture(const Picture& v) = 0;
  // 0 none, 1 fixed single.
  virtual int16_t BorderStyle() const = 0;
  virtual void SetBorderStyle(int16_t v) = 0;
};

class Frame : public Container {
 public:
  virtual int16_t BorderStyle() const = 0;
  virtual void SetBorderStyle(int16_t v) = 0;
};

// A rectangle. BackColor is its fill when BackStyle is 1 (opaque).
class Shape : public Control {
 public:
  virtual Color BorderColor() const = 0;
  virtual void SetBorderColor(Color v) = 0;
  // Pixels.
  virtual int16_t BorderWidth() const = 0;
  virtual void SetBorderWidth(int16_t v) = 0;
  // 0 transparent, 1 opaque.
  virtual int16_t BackStyle() const = 0;
  virtual void SetBackStyle(int16_t v) = 0;
  // 0 solid, 1 transparent (the default), 2.. hatches.
  virtual int16_t FillStyle() const = 0;
  virtual void SetFillStyle(int16_t v) = 0;
  virtual Color FillColor() const = 0;
  virtual void SetFillColor(Color v) = 0;
};

class Image : public Control {
 public:
  virtual const Picture& GetPicture() const = 0;
  virtual void SetPicture(const Picture& v) = 0;
  virtual bool Stretch() const = 0;
  virtual void SetStretch(bool v) = 0;
};

// A menu: a top-level menu (its items pop up through Container-side PopupMenu) or an item.
// Caption, Enabled, Visible and Click as any control; geometry, colours and font fail with 438.
class Menu : public Control {
 public:
  virtual bool Checked() const = 0;
  virtual void SetChecked(bool v) = 0;
  // The menu this item belongs to; nullptr for a top-level menu.
  virtual Menu* ParentMenu() const = 0;
  // The items, in creation order, as a snapshot.
  virtual std::vector<std::shared_ptr<Menu>> Items() const = 0;
};

// The control the library's own composite controls are made of: a sheet, SFText, SFCheck,
// Currency. It is a container with a drawing surface, a class name that is its type name, and the
// container side of persistence (ambient font, notice of a changed property).
//
// Setting BackColor on a user control or picture box clears its drawing, as the platform does.
// Resize comes after every change of size; Paint when the control is to be drawn again (Refresh,
// or when it is shown).
class UserControl : public Container {
 public:
  virtual Surface& Drawing() = 0;

  // True when the control itself takes the focus (and then gets GotFocus, LostFocus, key and
  // mouse events); it takes it only when it has no child that could take it. False by default.
  virtual bool CanGetFocus() const = 0;
  virtual void SetCanGetFocus(bool v) = 0;

  // The font of the container the control is placed in.
  virtual Font AmbientFont() const = 0;
  // Tells the container that a persisted property changed.
  virtual void NotifyPropertyChanged(const std::string& key) = 0;

  // Opens `menu` at the pointer and returns when it is closed; an item chosen runs its Click
  // before this returns.
  virtual void PopupMenu(Menu& menu) = 0;
};

// A top-level window. Its client area is its inner size.
class Form : public Container {
 public:
  virtual Twips ScaleWidth() const = 0;
  virtual Twips ScaleHeight() const = 0;
  // Sets the client area; the outer size follows.
  virtual void SetClientSize(Twips width, Twips height) = 0;
  // Shows the form without a modal loop (Load runs first when the form was never shown).
  virtual void Show() = 0;
  virtual void Hide() = 0;
  virtual bool IsShown() const = 0;
  virtual void PopupMenu(Menu& menu) = 0;

  // The window frame: 0 none, 1 fixed single, 2 sizable (the default), 3 fixed dialog, which has
  // no minimise and no maximise button.
  virtual int16_t BorderStyle() const = 0;
  virtual void SetBorderStyle(int16_t v) = 0;
  // Where the form first shows: 0 where it was put (the default), 1 centred on its owner, 2
  // centred on the screen.
  virtual int16_t StartUpPosition() const = 0;
  virtual void SetStartUpPosition(int16_t v) = 0;
  // The picture in the title bar; an empty picture leaves the toolkit's own.
  virtual const Picture& Icon() const = 0;
  virtual void SetIcon(const Picture& v) = 0;
};

// The toolkit: screen, focus, clipboard, dialogs and the factory of every kind of control.
class Toolkit : public Dialogs {
 public:
  ~Toolkit() override = default;

  // Screen.
  virtual Twips TwipsPerPixelX() const = 0;
  virtual Twips TwipsPerPixelY() const = 0;
  // The control's outer rectangle in screen pixels (as the operating system's window rectangle).
  virtual SheetRect WindowRect(const Control& control) const = 0;
  // The RGB value of a colour; a system colour is resolved, any other colour is returned as is.
  virtual Color ResolveColor(Color color) const = 0;

  // Focus. GetFocus: the control that holds the input focus now, nullptr when no window of this
  // toolkit has it. IsChild: `child` lies inside `parent` (at any depth, not `parent` itself).
  virtual Control* GetFocus() const = 0;
  virtual bool IsChild(const Control& parent, const Control& child) const = 0;
  // Whether the focus lies inside `control`: it or a control inside it holds the focus.
  bool FocusInside(const Control& control) const {
    const Control* focus = GetFocus();
    return focus != nullptr && (focus == &control || IsChild(control, *focus));
  }

  // Clipboard (text only).
  virtual std::string ClipboardText() const = 0;
  virtual void SetClipboardText(const std::string& text) = 0;

  // Factory. Each creates a visible, enabled control at (0, 0) with the toolkit's default size
  // inside `parent`, with the given name and array index (-1: none), as the last child and with
  // the next free TabIndex of its owner. Failure 360 when the owner already has a control with
  // that name and index.
  virtual std::shared_ptr<Form> CreateForm(const std::string& name) = 0;
  virtual std::shared_ptr<Label> CreateLabel(Container& parent, const std::string& name,
                                             int32_t index = -1) = 0;
  virtual std::shared_ptr<TextBox> CreateTextBox(Container& parent, const std::string& name,
                                                 int32_t index = -1, bool multi_line = false) = 0;
  virtual std::shared_ptr<CommandButton> CreateCommandButton(Container& parent,
                                                             const std::string& name,
                                                             int32_t index = -1) = 0;
  virtual std::shared_ptr<PictureBox> CreatePictureBox(Container& parent, const std::string& name,
                                                       int32_t index = -1) = 0;
  virtual std::shared_ptr<Shape> CreateShape(Container& parent, const std::string& name,
                                             int32_t index = -1) = 0;
  virtual std::shared_ptr<Frame> CreateFrame(Container& parent, const std::string& name,
                                             int32_t index = -1) = 0;
  virtual std::shared_ptr<Image> CreateImage(Container& parent, const std::string& name,
                                             int32_t index = -1) = 0;
  // A top-level menu of the form or user control `owner` (parent_menu nullptr), or an item of
  // `parent_menu`.
  virtual std::shared_ptr<Menu> CreateMenu(Container& owner, Menu* parent_menu,
                                           const std::string& name, int32_t index = -1) = 0;
  // `class_name` is the type name the control reports ("SFText").
  virtual std::shared_ptr<UserControl> CreateUserControl(Container& parent,
                                                         const std::string& class_name,
                                                         const std::string& name,
                                                         int32_t index = -1) = 0;

  // A new element of the control array of `element0`: same kind (and class), parent, name, the
  // given index, the properties of `element0` copied, Visible False, no event callbacks and no
  // children (the owner of a user control builds its inside). Fails with 360 when the index is
  // already loaded.
  virtual std::shared_ptr<Control> LoadControl(const Control& element0, int32_t index) = 0;
  // Removes the control (and what it contains) from its parent; a control holding the focus
  // hands it on first as a focus move would, without Validate. A form is closed (Unload runs).
  virtual void Unload(Control& control) = 0;

  // Shows a form modally and returns when it is closed (hidden or unloaded).
  virtual void ShowModal(Form& form) = 0;
};

// Typed LoadControl: the new element as the template's own type.
template <typename T>
std::shared_ptr<T> LoadControlAs(Toolkit& toolkit, const T& element0, int32_t index) {
  return std::dynamic_pointer_cast<T>(toolkit.LoadControl(element0, index));
}

}  // namespace tarnsheets

#endif  // TARNSHEETS_TOOLKIT_H_
