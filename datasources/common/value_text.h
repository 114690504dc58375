// Reading an editor's text into a field's stored value, and query conditions by example.
//
// These are the rules by which every data source of ours (in memory, over SQLite, over a server)
// takes what a user typed:
// - text fields store the text as it is;
// - date fields take "yyyy-mm-dd hh:nn:ss", "yyyy-mm-dd hh:nn", "yyyy-mm-dd", "hh:nn:ss",
//   "hh:nn" (the layouts of the date kinds), with 'T' or '/' in their ISO places;
// - number fields take digits with an optional fraction, "," grouping by thousands and a leading
//   or trailing minus; a percent field reads the number as a percentage ("45" and "45%" both
//   give 0.45); whole-number fields round half to even;
// - money fields take the same, with or without the field's currency symbol, the minus before
//   or after the symbol or after the amount ("-$1,234.50", "$-1,234.50", "1,234.50-");
// - yes/no fields take numbers, "True" or "False";
// - an empty text (or Empty, or Null) stores Null in every field.
// Values that are not text (numbers, dates, Booleans handed over by code) are taken in their
// type where it fits the field.
#ifndef TARNSHEETS_DATASOURCES_COMMON_VALUE_TEXT_H_
#define TARNSHEETS_DATASOURCES_COMMON_VALUE_TEXT_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tarnsheets/variant.h"

namespace tarnsheets {

// The shape of a field that decides how its text is read.
struct FieldShape {
  int32_t data_type = 0;
  int32_t date_kind = 0;
  int32_t number_kind = 0;
};

// Reads `input` as a value of a field of `shape`. `symbols` are the currency symbols accepted
// before a money amount (the field's own symbol; empty entries are ignored). On success stores
// the value in *out and returns true; otherwise leaves *out, puts the reason in *reason (a
// sentence without the field's name, e.g. "it is not a date") and returns false.
bool ReadFieldValue(const Variant& input, const FieldShape& shape,
                    const std::vector<std::string>& symbols, Variant* out, std::string* reason);

// Reads an amount: the number and money rules above. `percent` divides by 100.
bool ReadAmount(std::string_view text, const std::vector<std::string>& symbols, bool percent,
                double* out, std::string* reason);

// A query condition of one field, entered as text.
// - text fields: a prefix, compared without regard to case (folded by utf8::FoldCodePoint, as
//   title keys are); '*' stands for any run of characters and '?' for one character (an invalid
//   byte counts as one character).
// - yes/no fields: "1" (the value is not 0), "0" (the value is 0 or Null).
// - number, money and date fields: "=a", "<a", "<=a", ">a", ">=a", "<>a", a range "a..b" (both
//   ends included) or a bare "a" (equal). A date written without a time stands for the whole
//   day: "=2026-03-01" matches any time of that day, "<=2026-03-01" includes the day.
// Null and Empty values match no condition but "0" on a yes/no field.
class QueryCondition {
 public:
  // Parses `text` (already trimmed, not empty) for a field of `shape`. On failure returns false
  // and puts the reason in *reason.
  static bool Parse(std::string_view text, const FieldShape& shape,
                    const std::vector<std::string>& symbols, QueryCondition* out,
                    std::string* reason);

  bool Matches(const Variant& value) const;
  // For a text condition: whether the stored text `utf8` matches, as Matches(Variant(text))
  // without building the Variant (false for a condition of another kind). A condition without
  // wildcards of its own is compared as the text is read, one folded character at a time,
  // stopping at the first difference.
  bool MatchesText(std::string_view utf8) const;

 private:
  enum class Kind { kText, kYesNo, kCompare };
  enum class Op { kEq, kNe, kLt, kLe, kGt, kGe, kBetween };
  // An operand spans [lo, hi): a number is exact (lo == hi), a date without time spans its day.
  struct Operand {
    double lo = 0, hi = 0;
    bool exact = true;
  };
  static bool ParseOperand(std::string_view text, const FieldShape& shape,
                           const std::vector<std::string>& symbols, Operand* out,
                           std::string* reason);

  Kind kind_ = Kind::kText;
  std::u32string pattern_;  // folded, for kText
  // The plain characters that pattern_ starts with when only stars follow them, else npos.
  size_t plain_ = std::u32string::npos;
  bool yes_ = false;  // for kYesNo
  Op op_ = Op::kEq;
  Operand a_, b_;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_DATASOURCES_COMMON_VALUE_TEXT_H_
