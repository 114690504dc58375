#include "toolkits/common/toolkit_core.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/utf8.h"
#include "tarnsheets/failure.h"
#include "toolkits/common/control_node.h"
#include "toolkits/common/control_rules.h"
#include "toolkits/common/node_kinds.h"

namespace tarnsheets {

ToolkitCore::~ToolkitCore() {
  // Forms may outlive the toolkit through shared references; they must not call back.
  for (auto& form : forms_) {
    if (ControlNode* node = ControlNodeOf(*form)) node->Detach();
  }
}

ControlNode& ToolkitCore::Node(const Control& control) const {
  ControlNode* node = ControlNodeOf(control);
  if (node == nullptr || node->toolkit_ != this) {
    throw Failure(kErrInvalidProcedureCall, "Invalid procedure call or argument: control \"" +
                                                control.Name() +
                                                "\" does not belong to this toolkit");
  }
  return *node;
}

WindowState& ToolkitCore::Window(Form& form) const {
  Node(form);
  return dynamic_cast<WindowState&>(form);
}

Form* ToolkitCore::FormOf(const Control& control) const { return WindowOf(control); }

SheetRect ToolkitCore::WindowRectFromTwips(const Control& control) const {
  Twips x = 0, y = 0;
  for (const Control* c = &control; c != nullptr; c = c->Parent()) {
    if (c->Kind() == ControlKind::kMenu) return SheetRect{};
    x += c->Left();
    y += c->Top();
  }
  SheetRect r;
  r.Left = static_cast<int32_t>(std::lround(x / tppx_));
  r.Top = static_cast<int32_t>(std::lround(y / tppy_));
  r.Right = r.Left + static_cast<int32_t>(std::lround(control.Width() / tppx_));
  r.Bottom = r.Top + static_cast<int32_t>(std::lround(control.Height() / tppy_));
  return r;
}

void ToolkitCore::SetTwipsPerPixel(Twips x, Twips y) {
  if (!(x > 0) || !(y > 0)) throw PlatformFailure(kErrInvalidProcedureCall);
  tppx_ = x;
  tppy_ = y;
  TwipsPerPixelChanged();
}

Control* ToolkitCore::GetFocus() const {
  if (active_form_ == nullptr) return nullptr;
  return dynamic_cast<const WindowState&>(*active_form_).focus_.focused.get();
}

bool ToolkitCore::IsChild(const Control& parent, const Control& child) const {
  return IsInside(parent, child);
}

void ToolkitCore::ActivateForm(Form* form) {
  active_form_ = form;
  FormActivated(form);
}

// The tree of controls.

template <typename T>
std::shared_ptr<T> ToolkitCore::Adopt(Container& parent, std::shared_ptr<Control> made) {
  std::shared_ptr<T> control = std::dynamic_pointer_cast<T>(std::move(made));
  ControlNode& parent_node = Node(parent);
  ControlNode& node = Node(*control);
  Container& owner = OwnerOfNewControl(parent, parent_node.IsContainer() && parent_node.attached_,
                                       node.name_, node.index_);
  ControlNode& owner_node = Node(owner);
  node.parent_ = &parent;
  node.owner_ = &owner;
  const DefaultSize size = DefaultSizeOf(node.kind_);
  node.width_ = size.width;
  node.height_ = size.height;
  if (KindHas(node.kind_, Capability::kTabIndex)) node.tab_index_ = owner_node.next_tab_index_++;
  if (KindHas(parent_node.kind_, Capability::kFont)) node.font_ = parent_node.font_;
  if (node.kind_ == ControlKind::kMenu) {
    owner_node.menus_.push_back(control);
  } else {
    parent_node.children_.push_back(control);
  }
  owner_node.collection_.push_back(control);
  Realize(node);
  return control;
}

std::shared_ptr<Form> ToolkitCore::CreateForm(const std::string& name) {
  auto form = std::dynamic_pointer_cast<Form>(NewControl(ControlKind::kForm, "", name, -1, false));
  ControlNode& node = Node(*form);
  const DefaultSize size = DefaultSizeOf(ControlKind::kForm);
  node.width_ = size.width;
  node.height_ = size.height;
  node.visible_ = false;
  Realize(node);
  forms_.push_back(form);
  return form;
}

std::shared_ptr<Label> ToolkitCore::CreateLabel(Container& parent, const std::string& name,
                                                int32_t index) {
  return Adopt<Label>(parent, NewControl(ControlKind::kLabel, "", name, index, false));
}

std::shared_ptr<TextBox> ToolkitCore::CreateTextBox(Container& parent, const std::string& name,
                                                    int32_t index, bool multi_line) {
  return Adopt<TextBox>(parent, NewControl(ControlKind::kTextBox, "", name, index, multi_line));
}

std::shared_ptr<CommandButton> ToolkitCore::CreateCommandButton(Container& parent,
                                                                const std::string& name,
                                                                int32_t index) {
  return Adopt<CommandButton>(parent,
                              NewControl(ControlKind::kCommandButton, "", name, index, false));
}

std::shared_ptr<PictureBox> ToolkitCore::CreatePictureBox(Container& parent,
                                                          const std::string& name, int32_t index) {
  return Adopt<PictureBox>(parent, NewControl(ControlKind::kPictureBox, "", name, index, false));
}

std::shared_ptr<Shape> ToolkitCore::CreateShape(Container& parent, const std::string& name,
                                                int32_t index) {
  return Adopt<Shape>(parent, NewControl(ControlKind::kShape, "", name, index, false));
}

std::shared_ptr<Frame> ToolkitCore::CreateFrame(Container& parent, const std::string& name,
                                                int32_t index) {
  return Adopt<Frame>(parent, NewControl(ControlKind::kFrame, "", name, index, false));
}

std::shared_ptr<Image> ToolkitCore::CreateImage(Container& parent, const std::string& name,
                                                int32_t index) {
  return Adopt<Image>(parent, NewControl(ControlKind::kImage, "", name, index, false));
}

std::shared_ptr<Menu> ToolkitCore::CreateMenu(Container& owner, Menu* parent_menu,
                                              const std::string& name, int32_t index) {
  if (owner.Kind() != ControlKind::kForm && owner.Kind() != ControlKind::kUserControl) {
    throw Failure(kErrInvalidProcedureCall, "Invalid procedure call or argument: menu \"" + name +
                                                "\" needs a form or user control");
  }
  std::shared_ptr<Control> made = NewControl(ControlKind::kMenu, "", name, index, false);
  if (parent_menu == nullptr) return Adopt<Menu>(owner, std::move(made));
  auto menu = std::dynamic_pointer_cast<Menu>(made);
  auto* parent = dynamic_cast<MenuState*>(parent_menu);
  if (parent == nullptr || ControlNodeOf(*parent_menu) == nullptr ||
      ControlNodeOf(*parent_menu)->toolkit_ != this || parent_menu->Owner() != &owner) {
    throw Failure(kErrInvalidProcedureCall, "Invalid procedure call or argument: menu \"" + name +
                                                "\" needs a parent menu of the same owner");
  }
  if (owner.FindControl(name, index) != nullptr) {
    throw Failure(kErrObjectAlreadyLoaded,
                  "Object already loaded: \"" + name + "\"" +
                      (index >= 0 ? "(" + std::to_string(index) + ")" : ""));
  }
  ControlNode& node = Node(*menu);
  node.parent_ = &owner;
  node.owner_ = &owner;
  dynamic_cast<MenuState&>(*menu).parent_menu_ = parent_menu;
  parent->items_.push_back(menu);
  Node(owner).collection_.push_back(menu);
  return menu;
}

std::shared_ptr<UserControl> ToolkitCore::CreateUserControl(Container& parent,
                                                            const std::string& class_name,
                                                            const std::string& name,
                                                            int32_t index) {
  return Adopt<UserControl>(parent,
                            NewControl(ControlKind::kUserControl, class_name, name, index, false));
}

std::shared_ptr<Control> ToolkitCore::LoadControl(const Control& element0, int32_t index) {
  const ControlNode& t = Node(element0);
  Container* parent = element0.Parent();
  Container* owner = element0.Owner();
  CheckNewArrayElement(element0, index);
  std::shared_ptr<Control> made;
  switch (t.kind_) {
    case ControlKind::kLabel: {
      auto& s = dynamic_cast<const Label&>(element0);
      auto c = CreateLabel(*parent, t.name_, index);
      c->SetAlignment(s.Alignment());
      c->SetBackStyle(s.BackStyle());
      c->SetWordWrap(s.WordWrap());
      made = c;
      break;
    }
    case ControlKind::kTextBox: {
      auto& s = dynamic_cast<const TextBox&>(element0);
      auto c = CreateTextBox(*parent, t.name_, index, s.MultiLine());
      c->SetText(s.Text());
      c->SetLocked(s.Locked());
      c->SetPasswordChar(s.PasswordChar());
      c->SetAlignment(s.Alignment());
      c->SetBorderStyle(s.BorderStyle());
      c->ShowScrollBar(s.ScrollBarVisible());
      made = c;
      break;
    }
    case ControlKind::kCommandButton: {
      auto& s = dynamic_cast<const CommandButton&>(element0);
      auto c = CreateCommandButton(*parent, t.name_, index);
      c->SetPicture(s.GetPicture());
      made = c;
      break;
    }
    case ControlKind::kPictureBox: {
      auto& s = dynamic_cast<const PictureBox&>(element0);
      auto c = CreatePictureBox(*parent, t.name_, index);
      c->SetPicture(s.GetPicture());
      c->SetBorderStyle(s.BorderStyle());
      made = c;
      break;
    }
    case ControlKind::kShape: {
      auto& s = dynamic_cast<const Shape&>(element0);
      auto c = CreateShape(*parent, t.name_, index);
      c->SetBorderColor(s.BorderColor());
      c->SetBorderWidth(s.BorderWidth());
      c->SetBackStyle(s.BackStyle());
      c->SetFillStyle(s.FillStyle());
      c->SetFillColor(s.FillColor());
      made = c;
      break;
    }
    case ControlKind::kFrame: {
      auto& s = dynamic_cast<const Frame&>(element0);
      auto c = CreateFrame(*parent, t.name_, index);
      c->SetBorderStyle(s.BorderStyle());
      made = c;
      break;
    }
    case ControlKind::kImage: {
      auto& s = dynamic_cast<const Image&>(element0);
      auto c = CreateImage(*parent, t.name_, index);
      c->SetPicture(s.GetPicture());
      c->SetStretch(s.Stretch());
      made = c;
      break;
    }
    case ControlKind::kMenu: {
      auto& s = dynamic_cast<const Menu&>(element0);
      auto c = CreateMenu(*owner, s.ParentMenu(), t.name_, index);
      c->SetChecked(s.Checked());
      made = c;
      break;
    }
    case ControlKind::kUserControl: {
      auto& s = dynamic_cast<const UserControl&>(element0);
      auto c = CreateUserControl(*parent, t.class_name_, t.name_, index);
      c->SetCanGetFocus(s.CanGetFocus());
      made = c;
      break;
    }
    case ControlKind::kForm:
      break;
  }
  ControlNode& n = Node(*made);
  CopyElementProperties(t, &n);
  n.ApplyAll();
  return made;
}

void ToolkitCore::Unload(Control& control) {
  ControlNode& node = Node(control);
  const std::shared_ptr<Control> keep = control.shared_from_this();
  if (node.kind_ == ControlKind::kForm) {
    auto& form = dynamic_cast<Form&>(control);
    WindowState& window = Window(form);
    if (window.unloaded_) return;
    if (window.loaded_) Raise(form, &ControlEvents::Unload);
    form.Hide();
    window.unloaded_ = true;
    window.focus_.focused.reset();
    node.Detach();
    std::erase(forms_, keep);
    return;
  }
  if (!node.attached_) return;
  if (Form* form = FormOf(control)) rules_.LeaveUnloading(*form, control);
  if (node.kind_ == ControlKind::kMenu) {
    auto* parent_menu = dynamic_cast<MenuState*>(dynamic_cast<Menu&>(control).ParentMenu());
    if (parent_menu != nullptr) {
      std::erase(parent_menu->items_, std::dynamic_pointer_cast<Menu>(keep));
    } else if (node.owner_ != nullptr) {
      std::erase(Node(*node.owner_).menus_, keep);
    }
  } else if (node.parent_ != nullptr) {
    std::erase(Node(*node.parent_).children_, keep);
  }
  node.Detach();
}

// Focus.

bool ToolkitCore::CanTakeFocus(const Control& control) const {
  return rules_.CanTakeFocus(control);
}

std::vector<Control*> ToolkitCore::TabOrder(Form& form) { return rules_.TabOrder(form); }

void ToolkitCore::SetFocusTo(Control& control) {
  Node(control);
  Form* form = FormOf(control);
  if (form == nullptr || Window(*form).unloaded_) throw PlatformFailure(kErrInvalidProcedureCall);
  if (&control == form) {
    ActivateForm(form);
    return;
  }
  Control* target = rules_.FocusTargetOf(control);
  if (target == nullptr) throw PlatformFailure(kErrInvalidProcedureCall);
  ActivateForm(form);
  rules_.MoveFocus(*form, target, true);
}

bool ToolkitCore::FocusOutside() {
  Form* form = active_form_;
  if (form == nullptr) return true;
  if (!rules_.MoveFocus(*form, nullptr, true)) return false;
  if (active_form_ == form && Window(*form).focus_.focused == nullptr) active_form_ = nullptr;
  return true;
}

ToolkitCore::PressFocus ToolkitCore::FocusOnPress(Control& control, int16_t button) {
  if (!rules_.TakesFocusOnPress(control, button)) return PressFocus::kTaken;
  Form* form = FormOf(control);
  if (form == nullptr) return PressFocus::kNoWindow;
  ActivateForm(form);
  if (Window(*form).focus_.focused.get() != &control && !rules_.MoveFocus(*form, &control, true)) {
    return PressFocus::kRefused;
  }
  return PressFocus::kTaken;
}

bool ToolkitCore::IsLoaded(const Control& control) const { return Node(control).attached_; }

const std::vector<std::shared_ptr<Control>>& ToolkitCore::ChildrenOf(
    const Control& container) const {
  return Node(container).children_;
}

int32_t ToolkitCore::TabIndexOf(const Control& control) const { return Node(control).tab_index_; }

bool ToolkitCore::TabStopOf(const Control& control) const { return Node(control).tab_stop_; }

FocusMarks& ToolkitCore::MarksOf(const Control& control) { return Node(control).focus_marks_; }

WindowFocus& ToolkitCore::FocusOf(Form& form) { return Window(form).focus_; }

// Keys and mouse.

void ToolkitCore::PressKey(int16_t key_code, int16_t shift) {
  if (GetFocus() == nullptr) return;
  SendKey(key_code, shift, true, key_code != kKeyTab);
}

void ToolkitCore::KeyDownOnly(int16_t key_code, int16_t shift) {
  if (GetFocus() == nullptr || key_code == kKeyTab) return;
  SendKey(key_code, shift, true, false);
}

void ToolkitCore::KeyUpOnly(int16_t key_code, int16_t shift) {
  if (GetFocus() == nullptr) return;
  SendKey(key_code, shift, false, true);
}

void ToolkitCore::TypeText(std::string_view text) {
  size_t i = 0;
  while (i < text.size()) {
    const char32_t cp = utf8::Next(text, &i);
    if (GetFocus() == nullptr) return;
    SendCharacter(cp);
  }
}

void ToolkitCore::Click(Control& control, float x, float y) {
  if (auto* menu = dynamic_cast<Menu*>(&control)) {
    ClickMenu(*menu);
    return;
  }
  ClickControl(control, x, y);
}

void ToolkitCore::ClickControl(Control& control, float x, float y) {
  MouseDown(control, kLeftButton, 0, x, y);
  MouseUp(control, kLeftButton, 0, x, y);
}

void ToolkitCore::RightClick(Control& control, float x, float y) {
  MouseDown(control, kRightButton, 0, x, y);
  MouseUp(control, kRightButton, 0, x, y);
}

void ToolkitCore::DoubleClick(Control& control) {
  Click(control);
  SendMouse(control, MouseAction::kDoubleClick, kLeftButton, 0, 0, 0);
  MouseUp(control, kLeftButton, 0, 0, 0);
}

void ToolkitCore::MouseDown(Control& control, int16_t button, int16_t shift, float x, float y) {
  SendMouse(control, MouseAction::kDown, button, shift, x, y);
}

void ToolkitCore::MouseUp(Control& control, int16_t button, int16_t shift, float x, float y) {
  SendMouse(control, MouseAction::kUp, button, shift, x, y);
}

void ToolkitCore::MouseMove(Control& control, int16_t button, int16_t shift, float x, float y) {
  SendMouse(control, MouseAction::kMove, button, shift, x, y);
}

void ToolkitCore::ClickMenu(Menu& item) { ClickMenuItem(item); }

void ToolkitCore::Repaint(Control& control) {
  if (control.Kind() == ControlKind::kUserControl || control.Kind() == ControlKind::kForm) {
    Raise(control, &ControlEvents::Paint);
  }
  RepaintView(control);
}

// Dialogs.

void ToolkitCore::RecordDialog(DialogRecord record) { dialogs_.Record(std::move(record)); }

void ToolkitCore::MessageBox(const std::string& title, const std::string& text,
                             MessageBoxStyle style) {
  RecordDialog(MessageBoxRecord(title, text, style));
  if (!AnswersDialogs()) ShowMessageBox(title, text, style);
}

void ToolkitCore::ShowModal(Form& form) {
  WindowState& window = Window(form);
  const std::shared_ptr<Control> keep = form.shared_from_this();
  if (window.unloaded_) {
    throw Failure(kErrInvalidProcedureCall,
                  "Invalid procedure call or argument: form \"" + form.Name() + "\" is unloaded");
  }
  Form* previous = active_form_;
  const std::shared_ptr<Control> keep_previous =
      previous != nullptr ? previous->shared_from_this() : nullptr;
  if (!window.loaded_) {
    window.loaded_ = true;
    Raise(form, &ControlEvents::Load);
  }
  if (window.unloaded_) {
    ActivateForm(previous);
    return;
  }
  window.shown_ = true;
  Node(form).visible_ = true;

  DialogRecord record = ModalFormRecord(form, rules_.TextBoxTexts(form));
  ShowModalWindow(form);
  ActivateForm(&form);
  RecordDialog(std::move(record));
  if (AnswersDialogs()) {
    const std::shared_ptr<Control> ok = rules_.AnswerButtonOf(form);
    if (ok != nullptr) Raise(*ok, &ControlEvents::Click);
  } else {
    RunModalLoop(form);
  }
  if (window.shown_) form.Hide();
  if (previous != nullptr && !Window(*previous).unloaded_) ActivateForm(previous);
}

void ToolkitCore::RunPopupMenu(Menu& menu) {
  const std::shared_ptr<Control> keep = menu.shared_from_this();
  RecordDialog(PopupMenuRecord(menu));
  std::string chosen;
  if (AnswersDialogs()) {
    if (!popup_answer_) return;
    const auto answer = popup_answer_;
    chosen = answer(menu);
  } else {
    chosen = AskPopupMenu(menu);
  }
  ChoosePopupMenuItem(menu, chosen);
}

// Inspection.

namespace {

const RecordingSurface& DrawingLogOf(const Control& control) {
  ControlNode* node = ControlNodeOf(control);
  const RecordingSurface* log = node != nullptr ? node->DrawingLog() : nullptr;
  if (log == nullptr) throw PlatformFailure(kErrNotSupported);
  return *log;
}

UserControlState& UserControlStateOf(const UserControl& control) {
  auto* state = dynamic_cast<UserControlState*>(const_cast<UserControl*>(&control));
  if (state == nullptr) throw PlatformFailure(kErrNotSupported);
  return *state;
}

}  // namespace

const std::vector<DrawOp>& ToolkitCore::DrawOps(const Control& control) const {
  return DrawingLogOf(control).Ops();
}

int32_t ToolkitCore::ClsCount(const Control& control) const {
  return DrawingLogOf(control).ClsCount();
}

const std::vector<std::string>& ToolkitCore::NotifiedProperties(const UserControl& control) const {
  return UserControlStateOf(control).notified_;
}

void ToolkitCore::ClearNotifiedProperties(UserControl& control) {
  UserControlStateOf(control).notified_.clear();
}

}  // namespace tarnsheets
