// Shared set-up of the sheet tests: a UserInfo sheet on the headless toolkit, an in-memory data
// source with the UserInfo columns, and recorders for what the host sees.
#ifndef TARNSHEETS_SHEET_SHEET_TEST_SUPPORT_H_
#define TARNSHEETS_SHEET_SHEET_TEST_SUPPORT_H_

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "datasources/memory/memory_data_source.h"
#include "family/form_table.h"
#include "messages/frm_show_err.h"
#include "sheet/sheet_engine.h"
#include "tarnsheets/messages.h"
#include "tarnsheets/sheet.h"
#include "toolkits/headless/headless_toolkit.h"
#ifdef TARNSHEETS_TEST_ON_QT
#include "toolkits/qt/qt_toolkit.h"
#endif

namespace tarnsheets {

// The host's side of the events, in order.
class EventRecorder : public SheetEvents {
 public:
  void SheetStatusChange() override { events.push_back("SheetStatusChange"); }
  int Count(const std::string& name) const {
    int n = 0;
    for (const std::string& e : events) n += e == name ? 1 : 0;
    return n;
  }
  std::vector<std::string> events;
};

// An error report as the user read it in the open dialog.
struct ErrorReport {
  std::string title;
  std::string text;
};

class UserInfoSheetTest : public ::testing::Test {
 protected:
  void SetUp() override {
    SetMessageLanguageForTest(kLanguageEnglish);
    toolkit_.SetDialogObserver([this](const DialogRecord& record) {
      if (record.kind == DialogRecord::Kind::kModalForm) {
        std::shared_ptr<FrmShowErr> dialog = FrmShowErr::Existing();
        if (dialog) {
          reports_.push_back({dialog->Txt_Title().Text(), dialog->Txt_ErrDescription().Text()});
        }
      } else if (record.kind == DialogRecord::Kind::kMessageBox) {
        boxes_.push_back(record);
      }
    });
    host_form_ = toolkit_.CreateForm("HostForm");
  }
  void TearDown() override {
    if (sheet_) sheet_->SetSheetRecordset(nullptr);
    SetMessageLanguageForTest(0);
  }

  void CreateSheet() {
    sheet_ = Sheet::Create(toolkit_, *host_form_, UserInfoForm(), "UserInfo1");
    engine_ = &sheet_->EngineForTest();
    sheet_->AddObserver(&recorder_);
  }

  // The UserInfo columns; `overrides` changes a column's definition by name.
  static std::vector<MemoryFieldDefinition> UserInfoFields() {
    std::vector<MemoryFieldDefinition> fields;
    for (const char* name : {"F_ULOGINNAME", "F_NTDOMAIN", "F_USURNAME", "F_UGIVENNAME",
                             "F_UPREFIX", "F_UJOBTITLE", "TEAM_NAME", "F_ISACTIVE", "F_UDUTY"}) {
      MemoryFieldDefinition field;
      field.name = name;
      if (field.name == "F_ISACTIVE") field.data_type = kDataTypeYesNo;
      fields.push_back(field);
    }
    return fields;
  }

  // A source with the UserInfo columns and one row, titles for all, connected and opened.
  void OpenUserInfoSource(std::vector<MemoryFieldDefinition> fields = UserInfoFields()) {
    source_ = std::make_unique<MemoryDataSource>(std::move(fields), &toolkit_);
    source_->AddRow({Variant("jdoe"), Variant("CORP"), Variant("Doe"), Variant("John"),
                     Variant("Mr"), Variant("Rep"), Variant("East"), Variant(int32_t{1}),
                     Variant("Sells")});
  }
  void AddAllTitles() {
    const char* names[] = {"F_ULOGINNAME", "F_NTDOMAIN", "F_USURNAME", "F_UGIVENNAME", "F_UPREFIX",
                           "F_UJOBTITLE",  "TEAM_NAME",  "F_ISACTIVE", "F_UDUTY"};
    for (const char* name : names) {
      sheet_->SheetTitles().Add(name)->DisplayName = std::string("Title of ") + name;
    }
  }
  void ConnectAndOpen() {
    sheet_->SetSheetRecordset(source_.get());
    source_->Open();
  }

  // The text shown in Txt_Value(index).
  std::string TextOf(int32_t index) const { return engine_->Txt_Value()(index).Text(); }
  // The Txt_Value index of the editor whose Tag is `tag`.
  int32_t TextIndexOf(const std::string& tag) const {
    for (int32_t i : engine_->Txt_Value().Indices()) {
      if (engine_->Txt_Value()(i).Host().Tag() == tag) return i;
    }
    return -1;
  }
  std::vector<std::string> Notified() const { return toolkit_.NotifiedProperties(sheet_->Host()); }

  // The same tests run on the headless toolkit and, in a build with Qt, on the Qt toolkit with
  // its dialogs answered at once.
#ifdef TARNSHEETS_TEST_ON_QT
  QtToolkit toolkit_{QtToolkit::DialogMode::kAnswered};
#else
  HeadlessToolkit toolkit_;
#endif
  std::shared_ptr<Form> host_form_;
  std::unique_ptr<MemoryDataSource> source_;
  std::unique_ptr<Sheet> sheet_;
  SheetEngine* engine_ = nullptr;
  EventRecorder recorder_;
  std::vector<ErrorReport> reports_;
  std::vector<DialogRecord> boxes_;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_SHEET_SHEET_TEST_SUPPORT_H_
