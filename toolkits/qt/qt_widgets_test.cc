// What the Qt toolkit shows on its real widgets: the widget of each kind, pixels, fonts, the
// screen, accessibility and the raw Qt events that a user's keyboard and mouse produce.
#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QImage>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "tarnsheets/failure.h"
#include "toolkits/qt/qt_toolkit.h"

namespace tarnsheets {
namespace {

int FailureNumber(auto&& fn) {
  try {
    fn();
  } catch (const Failure& f) {
    return f.Number();
  }
  return 0;
}

Picture SolidPicture(const std::string& id, int32_t w, int32_t h, Color c) {
  Picture p;
  p.id = id;
  p.width = w;
  p.height = h;
  p.pixels.assign(static_cast<size_t>(w) * h, c);
  return p;
}

// Pixels of `control` as Qt paints it that differ strongly from `background`.
int CountInk(QtToolkit& tk, const Control& control, Color background) {
  int32_t w = 0, h = 0;
  const std::vector<Color> px = tk.RenderPixels(control, &w, &h);
  int ink = 0;
  for (Color c : px) {
    const int dr = static_cast<int>(c & 0xFF) - static_cast<int>(background & 0xFF);
    const int dg = static_cast<int>((c >> 8) & 0xFF) - static_cast<int>((background >> 8) & 0xFF);
    const int db = static_cast<int>((c >> 16) & 0xFF) - static_cast<int>((background >> 16) & 0xFF);
    if (std::abs(dr) + std::abs(dg) + std::abs(db) > 150) ++ink;
  }
  return ink;
}

Color PixelAt(QtToolkit& tk, const Control& control, int32_t x, int32_t y) {
  int32_t w = 0, h = 0;
  const std::vector<Color> px = tk.RenderPixels(control, &w, &h);
  return px[static_cast<size_t>(y) * w + x];
}

TEST(QtScreenTest, TwipsPerPixelComeFromTheScreensLogicalDpi) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  QScreen* screen = QGuiApplication::primaryScreen();
  ASSERT_NE(screen, nullptr);
  EXPECT_DOUBLE_EQ(tk.TwipsPerPixelX(), 1440.0 / screen->logicalDotsPerInchX());
  EXPECT_DOUBLE_EQ(tk.TwipsPerPixelY(), 1440.0 / screen->logicalDotsPerInchY());
}

TEST(QtScreenTest, WidgetGeometryIsTheTwipsGeometryInPixels) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  tk.SetTwipsPerPixel(15, 15);
  auto form = tk.CreateForm("F");
  auto box = tk.CreateTextBox(*form, "Txt");
  box->Move(1500, 300, 1500, 300);
  EXPECT_EQ(tk.WidgetOf(*box)->geometry(), QRect(100, 20, 100, 20));
  tk.SetTwipsPerPixel(30, 30);
  EXPECT_EQ(tk.WidgetOf(*box)->geometry(), QRect(50, 10, 50, 10));
  EXPECT_EQ(box->Left(), 1500);  // what was set reads back
  EXPECT_EQ(FailureNumber([&] { tk.SetTwipsPerPixel(0, 15); }), kErrInvalidProcedureCall);
  EXPECT_EQ(tk.TwipsPerPixelX(), 30);
}

TEST(QtWidgetTest, EachKindIsShownByItsWidget) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  auto form = tk.CreateForm("F");
  auto label = tk.CreateLabel(*form, "Lbl");
  label->SetCaption("Name");
  auto box = tk.CreateTextBox(*form, "Txt");
  auto multi = tk.CreateTextBox(*form, "Memo", -1, true);
  auto button = tk.CreateCommandButton(*form, "Cmd");
  button->SetCaption("OK");
  auto menu = tk.CreateMenu(*form, nullptr, "mnu");
  auto* qlabel = qobject_cast<QLabel*>(tk.WidgetOf(*label));
  ASSERT_NE(qlabel, nullptr);
  EXPECT_EQ(qlabel->text(), QStringLiteral("Name"));
  EXPECT_NE(qobject_cast<QLineEdit*>(tk.WidgetOf(*box)), nullptr);
  EXPECT_NE(qobject_cast<QPlainTextEdit*>(tk.WidgetOf(*multi)), nullptr);
  auto* qbutton = qobject_cast<QPushButton*>(tk.WidgetOf(*button));
  ASSERT_NE(qbutton, nullptr);
  EXPECT_EQ(qbutton->text(), QStringLiteral("OK"));
  EXPECT_EQ(tk.WidgetOf(*menu), nullptr);
  EXPECT_EQ(tk.WidgetOf(*label)->parentWidget(), tk.WidgetOf(*form));
  // Windowless kinds have no handle; the others have one.
  EXPECT_EQ(label->Handle(), 0u);
  EXPECT_NE(box->Handle(), 0u);
}

