#include "toolkits/common/draw_log.h"

#include <cstdio>
#include <utility>

#include "toolkits/common/control_node.h"
#include "toolkits/common/control_rules.h"
#include "toolkits/common/toolkit_core.h"

namespace tarnsheets {
namespace {

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

}  // namespace

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

void RecordingSurface::Line(Twips x1, Twips y1, Twips x2, Twips y2, Color color) {
  DrawOp op;
  op.kind = DrawOp::Kind::kLine;
  op.x1 = x1, op.y1 = y1, op.x2 = x2, op.y2 = y2, op.color = color;
  Log(std::move(op));
}

void RecordingSurface::Box(Twips x1, Twips y1, Twips x2, Twips y2, Color color) {
  DrawOp op;
  op.kind = DrawOp::Kind::kBox;
  op.x1 = x1, op.y1 = y1, op.x2 = x2, op.y2 = y2, op.color = color;
  Log(std::move(op));
}

void RecordingSurface::PaintPicture(const Picture& picture, Twips x, Twips y) {
  CheckPictureSize(picture);
  const ToolkitCore* toolkit = node_->toolkit_;
  DrawOp op;
  op.kind = DrawOp::Kind::kPicture;
  op.x1 = x, op.y1 = y;
  op.x2 = x + picture.width * (toolkit != nullptr ? toolkit->TwipsPerPixelX() : 15);
  op.y2 = y + picture.height * (toolkit != nullptr ? toolkit->TwipsPerPixelY() : 15);
  op.picture = picture;
  Log(std::move(op));
}

void RecordingSurface::Cls() {
  ops_.clear();
  ++cls_count_;
  Cleared();
}

Twips RecordingSurface::ScaleWidth() const { return node_->width_; }

Twips RecordingSurface::ScaleHeight() const { return node_->height_; }

void RecordingSurface::Log(DrawOp op) {
  if (kept_ > 0 && ops_.size() >= kept_) ops_.erase(ops_.begin(), ops_.begin() + kept_ / 2);
  ops_.push_back(std::move(op));
  Drew(ops_.back());
}

int32_t LineCount(std::string_view text) {
  int32_t lines = 1;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    if (text[i] == '\n' || text[i] == '\r') ++lines;
  }
  return lines;
}

}  // namespace tarnsheets
