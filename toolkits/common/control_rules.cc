#include "toolkits/common/control_rules.h"

#include <cmath>

#include "tarnsheets/failure.h"

namespace tarnsheets {

size_t ByteOffset(std::string_view text, int32_t chars) {
  size_t i = 0;
  int32_t n = 0;
  while (i < text.size()) {
    if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) {
      if (n == chars) return i;
      ++n;
    }
    ++i;
  }
  return text.size();
}

int32_t ToPixels(Twips v, Twips per_pixel) {
  return static_cast<int32_t>(std::floor(v / per_pixel + 1e-9));
}

void LogNotifiedProperty(std::vector<std::string>& log, const std::string& key) {
  if (log.size() >= kNotifiedPropertiesKept) {
    log.erase(log.begin(), log.begin() + kNotifiedPropertiesKept / 2);
  }
  log.push_back(key);
}

bool KindHas(ControlKind kind, Capability capability) {
  using K = ControlKind;
  switch (capability) {
    case Capability::kGeometry:
      return kind != K::kMenu;
    case Capability::kTabStop:
      return kind == K::kTextBox || kind == K::kCommandButton || kind == K::kPictureBox ||
             kind == K::kUserControl;
    case Capability::kTabIndex:
      return kind != K::kShape && kind != K::kImage && kind != K::kMenu && kind != K::kForm;
    case Capability::kCaption:
      return kind == K::kLabel || kind == K::kCommandButton || kind == K::kFrame ||
             kind == K::kForm || kind == K::kMenu;
    case Capability::kForeColor:
      return kind != K::kShape && kind != K::kImage && kind != K::kMenu;
    case Capability::kBackColor:
      return kind != K::kImage && kind != K::kMenu;
    case Capability::kFont:
      return kind != K::kShape && kind != K::kImage && kind != K::kMenu;
  }
  return false;
}

DefaultSize DefaultSizeOf(ControlKind kind) {
  switch (kind) {
    case ControlKind::kLabel:
      return {1215, 255};
    case ControlKind::kTextBox:
      return {1215, 285};
    case ControlKind::kCommandButton:
      return {1215, 375};
    case ControlKind::kUserControl:
      return {2400, 1200};
    case ControlKind::kForm:
      return {4800, 3600};
    case ControlKind::kMenu:
      return {0, 0};
    default:
      return {1215, 615};
  }
}

Container& OwnerOfNewControl(Container& parent, bool parent_holds_controls, const std::string& name,
                             int32_t index) {
  if (!parent_holds_controls) {
    throw Failure(kErrInvalidProcedureCall, "Invalid procedure call or argument: \"" +
                                                parent.Name() + "\" cannot hold controls");
  }
  Container* owner =
      (parent.Kind() == ControlKind::kForm || parent.Kind() == ControlKind::kUserControl)
          ? &parent
          : parent.Owner();
  if (owner == nullptr) throw PlatformFailure(kErrInvalidProcedureCall);
  if (owner->FindControl(name, index) != nullptr) {
    throw Failure(kErrObjectAlreadyLoaded,
                  "Object already loaded: \"" + name + "\"" +
                      (index >= 0 ? "(" + std::to_string(index) + ")" : ""));
  }
  return *owner;
}

void CheckNewArrayElement(const Control& element0, int32_t index) {
  const Container* parent = element0.Parent();
  const Container* owner = element0.Owner();
  if (parent == nullptr || owner == nullptr || element0.Kind() == ControlKind::kForm) {
    throw Failure(kErrInvalidProcedureCall, "Invalid procedure call or argument: \"" +
                                                element0.Name() + "\" is not loaded on a form");
  }
  if (index < 0 || index > 32767) throw PlatformFailure(kErrInvalidProcedureCall);
  if (owner->FindControl(element0.Name(), index) != nullptr) {
    throw Failure(kErrObjectAlreadyLoaded, "Object already loaded: \"" + element0.Name() + "\"(" +
                                               std::to_string(index) + ")");
  }
}

bool PictureMatchesSize(const Picture& picture) {
  return picture.width >= 0 && picture.height >= 0 &&
         picture.pixels.size() == static_cast<size_t>(picture.width) * picture.height;
}

void CheckPictureSize(const Picture& picture) {
  if (PictureMatchesSize(picture)) return;
  throw Failure(kErrInvalidProcedureCall,
                "Invalid procedure call or argument: picture \"" + picture.id + "\" has " +
                    std::to_string(picture.pixels.size()) + " pixels for its size " +
                    std::to_string(picture.width) + "x" + std::to_string(picture.height));
}

Form* WindowOf(const Control& control) {
  const Control* c = &control;
  while (c != nullptr && c->Kind() != ControlKind::kForm) c = c->Parent();
  return c == nullptr ? nullptr : dynamic_cast<Form*>(const_cast<Control*>(c));
}

bool IsInside(const Control& parent, const Control& child) {
  for (const Control* c = child.Parent(); c != nullptr; c = c->Parent()) {
    if (c == &parent) return true;
  }
  return false;
}

bool IsUsable(const Control& control) {
  for (const Control* c = &control; c != nullptr && c->Kind() != ControlKind::kForm;
       c = c->Parent()) {
    if (!c->Visible() || !c->Enabled()) return false;
  }
  return true;
}

void ClickOnSpaceRelease(Control& control, int16_t key_code) {
  if (key_code == kKeySpace && control.Kind() == ControlKind::kCommandButton && control.Enabled()) {
    Raise(control, &ControlEvents::Click);
  }
}

void ClickMenuItem(Menu& item) {
  const std::shared_ptr<Control> keep = item.shared_from_this();
  for (const Menu* m = &item; m != nullptr; m = m->ParentMenu()) {
    if (!m->Enabled()) return;
  }
  if (!item.Visible()) return;
  Raise(item, &ControlEvents::Click);
}

}  // namespace tarnsheets
