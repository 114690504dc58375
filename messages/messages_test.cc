#include "tarnsheets/messages.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "messages/show_error.h"
#include "tarnsheets/dialogs.h"
#include "tarnsheets/failure.h"

namespace tarnsheets {
namespace {

// The table as the system's users read it, written out here on its own.
const std::map<int32_t, std::string>& English() {
  static const std::map<int32_t, std::string> texts = {
      {1, "Error:"},
      {101, "&New Record"},
      {102, "&Delete Record"},
      {103, "&Copy Record"},
      {104, "C&ancel"},
      {107, "New"},
      {108, "Delete"},
      {109, "Copy"},
      {110, "Cancel"},
      {213, "Type Mismatch!"},
      {500, "EnglishDisplayColumnName"},
      {501, "EnglishDecription"},
      {502, "EnglishDisplayName"},
      {600, "OK"},
      {601, "Error"},
      {602, "It doesn't find '"},
      {603, "' recordset is null."},
      {604, "You have not specified the field."},
      {605, "You have not specified the field for display."},
      {700, "What"},
      {701, "When"},
      {702, "Who"},
  };
  return texts;
}

// Written with escapes, so that the full-width punctuation cannot be mistaken for ASCII:
// \uFF1A is the full-width colon, \uFF01 the full-width exclamation mark.
const std::map<int32_t, std::string>& Chinese() {
  static const std::map<int32_t, std::string> texts = {
      {1, "\u9519\u8BEF\uFF1A"},
      {101, "\u65B0\u5EFA\u8BB0\u5F55(&N)"},
      {102, "\u5220\u9664\u8BB0\u5F55(&D)"},
      {103, "\u590D\u5236\u8BB0\u5F55(&C)"},
      {104, "\u53D6\u6D88"},
      {107, "\u65B0\u5EFA"},
      {108, "\u5220\u9664"},
      {109, "\u590D\u5236"},
      {110, "\u53D6\u6D88"},
      {213, "\u6570\u636E\u7C7B\u578B\u4E0D\u5339\u914D\uFF01"},
      {500, "ChineseDisplayColumnName"},
      {501, "ChineseDecription"},
      {502, "ChineseDisplayName"},
      {600, "\u786E\u5B9A"},
      {601, "\u9519\u8BEF"},
      {602, "\u6CA1\u6709\u627E\u5230'"},
      {603, "'\u7684\u8BB0\u5F55\u96C6\u4E3A\u7A7A\uFF01"},
      {604, "\u6CA1\u6709\u8BBE\u7F6E\u5B57\u6BB5!"},
      {605, "\u6CA1\u6709\u8BBE\u7F6E\u53EF\u663E\u793A\u7684\u5B57\u6BB5!"},
      {700, "\u4F55\u4E8B"},
      {701, "\u4F55\u65F6"},
      {702, "\u4F55\u4EBA"},
  };
  return texts;
}

// Puts the process's language back to what the environment says after each test.
class MessagesTest : public ::testing::Test {
 protected:
  void TearDown() override { SetMessageLanguageForTest(0); }
};

// --- The table --------------------------------------------------------------------------------

TEST_F(MessagesTest, EveryEnglishMessageHasItsExactText) {
  for (const auto& [number, text] : English()) {
    EXPECT_EQ(LoadMessage(number, kLanguageEnglish), text) << "message " << number;
  }
}

TEST_F(MessagesTest, EveryChineseMessageHasItsExactText) {
  for (const auto& [number, text] : Chinese()) {
    EXPECT_EQ(LoadMessage(number, kLanguageChinese), text) << "message " << number;
  }
}

TEST_F(MessagesTest, TableHoldsExactlyTheNumbersOfTheSystem) {
  std::vector<int32_t> expected;
  for (const auto& entry : English()) expected.push_back(entry.first);
  EXPECT_EQ(MessageNumbers(kLanguageEnglish), expected);
  EXPECT_EQ(MessageNumbers(kLanguageEnglish).size(), 22u);
}

TEST_F(MessagesTest, BothLanguagesHoldTheSameNumbers) {
  EXPECT_EQ(MessageNumbers(kLanguageEnglish), MessageNumbers(kLanguageChinese));
  for (int32_t number : MessageNumbers(kLanguageChinese)) {
    EXPECT_FALSE(LoadMessage(number, kLanguageEnglish).empty()) << number;
    EXPECT_FALSE(LoadMessage(number, kLanguageChinese).empty()) << number;
  }
}

TEST_F(MessagesTest, TheTwoCancelTextsDifferOnlyByTheAccessKeyInEnglish) {
  EXPECT_EQ(LoadMessage(104, kLanguageEnglish), "C&ancel");
  EXPECT_EQ(LoadMessage(110, kLanguageEnglish), "Cancel");
  // In Chinese 104 has no access key, so the two are the same text.
  EXPECT_EQ(LoadMessage(104, kLanguageChinese), LoadMessage(110, kLanguageChinese));
}

TEST_F(MessagesTest, ColumnNameMessagesKeepTheirSpelling) {
  EXPECT_EQ(LoadMessage(501, kLanguageEnglish), "EnglishDecription");
  EXPECT_EQ(LoadMessage(501, kLanguageChinese), "ChineseDecription");
}

TEST_F(MessagesTest, UnknownNumberGivesTheEmptyText) {
  for (int32_t number : {0, 2, 100, 105, 106, 111, 499, 503, 599, 606, 699, 703, -1,
                         static_cast<int32_t>(0x800401F4u)}) {
    EXPECT_EQ(LoadMessage(number, kLanguageEnglish), "") << number;
    EXPECT_EQ(LoadMessage(number, kLanguageChinese), "") << number;
    EXPECT_EQ(LoadMessage(number), "") << number;
  }
}

TEST_F(MessagesTest, UnknownLanguageGivesTheEmptyText) {
  EXPECT_EQ(LoadMessage(1, 1031), "");
  EXPECT_EQ(LoadMessage(600, 0), "");
  EXPECT_TRUE(MessageNumbers(1031).empty());
}

TEST_F(MessagesTest, LoadMessageReadsTheProcessLanguage) {
  SetMessageLanguageForTest(kLanguageChinese);
  EXPECT_EQ(MessageLanguage(), kLanguageChinese);
  EXPECT_EQ(LoadMessage(600), "\u786E\u5B9A");
  SetMessageLanguageForTest(kLanguageEnglish);
  EXPECT_EQ(MessageLanguage(), kLanguageEnglish);
  EXPECT_EQ(LoadMessage(600), "OK");
}

// --- The language of the process --------------------------------------------------------------

// Sets the three locale variables for one test and restores them afterwards.
class MessageLanguageTest : public MessagesTest {
 protected:
  void SetUp() override {
    for (const char* name : kNames) {
      const char* value = std::getenv(name);
      saved_[name] = value ? std::optional<std::string>(value) : std::nullopt;
      unsetenv(name);
    }
    SetMessageLanguageForTest(0);
  }
  void TearDown() override {
    for (const auto& [name, value] : saved_) {
      if (value) {
        setenv(name.c_str(), value->c_str(), 1);
      } else {
        unsetenv(name.c_str());
      }
    }
    MessagesTest::TearDown();
  }
  static void Set(const char* name, const char* value) { setenv(name, value, 1); }

