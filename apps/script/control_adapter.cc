#include "apps/script/control_adapter.h"

#include <functional>
#include <map>
#include <type_traits>
#include <utility>

#include "apps/script/script_lexer.h"
#include "family/form_table.h"
#include "family/registry.h"
#include "sheet/sheet_engine.h"
#include "tarnsheets/appointment_sheet.h"
#include "tarnsheets/currency_sheet.h"
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
template <typename T>
struct Property {
  std::function<ScriptValue(T&)> get;
  std::function<void(T&, const std::vector<ScriptValue>&)> set;
};

// A method with a fixed number of arguments; an empty result for one without a result.
template <typename T>
struct Method {
  size_t arity;
  std::function<std::optional<ScriptValue>(T&, const std::vector<ScriptValue>&)> call;
};

// A let that takes exactly one value.
template <typename T, typename Fn>
std::function<void(T&, const std::vector<ScriptValue>&)> Let(const char* name, Fn fn) {
  return [name, fn](T& control, const std::vector<ScriptValue>& args) {
    RequireArgs(name, args, 1);
    fn(control, args[0]);
  };
}

std::optional<ScriptValue> BoolResult(bool b) { return ScriptValue::Of(Variant(b)); }

// The public interface of a control class, member by member: the entity sheets have all of it,
// Appointment and Currency the members their classes declare.
template <typename T>
const std::map<std::string, Property<T>>& Properties() {
  static const auto* const table = [] {
    auto* map = new std::map<std::string, Property<T>>();
    auto& m = *map;
    if constexpr (requires(T & t) { t.UserCommandsWidth(); }) {
      m["UserCommandsWidth"] = {
          [](T& s) { return ScriptValue::Of(Variant(s.UserCommandsWidth())); },
          Let<T>("UserCommandsWidth",
                 [](T& s, const ScriptValue& v) { s.SetUserCommandsWidth(v.ToLong()); })};
      m["SheetUserCommands"] = {[](T& s) {
                                  (void)s.SheetUserCommands();
                                  return ScriptValue::Object();
                                },
                                nullptr};
    }
    m["SheetTitles"] = {[](T& s) {
                          (void)s.SheetTitles();
                          return ScriptValue::Object();
                        },
                        nullptr};
    if constexpr (requires(T & t) { t.hwnd(); }) {
      m["hwnd"] = {[](T& s) { return ScriptValue::Of(Variant(s.hwnd())); }, nullptr};
    }
    if constexpr (requires(T & t) { t.Style(); }) {
      m["Style"] = {[](T& s) { return ScriptValue::Of(Variant(s.Style())); },
                    Let<T>("Style", [](T& s, const ScriptValue& v) { s.SetStyle(v.ToLong()); })};
      m["EditAddNew"] = {
          [](T& s) { return ScriptValue::Of(Variant(s.EditAddNew())); },
          Let<T>("EditAddNew", [](T& s, const ScriptValue& v) { s.SetEditAddNew(v.ToBool()); })};
      m["EditCopy"] = {
          [](T& s) { return ScriptValue::Of(Variant(s.EditCopy())); },
          Let<T>("EditCopy", [](T& s, const ScriptValue& v) { s.SetEditCopy(v.ToBool()); })};
      m["EditDelete"] = {
          [](T& s) { return ScriptValue::Of(Variant(s.EditDelete())); },
          Let<T>("EditDelete", [](T& s, const ScriptValue& v) { s.SetEditDelete(v.ToBool()); })};
      // `set CaptionFont NAME [SIZE [BOLD]]`: a font with that name, size and weight; the rest
      // of the current caption font is kept.
      m["CaptionFont"] = {
          [](T& s) { return ScriptValue::OfFont(s.CaptionFont()); },
          [](T& s, const std::vector<ScriptValue>& args) {
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
          }};
      m["Caption"] = {
          [](T& s) { return ScriptValue::Of(Variant(s.Caption())); },
          Let<T>("Caption", [](T& s, const ScriptValue& v) { s.SetCaption(v.ToText()); })};
    }
    m["EditModify"] = {
        [](T& s) { return ScriptValue::Of(Variant(s.EditModify())); },
        Let<T>("EditModify", [](T& s, const ScriptValue& v) { s.SetEditModify(v.ToBool()); })};
    m["FontName"] = {
        [](T& s) { return ScriptValue::Of(Variant(s.FontName())); },
        Let<T>("FontName", [](T& s, const ScriptValue& v) { s.SetFontName(v.ToText()); })};
    m["FontSize"] = {[](T& s) { return ScriptValue::OfFloat(s.FontSize()); },
                     Let<T>("FontSize", [](T& s, const ScriptValue& v) {
                       s.SetFontSize(static_cast<float>(v.ToDouble()));
                     })};
    m["SheetRecordset"] = {
        [](T& s) { return ScriptValue::ObjectOrNothing(s.SheetRecordset() != nullptr); },
        Let<T>("SheetRecordset", [](T& s, const ScriptValue& v) {
          if (v.kind != ScriptValue::Kind::kNothing) {
            throw ScriptError(
                "set SheetRecordset takes Nothing; a data source is bound with `source`");
          }
          s.SetSheetRecordset(nullptr);
        })};
    if constexpr (requires(T & t) { t.Color_Caption(); }) {
      m["Color_Caption"] = {[](T& s) { return ScriptValue::OfColor(s.Color_Caption()); },
                            Let<T>("Color_Caption", [](T& s, const ScriptValue& v) {
                              s.SetColor_Caption(v.ToColor());
                            })};
      m["Color_Active"] = {[](T& s) { return ScriptValue::OfColor(s.Color_Active()); },
                           Let<T>("Color_Active", [](T& s, const ScriptValue& v) {
                             s.SetColor_Active(v.ToColor());
                           })};
    }
    m["Color_Title_Text"] = {[](T& s) { return ScriptValue::OfColor(s.Color_Title_Text()); },
                             Let<T>("Color_Title_Text", [](T& s, const ScriptValue& v) {
                               s.SetColor_Title_Text(v.ToColor());
                             })};
    m["Color_Background"] = {[](T& s) { return ScriptValue::OfColor(s.Color_Background()); },
                             Let<T>("Color_Background", [](T& s, const ScriptValue& v) {
                               s.SetColor_Background(v.ToColor());
                             })};
    return map;
  }();
  return *table;
}

