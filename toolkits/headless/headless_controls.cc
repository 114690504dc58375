#include "toolkits/headless/headless_controls.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace tarnsheets {
namespace {

std::string Utf8(uint32_t cp) {
  std::string out;
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
  return out;
}

std::string Number(Twips v) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%g", v);
  return buf;
}

std::string Hex(Color c) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "#%06X", c);
  return buf;
}

Twips RoundTwips(double v) { return std::round(v); }

}  // namespace

HNode::HNode(HeadlessToolkit* toolkit, ControlKind kind, std::string class_name, std::string name,
             int32_t index)
    : ControlNode(kind, std::move(class_name), std::move(name), index), toolkit_(toolkit) {
  if (kind != ControlKind::kLabel && kind != ControlKind::kShape && kind != ControlKind::kImage &&
      kind != ControlKind::kMenu) {
    handle_ = toolkit->NextHandle();
  }
}

void HNode::Detach() {
  attached_ = false;
  focus_marks_ = {};
  for (auto& child : children_) {
    if (HNode* node = NodeOf(*child)) node->Detach();
  }
}

void HNode::RepaintSelf() { toolkit_->Repaint(Self()); }

void HNode::FocusSelf() { toolkit_->SetFocusTo(Self()); }

HNode* NodeOf(const Control& control) {
  return dynamic_cast<HNode*>(const_cast<Control*>(&control));
}

std::string DrawOp::ToString() const {
  switch (kind) {
    case Kind::kLine:
      return "line " + Number(x1) + "," + Number(y1) + "-" + Number(x2) + "," + Number(y2) + " " +
             Hex(color);
    case Kind::kBox:
      return "box " + Number(x1) + "," + Number(y1) + "-" + Number(x2) + "," + Number(y2) + " " +
             Hex(color);
    case Kind::kPicture:
      return "picture " + picture.id + " " + std::to_string(picture.width) + "x" +
             std::to_string(picture.height) + " at " + Number(x1) + "," + Number(y1);
  }
  return "";
}

void HSurface::Line(Twips x1, Twips y1, Twips x2, Twips y2, Color color) {
  DrawOp op;
  op.kind = DrawOp::Kind::kLine;
  op.x1 = x1, op.y1 = y1, op.x2 = x2, op.y2 = y2, op.color = color;
  ops_.push_back(std::move(op));
}

void HSurface::Box(Twips x1, Twips y1, Twips x2, Twips y2, Color color) {
  DrawOp op;
  op.kind = DrawOp::Kind::kBox;
  op.x1 = x1, op.y1 = y1, op.x2 = x2, op.y2 = y2, op.color = color;
  ops_.push_back(std::move(op));
}

void HSurface::PaintPicture(const Picture& picture, Twips x, Twips y) {
  if (picture.width < 0 || picture.height < 0 ||
      picture.pixels.size() != static_cast<size_t>(picture.width) * picture.height) {
    throw Failure(kErrInvalidProcedureCall,
                  "Invalid procedure call or argument: picture \"" + picture.id + "\" has " +
                      std::to_string(picture.pixels.size()) + " pixels for its size " +
                      std::to_string(picture.width) + "x" + std::to_string(picture.height));
  }
  DrawOp op;
  op.kind = DrawOp::Kind::kPicture;
  op.x1 = x, op.y1 = y;
  op.x2 = x + picture.width * node_->toolkit_->TwipsPerPixelX();
  op.y2 = y + picture.height * node_->toolkit_->TwipsPerPixelY();
  op.picture = picture;
  ops_.push_back(std::move(op));
}

void HSurface::Cls() {
  ops_.clear();
  ++cls_count_;
}

Twips HSurface::TextWidth(std::string_view text) const {
  int32_t longest = 0, current = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    const unsigned char c = static_cast<unsigned char>(text[i]);
    if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    if (c == '\n' || c == '\r') {
      longest = std::max(longest, current);
      current = 0;
    } else if ((c & 0xC0) != 0x80) {
      ++current;
    }
  }
  longest = std::max(longest, current);
  return RoundTwips(longest * font_.size * 10);
}

Twips HSurface::TextHeight(std::string_view text) const {
  int32_t lines = 1;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    if (text[i] == '\n' || text[i] == '\r') ++lines;
  }
  return RoundTwips(lines * font_.size * 24);
}

template <typename I>
Control* HContainer<I>::ActiveControl() const {
  Control* focus = this->toolkit_->GetFocus();
  if (focus == nullptr) {
    // The window's own focus, even while another window is active.
    const Control* self = this;
    while (self != nullptr && self->Kind() != ControlKind::kForm) self = self->Parent();
    if (self == nullptr) return nullptr;
    const auto* form = dynamic_cast<const HForm*>(self);
    focus = form != nullptr ? form->focus_.focused.get() : nullptr;
    if (focus == nullptr) return nullptr;
  }
  if (focus == this || this->toolkit_->IsChild(*this, *focus)) return focus;
  return nullptr;
}

template class HContainer<PictureBox>;
template class HContainer<Frame>;
template class HContainer<UserControl>;
template class HContainer<Form>;

// Text boxes.

void HTextBox::SetText(const std::string& v) {
  if (v == text_) return;
  text_ = v;
  sel_start_ = 0;
  sel_length_ = 0;
  can_undo_ = false;
  typing_run_ = false;
  Raise(*this, &ControlEvents::Change);
}

void HTextBox::SetSelStart(int32_t v) {
  if (v < 0) throw PlatformFailure(kErrInvalidProcedureCall);
  sel_start_ = std::min(v, TextLength(text_));
  sel_length_ = 0;
  typing_run_ = false;
  caret_at_start_ = false;
}

