#include "tarnsheets/titles.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tarnsheets/messages.h"
#include "titles/recording_dialogs.h"

namespace tarnsheets {
namespace {

constexpr const char* kDuplicateKeyText =
    "This key is already associated with an element of this collection";

class TitlesTest : public ::testing::Test {
 protected:
  void SetUp() override { SetMessageLanguageForTest(kLanguageEnglish); }
  void TearDown() override { SetMessageLanguageForTest(0); }

  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& title : titles_) names.push_back(title->Name);
    return names;
  }

  RecordingDialogs dialogs_;
  ClsSheetsTitles titles_{dialogs_};
};

TEST_F(TitlesTest, NewTitleHasItsNameAndEmptyTextsAndFalseFlags) {
  auto title = titles_.Add("OpportunityName");
  ASSERT_NE(title, nullptr);
  EXPECT_EQ(title->Name, "OpportunityName");
  EXPECT_EQ(title->DisplayName, "");
  EXPECT_EQ(title->Description, "");
  EXPECT_FALSE(title->MultiLine);
  EXPECT_EQ(title->DisplayFormat, "");
  EXPECT_FALSE(title->DisplayCommand);
  EXPECT_EQ(titles_.Count(), 1);
  EXPECT_TRUE(dialogs_.boxes.empty());
}

TEST_F(TitlesTest, AddReturnsTheStoredTitleSoTheHostCanFillIt) {
  titles_.Add("Amount")->DisplayName = "Deal amount";
  EXPECT_EQ(titles_.Item("amount")->DisplayName, "Deal amount");
}

TEST_F(TitlesTest, AddWithEmptyNameStoresATitleOnlyItsPositionReaches) {
  auto unnamed = titles_.Add("");
  auto absent = titles_.Add();
  ASSERT_NE(unnamed, nullptr);
  ASSERT_NE(absent, nullptr);
  EXPECT_EQ(titles_.Count(), 2);
  EXPECT_EQ(titles_.Item(1), unnamed);
  EXPECT_EQ(titles_.Item(2), absent);
  EXPECT_EQ(titles_.Item(""), nullptr);
  EXPECT_TRUE(dialogs_.boxes.empty());
}

TEST_F(TitlesTest, AddOfNameDifferingOnlyInCaseShowsTheBoxAndReturnsNothing) {
  titles_.Add("Account");
  EXPECT_EQ(titles_.Add("ACCOUNT"), nullptr);
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_EQ(dialogs_.boxes[0].title, "Add");
  EXPECT_EQ(dialogs_.boxes[0].text, std::string("Error:457\r\n") + kDuplicateKeyText);
  EXPECT_EQ(dialogs_.boxes[0].style, MessageBoxStyle::kCritical);
  EXPECT_EQ(titles_.Count(), 1);
  EXPECT_EQ(titles_.Item(1)->Name, "Account");
}

TEST_F(TitlesTest, AddBoxReadsInChineseWithTheChineseTable) {
  SetMessageLanguageForTest(kLanguageChinese);
  titles_.Add("Account");
  titles_.Add("account");
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_EQ(dialogs_.boxes[0].title, "Add");
  EXPECT_EQ(dialogs_.boxes[0].text, std::string("错误：457\r\n") + kDuplicateKeyText);
}

TEST_F(TitlesTest, ItemReachesByKeyInAnyCaseOrByPosition) {
  auto a = titles_.Add("Name");
  auto b = titles_.Add("Дата");
  EXPECT_EQ(titles_.Item("NAME"), a);
  EXPECT_EQ(titles_.Item("дата"), b);
  EXPECT_EQ(titles_.Item(2), b);
  EXPECT_EQ(titles_[Variant("name")], a);  // the default member
  EXPECT_EQ(titles_[1], a);
}

TEST_F(TitlesTest, ItemWithUnknownNameReturnsNothingWithoutABox) {
  titles_.Add("Name");
  EXPECT_EQ(titles_.Item("Other"), nullptr);
  EXPECT_EQ(titles_.Item(0), nullptr);
  EXPECT_EQ(titles_.Item(2), nullptr);
  EXPECT_EQ(titles_.Item(Variant::Null()), nullptr);
  EXPECT_TRUE(dialogs_.boxes.empty());
}

TEST_F(TitlesTest, RemoveByKeyOrPositionReturnsFalse) {
  titles_.Add("A");
  titles_.Add("B");
  titles_.Add("C");
  EXPECT_FALSE(titles_.Remove("b"));
  EXPECT_EQ(Names(), (std::vector<std::string>{"A", "C"}));
  EXPECT_FALSE(titles_.Remove(1));
  EXPECT_EQ(Names(), (std::vector<std::string>{"C"}));
  EXPECT_TRUE(dialogs_.boxes.empty());
}

TEST_F(TitlesTest, RemoveOfMissingTitleShowsTheRemoveBoxAndReturnsTrue) {
  titles_.Add("A");
  EXPECT_TRUE(titles_.Remove("Z"));
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_EQ(dialogs_.boxes[0].title, "Remove");
  EXPECT_EQ(dialogs_.boxes[0].text, "Error:5\r\nInvalid procedure call or argument");
  EXPECT_EQ(dialogs_.boxes[0].style, MessageBoxStyle::kCritical);
  EXPECT_EQ(titles_.Count(), 1);
}

