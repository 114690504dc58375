#include "editors/sf_check.h"

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

// The four border lines of a 13 by 13 pixel control at 15 twips a pixel.
const char* const kTop = "line 0,0 180,0";
const char* const kRight = "line 180,0 180,180";
const char* const kBottom = "line 0,180 180,180";
const char* const kLeft = "line 0,0 0,180";

std::string L(const char* line, const char* color) { return std::string(line) + " " + color; }

Strings FocusBorder(const char* color = "#BB5522") {
  return {L(kTop, color), L(kRight, color), L(kBottom, color), L(kLeft, color)};
}
Strings RestingBorder() {
  return {L(kTop, "#000000"), L(kLeft, "#000000"), L(kRight, "#E0E0E0"), L(kBottom, "#E0E0E0")};
}
Strings Join(Strings a, const Strings& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}
const char* const kEmptyInside = "box 15,15 180,180 #80000005";
const char* const kCheckMark = "picture PictureClip1 7x7 at 45,45";
const char* const kDither = "picture PictureClip2 7x7 at 45,45";

class SFCheckTest : public ::testing::Test {
 protected:
  void SetUp() override {
    form_ = tk_.CreateForm("Form1");
    other_ = tk_.CreateTextBox(*form_, "Other");
    check_ = SFCheck::Create(tk_, *form_, "Chk_Value", 0);
    form_->Show();
    check_->Events().Click = [this] { events_.push_back("Click"); };
    tk_.ClearNotifiedProperties(check_->Host());
  }

  UserControl& Host() { return check_->Host(); }
  const Strings& Notified() { return tk_.NotifiedProperties(check_->Host()); }
  Strings Drawn() { return Ops(tk_, check_->Host()); }

  HeadlessToolkit tk_;
  std::shared_ptr<Form> form_;
  std::shared_ptr<TextBox> other_;
  std::shared_ptr<SFCheck> check_;
  Strings events_;
};

// ---------------------------------------------------------------------------------------------
// The control as designed

TEST_F(SFCheckTest, NewControlIsThirteenPixelsSquareWithDefaults) {
  EXPECT_EQ(Host().TypeName(), "SFCheck");
  EXPECT_EQ(Host().Width(), 195);
  EXPECT_EQ(Host().Height(), 195);
  EXPECT_TRUE(Host().CanGetFocus());
  EXPECT_EQ(Host().BackColor(), kSysWindowBackground);
  EXPECT_EQ(check_->Value(), 0);
  EXPECT_EQ(check_->EditMode(), 0);
  EXPECT_EQ(check_->Appearance(), 1);
  EXPECT_EQ(check_->BorderColor(), 0xBB5522u);
  EXPECT_FALSE(check_->Locked());
  EXPECT_TRUE(check_->Enabled());
}

TEST(SFCheckCreationTest, CreationDrawsTheRestingBorderWhileAppearanceIsStillZero) {
  HeadlessToolkit tk;
  std::shared_ptr<Form> form = tk.CreateForm("Form1");
  std::shared_ptr<UserControl> host = tk.CreateUserControl(*form, "SFCheck", "Chk_Value", 0);
  host->Move(0, 0, 195, 195);
  std::shared_ptr<SFCheck> check = SFCheck::Attach(tk, host);
  EXPECT_EQ(check->Appearance(), 0);
  // All four lines in the back colour: top, left, right, bottom.
  EXPECT_EQ(Ops(tk, *host), (Strings{L(kTop, "#80000005"), L(kLeft, "#80000005"),
                                     L(kRight, "#80000005"), L(kBottom, "#80000005")}));
}

TEST_F(SFCheckTest, GlyphsAreTheDesignedPictures) {
  const Picture& clip1 = SFCheck::PictureClip1();
  const Picture& clip2 = SFCheck::PictureClip2();
  EXPECT_EQ(clip1.id, "PictureClip1");
  EXPECT_EQ(clip2.id, "PictureClip2");
  EXPECT_EQ(clip1.width, 7);
  EXPECT_EQ(clip1.height, 7);
  EXPECT_EQ(clip2.width, 7);
  EXPECT_EQ(clip2.height, 7);
  EXPECT_EQ(clip1.pixels.size(), 49u);
  EXPECT_EQ(clip2.pixels.size(), 49u);
}

// ---------------------------------------------------------------------------------------------
// Value and ToggleValue

