#include "toolkits/qt/qt_controls.h"

#include <QAbstractScrollArea>
#include <QAbstractTextDocumentLayout>
#include <QCloseEvent>
#include <QFocusEvent>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QIcon>
#include <QLabel>
#include <QPaintEvent>
#include <QPalette>
#include <QPixmap>
#include <QPushButton>
#include <QRegularExpression>
#include <QResizeEvent>
#include <QScreen>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextOption>
#include <algorithm>
#include <cmath>

#include "platform/utf8.h"

namespace tarnsheets {
namespace {

int32_t RoundPixels(Twips v, Twips per_pixel) {
  return static_cast<int32_t>(std::lround(v / per_pixel));
}

Qt::Alignment HorizontalAlignment(int16_t alignment) {
  switch (alignment) {
    case 1:
      return Qt::AlignRight;
    case 2:
      return Qt::AlignHCenter;
    default:
      return Qt::AlignLeft;
  }
}

// Sets two colours of a widget's palette. A palette change restyles and repaints the widget, so a
// widget that already shows both colours is left alone: the editors set their colours again at
// every record shown.
void SetRoles(QWidget* widget, QPalette::ColorRole back_role, QColor back,
              QPalette::ColorRole fore_role, QColor fore) {
  QPalette palette = widget->palette();
  if (palette.isBrushSet(QPalette::Active, back_role) &&
      palette.isBrushSet(QPalette::Active, fore_role) && palette.color(back_role) == back &&
      palette.color(fore_role) == fore) {
    return;
  }
  palette.setColor(back_role, back);
  palette.setColor(fore_role, fore);
  widget->setPalette(palette);
}

}  // namespace

QFont ToQFont(const Font& font) {
  QFont f(QString::fromStdString(font.name));
  f.setPointSizeF(font.size > 0 ? font.size : 8.25);
  f.setBold(font.bold);
  f.setItalic(font.italic);
  f.setUnderline(font.underline);
  f.setStrikeOut(font.strikethrough);
  // Text is set glyph by glyph from the font's own advances, without kerning or ligatures, as the
  // designed faces were drawn; scripts that need shaping (Arabic, Indic, ...) are still shaped.
  // Laying out the editors' text for each record shown then costs half what it would otherwise.
  f.setStyleStrategy(QFont::PreferNoShaping);
  f.setKerning(false);
  return f;
}

QColor ToQColor(Color rgb) { return QColor(rgb & 0xFF, (rgb >> 8) & 0xFF, (rgb >> 16) & 0xFF); }

QRgb ToQRgb(Color rgb) { return qRgb(rgb & 0xFF, (rgb >> 8) & 0xFF, (rgb >> 16) & 0xFF); }

namespace {

bool PictureIsWhole(const Picture& picture) {
  return picture.width > 0 && picture.height > 0 &&
         picture.pixels.size() == static_cast<size_t>(picture.width) * picture.height;
}

}  // namespace

QImage ToQImage(const Picture& picture) {
  QImage image(picture.width, picture.height, QImage::Format_RGB32);
  for (int32_t y = 0; y < picture.height; ++y) {
    auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
    for (int32_t x = 0; x < picture.width; ++x) line[x] = ToQRgb(picture.PixelAt(x, y));
  }
  return image;
}

// The event bridge.

void QtEventBridge::Watch(QObject* object, QtNode* node) {
  nodes_[object] = node;
  object->installEventFilter(this);
}

void QtEventBridge::Unwatch(QObject* object) {
  nodes_.erase(object);
  object->removeEventFilter(this);
}

QtNode* QtEventBridge::NodeOf(const QObject* object) const {
  auto it = nodes_.find(object);
  return it == nodes_.end() ? nullptr : it->second;
}

void QtEventBridge::Forward(QObject* receiver, QEvent* event) {
  QObject* saved = forward_target_;
  forward_target_ = receiver;
  QCoreApplication::sendEvent(receiver, event);
  forward_target_ = saved;
}

bool QtEventBridge::eventFilter(QObject* watched, QEvent* event) {
  const QEvent::Type type = event->type();
  const bool key = type == QEvent::KeyPress || type == QEvent::KeyRelease;
  const bool mouse = type == QEvent::MouseButtonPress || type == QEvent::MouseButtonRelease ||
                     type == QEvent::MouseButtonDblClick || type == QEvent::MouseMove;
  if (key || mouse || type == QEvent::FocusIn || type == QEvent::Paint) {
    toolkit_->PlaceDeferredCarets();
  }
  if (type == QEvent::FocusOut && qobject_cast<QLineEdit*>(watched) != nullptr &&
      static_cast<QFocusEvent*>(event)->reason() != Qt::ActiveWindowFocusReason) {
    // A box keeps its selection when the focus leaves it; Qt's line edit would drop it.
    QFocusEvent keep(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QCoreApplication::sendEvent(watched, &keep);
    return true;
  }
  if (!key && !mouse) return false;
  if (forward_target_ != nullptr) {
    // A forwarded copy reaches its widget; what the widget ignores stops here.
    if (watched == forward_target_) return false;
    event->accept();
    return true;
  }
  QtNode* node = NodeOf(watched);
  if (node == nullptr) return false;
  event->accept();
  return key ? toolkit_->OnKey(*node, watched, event) : toolkit_->OnMouse(*node, watched, event);
}

// The painted widget.

QtCanvas::QtCanvas(QtNode* node, QWidget* parent) : QWidget(parent), node_(node) {}

void QtCanvas::paintEvent(QPaintEvent* /*event*/) {
  if (node_ == nullptr) return;
  QPainter painter(this);
  node_->Paint(painter);
}

void QtCanvas::closeEvent(QCloseEvent* event) {
  // Closing a form's window unloads the form; the toolkit hides the widget itself.
  event->ignore();
  if (node_ != nullptr) node_->WidgetClosing();
}

void QtCanvas::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  if (node_ != nullptr && !node_->applying_geometry_) node_->WidgetResized();
}

// Nodes.

QtNode::QtNode(QtToolkit* toolkit, ControlKind kind, std::string class_name, std::string name,
               int32_t index)
    : ControlNode(toolkit, kind, std::move(class_name), std::move(name), index) {
  if (toolkit != nullptr) toolkit->Register(this);
}

QtNode::~QtNode() {
  if (QtKit() != nullptr) QtKit()->Forget(this);
  if (widget_) {
    if (auto* canvas = dynamic_cast<QtCanvas*>(widget_.data())) canvas->node_ = nullptr;
    if (QtKit() != nullptr) QtKit()->Bridge().Unwatch(widget_.data());
    QObject::disconnect(widget_.data(), nullptr, nullptr, nullptr);
    widget_->hide();
    // The widget may be inside its own event handler: delete it from the event loop.
    widget_->deleteLater();
  }
}

void QtNode::SetWidget(QWidget* widget) {
  widget_ = widget;
  if (widget == nullptr) return;
  widget->setFocusPolicy(Qt::NoFocus);
  widget->setContextMenuPolicy(Qt::NoContextMenu);
  widget->setAcceptDrops(false);
  if (QtKit() != nullptr) QtKit()->Bridge().Watch(widget, this);
  if (auto* area = qobject_cast<QAbstractScrollArea*>(widget)) {
    area->viewport()->setContextMenuPolicy(Qt::NoContextMenu);
    area->viewport()->setAcceptDrops(false);
    if (QtKit() != nullptr) QtKit()->Bridge().Watch(area->viewport(), this);
  }
}

void QtNode::DetachView() {
  if (widget_) {
    widget_->hide();
    if (kind_ != ControlKind::kForm && widget_->parentWidget() != nullptr) {
      // The unloaded control keeps its widget, out of the window.
      widget_->setParent(nullptr);
    }
  }
}

uintptr_t QtNode::NodeHandle() const {
  if (kind_ == ControlKind::kLabel || kind_ == ControlKind::kShape ||
      kind_ == ControlKind::kImage || kind_ == ControlKind::kMenu || !attached_) {
    return 0;
  }
  return reinterpret_cast<uintptr_t>(widget_.data());
}

void QtNode::RepaintSelf() {
  if (toolkit_ != nullptr) toolkit_->Repaint(Self());
}

void QtNode::FocusSelf() {
  if (toolkit_ == nullptr) throw PlatformFailure(kErrInvalidProcedureCall);
  toolkit_->SetFocusTo(Self());
}

void QtNode::ApplyGeometry() {
  if (!widget_) return;
  applying_geometry_ = true;
  widget_->setGeometry(RoundPixels(left_, Tppx()), RoundPixels(top_, Tppy()),
                       std::max(0, RoundPixels(width_, Tppx())),
                       std::max(0, RoundPixels(height_, Tppy())));
  applying_geometry_ = false;
}

void QtNode::ApplyVisible() {
  if (widget_ && attached_) widget_->setVisible(visible_);
}

QtNode* QtNodeOf(const Control& control) {
  return dynamic_cast<QtNode*>(const_cast<Control*>(&control));
}

// Surfaces.

// The surface keeps what is drawn on it, as a persistent picture does: each operation draws at
// once into a raster the size of the control, and a paint shows the raster. So a control that
// draws on every change (a check editor drawing its glyph on each record) costs one picture, not
// a growing list of operations. Colours are resolved when drawn.
QImage& QtSurface::Canvas() {
  const int32_t w = std::max(1, RoundPixels(qt_node_->width_, qt_node_->Tppx()));
  const int32_t h = std::max(1, RoundPixels(qt_node_->height_, qt_node_->Tppy()));
  if (canvas_.width() < w || canvas_.height() < h) {
    // Grown, never shrunk: what lies outside shows again when the control grows back.
    QImage grown(std::max(w, canvas_.width()), std::max(h, canvas_.height()),
                 QImage::Format_ARGB32_Premultiplied);
    grown.fill(Qt::transparent);
    if (!canvas_.isNull()) {
      QPainter painter(&grown);
      painter.drawImage(QPoint(0, 0), canvas_);
    }
    canvas_ = std::move(grown);
  }
  return canvas_;
}

void QtSurface::Drew(const DrawOp& op) {
  QImage& canvas = Canvas();
  const Twips tx = qt_node_->Tppx(), ty = qt_node_->Tppy();
  const int32_t w = canvas.width(), h = canvas.height();
  const int32_t px1 = ToPixels(op.x1, tx), py1 = ToPixels(op.y1, ty);
  switch (op.kind) {
    case DrawOp::Kind::kLine: {
      // One pixel wide, from the first point towards the second, the second not drawn.
      const QRgb rgb = ToQRgb(qt_node_->Resolve(op.color));
      ForEachLinePixel(px1, py1, ToPixels(op.x2, tx), ToPixels(op.y2, ty),
                       [&](int32_t x, int32_t y) {
                         if (x < 0 || y < 0 || x >= w || y >= h) return;
                         reinterpret_cast<QRgb*>(canvas.scanLine(y))[x] = rgb;
                       });
      break;
    }
    case DrawOp::Kind::kBox: {
      const int32_t px2 = ToPixels(op.x2, tx), py2 = ToPixels(op.y2, ty);
      // Both corners filled, clipped to the raster.
      const int32_t left = std::max(0, std::min(px1, px2));
      const int32_t right = std::min(w - 1, std::max(px1, px2));
      const int32_t top = std::max(0, std::min(py1, py2));
      const int32_t bottom = std::min(h - 1, std::max(py1, py2));
      const QRgb rgb = ToQRgb(qt_node_->Resolve(op.color));
      for (int32_t y = top; y <= bottom; ++y) {
        QRgb* line = reinterpret_cast<QRgb*>(canvas.scanLine(y));
        std::fill(line + left, line + right + 1, rgb);
      }
      break;
    }
    case DrawOp::Kind::kPicture: {
      const Picture& picture = op.picture;
      for (int32_t row = std::max(0, -py1); row < picture.height && py1 + row < h; ++row) {
        QRgb* line = reinterpret_cast<QRgb*>(canvas.scanLine(py1 + row));
        for (int32_t col = std::max(0, -px1); col < picture.width && px1 + col < w; ++col) {
          line[px1 + col] = ToQRgb(picture.PixelAt(col, row));
        }
      }
      break;
    }
  }
  qt_node_->UpdateView();
}

void QtSurface::Cleared() {
  canvas_.fill(Qt::transparent);
  qt_node_->UpdateView();
}

Twips QtSurface::TextWidth(std::string_view text) const {
  const QFontMetricsF metrics(ToQFont(DrawingFont()));
  const QStringList lines = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()))
                                .replace(QStringLiteral("\r\n"), QStringLiteral("\n"))
                                .split(QRegularExpression(QStringLiteral("[\r\n]")));
  double widest = 0;
  for (const QString& line : lines) widest = std::max(widest, metrics.horizontalAdvance(line));
  return std::round(widest * qt_node_->Tppx());
}

