// SheetControl: what every public control of the library has in common, whatever its interface:
// the toolkit control it lives in, its class name, and its stored properties. The registry
// (family/registry.h) creates any of the nineteen controls by class name as a SheetControl; a host
// reaches the control's own interface through Sheet, CurrencySheet or AppointmentSheet.
#ifndef TARNSHEETS_SHEET_CONTROL_H_
#define TARNSHEETS_SHEET_CONTROL_H_

#include <string>

namespace tarnsheets {

class PropertyBag;
class UserControl;

class SheetControl {
 public:
  virtual ~SheetControl() = default;

  // "UserInfo", "Opportunity", ..., "Currency", "Appointment".
  virtual std::string ClassName() const = 0;
  // The toolkit control the control lives in; the host places and sizes it.
  virtual UserControl& Host() const = 0;
  // Persistence: the container asks for the stored properties whenever it pleases.
  virtual void WriteProperties(PropertyBag& bag) const = 0;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_SHEET_CONTROL_H_
