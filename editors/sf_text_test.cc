#include "editors/sf_text.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "editors/editors_test_util.h"
#include "tarnsheets/failure.h"
#include "toolkits/headless/headless_toolkit.h"

namespace tarnsheets {
namespace {

using Strings = std::vector<std::string>;

class SFTextTest : public ::testing::Test {
 protected:
  void SetUp() override {
    form_ = tk_.CreateForm("Form1");
    other_ = tk_.CreateTextBox(*form_, "Other");
    text_ = SFText::Create(tk_, *form_, "Txt_Value", 0);
    form_->Show();
    tk_.ClearNotifiedProperties(text_->Host());
  }

  const Strings& Notified() { return tk_.NotifiedProperties(text_->Host()); }
  TextBox& Box(int32_t i) { return text_->Txt_Text(i); }

  HeadlessToolkit tk_;
  std::shared_ptr<Form> form_;
  std::shared_ptr<TextBox> other_;
  std::shared_ptr<SFText> text_;
};

// ---------------------------------------------------------------------------------------------
// The control as designed

TEST_F(SFTextTest, NewControlHasTwoBorderlessBoxesWithTheDesignText) {
  EXPECT_EQ(text_->Host().TypeName(), "SFText");
  EXPECT_EQ(text_->Host().Width(), 3375);
  EXPECT_EQ(text_->Host().Height(), 825);
  for (int32_t i = 0; i <= 1; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(Box(i).Name(), "Txt_Text");
    EXPECT_EQ(Box(i).Index(), i);
    EXPECT_EQ(Box(i).MultiLine(), i == 1);
    EXPECT_EQ(Box(i).BorderStyle(), 0);
    EXPECT_FALSE(Box(i).TabStop());
    EXPECT_EQ(Box(i).TabIndex(), i);
    EXPECT_EQ(Box(i).Text(), "OrrinText");
  }
}

TEST_F(SFTextTest, NewControlShowsBoxZeroWithDefaults) {
  EXPECT_EQ(text_->Appearance(), 1);
  EXPECT_EQ(text_->Style(), 0);
  EXPECT_EQ(text_->ActiveBox(), 0);
  EXPECT_EQ(text_->BorderColor(), 0xBB5522u);
  EXPECT_FALSE(text_->HasFocus());
  EXPECT_TRUE(Box(0).Visible());
  EXPECT_FALSE(Box(1).Visible());
  EXPECT_EQ(text_->Text(), "OrrinText");
}

TEST_F(SFTextTest, MissingBoxIndexFailsWithControlArrayElementMissing) {
  try {
    text_->Txt_Text(2);
    FAIL() << "no failure";
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), kErrControlArrayElementMissing);
  }
}

// ---------------------------------------------------------------------------------------------
// Style

TEST_F(SFTextTest, StyleFromZeroToOneKeepsTheTextAndShowsBoxOneWithoutScrollBar) {
  text_->SetText("Hello");
  Box(1).ShowScrollBar(true);  // as a toolkit might have left it
  text_->SetStyle(1);
  EXPECT_EQ(text_->Style(), 1);
  EXPECT_EQ(text_->ActiveBox(), 1);
  EXPECT_EQ(Box(1).Text(), "Hello");
  EXPECT_EQ(text_->Text(), "Hello");
  EXPECT_FALSE(Box(0).Visible());
  EXPECT_TRUE(Box(1).Visible());
  EXPECT_FALSE(Box(1).ScrollBarVisible());
}

TEST_F(SFTextTest, StyleBackToZeroCopiesTheTextFromBoxOne) {
  text_->SetStyle(1);
  text_->SetText("line one\nline two");
  text_->SetStyle(0);
  EXPECT_EQ(text_->ActiveBox(), 0);
  EXPECT_EQ(Box(0).Text(), "line one\nline two");
  EXPECT_TRUE(Box(0).Visible());
  EXPECT_FALSE(Box(1).Visible());
}

TEST_F(SFTextTest, StyleSetterReportsTheChange) {
  text_->SetStyle(1);
  EXPECT_EQ(Notified(), (Strings{"Style"}));
}

TEST_F(SFTextTest, StyleChangeRaisesChangeWhenTheNewBoxGetsAnotherText) {
  int changes = 0;
  text_->Events().Change = [&] { ++changes; };
  text_->SetText("Hello");  // box 0
  EXPECT_EQ(changes, 1);
  text_->SetStyle(1);  // box 1 still holds the design text
  EXPECT_EQ(changes, 2);
  text_->SetStyle(1);  // the same text again
  EXPECT_EQ(changes, 2);
}

TEST_F(SFTextTest, StyleChangeAtRunTimeLeavesColoursAndLockOnTheOldBox) {
  text_->SetBackColor(0x00FF00);
  text_->SetLocked(true);
  text_->SetForeColor(0x0000FF);
  text_->SetStyle(1);
  EXPECT_EQ(text_->BackColor(), kSysWindowBackground);
  EXPECT_EQ(text_->ForeColor(), kSysWindowText);
  EXPECT_FALSE(text_->Locked());
  EXPECT_EQ(Box(0).ForeColor(), 0x0000FFu);
  EXPECT_TRUE(Box(0).Locked());
}

