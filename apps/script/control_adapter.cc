#include "apps/script/control_adapter.h"

#include <functional>
#include <map>
#include <utility>

#include "apps/script/script_lexer.h"
#include "family/form_table.h"
#include "sheet/sheet_engine.h"
#include "tarnsheets/failure.h"
#include "tarnsheets/property_bag.h"
#include "tarnsheets/sheet.h"

namespace tarnsheets {
namespace {

void RequireArgs(const std::string& member, const std::vector<ScriptValue>& args, size_t count) {
  if (args.size() != count) {
    throw ScriptError(member + " takes " + std::to_string(count) + " argument" +
                      (count == 1 ? "" : "s") + ", not " + std::to_string(args.size()));
  }
}

// A property: its get and, when it has one, its let or set.
struct SheetProperty {
  std::function<ScriptValue(Sheet&)> get;
  std::function<void(Sheet&, const std::vector<ScriptValue>&)> set;
};

// A method with a fixed number of arguments; an empty result for one without a result.
struct SheetMethod {
  size_t arity;
  std::function<std::optional<ScriptValue>(Sheet&, const std::vector<ScriptValue>&)> call;
};

// A let that takes exactly one value.
template <typename Fn>
std::function<void(Sheet&, const std::vector<ScriptValue>&)> Let(const char* name, Fn fn) {
  return [name, fn](Sheet& sheet, const std::vector<ScriptValue>& args) {
    RequireArgs(name, args, 1);
    fn(sheet, args[0]);
  };
}

// The public interface of every entity sheet, member by member.
const std::map<std::string, SheetProperty>& SheetProperties() {
  static const auto* const table = new std::map<std::string, SheetProperty>{
      {"UserCommandsWidth",
       {[](Sheet& s) { return ScriptValue::Of(Variant(s.UserCommandsWidth())); },
        Let("UserCommandsWidth",
            [](Sheet& s, const ScriptValue& v) { s.SetUserCommandsWidth(v.ToLong()); })}},
      {"SheetUserCommands",
       {[](Sheet& s) {
          (void)s.SheetUserCommands();
          return ScriptValue::Object();
        },
        nullptr}},
      {"SheetTitles",
       {[](Sheet& s) {
          (void)s.SheetTitles();
          return ScriptValue::Object();
        },
        nullptr}},
      {"hwnd", {[](Sheet& s) { return ScriptValue::Of(Variant(s.hwnd())); }, nullptr}},
      {"Style",
       {[](Sheet& s) { return ScriptValue::Of(Variant(s.Style())); },
        Let("Style", [](Sheet& s, const ScriptValue& v) { s.SetStyle(v.ToLong()); })}},
      {"EditModify",
       {[](Sheet& s) { return ScriptValue::Of(Variant(s.EditModify())); },
        Let("EditModify", [](Sheet& s, const ScriptValue& v) { s.SetEditModify(v.ToBool()); })}},
      {"EditAddNew",
       {[](Sheet& s) { return ScriptValue::Of(Variant(s.EditAddNew())); },
        Let("EditAddNew", [](Sheet& s, const ScriptValue& v) { s.SetEditAddNew(v.ToBool()); })}},
      {"EditCopy",
       {[](Sheet& s) { return ScriptValue::Of(Variant(s.EditCopy())); },
        Let("EditCopy", [](Sheet& s, const ScriptValue& v) { s.SetEditCopy(v.ToBool()); })}},
      {"EditDelete",
       {[](Sheet& s) { return ScriptValue::Of(Variant(s.EditDelete())); },
        Let("EditDelete", [](Sheet& s, const ScriptValue& v) { s.SetEditDelete(v.ToBool()); })}},
      {"FontName",
       {[](Sheet& s) { return ScriptValue::Of(Variant(s.FontName())); },
        Let("FontName", [](Sheet& s, const ScriptValue& v) { s.SetFontName(v.ToText()); })}},
      {"FontSize",
       {[](Sheet& s) { return ScriptValue::OfFloat(s.FontSize()); },
        Let("FontSize",
            [](Sheet& s, const ScriptValue& v) {
              s.SetFontSize(static_cast<float>(v.ToDouble()));
            })}},
      // `set CaptionFont NAME [SIZE [BOLD]]`: a font with that name, size and weight; the rest
      // of the current caption font is kept.
      {"CaptionFont",
       {[](Sheet& s) { return ScriptValue::OfFont(s.CaptionFont()); },
        [](Sheet& s, const std::vector<ScriptValue>& args) {
          if (args.empty() || args.size() > 3) {
            throw ScriptError("CaptionFont takes a font name, then optionally a size and bold");
          }
          Font font = s.CaptionFont();
          if (args[0].kind == ScriptValue::Kind::kFont) {
            font = args[0].font;
          } else {
            font.name = args[0].ToText();
          }
          if (args.size() > 1) font.size = args[1].ToDouble();
          if (args.size() > 2) font.bold = args[2].ToBool();
          s.SetCaptionFont(font);
        }}},
      {"Caption",
       {[](Sheet& s) { return ScriptValue::Of(Variant(s.Caption())); },
        Let("Caption", [](Sheet& s, const ScriptValue& v) { s.SetCaption(v.ToText()); })}},
      {"SheetRecordset",
       {[](Sheet& s) { return ScriptValue::ObjectOrNothing(s.SheetRecordset() != nullptr); },
        Let("SheetRecordset",
            [](Sheet& s, const ScriptValue& v) {
              if (v.kind != ScriptValue::Kind::kNothing) {
                throw ScriptError(
                    "set SheetRecordset takes Nothing; a data source is bound with `source`");
              }
              s.SetSheetRecordset(nullptr);
            })}},
      {"Color_Caption",
       {[](Sheet& s) { return ScriptValue::OfColor(s.Color_Caption()); },
        Let("Color_Caption",
            [](Sheet& s, const ScriptValue& v) { s.SetColor_Caption(v.ToColor()); })}},
      {"Color_Active",
       {[](Sheet& s) { return ScriptValue::OfColor(s.Color_Active()); },
        Let("Color_Active",
            [](Sheet& s, const ScriptValue& v) { s.SetColor_Active(v.ToColor()); })}},
      {"Color_Title_Text",
       {[](Sheet& s) { return ScriptValue::OfColor(s.Color_Title_Text()); },
        Let("Color_Title_Text",
            [](Sheet& s, const ScriptValue& v) { s.SetColor_Title_Text(v.ToColor()); })}},
      {"Color_Background",
       {[](Sheet& s) { return ScriptValue::OfColor(s.Color_Background()); },
        Let("Color_Background",
            [](Sheet& s, const ScriptValue& v) { s.SetColor_Background(v.ToColor()); })}},
  };
  return *table;
}

std::optional<ScriptValue> BoolResult(bool b) { return ScriptValue::Of(Variant(b)); }

const std::map<std::string, SheetMethod>& SheetMethods() {
  static const auto* const table = new std::map<std::string, SheetMethod>{
      {"InitDisplay",
       {0,
        [](Sheet& s, const std::vector<ScriptValue>&) -> std::optional<ScriptValue> {
          s.InitDisplay();
          return std::nullopt;
        }}},
      {"SysSetDefaultTitles",
       {0, [](Sheet& s,
              const std::vector<ScriptValue>&) { return BoolResult(s.SysSetDefaultTitles()); }}},
      {"Save", {0, [](Sheet& s, const std::vector<ScriptValue>&) { return BoolResult(s.Save()); }}},
      {"SaveField",
       {0, [](Sheet& s, const std::vector<ScriptValue>&) { return BoolResult(s.SaveField()); }}},
      {"TxtEdit",
       {1,
        [](Sheet& s, const std::vector<ScriptValue>& a) {
          return BoolResult(s.TxtEdit(static_cast<TextEditMode>(a[0].ToLong())));
        }}},
      {"GetControlStatus",
       {1,
        [](Sheet& s, const std::vector<ScriptValue>& a) -> std::optional<ScriptValue> {
          return ScriptValue::Of(Variant(static_cast<int32_t>(s.GetControlStatus(a[0].ToText()))));
        }}},
      {"ControlCommand",
       {1,
        [](Sheet& s, const std::vector<ScriptValue>& a) {
          return BoolResult(s.ControlCommand(a[0].ToText()));
        }}},
  };
  return *table;
}

// The adapter of the seventeen entity sheets: one Sheet over the class's designed form.
class SheetAdapter : public ControlAdapter {
 public:
  SheetAdapter(std::string class_name, std::unique_ptr<Sheet> sheet)
      : class_name_(std::move(class_name)), sheet_(std::move(sheet)) {}