TEST(NextCheckValueTest, StepsAsTheToggleTableSays) {
  struct Case {
    int32_t value, edit_mode, next;
  } cases[] = {
      {0, 1, 1}, {1, 1, 2}, {2, 1, 0}, {5, 1, 5}, {-1, 1, -1}, {0, 0, 1}, {1, 0, 0},
      {2, 0, 0}, {5, 0, 5}, {0, 7, 1}, {1, 7, 0}, {2, 7, 0},   {3, 7, 3}, {1, -1, 0},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(NextCheckValue(c.value, c.edit_mode), c.next)
        << "value " << c.value << " edit mode " << c.edit_mode;
  }
}

TEST_F(SFCheckTest, SettingValueFromCodeRaisesNoEvent) {
  check_->SetValue(1);
  check_->SetValue(2);
  check_->SetValue(0);
  EXPECT_TRUE(events_.empty());
  EXPECT_EQ(Notified(), (Strings{"Value", "Value", "Value"}));
}

TEST_F(SFCheckTest, ValueSetterDrawsTheValue) {
  check_->SetValue(1);
  EXPECT_EQ(Drawn().back(), kCheckMark);
  check_->SetValue(0);
  EXPECT_EQ(Drawn().back(), kEmptyInside);
}

TEST_F(SFCheckTest, ClickTogglesOffToOnAndBackWithClickAfterEach) {
  tk_.Click(Host());
  EXPECT_EQ(check_->Value(), 1);
  tk_.Click(Host());
  EXPECT_EQ(check_->Value(), 0);
  EXPECT_EQ(events_, (Strings{"Click", "Click"}));
}

TEST_F(SFCheckTest, EditModeOneThreeClicksGoZeroOneTwoAndBackToZero) {
  check_->SetEditMode(1);
  Strings seen;
  check_->Events().Click = [&] { seen.push_back("Click " + std::to_string(check_->Value())); };
  tk_.Click(Host());
  tk_.Click(Host());
  tk_.Click(Host());
  EXPECT_EQ(seen, (Strings{"Click 1", "Click 2", "Click 0"}));
}

TEST_F(SFCheckTest, EditModeOneShowsTheDitherForValueTwo) {
  check_->SetEditMode(1);
  check_->SetValue(2);
  EXPECT_EQ(Drawn().back(), kDither);
}

TEST_F(SFCheckTest, EditModeZeroWithValueTwoIsBlankAndTheNextClickGivesZero) {
  check_->SetValue(2);
  EXPECT_EQ(Drawn().back(), kEmptyInside);
  tk_.Click(Host());
  EXPECT_EQ(check_->Value(), 0);
  EXPECT_EQ(events_, (Strings{"Click"}));
}

TEST_F(SFCheckTest, ValueFiveIsKeptNotDrawnAndAClickLeavesItButStillRaisesClick) {
  const size_t before = Drawn().size();
  check_->SetValue(5);
  EXPECT_EQ(check_->Value(), 5);
  EXPECT_EQ(Drawn().size(), before);
  tk_.Click(Host());
  EXPECT_EQ(check_->Value(), 5);
  EXPECT_EQ(events_, (Strings{"Click"}));
  // The click's own drawing is there, but no glyph and no inside.
  for (const std::string& op : Drawn()) EXPECT_EQ(op.rfind("line", 0), 0u) << op;
}

TEST_F(SFCheckTest, ToggleValueFromCodeStepsAndRaisesClick) {
  check_->ToggleValue();
  EXPECT_EQ(check_->Value(), 1);
  EXPECT_EQ(events_, (Strings{"Click"}));
  EXPECT_EQ(Notified(), (Strings{"Value"}));
}

TEST_F(SFCheckTest, LockedClickShowsThePressAndBorderButKeepsValueAndRaisesNoClick) {
  check_->SetValue(1);
  check_->SetLocked(true);
  const int32_t cleared = tk_.ClsCount(Host());
  tk_.Click(Host());
  EXPECT_EQ(check_->Value(), 1);
  EXPECT_TRUE(events_.empty());
  EXPECT_EQ(Host().BackColor(), kSysWindowBackground);
  // Mouse down and click each set the back colour, which clears the drawing.
  EXPECT_EQ(tk_.ClsCount(Host()), cleared + 2);
  // Only the focus border is left: the glyph has gone with the clearing.
  EXPECT_EQ(Drawn(), FocusBorder());
}

