// RecordsetFilter: the parsed form of a recordset's Filter text and its test of one row.
//
// Standard library only, so that every recordset (in memory, over a database) filters alike.
//
// The grammar, keywords in any case:
//   filter      := condition { OR condition }
//   condition   := clause { AND clause }
//   clause      := '(' filter ')' | comparison
//   comparison  := column operator value
//   column      := a name of letters, digits and '_' (not starting with a digit; any non-ASCII
//                  letter counts as a letter), or any text in brackets: [Display Name]
//   operator    := '=' | '<>' | '<' | '>' | '<=' | '>=' | LIKE
//   value       := 'text' (a quote inside is written twice) | number (sign, digits, fraction,
//                  exponent) | #yyyy-mm-dd hh:nn:ss# (a date, the time optional)
// LIKE takes a text whose '*' and '%' stand for any run of characters, anywhere in the pattern.
//
// A comparison is never true for a Null cell. A number compares with numbers, Booleans (-1, 0),
// dates (their serial) and texts that read as numbers; a text compares with texts exactly, with
// case, character by character; a text against a number or date cell is read as a number or an
// ISO date first. A comparison whose two sides cannot be brought to one type is false.
#ifndef TARNSHEETS_DATASOURCES_RECORDSET_FILTER_H_
#define TARNSHEETS_DATASOURCES_RECORDSET_FILTER_H_

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tarnsheets/variant.h"

namespace tarnsheets {

class RecordsetFilter {
 public:
  // The filter that every row passes.
  RecordsetFilter() = default;

  // Parses `text`. An empty text, or one of blanks only, gives the filter that every row passes.
  // A text that is not of the grammar fails with kErrRecordsetArguments and a description that
  // quotes the text and names the (one-based, in characters) position where it went wrong.
  static RecordsetFilter Parse(std::string_view text);

  // True when every row passes (no condition).
  bool PassesAll() const { return nodes_.empty(); }

  // The column names that the comparisons name, each once, in order of first appearance.
  const std::vector<std::string>& Columns() const { return columns_; }

  // Whether a row passes. `cell(i)` gives the row's value in the column Columns()[i].
  bool Matches(const std::function<Variant(size_t)>& cell) const;

 private:
  enum class Op { kEqual, kNotEqual, kLess, kGreater, kLessEqual, kGreaterEqual, kLike };
  struct Node {
    enum class Kind { kAnd, kOr, kCompare } kind = Kind::kCompare;
    int32_t left = -1;   // kAnd, kOr: node indices
    int32_t right = -1;  //
    size_t column = 0;   // kCompare: index into columns_
    Op op = Op::kEqual;
    Variant value;  // kCompare: a text, a Double or a Date
  };
  class Parser;

  bool Evaluate(int32_t node, const std::function<Variant(size_t)>& cell) const;
  static bool Compare(const Variant& cell, Op op, const Variant& value);

  std::vector<Node> nodes_;
  int32_t root_ = -1;
  std::vector<std::string> columns_;
};

// True when `text` matches `pattern`, in which '*' and '%' stand for any run of characters
// (none included). Every other character must match exactly.
bool MatchesLikePattern(std::string_view text, std::string_view pattern);

}  // namespace tarnsheets

#endif  // TARNSHEETS_DATASOURCES_RECORDSET_FILTER_H_