  const std::string& ClassName() const override { return class_name_; }
  UserControl& Host() const override { return sheet_->Host(); }
  void AddObserver(SheetEvents* observer) override { sheet_->AddObserver(observer); }
  void RemoveObserver(SheetEvents* observer) override { sheet_->RemoveObserver(observer); }
  void WriteProperties(PropertyBag& bag) const override { sheet_->WriteProperties(bag); }
  void SetDataSource(DataSource* source) override { sheet_->SetSheetRecordset(source); }
  ClsSheetsTitles* Titles() override { return &sheet_->SheetTitles(); }
  ClsSheetsUserCommands* Commands() override { return &sheet_->SheetUserCommands(); }

  bool Get(const std::string& name, ScriptValue* out) override {
    const auto it = SheetProperties().find(name);
    if (it == SheetProperties().end() || !it->second.get) return false;
    *out = it->second.get(*sheet_);
    return true;
  }

  bool Set(const std::string& name, const std::vector<ScriptValue>& args) override {
    const auto it = SheetProperties().find(name);
    if (it == SheetProperties().end()) return false;
    if (!it->second.set) throw ScriptError(name + " is read-only");
    it->second.set(*sheet_, args);
    return true;
  }

  bool Call(const std::string& name, const std::vector<ScriptValue>& args,
            std::optional<ScriptValue>* result) override {
    const auto it = SheetMethods().find(name);
    if (it == SheetMethods().end()) return false;
    RequireArgs(name, args, it->second.arity);
    *result = it->second.call(*sheet_, args);
    return true;
  }

