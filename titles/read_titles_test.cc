// Reading titles from a table of titles, through the in-memory recordset and through scripted
// recordsets that return what a table of another shape would.
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "datasources/recordset/memory_recordset.h"
#include "tarnsheets/messages.h"
#include "tarnsheets/titles.h"
#include "titles/read_rows.h"
#include "titles/recording_dialogs.h"

namespace tarnsheets {
namespace {

// Two groups, each title in both languages.
constexpr const char* kTitleTable = R"([
  {"ColumnName": "Opportunity", "EnglishDisplayColumnName": "Opportunity",
   "ChineseDisplayColumnName": "商机", "Name": "OpportunityName",
   "EnglishDecription": "The deal's name", "ChineseDecription": "商机的名称",
   "EnglishDisplayName": "Opportunity name", "ChineseDisplayName": "商机名称",
   "MultiLine": 0, "DisplayFormat": null, "DisplayCommand": false},
  {"ColumnName": "Opportunity", "EnglishDisplayColumnName": "Opportunity",
   "ChineseDisplayColumnName": "商机", "Name": "Amount",
   "EnglishDecription": null, "ChineseDecription": null,
   "EnglishDisplayName": "Amount", "ChineseDisplayName": "金额",
   "MultiLine": 0, "DisplayFormat": "#,##0.00", "DisplayCommand": true},
  {"ColumnName": "Account", "EnglishDisplayColumnName": "Account",
   "ChineseDisplayColumnName": "客户", "Name": "AccountName",
   "EnglishDecription": null, "ChineseDecription": null,
   "EnglishDisplayName": "Account name", "ChineseDisplayName": "客户名称",
   "MultiLine": null, "DisplayFormat": null, "DisplayCommand": null},
  {"ColumnName": "Opportunity", "EnglishDisplayColumnName": "Opportunity",
   "ChineseDisplayColumnName": "商机", "Name": "Remarks",
   "EnglishDecription": "Free text", "ChineseDecription": "备注文字",
   "EnglishDisplayName": "Remarks", "ChineseDisplayName": "备注",
   "MultiLine": -1, "DisplayFormat": null, "DisplayCommand": 0}
])";

constexpr const char* kNoCurrentRecordText =
    "Either BOF or EOF is True, or the current record has been deleted. Requested operation "
    "requires a current record.";

// One row of a table of titles in English, with `name` and `display_name` (null when empty) in
// the group `group`.
std::string EnglishRow(const std::string& group, const std::string& name,
                       const std::string& display_name, const std::string& extra = "") {
  return R"({"ColumnName": ")" + group + R"(", "EnglishDisplayColumnName": ")" + group +
         R"(", "Name": )" + name + R"(, "EnglishDecription": null, "EnglishDisplayName": )" +
         display_name + R"(, "MultiLine": null, "DisplayFormat": null, "DisplayCommand": null)" +
         extra + "}";
}

class ReadTitlesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    SetMessageLanguageForTest(kLanguageEnglish);
    table_ = MemoryRecordset::FromJson(kTitleTable);
  }
  void TearDown() override { SetMessageLanguageForTest(0); }

  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& title : titles_) names.push_back(title->Name);
    return names;
  }

  RecordingDialogs dialogs_;
  ClsSheetsTitles titles_{dialogs_};
  std::unique_ptr<MemoryRecordset> table_;
};

