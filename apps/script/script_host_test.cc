#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "apps/script/json_bag.h"
#include "apps/script/script_host.h"
#include "apps/script/script_lexer.h"
#include "apps/script/script_value.h"
#include "tarnsheets/failure.h"

namespace tarnsheets {
namespace {

// --- Lexer.

TEST(ScriptLexerTest, SplitsWordsAndStringsAtBlanks) {
  const std::vector<Token> t = Tokenize("  call ControlCommand \"Next Record\"\t ");
  ASSERT_EQ(t.size(), 3u);
  EXPECT_TRUE(t[0].IsWord("call"));
  EXPECT_TRUE(t[1].IsWord("ControlCommand"));
  EXPECT_EQ(t[2].kind, Token::Kind::kString);
  EXPECT_EQ(t[2].text, "Next Record");
}

TEST(ScriptLexerTest, HashStartsACommentOutsideQuotesOnly) {
  const std::vector<Token> t = Tokenize("type \"a # b\" # the rest is a comment");
  ASSERT_EQ(t.size(), 2u);
  EXPECT_EQ(t[1].text, "a # b");
  EXPECT_TRUE(Tokenize("# only a comment").empty());
  EXPECT_TRUE(Tokenize("").empty());
}

TEST(ScriptLexerTest, StringEscapesAreDecoded) {
  const std::vector<Token> t = Tokenize(R"(type "q\" b\\ n\n r\r t\t")");
  ASSERT_EQ(t.size(), 2u);
  EXPECT_EQ(t[1].text, "q\" b\\ n\n r\r t\t");
}

TEST(ScriptLexerTest, BadEscapeIsAnErrorNamingTheEscape) {
  try {
    Tokenize(R"(type "a\qb")");
    FAIL() << "no error";
  } catch (const ScriptError& e) {
    EXPECT_NE(std::string(e.what()).find("bad escape \\q"), std::string::npos) << e.what();
  }
}

TEST(ScriptLexerTest, StringWithoutClosingQuoteIsAnError) {
  EXPECT_THROW(Tokenize("type \"abc"), ScriptError);
  EXPECT_THROW(Tokenize("type \"abc\\"), ScriptError);
}

TEST(ScriptLexerTest, QuoteGluedToAWordIsAnError) {
  EXPECT_THROW(Tokenize("type abc\"def\""), ScriptError);
  EXPECT_THROW(Tokenize("type \"abc\"def"), ScriptError);
}

TEST(ScriptLexerTest, KeyValueTokensCarryKeyAndValue) {
  const std::vector<Token> t =
      Tokenize("titles add F_OPPNAME DisplayName=\"Opp name\" MultiLine=True");
  ASSERT_EQ(t.size(), 5u);
  EXPECT_TRUE(t[3].has_key);
  EXPECT_EQ(t[3].key, "DisplayName");
  EXPECT_EQ(t[3].kind, Token::Kind::kString);
  EXPECT_EQ(t[3].text, "Opp name");
  EXPECT_EQ(t[4].key, "MultiLine");
  EXPECT_EQ(t[4].text, "True");
  EXPECT_THROW(Tokenize("on Text Cancel="), ScriptError);
}

// --- Values.

TEST(ScriptValueTest, KeywordsParseToTheirValues) {
  EXPECT_EQ(ParseValue(Tokenize("True")[0]).value, Variant(true));
  EXPECT_EQ(ParseValue(Tokenize("False")[0]).value, Variant(false));
  EXPECT_TRUE(ParseValue(Tokenize("Empty")[0]).value.IsEmpty());
  EXPECT_TRUE(ParseValue(Tokenize("Null")[0]).value.IsNull());
  EXPECT_EQ(ParseValue(Tokenize("Nothing")[0]).kind, ScriptValue::Kind::kNothing);
}

TEST(ScriptValueTest, NumbersParseAsLongDoubleOrHexPattern) {
  EXPECT_EQ(ParseValue(Tokenize("42")[0]).value, Variant(int32_t{42}));
  EXPECT_EQ(ParseValue(Tokenize("-7")[0]).value, Variant(int32_t{-7}));
  EXPECT_EQ(ParseValue(Tokenize("-1234.5")[0]).value, Variant(-1234.5));
  EXPECT_EQ(ParseValue(Tokenize(".5")[0]).value, Variant(0.5));
  EXPECT_EQ(ParseValue(Tokenize("1e3")[0]).value, Variant(1000.0));
  EXPECT_EQ(ParseValue(Tokenize("3000000000")[0]).value, Variant(3000000000.0));
  EXPECT_EQ(ParseValue(Tokenize("&HBB5522")[0]).value, Variant(int32_t{0xBB5522}));
  EXPECT_EQ(ParseValue(Tokenize("&H80000005")[0]).ToColor(), 0x80000005u);
  EXPECT_EQ(ParseValue(Tokenize("2147483653")[0]).ToColor(), 0x80000005u);
}

TEST(ScriptValueTest, UnquotedWordIsNoValue) {
  try {
    ParseValue(Tokenize("Hello")[0]);
    FAIL() << "no error";
  } catch (const ScriptError& e) {
    EXPECT_EQ(std::string(e.what()), "not a value: Hello (a text must be quoted)");
  }
  EXPECT_THROW(ParseValue(Tokenize("&HXYZ")[0]), ScriptError);
  EXPECT_THROW(ParseValue(Tokenize("&H123456789")[0]), ScriptError);
  EXPECT_THROW(ParseValue(Tokenize("1.2.3")[0]), ScriptError);
}

TEST(ScriptValueTest, ValuesPrintAsTheLexicalRulesWriteThem) {
  EXPECT_EQ(ScriptValue::Of(Variant(true)).ToString(), "True");
  EXPECT_EQ(ScriptValue::Of(Variant(-1234.5)).ToString(), "-1234.5");
  EXPECT_EQ(ScriptValue::Of(Variant("a\"b\n")).ToString(), "\"a\\\"b\\n\"");
  EXPECT_EQ(ScriptValue::Of(Variant()).ToString(), "Empty");
  EXPECT_EQ(ScriptValue::Of(Variant::Null()).ToString(), "Null");
  EXPECT_EQ(ScriptValue::Nothing().ToString(), "Nothing");
  EXPECT_EQ(ScriptValue::Object().ToString(), "Object");
  EXPECT_EQ(ScriptValue::Of(Variant(Date::FromParts(2026, 3, 1))).ToString(),
            "#2026-03-01 00:00:00#");
  EXPECT_EQ(ScriptValue::OfColor(0xBB5522).ToString(), "12277026");
  EXPECT_EQ(ScriptValue::OfColor(0x80000005u).ToString(), "2147483653");
  EXPECT_EQ(ScriptValue::OfRect(SheetRect{1, -2, 3, 4}).ToString(), "(1,-2,3,4)");
  EXPECT_EQ(ScriptValue::OfFloat(8.25f).ToString(), "8.25");
  EXPECT_EQ(ScriptValue::OfFloat(10.8f).ToString(), "10.8");
}

TEST(ScriptValueTest, ObjectsFailAsTypeMismatchWhenConverted) {
  try {
    (void)ScriptValue::Nothing().ToLong();
    FAIL() << "no failure";
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), kErrTypeMismatch);
  }
}