TEST_F(SFTextTest, StyleTwoAtRunTimeFailsWithNothingChanged) {
  text_->SetText("Keep");
  tk_.ClearNotifiedProperties(text_->Host());
  try {
    text_->SetStyle(2);
    FAIL() << "no failure";
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), kErrControlArrayElementMissing);
  }
  EXPECT_EQ(text_->Style(), 0);
  EXPECT_EQ(text_->ActiveBox(), 0);
  EXPECT_EQ(Box(0).Text(), "Keep");
  EXPECT_EQ(Box(1).Text(), "OrrinText");
  EXPECT_TRUE(Box(0).Visible());
  EXPECT_FALSE(Box(1).Visible());
  EXPECT_TRUE(Notified().empty());
}

TEST_F(SFTextTest, StyleOutsideTheBoxesFailsAtRunTimeToo) {
  EXPECT_THROW(text_->SetStyle(3), Failure);
  EXPECT_THROW(text_->SetStyle(-1), Failure);
  EXPECT_EQ(text_->Style(), 0);
}

TEST_F(SFTextTest, StoredStyleTwoLoadsWithScrollBarAndWorks) {
  MemoryPropertyBag bag;
  bag.Set("Style", Variant(int32_t{2}));
  bag.Set("Text", Variant("Notes"));
  text_->ReadProperties(bag);
  EXPECT_EQ(text_->Style(), 2);
  EXPECT_EQ(text_->ActiveBox(), 1);
  EXPECT_FALSE(Box(0).Visible());
  EXPECT_TRUE(Box(1).Visible());
  EXPECT_TRUE(Box(1).ScrollBarVisible());
  // It works: the visible box edits and reports.
  int changes = 0;
  text_->Events().Change = [&] { ++changes; };
  EXPECT_EQ(text_->Text(), "Notes");
  text_->SetText("More notes");
  EXPECT_EQ(Box(1).Text(), "More notes");
  EXPECT_EQ(changes, 1);
}

TEST_F(SFTextTest, StoredStyleTwoThenFailsInTheSetterForEveryNewValue) {
  MemoryPropertyBag bag;
  bag.Set("Style", Variant(int32_t{2}));
  text_->ReadProperties(bag);
  for (int32_t s : {0, 1, 2}) {
    SCOPED_TRACE(s);
    try {
      text_->SetStyle(s);
      FAIL() << "no failure";
    } catch (const Failure& f) {
      EXPECT_EQ(f.Number(), kErrControlArrayElementMissing);
    }
    EXPECT_EQ(text_->Style(), 2);
    EXPECT_EQ(text_->ActiveBox(), 1);
    EXPECT_TRUE(Box(1).ScrollBarVisible());
  }
}

TEST(SFTextLoadTest, StoredStyleThreeLoadsWithActiveBoxZeroAndBoxesAsTheFormLeftThem) {
  HeadlessToolkit tk;
  std::shared_ptr<Form> form = tk.CreateForm("Form1");
  std::shared_ptr<UserControl> host = tk.CreateUserControl(*form, "SFText", "Txt_Value", 0);
  std::shared_ptr<SFText> text = SFText::Attach(tk, host);
  // As the form left them: both boxes as created, visible.
  ASSERT_TRUE(text->Txt_Text(0).Visible());
  ASSERT_TRUE(text->Txt_Text(1).Visible());
  text->Txt_Text(1).ShowScrollBar(false);
  MemoryPropertyBag bag;
  bag.Set("Style", Variant(int32_t{3}));
  text->ReadProperties(bag);
  EXPECT_EQ(text->Style(), 3);
  EXPECT_EQ(text->ActiveBox(), 0);
  EXPECT_TRUE(text->Txt_Text(0).Visible());
  EXPECT_TRUE(text->Txt_Text(1).Visible());
  EXPECT_FALSE(text->Txt_Text(1).ScrollBarVisible());
}

TEST_F(SFTextTest, StoredStyleThreeAfterStyleOneKeepsBoxOneVisible) {
  text_->SetStyle(1);
  MemoryPropertyBag bag;
  bag.Set("Style", Variant(int32_t{3}));
  text_->ReadProperties(bag);
  // Box visibility stays as it was; ActiveBox is not changed by an unknown Style either.
  EXPECT_EQ(text_->ActiveBox(), 1);
  EXPECT_FALSE(Box(0).Visible());
  EXPECT_TRUE(Box(1).Visible());
}

// ---------------------------------------------------------------------------------------------
// Box properties

