// The command surface: GetControlStatus and ControlCommand by name, TxtEdit on the active editor,
// the record buttons with their save mark, and the pop-up menu's entries.
#include "sheet/sheet_interaction_support.h"

namespace tarnsheets {
namespace {

using CommandSurfaceTest = InteractionTest;

const char* const kAllNames[] = {
    "New Query",     "Refine Query", "Execute Query", "Undo",         "Redo",
    "Cut",           "Copy",         "Paste",         "Delete",       "Add New Record",
    "Delete Record", "Copy Record",  "Cancel Record", "First Record", "Previous Record",
    "Next Record",   "Last Record",  "Focus",         "Refresh",
};

TEST_F(CommandSurfaceTest, WithoutDataSourceEveryNameIsNotSupportedFocusToo) {
  CreateSheet();
  for (const char* name : kAllNames) EXPECT_EQ(sheet_->GetControlStatus(name), csNotSupported);
}

TEST_F(CommandSurfaceTest, UnknownOrEmptyNameIsNotSupported) {
  Start();
  EXPECT_EQ(sheet_->GetControlStatus(""), csNotSupported);
  EXPECT_EQ(sheet_->GetControlStatus("refresh"), csNotSupported);
  EXPECT_EQ(sheet_->GetControlStatus("Save"), csNotSupported);
}

TEST_F(CommandSurfaceTest, QueryCommandsAreAlwaysOffered) {
  Start();
  for (const char* name : {"New Query", "Refine Query", "Execute Query"}) {
    EXPECT_EQ(sheet_->GetControlStatus(name), csEnabled) << name;
  }
  spy_->NewQuery();
  EXPECT_EQ(sheet_->GetControlStatus("Execute Query"), csEnabled);
  spy_->CancelQuery();
  spy_->Close();
  EXPECT_EQ(sheet_->GetControlStatus("New Query"), csEnabled);
}

TEST_F(CommandSurfaceTest, PreviousIsOffOnTheFirstRecordWhereFirstIsOn) {
  Start(3);
  EXPECT_EQ(sheet_->GetControlStatus("Previous Record"), csDisabled);
  EXPECT_EQ(sheet_->GetControlStatus("First Record"), csEnabled);
  EXPECT_EQ(sheet_->GetControlStatus("Next Record"), csEnabled);
  EXPECT_EQ(sheet_->GetControlStatus("Last Record"), csEnabled);
}

TEST_F(CommandSurfaceTest, NextIsOffOnTheLastRecordAndOnAnEmptySet) {
  Start(3);
  spy_->MoveLast();
  EXPECT_EQ(spy_->AbsolutePosition(), spy_->RecordCount());
  EXPECT_EQ(sheet_->GetControlStatus("Next Record"), csDisabled);
  EXPECT_EQ(sheet_->GetControlStatus("Last Record"), csEnabled);
  EXPECT_EQ(sheet_->GetControlStatus("Previous Record"), csEnabled);
  spy_->ForceRecordCount(0);
  EXPECT_EQ(sheet_->GetControlStatus("Next Record"), csDisabled);
  EXPECT_EQ(sheet_->GetControlStatus("First Record"), csDisabled);
}

TEST_F(CommandSurfaceTest, InQueryModeTheMovesAreOffAndRefreshIsOn) {
  Start(3);
  spy_->MoveNext();
  spy_->NewQuery();
  for (const char* name : {"First Record", "Previous Record", "Next Record", "Last Record"}) {
    EXPECT_EQ(sheet_->GetControlStatus(name), csDisabled) << name;
  }
  EXPECT_EQ(sheet_->GetControlStatus("Refresh"), csEnabled);
}

TEST_F(CommandSurfaceTest, ClosedSourceOffersNoRefreshButNewQuery) {
  Start();
  spy_->Close();
  EXPECT_EQ(sheet_->GetControlStatus("Refresh"), csDisabled);
  EXPECT_EQ(sheet_->GetControlStatus("New Query"), csEnabled);
}

TEST_F(CommandSurfaceTest, RecordCommandsFollowTheirMenuEntries) {
  Start();
  EXPECT_EQ(sheet_->GetControlStatus("Add New Record"), csEnabled);
  sheet_->SetEditAddNew(false);
  EXPECT_EQ(sheet_->GetControlStatus("Add New Record"), csDisabled);
  spy_->NewQuery();
  EXPECT_EQ(sheet_->GetControlStatus("Delete Record"), csDisabled);
  EXPECT_EQ(sheet_->GetControlStatus("Copy Record"), csDisabled);
  EXPECT_EQ(sheet_->GetControlStatus("Cancel Record"), csDisabled);
}

TEST_F(CommandSurfaceTest, FocusFollowsHasFocus) {
  Start();
  EXPECT_EQ(sheet_->GetControlStatus("Focus"), csDisabled);
  ClickInto("F_USURNAME");
  EXPECT_EQ(sheet_->GetControlStatus("Focus"), csEnabled);
}

TEST_F(CommandSurfaceTest, TextCommandsNeedTheActiveEditor) {
  Start();
  EXPECT_EQ(sheet_->GetControlStatus("Cut"), csDisabled);
  ClickInto("F_USURNAME");
  for (const char* name : {"Cut", "Copy", "Paste", "Delete"}) {
    EXPECT_EQ(sheet_->GetControlStatus(name), csEnabled) << name;
  }
  // On the check editor the last text editor is not the active control.
  toolkit_.Click(engine_->Chk_Value()(0).Host());
  EXPECT_EQ(sheet_->GetControlStatus("Cut"), csDisabled);
}

TEST_F(CommandSurfaceTest, UndoThenRedoSwapAfterTypingAndLeavingClearsBoth) {
  Start();
  ClickInto("F_USURNAME");
  EXPECT_EQ(sheet_->GetControlStatus("Undo"), csDisabled);
  Box("F_USURNAME").SetSelStart(0);
  Box("F_USURNAME").SetSelLength(3);
  toolkit_.TypeText("Lee");
  EXPECT_EQ(sheet_->GetControlStatus("Undo"), csEnabled);
  EXPECT_EQ(sheet_->GetControlStatus("Redo"), csDisabled);
  EXPECT_FALSE(sheet_->TxtEdit(teUndo));
  EXPECT_EQ(Editor("F_USURNAME").Text(), "Doe");
  EXPECT_EQ(sheet_->GetControlStatus("Undo"), csDisabled);
  EXPECT_EQ(sheet_->GetControlStatus("Redo"), csEnabled);
  EXPECT_FALSE(sheet_->ControlCommand("Redo"));
  EXPECT_EQ(Editor("F_USURNAME").Text(), "Lee");
  EXPECT_EQ(sheet_->GetControlStatus("Undo"), csEnabled);
  EXPECT_EQ(sheet_->GetControlStatus("Redo"), csDisabled);
  toolkit_.PressTab();
  ClickInto("F_USURNAME");
  EXPECT_EQ(sheet_->GetControlStatus("Undo"), csDisabled);
  EXPECT_EQ(sheet_->GetControlStatus("Redo"), csDisabled);
}

TEST_F(CommandSurfaceTest, CutOnALockedActiveEditorIsOfferedButDoesNothing) {
  Start();
  sheet_->SetEditModify(false);
  ClickInto("F_USURNAME");
  ASSERT_TRUE(Editor("F_USURNAME").Locked());
  EXPECT_EQ(sheet_->GetControlStatus("Cut"), csEnabled);
  toolkit_.SetClipboardText("before");
  host_.events.clear();
  EXPECT_FALSE(sheet_->TxtEdit(teCut));
  EXPECT_EQ(Editor("F_USURNAME").Text(), "Doe");
  EXPECT_EQ(toolkit_.ClipboardText(), "before");
  EXPECT_TRUE(host_.events.empty());
}

TEST_F(CommandSurfaceTest, CopyOnALockedEditorCopiesAndFocusesItAndKeepsTheEditState) {
  Start();
  sheet_->SetEditModify(false);
  ClickInto("F_USURNAME");
  ClickInto("F_UPREFIX");
  ASSERT_TRUE(Editor("F_UPREFIX").Locked());
  Box("F_UPREFIX").SetSelStart(0);
  Box("F_UPREFIX").SetSelLength(2);
  toolkit_.FocusOutside();
  host_.events.clear();
  EXPECT_FALSE(sheet_->TxtEdit(teCopy));
  EXPECT_EQ(toolkit_.ClipboardText(), "Mr");
  EXPECT_EQ(Focused(), "SFText F_UPREFIX");
  EXPECT_EQ(engine_->TextEditState(), 0);
  EXPECT_EQ(host_.events.back(), "SheetStatusChange");
}

TEST_F(CommandSurfaceTest, DeleteWithNothingSelectedRemovesOneCharacter) {
  Start();
  ClickInto("F_USURNAME");
  Box("F_USURNAME").SetSelStart(1);
  Box("F_USURNAME").SetSelLength(0);
  EXPECT_FALSE(sheet_->ControlCommand("Delete"));
  EXPECT_EQ(Editor("F_USURNAME").Text(), "De");
  EXPECT_EQ(engine_->TextEditState(), 1);
}

TEST_F(CommandSurfaceTest, CutAndPasteGoThroughTheClipboard) {
  Start();
  ClickInto("F_USURNAME");
  Box("F_USURNAME").SetSelStart(0);
  Box("F_USURNAME").SetSelLength(1);
  EXPECT_FALSE(sheet_->ControlCommand("Cut"));
  EXPECT_EQ(Editor("F_USURNAME").Text(), "oe");
  Box("F_USURNAME").SetSelStart(2);
  EXPECT_FALSE(sheet_->ControlCommand("Paste"));
  EXPECT_EQ(Editor("F_USURNAME").Text(), "oeD");
}

TEST_F(CommandSurfaceTest, CopyCommandReturnsFalse) {
  Start();
  ClickInto("F_USURNAME");
  EXPECT_FALSE(sheet_->ControlCommand("Copy"));
}

TEST_F(CommandSurfaceTest, UnknownNameShowsAPlainBoxWithoutTitle) {
  Start();
  EXPECT_FALSE(sheet_->ControlCommand("refresh"));
  EXPECT_FALSE(sheet_->ControlCommand("Focus"));
  ASSERT_EQ(boxes_.size(), 2u);
  EXPECT_EQ(boxes_[0].title, "");
  EXPECT_EQ(boxes_[0].text, "refresh不支持此方法！");
  EXPECT_EQ(boxes_[0].style, MessageBoxStyle::kPlain);
  EXPECT_EQ(boxes_[1].text, "Focus不支持此方法！");
  EXPECT_TRUE(spy_->calls.empty());
}

TEST_F(CommandSurfaceTest, MovesAndQueriesReachTheDataSource) {
  Start(3);
  EXPECT_FALSE(sheet_->ControlCommand("Last Record"));
  EXPECT_EQ(spy_->AbsolutePosition(), 3);
  EXPECT_FALSE(sheet_->ControlCommand("Previous Record"));
  EXPECT_EQ(spy_->AbsolutePosition(), 2);
  EXPECT_FALSE(sheet_->ControlCommand("First Record"));
  EXPECT_FALSE(sheet_->ControlCommand("Next Record"));
  EXPECT_EQ(spy_->AbsolutePosition(), 2);
  EXPECT_FALSE(sheet_->ControlCommand("New Query"));
  EXPECT_EQ(spy_->EditStatus(), dsQuery);
  EXPECT_FALSE(sheet_->ControlCommand("Execute Query"));
  EXPECT_EQ(spy_->EditStatus(), dsBrowse);
}

TEST_F(CommandSurfaceTest, FailingCallIsReportedAsTrueWithoutABox) {
  Start();
  sheet_->SetSheetRecordset(nullptr);
  EXPECT_TRUE(sheet_->ControlCommand("Next Record"));
  EXPECT_TRUE(boxes_.empty());
  EXPECT_TRUE(reports_.empty());
}

TEST_F(CommandSurfaceTest, RefreshSavesFirstAndRefreshesOnlyWhenTheSaveWent) {
  Start();
  EXPECT_FALSE(sheet_->ControlCommand("Refresh"));
  EXPECT_EQ(spy_->calls, (std::vector<std::string>{"UpdateRecord", "Refresh"}));
  spy_->calls.clear();
  spy_->update_answer = 5;
  EXPECT_FALSE(sheet_->ControlCommand("Refresh"));
  EXPECT_EQ(spy_->calls, std::vector<std::string>{"UpdateRecord"});
}

TEST_F(CommandSurfaceTest, RecordCommandsIgnoreEnabledAndReturnFalse) {
  Start();
  sheet_->SetEditDelete(false);
  ASSERT_EQ(sheet_->GetControlStatus("Delete Record"), csDisabled);
  EXPECT_FALSE(sheet_->ControlCommand("Delete Record"));
  EXPECT_EQ(spy_->calls, std::vector<std::string>{"DeleteRecord"});
}

TEST_F(CommandSurfaceTest, AddCopyAndCancelRecordRunTheMenuEntries) {
  Start();
  EXPECT_FALSE(sheet_->ControlCommand("Add New Record"));
  EXPECT_EQ(spy_->EditStatus(), dsNewRecord);
  EXPECT_FALSE(sheet_->ControlCommand("Cancel Record"));
  EXPECT_EQ(spy_->EditStatus(), dsBrowse);
  EXPECT_FALSE(sheet_->ControlCommand("Copy Record"));
  EXPECT_EQ(spy_->EditStatus(), dsCopyRecord);
  EXPECT_EQ(spy_->calls, (std::vector<std::string>{"NewRecord", "UndoRecord", "CopyRecord"}));
}

// --- Record buttons and menu entries

using RecordButtonTest = InteractionTest;

TEST_F(RecordButtonTest, RefusedValueStopsTheClickThatMovedTheFocusFromTheEditor) {
  Start();
  sheet_->SetStyle(1);
  spy_->RefuseField("F_USURNAME");
  TypeOver("F_USURNAME", "x");
  // The editor's own Validate saves first, is refused and keeps the focus: no click.
  toolkit_.Click(engine_->Cmd_NewRecord());
  EXPECT_EQ(spy_->EditStatus(), dsBrowse);
  EXPECT_EQ(Focused(), "SFText F_USURNAME");
  EXPECT_EQ(Editor("F_USURNAME").Text(), "Doe");
  EXPECT_EQ(std::count(spy_->calls.begin(), spy_->calls.end(), "NewRecord"), 0);
}

TEST_F(RecordButtonTest, RefusedValueAtTheButtonsFocusMarksItAndStopsTheClick) {
  Start();
  sheet_->SetStyle(1);
  ClickInto("F_USURNAME");
  // The focus goes on to the check editor; the text editor stays the one last used, and a
  // text arrives in it by other means than the keyboard.
  toolkit_.Click(engine_->Chk_Value()(0).Host());
  spy_->calls.clear();
  Editor("F_USURNAME").SetText("pasted");
  spy_->RefuseField("F_USURNAME");
  toolkit_.Click(engine_->Cmd_NewRecord());
  EXPECT_EQ(engine_->Cmd_NewRecord().Tag(), "Savefailing");
  EXPECT_EQ(spy_->EditStatus(), dsBrowse);
  EXPECT_EQ(spy_->calls, std::vector<std::string>{"SetFieldValue F_USURNAME=Text:pasted"});
  EXPECT_EQ(Focused(), "SFText F_USURNAME");
  // A click that does not move the focus finds the mark of the last time.
  engine_->RecordButton_Click(engine_->Cmd_NewRecord(), &SheetEngine::mnu_NewRecord_Click);
  EXPECT_EQ(spy_->EditStatus(), dsBrowse);
  // The refusal put the data source's value back, so the next save at the button's focus goes
  // through and takes the mark off.
  engine_->Cmd_NewRecord().SetFocus();
  EXPECT_EQ(engine_->Cmd_NewRecord().Tag(), "");
}

TEST_F(RecordButtonTest, MarkGoesWhenTheFocusLeavesTheButton) {
  Start();
  sheet_->SetStyle(1);
  engine_->Cmd_NewRecord().SetTag("Savefailing");
  engine_->Cmd_NewRecord().SetFocus();
  ASSERT_EQ(engine_->Cmd_NewRecord().Tag(), "");  // the save at the focus went through
  engine_->Cmd_NewRecord().SetTag("Savefailing");
  toolkit_.Click(engine_->Cmd_NewRecord());  // no focus move: the old mark stops the click
  EXPECT_EQ(spy_->EditStatus(), dsBrowse);
  ClickInto("F_USURNAME");
  EXPECT_EQ(engine_->Cmd_NewRecord().Tag(), "");
  toolkit_.Click(engine_->Cmd_NewRecord());
  EXPECT_EQ(spy_->EditStatus(), dsNewRecord);
}

TEST_F(RecordButtonTest, ButtonsSaveTheTypedValueBeforeTheirCommand) {
  Start();
  sheet_->SetStyle(1);
  TypeOver("F_USURNAME", "Kim");
  toolkit_.Click(engine_->Cmd_CopyRecord());
  EXPECT_EQ(spy_->calls,
            (std::vector<std::string>{"SetFieldValue F_USURNAME=Text:Kim", "CopyRecord"}));
}

TEST_F(RecordButtonTest, DeleteMenuEntryDeletesWithoutAskingAndMovesTheFocusToCancel) {
  Start(2);
  sheet_->SetStyle(1);
  ClickInto("F_USURNAME");
  engine_->mnu_DeleteRecord_Click();
  EXPECT_EQ(spy_->calls, std::vector<std::string>{"DeleteRecord"});
  EXPECT_TRUE(boxes_.empty());
  EXPECT_EQ(spy_->RecordCount(), 1);
  EXPECT_EQ(toolkit_.GetFocus(), &engine_->Cmd_Undo());
}

TEST_F(RecordButtonTest, DeleteMenuEntryInStyleZeroEndsSilentlyAfterDeleting) {
  Start(2);
  ClickInto("F_USURNAME");
  engine_->mnu_DeleteRecord_Click();
  EXPECT_EQ(spy_->RecordCount(), 1);
  EXPECT_TRUE(reports_.empty());
  EXPECT_TRUE(boxes_.empty());
}

TEST_F(RecordButtonTest, UndoMenuEntrySavesNothingWhileTheCancelButtonDoes) {
  Start();
  sheet_->SetStyle(1);
  spy_->NewRecord();
  TypeOver("F_USURNAME", "Lee");
  spy_->calls.clear();
  engine_->mnu_Undo_Click();
  EXPECT_EQ(spy_->calls, std::vector<std::string>{"UndoRecord"});
  spy_->NewRecord();
  TypeOver("F_USURNAME", "Lee");
  spy_->calls.clear();
  toolkit_.Click(engine_->Cmd_Undo());
  EXPECT_EQ(spy_->calls,
            (std::vector<std::string>{"SetFieldValue F_USURNAME=Text:Lee", "UndoRecord"}));
}

TEST_F(RecordButtonTest, MenuEntriesEndSilentlyOnFailure) {
  Start();
  spy_->FailNextCall("NewRecord", 3251, "Operation is not supported.");
  engine_->mnu_NewRecord_Click();
  EXPECT_TRUE(reports_.empty());
  EXPECT_TRUE(boxes_.empty());
  EXPECT_EQ(spy_->EditStatus(), dsBrowse);
  // Through ControlCommand the menu entry's own silent end comes first, so the command does not
  // count as failed.
  spy_->FailNextCall("NewRecord", 3251, "Operation is not supported.");
  EXPECT_FALSE(sheet_->ControlCommand("Add New Record"));
  EXPECT_TRUE(reports_.empty());
  EXPECT_EQ(spy_->EditStatus(), dsBrowse);
}

}  // namespace
}  // namespace tarnsheets
