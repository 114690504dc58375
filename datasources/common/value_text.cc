#include "datasources/common/value_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "platform/utf8.h"
#include "tarnsheets/data_source.h"

namespace tarnsheets {
namespace {

std::string_view Trim(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.remove_suffix(1);
  return s;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Digits with "," grouping by thousands in the whole part and an optional fraction.
bool ReadPlainNumber(std::string_view s, double* out) {
  if (s.empty()) return false;
  std::string digits;
  size_t i = 0;
  size_t group = 0;
  bool grouped = false;
  bool any = false;
  for (; i < s.size() && (IsDigit(s[i]) || s[i] == ','); ++i) {
    if (s[i] == ',') {
      // The first group has 1 to 3 digits, every later one exactly 3.
      if (!any || (grouped && group != 3) || (!grouped && group > 3)) return false;
      grouped = true;
      group = 0;
      continue;
    }
    digits += s[i];
    ++group;
    any = true;
  }
  if (grouped && group != 3) return false;
  if (i < s.size() && s[i] == '.') {
    digits += '.';
    ++i;
    for (; i < s.size() && IsDigit(s[i]); ++i) {
      digits += s[i];
      any = true;
    }
  }
  if (!any || i != s.size()) return false;
  double v = 0;
  auto [p, ec] =
      std::from_chars(digits.data(), digits.data() + digits.size(), v, std::chars_format::fixed);
  if (ec != std::errc() || p != digits.data() + digits.size()) return false;
  *out = v;
  return true;
}

bool StripPrefix(std::string_view* s, std::string_view prefix) {
  if (prefix.empty() || s->substr(0, prefix.size()) != prefix) return false;
  s->remove_prefix(prefix.size());
  *s = Trim(*s);
  return true;
}

bool ReadDateText(std::string_view text, Date* out, bool* has_time) {
  std::string s(Trim(text));
  // Slashes in the date part are read as ISO hyphens.
  const size_t blank = s.find_first_of(" T");
  for (size_t i = 0; i < s.size() && i < blank; ++i) {
    if (s[i] == '/') s[i] = '-';
  }
  if (!ParseIsoDate(s, out)) return false;
  *has_time = s.find(':') != std::string::npos;
  return true;
}

// '*' any run, '?' one character; the whole of `text` must be covered.
bool Glob(const std::u32string& pattern, const std::u32string& text) {
  size_t p = 0, t = 0, star = std::u32string::npos, mark = 0;
  while (t < text.size()) {
    if (p < pattern.size() && (pattern[p] == U'?' || pattern[p] == text[t])) {
      ++p;
      ++t;
    } else if (p < pattern.size() && pattern[p] == U'*') {
      star = p++;
      mark = t;
    } else if (star != std::u32string::npos) {
      p = star + 1;
      t = ++mark;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == U'*') ++p;
  return p == pattern.size();
}

// The number of plain characters that `pattern` starts with when nothing but stars follows them
// (a text condition without wildcards of its own), otherwise npos.
size_t PlainPrefix(const std::u32string& pattern) {
  const size_t plain = std::min(pattern.find_first_of(U"*?"), pattern.size());
  return pattern.find_first_not_of(U'*', plain) == std::u32string::npos ? plain
                                                                        : std::u32string::npos;
}

// Glob(pattern, utf8::FoldToCodePoints(text)), where `plain` is PlainPrefix(pattern). A pattern of
// plain characters followed by nothing but stars is compared as the text is read, folding one
// character at a time and stopping at the first difference: no folded copy of the text is made.
bool FoldedGlob(const std::u32string& pattern, size_t plain, std::string_view text) {
  if (plain == std::u32string::npos) return Glob(pattern, utf8::FoldToCodePoints(text));
  size_t i = 0;
  for (size_t p = 0; p < plain; ++p) {
    if (i >= text.size()) return false;
    const unsigned char b = static_cast<unsigned char>(text[i]);
    char32_t c;
    if (b < 0x80) {
      c = b >= 'A' && b <= 'Z' ? b + 32 : b;
      ++i;
    } else {
      c = utf8::FoldCodePoint(utf8::Next(text, &i));
    }
    if (c != pattern[p]) return false;
  }
  // Without a star the whole text must be covered.
  return plain < pattern.size() || i == text.size();
}

bool IsTextType(int32_t t) { return t == kDataTypeText || t == kDataTypePlainText; }
bool IsAmountType(int32_t t) {
  return t == kDataTypeMoney || t == kDataTypeNumber || t == kDataTypeWholeNumber;
}

}  // namespace

bool ReadAmount(std::string_view text, const std::vector<std::string>& symbols, bool percent,
                double* out, std::string* reason) {
  std::string_view s = Trim(text);
  bool negative = false;
  if (!s.empty() && s.front() == '-') {
    negative = true;
    s = Trim(s.substr(1));
  } else if (!s.empty() && s.front() == '+') {
    s = Trim(s.substr(1));
  }
  // The longest symbol that stands in front wins ("US$" before "$").
  std::vector<std::string> ordered;
  for (const std::string& sym : symbols) {
    if (!sym.empty()) ordered.push_back(sym);
  }
  std::sort(ordered.begin(), ordered.end(),
            [](const std::string& a, const std::string& b) { return a.size() > b.size(); });
  for (const std::string& sym : ordered) {
    if (StripPrefix(&s, sym)) break;
  }
  if (!negative && !s.empty() && s.front() == '-') {
    negative = true;
    s = Trim(s.substr(1));
  }
  if (!negative && !s.empty() && s.back() == '-') {
    negative = true;
    s = Trim(s.substr(0, s.size() - 1));
  }
  bool has_percent = false;
  if (!s.empty() && s.back() == '%') {
    if (!percent) {
      *reason = "a percent sign is taken only in a percent field";
      return false;
    }
    has_percent = true;
    s = Trim(s.substr(0, s.size() - 1));
  }
  (void)has_percent;
  double v = 0;
  if (!ReadPlainNumber(s, &v)) {
    *reason = ordered.empty() ? "it is not a number"
                              : "it is not an amount (digits, with or without the symbol \"" +
                                    ordered.back() + "\")";
    return false;
  }
  if (percent) v /= 100;
  *out = negative ? -v : v;
  return true;
}

bool ReadFieldValue(const Variant& input, const FieldShape& shape,
                    const std::vector<std::string>& symbols, Variant* out, std::string* reason) {
  if (input.IsEmpty() || input.IsNull() ||
      (input.IsString() && Trim(input.StringValue()).empty() && !IsTextType(shape.data_type))) {
    *out = Variant::Null();
    return true;
  }
  switch (shape.data_type) {
    case kDataTypeText:
    case kDataTypePlainText: {
      const std::string text = input.AsText();
      *out = text.empty() ? Variant::Null() : Variant(text);
      return true;
    }
    case kDataTypeYesNo: {
      if (input.IsBoolean()) {
        *out = input;
        return true;
      }
      if (input.IsString()) {
        const std::string_view s = Trim(input.StringValue());
        if (s == "True" || s == "true" || s == "TRUE") {
          *out = Variant(true);
          return true;
        }
        if (s == "False" || s == "false" || s == "FALSE") {
          *out = Variant(false);
          return true;
        }
        double v = 0;
        if (!ParseNumber(s, &v) || !(std::fabs(v) <= std::numeric_limits<int32_t>::max())) {
          *reason = "a yes/no field takes a number, True or False";
          return false;
        }
        *out = Variant(static_cast<int32_t>(std::nearbyint(v)));
        return true;
      }
      if (input.IsNumber()) {
        const double v = input.ToDouble();
        if (!(std::fabs(v) <= std::numeric_limits<int32_t>::max())) {
          *reason = "the number is too large";
          return false;
        }
        *out = Variant(static_cast<int32_t>(std::nearbyint(v)));
        return true;
      }
      *reason = "a yes/no field takes a number, True or False";
      return false;
    }
    case kDataTypeDate: {
      if (input.IsDate()) {
        *out = input;
        return true;
      }
      if (input.IsNumber()) {
        *out = Variant(Date{input.ToDouble()});
        return true;
      }
      Date d;
      bool has_time = false;
      if (!input.IsString() || !ReadDateText(input.StringValue(), &d, &has_time)) {
        *reason =
            "it is not a date (yyyy-mm-dd, yyyy-mm-dd hh:nn:ss, yyyy-mm-dd hh:nn) or a time "
            "(hh:nn:ss, hh:nn)";
        return false;
      }
      *out = Variant(d);
      return true;
    }
    case kDataTypeMoney:
    case kDataTypeNumber:
    case kDataTypeWholeNumber: {
      double v = 0;
      if (input.IsNumber()) {
        v = input.ToDouble();
      } else if (input.IsString()) {
        const bool percent =
            shape.data_type == kDataTypeNumber && shape.number_kind == kNumberKindPercent;
        const std::vector<std::string> none;
        if (!ReadAmount(input.StringValue(), shape.data_type == kDataTypeMoney ? symbols : none,
                        percent, &v, reason)) {
          return false;
        }
      } else {
        *reason = "it is not a number";
        return false;
      }
      if (!std::isfinite(v)) {
        *reason = "it is not a finite number";
        return false;
      }
      if (shape.data_type == kDataTypeWholeNumber) {
        const double r = std::nearbyint(v);
        if (!(r >= std::numeric_limits<int32_t>::min() &&
              r <= std::numeric_limits<int32_t>::max())) {
          *reason = "the number is too large for a whole-number field";
          return false;
        }
        *out = Variant(static_cast<int32_t>(r));
      } else {
        *out = Variant(v);
      }
      return true;
    }
    default:
      // A field of a type this source does not interpret keeps what it is given.
      *out = input;
      return true;
  }
}

bool QueryCondition::ParseOperand(std::string_view text, const FieldShape& shape,
                                  const std::vector<std::string>& symbols, Operand* out,
                                  std::string* reason) {
  text = Trim(text);
  if (text.empty()) {
    *reason = "a comparison needs a value";
    return false;
  }
  if (shape.data_type == kDataTypeDate) {
    Date d;
    bool has_time = false;
    if (!ReadDateText(text, &d, &has_time)) {
      *reason = "\"" + std::string(text) + "\" is not a date (yyyy-mm-dd or yyyy-mm-dd hh:nn:ss)";
      return false;
    }
    out->lo = d.serial;
    out->exact = has_time;
    out->hi = has_time ? d.serial : d.serial + 1;
    return true;
  }
  double v = 0;
  const bool percent =
      shape.data_type == kDataTypeNumber && shape.number_kind == kNumberKindPercent;
  if (!ReadAmount(text, shape.data_type == kDataTypeMoney ? symbols : std::vector<std::string>{},
                  percent, &v, reason)) {
    *reason = "\"" + std::string(text) + "\": " + *reason;
    return false;
  }
  out->lo = out->hi = v;
  out->exact = true;
  return true;
}

bool QueryCondition::Parse(std::string_view text, const FieldShape& shape,
                           const std::vector<std::string>& symbols, QueryCondition* out,
                           std::string* reason) {
  text = Trim(text);
  QueryCondition c;
  if (IsTextType(shape.data_type)) {
    c.kind_ = Kind::kText;
    c.pattern_ = utf8::FoldToCodePoints(text);
    c.pattern_ += U'*';  // a prefix
    c.plain_ = PlainPrefix(c.pattern_);
    *out = std::move(c);
    return true;
  }
  if (shape.data_type == kDataTypeYesNo) {
    if (text != "1" && text != "0") {
      *reason = "a yes/no condition is \"1\", \"0\" or empty";
      return false;
    }
    c.kind_ = Kind::kYesNo;
    c.yes_ = text == "1";
    *out = std::move(c);
    return true;
  }
  if (!IsAmountType(shape.data_type) && shape.data_type != kDataTypeDate) {
    *reason = "this field cannot be queried";
    return false;
  }
  c.kind_ = Kind::kCompare;
  const size_t range = text.find("..");
  if (range != std::string_view::npos) {
    c.op_ = Op::kBetween;
    if (!ParseOperand(text.substr(0, range), shape, symbols, &c.a_, reason) ||
        !ParseOperand(text.substr(range + 2), shape, symbols, &c.b_, reason)) {
      if (reason->empty()) *reason = "a range is written a..b";
      return false;
    }
    *out = std::move(c);
    return true;
  }
  static const struct {
    const char* token;
    Op op;
  } kOps[] = {{"<=", Op::kLe}, {">=", Op::kGe}, {"<>", Op::kNe},
              {"<", Op::kLt},  {">", Op::kGt},  {"=", Op::kEq}};
  std::string_view operand = text;
  c.op_ = Op::kEq;
  for (const auto& o : kOps) {
    if (text.substr(0, std::char_traits<char>::length(o.token)) == o.token) {
      c.op_ = o.op;
      operand = text.substr(std::char_traits<char>::length(o.token));
      break;
    }
  }
  if (!ParseOperand(operand, shape, symbols, &c.a_, reason)) return false;
  *out = std::move(c);
  return true;
}

bool QueryCondition::MatchesText(std::string_view utf8) const {
  return kind_ == Kind::kText && FoldedGlob(pattern_, plain_, utf8);
}

bool QueryCondition::Matches(const Variant& value) const {
  switch (kind_) {
    case Kind::kText:
      if (value.IsNull() || value.IsEmpty()) return false;
      return FoldedGlob(pattern_, plain_, value.AsText());
    case Kind::kYesNo: {
      if (value.IsNull() || value.IsEmpty()) return !yes_;
      bool zero = false;
      try {
        zero = value.EqualsZero();
      } catch (const Failure&) {
        return false;
      }
      return yes_ ? !zero : zero;
    }
    case Kind::kCompare: {
      if (value.IsNull() || value.IsEmpty() || value.IsString()) return false;
      const double x = value.IsDate() ? value.DateValue().serial : value.ToDouble();
      const auto in = [x](const Operand& o) { return o.exact ? x == o.lo : x >= o.lo && x < o.hi; };
      switch (op_) {
        case Op::kEq:
          return in(a_);
        case Op::kNe:
          return !in(a_);
        case Op::kLt:
          return x < a_.lo;
        case Op::kGe:
          return x >= a_.lo;
        case Op::kLe:
          return a_.exact ? x <= a_.lo : x < a_.hi;
        case Op::kGt:
          return a_.exact ? x > a_.lo : x >= a_.hi;
        case Op::kBetween:
          return x >= a_.lo && (b_.exact ? x <= b_.lo : x < b_.hi);
      }
      return false;
    }
  }
  return false;
}

}  // namespace tarnsheets
