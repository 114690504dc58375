#include "tarnsheets/format.h"

#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace tarnsheets {
namespace {

// ---------------------------------------------------------------------------------------------
// Splitting a pattern into tokens.

enum class TokenKind {
  kLiteral,      // text: as written
  kDigitZero,    // 0
  kDigitHash,    // #
  kDecimal,      // .
  kComma,        // ,
  kPercent,      // %
  kYear4,        // yyyy
  kYear2,        // yy
  kDayOfYear,    // y
  kMonth,        // m mm (width 1 or 2); minutes after an hour part
  kMonthName,    // mmm (width 3) mmmm (width 4)
  kDay,          // d dd
  kWeekdayName,  // ddd dddd
  kHour,         // h hh
  kMinute,       // n nn
  kSecond,       // s ss
  kAmPm,         // AM/PM am/pm A/P a/p: text holds the two markers' case pattern
};

struct Token {
  TokenKind kind;
  std::string text;  // literal text, or for kAmPm the pattern as written
  int width = 0;     // run length of a date part
};

struct Section {
  std::vector<Token> tokens;
  bool has_date_part = false;
  bool has_placeholder = false;
};

bool IsAsciiLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

char Lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

bool StartsWithNoCase(std::string_view s, size_t pos, std::string_view word) {
  if (s.size() - pos < word.size()) return false;
  for (size_t i = 0; i < word.size(); ++i) {
    if (Lower(s[pos + i]) != Lower(word[i])) return false;
  }
  return true;
}

void AddLiteral(std::vector<Token>& tokens, std::string_view text) {
  if (!tokens.empty() && tokens.back().kind == TokenKind::kLiteral) {
    tokens.back().text.append(text);
  } else {
    tokens.push_back({TokenKind::kLiteral, std::string(text)});
  }
}

// Splits `pattern` at each ";" outside quotes and escapes. Returns nullopt for an unterminated
// quote or a trailing backslash.
std::optional<std::vector<std::string_view>> SplitSections(std::string_view pattern) {
  std::vector<std::string_view> sections;
  size_t start = 0;
  bool quoted = false;
  for (size_t i = 0; i < pattern.size(); ++i) {
    const char c = pattern[i];
    if (quoted) {
      if (c == '"') quoted = false;
    } else if (c == '"') {
      quoted = true;
    } else if (c == '\\') {
      if (i + 1 == pattern.size()) return std::nullopt;
      ++i;
    } else if (c == ';') {
      sections.push_back(pattern.substr(start, i - start));
      start = i + 1;
    }
  }
  if (quoted) return std::nullopt;
  sections.push_back(pattern.substr(start));
  return sections;
}

// Tokenises one section (already known to have balanced quotes and no trailing backslash).
// Returns nullopt for a malformed section.
std::optional<Section> ParseSection(std::string_view s) {
  Section section;
  size_t i = 0;
  while (i < s.size()) {
    const char c = s[i];
    if (c == '"') {
      const size_t end = s.find('"', i + 1);
      if (end == std::string_view::npos) return std::nullopt;
      AddLiteral(section.tokens, s.substr(i + 1, end - i - 1));
      i = end + 1;
      continue;
    }
    if (c == '\\') {
      if (i + 1 >= s.size()) return std::nullopt;
      // Escape a whole UTF-8 character, not just its first byte.
      size_t len = 1;
      while (i + 1 + len < s.size() &&
             (static_cast<unsigned char>(s[i + 1 + len]) & 0xC0) == 0x80) {
        ++len;
      }
      AddLiteral(section.tokens, s.substr(i + 1, len));
      i += 1 + len;
      continue;
    }
    if (c == '0' || c == '#') {
      section.tokens.push_back({c == '0' ? TokenKind::kDigitZero : TokenKind::kDigitHash, ""});
      section.has_placeholder = true;
      ++i;
      continue;
    }
    if (c == '.' || c == ',' || c == '%') {
      section.tokens.push_back({c == '.'   ? TokenKind::kDecimal
                                : c == ',' ? TokenKind::kComma
                                           : TokenKind::kPercent,
                                std::string(1, c)});
      ++i;
      continue;
    }
    if (StartsWithNoCase(s, i, "am/pm") || StartsWithNoCase(s, i, "a/p")) {
      const size_t len = StartsWithNoCase(s, i, "am/pm") ? 5 : 3;
      section.tokens.push_back({TokenKind::kAmPm, std::string(s.substr(i, len))});
      section.has_date_part = true;
      i += len;
      continue;
    }
    if (IsAsciiLetter(c)) {
      const char letter = Lower(c);
      size_t run = 1;
      while (i + run < s.size() && Lower(s[i + run]) == letter) ++run;
      Token token{TokenKind::kLiteral, "", static_cast<int>(run)};
      switch (letter) {
        case 'y':
          if (run == 4) {
            token.kind = TokenKind::kYear4;
          } else if (run == 2) {
            token.kind = TokenKind::kYear2;
          } else if (run == 1) {
            token.kind = TokenKind::kDayOfYear;
          } else {
            return std::nullopt;
          }
          break;
        case 'm':
          if (run > 4) return std::nullopt;
          token.kind = run <= 2 ? TokenKind::kMonth : TokenKind::kMonthName;
          break;
        case 'd':
          if (run > 4) return std::nullopt;
          token.kind = run <= 2 ? TokenKind::kDay : TokenKind::kWeekdayName;
          break;
        case 'h':
        case 'n':
        case 's':
          if (run > 2) return std::nullopt;
          token.kind = letter == 'h'   ? TokenKind::kHour
                       : letter == 'n' ? TokenKind::kMinute
                                       : TokenKind::kSecond;
          break;
        default:
          return std::nullopt;  // an unknown letter: the pattern is not one we know
      }
      section.tokens.push_back(token);
      section.has_date_part = true;
      i += run;
      continue;
    }
    AddLiteral(section.tokens, s.substr(i, 1));
    ++i;
  }
  return section;
}

// ---------------------------------------------------------------------------------------------
// Dates.

constexpr double kFirstSerial = -657434.0;  // 0100-01-01
constexpr double kLastSerial = 2958466.0;   // 10000-01-01, exclusive

constexpr std::array<const char*, 12> kMonthNames = {
    "January", "February", "March",     "April",   "May",      "June",
    "July",    "August",   "September", "October", "November", "December"};
constexpr std::array<const char*, 7> kWeekdayNames = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                      "Thursday", "Friday", "Saturday"};

