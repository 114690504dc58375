#include "toolkits/common/control_node.h"

#include <utility>

namespace tarnsheets {

ControlNode::ControlNode(ToolkitCore* toolkit, ControlKind kind, std::string class_name,
                         std::string name, int32_t index)
    : toolkit_(toolkit),
      kind_(kind),
      class_name_(std::move(class_name)),
      name_(std::move(name)),
      index_(index) {
  tab_stop_ = KindHas(kind, Capability::kTabStop);
  if (kind == ControlKind::kTextBox) back_color_ = kSysWindowBackground;
  if (kind == ControlKind::kShape) back_color_ = Rgb(255, 255, 255);
}

ControlNode::~ControlNode() {
  for (auto& child : menus_) {
    if (ControlNode* node = ControlNodeOf(*child)) node->attached_ = false;
  }
  for (auto& child : children_) {
    if (ControlNode* node = ControlNodeOf(*child)) {
      node->parent_ = nullptr;
      node->owner_ = nullptr;
      node->attached_ = false;
    }
  }
}

void ControlNode::SizeChanged() {
  if (kind_ == ControlKind::kUserControl || kind_ == ControlKind::kPictureBox ||
      kind_ == ControlKind::kForm) {
    Raise(Self(), &ControlEvents::Resize);
  }
}

void ControlNode::Detach() {
  attached_ = false;
  focus_marks_ = {};
  for (auto& child : children_) {
    if (ControlNode* node = ControlNodeOf(*child)) node->Detach();
  }
  DetachView();
}

void ControlNode::ApplyAll() {
  ApplyGeometry();
  ApplyColors();
  ApplyFont();
  ApplyCaption();
  ApplyEnabled();
  ApplyVisible();
}

std::vector<std::shared_ptr<Control>> ControlNode::HeldControls() const {
  std::vector<std::shared_ptr<Control>> out;
  const Control& self = const_cast<ControlNode*>(this)->Self();
  if (kind_ == ControlKind::kForm || kind_ == ControlKind::kUserControl) {
    for (const auto& weak : collection_) {
      std::shared_ptr<Control> control = weak.lock();
      if (control && control->Owner() == &self) out.push_back(std::move(control));
    }
    return out;
  }
  std::vector<std::shared_ptr<Control>> stack(children_.rbegin(), children_.rend());
  while (!stack.empty()) {
    std::shared_ptr<Control> control = stack.back();
    stack.pop_back();
    out.push_back(control);
    const ControlNode* node = ControlNodeOf(*control);
    if (node != nullptr && node->kind_ != ControlKind::kUserControl) {
      stack.insert(stack.end(), node->children_.rbegin(), node->children_.rend());
    }
  }
  return out;
}

std::shared_ptr<Control> ControlNode::FindHeldControl(std::string_view name, int32_t index) const {
  for (const auto& control : HeldControls()) {
    if (control->Name() == name && control->Index() == index) return control;
  }
  return nullptr;
}

ControlNode* ControlNodeOf(const Control& control) {
  return dynamic_cast<ControlNode*>(const_cast<Control*>(&control));
}

}  // namespace tarnsheets
