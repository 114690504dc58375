// The headless toolkit's controls. Internal to toolkits/headless.
#ifndef TARNSHEETS_TOOLKITS_HEADLESS_HEADLESS_CONTROLS_H_
#define TARNSHEETS_TOOLKITS_HEADLESS_HEADLESS_CONTROLS_H_

#include <memory>
#include <string>
#include <vector>

#include "tarnsheets/failure.h"
#include "tarnsheets/toolkit.h"
#include "toolkits/common/control_node.h"
#include "toolkits/common/control_rules.h"
#include "toolkits/common/focus_rules.h"
#include "toolkits/common/node_control.h"
#include "toolkits/headless/headless_toolkit.h"

namespace tarnsheets {

// The state every headless control has.
class HNode : public ControlNode {
 public:
  HNode(HeadlessToolkit* toolkit, ControlKind kind, std::string class_name, std::string name,
        int32_t index);

  // Marks this control and everything inside it as unloaded.
  void Detach();
  void RepaintSelf() override;
  void FocusSelf() override;

  HeadlessToolkit* toolkit_;
  uintptr_t handle_ = 0;
};

HNode* NodeOf(const Control& control);

template <typename I>
class HControl : public NodeControl<I, HNode> {
 public:
  using NodeControl<I, HNode>::NodeControl;

  uintptr_t Handle() const override { return this->handle_; }
  void Refresh() override {
    if (this->kind_ == ControlKind::kUserControl || this->kind_ == ControlKind::kForm) {
      this->RepaintSelf();
    }
  }
};

// A drawing surface that records what is drawn.
class HSurface : public Surface {
 public:
  explicit HSurface(HNode* node) : node_(node) {}

  void Line(Twips x1, Twips y1, Twips x2, Twips y2, Color color) override;
  void Box(Twips x1, Twips y1, Twips x2, Twips y2, Color color) override;
  void PaintPicture(const Picture& picture, Twips x, Twips y) override;
  void Cls() override;
  Font DrawingFont() const override { return font_; }
  void SetDrawingFont(const Font& font) override { font_ = font; }
  Twips TextWidth(std::string_view text) const override;
  Twips TextHeight(std::string_view text) const override;
  Twips ScaleWidth() const override { return node_->width_; }
  Twips ScaleHeight() const override { return node_->height_; }

  const std::vector<DrawOp>& Ops() const { return ops_; }
  int32_t ClsCount() const { return cls_count_; }

 private:
  HNode* node_;
  Font font_;
  std::vector<DrawOp> ops_;
  int32_t cls_count_ = 0;
};

template <typename I>
class HContainer : public HControl<I> {
 public:
  using HControl<I>::HControl;

  std::vector<std::shared_ptr<Control>> Children() const override { return this->children_; }
  std::vector<std::shared_ptr<Control>> AllControls() const override {
    return this->HeldControls();
  }
  std::shared_ptr<Control> FindControl(std::string_view name, int32_t index) const override {
    return this->FindHeldControl(name, index);
  }
  Control* ActiveControl() const override;
};

class HLabel : public HControl<Label> {
 public:
  using HControl::HControl;
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

class HTextBox : public HControl<TextBox> {
 public:
  HTextBox(HeadlessToolkit* toolkit, std::string name, int32_t index, bool multi_line)
      : HControl(toolkit, ControlKind::kTextBox, "", std::move(name), index),
        multi_line_(multi_line) {}

  bool MultiLine() const override { return multi_line_; }
  void SetAccessibleText(const std::string& name, const std::string& description) override {
    accessible_name_ = name;
    accessible_description_ = description;
  }
  std::string AccessibleName() const override { return accessible_name_; }
  std::string AccessibleDescription() const override { return accessible_description_; }
  const std::string& Text() const override { return text_; }
  void SetText(const std::string& v) override;
  int32_t SelStart() const override { return sel_start_; }
  void SetSelStart(int32_t v) override;
  int32_t SelLength() const override { return sel_length_; }
  void SetSelLength(int32_t v) override;
  std::string SelText() const override;
  void SetSelText(const std::string& v) override;
  bool Locked() const override { return locked_; }
  void SetLocked(bool v) override { locked_ = v; }
  const std::string& PasswordChar() const override { return password_char_; }
  void SetPasswordChar(const std::string& v) override;
  int16_t Alignment() const override { return alignment_; }
  void SetAlignment(int16_t v) override { alignment_ = v; }
  int16_t BorderStyle() const override { return border_style_; }
  void SetBorderStyle(int16_t v) override { border_style_ = v; }
  bool ScrollBarVisible() const override { return scroll_bar_; }
  void ShowScrollBar(bool show) override { scroll_bar_ = multi_line_ && show; }
  void Copy() override;
  void Cut() override;
  void Paste() override;
  void Clear() override;
  void Undo() override;
  bool CanUndo() const override { return can_undo_; }

  // The user's keys, after KeyPress. `cp` is a character; 8 deletes backwards, 13 breaks the
  // line of a multi-line box, other control characters do nothing.
  void TypeCharacter(uint32_t cp);
  void DeleteForward();
  void MoveCaret(int16_t key_code, bool extend);