TEST_F(SFCheckTest, LockedClickLosesTheGlyphUntilTheNextValue) {
  check_->SetValue(1);
  check_->SetLocked(true);
  tk_.Click(Host());
  ASSERT_EQ(Drawn(), FocusBorder());
  check_->SetValue(1);
  EXPECT_EQ(Drawn(), Join(FocusBorder(), {kCheckMark}));
}

TEST_F(SFCheckTest, LockedClickLosesTheGlyphUntilTheNextResize) {
  check_->SetValue(1);
  check_->SetLocked(true);
  tk_.Click(Host());
  ASSERT_EQ(Drawn(), FocusBorder());
  Host().Move(0, 0, 300, 300);  // a Resize; then the repaint puts the size back
  tk_.Repaint(Host());
  EXPECT_EQ(Drawn(), Join(RestingBorder(), {kCheckMark}));
}

TEST_F(SFCheckTest, LockedSpaceBarDoesNotToggle) {
  check_->SetLocked(true);
  Host().SetFocus();
  tk_.PressKey(kKeySpace);
  EXPECT_EQ(check_->Value(), 0);
  EXPECT_TRUE(events_.empty());
}

// ---------------------------------------------------------------------------------------------
// Border, pressed look and the control's events

TEST_F(SFCheckTest, FocusEnteringDrawsTheFocusBorderTopRightBottomLeft) {
  const size_t before = Drawn().size();
  Host().SetFocus();
  const Strings ops = Drawn();
  ASSERT_EQ(ops.size(), before + 4);
  EXPECT_EQ(Strings(ops.end() - 4, ops.end()), FocusBorder());
}

TEST_F(SFCheckTest, OwnerSeesTheFocusOfTheControlBesideTheBorders) {
  Strings seen;
  Host().Events().GotFocus = [&] { seen.push_back("GotFocus"); };
  Host().Events().LostFocus = [&] { seen.push_back("LostFocus"); };
  tk_.Click(Host());
  EXPECT_EQ(Drawn(), Join(FocusBorder(), {kCheckMark}));
  EXPECT_EQ(events_, (Strings{"Click"}));
  other_->SetFocus();
  EXPECT_EQ(seen, (Strings{"GotFocus", "LostFocus"}));
}

TEST_F(SFCheckTest, TabStopsOnTheControl) {
  other_->SetFocus();
  tk_.PressTab();
  EXPECT_EQ(tk_.GetFocus(), &Host());
  const Strings ops = Drawn();
  ASSERT_GE(ops.size(), 4u);
  EXPECT_EQ(Strings(ops.end() - 4, ops.end()), FocusBorder());
}

TEST_F(SFCheckTest, FocusLeavingDrawsTheRestingBorderTopLeftRightBottom) {
  Host().SetFocus();
  other_->SetFocus();
  const Strings ops = Drawn();
  ASSERT_GE(ops.size(), 4u);
  EXPECT_EQ(Strings(ops.end() - 4, ops.end()), RestingBorder());
}

TEST_F(SFCheckTest, RestingBorderWithAnotherAppearanceIsInTheBackColour) {
  check_->SetAppearance(0);
  const Strings ops = Drawn();
  ASSERT_GE(ops.size(), 4u);
  EXPECT_EQ(Strings(ops.end() - 4, ops.end()),
            (Strings{L(kTop, "#80000005"), L(kLeft, "#80000005"), L(kRight, "#80000005"),
                     L(kBottom, "#80000005")}));
  EXPECT_EQ(Notified(), (Strings{"Appearance"}));
}

TEST_F(SFCheckTest, BorderColorShowsAtTheNextFocusNotBefore) {
  const Strings before = Drawn();
  check_->SetBorderColor(0x0000FF);
  EXPECT_EQ(Drawn(), before);
  Host().SetFocus();
  const Strings ops = Drawn();
  EXPECT_EQ(Strings(ops.end() - 4, ops.end()), FocusBorder("#0000FF"));
}

