// The Qt toolkit's controls. Internal to toolkits/qt.
//
// Each control keeps its properties itself (what was set reads back exactly, in twips and toolkit
// colours) and shows them on its widget. Text boxes are the exception: the widget does the user's
// editing, and the control keeps a copy of the text that follows every change of the widget.
#ifndef TARNSHEETS_TOOLKITS_QT_QT_CONTROLS_H_
#define TARNSHEETS_TOOLKITS_QT_QT_CONTROLS_H_

#include <QEventLoop>
#include <QFont>
#include <QImage>
#include <QLineEdit>
#include <QObject>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPointer>
#include <QWidget>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "tarnsheets/failure.h"
#include "tarnsheets/toolkit.h"
#include "toolkits/common/control_node.h"
#include "toolkits/common/control_rules.h"
#include "toolkits/common/focus_rules.h"
#include "toolkits/common/node_control.h"
#include "toolkits/qt/qt_toolkit.h"

namespace tarnsheets {

QFont ToQFont(const Font& font);
QImage ToQImage(const Picture& picture);
QColor ToQColor(Color rgb);

// Watches the widgets of one toolkit: key and mouse events go to the toolkit first.
class QtEventBridge : public QObject {
 public:
  explicit QtEventBridge(QtToolkit* toolkit) : toolkit_(toolkit) {}

  void Watch(QObject* object, QtNode* node);
  void Unwatch(QObject* object);
  QtNode* NodeOf(const QObject* object) const;
  // Sends `event` to `receiver` past this filter; a copy that the widget ignores does not travel
  // on to the parents' filters.
  void Forward(QObject* receiver, QEvent* event);
  // Driving from inside a forwarded event's handlers starts afresh.
  QObject* SuspendForwarding() {
    QObject* saved = forward_target_;
    forward_target_ = nullptr;
    return saved;
  }
  void ResumeForwarding(QObject* saved) { forward_target_ = saved; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QtToolkit* toolkit_;
  std::unordered_map<const QObject*, QtNode*> nodes_;
  QObject* forward_target_ = nullptr;
};

// A widget that the control paints itself: picture boxes, user controls, shapes, frames, images
// and forms.
class QtCanvas : public QWidget {
 public:
  QtCanvas(QtNode* node, QWidget* parent);
  QtNode* node_;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
};

// The state every Qt control has.
class QtNode : public ControlNode {
 public:
  QtNode(QtToolkit* toolkit, ControlKind kind, std::string class_name, std::string name,
         int32_t index);
  ~QtNode() override;

  QWidget* Widget() const { return widget_.data(); }
  // Takes `widget` as this control's view (nullptr for menus): focus policy, event bridge.
  void SetWidget(QWidget* widget);
  // The widget children go into.
  QWidget* ChildHost() const { return widget_.data(); }
  // Marks this control and everything inside it as unloaded and drops their widgets.
  void Detach();
  void RepaintSelf() override;
  void FocusSelf() override;

  Twips Tppx() const { return toolkit_ != nullptr ? toolkit_->TwipsPerPixelX() : 15; }
  Twips Tppy() const { return toolkit_ != nullptr ? toolkit_->TwipsPerPixelY() : 15; }
  Color Resolve(Color c) const { return toolkit_ != nullptr ? toolkit_->ResolveColor(c) : c; }

  // The view follows the properties.
  void ApplyGeometry() override;
  void ApplyColors() override {
    if (widget_) widget_->update();
  }
  void ApplyFont() override {
    if (widget_ && KindHas(kind_, Capability::kFont)) widget_->setFont(ToQFont(font_));
  }
  void ApplyVisible() override;
  void ApplyEnabled() override {
    if (widget_) widget_->setEnabled(enabled_);
  }
  // QtCanvas: paints the control.
  virtual void Paint(QPainter& painter) { (void)painter; }
  // QtCanvas of a form: the window's size changed by the user.
  virtual void WidgetResized() {}
  virtual void WidgetClosing() {}

  QtToolkit* toolkit_;
  QPointer<QWidget> widget_;
  bool applying_geometry_ = false;
};

QtNode* QtNodeOf(const Control& control);

template <typename I>
class QtControl : public NodeControl<I, QtNode> {
 public:
  using NodeControl<I, QtNode>::NodeControl;

