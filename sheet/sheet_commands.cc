// Saving typed values, the value events of the field controls, and the command surface that a
// host drives by name.
#include <algorithm>
#include <cmath>

#include "sheet/require.h"
#include "sheet/sheet_engine.h"
#include "tarnsheets/messages.h"

namespace tarnsheets {

namespace {

// The text an editor shows for an empty value.
bool IsBlank(const std::string& text) { return text.find_first_not_of(' ') == std::string::npos; }

int32_t ToLong(double value) { return static_cast<int32_t>(std::nearbyint(value)); }

// The mark a record button carries while the save at its focus failed.
constexpr const char kSaveFailing[] = "Savefailing";

}  // namespace

// ---------------------------------------------------------------------------------------------
// Wiring

void SheetEngine::WireEvents() {
  ControlEvents& sheet = host_->Events();
  sheet.EnterFocus = [this] { UserControl_EnterFocus(); };
  sheet.ExitFocus = [this] { UserControl_ExitFocus(); };
  for (int32_t i : Txt_Value_.Indices()) WireTextEditor(i);
  for (int32_t i : Cmd_Value_.Indices()) WireDropButton(i);
  if (kind_ == SheetKind::kCurrency) return;  // no ring, no pointer handling, no check editors
  sheet.MouseDown = [this](int16_t& button, int16_t& shift, float& x, float& y) {
    UserControl_MouseDown(button, shift, x, y);
  };
  Pic_TableDown_->Events().GotFocus = [this] { Pic_TableDown_GotFocus(); };
  Pic_TableUp_->Events().GotFocus = [this] { Pic_TableUp_GotFocus(); };
  for (int32_t i : Lbl_Title_.Indices()) {
    Lbl_Title_(i).Events().MouseDown = [this, i](int16_t& button, int16_t& shift, float& x,
                                                 float& y) {
      Lbl_Title_MouseDown(i, button, shift, x, y);
    };
  }
  for (int32_t i : Chk_Value_.Indices()) {
    SFCheck& check = Chk_Value_(i);
    check.Host().Events().GotFocus = [this, i] { Chk_Value_GotFocus(i); };
    check.Host().Events().LostFocus = [this, i] { Chk_Value_LostFocus(i); };
    check.Events().Click = [this, i] { Chk_Value_Click(i); };
  }
  if (kind_ != SheetKind::kEntity) return;  // no caption strip, record buttons, menu or commands
  Lbl_Caption_->Events().MouseDown = [this](int16_t& button, int16_t& shift, float& x, float& y) {
    Lbl_Caption_MouseDown(button, shift, x, y);
  };
  for (int32_t i : UserCommand_.Indices()) WireUserCommand(UserCommand_(i), i);
  struct RecordCommand {
    CommandButton* button;
    Menu* menu;
    void (SheetEngine::*click)();
  };
  const RecordCommand commands[] = {
      {Cmd_NewRecord_.get(), mnu_NewRecord_.get(), &SheetEngine::mnu_NewRecord_Click},
      {Cmd_DeleteRecord_.get(), mnu_DeleteRecord_.get(), &SheetEngine::mnu_DeleteRecord_Click},
      {Cmd_CopyRecord_.get(), mnu_CopyRecord_.get(), &SheetEngine::mnu_CopyRecord_Click},
      {Cmd_Undo_.get(), mnu_Undo_.get(), &SheetEngine::mnu_Undo_Click},
  };
  for (const RecordCommand& command : commands) {
    CommandButton* button = command.button;
    auto click = command.click;
    button->Events().GotFocus = [this, button] { RecordButton_GotFocus(*button); };
    button->Events().Click = [this, button, click] { RecordButton_Click(*button, click); };
    button->Events().LostFocus = [this, button] { RecordButton_LostFocus(*button); };
    command.menu->Events().Click = [this, click] { (this->*click)(); };
  }
}

// Currency hears neither Change nor KeyPress; Appointment no KeyPress.
void SheetEngine::WireTextEditor(int32_t index) {
  SFText& text = Txt_Value_(index);
  ControlEvents& e = text.Host().Events();
  e.GotFocus = [this, index] { Txt_Value_GotFocus(index); };
  e.LostFocus = [this, index] { Txt_Value_LostFocus(index); };
  e.Validate = [this, index](bool& cancel) { Txt_Value_Validate(index, cancel); };
  if (kind_ == SheetKind::kCurrency) return;
  text.Events().Change = [this, index] { Txt_Value_Change(index); };
  if (kind_ != SheetKind::kEntity) return;
  text.Events().KeyPress = [this, index](int16_t& key_ascii) {
    Txt_Value_KeyPress(index, key_ascii);
  };
}

void SheetEngine::WireDropButton(int32_t index) {
  Cmd_Value_(index).Events().Click = [this, index] { Cmd_Value_Click(index); };
}

void SheetEngine::UnwireEvents() {
  ControlEvents& sheet = host_->Events();
  sheet.EnterFocus = nullptr;
  sheet.ExitFocus = nullptr;
  sheet.MouseDown = nullptr;
  for (const std::shared_ptr<Control>& control : host_->AllControls()) {
    ControlEvents& e = control->Events();
    e.GotFocus = nullptr;
    e.LostFocus = nullptr;
    e.Validate = nullptr;
    e.MouseDown = nullptr;
    if (control->Kind() != ControlKind::kUserControl) e.Click = nullptr;
  }
  for (const std::shared_ptr<SFText>& text : Txt_Value_.Elements()) {
    text->Events().Change = nullptr;
    text->Events().KeyPress = nullptr;
  }
  for (const std::shared_ptr<SFCheck>& check : Chk_Value_.Elements()) {
    check->Events().Click = nullptr;
  }
}

void SheetEngine::WireUserCommand(CommandButton& button, int32_t index) {
  button.Events().Click = [this, index] { UserCommand_Click(index); };
}

// Only the entity sheets have the event; on the reduced controls every point that raises it
// raises nothing.
void SheetEngine::RaiseSheetStatusChange() {
  if (kind_ != SheetKind::kEntity) return;
  RaiseEvent([](SheetEvents& host) { host.SheetStatusChange(); });
}

// ---------------------------------------------------------------------------------------------
// Helpers

TextBox& SheetEngine::EditorBox(const SFText& editor) {
  return editor.Txt_Text(editor.ActiveBox());
}

bool SheetEngine::EditorIsActive(int32_t index) const {
  const Control* active = host_->ActiveControl();
  if (active == nullptr || !Txt_Value_.Exists(index)) return false;
  const UserControl& editor = Txt_Value_(index).Host();
  return active == &editor || toolkit_.IsChild(editor, *active);
}

// The platform's window rectangle in pixels, to twips. The axes are crossed on purpose: Bottom
// and Top scale by the horizontal unit, Left and Right by the vertical one.
SheetRect SheetEngine::RectFromWindow(const Control& window) const {
  const SheetRect pixels = toolkit_.WindowRect(window);
  const double tx = toolkit_.TwipsPerPixelX();
  const double ty = toolkit_.TwipsPerPixelY();
  SheetRect rect;
  rect.Bottom = ToLong(pixels.Bottom * tx);
  rect.Left = ToLong(pixels.Left * ty);
  rect.Right = ToLong(pixels.Right * ty);
  rect.Top = ToLong(pixels.Top * tx);
  return rect;
}

// ---------------------------------------------------------------------------------------------
// Saving

bool SheetEngine::Save_FieldValue(int32_t Index) {
  try {
    const int32_t i = Index == -1 ? CurrentTextIndex_ : Index;
    if (SheetRecordset_ == nullptr) {
      if (i >= 0) Txt_Value_(i).SetText("");
      return false;
    }
    if (i < 0) return false;
    SFText& editor = Txt_Value_(i);
    if (editor.Locked()) return false;
    const std::string name = editor.Host().Tag();
    if (editor.Text() == Display_Txt_Value(name, 0)) return false;
    DataSource& data_source = *SheetRecordset_;
    if (data_source.EditStatus() == dsQuery) {
      // A query condition goes over as it stands; no Text event in query mode.
      if (data_source.SetFieldValue(Variant(name), Variant(editor.Text()), 0)) {
        editor.SetText(Display_Txt_Value(name, 0));
        if (HasFocus_) EditorBox(editor).SetFocus();
        return true;
      }
      return false;
    }
    if (data_source.RecordCount() == 0) return false;
    bool cancel = false;
    int32_t user = 0;
    std::shared_ptr<SheetForm> frm;
    int32_t mode = 0;
    std::shared_ptr<SheetForm> parent_form;
    SheetRect rect = RectFromWindow(EditorBox(editor));
    const std::string old = Display_Txt_Value(name, 0);
    // The data source signals ValueChange inside this call, so the editors may already show the
    // stored value when it returns: the text is read anew from here on.
    if (data_source.SetFieldValue(Variant(name), Variant(editor.Text()), 0)) {
      editor.SetText(Display_Txt_Value(name, 0));
      if (HasFocus_) EditorBox(editor).SetFocus();
      return true;
    }
    if (editor.Text() == old) return false;
    if (IsBlank(editor.Text())) editor.SetText("");
    const std::string text_value = editor.Text();
    RaiseEvent([&](SheetEvents& host) {
      host.Text(name, text_value, rect, cancel, user, frm, mode, parent_form);
    });
    if (cancel) {
      editor.SetText(Display_Txt_Value(name, 0));
      return true;
    }
    if (user == 0) return false;
    // The host takes the field over: the record gets its previous value back, silently.
    editor.SetText(old);
    Variant value(editor.Text());
    data_source.ParseFieldValue(Variant(name), value, 0);
    data_source.Fields(Variant(name)).SetValue(value, 0);
    EditorBox(editor).SetFocus();
    if (frm) {
      if (parent_form) {
        frm->Show(mode, parent_form);
      } else {
        frm->Show(mode);
      }
    }
    return true;
  } catch (const Failure& failure) {
    Report("Save_FieldValue", failure);
    return true;
  }
}

bool SheetEngine::SaveField() { return Save_FieldValue(-1); }

bool SheetEngine::Save() {
  try {
    if (SheetRecordset_ == nullptr) return false;
    if (CurrentTextIndex_ >= 0 && Save_FieldValue(-1)) {
      // Currency gives the focus back to the field that failed.
      if (kind_ == SheetKind::kCurrency) EditorBox(Txt_Value_(CurrentTextIndex_)).SetFocus();
      return true;
    }
    return SheetRecordset_->UpdateRecord() != 0;
  } catch (const Failure& failure) {
    Report("Save", failure);
    return true;
  }
}

// ---------------------------------------------------------------------------------------------
// Value events

void SheetEngine::Txt_Value_GotFocus(int32_t Index) {
  SFText& editor = Txt_Value_(Index);
  if (kind_ != SheetKind::kEntity) {
    // No lock rule and no event on the reduced controls.
    CurrentTextIndex_ = Index;
    if (kind_ == SheetKind::kAppointment) TextEditState_ = 0;
    CurrentFieldName_ = editor.Host().Tag();
    return;
  }
  LockAtFocus(editor);
  CurrentTextIndex_ = Index;
  TextEditState_ = 0;
  CurrentFieldName_ = editor.Host().Tag();
  RaiseSheetStatusChange();
}

void SheetEngine::Txt_Value_Change(int32_t Index) {
  if (EditorIsActive(Index)) TextEditState_ = 1;
  RaiseSheetStatusChange();
}

void SheetEngine::Txt_Value_KeyPress(int32_t Index, int16_t& KeyAscii) {
  (void)Index;
  if (KeyAscii == kKeyEscape && SheetRecordset_ != nullptr &&
      SheetRecordset_->EditStatus() == dsQuery) {
    SheetRecordset_->CancelQuery();
  }
}

void SheetEngine::Txt_Value_Validate(int32_t Index, bool& Cancel) {
  if (Save_FieldValue(Index)) {
    CurrentTextIndex_ = Index;
    Cancel = true;
  } else {
    TextEditState_ = 0;
    RaiseSheetStatusChange();
  }
}

void SheetEngine::Txt_Value_LostFocus(int32_t Index) {
  if (Save_FieldValue(Index)) {
    CurrentTextIndex_ = Index;
  } else {
    TextEditState_ = 0;
    RaiseSheetStatusChange();
  }
}

void SheetEngine::Chk_Value_GotFocus(int32_t Index) {
  CurrentFieldName_ = Chk_Value_(Index).Host().Tag();
  CurrentCheckIndex_ = Index;
}

void SheetEngine::Chk_Value_LostFocus(int32_t Index) {
  (void)Index;
  CurrentCheckIndex_ = -1;
}

// Raised after the editor stepped its own value. The value goes to the data source at once; the
// display follows from the data source's ValueChange.
void SheetEngine::Chk_Value_Click(int32_t Index) {
  if (SheetRecordset_ == nullptr) return;
  DataSource& data_source = *SheetRecordset_;
  const std::string name = Chk_Value_(Index).Host().Tag();
  DataSourceField& field = data_source.Fields(Variant(name));
  if (data_source.EditStatus() == dsQuery) {
    // A query condition runs unset, yes, no, unset.
    const Variant value = field.Value(0);
    std::string next = "1";
    if (value.IsString() && value.AsText() == "1") {
      next = "0";
    } else if (value.IsString() && value.AsText() == "0") {
      next = "";
    }
    data_source.SetFieldValue(Variant(name), Variant(next), 0);
    return;
  }
  if (data_source.RecordCount() < 1) return;
  if (field.Updatable() && data_source.RowEditable(0)) {
    const Variant value = field.Value(0);
    const int16_t next = (!value.IsNull() && !value.EqualsZero()) ? 0 : 1;
    data_source.SetFieldValue(Variant(name), Variant(next), 0);
  }
}

void SheetEngine::Cmd_Value_Click(int32_t Index) {
  if (SheetRecordset_ == nullptr) return;
  DataSource& data_source = *SheetRecordset_;
  if (data_source.EditStatus() != dsQuery && data_source.RecordCount() == 0) return;
  CommandButton& button = Cmd_Value_(Index);
  SheetRect rect = RectFromWindow(button);
  CurrentFieldName_ = button.Tag();
  const std::string field_name = button.Tag();
  RaiseEvent([&](SheetEvents& host) { host.Button(field_name, rect); });
}

void SheetEngine::UserCommand_Click(int32_t Index) {
  if (Save_FieldValue(-1)) return;
  const std::string name = UserCommand_(Index).Tag();
  RaiseEvent([&name](SheetEvents& host) { host.UserCommand(name); });
}

// ---------------------------------------------------------------------------------------------
// Record buttons and the menu

// Saving happens when the button takes the focus, before the click: a refused value marks the
// button, and the mark stops the click until the focus leaves the button.
void SheetEngine::RecordButton_GotFocus(CommandButton& button) {
  button.SetTag(Save_FieldValue(-1) ? kSaveFailing : "");
}

void SheetEngine::RecordButton_Click(CommandButton& button, void (SheetEngine::*menu_click)()) {
  if (button.Tag().empty()) (this->*menu_click)();
}

void SheetEngine::RecordButton_LostFocus(CommandButton& button) { button.SetTag(""); }

// The menu entries end silently on any failure.
void SheetEngine::mnu_NewRecord_Click() {
  try {
    if (Save_FieldValue(-1)) return;
    if (form_.options.NewRecordEvent) {
      int32_t user = 0;
      RaiseEvent([&user](SheetEvents& host) { host.NewRecord(user); });
      if (user != 0) return;
    }
    Require(SheetRecordset_).NewRecord(0);
  } catch (const Failure&) {
  }
}

void SheetEngine::mnu_DeleteRecord_Click() {
  try {
    if (Save_FieldValue(-1)) return;
    Require(SheetRecordset_).DeleteRecord();
    // Hidden in Style 0: the focus step fails, and that is the end anyway.
    Cmd_Undo_->SetFocus();
  } catch (const Failure&) {
  }
}

void SheetEngine::mnu_CopyRecord_Click() {
  try {
    if (Save_FieldValue(-1)) return;
    Require(SheetRecordset_).CopyRecord();
  } catch (const Failure&) {
  }
}

// No save before it: the pending record is thrown away as it stands.
void SheetEngine::mnu_Undo_Click() {
  try {
    Require(SheetRecordset_).UndoRecord();
  } catch (const Failure&) {
  }
}

// ---------------------------------------------------------------------------------------------
// Command surface

bool SheetEngine::TxtEdit(TextEditMode EditMode) {
  SFText& editor = Txt_Value_(CurrentTextIndex_);
  // Only copying reads a locked editor.
  if (editor.Locked() && EditMode != teCopy) return false;
  TextBox& box = EditorBox(editor);
  switch (EditMode) {
    case teCopy:
      box.Copy();
      break;
    case teCut:
      box.Cut();
      break;
    case tePaste:
      box.Paste();
      break;
    case teUndo:
    case teRedo:
      // One message for both: a second undo undoes the first.
      box.Undo();
      break;
    case teDelete:
      // With nothing selected the character after the caret goes.
      if (box.SelLength() == 0) box.SetSelLength(1);
      box.Clear();
      break;
    default:
      break;
  }
  box.SetFocus();
  if (EditMode == teUndo) {
    TextEditState_ = 2;
  } else if (EditMode != teCopy) {
    TextEditState_ = 1;
  }
  RaiseSheetStatusChange();
  return false;
}

ControlStatus SheetEngine::GetControlStatus(const std::string& StatusString) {
  if (SheetRecordset_ == nullptr) return csNotSupported;
  try {
    DataSource& data_source = *SheetRecordset_;
    auto status = [](bool holds) { return holds ? csEnabled : csDisabled; };
    auto open = [&data_source] {
      const int32_t edit_status = data_source.EditStatus();
      return edit_status != dsClosed && edit_status != dsQuery && data_source.RecordCount() >= 1;
    };
    const std::string& s = StatusString;
    if (s == "New Query" || s == "Refine Query" || s == "Execute Query") return csEnabled;
    if (s == "Undo") return status(EditorIsActive(CurrentTextIndex_) && TextEditState_ == 1);
    if (s == "Redo") return status(EditorIsActive(CurrentTextIndex_) && TextEditState_ == 2);
    if (s == "Cut" || s == "Copy" || s == "Paste" || s == "Delete") {
      return status(EditorIsActive(CurrentTextIndex_));
    }
    if (kind_ == SheetKind::kAppointment && (s == "Add New Record" || s == "Delete Record" ||
                                             s == "Copy Record" || s == "Cancel Record")) {
      // Appointment carries them out but does not offer them.
      return csNotSupported;
    }
    if (s == "Add New Record") return status(mnu_NewRecord_->Enabled());
    if (s == "Delete Record") return status(mnu_DeleteRecord_->Enabled());
    if (s == "Copy Record") return status(mnu_CopyRecord_->Enabled());
    if (s == "Cancel Record") return status(mnu_Undo_->Enabled());
    if (s == "First Record" || s == "Last Record") return status(open());
    if (s == "Previous Record") return status(open() && data_source.AbsolutePosition() >= 2);
    if (s == "Next Record") {
      return status(open() && data_source.AbsolutePosition() < data_source.RecordCount());
    }
    if (s == "Focus") return status(HasFocus_);
    if (s == "Refresh") return status(data_source.EditStatus() != dsClosed);
    return csNotSupported;
  } catch (const Failure&) {
    return csNotSupported;
  }
}

bool SheetEngine::ControlCommand(const std::string& CommandString) {
  try {
    const std::string& s = CommandString;
    auto data_source = [this]() -> DataSource& { return Require(SheetRecordset_); };
    if (s == "New Query") return data_source().NewQuery();
    if (s == "Refine Query") return data_source().RefineQuery();
    if (s == "Execute Query") return data_source().ExecuteQuery();
    if (s == "Undo") return TxtEdit(teUndo);
    if (s == "Redo") return TxtEdit(teRedo);
    if (s == "Cut") return TxtEdit(teCut);
    if (s == "Copy") return TxtEdit(teCopy);
    if (s == "Paste") return TxtEdit(tePaste);
    if (s == "Delete") return TxtEdit(teDelete);
    if (kind_ == SheetKind::kAppointment && (s == "Add New Record" || s == "Delete Record" ||
                                             s == "Copy Record" || s == "Cancel Record")) {
      Appointment_RecordCommand(s);
      return false;
    }
    if (s == "Add New Record") {
      mnu_NewRecord_Click();
      return false;
    }
    if (s == "Delete Record") {
      mnu_DeleteRecord_Click();
      return false;
    }
    if (s == "Copy Record") {
      mnu_CopyRecord_Click();
      return false;
    }
    if (s == "Cancel Record") {
      mnu_Undo_Click();
      return false;
    }
    if (s == "First Record") return data_source().MoveFirst();
    if (s == "Previous Record") return data_source().MovePrevious();
    if (s == "Next Record") return data_source().MoveNext();
    if (s == "Last Record") return data_source().MoveLast();
    if (s == "Refresh") {
      if (!Save()) data_source().Refresh();
      return false;
    }
    // "Focus" is known to GetControlStatus only.
    toolkit_.MessageBox("", CommandString + "不支持此方法！", MessageBoxStyle::kPlain);
    return false;
  } catch (const Failure&) {
    return true;
  }
}

}  // namespace tarnsheets
