// SheetEngine: the engine behind every entity sheet. It builds the controls of a designed form,
// keeps the sheet's fields, and runs the sheet's procedures under their own names: the property
// surface, the lifecycle, the binding of titles to columns, the display of the current record and
// the layout.
//
// Internal to the library; hosts use tarnsheets::Sheet. Tests reach the controls and procedures
// directly through Sheet::EngineForTest().
#ifndef TARNSHEETS_SHEET_SHEET_ENGINE_H_
#define TARNSHEETS_SHEET_SHEET_ENGINE_H_

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "editors/sf_check.h"
#include "editors/sf_text.h"
#include "platform/control_array.h"
#include "sheet/form_types.h"
#include "tarnsheets/data_source.h"
#include "tarnsheets/property_bag.h"
#include "tarnsheets/sheet.h"
#include "tarnsheets/titles.h"
#include "tarnsheets/toolkit.h"
#include "tarnsheets/user_commands.h"

namespace tarnsheets {

// Places a control at its designed rectangle.
inline void MoveTo(Control& control, const DesignRect& rect) {
  control.Move(rect.Left, rect.Top, rect.Width, rect.Height);
}

// Which public control an engine is. The entity sheets are the engine in full; `Appointment` is
// the same engine with the caption strip, the record buttons, the menu, the host commands, the
// status engine and the layout taken out; `Currency` keeps only a list of rows that it builds from
// its titles, with the model's saving and display of values.
enum class SheetKind { kEntity, kAppointment, kCurrency };

class SheetEngine : private DataSourceEvents {
 public:
  // Builds the controls of `form` in a new user control of class `form.class_name` inside
  // `parent`, at the designed size, then runs UserControl_Initialize. The caller follows with
  // UserControl_InitProperties or UserControl_ReadProperties.
  SheetEngine(Toolkit& toolkit, Container& parent, const FormTable& form, const std::string& name,
              GlyphPictures glyph_pictures = nullptr);
  // The reduced controls: `Appointment` from its form with three frames, `Currency` from its three
  // hidden patterns.
  SheetEngine(Toolkit& toolkit, Container& parent, const AppointmentFormTable& form,
              const std::string& name, GlyphPictures glyph_pictures = nullptr);
  SheetEngine(Toolkit& toolkit, Container& parent, const CurrencyFormTable& form,
              const std::string& name, GlyphPictures glyph_pictures = nullptr);
  ~SheetEngine() override;
  SheetEngine(const SheetEngine&) = delete;
  SheetEngine& operator=(const SheetEngine&) = delete;

  Toolkit& toolkit() const { return toolkit_; }
  const FormTable& form() const { return form_; }
  SheetKind kind() const { return kind_; }
  UserControl& Host() const { return *host_; }

  void AddObserver(SheetEvents* observer);
  void RemoveObserver(SheetEvents* observer);

  // --- Lifecycle.
  void UserControl_Initialize();
  void UserControl_InitProperties();
  void UserControl_ReadProperties(const PropertyBag& bag);
  void UserControl_WriteProperties(PropertyBag& bag) const;

  // --- The public interface.
  int32_t UserCommandsWidth() const;
  void SetUserCommandsWidth(int32_t width);
  ClsSheetsUserCommands& SheetUserCommands();
  ClsSheetsTitles& SheetTitles();
  int32_t hwnd() const { return hwnd_; }
  int32_t Style() const { return Style_; }
  void SetStyle(int32_t style);
  bool EditModify() const { return EditModify_; }
  void SetEditModify(bool v);
  bool EditAddNew() const { return EditAddNew_; }
  void SetEditAddNew(bool v);
  bool EditCopy() const { return EditCopy_; }
  void SetEditCopy(bool v);
  bool EditDelete() const { return EditDelete_; }
  void SetEditDelete(bool v);
  std::string FontName() const;
  void SetFontName(const std::string& name);
  float FontSize() const;
  void SetFontSize(float size);
  Font CaptionFont() const;
  void SetCaptionFont(const Font& font);
  std::string Caption() const;
  void SetCaption(const std::string& caption);
  DataSource* SheetRecordset() const { return SheetRecordset_; }
  void SetSheetRecordset(DataSource* data_source);
  Color Color_Caption() const { return Color_Caption_; }
  void SetColor_Active(Color color);
  Color Color_Active() const { return Color_Active_; }
  void SetColor_Caption(Color color);
  Color Color_Title_Text() const { return Color_Title_Text_; }
  void SetColor_Title_Text(Color color);
  Color Color_Background() const { return Color_Background_; }
  void SetColor_Background(Color color);
  void InitDisplay();
  // Currency's InitDisplay: unloads the rows and builds them again from the titles. True when an
  // error was reported.
  bool Currency_InitDisplay();
  bool SysSetDefaultTitles();
  bool Save();
  bool SaveField();
  bool TxtEdit(TextEditMode EditMode);
  ControlStatus GetControlStatus(const std::string& StatusString);
  bool ControlCommand(const std::string& CommandString);

