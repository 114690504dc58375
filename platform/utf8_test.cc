#include "platform/utf8.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace tarnsheets::utf8 {
namespace {

// Shows bytes as hex so that a failing case names what it saw.
std::string Hex(std::string_view bytes) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string out;
  for (unsigned char b : bytes) {
    if (!out.empty()) out += ' ';
    out += kDigits[b >> 4];
    out += kDigits[b & 0xF];
  }
  return out;
}

// --- Case fold ----------------------------------------------------------------------------------

struct FoldCase {
  const char* what;
  std::string_view text;
  std::string_view folded;
};

constexpr FoldCase kFoldCases[] = {
    {"ASCII capitals fold, digits and signs stay", "ABC xyz 09 @[`{", "abc xyz 09 @[`{"},
    {"Latin-1 capitals fold", "\xC3\x89TOILE \xC3\x85SE", "\xC3\xA9toile \xC3\xA5se"},
    {"the multiplication sign has no case", "\xC3\x97", "\xC3\x97"},
    {"the micro sign folds to Greek mu", "\xC2\xB5", "\xCE\xBC"},
    {"Latin Extended-A even capitals", "\xC4\x80\xC4\x8C", "\xC4\x81\xC4\x8D"},
    {"Latin Extended-A odd capitals", "\xC5\x81\xC5\xBD", "\xC5\x82\xC5\xBE"},
    {"Y with diaeresis folds to its Latin-1 small", "\xC5\xB8", "\xC3\xBF"},
    {"long s folds to s", "\xC5\xBF", "s"},
    {"Turkish dotted capital I has no simple pair", "\xC4\xB0", "\xC4\xB0"},
    {"Turkish dotless small i has no simple pair", "\xC4\xB1", "\xC4\xB1"},
    {"plain I folds to plain i, not to dotless i", "I", "i"},
    {"Greek capitals fold", "\xCE\x91\xCE\x98\xCE\xA9", "\xCE\xB1\xCE\xB8\xCF\x89"},
    {"Greek capitals with tonos fold to smalls with tonos",
     "\xCE\x86\xCE\x88\xCE\x89\xCE\x8A\xCE\x8C\xCE\x8E\xCE\x8F",
     "\xCE\xAC\xCE\xAD\xCE\xAE\xCE\xAF\xCF\x8C\xCF\x8D\xCF\x8E"},
    {"Greek capitals with dialytika fold", "\xCE\xAA\xCE\xAB", "\xCF\x8A\xCF\x8B"},
    {"final sigma folds to sigma", "\xCF\x82", "\xCF\x83"},
    {"capital sigma folds to sigma", "\xCE\xA3", "\xCF\x83"},
    {"Cyrillic capitals fold", "\xD0\x81\xD0\x96\xD0\xAF", "\xD1\x91\xD0\xB6\xD1\x8F"},
    {"Cyrillic extended pairs fold", "\xD2\x90\xD3\x80", "\xD2\x91\xD3\x8F"},
    {"Armenian capitals fold", "\xD4\xB1\xD5\x96", "\xD5\xA1\xD6\x86"},
    {"Latin Extended Additional capitals fold", "\xE1\xB8\x80\xE1\xBB\xB2",
     "\xE1\xB8\x81\xE1\xBB\xB3"},
    {"capital sharp s folds to sharp s", "\xE1\xBA\x9E", "\xC3\x9F"},
    {"fullwidth Latin capitals fold", "\xEF\xBC\xA1\xEF\xBC\xBA", "\xEF\xBD\x81\xEF\xBD\x9A"},
    {"fullwidth digits stay", "\xEF\xBC\x90", "\xEF\xBC\x90"},
    {"CJK stays unchanged", "\xE5\x95\x86\xE6\x9C\xBA\xE5\x90\x8D\xE7\xA7\xB0",
     "\xE5\x95\x86\xE6\x9C\xBA\xE5\x90\x8D\xE7\xA7\xB0"},
    {"a 4-byte Deseret capital folds to its small", "\xF0\x90\x90\x80", "\xF0\x90\x90\xA8"},
    {"a 4-byte CJK extension character stays", "\xF0\xA0\x80\x80", "\xF0\xA0\x80\x80"},
    {"an emoji stays", "\xF0\x9F\x98\x80", "\xF0\x9F\x98\x80"},
    {"an invalid byte stands as it is", "A\xFFZ", "a\xFFz"},
    {"a stray continuation byte stands as it is", "\x80Z", "\x80z"},
    {"a cut sequence stands byte for byte", "\xCEZ", "\xCEz"},
    {"an overlong capital is no capital", "\xC1\x81", "\xC1\x81"},
    {"an encoded surrogate stands byte for byte", "\xED\xA0\x80", "\xED\xA0\x80"},
};

