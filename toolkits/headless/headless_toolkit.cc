#include "toolkits/headless/headless_toolkit.h"

#include <algorithm>
#include <cmath>

#include "tarnsheets/failure.h"
#include "toolkits/common/control_rules.h"
#include "toolkits/headless/headless_controls.h"

namespace tarnsheets {

HeadlessToolkit::HeadlessToolkit() = default;

HeadlessToolkit::~HeadlessToolkit() = default;

std::shared_ptr<Control> HeadlessToolkit::NewControl(ControlKind kind,
                                                     const std::string& class_name,
                                                     const std::string& name, int32_t index,
                                                     bool multi_line) {
  return MakeControl<HLabel, HTextBox, HCommandButton, HPictureBox, HShape, HFrame, HImage, HMenu,
                     HUserControl, HForm>(this, kind, class_name, name, index, multi_line);
}

SheetRect HeadlessToolkit::WindowRect(const Control& control) const {
  return WindowRectFromTwips(control);
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

// Keys and mouse.

void HeadlessToolkit::SendKey(int16_t key_code, int16_t shift, bool press, bool release) {
  Control& focus = *GetFocus();
  if (press && key_code == kKeyTab) {
    Rules().Tab(*ActiveForm(), (shift & kShiftMask) != 0);
    return;
  }
  if (press) {
    HandleKey(focus, key_code, shift, release);
    return;
  }
  const std::shared_ptr<Control> keep = focus.shared_from_this();
  int16_t code = key_code, sh = shift;
  Raise(focus, &ControlEvents::KeyUp, code, sh);
  ClickOnSpaceRelease(focus, code);
}

void HeadlessToolkit::HandleKey(Control& focus, int16_t key_code, int16_t shift, bool with_up) {
  const std::shared_ptr<Control> keep = focus.shared_from_this();
  int16_t code = key_code, sh = shift;
  Raise(focus, &ControlEvents::KeyDown, code, sh);
  auto* box = dynamic_cast<HTextBox*>(&focus);
  const std::shared_ptr<Control> default_button =
      code == kKeyReturn ? Rules().DefaultButtonFor(focus) : nullptr;
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

void HeadlessToolkit::SendCharacter(uint32_t cp) {
  Control* focus = GetFocus();
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

void HeadlessToolkit::SendMouse(Control& control, MouseAction action, int16_t button, int16_t shift,
                                float x, float y) {
  const std::shared_ptr<Control> keep = control.shared_from_this();
  if (action == MouseAction::kDoubleClick) {
    if (control.Enabled()) Raise(control, &ControlEvents::DblClick);
    return;
  }
  if (control.Kind() == ControlKind::kMenu) return;
  int16_t b = button, s = shift;
  float fx = x, fy = y;
  switch (action) {
    case MouseAction::kDown:
      if (!IsUsable(control) || FocusOnPress(control, button) != PressFocus::kTaken) return;
      Raise(control, &ControlEvents::MouseDown, b, s, fx, fy);
      break;
    case MouseAction::kUp:
      if (control.Enabled()) Raise(control, &ControlEvents::MouseUp, b, s, fx, fy);
      break;
    case MouseAction::kMove:
      if (control.Enabled()) Raise(control, &ControlEvents::MouseMove, b, s, fx, fy);
      break;
    case MouseAction::kDoubleClick:
      break;
  }
}

void HeadlessToolkit::ClickControl(Control& control, float x, float y) {
  const std::shared_ptr<Control> keep = control.shared_from_this();
  Form* form = FormOf(control);
  const WindowFocus* focus = form != nullptr ? &Window(*form).focus_ : nullptr;
  const int64_t before = focus != nullptr ? focus->generation : 0;
  const Control* focus_before = focus != nullptr ? focus->focused.get() : nullptr;
  MouseDown(control, kLeftButton, 0, x, y);
  // A focus move that Validate refused swallows the click.
  const bool wanted_focus = control.Kind() == ControlKind::kTextBox ||
                            control.Kind() == ControlKind::kCommandButton ||
                            control.Kind() == ControlKind::kPictureBox;
  if (wanted_focus && focus != nullptr && focus_before != &control && focus->generation == before) {
    return;
  }
  if (!IsUsable(control)) return;
  MouseUp(control, kLeftButton, 0, x, y);
  Raise(control, &ControlEvents::Click);
}

// Inspection.

std::vector<Color> HeadlessToolkit::RenderPixels(const Control& control, int32_t* width,
                                                 int32_t* height) const {
  const int32_t w =
      std::max(0, static_cast<int32_t>(std::lround(control.Width() / TwipsPerPixelX())));
  const int32_t h =
      std::max(0, static_cast<int32_t>(std::lround(control.Height() / TwipsPerPixelY())));
  std::vector<Color> pixels(static_cast<size_t>(w) * h, ResolveColor(control.BackColor()));
  auto put = [&](int32_t x, int32_t y, Color c) {
    if (x >= 0 && y >= 0 && x < w && y < h) pixels[static_cast<size_t>(y) * w + x] = c;
  };
  for (const DrawOp& op : DrawOps(control)) {
    const int32_t x1 = ToPixels(op.x1, TwipsPerPixelX()), y1 = ToPixels(op.y1, TwipsPerPixelY());
    switch (op.kind) {
      case DrawOp::Kind::kLine: {
        // Bresenham from the first point towards the second, the second not drawn.
        const int32_t x2 = ToPixels(op.x2, TwipsPerPixelX()),
                      y2 = ToPixels(op.y2, TwipsPerPixelY());
        const Color c = ResolveColor(op.color);
        ForEachLinePixel(x1, y1, x2, y2, [&](int32_t x, int32_t y) { put(x, y, c); });
        break;
      }
      case DrawOp::Kind::kBox: {
        const int32_t x2 = ToPixels(op.x2, TwipsPerPixelX()),
                      y2 = ToPixels(op.y2, TwipsPerPixelY());
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

}  // namespace tarnsheets