TEST(QtWidgetTest, HiddenAndDisabledControlsHideAndDisableTheirWidgets) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  auto form = tk.CreateForm("F");
  auto box = tk.CreateTextBox(*form, "Txt");
  form->Show();
  EXPECT_TRUE(tk.WidgetOf(*box)->isVisible());
  box->SetVisible(false);
  EXPECT_FALSE(tk.WidgetOf(*box)->isVisible());
  box->SetEnabled(false);
  EXPECT_FALSE(tk.WidgetOf(*box)->isEnabled());
  tk.Unload(*box);
  EXPECT_EQ(tk.WidgetOf(*box), nullptr);
}

TEST(QtTextWidgetTest, TypedTextIsEditedByTheRealWidget) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  auto form = tk.CreateForm("F");
  auto box = tk.CreateTextBox(*form, "Txt");
  auto memo = tk.CreateTextBox(*form, "Memo", -1, true);
  box->SetFocus();
  tk.TypeText("abc");
  EXPECT_EQ(qobject_cast<QLineEdit*>(tk.WidgetOf(*box))->text(), QStringLiteral("abc"));
  memo->SetFocus();
  tk.TypeText("a");
  tk.PressKey(kKeyReturn);
  tk.TypeText("b");
  // The widget holds "\n"; Text keeps the platform's "\r\n" and counts it as two characters.
  EXPECT_EQ(qobject_cast<QPlainTextEdit*>(tk.WidgetOf(*memo))->toPlainText(),
            QStringLiteral("a\nb"));
  EXPECT_EQ(memo->Text(), "a\r\nb");
  EXPECT_EQ(memo->SelStart(), 4);
  memo->SetSelStart(1);
  memo->SetSelLength(2);
  EXPECT_EQ(memo->SelText(), "\r\n");
}

TEST(QtTextWidgetTest, KeyEventsOfARealKeyboardRaiseTheControlsEvents) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  auto form = tk.CreateForm("F");
  auto box = tk.CreateTextBox(*form, "Txt");
  box->SetFocus();
  std::vector<std::string> seen;
  box->Events().KeyDown = [&](int16_t& k, int16_t& s) {
    seen.push_back("down" + std::to_string(k) + "/" + std::to_string(s));
  };
  box->Events().KeyPress = [&](int16_t& k) { seen.push_back("press" + std::to_string(k)); };
  box->Events().Change = [&] { seen.push_back("change:" + box->Text()); };
  box->Events().KeyUp = [&](int16_t& k, int16_t&) { seen.push_back("up" + std::to_string(k)); };
  // As QApplication delivers them from the window system.
  QKeyEvent press(QEvent::KeyPress, Qt::Key_X, Qt::ShiftModifier, QStringLiteral("X"));
  QKeyEvent release(QEvent::KeyRelease, Qt::Key_X, Qt::ShiftModifier, QStringLiteral("X"));
  QApplication::sendEvent(tk.WidgetOf(*box), &press);
  QApplication::sendEvent(tk.WidgetOf(*box), &release);
  QKeyEvent f7(QEvent::KeyPress, Qt::Key_F7, Qt::NoModifier);
  QApplication::sendEvent(tk.WidgetOf(*box), &f7);
  EXPECT_EQ(seen,
            (std::vector<std::string>{"down88/1", "press88", "change:X", "up88", "down118/0"}));
}

TEST(QtTextWidgetTest, CtrlShortcutsRunTheBoxsOwnEditOperations) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  auto form = tk.CreateForm("F");
  auto box = tk.CreateTextBox(*form, "Txt");
  box->SetFocus();
  tk.TypeText("hello");
  box->SetSelStart(0);
  box->SetSelLength(2);
  tk.PressKey('C', kCtrlMask);
  EXPECT_EQ(tk.ClipboardText(), "he");
  tk.PressKey('X', kCtrlMask);
  EXPECT_EQ(box->Text(), "llo");
  tk.PressKey(kKeyEnd);
  tk.PressKey('V', kCtrlMask);
  EXPECT_EQ(box->Text(), "llohe");
  tk.PressKey('Z', kCtrlMask);
  EXPECT_EQ(box->Text(), "llo");
  tk.PressKey('Z', kCtrlMask);  // the undo of an undo
  EXPECT_EQ(box->Text(), "llohe");
}

