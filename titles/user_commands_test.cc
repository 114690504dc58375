#include "tarnsheets/user_commands.h"

#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tarnsheets/failure.h"
#include "tarnsheets/messages.h"
#include "titles/recording_dialogs.h"

namespace tarnsheets {
namespace {

// Entries are read-only to hosts: the collection hands out const entries, whose texts come back
// as const references.
static_assert(
    std::is_same_v<ClsSheetsUserCommands::CommandRef, std::shared_ptr<const ClsSheetsUserCommand>>);
static_assert(std::is_same_v<decltype(std::declval<const ClsSheetsUserCommand&>().Name()),
                             const std::string&>);

template <typename F>
int32_t FailureNumber(F body) {
  try {
    body();
  } catch (const Failure& failure) {
    return failure.Number();
  }
  return -1;
}

class UserCommandsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    SetMessageLanguageForTest(kLanguageEnglish);
    commands_ = std::make_unique<ClsSheetsUserCommands>(dialogs_);
    commands_->AddCommandChangeListener([this] { ++changes_; });
  }
  void TearDown() override { SetMessageLanguageForTest(0); }

  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& command : *commands_) names.push_back(command->Name());
    return names;
  }

  // Declared before the collection, whose end still raises CommandChange into them.
  RecordingDialogs dialogs_;
  int changes_ = 0;
  std::unique_ptr<ClsSheetsUserCommands> commands_;
};

TEST(UserCommandsLifetimeTest, CommandChangeIsRaisedAtCreationAndAtEnd) {
  RecordingDialogs dialogs;
  int changes = 0;
  {
    ClsSheetsUserCommands commands(dialogs, [&] { ++changes; });
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(commands.Count(), 0);
  }
  EXPECT_EQ(changes, 2);
}

TEST(UserCommandsLifetimeTest, ALaterListenerHearsTheEndButNotTheCreation) {
  RecordingDialogs dialogs;
  int changes = 0;
  {
    ClsSheetsUserCommands commands(dialogs);
    commands.AddCommandChangeListener([&] { ++changes; });
    EXPECT_EQ(changes, 0);
  }
  EXPECT_EQ(changes, 1);
}

TEST_F(UserCommandsTest, AddSetsBothTextsAndRaisesCommandChange) {
  auto command = commands_->Add("Print", "Print quote");
  ASSERT_NE(command, nullptr);
  EXPECT_EQ(command->Name(), "Print");
  EXPECT_EQ(command->DisplayName(), "Print quote");
  EXPECT_EQ(commands_->Count(), 1);
  EXPECT_EQ(changes_, 1);
  EXPECT_TRUE(dialogs_.boxes.empty());
}

TEST_F(UserCommandsTest, CommandChangeRunsInsideAddAfterTheEntryIsIn) {
  int count_seen = -1;
  const auto id = commands_->AddCommandChangeListener([&] { count_seen = commands_->Count(); });
  commands_->Add("Print", "Print");
  EXPECT_EQ(count_seen, 1);
  commands_->RemoveCommandChangeListener(id);  // before this test's locals end
}

TEST_F(UserCommandsTest, ASecondAddWithTheSameNameInAnyCaseShowsTheBoxAndReturnsNothing) {
  commands_->Add("Print", "Print");
  EXPECT_EQ(commands_->Add("Print", "Again"), nullptr);
  EXPECT_EQ(commands_->Add("PRINT", "Again"), nullptr);
  ASSERT_EQ(dialogs_.boxes.size(), 2u);
  for (const auto& box : dialogs_.boxes) {
    EXPECT_EQ(box.title, "Add");
    EXPECT_EQ(box.text,
              "Error:457\r\nThis key is already associated with an element of this collection");
    EXPECT_EQ(box.style, MessageBoxStyle::kCritical);
  }
  EXPECT_EQ(commands_->Count(), 1);
  EXPECT_EQ(commands_->Item(1)->DisplayName(), "Print");
  EXPECT_EQ(changes_, 1);  // only the first Add raised CommandChange
}

TEST_F(UserCommandsTest, TheAddBoxReadsInChinese) {
  SetMessageLanguageForTest(kLanguageChinese);
  commands_->Add("Print", "打印");
  commands_->Add("print", "打印");
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_EQ(dialogs_.boxes[0].title, "Add");
  EXPECT_EQ(dialogs_.boxes[0].text,
            "错误：457\r\nThis key is already associated with an element of this collection");
}

