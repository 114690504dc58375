// The two reduced controls: Appointment (the engine without caption strip, record buttons, menu,
// host commands and layout) and Currency (rows built from the titles at run time).
#include "family/form_table.h"
#include "sheet/sheet_interaction_support.h"
#include "tarnsheets/appointment_sheet.h"
#include "tarnsheets/currency_sheet.h"

namespace tarnsheets {
namespace {

// Columns named by a form's rows: text columns, yes/no for the check editors.
std::vector<MemoryFieldDefinition> ColumnsOf(std::span<const FieldRow> rows) {
  std::vector<MemoryFieldDefinition> fields;
  for (const FieldRow& row : rows) {
    if (!row.has_editor()) continue;
    MemoryFieldDefinition field;
    field.name = std::string(row.tag);
    if (row.editor.kind == EditorKind::kCheck) field.data_type = kDataTypeYesNo;
    fields.push_back(field);
  }
  return fields;
}

class AppointmentTest : public UserInfoSheetTest {
 protected:
  void CreateAppointment() {
    appointment_ = AppointmentSheet::Create(toolkit_, *host_form_, AppointmentForm(),
                                            "Appointment1", FamilyGlyphPictures());
    engine_ = &appointment_->EngineForTest();
    appointment_->AddObserver(&host_);
  }
  // Two rows; every text column holds "<tag> n", the check columns 1.
  void Bind(int rows = 2, const std::string& fixed_column = "") {
    std::vector<MemoryFieldDefinition> fields = ColumnsOf(AppointmentForm().rows);
    for (MemoryFieldDefinition& field : fields) {
      if (field.name == fixed_column) field.updatable = false;
    }
    spy_ = std::make_unique<SpySource>(fields, &toolkit_);
    for (int r = 1; r <= rows; ++r) {
      std::vector<Variant> values;
      for (const MemoryFieldDefinition& field : fields) {
        if (field.data_type == kDataTypeYesNo) {
          values.emplace_back(int32_t{1});
        } else {
          values.emplace_back(field.name + " " + std::to_string(r));
        }
      }
      spy_->AddRow(values);
    }
    for (const MemoryFieldDefinition& field : fields) appointment_->SheetTitles().Add(field.name);
    appointment_->SetSheetRecordset(spy_.get());
    spy_->Open();
    host_form_->Show();
    host_.events.clear();
    spy_->calls.clear();
  }
  SFText& Editor(const std::string& tag) {
    for (int32_t i : engine_->Txt_Value().Indices()) {
      if (engine_->Txt_Value()(i).Host().Tag() == tag) return engine_->Txt_Value()(i);
    }
    throw std::runtime_error("no editor " + tag);
  }
  void TearDown() override {
    if (appointment_) appointment_->SetSheetRecordset(nullptr);
    UserInfoSheetTest::TearDown();
  }