TEST_F(ReadTitlesTest, ReadsTheGroupsTitlesInEnglish) {
  EXPECT_FALSE(titles_.ReadTitlesInformation(*table_, "Opportunity"));
  EXPECT_TRUE(dialogs_.boxes.empty());
  EXPECT_EQ(titles_.CaptionName(), Variant("Opportunity"));
  EXPECT_EQ(Names(), (std::vector<std::string>{"OpportunityName", "Amount", "Remarks"}));

  auto name = titles_.Item("OpportunityName");
  EXPECT_EQ(name->DisplayName, "Opportunity name");
  EXPECT_EQ(name->Description, "The deal's name");
  EXPECT_FALSE(name->MultiLine);
  EXPECT_EQ(name->DisplayFormat, "");
  EXPECT_FALSE(name->DisplayCommand);

  auto amount = titles_.Item("Amount");
  EXPECT_EQ(amount->DisplayName, "Amount");
  EXPECT_EQ(amount->Description, "");
  EXPECT_EQ(amount->DisplayFormat, "#,##0.00");
  EXPECT_TRUE(amount->DisplayCommand);

  auto remarks = titles_.Item("Remarks");
  EXPECT_TRUE(remarks->MultiLine);
  EXPECT_FALSE(remarks->DisplayCommand);
}

TEST_F(ReadTitlesTest, ReadsTheChineseColumnsFromTheSameRecordset) {
  SetMessageLanguageForTest(kLanguageChinese);
  EXPECT_FALSE(titles_.ReadTitlesInformation(*table_, "Opportunity"));
  EXPECT_TRUE(dialogs_.boxes.empty());
  EXPECT_EQ(titles_.CaptionName(), Variant("商机"));
  EXPECT_EQ(Names(), (std::vector<std::string>{"OpportunityName", "Amount", "Remarks"}));
  EXPECT_EQ(titles_.Item("OpportunityName")->DisplayName, "商机名称");
  EXPECT_EQ(titles_.Item("OpportunityName")->Description, "商机的名称");
  EXPECT_EQ(titles_.Item("Amount")->DisplayName, "金额");
  EXPECT_EQ(titles_.Item("Remarks")->Description, "备注文字");
}

TEST_F(ReadTitlesTest, LeavesTheGroupFilterOnTheRecordset) {
  EXPECT_FALSE(titles_.ReadTitlesInformation(*table_, "Account"));
  EXPECT_EQ(table_->Filter(), Variant("ColumnName='Account'"));
  EXPECT_EQ(table_->RecordCount(), 1);
  EXPECT_EQ(Names(), (std::vector<std::string>{"AccountName"}));
  EXPECT_EQ(titles_.CaptionName(), Variant("Account"));
}

TEST_F(ReadTitlesTest, JoinsAnExtraConditionWithAnd) {
  EXPECT_FALSE(titles_.ReadTitlesInformation(*table_, "Opportunity", "MultiLine=0"));
  EXPECT_EQ(table_->Filter(), Variant("ColumnName='Opportunity' and MultiLine=0"));
  EXPECT_EQ(Names(), (std::vector<std::string>{"OpportunityName", "Amount"}));
}

TEST_F(ReadTitlesTest, ExtraConditionMayHoldItsOwnOrInParentheses) {
  EXPECT_FALSE(titles_.ReadTitlesInformation(*table_, "Opportunity",
                                             "(Name='Remarks' OR DisplayFormat LIKE '#*')"));
  EXPECT_EQ(Names(), (std::vector<std::string>{"Amount", "Remarks"}));
}

TEST_F(ReadTitlesTest, AnExtraConditionWithoutParenthesesBindsAsTheFilterReads) {
  // "ColumnName='Account' and MultiLine=0 or Name='Remarks'" reads as (... and ...) or ...:
  // the Opportunity row "Remarks" comes in although it belongs to another group.
  EXPECT_FALSE(titles_.ReadTitlesInformation(*table_, "Account", "MultiLine=0 or Name='Remarks'"));
  EXPECT_EQ(Names(), (std::vector<std::string>{"Remarks"}));
  EXPECT_EQ(titles_.CaptionName(), Variant("Opportunity"));
}

TEST_F(ReadTitlesTest, SuccessReplacesTheOldTitles) {
  titles_.Add("Old");
  titles_.SetCaptionName(Variant("Before"));
  EXPECT_FALSE(titles_.ReadTitlesInformation(*table_, "Account"));
  EXPECT_EQ(Names(), (std::vector<std::string>{"AccountName"}));
  EXPECT_EQ(titles_.CaptionName(), Variant("Account"));
}