Twips QtSurface::TextHeight(std::string_view text) const {
  const QFontMetricsF metrics(ToQFont(DrawingFont()));
  return std::round(LineCount(text) * metrics.height() * qt_node_->Tppy());
}

void QtSurface::Replay(QPainter& painter) const {
  if (!canvas_.isNull()) painter.drawImage(QPoint(0, 0), canvas_);
}

// Labels.

void QtLabel::SetAlignment(int16_t v) {
  alignment_ = v;
  if (auto* label = qobject_cast<QLabel*>(widget_.data())) {
    label->setAlignment(HorizontalAlignment(v) | Qt::AlignTop);
  }
}

void QtLabel::SetBackStyle(int16_t v) {
  back_style_ = v;
  ApplyColors();
}

void QtLabel::SetWordWrap(bool v) {
  word_wrap_ = v;
  if (auto* label = qobject_cast<QLabel*>(widget_.data())) label->setWordWrap(v);
}

void QtLabel::ApplyColors() {
  if (!widget_) return;
  SetRoles(widget_, QPalette::Window, ToQColor(Resolve(back_color_)), QPalette::WindowText,
           ToQColor(Resolve(fore_color_)));
  widget_->setAutoFillBackground(back_style_ != 0);
  widget_->update();
}

void QtLabel::ApplyCaption() {
  if (auto* label = qobject_cast<QLabel*>(widget_.data())) {
    label->setText(QString::fromStdString(caption_));
  }
}

