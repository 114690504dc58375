// The lexical side of the script language of tarnsheets-script: one statement per line, tokens
// separated by blanks, double-quoted strings with escapes, `#` comments, and the value literals
// True, False, integers (decimal or &H hex), decimals, strings, Empty, Null and Nothing.
#ifndef TARNSHEETS_APPS_SCRIPT_SCRIPT_LEXER_H_
#define TARNSHEETS_APPS_SCRIPT_SCRIPT_LEXER_H_

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "apps/script/script_value.h"

namespace tarnsheets {

// A malformed line. The message says what is wrong; the runner adds the file and line.
class ScriptError : public std::runtime_error {
 public:
  explicit ScriptError(const std::string& message) : std::runtime_error(message) {}
};

// One token of a line.
struct Token {
  enum class Kind { kWord, kString };
  Kind kind = Kind::kWord;
  // The word as written, or the string with its escapes decoded. For a KEY=VALUE token, the part
  // after the first '='.
  std::string text;
  // KEY=VALUE tokens (`Cancel=True`, `DisplayName="Name"`): the part before the '='.
  bool has_key = false;
  std::string key;

  bool IsWord(std::string_view word) const {
    return kind == Kind::kWord && !has_key && text == word;
  }
};

// Splits a line into tokens. A `#` outside quotes ends the line. Throws ScriptError for a string
// without its closing quote, an escape other than \" \\ \n \r \t, or a quote inside a word.
std::vector<Token> Tokenize(std::string_view line);

// The value a token writes: a string, True, False, Empty, Null, Nothing, a decimal integer (a
// 32-bit Long when it fits, else a Double), an &H hex integer (up to eight digits, kept as the
// 32-bit pattern, so &H80000005 is the system colour), or a decimal number with a fraction or
// exponent (a Double). Throws ScriptError for any other word, naming it.
ScriptValue ParseValue(const Token& token);

// A text argument: a string, or a word taken as it is written (`F_OPPNAME`).
std::string TextArgument(const Token& token);

// A key of a collection or of Fields: a string, a number (a position), or a word taken as text.
Variant KeyArgument(const Token& token);

// A control as a form names it: `Txt_Value(3)`, `Cmd_NewRecord`. Returns false when the text is no
// such name.
struct ControlName {
  std::string name;
  int32_t index = -1;  // -1: not an array element

  // "Txt_Value(3)" or "Cmd_NewRecord".
  std::string ToString() const;
};
bool ParseControlName(std::string_view text, ControlName* out);

}  // namespace tarnsheets

#endif  // TARNSHEETS_APPS_SCRIPT_SCRIPT_LEXER_H_