TEST(Utf8FoldTest, TableOfCases) {
  for (const FoldCase& c : kFoldCases) {
    EXPECT_EQ(Hex(Fold(c.text)), Hex(c.folded)) << c.what;
    EXPECT_EQ(FoldToCodePoints(c.text), Decode(c.folded)) << c.what;
    // Folding is idempotent: the folded text folds to itself.
    EXPECT_EQ(Hex(Fold(c.folded)), Hex(c.folded)) << c.what;
  }
}

TEST(Utf8FoldTest, EqualsFoldedComparesWithoutRegardToCase) {
  EXPECT_TRUE(EqualsFolded("\xCE\x86\xCE\xBD\xCE\xBD\xCE\xB1", "\xCE\xAC\xCE\x9D\xCE\x9D\xCE\x91"));
  EXPECT_TRUE(EqualsFolded("\xEF\xBC\xA1\xEF\xBC\xA2", "\xEF\xBD\x81\xEF\xBD\x82"));
  EXPECT_FALSE(EqualsFolded("\xC4\xB0", "i"));
  EXPECT_FALSE(EqualsFolded("\xEF\xBC\xA1", "a"));  // fullwidth is not ASCII
  // An invalid byte never equals the letter whose code point has the same number.
  EXPECT_FALSE(EqualsFolded("\xC9", "\xC3\xA9"));
  EXPECT_FALSE(EqualsFolded("\xC9", "\xC3\x89"));
}

// --- Decoder -------------------------------------------------------------------------------------

struct DecodeCase {
  const char* what;
  std::string_view text;
  std::u32string_view code_points;
};

constexpr char32_t B(unsigned char byte) { return kInvalidByteBase + byte; }

const DecodeCase kDecodeCases[] = {
    {"empty", "", U""},
    {"ASCII", "Az", U"Az"},
    {"2 bytes", "\xC3\xA9", U"\u00E9"},
    {"3 bytes", "\xE5\x95\x86", U"\u5546"},
    {"4 bytes", "\xF0\x9F\x98\x80", U"\U0001F600"},
    {"the last code point", "\xF4\x8F\xBF\xBF", U"\U0010FFFF"},
    {"smallest 2-, 3- and 4-byte forms", "\xC2\x80\xE0\xA0\x80\xF0\x90\x80\x80",
     U"\u0080\u0800\U00010000"},
    {"a stray continuation byte", "\x80", U"\xDC80"},
    {"bytes that begin nothing", "\xFE\xFF", U"\xDCFE\xDCFF"},
    {"F5 and above begin nothing", "\xF5\x80\x80\x80", U"\xDCF5\xDC80\xDC80\xDC80"},
    {"overlong slash in 2 bytes", "\xC0\xAF", U"\xDCC0\xDCAF"},
    {"overlong in 3 bytes", "\xE0\x80\xAF", U"\xDCE0\xDC80\xDCAF"},
    {"overlong in 4 bytes", "\xF0\x80\x80\xAF", U"\xDCF0\xDC80\xDC80\xDCAF"},
    {"an encoded surrogate", "\xED\xA0\x80", U"\xDCED\xDCA0\xDC80"},
    {"beyond U+10FFFF", "\xF4\x90\x80\x80", U"\xDCF4\xDC90\xDC80\xDC80"},
    {"a lead byte cut by the end", "a\xE5\x95", U"a\xDCE5\xDC95"},
    {"a lead byte cut by ASCII", "\xE5Z\x95", U"\xDCE5Z\xDC95"},
    {"a valid character after an invalid byte", "\xFF\xC3\xA9", U"\xDCFF\u00E9"},
};

