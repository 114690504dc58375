// Sheet: one entity sheet, a control that shows one record of a business entity as a fixed form of
// field titles and value editors over a data source.
//
// A host places a sheet in a container of its toolkit, fills SheetTitles, hands it a data source
// through SetSheetRecordset, reads its status and answers its events through SheetEvents. Every
// entity sheet is this one class over its own designed form; the form decides which fields exist.
//
// Conventions:
// - Booleans are C++ bool (true is the system's True). Results of trapping methods are inverted:
//   SysSetDefaultTitles returns true when an error was reported.
// - Lengths are twips; colours are toolkit colours (types.h).
// - Every property setter tells the container through NotifyPropertyChanged under its key.
// - Failures of untrapped members pass to the caller as tarnsheets::Failure.
// - The sheet does not own its data source: the host keeps it alive while it is set, or sets
//   nothing (nullptr) before destroying it.
#ifndef TARNSHEETS_SHEET_H_
#define TARNSHEETS_SHEET_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "tarnsheets/sheet_control.h"
#include "tarnsheets/types.h"

namespace tarnsheets {

class ClsSheetsTitles;
class ClsSheetsUserCommands;
class Container;
class DataSource;
class Form;
class PropertyBag;
class SheetEngine;
class Toolkit;
class UserControl;
struct FormTable;
struct Picture;
enum class Glyph : uint8_t;

// Gives the picture of a drop-button glyph; the sheet family hands its glyph table in
// (FamilyGlyphPictures in family/glyphs.h). Without one the drop buttons show their empty captions.
using GlyphPictures = std::function<Picture(Glyph)>;

// A form that a host hands back through the event Text for the sheet to show after the host took
// a field over: any object with a Show operation. MakeSheetForm adapts a toolkit form.
class SheetForm {
 public:
  virtual ~SheetForm() = default;
  // Show without an owner, and with one. Both arguments are the sheet's, by reference.
  virtual void Show(int32_t& Mode) = 0;
  virtual void Show(int32_t& Mode, std::shared_ptr<SheetForm>& ParentForm) = 0;
  // The toolkit form behind the object, when there is one (an owner for a toolkit form).
  virtual Form* ToolkitForm() { return nullptr; }
};

// A toolkit form as a SheetForm: Mode 1 shows it modally (returning when it is closed), any other
// Mode shows it without a modal loop. The owner is not modelled by the toolkits and is ignored.
std::shared_ptr<SheetForm> MakeSheetForm(Toolkit& toolkit, std::shared_ptr<Form> form);

// The source interface of an entity sheet. Every method has an empty default, so a host overrides
// only what it answers. Arguments by reference are the sheet's own: a handler that sets Cancel
// changes what the sheet does next. Handlers run synchronously and may call back into the sheet.
class SheetEvents {
 public:
  virtual ~SheetEvents() = default;

  // 1. A typed value was accepted for FieldName; Rect is the field's place on the screen.
  virtual void Text(const std::string& FieldName, const std::string& TextValue, SheetRect& Rect,
                    bool& Cancel, int32_t& User, std::shared_ptr<SheetForm>& Frm, int32_t& Mode,
                    std::shared_ptr<SheetForm>& ParentForm) {
    (void)FieldName, (void)TextValue, (void)Rect, (void)Cancel, (void)User, (void)Frm, (void)Mode,
        (void)ParentForm;
  }
  // 2. The drop button of FieldName was pressed.
  virtual void Button(const std::string& FieldName, SheetRect& Rect) {
    (void)FieldName, (void)Rect;
  }
  // 3. What the sheet offers may have changed; read GetControlStatus again.
  virtual void SheetStatusChange() {}
  // 4. The focus is about to leave the sheet; Cancel keeps it inside.
  virtual void ExitFocus(bool& Cancel) { (void)Cancel; }
  // 5. The focus entered the sheet.
  virtual void EnterFocus() {}
  // 6. A host command button of the caption strip was pressed.
  virtual void UserCommand(const std::string& Name) { (void)Name; }
  // 7. A new record is about to start (raised by the sheets whose option record asks for it);
  // User set to anything but 0 keeps the data source from starting it.
  virtual void NewRecord(int32_t& User) { (void)User; }
  // 8. Currency only: the control's size changed.
  virtual void Resize() {}
};

class Sheet : public SheetControl {
 public:
  // Creates the sheet of `form` inside `parent` as a form designer places it: the controls of the
  // form are built, the sheet initialises itself and takes the initial properties of a new
  // instance. `name` is the control's name in its container. `form` must outlive the sheet.
  static std::unique_ptr<Sheet> Create(Toolkit& toolkit, Container& parent, const FormTable& form,
                                       const std::string& name, GlyphPictures glyphs = nullptr);
  // The same for a stored instance: initialises, then reads its properties from `bag`. A failure
  // of the bag passes to the caller.
  static std::unique_ptr<Sheet> Load(Toolkit& toolkit, Container& parent, const FormTable& form,
                                     const std::string& name, const PropertyBag& bag,
                                     GlyphPictures glyphs = nullptr);