  // --- Private procedures, reachable for the library's tests.
  void Apply_Colors(const std::string& property_name);
  void Display_field();
  void Action(int32_t& Mode);
  void Display_Value();
  void Display_Txt_Field(const std::string& FieldName, int32_t Index);
  void Display_Chk_Value(const std::string& FieldName, int32_t Index);
  std::string Display_Txt_Value(const std::string& FieldName, int32_t Flag);
  // Whether the field may be changed now (the editable rule).
  bool FieldEditable(DataSourceField& field);
  void Layout_Capture(int32_t& DesignWidth, int32_t& DesignHeight,
                      std::vector<std::string>& DesignLayout);
  // The short form places the caption strip only; the full form also the record buttons.
  void Layout_Caption(bool full_form = true);
  void Layout_Scale(int32_t DesignWidth, int32_t DesignHeight,
                    const std::vector<std::string>& DesignLayout);
  void UserControl_Resize();
  void UserCommand_Place();

  // Handlers of the data-source signals.
  void DataSource_SysDataSourceInit();
  void DataSource_SysDataSourceRefresh();
  void DataSource_SysDeleteRecordAfter();
  void DataSource_SysMoveRecordAfter();
  void DataSource_SysCancelQueryAfter();
  void DataSource_SysNewQueryAfter();
  void DataSource_SysRefineQueryAfter();
  void DataSource_SysNewRecordAfter();
  void DataSource_SysCopyRecordAfter();
  void DataSource_SysUndoRecordAfter();
  void DataSource_SysUpdateRecordAfter();
  void DataSource_ValueQueryChange();
  void DataSource_ValueChange(int32_t field_number);
  void DataSource_SymbolChange(int32_t field_number);
  // The edit status engine: sets what the record commands and the user commands offer.
  void DataSource_EditStatusChange();
  void DataSource_ChangeSelectRows();
  // The Before handlers save first; Cancel stops the data source's step.
  void DataSource_MoveRecordBefore(bool& Cancel);
  void DataSource_NewQueryBefore(bool& Cancel);
  void DataSource_RefineQueryBefore(bool& Cancel);
  void DataSource_ExecuteQueryBefore(bool& Cancel);
  void DataSource_CancelQueryBefore(bool& Cancel);
  int32_t EditStatusChangeRunsForTest() const { return edit_status_change_runs_; }

  // Saving: the road of a typed text to the data source. True: failed or stopped.
  bool Save_FieldValue(int32_t Index);

  // The focus ring and the pointer.
  void Pic_TableDown_GotFocus();
  void Pic_TableUp_GotFocus();
  void UserControl_EnterFocus();
  void UserControl_ExitFocus();
  void Lbl_Title_MouseDown(int32_t Index, int16_t Button, int16_t Shift, float X, float Y);
  void Lbl_Caption_MouseDown(int16_t Button, int16_t Shift, float X, float Y);
  void UserControl_MouseDown(int16_t Button, int16_t Shift, float X, float Y);
  void Show_PopupMenu();

