#include "datasources/recordset/memory_recordset.h"

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tarnsheets/failure.h"

namespace tarnsheets {
namespace {

constexpr const char* kTable = R"([
  {"ColumnName": "Opportunity", "Name": "Amount", "Size": 3},
  {"ColumnName": "Opportunity", "Name": "CloseDate", "Size": 2.5, "Remark": null},
  {"ColumnName": "Account", "Name": "AccountName", "Size": 4000000000, "Active": true}
])";

// Runs `body` and returns the Failure it throws; fails the test when it throws none.
template <typename F>
Failure FailureOf(F body) {
  try {
    body();
  } catch (const Failure& failure) {
    return failure;
  }
  ADD_FAILURE() << "no failure";
  return Failure(0, "");
}

std::vector<std::string> NamesIn(MemoryRecordset& recordset) {
  RowsArray rows = recordset.GetRows(kGetRowsRest, Variant(kBookmarkFirst), {Variant("Name")});
  std::vector<std::string> names;
  for (int32_t r = 0; r <= rows.RowUpperBound(); ++r) names.push_back(rows.At(0, r).AsText());
  return names;
}

TEST(MemoryRecordsetTest, LoadsColumnsInOrderOfFirstAppearance) {
  auto recordset = MemoryRecordset::FromJson(kTable);
  EXPECT_EQ(recordset->ColumnNames(),
            (std::vector<std::string>{"ColumnName", "Name", "Size", "Remark", "Active"}));
  EXPECT_EQ(recordset->RecordCount(), 3);
  EXPECT_FALSE(recordset->Eof());
  EXPECT_EQ(recordset->Filter(), Variant(int32_t{0}));
}

TEST(MemoryRecordsetTest, JsonNullIsNullAndAMissingKeyIsEmpty) {
  auto recordset = MemoryRecordset::FromJson(kTable);
  RowsArray rows = recordset->GetRows(kGetRowsRest, Variant(kBookmarkFirst),
                                      {Variant("Remark"), Variant("Active")});
  EXPECT_TRUE(rows.At(0, 0).IsEmpty());
  EXPECT_TRUE(rows.At(0, 1).IsNull());
  EXPECT_TRUE(rows.At(1, 1).IsEmpty());
  EXPECT_EQ(rows.At(1, 2), Variant(true));
}

TEST(MemoryRecordsetTest, WholeNumbersInRangeBecomeLongsAndOthersDoubles) {
  auto recordset = MemoryRecordset::FromJson(kTable);
  RowsArray rows = recordset->GetRows(kGetRowsRest, Variant(kBookmarkFirst), {Variant("Size")});
  EXPECT_EQ(rows.At(0, 0), Variant(int32_t{3}));
  EXPECT_EQ(rows.At(0, 1), Variant(2.5));
  EXPECT_EQ(rows.At(0, 2), Variant(4000000000.0));
}

TEST(MemoryRecordsetTest, MalformedJsonFailsWithItsPositionAndChangesNothing) {
  auto recordset = MemoryRecordset::FromJson(kTable);
  recordset->SetFilter(Variant("ColumnName='Account'"));
  const Failure failure = FailureOf([&] { recordset->LoadJson("[{\"Name\": \"x\",}]"); });
  EXPECT_EQ(failure.Number(), kErrRecordsetArguments);
  EXPECT_EQ(failure.Description().rfind(
                "The rows are no JSON array of objects: malformed at byte 15: parse error at line "
                "1, column 15:",
                0),
            0u)
      << failure.Description();
  EXPECT_EQ(recordset->ColumnNames().size(), 5u);
  EXPECT_EQ(recordset->Filter(), Variant("ColumnName='Account'"));
  EXPECT_EQ(recordset->RecordCount(), 1);
}

TEST(MemoryRecordsetTest, MalformedJsonOnASecondLineNamesTheLine) {
  const Failure failure = FailureOf([] { MemoryRecordset::FromJson("[\n  {\"A\": tru}\n]"); });
  EXPECT_NE(failure.Description().find("line 2"), std::string::npos) << failure.Description();
}

TEST(MemoryRecordsetTest, JsonOfAnotherShapeIsNamedByRowAndKey) {
  EXPECT_EQ(FailureOf([] { MemoryRecordset::FromJson(R"({"A": 1})"); }).Description(),
            "The rows are no JSON array of objects: the text holds a object");
  EXPECT_EQ(FailureOf([] { MemoryRecordset::FromJson(R"([{"A": 1}, 2])"); }).Description(),
            "The rows are no JSON array of objects: row 2 is a number");
  EXPECT_EQ(FailureOf([] { MemoryRecordset::FromJson(R"([{"A": [1]}])"); }).Description(),
            "The rows are no JSON array of objects: row 1, key \"A\": an array or object is no "
            "cell value");
  EXPECT_EQ(FailureOf([] { MemoryRecordset::FromJson(R"([{"A": 1}, {"a": 2}])"); }).Description(),
            "The rows are no JSON array of objects: row 2, key \"a\": the column is already named "
            "\"A\"");
}