// Text boxes.

namespace {

// Puts `text` into a multi-line box with the selection from `a` to `b` (the widget's units).
void ShowPlainText(QPlainTextEdit& plain, const QString& text, int32_t a, int32_t b) {
  QTextDocument* document = plain.document();
  if (plain.toPlainText() != text) {
    const int old_length = document->characterCount() - 1;
    const QTextCursor caret = plain.textCursor();
    // When the caret stays at the top, as from one record to the next, the new text goes in
    // after the old and the old is then taken out: the caret, before both, does not move, and
    // nothing has to place it again (placing it measures the line twice).
    const bool caret_stays = a == 0 && b == 0 && caret.anchor() == 0 && caret.position() == 0 &&
                             old_length > 0 && plain.verticalScrollBar()->value() == 0;
    // The text is replaced through a cursor of its own in one edit block: the document keeps its
    // layout and formats and lays out only the new text; setPlainText would rebuild them all.
    QTextCursor edit(document);
    edit.beginEditBlock();
    if (caret_stays) {
      edit.setPosition(old_length);
      edit.insertText(text);
      edit.setPosition(0);
      edit.setPosition(old_length, QTextCursor::KeepAnchor);
      edit.removeSelectedText();
    } else {
      edit.setPosition(0);
      edit.setPosition(old_length, QTextCursor::KeepAnchor);
      edit.insertText(text);
    }
    edit.endEditBlock();
    // A plain-text layout drops its shaped glyphs after laying out its lines, and shapes the
    // text again for the caret's x and again to paint. Kept, the text is shaped once.
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
      block.layout()->setCacheEnabled(true);
    }
    // Where the caret stays, nothing needs the new text laid out before it is painted.
    if (caret_stays) return;
  }
  QTextCursor cursor = plain.textCursor();
  if (cursor.anchor() != a || cursor.position() != b) {
    cursor.setPosition(a);
    cursor.setPosition(b, QTextCursor::KeepAnchor);
    plain.setTextCursor(cursor);
  }
}

}  // namespace

