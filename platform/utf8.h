// UTF-8 text: the one decoder, encoder and case fold that every part of the library uses.
//
// Title keys, query conditions, the recordset filter, the toolkits and the SQLite text functions
// all read and fold text through these functions, so that the same text compares the same way
// wherever a user meets it.
//
// Invalid bytes. A byte that does not begin a valid UTF-8 sequence is one invalid byte: a
// continuation byte (80..BF) standing alone, a lead byte whose continuation bytes are missing or
// cut short by the end of the text, the bytes C0, C1 and F5..FF, an overlong form (C0 AF for '/'),
// an encoded surrogate (ED A0 80) or a value beyond U+10FFFF (F4 90 80 80). The decoder reads an
// invalid byte as the code point U+DC00 plus the byte (U+DC80..U+DCFF, low surrogates that no
// valid text decodes to) and moves on by exactly that one byte; the encoder writes such a code
// point back as the byte. So decoding and encoding again gives back every text byte for byte,
// an invalid byte never compares equal to a real character, and the case fold leaves it as it
// stands.
#ifndef TARNSHEETS_PLATFORM_UTF8_H_
#define TARNSHEETS_PLATFORM_UTF8_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace tarnsheets::utf8 {

// The code point that stands for the invalid byte `b` (80..FF): U+DC00 + b.
constexpr char32_t kInvalidByteBase = 0xDC00;

// Whether `c` stands for an invalid byte (U+DC80..U+DCFF).
constexpr bool IsInvalidByte(char32_t c) { return c >= 0xDC80 && c <= 0xDCFF; }

// The code point written in place of one that has no UTF-8 form (a surrogate that stands for no
// invalid byte, or a value beyond U+10FFFF): U+FFFD REPLACEMENT CHARACTER.
constexpr char32_t kReplacement = 0xFFFD;

// Decodes the character at `text[*pos]` and advances *pos past it: by the length of a valid
// sequence, or by one byte for an invalid byte, which comes back as kInvalidByteBase + the byte.
// REQUIRES: *pos < text.size().
char32_t Next(std::string_view text, size_t* pos);

// The whole text as code points, by Next.
std::u32string Decode(std::string_view text);

// Appends the UTF-8 form of `c` (1 to 4 bytes) to *out. A code point that stands for an invalid
// byte is written as that byte; other surrogates and values beyond U+10FFFF as kReplacement.
void Append(char32_t c, std::string* out);

// The UTF-8 form of one code point, or of a run of them, by Append.
std::string Encode(char32_t c);
std::string Encode(std::u32string_view code_points);

// The number of characters in `text`, each invalid byte counting as one.
size_t CountCharacters(std::string_view text);

// The small form of one code point, for comparisons without regard to case. Folds the capitals
// of ASCII, Latin-1 Supplement (and the micro sign to Greek mu), Latin Extended-A, Latin Extended
// Additional (capital sharp s to sharp s), Greek with and without tonos (final sigma to sigma),
// Cyrillic, Armenian, fullwidth Latin and Deseret. Letters without a simple pair keep their
// form: the Turkish dotted capital I (U+0130) and dotless small i (U+0131) among them, so "I"
// and "i" are one letter and "İ" another. Everything else, CJK included, comes back unchanged.
char32_t FoldCodePoint(char32_t c);

// The text with every character folded by FoldCodePoint, as UTF-8. Invalid bytes stand as they
// are, so a text without capitals comes back byte for byte.
std::string Fold(std::string_view text);

// The text decoded and folded, as code points (invalid bytes as kInvalidByteBase + the byte).
std::u32string FoldToCodePoints(std::string_view text);

// Whether two texts are equal without regard to case: Fold(a) == Fold(b).
bool EqualsFolded(std::string_view a, std::string_view b);

}  // namespace tarnsheets::utf8

#endif  // TARNSHEETS_PLATFORM_UTF8_H_