TEST(QtTextWidgetTest, LockedBoxWidgetIsReadOnly) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  auto form = tk.CreateForm("F");
  auto box = tk.CreateTextBox(*form, "Txt");
  auto memo = tk.CreateTextBox(*form, "Memo", -1, true);
  box->SetText("fixed");
  box->SetLocked(true);
  memo->SetLocked(true);
  EXPECT_TRUE(qobject_cast<QLineEdit*>(tk.WidgetOf(*box))->isReadOnly());
  EXPECT_TRUE(qobject_cast<QPlainTextEdit*>(tk.WidgetOf(*memo))->isReadOnly());
  box->SetFocus();
  tk.TypeText("zz");
  tk.PressKey(kKeyBack);
  EXPECT_EQ(box->Text(), "fixed");
  EXPECT_EQ(qobject_cast<QLineEdit*>(tk.WidgetOf(*box))->text(), QStringLiteral("fixed"));
}

TEST(QtTextWidgetTest, ScrollBarPolicyFollowsShowScrollBar) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  auto form = tk.CreateForm("F");
  auto memo = tk.CreateTextBox(*form, "Memo", -1, true);
  auto* edit = qobject_cast<QPlainTextEdit*>(tk.WidgetOf(*memo));
  EXPECT_EQ(edit->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
  memo->ShowScrollBar(true);
  EXPECT_EQ(edit->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
  memo->ShowScrollBar(false);
  EXPECT_EQ(edit->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
}

TEST(QtTextWidgetTest, SelectionStaysWhenTheFocusLeaves) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  auto form = tk.CreateForm("F");
  auto a = tk.CreateTextBox(*form, "A");
  auto b = tk.CreateTextBox(*form, "B");
  form->Show();
  a->SetFocus();
  a->SetText("abcdef");
  a->SetSelStart(1);
  a->SetSelLength(3);
  tk.PressTab();
  EXPECT_EQ(tk.GetFocus(), b.get());
  EXPECT_EQ(a->SelText(), "bcd");
}

// Pixels of `control` as Qt paints it in exactly `color`.
int CountColor(QtToolkit& tk, const Control& control, Color color) {
  int32_t w = 0, h = 0;
  const std::vector<Color> px = tk.RenderPixels(control, &w, &h);
  return static_cast<int>(std::count(px.begin(), px.end(), color));
}

// A user's active window with a box (`Memo` when multi-line) `width` twips wide at the top and
// another single-line box below it.
struct BoxAndOther {
  std::shared_ptr<Form> form;
  std::shared_ptr<TextBox> box;
  std::shared_ptr<TextBox> other;
};
BoxAndOther ShowBoxAndOther(QtToolkit& tk, bool multi_line, Twips width) {
  BoxAndOther w;
  w.form = tk.CreateForm("F");
  w.form->SetClientSize(3000, 1500);
  w.box = tk.CreateTextBox(*w.form, multi_line ? "Memo" : "Txt", -1, multi_line);
  w.box->Move(0, 0, width, multi_line ? 600 : 300);
  w.other = tk.CreateTextBox(*w.form, "Other");
  w.other->Move(0, 900, width, 300);
  w.form->Show();
  // The offscreen platform activates no window by itself; a user's window is active.
  QApplication::setActiveWindow(tk.WidgetOf(*w.form)->window());
  return w;
}

TEST(QtTextWidgetTest, AMultiLineBoxHidesItsSelectionWhileItHasNotTheFocus) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  const BoxAndOther w = ShowBoxAndOther(tk, true, 2400);
  TextBox* memo = w.box.get();
  TextBox* other = w.other.get();
  memo->SetFocus();
  memo->SetText("selected words");
  memo->SetSelStart(0);
  memo->SetSelLength(8);
  const QColor highlight = QApplication::palette().color(QPalette::Active, QPalette::Highlight);
  const Color highlight_rgb = static_cast<Color>(highlight.red()) |
                              static_cast<Color>(highlight.green()) << 8 |
                              static_cast<Color>(highlight.blue()) << 16;
  EXPECT_GT(CountColor(tk, *memo, highlight_rgb), 20);
  other->SetFocus();
  EXPECT_EQ(CountColor(tk, *memo, highlight_rgb), 0);
  EXPECT_EQ(memo->SelStart(), 0);
  EXPECT_EQ(memo->SelLength(), 8);
  memo->SetFocus();
  EXPECT_GT(CountColor(tk, *memo, highlight_rgb), 20);
}

