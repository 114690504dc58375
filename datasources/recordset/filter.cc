#include "datasources/recordset/filter.h"

#include <optional>
#include <utility>

#include "datasources/recordset/recordset_arguments.h"
#include "platform/utf8.h"
#include "tarnsheets/failure.h"
#include "tarnsheets/recordset.h"

namespace tarnsheets {
namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsNameStart(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}
bool IsNamePart(char c) { return IsNameStart(c) || IsDigit(c); }

// The one-based position, in characters as utf8::Next reads them, of the byte at `offset`; an
// offset inside a character names that character.
size_t CharacterPosition(std::string_view text, size_t offset) {
  size_t position = 1;
  for (size_t pos = 0; pos < text.size(); ++position) {
    size_t next = pos;
    utf8::Next(text, &next);
    if (next > offset) break;
    pos = next;
  }
  return position;
}

int Sign(double d) { return d < 0 ? -1 : (d > 0 ? 1 : 0); }

}  // namespace

class RecordsetFilter::Parser {
 public:
  Parser(std::string_view text, RecordsetFilter* filter) : text_(text), filter_(filter) {}

  void Run() {
    SkipBlanks();
    if (pos_ == text_.size()) return;  // no condition
    filter_->root_ = ParseOr();
    SkipBlanks();
    if (pos_ != text_.size()) {
      if (text_[pos_] == ')') Fail("a ')' without its '('");
      Fail("AND, OR or the end of the filter expected");
    }
  }

 private:
  [[noreturn]] void Fail(const std::string& what) { FailAt(pos_, what); }
  [[noreturn]] void FailAt(size_t offset, const std::string& what) {
    throw Failure(kErrRecordsetArguments,
                  std::string(kRecordsetArgumentsDescription) + " Filter \"" + std::string(text_) +
                      "\": " + what + " at position " +
                      std::to_string(CharacterPosition(text_, offset)) + ".");
  }

  void SkipBlanks() {
    while (pos_ < text_.size() && IsBlank(text_[pos_])) ++pos_;
  }

  // True, consuming it, when a keyword stands next (in any case, as a whole word).
  bool Keyword(std::string_view word) {
    SkipBlanks();
    if (text_.size() - pos_ < word.size()) return false;
    if (!EqualsIgnoringAsciiCase(text_.substr(pos_, word.size()), word)) return false;
    const size_t end = pos_ + word.size();
    if (end < text_.size() && IsNamePart(text_[end])) return false;
    pos_ = end;
    return true;
  }

  int32_t Add(Node node) {
    filter_->nodes_.push_back(std::move(node));
    return static_cast<int32_t>(filter_->nodes_.size() - 1);
  }

  int32_t Join(Node::Kind kind, int32_t left, int32_t right) {
    Node node;
    node.kind = kind;
    node.left = left;
    node.right = right;
    return Add(std::move(node));
  }

  int32_t ParseOr() {
    int32_t left = ParseAnd();
    while (Keyword("or")) left = Join(Node::Kind::kOr, left, ParseAnd());
    return left;
  }

  int32_t ParseAnd() {
    int32_t left = ParseClause();
    while (Keyword("and")) left = Join(Node::Kind::kAnd, left, ParseClause());
    return left;
  }

  int32_t ParseClause() {
    SkipBlanks();
    if (pos_ < text_.size() && text_[pos_] == '(') {
      ++pos_;
      const int32_t inner = ParseOr();
      SkipBlanks();
      if (pos_ >= text_.size() || text_[pos_] != ')') Fail("')' expected");
      ++pos_;
      return inner;
    }
    return ParseComparison();
  }

  int32_t ParseComparison() {
    Node node;
    node.kind = Node::Kind::kCompare;
    node.column = ColumnIndex(ParseColumn());
    node.op = ParseOperator();
    node.value = ParseValue(node.op);
    return Add(std::move(node));
  }

  std::string ParseColumn() {
    SkipBlanks();
    if (pos_ >= text_.size()) Fail("a column name expected");
    if (text_[pos_] == '[') {
      const size_t start = pos_;
      const size_t close = text_.find(']', pos_ + 1);
      if (close == std::string_view::npos) FailAt(start, "a '[' without its ']'");
      std::string name(text_.substr(pos_ + 1, close - pos_ - 1));
      if (name.empty()) FailAt(start, "an empty column name");
      pos_ = close + 1;
      return name;
    }
    if (!IsNameStart(text_[pos_])) Fail("a column name expected");
    const size_t start = pos_;
    while (pos_ < text_.size() && IsNamePart(text_[pos_])) ++pos_;
    std::string name(text_.substr(start, pos_ - start));
    if (EqualsIgnoringAsciiCase(name, "and") || EqualsIgnoringAsciiCase(name, "or") ||
        EqualsIgnoringAsciiCase(name, "like")) {
      FailAt(start, "a column name expected");
    }
    return name;
  }

