// The drawing log every toolkit keeps for the surfaces of user controls and picture boxes: what
// was drawn since the last Cls, for inspection and for the toolkit to paint from.
//
// For toolkit implementers, not hosts. A toolkit's surface derives from RecordingSurface and adds
// its text metrics, and where it paints, what an operation puts on the screen.
#ifndef TARNSHEETS_TOOLKITS_COMMON_DRAW_LOG_H_
#define TARNSHEETS_TOOLKITS_COMMON_DRAW_LOG_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tarnsheets/toolkit.h"

namespace tarnsheets {

class ControlNode;

// One operation on a drawing surface since its last Cls.
struct DrawOp {
  enum class Kind { kLine, kBox, kPicture };
  Kind kind = Kind::kLine;
  Twips x1 = 0, y1 = 0, x2 = 0, y2 = 0;  // kPicture: x1, y1 is the top-left corner
  Color color = 0;                       // as given (a system colour stays unresolved)
  Picture picture;                       // kPicture only

  // "line 0,0-3375,0 #BB5522", "box 15,15-180,180 #80000005", "picture PictureClip1 7x7 at 60,60"
  std::string ToString() const;
};

// A surface that records each operation drawn on it, for the control of `node`.
class RecordingSurface : public Surface {
 public:
  // `kept`: how many of the latest operations the log keeps, 0 for all of them. A kept log drops
  // its older half when full, so that a control drawing on every change does not grow it without
  // bound.
  RecordingSurface(ControlNode* node, size_t kept) : node_(node), kept_(kept) {}

  void Line(Twips x1, Twips y1, Twips x2, Twips y2, Color color) override;
  void Box(Twips x1, Twips y1, Twips x2, Twips y2, Color color) override;
  // Fails with 5, naming the picture, when its pixels do not match its size; nothing is drawn.
  void PaintPicture(const Picture& picture, Twips x, Twips y) override;
  void Cls() override;
  Font DrawingFont() const override { return font_; }
  void SetDrawingFont(const Font& font) override { font_ = font; }
  Twips ScaleWidth() const override;
  Twips ScaleHeight() const override;

  // The operations since the last Cls (the latest of them, where the log is kept short).
  const std::vector<DrawOp>& Ops() const { return ops_; }
  // How often the surface was cleared (Cls, and BackColor set).
  int32_t ClsCount() const { return cls_count_; }

 protected:
  // What the toolkit does with an operation once it is logged, and after a Cls.
  virtual void Drew(const DrawOp& op) { (void)op; }
  virtual void Cleared() {}

  ControlNode* node_;

 private:
  void Log(DrawOp op);

  size_t kept_;
  Font font_;
  std::vector<DrawOp> ops_;
  int32_t cls_count_ = 0;
};

// The number of lines of a text: 1 + its line breaks ("\r\n" counts once).
int32_t LineCount(std::string_view text);

}  // namespace tarnsheets

#endif  // TARNSHEETS_TOOLKITS_COMMON_DRAW_LOG_H_