TEST(QtTextWidgetTest, AMultiLineBoxShowingOneTextAfterAnotherKeepsItsCaretAtTheTop) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  auto form = tk.CreateForm("F");
  form->SetClientSize(3000, 1500);
  auto memo = tk.CreateTextBox(*form, "Memo", -1, true);
  memo->Move(0, 0, 2400, 600);
  form->Show();
  auto* plain = qobject_cast<QPlainTextEdit*>(tk.WidgetOf(*memo));
  ASSERT_NE(plain, nullptr);
  const std::vector<std::string> texts = {"first record", "second\r\nrecord, two lines", "三",
                                          "fourth"};
  int32_t w = 0, h = 0;
  const std::vector<Color> empty_picture = tk.RenderPixels(*memo, &w, &h);
  std::vector<Color> previous_picture = empty_picture;
  for (const std::string& text : texts) {
    memo->SetText(text);
    EXPECT_EQ(memo->Text(), text);
    // The box paints each new text (laid out when it is painted): neither blank nor the last.
    const std::vector<Color> picture = tk.RenderPixels(*memo, &w, &h);
    EXPECT_NE(picture, empty_picture) << text;
    EXPECT_NE(picture, previous_picture) << text;
    previous_picture = picture;
    std::string shown = plain->toPlainText().toStdString();
    for (size_t at = shown.find('\n'); at != std::string::npos; at = shown.find('\n', at + 2)) {
      shown.insert(at, "\r");
    }
    EXPECT_EQ(shown, text);
    EXPECT_EQ(memo->SelStart(), 0);
    EXPECT_EQ(memo->SelLength(), 0);
    EXPECT_EQ(plain->textCursor().position(), 0);
    EXPECT_EQ(plain->textCursor().anchor(), 0);
  }
  // What the user types goes in at the caret.
  memo->SetFocus();
  tk.TypeText("x");
  EXPECT_EQ(memo->Text(), "xfourth");
  EXPECT_EQ(memo->SelStart(), 1);
}

TEST(QtTextWidgetTest, AMultiLineBoxScrolledDownShowsANewTextFromItsTop) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  auto form = tk.CreateForm("F");
  form->SetClientSize(3000, 1500);
  auto memo = tk.CreateTextBox(*form, "Memo", -1, true);
  memo->Move(0, 0, 2400, 600);
  form->Show();
  auto* plain = qobject_cast<QPlainTextEdit*>(tk.WidgetOf(*memo));
  ASSERT_NE(plain, nullptr);
  std::string long_text;
  for (int i = 0; i < 40; ++i) long_text += "line " + std::to_string(i) + "\r\n";
  memo->SetText(long_text);
  plain->verticalScrollBar()->setValue(plain->verticalScrollBar()->maximum());
  ASSERT_GT(plain->verticalScrollBar()->value(), 0);
  // The next record's text is as long.
  memo->SetText("next " + long_text);
  EXPECT_EQ(plain->verticalScrollBar()->value(), 0);
  EXPECT_EQ(memo->SelStart(), 0);
  EXPECT_EQ(plain->textCursor().position(), 0);
  plain->verticalScrollBar()->setValue(plain->verticalScrollBar()->maximum());
  memo->SetText("short");
  EXPECT_EQ(plain->verticalScrollBar()->value(), 0);
  EXPECT_EQ(memo->SelStart(), 0);
}

// True when `line` was painted from the start of its text: its caret is there and the line is not
// scrolled, so the caret's place is at the box's left edge.
bool PaintedFromTheStart(QLineEdit& line) {
  const int caret_x = line.inputMethodQuery(Qt::ImCursorRectangle).toRect().left();
  return line.cursorPosition() == 0 && caret_x > -5 && caret_x < 10;
}

TEST(QtTextWidgetTest, AnUnfocusedBoxShownALongTextIsPaintedFromItsStart) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  const BoxAndOther w = ShowBoxAndOther(tk, false, 900);
  TextBox* box = w.box.get();
  w.other->SetFocus();
  auto* line = qobject_cast<QLineEdit*>(tk.WidgetOf(*box));
  ASSERT_NE(line, nullptr);
  const std::string long_text = "Start of a name far longer than the box can show at once";
  for (int record = 0; record < 3; ++record) {
    box->SetText(long_text + std::to_string(record));
    EXPECT_EQ(box->SelStart(), 0);
    EXPECT_EQ(box->SelLength(), 0);
    tk.ProcessEvents();
    EXPECT_TRUE(PaintedFromTheStart(*line));
    EXPECT_FALSE(tk.HasDeferredCaretsForTest());
  }
  // A picture taken at once shows the start too.
  box->SetText("Another " + long_text);
  tk.SaveScreenshot(*w.form, ::testing::TempDir() + "qt_caret_screenshot.png");
  EXPECT_TRUE(PaintedFromTheStart(*line));
}