std::string Padded(int value, int width) {
  std::string text = std::to_string(value);
  if (static_cast<int>(text.size()) < width) text.insert(0, width - text.size(), '0');
  return text;
}

std::optional<std::string> FormatDate(double serial, const Section& section) {
  if (!(serial >= kFirstSerial && serial < kLastSerial)) return std::nullopt;
  const Date::Parts p = Date{serial}.ToParts();
  const double day_serial = Date::FromParts(p.year, p.month, p.day).serial;
  const int day_of_year = static_cast<int>(day_serial - Date::FromParts(p.year, 1, 1).serial) + 1;
  // Day 0 (1899-12-30) was a Saturday; 0 is Sunday here.
  const int weekday = static_cast<int>(((static_cast<int64_t>(day_serial) % 7) + 13) % 7);

  bool twelve_hour = false;
  for (const Token& t : section.tokens) twelve_hour |= t.kind == TokenKind::kAmPm;

  std::string out;
  bool after_hour = false;  // the nearest date part before this one is an hour part
  for (const Token& t : section.tokens) {
    switch (t.kind) {
      case TokenKind::kYear4:
        out += Padded(p.year, 4);
        break;
      case TokenKind::kYear2:
        out += Padded(p.year % 100, 2);
        break;
      case TokenKind::kDayOfYear:
        out += std::to_string(day_of_year);
        break;
      case TokenKind::kMonth:
        out += Padded(after_hour ? p.minute : p.month, t.width);
        break;
      case TokenKind::kMonthName: {
        const std::string name = kMonthNames[p.month - 1];
        out += t.width == 3 ? name.substr(0, 3) : name;
        break;
      }
      case TokenKind::kDay:
        out += Padded(p.day, t.width);
        break;
      case TokenKind::kWeekdayName: {
        const std::string name = kWeekdayNames[weekday];
        out += t.width == 3 ? name.substr(0, 3) : name;
        break;
      }
      case TokenKind::kHour: {
        int hour = p.hour;
        if (twelve_hour) hour = hour % 12 == 0 ? 12 : hour % 12;
        out += Padded(hour, t.width);
        break;
      }
      case TokenKind::kMinute:
        out += Padded(p.minute, t.width);
        break;
      case TokenKind::kSecond:
        out += Padded(p.second, t.width);
        break;
      case TokenKind::kAmPm: {
        // The marker keeps the case of the pattern: "AM/PM" gives "PM", "a/p" gives "p".
        const bool pm = p.hour >= 12;
        if (t.text.size() == 5) {
          out += pm ? t.text.substr(3, 2) : t.text.substr(0, 2);
        } else {
          out += pm ? t.text.substr(2, 1) : t.text.substr(0, 1);
        }
        break;
      }
      default:
        // Literals, and the number characters, which a date pattern shows as written.
        out += t.text.empty() ? std::string(t.kind == TokenKind::kDigitZero ? "0" : "#") : t.text;
        break;
    }
    if (t.kind != TokenKind::kLiteral && t.kind != TokenKind::kDigitZero &&
        t.kind != TokenKind::kDigitHash && t.kind != TokenKind::kDecimal &&
        t.kind != TokenKind::kComma && t.kind != TokenKind::kPercent) {
      after_hour = t.kind == TokenKind::kHour;
    }
  }
  return out;
}

