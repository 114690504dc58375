#include "datasources/recordset/filter.h"

#include <map>
#include <string>

#include <gtest/gtest.h>

#include "tarnsheets/failure.h"
#include "tarnsheets/recordset.h"

namespace tarnsheets {
namespace {

using Row = std::map<std::string, Variant>;

// Whether `row` passes `filter`; a column the row lacks reads as Empty.
bool Passes(const std::string& filter, const Row& row) {
  const RecordsetFilter parsed = RecordsetFilter::Parse(filter);
  return parsed.Matches([&](size_t i) {
    auto it = row.find(parsed.Columns()[i]);
    return it == row.end() ? Variant() : it->second;
  });
}

// The description of the failure that parsing `filter` gives; fails the test when it parses.
std::string ParseFailure(const std::string& filter) {
  try {
    RecordsetFilter::Parse(filter);
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), kErrRecordsetArguments);
    return failure.Description();
  }
  ADD_FAILURE() << "parsed: " << filter;
  return "";
}

std::string Expected(const std::string& filter, const std::string& what) {
  return std::string(kRecordsetArgumentsDescription) + " Filter \"" + filter + "\": " + what;
}

// A function, not a global: the row's date must not be made before the date code is ready.
const Row& Opportunity() {
  static const Row row = {{"ColumnName", Variant("Opportunity")},
                          {"Name", Variant("Amount")},
                          {"MultiLine", Variant(int32_t{0})},
                          {"Size", Variant(12.5)},
                          {"Flag", Variant(true)},
                          {"Note", Variant::Null()},
                          {"Closed", Variant(Date::FromParts(2026, 3, 1))},
                          {"Count", Variant("42")}};
  return row;
}

TEST(RecordsetFilterTest, AQuotedEqualityComparesTextExactly) {
  EXPECT_TRUE(Passes("ColumnName='Opportunity'", Opportunity()));
  EXPECT_FALSE(Passes("ColumnName='opportunity'", Opportunity()));
  EXPECT_FALSE(Passes("ColumnName='Opportunity '", Opportunity()));
}

TEST(RecordsetFilterTest, AnEmptyFilterPassesEveryRow) {
  EXPECT_TRUE(RecordsetFilter::Parse("").PassesAll());
  EXPECT_TRUE(RecordsetFilter::Parse("   ").PassesAll());
  EXPECT_TRUE(Passes("", Opportunity()));
}

TEST(RecordsetFilterTest, ColumnNamesAreListedOnceInOrderOfAppearance) {
  const RecordsetFilter filter =
      RecordsetFilter::Parse("Name='a' or ColumnName='b' and name='c' or [Display Name]='d'");
  EXPECT_EQ(filter.Columns(), (std::vector<std::string>{"Name", "ColumnName", "Display Name"}));
}

TEST(RecordsetFilterTest, AndAndOrAreReadInAnyCase) {
  EXPECT_TRUE(Passes("ColumnName='Opportunity' AND Name='Amount'", Opportunity()));
  EXPECT_TRUE(Passes("ColumnName='x' oR Name='Amount'", Opportunity()));
  EXPECT_FALSE(Passes("ColumnName='Opportunity' aNd Name='x'", Opportunity()));
}

TEST(RecordsetFilterTest, AndBindsMoreTightlyThanOr) {
  // true or (false and false)
  EXPECT_TRUE(Passes("Name='Amount' or Name='x' and Name='y'", Opportunity()));
  // (false and true) or false
  EXPECT_FALSE(Passes("Name='x' and Name='Amount' or Name='y'", Opportunity()));
}

TEST(RecordsetFilterTest, ParenthesesGroupConditions) {
  EXPECT_FALSE(Passes("(Name='Amount' or Name='x') and Name='y'", Opportunity()));
  EXPECT_TRUE(Passes("((Name='Amount')) and (MultiLine=0 or Name='y')", Opportunity()));
}

TEST(RecordsetFilterTest, NumbersCompareUnquotedWithEveryOperator) {
  EXPECT_TRUE(Passes("Size=12.5", Opportunity()));
  EXPECT_TRUE(Passes("Size<>12", Opportunity()));
  EXPECT_TRUE(Passes("Size<13", Opportunity()));
  EXPECT_TRUE(Passes("Size>1.25e1", Opportunity()) == false);
  EXPECT_TRUE(Passes("Size<=12.5", Opportunity()));
  EXPECT_TRUE(Passes("Size>=12.5", Opportunity()));
  EXPECT_TRUE(Passes("Size > -3", Opportunity()));
  EXPECT_TRUE(Passes("MultiLine = 0", Opportunity()));
}

TEST(RecordsetFilterTest, TextsCompareByCharacterOrder) {
  EXPECT_TRUE(Passes("Name<'B'", Opportunity()));
  EXPECT_TRUE(Passes("Name>'Ab'", Opportunity()));
  EXPECT_TRUE(Passes("Name>='Amount'", Opportunity()));
  EXPECT_FALSE(Passes("Name<='A'", Opportunity()));
}

TEST(RecordsetFilterTest, ANumberComparesWithATextThatReadsAsOne) {
  EXPECT_TRUE(Passes("Count=42", Opportunity()));
  EXPECT_TRUE(Passes("Count>9", Opportunity()));  // as numbers, not as texts
  EXPECT_TRUE(Passes("Size='12.5'", Opportunity()));
  EXPECT_FALSE(Passes("Name=0", Opportunity()));  // a text that is no number
}

