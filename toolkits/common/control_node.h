// What every toolkit keeps of a control, whatever shows it: its kind and name, its place in the
// tree of controls, and the properties a control has before any widget does. The headless and
// the Qt toolkit build their nodes on it, with hooks where their views differ. For toolkit
// implementers, not hosts.
#ifndef TARNSHEETS_TOOLKITS_COMMON_CONTROL_NODE_H_
#define TARNSHEETS_TOOLKITS_COMMON_CONTROL_NODE_H_

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tarnsheets/failure.h"
#include "tarnsheets/toolkit.h"
#include "toolkits/common/control_rules.h"
#include "toolkits/common/focus_rules.h"

namespace tarnsheets {

class RecordingSurface;
class ToolkitCore;

class ControlNode {
 public:
  // Takes the defaults of `kind`: TabStop where the kind has one, the window colour of a text
  // box, the white of a shape. `toolkit` is the toolkit that made the control.
  ControlNode(ToolkitCore* toolkit, ControlKind kind, std::string class_name, std::string name,
              int32_t index);
  // The children and menus that outlive this node are left detached, without parent or owner.
  virtual ~ControlNode();
  ControlNode(const ControlNode&) = delete;
  ControlNode& operator=(const ControlNode&) = delete;

  virtual Control& Self() = 0;
  bool IsContainer() const {
    return kind_ == ControlKind::kPictureBox || kind_ == ControlKind::kFrame ||
           kind_ == ControlKind::kUserControl || kind_ == ControlKind::kForm;
  }
  void Require(Capability capability) const {
    if (!KindHas(kind_, capability)) throw PlatformFailure(kErrNotSupported);
  }

  // Size changed: Resize for the kinds that have it.
  void SizeChanged();
  // Marks this control and everything inside it as unloaded, with their focus marks cleared;
  // the toolkit's view of each goes (DetachView).
  void Detach();
  // The view takes every property at once: geometry, colours, font, caption, enabled, visible.
  void ApplyAll();

  // The window handle of the control (0 for the kinds without a window).
  virtual uintptr_t NodeHandle() const = 0;
  // The surface of a user control or picture box; nullptr for the other kinds.
  virtual RecordingSurface* DrawingLog() { return nullptr; }

  // What the toolkit does when a property has changed: the view follows. Nothing by default.
  virtual void ApplyGeometry() {}
  virtual void ApplyColors() {}
  virtual void ApplyFont() {}
  virtual void ApplyCaption() {}
  virtual void ApplyVisible() {}
  virtual void ApplyEnabled() {}
  // BackColor was set: a drawing surface clears itself.
  virtual void BackColorChanged() {}
  // A property that only the painting shows changed: the toolkit paints the control again.
  virtual void UpdateView() {}
  // The control was unloaded: the toolkit takes its view out of the window.
  virtual void DetachView() {}
  // The toolkit repaints this control (a user control raises Paint), and moves the focus to it.
  virtual void RepaintSelf() = 0;
  virtual void FocusSelf() = 0;

  // The controls a container holds, as its Controls collection lists them: a form's or user
  // control's own collection in creation order; for a picture box or frame its subtree, each
  // child followed by what it holds (a user control inside keeps its own).
  std::vector<std::shared_ptr<Control>> HeldControls() const;
  // The control of HeldControls called `name`(`index`), or nullptr.
  std::shared_ptr<Control> FindHeldControl(std::string_view name, int32_t index) const;

  // The toolkit that made the control (the Qt toolkit clears it when it goes before them).
  ToolkitCore* toolkit_;
  ControlKind kind_;
  std::string class_name_;
  std::string name_;
  int32_t index_;
  Container* parent_ = nullptr;
  Container* owner_ = nullptr;
  bool attached_ = true;

  Twips left_ = 0, top_ = 0, width_ = 0, height_ = 0;
  bool visible_ = true;
  bool enabled_ = true;
  std::string tag_;
  bool tab_stop_ = false;
  int32_t tab_index_ = 0;
  std::string caption_;
  Color fore_color_ = kSysWindowText;
  Color back_color_ = kSysButtonFace;
  Font font_;

  // Containers: direct children in creation order. Forms and user controls: their controls
  // collection in creation order, and the counter of TabIndex values.
  std::vector<std::shared_ptr<Control>> children_;
  std::vector<std::weak_ptr<Control>> collection_;
  std::vector<std::shared_ptr<Control>> menus_;  // top-level menus of a form or user control
  int32_t next_tab_index_ = 0;

  FocusMarks focus_marks_;
};

// The node of a control made by a toolkit built on ControlNode; nullptr for any other control.
ControlNode* ControlNodeOf(const Control& control);

}  // namespace tarnsheets

#endif  // TARNSHEETS_TOOLKITS_COMMON_CONTROL_NODE_H_
