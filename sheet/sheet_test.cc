// The sheet object: its controls, property surface and lifecycle, on a UserInfo sheet.
#include <gtest/gtest.h>

#include "family/glyphs.h"
#include "sheet/sheet_test_support.h"

namespace tarnsheets {
namespace {

using SheetObjectTest = UserInfoSheetTest;

TEST_F(SheetObjectTest, FormTableBuildsEveryArrayWithTagsAndTabIndices) {
  CreateSheet();
  EXPECT_EQ(engine_->Txt_Value().Count(), 8);
  EXPECT_EQ(engine_->Chk_Value().Count(), 1);
  EXPECT_EQ(engine_->Lbl_Title().Count(), 9);
  EXPECT_EQ(engine_->Cmd_Value().Count(), 4);
  EXPECT_EQ(engine_->UserCommand().Count(), 1);
  EXPECT_EQ(engine_->Txt_Value()(0).Host().Tag(), "F_ULOGINNAME");
  EXPECT_EQ(engine_->Txt_Value()(0).Host().TabIndex(), 9);
  EXPECT_EQ(engine_->Txt_Value()(7).Style(), 2);
  EXPECT_EQ(engine_->Chk_Value()(0).Host().Tag(), "F_ISACTIVE");
  EXPECT_EQ(engine_->Lbl_Title()(7).Caption(), "Login Name");
  EXPECT_EQ(engine_->Lbl_Title()(7).Tag(), "F_ULOGINNAME");
  EXPECT_EQ(engine_->Lbl_Title()(7).Alignment(), 1);
  EXPECT_EQ(engine_->Cmd_Value()(1).Tag(), "F_UDUTY");
  EXPECT_FALSE(engine_->Cmd_Value()(1).TabStop());
  EXPECT_EQ(engine_->Pic_TableDown().TabIndex(), 26);
  EXPECT_EQ(engine_->Lbl_Caption().Caption(), "User");
  EXPECT_EQ(sheet_->Host().TypeName(), "UserInfo");
  EXPECT_EQ(sheet_->Host().BackColor(), 0xEEEEEEu);
  EXPECT_FALSE(engine_->UserCommand()(0).Visible());
}

TEST_F(SheetObjectTest, DropButtonsCarryTheGlyphsTheFamilyHandsIn) {
  SheetEngine engine(toolkit_, *host_form_, UserInfoForm(), "UserInfo2", FamilyGlyphPictures());
  EXPECT_EQ(engine.Cmd_Value()(0).GetPicture().id, "arrow");
  EXPECT_EQ(engine.Cmd_Value()(0).GetPicture().width, 6);
  EXPECT_EQ(engine.Cmd_Value()(0).GetPicture().height, 3);
}

TEST_F(SheetObjectTest, InitializeTakesCaptionsFromTheMessageTableInEnglish) {
  CreateSheet();
  EXPECT_EQ(engine_->mnu_NewRecord().Caption(), "&New Record");
  EXPECT_EQ(engine_->mnu_DeleteRecord().Caption(), "&Delete Record");
  EXPECT_EQ(engine_->mnu_CopyRecord().Caption(), "&Copy Record");
  EXPECT_EQ(engine_->mnu_Undo().Caption(), "C&ancel");
  EXPECT_EQ(engine_->Cmd_NewRecord().Caption(), "New");
  EXPECT_EQ(engine_->Cmd_DeleteRecord().Caption(), "Delete");
  EXPECT_EQ(engine_->Cmd_CopyRecord().Caption(), "Copy");
  EXPECT_EQ(engine_->Cmd_Undo().Caption(), "Cancel");
}

TEST_F(SheetObjectTest, InitializeTakesCaptionsFromTheMessageTableInChinese) {
  SetMessageLanguageForTest(kLanguageChinese);
  CreateSheet();
  EXPECT_EQ(engine_->mnu_NewRecord().Caption(), "新建记录(&N)");
  EXPECT_EQ(engine_->mnu_Undo().Caption(), "取消");
  EXPECT_EQ(engine_->Cmd_NewRecord().Caption(), "新建");
  EXPECT_EQ(engine_->Cmd_Undo().Caption(), "取消");
}

TEST_F(SheetObjectTest, InitializeMovesSentinelsJustOutsideTheVisibleArea) {
  CreateSheet();
  for (PictureBox* p :
       {&engine_->Pic_TableStart(), &engine_->Pic_TableUp(), &engine_->Pic_TableDown()}) {
    EXPECT_EQ(p->Left(), -165);
    EXPECT_EQ(p->Top(), -165);
  }
  EXPECT_EQ(engine_->TextEditState(), 0);
}

TEST_F(SheetObjectTest, InitPropertiesGivesDefaultsAndAppliesNoColour) {
  CreateSheet();
  EXPECT_EQ(sheet_->Color_Caption(), 0xBB5522u);
  EXPECT_EQ(sheet_->Color_Active(), 0xBB5522u);
  EXPECT_EQ(sheet_->Color_Title_Text(), 0u);
  EXPECT_EQ(sheet_->Color_Background(), 0xEEEEEEu);
  EXPECT_TRUE(sheet_->EditModify());
  EXPECT_TRUE(sheet_->EditAddNew());
  EXPECT_TRUE(sheet_->EditCopy());
  EXPECT_TRUE(sheet_->EditDelete());
  EXPECT_EQ(sheet_->Style(), 0);
  EXPECT_TRUE(engine_->Lbl_Caption().Visible());
  EXPECT_FALSE(engine_->Cmd_NewRecord().Visible());
  EXPECT_FALSE(engine_->Cmd_Undo().Visible());
  // The title labels keep the toolkit's colour: no Apply_Colors ran.
  EXPECT_NE(engine_->Lbl_Title()(0).ForeColor(), 0u);
}

TEST_F(SheetObjectTest, StyleTwoKeepsTheValueReportsItAndLeavesEveryControl) {
  CreateSheet();
  sheet_->SetStyle(1);
  toolkit_.ClearNotifiedProperties(sheet_->Host());
  sheet_->SetStyle(2);
  EXPECT_EQ(sheet_->Style(), 2);
  EXPECT_EQ(Notified(), std::vector<std::string>{"Style"});
  EXPECT_TRUE(engine_->Cmd_NewRecord().Visible());
  EXPECT_TRUE(engine_->Cmd_Undo().Visible());
  sheet_->SetStyle(0);
  sheet_->SetStyle(2);
  EXPECT_FALSE(engine_->Cmd_NewRecord().Visible());
  EXPECT_TRUE(recorder_.events.empty());
}

TEST_F(SheetObjectTest, StyleOneShowsTheFourRecordButtons) {
  CreateSheet();
  sheet_->SetStyle(1);
  EXPECT_TRUE(engine_->Cmd_NewRecord().Visible());
  EXPECT_TRUE(engine_->Cmd_DeleteRecord().Visible());
  EXPECT_TRUE(engine_->Cmd_CopyRecord().Visible());
  EXPECT_TRUE(engine_->Cmd_Undo().Visible());
}

TEST_F(SheetObjectTest, EditModifyFalseWithAnotherFlagTrueLeavesUndoAsItWas) {
  CreateSheet();
  sheet_->SetEditModify(true);
  ASSERT_TRUE(engine_->Cmd_Undo().Enabled());
  sheet_->SetEditModify(false);
  EXPECT_TRUE(engine_->Cmd_Undo().Enabled());
  EXPECT_TRUE(engine_->mnu_Undo().Enabled());
}

TEST_F(SheetObjectTest, AllFourEditFlagsFalseDisableUndo) {
  CreateSheet();
  sheet_->SetEditModify(true);
  sheet_->SetEditAddNew(false);
  sheet_->SetEditCopy(false);
  sheet_->SetEditDelete(false);
  EXPECT_TRUE(engine_->Cmd_Undo().Enabled());
  sheet_->SetEditModify(false);
  EXPECT_FALSE(engine_->Cmd_Undo().Enabled());
  EXPECT_FALSE(engine_->mnu_Undo().Enabled());
}

TEST_F(SheetObjectTest, EditFlagSettersEnableTheirCommandsNotifyAndRaiseStatusChange) {
  CreateSheet();
  sheet_->SetEditAddNew(true);
  EXPECT_TRUE(engine_->Cmd_NewRecord().Enabled());
  EXPECT_TRUE(engine_->mnu_NewRecord().Enabled());
  sheet_->SetEditCopy(true);
  EXPECT_TRUE(engine_->Cmd_CopyRecord().Enabled());
  sheet_->SetEditDelete(false);
  EXPECT_FALSE(engine_->Cmd_DeleteRecord().Enabled());
  EXPECT_FALSE(engine_->mnu_DeleteRecord().Enabled());
  EXPECT_EQ(Notified(), (std::vector<std::string>{"EditAddNew", "EditCopy", "EditDelete"}));
  EXPECT_EQ(recorder_.Count("SheetStatusChange"), 3);
}

TEST_F(SheetObjectTest, EditFlagsStayInTheSheetUntilTheNextDataSourceSet) {
  CreateSheet();
  OpenUserInfoSource();
  sheet_->SetEditCopy(false);
  sheet_->SetSheetRecordset(source_.get());
  EXPECT_FALSE(source_->AllowCopy());
  sheet_->SetEditCopy(true);
  EXPECT_FALSE(source_->AllowCopy());
}

TEST_F(SheetObjectTest, SettingColorActiveReportsColorCaption) {
  CreateSheet();
  sheet_->SetColor_Active(0x123456);
  EXPECT_EQ(Notified(), std::vector<std::string>{"Color_Caption"});
  EXPECT_EQ(engine_->Txt_Value()(3).BorderColor(), 0x123456u);
  EXPECT_EQ(engine_->Chk_Value()(0).BorderColor(), 0x123456u);
  EXPECT_EQ(sheet_->Color_Active(), 0x123456u);
  // Apply_Colors did not run: the caption keeps the colour it had.
  EXPECT_EQ(engine_->Lbl_Caption().BackColor(), kSysActiveBorder);
}

TEST_F(SheetObjectTest, ColorTitleTextColoursEveryTitle) {
  CreateSheet();
  sheet_->SetColor_Title_Text(0x0000FF);
  for (int32_t i : engine_->Lbl_Title().Indices()) {
    EXPECT_EQ(engine_->Lbl_Title()(i).ForeColor(), 0x0000FFu);
  }
  EXPECT_EQ(Notified(), std::vector<std::string>{"Color_Title_Text"});
}

TEST_F(SheetObjectTest, ColorBackgroundColoursTheSheet) {
  CreateSheet();
  sheet_->SetColor_Background(0x00FF00);
  EXPECT_EQ(sheet_->Host().BackColor(), 0x00FF00u);
  EXPECT_EQ(Notified(), std::vector<std::string>{"Color_Background"});
}

TEST_F(SheetObjectTest, ColorCaptionWithoutFocusFillsTheShapeAndLeavesItsBorder) {
  CreateSheet();
  engine_->Shp_Caption().SetBorderColor(0x111111);
  sheet_->SetColor_Caption(0x222222);
  EXPECT_EQ(engine_->Shp_Caption().BorderColor(), 0x111111u);
  EXPECT_EQ(engine_->Shp_Caption().BackColor(), kSysActiveBorder);
  EXPECT_EQ(engine_->Lbl_Caption().BackColor(), kSysActiveBorder);
  EXPECT_EQ(engine_->Lbl_CaptionSpace().BackColor(), kSysActiveBorder);
  EXPECT_EQ(Notified(), std::vector<std::string>{"Color_Caption"});
}

TEST_F(SheetObjectTest, ColorCaptionWithFocusColoursBorderCaptionAndStrip) {
  CreateSheet();
  engine_->SetHasFocusForTest(true);
  sheet_->SetColor_Caption(0x222222);
  EXPECT_EQ(engine_->Shp_Caption().BorderColor(), 0x222222u);
  EXPECT_EQ(engine_->Lbl_Caption().BackColor(), 0x222222u);
  EXPECT_EQ(engine_->Lbl_CaptionSpace().BackColor(), 0x222222u);
}

TEST_F(SheetObjectTest, ApplyColorsWithAnUnknownNameDoesNothing) {
  CreateSheet();
  engine_->Apply_Colors("Color_Active");
  EXPECT_NE(engine_->Lbl_Title()(0).ForeColor(), 0u);
  EXPECT_EQ(sheet_->Host().BackColor(), 0xEEEEEEu);
}

TEST_F(SheetObjectTest, TwoReadsOfSheetTitlesYieldTheSameObject) {
  CreateSheet();
  ClsSheetsTitles* first = &sheet_->SheetTitles();
  EXPECT_EQ(first, &sheet_->SheetTitles());
  EXPECT_EQ(&sheet_->SheetUserCommands(), &sheet_->SheetUserCommands());
}

TEST_F(SheetObjectTest, ReadingSheetTitlesBeforeAnyDataSourceCreatesAnEmptyCollection) {
  CreateSheet();
  ASSERT_EQ(sheet_->SheetRecordset(), nullptr);
  EXPECT_EQ(sheet_->SheetTitles().Count(), 0);
}

TEST_F(SheetObjectTest, SheetRecordsetPushesTheFourPermissionsAndReports) {
  CreateSheet();
  OpenUserInfoSource();
  sheet_->SetEditAddNew(false);
  sheet_->SetEditDelete(false);
  toolkit_.ClearNotifiedProperties(sheet_->Host());
  sheet_->SetSheetRecordset(source_.get());
  EXPECT_FALSE(source_->AllowAddNew());
  EXPECT_TRUE(source_->AllowCopy());
  EXPECT_FALSE(source_->AllowDelete());
  EXPECT_TRUE(source_->AllowModify());
  EXPECT_EQ(sheet_->SheetRecordset(), source_.get());
  EXPECT_EQ(engine_->DataSourceForTest(), source_.get());
  EXPECT_EQ(Notified(), std::vector<std::string>{"SheetRecordset"});
}

TEST_F(SheetObjectTest, SheetRecordsetSetToNothingEmptiesDataSourcePushesNothingAndReports) {
  CreateSheet();
  OpenUserInfoSource();
  sheet_->SetSheetRecordset(source_.get());
  source_->SetAllowCopy(true);
  sheet_->SetEditCopy(false);
  toolkit_.ClearNotifiedProperties(sheet_->Host());
  sheet_->SetSheetRecordset(nullptr);
  EXPECT_EQ(sheet_->SheetRecordset(), nullptr);
  EXPECT_EQ(engine_->DataSourceForTest(), nullptr);
  EXPECT_TRUE(source_->AllowCopy());
  EXPECT_EQ(Notified(), std::vector<std::string>{"SheetRecordset"});
  // No signal reaches the sheet any more.
  AddAllTitles();
  source_->Open();
  EXPECT_EQ(TextOf(0), SFText::kDesignText);
}

TEST_F(SheetObjectTest, HwndIsZero) {
  CreateSheet();
  EXPECT_EQ(sheet_->hwnd(), 0);
}

TEST_F(SheetObjectTest, FontNameGoesToEveryControlButTheCaptionAndIsReported) {
  CreateSheet();
  sheet_->SetFontName("Arial");
  EXPECT_EQ(sheet_->FontName(), "Arial");
  EXPECT_EQ(engine_->Lbl_Title()(8).GetFont().name, "Arial");
  EXPECT_EQ(engine_->Txt_Value()(2).GetFont().name, "Arial");
  EXPECT_EQ(engine_->Cmd_NewRecord().GetFont().name, "Arial");
  EXPECT_EQ(engine_->Lbl_Caption().GetFont().name, "MS Sans Serif");
  EXPECT_EQ(Notified(), std::vector<std::string>{"FontName"});
}

TEST_F(SheetObjectTest, FontSizeGoesThroughAFixedPointValue) {
  CreateSheet();
  sheet_->SetFontSize(9.75f);
  EXPECT_FLOAT_EQ(sheet_->FontSize(), 9.75f);
  EXPECT_DOUBLE_EQ(engine_->Txt_Value()(0).GetFont().size, 9.75);
  EXPECT_DOUBLE_EQ(engine_->Lbl_Caption().GetFont().size, 12);
  EXPECT_EQ(Notified(), std::vector<std::string>{"FontSize"});
}

TEST_F(SheetObjectTest, CaptionFontIsAssignedAndReportedWithoutLayout) {
  CreateSheet();
  const double width = engine_->Lbl_Caption().Width();
  Font font;
  font.name = "Arial";
  font.size = 30;
  sheet_->SetCaptionFont(font);
  EXPECT_EQ(sheet_->CaptionFont(), font);
  EXPECT_EQ(engine_->Lbl_Caption().Width(), width);
  EXPECT_EQ(Notified(), std::vector<std::string>{"CaptionFont"});
}

TEST_F(SheetObjectTest, CaptionIsSetExactlyMeasuredWithThreeBlanksAndLaidOut) {
  CreateSheet();
  sheet_->SetCaption("Sales");
  EXPECT_EQ(sheet_->Caption(), "Sales");
  // 11 characters in 12 point: 11 * 12 * 10 twips; one line 12 * 24 plus the strip 3 * 15 * 2.
  EXPECT_DOUBLE_EQ(engine_->Lbl_Caption().Width(), 1320);
  EXPECT_DOUBLE_EQ(engine_->Lbl_Caption().Height(), 288 + 90);
  EXPECT_DOUBLE_EQ(engine_->Lbl_Caption().Top(), 90);
  EXPECT_DOUBLE_EQ(engine_->Cmd_NewRecord().Left(), 1320 + 150);
  EXPECT_EQ(Notified(), std::vector<std::string>{"Caption"});
}

TEST_F(SheetObjectTest, UserCommandsWidthSetsTheTemplateAndTheLoadedButtons) {
  CreateSheet();
  sheet_->SheetUserCommands().Add("a", "A");
  sheet_->SheetUserCommands().Add("b", "B");
  engine_->UserCommand_Place();
  sheet_->SetUserCommandsWidth(1000);
  EXPECT_EQ(sheet_->UserCommandsWidth(), 1000);
  EXPECT_DOUBLE_EQ(engine_->UserCommand()(1).Width(), 1000);
  EXPECT_DOUBLE_EQ(engine_->UserCommand()(2).Width(), 1000);
  EXPECT_EQ(Notified(), std::vector<std::string>{"UserCommandsWidth"});
}

TEST_F(SheetObjectTest, UserCommandsWidthReadsWholeTwips) {
  CreateSheet();
  engine_->UserCommand()(0).SetWidth(735.9);
  EXPECT_EQ(sheet_->UserCommandsWidth(), 735);
}

// --- Persistence

std::vector<std::string> Keys(const MemoryPropertyBag& bag) {
  std::vector<std::string> keys;
  for (const auto& entry : bag.Entries()) keys.push_back(entry.first);
  return keys;
}

TEST_F(SheetObjectTest, WritePropertiesOfANewSheetStoresOnlyWhatDiffersFromDefaults) {
  CreateSheet();
  MemoryPropertyBag bag;
  sheet_->WriteProperties(bag);
  // The designed caption "User" differs from the default "UserInfo"; the fonts differ from the
  // write defaults (the caption font from the ambient font, the titles' 13.5 from 10).
  EXPECT_EQ(Keys(bag), (std::vector<std::string>{"Caption", "CaptionFont", "FontSize"}));
}

TEST_F(SheetObjectTest, WritePropertiesFollowsTheTableOrderAndSkipsUserCommandsWidth) {
  CreateSheet();
  sheet_->SetStyle(1);
  sheet_->SetEditCopy(false);
  sheet_->SetEditModify(false);
  sheet_->SetColor_Background(0x010203);
  sheet_->SetColor_Title_Text(0x040506);
  sheet_->SetColor_Active(0x070809);
  sheet_->SetColor_Caption(0x0A0B0C);
  sheet_->SetFontName("Arial");
  sheet_->SetUserCommandsWidth(999);
  MemoryPropertyBag bag;
  sheet_->WriteProperties(bag);
  EXPECT_EQ(Keys(bag),
            (std::vector<std::string>{"Caption", "Color_Title_Text", "Color_Caption",
                                      "Color_Active", "Color_Background", "CaptionFont", "FontName",
                                      "FontSize", "EditModify", "EditCopy", "Style"}));
}

TEST_F(SheetObjectTest, ACaptionEqualToTheSavedDefaultIsNotStored) {
  CreateSheet();
  sheet_->SetCaption("UserInfo");
  MemoryPropertyBag bag;
  sheet_->WriteProperties(bag);
  EXPECT_FALSE(bag.Contains("Caption"));
}

TEST_F(SheetObjectTest, PropertyBagRoundTripsEveryReadProperty) {
  CreateSheet();
  sheet_->SetStyle(1);
  sheet_->SetEditCopy(false);
  sheet_->SetEditDelete(false);
  sheet_->SetColor_Background(0x010203);
  sheet_->SetColor_Title_Text(0x040506);
  sheet_->SetColor_Active(0x070809);
  sheet_->SetColor_Caption(0x0A0B0C);
  sheet_->SetFontName("Arial");
  sheet_->SetFontSize(11.25f);
  MemoryPropertyBag bag;
  sheet_->WriteProperties(bag);

  std::unique_ptr<Sheet> reloaded =
      Sheet::Load(toolkit_, *host_form_, UserInfoForm(), "UserInfo2", bag);
  EXPECT_EQ(reloaded->Style(), 1);
  EXPECT_TRUE(reloaded->EditModify());
  EXPECT_TRUE(reloaded->EditAddNew());
  EXPECT_FALSE(reloaded->EditCopy());
  EXPECT_FALSE(reloaded->EditDelete());
  EXPECT_EQ(reloaded->Color_Background(), 0x010203u);
  EXPECT_EQ(reloaded->Color_Title_Text(), 0x040506u);
  EXPECT_EQ(reloaded->Color_Active(), 0x070809u);
  EXPECT_EQ(reloaded->Color_Caption(), 0x0A0B0Cu);
  EXPECT_EQ(reloaded->FontName(), "Arial");
  EXPECT_FLOAT_EQ(reloaded->FontSize(), 11.25f);
  EXPECT_TRUE(reloaded->EngineForTest().Cmd_Undo().Visible());
  EXPECT_EQ(reloaded->Host().BackColor(), 0x010203u);
  EXPECT_EQ(reloaded->EngineForTest().Lbl_Title()(4).ForeColor(), 0x040506u);
  EXPECT_EQ(reloaded->EngineForTest().Txt_Value()(4).BorderColor(), 0x070809u);
  MemoryPropertyBag again;
  reloaded->WriteProperties(again);
  EXPECT_EQ(again.TranscriptLines(), bag.TranscriptLines());
}

TEST_F(SheetObjectTest, ASheetReloadedFromABagThatHoldsCaptionStillShowsItsDesignedCaption) {
  MemoryPropertyBag bag;
  bag.Set("Caption", Variant("Stored caption"));
  Font big;
  big.size = 40;
  bag.Set("CaptionFont", big);
  std::unique_ptr<Sheet> sheet = Sheet::Load(toolkit_, *host_form_, UserInfoForm(), "U", bag);
  EXPECT_EQ(sheet->Caption(), "User");
  EXPECT_DOUBLE_EQ(sheet->CaptionFont().size, 12);
}

TEST_F(SheetObjectTest, ReadPropertiesWithoutStoredFontTakesTheAmbientFont) {
  Font ambient;
  ambient.name = "Tahoma";
  ambient.size = 9;
  host_form_->SetFont(ambient);
  MemoryPropertyBag bag;
  std::unique_ptr<Sheet> sheet = Sheet::Load(toolkit_, *host_form_, UserInfoForm(), "U", bag);
  EXPECT_EQ(sheet->FontName(), "Tahoma");
  EXPECT_FLOAT_EQ(sheet->FontSize(), 9);
  EXPECT_EQ(sheet->CaptionFont().name, "MS Sans Serif");
}

TEST_F(SheetObjectTest, ReadPropertiesAppliesColoursLaysOutTheCaptionAndRaisesStatusChange) {
  MemoryPropertyBag bag;
  bag.Set("Color_Title_Text", Variant(int32_t{0x00FF00}));
  bag.Set("Style", Variant(int32_t{1}));
  EventRecorder early;
  // The event is raised during the load, before a host can add an observer to the sheet; the
  // engine is built here by hand to listen from the start.
  SheetEngine engine(toolkit_, *host_form_, UserInfoForm(), "U");
  engine.AddObserver(&early);
  engine.UserControl_ReadProperties(bag);
  EXPECT_EQ(early.events, std::vector<std::string>{"SheetStatusChange"});
  EXPECT_EQ(engine.Lbl_Title()(0).ForeColor(), 0x00FF00u);
  EXPECT_EQ(engine.Lbl_Caption().BackColor(), kSysActiveBorder);
  EXPECT_DOUBLE_EQ(engine.Lbl_Caption().Top(), 90);
  EXPECT_DOUBLE_EQ(engine.Cmd_NewRecord().Left(), 1200 + 150);
  EXPECT_TRUE(engine.Cmd_NewRecord().Visible());
  EXPECT_EQ(engine.SheetRecordset(), nullptr);
  EXPECT_EQ(engine.DataSourceForTest(), nullptr);
}

TEST_F(SheetObjectTest, ReadPropertiesWithAWrongTypeFailsToTheCaller) {
  MemoryPropertyBag bag;
  bag.Set("Style", Variant("wide"));
  try {
    Sheet::Load(toolkit_, *host_form_, UserInfoForm(), "U", bag);
    FAIL() << "the load went through";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), kErrTypeMismatch);
  }
}

}  // namespace
}  // namespace tarnsheets