TEST(Utf8DecodeTest, TableOfCases) {
  for (const DecodeCase& c : kDecodeCases) {
    EXPECT_EQ(Decode(c.text), c.code_points) << c.what;
    EXPECT_EQ(CountCharacters(c.text), c.code_points.size()) << c.what;
  }
}

TEST(Utf8DecodeTest, NextAdvancesByTheSequenceOrByOneInvalidByte) {
  const std::string_view text = "\xF0\x9F\x98\x80\xE0\x80\xAFz";
  size_t pos = 0;
  EXPECT_EQ(Next(text, &pos), U'\U0001F600');
  EXPECT_EQ(pos, 4u);
  EXPECT_EQ(Next(text, &pos), B(0xE0));
  EXPECT_EQ(pos, 5u);
  EXPECT_EQ(Next(text, &pos), B(0x80));
  EXPECT_EQ(Next(text, &pos), B(0xAF));
  EXPECT_EQ(Next(text, &pos), U'z');
  EXPECT_EQ(pos, text.size());
}

// --- Encoder -------------------------------------------------------------------------------------

struct EncodeCase {
  const char* what;
  char32_t code_point;
  std::string_view bytes;
};

constexpr EncodeCase kEncodeCases[] = {
    {"ASCII", U'A', "A"},
    {"NUL", 0, std::string_view("\0", 1)},
    {"last 1-byte", 0x7F, "\x7F"},
    {"first 2-byte", 0x80, "\xC2\x80"},
    {"last 2-byte", 0x7FF, "\xDF\xBF"},
    {"first 3-byte", 0x800, "\xE0\xA0\x80"},
    {"CJK", 0x5546, "\xE5\x95\x86"},
    {"last 3-byte", 0xFFFF, "\xEF\xBF\xBF"},
    {"first 4-byte", 0x10000, "\xF0\x90\x80\x80"},
    {"an emoji", 0x1F600, "\xF0\x9F\x98\x80"},
    {"a Deseret letter", 0x10400, "\xF0\x90\x90\x80"},
    {"the last code point", 0x10FFFF, "\xF4\x8F\xBF\xBF"},
    {"an invalid byte is written back", B(0xFF), "\xFF"},
    {"a stray continuation byte is written back", B(0x80), "\x80"},
    {"a high surrogate has no form", 0xD800, "\xEF\xBF\xBD"},
    {"a low surrogate that stands for no byte has no form", 0xDC7F, "\xEF\xBF\xBD"},
    {"beyond the code space has no form", 0x110000, "\xEF\xBF\xBD"},
};

TEST(Utf8EncodeTest, TableOfCases) {
  for (const EncodeCase& c : kEncodeCases) {
    EXPECT_EQ(Hex(Encode(c.code_point)), Hex(c.bytes)) << c.what;
  }
}

TEST(Utf8EncodeTest, EveryValidCodePointComesBackThroughTheDecoder) {
  for (char32_t c = 0; c <= 0x10FFFF; ++c) {
    if (c >= 0xD800 && c <= 0xDFFF) continue;
    const std::string bytes = Encode(c);
    size_t pos = 0;
    ASSERT_EQ(Next(bytes, &pos), c) << std::hex << static_cast<uint32_t>(c);
    ASSERT_EQ(pos, bytes.size()) << std::hex << static_cast<uint32_t>(c);
  }
}

TEST(Utf8EncodeTest, DecodingAndEncodingGivesBackEveryTextByteForByte) {
  for (const DecodeCase& c : kDecodeCases) {
    EXPECT_EQ(Hex(Encode(Decode(c.text))), Hex(c.text)) << c.what;
  }
  std::string every_byte;
  for (int b = 0; b < 256; ++b) every_byte.push_back(static_cast<char>(b));
  EXPECT_EQ(Encode(Decode(every_byte)), every_byte);
}

}  // namespace
}  // namespace tarnsheets::utf8
