// The host-facing reduced controls: every member goes to the engine.
#include <utility>

#include "sheet/sheet_engine.h"
#include "tarnsheets/appointment_sheet.h"
#include "tarnsheets/currency_sheet.h"

namespace tarnsheets {

// --- AppointmentSheet

AppointmentSheet::AppointmentSheet(std::unique_ptr<SheetEngine> engine)
    : engine_(std::move(engine)) {}
AppointmentSheet::~AppointmentSheet() = default;

std::unique_ptr<AppointmentSheet> AppointmentSheet::Create(Toolkit& toolkit, Container& parent,
                                                           const AppointmentFormTable& form,
                                                           const std::string& name,
                                                           GlyphPictures glyphs) {
  auto engine = std::make_unique<SheetEngine>(toolkit, parent, form, name, std::move(glyphs));
  engine->UserControl_InitProperties();
  return std::unique_ptr<AppointmentSheet>(new AppointmentSheet(std::move(engine)));
}

std::unique_ptr<AppointmentSheet> AppointmentSheet::Load(Toolkit& toolkit, Container& parent,
                                                         const AppointmentFormTable& form,
                                                         const std::string& name,
                                                         const PropertyBag& bag,
                                                         GlyphPictures glyphs) {
  auto engine = std::make_unique<SheetEngine>(toolkit, parent, form, name, std::move(glyphs));
  engine->UserControl_ReadProperties(bag);
  return std::unique_ptr<AppointmentSheet>(new AppointmentSheet(std::move(engine)));
}

std::string AppointmentSheet::ClassName() const { return std::string(engine_->form().class_name); }
UserControl& AppointmentSheet::Host() const { return engine_->Host(); }
void AppointmentSheet::WriteProperties(PropertyBag& bag) const {
  engine_->UserControl_WriteProperties(bag);
}
void AppointmentSheet::AddObserver(SheetEvents* observer) { engine_->AddObserver(observer); }
void AppointmentSheet::RemoveObserver(SheetEvents* observer) { engine_->RemoveObserver(observer); }
ClsSheetsTitles& AppointmentSheet::SheetTitles() { return engine_->SheetTitles(); }
int32_t AppointmentSheet::hwnd() const { return engine_->hwnd(); }
bool AppointmentSheet::EditModify() const { return engine_->EditModify(); }
void AppointmentSheet::SetEditModify(bool v) { engine_->SetEditModify(v); }
std::string AppointmentSheet::FontName() const { return engine_->FontName(); }
void AppointmentSheet::SetFontName(const std::string& name) { engine_->SetFontName(name); }
float AppointmentSheet::FontSize() const { return engine_->FontSize(); }
void AppointmentSheet::SetFontSize(float size) { engine_->SetFontSize(size); }
DataSource* AppointmentSheet::SheetRecordset() const { return engine_->SheetRecordset(); }
void AppointmentSheet::SetSheetRecordset(DataSource* data_source) {
  engine_->SetSheetRecordset(data_source);
}
Color AppointmentSheet::Color_Caption() const { return engine_->Color_Caption(); }
void AppointmentSheet::SetColor_Active(Color color) { engine_->SetColor_Active(color); }
Color AppointmentSheet::Color_Active() const { return engine_->Color_Active(); }
void AppointmentSheet::SetColor_Caption(Color color) { engine_->SetColor_Caption(color); }
Color AppointmentSheet::Color_Title_Text() const { return engine_->Color_Title_Text(); }
void AppointmentSheet::SetColor_Title_Text(Color color) { engine_->SetColor_Title_Text(color); }
Color AppointmentSheet::Color_Background() const { return engine_->Color_Background(); }
void AppointmentSheet::SetColor_Background(Color color) { engine_->SetColor_Background(color); }
bool AppointmentSheet::InitDisplay() {
  engine_->InitDisplay();
  return false;
}
bool AppointmentSheet::SysSetDefaultTitles() { return engine_->SysSetDefaultTitles(); }
bool AppointmentSheet::Save() { return engine_->Save(); }
bool AppointmentSheet::SaveField() { return engine_->SaveField(); }
bool AppointmentSheet::TxtEdit(TextEditMode EditMode) { return engine_->TxtEdit(EditMode); }
ControlStatus AppointmentSheet::GetControlStatus(const std::string& StatusString) {
  return engine_->GetControlStatus(StatusString);
}
bool AppointmentSheet::ControlCommand(const std::string& CommandString) {
  return engine_->ControlCommand(CommandString);
}

// --- CurrencySheet

CurrencySheet::CurrencySheet(std::unique_ptr<SheetEngine> engine) : engine_(std::move(engine)) {}
CurrencySheet::~CurrencySheet() = default;

std::unique_ptr<CurrencySheet> CurrencySheet::Create(Toolkit& toolkit, Container& parent,
                                                     const CurrencyFormTable& form,
                                                     const std::string& name,
                                                     GlyphPictures glyphs) {
  auto engine = std::make_unique<SheetEngine>(toolkit, parent, form, name, std::move(glyphs));
  engine->UserControl_InitProperties();
  return std::unique_ptr<CurrencySheet>(new CurrencySheet(std::move(engine)));
}

std::unique_ptr<CurrencySheet> CurrencySheet::Load(Toolkit& toolkit, Container& parent,
                                                   const CurrencyFormTable& form,
                                                   const std::string& name, const PropertyBag& bag,
                                                   GlyphPictures glyphs) {
  auto engine = std::make_unique<SheetEngine>(toolkit, parent, form, name, std::move(glyphs));
  engine->UserControl_ReadProperties(bag);
  return std::unique_ptr<CurrencySheet>(new CurrencySheet(std::move(engine)));
}

std::string CurrencySheet::ClassName() const { return std::string(engine_->form().class_name); }
UserControl& CurrencySheet::Host() const { return engine_->Host(); }
void CurrencySheet::WriteProperties(PropertyBag& bag) const {
  engine_->UserControl_WriteProperties(bag);
}
void CurrencySheet::AddObserver(SheetEvents* observer) { engine_->AddObserver(observer); }
void CurrencySheet::RemoveObserver(SheetEvents* observer) { engine_->RemoveObserver(observer); }
bool CurrencySheet::EditModify() const { return engine_->EditModify(); }
void CurrencySheet::SetEditModify(bool v) { engine_->SetEditModify(v); }
ClsSheetsTitles& CurrencySheet::SheetTitles() { return engine_->SheetTitles(); }
DataSource* CurrencySheet::SheetRecordset() const { return engine_->SheetRecordset(); }
void CurrencySheet::SetSheetRecordset(DataSource* data_source) {
  engine_->SetSheetRecordset(data_source);
}
std::string CurrencySheet::FontName() const { return engine_->FontName(); }
void CurrencySheet::SetFontName(const std::string& name) { engine_->SetFontName(name); }
float CurrencySheet::FontSize() const { return engine_->FontSize(); }
void CurrencySheet::SetFontSize(float size) { engine_->SetFontSize(size); }
Color CurrencySheet::Color_Title_Text() const { return engine_->Color_Title_Text(); }
void CurrencySheet::SetColor_Title_Text(Color color) { engine_->SetColor_Title_Text(color); }
Color CurrencySheet::Color_Background() const { return engine_->Color_Background(); }
void CurrencySheet::SetColor_Background(Color color) { engine_->SetColor_Background(color); }
bool CurrencySheet::InitDisplay() { return engine_->Currency_InitDisplay(); }
bool CurrencySheet::SysSetDefaultTitles() { return engine_->SysSetDefaultTitles(); }
bool CurrencySheet::Save() { return engine_->Save(); }
bool CurrencySheet::SaveField() { return engine_->SaveField(); }

}  // namespace tarnsheets