TEST(RecordsetFilterTest, BooleansAndDatesCompare) {
  EXPECT_TRUE(Passes("Flag=-1", Opportunity()));
  EXPECT_TRUE(Passes("Flag='True'", Opportunity()));
  EXPECT_FALSE(Passes("Flag=0", Opportunity()));
  EXPECT_TRUE(Passes("Closed=#2026-03-01#", Opportunity()));
  EXPECT_TRUE(Passes("Closed<#2026-03-01 00:00:01#", Opportunity()));
  EXPECT_TRUE(Passes("Closed='2026-03-01'", Opportunity()));
}

TEST(RecordsetFilterTest, ANullCellPassesNoComparison) {
  EXPECT_FALSE(Passes("Note='x'", Opportunity()));
  EXPECT_FALSE(Passes("Note<>'x'", Opportunity()));
  EXPECT_FALSE(Passes("Note=0", Opportunity()));
  EXPECT_FALSE(Passes("Note LIKE '*'", Opportunity()));
}

TEST(RecordsetFilterTest, AnEmptyCellReadsAsEmptyTextOrZero) {
  EXPECT_TRUE(Passes("Missing=''", Opportunity()));
  EXPECT_TRUE(Passes("Missing=0", Opportunity()));
  EXPECT_FALSE(Passes("Missing='x'", Opportunity()));
}

TEST(RecordsetFilterTest, LikeTakesStarAndPercentAsWildcards) {
  EXPECT_TRUE(Passes("Name LIKE 'Am*'", Opportunity()));
  EXPECT_TRUE(Passes("Name like 'Am%'", Opportunity()));
  EXPECT_TRUE(Passes("Name LIKE '*unt'", Opportunity()));
  EXPECT_TRUE(Passes("Name LIKE 'A%o*t'", Opportunity()));
  EXPECT_FALSE(Passes("Name LIKE 'am*'", Opportunity()));
  EXPECT_FALSE(Passes("Name LIKE 'Amoun'", Opportunity()));
}

TEST(RecordsetFilterTest, ADoubledQuoteStandsForOneQuote) {
  const Row row = {{"Name", Variant("O'Brien")}};
  EXPECT_TRUE(Passes("Name='O''Brien'", row));
}

TEST(RecordsetFilterTest, ABracketedColumnNameMayHoldBlanks) {
  const Row row = {{"Display Name", Variant("商机")}};
  EXPECT_TRUE(Passes("[Display Name]='商机'", row));
}

TEST(RecordsetFilterTest, AStrayQuoteNamesThePositionOfWhatFollows) {
  EXPECT_EQ(ParseFailure("ColumnName='O'Brien'"),
            Expected("ColumnName='O'Brien'",
                     "AND, OR or the end of the filter expected at "
                     "position 15."));
}

TEST(RecordsetFilterTest, AnUnclosedQuoteNamesWhereTheTextBegins) {
  EXPECT_EQ(ParseFailure("Name='abc"),
            Expected("Name='abc", "a quoted text without its closing quote at position 6."));
}

TEST(RecordsetFilterTest, AMissingOperatorIsNamed) {
  EXPECT_EQ(ParseFailure("Name 'x'"),
            Expected("Name 'x'",
                     "a comparison operator (=, <>, <, >, <=, >=, LIKE) expected at position 6."));
}

TEST(RecordsetFilterTest, MissingValueAndColumnAreNamed) {
  EXPECT_EQ(ParseFailure("Name="), Expected("Name=", "a value expected at position 6."));
  EXPECT_EQ(ParseFailure("Name='a' and "),
            Expected("Name='a' and ", "a column name expected at position 14."));
  EXPECT_EQ(ParseFailure("='a'"), Expected("='a'", "a column name expected at position 1."));
}

TEST(RecordsetFilterTest, UnbalancedParenthesesAreNamed) {
  EXPECT_EQ(ParseFailure("(Name='a'"), Expected("(Name='a'", "')' expected at position 10."));
  EXPECT_EQ(ParseFailure("Name='a')"),
            Expected("Name='a')", "a ')' without its '(' at position 9."));
}

TEST(RecordsetFilterTest, PositionsCountCharactersNotBytes) {
  EXPECT_EQ(ParseFailure("名称='商机' 和"),
            Expected("名称='商机' 和", "AND, OR or the end of the filter expected at position 9."));
}

TEST(RecordsetFilterTest, LikeWantsAQuotedText) {
  EXPECT_EQ(ParseFailure("Size LIKE 1"),
            Expected("Size LIKE 1", "LIKE takes a quoted text at position 11."));
}

TEST(RecordsetFilterTest, BadNumbersAndDatesAreNamed) {
  EXPECT_EQ(ParseFailure("Size=1e"),
            Expected("Size=1e", "an exponent without digits at position 7."));
  EXPECT_EQ(ParseFailure("Size=12abc"), Expected("Size=12abc", "a number expected at position 8."));
  EXPECT_EQ(ParseFailure("Closed=#2026-13-01#"),
            Expected("Closed=#2026-13-01#", "no valid date between the '#' signs at position 8."));
  EXPECT_EQ(ParseFailure("Size=abc"),
            Expected("Size=abc", "a value ('text', a number or #date#) expected at position 6."));
}

TEST(LikePatternTest, MatchesWildcardsAnywhere) {
  EXPECT_TRUE(MatchesLikePattern("", "*"));
  EXPECT_TRUE(MatchesLikePattern("abc", "%"));
  EXPECT_TRUE(MatchesLikePattern("abc", "a*c"));
  EXPECT_TRUE(MatchesLikePattern("abcbc", "*bc"));
  EXPECT_TRUE(MatchesLikePattern("商机名称", "商机*"));
  EXPECT_FALSE(MatchesLikePattern("abc", "a*d"));
  EXPECT_FALSE(MatchesLikePattern("abc", ""));
  EXPECT_TRUE(MatchesLikePattern("", ""));
}

}  // namespace
}  // namespace tarnsheets