  std::unique_ptr<AppointmentSheet> appointment_;
  std::unique_ptr<SpySource> spy_;
  HostRecorder host_;
};

TEST_F(AppointmentTest, HasThreeFramesCaptionedFromTheMessagesAndTwoImagesBelowTheForm) {
  CreateAppointment();
  ASSERT_EQ(engine_->Frames().size(), 3u);
  EXPECT_EQ(engine_->Frames()[0]->Caption(), "What");
  EXPECT_EQ(engine_->Frames()[1]->Caption(), "When");
  EXPECT_EQ(engine_->Frames()[2]->Caption(), "Who");
  EXPECT_EQ(engine_->Image1().Count(), 2);
  EXPECT_EQ(engine_->Image1()(2).GetPicture().id, "arrow");
  EXPECT_EQ(engine_->Image1()(3).GetPicture().id, "dots");
  EXPECT_GT(engine_->Image1()(2).Top(), appointment_->Host().Height());
  EXPECT_EQ(appointment_->Host().Width(), 7800);
  EXPECT_EQ(appointment_->Host().Height(), 4635);
}

TEST_F(AppointmentTest, HasNoCaptionStripRecordButtonsMenuOrHostCommands) {
  CreateAppointment();
  for (const char* name : {"Lbl_Caption", "Lbl_CaptionSpace", "Shp_Caption", "Cmd_NewRecord",
                           "Cmd_Undo", "mnu_Menu", "UserCommand"}) {
    EXPECT_EQ(appointment_->Host().FindControl(name), nullptr) << name;
    EXPECT_EQ(appointment_->Host().FindControl(name, 0), nullptr) << name;
  }
  EXPECT_NE(appointment_->Host().FindControl("Pic_TableDown"), nullptr);
}

TEST_F(AppointmentTest, ShowsTheRecordAndRaisesNoStatusChange) {
  CreateAppointment();
  Bind();
  EXPECT_EQ(Editor("F_ACTNAME").Text(), "F_ACTNAME 1");
  spy_->MoveNext();
  EXPECT_EQ(Editor("F_ACTNAME").Text(), "F_ACTNAME 2");
  toolkit_.Click(Editor("F_ACTTYPE").Txt_Text(Editor("F_ACTTYPE").ActiveBox()));
  toolkit_.TypeText("x");
  toolkit_.PressTab();
  for (const std::string& e : host_.events) EXPECT_NE(e, "SheetStatusChange");
  EXPECT_EQ(host_.HostEvents().front(), "EnterFocus");
}

TEST_F(AppointmentTest, AddNewRecordIsNotOfferedButControlCommandStartsIt) {
  CreateAppointment();
  Bind();
  for (const char* name : {"Add New Record", "Delete Record", "Copy Record", "Cancel Record"}) {
    EXPECT_EQ(appointment_->GetControlStatus(name), csNotSupported) << name;
  }
  EXPECT_EQ(appointment_->GetControlStatus("Next Record"), csEnabled);
  EXPECT_FALSE(appointment_->ControlCommand("Add New Record"));
  EXPECT_EQ(spy_->EditStatus(), dsNewRecord);
  EXPECT_FALSE(appointment_->ControlCommand("Cancel Record"));
  EXPECT_EQ(spy_->EditStatus(), dsBrowse);
  EXPECT_FALSE(appointment_->ControlCommand("Delete Record"));
  EXPECT_EQ(spy_->RecordCount(), 1);
  EXPECT_EQ(spy_->calls, (std::vector<std::string>{"NewRecord", "UndoRecord", "DeleteRecord"}));
}

TEST_F(AppointmentTest, EditModifyFalseLocksEveryEditorInEveryStatusButQuery) {
  CreateAppointment();
  Bind();
  appointment_->SetEditModify(false);
  spy_->MoveNext();
  EXPECT_TRUE(Editor("F_ACTNAME").Locked());
  spy_->NewRecord();
  EXPECT_TRUE(Editor("F_ACTNAME").Locked());
  spy_->UndoRecord();
  spy_->NewQuery();
  EXPECT_FALSE(Editor("F_ACTNAME").Locked());
}

TEST_F(AppointmentTest, NewRecordIsEditableOnlyWhereTheColumnAllows) {
  CreateAppointment();
  Bind(2, "F_ACTTYPE");
  spy_->NewRecord();
  EXPECT_FALSE(Editor("F_ACTNAME").Locked());
  EXPECT_TRUE(Editor("F_ACTTYPE").Locked());
}

TEST_F(AppointmentTest, StoredRecordIsEditableOnlyWhereTheRowAllows) {
  CreateAppointment();
  Bind();
  EXPECT_FALSE(Editor("F_ACTNAME").Locked());
  spy_->SetRowEditable(2, false);
  spy_->MoveNext();
  EXPECT_TRUE(Editor("F_ACTNAME").Locked());
}

TEST_F(AppointmentTest, ResizeMovesNothingAndFramesKeepTheirWidth) {
  CreateAppointment();
  const double left = Editor("F_ACTNAME").Host().Left();
  appointment_->Host().Move(0, 0, 12000, 9000);
  EXPECT_EQ(engine_->Frames()[0]->Width(), 7800);
  EXPECT_EQ(engine_->Frames()[2]->Width(), 7800);
  EXPECT_EQ(Editor("F_ACTNAME").Host().Left(), left);
}

TEST_F(AppointmentTest, ColorCaptionIsStoredAndReportedWithNoVisibleChange) {
  CreateAppointment();
  const Color background = appointment_->Host().BackColor();
  const Color frame = engine_->Frames()[0]->BackColor();
  appointment_->SetColor_Caption(0x0000FF);
  EXPECT_EQ(appointment_->Color_Caption(), 0x0000FFu);
  EXPECT_EQ(toolkit_.NotifiedProperties(appointment_->Host()).back(), "Color_Caption");
  EXPECT_EQ(appointment_->Host().BackColor(), background);
  EXPECT_EQ(engine_->Frames()[0]->BackColor(), frame);
}

TEST_F(AppointmentTest, BackgroundColoursTheSheetAndItsFrames) {
  CreateAppointment();
  appointment_->SetColor_Background(0x00DDEE);
  EXPECT_EQ(appointment_->Host().BackColor(), 0x00DDEEu);
  for (const auto& frame : engine_->Frames()) EXPECT_EQ(frame->BackColor(), 0x00DDEEu);
}

TEST_F(AppointmentTest, RightClickOnATitleGivesTheFocusBackAndOpensNothing) {
  CreateAppointment();
  Bind();
  int popups = 0;
  toolkit_.SetPopupMenuAnswer([&](const Menu&) {
    ++popups;
    return std::string();
  });
  toolkit_.RightClick(engine_->Lbl_Title()(1));
  EXPECT_EQ(popups, 0);
  Control* focus = toolkit_.GetFocus();
  ASSERT_NE(focus, nullptr);
  EXPECT_TRUE(toolkit_.IsChild(appointment_->Host(), *focus));
}

TEST_F(AppointmentTest, DataSourceWithoutColumnsShowsAnEmptyFormAndNoMessage) {
  CreateAppointment();
  MemoryDataSource empty({}, &toolkit_);
  appointment_->SetSheetRecordset(&empty);
  empty.Open();
  EXPECT_FALSE(appointment_->InitDisplay());
  EXPECT_TRUE(reports_.empty());
  EXPECT_TRUE(boxes_.empty());
  appointment_->SetSheetRecordset(nullptr);
}

TEST_F(AppointmentTest, NoPermissionReachesTheDataSource) {
  CreateAppointment();
  MemoryDataSource source(ColumnsOf(AppointmentForm().rows), &toolkit_);
  source.SetAllowAddNew(false);
  appointment_->SetSheetRecordset(&source);
  EXPECT_FALSE(source.AllowAddNew());
  appointment_->SetSheetRecordset(nullptr);
}

TEST_F(AppointmentTest, StoresItsKeysInOrder) {
  CreateAppointment();
  appointment_->SetColor_Caption(0x123456);
  appointment_->SetEditModify(false);
  MemoryPropertyBag bag;
  appointment_->WriteProperties(bag);
  std::vector<std::string> keys;
  for (const std::string& line : bag.TranscriptLines())
    keys.push_back(line.substr(0, line.find('=')));
  EXPECT_EQ(keys, (std::vector<std::string>{"Color_Caption", "FontSize", "EditModify"}));
  auto reloaded = AppointmentSheet::Load(toolkit_, *host_form_, AppointmentForm(), "A2", bag);
  EXPECT_EQ(reloaded->Color_Caption(), 0x123456u);
  EXPECT_FALSE(reloaded->EditModify());
}

// --- Currency

class CurrencyTest : public UserInfoSheetTest {
 protected:
  void CreateCurrency() {
    currency_ = CurrencySheet::Create(toolkit_, *host_form_, CurrencyForm(), "Currency1",
                                      FamilyGlyphPictures());
    engine_ = &currency_->EngineForTest();
    currency_->AddObserver(&host_);
  }
  void Bind() {
    std::vector<MemoryFieldDefinition> fields(3);
    fields[0].name = "CURR_CODE";
    fields[1].name = "CURR_NAME";
    fields[2].name = "CURR_RATE";
    fields[2].data_type = kDataTypeNumber;
    spy_ = std::make_unique<SpySource>(fields, &toolkit_);
    spy_->AddRow({Variant("USD"), Variant("US Dollar"), Variant(1.0)});
    spy_->AddRow({Variant("CNY"), Variant("Renminbi"), Variant(7.1)});
    currency_->SetSheetRecordset(spy_.get());
    spy_->Open();
    host_form_->Show();
  }
  void AddTitle(const std::string& name, bool button) {
    ClsSheetsTitles::TitleRef title = currency_->SheetTitles().Add(name);
    title->DisplayName = name + ":";
    title->DisplayCommand = button;
  }
  void TearDown() override {
    if (currency_) currency_->SetSheetRecordset(nullptr);
    UserInfoSheetTest::TearDown();
  }

