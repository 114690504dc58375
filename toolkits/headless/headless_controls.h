// The headless toolkit's controls. Internal to toolkits/headless.
//
// The controls keep their properties in the toolkits' common kinds (toolkits/common/node_kinds.h);
// what is the headless toolkit's own is the text box's editing, the surface's text metrics and
// the window handles it numbers.
#ifndef TARNSHEETS_TOOLKITS_HEADLESS_HEADLESS_CONTROLS_H_
#define TARNSHEETS_TOOLKITS_HEADLESS_HEADLESS_CONTROLS_H_

#include <memory>
#include <string>
#include <vector>

#include "tarnsheets/toolkit.h"
#include "toolkits/common/control_node.h"
#include "toolkits/common/draw_log.h"
#include "toolkits/common/node_kinds.h"
#include "toolkits/headless/headless_toolkit.h"

namespace tarnsheets {

// A drawing surface that records what is drawn, with the headless text metrics (see the banner
// of headless_toolkit.h).
class HSurface : public RecordingSurface {
 public:
  explicit HSurface(ControlNode* node) : RecordingSurface(node, 0) {}

  Twips TextWidth(std::string_view text) const override;
  Twips TextHeight(std::string_view text) const override;
};

// The state every headless control has.
class HNode : public ControlNode {
 public:
  using DrawingSurface = HSurface;

  HNode(HeadlessToolkit* toolkit, ControlKind kind, std::string class_name, std::string name,
        int32_t index);

  uintptr_t NodeHandle() const override { return handle_; }
  void RepaintSelf() override;
  void FocusSelf() override;

  uintptr_t handle_ = 0;
};

class HTextBox : public NodeTextBox<HNode> {
 public:
  using NodeTextBox::NodeTextBox;

  void SetAccessibleText(const std::string& name, const std::string& description) override {
    accessible_name_ = name;
    accessible_description_ = description;
  }
  std::string AccessibleName() const override { return accessible_name_; }
  std::string AccessibleDescription() const override { return accessible_description_; }
  void SetText(const std::string& v) override;
  int32_t SelStart() const override { return sel_start_; }
  void SetSelStart(int32_t v) override;
  int32_t SelLength() const override { return sel_length_; }
  void SetSelLength(int32_t v) override;
  std::string SelText() const override;
  void SetLocked(bool v) override { locked_ = v; }
  void SetAlignment(int16_t v) override { alignment_ = v; }
  void SetBorderStyle(int16_t v) override { border_style_ = v; }
  void ShowScrollBar(bool show) override { scroll_bar_ = multi_line_ && show; }
  void Undo() override;

  // The user's keys, after KeyPress. `cp` is a character; 8 deletes backwards, 13 breaks the
  // line of a multi-line box, other control characters do nothing.
  void TypeCharacter(uint32_t cp);
  void DeleteForward();
  void MoveCaret(int16_t key_code, bool extend);

  std::string accessible_name_;
  std::string accessible_description_;
  int32_t sel_start_ = 0;
  int32_t sel_length_ = 0;
  bool caret_at_start_ = false;  // the caret is the start of the selection, not its end

 protected:
  void ReplaceSelection(const std::string& text, bool typing) override;
};

using HLabel = NodeLabel<HNode>;
using HCommandButton = NodeCommandButton<HNode>;
using HShape = NodeShape<HNode>;
using HImage = NodeImage<HNode>;
using HMenu = NodeMenu<HNode>;
using HPictureBox = NodePictureBox<HNode>;
using HFrame = NodeFrame<HNode>;
using HUserControl = NodeUserControl<HNode>;
using HForm = NodeForm<HNode>;

}  // namespace tarnsheets

#endif  // TARNSHEETS_TOOLKITS_HEADLESS_HEADLESS_CONTROLS_H_