void HTextBox::SetSelLength(int32_t v) {
  if (v < 0) throw PlatformFailure(kErrInvalidProcedureCall);
  sel_length_ = std::min(v, TextLength(text_) - sel_start_);
  typing_run_ = false;
  caret_at_start_ = false;
}

std::string HTextBox::SelText() const {
  const size_t a = ByteOffset(text_, sel_start_), b = ByteOffset(text_, sel_start_ + sel_length_);
  return text_.substr(a, b - a);
}

void HTextBox::SetSelText(const std::string& v) { ReplaceSelection(v, false); }

void HTextBox::SetPasswordChar(const std::string& v) {
  if (TextLength(v) > 1) throw PlatformFailure(kErrInvalidProcedureCall);
  password_char_ = v;
}

void HTextBox::ReplaceSelection(const std::string& text, bool typing) {
  std::string inserted = text;
  if (!multi_line_) {
    // A single-line box keeps what comes before the first line break.
    const size_t br = inserted.find_first_of("\r\n");
    if (br != std::string::npos) inserted.resize(br);
  }
  const std::string before = text_;
  const int32_t before_start = sel_start_, before_length = sel_length_;
  const size_t a = ByteOffset(text_, sel_start_), b = ByteOffset(text_, sel_start_ + sel_length_);
  text_.replace(a, b - a, inserted);
  sel_start_ += TextLength(inserted);
  sel_length_ = 0;
  caret_at_start_ = false;
  if (text_ == before) {
    typing_run_ = false;
    return;
  }
  // A run of typed characters undoes as one edit, from the state before its first character.
  if (!(typing && typing_run_)) {
    undo_text_ = before;
    undo_sel_start_ = before_start;
    undo_sel_length_ = before_length;
  }
  typing_run_ = typing;
  can_undo_ = true;
  Raise(*this, &ControlEvents::Change);
}

void HTextBox::Copy() {
  if (sel_length_ == 0 || !password_char_.empty()) return;
  toolkit_->SetClipboardText(SelText());
}

void HTextBox::Cut() {
  if (locked_ || sel_length_ == 0) return;
  Copy();
  ReplaceSelection("", false);
}

void HTextBox::Paste() {
  if (locked_) return;
  const std::string clip = toolkit_->ClipboardText();
  if (clip.empty()) return;
  ReplaceSelection(clip, false);
}

void HTextBox::Clear() {
  if (locked_ || sel_length_ == 0) return;
  ReplaceSelection("", false);
}

void HTextBox::Undo() {
  if (locked_ || !can_undo_) return;
  // The undo is itself an edit: what it replaces becomes the next undo.
  std::swap(text_, undo_text_);
  std::swap(sel_start_, undo_sel_start_);
  std::swap(sel_length_, undo_sel_length_);
  typing_run_ = false;
  if (text_ != undo_text_) Raise(*this, &ControlEvents::Change);
}

void HTextBox::TypeCharacter(uint32_t cp) {
  if (locked_ || cp == 0) return;
  if (cp == 8) {
    if (sel_length_ == 0) {
      if (sel_start_ == 0) return;
      --sel_start_;
      sel_length_ = 1;
    }
    ReplaceSelection("", false);
    return;
  }
  if (cp == 13) {
    if (multi_line_) ReplaceSelection("\r\n", false);
    return;
  }
  if (cp < 32 || cp == 127) return;
  ReplaceSelection(Utf8(cp), true);
}

void HTextBox::DeleteForward() {
  if (locked_) return;
  if (sel_length_ == 0) {
    if (sel_start_ >= TextLength(text_)) return;
    sel_length_ = 1;
  }
  ReplaceSelection("", false);
}

void HTextBox::MoveCaret(int16_t key_code, bool extend) {
  const int32_t length = TextLength(text_);
  // The caret is the end of the selection that moves; the anchor stays.
  int32_t caret = caret_at_start_ ? sel_start_ : sel_start_ + sel_length_;
  int32_t anchor = caret_at_start_ ? sel_start_ + sel_length_ : sel_start_;
  if (!extend && sel_length_ > 0 && (key_code == kKeyLeft || key_code == kKeyRight)) {
    caret = key_code == kKeyLeft ? sel_start_ : sel_start_ + sel_length_;
    sel_start_ = caret;
    sel_length_ = 0;
    typing_run_ = false;
    caret_at_start_ = false;
    return;
  }
  switch (key_code) {
    case kKeyLeft:
      caret = std::max(0, caret - 1);
      break;
    case kKeyRight:
      caret = std::min(length, caret + 1);
      break;
    case kKeyHome:
      caret = 0;
      break;
    case kKeyEnd:
      caret = length;
      break;
    default:
      return;
  }
  if (!extend) anchor = caret;
  sel_start_ = std::min(anchor, caret);
  sel_length_ = std::abs(caret - anchor);
  caret_at_start_ = caret < anchor;
  typing_run_ = false;
}

Font HUserControl::AmbientFont() const {
  Container* parent = Parent();
  if (parent == nullptr) return Font{};
  try {
    return parent->GetFont();
  } catch (const Failure&) {
    return Font{};
  }
}

void HForm::Show() {
  if (unloaded_) throw PlatformFailure(kErrInvalidProcedureCall);
  if (!loaded_) {
    loaded_ = true;
    Raise(*this, &ControlEvents::Load);
  }
  shown_ = true;
  visible_ = true;
  toolkit_->ActivateForm(this);
}

void HForm::Hide() {
  shown_ = false;
  visible_ = false;
  if (toolkit_->ActiveForm() == this) toolkit_->ActivateForm(nullptr);
}

}  // namespace tarnsheets