TEST(ScriptLexerTest, ControlNamesWithAndWithoutIndex) {
  ControlName name;
  ASSERT_TRUE(ParseControlName("Txt_Value(3)", &name));
  EXPECT_EQ(name.name, "Txt_Value");
  EXPECT_EQ(name.index, 3);
  EXPECT_EQ(name.ToString(), "Txt_Value(3)");
  ASSERT_TRUE(ParseControlName("Cmd_NewRecord", &name));
  EXPECT_EQ(name.index, -1);
  EXPECT_FALSE(ParseControlName("Txt_Value(x)", &name));
  EXPECT_FALSE(ParseControlName("Txt_Value(", &name));
  EXPECT_FALSE(ParseControlName("3abc", &name));
}

// --- Property bags as JSON.

TEST(JsonBagTest, RoundTripKeepsOrderTypesAndFonts) {
  MemoryPropertyBag bag;
  bag.Set("Caption", Variant("Opp \"1\""));
  bag.Set("Color_Caption", Variant(int32_t{255}));
  bag.Set("FontSize", Variant(9.75));
  bag.Set("EditModify", Variant(false));
  Font font;
  font.name = "Arial";
  font.bold = true;
  bag.Set("CaptionFont", font);
  const std::string json = BagToJson(bag);
  MemoryPropertyBag back;
  BagFromJson(json, "bag.json", &back);
  EXPECT_EQ(back.TranscriptLines(), bag.TranscriptLines());
}