  // The value events of the field controls.
  void Txt_Value_GotFocus(int32_t Index);
  void Txt_Value_Change(int32_t Index);
  void Txt_Value_KeyPress(int32_t Index, int16_t& KeyAscii);
  void Txt_Value_Validate(int32_t Index, bool& Cancel);
  void Txt_Value_LostFocus(int32_t Index);
  void Chk_Value_GotFocus(int32_t Index);
  void Chk_Value_Click(int32_t Index);
  void Chk_Value_LostFocus(int32_t Index);
  void Cmd_Value_Click(int32_t Index);
  void UserCommand_Click(int32_t Index);

  // The record buttons (each of the four runs these with its own menu entry) and the menu.
  void RecordButton_GotFocus(CommandButton& button);
  void RecordButton_Click(CommandButton& button, void (SheetEngine::*menu_click)());
  void RecordButton_LostFocus(CommandButton& button);
  void mnu_NewRecord_Click();
  void mnu_DeleteRecord_Click();
  void mnu_CopyRecord_Click();
  void mnu_Undo_Click();

  // --- Controls, for the library's tests.
  const ControlArray<Label>& Lbl_Title() const { return Lbl_Title_; }
  const ControlArray<SFText>& Txt_Value() const { return Txt_Value_; }
  const ControlArray<SFCheck>& Chk_Value() const { return Chk_Value_; }
  const ControlArray<CommandButton>& Cmd_Value() const { return Cmd_Value_; }
  const ControlArray<CommandButton>& UserCommand() const { return UserCommand_; }
  // Appointment's frames and images; empty on the other kinds.
  const std::vector<std::shared_ptr<Frame>>& Frames() const { return frames_; }
  const ControlArray<Image>& Image1() const { return Image1_; }
  CommandButton& Cmd_NewRecord() const { return *Cmd_NewRecord_; }
  CommandButton& Cmd_DeleteRecord() const { return *Cmd_DeleteRecord_; }
  CommandButton& Cmd_CopyRecord() const { return *Cmd_CopyRecord_; }
  CommandButton& Cmd_Undo() const { return *Cmd_Undo_; }
  Label& Lbl_Caption() const { return *Lbl_Caption_; }
  Label& Lbl_CaptionSpace() const { return *Lbl_CaptionSpace_; }
  Shape& Shp_Caption() const { return *Shp_Caption_; }
  PictureBox& Pic_TableStart() const { return *Pic_TableStart_; }
  PictureBox& Pic_TableUp() const { return *Pic_TableUp_; }
  PictureBox& Pic_TableDown() const { return *Pic_TableDown_; }
  Menu& mnu_Menu() const { return *mnu_Menu_; }
  Menu& mnu_NewRecord() const { return *mnu_NewRecord_; }
  Menu& mnu_DeleteRecord() const { return *mnu_DeleteRecord_; }
  Menu& mnu_CopyRecord() const { return *mnu_CopyRecord_; }
  Menu& mnu_Undo() const { return *mnu_Undo_; }

  // --- Fields, for the library's tests.
  int32_t DesignWidth() const { return DesignWidth_; }
  int32_t DesignHeight() const { return DesignHeight_; }
  const std::vector<std::string>& DesignLayout() const { return DesignLayout_; }
  DataSource* DataSourceForTest() const { return DataSource_; }
  bool HasFocus() const { return HasFocus_; }
  void SetHasFocusForTest(bool v) { HasFocus_ = v; }
  int32_t TextEditState() const { return TextEditState_; }
  int32_t CurrentTextIndex() const { return CurrentTextIndex_; }
  int32_t CurrentCheckIndex() const { return CurrentCheckIndex_; }
  const std::string& CurrentFieldName() const { return CurrentFieldName_; }

  void RaiseSheetStatusChange();

 private:
  // The focus goes back to the field last entered, or round the ring to the first one.
  void FocusCurrentField();
  // Connects the handlers above to the controls' events.
  void WireEvents();
  void UnwireEvents();
  void WireUserCommand(CommandButton& button, int32_t index);
  // The screen rectangle of a control in twips, with the axes crossed as the host expects.
  SheetRect RectFromWindow(const Control& window) const;
  // The box of a text editor that takes the focus and carries the edit operations.
  static TextBox& EditorBox(const SFText& editor);
  // Txt_Value(index) holds the focus inside the sheet.
  bool EditorIsActive(int32_t index) const;
  // The lock rule applied when a text editor takes the focus.
  void LockAtFocus(SFText& editor);
  // Sets a menu entry and its button together.
  static void SetPair(Menu& menu, CommandButton& button, bool enabled);
  void SetUserCommandsEnabled(bool enabled);
  // Raising the host events to every observer in turn.
  template <typename Fn>
  void RaiseEvent(Fn&& fn);

