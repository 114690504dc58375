// The Qt toolkit's controls. Internal to toolkits/qt.
//
// Each control keeps its properties in the toolkits' common kinds (toolkits/common/node_kinds.h:
// what was set reads back exactly, in twips and toolkit colours) and shows them on its widget. Text
// boxes are the exception: the widget does the user's editing, and the control keeps a copy of the
// text that follows every change of the widget.
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
#include "toolkits/common/draw_log.h"
#include "toolkits/common/node_kinds.h"
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

class QtSurface;

// The state every Qt control has.
class QtNode : public ControlNode {
 public:
  using DrawingSurface = QtSurface;

  QtNode(QtToolkit* toolkit, ControlKind kind, std::string class_name, std::string name,
         int32_t index);
  ~QtNode() override;

  // The toolkit, nullptr once it is gone.
  QtToolkit* QtKit() const { return static_cast<QtToolkit*>(toolkit_); }
  QWidget* Widget() const { return widget_.data(); }
  // Takes `widget` as this control's view (nullptr for menus): focus policy, event bridge.
  void SetWidget(QWidget* widget);
  // The widget children go into.
  QWidget* ChildHost() const { return widget_.data(); }
  // The unloaded control keeps its widget, hidden and out of the window.
  void DetachView() override;
  void RepaintSelf() override;
  void FocusSelf() override;
  // The widget, for the kinds that have a window of their own; 0 once unloaded.
  uintptr_t NodeHandle() const override;

  Twips Tppx() const { return toolkit_ != nullptr ? toolkit_->TwipsPerPixelX() : 15; }
  Twips Tppy() const { return toolkit_ != nullptr ? toolkit_->TwipsPerPixelY() : 15; }
  Color Resolve(Color c) const { return toolkit_ != nullptr ? toolkit_->ResolveColor(c) : c; }

  // The view follows the properties.
  void ApplyGeometry() override;
  void ApplyColors() override { UpdateView(); }
  void ApplyFont() override {
    if (widget_ && KindHas(kind_, Capability::kFont)) widget_->setFont(ToQFont(font_));
  }
  void ApplyVisible() override;
  void ApplyEnabled() override {
    if (widget_) widget_->setEnabled(enabled_);
  }
  void UpdateView() override {
    if (widget_) widget_->update();
  }
  // QtCanvas: paints the control.
  virtual void Paint(QPainter& painter) { (void)painter; }
  // QtCanvas of a form: the window's size changed by the user.
  virtual void WidgetResized() {}
  virtual void WidgetClosing() {}

  QPointer<QWidget> widget_;
  bool applying_geometry_ = false;
};

QtNode* QtNodeOf(const Control& control);

// A drawing surface that records what is drawn and draws it at once into a raster that the
// widget shows when it paints.
class QtSurface : public RecordingSurface {
 public:
  // The log keeps the latest kLoggedOps operations since the last Cls.
  static constexpr size_t kLoggedOps = 256;

  explicit QtSurface(QtNode* node) : RecordingSurface(node, kLoggedOps), qt_node_(node) {}

  Twips TextWidth(std::string_view text) const override;
  Twips TextHeight(std::string_view text) const override;

  // Draws what was drawn since the last Cls, (0, 0) being the surface's inner corner.
  void Replay(QPainter& painter) const;

 protected:
  void Drew(const DrawOp& op) override;
  void Cleared() override;

 private:
  // The raster drawn into, at least the control's size in pixels.
  QImage& Canvas();

  QtNode* qt_node_;
  QImage canvas_;
};

class QtLabel : public NodeLabel<QtNode> {
 public:
  using NodeLabel::NodeLabel;
  void SetAlignment(int16_t v) override;
  void SetBackStyle(int16_t v) override;
  void SetWordWrap(bool v) override;
  void ApplyColors() override;
  void ApplyCaption() override;
};

class QtTextBox : public NodeTextBox<QtNode> {
 public:
  using NodeTextBox::NodeTextBox;
  ~QtTextBox() override;

  void SetText(const std::string& v) override;
  int32_t SelStart() const override;
  void SetSelStart(int32_t v) override;
  int32_t SelLength() const override;
  void SetSelLength(int32_t v) override;
  std::string SelText() const override;
  void SetLocked(bool v) override;
  void SetPasswordChar(const std::string& v) override;
  void SetAlignment(int16_t v) override;
  void SetBorderStyle(int16_t v) override;
  void ShowScrollBar(bool show) override;
  void Undo() override;
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

 protected:
  // The widget does the typing; an edit through the selection ends a run of typed characters.
  void ReplaceSelection(const std::string& text, bool typing) override;

 private:
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

class QtCommandButton : public NodeCommandButton<QtNode> {
 public:
  using NodeCommandButton::NodeCommandButton;
  // Fails with 5, naming the picture, unless its pixels match its size.
  void SetPicture(const Picture& v) override;
  void ApplyColors() override;
  void ApplyCaption() override;
};

class QtShape : public NodeShape<QtNode> {
 public:
  using NodeShape::NodeShape;
  void Paint(QPainter& painter) override;
};

class QtImage : public NodeImage<QtNode> {
 public:
  using NodeImage::NodeImage;
  void SetPicture(const Picture& v) override;
  void Paint(QPainter& painter) override;

  QImage image_;  // the picture converted once, when set
};

using QtMenu = NodeMenu<QtNode>;

class QtPictureBox : public NodePictureBox<QtNode> {
 public:
  using NodePictureBox::NodePictureBox;
  void SetPicture(const Picture& v) override;
  void Paint(QPainter& painter) override;

  QImage image_;  // the picture converted once, when set
};

class QtFrame : public NodeFrame<QtNode> {
 public:
  using NodeFrame::NodeFrame;
  void ApplyCaption() override { ApplyColors(); }
  void Paint(QPainter& painter) override;
};

class QtUserControl : public NodeUserControl<QtNode> {
 public:
  using NodeUserControl::NodeUserControl;
  void Paint(QPainter& painter) override;
};

class QtForm : public NodeForm<QtNode> {
 public:
  using NodeForm::NodeForm;
  void SetBorderStyle(int16_t v) override;
  void SetIcon(const Picture& v) override;

  void ApplyGeometry() override;
  void ApplyCaption() override;
  void ApplyVisible() override {}
  void Paint(QPainter& painter) override;
  void WidgetResized() override;
  void WidgetClosing() override;
  // Shows the window (first time: placed as StartUpPosition says).
  void ShowWindow() override;
  // Hides the window and ends an interactive modal showing.
  void HideWindow() override;

  bool placed_ = false;
  // The nested loop of an interactive modal showing.
  QEventLoop* modal_loop_ = nullptr;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_TOOLKITS_QT_QT_CONTROLS_H_