TEST(JsonBagTest, BrokenJsonNamesTheFileAndChangesNothing) {
  MemoryPropertyBag bag;
  try {
    BagFromJson("{\"Style\": 1, ", "stored.json", &bag);
    FAIL() << "no error";
  } catch (const ScriptError& e) {
    EXPECT_NE(std::string(e.what()).find("stored.json: broken JSON"), std::string::npos);
  }
  EXPECT_THROW(BagFromJson("{\"Style\": 1, \"X\": [1]}", "stored.json", &bag), ScriptError);
  EXPECT_TRUE(bag.Entries().empty());
}

// --- The host: malformed lines are reported with their line, after the transcript so far.

std::optional<ScriptFailure> Play(const std::string& script, std::string* transcript) {
  std::ostringstream out;
  ScriptHost host(out);
  auto failure = host.Run(script, "t.tscript", "");
  *transcript = out.str();
  return failure;
}

TEST(ScriptHostTest, UnknownStatementStopsWithItsLine) {
  std::string transcript;
  const auto failure = Play("# a comment\n\nfrobnicate 1\nfocused\n", &transcript);
  ASSERT_TRUE(failure.has_value());
  EXPECT_EQ(failure->ToString(), "t.tscript:3: unknown statement frobnicate");
  EXPECT_EQ(transcript, "");
}

TEST(ScriptHostTest, TranscriptUpToTheMalformedLineIsKept) {
  std::string transcript;
  const auto failure = Play("focused\ncount\n", &transcript);
  ASSERT_TRUE(failure.has_value());
  EXPECT_EQ(failure->line, 2);
  EXPECT_NE(failure->message.find("wrong number of arguments"), std::string::npos);
  EXPECT_EQ(transcript, "= Nothing\n");
}

TEST(ScriptHostTest, StatementNeedingAControlBeforeCreateIsAnError) {
  std::string transcript;
  const auto failure = Play("get Caption\n", &transcript);
  ASSERT_TRUE(failure.has_value());
  EXPECT_EQ(failure->message, "get: no control; `create CLASS` first");
}

TEST(ScriptHostTest, UnknownClassIsAnErrorOfItsLineWhileTheReducedControlsAreCreated) {
  std::string transcript;
  auto failure = Play("create Nonesuch\n", &transcript);
  ASSERT_TRUE(failure.has_value());
  EXPECT_EQ(failure->message, "unknown control class Nonesuch");
  for (const char* script : {"create Currency\nget FontName\n", "create Appointment\nget hwnd\n"}) {
    transcript.clear();
    failure = Play(script, &transcript);
    EXPECT_FALSE(failure.has_value()) << script;
    EXPECT_EQ(transcript.rfind("= ", 0), 0u) << transcript;
  }
}

TEST(ScriptHostTest, MissingFixtureIsAnErrorOfItsLine) {
  std::string transcript;
  const auto failure = Play("create UserInfo\nsource memory no-such-file.json\n", &transcript);
  ASSERT_TRUE(failure.has_value());
  EXPECT_EQ(failure->line, 2);
  EXPECT_NE(failure->message.find("no-such-file.json"), std::string::npos) << failure->message;
}

TEST(ScriptHostTest, GetPrintsTheResultLine) {
  std::string transcript;
  const auto failure =
      Play("create UserInfo\nget Style\nget Color_Caption\nget hwnd\n", &transcript);
  ASSERT_FALSE(failure.has_value()) << failure->ToString();
  EXPECT_EQ(transcript, "= 0\n= 12277026\n= 0\n");
}

TEST(ScriptHostTest, SetterNotificationsComeBeforeTheEventsTheyPrecede) {
  std::string transcript;
  const auto failure = Play("create UserInfo\nset EditAddNew False\n", &transcript);
  ASSERT_FALSE(failure.has_value()) << failure->ToString();
  EXPECT_EQ(transcript, "notify EditAddNew\nevent SheetStatusChange\n");
}

TEST(ScriptHostTest, OnAnswerWithAnUnknownArgumentIsAnError) {
  std::string transcript;
  const auto failure = Play("on Text Bogus=1\n", &transcript);
  ASSERT_TRUE(failure.has_value());
  EXPECT_EQ(failure->line, 1);
  EXPECT_NE(failure->message.find("Cancel, Mode, User"), std::string::npos) << failure->message;
}

TEST(ScriptHostTest, MenuWithoutAnOpenPopupIsAnError) {
  std::string transcript;
  const auto failure = Play("menu mnu_Undo\n", &transcript);
  ASSERT_TRUE(failure.has_value());
  EXPECT_NE(failure->message.find("no pop-up menu is open"), std::string::npos);
}

}  // namespace
}  // namespace tarnsheets