// ---------------------------------------------------------------------------------------------
// Numbers.

// A number section split at its decimal point.
struct NumberLayout {
  std::vector<Token> integer_part;   // placeholders and literals before the decimal point
  std::vector<Token> fraction_part;  // placeholders and literals after it
  bool has_decimal = false;
  bool grouping = false;
  int thousands_scale = 0;  // commas right after the last integer placeholder
  int percent = 0;
  int decimals = 0;  // placeholders after the decimal point
};

std::optional<NumberLayout> LayOutNumber(const Section& section) {
  if (section.has_date_part || !section.has_placeholder) return std::nullopt;
  NumberLayout layout;
  for (const Token& t : section.tokens) {
    if (t.kind == TokenKind::kPercent) ++layout.percent;
    if (t.kind == TokenKind::kDecimal) {
      if (layout.has_decimal) return std::nullopt;
      layout.has_decimal = true;
      continue;
    }
    if (layout.has_decimal) {
      if (t.kind == TokenKind::kComma) return std::nullopt;
      if (t.kind == TokenKind::kDigitZero || t.kind == TokenKind::kDigitHash) ++layout.decimals;
      layout.fraction_part.push_back(t);
    } else {
      layout.integer_part.push_back(t);
    }
  }
  // Commas in the integer part: one with a placeholder after it asks for grouping; those after
  // the last placeholder scale by a thousand each.
  std::vector<Token> integer_part;
  bool placeholder_after = false;
  for (auto it = layout.integer_part.rbegin(); it != layout.integer_part.rend(); ++it) {
    if (it->kind == TokenKind::kDigitZero || it->kind == TokenKind::kDigitHash) {
      placeholder_after = true;
    } else if (it->kind == TokenKind::kComma) {
      if (placeholder_after) {
        layout.grouping = true;
      } else {
        ++layout.thousands_scale;
      }
      continue;
    }
    integer_part.insert(integer_part.begin(), *it);
  }
  layout.integer_part = std::move(integer_part);
  return layout;
}

// The magnitude of a value as decimal digits, rounded to `decimals` places, half away from zero,
// starting from its 15-significant-digit form; `shift` moves the decimal point right.
struct Digits {
  std::string integer;   // no leading zeros; empty for 0
  std::string fraction;  // exactly `decimals` digits
  bool IsZero() const {
    return integer.empty() && fraction.find_first_not_of('0') == std::string::npos;
  }
};

