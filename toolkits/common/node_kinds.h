// The controls of each kind as every toolkit keeps them: the kind's own properties, stored and
// read back the same way whatever shows them. `Node` is the toolkit's node class (a ControlNode
// with its view's hooks); a toolkit derives its controls from these where its view needs more
// than the hooks give (a widget to set). For toolkit implementers, not hosts.
#ifndef TARNSHEETS_TOOLKITS_COMMON_NODE_KINDS_H_
#define TARNSHEETS_TOOLKITS_COMMON_NODE_KINDS_H_

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tarnsheets/failure.h"
#include "tarnsheets/toolkit.h"
#include "toolkits/common/control_rules.h"
#include "toolkits/common/focus_rules.h"
#include "toolkits/common/node_control.h"
#include "toolkits/common/toolkit_core.h"

namespace tarnsheets {

// What the toolkit core keeps of a form, whatever toolkit made it.
struct WindowState {
  bool loaded_ = false;
  bool shown_ = false;
  bool unloaded_ = false;
  // The control that holds this window's focus.
  WindowFocus focus_;
};

// What the toolkit core keeps of a menu: the menu it is an item of (nullptr for a top-level
// menu) and its own items in creation order.
struct MenuState {
  Menu* parent_menu_ = nullptr;
  std::vector<std::shared_ptr<Menu>> items_;
};

// What the toolkit core keeps of a user control.
struct UserControlState {
  bool can_get_focus_ = false;
  // The keys passed to NotifyPropertyChanged (the latest kNotifiedPropertiesKept of them).
  std::vector<std::string> notified_;
};

template <typename I, typename Node>
class NodeContainer : public NodeControl<I, Node> {
 public:
  using NodeControl<I, Node>::NodeControl;

  std::vector<std::shared_ptr<Control>> Children() const override { return this->children_; }
  std::vector<std::shared_ptr<Control>> AllControls() const override {
    return this->HeldControls();
  }
  std::shared_ptr<Control> FindControl(std::string_view name, int32_t index) const override {
    return this->FindHeldControl(name, index);
  }
  Control* ActiveControl() const override {
    if (this->toolkit_ == nullptr) return nullptr;
    Control* focus = this->toolkit_->GetFocus();
    if (focus == nullptr) {
      // The window's own focus, even while another window is active.
      const auto* window = dynamic_cast<const WindowState*>(WindowOf(*this));
      focus = window != nullptr ? window->focus_.focused.get() : nullptr;
      if (focus == nullptr) return nullptr;
    }
    if (focus == this || this->toolkit_->IsChild(*this, *focus)) return focus;
    return nullptr;
  }
};

template <typename Node>
class NodeLabel : public NodeControl<Label, Node> {
 public:
  using NodeControl<Label, Node>::NodeControl;

  int16_t Alignment() const override { return alignment_; }
  void SetAlignment(int16_t v) override { alignment_ = v; }
  int16_t BackStyle() const override { return back_style_; }
  void SetBackStyle(int16_t v) override { back_style_ = v; }
  bool WordWrap() const override { return word_wrap_; }
  void SetWordWrap(bool v) override { word_wrap_ = v; }

  int16_t alignment_ = 0;
  int16_t back_style_ = 1;
  bool word_wrap_ = false;
};

// What a text box keeps in every toolkit, and the edits that go through its selection. The
// toolkit keeps the selection and does the replacing (ReplaceSelection).
template <typename Node>
class NodeTextBox : public NodeControl<TextBox, Node> {
 public:
  using NodeControl<TextBox, Node>::NodeControl;

