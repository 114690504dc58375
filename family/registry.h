// The registry of the library's nineteen public controls: the seventeen entity sheets,
// `Appointment` and `Currency`. Each class has a fixed class identifier, a fixed identifier of its
// public interface and one of its event interface (constant UUID texts), a toolbox picture for a
// form designer, and a resource number. A host or a designer creates any of them by class name.
#ifndef TARNSHEETS_FAMILY_REGISTRY_H_
#define TARNSHEETS_FAMILY_REGISTRY_H_

#include <array>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "tarnsheets/sheet_control.h"
#include "tarnsheets/toolkit.h"
#include "tarnsheets/types.h"

namespace tarnsheets {

class Container;
class PropertyBag;
class Toolkit;

// One public control class. The identifiers are lower-case UUID texts (8-4-4-4-12 hex digits);
// they never change, for hosts and stored forms refer to the controls by them.
struct ControlClass {
  std::string_view name;          // "UserInfo", ..., "Appointment", "Currency"
  std::string_view class_id;      // the control class
  std::string_view interface_id;  // its public interface (`_UserInfo`, ...)
  std::string_view events_id;     // its event interface (`__UserInfo`, ...)
  int resource_id;                // where its toolbox picture stands: 30000 to 30018
};

// The nineteen classes in the family's order: the seventeen entity sheets in the order of
// EntityForms(), then "Appointment", then "Currency". Resource numbers run 30000 to 30018 in
// that order.
std::span<const ControlClass> ControlClasses();

// The class named `name` (exact, with case), or nullptr when there is none.
const ControlClass* FindControlClass(std::string_view name);

// The size of a toolbox picture, in pixels.
inline constexpr int kToolboxPictureWidth = 16;
inline constexpr int kToolboxPictureHeight = 15;

// A toolbox picture as 24-bit colours, row by row from the top, each row from left to right.
struct ToolboxBitmap {
  std::array<Color, kToolboxPictureWidth * kToolboxPictureHeight> pixels{};

  // REQUIRES: 0 <= x < kToolboxPictureWidth, 0 <= y < kToolboxPictureHeight.
  Color At(int x, int y) const { return pixels[y * kToolboxPictureWidth + x]; }
};

// The toolbox picture of a class: a small form outline with a caption bar in the class's own
// colour and the class's mark below it.
ToolboxBitmap ToolboxPixels(const ControlClass& control_class);

// The same as a toolkit picture, whose id is the class name.
Picture ToolboxPicture(const ControlClass& control_class);

// Creates the public control `class_name` (exact, with case) inside `parent`, named `name` in its
// container: without a bag as a form designer places a new instance, with one as a container
// loads a stored instance. An entity sheet comes back as a tarnsheets::Sheet over its designed
// form, with the family's drop-button glyphs.
//
// "Currency" and "Appointment" come back as a tarnsheets::CurrencySheet and a
// tarnsheets::AppointmentSheet over their designed forms.
//
// Fails with Failure(kErrInvalidProcedureCall) naming the class when no public control has that
// name, before anything is created. A failure of the bag passes to the caller.
std::unique_ptr<SheetControl> CreateControl(Toolkit& toolkit, Container& parent,
                                            std::string_view class_name, const std::string& name,
                                            const PropertyBag* bag = nullptr);

}  // namespace tarnsheets

#endif  // TARNSHEETS_FAMILY_REGISTRY_H_