QtTextBox::~QtTextBox() {
  if (caret_deferred_ && toolkit_ != nullptr) QtKit()->ForgetDeferredCaret(this);
}

void QtTextBox::PlaceDeferredCaret() {
  if (!caret_deferred_) return;
  caret_deferred_ = false;
  if (QLineEdit* line = Line()) {
    showing_ = true;
    line->setCursorPosition(0);
    showing_ = false;
  }
}

QObject* QtTextBox::MouseReceiver() const {
  if (Plain()) return Plain()->viewport();
  return widget_.data();
}

int32_t QtTextBox::QtPos(int32_t model_pos) const {
  int32_t m = 0, q = 0;
  size_t i = 0;
  while (i < text_.size() && m < model_pos) {
    const size_t at = i;
    const char32_t cp = utf8::Next(text_, &i);
    const bool cr_of_break =
        multi_line_ && cp == '\r' && at + 1 < text_.size() && text_[at + 1] == '\n';
    if (!cr_of_break) q += cp > 0xFFFF ? 2 : 1;
    ++m;
  }
  return q;
}

int32_t QtTextBox::ModelPos(int32_t qt_pos) const {
  int32_t m = 0, q = 0;
  size_t i = 0;
  while (i < text_.size() && q < qt_pos) {
    const size_t at = i;
    const char32_t cp = utf8::Next(text_, &i);
    const bool cr_of_break =
        multi_line_ && cp == '\r' && at + 1 < text_.size() && text_[at + 1] == '\n';
    if (!cr_of_break) q += cp > 0xFFFF ? 2 : 1;
    ++m;
  }
  return m;
}