TEST_F(SFTextTest, BoxPropertiesReachTheVisibleBoxOnly) {
  text_->SetStyle(1);
  const Font font{"Arial", 10, true};
  text_->SetBackColor(0x112233);
  text_->SetForeColor(0x445566);
  text_->SetEnabled(false);
  text_->SetFont(font);
  text_->SetBorderStyle(1);
  text_->SetText("abcdef");
  text_->SetSelStart(1);
  text_->SetSelLength(3);
  text_->SetAlignment(2);
  text_->SetPasswordChar("*");
  EXPECT_EQ(Box(1).BackColor(), 0x112233u);
  EXPECT_EQ(Box(1).ForeColor(), 0x445566u);
  EXPECT_FALSE(Box(1).Enabled());
  EXPECT_EQ(Box(1).GetFont(), font);
  EXPECT_EQ(Box(1).BorderStyle(), 1);
  EXPECT_EQ(Box(1).Text(), "abcdef");
  EXPECT_EQ(Box(1).SelStart(), 1);
  EXPECT_EQ(Box(1).SelLength(), 3);
  EXPECT_EQ(text_->SelText(), "bcd");
  EXPECT_EQ(Box(1).Alignment(), 2);
  EXPECT_EQ(Box(1).PasswordChar(), "*");
  // The inactive box is not touched.
  EXPECT_EQ(Box(0).BackColor(), kSysWindowBackground);
  EXPECT_EQ(Box(0).ForeColor(), kSysWindowText);
  EXPECT_TRUE(Box(0).Enabled());
  EXPECT_NE(Box(0).GetFont(), font);
  EXPECT_EQ(Box(0).BorderStyle(), 0);
  EXPECT_EQ(Box(0).Text(), "OrrinText");
  EXPECT_EQ(Box(0).Alignment(), 0);
  EXPECT_EQ(Box(0).PasswordChar(), "");
}

TEST_F(SFTextTest, SelTextReplacesTheSelectionOfTheVisibleBox) {
  text_->SetText("abcdef");
  text_->SetSelStart(2);
  text_->SetSelLength(2);
  text_->SetSelText("XY");
  EXPECT_EQ(text_->Text(), "abXYef");
}

TEST_F(SFTextTest, EverySetterReportsTheChangeUnderItsName) {
  text_->SetBorderColor(0x123456);
  text_->SetStyle(0);
  text_->SetAppearance(1);
  text_->SetBackColor(0x1);
  text_->SetForeColor(0x2);
  text_->SetEnabled(true);
  text_->SetFont(Font{});
  text_->SetBorderStyle(0);
  text_->SetText("x");
  text_->SetSelLength(0);
  text_->SetSelStart(0);
  text_->SetSelText("");
  text_->SetAlignment(0);
  text_->SetLocked(false);
  text_->SetPasswordChar("");
  EXPECT_EQ(Notified(), (Strings{"BorderColor", "Style", "Appearance", "BackColor", "ForeColor",
                                 "Enabled", "Font", "BorderStyle", "Text", "SelLength", "SelStart",
                                 "SelText", "Alignment", "Locked", "PasswordChar"}));
}

TEST_F(SFTextTest, HwndIsTheHandleOfTheVisibleBox) {
  EXPECT_NE(text_->hwnd(), 0u);
  EXPECT_EQ(text_->hwnd(), Box(0).Handle());
  text_->SetStyle(1);
  EXPECT_EQ(text_->hwnd(), Box(1).Handle());
  EXPECT_NE(Box(0).Handle(), Box(1).Handle());
}

TEST_F(SFTextTest, SettingTheSameTextRaisesNoChange) {
  text_->SetText("Same");
  int changes = 0;
  text_->Events().Change = [&] { ++changes; };
  text_->SetText("Same");
  EXPECT_EQ(changes, 0);
}

TEST_F(SFTextTest, SettingAnotherTextRaisesChangeOnce) {
  int changes = 0;
  text_->Events().Change = [&] { ++changes; };
  text_->SetText("Other");
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(text_->Text(), "Other");
}

// ---------------------------------------------------------------------------------------------
// Events

TEST_F(SFTextTest, TypingRepeatsTheBoxEventsInOrder) {
  Strings events;
  SFTextEvents& e = text_->Events();
  e.KeyDown = [&](int16_t& key_code, int16_t&) {
    events.push_back("KeyDown " + std::to_string(key_code));
  };
  e.KeyPress = [&](int16_t& key_ascii) {
    events.push_back("KeyPress " + std::to_string(key_ascii));
  };
  e.Change = [&] { events.push_back("Change"); };
  e.KeyUp = [&](int16_t& key_code, int16_t&) {
    events.push_back("KeyUp " + std::to_string(key_code));
  };
  e.Validate = [&](bool&) { events.push_back("Validate"); };
  text_->Host().SetFocus();
  tk_.TypeText("a");
  EXPECT_EQ(events, (Strings{"KeyDown 65", "KeyPress 97", "Change", "KeyUp 65"}));
  // The focus selected the whole text, so the key replaced it.
  EXPECT_EQ(text_->Text(), "a");
}