TEST_F(SFCheckTest, MouseDownRaisesEventFourThenShowsThePressedLook) {
  Host().SetFocus();
  Strings seen;
  check_->Events().MouseDown = [&](int16_t& button, int16_t& shift, float& x, float& y) {
    seen.push_back("MouseDown " + std::to_string(button) + " " + std::to_string(shift) + " " +
                   std::to_string(static_cast<int>(x)) + " " + std::to_string(static_cast<int>(y)) +
                   " back " + std::to_string(Host().BackColor()));
  };
  tk_.MouseDown(Host(), kLeftButton, 0, 30, 60);
  ASSERT_EQ(seen.size(), 1u);
  EXPECT_EQ(seen[0], "MouseDown 1 0 30 60 back " + std::to_string(kSysWindowBackground));
  EXPECT_EQ(Host().BackColor(), kSysButtonFace);
  EXPECT_EQ(Drawn(), FocusBorder());
  EXPECT_EQ(check_->Value(), 0);
}

TEST_F(SFCheckTest, PressedLookIsHeldUntilTheClick) {
  tk_.MouseDown(Host(), kLeftButton);
  tk_.MouseUp(Host(), kLeftButton);
  EXPECT_EQ(Host().BackColor(), kSysButtonFace);
  EXPECT_EQ(check_->Value(), 0);
  tk_.Click(Host());
  EXPECT_EQ(Host().BackColor(), kSysWindowBackground);
  EXPECT_EQ(check_->Value(), 1);
}

TEST_F(SFCheckTest, ClickDrawsTheFocusBorderThenTheValue) {
  tk_.Click(Host());
  EXPECT_EQ(Drawn(), Join(FocusBorder(), {kCheckMark}));
}

TEST_F(SFCheckTest, MouseUpRaisesEventFive) {
  Strings seen;
  check_->Events().MouseUp = [&](int16_t& button, int16_t&, float&, float&) {
    seen.push_back("MouseUp " + std::to_string(button));
  };
  tk_.RightClick(Host());
  EXPECT_EQ(seen, (Strings{"MouseUp 2"}));
  EXPECT_TRUE(events_.empty());  // a right click is no click
}

TEST_F(SFCheckTest, SpaceBarPressesAndItsReleaseToggles) {
  Host().SetFocus();
  Strings seen;
  check_->Events().KeyDown = [&](int16_t& key_code, int16_t&) {
    seen.push_back("KeyDown " + std::to_string(key_code));
  };
  check_->Events().KeyPress = [&](int16_t& key_ascii) {
    seen.push_back("KeyPress " + std::to_string(key_ascii));
  };
  check_->Events().KeyUp = [&](int16_t& key_code, int16_t&) {
    seen.push_back("KeyUp " + std::to_string(key_code));
  };
  check_->Events().Click = [&] { seen.push_back("Click"); };
  tk_.PressKey(kKeySpace);
  EXPECT_EQ(seen, (Strings{"KeyDown 32", "KeyPress 32", "KeyUp 32", "Click"}));
  EXPECT_EQ(check_->Value(), 1);
  EXPECT_EQ(Host().BackColor(), kSysWindowBackground);
  // KeyUp: the back colour cleared the surface, the toggle drew the value, then the border.
  EXPECT_EQ(Drawn(), Join({kCheckMark}, FocusBorder()));
}

TEST_F(SFCheckTest, HoldingTheSpaceBarKeepsThePressedColourAndOnlyTheReleaseToggles) {
  Host().SetFocus();
  tk_.KeyDownOnly(kKeySpace);
  tk_.KeyDownOnly(kKeySpace);
  tk_.KeyDownOnly(kKeySpace);
  EXPECT_EQ(Host().BackColor(), kSysButtonFace);
  EXPECT_EQ(check_->Value(), 0);
  EXPECT_TRUE(events_.empty());
  EXPECT_EQ(Drawn(), FocusBorder());
  tk_.KeyUpOnly(kKeySpace);
  EXPECT_EQ(check_->Value(), 1);
  EXPECT_EQ(events_, (Strings{"Click"}));
  EXPECT_EQ(Host().BackColor(), kSysWindowBackground);
}

TEST_F(SFCheckTest, OtherKeysDrawTheFocusBorderWithoutPressingOrToggling) {
  Host().SetFocus();
  const int32_t cleared = tk_.ClsCount(Host());
  tk_.PressKey('A');
  EXPECT_EQ(tk_.ClsCount(Host()), cleared);
  EXPECT_EQ(check_->Value(), 0);
  EXPECT_TRUE(events_.empty());
  const Strings ops = Drawn();
  // Key down and key up each draw the focus border.
  ASSERT_GE(ops.size(), 8u);
  EXPECT_EQ(Strings(ops.end() - 8, ops.end()), Join(FocusBorder(), FocusBorder()));
}

