// The edit status engine and the focus ring: which record commands the user may reach after each
// data-source signal, and how the focus circles inside the sheet, shows in the caption strip and
// comes back to the field last used.
#include "sheet/require.h"
#include "sheet/sheet_engine.h"

namespace tarnsheets {

namespace {

// A tab index above every designed one.
constexpr int32_t kAboveEveryTabIndex = 65536;

bool TakesPartInRing(const Control& control) {
  const std::string type = control.TypeName();
  return type == "SFText" || type == "CommandButton" || type == "SFCheck";
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Edit status

void SheetEngine::SetPair(Menu& menu, CommandButton& button, bool enabled) {
  menu.SetEnabled(enabled);
  button.SetEnabled(enabled);
}

void SheetEngine::SetUserCommandsEnabled(bool enabled) {
  // Element 0 is the hidden pattern and is never touched.
  const int32_t count = UserCommand_.Count();
  for (int32_t i = 1; i <= count - 1; ++i) UserCommand_(i).SetEnabled(enabled);
}

void SheetEngine::DataSource_EditStatusChange() {
  ++edit_status_change_runs_;
  DataSource& data_source = Require(SheetRecordset_);
  const int32_t status = data_source.EditStatus();
  auto records = [&data_source] { return data_source.RecordCount() >= 1; };
  Menu& new_menu = *mnu_NewRecord_;
  Menu& delete_menu = *mnu_DeleteRecord_;
  Menu& copy_menu = *mnu_CopyRecord_;
  Menu& undo_menu = *mnu_Undo_;
  switch (status) {
    case dsBrowse:
    case 2:
    case 3:
      SetPair(new_menu, *Cmd_NewRecord_, EditAddNew_);
      SetPair(delete_menu, *Cmd_DeleteRecord_, EditDelete_ && records());
      SetPair(copy_menu, *Cmd_CopyRecord_, EditCopy_ && records());
      SetPair(undo_menu, *Cmd_Undo_, true);
      break;
    case dsQuery:
    case dsClosed:
      SetPair(new_menu, *Cmd_NewRecord_, false);
      SetPair(delete_menu, *Cmd_DeleteRecord_, false);
      SetPair(copy_menu, *Cmd_CopyRecord_, false);
      SetPair(undo_menu, *Cmd_Undo_, false);
      break;
    case dsNewRecord:
    case dsCopyRecord:
      // A pending record can always be thrown away through Delete when the set has a record,
      // whatever the host permits for deletion.
      SetPair(new_menu, *Cmd_NewRecord_, EditAddNew_);
      SetPair(delete_menu, *Cmd_DeleteRecord_, records());
      SetPair(copy_menu, *Cmd_CopyRecord_, EditCopy_ && records());
      SetPair(undo_menu, *Cmd_Undo_, true);
      break;
    default:
      // An unknown status changes nothing, except that an empty set offers no delete or copy;
      // sheets without this arm leave everything as it was.
      if (form_.options.StatusElseArm && !records()) {
        SetPair(delete_menu, *Cmd_DeleteRecord_, false);
        SetPair(copy_menu, *Cmd_CopyRecord_, false);
      }
      break;
  }
  if (!EditAddNew_ && !EditDelete_ && !EditCopy_ && !EditModify_) {
    SetPair(undo_menu, *Cmd_Undo_, false);
  }
  if (data_source.ReadOnly()) {
    SetPair(new_menu, *Cmd_NewRecord_, false);
    SetPair(delete_menu, *Cmd_DeleteRecord_, false);
    SetPair(copy_menu, *Cmd_CopyRecord_, false);
    SetPair(undo_menu, *Cmd_Undo_, false);
    SetUserCommandsEnabled(false);
  } else if (data_source.SelectRowsStatus() == 1) {
    SetPair(new_menu, *Cmd_NewRecord_, false);
    SetPair(delete_menu, *Cmd_DeleteRecord_, false);
    SetPair(copy_menu, *Cmd_CopyRecord_, false);
    SetPair(undo_menu, *Cmd_Undo_, false);
  } else {
    SetUserCommandsEnabled(true);
  }
  RaiseSheetStatusChange();
}

void SheetEngine::DataSource_ChangeSelectRows() {
  DataSource& data_source = Require(SheetRecordset_);
  if (data_source.SelectRowsStatus() == 1) {
    SetPair(*mnu_NewRecord_, *Cmd_NewRecord_, false);
    SetPair(*mnu_DeleteRecord_, *Cmd_DeleteRecord_, false);
    SetPair(*mnu_CopyRecord_, *Cmd_CopyRecord_, false);
    if (EditModify_ && data_source.RecordCount() >= 1) SetPair(*mnu_Undo_, *Cmd_Undo_, false);
  } else {
    DataSource_EditStatusChange();
  }
  RaiseSheetStatusChange();
}

// A move stores only the active field and leaves the record pending; every query step stores the
// record too.
void SheetEngine::DataSource_MoveRecordBefore(bool& Cancel) {
  if (Save_FieldValue(-1)) Cancel = true;
}

void SheetEngine::DataSource_NewQueryBefore(bool& Cancel) { Cancel = Save(); }
void SheetEngine::DataSource_RefineQueryBefore(bool& Cancel) { Cancel = Save(); }
void SheetEngine::DataSource_ExecuteQueryBefore(bool& Cancel) { Cancel = Save(); }
void SheetEngine::DataSource_CancelQueryBefore(bool& Cancel) { Cancel = Save(); }

// The lock of a text editor at the moment it takes the focus.
void SheetEngine::LockAtFocus(SFText& editor) {
  if (SheetRecordset_ == nullptr) return;
  DataSource& data_source = *SheetRecordset_;
  const int32_t status = data_source.EditStatus();
  if (status == dsQuery) {
    editor.SetLocked(false);
    return;
  }
  if (status == dsClosed) {
    editor.SetLocked(true);
    return;
  }
  if (data_source.RecordCount() <= 0) {
    editor.SetLocked(true);
    return;
  }
  const bool permitted = EditModify_ || (EditAddNew_ && status == dsNewRecord) ||
                         (EditCopy_ && status == dsCopyRecord);
  const bool editable = !data_source.ReadOnly() && permitted &&
                        data_source.Fields(Variant(editor.Host().Tag())).Updatable() &&
                        data_source.RowEditable(data_source.AbsolutePosition());
  editor.SetLocked(!editable);
}

// ---------------------------------------------------------------------------------------------
// Focus ring

// A forward tab past the last field lands here and goes on to the lowest eligible tab index.
void SheetEngine::Pic_TableDown_GotFocus() {
  int32_t best = kAboveEveryTabIndex;
  const std::vector<std::shared_ptr<Control>> controls = host_->AllControls();
  for (const std::shared_ptr<Control>& control : controls) {
    if (!TakesPartInRing(*control)) continue;
    if (control->Visible() && control->Enabled() && control->TabStop() &&
        control->TabIndex() < best) {
      best = control->TabIndex();
    }
  }
  for (const std::shared_ptr<Control>& control : controls) {
    if (TakesPartInRing(*control) && control->TabIndex() == best) control->SetFocus();
  }
}

// A backward tab past the first field lands here and goes on to the highest eligible tab index.
void SheetEngine::Pic_TableUp_GotFocus() {
  int32_t best = 0;
  const std::vector<std::shared_ptr<Control>> controls = host_->AllControls();
  for (const std::shared_ptr<Control>& control : controls) {
    if (!TakesPartInRing(*control)) continue;
    if (control->Visible() && control->Enabled() && control->TabStop() &&
        control->TabIndex() > best) {
      best = control->TabIndex();
    }
  }
  for (const std::shared_ptr<Control>& control : controls) {
    if (TakesPartInRing(*control) && control->TabIndex() == best) control->SetFocus();
  }
}

void SheetEngine::UserControl_EnterFocus() {
  HasFocus_ = true;
  if (kind_ != SheetKind::kEntity) {
    // No caption strip to colour.
    RaiseEvent([](SheetEvents& host) { host.EnterFocus(); });
    return;
  }
  Lbl_Caption_->SetBackColor(Color_Caption_);
  Lbl_CaptionSpace_->SetBackColor(Lbl_Caption_->BackColor());
  Shp_Caption_->SetBorderColor(Color_Caption_);
  RaiseEvent([](SheetEvents& host) { host.EnterFocus(); });
  RaiseSheetStatusChange();
}

void SheetEngine::UserControl_ExitFocus() {
  bool cancel = false;
  RaiseEvent([&cancel](SheetEvents& host) { host.ExitFocus(cancel); });
  if (cancel) {
    // The host keeps the focus inside; the caption strip stays as it is.
    host_->SetFocus();
    return;
  }
  HasFocus_ = false;
  if (kind_ != SheetKind::kEntity) return;
  Lbl_Caption_->SetBackColor(kSysActiveBorder);
  Lbl_CaptionSpace_->SetBackColor(Lbl_Caption_->BackColor());
  Shp_Caption_->SetBorderColor(kSysActiveBorder);
  RaiseSheetStatusChange();
}

void SheetEngine::Lbl_Title_MouseDown(int32_t Index, int16_t Button, int16_t Shift, float X,
                                      float Y) {
  (void)Index;
  UserControl_MouseDown(Button, Shift, X, Y);
}

// A press on the caption gives the focus back to the field; the sheets whose option record asks
// for it then open the menu on the right button, as a press on a title does.
void SheetEngine::Lbl_Caption_MouseDown(int16_t Button, int16_t Shift, float X, float Y) {
  (void)Shift, (void)X, (void)Y;
  FocusCurrentField();
  if (form_.options.CaptionMenu && Button == kRightButton) Show_PopupMenu();
}

// A press on a title or on empty space returns to the field last entered (the first field on a
// fresh sheet); the right button also opens the menu.
void SheetEngine::UserControl_MouseDown(int16_t Button, int16_t Shift, float X, float Y) {
  (void)Shift, (void)X, (void)Y;
  FocusCurrentField();
  // Without a menu the right button means nothing more.
  if (Button == kRightButton && mnu_Menu_) Show_PopupMenu();
}

void SheetEngine::FocusCurrentField() {
  if (CurrentFieldName_.empty()) {
    Pic_TableDown_->SetFocus();
    return;
  }
  // Every editor with the tag is focused in turn, so the last one keeps the focus.
  for (const std::shared_ptr<SFText>& text : Txt_Value_.Elements()) {
    if (text->Host().Tag() == CurrentFieldName_) EditorBox(*text).SetFocus();
  }
  for (const std::shared_ptr<SFCheck>& check : Chk_Value_.Elements()) {
    if (check->Host().Tag() == CurrentFieldName_) check->Host().SetFocus();
  }
}

void SheetEngine::Show_PopupMenu() {
  Control* focus = toolkit_.GetFocus();
  if (focus == nullptr || !toolkit_.IsChild(*host_, *focus)) return;
  host_->PopupMenu(*mnu_Menu_);
}

}  // namespace tarnsheets