TEST_F(SFTextTest, EventsFromTheMultiLineBoxPassOnAlike) {
  text_->SetStyle(1);
  Strings events;
  text_->Events().KeyPress = [&](int16_t& key_ascii) {
    events.push_back("KeyPress " + std::to_string(key_ascii));
  };
  text_->Events().Change = [&] { events.push_back("Change"); };
  text_->Host().SetFocus();
  ASSERT_EQ(tk_.GetFocus(), &Box(1));
  tk_.TypeText("z");
  EXPECT_EQ(events, (Strings{"KeyPress 122", "Change"}));
  EXPECT_EQ(Box(1).Text(), "z");
}

TEST_F(SFTextTest, KeyPressListenerThatChangesKeyAsciiChangesWhatTheBoxDoes) {
  text_->Events().KeyPress = [](int16_t& key_ascii) {
    if (key_ascii >= 'a' && key_ascii <= 'z') key_ascii = static_cast<int16_t>(key_ascii - 32);
  };
  text_->Host().SetFocus();
  tk_.TypeText("abc");
  EXPECT_EQ(text_->Text(), "ABC");
}

TEST_F(SFTextTest, KeyPressListenerThatSetsKeyAsciiToZeroSwallowsTheKey) {
  text_->SetText("");
  int changes = 0;
  text_->Events().Change = [&] { ++changes; };
  text_->Events().KeyPress = [](int16_t& key_ascii) {
    if (key_ascii == 'x') key_ascii = 0;
  };
  text_->Host().SetFocus();
  tk_.TypeText("axb");
  EXPECT_EQ(text_->Text(), "ab");
  EXPECT_EQ(changes, 2);
}

TEST_F(SFTextTest, KeyDownListenerThatChangesKeyCodeChangesTheKeyThatActs) {
  text_->SetText("abc");
  text_->Host().SetFocus();  // selects all
  text_->SetSelStart(3);     // caret at the end
  text_->Events().KeyDown = [](int16_t& key_code, int16_t&) {
    if (key_code == kKeyHome) key_code = kKeyEnd;
  };
  tk_.PressKey(kKeyHome);
  tk_.PressKey(kKeyBack);
  EXPECT_EQ(text_->Text(), "ab");
}

TEST_F(SFTextTest, MouseAndClickEventsPassThroughWithTheirArguments) {
  Strings events;
  SFTextEvents& e = text_->Events();
  auto mouse = [&](const char* name) {
    return [&events, name](int16_t& button, int16_t& shift, float& x, float& y) {
      events.push_back(std::string(name) + " " + std::to_string(button) + " " +
                       std::to_string(shift) + " " + std::to_string(static_cast<int>(x)) + " " +
                       std::to_string(static_cast<int>(y)));
    };
  };
  e.MouseDown = mouse("MouseDown");
  e.MouseMove = mouse("MouseMove");
  e.MouseUp = mouse("MouseUp");
  e.Click = [&] { events.push_back("Click"); };
  e.DblClick = [&] { events.push_back("DblClick"); };
  tk_.Click(Box(0), 30, 45);
  tk_.MouseMove(Box(0), 0, kShiftMask, 60, 15);
  tk_.DoubleClick(Box(0));
  ASSERT_GE(events.size(), 5u);
  EXPECT_EQ(events[0], "MouseDown 1 0 30 45");
  EXPECT_EQ(events[1], "MouseUp 1 0 30 45");
  EXPECT_EQ(events[2], "Click");
  EXPECT_EQ(events[3], "MouseMove 0 1 60 15");
  EXPECT_NE(std::find(events.begin() + 4, events.end(), "DblClick"), events.end());
}

TEST_F(SFTextTest, ValidateIsNeverRaisedByTheControl) {
  int control_validates = 0;
  int host_validates = 0;
  text_->Events().Validate = [&](bool&) { ++control_validates; };
  text_->Host().Events().Validate = [&](bool&) { ++host_validates; };
  text_->Host().SetFocus();
  tk_.TypeText("q");
  other_->SetFocus();
  EXPECT_EQ(control_validates, 0);
  EXPECT_EQ(host_validates, 1);  // the toolkit's own step, on the control's outside
  EXPECT_EQ(tk_.GetFocus(), other_.get());
}

TEST_F(SFTextTest, BoxFocusEventsAreNotRepeated) {
  int events = 0;
  SFTextEvents& e = text_->Events();
  e.Click = e.DblClick = e.Change = [&] { ++events; };
  text_->Host().SetFocus();
  other_->SetFocus();
  EXPECT_EQ(events, 0);
}

// ---------------------------------------------------------------------------------------------
// Border

// The border is drawn over what is there; the last four operations are the newest border.
Strings LastFour(const Strings& ops) {
  return ops.size() < 4 ? ops : Strings(ops.end() - 4, ops.end());
}

TEST_F(SFTextTest, RestingBorderIsSunkenWithTheFourLines) {
  text_->SetAppearance(0);  // clears
  text_->SetAppearance(1);
  EXPECT_EQ(Ops(tk_, text_->Host()), (Strings{
                                         "line 0,0 0,825 #000000",
                                         "line 0,0 3375,0 #000000",
                                         "line 3360,0 3360,810 #E0E0E0",
                                         "line 0,810 3360,810 #E0E0E0",
                                     }));
}

