// The properties every control has, kept in its ControlNode and the same in every toolkit: the
// toolkit's node type supplies the hooks (Apply..., RepaintSelf, FocusSelf, NodeHandle,
// UpdateView). For toolkit implementers, not hosts.
#ifndef TARNSHEETS_TOOLKITS_COMMON_NODE_CONTROL_H_
#define TARNSHEETS_TOOLKITS_COMMON_NODE_CONTROL_H_

#include <cstdint>
#include <optional>
#include <string>

#include "tarnsheets/failure.h"
#include "tarnsheets/toolkit.h"
#include "toolkits/common/control_node.h"

namespace tarnsheets {

// `I` is the platform interface of the control (TextBox, Label, ...); `Node` the toolkit's
// node, a ControlNode.
template <typename I, typename Node>
class NodeControl : public I, public Node {
 public:
  using Node::Node;

  Control& Self() override { return *this; }
  uintptr_t Handle() const override { return this->NodeHandle(); }
  void Refresh() override {
    if (this->kind_ == ControlKind::kUserControl || this->kind_ == ControlKind::kForm) {
      this->RepaintSelf();
    } else {
      this->UpdateView();
    }
  }
  ControlKind Kind() const override { return this->kind_; }
  std::string TypeName() const override {
    return this->class_name_.empty() ? ControlKindTypeName(this->kind_) : this->class_name_;
  }
  const std::string& Name() const override { return this->name_; }
  int32_t Index() const override { return this->index_; }
  Container* Parent() const override { return this->attached_ ? this->parent_ : nullptr; }
  Container* Owner() const override { return this->attached_ ? this->owner_ : nullptr; }

  Twips Left() const override { return Geometry(this->left_); }
  Twips Top() const override { return Geometry(this->top_); }
  Twips Width() const override { return Geometry(this->width_); }
  Twips Height() const override { return Geometry(this->height_); }
  void SetLeft(Twips v) override { this->DoMove(v, this->top_, this->width_, this->height_); }
  void SetTop(Twips v) override { this->DoMove(this->left_, v, this->width_, this->height_); }
  void SetWidth(Twips v) override { this->DoMove(this->left_, this->top_, v, this->height_); }
  void SetHeight(Twips v) override { this->DoMove(this->left_, this->top_, this->width_, v); }

  bool Visible() const override { return this->visible_; }
  void SetVisible(bool v) override {
    const bool shown = v && !this->visible_;
    this->visible_ = v;
    this->ApplyVisible();
    if (shown && this->kind_ == ControlKind::kUserControl) this->RepaintSelf();
  }
  bool Enabled() const override { return this->enabled_; }
  void SetEnabled(bool v) override {
    this->enabled_ = v;
    this->ApplyEnabled();
  }
  const std::string& Tag() const override { return this->tag_; }
  void SetTag(const std::string& v) override { this->tag_ = v; }
  bool TabStop() const override {
    this->Require(Capability::kTabStop);
    return this->tab_stop_;
  }
  void SetTabStop(bool v) override {
    this->Require(Capability::kTabStop);
    this->tab_stop_ = v;
  }
  int32_t TabIndex() const override {
    this->Require(Capability::kTabIndex);
    return this->tab_index_;
  }
  void SetTabIndex(int32_t v) override {
    this->Require(Capability::kTabIndex);
    if (v < 0 || v > 32767) throw PlatformFailure(kErrInvalidProcedureCall);
    this->tab_index_ = v;
  }
  std::string Caption() const override {
    this->Require(Capability::kCaption);
    return this->caption_;
  }
  void SetCaption(const std::string& v) override {
    this->Require(Capability::kCaption);
    this->caption_ = v;
    this->ApplyCaption();
  }
  Color ForeColor() const override {
    this->Require(Capability::kForeColor);
    return this->fore_color_;
  }
  void SetForeColor(Color v) override {
    this->Require(Capability::kForeColor);
    this->fore_color_ = v;
    this->ApplyColors();
  }
  Color BackColor() const override {
    this->Require(Capability::kBackColor);
    return this->back_color_;
  }
  void SetBackColor(Color v) override {
    this->Require(Capability::kBackColor);
    this->back_color_ = v;
    this->BackColorChanged();
    this->ApplyColors();
  }
  Font GetFont() const override {
    this->Require(Capability::kFont);
    return this->font_;
  }
  void SetFont(const Font& v) override {
    this->Require(Capability::kFont);
    this->font_ = v;
    this->ApplyFont();
  }

  void SetFocus() override {
    const ControlKind k = this->kind_;
    if (k != ControlKind::kTextBox && k != ControlKind::kCommandButton &&
        k != ControlKind::kPictureBox && k != ControlKind::kUserControl &&
        k != ControlKind::kForm) {
      throw PlatformFailure(kErrNotSupported);
    }
    this->FocusSelf();
  }

 protected:
  void DoMove(Twips left, std::optional<Twips> top, std::optional<Twips> width,
              std::optional<Twips> height) override {
    this->Require(Capability::kGeometry);
    const Twips w = width.value_or(this->width_), h = height.value_or(this->height_);
    if (w < 0 || h < 0) throw PlatformFailure(kErrInvalidProcedureCall);
    const bool resized = w != this->width_ || h != this->height_;
    this->left_ = left;
    this->top_ = top.value_or(this->top_);
    this->width_ = w;
    this->height_ = h;
    this->ApplyGeometry();
    if (resized) this->SizeChanged();
  }

 private:
  Twips Geometry(Twips v) const {
    this->Require(Capability::kGeometry);
    return v;
  }
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_TOOLKITS_COMMON_NODE_CONTROL_H_
