// The value formatter: applies a field's DisplayFormat to a value, as the sheets show numbers,
// money and dates.
#ifndef TARNSHEETS_FORMAT_H_
#define TARNSHEETS_FORMAT_H_

#include <string>
#include <string_view>

#include "tarnsheets/variant.h"

namespace tarnsheets {

// Formats `value` with `pattern` and returns the text. Never fails.
//
// Values: Null and Empty give the empty text whatever the pattern. A Boolean counts as -1 or 0,
// a date as its serial where a number is wanted, a number as a date serial where a date is
// wanted. A text that is a number is formatted as that number; a text in ISO date form
// ("yyyy-mm-dd hh:nn:ss" and its shorter forms) is formatted as that date under a date pattern;
// any other text comes back unchanged.
//
// An empty pattern gives the value as text (Variant::AsText).
//
// Date patterns hold date parts, case-insensitive: yyyy (year), yy (two-digit year), y (day of
// the year), m mm (month; minutes when the nearest part before it is an hour part, as in
// "hh:mm"), mmm mmmm (English month name, short and long), d dd (day), ddd dddd (English weekday
// name), h hh (hour), n nn (minutes), s ss (seconds), and AM/PM, am/pm, A/P, a/p (twelve-hour
// clock with that marker). Everything else is a literal separator. A date outside the years
// 100..9999 gives the value as text.
//
// Number patterns hold the placeholders 0 (a digit, or 0) and # (a digit, or nothing), one
// decimal point ".", grouping by a "," between integer placeholders, a "," right after the last
// integer placeholder (each one divides by 1000), "%" (each one multiplies by 100 and stands
// where written), and literal text. Up to three sections separated by ";" give the formats for
// positive, negative and zero values; a negative value under a one-section pattern gets a
// leading "-", unless it rounds to zero. Rounding is half away from zero on the value's
// 15-significant-digit decimal form, so 1.005 under "0.00" gives "1.01".
//
// Literal text: characters that are not pattern characters, text in double quotes, a character
// after a backslash. ASCII letters that are no pattern characters must be quoted or escaped.
//
// A malformed pattern (an unknown letter, an unterminated quote, a trailing backslash, a second
// decimal point, no placeholder in a number pattern, an unsupported run such as "yyy", an
// exponent part such as "0.00E+00", a named format such as "Short Date") gives the value as text.
std::string FormatValue(const Variant& value, std::string_view pattern);

}  // namespace tarnsheets

#endif  // TARNSHEETS_FORMAT_H_