  bool multi_line_;
  std::string accessible_name_;
  std::string accessible_description_;
  std::string text_;
  int32_t sel_start_ = 0;
  int32_t sel_length_ = 0;
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
  bool typing_run_ = false;      // consecutive typed characters undo together
  bool caret_at_start_ = false;  // the caret is the start of the selection, not its end

 private:
  // Replaces the selection with `text` as one edit; raises Change when the text changed.
  void ReplaceSelection(const std::string& text, bool typing);
};

class HCommandButton : public HControl<CommandButton> {
 public:
  using HControl::HControl;
  const Picture& GetPicture() const override { return picture_; }
  void SetPicture(const Picture& v) override { picture_ = v; }
  bool Default() const override { return default_; }
  void SetDefault(bool v) override { default_ = v; }

  Picture picture_;
  bool default_ = false;
};

class HShape : public HControl<Shape> {
 public:
  using HControl::HControl;
  Color BorderColor() const override { return border_color_; }
  void SetBorderColor(Color v) override { border_color_ = v; }
  int16_t BorderWidth() const override { return border_width_; }
  void SetBorderWidth(int16_t v) override {
    if (v < 1) throw PlatformFailure(kErrInvalidProcedureCall);
    border_width_ = v;
  }
  int16_t BackStyle() const override { return back_style_; }
  void SetBackStyle(int16_t v) override { back_style_ = v; }
  int16_t FillStyle() const override { return fill_style_; }
  void SetFillStyle(int16_t v) override { fill_style_ = v; }
  Color FillColor() const override { return fill_color_; }
  void SetFillColor(Color v) override { fill_color_ = v; }

  Color border_color_ = kSysWindowText;
  int16_t border_width_ = 1;
  int16_t back_style_ = 0;
  int16_t fill_style_ = 1;
  Color fill_color_ = 0;
};

class HImage : public HControl<Image> {
 public:
  using HControl::HControl;
  const Picture& GetPicture() const override { return picture_; }
  void SetPicture(const Picture& v) override { picture_ = v; }
  bool Stretch() const override { return stretch_; }
  void SetStretch(bool v) override { stretch_ = v; }

  Picture picture_;
  bool stretch_ = false;
};

class HMenu : public HControl<Menu> {
 public:
  using HControl::HControl;
  bool Checked() const override { return checked_; }
  void SetChecked(bool v) override { checked_ = v; }
  Menu* ParentMenu() const override { return parent_menu_; }
  std::vector<std::shared_ptr<Menu>> Items() const override { return items_; }

  bool checked_ = false;
  Menu* parent_menu_ = nullptr;
  std::vector<std::shared_ptr<Menu>> items_;
};

class HPictureBox : public HContainer<PictureBox> {
 public:
  using HContainer::HContainer;
  Surface& Drawing() override { return surface_; }
  const Picture& GetPicture() const override { return picture_; }
  void SetPicture(const Picture& v) override { picture_ = v; }
  int16_t BorderStyle() const override { return border_style_; }
  void SetBorderStyle(int16_t v) override { border_style_ = v; }

  HSurface surface_{this};
  Picture picture_;
  int16_t border_style_ = 1;

 protected:
  void BackColorChanged() override { surface_.Cls(); }
};

class HFrame : public HContainer<Frame> {
 public:
  using HContainer::HContainer;
  int16_t BorderStyle() const override { return border_style_; }
  void SetBorderStyle(int16_t v) override { border_style_ = v; }

  int16_t border_style_ = 1;
};

class HUserControl : public HContainer<UserControl> {
 public:
  using HContainer::HContainer;
  Surface& Drawing() override { return surface_; }
  bool CanGetFocus() const override { return can_get_focus_; }
  void SetCanGetFocus(bool v) override { can_get_focus_ = v; }
  Font AmbientFont() const override;
  void NotifyPropertyChanged(const std::string& key) override {
    LogNotifiedProperty(notified_, key);
  }
  void PopupMenu(Menu& menu) override { toolkit_->RunPopupMenu(menu); }

  HSurface surface_{this};
  bool can_get_focus_ = false;
  std::vector<std::string> notified_;

 protected:
  void BackColorChanged() override { surface_.Cls(); }
};

class HForm : public HContainer<Form> {
 public:
  using HContainer::HContainer;
  Twips ScaleWidth() const override { return width_; }
  Twips ScaleHeight() const override { return height_; }
  void SetClientSize(Twips width, Twips height) override { DoMove(left_, top_, width, height); }
  void Show() override;
  void Hide() override;
  bool IsShown() const override { return shown_; }
  void PopupMenu(Menu& menu) override { toolkit_->RunPopupMenu(menu); }
  int16_t BorderStyle() const override { return border_style_; }
  void SetBorderStyle(int16_t v) override { border_style_ = v; }
  int16_t StartUpPosition() const override { return start_up_position_; }
  void SetStartUpPosition(int16_t v) override { start_up_position_ = v; }
  const Picture& Icon() const override { return icon_; }
  void SetIcon(const Picture& v) override { icon_ = v; }

  int16_t border_style_ = 2;
  int16_t start_up_position_ = 0;
  Picture icon_;
  bool loaded_ = false;
  bool shown_ = false;
  bool unloaded_ = false;
  // The control that holds this window's focus.
  WindowFocus focus_;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_TOOLKITS_HEADLESS_HEADLESS_CONTROLS_H_