TEST(QtTextWidgetTest, TypingIntoABoxShownATextWithoutTheFocusStartsAtTheStart) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  const BoxAndOther w = ShowBoxAndOther(tk, false, 2400);
  TextBox* box = w.box.get();
  w.other->SetFocus();
  box->SetText("record");
  EXPECT_EQ(box->SelStart(), 0);
  box->SetFocus();
  tk.TypeText("x");
  EXPECT_EQ(box->Text(), "xrecord");
  EXPECT_EQ(box->SelStart(), 1);
  // Shown a text while it has the focus, the box places its caret at once.
  box->SetText("focused");
  EXPECT_EQ(qobject_cast<QLineEdit*>(tk.WidgetOf(*box))->cursorPosition(), 0);
  EXPECT_FALSE(tk.HasDeferredCaretsForTest());
}

TEST(QtTextWidgetTest, ABoxGoneWhileItsCaretWaitsIsForgotten) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  auto form = tk.CreateForm("F");
  form->Show();
  std::weak_ptr<TextBox> gone;
  {
    auto box = tk.CreateTextBox(*form, "Txt");
    box->SetText("record");
    EXPECT_TRUE(tk.HasDeferredCaretsForTest());
    tk.Unload(*box);
    gone = box;
  }
  ASSERT_TRUE(gone.expired());
  // Forgotten at once, not at the next paint (which would reach a box that is no more).
  EXPECT_FALSE(tk.HasDeferredCaretsForTest());
  tk.ProcessEvents();
}

TEST(QtTextWidgetTest, ABoxThatPlacesItsCaretAtOnceNoLongerWaits) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  auto form = tk.CreateForm("F");
  form->Show();
  auto box = tk.CreateTextBox(*form, "Txt");
  box->SetText("record");
  ASSERT_TRUE(tk.HasDeferredCaretsForTest());
  box->SetSelStart(2);  // placed at once: the box leaves the list
  EXPECT_FALSE(tk.HasDeferredCaretsForTest());
  EXPECT_EQ(box->SelStart(), 2);
  EXPECT_EQ(qobject_cast<QLineEdit*>(tk.WidgetOf(*box))->cursorPosition(), 2);
}

TEST(QtTextWidgetTest, EditorCarriesItsAccessibleNameAndDescription) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  auto form = tk.CreateForm("F");
  auto box = tk.CreateTextBox(*form, "Txt");
  box->SetAccessibleText("Opportunity name", "The name the opportunity is known by");
  EXPECT_EQ(tk.WidgetOf(*box)->accessibleName(), QStringLiteral("Opportunity name"));
  EXPECT_EQ(tk.WidgetOf(*box)->accessibleDescription(),
            QStringLiteral("The name the opportunity is known by"));
}

TEST(QtFocusWidgetTest, QtFocusFollowsTheToolkitsFocus) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  auto form = tk.CreateForm("F");
  auto a = tk.CreateTextBox(*form, "A");
  auto b = tk.CreateTextBox(*form, "B");
  form->Show();
  a->SetFocus();
  EXPECT_EQ(tk.WidgetOf(*form)->focusWidget(), tk.WidgetOf(*a));
  tk.PressTab();
  EXPECT_EQ(tk.WidgetOf(*form)->focusWidget(), tk.WidgetOf(*b));
  // Qt's own focus chain is off: every widget refuses Qt's Tab and click focus.
  EXPECT_EQ(tk.WidgetOf(*a)->focusPolicy(), Qt::NoFocus);
}

TEST(QtMouseTest, DoubleClickRaisesDownUpClickDblClickUp) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  auto form = tk.CreateForm("F");
  auto label = tk.CreateLabel(*form, "Lbl");
  form->Show();
  std::vector<std::string> seen;
  label->Events().MouseDown = [&](int16_t& b, int16_t&, float& x, float&) {
    seen.push_back("down" + std::to_string(b) + "@" + std::to_string(static_cast<int>(x)));
  };
  label->Events().MouseUp = [&](int16_t& b, int16_t&, float&, float&) {
    seen.push_back("up" + std::to_string(b));
  };
  label->Events().Click = [&] { seen.push_back("click"); };
  label->Events().DblClick = [&] { seen.push_back("dblclick"); };
  tk.DoubleClick(*label);
  EXPECT_EQ(seen, (std::vector<std::string>{"down1@0", "up1", "click", "dblclick", "up1"}));
  seen.clear();
  tk.Click(*label, 150, 30);  // twips inside the control, through pixels and back
  EXPECT_EQ(seen, (std::vector<std::string>{"down1@150", "up1", "click"}));
  seen.clear();
  label->SetEnabled(false);
  tk.Click(*label);
  EXPECT_TRUE(seen.empty());
}