TEST_F(ReadTitlesTest, ReadingAgainGivesTheSameTitles) {
  EXPECT_FALSE(titles_.ReadTitlesInformation(*table_, "Opportunity"));
  EXPECT_FALSE(titles_.ReadTitlesInformation(*table_, "Opportunity"));
  EXPECT_EQ(Names(), (std::vector<std::string>{"OpportunityName", "Amount", "Remarks"}));
  EXPECT_TRUE(dialogs_.boxes.empty());
}

TEST_F(ReadTitlesTest, AGroupWithoutRowsFailsWithTheRecordsetsErrorAndKeepsTheOldTitles) {
  titles_.Add("Kept")->DisplayName = "Kept title";
  titles_.SetCaptionName(Variant("Old caption"));
  EXPECT_TRUE(titles_.ReadTitlesInformation(*table_, "Nothing"));
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_EQ(dialogs_.boxes[0].title, "ReadTitlesInformation");
  EXPECT_EQ(dialogs_.boxes[0].text, std::string("Error:3021\r\n") + kNoCurrentRecordText);
  EXPECT_EQ(dialogs_.boxes[0].style, MessageBoxStyle::kCritical);
  EXPECT_EQ(Names(), (std::vector<std::string>{"Kept"}));
  EXPECT_EQ(titles_.Item("Kept")->DisplayName, "Kept title");
  EXPECT_EQ(titles_.CaptionName(), Variant("Old caption"));
  // The filter that no row passes stays on.
  EXPECT_EQ(table_->Filter(), Variant("ColumnName='Nothing'"));
}

TEST_F(ReadTitlesTest, TheFailureBoxReadsInChinese) {
  SetMessageLanguageForTest(kLanguageChinese);
  EXPECT_TRUE(titles_.ReadTitlesInformation(*table_, "Nothing"));
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_EQ(dialogs_.boxes[0].title, "ReadTitlesInformation");
  EXPECT_EQ(dialogs_.boxes[0].text, std::string("错误：3021\r\n") + kNoCurrentRecordText);
}

TEST_F(ReadTitlesTest, ARepeatedNameOverwritesTheTitleBeforeAfterAddsBox) {
  auto table = MemoryRecordset::FromJson(
      "[" + EnglishRow("G", R"("Alpha")", R"("First alpha")") + "," +
      EnglishRow("G", R"("Beta")", R"("First beta")", R"(, "Extra": "x")") + "," +
      EnglishRow("G", R"("ALPHA")", R"("Second alpha")") + "]");
  EXPECT_FALSE(titles_.ReadTitlesInformation(*table, "G"));
  // Add refused the repeated name, in other case, with its box ...
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_EQ(dialogs_.boxes[0].title, "Add");
  EXPECT_EQ(dialogs_.boxes[0].text,
            "Error:457\r\nThis key is already associated with an element of this collection");
  // ... and the row's cells went to the title at the last position, which is Beta.
  EXPECT_EQ(Names(), (std::vector<std::string>{"Alpha", "Beta"}));
  EXPECT_EQ(titles_.Item("Alpha")->DisplayName, "First alpha");
  EXPECT_EQ(titles_.Item("Beta")->DisplayName, "Second alpha");
  EXPECT_EQ(titles_.Item("Beta")->Name, "Beta");
}

