// Set-up of the tests that drive a sheet as a user and a host would: a host that records every
// event with its arguments and answers the by-reference ones, and a data source that records
// what reached it.
#ifndef TARNSHEETS_SHEET_SHEET_INTERACTION_SUPPORT_H_
#define TARNSHEETS_SHEET_SHEET_INTERACTION_SUPPORT_H_

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "sheet/sheet_test_support.h"

namespace tarnsheets {

// The host: each event as a line ("Text F_USURNAME=Smith", "Button TEAM_NAME", "ExitFocus", ...),
// with answers a test sets beforehand.
class HostRecorder : public EventRecorder {
 public:
  void Text(const std::string& FieldName, const std::string& TextValue, SheetRect& Rect,
            bool& Cancel, int32_t& User, std::shared_ptr<SheetForm>& Frm, int32_t& Mode,
            std::shared_ptr<SheetForm>& ParentForm) override {
    events.push_back("Text " + FieldName + "=" + TextValue);
    last_rect = Rect;
    text_args_were_fresh = !Cancel && User == 0 && !Frm && Mode == 0 && !ParentForm;
    Cancel = text_cancel;
    User = text_user;
    Frm = text_form;
    Mode = text_mode;
    ParentForm = text_parent;
    if (on_text) on_text();
  }
  void Button(const std::string& FieldName, SheetRect& Rect) override {
    events.push_back("Button " + FieldName);
    last_rect = Rect;
  }
  void ExitFocus(bool& Cancel) override {
    events.push_back("ExitFocus");
    Cancel = exit_cancel;
  }
  void EnterFocus() override { events.push_back("EnterFocus"); }
  void UserCommand(const std::string& Name) override { events.push_back("UserCommand " + Name); }
  void NewRecord(int32_t& User) override {
    events.push_back("NewRecord");
    User = new_record_user;
  }

  // The events other than SheetStatusChange, in order.
  std::vector<std::string> HostEvents() const {
    std::vector<std::string> out;
    for (const std::string& e : events) {
      if (e != "SheetStatusChange") out.push_back(e);
    }
    return out;
  }

  bool text_cancel = false;
  int32_t text_user = 0;
  std::shared_ptr<SheetForm> text_form;
  int32_t text_mode = 0;
  std::shared_ptr<SheetForm> text_parent;
  std::function<void()> on_text;
  bool exit_cancel = false;
  int32_t new_record_user = 0;
  SheetRect last_rect{};
  bool text_args_were_fresh = false;
};

// The in-memory source with a log of the calls that change something, and an UpdateRecord whose
// answer a test may set.
class SpySource : public MemoryDataSource {
 public:
  using MemoryDataSource::MemoryDataSource;

  bool SetFieldValue(const Variant& field, const Variant& value, int32_t flag = 0) override {
    calls.push_back("SetFieldValue " + field.AsText() + "=" + Describe(value));
    return MemoryDataSource::SetFieldValue(field, value, flag);
  }
  int32_t UpdateRecord() override {
    calls.push_back("UpdateRecord");
    if (update_answer) return *update_answer;
    return MemoryDataSource::UpdateRecord();
  }
  void NewRecord(int32_t flag = 0, const Variant& optional = Variant()) override {
    calls.push_back("NewRecord");
    MemoryDataSource::NewRecord(flag, optional);
  }
  void CopyRecord() override {
    calls.push_back("CopyRecord");
    MemoryDataSource::CopyRecord();
  }
  void DeleteRecord() override {
    calls.push_back("DeleteRecord");
    MemoryDataSource::DeleteRecord();
  }
  void UndoRecord() override {
    calls.push_back("UndoRecord");
    MemoryDataSource::UndoRecord();
  }
  void CancelQuery() override {
    calls.push_back("CancelQuery");
    MemoryDataSource::CancelQuery();
  }
  bool Refresh() override {
    calls.push_back("Refresh");
    return MemoryDataSource::Refresh();
  }