TEST(MemoryRecordsetTest, AnEmptyArrayGivesARecordsetAtEof) {
  auto recordset = MemoryRecordset::FromJson("[]");
  EXPECT_EQ(recordset->RecordCount(), 0);
  EXPECT_TRUE(recordset->Eof());
  EXPECT_TRUE(recordset->Bof());
}

TEST(MemoryRecordsetTest, AFilterRestrictsTheRowsAndIsKept) {
  auto recordset = MemoryRecordset::FromJson(kTable);
  recordset->SetFilter(Variant("ColumnName='Opportunity'"));
  EXPECT_EQ(recordset->Filter(), Variant("ColumnName='Opportunity'"));
  EXPECT_EQ(recordset->RecordCount(), 2);
  EXPECT_EQ(NamesIn(*recordset), (std::vector<std::string>{"Amount", "CloseDate"}));
}

TEST(MemoryRecordsetTest, AFilterWithAnExtraConditionNarrowsFurther) {
  auto recordset = MemoryRecordset::FromJson(kTable);
  recordset->SetFilter(Variant("ColumnName='Opportunity' and Size<3"));
  EXPECT_EQ(NamesIn(*recordset), (std::vector<std::string>{"CloseDate"}));
}

TEST(MemoryRecordsetTest, AFilterNoRowPassesMakesGetRowsFailWith3021) {
  auto recordset = MemoryRecordset::FromJson(kTable);
  recordset->SetFilter(Variant("ColumnName='Nothing'"));
  EXPECT_EQ(recordset->RecordCount(), 0);
  EXPECT_TRUE(recordset->Eof());
  const Failure failure = FailureOf(
      [&] { recordset->GetRows(kGetRowsRest, Variant(kBookmarkFirst), {Variant("Name")}); });
  EXPECT_EQ(failure.Number(), 3021);
  EXPECT_EQ(failure.Description(),
            "Either BOF or EOF is True, or the current record has been deleted. Requested "
            "operation requires a current record.");
}

TEST(MemoryRecordsetTest, AFilterThatCannotBeParsedKeepsTheOldFilter) {
  auto recordset = MemoryRecordset::FromJson(kTable);
  recordset->SetFilter(Variant("ColumnName='Account'"));
  const Failure failure = FailureOf([&] { recordset->SetFilter(Variant("ColumnName='O'Brien'")); });
  EXPECT_EQ(failure.Number(), 3001);
  EXPECT_NE(failure.Description().find("at position 15."), std::string::npos);
  EXPECT_EQ(recordset->Filter(), Variant("ColumnName='Account'"));
  EXPECT_EQ(recordset->RecordCount(), 1);
  EXPECT_EQ(NamesIn(*recordset), (std::vector<std::string>{"AccountName"}));
}

TEST(MemoryRecordsetTest, AFilterOnAnUnknownColumnFailsWith3265AndKeepsTheOldFilter) {
  auto recordset = MemoryRecordset::FromJson(kTable);
  const Failure failure = FailureOf([&] { recordset->SetFilter(Variant("Colour='red'")); });
  EXPECT_EQ(failure.Number(), 3265);
  EXPECT_EQ(failure.Description(),
            "Item cannot be found in the collection corresponding to the requested name or "
            "ordinal. Filter \"Colour='red'\": no column \"Colour\".");
  EXPECT_EQ(recordset->Filter(), Variant(int32_t{0}));
  EXPECT_EQ(recordset->RecordCount(), 3);
}

TEST(MemoryRecordsetTest, AFilterIsTakenOffByAnEmptyTextOrZero) {
  auto recordset = MemoryRecordset::FromJson(kTable);
  recordset->SetFilter(Variant("ColumnName='Account'"));
  recordset->SetFilter(Variant(""));
  EXPECT_EQ(recordset->RecordCount(), 3);
  EXPECT_EQ(recordset->Filter(), Variant(int32_t{0}));
  recordset->SetFilter(Variant("ColumnName='Account'"));
  recordset->SetFilter(Variant(int32_t{0}));
  EXPECT_EQ(recordset->RecordCount(), 3);
}

TEST(MemoryRecordsetTest, AFilterOfAnotherTypeFails) {
  auto recordset = MemoryRecordset::FromJson(kTable);
  const Failure failure = FailureOf([&] { recordset->SetFilter(Variant(true)); });
  EXPECT_EQ(failure.Number(), 3001);
  EXPECT_EQ(recordset->RecordCount(), 3);
}

TEST(MemoryRecordsetTest, GetRowsFindsColumnsByNameWithoutCaseOrByOrdinal) {
  auto recordset = MemoryRecordset::FromJson(kTable);
  RowsArray rows = recordset->GetRows(kGetRowsRest, Variant(kBookmarkFirst),
                                      {Variant("name"), Variant(int32_t{0})});
  EXPECT_EQ(rows.ColumnUpperBound(), 1);
  EXPECT_EQ(rows.RowUpperBound(), 2);
  EXPECT_EQ(rows.At(0, 2), Variant("AccountName"));
  EXPECT_EQ(rows.At(1, 2), Variant("Account"));
}