  uintptr_t Handle() const override {
    const ControlKind k = this->kind_;
    if (k == ControlKind::kLabel || k == ControlKind::kShape || k == ControlKind::kImage ||
        k == ControlKind::kMenu || !this->attached_) {
      return 0;
    }
    return reinterpret_cast<uintptr_t>(this->widget_.data());
  }
  void Refresh() override {
    if (this->kind_ == ControlKind::kUserControl || this->kind_ == ControlKind::kForm) {
      this->RepaintSelf();
    } else if (this->widget_) {
      this->widget_->update();
    }
  }
};

// A drawing surface that records what is drawn; the widget replays it when it paints.
class QtSurface : public Surface {
 public:
  explicit QtSurface(QtNode* node) : node_(node) {}

  void Line(Twips x1, Twips y1, Twips x2, Twips y2, Color color) override;
  void Box(Twips x1, Twips y1, Twips x2, Twips y2, Color color) override;
  void PaintPicture(const Picture& picture, Twips x, Twips y) override;
  void Cls() override;
  Font DrawingFont() const override { return font_; }
  void SetDrawingFont(const Font& font) override { font_ = font; }
  Twips TextWidth(std::string_view text) const override;
  Twips TextHeight(std::string_view text) const override;
  Twips ScaleWidth() const override { return node_->width_; }
  Twips ScaleHeight() const override { return node_->height_; }

  // Draws what was drawn since the last Cls, (0, 0) being the surface's inner corner.
  void Replay(QPainter& painter) const;
  // The latest operations since the last Cls, for inspection: at most kLoggedOps of them, so
  // that a control drawing on every change does not grow without bound.
  const std::vector<DrawOp>& Ops() const { return ops_; }
  int32_t ClsCount() const { return cls_count_; }
  static constexpr size_t kLoggedOps = 256;

 private:
  void Changed() {
    if (node_->widget_) node_->widget_->update();
  }
  void Log(DrawOp op);
  // The raster drawn into, at least the control's size in pixels.
  QImage& Canvas();

  QtNode* node_;
  Font font_;
  QImage canvas_;
  std::vector<DrawOp> ops_;
  int32_t cls_count_ = 0;
};

template <typename I>
class QtContainer : public QtControl<I> {
 public:
  using QtControl<I>::QtControl;

  std::vector<std::shared_ptr<Control>> Children() const override { return this->children_; }
  std::vector<std::shared_ptr<Control>> AllControls() const override {
    return this->HeldControls();
  }
  std::shared_ptr<Control> FindControl(std::string_view name, int32_t index) const override {
    return this->FindHeldControl(name, index);
  }
  Control* ActiveControl() const override;
};

class QtLabel : public QtControl<Label> {
 public:
  QtLabel(QtToolkit* toolkit, std::string name, int32_t index);
  int16_t Alignment() const override { return alignment_; }
  void SetAlignment(int16_t v) override;
  int16_t BackStyle() const override { return back_style_; }
  void SetBackStyle(int16_t v) override;
  bool WordWrap() const override { return word_wrap_; }
  void SetWordWrap(bool v) override;
  void ApplyColors() override;
  void ApplyCaption() override;

  int16_t alignment_ = 0;
  int16_t back_style_ = 1;
  bool word_wrap_ = false;
};

class QtTextBox : public QtControl<TextBox> {
 public:
  QtTextBox(QtToolkit* toolkit, std::string name, int32_t index, bool multi_line);
  ~QtTextBox() override;

  bool MultiLine() const override { return multi_line_; }
  const std::string& Text() const override { return text_; }
  void SetText(const std::string& v) override;
  int32_t SelStart() const override;
  void SetSelStart(int32_t v) override;
  int32_t SelLength() const override;
  void SetSelLength(int32_t v) override;
  std::string SelText() const override;
  void SetSelText(const std::string& v) override;
  bool Locked() const override { return locked_; }
  void SetLocked(bool v) override;
  const std::string& PasswordChar() const override { return password_char_; }
  void SetPasswordChar(const std::string& v) override;
  int16_t Alignment() const override { return alignment_; }
  void SetAlignment(int16_t v) override;
  int16_t BorderStyle() const override { return border_style_; }
  void SetBorderStyle(int16_t v) override;
  bool ScrollBarVisible() const override { return scroll_bar_; }
  void ShowScrollBar(bool show) override;
  void Copy() override;
  void Cut() override;
  void Paste() override;
  void Clear() override;
  void Undo() override;
  bool CanUndo() const override { return can_undo_; }
  void SetAccessibleText(const std::string& name, const std::string& description) override;
  std::string AccessibleName() const override;
  std::string AccessibleDescription() const override;

