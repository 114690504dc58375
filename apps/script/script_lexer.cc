#include "apps/script/script_lexer.h"

#include <cctype>
#include <cstdlib>
#include <limits>

namespace tarnsheets {
namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

// Reads a string that starts at line[*pos] (the opening quote); leaves *pos after the closing one.
std::string ReadString(std::string_view line, size_t* pos) {
  std::string out;
  size_t i = *pos + 1;
  while (true) {
    if (i >= line.size()) throw ScriptError("string without its closing quote");
    const char c = line[i];
    if (c == '"') break;
    if (c == '\\') {
      if (i + 1 >= line.size()) throw ScriptError("string without its closing quote");
      const char e = line[i + 1];
      switch (e) {
        case '"':
          out += '"';
          break;
        case '\\':
          out += '\\';
          break;
        case 'n':
          out += '\n';
          break;
        case 'r':
          out += '\r';
          break;
        case 't':
          out += '\t';
          break;
        default:
          throw ScriptError(std::string("bad escape \\") + e +
                            " in string (known: \\\" \\\\ \\n \\r \\t)");
      }
      i += 2;
      continue;
    }
    out += c;
    ++i;
  }
  *pos = i + 1;
  if (*pos < line.size() && !IsBlank(line[*pos]) && line[*pos] != '#') {
    throw ScriptError("a blank must follow the closing quote of a string");
  }
  return out;
}

bool AllDigits(std::string_view s) {
  if (s.empty()) return false;
  for (const char c : s) {
    if (!std::isdigit(static_cast<unsigned char>(c))) return false;
  }
  return true;
}

// A decimal number: [-]digits[.digits][e[+-]digits] or [-].digits..., with at least one digit.
bool IsDecimal(std::string_view s) {
  size_t i = 0;
  if (i < s.size() && (s[i] == '-' || s[i] == '+')) ++i;
  size_t digits = 0;
  while (i < s.size() && std::isdigit(static_cast<unsigned char>(s[i]))) ++i, ++digits;
  if (i < s.size() && s[i] == '.') {
    ++i;
    while (i < s.size() && std::isdigit(static_cast<unsigned char>(s[i]))) ++i, ++digits;
  }
  if (digits == 0) return false;
  if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
    ++i;
    if (i < s.size() && (s[i] == '-' || s[i] == '+')) ++i;
    if (!AllDigits(s.substr(i))) return false;
    return true;
  }
  return i == s.size();
}

}  // namespace

std::vector<Token> Tokenize(std::string_view line) {
  std::vector<Token> tokens;
  size_t i = 0;
  while (i < line.size()) {
    if (IsBlank(line[i])) {
      ++i;
      continue;
    }
    if (line[i] == '#') break;
    Token token;
    if (line[i] == '"') {
      token.kind = Token::Kind::kString;
      token.text = ReadString(line, &i);
      tokens.push_back(std::move(token));
      continue;
    }
    const size_t start = i;
    while (i < line.size() && !IsBlank(line[i]) && line[i] != '"') ++i;
    std::string word(line.substr(start, i - start));
    const size_t eq = word.find('=');
    if (eq != std::string::npos && eq > 0) {
      token.has_key = true;
      token.key = word.substr(0, eq);
      token.text = word.substr(eq + 1);
      if (token.text.empty() && i < line.size() && line[i] == '"') {
        token.kind = Token::Kind::kString;
        token.text = ReadString(line, &i);
      } else if (token.text.empty()) {
        throw ScriptError("no value after " + token.key + "=");
      }
    } else {
      token.text = std::move(word);
    }
    if (i < line.size() && line[i] == '"') {
      throw ScriptError("unexpected quote after " + std::string(line.substr(start, i - start)));
    }
    tokens.push_back(std::move(token));
  }
  return tokens;
}

ScriptValue ParseValue(const Token& token) {
  if (token.kind == Token::Kind::kString) return ScriptValue::Of(Variant(token.text));
  const std::string& w = token.text;
  if (w == "True") return ScriptValue::Of(Variant(true));
  if (w == "False") return ScriptValue::Of(Variant(false));
  if (w == "Empty") return ScriptValue::Of(Variant());
  if (w == "Null") return ScriptValue::Of(Variant::Null());
  if (w == "Nothing") return ScriptValue::Nothing();
  if (w.size() > 2 && (w[0] == '&') && (w[1] == 'H' || w[1] == 'h')) {
    const std::string hex = w.substr(2);
    if (hex.size() <= 8 && hex.find_first_not_of("0123456789ABCDEFabcdef") == std::string::npos) {
      const uint32_t bits = static_cast<uint32_t>(std::strtoul(hex.c_str(), nullptr, 16));
      return ScriptValue::Of(Variant(static_cast<int32_t>(bits)));
    }
    throw ScriptError("bad hex number " + w + " (up to eight hex digits after &H)");
  }
  const bool sign = !w.empty() && (w[0] == '-' || w[0] == '+');
  if (AllDigits(std::string_view(w).substr(sign ? 1 : 0))) {
    const double d = std::strtod(w.c_str(), nullptr);
    if (d >= std::numeric_limits<int32_t>::min() && d <= std::numeric_limits<int32_t>::max()) {
      return ScriptValue::Of(Variant(static_cast<int32_t>(std::strtol(w.c_str(), nullptr, 10))));
    }
    return ScriptValue::Of(Variant(d));
  }
  if (IsDecimal(w)) return ScriptValue::Of(Variant(std::strtod(w.c_str(), nullptr)));
  throw ScriptError("not a value: " + w + " (a text must be quoted)");
}

std::string TextArgument(const Token& token) { return token.text; }

Variant KeyArgument(const Token& token) {
  if (token.kind == Token::Kind::kString) return Variant(token.text);
  if (AllDigits(token.text)) return ParseValue(token).value;
  return Variant(token.text);
}

std::string ControlName::ToString() const {
  return index < 0 ? name : name + "(" + std::to_string(index) + ")";
}

bool ParseControlName(std::string_view text, ControlName* out) {
  size_t i = 0;
  if (text.empty() || !(std::isalpha(static_cast<unsigned char>(text[0])) || text[0] == '_')) {
    return false;
  }
  while (i < text.size() && (std::isalnum(static_cast<unsigned char>(text[i])) || text[i] == '_')) {
    ++i;
  }
  ControlName name;
  name.name = std::string(text.substr(0, i));
  if (i == text.size()) {
    *out = name;
    return true;
  }
  if (text[i] != '(' || text.back() != ')') return false;
  const std::string_view digits = text.substr(i + 1, text.size() - i - 2);
  if (!AllDigits(digits) || digits.size() > 9) return false;
  name.index = static_cast<int32_t>(std::strtol(std::string(digits).c_str(), nullptr, 10));
  *out = name;
  return true;
}

}  // namespace tarnsheets