TEST_F(ReadTitlesTest, ARepeatedNameRightAfterItselfOverwritesItsOwnTitle) {
  auto table = MemoryRecordset::FromJson(
      R"([{"ColumnName": "G", "EnglishDisplayColumnName": "G", "Name": "Alpha",
           "EnglishDecription": "kept", "EnglishDisplayName": "One", "MultiLine": null,
           "DisplayFormat": "0.00", "DisplayCommand": null},
          {"ColumnName": "G", "EnglishDisplayColumnName": "G", "Name": "Alpha",
           "EnglishDecription": null, "EnglishDisplayName": "Two", "MultiLine": 1,
           "DisplayFormat": null, "DisplayCommand": null}])");
  EXPECT_FALSE(titles_.ReadTitlesInformation(*table, "G"));
  EXPECT_EQ(dialogs_.boxes.size(), 1u);
  ASSERT_EQ(titles_.Count(), 1);
  auto alpha = titles_.Item(1);
  EXPECT_EQ(alpha->DisplayName, "Two");
  EXPECT_TRUE(alpha->MultiLine);
  // The null cells of the repeated row leave what the first row set.
  EXPECT_EQ(alpha->Description, "kept");
  EXPECT_EQ(alpha->DisplayFormat, "0.00");
}

TEST_F(ReadTitlesTest, ANullDisplayNameGivesAnEmptyDisplayName) {
  auto table = MemoryRecordset::FromJson("[" + EnglishRow("G", R"("Alpha")", "null") + "]");
  EXPECT_FALSE(titles_.ReadTitlesInformation(*table, "G"));
  ASSERT_EQ(titles_.Count(), 1);
  EXPECT_EQ(titles_.Item(1)->Name, "Alpha");
  EXPECT_EQ(titles_.Item(1)->DisplayName, "");  // no fallback to the Name
  EXPECT_TRUE(dialogs_.boxes.empty());
}

TEST_F(ReadTitlesTest, NullCellsLeaveTheFieldsOfANewTitleAtTheirDefaults) {
  EXPECT_FALSE(titles_.ReadTitlesInformation(*table_, "Account"));
  auto title = titles_.Item(1);
  EXPECT_EQ(title->Description, "");
  EXPECT_FALSE(title->MultiLine);
  EXPECT_EQ(title->DisplayFormat, "");
  EXPECT_FALSE(title->DisplayCommand);
}

TEST_F(ReadTitlesTest, ANullGroupDisplayNameGivesAnEmptyCaptionName) {
  auto table = MemoryRecordset::FromJson(
      R"([{"ColumnName": "G", "EnglishDisplayColumnName": null, "Name": "Alpha",
           "EnglishDecription": null, "EnglishDisplayName": "A", "MultiLine": null,
           "DisplayFormat": null, "DisplayCommand": null}])");
  titles_.SetCaptionName(Variant("Before"));
  EXPECT_FALSE(titles_.ReadTitlesInformation(*table, "G"));
  EXPECT_EQ(titles_.CaptionName(), Variant(""));
}

TEST_F(ReadTitlesTest, TheCaptionNameComesFromTheFirstRowOnly) {
  auto table = MemoryRecordset::FromJson(
      "[" + EnglishRow("G", R"("A")", R"("a")") + "," +
      R"({"ColumnName": "G", "EnglishDisplayColumnName": "Other", "Name": "B",
          "EnglishDecription": null, "EnglishDisplayName": "b", "MultiLine": null,
          "DisplayFormat": null, "DisplayCommand": null}])");
  EXPECT_FALSE(titles_.ReadTitlesInformation(*table, "G"));
  EXPECT_EQ(titles_.CaptionName(), Variant("G"));
}

TEST_F(ReadTitlesTest, BooleanColumnsTakeZeroAsFalseAndAnythingElseAsTrue) {
  auto table = MemoryRecordset::FromJson(
      R"([{"ColumnName": "G", "EnglishDisplayColumnName": "G", "Name": "A",
           "EnglishDecription": null, "EnglishDisplayName": null, "MultiLine": 2,
           "DisplayFormat": null, "DisplayCommand": 0.5},
          {"ColumnName": "G", "EnglishDisplayColumnName": "G", "Name": "B",
           "EnglishDecription": null, "EnglishDisplayName": null, "MultiLine": false,
           "DisplayFormat": null, "DisplayCommand": 0}])");
  EXPECT_FALSE(titles_.ReadTitlesInformation(*table, "G"));
  EXPECT_TRUE(titles_.Item("A")->MultiLine);
  EXPECT_TRUE(titles_.Item("A")->DisplayCommand);
  EXPECT_FALSE(titles_.Item("B")->MultiLine);
  EXPECT_FALSE(titles_.Item("B")->DisplayCommand);
}