TEST_F(SFCheckTest, KeyDownListenerThatChangesKeyCodeChangesWhatTheControlDoes) {
  Host().SetFocus();
  check_->Events().KeyDown = [](int16_t& key_code, int16_t&) {
    if (key_code == kKeyReturn) key_code = kKeySpace;
  };
  tk_.KeyDownOnly(kKeyReturn);
  EXPECT_EQ(Host().BackColor(), kSysButtonFace);
}

TEST_F(SFCheckTest, KeyUpListenerThatChangesKeyCodeStopsTheToggle) {
  Host().SetFocus();
  check_->Events().KeyUp = [](int16_t& key_code, int16_t&) {
    if (key_code == kKeySpace) key_code = 0;
  };
  tk_.PressKey(kKeySpace);
  EXPECT_EQ(check_->Value(), 0);
  EXPECT_TRUE(events_.empty());
  EXPECT_EQ(Host().BackColor(), kSysButtonFace);  // pressed by the key down, never released
}

TEST_F(SFCheckTest, KeyPressRaisesEventTwoWithTheKey) {
  Host().SetFocus();
  Strings seen;
  check_->Events().KeyPress = [&](int16_t& key_ascii) {
    seen.push_back("KeyPress " + std::to_string(key_ascii));
  };
  tk_.TypeText("x");
  EXPECT_EQ(seen, (Strings{"KeyPress 120"}));
  EXPECT_EQ(check_->Value(), 0);
}

TEST_F(SFCheckTest, ResizeClearsDrawsTheRestingBorderAndTheValue) {
  check_->SetValue(1);
  const int32_t cleared = tk_.ClsCount(Host());
  Host().Move(0, 0, 195, 210);
  EXPECT_EQ(tk_.ClsCount(Host()), cleared + 1);
  EXPECT_EQ(Drawn(), (Strings{"line 0,0 180,0 #000000", "line 0,0 0,195 #000000",
                              "line 180,0 180,195 #E0E0E0", "line 0,195 180,195 #E0E0E0",
                              "picture PictureClip1 7x7 at 45,52.5"}));
}

TEST_F(SFCheckTest, RepaintResizesTheControlToThirteenPixelsWhateverTheFormAsks) {
  Host().Move(0, 0, 600, 450);
  EXPECT_EQ(Host().Width(), 600);
  tk_.Repaint(Host());
  EXPECT_EQ(Host().Width(), 195);
  EXPECT_EQ(Host().Height(), 195);
  EXPECT_EQ(Drawn(), Join(RestingBorder(), {kEmptyInside}));
}

TEST_F(SFCheckTest, RepaintAtTwelveTwipsAPixelGivesThirteenOfThosePixels) {
  tk_.SetTwipsPerPixel(12, 12);
  tk_.Repaint(Host());
  EXPECT_EQ(Host().Width(), 156);
  EXPECT_EQ(Host().Height(), 156);
}

TEST_F(SFCheckTest, DesignedSizeIsThirteenPixelsAtFifteenTwips) {
  Host().Move(0, 0, 195, 195);
  tk_.Repaint(Host());
  EXPECT_EQ(Host().Width(), 195);
  EXPECT_EQ(Host().Height(), 195);
}

// ---------------------------------------------------------------------------------------------
// Properties

TEST_F(SFCheckTest, EverySetterReportsTheChangeUnderItsName) {
  check_->SetLocked(true);
  check_->SetBorderColor(0x1);
  check_->SetEditMode(1);
  check_->SetValue(1);
  check_->SetAppearance(1);
  check_->SetEnabled(false);
  EXPECT_EQ(Notified(),
            (Strings{"Locked", "BorderColor", "EditMode", "Value", "Appearance", "Enabled"}));
}

TEST_F(SFCheckTest, LockedBorderColorAndEditModeDoNotRedraw) {
  const Strings before = Drawn();
  const int32_t cleared = tk_.ClsCount(Host());
  check_->SetLocked(true);
  check_->SetBorderColor(0x123456);
  check_->SetEditMode(1);
  EXPECT_EQ(Drawn(), before);
  EXPECT_EQ(tk_.ClsCount(Host()), cleared);
}