QString QtTextBox::ToQt(const std::string& text) const {
  QString s = QString::fromStdString(text);
  if (multi_line_) s.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  return s;
}

std::string QtTextBox::WidgetText() const {
  if (Plain()) {
    QString s = Plain()->toPlainText();
    s.replace(QStringLiteral("\n"), QStringLiteral("\r\n"));
    return s.toStdString();
  }
  if (Line()) return Line()->text().toStdString();
  return text_;
}

void QtTextBox::WidgetSelection(int32_t* start, int32_t* end) const {
  if (Plain()) {
    const QTextCursor cursor = Plain()->textCursor();
    *start = static_cast<int32_t>(cursor.selectionStart());
    *end = static_cast<int32_t>(cursor.selectionEnd());
    return;
  }
  if (Line()) {
    if (caret_deferred_) {
      *start = *end = 0;
      return;
    }
    if (Line()->hasSelectedText()) {
      *start = static_cast<int32_t>(Line()->selectionStart());
      *end = static_cast<int32_t>(Line()->selectionEnd());
    } else {
      *start = *end = static_cast<int32_t>(Line()->cursorPosition());
    }
    return;
  }
  *start = *end = 0;
}

void QtTextBox::ShowText(int32_t sel_start, int32_t sel_length) {
  showing_ = true;
  const int32_t a = QtPos(sel_start), b = QtPos(sel_start + sel_length);
  const QString text = ToQt(text_);
  if (QPlainTextEdit* plain = Plain()) {
    ShowPlainText(*plain, text, a, b);
  } else if (QLineEdit* line = Line()) {
    if (line->text() != text) line->setText(text);
    if (a == 0 && b == 0 && toolkit_ != nullptr && !line->hasFocus() && !line->hasSelectedText()) {
      // Placing the caret measures the line and tells the screen reader and the window; a box
      // without the focus shows no caret, so that waits for the next paint or the focus.
      if (line->cursorPosition() != 0 && !caret_deferred_) {
        caret_deferred_ = true;
        QtKit()->DeferCaretHome(this);
      }
    } else {
      if (caret_deferred_) {
        caret_deferred_ = false;
        if (toolkit_ != nullptr) QtKit()->ForgetDeferredCaret(this);
      }
      if (b > a) {
        line->setSelection(a, b - a);
      } else {
        line->setCursorPosition(a);
      }
    }
  }
  showing_ = false;
}

void QtTextBox::SetText(const std::string& v) {
  if (v == text_) return;
  text_ = v;
  can_undo_ = false;
  typing_run_ = false;
  ShowText(0, 0);
  Raise(*this, &ControlEvents::Change);
}

int32_t QtTextBox::SelStart() const {
  int32_t a = 0, b = 0;
  WidgetSelection(&a, &b);
  return ModelPos(a);
}

int32_t QtTextBox::SelLength() const {
  int32_t a = 0, b = 0;
  WidgetSelection(&a, &b);
  return ModelPos(b) - ModelPos(a);
}

void QtTextBox::SetSelStart(int32_t v) {
  if (v < 0) throw PlatformFailure(kErrInvalidProcedureCall);
  typing_run_ = false;
  ShowText(std::min(v, TextLength(text_)), 0);
}

void QtTextBox::SetSelLength(int32_t v) {
  if (v < 0) throw PlatformFailure(kErrInvalidProcedureCall);
  typing_run_ = false;
  const int32_t start = SelStart();
  ShowText(start, std::min(v, TextLength(text_) - start));
}

std::string QtTextBox::SelText() const {
  const int32_t start = SelStart(), length = SelLength();
  const size_t a = ByteOffset(text_, start), b = ByteOffset(text_, start + length);
  return text_.substr(a, b - a);
}

void QtTextBox::ReplaceSelection(const std::string& text, bool /*typing*/) {
  const std::string inserted = Insertable(text);
  const int32_t start = SelStart(), length = SelLength();
  const std::string before = text_;
  const size_t a = ByteOffset(text_, start), b = ByteOffset(text_, start + length);
  text_.replace(a, b - a, inserted);
  ShowText(start + TextLength(inserted), 0);
  typing_run_ = false;
  if (text_ != before) RecordEdit(before, start, length, false);
}

void QtTextBox::BeforeUserEdit(bool typing) {
  typing_now_ = typing;
  pre_sel_start_ = SelStart();
  pre_sel_length_ = SelLength();
}

