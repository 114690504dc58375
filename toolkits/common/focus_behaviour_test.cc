#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tarnsheets/failure.h"
#include "toolkits/common/toolkit_under_test.h"

namespace tarnsheets {
namespace {

// Records the focus events of controls as "Name.Event".
struct FocusLog {
  std::vector<std::string> lines;

  void Watch(Control& c) {
    const std::string n = c.Name() + (c.Index() >= 0 ? "(" + std::to_string(c.Index()) + ")" : "");
    c.Events().Validate = [this, n](bool&) { lines.push_back(n + ".Validate"); };
    c.Events().GotFocus = [this, n] { lines.push_back(n + ".GotFocus"); };
    c.Events().LostFocus = [this, n] { lines.push_back(n + ".LostFocus"); };
    c.Events().EnterFocus = [this, n] { lines.push_back(n + ".EnterFocus"); };
    c.Events().ExitFocus = [this, n] { lines.push_back(n + ".ExitFocus"); };
  }
};

class FocusTest : public ::testing::Test {
 protected:
  void SetUp() override {
    form_ = tk_.CreateForm("Form1");
    a_ = tk_.CreateTextBox(*form_, "A");
    b_ = tk_.CreateTextBox(*form_, "B");
    c_ = tk_.CreateCommandButton(*form_, "C");
    form_->Show();
  }
  std::string FocusName() const {
    Control* f = tk_.GetFocus();
    return f == nullptr ? "<none>" : f->Name();
  }

