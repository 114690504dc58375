// AppointmentSheet: one activity or appointment of a data source, in three frames "What", "When"
// and "Who". The entity sheets' engine without caption strip, record buttons, pop-up menu, host
// commands and resizing: the form keeps its designed geometry whatever size the host gives it.
//
// Its events are Text, Button, ExitFocus and EnterFocus of SheetEvents (sheet.h); the others are
// never raised. The conventions of sheet.h hold.
#ifndef TARNSHEETS_APPOINTMENT_SHEET_H_
#define TARNSHEETS_APPOINTMENT_SHEET_H_

#include <cstdint>
#include <memory>
#include <string>

#include "tarnsheets/sheet.h"

namespace tarnsheets {

struct AppointmentFormTable;

class AppointmentSheet : public SheetControl {
 public:
  static std::unique_ptr<AppointmentSheet> Create(Toolkit& toolkit, Container& parent,
                                                  const AppointmentFormTable& form,
                                                  const std::string& name,
                                                  GlyphPictures glyphs = nullptr);
  static std::unique_ptr<AppointmentSheet> Load(Toolkit& toolkit, Container& parent,
                                                const AppointmentFormTable& form,
                                                const std::string& name, const PropertyBag& bag,
                                                GlyphPictures glyphs = nullptr);
  ~AppointmentSheet() override;
  AppointmentSheet(const AppointmentSheet&) = delete;
  AppointmentSheet& operator=(const AppointmentSheet&) = delete;

  // SheetControl.
  std::string ClassName() const override;
  UserControl& Host() const override;
  void WriteProperties(PropertyBag& bag) const override;

  void AddObserver(SheetEvents* observer);
  void RemoveObserver(SheetEvents* observer);

  // --- The public interface, in its order.
  ClsSheetsTitles& SheetTitles();
  int32_t hwnd() const;
  bool EditModify() const;
  void SetEditModify(bool v);
  std::string FontName() const;
  void SetFontName(const std::string& name);
  float FontSize() const;
  void SetFontSize(float size);
  // No permission goes to the data source from here.
  DataSource* SheetRecordset() const;
  void SetSheetRecordset(DataSource* data_source);
  Color Color_Caption() const;
  void SetColor_Active(Color color);
  Color Color_Active() const;
  // Stored and reported; nothing on the form shows it.
  void SetColor_Caption(Color color);
  Color Color_Title_Text() const;
  void SetColor_Title_Text(Color color);
  Color Color_Background() const;
  void SetColor_Background(Color color);
  // Binds the titles and shows the record; always false.
  bool InitDisplay();
  bool SysSetDefaultTitles();
  bool Save();
  bool SaveField();
  bool TxtEdit(TextEditMode EditMode);
  // The four record commands are not offered here (2), though ControlCommand carries them out.
  ControlStatus GetControlStatus(const std::string& StatusString);
  bool ControlCommand(const std::string& CommandString);

  SheetEngine& EngineForTest() const { return *engine_; }

 private:
  explicit AppointmentSheet(std::unique_ptr<SheetEngine> engine);
  std::unique_ptr<SheetEngine> engine_;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_APPOINTMENT_SHEET_H_