void QtTextBox::WidgetTextChanged() {
  if (showing_) return;
  const std::string now = WidgetText();
  if (now == text_) return;
  const std::string before = text_;
  text_ = now;
  RecordEdit(before, pre_sel_start_, pre_sel_length_, typing_now_);
}

void QtTextBox::SetLocked(bool v) {
  locked_ = v;
  if (Line() && Line()->isReadOnly() != v) Line()->setReadOnly(v);
  if (Plain() && Plain()->isReadOnly() != v) {
    Plain()->setReadOnly(v);
    // A locked box still lets the user select with the keyboard.
    Plain()->setTextInteractionFlags(v ? (Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard)
                                       : Qt::TextEditorInteraction);
  }
}

void QtTextBox::SetPasswordChar(const std::string& v) {
  NodeTextBox::SetPasswordChar(v);
  if (!Line()) return;
  if (v.empty()) {
    Line()->setEchoMode(QLineEdit::Normal);
    Line()->setStyleSheet(QString());
  } else {
    Line()->setEchoMode(QLineEdit::Password);
    const QString c = QString::fromStdString(v);
    Line()->setStyleSheet(QStringLiteral("QLineEdit { lineedit-password-character: %1; }")
                              .arg(c.isEmpty() ? 42 : static_cast<int>(c.toUcs4().value(0))));
  }
}

void QtTextBox::SetAlignment(int16_t v) {
  alignment_ = v;
  if (Line()) Line()->setAlignment(HorizontalAlignment(v) | Qt::AlignVCenter);
  if (Plain()) {
    QTextOption option = Plain()->document()->defaultTextOption();
    option.setAlignment(HorizontalAlignment(v));
    Plain()->document()->setDefaultTextOption(option);
  }
}

void QtTextBox::SetBorderStyle(int16_t v) {
  border_style_ = v;
  if (Line()) Line()->setFrame(v != 0);
  if (Plain()) Plain()->setFrameShape(v != 0 ? QFrame::StyledPanel : QFrame::NoFrame);
}

void QtTextBox::ShowScrollBar(bool show) {
  scroll_bar_ = multi_line_ && show;
  if (Plain()) {
    Plain()->setVerticalScrollBarPolicy(scroll_bar_ ? Qt::ScrollBarAlwaysOn
                                                    : Qt::ScrollBarAlwaysOff);
  }
}

void QtTextBox::Undo() {
  if (locked_ || !can_undo_) return;
  // The undo is itself an edit: what it replaces becomes the next undo.
  const std::string now = text_;
  const int32_t now_start = SelStart(), now_length = SelLength();
  text_ = undo_text_;
  ShowText(std::min(undo_sel_start_, TextLength(text_)),
           std::max(0, std::min(undo_sel_length_, TextLength(text_) - undo_sel_start_)));
  undo_text_ = now;
  undo_sel_start_ = now_start;
  undo_sel_length_ = now_length;
  typing_run_ = false;
  if (text_ != undo_text_) Raise(*this, &ControlEvents::Change);
}

void QtTextBox::SetAccessibleText(const std::string& name, const std::string& description) {
  if (!widget_) return;
  widget_->setAccessibleName(QString::fromStdString(name));
  widget_->setAccessibleDescription(QString::fromStdString(description));
}

std::string QtTextBox::AccessibleName() const {
  return widget_ ? widget_->accessibleName().toStdString() : std::string();
}

std::string QtTextBox::AccessibleDescription() const {
  return widget_ ? widget_->accessibleDescription().toStdString() : std::string();
}

void QtTextBox::ApplyColors() {
  if (!widget_) return;
  const QColor back = ToQColor(Resolve(back_color_)), fore = ToQColor(Resolve(fore_color_));
  const std::pair<QRgb, QRgb> colors(back.rgb(), fore.rgb());
  if (applied_colors_ == colors) return;
  applied_colors_ = colors;
  SetRoles(widget_, QPalette::Base, back, QPalette::Text, fore);
  // A box without the focus hides its selection, which it keeps: the inactive highlight is the
  // box's own colours. (A multi-line box paints an unfocused selection in these.)
  QPalette palette = widget_->palette();
  if (palette.color(QPalette::Inactive, QPalette::Highlight) != back ||
      palette.color(QPalette::Inactive, QPalette::HighlightedText) != fore) {
    palette.setColor(QPalette::Inactive, QPalette::Highlight, back);
    palette.setColor(QPalette::Inactive, QPalette::HighlightedText, fore);
    widget_->setPalette(palette);
  }
}

// Command buttons.

