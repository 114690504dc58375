#include "tarnsheets/property_bag.h"

#include <gtest/gtest.h>

#include "tarnsheets/failure.h"

namespace tarnsheets {
namespace {

TEST(PropertyBagTest, ValueEqualToItsDefaultIsNotStored) {
  MemoryPropertyBag bag;
  bag.WriteProperty("Style", Variant(int32_t{0}), Variant(int32_t{0}));
  bag.WriteProperty("Text", Variant("OrrinText"), Variant("OrrinText"));
  bag.WriteColor("BorderColor", 0xBB5522, 0xBB5522);
  EXPECT_TRUE(bag.Entries().empty());
  // Numbers compare by value across their types.
  bag.WriteProperty("SelLength", Variant(int16_t{0}), Variant(int32_t{0}));
  EXPECT_TRUE(bag.Entries().empty());
}

TEST(PropertyBagTest, MissingKeyReadsAsItsDefault) {
  MemoryPropertyBag bag;
  EXPECT_EQ(bag.ReadProperty("Text", Variant("OrrinText")), Variant("OrrinText"));
  EXPECT_EQ(bag.ReadLong("Style", 0), 0);
  EXPECT_EQ(bag.ReadColor("BackColor", kSysWindowBackground), kSysWindowBackground);
  Font f;
  f.name = "SimSun";
  EXPECT_EQ(bag.ReadFontProperty("Font", f), f);
}

TEST(PropertyBagTest, KeysKeepTheirWriteOrderInTheTranscript) {
  MemoryPropertyBag bag;
  bag.WriteProperty("Style", Variant(int32_t{2}), Variant(int32_t{0}));
  bag.WriteProperty("Enabled", Variant(false), Variant(true));
  bag.WriteColor("BackColor", 0x8000000A, 0x80000005);
  Font f;
  f.size = 9.75;
  bag.WriteFontProperty("Font", f, Font{});
  bag.WriteProperty("Text", Variant("a\"b"), Variant("OrrinText"));
  EXPECT_EQ(bag.TranscriptLines(),
            (std::vector<std::string>{
                "Style=2", "Enabled=False", "BackColor=-2147483638",
                "Font=Font(\"MS Sans Serif\", 9.75, bold=False, italic=False, underline=False, "
                "strikethrough=False, charset=0)",
                "Text=\"a\\\"b\""}));
}

TEST(PropertyBagTest, WritingTheDefaultAgainRemovesTheKey) {
  MemoryPropertyBag bag;
  bag.WriteProperty("Style", Variant(int32_t{1}), Variant(int32_t{0}));
  bag.WriteProperty("Style", Variant(int32_t{0}), Variant(int32_t{0}));
  EXPECT_FALSE(bag.Contains("Style"));
}

TEST(PropertyBagTest, StoredValuesRoundTripThroughTheTypedReads) {
  MemoryPropertyBag bag;
  bag.WriteColor("BackColor", 0x8000000A, 0x80000005);
  bag.WriteProperty("Locked", Variant(true), Variant(false));
  bag.WriteProperty("SelStart", Variant(int16_t{4}), Variant(int16_t{0}));
  bag.WriteProperty("PasswordChar", Variant("*"), Variant(""));
  EXPECT_EQ(bag.ReadColor("BackColor", 0x80000005), 0x8000000Au);
  EXPECT_TRUE(bag.ReadBool("Locked", false));
  EXPECT_EQ(bag.ReadInteger("SelStart", 0), 4);
  EXPECT_EQ(bag.ReadString("PasswordChar", ""), "*");
  // A stored number read with a text default comes back as its text.
  EXPECT_EQ(bag.ReadProperty("SelStart", Variant("")), Variant("4"));
}

TEST(PropertyBagTest, WrongTypeForTheKeyFailsWithTypeMismatchNamingTheKey) {
  MemoryPropertyBag bag;
  bag.Set("Style", Variant("wide"));
  bag.Set("Font", Variant(int32_t{5}));
  bag.Set("Appearance", Font{});
  try {
    bag.ReadLong("Style", 0);
    FAIL() << "no failure";
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), kErrTypeMismatch);
    EXPECT_EQ(f.Description(),
              "Type mismatch: property \"Style\" holds \"wide\" where a number is expected");
  }
  try {
    bag.ReadFontProperty("Font", Font{});
    FAIL() << "no failure";
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), kErrTypeMismatch);
    EXPECT_NE(f.Description().find("\"Font\""), std::string::npos);
  }
  try {
    bag.ReadLong("Appearance", 1);
    FAIL() << "no failure";
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), kErrTypeMismatch);
    EXPECT_NE(f.Description().find("\"Appearance\" holds a font"), std::string::npos);
  }
  // Nothing was changed by the failed reads.
  EXPECT_EQ(bag.Entries().size(), 3u);
}

TEST(PropertyBagTest, NumberOutOfRangeFailsWithOverflowNamingTheKey) {
  MemoryPropertyBag bag;
  bag.Set("SelLength", Variant(int32_t{100000}));
  try {
    bag.ReadInteger("SelLength", 0);
    FAIL() << "no failure";
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), kErrOverflow);
    EXPECT_NE(f.Description().find("\"SelLength\""), std::string::npos);
  }
}

TEST(PropertyBagTest, NullStoredUnderANumericKeyIsATypeMismatch) {
  MemoryPropertyBag bag;
  bag.Set("Value", Variant::Null());
  try {
    bag.ReadLong("Value", 0);
    FAIL() << "no failure";
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), kErrTypeMismatch);
  }
}

}  // namespace
}  // namespace tarnsheets