Digits RoundedDigits(double magnitude, int shift, int decimals) {
  Digits d;
  d.fraction.assign(decimals, '0');
  if (magnitude == 0) return d;
  // The same characters as printf's "%.14e", without its locale and stream machinery.
  char buf[64];
  const std::to_chars_result written =
      std::to_chars(buf, buf + sizeof buf - 1, magnitude, std::chars_format::scientific, 14);
  *written.ptr = '\0';
  // buf: D.DDDDDDDDDDDDDDe[+-]XXX
  std::string mantissa;
  mantissa += buf[0];
  mantissa.append(buf + 2, 14);
  const int exponent = std::atoi(buf + 17) + shift;
  const int point = exponent + 1;  // digits before the decimal point
  std::string integer, fraction;
  if (point <= 0) {
    fraction = std::string(-point, '0') + mantissa;
  } else if (point >= static_cast<int>(mantissa.size())) {
    integer = mantissa + std::string(point - mantissa.size(), '0');
  } else {
    integer = mantissa.substr(0, point);
    fraction = mantissa.substr(point);
  }
  bool carry = false;
  if (static_cast<int>(fraction.size()) > decimals) {
    carry = fraction[decimals] >= '5';
    fraction.resize(decimals);
  } else {
    fraction.append(decimals - fraction.size(), '0');
  }
  for (int i = decimals - 1; carry && i >= 0; --i) {
    if (fraction[i] == '9') {
      fraction[i] = '0';
    } else {
      ++fraction[i];
      carry = false;
    }
  }
  for (int i = static_cast<int>(integer.size()) - 1; carry && i >= 0; --i) {
    if (integer[i] == '9') {
      integer[i] = '0';
    } else {
      ++integer[i];
      carry = false;
    }
  }
  if (carry) integer.insert(integer.begin(), '1');
  const size_t first = integer.find_first_not_of('0');
  integer = first == std::string::npos ? "" : integer.substr(first);
  d.integer = std::move(integer);
  d.fraction = std::move(fraction);
  return d;
}

bool IsPlaceholder(const Token& t) {
  return t.kind == TokenKind::kDigitZero || t.kind == TokenKind::kDigitHash;
}

std::string Grouped(const std::string& digits) {
  std::string out;
  const int n = static_cast<int>(digits.size());
  for (int i = 0; i < n; ++i) {
    if (i > 0 && (n - i) % 3 == 0) out += ',';
    out += digits[i];
  }
  return out;
}

std::string LiteralText(const Token& t) { return t.text; }

std::string FormatIntegerPart(const std::vector<Token>& tokens, const std::string& digits,
                              bool grouping) {
  // The placeholders from the leftmost 0 on always show a digit.
  int placeholders = 0, first_zero = -1;
  for (const Token& t : tokens) {
    if (!IsPlaceholder(t)) continue;
    if (t.kind == TokenKind::kDigitZero && first_zero < 0) first_zero = placeholders;
    ++placeholders;
  }
  const int min_digits = first_zero < 0 ? 0 : placeholders - first_zero;
  std::string padded = digits;
  if (static_cast<int>(padded.size()) < min_digits) {
    padded.insert(0, min_digits - padded.size(), '0');
  }

  // Literals between placeholders stay between the digits they were written between: fill the
  // placeholders from the right, the leftmost one taking every digit left over.
  std::vector<std::string> fills(placeholders);
  int remaining = static_cast<int>(padded.size());
  for (int k = placeholders - 1; k >= 0; --k) {
    if (k == 0) {
      fills[k] = padded.substr(0, remaining);
    } else if (remaining > 0) {
      fills[k] = padded.substr(remaining - 1, 1);
      --remaining;
    }
  }
  bool interior_literal = false;
  {
    int seen = 0;
    for (const Token& t : tokens) {
      if (IsPlaceholder(t)) {
        ++seen;
      } else if (seen > 0 && seen < placeholders) {
        interior_literal = true;
      }
    }
  }
  std::string out;
  int k = 0;
  for (const Token& t : tokens) {
    if (IsPlaceholder(t)) {
      if (!interior_literal) {
        if (k == 0) out += grouping ? Grouped(padded) : padded;
      } else {
        out += fills[k];
      }
      ++k;
    } else {
      out += LiteralText(t);
    }
  }
  return out;
}

std::string FormatFractionPart(const std::vector<Token>& tokens, const std::string& fraction) {
  // Trailing digits under # that are 0 are left out; those under 0 always show.
  int last_shown = -1, k = 0;
  for (const Token& t : tokens) {
    if (!IsPlaceholder(t)) continue;
    if (t.kind == TokenKind::kDigitZero || fraction[k] != '0') last_shown = k;
    ++k;
  }
  // A # before a shown digit shows its digit too.
  std::string out;
  k = 0;
  for (const Token& t : tokens) {
    if (IsPlaceholder(t)) {
      if (k <= last_shown) out += fraction[k];
      ++k;
    } else {
      out += LiteralText(t);
    }
  }
  return out;
}

