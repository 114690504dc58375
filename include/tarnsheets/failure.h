// Failures: a number and a description, as the platform reports them.
//
// A trapping procedure catches a Failure, hands its number and description to its reporter and
// returns its failure result; an untrapped one lets it pass to its caller and finally the host.
#ifndef TARNSHEETS_FAILURE_H_
#define TARNSHEETS_FAILURE_H_

#include <cstdint>
#include <exception>
#include <string>

namespace tarnsheets {

// The platform's error numbers that the library raises or meets.
inline constexpr int32_t kErrInvalidProcedureCall = 5;
inline constexpr int32_t kErrOverflow = 6;
inline constexpr int32_t kErrSubscriptOutOfRange = 9;
inline constexpr int32_t kErrDivisionByZero = 11;
inline constexpr int32_t kErrTypeMismatch = 13;
inline constexpr int32_t kErrInvalidUseOfNull = 94;
inline constexpr int32_t kErrControlArrayElementMissing = 340;
inline constexpr int32_t kErrObjectAlreadyLoaded = 360;
inline constexpr int32_t kErrNotSupported = 438;  // a control kind without the property or method
inline constexpr int32_t kErrDuplicateKey = 457;
// A name or ordinal that a collection of fields or columns does not have: "Item cannot be found in
// the collection corresponding to the requested name or ordinal."
inline constexpr int32_t kErrItemNotFound = 3265;

// The base of object-defined error numbers. The library's own error is kObjectErrorBase + 500.
inline constexpr int32_t kObjectErrorBase = static_cast<int32_t>(0x80040000u);
inline constexpr int32_t kErrSheetApplication = kObjectErrorBase + 500;  // 0x800401F4

class Failure : public std::exception {
 public:
  Failure(int32_t number, std::string description);

  int32_t Number() const { return number_; }
  const std::string& Description() const { return description_; }

  // "NUMBER: DESCRIPTION", for logs and test output.
  const char* what() const noexcept override { return what_.c_str(); }

 private:
  int32_t number_;
  std::string description_;
  std::string what_;
};

// The platform's own description of one of the numbers above; the empty text for other numbers.
std::string PlatformErrorDescription(int32_t number);

// A Failure with the platform's description of `number`.
Failure PlatformFailure(int32_t number);

// Error 340 for a missing control-array element: "Control array element '7' doesn't exist".
Failure ControlArrayElementMissing(int32_t index);

}  // namespace tarnsheets

#endif  // TARNSHEETS_FAILURE_H_
