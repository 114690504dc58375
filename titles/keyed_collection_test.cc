#include "tarnsheets/keyed_collection.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tarnsheets/failure.h"

namespace tarnsheets {
namespace {

// Runs `body` and returns the number of the Failure it throws, or -1 when it throws none.
template <typename F>
int32_t FailureNumber(F body) {
  try {
    body();
  } catch (const Failure& failure) {
    return failure.Number();
  }
  return -1;
}

KeyedCollection<std::string> ThreeItems() {
  KeyedCollection<std::string> c;
  c.Add("first", "Alpha");
  c.Add("second", "Beta");
  c.Add("third", "Gamma");
  return c;
}

TEST(KeyedCollectionTest, KeepsInsertionOrder) {
  KeyedCollection<std::string> c = ThreeItems();
  std::vector<std::string> walked;
  for (const std::string& item : c) walked.push_back(item);
  EXPECT_EQ(walked, (std::vector<std::string>{"first", "second", "third"}));
}

TEST(KeyedCollectionTest, ReachesItemsByOneBasedPosition) {
  KeyedCollection<std::string> c = ThreeItems();
  EXPECT_EQ(c.Count(), 3);
  EXPECT_EQ(c.Item(1), "first");
  EXPECT_EQ(c.Item(3), "third");
}

TEST(KeyedCollectionTest, ReachesItemsByKeyWithoutRegardToCase) {
  KeyedCollection<std::string> c = ThreeItems();
  EXPECT_EQ(c.ItemByKey("beta"), "second");
  EXPECT_EQ(c.ItemByKey("GAMMA"), "third");
  EXPECT_TRUE(c.ContainsKey("aLpHa"));
}

TEST(KeyedCollectionTest, DuplicateKeyInOtherCaseFailsWith457AndChangesNothing) {
  KeyedCollection<std::string> c = ThreeItems();
  try {
    c.Add("again", "ALPHA");
    FAIL() << "no failure";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), 457);
    EXPECT_EQ(failure.Description(),
              "This key is already associated with an element of this collection");
  }
  EXPECT_EQ(c.Count(), 3);
  EXPECT_EQ(c.ItemByKey("alpha"), "first");
}

TEST(KeyedCollectionTest, MissingKeyFailsWith5) {
  KeyedCollection<std::string> c = ThreeItems();
  try {
    c.ItemByKey("Delta");
    FAIL() << "no failure";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), 5);
    EXPECT_EQ(failure.Description(), "Invalid procedure call or argument");
  }
}

TEST(KeyedCollectionTest, PositionsOutsideOneToCountFailWith5) {
  KeyedCollection<std::string> c = ThreeItems();
  EXPECT_EQ(FailureNumber([&] { c.Item(0); }), 5);
  EXPECT_EQ(FailureNumber([&] { c.Item(4); }), 5);
  EXPECT_EQ(FailureNumber([&] { c.Item(-1); }), 5);
  KeyedCollection<std::string> empty;
  EXPECT_EQ(FailureNumber([&] { empty.Item(1); }), 5);
}

TEST(KeyedCollectionTest, ItemWithoutKeyIsReachableByPositionOnly) {
  KeyedCollection<std::string> c;
  c.Add("keyless");
  EXPECT_EQ(c.Item(1), "keyless");
  EXPECT_FALSE(c.KeyAt(1).has_value());
  EXPECT_EQ(FailureNumber([&] { c.ItemByKey(""); }), 5);
  // A second item without a key is no duplicate.
  c.Add("another keyless");
  EXPECT_EQ(c.Count(), 2);
}

TEST(KeyedCollectionTest, VariantTextIsAKeyAndNumberAPosition) {
  KeyedCollection<std::string> c;
  c.Add("under key 2", "2");
  c.Add("at position 2", "x");
  EXPECT_EQ(c.Item(Variant("2")), "under key 2");
  EXPECT_EQ(c.Item(Variant(int32_t{2})), "at position 2");
  EXPECT_EQ(c.Item(Variant(int16_t{1})), "under key 2");
  // A fraction is rounded to a whole position, half to even.
  EXPECT_EQ(c.Item(Variant(1.6)), "at position 2");
  EXPECT_EQ(c.Item(Variant(2.5)), "at position 2");
}