TEST_F(ReadTitlesTest, ANullNameFailsWith94AndKeepsTheTitlesAddedSoFar) {
  titles_.Add("Old");
  auto table = MemoryRecordset::FromJson("[" + EnglishRow("G", R"("A")", R"("a")") + "," +
                                         EnglishRow("G", "null", R"("b")") + "," +
                                         EnglishRow("G", R"("C")", R"("c")") + "]");
  EXPECT_TRUE(titles_.ReadTitlesInformation(*table, "G"));
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_EQ(dialogs_.boxes[0].title, "ReadTitlesInformation");
  EXPECT_EQ(dialogs_.boxes[0].text, "Error:94\r\nInvalid use of Null");
  // The old titles were cleared once the rows were read; the loop stopped at the null.
  EXPECT_EQ(Names(), (std::vector<std::string>{"A"}));
}

TEST_F(ReadTitlesTest, AnEmptyNameGivesATitleWithoutKey) {
  auto table = MemoryRecordset::FromJson("[" + EnglishRow("G", R"("")", R"("Unnamed")") + "," +
                                         EnglishRow("G", R"("")", R"("Also unnamed")") + "]");
  EXPECT_FALSE(titles_.ReadTitlesInformation(*table, "G"));
  EXPECT_TRUE(dialogs_.boxes.empty());
  ASSERT_EQ(titles_.Count(), 2);
  EXPECT_EQ(titles_.Item(2)->DisplayName, "Also unnamed");
}

TEST_F(ReadTitlesTest, ATableWithoutTheLanguagesColumnsFailsInGetRows) {
  SetMessageLanguageForTest(kLanguageChinese);
  auto english_only = MemoryRecordset::FromJson("[" + EnglishRow("G", R"("A")", R"("a")") + "]");
  titles_.Add("Kept");
  EXPECT_TRUE(titles_.ReadTitlesInformation(*english_only, "G"));
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_EQ(dialogs_.boxes[0].title, "ReadTitlesInformation");
  EXPECT_EQ(dialogs_.boxes[0].text,
            "错误：3265\r\nItem cannot be found in the collection corresponding to the requested "
            "name or ordinal. No column \"ChineseDisplayColumnName\".");
  EXPECT_EQ(Names(), (std::vector<std::string>{"Kept"}));
}

TEST_F(ReadTitlesTest, AQuoteInTheGroupNameBreaksTheFilterAndChangesNothing) {
  ASSERT_FALSE(titles_.ReadTitlesInformation(*table_, "Account"));
  EXPECT_TRUE(titles_.ReadTitlesInformation(*table_, "O'Brien"));
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_EQ(dialogs_.boxes[0].title, "ReadTitlesInformation");
  // The quote is not doubled: the text ends after O, and "Brien" stands where AND or OR belongs.
  EXPECT_EQ(dialogs_.boxes[0].text,
            "Error:3001\r\nArguments are of the wrong type, are out of acceptable range, or are in "
            "conflict with one another. Filter \"ColumnName='O'Brien'\": AND, OR or the end of the "
            "filter expected at position 15.");
  EXPECT_EQ(table_->Filter(), Variant("ColumnName='Account'"));
  EXPECT_EQ(Names(), (std::vector<std::string>{"AccountName"}));
  EXPECT_EQ(titles_.CaptionName(), Variant("Account"));
}

TEST_F(ReadTitlesTest, AMalformedExtraConditionChangesNothing) {
  titles_.Add("Kept");
  EXPECT_TRUE(titles_.ReadTitlesInformation(*table_, "Opportunity", "(MultiLine = 0"));
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_NE(dialogs_.boxes[0].text.find("')' expected at position 44."), std::string::npos)
      << dialogs_.boxes[0].text;
  EXPECT_EQ(dialogs_.boxes[0].text.rfind("Error:3001\r\n", 0), 0u);
  EXPECT_EQ(table_->Filter(), Variant(int32_t{0}));
  EXPECT_EQ(Names(), (std::vector<std::string>{"Kept"}));
}

