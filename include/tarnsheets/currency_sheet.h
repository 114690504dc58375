// CurrencySheet: a plain list of fields, one row of title, text editor and optional drop button
// for each title in SheetTitles, built at run time by InitDisplay. No caption strip, record
// buttons, menu, check editors, commands, focus ring or layout of its own; it follows the data
// source only in its values, so a move shows only after the next InitDisplay.
//
// Its events are Text, Button, ExitFocus, EnterFocus and Resize of SheetEvents (sheet.h). The
// conventions of sheet.h hold.
#ifndef TARNSHEETS_CURRENCY_SHEET_H_
#define TARNSHEETS_CURRENCY_SHEET_H_

#include <memory>
#include <string>

#include "tarnsheets/sheet.h"

namespace tarnsheets {

struct CurrencyFormTable;

class CurrencySheet : public SheetControl {
 public:
  static std::unique_ptr<CurrencySheet> Create(Toolkit& toolkit, Container& parent,
                                               const CurrencyFormTable& form,
                                               const std::string& name,
                                               GlyphPictures glyphs = nullptr);
  static std::unique_ptr<CurrencySheet> Load(Toolkit& toolkit, Container& parent,
                                             const CurrencyFormTable& form, const std::string& name,
                                             const PropertyBag& bag,
                                             GlyphPictures glyphs = nullptr);
  ~CurrencySheet() override;
  CurrencySheet(const CurrencySheet&) = delete;
  CurrencySheet& operator=(const CurrencySheet&) = delete;

  // SheetControl.
  std::string ClassName() const override;
  UserControl& Host() const override;
  void WriteProperties(PropertyBag& bag) const override;

  void AddObserver(SheetEvents* observer);
  void RemoveObserver(SheetEvents* observer);

  // --- The public interface, in its order.
  bool EditModify() const;
  void SetEditModify(bool v);
  ClsSheetsTitles& SheetTitles();
  // No permission goes to the data source from here.
  DataSource* SheetRecordset() const;
  void SetSheetRecordset(DataSource* data_source);
  std::string FontName() const;
  void SetFontName(const std::string& name);
  float FontSize() const;
  void SetFontSize(float size);
  Color Color_Title_Text() const;
  void SetColor_Title_Text(Color color);
  Color Color_Background() const;
  void SetColor_Background(Color color);
  // Unloads the rows and builds them again from the titles; true when an error was reported.
  bool InitDisplay();
  bool SysSetDefaultTitles();
  bool Save();
  bool SaveField();

  SheetEngine& EngineForTest() const { return *engine_; }

 private:
  explicit CurrencySheet(std::unique_ptr<SheetEngine> engine);
  std::unique_ptr<SheetEngine> engine_;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_CURRENCY_SHEET_H_