TEST_F(TitlesTest, RemoveBoxReadsInChinese) {
  SetMessageLanguageForTest(kLanguageChinese);
  EXPECT_TRUE(titles_.Remove(1));
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_EQ(dialogs_.boxes[0].text, "错误：5\r\nInvalid procedure call or argument");
}

TEST_F(TitlesTest, ClearOnAnEmptyCollectionReturnsFalseAtOnce) {
  EXPECT_FALSE(titles_.Clear());
  EXPECT_EQ(titles_.Count(), 0);
  EXPECT_TRUE(dialogs_.boxes.empty());
}

TEST_F(TitlesTest, ClearRemovesEveryTitleAndFreesTheirNames) {
  titles_.Add("A");
  titles_.Add();
  titles_.Add("B");
  EXPECT_FALSE(titles_.Clear());
  EXPECT_EQ(titles_.Count(), 0);
  EXPECT_NE(titles_.Add("a"), nullptr);
  EXPECT_TRUE(dialogs_.boxes.empty());
}

TEST_F(TitlesTest, NewEnumWalksInOrderEvenWhenTheCollectionChanges) {
  titles_.Add("A");
  titles_.Add("B");
  titles_.Add("C");
  std::vector<std::string> walked;
  for (const auto& title : titles_.NewEnum()) {
    walked.push_back(title->Name);
    titles_.Remove(1);
  }
  EXPECT_EQ(walked, (std::vector<std::string>{"A", "B", "C"}));
  EXPECT_EQ(titles_.Count(), 0);
}

TEST_F(TitlesTest, RangeForWalksTheTitlesInOrder) {
  titles_.Add("Z");
  titles_.Add("A");
  titles_.Add("M");
  EXPECT_EQ(Names(), (std::vector<std::string>{"Z", "A", "M"}));
}

TEST_F(TitlesTest, CaptionNameIsEmptyUntilSetAndTakesAnyValue) {
  EXPECT_TRUE(titles_.CaptionName().IsEmpty());
  titles_.SetCaptionName(Variant("Opportunity"));
  EXPECT_EQ(titles_.CaptionName(), Variant("Opportunity"));
  titles_.SetCaptionName(Variant::Null());
  EXPECT_TRUE(titles_.CaptionName().IsNull());
}

TEST_F(TitlesTest, GetFieldDisplayNameFindsTheNameInOtherCase) {
  titles_.Add("CloseDate")->DisplayName = "Close date";
  EXPECT_EQ(titles_.GetFieldDisplayName("CLOSEDATE"), "Close date");
  EXPECT_EQ(titles_.GetFieldDisplayName("closedate"), "Close date");
  EXPECT_TRUE(dialogs_.boxes.empty());
}

TEST_F(TitlesTest, GetFieldNameFindsTheFirstMatchingDisplayNameInAnyCase) {
  titles_.Add("First")->DisplayName = "Σύνολο";
  titles_.Add("Second")->DisplayName = "ΣΎΝΟΛΟ";
  EXPECT_EQ(titles_.GetFieldName("σύνολο"), "First");
  EXPECT_TRUE(dialogs_.boxes.empty());
}

TEST_F(TitlesTest, GetFieldNameOnAnEmptyCollectionShowsNotFoundAndReturnsEmpty) {
  EXPECT_EQ(titles_.GetFieldName("Amount"), "");
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_EQ(dialogs_.boxes[0].title, "GetFieldName");
  EXPECT_EQ(dialogs_.boxes[0].text, "It doesn't find 'Amount'!");
  EXPECT_EQ(dialogs_.boxes[0].style, MessageBoxStyle::kPlain);
}

TEST_F(TitlesTest, GetFieldDisplayNameNotFoundShowsItsOwnTitle) {
  titles_.Add("Amount")->DisplayName = "Amount";
  EXPECT_EQ(titles_.GetFieldDisplayName("Amounts"), "");
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_EQ(dialogs_.boxes[0].title, "GetFieldDisplayName");
  EXPECT_EQ(dialogs_.boxes[0].text, "It doesn't find 'Amounts'!");
  EXPECT_EQ(dialogs_.boxes[0].style, MessageBoxStyle::kPlain);
}

TEST_F(TitlesTest, NotFoundBoxReadsInChinese) {
  SetMessageLanguageForTest(kLanguageChinese);
  EXPECT_EQ(titles_.GetFieldDisplayName("金额"), "");
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_EQ(dialogs_.boxes[0].title, "GetFieldDisplayName");
  EXPECT_EQ(dialogs_.boxes[0].text, "没有找到'金额'!");
}

TEST_F(TitlesTest, GetFieldNameDoesNotSearchNames) {
  titles_.Add("Amount")->DisplayName = "Deal amount";
  EXPECT_EQ(titles_.GetFieldName("Amount"), "");
  EXPECT_EQ(dialogs_.boxes.size(), 1u);
}

TEST_F(TitlesTest, SearchesReachUnnamedTitles) {
  titles_.Add()->DisplayName = "Remarks";
  EXPECT_EQ(titles_.GetFieldName("remarks"), "");
  EXPECT_TRUE(dialogs_.boxes.empty());  // found: its Name is empty
  EXPECT_EQ(titles_.GetFieldDisplayName(""), "Remarks");
}

}  // namespace
}  // namespace tarnsheets
