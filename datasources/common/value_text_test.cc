#include "datasources/common/value_text.h"

#include <gtest/gtest.h>

#include "platform/utf8.h"
#include "tarnsheets/data_source.h"

namespace tarnsheets {
namespace {

double Amount(const char* text, std::vector<std::string> symbols = {}, bool percent = false) {
  double v = 0;
  std::string reason;
  EXPECT_TRUE(ReadAmount(text, symbols, percent, &v, &reason)) << text << ": " << reason;
  return v;
}

bool AmountFails(const char* text, std::vector<std::string> symbols = {}, bool percent = false) {
  double v = 0;
  std::string reason;
  const bool ok = ReadAmount(text, symbols, percent, &v, &reason);
  if (!ok) {
    EXPECT_FALSE(reason.empty());
  }
  return !ok;
}

TEST(ReadAmountTest, TakesGroupingFractionsAndEitherMinus) {
  EXPECT_EQ(Amount("1,234,567.25"), 1234567.25);
  EXPECT_EQ(Amount("1234567"), 1234567);
  EXPECT_EQ(Amount(".5"), 0.5);
  EXPECT_EQ(Amount("7."), 7);
  EXPECT_EQ(Amount("-12"), -12);
  EXPECT_EQ(Amount("12-"), -12);
  EXPECT_EQ(Amount("+12"), 12);
  EXPECT_EQ(Amount("  3  "), 3);
}

TEST(ReadAmountTest, RefusesBrokenGroupingAndStrayCharacters) {
  EXPECT_TRUE(AmountFails("1,2"));
  EXPECT_TRUE(AmountFails("1234,567"));
  EXPECT_TRUE(AmountFails(",123"));
  EXPECT_TRUE(AmountFails("1,234.5,6"));
  EXPECT_TRUE(AmountFails("1e5"));
  EXPECT_TRUE(AmountFails("-12-"));
  EXPECT_TRUE(AmountFails(""));
  EXPECT_TRUE(AmountFails("-"));
  EXPECT_TRUE(AmountFails("$5"));  // no symbol is taken when none is given
}

TEST(ReadAmountTest, TakesTheGivenSymbolWithTheMinusOnEitherSide) {
  EXPECT_EQ(Amount("$1,234.50", {"$"}), 1234.5);
  EXPECT_EQ(Amount("-$1,234.50", {"$"}), -1234.5);
  EXPECT_EQ(Amount("$-1,234.50", {"$"}), -1234.5);
  EXPECT_EQ(Amount("$ 1,234.50-", {"$"}), -1234.5);
  EXPECT_EQ(Amount("US$5", {"$", "US$"}), 5);  // the longest symbol wins
  EXPECT_EQ(Amount("¥-8", {"¥"}), -8);
  EXPECT_TRUE(AmountFails("€5", {"$"}));
}

TEST(ReadAmountTest, PercentSignOnlyInPercentFields) {
  EXPECT_DOUBLE_EQ(Amount("45%", {}, true), 0.45);
  EXPECT_DOUBLE_EQ(Amount("45", {}, true), 0.45);
  EXPECT_DOUBLE_EQ(Amount("-5 %", {}, true), -0.05);
  EXPECT_TRUE(AmountFails("45%", {}, false));
}

TEST(FoldCaseTest, FoldsCasedScriptsAndPassesCjkThrough) {
  EXPECT_EQ(utf8::FoldToCodePoints("ABC xyz"), U"abc xyz");
  EXPECT_EQ(utf8::FoldToCodePoints("ÄÖÜ"), U"äöü");
  EXPECT_EQ(utf8::FoldToCodePoints("ΑΒΓ"), U"αβγ");
  EXPECT_EQ(utf8::FoldToCodePoints("ДОМ"), U"дом");
  EXPECT_EQ(utf8::FoldToCodePoints("ŁÓDŹ"), U"łódź");
  EXPECT_EQ(utf8::FoldToCodePoints("销售"), U"销售");
}

bool Matches(const char* condition, const Variant& value, FieldShape shape) {
  QueryCondition c;
  std::string reason;
  EXPECT_TRUE(QueryCondition::Parse(condition, shape, {"$"}, &c, &reason))
      << condition << ": " << reason;
  return c.Matches(value);
}

TEST(QueryConditionTest, TextIsAPrefixWithoutRegardToCaseWithWildcards) {
  const FieldShape text{kDataTypeText, 0, 0};
  EXPECT_TRUE(Matches("big", Variant("Big deal"), text));
  EXPECT_FALSE(Matches("deal", Variant("Big deal"), text));
  EXPECT_TRUE(Matches("*deal", Variant("Big deal"), text));
  EXPECT_TRUE(Matches("b?g", Variant("BIG"), text));
  EXPECT_FALSE(Matches("b?g", Variant("Bg"), text));
  EXPECT_TRUE(Matches("销", Variant("销售"), text));
  EXPECT_TRUE(Matches("?售", Variant("销售"), text));  // ? is one character, not one byte
  EXPECT_TRUE(Matches("ä", Variant("Ärger"), text));
  EXPECT_FALSE(Matches("a", Variant::Null(), text));
}

TEST(QueryConditionTest, NumbersCompareWithEveryOperatorAndRanges) {
  const FieldShape money{kDataTypeMoney, 0, 0};
  EXPECT_TRUE(Matches("=5", Variant(5.0), money));
  EXPECT_TRUE(Matches("5", Variant(int32_t{5}), money));
  EXPECT_TRUE(Matches("<>5", Variant(6.0), money));
  EXPECT_FALSE(Matches("<>5", Variant(5.0), money));
  EXPECT_TRUE(Matches("<5", Variant(4.0), money));
  EXPECT_FALSE(Matches("<5", Variant(5.0), money));
  EXPECT_TRUE(Matches("<=5", Variant(5.0), money));
  EXPECT_TRUE(Matches(">5", Variant(5.5), money));
  EXPECT_FALSE(Matches(">5", Variant(5.0), money));
  EXPECT_TRUE(Matches(">=5", Variant(5.0), money));
  EXPECT_TRUE(Matches("1..10", Variant(10.0), money));
  EXPECT_TRUE(Matches("1..10", Variant(1.0), money));
  EXPECT_FALSE(Matches("1..10", Variant(10.5), money));
  EXPECT_TRUE(Matches(">=-$1,000", Variant(-999.0), money));
  EXPECT_FALSE(Matches(">0", Variant::Null(), money));
  EXPECT_FALSE(Matches("<>0", Variant::Null(), money));
}

TEST(QueryConditionTest, DateWithoutTimeStandsForTheWholeDay) {
  const FieldShape date{kDataTypeDate, kDateKindDateTime, 0};
  const Variant noon(Date::FromParts(2026, 3, 1, 12, 0, 0));
  EXPECT_TRUE(Matches("2026-03-01", noon, date));
  EXPECT_TRUE(Matches("=2026-03-01", noon, date));
  EXPECT_FALSE(Matches("<>2026-03-01", noon, date));
  EXPECT_TRUE(Matches("<=2026-03-01", noon, date));
  EXPECT_FALSE(Matches(">2026-03-01", noon, date));
  EXPECT_TRUE(Matches(">=2026-03-01", noon, date));
  EXPECT_FALSE(Matches("<2026-03-01", noon, date));
  EXPECT_TRUE(Matches("2026-02-01..2026-03-01", noon, date));
  EXPECT_FALSE(Matches("2026-03-01 12:00:01", noon, date));
  EXPECT_TRUE(Matches(">=2026-03-01 12:00", noon, date));
}

TEST(QueryConditionTest, YesNoTakesOneZeroOnly) {
  const FieldShape flag{kDataTypeYesNo, 0, 0};
  EXPECT_TRUE(Matches("1", Variant(int32_t{-1}), flag));
  EXPECT_TRUE(Matches("1", Variant(true), flag));
  EXPECT_TRUE(Matches("0", Variant(int32_t{0}), flag));
  EXPECT_TRUE(Matches("0", Variant::Null(), flag));
  EXPECT_FALSE(Matches("1", Variant::Null(), flag));
  QueryCondition c;
  std::string reason;
  EXPECT_FALSE(QueryCondition::Parse("yes", flag, {}, &c, &reason));
  EXPECT_NE(reason.find("\"1\", \"0\" or empty"), std::string::npos);
}

TEST(QueryConditionTest, MalformedConditionsAreRefusedWithAReason) {
  const FieldShape money{kDataTypeMoney, 0, 0};
  for (const char* bad : {"<", "=", "1..", "..1", "abc", ">>5", "1..2..3", "5 6"}) {
    QueryCondition c;
    std::string reason;
    EXPECT_FALSE(QueryCondition::Parse(bad, money, {"$"}, &c, &reason)) << bad;
    EXPECT_FALSE(reason.empty()) << bad;
  }
}

TEST(ReadFieldValueTest, EmptyTextAndEmptyAndNullStoreNullInEveryType) {
  for (int32_t type = 0; type <= 6; ++type) {
    for (const Variant& in : {Variant(""), Variant(), Variant::Null()}) {
      Variant out("unchanged");
      std::string reason;
      EXPECT_TRUE(ReadFieldValue(in, FieldShape{type, 0, 0}, {}, &out, &reason));
      EXPECT_TRUE(out.IsNull()) << "type " << type;
    }
  }
}

TEST(ReadFieldValueTest, RefusalLeavesTheOutputUntouched) {
  Variant out("unchanged");
  std::string reason;
  EXPECT_FALSE(ReadFieldValue(Variant("x"), FieldShape{kDataTypeNumber, 0, 0}, {}, &out, &reason));
  EXPECT_EQ(out, Variant("unchanged"));
  EXPECT_FALSE(reason.empty());
}

}  // namespace
}  // namespace tarnsheets