  bool MultiLine() const override { return multi_line_; }
  const std::string& Text() const override { return text_; }
  bool Locked() const override { return locked_; }
  const std::string& PasswordChar() const override { return password_char_; }
  // Fails with 5 for more than one character.
  void SetPasswordChar(const std::string& v) override {
    if (TextLength(v) > 1) throw PlatformFailure(kErrInvalidProcedureCall);
    password_char_ = v;
  }
  int16_t Alignment() const override { return alignment_; }
  int16_t BorderStyle() const override { return border_style_; }
  bool ScrollBarVisible() const override { return scroll_bar_; }
  bool CanUndo() const override { return can_undo_; }
  void SetSelText(const std::string& v) override { ReplaceSelection(v, false); }
  // A box with a password character copies nothing.
  void Copy() override {
    if (this->SelLength() == 0 || !password_char_.empty() || this->toolkit_ == nullptr) return;
    this->toolkit_->SetClipboardText(this->SelText());
  }
  void Cut() override {
    if (locked_ || this->SelLength() == 0) return;
    Copy();
    ReplaceSelection("", false);
  }
  void Paste() override {
    if (locked_ || this->toolkit_ == nullptr) return;
    const std::string clip = this->toolkit_->ClipboardText();
    if (clip.empty()) return;
    ReplaceSelection(clip, false);
  }
  void Clear() override {
    if (locked_ || this->SelLength() == 0) return;
    ReplaceSelection("", false);
  }

  bool multi_line_ = false;
  std::string text_;
  bool locked_ = false;
  std::string password_char_;
  int16_t alignment_ = 0;
  int16_t border_style_ = 1;
  bool scroll_bar_ = false;
  // One level of undo: the text and selection before the last edit.
  bool can_undo_ = false;
  std::string undo_text_;
  int32_t undo_sel_start_ = 0;
  int32_t undo_sel_length_ = 0;
  bool typing_run_ = false;  // consecutive typed characters undo together

 protected:
  // Replaces the selection with `text` as one edit (`typing`: a typed character, which undoes
  // with the characters typed before it); raises Change when the text changed.
  virtual void ReplaceSelection(const std::string& text, bool typing) = 0;
  // An edit changed the text from `before`, the selection having been `sel_start` and
  // `sel_length`: that becomes what Undo restores, unless the edit is a typed character
  // (`typing`) that continues a run of them. Raises Change.
  void RecordEdit(const std::string& before, int32_t sel_start, int32_t sel_length, bool typing) {
    // A run of typed characters undoes as one edit, from the state before its first character.
    if (!(typing && typing_run_)) {
      undo_text_ = before;
      undo_sel_start_ = sel_start;
      undo_sel_length_ = sel_length;
    }
    typing_run_ = typing;
    can_undo_ = true;
    Raise(*this, &ControlEvents::Change);
  }
  // What of `text` the box takes: a single-line box keeps what comes before the first line
  // break.
  std::string Insertable(const std::string& text) const {
    if (multi_line_) return text;
    return text.substr(0, text.find_first_of("\r\n"));
  }
};

template <typename Node>
class NodeCommandButton : public NodeControl<CommandButton, Node> {
 public:
  using NodeControl<CommandButton, Node>::NodeControl;

  const Picture& GetPicture() const override { return picture_; }
  void SetPicture(const Picture& v) override { picture_ = v; }
  bool Default() const override { return default_; }
  void SetDefault(bool v) override { default_ = v; }

  Picture picture_;
  bool default_ = false;
};

// A shape's properties show only in its painting.
template <typename Node>
class NodeShape : public NodeControl<Shape, Node> {
 public:
  using NodeControl<Shape, Node>::NodeControl;

  Color BorderColor() const override { return border_color_; }
  void SetBorderColor(Color v) override { Change(border_color_, v); }
  int16_t BorderWidth() const override { return border_width_; }
  // Fails with 5 below 1.
  void SetBorderWidth(int16_t v) override {
    if (v < 1) throw PlatformFailure(kErrInvalidProcedureCall);
    Change(border_width_, v);
  }
  int16_t BackStyle() const override { return back_style_; }
  void SetBackStyle(int16_t v) override { Change(back_style_, v); }
  int16_t FillStyle() const override { return fill_style_; }
  void SetFillStyle(int16_t v) override { Change(fill_style_, v); }
  Color FillColor() const override { return fill_color_; }
  void SetFillColor(Color v) override { Change(fill_color_, v); }