TEST_F(SFTextTest, FocusBorderIsAllBorderColor) {
  text_->Host().SetFocus();
  EXPECT_TRUE(text_->HasFocus());
  const Strings ops = Ops(tk_, text_->Host());
  ASSERT_GE(ops.size(), 4u);
  EXPECT_EQ(Strings(ops.end() - 4, ops.end()), (Strings{
                                                   "line 0,0 0,825 #BB5522",
                                                   "line 0,0 3375,0 #BB5522",
                                                   "line 3360,0 3360,810 #BB5522",
                                                   "line 0,810 3360,810 #BB5522",
                                               }));
}

TEST_F(SFTextTest, FocusBorderIgnoresAppearance) {
  text_->SetAppearance(0);
  text_->SetBorderColor(0x00AA00);
  text_->Host().SetFocus();
  const Strings ops = Ops(tk_, text_->Host());
  ASSERT_EQ(ops.size(), 4u);
  EXPECT_EQ(ops[0], "line 0,0 0,825 #00AA00");
  EXPECT_EQ(ops[3], "line 0,810 3360,810 #00AA00");
}

TEST_F(SFTextTest, FlatAppearanceWithoutFocusClearsTheSurfaceInsteadOfDrawing) {
  tk_.Repaint(text_->Host());
  ASSERT_FALSE(tk_.DrawOps(text_->Host()).empty());
  const int32_t cleared = tk_.ClsCount(text_->Host());
  text_->SetAppearance(0);
  EXPECT_TRUE(tk_.DrawOps(text_->Host()).empty());
  EXPECT_EQ(tk_.ClsCount(text_->Host()), cleared + 1);
  EXPECT_EQ(Notified(), (Strings{"Appearance"}));
}

TEST_F(SFTextTest, AppearanceSetterRedrawsTheBorder) {
  text_->SetAppearance(0);
  text_->SetAppearance(1);
  EXPECT_EQ(Ops(tk_, text_->Host()).size(), 4u);
  EXPECT_EQ(Ops(tk_, text_->Host())[0], "line 0,0 0,825 #000000");
}

TEST_F(SFTextTest, BorderFollowsTheScreenTwipsPerPixel) {
  tk_.SetTwipsPerPixel(12, 20);
  tk_.Repaint(text_->Host());
  const Strings ops = LastFour(Ops(tk_, text_->Host()));
  ASSERT_EQ(ops.size(), 4u);
  EXPECT_EQ(ops[2], "line 3363,0 3363,805 #E0E0E0");
  EXPECT_EQ(ops[3], "line 0,805 3363,805 #E0E0E0");
}

TEST_F(SFTextTest, BorderColorSetWhileFocusedShowsOnlyAtTheNextRedraw) {
  text_->Host().SetFocus();
  const Strings before = Ops(tk_, text_->Host());
  text_->SetBorderColor(0x0000FF);
  EXPECT_EQ(Ops(tk_, text_->Host()), before);
  EXPECT_EQ(Notified(), (Strings{"BorderColor"}));
  tk_.Repaint(text_->Host());
  const Strings after = Ops(tk_, text_->Host());
  ASSERT_GE(after.size(), 4u);
  EXPECT_EQ(after.back(), "line 0,810 3360,810 #0000FF");
}

TEST_F(SFTextTest, LeavingTheFocusDrawsTheRestingBorder) {
  text_->Host().SetFocus();
  other_->SetFocus();
  EXPECT_FALSE(text_->HasFocus());
  const Strings ops = Ops(tk_, text_->Host());
  ASSERT_GE(ops.size(), 4u);
  EXPECT_EQ(Strings(ops.end() - 4, ops.end()), (Strings{
                                                   "line 0,0 0,825 #000000",
                                                   "line 0,0 3375,0 #000000",
                                                   "line 3360,0 3360,810 #E0E0E0",
                                                   "line 0,810 3360,810 #E0E0E0",
                                               }));
}

TEST(SFTextCreationTest, CreationDrawsTheBorderOfAControlWithoutFocusBeforeItsProperties) {
  HeadlessToolkit tk;
  std::shared_ptr<Form> form = tk.CreateForm("Form1");
  std::shared_ptr<UserControl> host = tk.CreateUserControl(*form, "SFText", "Txt_Value", 0);
  const int32_t cleared = tk.ClsCount(*host);
  std::shared_ptr<SFText> text = SFText::Attach(tk, host);
  // Appearance is not yet 1 at creation: the surface is cleared and nothing is drawn.
  EXPECT_FALSE(text->HasFocus());
  EXPECT_EQ(text->Appearance(), 0);
  EXPECT_EQ(tk.ClsCount(*host), cleared + 1);
  EXPECT_TRUE(tk.DrawOps(*host).empty());
}

// ---------------------------------------------------------------------------------------------
// Resize

