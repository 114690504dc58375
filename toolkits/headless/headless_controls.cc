#include "toolkits/headless/headless_controls.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "platform/utf8.h"

namespace tarnsheets {
namespace {

Twips RoundTwips(double v) { return std::round(v); }

}  // namespace

HNode::HNode(HeadlessToolkit* toolkit, ControlKind kind, std::string class_name, std::string name,
             int32_t index)
    : ControlNode(toolkit, kind, std::move(class_name), std::move(name), index) {
  if (kind != ControlKind::kLabel && kind != ControlKind::kShape && kind != ControlKind::kImage &&
      kind != ControlKind::kMenu) {
    handle_ = toolkit->NextHandle();
  }
}

void HNode::RepaintSelf() { toolkit_->Repaint(Self()); }

void HNode::FocusSelf() { toolkit_->SetFocusTo(Self()); }

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
  return RoundTwips(longest * DrawingFont().size * 10);
}

Twips HSurface::TextHeight(std::string_view text) const {
  return RoundTwips(LineCount(text) * DrawingFont().size * 24);
}

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

void HTextBox::ReplaceSelection(const std::string& text, bool typing) {
  const std::string inserted = Insertable(text);
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
  RecordEdit(before, before_start, before_length, typing);
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
  ReplaceSelection(utf8::Encode(cp), true);
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

}  // namespace tarnsheets