  size_t ColumnIndex(const std::string& name) {
    auto& columns = filter_->columns_;
    for (size_t i = 0; i < columns.size(); ++i) {
      if (EqualsIgnoringAsciiCase(columns[i], name)) return i;
    }
    columns.push_back(name);
    return columns.size() - 1;
  }

  Op ParseOperator() {
    SkipBlanks();
    const std::string_view rest = text_.substr(pos_);
    if (rest.starts_with("<>")) return Consume(2, Op::kNotEqual);
    if (rest.starts_with("<=")) return Consume(2, Op::kLessEqual);
    if (rest.starts_with(">=")) return Consume(2, Op::kGreaterEqual);
    if (rest.starts_with("=")) return Consume(1, Op::kEqual);
    if (rest.starts_with("<")) return Consume(1, Op::kLess);
    if (rest.starts_with(">")) return Consume(1, Op::kGreater);
    if (Keyword("like")) return Op::kLike;
    Fail("a comparison operator (=, <>, <, >, <=, >=, LIKE) expected");
  }

  Op Consume(size_t length, Op op) {
    pos_ += length;
    return op;
  }

  Variant ParseValue(Op op) {
    SkipBlanks();
    if (pos_ >= text_.size()) Fail("a value expected");
    const size_t start = pos_;
    const char c = text_[pos_];
    if (c == '\'') return ParseText(start);
    if (op == Op::kLike) Fail("LIKE takes a quoted text");
    if (c == '#') {
      const size_t close = text_.find('#', pos_ + 1);
      if (close == std::string_view::npos) FailAt(start, "a '#' date without its closing '#'");
      Date date;
      if (!ParseIsoDate(text_.substr(pos_ + 1, close - pos_ - 1), &date)) {
        FailAt(start, "no valid date between the '#' signs");
      }
      pos_ = close + 1;
      return Variant(date);
    }
    if (IsDigit(c) || c == '-' || c == '+' || c == '.') return ParseNumberValue(start);
    Fail("a value ('text', a number or #date#) expected");
  }

  Variant ParseText(size_t start) {
    std::string value;
    ++pos_;  // the opening quote
    while (true) {
      if (pos_ >= text_.size()) FailAt(start, "a quoted text without its closing quote");
      if (text_[pos_] == '\'') {
        if (pos_ + 1 < text_.size() && text_[pos_ + 1] == '\'') {
          value.push_back('\'');
          pos_ += 2;
          continue;
        }
        ++pos_;
        break;
      }
      value.push_back(text_[pos_++]);
    }
    return Variant(std::move(value));
  }

  Variant ParseNumberValue(size_t start) {
    size_t end = pos_;
    if (text_[end] == '-' || text_[end] == '+') ++end;
    bool digits = false;
    while (end < text_.size() && IsDigit(text_[end])) {
      ++end;
      digits = true;
    }
    if (end < text_.size() && text_[end] == '.') {
      ++end;
      while (end < text_.size() && IsDigit(text_[end])) {
        ++end;
        digits = true;
      }
    }
    if (!digits) FailAt(start, "a number expected");
    if (end < text_.size() && (text_[end] == 'e' || text_[end] == 'E')) {
      size_t exponent = end + 1;
      if (exponent < text_.size() && (text_[exponent] == '-' || text_[exponent] == '+')) {
        ++exponent;
      }
      if (exponent >= text_.size() || !IsDigit(text_[exponent])) {
        FailAt(end, "an exponent without digits");
      }
      while (exponent < text_.size() && IsDigit(text_[exponent])) ++exponent;
      end = exponent;
    }
    if (end < text_.size() && IsNamePart(text_[end])) FailAt(end, "a number expected");
    double value = 0;
    if (!ParseNumber(text_.substr(start, end - start), &value)) {
      FailAt(start, "a number expected");
    }
    pos_ = end;
    return Variant(value);
  }

  std::string_view text_;
  RecordsetFilter* filter_;
  size_t pos_ = 0;
};