  static constexpr const char* kNames[] = {"LC_ALL", "LC_MESSAGES", "LANG"};
  std::map<std::string, std::optional<std::string>> saved_;
};

TEST_F(MessageLanguageTest, NoLocaleGivesEnglish) { EXPECT_EQ(MessageLanguage(), 1033); }

TEST_F(MessageLanguageTest, ChineseLcAllGivesChinese) {
  Set("LC_ALL", "zh_CN.UTF-8");
  EXPECT_EQ(MessageLanguage(), 2052);
  EXPECT_EQ(LoadMessage(1), "\u9519\u8BEF\uFF1A");
}

TEST_F(MessageLanguageTest, LcAllWinsOverTheOthers) {
  Set("LC_ALL", "en_US.UTF-8");
  Set("LC_MESSAGES", "zh_CN.UTF-8");
  Set("LANG", "zh_CN.UTF-8");
  EXPECT_EQ(MessageLanguage(), 1033);
}

TEST_F(MessageLanguageTest, EmptyLcAllPassesToLcMessages) {
  Set("LC_ALL", "");
  Set("LC_MESSAGES", "zh_TW.UTF-8");
  Set("LANG", "en_GB.UTF-8");
  EXPECT_EQ(MessageLanguage(), 2052);
}

TEST_F(MessageLanguageTest, LcMessagesWinsOverLang) {
  Set("LC_MESSAGES", "C");
  Set("LANG", "zh_CN.UTF-8");
  EXPECT_EQ(MessageLanguage(), 1033);
}

TEST_F(MessageLanguageTest, LangAloneDecides) {
  Set("LANG", "zh_CN.GB18030");
  EXPECT_EQ(MessageLanguage(), 2052);
}

TEST_F(MessageLanguageTest, OtherLocalesGiveEnglish) {
  for (const char* locale : {"C", "POSIX", "de_DE.UTF-8", "ja_JP", "C.UTF-8", "ZH_CN", "z"}) {
    SetMessageLanguageForTest(0);
    Set("LANG", locale);
    EXPECT_EQ(MessageLanguage(), 1033) << locale;
  }
}

TEST_F(MessageLanguageTest, LanguageIsDecidedOncePerProcess) {
  Set("LANG", "zh_CN.UTF-8");
  EXPECT_EQ(MessageLanguage(), 2052);
  Set("LC_ALL", "en_US.UTF-8");
  EXPECT_EQ(MessageLanguage(), 2052);
  EXPECT_EQ(LoadMessage(600), "\u786E\u5B9A");
}

TEST_F(MessageLanguageTest, LocaleTextStartingWithZhIsChinese) {
  EXPECT_EQ(MessageLanguageForLocale("zh"), 2052);
  EXPECT_EQ(MessageLanguageForLocale("zh_HK.UTF-8"), 2052);
  EXPECT_EQ(MessageLanguageForLocale("en_US"), 1033);
  EXPECT_EQ(MessageLanguageForLocale(""), 1033);
}

// --- The error text and the critical box ------------------------------------------------------

TEST_F(MessagesTest, ErrorReportTextIsMessageOneNumberLineBreakDescription) {
  SetMessageLanguageForTest(kLanguageEnglish);
  EXPECT_EQ(ErrorReportText(457, "Duplicate"), "Error:457\r\nDuplicate");
  EXPECT_EQ(ErrorReportText(-2147221504, ""), "Error:-2147221504\r\n");
  SetMessageLanguageForTest(kLanguageChinese);
  EXPECT_EQ(ErrorReportText(500, "x"), "\u9519\u8BEF\uFF1A500\r\nx");
}

struct RecordedBox {
  std::string title;
  std::string text;
  MessageBoxStyle style;
};

class RecordingDialogs : public Dialogs {
 public:
  void MessageBox(const std::string& title, const std::string& text,
                  MessageBoxStyle style) override {
    boxes.push_back({title, text, style});
  }
  std::vector<RecordedBox> boxes;
};

TEST_F(MessagesTest, ShowErrorBoxShowsACriticalBoxWithTheComposedText) {
  SetMessageLanguageForTest(kLanguageEnglish);
  RecordingDialogs dialogs;
  ShowErrorBox(dialogs, "ReadTitlesInformation", kErrDuplicateKey,
               "This key is already associated with an element of this collection");
  ASSERT_EQ(dialogs.boxes.size(), 1u);
  EXPECT_EQ(dialogs.boxes[0].title, "ReadTitlesInformation");
  EXPECT_EQ(dialogs.boxes[0].text,
            "Error:457\r\nThis key is already associated with an element of this collection");
  EXPECT_EQ(dialogs.boxes[0].style, MessageBoxStyle::kCritical);
}

TEST_F(MessagesTest, ShowErrorBoxDoesNotTakeOffTheObjectErrorBase) {
  SetMessageLanguageForTest(kLanguageEnglish);
  RecordingDialogs dialogs;
  ShowErrorBox(dialogs, "Add", kErrSheetApplication, "d");
  ASSERT_EQ(dialogs.boxes.size(), 1u);
  EXPECT_EQ(dialogs.boxes[0].text, "Error:-2147221004\r\nd");
}

TEST_F(MessagesTest, ShowErrorBoxInChinese) {
  SetMessageLanguageForTest(kLanguageChinese);
  RecordingDialogs dialogs;
  ShowErrorBox(dialogs, "Add", 5, "Invalid procedure call or argument");
  ASSERT_EQ(dialogs.boxes.size(), 1u);
  EXPECT_EQ(dialogs.boxes[0].text, "\u9519\u8BEF\uFF1A5\r\nInvalid procedure call or argument");
}

TEST_F(MessagesTest, ShowErrorBoxShowsEvenNumberZeroWithEmptyDescription) {
  SetMessageLanguageForTest(kLanguageEnglish);
  RecordingDialogs dialogs;
  ShowErrorBox(dialogs, "Remove", 0, "");
  ASSERT_EQ(dialogs.boxes.size(), 1u);
  EXPECT_EQ(dialogs.boxes[0].text, "Error:0\r\n");
}

// --- ShowError's arithmetic and its decision to show --------------------------------------------

struct Presented {
  std::string title;
  std::string text;
};

class ShowErrorStepsTest : public MessagesTest {
 protected:
  void SetUp() override { SetMessageLanguageForTest(kLanguageEnglish); }
  void Report(const std::string& title, int32_t& number, const std::string& description) {
    ShowErrorThrough(
        [this](const std::string& t, const std::string& x) {
          shown.push_back({t, x});
        },
        title, number, description);
  }
  std::vector<Presented> shown;
};

TEST_F(ShowErrorStepsTest, ZeroWithEmptyDescriptionShowsNothing) {
  int32_t number = 0;
  Report("Save", number, "");
  EXPECT_TRUE(shown.empty());
  EXPECT_EQ(number, 0);
}

TEST_F(ShowErrorStepsTest, ZeroWithADescriptionIsShown) {
  int32_t number = 0;
  Report("Save", number, "Something");
  ASSERT_EQ(shown.size(), 1u);
  EXPECT_EQ(shown[0].text, "Error:0\r\nSomething");
}

TEST_F(ShowErrorStepsTest, EmptyDescriptionWithNonzeroNumberShowsAnEmptySecondLine) {
  int32_t number = kErrSubscriptOutOfRange;
  Report("Display_Value", number, "");
  ASSERT_EQ(shown.size(), 1u);
  EXPECT_EQ(shown[0].title, "Display_Value");
  EXPECT_EQ(shown[0].text, "Error:9\r\n");
}

TEST_F(ShowErrorStepsTest, ApplicationErrorShowsAs500) {
  int32_t number = static_cast<int32_t>(0x800401F4u);
  Report("Action", number, "You have not specified the field.");
  ASSERT_EQ(shown.size(), 1u);
  EXPECT_EQ(shown[0].title, "Action");
  EXPECT_EQ(shown[0].text, "Error:500\r\nYou have not specified the field.");
}

TEST_F(ShowErrorStepsTest, CallersVariableHoldsTheReducedNumber) {
  int32_t number = kErrSheetApplication;
  Report("Action", number, "d");
  EXPECT_EQ(number, 500);
}

TEST_F(ShowErrorStepsTest, ObjectErrorBaseItselfKeepsItsRawValue) {
  int32_t number = static_cast<int32_t>(0x80040000u);
  Report("Save", number, "");
  EXPECT_EQ(number, -2147221504);
  ASSERT_EQ(shown.size(), 1u);
  EXPECT_EQ(shown[0].text, "Error:-2147221504\r\n");
}

TEST_F(ShowErrorStepsTest, Number65535AboveTheBaseKeepsItsRawValue) {
  int32_t number = static_cast<int32_t>(0x8004FFFFu);
  Report("Save", number, "d");
  EXPECT_EQ(number, static_cast<int32_t>(0x8004FFFFu));
  ASSERT_EQ(shown.size(), 1u);
  EXPECT_EQ(shown[0].text, "Error:-2147155969\r\nd");
}

TEST_F(ShowErrorStepsTest, Number65534AboveTheBaseShowsAs65534) {
  int32_t number = static_cast<int32_t>(0x8004FFFEu);
  Report("Save", number, "d");
  EXPECT_EQ(number, 65534);
  ASSERT_EQ(shown.size(), 1u);
  EXPECT_EQ(shown[0].text, "Error:65534\r\nd");
}

TEST_F(ShowErrorStepsTest, OneAboveTheBaseShowsAs1) {
  int32_t number = static_cast<int32_t>(0x80040001u);
  Report("Save", number, "d");
  EXPECT_EQ(number, 1);
}

TEST_F(ShowErrorStepsTest, PlatformErrorKeepsItsOwnNumber) {
  int32_t number = kErrDuplicateKey;
  Report("Save_FieldValue", number,
         "This key is already associated with an element of this "
         "collection");
  EXPECT_EQ(number, 457);
  ASSERT_EQ(shown.size(), 1u);
  EXPECT_EQ(shown[0].text,
            "Error:457\r\nThis key is already associated with an element of this collection");
}

TEST_F(ShowErrorStepsTest, NegativeNumbersOutsideTheRangeKeepTheirValue) {
  for (int32_t raw : {-1, -2147483647 - 1, static_cast<int32_t>(0x8003FFFFu)}) {
    int32_t number = raw;
    Report("Save", number, "d");
    EXPECT_EQ(number, raw);
  }
  ASSERT_EQ(shown.size(), 3u);
  EXPECT_EQ(shown[1].text, "Error:-2147483648\r\nd");
}

TEST_F(ShowErrorStepsTest, LargestPositiveNumberThatDoesNotOverflow) {
  int32_t number = 0x3FFFF;
  Report("Save", number, "d");
  EXPECT_EQ(number, 0x3FFFF);
  ASSERT_EQ(shown.size(), 1u);
  EXPECT_EQ(shown[0].text, "Error:262143\r\nd");
}

TEST_F(ShowErrorStepsTest, PositiveNumberOf0x40000OverflowsInsideTheReporter) {
  for (int32_t raw : {0x40000, 0x40001, 2147483647}) {
    int32_t number = raw;
    try {
      Report("Save", number, "d");
      ADD_FAILURE() << "no failure for " << raw;
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.Number(), kErrOverflow);
      EXPECT_EQ(failure.Description(), "Overflow");
    }
    EXPECT_EQ(number, raw);
  }
  EXPECT_TRUE(shown.empty());
}

TEST_F(ShowErrorStepsTest, ReportTextFollowsTheLanguage) {
  SetMessageLanguageForTest(kLanguageChinese);
  int32_t number = kErrSheetApplication;
  Report("Action", number, "\u6CA1\u6709\u8BBE\u7F6E\u5B57\u6BB5!");
  ASSERT_EQ(shown.size(), 1u);
  EXPECT_EQ(shown[0].text, "\u9519\u8BEF\uFF1A500\r\n\u6CA1\u6709\u8BBE\u7F6E\u5B57\u6BB5!");
}

TEST_F(ShowErrorStepsTest, ReduceErrorNumberAlone) {
  int32_t number = kErrSheetApplication;
  ReduceErrorNumber(number);
  EXPECT_EQ(number, 500);
  number = 13;
  ReduceErrorNumber(number);
  EXPECT_EQ(number, 13);
}

}  // namespace
}  // namespace tarnsheets