TEST_F(ReadTitlesTest, AnExtraConditionOnAnUnknownColumnFailsWith3265) {
  EXPECT_TRUE(titles_.ReadTitlesInformation(*table_, "Opportunity", "Colour='red'"));
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_EQ(dialogs_.boxes[0].text.rfind("Error:3265\r\n", 0), 0u);
  EXPECT_NE(dialogs_.boxes[0].text.find("no column \"Colour\""), std::string::npos);
  EXPECT_EQ(titles_.Count(), 0);
}

// A recordset that records what it is asked and returns a prepared array.
class ScriptedRecordset : public Recordset {
 public:
  explicit ScriptedRecordset(RowsArray rows) : rows_(std::move(rows)) {}

  Variant Filter() const override { return filter_; }
  void SetFilter(const Variant& filter) override { filter_ = filter; }
  RowsArray GetRows(int32_t rows, const Variant& start,
                    const std::vector<Variant>& fields) override {
    asked_rows = rows;
    asked_start = start;
    asked_fields = fields;
    if (fail) throw Failure(kErrNoCurrentRecord, kNoCurrentRecordText);
    return rows_;
  }
  bool Eof() const override { return eof; }
  int32_t RecordCount() const override { return record_count; }
  std::vector<std::string> ColumnNames() const override { return {}; }

  bool fail = false;
  bool eof = false;
  int32_t record_count = 0;
  int32_t asked_rows = 0;
  Variant asked_start;
  std::vector<Variant> asked_fields;

 private:
  Variant filter_;
  RowsArray rows_;
};

TEST_F(ReadTitlesTest, AsksForAllRowsFromTheFirstInTheSevenColumnsInOrder) {
  RowsArray rows(7, 1);
  rows.At(1, 0) = Variant("A");
  ScriptedRecordset recordset(rows);
  EXPECT_FALSE(titles_.ReadTitlesInformation(recordset, "G"));
  EXPECT_EQ(recordset.asked_rows, -1);
  EXPECT_EQ(recordset.asked_start, Variant(int32_t{1}));
  EXPECT_EQ(recordset.asked_fields,
            (std::vector<Variant>{Variant("EnglishDisplayColumnName"), Variant("Name"),
                                  Variant("EnglishDecription"), Variant("EnglishDisplayName"),
                                  Variant("MultiLine"), Variant("DisplayFormat"),
                                  Variant("DisplayCommand")}));
  EXPECT_EQ(recordset.Filter(), Variant("ColumnName='G'"));
}

TEST_F(ReadTitlesTest, AsksForTheChineseColumnsWithTheChineseTable) {
  SetMessageLanguageForTest(kLanguageChinese);
  RowsArray rows(7, 1);
  rows.At(1, 0) = Variant("A");
  ScriptedRecordset recordset(rows);
  EXPECT_FALSE(titles_.ReadTitlesInformation(recordset, "G"));
  EXPECT_EQ(recordset.asked_fields[0], Variant("ChineseDisplayColumnName"));
  EXPECT_EQ(recordset.asked_fields[2], Variant("ChineseDecription"));
  EXPECT_EQ(recordset.asked_fields[3], Variant("ChineseDisplayName"));
}