void QtCommandButton::SetPicture(const Picture& v) {
  CheckPictureSize(v);
  picture_ = v;
  ApplyCaption();
}

void QtCommandButton::ApplyCaption() {
  auto* button = qobject_cast<QPushButton*>(widget_.data());
  if (button == nullptr) return;
  if (picture_.width > 0 && picture_.height > 0) {
    button->setText(QString());
    button->setIcon(QIcon(QPixmap::fromImage(ToQImage(picture_))));
    button->setIconSize(QSize(picture_.width, picture_.height));
  } else {
    button->setIcon(QIcon());
    button->setText(QString::fromStdString(caption_));
  }
}

void QtCommandButton::ApplyColors() {
  if (!widget_) return;
  SetRoles(widget_, QPalette::Button, ToQColor(Resolve(back_color_)), QPalette::ButtonText,
           ToQColor(Resolve(fore_color_)));
}

// Shapes and images.

void QtShape::Paint(QPainter& painter) {
  const int32_t w = RoundPixels(width_, Tppx()), h = RoundPixels(height_, Tppy());
  if (w <= 0 || h <= 0) return;
  const QRect whole(0, 0, w, h);
  if (back_style_ != 0) painter.fillRect(whole, ToQColor(Resolve(back_color_)));
  Qt::BrushStyle hatch = Qt::NoBrush;
  switch (fill_style_) {
    case 0:
      hatch = Qt::SolidPattern;
      break;
    case 2:
      hatch = Qt::HorPattern;
      break;
    case 3:
      hatch = Qt::VerPattern;
      break;
    case 4:
      hatch = Qt::BDiagPattern;
      break;
    case 5:
      hatch = Qt::FDiagPattern;
      break;
    case 6:
      hatch = Qt::CrossPattern;
      break;
    case 7:
      hatch = Qt::DiagCrossPattern;
      break;
    default:
      break;
  }
  if (hatch != Qt::NoBrush) painter.fillRect(whole, QBrush(ToQColor(Resolve(fill_color_)), hatch));
  // The border lies inside the rectangle, BorderWidth pixels thick.
  const QColor border = ToQColor(Resolve(border_color_));
  const int32_t bw = std::min<int32_t>(border_width_, std::max(1, std::min(w, h) / 2));
  painter.fillRect(QRect(0, 0, w, bw), border);
  painter.fillRect(QRect(0, h - bw, w, bw), border);
  painter.fillRect(QRect(0, 0, bw, h), border);
  painter.fillRect(QRect(w - bw, 0, bw, h), border);
}

void QtImage::SetPicture(const Picture& v) {
  image_ = PictureIsWhole(v) ? ToQImage(v) : QImage();
  NodeImage::SetPicture(v);
}

void QtImage::Paint(QPainter& painter) {
  if (image_.isNull()) return;
  if (stretch_) {
    painter.drawImage(QRect(0, 0, RoundPixels(width_, Tppx()), RoundPixels(height_, Tppy())),
                      image_);
  } else {
    painter.drawImage(QPoint(0, 0), image_);
  }
}

// Picture boxes, frames, user controls.

void QtPictureBox::SetPicture(const Picture& v) {
  image_ = PictureIsWhole(v) ? ToQImage(v) : QImage();
  NodePictureBox::SetPicture(v);
}

void QtPictureBox::Paint(QPainter& painter) {
  const int32_t w = RoundPixels(width_, Tppx()), h = RoundPixels(height_, Tppy());
  painter.fillRect(QRect(0, 0, w, h), ToQColor(Resolve(back_color_)));
  const int32_t inset = border_style_ != 0 ? 1 : 0;
  painter.save();
  painter.translate(inset, inset);
  if (!image_.isNull()) painter.drawImage(QPoint(0, 0), image_);
  surface_.Replay(painter);
  painter.restore();
  if (inset != 0) {
    painter.setPen(ToQColor(Resolve(0x80000010u)));
    painter.drawRect(0, 0, w - 1, h - 1);
  }
}

