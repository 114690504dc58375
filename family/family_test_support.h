// Set-up of the family's behaviour tests: any entity sheet created through the registry on the
// headless toolkit, over an in-memory source whose columns are exactly the tags of its form, with
// a title for every tag and a host that records what it sees.
#ifndef TARNSHEETS_FAMILY_FAMILY_TEST_SUPPORT_H_
#define TARNSHEETS_FAMILY_FAMILY_TEST_SUPPORT_H_

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "family/form_table.h"
#include "family/registry.h"
#include "sheet/sheet_interaction_support.h"

namespace tarnsheets {

// The spying source with one more edge: RecordCount may answer a number of its own, negative
// ones included (a source that does not know its count).
class FamilySource : public SpySource {
 public:
  using SpySource::SpySource;
  int32_t RecordCount() const override {
    return reported_count ? *reported_count : SpySource::RecordCount();
  }
  std::optional<int32_t> reported_count;
};

class FamilySheetTest : public InteractionTest {
 protected:
  // The distinct tags of `form` in the order of its rows (the tab order).
  static std::vector<std::string> TagsOf(const FormTable& form) {
    std::vector<std::string> tags;
    for (const FieldRow& row : form.rows) {
      const std::string tag(row.tag);
      bool seen = false;
      for (const std::string& t : tags) seen = seen || t == tag;
      if (!seen) tags.push_back(tag);
    }
    return tags;
  }
  // Whether `tag` is shown by a check editor on `form`.
  static bool IsCheckColumn(const FormTable& form, const std::string& tag) {
    for (const FieldRow& row : form.rows) {
      if (row.tag == tag && row.editor.kind == EditorKind::kCheck) return true;
    }
    return false;
  }
  // The text stored in a text column for record `row` (0-based): "TAG r1", "TAG r2", ...
  static std::string TextValue(const std::string& tag, int row) {
    return tag + " r" + std::to_string(row + 1);
  }
  // The state stored in a yes/no column: 1, 0, 1, ...
  static int32_t CheckValue(int row) { return row % 2 == 0 ? 1 : 0; }

  // Creates the sheet of `form` through the registry, the source with `rows` records, titles
  // "Title of TAG" for every tag; connects, opens and shows the host form.
  void StartFamily(const FormTable& form, int rows = 3) {
    form_ = &form;
    std::unique_ptr<SheetControl> control =
        CreateControl(toolkit_, *host_form_, form.class_name, std::string(form.class_name) + "1");
    auto* sheet = dynamic_cast<Sheet*>(control.get());
    ASSERT_NE(sheet, nullptr) << form.class_name;
    control.release();
    sheet_.reset(sheet);
    engine_ = &sheet_->EngineForTest();
    sheet_->AddObserver(&host_);

    std::vector<MemoryFieldDefinition> fields;
    for (const std::string& tag : TagsOf(form)) {
      MemoryFieldDefinition field;
      field.name = tag;
      if (IsCheckColumn(form, tag)) field.data_type = kDataTypeYesNo;
      fields.push_back(field);
    }
    auto source = std::make_unique<FamilySource>(fields, &toolkit_);
    for (int r = 0; r < rows; ++r) {
      std::vector<Variant> values;
      for (const MemoryFieldDefinition& field : fields) {
        values.push_back(field.data_type == kDataTypeYesNo ? Variant(CheckValue(r))
                                                           : Variant(TextValue(field.name, r)));
      }
      source->AddRow(std::move(values));
    }
    source_ptr_ = source.get();
    spy_ = std::move(source);
    for (const std::string& tag : TagsOf(form)) {
      sheet_->SheetTitles().Add(tag)->DisplayName = "Title of " + tag;
    }
    sheet_->SetSheetRecordset(spy_.get());
    spy_->Open();
    host_form_->Show();
    host_.events.clear();
    spy_->calls.clear();
  }

  // The first row in tab order with a visible text editor.
  const FieldRow& FirstTextRow() const {
    for (const FieldRow& row : form_->rows) {
      if (row.editor.kind == EditorKind::kText && row.editor.visible) return row;
    }
    ADD_FAILURE() << "no text editor on " << form_->class_name;
    return form_->rows[0];
  }
  std::string FirstTextTag() const { return std::string(FirstTextRow().tag); }

  // Every editor shows record `row`: "" when all do, else the first difference.
  std::string EditorsShowRecord(int row) const {
    for (const FieldRow& r : form_->rows) {
      const std::string tag(r.tag);
      if (r.editor.kind == EditorKind::kText) {
        const std::string shown = engine_->Txt_Value()(r.editor.index).Text();
        if (shown != TextValue(tag, row)) {
          return "Txt_Value(" + std::to_string(r.editor.index) + ") " + tag + " shows \"" + shown +
                 "\"";
        }
      } else if (r.editor.kind == EditorKind::kCheck) {
        const int32_t shown = engine_->Chk_Value()(r.editor.index).Value();
        if (shown != CheckValue(row)) {
          return "Chk_Value(" + std::to_string(r.editor.index) + ") " + tag + " shows " +
                 std::to_string(shown);
        }
      }
    }
    return "";
  }

  const FormTable* form_ = nullptr;
  FamilySource* source_ptr_ = nullptr;
};

// Test names for a parameter over the entity forms: the class name.
inline std::string FormName(const ::testing::TestParamInfo<const FormTable*>& info) {
  return std::string(info.param->class_name);
}

}  // namespace tarnsheets

#endif  // TARNSHEETS_FAMILY_FAMILY_TEST_SUPPORT_H_