std::string FormatNumber(double magnitude, const NumberLayout& layout) {
  const Digits d =
      RoundedDigits(magnitude, 2 * layout.percent - 3 * layout.thousands_scale, layout.decimals);
  std::string out = FormatIntegerPart(layout.integer_part, d.integer, layout.grouping);
  if (layout.has_decimal) {
    out += '.';
    out += FormatFractionPart(layout.fraction_part, d.fraction);
  }
  return out;
}

bool RoundsToZero(double magnitude, const NumberLayout& layout) {
  return RoundedDigits(magnitude, 2 * layout.percent - 3 * layout.thousands_scale, layout.decimals)
      .IsZero();
}

// A pattern read once: its sections, the first one's tokens, and the number layouts of up to
// three sections (nullopt for an empty one, which takes the first one's format).
struct CompiledPattern {
  bool readable = false;  // the sections split and the first one reads
  Section first;
  bool numbers_readable = false;  // every number section lays out
  std::vector<std::optional<NumberLayout>> layouts;
};

CompiledPattern Compile(std::string_view pattern) {
  CompiledPattern compiled;
  const std::optional<std::vector<std::string_view>> texts = SplitSections(pattern);
  if (!texts) return compiled;
  std::optional<Section> first = ParseSection((*texts)[0]);
  if (!first) return compiled;
  compiled.readable = true;
  compiled.first = std::move(*first);
  if (compiled.first.has_date_part || texts->size() > 4) return compiled;
  for (size_t i = 0; i < texts->size() && i < 3; ++i) {
    if (i > 0 && (*texts)[i].empty()) {
      compiled.layouts.push_back(std::nullopt);
      continue;
    }
    const std::optional<Section> section = ParseSection((*texts)[i]);
    if (!section) return compiled;
    std::optional<NumberLayout> layout = LayOutNumber(*section);
    if (!layout) return compiled;
    compiled.layouts.push_back(std::move(layout));
  }
  compiled.numbers_readable = true;
  return compiled;
}

// Sheets format the same few patterns on every record they show, so each is read once. The
// cache belongs to the calling thread and is emptied when it grows past a bound.
const CompiledPattern& Compiled(std::string_view pattern) {
  thread_local std::unordered_map<std::string, CompiledPattern> cache;
  const std::string key(pattern);
  auto found = cache.find(key);
  if (found != cache.end()) return found->second;
  if (cache.size() >= 256) cache.clear();
  return cache.emplace(key, Compile(pattern)).first->second;
}

std::string FormatNumberSections(double value, const CompiledPattern& pattern) {
  const std::vector<std::optional<NumberLayout>>& layouts = pattern.layouts;
  const double magnitude = std::fabs(value);
  if (value == 0 && layouts.size() >= 3 && layouts[2]) return FormatNumber(0, *layouts[2]);
  if (value < 0 && layouts.size() >= 2 && layouts[1]) return FormatNumber(magnitude, *layouts[1]);
  const NumberLayout& layout = *layouts[0];
  std::string out = FormatNumber(magnitude, layout);
  // The sign goes before everything, literals included; a value that rounds to zero has none.
  if (value < 0 && !RoundsToZero(magnitude, layout)) out.insert(out.begin(), '-');
  return out;
}

}  // namespace

std::string FormatValue(const Variant& value, std::string_view pattern) {
  if (value.IsNull() || value.IsEmpty()) return "";
  if (pattern.empty()) return value.AsText();

  const CompiledPattern& compiled = Compiled(pattern);
  if (!compiled.readable) return value.AsText();

  if (compiled.first.has_date_part) {
    double serial = 0;
    if (value.IsString()) {
      Date date;
      if (ParseIsoDate(value.StringValue(), &date)) {
        serial = date.serial;
      } else if (!ParseNumber(value.StringValue(), &serial)) {
        return value.AsText();
      }
    } else {
      serial = value.ToDouble();
    }
    std::optional<std::string> text = FormatDate(serial, compiled.first);
    return text ? std::move(*text) : value.AsText();
  }

  double number = 0;
  if (value.IsString()) {
    if (!ParseNumber(value.StringValue(), &number)) return value.AsText();
  } else {
    number = value.ToDouble();
  }
  if (!std::isfinite(number) || !compiled.numbers_readable) return value.AsText();
  return FormatNumberSections(number, compiled);
}

}  // namespace tarnsheets