  // Building from the form table.
  void Construct(Container& parent, const std::string& name, const GlyphPictures& glyph_pictures);
  void BuildControls(const GlyphPictures& glyph_pictures);
  void BuildAppointment(const GlyphPictures& glyph_pictures);
  void BuildSentinels(const FixedControl& start, const FixedControl& up, const FixedControl& down);
  void BuildCurrency(const GlyphPictures& glyph_pictures);
  void BuildRow(const FieldRow& row, Container& parent, const GlyphPictures& glyph_pictures);
  void Appointment_Initialize();
  void ReducedReadProperties(const PropertyBag& bag);
  void ReducedWriteProperties(PropertyBag& bag) const;
  void WireTextEditor(int32_t index);
  void WireDropButton(int32_t index);
  // The status engine runs after the signals only on the entity sheets.
  void RunStatusEngine();
  // The editable rules of the reduced controls.
  bool AppointmentFieldEditable(DataSourceField& field);
  bool CurrencyFieldEditable(DataSourceField& field);
  // Appointment's record commands, reached only through ControlCommand.
  void Appointment_RecordCommand(const std::string& command);
  void NumberUndesignedTabIndices();

  // Shows the record buttons for Style 0 and 1; any other value leaves the form as it is.
  void ApplyStyleVisibility();
  void SetPermission(bool& field, bool v, const char* key, Menu& menu, CommandButton& button);
  // Disables mnu_Undo and Cmd_Undo when the host permits nothing at all.
  void UndoRule();
  // Sets a font property on every control but Lbl_Caption, passing over the controls without a
  // font.
  void SetFontOnAllControls(const std::function<void(Font&)>& change);
  void Notify(const std::string& key) { host_->NotifyPropertyChanged(key); }
  void Report(const char* title, const Failure& failure);

  // The editors of each column, and the signal tests.
  bool ColumnShown(int32_t field_number);
  int32_t EditStatusNow() const;

  // DataSourceEvents. Currency follows the data source only in its values; Appointment has no
  // status engine.
  bool Hears() const { return kind_ != SheetKind::kCurrency; }
  void SysDataSourceInit() override {
    if (Hears()) DataSource_SysDataSourceInit();
  }
  void SysDataSourceRefresh() override {
    if (Hears()) DataSource_SysDataSourceRefresh();
  }
  void EditStatusChange() override {
    if (kind_ == SheetKind::kEntity) DataSource_EditStatusChange();
  }
  void SysMoveRecordAfter() override {
    if (Hears()) DataSource_SysMoveRecordAfter();
  }
  void SysNewQueryAfter() override {
    if (Hears()) DataSource_SysNewQueryAfter();
  }
  void SysRefineQueryAfter() override {
    if (Hears()) DataSource_SysRefineQueryAfter();
  }
  void SysCancelQueryAfter() override {
    if (Hears()) DataSource_SysCancelQueryAfter();
  }
  void SysNewRecordAfter() override {
    if (Hears()) DataSource_SysNewRecordAfter();
  }
  void SysCopyRecordAfter() override {
    if (Hears()) DataSource_SysCopyRecordAfter();
  }
  void SysDeleteRecordAfter() override {
    if (Hears()) DataSource_SysDeleteRecordAfter();
  }
  void SysUndoRecordAfter() override {
    if (Hears()) DataSource_SysUndoRecordAfter();
  }
  void SysUpdateRecordAfter() override {
    if (Hears()) DataSource_SysUpdateRecordAfter();
  }
  void ValueChange(const Variant& unused, int32_t field_number) override;
  void SymbolChange(const Variant& unused, int32_t field_number) override;
  void ValueQueryChange(const std::string& text) override;
  void ChangeSelectRows() override {
    if (kind_ == SheetKind::kEntity) DataSource_ChangeSelectRows();
  }
  void MoveRecordBefore(bool& cancel) override {
    if (Hears()) DataSource_MoveRecordBefore(cancel);
  }
  void NewQueryBefore(bool& cancel) override {
    if (Hears()) DataSource_NewQueryBefore(cancel);
  }
  void RefineQueryBefore(bool& cancel) override {
    if (Hears()) DataSource_RefineQueryBefore(cancel);
  }
  void ExecuteQueryBefore(bool& cancel) override {
    if (Hears()) DataSource_ExecuteQueryBefore(cancel);
  }
  void CancelQueryBefore(bool& cancel) override {
    if (Hears()) DataSource_CancelQueryBefore(cancel);
  }