TEST_F(SFTextTest, ResizePlacesBothBoxesInsideTheOnePixelGap) {
  text_->Host().Move(100, 200, 3000, 600);
  for (int32_t i = 0; i <= 1; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(Box(i).Left(), 15);
    EXPECT_EQ(Box(i).Top(), 15);
    EXPECT_EQ(Box(i).Width(), 2970);
    EXPECT_EQ(Box(i).Height(), 570);
  }
  EXPECT_EQ(LastFour(Ops(tk_, text_->Host())), (Strings{
                                                   "line 0,0 0,600 #000000",
                                                   "line 0,0 3000,0 #000000",
                                                   "line 2985,0 2985,585 #E0E0E0",
                                                   "line 0,585 2985,585 #E0E0E0",
                                               }));
}

TEST_F(SFTextTest, ResizeTakesTwipsPerPixelAsWholeNumbers) {
  tk_.SetTwipsPerPixel(12.4, 13.6);
  text_->Host().Move(0, 0, 1000, 500);
  EXPECT_EQ(Box(0).Left(), 12);
  EXPECT_EQ(Box(0).Top(), 14);
  EXPECT_EQ(Box(0).Width(), 1000 - 24);
  EXPECT_EQ(Box(0).Height(), 500 - 28);
}

TEST_F(SFTextTest, ControlNarrowerThanThreeTwipsBecomesThreeWideAndBoxesArePlacedAtTheNextResize) {
  // At one twip a pixel the boxes fit into the three twips.
  tk_.SetTwipsPerPixel(1, 1);
  text_->Host().SetWidth(2);
  EXPECT_EQ(text_->Host().Width(), 3);
  EXPECT_EQ(Box(0).Left(), 1);
  EXPECT_EQ(Box(0).Width(), 1);
  EXPECT_EQ(Box(1).Width(), 1);
  EXPECT_EQ(Box(0).Height(), 825 - 2);
}

TEST_F(SFTextTest, ControlNarrowerThanThreeTwipsStopsBeforePlacingTheBoxes) {
  // The Resize that finds the width too small sets it and places nothing; the Resize that the
  // new width brings tries to place the boxes, which do not fit at 15 twips a pixel, and that
  // failure passes to whoever changed the size.
  const Twips box_width = Box(0).Width();
  try {
    text_->Host().SetWidth(1);
    FAIL() << "no failure";
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), kErrInvalidProcedureCall);
  }
  EXPECT_EQ(text_->Host().Width(), 3);
  EXPECT_EQ(Box(0).Width(), box_width);
}

TEST_F(SFTextTest, ControlLowerThanThreeTwipsBecomesThreeHigh) {
  tk_.SetTwipsPerPixel(1, 1);
  text_->Host().SetHeight(0);
  EXPECT_EQ(text_->Host().Height(), 3);
  EXPECT_EQ(Box(0).Top(), 1);
  EXPECT_EQ(Box(0).Height(), 1);
}

TEST_F(SFTextTest, RepaintDrawsTheBorder) {
  text_->SetAppearance(0);  // clears
  ASSERT_TRUE(tk_.DrawOps(text_->Host()).empty());
  text_->SetAppearance(1);
  const size_t n = tk_.DrawOps(text_->Host()).size();
  tk_.Repaint(text_->Host());
  EXPECT_EQ(tk_.DrawOps(text_->Host()).size(), n + 4);
}

// ---------------------------------------------------------------------------------------------
// Focus and colours

TEST_F(SFTextTest, TabEntersTheVisibleBox) {
  other_->SetFocus();
  tk_.PressTab();
  EXPECT_EQ(tk_.GetFocus(), &Box(0));
  EXPECT_TRUE(text_->HasFocus());
  text_->SetStyle(1);
  other_->SetFocus();
  tk_.PressTab();
  EXPECT_EQ(tk_.GetFocus(), &Box(1));
  tk_.PressTab();
  EXPECT_EQ(tk_.GetFocus(), other_.get());
}

TEST_F(SFTextTest, OwnerSeesTheFocusOfTheControlItselfBesideTheBorder) {
  Strings seen;
  text_->Host().Events().GotFocus = [&] { seen.push_back("GotFocus"); };
  text_->Host().Events().LostFocus = [&] { seen.push_back("LostFocus"); };
  text_->Host().SetFocus();
  EXPECT_TRUE(text_->HasFocus());
  other_->SetFocus();
  EXPECT_FALSE(text_->HasFocus());
  EXPECT_EQ(seen, (Strings{"GotFocus", "LostFocus"}));
}

TEST_F(SFTextTest, FocusEnteringSelectsTheWholeText) {
  text_->SetText("Select me");
  text_->Host().SetFocus();
  EXPECT_TRUE(text_->HasFocus());
  EXPECT_EQ(text_->SelStart(), 0);
  EXPECT_EQ(text_->SelLength(), 9);
  EXPECT_EQ(text_->SelText(), "Select me");
}

TEST_F(SFTextTest, FocusEnteringCountsCharactersNotBytes) {
  text_->SetText("客户名称");
  text_->Host().SetFocus();
  EXPECT_EQ(text_->SelLength(), 4);
}

