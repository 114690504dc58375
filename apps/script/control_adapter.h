// The public controls as the script host drives them: an adapter per control class maps the
// names of its properties and methods to calls, and a registry creates any public control by
// class name. A new control class is one more adapter and one more entry in the registry.
#ifndef TARNSHEETS_APPS_SCRIPT_CONTROL_ADAPTER_H_
#define TARNSHEETS_APPS_SCRIPT_CONTROL_ADAPTER_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "apps/script/script_value.h"

namespace tarnsheets {

class ClsSheetsTitles;
class ClsSheetsUserCommands;
class Container;
class Control;
class DataSource;
class PropertyBag;
class SFCheck;
class SFText;
class SheetEvents;
class Toolkit;
class UserControl;

class ControlAdapter {
 public:
  virtual ~ControlAdapter() = default;

  virtual const std::string& ClassName() const = 0;
  // The toolkit control the public control lives in.
  virtual UserControl& Host() const = 0;

  virtual void AddObserver(SheetEvents* observer) = 0;
  virtual void RemoveObserver(SheetEvents* observer) = 0;
  virtual void WriteProperties(PropertyBag& bag) const = 0;

  // The data source (nullptr: none), as the control's set accessor takes it.
  virtual void SetDataSource(DataSource* source) = 0;
  // The collections; nullptr when the class has none.
  virtual ClsSheetsTitles* Titles() = 0;
  virtual ClsSheetsUserCommands* Commands() = 0;

  // The property surface. Each returns false when the class has no member of that name (and
  // then does nothing); a failure of the member passes to the caller as tarnsheets::Failure.
  // Set may throw ScriptError for a wrong number of arguments.
  virtual bool Get(const std::string& name, ScriptValue* out) = 0;
  virtual bool Set(const std::string& name, const std::vector<ScriptValue>& args) = 0;
  // A method; `result` is left empty for a method without a result.
  virtual bool Call(const std::string& name, const std::vector<ScriptValue>& args,
                    std::optional<ScriptValue>* result) = 0;

  // The editor objects behind a control of the form, when it is one; nullptr otherwise.
  virtual SFText* TextEditorOf(const Control& control) const = 0;
  virtual SFCheck* CheckEditorOf(const Control& control) const = 0;
};

// Creates the public control `class_name` in `parent` under `name`, as a new instance (`bag`
// nullptr) or restored from `bag`. Returns nullptr when no public control has that class name.
// A public control that this build does not hold yet fails with Failure 5, saying so.
std::unique_ptr<ControlAdapter> CreateControl(const std::string& class_name, Toolkit& toolkit,
                                              Container& parent, const std::string& name,
                                              const PropertyBag* bag);

// The class names that CreateControl knows, in the family's order.
std::vector<std::string> ControlClassNames();

}  // namespace tarnsheets

#endif  // TARNSHEETS_APPS_SCRIPT_CONTROL_ADAPTER_H_
