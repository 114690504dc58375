// Layout of a sheet: the designed geometry captured at creation, the caption strip, the border,
// the proportional field area and the host's command buttons.
//
// Arithmetic follows the platform's types: the border width is a 16-bit number of pixels, and a
// product of it with a small factor is 16-bit, its product with a pixel size 32-bit; either
// overflows with error 6. Divisions are floating point and fail with 11 (6 for 0 / 0).
#include <cmath>
#include <cstdint>
#include <limits>
#include <string_view>

#include "sheet/sheet_engine.h"

namespace tarnsheets {

namespace {

int16_t Mul16(int32_t a, int32_t b) {
  const int32_t product = a * b;
  if (product < std::numeric_limits<int16_t>::min() ||
      product > std::numeric_limits<int16_t>::max()) {
    throw PlatformFailure(kErrOverflow);
  }
  return static_cast<int16_t>(product);
}

int32_t Mul32(int64_t a, int64_t b) {
  const int64_t product = a * b;
  if (product < std::numeric_limits<int32_t>::min() ||
      product > std::numeric_limits<int32_t>::max()) {
    throw PlatformFailure(kErrOverflow);
  }
  return static_cast<int32_t>(product);
}

double Div(double a, double b) {
  if (b == 0) throw PlatformFailure(a == 0 ? kErrOverflow : kErrDivisionByZero);
  return a / b;
}

// A floating-point value assigned to a 32-bit integer: rounded half to even, 6 when out of range.
int32_t ToLong(double v) {
  const double rounded = std::nearbyint(v);
  if (!(rounded >= std::numeric_limits<int32_t>::min() &&
        rounded <= std::numeric_limits<int32_t>::max())) {
    throw PlatformFailure(kErrOverflow);
  }
  return static_cast<int32_t>(rounded);
}

bool IsScaledName(const std::string& name) {
  return name == "Lbl_Title" || name == "Txt_Value" || name == "Chk_Value" || name == "Cmd_Value";
}

// The numbers of a design entry, each ended by one blank. A number with no blank behind it, or
// one that is no number, reads as 0.
void SplitEntry(const std::string& entry, double (&f)[4]) {
  size_t position = 0;
  for (double& value : f) {
    value = 0;
    const size_t blank = entry.find(' ', position);
    if (blank == std::string::npos) {
      position = entry.size();
      continue;
    }
    double parsed = 0;
    if (ParseNumber(std::string_view(entry).substr(position, blank - position), &parsed)) {
      value = parsed;
    }
    position = blank + 1;
  }
}

std::string EntryNumber(double v) { return NumberText(v) + " "; }

}  // namespace

void SheetEngine::Layout_Capture(int32_t& DesignWidth, int32_t& DesignHeight,
                                 std::vector<std::string>& DesignLayout) {
  const int32_t tx = ToLong(toolkit_.TwipsPerPixelX());
  const int32_t ty = ToLong(toolkit_.TwipsPerPixelY());
  const int16_t bw = Shp_Caption_->BorderWidth();
  Surface& surface = host_->Drawing();
  DesignWidth = ToLong(Div(surface.ScaleWidth(), tx) - Mul16(2, bw));
  DesignHeight =
      ToLong(Div(surface.ScaleHeight() - Lbl_Caption_->Top() - Lbl_Caption_->Height(), ty) - bw);
  const std::vector<std::shared_ptr<Control>> controls = host_->AllControls();
  size_t count = 0;
  for (const std::shared_ptr<Control>& control : controls) {
    if (IsScaledName(control->Name())) ++count;
  }
  DesignLayout.assign(count, std::string());
  size_t k = 0;
  for (const std::shared_ptr<Control>& control : controls) {
    if (!IsScaledName(control->Name())) continue;
    const double top = Div(control->Top() - Lbl_Caption_->Top() - Lbl_Caption_->Height(), ty) - bw;
    DesignLayout[k] = EntryNumber(Div(control->Left(), tx)) + EntryNumber(top) +
                      EntryNumber(Div(control->Width(), tx)) +
                      EntryNumber(Div(control->Height(), ty));
    ++k;
  }
}

void SheetEngine::Layout_Caption(bool full_form) {
  const int32_t tx = ToLong(toolkit_.TwipsPerPixelX());
  const int32_t ty = ToLong(toolkit_.TwipsPerPixelY());
  const int16_t bw = Shp_Caption_->BorderWidth();
  Surface& surface = host_->Drawing();
  surface.SetDrawingFont(Lbl_Caption_->GetFont());
  // The blanks are only in the measuring, never in the label.
  const std::string measured = "   " + Lbl_Caption_->Caption() + "   ";
  Lbl_Caption_->SetWidth(surface.TextWidth(measured));
  Lbl_Caption_->SetHeight(surface.TextHeight(measured) + Mul32(Mul32(3, ty), bw));
  Lbl_CaptionSpace_->Move(0, 0, Lbl_Caption_->Width(), Mul32(Mul16(3, bw), ty));
  // The offset is formed with the horizontal pixel size, the strip above with the vertical one.
  Lbl_Caption_->Move(0, Mul32(Mul16(3, bw), tx));
  if (!full_form) return;
  if (form_.options.CaptionSpaceFollows) Lbl_CaptionSpace_->SetWidth(Lbl_Caption_->Width());
  const int32_t top = Mul32(Mul16(2, bw), ty);
  Cmd_NewRecord_->Move(Lbl_Caption_->Left() + Lbl_Caption_->Width() + Mul32(10, tx), top);
  Cmd_CopyRecord_->Move(Cmd_NewRecord_->Left() + Cmd_NewRecord_->Width() + Mul32(3, tx), top);
  Cmd_DeleteRecord_->Move(Cmd_CopyRecord_->Left() + Cmd_CopyRecord_->Width() + Mul32(3, tx), top);
  Cmd_Undo_->Move(Cmd_DeleteRecord_->Left() + Cmd_DeleteRecord_->Width() + Mul32(3, tx), top);
}

void SheetEngine::UserControl_Resize() {
  Layout_Caption(false);
  const int32_t tx = ToLong(toolkit_.TwipsPerPixelX());
  const int32_t ty = ToLong(toolkit_.TwipsPerPixelY());
  const double width = host_->Width();
  const double height = host_->Height();
  // The border only on a sheet above 50 pixels in both directions.
  if (width > Mul32(50, tx) && height > Mul32(50, ty)) {
    const double h = Shp_Caption_->BorderWidth() / 2.0;
    Shp_Caption_->Move(h * tx, h * ty, width - h * tx, height - h * ty);
  }
  // The short form's steps run twice, which is harmless.
  Layout_Caption(true);
  UserCommand_Place();
  Layout_Scale(DesignWidth_, DesignHeight_, DesignLayout_);
}

void SheetEngine::Layout_Scale(int32_t DesignWidth, int32_t DesignHeight,
                               const std::vector<std::string>& DesignLayout) {
  const int32_t tx = ToLong(toolkit_.TwipsPerPixelX());
  const int32_t ty = ToLong(toolkit_.TwipsPerPixelY());
  const int16_t bw = Shp_Caption_->BorderWidth();
  Surface& surface = host_->Drawing();
  const double sx = Div(Div(surface.ScaleWidth(), tx) - Mul16(2, bw), DesignWidth);
  const double sy =
      Div(Div(surface.ScaleHeight() - Lbl_Caption_->Top() - Lbl_Caption_->Height(), ty) - bw,
          DesignHeight);
  // From here every error is ignored, so that one bad entry does not stop the rest.
  size_t k = 0;
  for (const std::shared_ptr<Control>& control : host_->AllControls()) {
    try {
      if (!IsScaledName(control->Name())) continue;
      ++k;
      if (k > DesignLayout.size()) throw PlatformFailure(kErrSubscriptOutOfRange);
      double f[4];
      SplitEntry(DesignLayout[k - 1], f);
      const double strip = Lbl_Caption_->Top() + Lbl_Caption_->Height() + Mul32(bw, ty);
      control->Move(sx * f[0] * tx, sy * f[1] * ty + strip, sx * f[2] * tx, sy * f[3] * ty);
    } catch (const Failure&) {
      // Ignored: the next control is placed all the same.
    }
  }
}

void SheetEngine::UserCommand_Place() {
  const int32_t tx = ToLong(toolkit_.TwipsPerPixelX());
  const int32_t ty = ToLong(toolkit_.TwipsPerPixelY());
  const int16_t bw = Shp_Caption_->BorderWidth();
  const int32_t n = SheetUserCommands().Count();
  // 1. Buttons are only ever loaded, never unloaded.
  for (int32_t i = UserCommand_.Count(); i <= n; ++i) {
    UserCommand_.Load(i, [this](const CommandButton& element0, int32_t index) {
      std::shared_ptr<CommandButton> button =
          LoadControlAs<CommandButton>(toolkit_, element0, index);
      WireUserCommand(*button, index);
      return button;
    });
  }
  // 2. From the right: the last command stands at the far right.
  const int32_t top = Mul32(Mul16(2, bw), ty);
  for (int32_t i = n; i >= 1; --i) {
    ClsSheetsUserCommands::CommandRef command = SheetUserCommands().Item(Variant(i));
    CommandButton& button = UserCommand_(i);
    button.SetCaption(command->DisplayName());
    button.SetTag(command->Name());
    double left;
    if (i == n) {
      left = host_->Width() - Mul32(Mul16(4, bw), tx) - button.Width();
    } else {
      left = UserCommand_(i + 1).Left() - button.Width() - Mul32(3, tx);
    }
    button.Move(left, top);
  }
  // 3. The left end of the row.
  int32_t m = ToLong(host_->Width());
  for (int32_t i = 1; i <= n; ++i) {
    if (UserCommand_(i).Left() < m) m = ToLong(UserCommand_(i).Left());
  }
  // 4. The right end of what stands in the strip, plus five pixels (formed with ty in both).
  double e;
  if (Style_ == 0) {
    e = Lbl_Caption_->Left() + Lbl_Caption_->Width() + Mul32(5, ty);
  } else if (Style_ == 1) {
    e = Cmd_Undo_->Left() + Cmd_Undo_->Width() + Mul32(5, ty);
  } else {
    return;
  }
  if (e <= m) {
    // 5. There is room.
    for (int32_t i = 1; i <= n; ++i) UserCommand_(i).SetVisible(true);
    return;
  }
  // 6. Slide the row right so that it never covers the caption.
  const double shift = e - m;
  for (int32_t i = 1; i <= n; ++i) {
    CommandButton& button = UserCommand_(i);
    button.SetLeft(button.Left() + shift);
    button.SetVisible(true);
  }
}

}  // namespace tarnsheets
