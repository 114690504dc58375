// The host-facing sheet: every member goes to the engine.
#include "tarnsheets/sheet.h"

#include <utility>

#include "sheet/sheet_engine.h"

namespace tarnsheets {

Sheet::Sheet(std::unique_ptr<SheetEngine> engine) : engine_(std::move(engine)) {}

Sheet::~Sheet() = default;

std::unique_ptr<Sheet> Sheet::Create(Toolkit& toolkit, Container& parent, const FormTable& form,
                                     const std::string& name, GlyphPictures glyphs) {
  auto engine = std::make_unique<SheetEngine>(toolkit, parent, form, name, std::move(glyphs));
  engine->UserControl_InitProperties();
  return std::unique_ptr<Sheet>(new Sheet(std::move(engine)));
}

std::unique_ptr<Sheet> Sheet::Load(Toolkit& toolkit, Container& parent, const FormTable& form,
                                   const std::string& name, const PropertyBag& bag,
                                   GlyphPictures glyphs) {
  auto engine = std::make_unique<SheetEngine>(toolkit, parent, form, name, std::move(glyphs));
  engine->UserControl_ReadProperties(bag);
  return std::unique_ptr<Sheet>(new Sheet(std::move(engine)));
}

std::string Sheet::ClassName() const { return std::string(engine_->form().class_name); }
UserControl& Sheet::Host() const { return engine_->Host(); }
void Sheet::AddObserver(SheetEvents* observer) { engine_->AddObserver(observer); }
void Sheet::RemoveObserver(SheetEvents* observer) { engine_->RemoveObserver(observer); }
void Sheet::WriteProperties(PropertyBag& bag) const { engine_->UserControl_WriteProperties(bag); }

int32_t Sheet::UserCommandsWidth() const { return engine_->UserCommandsWidth(); }
void Sheet::SetUserCommandsWidth(int32_t width) { engine_->SetUserCommandsWidth(width); }
ClsSheetsUserCommands& Sheet::SheetUserCommands() { return engine_->SheetUserCommands(); }
ClsSheetsTitles& Sheet::SheetTitles() { return engine_->SheetTitles(); }
int32_t Sheet::hwnd() const { return engine_->hwnd(); }
int32_t Sheet::Style() const { return engine_->Style(); }
void Sheet::SetStyle(int32_t style) { engine_->SetStyle(style); }
bool Sheet::EditModify() const { return engine_->EditModify(); }
void Sheet::SetEditModify(bool v) { engine_->SetEditModify(v); }
bool Sheet::EditAddNew() const { return engine_->EditAddNew(); }
void Sheet::SetEditAddNew(bool v) { engine_->SetEditAddNew(v); }
bool Sheet::EditCopy() const { return engine_->EditCopy(); }
void Sheet::SetEditCopy(bool v) { engine_->SetEditCopy(v); }
bool Sheet::EditDelete() const { return engine_->EditDelete(); }
void Sheet::SetEditDelete(bool v) { engine_->SetEditDelete(v); }
std::string Sheet::FontName() const { return engine_->FontName(); }
void Sheet::SetFontName(const std::string& name) { engine_->SetFontName(name); }
float Sheet::FontSize() const { return engine_->FontSize(); }
void Sheet::SetFontSize(float size) { engine_->SetFontSize(size); }
Font Sheet::CaptionFont() const { return engine_->CaptionFont(); }
void Sheet::SetCaptionFont(const Font& font) { engine_->SetCaptionFont(font); }
std::string Sheet::Caption() const { return engine_->Caption(); }
void Sheet::SetCaption(const std::string& caption) { engine_->SetCaption(caption); }
DataSource* Sheet::SheetRecordset() const { return engine_->SheetRecordset(); }
void Sheet::SetSheetRecordset(DataSource* data_source) { engine_->SetSheetRecordset(data_source); }
Color Sheet::Color_Caption() const { return engine_->Color_Caption(); }
void Sheet::SetColor_Active(Color color) { engine_->SetColor_Active(color); }
Color Sheet::Color_Active() const { return engine_->Color_Active(); }
void Sheet::SetColor_Caption(Color color) { engine_->SetColor_Caption(color); }
Color Sheet::Color_Title_Text() const { return engine_->Color_Title_Text(); }
void Sheet::SetColor_Title_Text(Color color) { engine_->SetColor_Title_Text(color); }
Color Sheet::Color_Background() const { return engine_->Color_Background(); }
void Sheet::SetColor_Background(Color color) { engine_->SetColor_Background(color); }
void Sheet::InitDisplay() { engine_->InitDisplay(); }
bool Sheet::SysSetDefaultTitles() { return engine_->SysSetDefaultTitles(); }
bool Sheet::Save() { return engine_->Save(); }
bool Sheet::SaveField() { return engine_->SaveField(); }
bool Sheet::TxtEdit(TextEditMode EditMode) { return engine_->TxtEdit(EditMode); }
ControlStatus Sheet::GetControlStatus(const std::string& StatusString) {
  return engine_->GetControlStatus(StatusString);
}
bool Sheet::ControlCommand(const std::string& CommandString) {
  return engine_->ControlCommand(CommandString);
}

namespace {

class ToolkitSheetForm : public SheetForm {
 public:
  ToolkitSheetForm(Toolkit& toolkit, std::shared_ptr<Form> form)
      : toolkit_(toolkit), form_(std::move(form)) {}
  void Show(int32_t& Mode) override {
    if (Mode == 1) {
      toolkit_.ShowModal(*form_);
    } else {
      form_->Show();
    }
  }
  void Show(int32_t& Mode, std::shared_ptr<SheetForm>& ParentForm) override {
    (void)ParentForm;
    Show(Mode);
  }
  Form* ToolkitForm() override { return form_.get(); }

 private:
  Toolkit& toolkit_;
  std::shared_ptr<Form> form_;
};

}  // namespace

std::shared_ptr<SheetForm> MakeSheetForm(Toolkit& toolkit, std::shared_ptr<Form> form) {
  return std::make_shared<ToolkitSheetForm>(toolkit, std::move(form));
}

}  // namespace tarnsheets
