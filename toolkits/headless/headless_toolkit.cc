#include "toolkits/headless/headless_toolkit.h"

#include <algorithm>
#include <cmath>

#include "tarnsheets/failure.h"
#include "toolkits/common/control_rules.h"
#include "toolkits/headless/headless_controls.h"

namespace tarnsheets {
HeadlessToolkit::HeadlessToolkit() = default;

HeadlessToolkit::~HeadlessToolkit() {
  // Forms may outlive the toolkit through shared references; they must not call back.
  for (auto& form : forms_) {
    if (HNode* node = NodeOf(*form)) node->Detach();
  }
}

HNode& HeadlessToolkit::Node(const Control& control) const {
  HNode* node = NodeOf(control);
  if (node == nullptr || node->toolkit_ != this) {
    throw Failure(kErrInvalidProcedureCall, "Invalid procedure call or argument: control \"" +
                                                control.Name() +
                                                "\" does not belong to this toolkit");
  }
  return *node;
}

HForm* HeadlessToolkit::FormOf(const Control& control) const {
  const Control* c = &control;
  while (c != nullptr && c->Kind() != ControlKind::kForm) c = c->Parent();
  return c == nullptr ? nullptr : dynamic_cast<HForm*>(const_cast<Control*>(c));
}

void HeadlessToolkit::SetTwipsPerPixel(Twips x, Twips y) {
  if (!(x > 0) || !(y > 0)) throw PlatformFailure(kErrInvalidProcedureCall);
  tppx_ = x;
  tppy_ = y;
}

SheetRect HeadlessToolkit::WindowRect(const Control& control) const {
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

Color HeadlessToolkit::ResolveColor(Color color) const {
  if (!IsSystemColor(color)) return color;
  switch (color & 0xFF) {
    case 0x05:
      return Rgb(255, 255, 255);
    case 0x08:
      return Rgb(0, 0, 0);
    case 0x0A:
      return Rgb(180, 180, 180);
    case 0x0D:
      return Rgb(0, 120, 215);
    case 0x0E:
      return Rgb(255, 255, 255);
    case 0x0F:
      return Rgb(240, 240, 240);
    case 0x10:
      return Rgb(160, 160, 160);
    case 0x12:
      return Rgb(0, 0, 0);
    case 0x14:
      return Rgb(255, 255, 255);
    default:
      return 0;
  }
}

Control* HeadlessToolkit::GetFocus() const {
  return active_form_ == nullptr ? nullptr : active_form_->focus_.focused.get();
}

bool HeadlessToolkit::IsChild(const Control& parent, const Control& child) const {
  return IsInside(parent, child);
}

Form* HeadlessToolkit::ActiveForm() const { return active_form_; }

void HeadlessToolkit::ActivateForm(HForm* form) { active_form_ = form; }

// Creation.

template <typename T>
std::shared_ptr<T> HeadlessToolkit::Adopt(Container& parent, std::shared_ptr<T> control) {
  HNode& parent_node = Node(parent);
  HNode& node = *NodeOf(*control);
  Container& owner = OwnerOfNewControl(parent, parent_node.IsContainer() && parent_node.attached_,
                                       node.name_, node.index_);
  HNode& owner_node = Node(owner);
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
  return control;
}

std::shared_ptr<Form> HeadlessToolkit::CreateForm(const std::string& name) {
  auto form = std::make_shared<HForm>(this, ControlKind::kForm, "", name, -1);
  const DefaultSize size = DefaultSizeOf(ControlKind::kForm);
  form->width_ = size.width;
  form->height_ = size.height;
  form->visible_ = false;
  forms_.push_back(form);
  return form;
}

std::shared_ptr<Label> HeadlessToolkit::CreateLabel(Container& parent, const std::string& name,
                                                    int32_t index) {
  return Adopt(parent, std::make_shared<HLabel>(this, ControlKind::kLabel, "", name, index));
}

std::shared_ptr<TextBox> HeadlessToolkit::CreateTextBox(Container& parent, const std::string& name,
                                                        int32_t index, bool multi_line) {
  return Adopt(parent, std::make_shared<HTextBox>(this, name, index, multi_line));
}

std::shared_ptr<CommandButton> HeadlessToolkit::CreateCommandButton(Container& parent,
                                                                    const std::string& name,
                                                                    int32_t index) {
  return Adopt(
      parent, std::make_shared<HCommandButton>(this, ControlKind::kCommandButton, "", name, index));
}

std::shared_ptr<PictureBox> HeadlessToolkit::CreatePictureBox(Container& parent,
                                                              const std::string& name,
                                                              int32_t index) {
  return Adopt(parent,
               std::make_shared<HPictureBox>(this, ControlKind::kPictureBox, "", name, index));
}

std::shared_ptr<Shape> HeadlessToolkit::CreateShape(Container& parent, const std::string& name,
                                                    int32_t index) {
  return Adopt(parent, std::make_shared<HShape>(this, ControlKind::kShape, "", name, index));
}

std::shared_ptr<Frame> HeadlessToolkit::CreateFrame(Container& parent, const std::string& name,
                                                    int32_t index) {
  return Adopt(parent, std::make_shared<HFrame>(this, ControlKind::kFrame, "", name, index));
}

std::shared_ptr<Image> HeadlessToolkit::CreateImage(Container& parent, const std::string& name,
                                                    int32_t index) {
  return Adopt(parent, std::make_shared<HImage>(this, ControlKind::kImage, "", name, index));
}

std::shared_ptr<Menu> HeadlessToolkit::CreateMenu(Container& owner, Menu* parent_menu,
                                                  const std::string& name, int32_t index) {
  if (owner.Kind() != ControlKind::kForm && owner.Kind() != ControlKind::kUserControl) {
    throw Failure(kErrInvalidProcedureCall, "Invalid procedure call or argument: menu \"" + name +
                                                "\" needs a form or user control");
  }
  auto menu = std::make_shared<HMenu>(this, ControlKind::kMenu, "", name, index);
  if (parent_menu == nullptr) return Adopt(owner, menu);
  auto* parent = dynamic_cast<HMenu*>(parent_menu);
  if (parent == nullptr || parent->Owner() != &owner)
    throw PlatformFailure(kErrInvalidProcedureCall);
  if (owner.FindControl(name, index) != nullptr) throw PlatformFailure(kErrObjectAlreadyLoaded);
  menu->parent_ = &owner;
  menu->owner_ = &owner;
  menu->parent_menu_ = parent;
  parent->items_.push_back(menu);
  Node(owner).collection_.push_back(menu);
  return menu;
}

std::shared_ptr<UserControl> HeadlessToolkit::CreateUserControl(Container& parent,
                                                                const std::string& class_name,
                                                                const std::string& name,
                                                                int32_t index) {
  return Adopt(parent, std::make_shared<HUserControl>(this, ControlKind::kUserControl, class_name,
                                                      name, index));
}

std::shared_ptr<Control> HeadlessToolkit::LoadControl(const Control& element0, int32_t index) {
  const HNode& t = Node(element0);
  Container* parent = element0.Parent();
  Container* owner = element0.Owner();
  CheckNewArrayElement(element0, index);
  std::shared_ptr<Control> made;
  switch (t.kind_) {
    case ControlKind::kLabel: {
      auto& s = dynamic_cast<const HLabel&>(element0);
      auto c = CreateLabel(*parent, t.name_, index);
      c->SetAlignment(s.alignment_);
      c->SetBackStyle(s.back_style_);
      c->SetWordWrap(s.word_wrap_);
      made = c;
      break;
    }
    case ControlKind::kTextBox: {
      auto& s = dynamic_cast<const HTextBox&>(element0);
      auto c = std::dynamic_pointer_cast<HTextBox>(
          CreateTextBox(*parent, t.name_, index, s.multi_line_));
      c->text_ = s.text_;
      c->locked_ = s.locked_;
      c->password_char_ = s.password_char_;
      c->alignment_ = s.alignment_;
      c->border_style_ = s.border_style_;
      c->scroll_bar_ = s.scroll_bar_;
      made = c;
      break;
    }
    case ControlKind::kCommandButton: {
      auto& s = dynamic_cast<const HCommandButton&>(element0);
      auto c = CreateCommandButton(*parent, t.name_, index);
      c->SetPicture(s.picture_);
      made = c;
      break;
    }
    case ControlKind::kPictureBox: {
      auto& s = dynamic_cast<const HPictureBox&>(element0);
      auto c = CreatePictureBox(*parent, t.name_, index);
      c->SetPicture(s.picture_);
      c->SetBorderStyle(s.border_style_);
      made = c;
      break;
    }
    case ControlKind::kShape: {
      auto& s = dynamic_cast<const HShape&>(element0);
      auto c = std::dynamic_pointer_cast<HShape>(CreateShape(*parent, t.name_, index));
      c->border_color_ = s.border_color_;
      c->border_width_ = s.border_width_;
      c->back_style_ = s.back_style_;
      c->fill_style_ = s.fill_style_;
      c->fill_color_ = s.fill_color_;
      made = c;
      break;
    }
    case ControlKind::kFrame: {
      auto& s = dynamic_cast<const HFrame&>(element0);
      auto c = CreateFrame(*parent, t.name_, index);
      c->SetBorderStyle(s.border_style_);
      made = c;
      break;
    }
    case ControlKind::kImage: {
      auto& s = dynamic_cast<const HImage&>(element0);
      auto c = CreateImage(*parent, t.name_, index);
      c->SetPicture(s.picture_);
      c->SetStretch(s.stretch_);
      made = c;
      break;
    }
    case ControlKind::kMenu: {
      auto& s = dynamic_cast<const HMenu&>(element0);
      auto c = CreateMenu(*owner, s.parent_menu_, t.name_, index);
      c->SetChecked(s.checked_);
      made = c;
      break;
    }
    case ControlKind::kUserControl: {
      auto& s = dynamic_cast<const HUserControl&>(element0);
      auto c = CreateUserControl(*parent, t.class_name_, t.name_, index);
      c->SetCanGetFocus(s.can_get_focus_);
      made = c;
      break;
    }
    case ControlKind::kForm:
      break;
  }
  HNode& n = Node(*made);
  CopyElementProperties(t, &n);
  return made;
}

void HeadlessToolkit::Unload(Control& control) {
  HNode& node = Node(control);
  const std::shared_ptr<Control> keep = control.shared_from_this();
  if (node.kind_ == ControlKind::kForm) {
    auto& form = dynamic_cast<HForm&>(control);
    if (form.unloaded_) return;
    if (form.loaded_) Raise(form, &ControlEvents::Unload);
    form.Hide();
    form.unloaded_ = true;
    form.focus_.focused.reset();
    node.Detach();
    std::erase(forms_, keep);
    return;
  }
  if (!node.attached_) return;
  if (HForm* form = FormOf(control)) rules_.LeaveUnloading(*form, control);
  if (node.kind_ == ControlKind::kMenu) {
    auto& menu = dynamic_cast<HMenu&>(control);
    if (auto* parent_menu = dynamic_cast<HMenu*>(menu.parent_menu_)) {
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

bool HeadlessToolkit::CanTakeFocus(const Control& control) const {
  return rules_.CanTakeFocus(control);
}

std::vector<Control*> HeadlessToolkit::TabOrder(Form& form) { return rules_.TabOrder(form); }

void HeadlessToolkit::SetFocusTo(Control& control) {
  Node(control);
  HForm* form = FormOf(control);
  if (form == nullptr || form->unloaded_) throw PlatformFailure(kErrInvalidProcedureCall);
  if (&control == form) {
    ActivateForm(form);
    return;
  }
  Control* target = rules_.FocusTargetOf(control);
  if (target == nullptr) throw PlatformFailure(kErrInvalidProcedureCall);
  ActivateForm(form);
  rules_.MoveFocus(*form, target, true);
}

bool HeadlessToolkit::IsLoaded(const Control& control) const { return Node(control).attached_; }

const std::vector<std::shared_ptr<Control>>& HeadlessToolkit::ChildrenOf(
    const Control& container) const {
  return Node(container).children_;
}

int32_t HeadlessToolkit::TabIndexOf(const Control& control) const {
  return Node(control).tab_index_;
}

bool HeadlessToolkit::TabStopOf(const Control& control) const { return Node(control).tab_stop_; }

FocusMarks& HeadlessToolkit::MarksOf(const Control& control) { return Node(control).focus_marks_; }

WindowFocus& HeadlessToolkit::FocusOf(Form& form) {
  Node(form);
  return dynamic_cast<HForm&>(form).focus_;
}

bool HeadlessToolkit::FocusOutside() {
  HForm* form = active_form_;
  if (form == nullptr) return true;
  if (!rules_.MoveFocus(*form, nullptr, true)) return false;
  if (active_form_ == form && form->focus_.focused == nullptr) active_form_ = nullptr;
  return true;
}

// Keys and mouse.

void HeadlessToolkit::PressKey(int16_t key_code, int16_t shift) {
  Control* focus = GetFocus();
  if (focus == nullptr) return;
  if (key_code == kKeyTab) {
    rules_.Tab(*active_form_, (shift & kShiftMask) != 0);
    return;
  }
  HandleKey(*focus, key_code, shift, true);
}

void HeadlessToolkit::KeyDownOnly(int16_t key_code, int16_t shift) {
  Control* focus = GetFocus();
  if (focus == nullptr || key_code == kKeyTab) return;
  HandleKey(*focus, key_code, shift, false);
}

void HeadlessToolkit::KeyUpOnly(int16_t key_code, int16_t shift) {
  Control* focus = GetFocus();
  if (focus == nullptr) return;
  const std::shared_ptr<Control> keep = focus->shared_from_this();
  int16_t code = key_code, sh = shift;
  Raise(*focus, &ControlEvents::KeyUp, code, sh);
  ClickOnSpaceRelease(*focus, code);
}

void HeadlessToolkit::HandleKey(Control& focus, int16_t key_code, int16_t shift, bool with_up) {
  const std::shared_ptr<Control> keep = focus.shared_from_this();
  int16_t code = key_code, sh = shift;
  Raise(focus, &ControlEvents::KeyDown, code, sh);
  auto* box = dynamic_cast<HTextBox*>(&focus);
  const std::shared_ptr<Control> default_button =
      code == kKeyReturn ? rules_.DefaultButtonFor(focus) : nullptr;
  if (default_button != nullptr) {
    Raise(*default_button, &ControlEvents::Click);
  } else if (code == kKeyBack || code == kKeyReturn || code == kKeyEscape || code == kKeySpace) {
    int16_t ascii = code;
    Raise(focus, &ControlEvents::KeyPress, ascii);
    if (box != nullptr) box->TypeCharacter(static_cast<uint16_t>(ascii));
  } else if (box != nullptr && code == kKeyDelete) {
    box->DeleteForward();
  } else if (box != nullptr &&
             (code == kKeyLeft || code == kKeyRight || code == kKeyHome || code == kKeyEnd)) {
    box->MoveCaret(code, (sh & kShiftMask) != 0);
  }
  if (with_up) {
    int16_t up = key_code, up_shift = shift;
    Raise(focus, &ControlEvents::KeyUp, up, up_shift);
    ClickOnSpaceRelease(focus, up);
  }
}

void HeadlessToolkit::TypeText(std::string_view utf8) {
  size_t i = 0;
  while (i < utf8.size()) {
    const uint32_t cp = NextCodePoint(utf8, &i);
    Control* focus = GetFocus();
    if (focus == nullptr) return;
    const std::shared_ptr<Control> keep = focus->shared_from_this();
    int16_t code = 0;
    if (cp >= 'a' && cp <= 'z') {
      code = static_cast<int16_t>(cp - 'a' + 'A');
    } else if ((cp >= 'A' && cp <= 'Z') || (cp >= '0' && cp <= '9') || cp == ' ') {
      code = static_cast<int16_t>(cp);
    }
    int16_t shift = 0, down = code;
    Raise(*focus, &ControlEvents::KeyDown, down, shift);
    uint32_t typed = cp;
    if (cp <= 0xFFFF) {
      int16_t ascii = static_cast<int16_t>(static_cast<uint16_t>(cp));
      Raise(*focus, &ControlEvents::KeyPress, ascii);
      typed = static_cast<uint16_t>(ascii);
    }
    if (auto* box = dynamic_cast<HTextBox*>(focus)) box->TypeCharacter(typed);
    int16_t up = code, up_shift = 0;
    Raise(*focus, &ControlEvents::KeyUp, up, up_shift);
    ClickOnSpaceRelease(*focus, up);
  }
}

void HeadlessToolkit::MouseDown(Control& control, int16_t button, int16_t shift, float x, float y) {
  const std::shared_ptr<Control> keep = control.shared_from_this();
  if (control.Kind() == ControlKind::kMenu) return;
  if (!IsUsable(control)) return;
  const bool take = rules_.TakesFocusOnPress(control, button);
  if (take) {
    HForm* form = FormOf(control);
    if (form == nullptr) return;
    ActivateForm(form);
    if (form->focus_.focused.get() != &control && !rules_.MoveFocus(*form, &control, true)) return;
  }
  int16_t b = button, s = shift;
  float fx = x, fy = y;
  Raise(control, &ControlEvents::MouseDown, b, s, fx, fy);
}

void HeadlessToolkit::MouseUp(Control& control, int16_t button, int16_t shift, float x, float y) {
  if (control.Kind() == ControlKind::kMenu || !control.Enabled()) return;
  int16_t b = button, s = shift;
  float fx = x, fy = y;
  Raise(control, &ControlEvents::MouseUp, b, s, fx, fy);
}

void HeadlessToolkit::MouseMove(Control& control, int16_t button, int16_t shift, float x, float y) {
  if (control.Kind() == ControlKind::kMenu || !control.Enabled()) return;
  int16_t b = button, s = shift;
  float fx = x, fy = y;
  Raise(control, &ControlEvents::MouseMove, b, s, fx, fy);
}

void HeadlessToolkit::Click(Control& control, float x, float y) {
  const std::shared_ptr<Control> keep = control.shared_from_this();
  if (auto* menu = dynamic_cast<Menu*>(&control)) {
    ClickMenu(*menu);
    return;
  }
  HForm* form = FormOf(control);
  const int64_t before = form != nullptr ? form->focus_.generation : 0;
  const Control* focus_before = form != nullptr ? form->focus_.focused.get() : nullptr;
  MouseDown(control, kLeftButton, 0, x, y);
  // A focus move that Validate refused swallows the click.
  const bool wanted_focus = control.Kind() == ControlKind::kTextBox ||
                            control.Kind() == ControlKind::kCommandButton ||
                            control.Kind() == ControlKind::kPictureBox;
  if (wanted_focus && form != nullptr && focus_before != &control &&
      form->focus_.generation == before) {
    return;
  }
  if (!IsUsable(control)) return;
  MouseUp(control, kLeftButton, 0, x, y);
  Raise(control, &ControlEvents::Click);
}

void HeadlessToolkit::RightClick(Control& control, float x, float y) {
  MouseDown(control, kRightButton, 0, x, y);
  MouseUp(control, kRightButton, 0, x, y);
}

void HeadlessToolkit::DoubleClick(Control& control) {
  Click(control);
  if (!control.Enabled()) return;
  Raise(control, &ControlEvents::DblClick);
  MouseUp(control, kLeftButton, 0, 0, 0);
}

void HeadlessToolkit::ClickMenu(Menu& item) { ClickMenuItem(item); }

void HeadlessToolkit::Repaint(Control& control) {
  if (control.Kind() == ControlKind::kUserControl || control.Kind() == ControlKind::kForm) {
    Raise(control, &ControlEvents::Paint);
  }
}

// Dialogs.

void HeadlessToolkit::RecordDialog(DialogRecord record) { dialogs_.Record(std::move(record)); }

void HeadlessToolkit::MessageBox(const std::string& title, const std::string& text,
                                 MessageBoxStyle style) {
  RecordDialog(MessageBoxRecord(title, text, style));
}

void HeadlessToolkit::ShowModal(Form& form_in) {
  auto& form = dynamic_cast<HForm&>(form_in);
  const std::shared_ptr<Control> keep = form.shared_from_this();
  if (form.unloaded_) {
    throw Failure(kErrInvalidProcedureCall,
                  "Invalid procedure call or argument: form \"" + form.name_ + "\" is unloaded");
  }
  HForm* previous = active_form_;
  if (!form.loaded_) {
    form.loaded_ = true;
    Raise(form, &ControlEvents::Load);
  }
  if (form.unloaded_) {
    ActivateForm(previous);
    return;
  }
  form.shown_ = true;
  form.visible_ = true;
  ActivateForm(&form);

  RecordDialog(ModalFormRecord(form, rules_.TextBoxTexts(form)));

  // Answered OK: the default button, else the first visible, enabled button in tab order.
  const std::shared_ptr<Control> ok = rules_.AnswerButtonOf(form);
  if (ok != nullptr) Raise(*ok, &ControlEvents::Click);
  if (form.shown_) form.Hide();
  if (previous != nullptr && !previous->unloaded_) ActivateForm(previous);
}

void HeadlessToolkit::RunPopupMenu(Menu& menu) {
  const std::shared_ptr<Control> keep = menu.shared_from_this();
  RecordDialog(PopupMenuRecord(menu));
  if (!popup_answer_) return;
  const auto answer = popup_answer_;
  ChoosePopupMenuItem(menu, answer(menu));
}

// Inspection.

namespace {
const HSurface* SurfaceOf(const Control& control) {
  if (const auto* uc = dynamic_cast<const HUserControl*>(&control)) return &uc->surface_;
  if (const auto* pic = dynamic_cast<const HPictureBox*>(&control)) return &pic->surface_;
  throw PlatformFailure(kErrNotSupported);
}
}  // namespace

const std::vector<DrawOp>& HeadlessToolkit::DrawOps(const Control& control) const {
  return SurfaceOf(control)->Ops();
}

int32_t HeadlessToolkit::ClsCount(const Control& control) const {
  return SurfaceOf(control)->ClsCount();
}

std::vector<Color> HeadlessToolkit::RenderPixels(const Control& control, int32_t* width,
                                                 int32_t* height) const {
  const HSurface* surface = SurfaceOf(control);
  const int32_t w = std::max(0, static_cast<int32_t>(std::lround(control.Width() / tppx_)));
  const int32_t h = std::max(0, static_cast<int32_t>(std::lround(control.Height() / tppy_)));
  std::vector<Color> pixels(static_cast<size_t>(w) * h, ResolveColor(control.BackColor()));
  auto put = [&](int32_t x, int32_t y, Color c) {
    if (x >= 0 && y >= 0 && x < w && y < h) pixels[static_cast<size_t>(y) * w + x] = c;
  };
  for (const DrawOp& op : surface->Ops()) {
    const int32_t x1 = ToPixels(op.x1, tppx_), y1 = ToPixels(op.y1, tppy_);
    switch (op.kind) {
      case DrawOp::Kind::kLine: {
        // Bresenham from the first point towards the second, the second not drawn.
        const int32_t x2 = ToPixels(op.x2, tppx_), y2 = ToPixels(op.y2, tppy_);
        const Color c = ResolveColor(op.color);
        ForEachLinePixel(x1, y1, x2, y2, [&](int32_t x, int32_t y) { put(x, y, c); });
        break;
      }
      case DrawOp::Kind::kBox: {
        const int32_t x2 = ToPixels(op.x2, tppx_), y2 = ToPixels(op.y2, tppy_);
        const Color c = ResolveColor(op.color);
        for (int32_t y = std::min(y1, y2); y <= std::max(y1, y2); ++y) {
          for (int32_t x = std::min(x1, x2); x <= std::max(x1, x2); ++x) put(x, y, c);
        }
        break;
      }
      case DrawOp::Kind::kPicture:
        for (int32_t y = 0; y < op.picture.height; ++y) {
          for (int32_t x = 0; x < op.picture.width; ++x) {
            put(x1 + x, y1 + y, op.picture.PixelAt(x, y));
          }
        }
        break;
    }
  }
  if (width != nullptr) *width = w;
  if (height != nullptr) *height = h;
  return pixels;
}

const std::vector<std::string>& HeadlessToolkit::NotifiedProperties(
    const UserControl& control) const {
  const auto* uc = dynamic_cast<const HUserControl*>(&control);
  if (uc == nullptr) throw PlatformFailure(kErrNotSupported);
  return uc->notified_;
}

void HeadlessToolkit::ClearNotifiedProperties(UserControl& control) {
  auto* uc = dynamic_cast<HUserControl*>(&control);
  if (uc == nullptr) throw PlatformFailure(kErrNotSupported);
  uc->notified_.clear();
}

}  // namespace tarnsheets