TEST_F(SFCheckTest, EnabledPassesToTheControlsOwnState) {
  check_->SetEnabled(false);
  EXPECT_FALSE(Host().Enabled());
  EXPECT_FALSE(check_->Enabled());
  EXPECT_THROW(Host().SetFocus(), Failure);
  check_->SetEnabled(true);
  EXPECT_TRUE(Host().Enabled());
}

// ---------------------------------------------------------------------------------------------
// Persistence

TEST_F(SFCheckTest, NewControlStoresNothing) {
  MemoryPropertyBag bag;
  check_->WriteProperties(bag);
  EXPECT_TRUE(bag.Entries().empty());
}

TEST_F(SFCheckTest, WritesTheSixKeysInTableOrder) {
  RecordingBag bag;
  check_->WriteProperties(bag);
  EXPECT_EQ(bag.Writes(),
            (Strings{"Value", "Appearance", "EditMode", "Enabled", "BorderColor", "Locked"}));
}

TEST_F(SFCheckTest, StoresOnlyWhatDiffersFromTheDefaultsInTableOrder) {
  check_->SetLocked(true);
  check_->SetValue(2);
  check_->SetEnabled(false);
  RecordingBag bag;
  check_->WriteProperties(bag);
  EXPECT_EQ(bag.StoredKeys(), (Strings{"Value", "Enabled", "Locked"}));
}

TEST_F(SFCheckTest, ReadsInTheStatedOrder) {
  RecordingBag bag;
  check_->ReadProperties(bag);
  EXPECT_EQ(bag.Reads(),
            (Strings{"Appearance", "Value", "EditMode", "BorderColor", "Locked", "Enabled"}));
}

TEST_F(SFCheckTest, ReadingDrawsTheValueThenTheRestingBorder) {
  MemoryPropertyBag bag;
  bag.Set("Value", Variant(int32_t{1}));
  const Strings before = Drawn();
  check_->ReadProperties(bag);
  const Strings ops = Drawn();
  ASSERT_EQ(ops.size(), before.size() + 5);
  EXPECT_EQ(Strings(ops.end() - 5, ops.end()), Join({kCheckMark}, RestingBorder()));
  EXPECT_TRUE(Notified().empty());
}

TEST_F(SFCheckTest, RoundTripKeepsEveryStoredProperty) {
  check_->SetValue(2);
  check_->SetAppearance(0);
  check_->SetEditMode(1);
  check_->SetEnabled(false);
  check_->SetBorderColor(0x00FF00);
  check_->SetLocked(true);
  MemoryPropertyBag bag;
  check_->WriteProperties(bag);
  std::shared_ptr<SFCheck> copy = SFCheck::Create(tk_, *form_, "Chk_Value", 1);
  copy->ReadProperties(bag);
  EXPECT_EQ(copy->Value(), 2);
  EXPECT_EQ(copy->Appearance(), 0);
  EXPECT_EQ(copy->EditMode(), 1);
  EXPECT_FALSE(copy->Enabled());
  EXPECT_EQ(copy->BorderColor(), 0x00FF00u);
  EXPECT_TRUE(copy->Locked());
  EXPECT_EQ(Ops(tk_, copy->Host()).back(), L(kBottom, "#80000005"));
  MemoryPropertyBag again;
  copy->WriteProperties(again);
  EXPECT_EQ(again.TranscriptLines(), bag.TranscriptLines());
}

TEST_F(SFCheckTest, StoredValueOfTheWrongTypeFailsWithTypeMismatch) {
  MemoryPropertyBag bag;
  bag.Set("Value", Variant("on"));
  try {
    check_->ReadProperties(bag);
    FAIL() << "no failure";
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), kErrTypeMismatch);
  }
}

TEST_F(SFCheckTest, LoadedElementStartsAsElementZeroHidden) {
  check_->SetValue(1);
  check_->SetBorderColor(0x00FF00);
  std::shared_ptr<SFCheck> element = SFCheck::LoadElement(tk_, *check_, 3);
  EXPECT_EQ(element->Host().Name(), "Chk_Value");
  EXPECT_EQ(element->Host().Index(), 3);
  EXPECT_FALSE(element->Host().Visible());
  EXPECT_EQ(element->Value(), 1);
  EXPECT_EQ(element->BorderColor(), 0x00FF00u);
  EXPECT_TRUE(element->Host().CanGetFocus());
}

}  // namespace
}  // namespace tarnsheets