TEST_F(SFTextTest, BoxGettingTheFocusTakesTheWindowBackground) {
  Box(0).SetBackColor(0x00FF00);
  text_->Host().SetFocus();
  EXPECT_EQ(Box(0).BackColor(), kSysWindowBackground);
}

TEST_F(SFTextTest, LockedFieldThatGetsTheFocusShowsTheActiveBorderColour) {
  text_->SetLocked(true);
  EXPECT_EQ(Box(0).BackColor(), kSysWindowBackground);
  text_->Host().SetFocus();
  EXPECT_EQ(Box(0).BackColor(), kSysActiveBorder);
}

TEST_F(SFTextTest, LockingWhileTheFieldHasTheFocusGivesTheWindowBackground) {
  text_->Host().SetFocus();
  ASSERT_EQ(tk_.GetFocus(), &Box(0));
  text_->SetLocked(true);
  EXPECT_TRUE(Box(0).Locked());
  EXPECT_EQ(Box(0).BackColor(), kSysWindowBackground);
  EXPECT_EQ(Notified(), (Strings{"Locked"}));
}

TEST_F(SFTextTest, LockedBoxLosingTheFocusTakesTheWindowBackground) {
  text_->SetLocked(true);
  text_->Host().SetFocus();
  ASSERT_EQ(Box(0).BackColor(), kSysActiveBorder);
  other_->SetFocus();
  EXPECT_EQ(Box(0).BackColor(), kSysWindowBackground);
}

TEST_F(SFTextTest, UnlockingSetsTheWindowBackground) {
  text_->SetBackColor(0x00FF00);
  text_->SetLocked(false);
  EXPECT_FALSE(text_->Locked());
  EXPECT_EQ(Box(0).BackColor(), kSysWindowBackground);
}

TEST_F(SFTextTest, LockedBoxRefusesTyping) {
  text_->SetText("Fixed");
  text_->SetLocked(true);
  text_->Host().SetFocus();
  tk_.TypeText("x");
  EXPECT_EQ(text_->Text(), "Fixed");
}

// ---------------------------------------------------------------------------------------------
// Persistence

TEST_F(SFTextTest, NewControlStoresNothing) {
  MemoryPropertyBag bag;
  text_->WriteProperties(bag);
  EXPECT_TRUE(bag.Entries().empty()) << bag.TranscriptLines().front();
}

TEST_F(SFTextTest, WritesTheFifteenKeysInOrder) {
  RecordingBag bag;
  text_->WriteProperties(bag);
  EXPECT_EQ(bag.Writes(),
            (Strings{"BackColor", "ForeColor", "Enabled", "Font", "BorderStyle", "Text",
                     "SelLength", "SelStart", "SelText", "Alignment", "Appearance", "Locked",
                     "PasswordChar", "Style", "BorderColor"}));
}

TEST_F(SFTextTest, ReadsTheBoxKeysTwiceThenTheMembersThenLockedAndPasswordChar) {
  RecordingBag bag;
  text_->ReadProperties(bag);
  const Strings box_keys = {"BackColor", "ForeColor", "Enabled",  "Font",    "BorderStyle",
                            "Text",      "SelLength", "SelStart", "SelText", "Alignment"};
  Strings expected = box_keys;
  expected.insert(expected.end(), box_keys.begin(), box_keys.end());
  for (const char* key : {"Appearance", "Style", "BorderColor", "Locked", "PasswordChar"}) {
    expected.push_back(key);
  }
  EXPECT_EQ(bag.Reads(), expected);
}

TEST_F(SFTextTest, ReadingGivesBothBoxesTheBoxKeysAndOnlyTheVisibleBoxTheLock) {
  MemoryPropertyBag bag;
  bag.Set("BackColor", Variant(int32_t{0x102030}));
  bag.Set("Text", Variant("Stored"));
  bag.Set("Alignment", Variant(int16_t{1}));
  bag.Set("Locked", Variant(true));
  bag.Set("PasswordChar", Variant("*"));
  bag.Set("Style", Variant(int32_t{1}));
  text_->ReadProperties(bag);
  for (int32_t i = 0; i <= 1; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(Box(i).BackColor(), 0x102030u);
    EXPECT_EQ(Box(i).Text(), "Stored");
    EXPECT_EQ(Box(i).Alignment(), 1);
  }
  EXPECT_TRUE(Box(1).Locked());
  EXPECT_EQ(Box(1).PasswordChar(), "*");
  EXPECT_FALSE(Box(0).Locked());
  EXPECT_EQ(Box(0).PasswordChar(), "");
}

TEST_F(SFTextTest, ReadingDrawsTheBorderAndReportsNothing) {
  MemoryPropertyBag bag;
  bag.Set("BorderColor", Variant(int32_t{0x0000FF}));
  text_->SetAppearance(0);  // clears
  tk_.ClearNotifiedProperties(text_->Host());
  text_->ReadProperties(bag);
  EXPECT_EQ(text_->BorderColor(), 0x0000FFu);
  EXPECT_EQ(Ops(tk_, text_->Host()).size(), 4u);
  EXPECT_TRUE(Notified().empty());
}