TEST_F(ReadTitlesTest, AOneColumnArrayIsReportedTwiceAndChangesNothing) {
  titles_.Add("Kept");
  titles_.SetCaptionName(Variant("Old caption"));
  RowsArray rows(1, 2);
  rows.At(0, 0) = Variant("G");
  ScriptedRecordset recordset(rows);
  EXPECT_TRUE(titles_.ReadTitlesInformation(recordset, "G"));
  ASSERT_EQ(dialogs_.boxes.size(), 2u);
  EXPECT_EQ(dialogs_.boxes[0].title, "");
  EXPECT_EQ(dialogs_.boxes[0].text, "'G' recordset is null.");
  EXPECT_EQ(dialogs_.boxes[0].style, MessageBoxStyle::kPlain);
  EXPECT_EQ(dialogs_.boxes[1].title, "ReadTitlesInformation");
  EXPECT_EQ(dialogs_.boxes[1].text, "Error:0\r\n");
  EXPECT_EQ(dialogs_.boxes[1].style, MessageBoxStyle::kCritical);
  EXPECT_EQ(Names(), (std::vector<std::string>{"Kept"}));
  EXPECT_EQ(titles_.CaptionName(), Variant("Old caption"));
}

TEST_F(ReadTitlesTest, TheOneColumnReportReadsInChinese) {
  SetMessageLanguageForTest(kLanguageChinese);
  ScriptedRecordset recordset(RowsArray(1, 1));
  EXPECT_TRUE(titles_.ReadTitlesInformation(recordset, "商机"));
  ASSERT_EQ(dialogs_.boxes.size(), 2u);
  EXPECT_EQ(dialogs_.boxes[0].text, "'商机'的记录集为空！");
  EXPECT_EQ(dialogs_.boxes[1].text, "错误：0\r\n");
}

TEST(ReadRowsTest, AsksForAllRowsFromTheFirstRecord) {
  ScriptedRecordset recordset(RowsArray(2, 3));
  RowsArray rows;
  ReadRows(recordset, {Variant("A"), Variant("B")}, &rows);
  EXPECT_EQ(recordset.asked_rows, -1);
  EXPECT_EQ(recordset.asked_start, Variant(int32_t{1}));
  EXPECT_EQ(recordset.asked_fields, (std::vector<Variant>{Variant("A"), Variant("B")}));
  EXPECT_EQ(rows.ColumnUpperBound(), 1);
  EXPECT_EQ(rows.RowUpperBound(), 2);
}

TEST(ReadRowsTest, ReturnsTrueAtEof) {
  ScriptedRecordset recordset(RowsArray(1, 3));
  recordset.eof = true;
  recordset.record_count = 10;
  RowsArray rows;
  EXPECT_TRUE(ReadRows(recordset, {}, &rows));
}

TEST(ReadRowsTest, ReturnsTrueWhenTheCountIsNotAboveTheRowsRead) {
  ScriptedRecordset recordset(RowsArray(1, 3));
  recordset.record_count = 3;
  RowsArray rows;
  EXPECT_TRUE(ReadRows(recordset, {}, &rows));
}

TEST(ReadRowsTest, ReturnsFalseWhenMoreRowsRemainBeforeEof) {
  ScriptedRecordset recordset(RowsArray(1, 3));
  recordset.record_count = 4;
  RowsArray rows;
  EXPECT_FALSE(ReadRows(recordset, {}, &rows));
}

TEST(ReadRowsTest, AGetRowsFailurePassesToTheCallerAndLeavesTheRows) {
  ScriptedRecordset recordset(RowsArray(1, 1));
  recordset.fail = true;
  RowsArray rows(3, 2);
  EXPECT_THROW(ReadRows(recordset, {}, &rows), Failure);
  EXPECT_EQ(rows.ColumnUpperBound(), 2);
  EXPECT_EQ(rows.RowUpperBound(), 1);
}

TEST(ReadRowsTest, ReturnsTrueAfterReadingEveryRowOfAMemoryRecordset) {
  auto table = MemoryRecordset::FromJson(R"([{"A": 1}, {"A": 2}])");
  RowsArray rows;
  EXPECT_TRUE(ReadRows(*table, {Variant("A")}, &rows));
  EXPECT_TRUE(table->Eof());
  EXPECT_EQ(rows.At(0, 1), Variant(int32_t{2}));
}

}  // namespace
}  // namespace tarnsheets