  void ApplyColors() override;
  // The user is about to edit through the widget: the selection before the edit is what Undo
  // restores; consecutive typed characters undo together.
  void BeforeUserEdit(bool typing);
  void AfterUserEdit() { typing_now_ = false; }
  void EndTypingRun() { typing_run_ = false; }
  // The widget's text changed.
  void WidgetTextChanged();
  QObject* KeyReceiver() const { return widget_.data(); }
  QObject* MouseReceiver() const;
  // Puts a caret that the box deferred at the start of its text (see QtToolkit::DeferCaretHome).
  void PlaceDeferredCaret();

  bool multi_line_;
  std::string text_;
  bool locked_ = false;
  std::string password_char_;
  int16_t alignment_ = 0;
  int16_t border_style_ = 1;
  bool scroll_bar_ = false;
  // One level of undo: the text and selection before the last edit.
  bool can_undo_ = false;
  std::string undo_text_;
  int32_t undo_sel_start_ = 0;
  int32_t undo_sel_length_ = 0;
  bool typing_run_ = false;

 private:
  void ReplaceSelection(const std::string& text);
  // Positions: characters of text_ against UTF-16 units of the widget's text.
  int32_t QtPos(int32_t model_pos) const;
  int32_t ModelPos(int32_t qt_pos) const;
  QString ToQt(const std::string& text) const;
  std::string WidgetText() const;
  // The widget's selection in its own units: anchor and caret.
  void WidgetSelection(int32_t* start, int32_t* end) const;
  void ShowText(int32_t sel_start, int32_t sel_length);

  QLineEdit* Line() const { return qobject_cast<QLineEdit*>(widget_.data()); }
  QPlainTextEdit* Plain() const { return qobject_cast<QPlainTextEdit*>(widget_.data()); }
  bool showing_ = false;  // the control itself is writing into the widget
  // A single-line box without the focus was shown a text and its caret belongs at the start,
  // where the widget has not put it yet; the box reports its selection as there already.
  bool caret_deferred_ = false;
  // The colours last given to the widget's palette: a sheet sets a box's colours on every record
  // it shows, mostly to what they already are.
  std::optional<std::pair<QRgb, QRgb>> applied_colors_;
  bool typing_now_ = false;
  int32_t pre_sel_start_ = 0;
  int32_t pre_sel_length_ = 0;
};

class QtCommandButton : public QtControl<CommandButton> {
 public:
  QtCommandButton(QtToolkit* toolkit, std::string name, int32_t index);
  const Picture& GetPicture() const override { return picture_; }
  void SetPicture(const Picture& v) override;
  bool Default() const override { return default_; }
  void SetDefault(bool v) override { default_ = v; }
  void ApplyColors() override;
  void ApplyCaption() override;

  Picture picture_;
  bool default_ = false;
};

class QtShape : public QtControl<Shape> {
 public:
  QtShape(QtToolkit* toolkit, std::string name, int32_t index);
  Color BorderColor() const override { return border_color_; }
  void SetBorderColor(Color v) override;
  int16_t BorderWidth() const override { return border_width_; }
  void SetBorderWidth(int16_t v) override;
  int16_t BackStyle() const override { return back_style_; }
  void SetBackStyle(int16_t v) override;
  int16_t FillStyle() const override { return fill_style_; }
  void SetFillStyle(int16_t v) override;
  Color FillColor() const override { return fill_color_; }
  void SetFillColor(Color v) override;
  void Paint(QPainter& painter) override;

  Color border_color_ = kSysWindowText;
  int16_t border_width_ = 1;
  int16_t back_style_ = 0;
  int16_t fill_style_ = 1;
  Color fill_color_ = 0;
};

class QtImage : public QtControl<Image> {
 public:
  QtImage(QtToolkit* toolkit, std::string name, int32_t index);
  const Picture& GetPicture() const override { return picture_; }
  void SetPicture(const Picture& v) override;
  bool Stretch() const override { return stretch_; }
  void SetStretch(bool v) override;
  void Paint(QPainter& painter) override;