TEST_F(SFTextTest, NoStoredTextReadsAsTheDesignText) {
  text_->SetText("Something");
  MemoryPropertyBag bag;
  text_->ReadProperties(bag);
  EXPECT_EQ(text_->Text(), "OrrinText");
}

TEST_F(SFTextTest, RoundTripKeepsEveryStoredProperty) {
  const Font font{"Arial", 12, false, true};
  text_->SetStyle(1);
  text_->SetLocked(true);  // before BackColor: the Locked setter sets the back colour
  text_->SetBackColor(0x010203);
  text_->SetForeColor(0x040506);
  text_->SetEnabled(false);
  text_->SetFont(font);
  text_->SetBorderStyle(1);
  text_->SetText("Round trip");
  text_->SetAlignment(2);
  text_->SetAppearance(3);
  text_->SetPasswordChar("#");
  text_->SetBorderColor(0x0A0B0C);
  MemoryPropertyBag bag;
  text_->WriteProperties(bag);

  std::shared_ptr<SFText> copy = SFText::Create(tk_, *form_, "Txt_Value", 1);
  copy->ReadProperties(bag);
  EXPECT_EQ(copy->Style(), 1);
  EXPECT_EQ(copy->ActiveBox(), 1);
  EXPECT_EQ(copy->BackColor(), 0x010203u);
  EXPECT_EQ(copy->ForeColor(), 0x040506u);
  EXPECT_FALSE(copy->Enabled());
  EXPECT_EQ(copy->GetFont(), font);
  EXPECT_EQ(copy->BorderStyle(), 1);
  EXPECT_EQ(copy->Text(), "Round trip");
  EXPECT_EQ(copy->Alignment(), 2);
  EXPECT_EQ(copy->Appearance(), 3);
  EXPECT_TRUE(copy->Locked());
  EXPECT_EQ(copy->PasswordChar(), "#");
  EXPECT_EQ(copy->BorderColor(), 0x0A0B0Cu);
  MemoryPropertyBag again;
  copy->WriteProperties(again);
  EXPECT_EQ(again.TranscriptLines(), bag.TranscriptLines());
}

TEST_F(SFTextTest, ValuesEqualToTheirDefaultsAreNotStored) {
  text_->SetText("Changed");
  text_->SetBorderColor(0x000001);
  text_->SetAlignment(1);
  MemoryPropertyBag bag;
  text_->WriteProperties(bag);
  Strings keys;
  for (const auto& [key, value] : bag.Entries()) keys.push_back(key);
  EXPECT_EQ(keys, (Strings{"Text", "Alignment", "BorderColor"}));
  // Back to the defaults: nothing stays stored.
  text_->SetText("OrrinText");
  text_->SetBorderColor(0xBB5522);
  text_->SetAlignment(0);
  text_->WriteProperties(bag);
  EXPECT_TRUE(bag.Entries().empty());
}

TEST_F(SFTextTest, FontEqualToTheAmbientFontIsNotStored) {
  const Font ambient = text_->Host().AmbientFont();
  text_->SetFont(ambient);
  MemoryPropertyBag bag;
  text_->WriteProperties(bag);
  EXPECT_FALSE(bag.Contains("Font"));
  Font other = ambient;
  other.size = ambient.size + 2;
  text_->SetFont(other);
  text_->WriteProperties(bag);
  EXPECT_TRUE(bag.Contains("Font"));
}

TEST_F(SFTextTest, StoredValueOfTheWrongTypeFailsWithTypeMismatchAndPassesToTheCaller) {
  MemoryPropertyBag bag;
  bag.Set("Appearance", Variant("sunken"));
  try {
    text_->ReadProperties(bag);
    FAIL() << "no failure";
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), kErrTypeMismatch);
    EXPECT_NE(f.Description().find("Appearance"), std::string::npos) << f.Description();
  }
}

TEST_F(SFTextTest, LoadedElementStartsAsElementZeroHidden) {
  text_->SetText("Template");
  text_->SetBackColor(0x0F0F0F);
  text_->SetBorderColor(0x00FF00);
  text_->Host().SetTag("F_NAME");
  std::shared_ptr<SFText> element = SFText::LoadElement(tk_, *text_, 1);
  EXPECT_EQ(element->Host().Name(), "Txt_Value");
  EXPECT_EQ(element->Host().Index(), 1);
  EXPECT_EQ(element->Host().TypeName(), "SFText");
  EXPECT_FALSE(element->Host().Visible());
  EXPECT_EQ(element->Text(), "Template");
  EXPECT_EQ(element->BackColor(), 0x0F0F0Fu);
  EXPECT_EQ(element->BorderColor(), 0x00FF00u);
  EXPECT_EQ(element->Txt_Text(1).Text(), "Template");
  EXPECT_THROW(SFText::LoadElement(tk_, *text_, 1), Failure);
}

}  // namespace
}  // namespace tarnsheets
