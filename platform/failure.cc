#include "tarnsheets/failure.h"

#include <utility>

namespace tarnsheets {

Failure::Failure(int32_t number, std::string description)
    : number_(number),
      description_(std::move(description)),
      what_(std::to_string(number_) + ": " + description_) {}

std::string PlatformErrorDescription(int32_t number) {
  switch (number) {
    case kErrInvalidProcedureCall:
      return "Invalid procedure call or argument";
    case kErrOverflow:
      return "Overflow";
    case kErrSubscriptOutOfRange:
      return "Subscript out of range";
    case kErrDivisionByZero:
      return "Division by zero";
    case kErrTypeMismatch:
      return "Type mismatch";
    case kErrInvalidUseOfNull:
      return "Invalid use of Null";
    case kErrControlArrayElementMissing:
      return "Control array element '%d' doesn't exist";
    case kErrObjectAlreadyLoaded:
      return "Object already loaded";
    case kErrNotSupported:
      return "Object doesn't support this property or method";
    case kErrDuplicateKey:
      return "This key is already associated with an element of this collection";
    default:
      return std::string();
  }
}

Failure PlatformFailure(int32_t number) {
  return Failure(number, PlatformErrorDescription(number));
}

Failure ControlArrayElementMissing(int32_t index) {
  return Failure(kErrControlArrayElementMissing,
                 "Control array element '" + std::to_string(index) + "' doesn't exist");
}

}  // namespace tarnsheets
