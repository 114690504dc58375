#include "toolkits/qt/qt_toolkit.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPushButton>
#include <QScreen>
#include <algorithm>
#include <cmath>

#include "tarnsheets/failure.h"
#include "toolkits/common/control_rules.h"
#include "toolkits/qt/qt_controls.h"
#include "toolkits/qt/qt_fonts.h"

namespace tarnsheets {
namespace {

// The key codes of KeyDown and KeyUp.
int16_t KeyCodeOf(int qt_key) {
  if (qt_key >= Qt::Key_A && qt_key <= Qt::Key_Z) return static_cast<int16_t>(qt_key);
  if (qt_key >= Qt::Key_0 && qt_key <= Qt::Key_9) return static_cast<int16_t>(qt_key);
  if (qt_key >= Qt::Key_F1 && qt_key <= Qt::Key_F24) {
    return static_cast<int16_t>(112 + (qt_key - Qt::Key_F1));
  }
  switch (qt_key) {
    case Qt::Key_Backspace:
      return kKeyBack;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
      return kKeyTab;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return kKeyReturn;
    case Qt::Key_Shift:
      return 16;
    case Qt::Key_Control:
      return 17;
    case Qt::Key_Alt:
      return 18;
    case Qt::Key_Escape:
      return kKeyEscape;
    case Qt::Key_Space:
      return kKeySpace;
    case Qt::Key_PageUp:
      return 33;
    case Qt::Key_PageDown:
      return 34;
    case Qt::Key_End:
      return kKeyEnd;
    case Qt::Key_Home:
      return kKeyHome;
    case Qt::Key_Left:
      return kKeyLeft;
    case Qt::Key_Up:
      return kKeyUp;
    case Qt::Key_Right:
      return kKeyRight;
    case Qt::Key_Down:
      return kKeyDown;
    case Qt::Key_Insert:
      return 45;
    case Qt::Key_Delete:
      return kKeyDelete;
    default:
      return 0;
  }
}

int QtKeyOf(int16_t code) {
  if ((code >= 'A' && code <= 'Z') || (code >= '0' && code <= '9')) return code;
  if (code >= 112 && code < 112 + 24) return Qt::Key_F1 + (code - 112);
  switch (code) {
    case kKeyBack:
      return Qt::Key_Backspace;
    case kKeyTab:
      return Qt::Key_Tab;
    case kKeyReturn:
      return Qt::Key_Return;
    case 16:
      return Qt::Key_Shift;
    case 17:
      return Qt::Key_Control;
    case 18:
      return Qt::Key_Alt;
    case kKeyEscape:
      return Qt::Key_Escape;
    case kKeySpace:
      return Qt::Key_Space;
    case 33:
      return Qt::Key_PageUp;
    case 34:
      return Qt::Key_PageDown;
    case kKeyEnd:
      return Qt::Key_End;
    case kKeyHome:
      return Qt::Key_Home;
    case kKeyLeft:
      return Qt::Key_Left;
    case kKeyUp:
      return Qt::Key_Up;
    case kKeyRight:
      return Qt::Key_Right;
    case kKeyDown:
      return Qt::Key_Down;
    case 45:
      return Qt::Key_Insert;
    case kKeyDelete:
      return Qt::Key_Delete;
    default:
      return Qt::Key_unknown;
  }
}

// The text a key types by itself (the keys that raise KeyPress).
QString TextOfKey(int16_t code) {
  switch (code) {
    case kKeyBack:
      return QStringLiteral("\b");
    case kKeyTab:
      return QStringLiteral("\t");
    case kKeyReturn:
      return QStringLiteral("\r");
    case kKeyEscape:
      return QString(QChar(27));
    case kKeySpace:
      return QStringLiteral(" ");
    default:
      return QString();
  }
}

int16_t ShiftOf(Qt::KeyboardModifiers modifiers) {
  int16_t shift = 0;
  if (modifiers & Qt::ShiftModifier) shift |= kShiftMask;
  if (modifiers & Qt::ControlModifier) shift |= kCtrlMask;
  if (modifiers & Qt::AltModifier) shift |= kAltMask;
  return shift;
}

Qt::KeyboardModifiers ModifiersOf(int16_t shift) {
  Qt::KeyboardModifiers modifiers = Qt::NoModifier;
  if (shift & kShiftMask) modifiers |= Qt::ShiftModifier;
  if (shift & kCtrlMask) modifiers |= Qt::ControlModifier;
  if (shift & kAltMask) modifiers |= Qt::AltModifier;
  return modifiers;
}

int16_t ButtonOf(Qt::MouseButtons buttons) {
  int16_t b = 0;
  if (buttons & Qt::LeftButton) b |= kLeftButton;
  if (buttons & Qt::RightButton) b |= kRightButton;
  if (buttons & Qt::MiddleButton) b |= kMiddleButton;
  return b;
}

Qt::MouseButton QtButtonOf(int16_t button) {
  if (button & kLeftButton) return Qt::LeftButton;
  if (button & kRightButton) return Qt::RightButton;
  if (button & kMiddleButton) return Qt::MiddleButton;
  return Qt::NoButton;
}

QApplication* EnsureApplication() {
  if (auto* app = qobject_cast<QApplication*>(QCoreApplication::instance())) return app;
  if (QCoreApplication::instance() != nullptr) {
    throw Failure(kErrInvalidProcedureCall,
                  "Invalid procedure call or argument: the Qt toolkit needs a QApplication, and "
                  "the process already runs another kind of Qt application");
  }
  // The application lives until the process ends; argv must outlive it.
  static int argc = 1;
  static char arg0[] = "tarnsheets";
  static char* argv[] = {arg0, nullptr};
  return new QApplication(argc, argv);
}

}  // namespace

QtToolkit::QtToolkit(DialogMode mode) : mode_(mode) {
  EnsureApplication();
  InstallDesignedFontSubstitutions();
  bridge_ = std::make_unique<QtEventBridge>(this);
  if (QScreen* screen = QGuiApplication::primaryScreen()) {
    const double dpi_x = screen->logicalDotsPerInchX(), dpi_y = screen->logicalDotsPerInchY();
    SetTwipsPerPixel(dpi_x > 0 ? 1440.0 / dpi_x : TwipsPerPixelX(),
                     dpi_y > 0 ? 1440.0 / dpi_y : TwipsPerPixelY());
  }
}

QtToolkit::~QtToolkit() {
  // Controls may outlive the toolkit through shared references; they must not call back, and
  // their windows go with the toolkit.
  std::vector<QWidget*> windows;
  for (QtNode* node : nodes_) {
    node->toolkit_ = nullptr;
    if (node->widget_ && node->widget_->parentWidget() == nullptr) {
      if (auto* canvas = dynamic_cast<QtCanvas*>(node->widget_.data())) canvas->node_ = nullptr;
      windows.push_back(node->widget_.data());
    }
  }
  for (const auto& form : Forms()) {
    if (QtNode* node = QtNodeOf(*form)) node->Detach();
  }
  for (QWidget* window : windows) delete window;
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QtNode& QtToolkit::QtNodeFor(const Control& control) const {
  return static_cast<QtNode&>(Node(control));
}

QtNode* QtToolkit::NodeOfWidget(const QWidget* widget) const { return bridge_->NodeOf(widget); }

QWidget* QtToolkit::WidgetOf(const Control& control) const {
  const QtNode* node = QtNodeOf(control);
  return node != nullptr && node->attached_ ? node->Widget() : nullptr;
}

namespace {

// Places the deferred carets when a window is about to repaint, so that they are painted in the
// same pass as the text that moved them.
class CaretWatch : public QObject {
 public:
  explicit CaretWatch(QtToolkit* toolkit) : toolkit_(toolkit) {}

 protected:
  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    if (event->type() == QEvent::UpdateRequest) toolkit_->PlaceDeferredCarets();
    return false;
  }

 private:
  QtToolkit* toolkit_;
};

}  // namespace

void QtToolkit::DeferCaretHome(QtTextBox* box) {
  if (deferred_carets_.empty()) {
    if (!caret_watch_) caret_watch_ = std::make_unique<CaretWatch>(this);
    QCoreApplication::instance()->installEventFilter(caret_watch_.get());
  }
  deferred_carets_.push_back(box);
}

void QtToolkit::ForgetDeferredCaret(QtTextBox* box) {
  deferred_carets_.erase(std::remove(deferred_carets_.begin(), deferred_carets_.end(), box),
                         deferred_carets_.end());
  if (deferred_carets_.empty() && caret_watch_) {
    QCoreApplication::instance()->removeEventFilter(caret_watch_.get());
  }
}

void QtToolkit::PlaceDeferredCarets() {
  if (deferred_carets_.empty()) return;
  QCoreApplication::instance()->removeEventFilter(caret_watch_.get());
  std::vector<QtTextBox*> boxes;
  boxes.swap(deferred_carets_);
  for (QtTextBox* box : boxes) box->PlaceDeferredCaret();
}

void QtToolkit::ProcessEvents() {
  QCoreApplication::processEvents();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// Screen, colours, clipboard.

void QtToolkit::TwipsPerPixelChanged() {
  for (QtNode* node : nodes_) node->ApplyGeometry();
}

SheetRect QtToolkit::WindowRect(const Control& control) const {
  if (control.Kind() == ControlKind::kMenu) return SheetRect{};
  const QtNode& node = QtNodeFor(control);
  if (QWidget* w = node.Widget(); w != nullptr && node.attached_) {
    QRect r;
    if (w->isWindow()) {
      r = w->frameGeometry();
    } else {
      r = QRect(w->mapToGlobal(QPoint(0, 0)), w->size());
    }
    return SheetRect{r.left(), r.top(), r.left() + r.width(), r.top() + r.height()};
  }
  return WindowRectFromTwips(control);
}

Color QtToolkit::ResolveColor(Color color) const {
  if (!IsSystemColor(color)) return color;
  const QPalette palette = QGuiApplication::palette();
  QColor c;
  switch (color & 0xFF) {
    case 0x00:  // scroll bars
      c = palette.color(QPalette::Button);
      break;
    case 0x01:  // desktop
      c = palette.color(QPalette::Dark);
      break;
    case 0x02:  // active title bar
      c = palette.color(QPalette::Highlight);
      break;
    case 0x03:  // inactive title bar
      c = palette.color(QPalette::Mid);
      break;
    case 0x04:  // menu bar
      c = palette.color(QPalette::Window);
      break;
    case 0x05:  // window background
      c = palette.color(QPalette::Base);
      break;
    case 0x06:  // window frame
      c = palette.color(QPalette::Shadow);
      break;
    case 0x07:  // menu text
      c = palette.color(QPalette::WindowText);
      break;
    case 0x08:  // window text
      c = palette.color(QPalette::Text);
      break;
    case 0x09:  // active title bar text
      c = palette.color(QPalette::HighlightedText);
      break;
    case 0x0A:  // active border
    case 0x0B:  // inactive border
      c = palette.color(QPalette::Midlight);
      break;
    case 0x0C:  // application workspace
      c = palette.color(QPalette::Dark);
      break;
    case 0x0D:  // highlight
      c = palette.color(QPalette::Highlight);
      break;
    case 0x0E:  // highlight text
      c = palette.color(QPalette::HighlightedText);
      break;
    case 0x0F:  // button face
      c = palette.color(QPalette::Button);
      break;
    case 0x10:  // button shadow
      c = palette.color(QPalette::Dark);
      break;
    case 0x11:  // disabled text
      c = palette.color(QPalette::Disabled, QPalette::Text);
      break;
    case 0x12:  // button text
      c = palette.color(QPalette::ButtonText);
      break;
    case 0x13:  // inactive title bar text
      c = palette.color(QPalette::Inactive, QPalette::WindowText);
      break;
    case 0x14:  // button highlight
      c = palette.color(QPalette::Light);
      break;
    case 0x15:  // 3-D dark shadow
      c = palette.color(QPalette::Shadow);
      break;
    case 0x16:  // 3-D light
      c = palette.color(QPalette::Midlight);
      break;
    case 0x17:  // tooltip text
      c = palette.color(QPalette::ToolTipText);
      break;
    case 0x18:  // tooltip background
      c = palette.color(QPalette::ToolTipBase);
      break;
    default:
      return 0;
  }
  return Rgb(static_cast<uint32_t>(c.red()), static_cast<uint32_t>(c.green()),
             static_cast<uint32_t>(c.blue()));
}

std::string QtToolkit::ClipboardText() const {
  return QGuiApplication::clipboard()->text().toStdString();
}

void QtToolkit::SetClipboardText(const std::string& text) {
  QGuiApplication::clipboard()->setText(QString::fromStdString(text));
}

void QtToolkit::FormActivated(Form* form) {
  QWidget* window = form != nullptr ? QtNodeFor(*form).Widget() : nullptr;
  if (window != nullptr && window->isVisible()) {
    window->activateWindow();
    ApplyWidgetFocus(*form);
  }
}

// Creation.

std::shared_ptr<Control> QtToolkit::NewControl(ControlKind kind, const std::string& class_name,
                                               const std::string& name, int32_t index,
                                               bool multi_line) {
  return MakeControl<QtLabel, QtTextBox, QtCommandButton, QtPictureBox, QtShape, QtFrame, QtImage,
                     QtMenu, QtUserControl, QtForm>(this, kind, class_name, name, index,
                                                    multi_line);
}

void QtToolkit::Realize(ControlNode& control_node) {
  auto& node = static_cast<QtNode&>(control_node);
  if (node.kind_ == ControlKind::kForm) {
    auto* window = new QtCanvas(&node, nullptr);
    window->setWindowFlag(Qt::Window);
    node.SetWidget(window);
    node.ApplyGeometry();
    node.ApplyFont();
    node.ApplyCaption();
    return;
  }
  // The widget, inside the parent's.
  QWidget* host = QtNodeFor(*node.parent_).ChildHost();
  QWidget* widget = nullptr;
  switch (node.kind_) {
    case ControlKind::kLabel: {
      auto* label = new QLabel(host);
      label->setTextFormat(Qt::PlainText);
      label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
      widget = label;
      break;
    }
    case ControlKind::kTextBox: {
      auto* box = dynamic_cast<QtTextBox*>(&node);
      if (box->multi_line_) {
        auto* edit = new QPlainTextEdit(host);
        edit->setUndoRedoEnabled(false);
        // The designed boxes are one or a few lines high; a single pixel around the text, as in
        // a single-line box, keeps their first line whole.
        edit->document()->setDocumentMargin(1);
        edit->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        edit->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        QObject::connect(edit, &QPlainTextEdit::textChanged, edit,
                         [box] { box->WidgetTextChanged(); });
        widget = edit;
      } else {
        auto* edit = new QLineEdit(host);
        edit->setDragEnabled(false);
        QObject::connect(edit, &QLineEdit::textChanged, edit, [box] { box->WidgetTextChanged(); });
        widget = edit;
      }
      break;
    }
    case ControlKind::kCommandButton: {
      auto* button = new QPushButton(host);
      button->setAutoDefault(false);
      widget = button;
      break;
    }
    case ControlKind::kMenu:
      break;
    default: {
      auto* canvas = new QtCanvas(&node, host);
      if (node.kind_ == ControlKind::kShape) {
        canvas->setAttribute(Qt::WA_TransparentForMouseEvents);
      }
      widget = canvas;
      break;
    }
  }
  node.SetWidget(widget);
  if (auto* box = dynamic_cast<QtTextBox*>(&node)) {
    box->SetLocked(box->locked_);
    box->SetBorderStyle(box->border_style_);
  }
  node.ApplyAll();
}

// Focus.

void QtToolkit::ApplyWidgetFocus(Form& form) {
  Control* focus = Window(form).focus_.focused.get();
  QWidget* widget = focus != nullptr ? QtNodeFor(*focus).Widget() : nullptr;
  QWidget* window = QtNodeFor(form).Widget();
  if (widget != nullptr) {
    widget->setFocus(Qt::OtherFocusReason);
  } else if (window != nullptr && window->focusWidget() != nullptr) {
    window->focusWidget()->clearFocus();
  }
}

// Real input events.

bool QtToolkit::OnKey(QtNode& node, QObject* receiver, QEvent* event) {
  auto* ke = static_cast<QKeyEvent*>(event);
  Control& control = node.Self();
  const std::shared_ptr<Control> keep = control.shared_from_this();
  if (!node.attached_) return true;
  const int qt_key = ke->key();
  const Qt::KeyboardModifiers modifiers = ke->modifiers();
  const int16_t shift = ShiftOf(modifiers);
  const bool press = ke->type() == QEvent::KeyPress;

  if ((qt_key == Qt::Key_Tab || qt_key == Qt::Key_Backtab) &&
      !(modifiers & (Qt::ControlModifier | Qt::AltModifier))) {
    // Our own focus chain; Tab raises no key events.
    if (press) {
      if (Form* form = FormOf(control)) {
        Rules().Tab(*form, qt_key == Qt::Key_Backtab || (shift & kShiftMask) != 0);
      }
    }
    return true;
  }

  const int16_t code = KeyCodeOf(qt_key);
  auto* box = dynamic_cast<QtTextBox*>(&control);
  if (!press) {
    int16_t up = code, up_shift = shift;
    Raise(control, &ControlEvents::KeyUp, up, up_shift);
    if (node.attached_) {
      QKeyEvent copy(QEvent::KeyRelease, qt_key, modifiers, ke->text(), ke->isAutoRepeat());
      bridge_->Forward(receiver, &copy);
    }
    ClickOnSpaceRelease(control, up);
    return true;
  }

  int16_t down = code, down_shift = shift;
  Raise(control, &ControlEvents::KeyDown, down, down_shift);
  if (!node.attached_) return true;
  const bool changed_key = down != code;
  const int act_key = changed_key ? QtKeyOf(down) : qt_key;
  const QString text = changed_key ? TextOfKey(down) : ke->text();

  if (down == kKeyReturn) {
    if (const std::shared_ptr<Control> default_button = Rules().DefaultButtonFor(control)) {
      Raise(*default_button, &ControlEvents::Click);
      return true;
    }
  }

  if (box != nullptr && (modifiers & Qt::ControlModifier) && !(modifiers & Qt::AltModifier)) {
    switch (down) {
      case 'C':
      case 45:
        box->Copy();
        return true;
      case 'X':
        box->Cut();
        return true;
      case 'V':
        box->Paste();
        return true;
      case 'Z':
        box->Undo();
        return true;
      default:
        break;
    }
  }
  if (box != nullptr && (modifiers & Qt::ShiftModifier) && !(modifiers & Qt::ControlModifier)) {
    if (down == kKeyDelete) {
      box->Cut();
      return true;
    }
    if (down == 45) {
      box->Paste();
      return true;
    }
  }

  // The character the key types, if any.
  uint32_t character = 0;
  if (down == kKeyBack || down == kKeyReturn || down == kKeyEscape || down == kKeySpace) {
    character = static_cast<uint32_t>(down);
  } else if (!text.isEmpty() && !(modifiers & (Qt::ControlModifier | Qt::AltModifier))) {
    const QList<uint> ucs4 = text.toUcs4();
    if (!ucs4.isEmpty() && ucs4[0] >= 32 && ucs4[0] != 127) character = ucs4[0];
  }

  if (character != 0) {
    uint32_t typed = character;
    if (character <= 0xFFFF) {
      int16_t ascii = static_cast<int16_t>(static_cast<uint16_t>(character));
      Raise(control, &ControlEvents::KeyPress, ascii);
      if (!node.attached_) return true;
      typed = static_cast<uint16_t>(ascii);
    }
    if (typed == 0) return true;
    if (box != nullptr) {
      int key = Qt::Key_unknown;
      QString typed_text;
      switch (typed) {
        case kKeyBack:
          key = Qt::Key_Backspace;
          break;
        case kKeyReturn:
          key = Qt::Key_Return;
          typed_text = QStringLiteral("\r");
          break;
        case kKeyEscape:
          key = Qt::Key_Escape;
          break;
        default:
          key = (typed == character && !changed_key) ? act_key : Qt::Key_unknown;
          if (key == Qt::Key_Space && typed != ' ') key = Qt::Key_unknown;
          typed_text = QString::fromUcs4(reinterpret_cast<const char32_t*>(&typed), 1);
          break;
      }
      box->BeforeUserEdit(typed >= 32);
      QKeyEvent copy(QEvent::KeyPress, key, modifiers & Qt::ShiftModifier, typed_text);
      bridge_->Forward(box->KeyReceiver(), &copy);
      box->AfterUserEdit();
    } else {
      QKeyEvent copy(QEvent::KeyPress, act_key, modifiers, text, ke->isAutoRepeat());
      bridge_->Forward(receiver, &copy);
    }
    return true;
  }

  if (box != nullptr) {
    // Caret keys, Delete and the widget's own shortcuts (select all).
    box->BeforeUserEdit(false);
    box->EndTypingRun();
    QKeyEvent copy(QEvent::KeyPress, act_key, modifiers, text, ke->isAutoRepeat());
    bridge_->Forward(box->KeyReceiver(), &copy);
    box->AfterUserEdit();
  }
  return true;
}

bool QtToolkit::OnMouse(QtNode& node, QObject* receiver, QEvent* event) {
  auto* me = static_cast<QMouseEvent*>(event);
  Control& control = node.Self();
  const std::shared_ptr<Control> keep = control.shared_from_this();
  if (!node.attached_ || control.Kind() == ControlKind::kMenu) return true;
  if (!IsUsable(control)) return true;
  auto* receiver_widget = static_cast<QWidget*>(receiver);
  QPointF local = me->position();
  if (receiver_widget != node.Widget() && node.Widget() != nullptr) {
    local = receiver_widget->mapTo(node.Widget(), local.toPoint());
  }
  float fx = static_cast<float>(local.x() * TwipsPerPixelX()),
        fy = static_cast<float>(local.y() * TwipsPerPixelY());
  int16_t shift = ShiftOf(me->modifiers());
  auto forward = [&] {
    QMouseEvent copy(me->type(), me->position(), me->scenePosition(), me->globalPosition(),
                     me->button(), me->buttons(), me->modifiers(), me->pointingDevice());
    bridge_->Forward(receiver, &copy);
  };
  auto* box = dynamic_cast<QtTextBox*>(&control);

  switch (me->type()) {
    case QEvent::MouseButtonPress: {
      int16_t button = ButtonOf(me->button());
      after_double_click_ = false;
      switch (FocusOnPress(control, button)) {
        case PressFocus::kTaken:
          break;
        case PressFocus::kNoWindow:
          return true;
        case PressFocus::kRefused:
          // Validate kept the focus: the press, its release and the click are swallowed.
          swallowed_press_ = receiver;
          return true;
      }
      swallowed_press_ = nullptr;
      pressed_ = receiver;
      if (box != nullptr) box->EndTypingRun();
      Raise(control, &ControlEvents::MouseDown, button, shift, fx, fy);
      if (node.attached_) forward();
      return true;
    }
    case QEvent::MouseButtonRelease: {
      if (swallowed_press_ == receiver) {
        swallowed_press_ = nullptr;
        return true;
      }
      int16_t button = ButtonOf(me->button());
      const bool click = button == kLeftButton && pressed_ == receiver && !after_double_click_ &&
                         receiver_widget->rect().contains(me->position().toPoint());
      pressed_ = nullptr;
      after_double_click_ = false;
      Raise(control, &ControlEvents::MouseUp, button, shift, fx, fy);
      if (node.attached_) forward();
      if (click && node.attached_ && IsUsable(control)) Raise(control, &ControlEvents::Click);
      return true;
    }
    case QEvent::MouseButtonDblClick:
      Raise(control, &ControlEvents::DblClick);
      if (node.attached_) forward();
      after_double_click_ = true;
      pressed_ = receiver;
      return true;
    case QEvent::MouseMove: {
      int16_t buttons = ButtonOf(me->buttons());
      Raise(control, &ControlEvents::MouseMove, buttons, shift, fx, fy);
      if (node.attached_) forward();
      return true;
    }
    default:
      return false;
  }
}

// Driving.

void QtToolkit::SendKeyEvent(int16_t key_code, int16_t shift, bool press, bool release,
                             uint32_t character) {
  Control* focus = GetFocus();
  if (focus == nullptr) return;
  const std::shared_ptr<Control> keep = focus->shared_from_this();
  QtNode& node = QtNodeFor(*focus);
  QPointer<QWidget> widget = node.Widget();
  if (!widget) return;
  int qt_key = Qt::Key_unknown;
  QString text;
  if (character != 0) {
    if (character >= 'a' && character <= 'z') {
      qt_key = Qt::Key_A + static_cast<int>(character - 'a');
    } else if ((character >= 'A' && character <= 'Z') || (character >= '0' && character <= '9')) {
      qt_key = static_cast<int>(character);
    } else if (character == ' ') {
      qt_key = Qt::Key_Space;
    }
    text = QString::fromUcs4(reinterpret_cast<const char32_t*>(&character), 1);
  } else {
    qt_key = QtKeyOf(key_code);
    if (key_code == kKeyTab && (shift & kShiftMask)) qt_key = Qt::Key_Backtab;
    text = TextOfKey(key_code);
    if (key_code == kKeyTab) text.clear();
  }
  const Qt::KeyboardModifiers modifiers = ModifiersOf(shift);
  QObject* saved = bridge_->SuspendForwarding();
  if (press) {
    QKeyEvent down(QEvent::KeyPress, qt_key, modifiers, text);
    QCoreApplication::sendEvent(widget, &down);
  }
  if (release && widget) {
    QKeyEvent up(QEvent::KeyRelease, qt_key, modifiers, text);
    QCoreApplication::sendEvent(widget, &up);
  }
  bridge_->ResumeForwarding(saved);
}

void QtToolkit::SendKey(int16_t key_code, int16_t shift, bool press, bool release) {
  SendKeyEvent(key_code, shift, press, release, 0);
}

void QtToolkit::SendCharacter(uint32_t cp) { SendKeyEvent(0, 0, true, true, cp); }

void QtToolkit::SendMouse(Control& control, MouseAction action, int16_t button, int16_t shift,
                          float x, float y) {
  const std::shared_ptr<Control> keep = control.shared_from_this();
  if (control.Kind() == ControlKind::kMenu) return;
  QtNode& node = QtNodeFor(control);
  QWidget* widget = node.Widget();
  if (widget == nullptr || !node.attached_) return;
  QWidget* receiver = widget;
  if (auto* box = dynamic_cast<QtTextBox*>(&control)) {
    receiver = static_cast<QWidget*>(box->MouseReceiver());
  }
  QPointF local(x / TwipsPerPixelX(), y / TwipsPerPixelY());
  if (receiver != widget) local = receiver->mapFrom(widget, local.toPoint());
  const QPointF global = receiver->mapToGlobal(local);
  QEvent::Type event_type = QEvent::MouseButtonPress;
  switch (action) {
    case MouseAction::kDown:
      break;
    case MouseAction::kUp:
      event_type = QEvent::MouseButtonRelease;
      break;
    case MouseAction::kMove:
      event_type = QEvent::MouseMove;
      break;
    case MouseAction::kDoubleClick:
      event_type = QEvent::MouseButtonDblClick;
      break;
  }
  Qt::MouseButton qt_button = QtButtonOf(button);
  Qt::MouseButtons buttons = qt_button;
  if (event_type == QEvent::MouseButtonRelease) buttons = Qt::NoButton;
  if (event_type == QEvent::MouseMove) {
    buttons = Qt::MouseButtons();
    if (button & kLeftButton) buttons |= Qt::LeftButton;
    if (button & kRightButton) buttons |= Qt::RightButton;
    if (button & kMiddleButton) buttons |= Qt::MiddleButton;
    qt_button = Qt::NoButton;
  }
  QMouseEvent event(event_type, local, local, global, qt_button, buttons, ModifiersOf(shift));
  QObject* saved = bridge_->SuspendForwarding();
  QCoreApplication::sendEvent(receiver, &event);
  bridge_->ResumeForwarding(saved);
}

void QtToolkit::RepaintView(Control& control) {
  if (QWidget* widget = WidgetOf(control)) widget->update();
}

// Dialogs.

void QtToolkit::ShowMessageBox(const std::string& title, const std::string& text,
                               MessageBoxStyle style) {
  QMessageBox box(style == MessageBoxStyle::kCritical ? QMessageBox::Critical : QMessageBox::NoIcon,
                  QString::fromStdString(title), QString::fromStdString(text), QMessageBox::Ok,
                  ActiveForm() != nullptr ? WidgetOf(*ActiveForm()) : nullptr);
  box.exec();
}

void QtToolkit::ShowModalWindow(Form& form_in) {
  auto& form = dynamic_cast<QtForm&>(form_in);
  if (mode_ == DialogMode::kInteractive && form.widget_) {
    form.widget_->setWindowModality(Qt::ApplicationModal);
  }
  form.ShowWindow();
}

void QtToolkit::RunModalLoop(Form& form_in) {
  auto& form = dynamic_cast<QtForm&>(form_in);
  QEventLoop loop;
  form.modal_loop_ = &loop;
  if (form.shown_ && !form.unloaded_) loop.exec();
  form.modal_loop_ = nullptr;
  if (form.widget_) form.widget_->setWindowModality(Qt::NonModal);
}

std::string QtToolkit::AskPopupMenu(Menu& menu) {
  // A real menu of the visible items (a caption "-" is a separator line).
  QMenu popup;
  std::vector<std::pair<QAction*, std::string>> actions;
  for (const auto& item : menu.Items()) {
    if (!item->Visible()) continue;
    if (item->Caption() == "-") {
      popup.addSeparator();
      continue;
    }
    QAction* action = popup.addAction(QString::fromStdString(item->Caption()));
    action->setEnabled(item->Enabled());
    action->setCheckable(item->Checked());
    action->setChecked(item->Checked());
    actions.emplace_back(action, item->Name());
  }
  QAction* picked = popup.exec(QCursor::pos());
  for (const auto& [action, name] : actions) {
    if (action == picked) return name;
  }
  return "";
}

// Inspection.

std::vector<Color> QtToolkit::RenderPixels(const Control& control, int32_t* width,
                                           int32_t* height) const {
  QWidget* widget = WidgetOf(control);
  if (widget == nullptr) {
    throw Failure(kErrInvalidProcedureCall, "Invalid procedure call or argument: control \"" +
                                                control.Name() + "\" has no window to render");
  }
  const QImage image = widget->grab().toImage().convertToFormat(QImage::Format_RGB32);
  const int32_t w = image.width(), h = image.height();
  std::vector<Color> pixels;
  pixels.reserve(static_cast<size_t>(w) * h);
  for (int32_t y = 0; y < h; ++y) {
    for (int32_t x = 0; x < w; ++x) {
      const QRgb p = image.pixel(x, y);
      pixels.push_back(Rgb(static_cast<uint32_t>(qRed(p)), static_cast<uint32_t>(qGreen(p)),
                           static_cast<uint32_t>(qBlue(p))));
    }
  }
  if (width != nullptr) *width = w;
  if (height != nullptr) *height = h;
  return pixels;
}

void QtToolkit::SaveScreenshot(const Control& control, const std::string& png_path) const {
  QWidget* widget = WidgetOf(control);
  if (widget == nullptr) {
    throw Failure(kErrInvalidProcedureCall, "Invalid procedure call or argument: control \"" +
                                                control.Name() + "\" has no window to render");
  }
  const QPixmap picture = widget->grab();
  if (!picture.save(QString::fromStdString(png_path), "PNG")) {
    throw Failure(kErrInvalidProcedureCall,
                  "Invalid procedure call or argument: cannot write the picture of \"" +
                      control.Name() + "\" to \"" + png_path + "\"");
  }
}

}  // namespace tarnsheets