  Toolkit& toolkit_;
  SheetKind kind_ = SheetKind::kEntity;
  // The form of a reduced control in the entity form's terms; form_ refers to it.
  std::unique_ptr<const FormTable> own_form_;
  const AppointmentFormTable* appointment_form_ = nullptr;
  const CurrencyFormTable* currency_form_ = nullptr;
  const FormTable& form_;
  std::shared_ptr<UserControl> host_;

  // Controls of the form; built once, arrays only grow.
  ControlArray<Label> Lbl_Title_;
  ControlArray<SFText> Txt_Value_;
  ControlArray<SFCheck> Chk_Value_;
  ControlArray<CommandButton> Cmd_Value_;
  ControlArray<CommandButton> UserCommand_;
  std::shared_ptr<CommandButton> Cmd_NewRecord_, Cmd_DeleteRecord_, Cmd_CopyRecord_, Cmd_Undo_;
  std::shared_ptr<Label> Lbl_Caption_, Lbl_CaptionSpace_;
  std::shared_ptr<Shape> Shp_Caption_;
  std::shared_ptr<PictureBox> Pic_TableStart_, Pic_TableUp_, Pic_TableDown_;
  std::shared_ptr<Menu> mnu_Menu_, mnu_NewRecord_, mnu_DeleteRecord_, mnu_CopyRecord_, mnu_Undo_;
  std::vector<std::shared_ptr<Frame>> frames_;
  ControlArray<Image> Image1_;

  // The sheet's fields; changed by the setters, the lifecycle and the handlers.
  Color Color_Title_Text_ = 0;
  Color Color_Caption_ = 0;
  Color Color_Background_ = 0;
  Color Color_Active_ = 0;
  DataSource* SheetRecordset_ = nullptr;
  // The event-connected reference: set only by SetSheetRecordset.
  DataSource* DataSource_ = nullptr;
  std::unique_ptr<ClsSheetsUserCommands> SheetUserCommands_;
  std::unique_ptr<ClsSheetsTitles> SheetTitles_;
  std::vector<std::string> DesignLayout_;  // entry k of the designed list at position k - 1
  int32_t DesignWidth_ = 0;
  int32_t DesignHeight_ = 0;
  bool HasFocus_ = false;
  bool EditModify_ = false;
  bool EditAddNew_ = false;
  bool EditCopy_ = false;
  bool EditDelete_ = false;
  int32_t Style_ = 0;
  int32_t hwnd_ = 0;  // nothing assigns it
  int32_t TextEditState_ = 0;
  int32_t CurrentTextIndex_ = 0;
  int32_t CurrentCheckIndex_ = 0;
  std::string CurrentFieldName_;

  std::vector<SheetEvents*> observers_;
  int32_t edit_status_change_runs_ = 0;
};

template <typename Fn>
void SheetEngine::RaiseEvent(Fn&& fn) {
  // A handler may add or remove observers: walk a snapshot and skip the removed ones.
  const std::vector<SheetEvents*> snapshot = observers_;
  for (SheetEvents* observer : snapshot) {
    if (std::find(observers_.begin(), observers_.end(), observer) == observers_.end()) continue;
    fn(*observer);
  }
}

}  // namespace tarnsheets

#endif  // TARNSHEETS_SHEET_SHEET_ENGINE_H_
