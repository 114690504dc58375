// Binding of titles to columns and the display of the current record, with the handlers of the
// data-source signals that repaint the sheet.
#include <cmath>
#include <optional>
#include <string>

#include "sheet/require.h"
#include "sheet/sheet_engine.h"
#include "tarnsheets/format.h"
#include "tarnsheets/keyed_collection.h"
#include "tarnsheets/messages.h"

namespace tarnsheets {

namespace {

// The display format a column's type asks for, tested in the order date, number, money, whole
// number; the empty text for a type or kind without one.
std::string DefaultFormat(DataSourceField& field) {
  const int32_t data_type = field.DataType();
  if (data_type == kDataTypeDate) {
    switch (field.DateKind()) {
      case 4:
        return "hh:nn";
      case 3:
        return "hh:nn:ss";
      case 2:
        return "yyyy-mm-dd";
      case 1:
        return "yyyy-mm-dd hh:nn";
      case 0:
        return "yyyy-mm-dd hh:nn:ss";
      default:
        return "";
    }
  }
  if (data_type == kDataTypeNumber) {
    switch (field.NumberKind()) {
      case 2:
        return "#0%";
      case 0:
        return "#,##0";
      case 1:
        return "#,##0.00";
      default:
        return "";
    }
  }
  if (data_type == kDataTypeMoney) return "#,##0.00";
  if (data_type == kDataTypeWholeNumber) return "#,##0";
  return "";
}

}  // namespace

int32_t SheetEngine::EditStatusNow() const { return Require(SheetRecordset_).EditStatus(); }

// ---------------------------------------------------------------------------------------------
// Binding

void SheetEngine::InitDisplay() { DataSource_SysDataSourceInit(); }

void SheetEngine::DataSource_SysDataSourceInit() {
  if (kind_ == SheetKind::kAppointment) {
    // No handler, no caption, no status engine, no event.
    (void)SysSetDefaultTitles();
    int32_t mode = 0;
    Action(mode);
    return;
  }
  try {
    (void)SysSetDefaultTitles();
    const Variant caption_name = SheetTitles().CaptionName();
    if (!caption_name.IsEmpty() && !caption_name.IsNull()) SetCaption(caption_name.AsText());
    int32_t mode = 0;
    Action(mode);
    DataSource_EditStatusChange();
    RaiseSheetStatusChange();
  } catch (const Failure& failure) {
    Report("DataSource_DataSourceInit", failure);
  }
}

void SheetEngine::DataSource_SysDataSourceRefresh() {
  (void)SysSetDefaultTitles();
  int32_t mode = 0;
  Action(mode);
  RunStatusEngine();
  RaiseSheetStatusChange();
}

void SheetEngine::RunStatusEngine() {
  if (kind_ == SheetKind::kEntity) DataSource_EditStatusChange();
}

bool SheetEngine::SysSetDefaultTitles() {
  try {
    // First pass: every title must name a column, in any case. Nothing is changed here.
    const int32_t count = SheetTitles().Count();
    for (int32_t i = 1; i <= count; ++i) {
      const std::string name = Require(SheetTitles().Item(Variant(i))).Name;
      DataSource& data_source = Require(SheetRecordset_);
      const int32_t field_count = data_source.FieldCount();
      bool found = false;
      for (int32_t j = 1; j <= field_count; ++j) {
        if (KeysEqual(Require(SheetRecordset_).Fields(Variant(j)).FieldName(), name)) {
          found = true;
          break;
        }
      }
      if (!found) {
        toolkit_.MessageBox("", "没有找到'" + name + "'列！", MessageBoxStyle::kPlain);
        return false;
      }
    }
    // Second pass: complete formats and descriptions; report equal display names.
    for (int32_t i = 1; i <= count; ++i) {
      ClsSheetsTitles::TitleRef title = SheetTitles().Item(Variant(i));
      DataSourceField& field = Require(SheetRecordset_).Fields(Variant(Require(title).Name));
      if (title->DisplayFormat.empty()) title->DisplayFormat = DefaultFormat(field);
      if (title->Description.empty()) title->Description = title->DisplayName;
      for (int32_t j = i + 1; j <= count; ++j) {
        const std::string display_name = Require(SheetTitles().Item(Variant(i))).DisplayName;
        ClsSheetsTitle& other = Require(SheetTitles().Item(Variant(j)));
        if (display_name == other.DisplayName) {
          toolkit_.MessageBox("Check_Field", "'" + other.Name + "'显示名称不能重复！",
                              MessageBoxStyle::kPlain);
        }
      }
    }
    return false;
  } catch (const Failure& failure) {
    Report("SysSetDefaultTitles", failure);
    return true;
  }
}

void SheetEngine::Display_field() {
  try {
    const int32_t labels = Lbl_Title_.Count();
    for (int32_t i = 0; i < labels; ++i) {
      const int32_t count = SheetTitles().Count();
      for (int32_t j = 1; j <= count; ++j) {
        ClsSheetsTitle& title = Require(SheetTitles().Item(Variant(j)));
        // No stop at a match: of two titles with one Name the last wins.
        if (Lbl_Title_(i).Tag() == title.Name) Lbl_Title_(i).SetCaption(title.DisplayName);
      }
    }
    // Screen readers announce each text editor by its title.
    const int32_t count = SheetTitles().Count();
    for (int32_t j = 1; j <= count; ++j) {
      const ClsSheetsTitle& title = Require(SheetTitles().Item(Variant(j)));
      for (const std::shared_ptr<SFText>& editor : Txt_Value_.Elements()) {
        if (editor->Host().Tag() == title.Name) {
          editor->SetAccessibleText(title.DisplayName, title.Description);
        }
      }
    }
  } catch (const Failure& failure) {
    Report("Display_field", failure);
  }
}

// ---------------------------------------------------------------------------------------------
// Display

void SheetEngine::Action(int32_t& Mode) {
  if (kind_ != SheetKind::kEntity) {
    // Two steps, no handler: a source without fields or a sheet without titles shows nothing.
    if (Mode == 0) Display_field();
    Display_Value();
    return;
  }
  try {
    UserCommand_Place();
    if (Require(SheetRecordset_).FieldCount() < 1) {
      throw Failure(kErrSheetApplication, LoadMessage(604));
    }
    if (SheetTitles().Count() < 1) throw Failure(kErrSheetApplication, LoadMessage(605));
    if (Mode == 0) Display_field();
    Display_Value();
  } catch (const Failure& failure) {
    Report("Action", failure);
  }
}

void SheetEngine::Display_Value() {
  try {
    if (SheetRecordset_ == nullptr) return;
    bool has_record = EditStatusNow() == dsQuery;
    if (!has_record) {
      const int32_t record_count = Require(SheetRecordset_).RecordCount();
      const int32_t position = Require(SheetRecordset_).AbsolutePosition();
      has_record = record_count >= 1 && position >= 1 && position <= record_count;
    }
    if (!has_record) {
      for (const std::shared_ptr<SFText>& text : Txt_Value_.Elements()) {
        text->SetText("");
        text->SetLocked(false);
      }
      for (const std::shared_ptr<SFCheck>& check : Chk_Value_.Elements()) {
        check->SetValue(2);
        check->SetEnabled(true);
      }
      return;
    }
    // All text editors first, then all check editors; an editor whose Tag names no column stays.
    // Each editor is compared with every column. Its Tag is read once and again after each
    // field shown: only showing a field runs code that could change it.
    const int32_t texts = Txt_Value_.Count();
    for (int32_t i = 0; i < texts; ++i) {
      const int32_t field_count = Require(SheetRecordset_).FieldCount();
      std::optional<std::string> tag;
      for (int32_t j = 1; j <= field_count; ++j) {
        const std::string& name = Require(SheetRecordset_).Fields(Variant(j)).FieldName();
        if (!tag) tag = Txt_Value_(i).Host().Tag();
        if (*tag != name) continue;
        // Showing the field runs host code, which may give the source new field objects.
        Display_Txt_Field(std::string(name), i);
        tag.reset();
      }
    }
    const int32_t checks = Chk_Value_.Count();
    for (int32_t i = 0; i < checks; ++i) {
      const int32_t field_count = Require(SheetRecordset_).FieldCount();
      std::optional<std::string> tag;
      for (int32_t j = 1; j <= field_count; ++j) {
        const std::string& name = Require(SheetRecordset_).Fields(Variant(j)).FieldName();
        if (!tag) tag = Chk_Value_(i).Host().Tag();
        if (*tag != name) continue;
        Display_Chk_Value(std::string(name), i);
        tag.reset();
      }
    }
  } catch (const Failure& failure) {
    if (kind_ == SheetKind::kAppointment) throw;  // no handler there: the caller hears it
    Report("Display_Value", failure);
  }
}

bool SheetEngine::FieldEditable(DataSourceField& field) {
  if (kind_ == SheetKind::kAppointment) return AppointmentFieldEditable(field);
  if (kind_ == SheetKind::kCurrency) return CurrencyFieldEditable(field);
  // Every part is read, in this order, as the rule is one expression.
  DataSource& data_source = Require(SheetRecordset_);
  const bool read_only = data_source.ReadOnly();
  const bool updatable = field.Updatable();
  const bool row_editable = data_source.RowEditable(data_source.AbsolutePosition());
  const int32_t status = data_source.EditStatus();
  const bool permitted = EditModify_ || (EditAddNew_ && status == dsNewRecord) ||
                         (EditCopy_ && status == dsCopyRecord);
  return !read_only && updatable && row_editable && permitted;
}

void SheetEngine::Display_Txt_Field(const std::string& FieldName, int32_t Index) {
  SFText& editor = Txt_Value_(Index);
  if (EditStatusNow() == dsQuery) {
    editor.SetLocked(false);
    editor.SetText(Require(SheetRecordset_).Fields(Variant(FieldName)).Value(0).ToText());
  } else {
    DataSourceField& field = Require(SheetRecordset_).Fields(Variant(FieldName));
    editor.SetLocked(!FieldEditable(field));
    editor.SetText(Display_Txt_Value(FieldName, 0));
  }
  Txt_Value_(Index).Host().SetVisible(true);
}

std::string SheetEngine::Display_Txt_Value(const std::string& FieldName, int32_t Flag) {
  DataSourceField& field = Require(SheetRecordset_).Fields(Variant(FieldName));
  if (EditStatusNow() == dsQuery) return field.Value(0).ToText();
  const int32_t record_count = Require(SheetRecordset_).RecordCount();
  const bool no_records = form_.options.NegativeCountShows ? record_count == 0 : record_count <= 0;
  if (no_records) return "";
  const int32_t data_type = field.DataType();
  switch (data_type) {
    case kDataTypeText:
    case kDataTypePlainText: {
      const Variant value = field.Value(Flag);
      if (value.IsEmpty() || value.IsNull()) return "";
      return value.AsText();
    }
    case kDataTypeDate:
    case kDataTypeNumber:
    case kDataTypeWholeNumber: {
      const Variant value = field.Value(Flag);
      if (value.IsEmpty() || value.IsNull()) return "";
      return FormatValue(value, Require(SheetTitles().Item(Variant(FieldName))).DisplayFormat);
    }
    case kDataTypeMoney: {
      const Variant value = field.Value(Flag);
      if (value.IsEmpty() || value.IsNull()) return "";
      const std::string& format = Require(SheetTitles().Item(Variant(FieldName))).DisplayFormat;
      const double amount = value.ToDouble();
      // The sign stands before the symbol, never between symbol and digits.
      if (amount >= 0) return field.Symbol(Flag) + FormatValue(value, format);
      return "-" + field.Symbol(Flag) + FormatValue(Variant(std::fabs(amount)), format);
    }
    default:
      toolkit_.MessageBox(
          "", "无法显示'" + field.FieldName() + "'没有这种数据类型！在Display_Txt_Value中",
          MessageBoxStyle::kPlain);
      return "";
  }
}

void SheetEngine::Display_Chk_Value(const std::string& FieldName, int32_t Index) {
  SFCheck& editor = Chk_Value_(Index);
  DataSourceField& field = Require(SheetRecordset_).Fields(Variant(FieldName));
  const std::string wrong_type =
      "无法显示'" + FieldName + "'没有这种数据类型！在Display_Chk_Value中";
  if (EditStatusNow() == dsQuery) {
    editor.SetLocked(false);
    if (field.DataType() != kDataTypeYesNo) {
      toolkit_.MessageBox("", wrong_type, MessageBoxStyle::kPlain);
      return;
    }
    const std::string condition = field.Value(0).AsText();
    editor.SetValue(condition == "0" ? 0 : condition == "1" ? 1 : 2);
    return;
  }
  editor.SetLocked(!FieldEditable(field));
  if (field.DataType() != kDataTypeYesNo) {
    toolkit_.MessageBox("", wrong_type, MessageBoxStyle::kPlain);
    return;
  }
  const Variant value = field.Value(0);
  // Outside query mode the grey state is never set here.
  if (value.IsNull()) {
    editor.SetValue(0);
  } else {
    editor.SetValue(value.EqualsZero() ? 0 : 1);
  }
}

// ---------------------------------------------------------------------------------------------
// Signals. Each status test reads EditStatus at the moment of the signal; a signal in another
// status does nothing.

void SheetEngine::DataSource_SysDeleteRecordAfter() {
  int32_t mode = 0;
  Action(mode);
  RunStatusEngine();
}

void SheetEngine::DataSource_SysMoveRecordAfter() {
  Display_Value();
  RaiseSheetStatusChange();
}

void SheetEngine::DataSource_SysCancelQueryAfter() {
  if (EditStatusNow() != dsBrowse) return;
  int32_t mode = 1;
  Action(mode);
}

void SheetEngine::DataSource_SysNewQueryAfter() {
  if (EditStatusNow() != dsQuery) return;
  int32_t mode = 1;
  Action(mode);
}

void SheetEngine::DataSource_SysRefineQueryAfter() {
  if (EditStatusNow() != dsQuery) return;
  int32_t mode = 1;
  Action(mode);
}

void SheetEngine::DataSource_SysNewRecordAfter() {
  if (EditStatusNow() != dsNewRecord) return;
  int32_t mode = 1;
  Action(mode);
  if (HasFocus_) Txt_Value_(0).Txt_Text(Txt_Value_(0).ActiveBox()).SetFocus();
  RunStatusEngine();
}

void SheetEngine::DataSource_SysCopyRecordAfter() {
  if (EditStatusNow() != dsCopyRecord) return;
  int32_t mode = 1;
  Action(mode);
  if (HasFocus_) Txt_Value_(0).Txt_Text(Txt_Value_(0).ActiveBox()).SetFocus();
  RunStatusEngine();
}

void SheetEngine::DataSource_SysUndoRecordAfter() {
  int32_t mode = 1;
  Action(mode);
}

void SheetEngine::DataSource_SysUpdateRecordAfter() {
  if (form_.options.RedrawOnlyWhenIdle && EditStatusNow() != dsBrowse) return;
  int32_t mode = 1;
  Action(mode);
  RunStatusEngine();
}

void SheetEngine::DataSource_ValueQueryChange() {
  if (kind_ == SheetKind::kCurrency) {
    Display_Value();
    return;
  }
  int32_t mode = 1;
  Action(mode);
}

void SheetEngine::DataSource_ValueChange(int32_t field_number) {
  if (!ColumnShown(field_number)) return;
  if (kind_ == SheetKind::kCurrency) {
    Display_Value();
    return;
  }
  int32_t mode = 1;
  Action(mode);
}

void SheetEngine::DataSource_SymbolChange(int32_t field_number) {
  if (!ColumnShown(field_number)) return;
  int32_t mode = 1;
  Action(mode);
}

bool SheetEngine::ColumnShown(int32_t field_number) {
  const std::string name = Require(SheetRecordset_).Fields(Variant(field_number)).FieldName();
  // A title of the column itself.
  for (const ClsSheetsTitles::TitleRef& title : SheetTitles().NewEnum()) {
    if (title->Name == name) return true;
  }
  // A money field whose currency column this is: its amount repaints with the new symbol.
  for (const ClsSheetsTitles::TitleRef& title : SheetTitles().NewEnum()) {
    DataSourceField& field = Require(SheetRecordset_).Fields(Variant(title->Name));
    if (field.DataType() == kDataTypeMoney && field.ReferenceName() == name) return true;
  }
  return false;
}

void SheetEngine::ValueChange(const Variant& unused, int32_t field_number) {
  (void)unused;
  DataSource_ValueChange(field_number);
}

void SheetEngine::SymbolChange(const Variant& unused, int32_t field_number) {
  (void)unused;
  DataSource_SymbolChange(field_number);
}

void SheetEngine::ValueQueryChange(const std::string& text) {
  (void)text;
  DataSource_ValueQueryChange();
}

}  // namespace tarnsheets