  Color border_color_ = kSysWindowText;
  int16_t border_width_ = 1;
  int16_t back_style_ = 0;
  int16_t fill_style_ = 1;
  Color fill_color_ = 0;

 private:
  template <typename T>
  void Change(T& property, T v) {
    property = v;
    this->UpdateView();
  }
};

template <typename Node>
class NodeImage : public NodeControl<Image, Node> {
 public:
  using NodeControl<Image, Node>::NodeControl;

  const Picture& GetPicture() const override { return picture_; }
  void SetPicture(const Picture& v) override {
    picture_ = v;
    this->UpdateView();
  }
  bool Stretch() const override { return stretch_; }
  void SetStretch(bool v) override {
    stretch_ = v;
    this->UpdateView();
  }

  Picture picture_;
  bool stretch_ = false;
};

template <typename Node>
class NodeMenu : public NodeControl<Menu, Node>, public MenuState {
 public:
  using NodeControl<Menu, Node>::NodeControl;

  bool Checked() const override { return checked_; }
  void SetChecked(bool v) override { checked_ = v; }
  Menu* ParentMenu() const override { return parent_menu_; }
  std::vector<std::shared_ptr<Menu>> Items() const override { return items_; }

  bool checked_ = false;
};

// `Node::DrawingSurface` is the toolkit's surface, a RecordingSurface made from the node.
template <typename Node>
class NodePictureBox : public NodeContainer<PictureBox, Node> {
 public:
  using NodeContainer<PictureBox, Node>::NodeContainer;

  Surface& Drawing() override { return surface_; }
  RecordingSurface* DrawingLog() override { return &surface_; }
  const Picture& GetPicture() const override { return picture_; }
  void SetPicture(const Picture& v) override {
    picture_ = v;
    this->UpdateView();
  }
  int16_t BorderStyle() const override { return border_style_; }
  void SetBorderStyle(int16_t v) override {
    border_style_ = v;
    this->UpdateView();
  }

  typename Node::DrawingSurface surface_{this};
  Picture picture_;
  int16_t border_style_ = 1;

 protected:
  void BackColorChanged() override { surface_.Cls(); }
};

template <typename Node>
class NodeFrame : public NodeContainer<Frame, Node> {
 public:
  using NodeContainer<Frame, Node>::NodeContainer;

  int16_t BorderStyle() const override { return border_style_; }
  void SetBorderStyle(int16_t v) override {
    border_style_ = v;
    this->UpdateView();
  }

  int16_t border_style_ = 1;
};

template <typename Node>
class NodeUserControl : public NodeContainer<UserControl, Node>, public UserControlState {
 public:
  using NodeContainer<UserControl, Node>::NodeContainer;

  Surface& Drawing() override { return surface_; }
  RecordingSurface* DrawingLog() override { return &surface_; }
  bool CanGetFocus() const override { return can_get_focus_; }
  void SetCanGetFocus(bool v) override { can_get_focus_ = v; }
  // The font of the container it sits on (Font{} where it has none).
  Font AmbientFont() const override {
    Container* parent = this->Parent();
    if (parent == nullptr) return Font{};
    try {
      return parent->GetFont();
    } catch (const Failure&) {
      return Font{};
    }
  }
  void NotifyPropertyChanged(const std::string& key) override {
    LogNotifiedProperty(notified_, key);
  }
  void PopupMenu(Menu& menu) override {
    if (this->toolkit_ != nullptr) this->toolkit_->RunPopupMenu(menu);
  }

  typename Node::DrawingSurface surface_{this};

 protected:
  void BackColorChanged() override { surface_.Cls(); }
};

template <typename Node>
class NodeForm : public NodeContainer<Form, Node>, public WindowState {
 public:
  using NodeContainer<Form, Node>::NodeContainer;