TEST(QtPaintTest, ShapeIsFilledAndBorderedAsSet) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  tk.SetTwipsPerPixel(15, 15);
  auto form = tk.CreateForm("F");
  auto shape = tk.CreateShape(*form, "Shp");
  shape->Move(0, 0, 600, 300);  // 40 x 20 pixels
  shape->SetBackStyle(1);
  shape->SetBackColor(Rgb(255, 0, 0));
  shape->SetBorderColor(Rgb(0, 0, 255));
  shape->SetBorderWidth(2);
  EXPECT_EQ(PixelAt(tk, *shape, 20, 10), Rgb(255, 0, 0));
  EXPECT_EQ(PixelAt(tk, *shape, 0, 0), Rgb(0, 0, 255));
  EXPECT_EQ(PixelAt(tk, *shape, 1, 10), Rgb(0, 0, 255));
  EXPECT_EQ(PixelAt(tk, *shape, 2, 10), Rgb(255, 0, 0));
  shape->SetFillStyle(0);
  shape->SetFillColor(Rgb(0, 255, 0));
  EXPECT_EQ(PixelAt(tk, *shape, 20, 10), Rgb(0, 255, 0));
}

TEST(QtPaintTest, CommandButtonShowsItsGlyphInsteadOfItsCaption) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  auto form = tk.CreateForm("F");
  auto button = tk.CreateCommandButton(*form, "Cmd");
  button->SetCaption("Go");
  const Color red = Rgb(255, 0, 0);
  button->SetPicture(SolidPicture("Glyph", 7, 7, red));
  auto* qbutton = qobject_cast<QPushButton*>(tk.WidgetOf(*button));
  EXPECT_TRUE(qbutton->text().isEmpty());
  int32_t w = 0, h = 0;
  const std::vector<Color> px = tk.RenderPixels(*button, &w, &h);
  EXPECT_GE(std::count(px.begin(), px.end(), red), 49);
  button->SetPicture(Picture{});
  EXPECT_EQ(qbutton->text(), QStringLiteral("Go"));
  const std::vector<Color> after = tk.RenderPixels(*button, &w, &h);
  EXPECT_EQ(std::count(after.begin(), after.end(), red), 0);
  EXPECT_EQ(FailureNumber([&] {
              Picture bad = SolidPicture("Bad", 3, 3, red);
              bad.pixels.pop_back();
              button->SetPicture(bad);
            }),
            kErrInvalidProcedureCall);
}

TEST(QtPaintTest, PictureBoxDrawsItsPictureAndRecordedOperations) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  tk.SetTwipsPerPixel(15, 15);
  auto form = tk.CreateForm("F");
  auto pic = tk.CreatePictureBox(*form, "Pic");
  pic->SetBorderStyle(0);
  pic->SetBackColor(Rgb(255, 255, 255));
  pic->SetPicture(SolidPicture("P", 4, 4, Rgb(0, 0, 255)));
  pic->Drawing().Box(150, 150, 300, 300, Rgb(0, 128, 0));  // pixels 10..20
  EXPECT_EQ(PixelAt(tk, *pic, 0, 0), Rgb(0, 0, 255));
  EXPECT_EQ(PixelAt(tk, *pic, 3, 3), Rgb(0, 0, 255));
  EXPECT_EQ(PixelAt(tk, *pic, 4, 4), Rgb(255, 255, 255));
  EXPECT_EQ(PixelAt(tk, *pic, 10, 10), Rgb(0, 128, 0));
  EXPECT_EQ(PixelAt(tk, *pic, 20, 20), Rgb(0, 128, 0));
  EXPECT_EQ(PixelAt(tk, *pic, 21, 21), Rgb(255, 255, 255));
}

TEST(QtFontTest, ChineseTextInASongFontRendersGlyphs) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  auto form = tk.CreateForm("F");
  auto label = tk.CreateLabel(*form, "Lbl");
  label->Move(0, 0, 2400, 400);
  label->SetBackColor(Rgb(255, 255, 255));
  label->SetForeColor(Rgb(0, 0, 0));
  Font song;
  song.name = "宋体";
  song.size = 12;
  song.charset = 134;
  label->SetFont(song);
  EXPECT_EQ(CountInk(tk, *label, Rgb(255, 255, 255)), 0);  // no caption yet: blank
  label->SetCaption("商机名称");
  EXPECT_GT(CountInk(tk, *label, Rgb(255, 255, 255)), 40);
  EXPECT_EQ(qobject_cast<QLabel*>(tk.WidgetOf(*label))->text(), QStringLiteral("商机名称"));
}

