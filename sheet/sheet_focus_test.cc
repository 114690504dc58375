// The focus ring, the caption strip's colours with the focus, pointer presses, and the edit status
// engine, driven through the headless toolkit and the data source's signals.
#include "sheet/sheet_interaction_support.h"

namespace tarnsheets {
namespace {

using FocusRingTest = InteractionTest;

TEST_F(FocusRingTest, TabFromTheLastFieldGoesToTheLowestEligibleTabIndex) {
  Start();
  ClickInto("F_UDUTY");
  toolkit_.PressTab();  // past the last field, onto Pic_TableDown, round to the first field
  EXPECT_EQ(Focused(), "SFText F_ULOGINNAME");
}

TEST_F(FocusRingTest, ShiftTabFromTheFirstFieldGoesToTheHighestEligibleTabIndex) {
  Start();
  ClickInto("F_ULOGINNAME");
  toolkit_.PressShiftTab();
  EXPECT_EQ(Focused(), "SFText F_UDUTY");
}

TEST_F(FocusRingTest, TabWalksTheFieldsInDesignedOrder) {
  Start();
  ClickInto("F_ULOGINNAME");
  std::vector<std::string> seen;
  for (int i = 0; i < 9; ++i) {
    toolkit_.PressTab();
    seen.push_back(Focused());
  }
  EXPECT_EQ(seen, (std::vector<std::string>{
                      "SFText F_NTDOMAIN", "SFText F_USURNAME", "SFText F_UGIVENNAME",
                      "SFText F_UPREFIX", "SFText F_UJOBTITLE", "SFText TEAM_NAME",
                      "SFCheck F_ISACTIVE", "SFText F_UDUTY", "SFText F_ULOGINNAME"}));
}

TEST_F(FocusRingTest, HiddenRecordButtonsInStyleZeroAreNeverChosen) {
  Start();
  ASSERT_EQ(sheet_->Style(), 0);
  // The record buttons carry tab indices below the first field's.
  ASSERT_LT(engine_->Cmd_NewRecord().TabIndex(), Editor("F_ULOGINNAME").Host().TabIndex());
  engine_->Pic_TableDown().SetFocus();
  EXPECT_EQ(Focused(), "SFText F_ULOGINNAME");
}

TEST_F(FocusRingTest, VisibleRecordButtonsInStyleOneTakePartInTheRing) {
  Start();
  sheet_->SetStyle(1);
  engine_->Pic_TableDown().SetFocus();
  Control* focus = toolkit_.GetFocus();
  ASSERT_NE(focus, nullptr);
  EXPECT_EQ(focus->TypeName(), "CommandButton");
}

TEST_F(FocusRingTest, DisabledOrNonStopEditorIsNeverChosen) {
  Start();
  Editor("F_ULOGINNAME").Host().SetEnabled(false);
  engine_->Pic_TableDown().SetFocus();
  EXPECT_EQ(Focused(), "SFText F_NTDOMAIN");
  Editor("F_NTDOMAIN").Host().SetTabStop(false);
  engine_->Pic_TableDown().SetFocus();
  EXPECT_EQ(Focused(), "SFText F_USURNAME");
  Editor("F_UDUTY").Host().SetEnabled(false);
  engine_->Pic_TableUp().SetFocus();
  EXPECT_EQ(Focused(), "SFCheck F_ISACTIVE");
}

TEST_F(FocusRingTest, LockedEditorCanBeChosen) {
  Start();
  Editor("F_ULOGINNAME").SetLocked(true);
  engine_->Pic_TableDown().SetFocus();
  EXPECT_EQ(Focused(), "SFText F_ULOGINNAME");
}

TEST_F(FocusRingTest, EnteringTheSheetColoursTheCaptionAndTellsTheHost) {
  Start();
  sheet_->SetColor_Caption(0x123456);
  host_.events.clear();
  ClickInto("F_USURNAME");
  EXPECT_TRUE(engine_->HasFocus());
  EXPECT_EQ(engine_->Lbl_Caption().BackColor(), 0x123456u);
  EXPECT_EQ(engine_->Lbl_CaptionSpace().BackColor(), 0x123456u);
  EXPECT_EQ(engine_->Shp_Caption().BorderColor(), 0x123456u);
  ASSERT_GE(host_.events.size(), 2u);
  EXPECT_EQ(host_.events[0], "EnterFocus");
  EXPECT_EQ(host_.events[1], "SheetStatusChange");
}

TEST_F(FocusRingTest, LeavingTheSheetGreysTheCaption) {
  Start();
  ClickInto("F_USURNAME");
  host_.events.clear();
  ASSERT_TRUE(toolkit_.FocusOutside());
  EXPECT_FALSE(engine_->HasFocus());
  EXPECT_EQ(engine_->Lbl_Caption().BackColor(), kSysActiveBorder);
  EXPECT_EQ(engine_->Lbl_CaptionSpace().BackColor(), kSysActiveBorder);
  EXPECT_EQ(engine_->Shp_Caption().BorderColor(), kSysActiveBorder);
  EXPECT_EQ(host_.HostEvents(), std::vector<std::string>{"ExitFocus"});
  EXPECT_EQ(host_.events.back(), "SheetStatusChange");
}

TEST_F(FocusRingTest, ExitFocusCancelledKeepsTheCaptionInColorCaption) {
  Start();
  sheet_->SetColor_Caption(0x00AA00);
  ClickInto("F_USURNAME");
  host_.exit_cancel = true;
  host_.events.clear();
  toolkit_.FocusOutside();
  EXPECT_TRUE(engine_->HasFocus());
  EXPECT_EQ(engine_->Lbl_Caption().BackColor(), 0x00AA00u);
  EXPECT_EQ(engine_->Shp_Caption().BorderColor(), 0x00AA00u);
  // The sheet took the focus back, which enters it again; the exit itself raised no status change.
  EXPECT_EQ(host_.HostEvents(), (std::vector<std::string>{"ExitFocus", "EnterFocus"}));
  Control* focus = toolkit_.GetFocus();
  ASSERT_NE(focus, nullptr);
  EXPECT_TRUE(focus == &sheet_->Host() || toolkit_.IsChild(sheet_->Host(), *focus));
}

TEST_F(FocusRingTest, RightClickOnATitleWithNoFieldEnteredFocusesTheFirstFieldThenOpensTheMenu) {
  Start();
  std::vector<std::string> popups;
  toolkit_.SetPopupMenuAnswer([&](const Menu& menu) {
    popups.push_back(menu.Name() + " with focus on " + Focused());
    return std::string();
  });
  ASSERT_EQ(engine_->CurrentFieldName(), "");
  toolkit_.RightClick(engine_->Lbl_Title()(3));
  EXPECT_EQ(Focused(), "SFText F_ULOGINNAME");
  EXPECT_EQ(popups, std::vector<std::string>{"mnu_Menu with focus on SFText F_ULOGINNAME"});
}

TEST_F(FocusRingTest, ClickOnATitleReturnsToTheFieldLastEnteredNotTheOneUnderIt) {
  Start();
  ClickInto("F_UPREFIX");
  ClickInto("F_USURNAME");
  toolkit_.FocusOutside();
  // Lbl_Title(1) is the title of F_UGIVENNAME.
  toolkit_.Click(engine_->Lbl_Title()(1));
  EXPECT_EQ(Focused(), "SFText F_USURNAME");
}

TEST_F(FocusRingTest, ClickOnTheSheetsEmptySpaceReturnsToTheLastField) {
  Start();
  ClickInto("TEAM_NAME");
  toolkit_.FocusOutside();
  toolkit_.Click(sheet_->Host(), 100, 100);
  EXPECT_EQ(Focused(), "SFText TEAM_NAME");
}

TEST_F(FocusRingTest, RightClickOnTheCaptionOpensNoMenuOnUserInfo) {
  Start();
  int popups = 0;
  toolkit_.SetPopupMenuAnswer([&](const Menu&) {
    ++popups;
    return std::string();
  });
  ClickInto("F_UPREFIX");
  toolkit_.RightClick(engine_->Lbl_Caption());
  EXPECT_EQ(popups, 0);
  EXPECT_EQ(Focused(), "SFText F_UPREFIX");
}

TEST_F(FocusRingTest, MenuOpensOnlyWhenTheFocusIsInsideTheSheet) {
  Start();
  int popups = 0;
  toolkit_.SetPopupMenuAnswer([&](const Menu&) {
    ++popups;
    return std::string();
  });
  engine_->Show_PopupMenu();
  EXPECT_EQ(popups, 0);
  ClickInto("F_UPREFIX");
  engine_->Show_PopupMenu();
  EXPECT_EQ(popups, 1);
}

TEST_F(FocusRingTest, MenuChoiceRunsTheRecordCommand) {
  Start();
  toolkit_.SetPopupMenuAnswer([](const Menu&) { return std::string("mnu_NewRecord"); });
  toolkit_.RightClick(engine_->Lbl_Title()(3));
  EXPECT_EQ(spy_->EditStatus(), dsNewRecord);
  EXPECT_EQ(spy_->calls, std::vector<std::string>{"NewRecord"});
}

// --- Edit status engine

using EditStatusTest = InteractionTest;

TEST_F(EditStatusTest, BrowsingWithRecordsOffersEverything) {
  Start();
  EXPECT_EQ(Pairs(), "NDCU");
}

TEST_F(EditStatusTest, StatusFourWithoutDeletePermissionStillOffersDeleteWhenTheSetHasARecord) {
  Start(1);
  sheet_->SetEditDelete(false);
  sheet_->SetEditCopy(false);
  spy_->NewRecord();
  ASSERT_EQ(spy_->EditStatus(), dsNewRecord);
  EXPECT_EQ(Pairs(), "ND-U");
  sheet_->SetEditCopy(true);
  engine_->DataSource_EditStatusChange();
  EXPECT_EQ(Pairs(), "NDCU");
}

TEST_F(EditStatusTest, StatusZeroWithNoRecordsOffersNewAndUndoOnly) {
  Start(0);
  ASSERT_EQ(spy_->RecordCount(), 0);
  EXPECT_EQ(Pairs(), "N--U");
}

TEST_F(EditStatusTest, AllPermissionsOffTurnsEveryPairOffButUserCommandsStayOn) {
  Start();
  sheet_->SheetUserCommands().Add("mail", "Mail");
  sheet_->SetEditAddNew(false);
  sheet_->SetEditDelete(false);
  sheet_->SetEditCopy(false);
  sheet_->SetEditModify(false);
  engine_->DataSource_EditStatusChange();
  EXPECT_EQ(Pairs(), "----");
  engine_->UserCommand_Place();
  ASSERT_EQ(engine_->UserCommand().Count(), 2);
  engine_->DataSource_EditStatusChange();
  EXPECT_TRUE(engine_->UserCommand()(1).Enabled());
}

TEST_F(EditStatusTest, ReadOnlyInStatusFourTurnsEverythingOffUserCommandsToo) {
  Start();
  sheet_->SheetUserCommands().Add("mail", "Mail");
  engine_->UserCommand_Place();
  spy_->NewRecord();
  spy_->ForceReadOnly(true);
  engine_->DataSource_EditStatusChange();
  EXPECT_EQ(Pairs(), "----");
  EXPECT_FALSE(engine_->UserCommand()(1).Enabled());
  // After the read-only phase they come back at the next run.
  spy_->ForceReadOnly(false);
  engine_->DataSource_EditStatusChange();
  EXPECT_TRUE(engine_->UserCommand()(1).Enabled());
}

TEST_F(EditStatusTest, SelectRowsStatusOneTurnsThePairsOffAndLeavesUserCommands) {
  Start();
  sheet_->SheetUserCommands().Add("mail", "Mail");
  engine_->UserCommand_Place();
  engine_->UserCommand()(1).SetEnabled(false);
  spy_->ForceSelectRowsStatus(1);
  engine_->DataSource_EditStatusChange();
  EXPECT_EQ(Pairs(), "----");
  EXPECT_FALSE(engine_->UserCommand()(1).Enabled());
}

TEST_F(EditStatusTest, UnknownStatusWithOneRecordChangesNoPair) {
  Start(1);
  sheet_->SetEditCopy(false);  // C off by the setter
  spy_->ForceEditStatus(7);
  engine_->DataSource_EditStatusChange();
  EXPECT_EQ(Pairs(), "ND-U");
}

TEST_F(EditStatusTest, UnknownStatusWithNoRecordsTurnsDeleteAndCopyOffKeepsNewAndUndo) {
  Start(1);
  spy_->ForceEditStatus(7);
  spy_->ForceRecordCount(0);
  engine_->DataSource_EditStatusChange();
  EXPECT_EQ(Pairs(), "N--U");
}

TEST_F(EditStatusTest, QueryAndClosedTurnEveryPairOff) {
  Start();
  spy_->NewQuery();
  ASSERT_EQ(spy_->EditStatus(), dsQuery);
  EXPECT_EQ(Pairs(), "----");
  spy_->CancelQuery();
  EXPECT_EQ(Pairs(), "NDCU");
  spy_->Close();
  EXPECT_EQ(Pairs(), "----");
}

TEST_F(EditStatusTest, UserCommandsStayOnInQueryModeWithAWritableSource) {
  Start();
  sheet_->SheetUserCommands().Add("mail", "Mail");
  engine_->UserCommand_Place();
  spy_->NewQuery();
  EXPECT_TRUE(engine_->UserCommand()(1).Enabled());
}

TEST_F(EditStatusTest, EveryRunEndsWithOneStatusChange) {
  Start();
  engine_->DataSource_EditStatusChange();
  EXPECT_EQ(host_.events, std::vector<std::string>{"SheetStatusChange"});
  host_.events.clear();
  spy_->ForceReadOnly(true);
  engine_->DataSource_EditStatusChange();
  EXPECT_EQ(host_.events, std::vector<std::string>{"SheetStatusChange"});
}

TEST_F(EditStatusTest, ChangeSelectRowsToOneDisablesThreePairsAndUndoWhenModifyingWithRecords) {
  Start();
  spy_->ForceSelectRowsStatus(1);
  EXPECT_EQ(Pairs(), "----");
  EXPECT_EQ(host_.events, std::vector<std::string>{"SheetStatusChange"});
}

TEST_F(EditStatusTest, ChangeSelectRowsToOneKeepsUndoWithoutModifyPermission) {
  Start();
  sheet_->SetEditModify(false);
  spy_->ForceSelectRowsStatus(1);
  EXPECT_EQ(Pairs(), "---U");
}

TEST_F(EditStatusTest, ChangeSelectRowsBackRunsTheEngineAndTheHostHearsTwice) {
  Start();
  spy_->ForceSelectRowsStatus(1);
  host_.events.clear();
  spy_->ForceSelectRowsStatus(0);
  EXPECT_EQ(Pairs(), "NDCU");
  EXPECT_EQ(host_.events, (std::vector<std::string>{"SheetStatusChange", "SheetStatusChange"}));
}

TEST_F(EditStatusTest, PermissionSetterOpensItsPairAtOnceWhateverTheStatus) {
  Start();
  spy_->NewQuery();
  ASSERT_EQ(Pairs(), "----");
  sheet_->SetEditAddNew(true);
  EXPECT_EQ(Pairs(), "N---");
}

TEST_F(EditStatusTest, TextEditorEnteredInStatusNinetyNineTurnsLockedAndTypingNeverArrives) {
  Start();
  spy_->Close();
  Editor("F_USURNAME").SetLocked(false);
  ClickInto("F_USURNAME");
  EXPECT_TRUE(Editor("F_USURNAME").Locked());
  toolkit_.TypeText("x");
  toolkit_.PressTab();
  EXPECT_TRUE(spy_->calls.empty());
  EXPECT_EQ(host_.HostEvents(), std::vector<std::string>{"EnterFocus"});
}

TEST_F(EditStatusTest, StatusFiveDuringNewRecordAfterMakesThatHandlerDoNothing) {
  Start();
  spy_->CopyRecord();
  ASSERT_EQ(spy_->EditStatus(), dsCopyRecord);
  Editor("F_USURNAME").SetText("stale");
  const int runs = engine_->EditStatusChangeRunsForTest();
  engine_->DataSource_SysNewRecordAfter();
  EXPECT_EQ(Editor("F_USURNAME").Text(), "stale");
  EXPECT_EQ(engine_->EditStatusChangeRunsForTest(), runs);
}

TEST_F(EditStatusTest, LockAtFocusFollowsTheFieldAndTheRow) {
  std::vector<MemoryFieldDefinition> fields = UserInfoFields();
  fields[2].updatable = false;  // F_USURNAME
  Start(2, fields);
  ClickInto("F_USURNAME");
  EXPECT_TRUE(Editor("F_USURNAME").Locked());
  ClickInto("F_UGIVENNAME");
  EXPECT_FALSE(Editor("F_UGIVENNAME").Locked());
  spy_->ForceRowEditable(false);
  ClickInto("F_UPREFIX");
  EXPECT_TRUE(Editor("F_UPREFIX").Locked());
}

TEST_F(EditStatusTest, NewRecordIsEditableWithAddNewThoughModifyIsForbidden) {
  Start();
  sheet_->SetEditModify(false);
  ClickInto("F_UPREFIX");
  EXPECT_TRUE(Editor("F_UPREFIX").Locked());
  spy_->NewRecord();
  ClickInto("F_USURNAME");
  EXPECT_FALSE(Editor("F_USURNAME").Locked());
}

TEST_F(EditStatusTest, EveryEditorIsOpenInQueryMode) {
  Start();
  sheet_->SetEditModify(false);
  spy_->NewQuery();
  ClickInto("F_UPREFIX");
  EXPECT_FALSE(Editor("F_UPREFIX").Locked());
}

}  // namespace
}  // namespace tarnsheets

namespace tarnsheets {
namespace {

using AccessibilityTest = InteractionTest;

TEST_F(AccessibilityTest, EachTextEditorIsAnnouncedByItsTitle) {
  Start();
  sheet_->SheetTitles().Item(Variant("F_USURNAME"))->Description = "The family name";
  sheet_->InitDisplay();
  EXPECT_EQ(Box("F_USURNAME").AccessibleName(), "Title of F_USURNAME");
  EXPECT_EQ(Box("F_USURNAME").AccessibleDescription(), "The family name");
  // Without a description of its own a title describes itself by its display name.
  EXPECT_EQ(Box("F_UPREFIX").AccessibleDescription(), "Title of F_UPREFIX");
}

}  // namespace
}  // namespace tarnsheets