template <typename T>
const std::map<std::string, Method<T>>& Methods() {
  static const auto* const table = [] {
    auto* map = new std::map<std::string, Method<T>>();
    auto& m = *map;
    m["InitDisplay"] = {0, [](T& s, const std::vector<ScriptValue>&) -> std::optional<ScriptValue> {
                          if constexpr (std::is_void_v<decltype(s.InitDisplay())>) {
                            s.InitDisplay();
                            return std::nullopt;
                          } else {
                            return BoolResult(s.InitDisplay());
                          }
                        }};
    m["SysSetDefaultTitles"] = {0, [](T& s, const std::vector<ScriptValue>&) {
                                  return BoolResult(s.SysSetDefaultTitles());
                                }};
    m["Save"] = {0, [](T& s, const std::vector<ScriptValue>&) { return BoolResult(s.Save()); }};
    m["SaveField"] = {
        0, [](T& s, const std::vector<ScriptValue>&) { return BoolResult(s.SaveField()); }};
    if constexpr (requires(T & t) { t.TxtEdit(teCopy); }) {
      m["TxtEdit"] = {1, [](T& s, const std::vector<ScriptValue>& a) {
                        return BoolResult(s.TxtEdit(static_cast<TextEditMode>(a[0].ToLong())));
                      }};
      m["GetControlStatus"] = {
          1, [](T& s, const std::vector<ScriptValue>& a) -> std::optional<ScriptValue> {
            return ScriptValue::Of(
                Variant(static_cast<int32_t>(s.GetControlStatus(a[0].ToText()))));
          }};
      m["ControlCommand"] = {1, [](T& s, const std::vector<ScriptValue>& a) {
                               return BoolResult(s.ControlCommand(a[0].ToText()));
                             }};
    }
    return map;
  }();
  return *table;
}