  SFText* TextEditorOf(const Control& control) const override {
    for (const auto& editor : sheet_->EngineForTest().Txt_Value().Elements()) {
      if (&editor->Host() == &control) return editor.get();
    }
    return nullptr;
  }
  SFCheck* CheckEditorOf(const Control& control) const override {
    for (const auto& editor : sheet_->EngineForTest().Chk_Value().Elements()) {
      if (&editor->Host() == &control) return editor.get();
    }
    return nullptr;
  }

 private:
  std::string class_name_;
  std::unique_ptr<Sheet> sheet_;
};

}  // namespace

std::unique_ptr<ControlAdapter> CreateControl(const std::string& class_name, Toolkit& toolkit,
                                              Container& parent, const std::string& name,
                                              const PropertyBag* bag) {
  if (const FormTable* form = FindEntityForm(class_name)) {
    std::unique_ptr<Sheet> sheet = bag != nullptr ? Sheet::Load(toolkit, parent, *form, name, *bag)
                                                  : Sheet::Create(toolkit, parent, *form, name);
    return std::make_unique<SheetAdapter>(class_name, std::move(sheet));
  }
  if (class_name == "Currency" || class_name == "Appointment") {
    throw Failure(kErrInvalidProcedureCall,
                  "The control " + class_name + " is not built yet in this version");
  }
  return nullptr;
}

std::vector<std::string> ControlClassNames() {
  std::vector<std::string> names;
  for (const FormTable* form : EntityForms()) names.emplace_back(form->class_name);
  names.emplace_back("Currency");
  names.emplace_back("Appointment");
  return names;
}

}  // namespace tarnsheets