void QtFrame::Paint(QPainter& painter) {
  const int32_t w = RoundPixels(width_, Tppx()), h = RoundPixels(height_, Tppy());
  painter.fillRect(QRect(0, 0, w, h), ToQColor(Resolve(back_color_)));
  const QFont font = ToQFont(font_);
  painter.setFont(font);
  const QFontMetrics metrics(font);
  const int32_t top = caption_.empty() ? 0 : metrics.height() / 2;
  if (border_style_ != 0) {
    // An etched rectangle: shadow, then highlight one pixel in.
    painter.setPen(ToQColor(Resolve(0x80000010u)));
    painter.drawRect(0, top, w - 2, h - top - 2);
    painter.setPen(ToQColor(Resolve(0x80000014u)));
    painter.drawRect(1, top + 1, w - 2, h - top - 2);
  }
  if (!caption_.empty()) {
    const QString text = QString::fromStdString(caption_);
    const int32_t tw = metrics.horizontalAdvance(text);
    painter.fillRect(QRect(6, 0, tw + 4, metrics.height()), ToQColor(Resolve(back_color_)));
    painter.setPen(ToQColor(Resolve(fore_color_)));
    painter.drawText(QPoint(8, metrics.ascent()), text);
  }
}

void QtUserControl::Paint(QPainter& painter) {
  painter.fillRect(QRect(0, 0, RoundPixels(width_, Tppx()), RoundPixels(height_, Tppy())),
                   ToQColor(Resolve(back_color_)));
  surface_.Replay(painter);
}

// Forms.

void QtForm::ApplyGeometry() {
  if (!widget_) return;
  applying_geometry_ = true;
  widget_->move(RoundPixels(left_, Tppx()), RoundPixels(top_, Tppy()));
  widget_->resize(std::max(1, RoundPixels(width_, Tppx())),
                  std::max(1, RoundPixels(height_, Tppy())));
  applying_geometry_ = false;
}

void QtForm::ApplyCaption() {
  if (widget_) widget_->setWindowTitle(QString::fromStdString(caption_));
}

void QtForm::Paint(QPainter& painter) {
  painter.fillRect(QRect(0, 0, widget_->width(), widget_->height()),
                   ToQColor(Resolve(back_color_)));
}

void QtForm::WidgetResized() {
  // The user resized the window: the client area follows, with Resize.
  if (!widget_) return;
  const Twips w = widget_->width() * Tppx(), h = widget_->height() * Tppy();
  if (RoundPixels(width_, Tppx()) == widget_->width() &&
      RoundPixels(height_, Tppy()) == widget_->height()) {
    return;
  }
  width_ = w;
  height_ = h;
  SizeChanged();
}

void QtForm::WidgetClosing() {
  if (toolkit_ != nullptr && !unloaded_) toolkit_->Unload(*this);
}

void QtForm::SetBorderStyle(int16_t v) {
  border_style_ = v;
  if (!widget_) return;
  Qt::WindowFlags flags = Qt::Window;
  switch (v) {
    case 0:
      flags |= Qt::FramelessWindowHint;
      break;
    case 1:
    case 3:
      flags |= Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint;
      if (v == 1) flags |= Qt::WindowMinimizeButtonHint;
      break;
    default:
      break;
  }
  const bool was_visible = widget_->isVisible();
  widget_->setWindowFlags(flags);
  if (v == 1 || v == 3) {
    widget_->setFixedSize(widget_->size());
  } else {
    widget_->setMinimumSize(0, 0);
    widget_->setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
  }
  if (was_visible) widget_->show();
}

void QtForm::SetIcon(const Picture& v) {
  icon_ = v;
  if (!widget_) return;
  if (v.width > 0 && v.pixels.size() == static_cast<size_t>(v.width) * v.height) {
    widget_->setWindowIcon(QIcon(QPixmap::fromImage(ToQImage(v))));
  } else {
    widget_->setWindowIcon(QIcon());
  }
}

void QtForm::ShowWindow() {
  if (!widget_) return;
  if (!placed_) {
    placed_ = true;
    if (start_up_position_ == 1 || start_up_position_ == 2) {
      QRect area;
      if (start_up_position_ == 1 && toolkit_ != nullptr && toolkit_->ActiveForm() != nullptr &&
          toolkit_->ActiveForm() != this) {
        if (QWidget* owner = QtKit()->WidgetOf(*toolkit_->ActiveForm())) {
          area = owner->frameGeometry();
        }
      }
      if (area.isEmpty()) {
        if (QScreen* screen = QGuiApplication::primaryScreen()) area = screen->availableGeometry();
      }
      if (!area.isEmpty()) {
        QRect frame = widget_->frameGeometry();
        frame.moveCenter(area.center());
        left_ = frame.left() * Tppx();
        top_ = frame.top() * Tppy();
        ApplyGeometry();
      }
    }
  }
  widget_->show();
}

void QtForm::HideWindow() {
  if (widget_) widget_->hide();
  if (modal_loop_ != nullptr) modal_loop_->quit();
}

}  // namespace tarnsheets