RecordsetFilter RecordsetFilter::Parse(std::string_view text) {
  RecordsetFilter filter;
  Parser(text, &filter).Run();
  return filter;
}

bool RecordsetFilter::Matches(const std::function<Variant(size_t)>& cell) const {
  if (root_ < 0) return true;
  return Evaluate(root_, cell);
}

bool RecordsetFilter::Evaluate(int32_t index, const std::function<Variant(size_t)>& cell) const {
  const Node& node = nodes_[static_cast<size_t>(index)];
  switch (node.kind) {
    case Node::Kind::kAnd:
      return Evaluate(node.left, cell) && Evaluate(node.right, cell);
    case Node::Kind::kOr:
      return Evaluate(node.left, cell) || Evaluate(node.right, cell);
    case Node::Kind::kCompare:
      return Compare(cell(node.column), node.op, node.value);
  }
  return false;
}

namespace {

// The three-way comparison of a cell with a filter value, or nothing when the two cannot be
// brought to one type (or the cell is Null).
std::optional<int> CompareValues(const Variant& cell, const Variant& value) {
  if (cell.IsNull()) return std::nullopt;
  // The cell as a number, when it is one.
  std::optional<double> cell_number;
  if (cell.IsNumber() || cell.IsBoolean() || cell.IsDate()) {
    cell_number = cell.ToDouble();
  }
  if (value.IsString()) {
    const std::string& text = value.StringValue();
    if (cell.IsDate()) {
      Date date;
      if (!ParseIsoDate(text, &date)) return std::nullopt;
      return Sign(cell_number.value() - date.serial);
    }
    if (cell.IsBoolean()) {
      double number = 0;
      if (ParseNumber(text, &number)) return Sign(cell_number.value() - number);
      if (EqualsIgnoringAsciiCase(text, "True")) return Sign(cell_number.value() + 1);
      if (EqualsIgnoringAsciiCase(text, "False")) return Sign(cell_number.value());
      return std::nullopt;
    }
    if (cell_number) {
      double number = 0;
      if (!ParseNumber(text, &number)) return std::nullopt;
      return Sign(cell_number.value() - number);
    }
    const int order = cell.AsText().compare(text);  // Empty reads as ""
    return order < 0 ? -1 : (order > 0 ? 1 : 0);
  }
  // A number or a date.
  const double number = value.IsDate() ? value.DateValue().serial : value.ToDouble();
  if (cell_number) return Sign(cell_number.value() - number);
  if (cell.IsEmpty()) return Sign(0 - number);
  if (value.IsDate()) {
    Date date;
    if (!ParseIsoDate(cell.StringValue(), &date)) return std::nullopt;
    return Sign(date.serial - number);
  }
  double cell_text_number = 0;
  if (!ParseNumber(cell.StringValue(), &cell_text_number)) return std::nullopt;
  return Sign(cell_text_number - number);
}

}  // namespace

bool RecordsetFilter::Compare(const Variant& cell, Op op, const Variant& value) {
  if (op == Op::kLike) {
    if (cell.IsNull()) return false;
    return MatchesLikePattern(cell.AsText(), value.StringValue());
  }
  const std::optional<int> order = CompareValues(cell, value);
  if (!order) return false;
  switch (op) {
    case Op::kEqual:
      return *order == 0;
    case Op::kNotEqual:
      return *order != 0;
    case Op::kLess:
      return *order < 0;
    case Op::kGreater:
      return *order > 0;
    case Op::kLessEqual:
      return *order <= 0;
    case Op::kGreaterEqual:
      return *order >= 0;
    case Op::kLike:
      break;
  }
  return false;
}

bool MatchesLikePattern(std::string_view text, std::string_view pattern) {
  // Greedy match with backtracking to the last wildcard.
  size_t t = 0;
  size_t p = 0;
  size_t star_p = std::string_view::npos;
  size_t star_t = 0;
  while (t < text.size()) {
    if (p < pattern.size() && (pattern[p] == '*' || pattern[p] == '%')) {
      star_p = p++;
      star_t = t;
    } else if (p < pattern.size() && pattern[p] == text[t]) {
      ++p;
      ++t;
    } else if (star_p != std::string_view::npos) {
      p = star_p + 1;
      t = ++star_t;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && (pattern[p] == '*' || pattern[p] == '%')) ++p;
  return p == pattern.size();
}

}  // namespace tarnsheets
