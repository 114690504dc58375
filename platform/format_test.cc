#include "tarnsheets/format.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnsheets {
namespace {

// The layouts a column's DateKind and NumberKind pick, and the money layout.
constexpr const char* kDateKind0 = "yyyy-mm-dd hh:nn:ss";
constexpr const char* kDateKind1 = "yyyy-mm-dd hh:nn";
constexpr const char* kDateKind2 = "yyyy-mm-dd";
constexpr const char* kDateKind3 = "hh:nn:ss";
constexpr const char* kDateKind4 = "hh:nn";
constexpr const char* kNumberKind0 = "#,##0";
constexpr const char* kNumberKind1 = "#,##0.00";
constexpr const char* kNumberKind2 = "#0%";
constexpr const char* kMoney = "#,##0.00";

Variant At(int y, int mo, int d, int h = 0, int mi = 0, int s = 0) {
  return Variant(Date::FromParts(y, mo, d, h, mi, s));
}

// --- Null, Empty and the empty pattern --------------------------------------------------------

TEST(FormatValueTest, NullGivesEmptyTextUnderEveryLayout) {
  for (const char* pattern : {kDateKind0, kDateKind1, kDateKind2, kDateKind3, kDateKind4,
                              kNumberKind0, kNumberKind1, kNumberKind2, kMoney, ""}) {
    EXPECT_EQ(FormatValue(Variant::Null(), pattern), "") << pattern;
  }
}

TEST(FormatValueTest, EmptyGivesEmptyTextUnderEveryLayout) {
  for (const char* pattern : {kDateKind0, kDateKind1, kDateKind2, kDateKind3, kDateKind4,
                              kNumberKind0, kNumberKind1, kNumberKind2, kMoney, ""}) {
    EXPECT_EQ(FormatValue(Variant(), pattern), "") << pattern;
  }
}

TEST(FormatValueTest, EmptyPatternGivesTheValueAsText) {
  EXPECT_EQ(FormatValue(Variant(1234.5), ""), "1234.5");
  EXPECT_EQ(FormatValue(Variant(int32_t{-42}), ""), "-42");
  EXPECT_EQ(FormatValue(Variant("abc"), ""), "abc");
  EXPECT_EQ(FormatValue(At(2026, 3, 1), ""), "2026-03-01");
  EXPECT_EQ(FormatValue(Variant(true), ""), "True");
}

// --- Date kinds ---------------------------------------------------------------------------------

TEST(FormatValueTest, DateKind0ShowsDateAndTimeToTheSecond) {
  EXPECT_EQ(FormatValue(At(2026, 3, 1, 14, 5, 9), kDateKind0), "2026-03-01 14:05:09");
  EXPECT_EQ(FormatValue(At(2026, 3, 1), kDateKind0), "2026-03-01 00:00:00");
  EXPECT_EQ(FormatValue(At(1999, 12, 31, 23, 59, 59), kDateKind0), "1999-12-31 23:59:59");
}

TEST(FormatValueTest, DateKind1ShowsDateAndTimeToTheMinute) {
  EXPECT_EQ(FormatValue(At(2026, 3, 1, 14, 5, 9), kDateKind1), "2026-03-01 14:05");
  EXPECT_EQ(FormatValue(At(2026, 11, 30, 7, 45), kDateKind1), "2026-11-30 07:45");
}

TEST(FormatValueTest, DateKind2ShowsTheDateAlone) {
  EXPECT_EQ(FormatValue(At(2026, 3, 1, 14, 5, 9), kDateKind2), "2026-03-01");
  EXPECT_EQ(FormatValue(At(2024, 2, 29), kDateKind2), "2024-02-29");
}

TEST(FormatValueTest, DateKind3ShowsTheTimeToTheSecond) {
  EXPECT_EQ(FormatValue(At(2026, 3, 1, 14, 5, 9), kDateKind3), "14:05:09");
  EXPECT_EQ(FormatValue(Variant(Date{0.75}), kDateKind3), "18:00:00");
  EXPECT_EQ(FormatValue(At(2026, 3, 1), kDateKind3), "00:00:00");
}

TEST(FormatValueTest, DateKind4ShowsHoursAndMinutes) {
  EXPECT_EQ(FormatValue(At(2026, 3, 1, 9, 30, 59), kDateKind4), "09:30");
  EXPECT_EQ(FormatValue(Variant(Date{0.5}), kDateKind4), "12:00");
}

TEST(FormatValueTest, DateSerialZeroIsTheEpoch) {
  EXPECT_EQ(FormatValue(Variant(Date{0}), kDateKind0), "1899-12-30 00:00:00");
  EXPECT_EQ(FormatValue(Variant(int32_t{0}), kDateKind2), "1899-12-30");
}

TEST(FormatValueTest, DateBeforeTheEpochKeepsItsTimeOfDay) {
  EXPECT_EQ(FormatValue(At(1850, 6, 15, 6, 30), kDateKind1), "1850-06-15 06:30");
}

TEST(FormatValueTest, NumberUnderADateLayoutIsADateSerial) {
  EXPECT_EQ(FormatValue(Variant(46082.5), kDateKind0), "2026-03-01 12:00:00");
  EXPECT_EQ(FormatValue(Variant(int32_t{-1}), kDateKind2), "1899-12-29");
}

TEST(FormatValueTest, IsoTextUnderADateLayoutIsFormattedAsThatDate) {
  EXPECT_EQ(FormatValue(Variant("2026-03-01 14:05:09"), kDateKind1), "2026-03-01 14:05");
  EXPECT_EQ(FormatValue(Variant("2026-03-01"), kDateKind0), "2026-03-01 00:00:00");
  EXPECT_EQ(FormatValue(Variant("14:05"), kDateKind3), "14:05:00");
}

TEST(FormatValueTest, OtherTextUnderADateLayoutComesBackUnchanged) {
  EXPECT_EQ(FormatValue(Variant("next week"), kDateKind2), "next week");
  EXPECT_EQ(FormatValue(Variant(""), kDateKind2), "");
}

TEST(FormatValueTest, DateOutsideTheYearRangeGivesTheValueAsText) {
  EXPECT_EQ(FormatValue(Variant(1e9), kDateKind2), "1000000000");
  EXPECT_EQ(FormatValue(Variant(-1e7), kDateKind2), "-10000000");
}

TEST(FormatValueTest, MonthAfterAnHourPartMeansMinutes) {
  const Variant v = At(2026, 3, 1, 14, 5, 9);
  EXPECT_EQ(FormatValue(v, "hh:mm"), "14:05");
  EXPECT_EQ(FormatValue(v, "hh:mm:ss"), "14:05:09");
  EXPECT_EQ(FormatValue(v, "h:m"), "14:5");
  EXPECT_EQ(FormatValue(v, "yyyy-mm-dd hh:mm"), "2026-03-01 14:05");
  // The month before an hour part stays the month.
  EXPECT_EQ(FormatValue(v, "mm hh"), "03 14");
  // After a day part it is the month again.
  EXPECT_EQ(FormatValue(v, "hh dd mm"), "14 01 03");
}

TEST(FormatValueTest, SingleLetterPartsHaveNoLeadingZero) {
  const Variant v = At(2026, 3, 1, 4, 5, 6);
  EXPECT_EQ(FormatValue(v, "d/m/yyyy h:n:s"), "1/3/2026 4:5:6");
  EXPECT_EQ(FormatValue(v, "dd/mm/yy hh:nn:ss"), "01/03/26 04:05:06");
}

TEST(FormatValueTest, DatePartsIgnoreCase) {
  EXPECT_EQ(FormatValue(At(2026, 3, 1, 14, 5, 9), "YYYY-MM-DD HH:NN:SS"), "2026-03-01 14:05:09");
}

TEST(FormatValueTest, DayOfYearMonthAndWeekdayNames) {
  const Variant v = At(2026, 3, 1);  // a Sunday
  EXPECT_EQ(FormatValue(v, "y"), "60");
  EXPECT_EQ(FormatValue(v, "mmm"), "Mar");
  EXPECT_EQ(FormatValue(v, "mmmm"), "March");
  EXPECT_EQ(FormatValue(v, "ddd"), "Sun");
  EXPECT_EQ(FormatValue(v, "dddd, d mmmm yyyy"), "Sunday, 1 March 2026");
  EXPECT_EQ(FormatValue(At(1899, 12, 30), "dddd"), "Saturday");
}

TEST(FormatValueTest, TwelveHourClockWithMarker) {
  EXPECT_EQ(FormatValue(At(2026, 3, 1, 14, 5), "h:nn AM/PM"), "2:05 PM");
  EXPECT_EQ(FormatValue(At(2026, 3, 1, 0, 5), "hh:nn am/pm"), "12:05 am");
  EXPECT_EQ(FormatValue(At(2026, 3, 1, 12, 0), "h a/p"), "12 p");
  EXPECT_EQ(FormatValue(At(2026, 3, 1, 9, 0), "h A/P"), "9 A");
}

TEST(FormatValueTest, DateLiteralsAsWrittenQuotedOrEscaped) {
  const Variant v = At(2026, 3, 1, 14, 5);
  EXPECT_EQ(FormatValue(v, "yyyy年mm月dd日"), "2026年03月01日");
  EXPECT_EQ(FormatValue(v, "\"Day\" dd"), "Day 01");
  EXPECT_EQ(FormatValue(v, "\\a\\t hh"), "at 14");
  EXPECT_EQ(FormatValue(v, "yyyy.mm.dd"), "2026.03.01");
}

TEST(FormatValueTest, SecondsRoundToTheNearestSecond) {
  const double serial = Date::FromParts(2026, 3, 1, 23, 59, 59).serial + 0.6 / 86400.0;
  EXPECT_EQ(FormatValue(Variant(serial), kDateKind0), "2026-03-02 00:00:00");
}

// --- NumberKind 0: "#,##0" ----------------------------------------------------------------------

TEST(FormatValueTest, NumberKind0GroupsThousandsWithoutDecimals) {
  EXPECT_EQ(FormatValue(Variant(int32_t{1234567}), kNumberKind0), "1,234,567");
  EXPECT_EQ(FormatValue(Variant(999.0), kNumberKind0), "999");
  EXPECT_EQ(FormatValue(Variant(1000.0), kNumberKind0), "1,000");
  EXPECT_EQ(FormatValue(Variant(int16_t{7}), kNumberKind0), "7");
}

TEST(FormatValueTest, NumberKind0Negative) {
  EXPECT_EQ(FormatValue(Variant(int32_t{-1234567}), kNumberKind0), "-1,234,567");
  EXPECT_EQ(FormatValue(Variant(-12.0), kNumberKind0), "-12");
}

TEST(FormatValueTest, NumberKind0Zero) {
  EXPECT_EQ(FormatValue(Variant(int32_t{0}), kNumberKind0), "0");
  EXPECT_EQ(FormatValue(Variant(0.0), kNumberKind0), "0");
}

TEST(FormatValueTest, NumberKind0RoundsHalfAwayFromZero) {
  EXPECT_EQ(FormatValue(Variant(2.5), kNumberKind0), "3");
  EXPECT_EQ(FormatValue(Variant(3.5), kNumberKind0), "4");
  EXPECT_EQ(FormatValue(Variant(-2.5), kNumberKind0), "-3");
  EXPECT_EQ(FormatValue(Variant(1234.49), kNumberKind0), "1,234");
  EXPECT_EQ(FormatValue(Variant(999.5), kNumberKind0), "1,000");
}

TEST(FormatValueTest, NegativeThatRoundsToZeroHasNoSign) {
  EXPECT_EQ(FormatValue(Variant(-0.4), kNumberKind0), "0");
  EXPECT_EQ(FormatValue(Variant(-0.004), kNumberKind1), "0.00");
}

// --- NumberKind 1 and money: "#,##0.00" ---------------------------------------------------------

TEST(FormatValueTest, NumberKind1ShowsTwoDecimals) {
  EXPECT_EQ(FormatValue(Variant(1234.5), kNumberKind1), "1,234.50");
  EXPECT_EQ(FormatValue(Variant(int32_t{3}), kNumberKind1), "3.00");
  EXPECT_EQ(FormatValue(Variant(0.5), kNumberKind1), "0.50");
}

TEST(FormatValueTest, NumberKind1NegativeAndZero) {
  EXPECT_EQ(FormatValue(Variant(-1234.5), kNumberKind1), "-1,234.50");
  EXPECT_EQ(FormatValue(Variant(0.0), kNumberKind1), "0.00");
}

TEST(FormatValueTest, MoneyLayoutShowsTheAmountThatFollowsTheSymbol) {
  // A money field shows the absolute value in this layout after the sign and the symbol.
  EXPECT_EQ(FormatValue(Variant(1234.5), kMoney), "1,234.50");
  EXPECT_EQ(FormatValue(Variant(0.0), kMoney), "0.00");
  EXPECT_EQ(FormatValue(Variant(-1234.5), kMoney), "-1,234.50");
}

TEST(FormatValueTest, RoundsOnTheFifteenDigitDecimalForm) {
  EXPECT_EQ(FormatValue(Variant(1.005), "0.00"), "1.01");
  EXPECT_EQ(FormatValue(Variant(1.005), kNumberKind1), "1.01");
  EXPECT_EQ(FormatValue(Variant(2.675), kNumberKind1), "2.68");
  EXPECT_EQ(FormatValue(Variant(-1.005), kNumberKind1), "-1.01");
  EXPECT_EQ(FormatValue(Variant(1.004), kNumberKind1), "1.00");
  EXPECT_EQ(FormatValue(Variant(0.125), "0.00"), "0.13");
  EXPECT_EQ(FormatValue(Variant(9.995), kNumberKind1), "10.00");
  EXPECT_EQ(FormatValue(Variant(999999.995), kNumberKind1), "1,000,000.00");
}

TEST(FormatValueTest, GroupsLargeNumbers) {
  EXPECT_EQ(FormatValue(Variant(1234567890123.0), kNumberKind0), "1,234,567,890,123");
  EXPECT_EQ(FormatValue(Variant(int32_t{2147483647}), kNumberKind1), "2,147,483,647.00");
  EXPECT_EQ(FormatValue(Variant(int32_t{-2147483647 - 1}), kNumberKind0), "-2,147,483,648");
  // Beyond fifteen significant digits the rest are zeros.
  EXPECT_EQ(FormatValue(Variant(1e20), kNumberKind0), "100,000,000,000,000,000,000");
  EXPECT_EQ(FormatValue(Variant(12345678901234567.0), kNumberKind0), "12,345,678,901,234,600");
}

TEST(FormatValueTest, SmallNumbersUnderTwoDecimals) {
  EXPECT_EQ(FormatValue(Variant(0.001), kNumberKind1), "0.00");
  EXPECT_EQ(FormatValue(Variant(0.005), kNumberKind1), "0.01");
  EXPECT_EQ(FormatValue(Variant(1e-20), kNumberKind1), "0.00");
}

// --- NumberKind 2: "#0%" ------------------------------------------------------------------------

TEST(FormatValueTest, NumberKind2MultipliesByAHundred) {
  EXPECT_EQ(FormatValue(Variant(0.25), kNumberKind2), "25%");
  EXPECT_EQ(FormatValue(Variant(int32_t{1}), kNumberKind2), "100%");
  EXPECT_EQ(FormatValue(Variant(12.5), kNumberKind2), "1250%");
  EXPECT_EQ(FormatValue(Variant(0.005), kNumberKind2), "1%");
  EXPECT_EQ(FormatValue(Variant(0.285), kNumberKind2), "29%");
}

TEST(FormatValueTest, NumberKind2NegativeAndZero) {
  EXPECT_EQ(FormatValue(Variant(-0.25), kNumberKind2), "-25%");
  EXPECT_EQ(FormatValue(Variant(0.0), kNumberKind2), "0%");
  EXPECT_EQ(FormatValue(Variant(0.004), kNumberKind2), "0%");
}

TEST(FormatValueTest, PercentWithDecimals) {
  EXPECT_EQ(FormatValue(Variant(0.12345), "0.00%"), "12.35%");
  EXPECT_EQ(FormatValue(Variant(0.5), "%0"), "%50");
}

// --- Placeholders
// ---------------------------------------------------------------------------------

TEST(FormatValueTest, HashShowsNothingWhereZeroShowsZero) {
  EXPECT_EQ(FormatValue(Variant(0.5), "#.##"), ".5");
  EXPECT_EQ(FormatValue(Variant(0.5), "0.00"), "0.50");
  EXPECT_EQ(FormatValue(Variant(5.0), "#.##"), "5.");
  EXPECT_EQ(FormatValue(Variant(1.5), "#,##0.0#"), "1.5");
  EXPECT_EQ(FormatValue(Variant(1.25), "#,##0.0#"), "1.25");
  EXPECT_EQ(FormatValue(Variant(0.0), "#"), "");
  EXPECT_EQ(FormatValue(Variant(42.0), "00000"), "00042");
  EXPECT_EQ(FormatValue(Variant(123456.0), "00"), "123456");
}

TEST(FormatValueTest, LiteralsAroundAndBetweenPlaceholders) {
  EXPECT_EQ(FormatValue(Variant(1234.5), "$#,##0.00"), "$1,234.50");
  EXPECT_EQ(FormatValue(Variant(-1234.5), "$#,##0.00"), "-$1,234.50");
  EXPECT_EQ(FormatValue(Variant(5.0), "0 \"pcs\""), "5 pcs");
  EXPECT_EQ(FormatValue(Variant(1234567.0), "000-0000"), "123-4567");
  EXPECT_EQ(FormatValue(Variant(5.0), "\\#0"), "#5");
}

TEST(FormatValueTest, TrailingCommaDividesByAThousand) {
  EXPECT_EQ(FormatValue(Variant(1234567.0), "#,##0,"), "1,235");
  EXPECT_EQ(FormatValue(Variant(1234567.0), "0,,.0"), "1.2");
}

TEST(FormatValueTest, SectionsForNegativeAndZero) {
  EXPECT_EQ(FormatValue(Variant(-1234.5), "#,##0.00;(#,##0.00)"), "(1,234.50)");
  EXPECT_EQ(FormatValue(Variant(1234.5), "#,##0.00;(#,##0.00)"), "1,234.50");
  EXPECT_EQ(FormatValue(Variant(0.0), "0;(0);\"nil\"0"), "nil0");
  EXPECT_EQ(FormatValue(Variant(-3.0), "0;;\"nil\"0"), "-3");
}

// --- Values of other types ------------------------------------------------------------------

TEST(FormatValueTest, TextThatIsANumberIsFormattedAsANumber) {
  EXPECT_EQ(FormatValue(Variant("1234.5"), kNumberKind1), "1,234.50");
  EXPECT_EQ(FormatValue(Variant(" -7 "), kNumberKind0), "-7");
  EXPECT_EQ(FormatValue(Variant("0.25"), kNumberKind2), "25%");
}

TEST(FormatValueTest, TextThatIsNoNumberComesBackUnchanged) {
  EXPECT_EQ(FormatValue(Variant("abc"), kNumberKind0), "abc");
  EXPECT_EQ(FormatValue(Variant("2026-03-01"), kNumberKind0), "2026-03-01");
  EXPECT_EQ(FormatValue(Variant(""), kNumberKind1), "");
}

TEST(FormatValueTest, BooleanAndDateUnderANumberLayout) {
  EXPECT_EQ(FormatValue(Variant(true), kNumberKind0), "-1");
  EXPECT_EQ(FormatValue(Variant(false), kNumberKind1), "0.00");
  EXPECT_EQ(FormatValue(At(2026, 3, 1), kNumberKind0), "46,082");
}

// --- Malformed patterns -------------------------------------------------------------------------

TEST(FormatValueTest, MalformedPatternGivesTheValueAsText) {
  const Variant v(1234.5);
  EXPECT_EQ(FormatValue(v, "0.00.0"), "1234.5");          // two decimal points
  EXPECT_EQ(FormatValue(v, "\"unterminated"), "1234.5");  // open quote
  EXPECT_EQ(FormatValue(v, "0\\"), "1234.5");             // trailing backslash
  EXPECT_EQ(FormatValue(v, "0.00E+00"), "1234.5");        // exponent part
  EXPECT_EQ(FormatValue(v, "Short Date"), "1234.5");      // a named format
  EXPECT_EQ(FormatValue(v, "xyz"), "1234.5");             // unknown letters
  EXPECT_EQ(FormatValue(v, "---"), "1234.5");             // no placeholder at all
  EXPECT_EQ(FormatValue(v, "0;0;0;0;0"), "1234.5");       // too many sections
  EXPECT_EQ(FormatValue(v, "0.0,0"), "1234.5");           // a comma among the decimals
  EXPECT_EQ(FormatValue(At(2026, 3, 1), "yyy"), "2026-03-01");
  EXPECT_EQ(FormatValue(At(2026, 3, 1), "hhh"), "2026-03-01");
  EXPECT_EQ(FormatValue(At(2026, 3, 1), "ddddd"), "2026-03-01");
  EXPECT_EQ(FormatValue(Variant("abc"), "0.00.0"), "abc");
}

TEST(FormatValueTest, NeverFailsOnAnyPatternOfPatternCharacters) {
  // Every string of up to three characters from the pattern alphabet: no failure, no crash.
  const std::string alphabet = "0#.,%;\"\\ymdhnsAP/:-x";
  const Variant values[] = {Variant(-1234.5678),      Variant(0.0),    Variant(int32_t{7}),
                            At(2026, 3, 1, 14, 5, 9), Variant("12.5"), Variant("text")};
  size_t formatted = 0;
  for (char a : alphabet) {
    for (char b : alphabet) {
      for (char c : alphabet) {
        const std::string pattern{a, b, c};
        for (const Variant& v : values) {
          EXPECT_NO_THROW(FormatValue(v, pattern)) << pattern;
          ++formatted;
        }
      }
    }
  }
  EXPECT_EQ(formatted, alphabet.size() * alphabet.size() * alphabet.size() * 6);
}

}  // namespace
}  // namespace tarnsheets
