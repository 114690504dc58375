#include "editors/sf_check.h"

#include <utility>

#include "editors/check_glyphs.h"
#include "editors/editor_element.h"

namespace tarnsheets {

namespace {

template <typename F, typename... Args>
void Raise(const F& callback, Args&... args) {
  if (!callback) return;
  const F copy = callback;
  copy(args...);
}

Picture MakeGlyph(const char* id, const CheckGlyphRows& rows) {
  const CheckGlyphPixels pixels = GlyphPixels(rows);
  Picture picture;
  picture.id = id;
  picture.width = kCheckGlyphWidth;
  picture.height = kCheckGlyphHeight;
  picture.pixels.assign(pixels.begin(), pixels.end());
  return picture;
}

}  // namespace

int32_t NextCheckValue(int32_t value, int32_t edit_mode) {
  switch (value) {
    case 0:
      return 1;
    case 1:
      return edit_mode == 1 ? 2 : 0;
    case 2:
      return 0;
    default:
      return value;
  }
}

const Picture& SFCheck::PictureClip1() {
  static const Picture picture = MakeGlyph("PictureClip1", kPictureClip1);
  return picture;
}

const Picture& SFCheck::PictureClip2() {
  static const Picture picture = MakeGlyph("PictureClip2", kPictureClip2);
  return picture;
}

SFCheck::SFCheck(Toolkit& toolkit, std::shared_ptr<UserControl> host)
    : toolkit_(toolkit), host_(std::move(host)) {}

std::shared_ptr<SFCheck> SFCheck::Attach(Toolkit& toolkit, std::shared_ptr<UserControl> host) {
  std::shared_ptr<SFCheck> control(new SFCheck(toolkit, std::move(host)));
  control->Build();
  // The creation step: the resting border, drawn while Appearance is still 0.
  control->DrawRestingBorder();
  return control;
}

std::shared_ptr<SFCheck> SFCheck::Create(Toolkit& toolkit, Container& parent,
                                         const std::string& name, int32_t index) {
  return CreateEditor<SFCheck>(toolkit, parent, name, index, kSizePixels * toolkit.TwipsPerPixelX(),
                               kSizePixels * toolkit.TwipsPerPixelY());
}

std::shared_ptr<SFCheck> SFCheck::LoadElement(Toolkit& toolkit, const SFCheck& element0,
                                              int32_t index) {
  return LoadEditorElement(toolkit, element0, index);
}

SFCheck::~SFCheck() {
  ControlEvents& e = host_->Events();
  e.EnterFocus = nullptr;
  e.ExitFocus = nullptr;
  e.MouseDown = nullptr;
  e.MouseUp = nullptr;
  e.Click = nullptr;
  e.KeyDown = nullptr;
  e.KeyPress = nullptr;
  e.KeyUp = nullptr;
  e.Resize = nullptr;
  e.Paint = nullptr;
}

// The control as designed: it takes the focus itself, on the window background.
void SFCheck::Build() {
  host_->SetCanGetFocus(true);
  host_->SetBackColor(kRestingBackColor);
  ControlEvents& e = host_->Events();
  e.EnterFocus = [this] { DrawFocusBorder(); };
  e.ExitFocus = [this] { DrawRestingBorder(); };
  e.MouseDown = [this](int16_t& button, int16_t& shift, float& x, float& y) {
    UserControl_MouseDown(button, shift, x, y);
  };
  e.MouseUp = [this](int16_t& button, int16_t& shift, float& x, float& y) {
    UserControl_MouseUp(button, shift, x, y);
  };
  e.Click = [this] { UserControl_Click(); };
  e.KeyDown = [this](int16_t& key_code, int16_t& shift) { UserControl_KeyDown(key_code, shift); };
  e.KeyUp = [this](int16_t& key_code, int16_t& shift) { UserControl_KeyUp(key_code, shift); };
  e.KeyPress = [this](int16_t& key_ascii) { UserControl_KeyPress(key_ascii); };
  e.Resize = [this] { UserControl_Resize(); };
  e.Paint = [this] { UserControl_Paint(); };
}

void SFCheck::InitProperties() {
  appearance_ = 1;
  value_ = 0;
  edit_mode_ = 0;
  border_color_ = kDefaultBorderColor;
  locked_ = false;
}

// ---------------------------------------------------------------------------------------------
// Properties

void SFCheck::SetLocked(bool v) {
  locked_ = v;
  Notify("Locked");
}

void SFCheck::SetBorderColor(Color v) {
  border_color_ = v;
  Notify("BorderColor");
}

void SFCheck::SetEditMode(int32_t v) {
  edit_mode_ = v;
  Notify("EditMode");
}

void SFCheck::SetValue(int32_t v) {
  value_ = v;
  DrawValue();
  Notify("Value");
}

void SFCheck::SetAppearance(int32_t v) {
  appearance_ = v;
  DrawRestingBorder();
  Notify("Appearance");
}

bool SFCheck::Enabled() const { return host_->Enabled(); }

void SFCheck::SetEnabled(bool v) {
  host_->SetEnabled(v);
  Notify("Enabled");
}

// ---------------------------------------------------------------------------------------------
// Value and drawing

void SFCheck::ToggleValue() {
  if (locked_) return;
  SetValue(NextCheckValue(value_, edit_mode_));
  Raise(events_.Click);
}

void SFCheck::DrawValue() {
  switch (value_) {
    case 0:
      FillInside();
      break;
    case 1:
      PaintGlyph(PictureClip1());
      break;
    case 2:
      if (edit_mode_ == 1) {
        PaintGlyph(PictureClip2());
      } else {
        FillInside();
      }
      break;
    default:
      break;  // stored, not drawn
  }
}

void SFCheck::FillInside() {
  const Twips tx = toolkit_.TwipsPerPixelX();
  const Twips ty = toolkit_.TwipsPerPixelY();
  host_->Drawing().Box(tx, ty, host_->Width() - tx, host_->Height() - ty, host_->BackColor());
}

void SFCheck::PaintGlyph(const Picture& picture) {
  const Twips left = (host_->Width() - picture.width * toolkit_.TwipsPerPixelX()) / 2;
  const Twips top = (host_->Height() - picture.height * toolkit_.TwipsPerPixelY()) / 2;
  host_->Drawing().PaintPicture(picture, left, top);
}

void SFCheck::DrawFocusBorder() {
  Surface& s = host_->Drawing();
  const Twips right = host_->Width() - toolkit_.TwipsPerPixelX();
  const Twips bottom = host_->Height() - toolkit_.TwipsPerPixelY();
  s.Line(0, 0, right, 0, border_color_);            // top
  s.Line(right, 0, right, bottom, border_color_);   // right
  s.Line(0, bottom, right, bottom, border_color_);  // bottom
  s.Line(0, 0, 0, bottom, border_color_);           // left
}

void SFCheck::DrawRestingBorder() {
  Surface& s = host_->Drawing();
  const Twips right = host_->Width() - toolkit_.TwipsPerPixelX();
  const Twips bottom = host_->Height() - toolkit_.TwipsPerPixelY();
  Color top_left;
  Color right_bottom;
  if (appearance_ == 1) {
    top_left = kSunkenDark;
    right_bottom = kSunkenLight;
  } else {
    top_left = host_->BackColor();
    right_bottom = top_left;
  }
  s.Line(0, 0, right, 0, top_left);                // top
  s.Line(0, 0, 0, bottom, top_left);               // left
  s.Line(right, 0, right, bottom, right_bottom);   // right
  s.Line(0, bottom, right, bottom, right_bottom);  // bottom
}

// ---------------------------------------------------------------------------------------------
// Handlers. Setting the back colour clears the drawing, so each handler that sets it draws the
// border again; the glyph comes back only with the next Value or Resize.

void SFCheck::UserControl_MouseDown(int16_t& button, int16_t& shift, float& x, float& y) {
  Raise(events_.MouseDown, button, shift, x, y);
  host_->SetBackColor(kPressedBackColor);
  DrawFocusBorder();
}

void SFCheck::UserControl_MouseUp(int16_t& button, int16_t& shift, float& x, float& y) {
  Raise(events_.MouseUp, button, shift, x, y);
}

void SFCheck::UserControl_Click() {
  host_->SetBackColor(kRestingBackColor);
  DrawFocusBorder();
  ToggleValue();
}

void SFCheck::UserControl_KeyDown(int16_t& key_code, int16_t& shift) {
  Raise(events_.KeyDown, key_code, shift);
  if (key_code == kKeySpace) host_->SetBackColor(kPressedBackColor);
  DrawFocusBorder();
}

void SFCheck::UserControl_KeyUp(int16_t& key_code, int16_t& shift) {
  Raise(events_.KeyUp, key_code, shift);
  if (key_code == kKeySpace) {
    host_->SetBackColor(kRestingBackColor);
    ToggleValue();
  }
  DrawFocusBorder();
}

void SFCheck::UserControl_KeyPress(int16_t& key_ascii) { Raise(events_.KeyPress, key_ascii); }

void SFCheck::UserControl_Resize() {
  host_->Drawing().Cls();
  DrawRestingBorder();
  DrawValue();
}

// Whatever size the form asks for, the control takes 13 by 13 pixels when it is drawn.
void SFCheck::UserControl_Paint() {
  host_->SetWidth(kSizePixels * toolkit_.TwipsPerPixelX());
  host_->SetHeight(kSizePixels * toolkit_.TwipsPerPixelY());
}

// ---------------------------------------------------------------------------------------------
// Persistence

void SFCheck::ReadProperties(const PropertyBag& bag) {
  appearance_ = bag.ReadLong("Appearance", 1);
  value_ = bag.ReadLong("Value", 0);
  edit_mode_ = bag.ReadLong("EditMode", 0);
  border_color_ = bag.ReadColor("BorderColor", kDefaultBorderColor);
  locked_ = bag.ReadBool("Locked", false);
  DrawValue();
  DrawRestingBorder();
  host_->SetEnabled(bag.ReadBool("Enabled", true));
}

void SFCheck::WriteProperties(PropertyBag& bag) const {
  bag.WriteProperty("Value", Variant(value_), Variant(int32_t{0}));
  bag.WriteProperty("Appearance", Variant(appearance_), Variant(int32_t{1}));
  bag.WriteProperty("EditMode", Variant(edit_mode_), Variant(int32_t{0}));
  bag.WriteProperty("Enabled", Variant(host_->Enabled()), Variant(true));
  bag.WriteColor("BorderColor", border_color_, kDefaultBorderColor);
  bag.WriteProperty("Locked", Variant(locked_), Variant(false));
}

}  // namespace tarnsheets