  std::unique_ptr<CurrencySheet> currency_;
  std::unique_ptr<SpySource> spy_;
  HostRecorder host_;
};

TEST_F(CurrencyTest, AfterCreationOnlyTheHiddenPatternsExist) {
  CreateCurrency();
  EXPECT_EQ(engine_->Txt_Value().Count(), 1);
  EXPECT_EQ(engine_->Lbl_Title().Count(), 1);
  EXPECT_EQ(engine_->Cmd_Value().Count(), 1);
  EXPECT_FALSE(engine_->Txt_Value()(0).Host().Visible());
  EXPECT_EQ(engine_->Txt_Value()(0).Style(), 1);
  EXPECT_EQ(currency_->Host().Width(), 3855);
}

TEST_F(CurrencyTest, BuildsOneRowPerTitleWithTheGapFromTheVerticalUnit) {
  toolkit_.SetTwipsPerPixel(10, 20);
  CreateCurrency();
  Bind();
  AddTitle("CURR_CODE", true);
  AddTitle("CURR_NAME", true);
  EXPECT_FALSE(currency_->InitDisplay());
  ASSERT_EQ(engine_->Txt_Value().Count(), 3);
  const Label& first = engine_->Lbl_Title()(1);
  const Label& second = engine_->Lbl_Title()(2);
  EXPECT_EQ(first.Left(), 15 * 10);
  EXPECT_EQ(first.Top(), 15 * 20);
  EXPECT_EQ(second.Top(), first.Top() + first.Height() + 3 * 20);
  EXPECT_EQ(first.Caption(), "CURR_CODE:");
  const UserControl& editor = engine_->Txt_Value()(1).Host();
  EXPECT_EQ(editor.Left(), first.Left() + first.Width() + 5 * 20);
  EXPECT_EQ(editor.Top(), first.Top());
  EXPECT_TRUE(editor.Visible());
  EXPECT_EQ(engine_->Txt_Value()(1).Text(), "USD");
  // The button takes its place from the editor's right end; the row keeps its total width.
  const CommandButton& button = engine_->Cmd_Value()(1);
  EXPECT_EQ(editor.Width() + button.Width(), 1230);
  EXPECT_EQ(button.Left(), editor.Left() + editor.Width());
  EXPECT_EQ(currency_->Host().Width(),
            editor.Left() + editor.Width() + engine_->Cmd_Value()(2).Width() + 15 * 10);
  EXPECT_EQ(currency_->Host().Height(), second.Top() + second.Height() + 15 * 20);
}

TEST_F(CurrencyTest, EmptyTitlesBuildNoRowAndNoSizing) {
  CreateCurrency();
  Bind();
  EXPECT_FALSE(currency_->InitDisplay());
  EXPECT_EQ(engine_->Txt_Value().Count(), 1);
  EXPECT_EQ(currency_->Host().Width(), 3855);
}

TEST_F(CurrencyTest, WithoutDataSourceTheRowsOfAnEarlierCallGo) {
  CreateCurrency();
  Bind();
  AddTitle("CURR_CODE", true);
  currency_->InitDisplay();
  ASSERT_EQ(engine_->Txt_Value().Count(), 2);
  currency_->SetSheetRecordset(nullptr);
  EXPECT_FALSE(currency_->InitDisplay());
  EXPECT_EQ(engine_->Txt_Value().Count(), 1);
  EXPECT_EQ(engine_->Lbl_Title().Count(), 1);
  EXPECT_EQ(engine_->Cmd_Value().Count(), 1);
}

TEST_F(CurrencyTest, LastRowWithoutAButtonFailsTheSizingWithItsMisspelledSource) {
  CreateCurrency();
  Bind();
  AddTitle("CURR_CODE", true);
  AddTitle("CURR_NAME", false);
  EXPECT_TRUE(currency_->InitDisplay());
  ASSERT_EQ(reports_.size(), 1u);
  EXPECT_EQ(reports_[0].title, "InitDispaly");
  EXPECT_EQ(engine_->Txt_Value().Count(), 3);
  EXPECT_TRUE(engine_->Txt_Value()(2).Host().Visible());
  EXPECT_EQ(currency_->Host().Width(), 3855);
  EXPECT_EQ(currency_->Host().Height(), 2610);
}

TEST_F(CurrencyTest, OnlyTheLastRowWithAButtonSizesAndCountsThatButton) {
  CreateCurrency();
  Bind();
  AddTitle("CURR_CODE", false);
  AddTitle("CURR_NAME", true);
  EXPECT_FALSE(currency_->InitDisplay());
  const UserControl& last = engine_->Txt_Value()(2).Host();
  EXPECT_EQ(currency_->Host().Width(),
            last.Left() + last.Width() + engine_->Cmd_Value()(2).Width() + 15 * 15);
}

TEST_F(CurrencyTest, HostHearsResizeOncePerDimension) {
  CreateCurrency();
  Bind();
  AddTitle("CURR_CODE", true);
  int resizes = 0;
  struct ResizeCounter : SheetEvents {
    int* count;
    void Resize() override { ++*count; }
  } counter;
  counter.count = &resizes;
  currency_->AddObserver(&counter);
  currency_->InitDisplay();
  EXPECT_EQ(resizes, 2);
  currency_->RemoveObserver(&counter);
}

TEST_F(CurrencyTest, MoveInTheDataSourceLeavesTheOldRecordShown) {
  CreateCurrency();
  Bind();
  AddTitle("CURR_CODE", true);
  currency_->InitDisplay();
  spy_->MoveNext();
  EXPECT_EQ(engine_->Txt_Value()(1).Text(), "USD");
  currency_->InitDisplay();
  EXPECT_EQ(engine_->Txt_Value()(1).Text(), "CNY");
}

TEST_F(CurrencyTest, ValueChangeOfAShownColumnRepaints) {
  CreateCurrency();
  Bind();
  AddTitle("CURR_NAME", true);
  currency_->InitDisplay();
  spy_->SetFieldValue(Variant("CURR_NAME"), Variant("Dollar"));
  EXPECT_EQ(engine_->Txt_Value()(1).Text(), "Dollar");
}

TEST_F(CurrencyTest, EditableRuleReadsTheDataSourcesOwnPermissions) {
  CreateCurrency();
  Bind();
  AddTitle("CURR_NAME", true);
  currency_->InitDisplay();
  EXPECT_FALSE(engine_->Txt_Value()(1).Locked());
  spy_->SetAllowModify(false);
  currency_->InitDisplay();
  EXPECT_TRUE(engine_->Txt_Value()(1).Locked());
  // A copy looks at AllowAddNew, not AllowCopy.
  spy_->SetAllowCopy(true);
  spy_->SetAllowAddNew(false);
  spy_->ForceEditStatus(dsCopyRecord);
  currency_->InitDisplay();
  EXPECT_TRUE(engine_->Txt_Value()(1).Locked());
  spy_->SetAllowAddNew(true);
  currency_->InitDisplay();
  EXPECT_FALSE(engine_->Txt_Value()(1).Locked());
}

TEST_F(CurrencyTest, TypedValueTravelsOnLeavingAndTheHostHearsText) {
  CreateCurrency();
  Bind();
  AddTitle("CURR_CODE", true);
  AddTitle("CURR_NAME", true);
  currency_->InitDisplay();
  SFText& editor = engine_->Txt_Value()(2);
  TextBox& box = editor.Txt_Text(editor.ActiveBox());
  toolkit_.Click(box);
  box.SetSelStart(0);
  box.SetSelLength(static_cast<int32_t>(box.Text().size()));
  toolkit_.TypeText("Greenback");
  toolkit_.PressShiftTab();
  EXPECT_EQ(spy_->Fields(Variant("CURR_NAME")).Value().AsText(), "Greenback");
  EXPECT_EQ(host_.HostEvents(),
            (std::vector<std::string>{"EnterFocus", "Text CURR_NAME=Greenback"}));
}

TEST_F(CurrencyTest, FailedSaveGivesTheFocusBackToTheField) {
  CreateCurrency();
  Bind();
  AddTitle("CURR_NAME", true);
  currency_->InitDisplay();
  SFText& editor = engine_->Txt_Value()(1);
  toolkit_.Click(editor.Txt_Text(editor.ActiveBox()));
  ASSERT_TRUE(toolkit_.FocusOutside());
  editor.SetText("changed");
  spy_->RefuseField("CURR_NAME");
  EXPECT_TRUE(currency_->Save());
  EXPECT_TRUE(reports_.empty());
  EXPECT_EQ(editor.Text(), "US Dollar");
  Control* focus = toolkit_.GetFocus();
  ASSERT_NE(focus, nullptr);
  EXPECT_TRUE(toolkit_.IsChild(editor.Host(), *focus));
}

TEST_F(CurrencyTest, StoresItsKeysInOrder) {
  CreateCurrency();
  currency_->SetColor_Background(0x112233);
  currency_->SetEditModify(false);
  currency_->SetFontName("Arial");
  MemoryPropertyBag bag;
  currency_->WriteProperties(bag);
  std::vector<std::string> keys;
  for (const std::string& line : bag.TranscriptLines())
    keys.push_back(line.substr(0, line.find('=')));
  EXPECT_EQ(keys,
            (std::vector<std::string>{"Color_Background", "FontName", "FontSize", "EditModify"}));
  auto reloaded = CurrencySheet::Load(toolkit_, *host_form_, CurrencyForm(), "C2", bag);
  EXPECT_EQ(reloaded->Color_Background(), 0x112233u);
  EXPECT_EQ(reloaded->Host().BackColor(), 0x112233u);
  EXPECT_FALSE(reloaded->EditModify());
  EXPECT_EQ(reloaded->FontName(), "Arial");
}

}  // namespace
}  // namespace tarnsheets