TEST_F(UserCommandsTest, AnEntryWithAnEmptyNameIsReachableByPositionOnly) {
  auto first = commands_->Add("", "No name");
  auto second = commands_->Add("", "No name either");
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(commands_->Count(), 2);
  EXPECT_EQ(commands_->Item(2)->DisplayName(), "No name either");
  EXPECT_EQ(commands_->Item(1)->Name(), "");
  EXPECT_EQ(FailureNumber([&] { commands_->Item(""); }), 5);
  EXPECT_EQ(changes_, 2);
}

TEST_F(UserCommandsTest, ItemReachesByKeyInAnyCaseOrByPosition) {
  commands_->Add("Print", "Print");
  commands_->Add("Mail", "Mail");
  EXPECT_EQ(commands_->Item("MAIL")->Name(), "Mail");
  EXPECT_EQ(commands_->Item(1)->Name(), "Print");
  EXPECT_EQ((*commands_)[Variant("print")]->Name(), "Print");  // the default member
}

TEST_F(UserCommandsTest, AMissingItemFailsToTheCallerWithoutABox) {
  commands_->Add("Print", "Print");
  EXPECT_EQ(FailureNumber([&] { commands_->Item("Mail"); }), 5);
  EXPECT_EQ(FailureNumber([&] { commands_->Item(2); }), 5);
  EXPECT_TRUE(dialogs_.boxes.empty());
}

TEST_F(UserCommandsTest, RemoveTakesTheEntryOutAndRaisesCommandChange) {
  commands_->Add("Print", "Print");
  commands_->Add("Mail", "Mail");
  commands_->Add("Fax", "Fax");
  changes_ = 0;
  commands_->Remove("mail");
  EXPECT_EQ(Names(), (std::vector<std::string>{"Print", "Fax"}));
  EXPECT_EQ(changes_, 1);
  commands_->Remove(1);
  EXPECT_EQ(Names(), (std::vector<std::string>{"Fax"}));
  EXPECT_EQ(changes_, 2);
}

TEST_F(UserCommandsTest, RemoveOfAMissingEntryFailsToTheCallerWithoutTheEvent) {
  commands_->Add("Print", "Print");
  changes_ = 0;
  EXPECT_EQ(FailureNumber([&] { commands_->Remove("Mail"); }), 5);
  EXPECT_EQ(FailureNumber([&] { commands_->Remove(0); }), 5);
  EXPECT_EQ(changes_, 0);
  EXPECT_EQ(commands_->Count(), 1);
  EXPECT_TRUE(dialogs_.boxes.empty());
}

TEST_F(UserCommandsTest, NewEnumWalksInOrderEvenWhenTheCollectionChanges) {
  commands_->Add("A", "a");
  commands_->Add("B", "b");
  commands_->Add("C", "c");
  std::vector<std::string> walked;
  for (const auto& command : commands_->NewEnum()) {
    walked.push_back(command->DisplayName());
    commands_->Remove(1);
  }
  EXPECT_EQ(walked, (std::vector<std::string>{"a", "b", "c"}));
  EXPECT_EQ(commands_->Count(), 0);
}

TEST_F(UserCommandsTest, ARemovedListenerIsNotCalled) {
  int other = 0;
  const auto id = commands_->AddCommandChangeListener([&] { ++other; });
  commands_->Add("A", "a");
  commands_->RemoveCommandChangeListener(id);
  commands_->Add("B", "b");
  EXPECT_EQ(other, 1);
  EXPECT_EQ(changes_, 2);
}

TEST_F(UserCommandsTest, AListenerMayChangeTheCollectionAndDropItselfWhileItRuns) {
  ClsSheetsUserCommands::ListenerId id = 0;
  id = commands_->AddCommandChangeListener([&] {
    commands_->RemoveCommandChangeListener(id);
    commands_->Add("Added by listener", "x");
  });
  commands_->Add("A", "a");
  EXPECT_EQ(Names(), (std::vector<std::string>{"A", "Added by listener"}));
  EXPECT_EQ(changes_, 2);  // the fixture's listener heard both Adds
}

TEST_F(UserCommandsTest, AListenerDroppedByAnEarlierOneIsSkipped) {
  int later = 0;
  ClsSheetsUserCommands::ListenerId later_id = 0;
  const auto first_id = commands_->AddCommandChangeListener(
      [&] { commands_->RemoveCommandChangeListener(later_id); });
  later_id = commands_->AddCommandChangeListener([&] { ++later; });
  commands_->Add("A", "a");
  EXPECT_EQ(later, 0);
  commands_->RemoveCommandChangeListener(first_id);  // before this test's locals end
}

}  // namespace
}  // namespace tarnsheets