  ToolkitUnderTest tk_;
  std::shared_ptr<Form> form_;
  std::shared_ptr<TextBox> a_, b_;
  std::shared_ptr<CommandButton> c_;
};

TEST_F(FocusTest, TabFollowsTabIndexNotCreationOrder) {
  a_->SetTabIndex(2);
  b_->SetTabIndex(0);
  c_->SetTabIndex(1);
  b_->SetFocus();
  tk_.PressTab();
  EXPECT_EQ(FocusName(), "C");
  tk_.PressTab();
  EXPECT_EQ(FocusName(), "A");
}

TEST_F(FocusTest, TabWrapsAtTheWindowsEdgesBothWays) {
  c_->SetFocus();
  tk_.PressTab();
  EXPECT_EQ(FocusName(), "A");
  tk_.PressShiftTab();
  EXPECT_EQ(FocusName(), "C");
  tk_.PressShiftTab();
  EXPECT_EQ(FocusName(), "B");
}

TEST_F(FocusTest, TabSkipsHiddenDisabledAndNonTabStopControlsAndLabels) {
  auto label = tk_.CreateLabel(*form_, "L");
  label->SetTabIndex(1);
  auto d = tk_.CreateTextBox(*form_, "D");
  auto e = tk_.CreateTextBox(*form_, "E");
  auto f = tk_.CreateTextBox(*form_, "F");
  b_->SetVisible(false);
  c_->SetEnabled(false);
  d->SetTabStop(false);
  e->SetLocked(true);  // a locked box is still a stop
  a_->SetFocus();
  tk_.PressTab();
  EXPECT_EQ(FocusName(), "E");
  tk_.PressTab();
  EXPECT_EQ(FocusName(), "F");
  tk_.PressTab();
  EXPECT_EQ(FocusName(), "A");
}

TEST_F(FocusTest, ControlsInsideHiddenOrDisabledContainersAreNoStops) {
  auto pic = tk_.CreatePictureBox(*form_, "Pic");
  pic->SetTabStop(false);
  auto inner = tk_.CreateTextBox(*pic, "Inner");
  c_->SetFocus();
  tk_.PressTab();
  EXPECT_EQ(FocusName(), "Inner");
  pic->SetVisible(false);
  c_->SetFocus();
  tk_.PressTab();
  EXPECT_EQ(FocusName(), "A");
  pic->SetVisible(true);
  pic->SetEnabled(false);
  EXPECT_EQ(FailureNumber([&] { inner->SetFocus(); }), kErrInvalidProcedureCall);
}

TEST_F(FocusTest, PictureBoxTakesTheFocusBeforeItsChildren) {
  auto pic = tk_.CreatePictureBox(*form_, "Pic");
  auto inner = tk_.CreateTextBox(*pic, "Inner");
  c_->SetFocus();
  tk_.PressTab();
  EXPECT_EQ(FocusName(), "Pic");
  tk_.PressTab();
  EXPECT_EQ(FocusName(), "Inner");
  tk_.PressTab();
  EXPECT_EQ(FocusName(), "A");
}

TEST_F(FocusTest, SetFocusOnHiddenDisabledOrLabelFails) {
  b_->SetVisible(false);
  EXPECT_EQ(FailureNumber([&] { b_->SetFocus(); }), kErrInvalidProcedureCall);
  c_->SetEnabled(false);
  EXPECT_EQ(FailureNumber([&] { c_->SetFocus(); }), kErrInvalidProcedureCall);
  auto label = tk_.CreateLabel(*form_, "L");
  EXPECT_EQ(FailureNumber([&] { label->SetFocus(); }), kErrNotSupported);
  EXPECT_EQ(tk_.GetFocus(), nullptr);
}

TEST_F(FocusTest, SetFocusToTheFocusedControlRaisesNothing) {
  a_->SetFocus();
  FocusLog log;
  log.Watch(*a_);
  a_->SetFocus();
  EXPECT_TRUE(log.lines.empty());
}

TEST_F(FocusTest, ValidateCancelKeepsTheFocusAndRaisesNothingElse) {
  a_->SetFocus();
  FocusLog log;
  log.Watch(*a_);
  log.Watch(*b_);
  a_->Events().Validate = [&](bool& cancel) {
    log.lines.push_back("A.Validate");
    cancel = true;
  };
  tk_.PressTab();
  EXPECT_EQ(FocusName(), "A");
  EXPECT_EQ(log.lines, std::vector<std::string>{"A.Validate"});
  b_->SetFocus();  // a cancelled SetFocus is no failure
  EXPECT_EQ(FocusName(), "A");
}

TEST_F(FocusTest, ValidateCancelAlsoStopsAClick) {
  a_->SetFocus();
  a_->Events().Validate = [](bool& cancel) { cancel = true; };
  int clicks = 0;
  c_->Events().Click = [&] { ++clicks; };
  tk_.Click(*c_);
  EXPECT_EQ(clicks, 0);
  EXPECT_EQ(FocusName(), "A");
}

TEST_F(FocusTest, GetFocusReportsTheNewControlDuringLostFocus) {
  a_->SetFocus();
  std::string seen;
  a_->Events().LostFocus = [&] { seen = FocusName(); };
  b_->SetFocus();
  EXPECT_EQ(seen, "B");
}

class UserControlFocusTest : public ::testing::Test {
 protected:
  void SetUp() override {
    form_ = tk_.CreateForm("Host");
    before_ = tk_.CreateTextBox(*form_, "Before");
    sheet_ = tk_.CreateUserControl(*form_, "UserInfo", "Sheet");
    start_ = tk_.CreatePictureBox(*sheet_, "Pic_TableStart");
    field0_ = tk_.CreateUserControl(*sheet_, "SFText", "Txt_Value", 0);
    box0_ = tk_.CreateTextBox(*field0_, "Txt_Text", 0);
    box0_->SetTabStop(false);
    field1_ = tk_.CreateUserControl(*sheet_, "SFText", "Txt_Value", 1);
    box1_ = tk_.CreateTextBox(*field1_, "Txt_Text", 0);
    box1_->SetTabStop(false);
    after_ = tk_.CreateTextBox(*form_, "After");
    form_->Show();
    for (Control* c :
         std::vector<Control*>{before_.get(), sheet_.get(), start_.get(), field0_.get(),
                               box0_.get(), field1_.get(), box1_.get(), after_.get()}) {
      log_.Watch(*c);
    }
  }

