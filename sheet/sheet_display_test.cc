// Binding titles to columns and showing the current record, on a UserInfo sheet.
#include <gtest/gtest.h>

#include "sheet/sheet_test_support.h"

namespace tarnsheets {
namespace {

using BindingTest = UserInfoSheetTest;
using DisplayTest = UserInfoSheetTest;

// --- Binding

TEST_F(BindingTest, InitDisplayShowsTheFirstRecordAndRaisesStatusChange) {
  CreateSheet();
  OpenUserInfoSource();
  AddAllTitles();
  ConnectAndOpen();
  EXPECT_EQ(TextOf(TextIndexOf("F_ULOGINNAME")), "jdoe");
  EXPECT_EQ(TextOf(TextIndexOf("F_UDUTY")), "Sells");
  EXPECT_EQ(engine_->Chk_Value()(0).Value(), 1);
  EXPECT_EQ(engine_->Lbl_Title()(7).Caption(), "Title of F_ULOGINNAME");
  EXPECT_GE(recorder_.Count("SheetStatusChange"), 1);
  EXPECT_GE(engine_->EditStatusChangeRunsForTest(), 1);
  recorder_.events.clear();
  sheet_->InitDisplay();
  // Once from the edit status engine, once more at the end of the binding; the editors show the
  // same texts again, so no Change comes.
  EXPECT_EQ(recorder_.events, (std::vector<std::string>{"SheetStatusChange", "SheetStatusChange"}));
  EXPECT_TRUE(reports_.empty());
  EXPECT_TRUE(boxes_.empty());
}

TEST_F(BindingTest, WithNoTitlesBothPassesDoNothingAndActionReports605) {
  CreateSheet();
  OpenUserInfoSource();
  ConnectAndOpen();
  EXPECT_FALSE(sheet_->SysSetDefaultTitles());
  ASSERT_EQ(reports_.size(), 1u);
  EXPECT_EQ(reports_[0].title, "Action");
  EXPECT_EQ(reports_[0].text, "Error:500\r\nYou have not specified the field for display.");
  EXPECT_TRUE(boxes_.empty());
  // Display_Value did not run.
  EXPECT_EQ(TextOf(0), SFText::kDesignText);
}

TEST_F(BindingTest, ActionReports604WhenTheDataSourceHasNoFieldsInChinese) {
  SetMessageLanguageForTest(kLanguageChinese);
  CreateSheet();
  source_ = std::make_unique<MemoryDataSource>(std::vector<MemoryFieldDefinition>{}, &toolkit_);
  AddAllTitles();
  sheet_->SetSheetRecordset(source_.get());
  int32_t mode = 0;
  engine_->Action(mode);
  ASSERT_EQ(reports_.size(), 1u);
  EXPECT_EQ(reports_[0].title, "Action");
  EXPECT_EQ(reports_[0].text, "错误：500\r\n没有设置字段!");
}

TEST_F(BindingTest, ATitleNameInOtherCaseThanTheColumnPassesTheFirstPass) {
  CreateSheet();
  OpenUserInfoSource();
  source_->Open();
  sheet_->SheetTitles().Add("f_uloginname");
  sheet_->SetSheetRecordset(source_.get());
  // The second pass looks the name up as it stands, which this data source refuses.
  EXPECT_TRUE(sheet_->SysSetDefaultTitles());
  EXPECT_TRUE(boxes_.empty());
  ASSERT_EQ(reports_.size(), 1u);
  EXPECT_EQ(reports_[0].title, "SysSetDefaultTitles");
  EXPECT_NE(reports_[0].text.find("Error:3265\r\n"), std::string::npos);
}

TEST_F(BindingTest, ATitleThatNamesNoColumnShowsNotFoundAndChangesNothing) {
  CreateSheet();
  OpenUserInfoSource();
  source_->Open();
  sheet_->SetSheetRecordset(source_.get());
  sheet_->SheetTitles().Add("F_ULOGINNAME")->DisplayName = "Login";
  sheet_->SheetTitles().Add("NO_SUCH");
  EXPECT_FALSE(sheet_->SysSetDefaultTitles());
  ASSERT_EQ(boxes_.size(), 1u);
  EXPECT_EQ(boxes_[0].title, "");
  EXPECT_EQ(boxes_[0].text, "没有找到'NO_SUCH'列！");
  EXPECT_EQ(boxes_[0].style, MessageBoxStyle::kPlain);
  EXPECT_EQ(sheet_->SheetTitles().Item(Variant(1))->Description, "");
}

TEST_F(BindingTest, AfterTheNotFoundMessageActionAndTheLaterStepsStillRun) {
  CreateSheet();
  OpenUserInfoSource();
  AddAllTitles();
  sheet_->SheetTitles().Add("NO_SUCH");
  ConnectAndOpen();
  EXPECT_EQ(boxes_.size(), 1u);
  EXPECT_EQ(TextOf(0), "jdoe");
}

TEST_F(BindingTest, DefaultFormatsFollowTheColumnTypes) {
  struct Case {
    int32_t data_type;
    int32_t date_kind;
    int32_t number_kind;
    const char* format;
  } cases[] = {
      {kDataTypeDate, 4, 0, "hh:nn"},
      {kDataTypeDate, 3, 0, "hh:nn:ss"},
      {kDataTypeDate, 2, 0, "yyyy-mm-dd"},
      {kDataTypeDate, 1, 0, "yyyy-mm-dd hh:nn"},
      {kDataTypeDate, 0, 0, "yyyy-mm-dd hh:nn:ss"},
      {kDataTypeNumber, 0, 2, "#0%"},
      {kDataTypeNumber, 0, 0, "#,##0"},
      {kDataTypeNumber, 0, 1, "#,##0.00"},
      {kDataTypeMoney, 0, 0, "#,##0.00"},
      {kDataTypeWholeNumber, 0, 0, "#,##0"},
      {kDataTypeText, 0, 0, ""},
      {kDataTypePlainText, 0, 0, ""},
      {kDataTypeYesNo, 0, 0, ""},
  };
  CreateSheet();
  for (const Case& c : cases) {
    MemoryFieldDefinition field;
    field.name = "F_X";
    field.data_type = c.data_type;
    field.date_kind = c.date_kind;
    field.number_kind = c.number_kind;
    MemoryDataSource source({field});
    sheet_->SetSheetRecordset(&source);
    sheet_->SheetTitles().Clear();
    sheet_->SheetTitles().Add("F_X");
    EXPECT_FALSE(sheet_->SysSetDefaultTitles());
    EXPECT_EQ(sheet_->SheetTitles().Item(Variant("F_X"))->DisplayFormat, c.format)
        << "type " << c.data_type << " date kind " << c.date_kind << " number kind "
        << c.number_kind;
    sheet_->SetSheetRecordset(nullptr);
  }
}

TEST_F(BindingTest, AFormatSetByTheHostStaysAlsoOnADateColumn) {
  CreateSheet();
  MemoryFieldDefinition field;
  field.name = "F_DATE";
  field.data_type = kDataTypeDate;
  field.date_kind = kDateKindDate;
  MemoryDataSource source({field});
  sheet_->SetSheetRecordset(&source);
  sheet_->SheetTitles().Add("F_DATE")->DisplayFormat = "dd/mm/yyyy";
  EXPECT_FALSE(sheet_->SysSetDefaultTitles());
  EXPECT_EQ(sheet_->SheetTitles().Item(Variant(1))->DisplayFormat, "dd/mm/yyyy");
  sheet_->SetSheetRecordset(nullptr);
}

TEST_F(BindingTest, DataTypeZeroOrThreeLeavesTheFormatEmpty) {
  CreateSheet();
  MemoryFieldDefinition a;
  a.name = "A";
  MemoryFieldDefinition b;
  b.name = "B";
  b.data_type = kDataTypePlainText;
  MemoryDataSource source({a, b});
  sheet_->SetSheetRecordset(&source);
  sheet_->SheetTitles().Add("A");
  sheet_->SheetTitles().Add("B");
  sheet_->SysSetDefaultTitles();
  EXPECT_EQ(sheet_->SheetTitles().Item(Variant("A"))->DisplayFormat, "");
  EXPECT_EQ(sheet_->SheetTitles().Item(Variant("B"))->DisplayFormat, "");
  sheet_->SetSheetRecordset(nullptr);
}

TEST_F(BindingTest, ThreeTitlesWithOneDisplayNameGiveThreeMessages) {
  CreateSheet();
  OpenUserInfoSource();
  source_->Open();
  sheet_->SetSheetRecordset(source_.get());
  sheet_->SheetTitles().Add("F_ULOGINNAME")->DisplayName = "Same";
  sheet_->SheetTitles().Add("F_NTDOMAIN")->DisplayName = "Same";
  sheet_->SheetTitles().Add("F_USURNAME")->DisplayName = "Same";
  EXPECT_FALSE(sheet_->SysSetDefaultTitles());
  ASSERT_EQ(boxes_.size(), 3u);
  // Pairs (1,2), (1,3), (2,3): the box names the second title of the pair.
  EXPECT_EQ(boxes_[0].text, "'F_NTDOMAIN'显示名称不能重复！");
  EXPECT_EQ(boxes_[1].text, "'F_USURNAME'显示名称不能重复！");
  EXPECT_EQ(boxes_[2].text, "'F_USURNAME'显示名称不能重复！");
  for (const DialogRecord& box : boxes_) EXPECT_EQ(box.title, "Check_Field");
}

TEST_F(BindingTest, ADescriptionFilledByTheHostStaysAndAnEmptyOneTakesTheDisplayName) {
  CreateSheet();
  OpenUserInfoSource();
  source_->Open();
  sheet_->SetSheetRecordset(source_.get());
  auto kept = sheet_->SheetTitles().Add("F_ULOGINNAME");
  kept->DisplayName = "Login";
  kept->Description = "The login";
  auto filled = sheet_->SheetTitles().Add("F_NTDOMAIN");
  filled->DisplayName = "Domain";
  sheet_->SysSetDefaultTitles();
  EXPECT_EQ(kept->Description, "The login");
  EXPECT_EQ(filled->Description, "Domain");
}

TEST_F(BindingTest, DuplicateMessagesComeBackAtEveryRefresh) {
  CreateSheet();
  OpenUserInfoSource();
  AddAllTitles();
  sheet_->SheetTitles().Item(Variant(2))->DisplayName = "Title of F_ULOGINNAME";
  ConnectAndOpen();
  EXPECT_EQ(boxes_.size(), 1u);
  source_->Refresh();
  EXPECT_EQ(boxes_.size(), 2u);
}

TEST_F(BindingTest, CaptionNameBecomesTheCaptionOnlyAtInit) {
  CreateSheet();
  OpenUserInfoSource();
  AddAllTitles();
  sheet_->SheetTitles().SetCaptionName(Variant("Users"));
  ConnectAndOpen();
  EXPECT_EQ(sheet_->Caption(), "Users");
  sheet_->SheetTitles().SetCaptionName(Variant("Other"));
  source_->Refresh();
  EXPECT_EQ(sheet_->Caption(), "Users");
  sheet_->SheetTitles().SetCaptionName(Variant::Null());
  sheet_->InitDisplay();
  EXPECT_EQ(sheet_->Caption(), "Users");
}

TEST_F(BindingTest, DisplayFieldGivesTheLastOfTwoTitlesAndKeepsUnnamedLabels) {
  CreateSheet();
  OpenUserInfoSource();
  source_->Open();
  sheet_->SetSheetRecordset(source_.get());
  sheet_->SheetTitles().Add("F_ULOGINNAME")->DisplayName = "First";
  sheet_->SheetTitles().Add()->DisplayName = "Second";
  sheet_->SheetTitles().Item(Variant(2))->Name = "F_ULOGINNAME";
  sheet_->SheetTitles().Add("NOT_ON_FORM")->DisplayName = "Unused";
  engine_->Display_field();
  EXPECT_EQ(engine_->Lbl_Title()(7).Caption(), "Second");
  EXPECT_EQ(engine_->Lbl_Title()(4).Caption(), "Login Domain");
}

TEST_F(BindingTest, InitDisplayWithoutADataSourceReportsUnderActionAndGoesOn) {
  CreateSheet();
  AddAllTitles();
  sheet_->InitDisplay();
  // The edit status engine fails on the missing data source too; the binding's own handler
  // reports it, and no status change comes from that run.
  ASSERT_EQ(reports_.size(), 3u);
  EXPECT_EQ(reports_[0].title, "SysSetDefaultTitles");
  EXPECT_EQ(reports_[1].title, "Action");
  EXPECT_EQ(reports_[2].title, "DataSource_DataSourceInit");
  EXPECT_EQ(recorder_.Count("SheetStatusChange"), 0);
}

// --- Display

TEST_F(DisplayTest, ARecordCountOfZeroBlanksTextsGreysChecksAndUnlocksThem) {
  CreateSheet();
  source_ = std::make_unique<MemoryDataSource>(UserInfoFields(), &toolkit_);
  AddAllTitles();
  ConnectAndOpen();
  for (int32_t i : engine_->Txt_Value().Indices()) {
    EXPECT_EQ(TextOf(i), "");
    EXPECT_FALSE(engine_->Txt_Value()(i).Locked());
  }
  EXPECT_EQ(engine_->Chk_Value()(0).Value(), 2);
  EXPECT_FALSE(engine_->Chk_Value()(0).Locked());
  EXPECT_TRUE(engine_->Chk_Value()(0).Enabled());
}

TEST_F(DisplayTest, APositionAboveTheRecordCountCountsAsNoRecord) {
  CreateSheet();
  OpenUserInfoSource();
  source_->AddRow({Variant("second")});
  AddAllTitles();
  ConnectAndOpen();
  source_->MoveLast();
  ASSERT_EQ(source_->AbsolutePosition(), 2);
  source_->ForceRecordCount(1);
  engine_->Display_Value();
  EXPECT_EQ(TextOf(0), "");
  EXPECT_EQ(engine_->Chk_Value()(0).Value(), 2);
}

TEST_F(DisplayTest, InQueryModeAnEmptySetStillShowsTheCriteria) {
  CreateSheet();
  source_ = std::make_unique<MemoryDataSource>(UserInfoFields(), &toolkit_);
  AddAllTitles();
  ConnectAndOpen();
  ASSERT_FALSE(source_->NewQuery());
  source_->SetFieldValue(Variant("F_ULOGINNAME"), Variant("j*"));
  source_->SetFieldValue(Variant("F_ISACTIVE"), Variant("1"));
  EXPECT_EQ(TextOf(0), "j*");
  EXPECT_FALSE(engine_->Txt_Value()(0).Locked());
  EXPECT_EQ(engine_->Chk_Value()(0).Value(), 1);
}

TEST_F(DisplayTest, TheEditableRuleLocksReadOnlySourcesAndForbiddenChanges) {
  CreateSheet();
  OpenUserInfoSource();
  AddAllTitles();
  ConnectAndOpen();
  EXPECT_FALSE(engine_->Txt_Value()(0).Locked());
  source_->ForceReadOnly(true);
  engine_->Display_Value();
  EXPECT_TRUE(engine_->Txt_Value()(0).Locked());
  EXPECT_TRUE(engine_->Chk_Value()(0).Locked());
  source_->ForceReadOnly(false);
  source_->ForceRowEditable(false);
  engine_->Display_Value();
  EXPECT_TRUE(engine_->Txt_Value()(0).Locked());
  source_->ForceRowEditable(true);
  sheet_->SetEditModify(false);
  engine_->Display_Value();
  EXPECT_TRUE(engine_->Txt_Value()(0).Locked());
  // A new record is editable through EditAddNew alone.
  source_->NewRecord();
  EXPECT_FALSE(engine_->Txt_Value()(0).Locked());
}

TEST_F(DisplayTest, AColumnThatMayNotBeUpdatedIsLocked) {
  CreateSheet();
  std::vector<MemoryFieldDefinition> fields = UserInfoFields();
  fields[1].updatable = false;
  OpenUserInfoSource(fields);
  AddAllTitles();
  ConnectAndOpen();
  EXPECT_TRUE(engine_->Txt_Value()(1).Locked());
  EXPECT_FALSE(engine_->Txt_Value()(0).Locked());
}

// A sheet whose F_UDUTY column has the given type, showing `value` in it.
class TypedDisplayTest : public UserInfoSheetTest {
 protected:
  std::string Shown(MemoryFieldDefinition duty, const Variant& value, const std::string& format,
                    const std::string& symbol = "") {
    CreateSheet();
    std::vector<MemoryFieldDefinition> fields = UserInfoFields();
    duty.name = "F_UDUTY";
    MemoryFieldDefinition currency;
    currency.name = "CURR_CODE";
    if (duty.data_type == kDataTypeMoney) duty.reference = "CURR_CODE";
    fields[8] = duty;
    fields.push_back(currency);
    source_ = std::make_unique<MemoryDataSource>(fields, &toolkit_);
    source_->AddRow({Variant("jdoe"), Variant(), Variant(), Variant(), Variant(), Variant(),
                     Variant(), Variant(int32_t{0}), value, Variant("CUR")});
    source_->SetSymbol("CUR", symbol);
    AddAllTitles();
    sheet_->SheetTitles().Item(Variant("F_UDUTY"))->DisplayFormat = format;
    ConnectAndOpen();
    return TextOf(7);
  }
};

MemoryFieldDefinition OfType(int32_t data_type) {
  MemoryFieldDefinition field;
  field.data_type = data_type;
  return field;
}

TEST_F(TypedDisplayTest, ANegativeMoneyValueShowsTheSignBeforeTheSymbol) {
  EXPECT_EQ(Shown(OfType(kDataTypeMoney), Variant(-1234.5), "#,##0.00", "$"), "-$1,234.50");
}

TEST_F(TypedDisplayTest, AZeroMoneyValueShowsTheSymbolThenZero) {
  EXPECT_EQ(Shown(OfType(kDataTypeMoney), Variant(0.0), "#,##0.00", "$"), "$0.00");
}

TEST_F(TypedDisplayTest, ANullDateShowsTheEmptyText) {
  EXPECT_EQ(Shown(OfType(kDataTypeDate), Variant::Null(), "yyyy-mm-dd"), "");
}

TEST_F(TypedDisplayTest, TextColumnsShowTheValueAsItIs) {
  EXPECT_EQ(Shown(OfType(kDataTypeText), Variant("Sells"), "#,##0"), "Sells");
}

TEST_F(TypedDisplayTest, PlainTextColumnsShowTheValueAsItIs) {
  EXPECT_EQ(Shown(OfType(kDataTypePlainText), Variant("a b"), ""), "a b");
}

TEST_F(TypedDisplayTest, WholeNumbersShowWithGrouping) {
  EXPECT_EQ(Shown(OfType(kDataTypeWholeNumber), Variant(int32_t{1234567}), "#,##0"), "1,234,567");
}

TEST_F(TypedDisplayTest, PercentNumbersShowTimesAHundred) {
  MemoryFieldDefinition field = OfType(kDataTypeNumber);
  field.number_kind = kNumberKindPercent;
  EXPECT_EQ(Shown(field, Variant(0.25), "#0%"), "25%");
}

TEST_F(TypedDisplayTest, DatesShowInTheirFormat) {
  EXPECT_EQ(Shown(OfType(kDataTypeDate), Variant(Date::FromParts(2024, 3, 5, 14, 7, 9)),
                  "yyyy-mm-dd hh:nn:ss"),
            "2024-03-05 14:07:09");
}

TEST_F(TypedDisplayTest, TimesShowInTheirFormat) {
  EXPECT_EQ(Shown(OfType(kDataTypeDate), Variant(Date::FromParts(2024, 3, 5, 14, 7, 9)), "hh:nn"),
            "14:07");
}

TEST_F(TypedDisplayTest, DisplayedTextsAreTheSameInBothLanguages) {
  for (int32_t language : {kLanguageEnglish, kLanguageChinese}) {
    SetMessageLanguageForTest(language);
    if (sheet_) sheet_->SetSheetRecordset(nullptr);
    sheet_.reset();
    source_.reset();
    EXPECT_EQ(Shown(OfType(kDataTypeMoney), Variant(-1234.5), "#,##0.00", "¥"), "-¥1,234.50")
        << language;
  }
}

TEST_F(TypedDisplayTest, AYesNoColumnInATextEditorShowsTheMessageAndTheEmptyText) {
  EXPECT_EQ(Shown(OfType(kDataTypeYesNo), Variant(int32_t{1}), ""), "");
  ASSERT_EQ(boxes_.size(), 1u);
  EXPECT_EQ(boxes_[0].text, "无法显示'F_UDUTY'没有这种数据类型！在Display_Txt_Value中");
  // The walk went on: the check editor was still shown.
  EXPECT_EQ(engine_->Chk_Value()(0).Value(), 0);
}

TEST_F(DisplayTest, ACheckColumnHoldingNullShowsZeroOutsideQueryAndGreyInIt) {
  CreateSheet();
  source_ = std::make_unique<MemoryDataSource>(UserInfoFields(), &toolkit_);
  source_->AddRow({Variant("jdoe"), Variant(), Variant(), Variant(), Variant(), Variant(),
                   Variant(), Variant::Null(), Variant()});
  AddAllTitles();
  ConnectAndOpen();
  EXPECT_EQ(engine_->Chk_Value()(0).Value(), 0);
  source_->NewQuery();
  EXPECT_EQ(engine_->Chk_Value()(0).Value(), 2);
}

TEST_F(DisplayTest, ACheckEditorBoundToATextColumnShowsTheMessageAndKeepsItsState) {
  CreateSheet();
  std::vector<MemoryFieldDefinition> fields = UserInfoFields();
  fields[7].data_type = kDataTypeText;
  OpenUserInfoSource(fields);
  AddAllTitles();
  engine_->Chk_Value()(0).SetValue(1);
  ConnectAndOpen();
  EXPECT_EQ(engine_->Chk_Value()(0).Value(), 1);
  ASSERT_EQ(boxes_.size(), 1u);
  EXPECT_EQ(boxes_[0].text, "无法显示'F_ISACTIVE'没有这种数据类型！在Display_Chk_Value中");
}

TEST_F(DisplayTest, MoveRecordAfterDoesNotRerunUserCommandPlaceOrDisplayField) {
  CreateSheet();
  OpenUserInfoSource();
  source_->AddRow({Variant("second")});
  AddAllTitles();
  ConnectAndOpen();
  sheet_->SheetTitles().Item(Variant("F_ULOGINNAME"))->DisplayName = "Changed";
  sheet_->SheetUserCommands().Add("cmd", "Cmd");
  recorder_.events.clear();
  source_->MoveNext();
  EXPECT_EQ(TextOf(0), "second");
  EXPECT_EQ(engine_->Lbl_Title()(7).Caption(), "Title of F_ULOGINNAME");
  EXPECT_EQ(engine_->UserCommand().Count(), 1);
  // Each editor whose text changed told the host, and the move itself once more at the end.
  ASSERT_FALSE(recorder_.events.empty());
  EXPECT_EQ(recorder_.events.back(), "SheetStatusChange");
}

TEST_F(DisplayTest, AValueChangeOfAShownColumnRepaintsAndOfAnotherDoesNot) {
  CreateSheet();
  std::vector<MemoryFieldDefinition> fields = UserInfoFields();
  MemoryFieldDefinition extra;
  extra.name = "F_HIDDEN";
  fields.push_back(extra);
  OpenUserInfoSource(fields);
  AddAllTitles();
  ConnectAndOpen();
  engine_->Txt_Value()(0).SetText("typed");
  source_->SetFieldValue(Variant("F_HIDDEN"), Variant("x"));
  EXPECT_EQ(TextOf(0), "typed");
  source_->SetFieldValue(Variant("F_NTDOMAIN"), Variant("NEW"));
  EXPECT_EQ(TextOf(0), "jdoe");
  EXPECT_EQ(TextOf(1), "NEW");
}

TEST_F(DisplayTest, AMoneyFieldRepaintsWhenItsCurrencyColumnChanges) {
  CreateSheet();
  std::vector<MemoryFieldDefinition> fields = UserInfoFields();
  fields[8].data_type = kDataTypeMoney;
  fields[8].reference = "CURR_CODE";
  MemoryFieldDefinition currency;
  currency.name = "CURR_CODE";
  fields.push_back(currency);
  source_ = std::make_unique<MemoryDataSource>(fields, &toolkit_);
  source_->AddRow({Variant("jdoe"), Variant(), Variant(), Variant(), Variant(), Variant(),
                   Variant(), Variant(int32_t{0}), Variant(5.0), Variant("USD")});
  source_->SetSymbol("USD", "$");
  source_->SetSymbol("EUR", "E");
  AddAllTitles();
  ConnectAndOpen();
  ASSERT_EQ(TextOf(7), "$5.00");
  engine_->Txt_Value()(0).SetText("typed");
  // CURR_CODE has no title: it is shown only through the money field's reference.
  source_->SetFieldValue(Variant("CURR_CODE"), Variant("EUR"));
  EXPECT_EQ(TextOf(7), "E5.00");
  EXPECT_EQ(TextOf(0), "jdoe");
}

TEST_F(DisplayTest, QueryStepsRepaintOnlyInTheirStatus) {
  CreateSheet();
  OpenUserInfoSource();
  AddAllTitles();
  ConnectAndOpen();
  source_->NewQuery();
  EXPECT_EQ(TextOf(0), "");
  engine_->Txt_Value()(0).SetText("typed");
  // A signal in another status does nothing at all.
  source_->ForceEditStatus(dsBrowse);
  engine_->DataSource_SysNewQueryAfter();
  engine_->DataSource_SysRefineQueryAfter();
  EXPECT_EQ(TextOf(0), "typed");
  engine_->DataSource_SysCancelQueryAfter();
  EXPECT_EQ(TextOf(0), "jdoe");
}

TEST_F(DisplayTest, NewAndCopiedRecordsRepaintAndSetTheCommands) {
  CreateSheet();
  OpenUserInfoSource();
  AddAllTitles();
  ConnectAndOpen();
  const int32_t runs = engine_->EditStatusChangeRunsForTest();
  engine_->Txt_Value()(0).SetText("typed");
  engine_->DataSource_SysNewRecordAfter();  // status 0: nothing
  EXPECT_EQ(TextOf(0), "typed");
  EXPECT_EQ(engine_->EditStatusChangeRunsForTest(), runs);
  source_->CopyRecord();
  EXPECT_EQ(TextOf(0), "jdoe");
  source_->UndoRecord();
  source_->NewRecord();
  EXPECT_EQ(TextOf(0), "");
  EXPECT_GT(engine_->EditStatusChangeRunsForTest(), runs);
}

TEST_F(DisplayTest, AfterAnUpdateTheRecordIsShownAgainOnlyWhenIdle) {
  CreateSheet();
  OpenUserInfoSource();
  AddAllTitles();
  ConnectAndOpen();
  engine_->Txt_Value()(0).SetText("typed");
  source_->ForceEditStatus(dsNewRecord);
  engine_->DataSource_SysUpdateRecordAfter();
  EXPECT_EQ(TextOf(0), "typed");
  source_->ForceEditStatus(dsBrowse);
  engine_->DataSource_SysUpdateRecordAfter();
  EXPECT_EQ(TextOf(0), "jdoe");
}

TEST_F(DisplayTest, AFailureInsideTheDisplayIsReportedUnderDisplayValue) {
  CreateSheet();
  OpenUserInfoSource();
  AddAllTitles();
  ConnectAndOpen();
  source_->FailNextCall("Value", 11, "boom");
  engine_->Display_Value();
  ASSERT_EQ(reports_.size(), 1u);
  EXPECT_EQ(reports_[0].title, "Display_Value");
  EXPECT_EQ(reports_[0].text, "Error:11\r\nboom");
}

TEST_F(DisplayTest, AFailureOfTheInitStepsIsReportedUnderDataSourceInit) {
  CreateSheet();
  OpenUserInfoSource();
  AddAllTitles();
  sheet_->SetSheetRecordset(source_.get());
  source_->Open();
  struct Thrower : SheetEvents {
    void SheetStatusChange() override { throw Failure(13, "host"); }
  } thrower;
  sheet_->AddObserver(&thrower);
  sheet_->InitDisplay();
  sheet_->RemoveObserver(&thrower);
  ASSERT_EQ(reports_.size(), 1u);
  EXPECT_EQ(reports_[0].title, "DataSource_DataSourceInit");
  EXPECT_EQ(reports_[0].text, "Error:13\r\nhost");
}

}  // namespace
}  // namespace tarnsheets