  Picture picture_;
  QImage image_;  // the picture converted once, when set
  bool stretch_ = false;
};

class QtMenu : public QtControl<Menu> {
 public:
  QtMenu(QtToolkit* toolkit, std::string name, int32_t index)
      : QtControl(toolkit, ControlKind::kMenu, "", std::move(name), index) {}
  bool Checked() const override { return checked_; }
  void SetChecked(bool v) override { checked_ = v; }
  Menu* ParentMenu() const override { return parent_menu_; }
  std::vector<std::shared_ptr<Menu>> Items() const override { return items_; }

  bool checked_ = false;
  Menu* parent_menu_ = nullptr;
  std::vector<std::shared_ptr<Menu>> items_;
};

class QtPictureBox : public QtContainer<PictureBox> {
 public:
  QtPictureBox(QtToolkit* toolkit, std::string name, int32_t index);
  Surface& Drawing() override { return surface_; }
  const Picture& GetPicture() const override { return picture_; }
  void SetPicture(const Picture& v) override;
  int16_t BorderStyle() const override { return border_style_; }
  void SetBorderStyle(int16_t v) override;
  void Paint(QPainter& painter) override;

  QtSurface surface_{this};
  Picture picture_;
  QImage image_;  // the picture converted once, when set
  int16_t border_style_ = 1;

 protected:
  void BackColorChanged() override { surface_.Cls(); }
};

class QtFrame : public QtContainer<Frame> {
 public:
  QtFrame(QtToolkit* toolkit, std::string name, int32_t index);
  int16_t BorderStyle() const override { return border_style_; }
  void SetBorderStyle(int16_t v) override;
  void ApplyCaption() override { ApplyColors(); }
  void Paint(QPainter& painter) override;

  int16_t border_style_ = 1;
};

class QtUserControl : public QtContainer<UserControl> {
 public:
  QtUserControl(QtToolkit* toolkit, std::string class_name, std::string name, int32_t index);
  Surface& Drawing() override { return surface_; }
  bool CanGetFocus() const override { return can_get_focus_; }
  void SetCanGetFocus(bool v) override { can_get_focus_ = v; }
  Font AmbientFont() const override;
  void NotifyPropertyChanged(const std::string& key) override {
    LogNotifiedProperty(notified_, key);
  }
  void PopupMenu(Menu& menu) override {
    if (toolkit_ != nullptr) toolkit_->RunPopupMenu(menu);
  }
  void Paint(QPainter& painter) override;

  QtSurface surface_{this};
  bool can_get_focus_ = false;
  std::vector<std::string> notified_;

 protected:
  void BackColorChanged() override { surface_.Cls(); }
};

class QtForm : public QtContainer<Form> {
 public:
  QtForm(QtToolkit* toolkit, std::string name);
  Twips ScaleWidth() const override { return width_; }
  Twips ScaleHeight() const override { return height_; }
  void SetClientSize(Twips width, Twips height) override { DoMove(left_, top_, width, height); }
  void Show() override;
  void Hide() override;
  bool IsShown() const override { return shown_; }
  void PopupMenu(Menu& menu) override {
    if (toolkit_ != nullptr) toolkit_->RunPopupMenu(menu);
  }
  int16_t BorderStyle() const override { return border_style_; }
  void SetBorderStyle(int16_t v) override;
  int16_t StartUpPosition() const override { return start_up_position_; }
  void SetStartUpPosition(int16_t v) override;
  const Picture& Icon() const override { return icon_; }
  void SetIcon(const Picture& v) override;

  void ApplyGeometry() override;
  void ApplyCaption() override;
  void ApplyVisible() override {}
  void Paint(QPainter& painter) override;
  void WidgetResized() override;
  void WidgetClosing() override;
  // Shows the window (first time: placed as StartUpPosition says).
  void ShowWindow();

  int16_t border_style_ = 2;
  int16_t start_up_position_ = 0;
  Picture icon_;
  bool loaded_ = false;
  bool shown_ = false;
  bool unloaded_ = false;
  bool placed_ = false;
  // The control that holds this window's focus.
  WindowFocus focus_;
  // The nested loop of an interactive modal showing.
  QEventLoop* modal_loop_ = nullptr;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_TOOLKITS_QT_QT_CONTROLS_H_