  Twips ScaleWidth() const override { return this->width_; }
  Twips ScaleHeight() const override { return this->height_; }
  void SetClientSize(Twips width, Twips height) override {
    this->DoMove(this->left_, this->top_, width, height);
  }
  // Fails with 5 once the form is unloaded. Load comes first, the first time; a Load handler
  // that unloads the form ends the showing.
  void Show() override {
    if (unloaded_) throw PlatformFailure(kErrInvalidProcedureCall);
    const std::shared_ptr<Control> keep = this->shared_from_this();
    if (!loaded_) {
      loaded_ = true;
      Raise(*this, &ControlEvents::Load);
      if (unloaded_) return;
    }
    shown_ = true;
    this->visible_ = true;
    ShowWindow();
    if (this->toolkit_ != nullptr) this->toolkit_->ActivateForm(this);
  }
  void Hide() override {
    shown_ = false;
    this->visible_ = false;
    HideWindow();
    if (this->toolkit_ != nullptr && this->toolkit_->ActiveForm() == this) {
      this->toolkit_->ActivateForm(nullptr);
    }
  }
  bool IsShown() const override { return shown_; }
  void PopupMenu(Menu& menu) override {
    if (this->toolkit_ != nullptr) this->toolkit_->RunPopupMenu(menu);
  }
  int16_t BorderStyle() const override { return border_style_; }
  void SetBorderStyle(int16_t v) override { border_style_ = v; }
  int16_t StartUpPosition() const override { return start_up_position_; }
  void SetStartUpPosition(int16_t v) override { start_up_position_ = v; }
  const Picture& Icon() const override { return icon_; }
  void SetIcon(const Picture& v) override { icon_ = v; }

  // The toolkit shows and hides the window itself.
  virtual void ShowWindow() {}
  virtual void HideWindow() {}

  int16_t border_style_ = 2;
  int16_t start_up_position_ = 0;
  Picture icon_;
};

// A new control of `kind` from a toolkit's class of each kind, each made as (toolkit, kind,
// class_name, name, index); a text box then takes `multi_line`.
template <typename LabelT, typename TextBoxT, typename CommandButtonT, typename PictureBoxT,
          typename ShapeT, typename FrameT, typename ImageT, typename MenuT, typename UserControlT,
          typename FormT, typename ToolkitT>
std::shared_ptr<Control> MakeControl(ToolkitT* toolkit, ControlKind kind,
                                     const std::string& class_name, const std::string& name,
                                     int32_t index, bool multi_line) {
  switch (kind) {
    case ControlKind::kLabel:
      return std::make_shared<LabelT>(toolkit, kind, class_name, name, index);
    case ControlKind::kTextBox: {
      auto box = std::make_shared<TextBoxT>(toolkit, kind, class_name, name, index);
      box->multi_line_ = multi_line;
      return box;
    }
    case ControlKind::kCommandButton:
      return std::make_shared<CommandButtonT>(toolkit, kind, class_name, name, index);
    case ControlKind::kPictureBox:
      return std::make_shared<PictureBoxT>(toolkit, kind, class_name, name, index);
    case ControlKind::kShape:
      return std::make_shared<ShapeT>(toolkit, kind, class_name, name, index);
    case ControlKind::kFrame:
      return std::make_shared<FrameT>(toolkit, kind, class_name, name, index);
    case ControlKind::kImage:
      return std::make_shared<ImageT>(toolkit, kind, class_name, name, index);
    case ControlKind::kMenu:
      return std::make_shared<MenuT>(toolkit, kind, class_name, name, index);
    case ControlKind::kUserControl:
      return std::make_shared<UserControlT>(toolkit, kind, class_name, name, index);
    case ControlKind::kForm:
      return std::make_shared<FormT>(toolkit, kind, class_name, name, index);
  }
  return nullptr;
}

}  // namespace tarnsheets

#endif  // TARNSHEETS_TOOLKITS_COMMON_NODE_KINDS_H_
