// tarnsheets-headless-demo: a UserInfo sheet on the headless toolkit over a JSON fixture.
//
// It plays what a host and a user would do — bind the sheet, look at the first record, move,
// type into a field and leave it — and prints what the host sees: events, message boxes, the
// error dialog, and the editors' texts after each step.
#include <cstdio>
#include <exception>
#include <iostream>
#include <string>

#include "datasources/memory/memory_data_source.h"
#include "datasources/memory/memory_fixture.h"
#include "family/form_table.h"
#include "sheet/sheet_engine.h"
#include "tarnsheets/data_source.h"
#include "tarnsheets/failure.h"
#include "tarnsheets/messages.h"
#include "tarnsheets/sheet.h"
#include "tarnsheets/titles.h"
#include "toolkits/headless/headless_toolkit.h"

namespace tarnsheets {
namespace {

class PrintingHost : public SheetEvents {
 public:
  void Text(const std::string& FieldName, const std::string& TextValue, SheetRect& Rect,
            bool& Cancel, int32_t& User, std::shared_ptr<SheetForm>& Frm, int32_t& Mode,
            std::shared_ptr<SheetForm>& ParentForm) override {
    (void)Cancel, (void)User, (void)Frm, (void)Mode, (void)ParentForm;
    std::cout << "event Text FieldName=\"" << FieldName << "\" TextValue=\"" << TextValue
              << "\" Rect=(" << Rect.Left << "," << Rect.Top << "," << Rect.Right << ","
              << Rect.Bottom << ")\n";
  }
  void Button(const std::string& FieldName, SheetRect& Rect) override {
    std::cout << "event Button FieldName=\"" << FieldName << "\" Rect=(" << Rect.Left << ","
              << Rect.Top << "," << Rect.Right << "," << Rect.Bottom << ")\n";
  }
  void SheetStatusChange() override { std::cout << "event SheetStatusChange\n"; }
  void ExitFocus(bool& Cancel) override {
    std::cout << "event ExitFocus Cancel=" << (Cancel ? "True" : "False") << "\n";
  }
  void EnterFocus() override { std::cout << "event EnterFocus\n"; }
  void UserCommand(const std::string& Name) override {
    std::cout << "event UserCommand Name=\"" << Name << "\"\n";
  }
};

void PrintRecord(const Sheet& sheet, DataSource& source) {
  SheetEngine& engine = sheet.EngineForTest();
  std::cout << "-- record " << source.AbsolutePosition() << " / " << source.RecordCount()
            << ", EditStatus " << source.EditStatus() << "\n";
  for (const auto& editor : engine.Txt_Value().Elements()) {
    std::printf("   Txt_Value(%d) %-14s %s \"%s\"\n", editor->Host().Index(),
                editor->Host().Tag().c_str(), editor->Locked() ? "locked  " : "editable",
                editor->Text().c_str());
  }
  for (const auto& editor : engine.Chk_Value().Elements()) {
    std::printf("   Chk_Value(%d) %-14s %s %d\n", editor->Host().Index(),
                editor->Host().Tag().c_str(), editor->Locked() ? "locked  " : "editable",
                static_cast<int>(editor->Value()));
  }
}

int Run(const std::string& fixture) {
  HeadlessToolkit toolkit;
  toolkit.SetDialogObserver([](const DialogRecord& record) {
    switch (record.kind) {
      case DialogRecord::Kind::kMessageBox:
        std::cout << "msgbox "
                  << (record.style == MessageBoxStyle::kCritical ? "critical" : "plain")
                  << " title=\"" << record.title << "\" text=\"" << record.text << "\"\n";
        break;
      case DialogRecord::Kind::kModalForm:
        std::cout << "errordialog caption=\"" << record.title << "\" text=\"" << record.text
                  << "\"\n";
        break;
      case DialogRecord::Kind::kPopupMenu:
        std::cout << "popup " << record.name << "\n";
        break;
    }
  });

  std::cout << "TarnSheets headless demo: UserInfo over " << fixture << " (language "
            << MessageLanguage() << ")\n";
  // The data source is created first so that it outlives the sheet that listens to it.
  std::unique_ptr<MemoryDataSource> source = LoadMemoryFixture(fixture, &toolkit);
  std::shared_ptr<Form> window = toolkit.CreateForm("FrmHost");
  window->SetClientSize(12000, 4000);
  std::unique_ptr<Sheet> sheet = Sheet::Create(toolkit, *window, UserInfoForm(), "UserInfo1");
  PrintingHost host;
  sheet->AddObserver(&host);

  // The titles: one per field row of the designed form, with the designed English title.
  for (const FieldRow& row : UserInfoForm().rows) {
    if (auto title = sheet->SheetTitles().Add(std::string(row.tag))) {
      title->DisplayName = std::string(row.title.caption.empty() ? row.tag : row.title.caption);
    }
  }
  sheet->SheetTitles().SetCaptionName(Variant("User"));

  std::cout << "== bind the data source and open it\n";
  sheet->SetSheetRecordset(source.get());
  source->Open();
  PrintRecord(*sheet, *source);

  std::cout << "== MoveNext\n";
  source->MoveNext();
  PrintRecord(*sheet, *source);

  std::cout << "== MoveLast\n";
  source->MoveLast();
  PrintRecord(*sheet, *source);
  return 0;
}

}  // namespace
}  // namespace tarnsheets

int main(int argc, char** argv) {
  const std::string fixture = argc > 1 ? argv[1] : "examples/user_info.json";
  try {
    return tarnsheets::Run(fixture);
  } catch (const tarnsheets::Failure& failure) {
    std::cerr << "tarnsheets-headless-demo: " << failure.Number() << " " << failure.Description()
              << "\n";
    return 1;
  } catch (const std::exception& e) {
    std::cerr << "tarnsheets-headless-demo: " << e.what() << "\n";
    return 1;
  }
}