  ~Sheet() override;
  Sheet(const Sheet&) = delete;
  Sheet& operator=(const Sheet&) = delete;

  // SheetControl.
  std::string ClassName() const override;
  UserControl& Host() const override;

  // Observers of the sheet's events, called in the order they were added. Adding one twice has
  // no effect. The sheet does not own them.
  void AddObserver(SheetEvents* observer);
  void RemoveObserver(SheetEvents* observer);

  void WriteProperties(PropertyBag& bag) const override;

  // --- The public interface, in its order.
  // 1. Width of the host command buttons, whole twips.
  int32_t UserCommandsWidth() const;
  void SetUserCommandsWidth(int32_t width);
  // 2. The host's command buttons, created on first use.
  ClsSheetsUserCommands& SheetUserCommands();
  // 3. The field titles, created on first use.
  ClsSheetsTitles& SheetTitles();
  // 4. Always 0.
  int32_t hwnd() const;
  // 5. 0: caption strip only; 1: with the record buttons. Other values are kept and change
  // nothing on the form.
  int32_t Style() const;
  void SetStyle(int32_t style);
  // 6-9. What the host permits.
  bool EditModify() const;
  void SetEditModify(bool v);
  bool EditAddNew() const;
  void SetEditAddNew(bool v);
  bool EditCopy() const;
  void SetEditCopy(bool v);
  bool EditDelete() const;
  void SetEditDelete(bool v);
  // 10-11. The font of the titles and editors.
  std::string FontName() const;
  void SetFontName(const std::string& name);
  float FontSize() const;
  void SetFontSize(float size);
  // 12. The font of the caption.
  Font CaptionFont() const;
  void SetCaptionFont(const Font& font);
  // 13. The caption text.
  std::string Caption() const;
  void SetCaption(const std::string& caption);
  // 14. The data source; nullptr for none. Setting one pushes the four permissions into it.
  // The sheet listens to the source until it is destroyed or the field is set again.
  // REQUIRES: the host keeps the data source alive for that long.
  DataSource* SheetRecordset() const;
  void SetSheetRecordset(DataSource* data_source);
  // 15-17. Caption strip colour while focused, and editor border colour.
  Color Color_Caption() const;
  void SetColor_Active(Color color);
  Color Color_Active() const;
  void SetColor_Caption(Color color);
  // 18-19.
  Color Color_Title_Text() const;
  void SetColor_Title_Text(Color color);
  Color Color_Background() const;
  void SetColor_Background(Color color);
  // 20. Checks the titles against the data source and shows the current record.
  void InitDisplay();
  // 21. Completes the titles from the data source's fields; true when an error was reported.
  bool SysSetDefaultTitles();
  // 22. Stores the active field, then the record (UpdateRecord). True: the save failed or was
  // stopped; false: it went through or there was nothing to do.
  bool Save();
  // 23. Stores the active field only. True as for Save.
  bool SaveField();
  // 24. Copy, cut, paste, undo, redo or delete on the text editor last entered. Always false.
  bool TxtEdit(TextEditMode EditMode);
  // 25. Whether the named command is on offer (the twenty names, exact with case).
  ControlStatus GetControlStatus(const std::string& StatusString);
  // 26. Carries out the named command. True: the command failed.
  bool ControlCommand(const std::string& CommandString);

  // The engine behind the sheet, for the library's own tests.
  SheetEngine& EngineForTest() const { return *engine_; }

 private:
  explicit Sheet(std::unique_ptr<SheetEngine> engine);

  std::unique_ptr<SheetEngine> engine_;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_SHEET_H_
