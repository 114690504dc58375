// The focus, tab-order and event-order rules that every toolkit of the library keeps.
//
// For toolkit implementers, not hosts. ToolkitCore keeps the controls' state in their nodes and
// answers the few questions of FocusHost about it; FocusRules does the rest: which controls take
// the focus, the tab order, and the events of a focus move (see the banner of
// toolkits/headless/headless_toolkit.h for the rules themselves).
#ifndef TARNSHEETS_TOOLKITS_COMMON_FOCUS_RULES_H_
#define TARNSHEETS_TOOLKITS_COMMON_FOCUS_RULES_H_

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tarnsheets/toolkit.h"

namespace tarnsheets {

// The focus events a control has had: GotFocus delivered without LostFocus yet, EnterFocus
// without ExitFocus. Each toolkit keeps one per control and clears it when the control unloads.
struct FocusMarks {
  bool got_focus = false;
  bool entered = false;
};

// The focus of one window: the control that holds it (kept alive while it does) and a counter
// that every focus move of the window increments, so that a move can tell that a handler moved
// the focus again under it.
struct WindowFocus {
  std::shared_ptr<Control> focused;
  int64_t generation = 0;
};

// What the rules need to know of a toolkit's controls.
class FocusHost {
 public:
  // True while `control` is loaded. Fails with 5 when it is not a control of this toolkit.
  virtual bool IsLoaded(const Control& control) const = 0;
  // The direct children of a container in creation order; menus are not children.
  virtual const std::vector<std::shared_ptr<Control>>& ChildrenOf(
      const Control& container) const = 0;
  // TabIndex and TabStop as stored, whatever the control's kind (0 and False where the kind has
  // none).
  virtual int32_t TabIndexOf(const Control& control) const = 0;
  virtual bool TabStopOf(const Control& control) const = 0;
  virtual FocusMarks& MarksOf(const Control& control) = 0;
  virtual WindowFocus& FocusOf(Form& form) = 0;
  // The focused control of `form` changed (after Validate, before LostFocus): a toolkit with
  // real widgets moves the widget focus here.
  virtual void FocusChanged(Form& form) { (void)form; }

 protected:
  ~FocusHost() = default;
};

// `controls` sorted by TabIndex, creation order among equals.
std::vector<std::shared_ptr<Control>> SortedByTabIndex(
    const FocusHost& host, std::vector<std::shared_ptr<Control>> controls);

class FocusRules {
 public:
  explicit FocusRules(FocusHost& host) : host_(host) {}
  FocusRules(const FocusRules&) = delete;
  FocusRules& operator=(const FocusRules&) = delete;

  // A loaded text box, command button, picture box or user control, usable, on a window.
  bool CanTakeFocus(const Control& control) const;
  // Where SetFocus on `control` puts the focus: the control itself, or for a user control that
  // does not take the focus itself its first child in tab order that can take it (TabStop
  // aside). nullptr when nothing there can take the focus.
  Control* FocusTargetOf(Control& control) const;
  // Appends the stops inside `container` in tab order to `out`. `always` (the focused control)
  // counts as a stop even when its TabStop is False, and so does the user control around it.
  void CollectStops(Container& container, Control* always, std::vector<Control*>* out) const;
  // The stops of a window in tab order.
  std::vector<Control*> TabOrder(Form& form) const;
  // The stop after (`backward`: before) `from`, wrapping at the window's edges; the first (last)
  // stop when `from` is none of them; nullptr when the window has no stop.
  Control* NeighbourStop(Form& form, Control* from, bool backward) const;
  // Moves the focus of `form` to `target` (nullptr: out of the window) with the events of a focus
  // move. Returns false when a Validate cancelled or a handler moved the focus elsewhere.
  bool MoveFocus(Form& form, Control* target, bool validate);
  // Tab or Shift+Tab on the focused control of `form`: the focus moves to the neighbour stop.
  void Tab(Form& form, bool backward);
  // `control` is being unloaded: when the focus of its window is on it or inside it, the focus
  // goes on to the next stop outside it, without Validate.
  void LeaveUnloading(Form& form, Control& control);
  // Whether a press of `button` (kLeftButton, kRightButton) on `control` moves the focus there.
  bool TakesFocusOnPress(Control& control, int16_t button) const;
  // The button that Return on `focus` clicks: the visible, enabled Default button of its window,
  // unless `focus` is a multi-line text box. nullptr when there is none.
  std::shared_ptr<Control> DefaultButtonFor(Control& focus) const;
  // The button that answers a modal form with OK: its Default button, else its first visible,
  // enabled button in tab order. nullptr when it has none.
  std::shared_ptr<Control> AnswerButtonOf(Form& form) const;
  // The texts of the form's visible text boxes in tab order, joined by "\n".
  std::string TextBoxTexts(Form& form) const;

 private:
  FocusHost& host_;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_TOOLKITS_COMMON_FOCUS_RULES_H_
