#include "editors/sf_text.h"

#include <utility>

#include "editors/editor_element.h"
#include "tarnsheets/failure.h"
#include "tarnsheets/variant.h"

namespace tarnsheets {

namespace {

// Calls a copy of the callback, so that a listener may replace the callbacks while it runs.
template <typename F, typename... Args>
void Raise(const F& callback, Args&... args) {
  if (!callback) return;
  const F copy = callback;
  copy(args...);
}

// Twips per pixel as a whole number, rounded as the platform converts to a 32-bit integer.
int32_t WholeTwips(Twips value) { return Variant(value).ToLong(); }

}  // namespace

SFText::SFText(Toolkit& toolkit, std::shared_ptr<UserControl> host)
    : toolkit_(toolkit), host_(std::move(host)) {}

std::shared_ptr<SFText> SFText::Attach(Toolkit& toolkit, std::shared_ptr<UserControl> host) {
  std::shared_ptr<SFText> control(new SFText(toolkit, std::move(host)));
  control->Build();
  control->Initialize();
  return control;
}

std::shared_ptr<SFText> SFText::Create(Toolkit& toolkit, Container& parent, const std::string& name,
                                       int32_t index) {
  return CreateEditor<SFText>(toolkit, parent, name, index, kDesignedWidth, kDesignedHeight);
}

std::shared_ptr<SFText> SFText::LoadElement(Toolkit& toolkit, const SFText& element0,
                                            int32_t index) {
  return LoadEditorElement(toolkit, element0, index);
}

SFText::~SFText() {
  ControlEvents& events = host_->Events();
  events.EnterFocus = nullptr;
  events.ExitFocus = nullptr;
  events.Resize = nullptr;
  events.Paint = nullptr;
  for (const std::shared_ptr<TextBox>& box : txt_text_.Elements()) box->Events() = ControlEvents{};
}

// The two constituent boxes as the control is designed: no border of their own, no tab stops,
// the design text, tab indices equal to their array indices. Resize places them.
void SFText::Build() {
  for (int32_t index = 0; index <= 1; ++index) {
    std::shared_ptr<TextBox> box =
        toolkit_.CreateTextBox(*host_, "Txt_Text", index, /*multi_line=*/index == 1);
    box->SetBorderStyle(0);
    box->SetTabStop(false);
    box->SetTabIndex(index);
    box->SetText(kDesignText);
    txt_text_.Add(index, box);
    WireBox(*box);
  }
  ControlEvents& events = host_->Events();
  events.Resize = [this] { UserControl_Resize(); };
  events.Paint = [this] { DrawBorder(); };
  events.EnterFocus = [this] { UserControl_EnterFocus(); };
  events.ExitFocus = [this] { UserControl_ExitFocus(); };
}

// Events of either box pass on alike; the owner cannot tell the boxes apart.
void SFText::WireBox(TextBox& box) {
  const int32_t index = box.Index();
  ControlEvents& e = box.Events();
  e.Click = [this] { Raise(events_.Click); };
  e.DblClick = [this] { Raise(events_.DblClick); };
  e.Change = [this] { Raise(events_.Change); };
  e.KeyDown = [this](int16_t& key_code, int16_t& shift) {
    Raise(events_.KeyDown, key_code, shift);
  };
  e.KeyPress = [this](int16_t& key_ascii) { Raise(events_.KeyPress, key_ascii); };
  e.KeyUp = [this](int16_t& key_code, int16_t& shift) { Raise(events_.KeyUp, key_code, shift); };
  e.MouseDown = [this](int16_t& button, int16_t& shift, float& x, float& y) {
    Raise(events_.MouseDown, button, shift, x, y);
  };
  e.MouseMove = [this](int16_t& button, int16_t& shift, float& x, float& y) {
    Raise(events_.MouseMove, button, shift, x, y);
  };
  e.MouseUp = [this](int16_t& button, int16_t& shift, float& x, float& y) {
    Raise(events_.MouseUp, button, shift, x, y);
  };
  e.GotFocus = [this, index] { Txt_Text_GotFocus(index); };
  e.LostFocus = [this, index] { Txt_Text_LostFocus(index); };
}

// The creation step: no focus yet, and the border of a control without it.
void SFText::Initialize() {
  has_focus_ = false;
  DrawBorder();
}

void SFText::InitProperties() {
  appearance_ = 1;
  style_ = 0;
  border_color_ = kDefaultBorderColor;
  txt_text_(0).SetVisible(false);
  txt_text_(1).SetVisible(false);
  txt_text_(active_box_).SetVisible(true);
}

// ---------------------------------------------------------------------------------------------
// Properties

uintptr_t SFText::hwnd() const { return VisibleBox().Handle(); }

void SFText::SetBorderColor(Color v) {
  border_color_ = v;
  Notify("BorderColor");
}

void SFText::SetStyle(int32_t s) {
  // Both indices are style values: a Style of 2 on either side fails here, before any change.
  TextBox& new_box = txt_text_(s);
  TextBox& old_box = txt_text_(style_);
  new_box.SetText(old_box.Text());
  style_ = s;
  Notify("Style");
  ShowBoxForStyle(s);
}

void SFText::ShowBoxForStyle(int32_t style) {
  switch (style) {
    case 0:
      active_box_ = 0;
      txt_text_(0).SetVisible(true);
      txt_text_(1).SetVisible(false);
      break;
    case 1:
    case 2:
      active_box_ = 1;
      txt_text_(1).ShowScrollBar(style == 2);
      txt_text_(0).SetVisible(false);
      txt_text_(1).SetVisible(true);
      break;
    default:
      break;
  }
}

void SFText::SetAppearance(int32_t v) {
  appearance_ = v;
  DrawBorder();
  Notify("Appearance");
}

Color SFText::BackColor() const { return VisibleBox().BackColor(); }
void SFText::SetBackColor(Color v) {
  VisibleBox().SetBackColor(v);
  Notify("BackColor");
}

Color SFText::ForeColor() const { return VisibleBox().ForeColor(); }
void SFText::SetForeColor(Color v) {
  VisibleBox().SetForeColor(v);
  Notify("ForeColor");
}

bool SFText::Enabled() const { return VisibleBox().Enabled(); }
void SFText::SetEnabled(bool v) {
  VisibleBox().SetEnabled(v);
  Notify("Enabled");
}

Font SFText::GetFont() const { return VisibleBox().GetFont(); }
void SFText::SetFont(const Font& v) {
  VisibleBox().SetFont(v);
  Notify("Font");
}

int16_t SFText::BorderStyle() const { return VisibleBox().BorderStyle(); }
void SFText::SetBorderStyle(int16_t v) {
  VisibleBox().SetBorderStyle(v);
  Notify("BorderStyle");
}

std::string SFText::Text() const { return VisibleBox().Text(); }
void SFText::SetText(const std::string& v) {
  VisibleBox().SetText(v);
  Notify("Text");
}

int32_t SFText::SelLength() const { return VisibleBox().SelLength(); }
void SFText::SetSelLength(int32_t v) {
  VisibleBox().SetSelLength(v);
  Notify("SelLength");
}

int32_t SFText::SelStart() const { return VisibleBox().SelStart(); }
void SFText::SetSelStart(int32_t v) {
  VisibleBox().SetSelStart(v);
  Notify("SelStart");
}

std::string SFText::SelText() const { return VisibleBox().SelText(); }
void SFText::SetSelText(const std::string& v) {
  VisibleBox().SetSelText(v);
  Notify("SelText");
}

int16_t SFText::Alignment() const { return VisibleBox().Alignment(); }
void SFText::SetAlignment(int16_t v) {
  VisibleBox().SetAlignment(v);
  Notify("Alignment");
}

bool SFText::Locked() const { return VisibleBox().Locked(); }
void SFText::SetAccessibleText(const std::string& name, const std::string& description) {
  for (const std::shared_ptr<TextBox>& box : txt_text_.Elements()) {
    box->SetAccessibleText(name, description);
  }
}

void SFText::SetLocked(bool v) {
  TextBox& box = VisibleBox();
  box.SetLocked(v);
  // The focus window is asked to be a child of the box, not the box itself; keep the test.
  const Control* focus = toolkit_.GetFocus();
  if (box.Locked() && focus != nullptr && toolkit_.IsChild(box, *focus)) {
    box.SetBackColor(kSysActiveBorder);
  } else {
    box.SetBackColor(kSysWindowBackground);
  }
  Notify("Locked");
}

std::string SFText::PasswordChar() const { return VisibleBox().PasswordChar(); }
void SFText::SetPasswordChar(const std::string& v) {
  VisibleBox().SetPasswordChar(v);
  Notify("PasswordChar");
}

void SFText::Refresh() { VisibleBox().Refresh(); }

// ---------------------------------------------------------------------------------------------
// Drawing, size and focus

void SFText::DrawBorder() {
  Surface& surface = host_->Drawing();
  const Twips w = host_->Width();
  const Twips h = host_->Height();
  const Twips tx = toolkit_.TwipsPerPixelX();
  const Twips ty = toolkit_.TwipsPerPixelY();
  Color left_top;
  Color right_bottom;
  if (has_focus_) {
    left_top = border_color_;
    right_bottom = border_color_;
  } else if (appearance_ == 1) {
    left_top = kSunkenDark;
    right_bottom = kSunkenLight;
  } else {
    surface.Cls();
    return;
  }
  surface.Line(0, 0, 0, h, left_top);                     // left
  surface.Line(0, 0, w, 0, left_top);                     // top
  surface.Line(w - tx, 0, w - tx, h - ty, right_bottom);  // right
  surface.Line(0, h - ty, w - tx, h - ty, right_bottom);  // bottom
}

void SFText::UserControl_Resize() {
  const int32_t tx = WholeTwips(toolkit_.TwipsPerPixelX());
  const int32_t ty = WholeTwips(toolkit_.TwipsPerPixelY());
  // Setting the size brings a new Resize, which places the boxes.
  if (host_->Width() < 3) {
    host_->SetWidth(3);
    return;
  }
  if (host_->Height() < 3) {
    host_->SetHeight(3);
    return;
  }
  DrawBorder();
  const Twips w = host_->Width();
  const Twips h = host_->Height();
  txt_text_(0).Move(tx, ty, w - 2 * tx, h - 2 * ty);
  txt_text_(1).Move(tx, ty, w - 2 * tx, h - 2 * ty);
}

// Failures here are ignored statement by statement: the focus arrives whatever happens.
void SFText::UserControl_EnterFocus() {
  has_focus_ = true;
  try {
    VisibleBox().SetSelStart(0);
  } catch (const Failure&) {
  }
  try {
    TextBox& box = VisibleBox();
    box.SetSelLength(TextLength(box.Text()));
  } catch (const Failure&) {
  }
  try {
    DrawBorder();
  } catch (const Failure&) {
  }
}

void SFText::UserControl_ExitFocus() {
  has_focus_ = false;
  DrawBorder();
}

// A locked field shows the active-border grey while it is being visited.
void SFText::Txt_Text_GotFocus(int32_t index) {
  TextBox& box = txt_text_(index);
  box.SetBackColor(box.Locked() ? kSysActiveBorder : kSysWindowBackground);
}

void SFText::Txt_Text_LostFocus(int32_t index) {
  txt_text_(index).SetBackColor(kSysWindowBackground);
}

// ---------------------------------------------------------------------------------------------
// Persistence

namespace {

constexpr Color kDefaultBackColor = kSysWindowBackground;
constexpr Color kDefaultForeColor = kSysWindowText;

}  // namespace

void SFText::ReadProperties(const PropertyBag& bag) {
  const Font ambient = host_->AmbientFont();
  // Both boxes start alike: the ten box keys go to box 0, then again to box 1.
  for (int32_t index = 0; index <= 1; ++index) {
    TextBox& box = txt_text_(index);
    box.SetBackColor(bag.ReadColor("BackColor", kDefaultBackColor));
    box.SetForeColor(bag.ReadColor("ForeColor", kDefaultForeColor));
    box.SetEnabled(bag.ReadBool("Enabled", true));
    box.SetFont(bag.ReadFontProperty("Font", ambient));
    box.SetBorderStyle(bag.ReadInteger("BorderStyle", 0));
    box.SetText(bag.ReadString("Text", kDesignText));
    box.SetSelLength(bag.ReadInteger("SelLength", 0));
    box.SetSelStart(bag.ReadInteger("SelStart", 0));
    box.SetSelText(bag.ReadString("SelText", ""));
    box.SetAlignment(bag.ReadInteger("Alignment", 0));
  }
  appearance_ = bag.ReadLong("Appearance", 1);
  style_ = bag.ReadLong("Style", 0);
  border_color_ = bag.ReadColor("BorderColor", kDefaultBorderColor);
  // The box choice of the Style setter, without the text copy; an unknown Style leaves the
  // boxes as they are.
  ShowBoxForStyle(style_);
  DrawBorder();
  TextBox& box = VisibleBox();
  box.SetLocked(bag.ReadBool("Locked", false));
  box.SetPasswordChar(bag.ReadString("PasswordChar", ""));
}

void SFText::WriteProperties(PropertyBag& bag) const {
  const TextBox& box = VisibleBox();
  bag.WriteColor("BackColor", box.BackColor(), kDefaultBackColor);
  bag.WriteColor("ForeColor", box.ForeColor(), kDefaultForeColor);
  bag.WriteProperty("Enabled", Variant(box.Enabled()), Variant(true));
  bag.WriteFontProperty("Font", box.GetFont(), host_->AmbientFont());
  bag.WriteProperty("BorderStyle", Variant(box.BorderStyle()), Variant(int16_t{0}));
  bag.WriteProperty("Text", Variant(box.Text()), Variant(kDesignText));
  bag.WriteProperty("SelLength", Variant(box.SelLength()), Variant(int16_t{0}));
  bag.WriteProperty("SelStart", Variant(box.SelStart()), Variant(int16_t{0}));
  bag.WriteProperty("SelText", Variant(box.SelText()), Variant(""));
  bag.WriteProperty("Alignment", Variant(box.Alignment()), Variant(int16_t{0}));
  bag.WriteProperty("Appearance", Variant(appearance_), Variant(int32_t{1}));
  bag.WriteProperty("Locked", Variant(box.Locked()), Variant(false));
  bag.WriteProperty("PasswordChar", Variant(box.PasswordChar()), Variant(""));
  bag.WriteProperty("Style", Variant(style_), Variant(int32_t{0}));
  bag.WriteColor("BorderColor", border_color_, kDefaultBorderColor);
}

}  // namespace tarnsheets
