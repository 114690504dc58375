#include "toolkits/common/focus_rules.h"

#include <algorithm>

#include "toolkits/common/control_rules.h"

namespace tarnsheets {
namespace {

// The user controls from `control` (itself included) up to its window, innermost first.
std::vector<Control*> UserControlChain(Control* control) {
  std::vector<Control*> chain;
  for (Control* c = control; c != nullptr && c->Kind() != ControlKind::kForm; c = c->Parent()) {
    if (c->Kind() == ControlKind::kUserControl) chain.push_back(c);
  }
  return chain;
}

bool Contains(const std::vector<Control*>& list, const Control* control) {
  return std::find(list.begin(), list.end(), control) != list.end();
}

}  // namespace

std::vector<std::shared_ptr<Control>> SortedByTabIndex(
    const FocusHost& host, std::vector<std::shared_ptr<Control>> controls) {
  std::stable_sort(controls.begin(), controls.end(),
                   [&host](const std::shared_ptr<Control>& a, const std::shared_ptr<Control>& b) {
                     return host.TabIndexOf(*a) < host.TabIndexOf(*b);
                   });
  return controls;
}

// Which controls take the focus.

bool FocusRules::CanTakeFocus(const Control& control) const {
  if (!host_.IsLoaded(control)) return false;
  switch (control.Kind()) {
    case ControlKind::kTextBox:
    case ControlKind::kCommandButton:
    case ControlKind::kPictureBox:
    case ControlKind::kUserControl:
      break;
    default:
      return false;
  }
  return IsUsable(control) && WindowOf(control) != nullptr;
}

Control* FocusRules::FocusTargetOf(Control& control) const {
  if (!CanTakeFocus(control)) return nullptr;
  if (control.Kind() != ControlKind::kUserControl) return &control;
  auto& uc = dynamic_cast<UserControl&>(control);
  for (const auto& child : SortedByTabIndex(host_, host_.ChildrenOf(uc))) {
    if (!child->Visible() || !child->Enabled()) continue;
    if (child->Kind() == ControlKind::kFrame) {
      // A frame passes the search on to its own children.
      for (const auto& inner : SortedByTabIndex(host_, host_.ChildrenOf(*child))) {
        if (Control* target = FocusTargetOf(*inner)) return target;
      }
      continue;
    }
    if (Control* target = FocusTargetOf(*child)) return target;
  }
  return uc.CanGetFocus() ? &control : nullptr;
}

// The tab order.

void FocusRules::CollectStops(Container& container, Control* always,
                              std::vector<Control*>* out) const {
  for (const auto& child : SortedByTabIndex(host_, host_.ChildrenOf(container))) {
    Control* c = child.get();
    if (!c->Visible() || !c->Enabled()) continue;
    const bool inside_always = always != nullptr && (always == c || IsInside(*c, *always));
    switch (c->Kind()) {
      case ControlKind::kTextBox:
      case ControlKind::kCommandButton:
        if (host_.TabStopOf(*c) || c == always) out->push_back(c);
        break;
      case ControlKind::kPictureBox:
        if (host_.TabStopOf(*c) || c == always) out->push_back(c);
        CollectStops(dynamic_cast<Container&>(*c), always, out);
        break;
      case ControlKind::kFrame:
        CollectStops(dynamic_cast<Container&>(*c), always, out);
        break;
      case ControlKind::kUserControl: {
        if (!host_.TabStopOf(*c) && !inside_always) break;
        auto& uc = dynamic_cast<Container&>(*c);
        std::vector<Control*> inner;
        CollectStops(uc, always, &inner);
        if (!inner.empty()) {
          out->insert(out->end(), inner.begin(), inner.end());
        } else if (Control* first = FocusTargetOf(uc); first != nullptr) {
          out->push_back(inside_always ? always : first);
        }
        break;
      }
      default:
        break;
    }
  }
}

std::vector<Control*> FocusRules::TabOrder(Form& form) const {
  std::vector<Control*> ring;
  CollectStops(form, nullptr, &ring);
  return ring;
}

Control* FocusRules::NeighbourStop(Form& form, Control* from, bool backward) const {
  std::vector<Control*> ring;
  CollectStops(form, from, &ring);
  if (ring.empty()) return nullptr;
  auto at = std::find(ring.begin(), ring.end(), from);
  if (at == ring.end()) return backward ? ring.back() : ring.front();
  const size_t i = static_cast<size_t>(at - ring.begin());
  return backward ? ring[(i + ring.size() - 1) % ring.size()] : ring[(i + 1) % ring.size()];
}

// The focus move.

bool FocusRules::MoveFocus(Form& form, Control* target, bool validate) {
  const std::shared_ptr<Control> keep_form = form.shared_from_this();
  WindowFocus& window = host_.FocusOf(form);
  const std::shared_ptr<Control> keep_old = window.focused;
  const std::shared_ptr<Control> keep_target = target ? target->shared_from_this() : nullptr;
  Control* old = keep_old.get();
  if (old == target) return true;
  const std::vector<Control*> old_chain = UserControlChain(old);
  const std::vector<Control*> target_chain = UserControlChain(target);
  std::vector<std::shared_ptr<Control>> left;  // innermost first
  for (Control* uc : old_chain) {
    if (!Contains(target_chain, uc)) left.push_back(uc->shared_from_this());
  }
  std::vector<std::shared_ptr<Control>> entered;  // outermost first
  for (auto it = target_chain.rbegin(); it != target_chain.rend(); ++it) {
    entered.push_back((*it)->shared_from_this());
  }
  int64_t generation = window.generation;
  auto moved_elsewhere = [&] { return window.generation != generation; };

  if (validate && old != nullptr && host_.MarksOf(*old).got_focus) {
    bool cancel = false;
    Raise(*old, &ControlEvents::Validate, cancel);
    if (cancel || moved_elsewhere()) return false;
    for (const auto& uc : left) {
      if (uc.get() == old || !host_.MarksOf(*uc).got_focus) continue;
      cancel = false;
      Raise(*uc, &ControlEvents::Validate, cancel);
      if (cancel || moved_elsewhere()) return false;
    }
  }

  window.focused = keep_target;
  generation = ++window.generation;
  host_.FocusChanged(form);

  if (old != nullptr && host_.MarksOf(*old).got_focus) {
    host_.MarksOf(*old).got_focus = false;
    Raise(*old, &ControlEvents::LostFocus);
    if (moved_elsewhere()) return false;
  }
  for (const auto& uc : left) {
    FocusMarks& marks = host_.MarksOf(*uc);
    if (!marks.got_focus) continue;
    marks.got_focus = false;
    Raise(*uc, &ControlEvents::LostFocus);
    if (moved_elsewhere()) return false;
  }
  for (const auto& uc : left) {
    FocusMarks& marks = host_.MarksOf(*uc);
    if (!marks.entered) continue;
    marks.entered = false;
    Raise(*uc, &ControlEvents::ExitFocus);
    if (moved_elsewhere()) return false;
  }
  for (const auto& uc : entered) {
    FocusMarks& marks = host_.MarksOf(*uc);
    if (marks.entered) continue;
    marks.entered = true;
    Raise(*uc, &ControlEvents::EnterFocus);
    if (moved_elsewhere()) return false;
  }
  for (const auto& uc : entered) {
    FocusMarks& marks = host_.MarksOf(*uc);
    if (uc.get() == target || marks.got_focus) continue;
    marks.got_focus = true;
    Raise(*uc, &ControlEvents::GotFocus);
    if (moved_elsewhere()) return false;
  }
  if (target != nullptr && !host_.MarksOf(*target).got_focus) {
    host_.MarksOf(*target).got_focus = true;
    Raise(*target, &ControlEvents::GotFocus);
    if (moved_elsewhere()) return false;
  }
  return true;
}

void FocusRules::Tab(Form& form, bool backward) {
  Control* focus = host_.FocusOf(form).focused.get();
  if (focus == nullptr) return;
  Control* next = NeighbourStop(form, focus, backward);
  if (next != nullptr && next != focus) MoveFocus(form, next, true);
}

void FocusRules::LeaveUnloading(Form& form, Control& control) {
  Control* focus = host_.FocusOf(form).focused.get();
  if (focus == nullptr || (focus != &control && !IsInside(control, *focus))) return;
  std::vector<Control*> ring;
  CollectStops(form, focus, &ring);
  Control* next = nullptr;
  auto at = std::find(ring.begin(), ring.end(), focus);
  for (size_t i = 1; at != ring.end() && i < ring.size(); ++i) {
    Control* candidate = ring[(static_cast<size_t>(at - ring.begin()) + i) % ring.size()];
    if (candidate != &control && !IsInside(control, *candidate)) {
      next = candidate;
      break;
    }
  }
  MoveFocus(form, next, false);
}

// Keys and mouse.

bool FocusRules::TakesFocusOnPress(Control& control, int16_t button) const {
  const bool focusable_uc =
      control.Kind() == ControlKind::kUserControl && FocusTargetOf(control) == &control;
  if (button == kLeftButton) {
    return control.Kind() == ControlKind::kTextBox ||
           control.Kind() == ControlKind::kCommandButton ||
           control.Kind() == ControlKind::kPictureBox || focusable_uc;
  }
  if (button == kRightButton) return control.Kind() == ControlKind::kTextBox || focusable_uc;
  return false;
}

std::shared_ptr<Control> FocusRules::DefaultButtonFor(Control& focus) const {
  if (const auto* box = dynamic_cast<const TextBox*>(&focus); box != nullptr && box->MultiLine()) {
    return nullptr;
  }
  Form* form = WindowOf(focus);
  if (form == nullptr) return nullptr;
  for (const auto& c : form->AllControls()) {
    const auto* button = dynamic_cast<const CommandButton*>(c.get());
    if (button != nullptr && button->Default() && CanTakeFocus(*button)) return c;
  }
  return nullptr;
}

std::shared_ptr<Control> FocusRules::AnswerButtonOf(Form& form) const {
  std::vector<std::shared_ptr<Control>> buttons;
  for (const auto& c : form.AllControls()) {
    if (c->Kind() == ControlKind::kCommandButton && CanTakeFocus(*c)) buttons.push_back(c);
  }
  buttons = SortedByTabIndex(host_, std::move(buttons));
  std::shared_ptr<Control> ok;
  for (const auto& b : buttons) {
    if (dynamic_cast<const CommandButton&>(*b).Default()) ok = b;
  }
  if (ok == nullptr && !buttons.empty()) ok = buttons.front();
  return ok;
}

std::string FocusRules::TextBoxTexts(Form& form) const {
  std::vector<std::shared_ptr<Control>> boxes;
  for (const auto& c : form.AllControls()) {
    if (c->Kind() == ControlKind::kTextBox && c->Visible()) boxes.push_back(c);
  }
  boxes = SortedByTabIndex(host_, std::move(boxes));
  std::string text;
  for (size_t i = 0; i < boxes.size(); ++i) {
    if (i > 0) text += "\n";
    text += dynamic_cast<const TextBox&>(*boxes[i]).Text();
  }
  return text;
}

}  // namespace tarnsheets