TEST(QtFontTest, ControlFontReachesTheWidget) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  auto form = tk.CreateForm("F");
  auto box = tk.CreateTextBox(*form, "Txt");
  Font f;
  f.name = "DejaVu Sans";
  f.size = 14;
  f.bold = true;
  box->SetFont(f);
  const QFont qf = tk.WidgetOf(*box)->font();
  EXPECT_EQ(qf.family(), QStringLiteral("DejaVu Sans"));
  EXPECT_DOUBLE_EQ(qf.pointSizeF(), 14);
  EXPECT_TRUE(qf.bold());
}

TEST(QtFontTest, ControlTextIsSetWithoutKerningOrLigaturesWhereTheScriptAllows) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  auto form = tk.CreateForm("F");
  auto box = tk.CreateTextBox(*form, "Txt");
  auto label = tk.CreateLabel(*form, "Lbl");
  Font f;
  f.name = "MS Sans Serif";
  f.size = 8.25;
  box->SetFont(f);
  label->SetFont(f);
  for (QWidget* widget : {tk.WidgetOf(*box), tk.WidgetOf(*label)}) {
    const QFont qf = widget->font();
    EXPECT_TRUE(qf.styleStrategy() & QFont::PreferNoShaping);
    EXPECT_FALSE(qf.kerning());
  }
  // Unshaped text still shows: the box with its text has ink that the empty box has not.
  box->Move(0, 0, 3000, 400);
  const int empty = CountInk(tk, *box, Rgb(255, 255, 255));
  box->SetText("AVATAR Wave");
  EXPECT_GT(CountInk(tk, *box, Rgb(255, 255, 255)), empty + 20);
}

TEST(QtScreenshotTest, FormIsSavedAsAPngOfItsClientSize) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  tk.SetTwipsPerPixel(15, 15);
  auto form = tk.CreateForm("F");
  form->SetClientSize(3000, 1500);
  auto label = tk.CreateLabel(*form, "Lbl");
  label->SetCaption("Saved");
  const std::string path = ::testing::TempDir() + "qt_screenshot_test.png";
  std::remove(path.c_str());
  tk.SaveScreenshot(*form, path);
  QImage image;
  ASSERT_TRUE(image.load(QString::fromStdString(path)));
  EXPECT_EQ(image.size(), QSize(200, 100));
  std::remove(path.c_str());
  const std::string bad = "/nonexistent-dir/x.png";
  EXPECT_EQ(FailureNumber([&] { tk.SaveScreenshot(*form, bad); }), kErrInvalidProcedureCall);
  EXPECT_FALSE(QFile::exists(QString::fromStdString(bad)));
}