  ToolkitUnderTest tk_;
  FocusLog log_;
  std::shared_ptr<Form> form_;
  std::shared_ptr<TextBox> before_, box0_, box1_, after_;
  std::shared_ptr<UserControl> sheet_, field0_, field1_;
  std::shared_ptr<PictureBox> start_;
};

TEST_F(UserControlFocusTest, EnteringNestedUserControlsRaisesOuterFirstThenGotFocus) {
  before_->SetFocus();
  log_.lines.clear();
  field0_->SetFocus();  // goes on to its first box, TabStop aside
  EXPECT_EQ(tk_.GetFocus(), box0_.get());
  EXPECT_EQ(log_.lines,
            (std::vector<std::string>{"Before.Validate", "Before.LostFocus", "Sheet.EnterFocus",
                                      "Txt_Value(0).EnterFocus", "Sheet.GotFocus",
                                      "Txt_Value(0).GotFocus", "Txt_Text(0).GotFocus"}));
}

TEST_F(UserControlFocusTest, MovingBetweenSiblingsLeavesOnlyTheInnerUserControl) {
  field0_->SetFocus();
  log_.lines.clear();
  tk_.PressTab();
  EXPECT_EQ(tk_.GetFocus(), box1_.get());
  EXPECT_EQ(log_.lines,
            (std::vector<std::string>{"Txt_Text(0).Validate", "Txt_Value(0).Validate",
                                      "Txt_Text(0).LostFocus", "Txt_Value(0).LostFocus",
                                      "Txt_Value(0).ExitFocus", "Txt_Value(1).EnterFocus",
                                      "Txt_Value(1).GotFocus", "Txt_Text(0).GotFocus"}));
}

TEST_F(UserControlFocusTest, LeavingNestedUserControlsRaisesInnermostFirst) {
  field1_->SetFocus();
  log_.lines.clear();
  tk_.PressTab();
  EXPECT_EQ(tk_.GetFocus(), after_.get());
  EXPECT_EQ(log_.lines, (std::vector<std::string>{
                            "Txt_Text(0).Validate", "Txt_Value(1).Validate", "Sheet.Validate",
                            "Txt_Text(0).LostFocus", "Txt_Value(1).LostFocus", "Sheet.LostFocus",
                            "Txt_Value(1).ExitFocus", "Sheet.ExitFocus", "After.GotFocus"}));
}

TEST_F(UserControlFocusTest, TabWalksIntoUserControlsInTheirOwnOrder) {
  field1_->SetTabIndex(0);  // inside the sheet: field 1, the sentinel, field 0
  start_->SetTabIndex(1);
  field0_->SetTabIndex(2);
  before_->SetFocus();
  std::vector<Control*> seen;
  for (int i = 0; i < 5; ++i) {
    tk_.PressTab();
    seen.push_back(tk_.GetFocus());
  }
  EXPECT_EQ(seen, (std::vector<Control*>{box1_.get(), start_.get(), box0_.get(), after_.get(),
                                         before_.get()}));
}

TEST_F(UserControlFocusTest, UserControlWithTabStopFalseIsSkippedWhole) {
  sheet_->SetTabStop(false);
  before_->SetFocus();
  tk_.PressTab();
  EXPECT_EQ(tk_.GetFocus(), after_.get());
}

TEST_F(UserControlFocusTest, FocusInsideAnswersForTheWholeSubtree) {
  box1_->SetFocus();
  EXPECT_TRUE(tk_.FocusInside(*sheet_));
  EXPECT_TRUE(tk_.FocusInside(*field1_));
  EXPECT_FALSE(tk_.FocusInside(*field0_));
  EXPECT_TRUE(tk_.IsChild(*sheet_, *box1_));
  EXPECT_FALSE(tk_.IsChild(*box1_, *box1_));
  EXPECT_EQ(sheet_->ActiveControl(), box1_.get());
  EXPECT_EQ(field0_->ActiveControl(), nullptr);
}

TEST_F(UserControlFocusTest, FocusOutsideRaisesTheLeavingEventsWithoutGotFocus) {
  box0_->SetFocus();
  log_.lines.clear();
  EXPECT_TRUE(tk_.FocusOutside());
  EXPECT_EQ(tk_.GetFocus(), nullptr);
  EXPECT_EQ(log_.lines, (std::vector<std::string>{"Txt_Text(0).Validate", "Txt_Value(0).Validate",
                                                  "Sheet.Validate", "Txt_Text(0).LostFocus",
                                                  "Txt_Value(0).LostFocus", "Sheet.LostFocus",
                                                  "Txt_Value(0).ExitFocus", "Sheet.ExitFocus"}));
  EXPECT_FALSE(tk_.FocusInside(*sheet_));
}

TEST_F(UserControlFocusTest, UserControlThatTakesTheFocusItselfGetsEnterAndGotFocus) {
  auto check = tk_.CreateUserControl(*sheet_, "SFCheck", "Chk_Value", 0);
  check->SetCanGetFocus(true);
  log_.Watch(*check);
  field1_->SetFocus();
  log_.lines.clear();
  tk_.PressTab();
  EXPECT_EQ(tk_.GetFocus(), check.get());
  EXPECT_EQ(log_.lines,
            (std::vector<std::string>{"Txt_Text(0).Validate", "Txt_Value(1).Validate",
                                      "Txt_Text(0).LostFocus", "Txt_Value(1).LostFocus",
                                      "Txt_Value(1).ExitFocus", "Chk_Value(0).EnterFocus",
                                      "Chk_Value(0).GotFocus"}));
  int16_t seen_key = 0;
  check->Events().KeyPress = [&](int16_t& key) { seen_key = key; };
  tk_.PressKey(kKeySpace);
  EXPECT_EQ(seen_key, 32);
}

TEST_F(UserControlFocusTest, HandlerThatMovesTheFocusEndsTheOuterMove) {
  // An ExitFocus handler that refuses to let the focus go puts it back inside.
  before_->SetFocus();
  field0_->SetFocus();
  sheet_->Events().ExitFocus = [&] {
    log_.lines.push_back("Sheet.ExitFocus");
    sheet_->SetFocus();
  };
  log_.lines.clear();
  after_->SetFocus();
  // SetFocus on the sheet lands on its first child in tab order, the sentinel.
  EXPECT_EQ(tk_.GetFocus(), start_.get());
  // After never got the focus, so it never loses it either.
  EXPECT_EQ(std::count(log_.lines.begin(), log_.lines.end(), "After.GotFocus"), 0);
  EXPECT_EQ(std::count(log_.lines.begin(), log_.lines.end(), "After.LostFocus"), 0);
  EXPECT_EQ(log_.lines.back(), "Pic_TableStart.GotFocus");
  EXPECT_TRUE(tk_.FocusInside(*sheet_));
}

TEST_F(UserControlFocusTest, UnloadingTheFocusedControlHandsTheFocusOnWithoutValidate) {
  box0_->SetFocus();
  log_.lines.clear();
  tk_.Unload(*field0_);
  EXPECT_EQ(tk_.GetFocus(), box1_.get());
  EXPECT_EQ(std::count(log_.lines.begin(), log_.lines.end(), "Txt_Text(0).Validate"), 0);
  EXPECT_EQ(field0_->Parent(), nullptr);
  EXPECT_EQ(sheet_->FindControl("Txt_Value", 0), nullptr);
}

TEST(ClickFocusTest, RightClickOnTextBoxFocusesItAndReportsButtonTwo) {
  ToolkitUnderTest tk;
  auto form = tk.CreateForm("F");
  auto a = tk.CreateTextBox(*form, "A");
  auto label = tk.CreateLabel(*form, "L");
  int16_t button = 0;
  int clicks = 0;
  label->Events().MouseDown = [&](int16_t& b, int16_t&, float&, float&) { button = b; };
  label->Events().Click = [&] { ++clicks; };
  tk.RightClick(*label);
  EXPECT_EQ(button, kRightButton);
  EXPECT_EQ(clicks, 0);
  EXPECT_EQ(tk.GetFocus(), nullptr);  // a label takes no focus
  tk.RightClick(*a);
  EXPECT_EQ(tk.GetFocus(), a.get());
  tk.Click(*label);
  EXPECT_EQ(clicks, 1);
  EXPECT_EQ(tk.GetFocus(), a.get());
}

TEST(ClickFocusTest, SpaceOnAFocusedCommandButtonClicksIt) {
  ToolkitUnderTest tk;
  auto form = tk.CreateForm("F");
  auto button = tk.CreateCommandButton(*form, "Cmd");
  std::vector<std::string> seen;
  button->Events().KeyDown = [&](int16_t& k, int16_t&) {
    seen.push_back("down" + std::to_string(k));
  };
  button->Events().KeyUp = [&](int16_t& k, int16_t&) { seen.push_back("up" + std::to_string(k)); };
  button->Events().Click = [&] { seen.push_back("click"); };
  button->SetFocus();
  tk.PressKey(kKeySpace);
  EXPECT_EQ(seen, (std::vector<std::string>{"down32", "up32", "click"}));
}

}  // namespace
}  // namespace tarnsheets
