// The road of a typed text to the data source, the value events of the field controls, and the
// command surface a host drives by name.
#include "sheet/sheet_interaction_support.h"

namespace tarnsheets {
namespace {

using SaveFieldValueTest = InteractionTest;

// A form object that records how it was shown.
class RecordingForm : public SheetForm {
 public:
  void Show(int32_t& Mode) override { shows.push_back("Show " + std::to_string(Mode)); }
  void Show(int32_t& Mode, std::shared_ptr<SheetForm>& ParentForm) override {
    shows.push_back("Show " + std::to_string(Mode) + (ParentForm ? " with parent" : ""));
  }
  std::vector<std::string> shows;
};

TEST_F(SaveFieldValueTest, FreshSheetWithoutDataSourceEmptiesTheFirstEditorAndSucceeds) {
  CreateSheet();
  engine_->Txt_Value()(0).SetText("left over");
  EXPECT_FALSE(sheet_->SaveField());
  EXPECT_EQ(TextOf(0), "");
}

TEST_F(SaveFieldValueTest, UnchangedEditorLeavesTheDataSourceUncalledAndRaisesNoText) {
  Start();
  ClickInto("F_USURNAME");
  toolkit_.PressTab();
  EXPECT_TRUE(spy_->calls.empty());
  for (const std::string& e : host_.events) EXPECT_NE(e.rfind("Text ", 0), 0u) << e;
}

TEST_F(SaveFieldValueTest, TypedValueTravelsOnLeavingAndTheHostHearsText) {
  Start();
  ClickInto("F_USURNAME");
  Box("F_USURNAME").SetSelStart(0);
  Box("F_USURNAME").SetSelLength(3);
  toolkit_.TypeText("Smith");
  EXPECT_TRUE(spy_->calls.empty()) << "nothing goes over while typing";
  toolkit_.PressTab();
  EXPECT_EQ(spy_->calls, std::vector<std::string>{"SetFieldValue F_USURNAME=Text:Smith"});
  EXPECT_EQ(host_.HostEvents(), (std::vector<std::string>{"EnterFocus", "Text F_USURNAME=Smith"}));
  EXPECT_TRUE(host_.text_args_were_fresh);
  EXPECT_EQ(spy_->Fields(Variant("F_USURNAME")).Value().AsText(), "Smith");
  EXPECT_EQ(Focused(), "SFText F_UGIVENNAME");
}

TEST_F(SaveFieldValueTest, RectOfTextCrossesTheAxes) {
  toolkit_.SetTwipsPerPixel(10, 20);
  Start();
  TypeOver("F_USURNAME", "x");
  const SheetRect pixels = toolkit_.WindowRect(Box("F_USURNAME"));
  toolkit_.PressTab();
  ASSERT_EQ(host_.HostEvents().back().rfind("Text F_USURNAME=", 0), 0u);
  EXPECT_EQ(host_.last_rect.Left, pixels.Left * 20);
  EXPECT_EQ(host_.last_rect.Top, pixels.Top * 10);
  EXPECT_EQ(host_.last_rect.Right, pixels.Right * 20);
  EXPECT_EQ(host_.last_rect.Bottom, pixels.Bottom * 10);
}

TEST_F(SaveFieldValueTest, RefusedValueRestoresTheEditorAndKeepsTheFocus) {
  Start();
  spy_->RefuseField("F_USURNAME");
  TypeOver("F_USURNAME", "zz");
  toolkit_.PressTab();
  EXPECT_EQ(Editor("F_USURNAME").Text(), "Doe");
  EXPECT_EQ(Focused(), "SFText F_USURNAME");
  EXPECT_EQ(engine_->CurrentTextIndex(), TextIndexOf("F_USURNAME"));
  EXPECT_EQ(host_.HostEvents(), std::vector<std::string>{"EnterFocus"});
}

TEST_F(SaveFieldValueTest, QueryConditionRefusedShowsTheDataSourcesValueAndFails) {
  Start();
  spy_->NewQuery();
  TypeOver("F_USURNAME", "D*");
  spy_->RefuseField("F_USURNAME");
  spy_->calls.clear();
  EXPECT_TRUE(sheet_->SaveField());
  EXPECT_EQ(spy_->calls, std::vector<std::string>{"SetFieldValue F_USURNAME=Text:D*"});
  EXPECT_EQ(Editor("F_USURNAME").Text(), spy_->Fields(Variant("F_USURNAME")).Value().ToText());
}

TEST_F(SaveFieldValueTest, QueryConditionGoesOverAsTypedWithoutTextEvent) {
  Start();
  spy_->NewQuery();
  TypeOver("F_USURNAME", "D*");
  spy_->calls.clear();
  toolkit_.PressTab();
  EXPECT_EQ(spy_->calls, std::vector<std::string>{"SetFieldValue F_USURNAME=Text:D*"});
  EXPECT_EQ(host_.HostEvents(), std::vector<std::string>{"EnterFocus"});
}

TEST_F(SaveFieldValueTest, BlanksTypedInPlaceOfAValueGiveAnEmptyTextEvent) {
  Start();
  ClickInto("F_USURNAME");
  Box("F_USURNAME").SetSelStart(0);
  Box("F_USURNAME").SetSelLength(3);
  toolkit_.TypeText("   ");
  toolkit_.PressTab();
  ASSERT_FALSE(spy_->calls.empty());
  EXPECT_EQ(spy_->calls[0], "SetFieldValue F_USURNAME=Text:   ");
  EXPECT_EQ(host_.HostEvents().back(), "Text F_USURNAME=");
  EXPECT_EQ(Editor("F_USURNAME").Text(), "");
}

TEST_F(SaveFieldValueTest, EmptySetKeepsTheTypedTextAndSendsNothing) {
  Start(0);
  spy_->ForceRecordCount(0);
  Editor("F_USURNAME").SetLocked(false);
  Editor("F_USURNAME").SetText("typed");
  EXPECT_FALSE(sheet_->SaveField());
  EXPECT_EQ(Editor("F_USURNAME").Text(), "typed");
  EXPECT_TRUE(spy_->calls.empty());
}

TEST_F(SaveFieldValueTest, CancelFromTheHostRestoresTheEditorButTheValueStaysStored) {
  Start();
  host_.text_cancel = true;
  TypeOver("F_USURNAME", "x");
  EXPECT_TRUE(sheet_->SaveField());
  EXPECT_EQ(spy_->Fields(Variant("F_USURNAME")).Value().AsText(), "x");
  EXPECT_EQ(Editor("F_USURNAME").Text(), "x");
}

TEST_F(SaveFieldValueTest, CancelWinsOverUser) {
  Start();
  host_.text_cancel = true;
  host_.text_user = 1;
  TypeOver("F_USURNAME", "x");
  EXPECT_TRUE(sheet_->SaveField());
  // Had User won, the old value would be back in the record.
  EXPECT_EQ(spy_->Fields(Variant("F_USURNAME")).Value().AsText(), "x");
}

TEST_F(SaveFieldValueTest, UserWithoutFormPutsTheOldValueBackAndFocusesTheEditor) {
  Start();
  host_.text_user = 1;
  TypeOver("F_USURNAME", "x");
  ClickInto("F_UPREFIX");
  EXPECT_EQ(Editor("F_USURNAME").Text(), "Doe");
  EXPECT_EQ(spy_->Fields(Variant("F_USURNAME")).Value().AsText(), "Doe");
  EXPECT_EQ(Focused(), "SFText F_USURNAME");
  host_.text_user = 0;
  EXPECT_FALSE(sheet_->SaveField());
}

TEST_F(SaveFieldValueTest, UserWithFormShowsItWithModeAndParent) {
  Start();
  auto form = std::make_shared<RecordingForm>();
  host_.text_user = 7;
  host_.text_form = form;
  host_.text_mode = 1;
  TypeOver("F_USURNAME", "x");
  EXPECT_TRUE(sheet_->SaveField());
  EXPECT_EQ(form->shows, std::vector<std::string>{"Show 1"});
  host_.text_parent = std::make_shared<RecordingForm>();
  toolkit_.TypeText("y");
  EXPECT_TRUE(sheet_->SaveField());
  EXPECT_EQ(form->shows, (std::vector<std::string>{"Show 1", "Show 1 with parent"}));
}

TEST_F(SaveFieldValueTest, ToolkitFormFromTheHostIsShownModally) {
  Start();
  std::shared_ptr<Form> picker = toolkit_.CreateForm("FrmPicker");
  picker->SetCaption("Pick");
  host_.text_user = 1;
  host_.text_form = MakeSheetForm(toolkit_, picker);
  host_.text_mode = 1;
  std::vector<std::string> modal;
  toolkit_.SetDialogObserver([&](const DialogRecord& record) {
    if (record.kind == DialogRecord::Kind::kModalForm) modal.push_back(record.name);
  });
  TypeOver("F_USURNAME", "x");
  EXPECT_TRUE(sheet_->SaveField());
  EXPECT_EQ(modal, std::vector<std::string>{"FrmPicker"});
}

TEST_F(SaveFieldValueTest, FailureInsideIsReportedUnderSaveFieldValueAndCountsAsFailed) {
  Start();
  TypeOver("F_USURNAME", "x");
  spy_->FailNextCall("SetFieldValue", 3021, "No current record.");
  EXPECT_TRUE(sheet_->SaveField());
  ASSERT_EQ(reports_.size(), 1u);
  EXPECT_EQ(reports_[0].title, "Save_FieldValue");
}

TEST_F(SaveFieldValueTest, LockedEditorsTextNeverReachesTheDataSource) {
  Start();
  Editor("F_USURNAME").SetText("typed");
  Editor("F_USURNAME").SetLocked(true);
  engine_->Txt_Value_LostFocus(TextIndexOf("F_USURNAME"));
  EXPECT_TRUE(spy_->calls.empty());
}

// --- Save

using SaveTest = InteractionTest;

TEST_F(SaveTest, StoresTheActiveFieldThenTheRecord) {
  Start();
  spy_->NewRecord();
  TypeOver("F_USURNAME", "Lee");
  spy_->calls.clear();
  EXPECT_FALSE(sheet_->Save());
  EXPECT_EQ(spy_->calls,
            (std::vector<std::string>{"SetFieldValue F_USURNAME=Text:Lee", "UpdateRecord"}));
  EXPECT_EQ(spy_->EditStatus(), dsBrowse);
}

TEST_F(SaveTest, UpdateRecordAnsweringFiveFails) {
  Start();
  spy_->update_answer = 5;
  EXPECT_TRUE(sheet_->Save());
}

TEST_F(SaveTest, FailingFieldSaveNeverCallsUpdateRecord) {
  Start();
  spy_->RefuseField("F_USURNAME");
  TypeOver("F_USURNAME", "x");
  spy_->calls.clear();
  EXPECT_TRUE(sheet_->Save());
  EXPECT_EQ(spy_->calls, std::vector<std::string>{"SetFieldValue F_USURNAME=Text:x"});
}

TEST_F(SaveTest, NoDataSourceIsNothingToDo) {
  CreateSheet();
  EXPECT_FALSE(sheet_->Save());
}

TEST_F(SaveTest, FailureInsideIsReportedUnderSave) {
  Start();
  spy_->FailNextCall("UpdateRecord", 3022, "Duplicate value.");
  EXPECT_TRUE(sheet_->Save());
  ASSERT_EQ(reports_.size(), 1u);
  EXPECT_EQ(reports_[0].title, "Save");
}

TEST_F(SaveTest, MoveStoresOnlyTheActiveFieldAndARefusalStopsTheMove) {
  Start();
  TypeOver("F_USURNAME", "x");
  spy_->calls.clear();
  spy_->MoveNext();
  EXPECT_EQ(spy_->calls, std::vector<std::string>{"SetFieldValue F_USURNAME=Text:x"});
  EXPECT_EQ(spy_->AbsolutePosition(), 2);
  spy_->RefuseField("F_USURNAME");
  toolkit_.TypeText("y");
  spy_->MovePrevious();
  EXPECT_EQ(spy_->AbsolutePosition(), 2);
}

TEST_F(SaveTest, QueryStepsSaveTheRecordFirst) {
  Start();
  spy_->calls.clear();
  spy_->NewQuery();
  EXPECT_EQ(spy_->calls, std::vector<std::string>{"UpdateRecord"});
}

// --- Value events

using ValueEventsTest = InteractionTest;

TEST_F(ValueEventsTest, EditorEnteredInAnEmptySetIsLockedAndTypingRaisesNothing) {
  Start(0);
  ClickInto("F_USURNAME");
  EXPECT_TRUE(Editor("F_USURNAME").Locked());
  toolkit_.TypeText("abc");
  toolkit_.PressTab();
  EXPECT_TRUE(spy_->calls.empty());
  for (const std::string& e : host_.events) EXPECT_NE(e.rfind("Text ", 0), 0u) << e;
}

TEST_F(ValueEventsTest, GotFocusSetsTheCurrentFieldAndClearsTheEditState) {
  Start();
  ClickInto("F_UPREFIX");
  EXPECT_EQ(engine_->CurrentTextIndex(), TextIndexOf("F_UPREFIX"));
  EXPECT_EQ(engine_->CurrentFieldName(), "F_UPREFIX");
  EXPECT_EQ(engine_->TextEditState(), 0);
  EXPECT_EQ(host_.events.back(), "SheetStatusChange");
}

TEST_F(ValueEventsTest, GotFocusWithoutDataSourceStillSetsTheCurrentField) {
  CreateSheet();
  host_form_->Show();
  sheet_->AddObserver(&host_);
  SFText& editor = engine_->Txt_Value()(2);
  toolkit_.Click(editor.Txt_Text(editor.ActiveBox()));
  EXPECT_EQ(engine_->CurrentTextIndex(), 2);
  EXPECT_EQ(engine_->CurrentFieldName(), "F_USURNAME");
}

TEST_F(ValueEventsTest, TypingOffersUndoAndEveryKeystrokeTellsTheHost) {
  Start();
  ClickInto("F_UPREFIX");
  host_.events.clear();
  toolkit_.TypeText("ab");
  EXPECT_EQ(engine_->TextEditState(), 1);
  EXPECT_EQ(host_.events, (std::vector<std::string>{"SheetStatusChange", "SheetStatusChange"}));
}

TEST_F(ValueEventsTest, ChangeOfAnInactiveEditorTellsTheHostButLeavesTheEditState) {
  Start();
  ClickInto("F_UPREFIX");
  host_.events.clear();
  Editor("F_USURNAME").SetText("other");
  EXPECT_EQ(engine_->TextEditState(), 0);
  EXPECT_EQ(host_.events, std::vector<std::string>{"SheetStatusChange"});
}

TEST_F(ValueEventsTest, SuccessfulSaveOnLeavingClearsTheEditStateAndTellsTheHostTwice) {
  Start();
  TypeOver("F_UPREFIX", "s");
  ASSERT_EQ(engine_->TextEditState(), 1);
  const int32_t index = TextIndexOf("F_UPREFIX");
  host_.events.clear();
  // Validate saves and tells the host; LostFocus finds nothing changed and tells it again.
  bool cancel = false;
  engine_->Txt_Value_Validate(index, cancel);
  EXPECT_FALSE(cancel);
  EXPECT_EQ(engine_->TextEditState(), 0);
  ASSERT_FALSE(host_.events.empty());
  EXPECT_EQ(host_.HostEvents(), std::vector<std::string>{"Text F_UPREFIX=s"});
  EXPECT_EQ(host_.events.back(), "SheetStatusChange");
  host_.events.clear();
  engine_->Txt_Value_LostFocus(index);
  EXPECT_EQ(host_.events, std::vector<std::string>{"SheetStatusChange"});
}

TEST_F(ValueEventsTest, FailedSaveOnLeavingKeepsTheEditStateAndTellsNothing) {
  Start();
  spy_->RefuseField("F_UPREFIX");
  TypeOver("F_UPREFIX", "s");
  const int32_t index = TextIndexOf("F_UPREFIX");
  host_.events.clear();
  bool cancel = false;
  engine_->Txt_Value_Validate(index, cancel);
  EXPECT_TRUE(cancel);
  EXPECT_EQ(engine_->TextEditState(), 1);
  for (const std::string& e : host_.events) EXPECT_NE(e.rfind("Text ", 0), 0u) << e;
}

TEST_F(ValueEventsTest, EscInQueryModeLeavesQueryModeWhateverWasTyped) {
  Start();
  spy_->NewQuery();
  TypeOver("F_USURNAME", "D*");
  spy_->calls.clear();
  toolkit_.PressKey(kKeyEscape);
  EXPECT_EQ(spy_->EditStatus(), dsBrowse);
  ASSERT_FALSE(spy_->calls.empty());
  EXPECT_EQ(spy_->calls[0], "CancelQuery");
  // The save ran first, through the data source's CancelQueryBefore.
  EXPECT_NE(std::find(spy_->calls.begin(), spy_->calls.end(), "UpdateRecord"), spy_->calls.end());
}

TEST_F(ValueEventsTest, EscInQueryModeIsStoppedWhenTheSaveFails) {
  Start();
  spy_->NewQuery();
  TypeOver("F_USURNAME", "D*");
  spy_->RefuseField("F_USURNAME");
  toolkit_.PressKey(kKeyEscape);
  EXPECT_EQ(spy_->EditStatus(), dsQuery);
}

TEST_F(ValueEventsTest, EscOutsideQueryModeDoesNothing) {
  Start();
  ClickInto("F_USURNAME");
  toolkit_.PressKey(kKeyEscape);
  EXPECT_TRUE(spy_->calls.empty());
  EXPECT_EQ(spy_->EditStatus(), dsBrowse);
}

TEST_F(ValueEventsTest, CheckEditorInQueryModeStepsZeroToEmptyText) {
  Start();
  spy_->NewQuery();
  spy_->SetFieldValue(Variant("F_ISACTIVE"), Variant("0"));
  spy_->calls.clear();
  toolkit_.Click(engine_->Chk_Value()(0).Host());
  EXPECT_EQ(spy_->calls, std::vector<std::string>{"SetFieldValue F_ISACTIVE=Text:"});
}

TEST_F(ValueEventsTest, CheckEditorInQueryModeRunsUnsetYesNoUnset) {
  Start();
  spy_->NewQuery();
  spy_->calls.clear();
  for (int i = 0; i < 3; ++i) toolkit_.Click(engine_->Chk_Value()(0).Host());
  EXPECT_EQ(spy_->calls, (std::vector<std::string>{"SetFieldValue F_ISACTIVE=Text:1",
                                                   "SetFieldValue F_ISACTIVE=Text:0",
                                                   "SetFieldValue F_ISACTIVE=Text:"}));
}

TEST_F(ValueEventsTest, CheckEditorWithNullHandsOverOne) {
  Start();
  spy_->SetFieldValue(Variant("F_ISACTIVE"), Variant());
  ASSERT_TRUE(spy_->Fields(Variant("F_ISACTIVE")).Value().IsNull());
  spy_->calls.clear();
  toolkit_.Click(engine_->Chk_Value()(0).Host());
  EXPECT_EQ(spy_->calls, std::vector<std::string>{"SetFieldValue F_ISACTIVE=Integer:1"});
  EXPECT_EQ(engine_->Chk_Value()(0).Value(), 1);
}

TEST_F(ValueEventsTest, CheckEditorTogglesTheStoredValueAndRaisesNoText) {
  Start();
  toolkit_.Click(engine_->Chk_Value()(0).Host());
  EXPECT_EQ(spy_->calls, std::vector<std::string>{"SetFieldValue F_ISACTIVE=Integer:0"});
  EXPECT_EQ(engine_->Chk_Value()(0).Value(), 0);
  for (const std::string& e : host_.events) EXPECT_NE(e.rfind("Text ", 0), 0u) << e;
  EXPECT_EQ(engine_->CurrentFieldName(), "F_ISACTIVE");
  EXPECT_EQ(engine_->CurrentCheckIndex(), 0);
  ClickInto("F_USURNAME");
  EXPECT_EQ(engine_->CurrentCheckIndex(), -1);
}

TEST_F(ValueEventsTest, CheckEditorOnAReadOnlyColumnHandsNothingOver) {
  std::vector<MemoryFieldDefinition> fields = UserInfoFields();
  fields[7].updatable = false;  // F_ISACTIVE
  Start(2, fields);
  engine_->Chk_Value()(0).SetLocked(false);
  toolkit_.Click(engine_->Chk_Value()(0).Host());
  EXPECT_TRUE(spy_->calls.empty());
}

TEST_F(ValueEventsTest, DropButtonRaisesButtonWithItsFieldAndPlace) {
  Start();
  CommandButton& button = engine_->Cmd_Value()(3);  // TEAM_NAME
  const SheetRect pixels = toolkit_.WindowRect(button);
  toolkit_.Click(button);
  EXPECT_EQ(host_.HostEvents().back(), "Button TEAM_NAME");
  EXPECT_EQ(host_.last_rect.Left, pixels.Left * 15);
  EXPECT_EQ(host_.last_rect.Bottom, pixels.Bottom * 15);
  EXPECT_EQ(engine_->CurrentFieldName(), "TEAM_NAME");
}

TEST_F(ValueEventsTest, DropButtonInStatusNinetyNineWithNoRecordsRaisesNothing) {
  Start(0);
  spy_->Close();
  spy_->ForceRecordCount(0);
  toolkit_.Click(engine_->Cmd_Value()(3));
  for (const std::string& e : host_.events) EXPECT_NE(e.rfind("Button", 0), 0u) << e;
}

TEST_F(ValueEventsTest, DropButtonInQueryModeOnAnEmptySetStillRaisesButton) {
  Start(0);
  spy_->NewQuery();
  toolkit_.Click(engine_->Cmd_Value()(3));
  EXPECT_EQ(host_.HostEvents().back(), "Button TEAM_NAME");
}

TEST_F(ValueEventsTest, UserCommandSavesFirstAndRaisesWithItsName) {
  Start();
  sheet_->SheetUserCommands().Add("mail", "Mail");
  engine_->UserCommand_Place();
  engine_->UserCommand()(1).SetVisible(true);
  engine_->UserCommand()(1).SetEnabled(true);
  TypeOver("F_USURNAME", "x");
  spy_->RefuseField("F_USURNAME");
  engine_->UserCommand_Click(1);
  EXPECT_EQ(host_.HostEvents(), std::vector<std::string>{"EnterFocus"});
  spy_->AcceptField("F_USURNAME");
  toolkit_.Click(engine_->UserCommand()(1));
  EXPECT_EQ(host_.HostEvents().back(), "UserCommand mail");
}

}  // namespace
}  // namespace tarnsheets
