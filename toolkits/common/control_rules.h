// Small rules of the controls that every toolkit keeps: capabilities, default sizes, how events
// are raised, where a control sits. For toolkit implementers, not hosts.
#ifndef TARNSHEETS_TOOLKITS_COMMON_CONTROL_RULES_H_
#define TARNSHEETS_TOOLKITS_COMMON_CONTROL_RULES_H_

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tarnsheets/toolkit.h"

namespace tarnsheets {

// Raises an event: the callback is copied first and the control kept alive while it runs.
template <typename Member, typename... Args>
void Raise(Control& control, Member member, Args&... args) {
  const std::shared_ptr<Control> keep = control.shared_from_this();
  const auto callback = control.Events().*member;
  if (callback) callback(args...);
}

// A user control's log of the keys passed to NotifyPropertyChanged, for inspection. An editor
// tells its container of Text and Locked on every record a sheet shows, so the log keeps only
// the latest kNotifiedPropertiesKept keys.
inline constexpr size_t kNotifiedPropertiesKept = 256;
void LogNotifiedProperty(std::vector<std::string>& log, const std::string& key);

// Byte offset of the character `chars` in a UTF-8 text (the end when past it).
size_t ByteOffset(std::string_view text, int32_t chars);

// The pixel a position in twips falls in (the pixel whose left or top edge is at or before it).
int32_t ToPixels(Twips v, Twips per_pixel);

// Properties that only some kinds have; the others fail with 438.
enum class Capability { kGeometry, kTabStop, kTabIndex, kCaption, kForeColor, kBackColor, kFont };
bool KindHas(ControlKind kind, Capability capability);

// The size a new control of `kind` gets, in twips.
struct DefaultSize {
  Twips width, height;
};
DefaultSize DefaultSizeOf(ControlKind kind);

// The form or user control whose Controls collection a control called `name`(`index`) joins
// when it is created inside `parent`. Fails with 5 naming `parent` when it cannot hold controls
// (`parent_holds_controls` false), and with 360 naming the control when the collection already
// has one of that name and index; nothing changes then.
Container& OwnerOfNewControl(Container& parent, bool parent_holds_controls, const std::string& name,
                             int32_t index);
// Checks that a new element `index` can be loaded into the control array of `element0` (the
// parent and owner it joins are element0's). Fails with 5 when element0 is not loaded on a form
// or the index lies outside 0 to 32767, with 360 when the element is loaded already.
void CheckNewArrayElement(const Control& element0, int32_t index);
// A loaded control array element takes these properties of element 0 and starts invisible.
// `Node` is a toolkit's node class.
template <typename Node>
void CopyElementProperties(const Node& from, Node* to) {
  to->left_ = from.left_;
  to->top_ = from.top_;
  to->width_ = from.width_;
  to->height_ = from.height_;
  to->visible_ = false;
  to->enabled_ = from.enabled_;
  to->tag_ = from.tag_;
  to->tab_stop_ = from.tab_stop_;
  to->caption_ = from.caption_;
  to->fore_color_ = from.fore_color_;
  to->back_color_ = from.back_color_;
  to->font_ = from.font_;
}

// True when the picture's pixels match its size (none for an empty picture).
bool PictureMatchesSize(const Picture& picture);
// Fails with 5, naming the picture, unless its pixels match its size.
void CheckPictureSize(const Picture& picture);

// The window `control` is on (itself for a form), nullptr when it is on none.
Form* WindowOf(const Control& control);
// True when `child` lies inside `parent` at any depth.
bool IsInside(const Control& parent, const Control& child);
// Visible and enabled, and so is every container up to the window.
bool IsUsable(const Control& control);
// KeyUp has been raised on `control` with `key_code` (as the handler left it): Space released
// on an enabled command button clicks it.
void ClickOnSpaceRelease(Control& control, int16_t key_code);
// Clicks a menu item when it and the menus above it are enabled and it is visible.
void ClickMenuItem(Menu& item);
// Calls `plot(x, y)` for each pixel of a one-pixel line from (x, y) towards (x2, y2), the end
// point not drawn (as the platform's line).
template <typename Plot>
void ForEachLinePixel(int32_t x, int32_t y, int32_t x2, int32_t y2, Plot plot) {
  const int32_t dx = std::abs(x2 - x), sx = x < x2 ? 1 : -1;
  const int32_t dy = -std::abs(y2 - y), sy = y < y2 ? 1 : -1;
  int32_t err = dx + dy;
  while (!(x == x2 && y == y2)) {
    plot(x, y);
    const int32_t e2 = 2 * err;
    if (e2 >= dy) {
      err += dy;
      x += sx;
    }
    if (e2 <= dx) {
      err += dx;
      y += sy;
    }
  }
}

}  // namespace tarnsheets

#endif  // TARNSHEETS_TOOLKITS_COMMON_CONTROL_RULES_H_