TEST(MemoryRecordsetTest, GetRowsWithoutColumnsGivesEveryColumn) {
  auto recordset = MemoryRecordset::FromJson(kTable);
  RowsArray rows = recordset->GetRows(kGetRowsRest, Variant(kBookmarkFirst), {});
  EXPECT_EQ(rows.ColumnUpperBound(), 4);
}

TEST(MemoryRecordsetTest, GetRowsOfAnUnknownColumnFailsWith3265) {
  auto recordset = MemoryRecordset::FromJson(kTable);
  const Failure failure = FailureOf([&] {
    recordset->GetRows(kGetRowsRest, Variant(kBookmarkFirst), {Variant("ChineseDisplayName")});
  });
  EXPECT_EQ(failure.Number(), 3265);
  EXPECT_EQ(failure.Description(),
            "Item cannot be found in the collection corresponding to the requested name or "
            "ordinal. No column \"ChineseDisplayName\".");
  EXPECT_EQ(FailureOf([&] {
              recordset->GetRows(kGetRowsRest, Variant(kBookmarkFirst), {Variant(int32_t{5})});
            }).Number(),
            3265);
  EXPECT_FALSE(recordset->Eof());
}

TEST(MemoryRecordsetTest, GetRowsMovesPastTheRowsRead) {
  auto recordset = MemoryRecordset::FromJson(kTable);
  RowsArray first_two = recordset->GetRows(2, Variant(), {Variant("Name")});
  EXPECT_EQ(first_two.RowUpperBound(), 1);
  EXPECT_FALSE(recordset->Eof());
  RowsArray rest = recordset->GetRows(kGetRowsRest, Variant(kBookmarkCurrent), {Variant("Name")});
  EXPECT_EQ(rest.RowUpperBound(), 0);
  EXPECT_EQ(rest.At(0, 0), Variant("AccountName"));
  EXPECT_TRUE(recordset->Eof());
}

TEST(MemoryRecordsetTest, GetRowsAtEofFailsButFromTheFirstBookmarkReadsAgain) {
  auto recordset = MemoryRecordset::FromJson(kTable);
  recordset->GetRows(kGetRowsRest, Variant(kBookmarkFirst), {});
  EXPECT_EQ(FailureOf([&] { recordset->GetRows(kGetRowsRest, Variant(), {}); }).Number(), 3021);
  EXPECT_EQ(recordset->GetRows(kGetRowsRest, Variant(kBookmarkFirst), {}).RowUpperBound(), 2);
  EXPECT_EQ(recordset->GetRows(kGetRowsRest, Variant(kBookmarkLast), {}).RowUpperBound(), 0);
}

TEST(MemoryRecordsetTest, GetRowsRefusesACountOfZero) {
  auto recordset = MemoryRecordset::FromJson(kTable);
  EXPECT_EQ(FailureOf([&] { recordset->GetRows(0, Variant(), {}); }).Number(), 3001);
  EXPECT_EQ(FailureOf([&] { recordset->GetRows(1, Variant(7), {}); }).Number(), 3001);
  EXPECT_FALSE(recordset->Eof());
}

TEST(MemoryRecordsetTest, RowsOfTheWrongWidthAreRefusedByNumber) {
  const Failure failure = FailureOf([] {
    MemoryRecordset({"A", "B"}, {{Variant(1), Variant(2)}, {Variant(3)}});
  });
  EXPECT_EQ(failure.Number(), 3001);
  EXPECT_NE(failure.Description().find("Row 2 has 1 cells for 2 columns."), std::string::npos);
}

TEST(MemoryRecordsetTest, BuiltFromVectorsItFiltersAlike) {
  MemoryRecordset recordset({"A", "B"}, {{Variant(1), Variant("x")}, {Variant(2), Variant("y")}});
  recordset.SetFilter(Variant("B LIKE 'y*' or A>5"));
  EXPECT_EQ(recordset.RecordCount(), 1);
  EXPECT_EQ(recordset.GetRows(kGetRowsRest, Variant(kBookmarkFirst), {Variant("A")}).At(0, 0),
            Variant(2));
}

TEST(RowsArrayTest, CellsOutsideTheBoundsFailWith9) {
  RowsArray rows(2, 3);
  EXPECT_EQ(rows.ColumnUpperBound(), 1);
  EXPECT_EQ(rows.RowUpperBound(), 2);
  EXPECT_EQ(FailureOf([&] { rows.At(2, 0); }).Number(), 9);
  EXPECT_EQ(FailureOf([&] { rows.At(0, -1); }).Number(), 9);
  EXPECT_EQ(RowsArray().RowUpperBound(), -1);
}

}  // namespace
}  // namespace tarnsheets