// A form with every kind, rendered to a PNG that a person can look at.
TEST(QtScreenshotTest, FormWithEveryKindRendersEachControl) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  tk.SetTwipsPerPixel(15, 15);
  auto form = tk.CreateForm("Every");
  form->SetCaption("Every kind");
  form->SetClientSize(6000, 4200);
  form->SetBackColor(Rgb(0xEE, 0xEE, 0xEE));
  auto label = tk.CreateLabel(*form, "Lbl");
  label->Move(120, 120, 1400, 255);
  label->SetCaption("Label 标签");
  auto box = tk.CreateTextBox(*form, "Txt");
  box->Move(1600, 120, 2000, 300);
  box->SetText("single line");
  auto memo = tk.CreateTextBox(*form, "Memo", -1, true);
  memo->Move(1600, 500, 2000, 800);
  memo->SetText("multi\r\nline\r\n多行");
  memo->ShowScrollBar(true);
  auto button = tk.CreateCommandButton(*form, "Cmd");
  button->Move(3800, 120, 1200, 375);
  button->SetCaption("Button");
  auto glyph = tk.CreateCommandButton(*form, "Glyph");
  glyph->Move(5100, 120, 375, 375);
  glyph->SetPicture(SolidPicture("G", 9, 9, Rgb(0xBB, 0x55, 0x22)));
  auto frame = tk.CreateFrame(*form, "Fra");
  frame->Move(120, 1500, 2600, 1400);
  frame->SetCaption("Frame");
  auto inner = tk.CreateLabel(*frame, "Inner");
  inner->Move(200, 400, 2000, 255);
  inner->SetCaption("inside the frame");
  auto shape = tk.CreateShape(*form, "Shp");
  shape->Move(3000, 1500, 1200, 600);
  shape->SetBackStyle(1);
  shape->SetBackColor(Rgb(0x22, 0x55, 0xBB));
  shape->SetBorderWidth(2);
  auto image = tk.CreateImage(*form, "Img");
  image->Move(4400, 1500, 600, 600);
  image->SetPicture(SolidPicture("I", 16, 16, Rgb(0x00, 0xAA, 0x00)));
  auto pic = tk.CreatePictureBox(*form, "Pic");
  pic->Move(3000, 2300, 1200, 900);
  pic->SetBackColor(Rgb(0xFF, 0xFF, 0xFF));
  pic->Drawing().Line(0, 0, 1200, 900, Rgb(0xFF, 0, 0));
  auto uc = tk.CreateUserControl(*form, "SFText", "Uc");
  uc->Move(120, 3000, 2600, 900);
  uc->SetBackColor(Rgb(0xFF, 0xFF, 0xE0));
  uc->Drawing().Box(0, 0, 2580, 0, Rgb(0xBB, 0x55, 0x22));
  uc->Drawing().Line(0, 885, 2600, 885, Rgb(0xBB, 0x55, 0x22));
  auto ucbox = tk.CreateTextBox(*uc, "Txt_Value");
  ucbox->Move(100, 200, 2000, 300);
  ucbox->SetText("in a user control");
  form->Show();

  const std::string path = ::testing::TempDir() + "qt_every_kind.png";
  tk.SaveScreenshot(*form, path);
  QImage shot;
  ASSERT_TRUE(shot.load(QString::fromStdString(path)));
  EXPECT_EQ(shot.size(), QSize(400, 280));
  // Each painted kind shows its own colour where it was put.
  EXPECT_EQ(shot.pixelColor(230, 120), QColor(0x22, 0x55, 0xBB));  // shape
  EXPECT_EQ(shot.pixelColor(300, 108), QColor(0x00, 0xAA, 0x00));  // image
  EXPECT_EQ(shot.pixelColor(201, 154), QColor(0xFF, 0x00, 0x00));  // the line's first point
  EXPECT_EQ(shot.pixelColor(240, 160), QColor(0xFF, 0xFF, 0xFF));  // picture box above it
  EXPECT_GT(CountInk(tk, *label, Rgb(0xEE, 0xEE, 0xEE)), 20);
  EXPECT_GT(CountInk(tk, *memo, Rgb(0xFF, 0xFF, 0xFF)), 20);
  std::printf("every kind: %s\n", path.c_str());
}

// A check editor draws its inside and glyph again on every record it shows. The surface keeps
// what was drawn as a picture, so a long run of such drawings leaves the last one on screen and
// holds no growing list of operations.
TEST(QtDrawingTest, DrawingOnEveryChangeKeepsTheLatestPictureAndABoundedLog) {
  QtToolkit tk(QtToolkit::DialogMode::kAnswered);
  auto form = tk.CreateForm("F");
  auto uc = tk.CreateUserControl(*form, "SFCheck", "Chk");
  const Twips tx = tk.TwipsPerPixelX(), ty = tk.TwipsPerPixelY();
  uc->Move(0, 0, 13 * tx, 13 * ty);
  uc->SetBackColor(0xFFFFFF);
  for (int i = 0; i < 5000; ++i) {
    uc->Drawing().Box(tx, ty, 12 * tx, 12 * ty, 0xFFFFFF);
    const Color glyph = i % 2 == 0 ? 0x0000FF : 0x00FF00;
    uc->Drawing().PaintPicture(Picture{"G", 3, 3, std::vector<Color>(9, glyph)}, 5 * tx, 5 * ty);
  }
  EXPECT_LE(tk.DrawOps(*uc).size(), 256u);
  EXPECT_EQ(tk.DrawOps(*uc).back().ToString(), "picture G 3x3 at " +
                                                   std::to_string(static_cast<int>(5 * tx)) + "," +
                                                   std::to_string(static_cast<int>(5 * ty)));
  // The last glyph drawn (i = 4999, green) shows, on the box's white.
  EXPECT_EQ(PixelAt(tk, *uc, 6, 6), 0x00FF00u);
  EXPECT_EQ(PixelAt(tk, *uc, 2, 2), 0xFFFFFFu);
  uc->Drawing().Cls();
  EXPECT_TRUE(tk.DrawOps(*uc).empty());
  EXPECT_EQ(PixelAt(tk, *uc, 6, 6), 0xFFFFFFu);
}

}  // namespace
}  // namespace tarnsheets