  // "Text:abc", "Integer:1", "Null", ...
  static std::string Describe(const Variant& value) {
    switch (value.Type()) {
      case VariantType::kString:
        return "Text:" + value.AsText();
      case VariantType::kInteger:
        return "Integer:" + value.AsText();
      case VariantType::kNull:
        return "Null";
      case VariantType::kEmpty:
        return "Empty";
      default:
        return value.AsText();
    }
  }

  std::vector<std::string> calls;
  std::optional<int32_t> update_answer;
};

// A UserInfo sheet on a form of the headless toolkit over a SpySource, titles for all columns,
// and a host recorder.
class InteractionTest : public UserInfoSheetTest {
 protected:
  // Creates the sheet, the source with `rows` rows ("jdoe", "asmith", ...), connects and opens.
  void Start(int rows = 2, std::vector<MemoryFieldDefinition> fields = UserInfoFields()) {
    CreateSheet();
    sheet_->RemoveObserver(&recorder_);
    sheet_->AddObserver(&host_);
    spy_ = std::make_unique<SpySource>(std::move(fields), &toolkit_);
    const char* logins[] = {"jdoe", "asmith", "bwong"};
    for (int i = 0; i < rows; ++i) {
      spy_->AddRow({Variant(logins[i % 3]), Variant("CORP"), Variant("Doe"), Variant("John"),
                    Variant("Mr"), Variant("Rep"), Variant("East"), Variant(int32_t{1}),
                    Variant("Sells")});
    }
    AddAllTitles();
    sheet_->SetSheetRecordset(spy_.get());
    spy_->Open();
    host_form_->Show();
    host_.events.clear();
    spy_->calls.clear();
  }
  void TearDown() override {
    if (sheet_) sheet_->SetSheetRecordset(nullptr);
    UserInfoSheetTest::TearDown();
  }

  SFText& Editor(const std::string& tag) { return engine_->Txt_Value()(TextIndexOf(tag)); }
  TextBox& Box(const std::string& tag) {
    SFText& editor = Editor(tag);
    return editor.Txt_Text(editor.ActiveBox());
  }
  // The user clicks into the editor of `tag`.
  void ClickInto(const std::string& tag) { toolkit_.Click(Box(tag)); }
  // The user clicks into the editor of `tag`, selects all its text and types `text` over it.
  void TypeOver(const std::string& tag, const std::string& text) {
    ClickInto(tag);
    Box(tag).SetSelStart(0);
    Box(tag).SetSelLength(static_cast<int32_t>(Box(tag).Text().size()));
    toolkit_.TypeText(text);
  }
  // The control that holds the focus, by its name and index ("Txt_Text(0) in F_USURNAME").
  std::string Focused() const {
    Control* focus = toolkit_.GetFocus();
    if (focus == nullptr) return "nothing";
    if (focus->TypeName() == "SFCheck") return "SFCheck " + focus->Tag();
    const Control* owner = focus->Parent();
    std::string name = focus->Name();
    if (focus->Index() >= 0) name += "(" + std::to_string(focus->Index()) + ")";
    if (owner != nullptr && (owner->TypeName() == "SFText" || owner->TypeName() == "SFCheck")) {
      return owner->TypeName() + " " + owner->Tag();
    }
    return name;
  }
  bool PairEnabled(Menu& menu, CommandButton& button) {
    EXPECT_EQ(menu.Enabled(), button.Enabled()) << menu.Name();
    return menu.Enabled();
  }
  // New, Delete, Copy, Undo as "NDCU" letters when on, "-" when off.
  std::string Pairs() {
    std::string out;
    out += PairEnabled(engine_->mnu_NewRecord(), engine_->Cmd_NewRecord()) ? "N" : "-";
    out += PairEnabled(engine_->mnu_DeleteRecord(), engine_->Cmd_DeleteRecord()) ? "D" : "-";
    out += PairEnabled(engine_->mnu_CopyRecord(), engine_->Cmd_CopyRecord()) ? "C" : "-";
    out += PairEnabled(engine_->mnu_Undo(), engine_->Cmd_Undo()) ? "U" : "-";
    return out;
  }

  HostRecorder host_;
  std::unique_ptr<SpySource> spy_;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_SHEET_SHEET_INTERACTION_SUPPORT_H_