// The adapter of a public control class T: Sheet (the seventeen entity sheets),
// AppointmentSheet or CurrencySheet.
template <typename T>
class Adapter : public ControlAdapter {
 public:
  Adapter(std::string class_name, std::unique_ptr<T> control)
      : class_name_(std::move(class_name)), control_(std::move(control)) {}

  const std::string& ClassName() const override { return class_name_; }
  UserControl& Host() const override { return control_->Host(); }
  void AddObserver(SheetEvents* observer) override { control_->AddObserver(observer); }
  void RemoveObserver(SheetEvents* observer) override { control_->RemoveObserver(observer); }
  void WriteProperties(PropertyBag& bag) const override { control_->WriteProperties(bag); }
  void SetDataSource(DataSource* source) override { control_->SetSheetRecordset(source); }
  ClsSheetsTitles* Titles() override { return &control_->SheetTitles(); }
  ClsSheetsUserCommands* Commands() override {
    if constexpr (requires(T & t) { t.SheetUserCommands(); }) {
      return &control_->SheetUserCommands();
    } else {
      return nullptr;
    }
  }

  bool Get(const std::string& name, ScriptValue* out) override {
    const auto it = Properties<T>().find(name);
    if (it == Properties<T>().end() || !it->second.get) return false;
    *out = it->second.get(*control_);
    return true;
  }

  bool Set(const std::string& name, const std::vector<ScriptValue>& args) override {
    const auto it = Properties<T>().find(name);
    if (it == Properties<T>().end()) return false;
    if (!it->second.set) throw ScriptError(name + " is read-only");
    it->second.set(*control_, args);
    return true;
  }

  bool Call(const std::string& name, const std::vector<ScriptValue>& args,
            std::optional<ScriptValue>* result) override {
    const auto it = Methods<T>().find(name);
    if (it == Methods<T>().end()) return false;
    RequireArgs(name, args, it->second.arity);
    *result = it->second.call(*control_, args);
    return true;
  }

  SFText* TextEditorOf(const Control& control) const override {
    for (const auto& editor : control_->EngineForTest().Txt_Value().Elements()) {
      if (&editor->Host() == &control) return editor.get();
    }
    return nullptr;
  }
  SFCheck* CheckEditorOf(const Control& control) const override {
    for (const auto& editor : control_->EngineForTest().Chk_Value().Elements()) {
      if (&editor->Host() == &control) return editor.get();
    }
    return nullptr;
  }

 private:
  std::string class_name_;
  std::unique_ptr<T> control_;
};

// The adapter of a control the registry created, by its class.
template <typename T>
std::unique_ptr<ControlAdapter> Adapt(const std::string& class_name,
                                      std::unique_ptr<SheetControl>& control) {
  T* typed = dynamic_cast<T*>(control.get());
  if (typed == nullptr) return nullptr;
  control.release();
  return std::make_unique<Adapter<T>>(class_name, std::unique_ptr<T>(typed));
}

}  // namespace

std::unique_ptr<ControlAdapter> CreateControl(const std::string& class_name, Toolkit& toolkit,
                                              Container& parent, const std::string& name,
                                              const PropertyBag* bag) {
  if (FindControlClass(class_name) == nullptr) return nullptr;
  std::unique_ptr<SheetControl> control =
      tarnsheets::CreateControl(toolkit, parent, class_name, name, bag);
  if (auto adapter = Adapt<Sheet>(class_name, control)) return adapter;
  if (auto adapter = Adapt<AppointmentSheet>(class_name, control)) return adapter;
  return Adapt<CurrencySheet>(class_name, control);
}

std::vector<std::string> ControlClassNames() {
  std::vector<std::string> names;
  for (const ControlClass& control_class : ControlClasses()) {
    names.emplace_back(control_class.name);
  }
  return names;
}

}  // namespace tarnsheets