TEST(KeyedCollectionTest, NullIndexFailsWith94AndEmptyWith5) {
  KeyedCollection<std::string> c = ThreeItems();
  EXPECT_EQ(FailureNumber([&] { c.Item(Variant::Null()); }), 94);
  EXPECT_EQ(FailureNumber([&] { c.Item(Variant()); }), 5);
}

TEST(KeyedCollectionTest, RemoveByKeyMovesLaterItemsForwardAndFreesTheKey) {
  KeyedCollection<std::string> c = ThreeItems();
  c.RemoveByKey("BETA");
  EXPECT_EQ(c.Count(), 2);
  EXPECT_EQ(c.Item(2), "third");
  EXPECT_EQ(c.ItemByKey("gamma"), "third");
  EXPECT_EQ(FailureNumber([&] { c.ItemByKey("beta"); }), 5);
  c.Add("new beta", "Beta");
  EXPECT_EQ(c.Item(3), "new beta");
}

TEST(KeyedCollectionTest, RemoveByPositionKeepsTheOtherKeys) {
  KeyedCollection<std::string> c = ThreeItems();
  c.Remove(1);
  EXPECT_EQ(c.ItemByKey("Beta"), "second");
  EXPECT_EQ(c.ItemByKey("Gamma"), "third");
  EXPECT_EQ(c.Item(1), "second");
}

TEST(KeyedCollectionTest, RemoveOfMissingItemFailsWith5AndChangesNothing) {
  KeyedCollection<std::string> c = ThreeItems();
  EXPECT_EQ(FailureNumber([&] { c.Remove(Variant("Delta")); }), 5);
  EXPECT_EQ(FailureNumber([&] { c.Remove(Variant(int32_t{4})); }), 5);
  EXPECT_EQ(c.Count(), 3);
}

TEST(FoldKeyCaseTest, FoldsAsciiAndLatinLetters) {
  EXPECT_EQ(FoldKeyCase("OpportunityName"), "opportunityname");
  EXPECT_EQ(FoldKeyCase("ÀÉÎÕÜÇÑ"), "àéîõüçñ");
  EXPECT_EQ(FoldKeyCase("×"), "×");  // the multiplication sign has no case
  EXPECT_EQ(FoldKeyCase("ĀĒĪŁŃŒŠŽŸ"), "āēīłńœšžÿ");
  EXPECT_TRUE(KeysEqual("Straße", "STRAẞE"));
}

TEST(FoldKeyCaseTest, FoldsGreekAndCyrillic) {
  EXPECT_TRUE(KeysEqual("ΟΝΟΜΑ", "όνομα") == false);  // a tonos is no case
  EXPECT_TRUE(KeysEqual("ΟΝΟΜΑ", "ονομα"));
  EXPECT_TRUE(KeysEqual("Ά", "ά"));
  EXPECT_TRUE(KeysEqual("ΟΔΟΣ", "οδος"));
  EXPECT_TRUE(KeysEqual("οδος", "οδoς") == false);  // a Latin o is another letter
  EXPECT_TRUE(KeysEqual("Имя", "ИМЯ"));
  EXPECT_TRUE(KeysEqual("ЁЖИК", "ёжик"));
  EXPECT_TRUE(KeysEqual("ҐІЇЄ", "ґіїє"));
}

TEST(FoldKeyCaseTest, LeavesCjkAndOtherTextUnchanged) {
  EXPECT_EQ(FoldKeyCase("商机名称"), "商机名称");
  EXPECT_EQ(FoldKeyCase("名称1_2-3"), "名称1_2-3");
  EXPECT_FALSE(KeysEqual("商机", "商機"));
}

TEST(FoldKeyCaseTest, KeepsBytesThatAreNoValidUtf8) {
  const std::string broken = std::string("A") + '\xC3' + "B" + '\xFF';
  EXPECT_EQ(FoldKeyCase(broken), std::string("a") + '\xC3' + "b" + '\xFF');
}

}  // namespace
}  // namespace tarnsheets
