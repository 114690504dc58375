#include "tarnsheets/variant.h"

#include <gtest/gtest.h>

#include "tarnsheets/failure.h"

namespace tarnsheets {
namespace {

int FailureNumber(auto&& fn) {
  try {
    fn();
  } catch (const Failure& f) {
    return f.Number();
  }
  return 0;
}

TEST(VariantTest, EmptyAndNullAreDistinctAndPrintAsTheirNames) {
  EXPECT_TRUE(Variant().IsEmpty());
  EXPECT_TRUE(Variant::Null().IsNull());
  EXPECT_FALSE(Variant() == Variant::Null());
  EXPECT_EQ(Variant().Literal(), "Empty");
  EXPECT_EQ(Variant::Null().Literal(), "Null");
  EXPECT_EQ(Variant::Null().AsText(), "");
}

TEST(VariantTest, NullFailsWithInvalidUseOfNullOnConversion) {
  EXPECT_EQ(FailureNumber([] { (void)Variant::Null().ToText(); }), kErrInvalidUseOfNull);
  EXPECT_EQ(FailureNumber([] { (void)Variant::Null().ToLong(); }), kErrInvalidUseOfNull);
  EXPECT_EQ(FailureNumber([] { (void)Variant::Null().ToDouble(); }), kErrInvalidUseOfNull);
}

TEST(VariantTest, BooleanTextIsTrueOrFalse) {
  EXPECT_EQ(Variant(true).AsText(), "True");
  EXPECT_EQ(Variant(false).AsText(), "False");
  EXPECT_EQ(Variant(true).ToDouble(), -1);
}

TEST(VariantTest, NumbersPrintShortestRoundTripWithoutExponent) {
  EXPECT_EQ(Variant(-1234.5).AsText(), "-1234.5");
  EXPECT_EQ(Variant(0.1 + 0.2).AsText(), "0.30000000000000004");
  EXPECT_EQ(Variant(1e20).AsText(), "100000000000000000000");
  EXPECT_EQ(Variant(0.000001).AsText(), "0.000001");
  EXPECT_EQ(Variant(int32_t{42}).AsText(), "42");
  EXPECT_EQ(Variant(int16_t{-7}).AsText(), "-7");
  EXPECT_EQ(Variant(0.0).AsText(), "0");
}

TEST(VariantTest, DateTextShowsDateAloneAtMidnightAndTimeAloneOnDayZero) {
  EXPECT_EQ(Variant(Date::FromParts(2026, 3, 1)).AsText(), "2026-03-01");
  EXPECT_EQ(Variant(Date::FromParts(2026, 3, 1, 14, 5, 9)).AsText(), "2026-03-01 14:05:09");
  EXPECT_EQ(Variant(Date::FromParts(1899, 12, 30, 8, 30, 0)).AsText(), "08:30:00");
  EXPECT_EQ(Variant(Date::FromParts(1899, 12, 30)).AsText(), "1899-12-30");
  EXPECT_EQ(Variant(Date::FromParts(2026, 3, 1)).Literal(), "#2026-03-01 00:00:00#");
}

TEST(VariantTest, DateSerialMatchesThePlatformEpoch) {
  EXPECT_EQ(Date::FromParts(1899, 12, 30).serial, 0);
  EXPECT_EQ(Date::FromParts(1900, 1, 1).serial, 2);
  EXPECT_DOUBLE_EQ(Date::FromParts(1899, 12, 29, 6, 0, 0).serial, -1.25);
  const Date::Parts p = Date{-1.25}.ToParts();
  EXPECT_EQ(p.day, 29);
  EXPECT_EQ(p.hour, 6);
}

TEST(VariantTest, ToLongRoundsHalfToEvenAndOverflowsWithSix) {
  EXPECT_EQ(Variant(2.5).ToLong(), 2);
  EXPECT_EQ(Variant(3.5).ToLong(), 4);
  EXPECT_EQ(Variant(-2.5).ToLong(), -2);
  EXPECT_EQ(FailureNumber([] { (void)Variant(3e9).ToLong(); }), kErrOverflow);
  EXPECT_EQ(FailureNumber([] { (void)Variant(int32_t{40000}).ToInteger(); }), kErrOverflow);
  EXPECT_EQ(Variant("  12 ").ToLong(), 12);
  EXPECT_EQ(Variant("&HBB5522").ToLong(), 0xBB5522);
}

TEST(VariantTest, TextThatIsNoNumberFailsWithTypeMismatch) {
  EXPECT_EQ(FailureNumber([] { (void)Variant("abc").ToDouble(); }), kErrTypeMismatch);
  EXPECT_EQ(FailureNumber([] { (void)Variant("abc").EqualsZero(); }), kErrTypeMismatch);
}

TEST(VariantTest, EqualsZeroIsTrueForEmptyAndZeroFalseForNull) {
  EXPECT_TRUE(Variant().EqualsZero());
  EXPECT_TRUE(Variant(int32_t{0}).EqualsZero());
  EXPECT_TRUE(Variant(false).EqualsZero());
  EXPECT_TRUE(Variant("0").EqualsZero());
  EXPECT_FALSE(Variant::Null().EqualsZero());
  EXPECT_FALSE(Variant(int32_t{1}).EqualsZero());
}

TEST(VariantTest, LiteralEscapesStrings) {
  EXPECT_EQ(Variant("a\"b\\c\nd\te\r").Literal(), "\"a\\\"b\\\\c\\nd\\te\\r\"");
}

TEST(VariantTest, ParseIsoDateAcceptsTheThreeFormsAndRejectsBadDates) {
  Date d;
  ASSERT_TRUE(ParseIsoDate("2026-03-01 00:00:00", &d));
  EXPECT_EQ(d, Date::FromParts(2026, 3, 1));
  ASSERT_TRUE(ParseIsoDate("2026-03-01", &d));
  ASSERT_TRUE(ParseIsoDate("12:30:15", &d));
  EXPECT_EQ(d, Date::FromParts(1899, 12, 30, 12, 30, 15));
  EXPECT_FALSE(ParseIsoDate("2026-02-30", &d));
  EXPECT_FALSE(ParseIsoDate("2025-02-29", &d));
  EXPECT_FALSE(ParseIsoDate("25:00", &d));
  EXPECT_FALSE(ParseIsoDate("hello", &d));
}

TEST(FailureTest, PlatformDescriptionsAreThePlatformsOwn) {
  EXPECT_EQ(PlatformFailure(457).Description(),
            "This key is already associated with an element of this collection");
  EXPECT_EQ(ControlArrayElementMissing(7).Description(), "Control array element '7' doesn't exist");
  EXPECT_EQ(kErrSheetApplication, static_cast<int32_t>(0x800401F4u));
}

}  // namespace
}  // namespace tarnsheets
