// Positional moves through the position index: the record at every position is the one that
// "ORDER BY key LIMIT 1 OFFSET position - 1" reads, at the edges of the index's steps, and stays
// so after the set changes (own and other users' stores, queries, views).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "datasources/common/data_source_contract_test.h"
#include "datasources/sqlite/sqlite_data_source.h"
#include "datasources/sqlite/sqlite_test_support.h"

namespace tarnsheets {
namespace {

using sqlite_test::Connection;
using sqlite_test::NewDatabasePath;
using sqlite_test::OpenTestSource;

constexpr int32_t kStep = SqliteDataSource::kPositionIndexStep;

class PositionIndexTest : public ::testing::Test {
 protected:
  // The table Item: `rows` records with keys 10, 13, 16, ... (gaps between them) and names
  // "Item n" (even n) or "Other n" (odd n), n = 0, 1, ...
  void MakeItems(int rows) {
    path_ = NewDatabasePath("positions");
    Connection c(path_);
    c.Exec(
        "CREATE TABLE Item (ID INTEGER PRIMARY KEY, F_NAME TEXT, F_CODE TEXT);"
        "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i + 1 < " +
        std::to_string(rows) +
        ") INSERT INTO Item SELECT 10 + 3 * i, CASE i % 2 WHEN 0 THEN 'Item ' ELSE 'Other ' "
        "END || i, printf('c%06d', 3 * i) FROM n;");
  }
  std::unique_ptr<SqliteDataSource> Open(const std::string& table) {
    return OpenTestSource(path_, table, &dialogs_);
  }
  // The name of record n as MakeItems writes it.
  static std::string ItemName(int n) {
    return (n % 2 == 0 ? "Item " : "Other ") + std::to_string(n);
  }
  static std::string Name(SqliteDataSource& ds) {
    return ds.Fields(Variant("F_NAME")).Value(0).AsText();
  }
  // Moves to each of `positions` and checks that the record is the one that `select` (a SELECT
  // of F_NAME ordered by the key) reads with OFFSET position - 1, and that the position is kept.
  void ExpectRecordsOfTheOffsetQuery(SqliteDataSource& ds, const std::string& select,
                                     const std::vector<int32_t>& positions) {
    Connection other(path_);
    for (int32_t p : positions) {
      const std::string expected = other.Text(select + " LIMIT 1 OFFSET " + std::to_string(p - 1));
      ASSERT_NE(expected, "") << "no record at " << p;
      EXPECT_FALSE(ds.MoveToPosition(p)) << p;
      EXPECT_EQ(Name(ds), expected) << "at position " << p;
      EXPECT_EQ(ds.AbsolutePosition(), p);
    }
  }
  // The edges of the index's steps for a set of `count` records.
  static std::vector<int32_t> Edges(int32_t count) {
    std::vector<int32_t> out;
    for (int32_t p :
         {1, 2, kStep - 1, kStep, kStep + 1, 2 * kStep, 2 * kStep + 1, count - 1, count}) {
      if (p <= count) out.push_back(p);
    }
    return out;
  }

  std::string path_;
  RecordingDialogs dialogs_;
};

TEST_F(PositionIndexTest, MovesAtTheEdgesOfTheIndexStepsReadTheRecordsOfTheOffsetQuery) {
  const int32_t count = 3 * kStep + 17;
  MakeItems(count);
  auto ds = Open("Item");
  EXPECT_EQ(ds->PositionIndexSizeForTest(), 0u);  // read at the first positional move only
  ExpectRecordsOfTheOffsetQuery(*ds, "SELECT F_NAME FROM Item ORDER BY rowid", Edges(count));
  // One key for each step begun, 8 bytes each.
  EXPECT_EQ(ds->PositionIndexSizeForTest(), 4u);
  EXPECT_EQ(ds->PositionIndexBytesForTest(), 4 * sizeof(int64_t));
  // Beyond the last record nothing moves.
  EXPECT_TRUE(ds->MoveToPosition(count + 1));
  EXPECT_EQ(ds->AbsolutePosition(), count);
  EXPECT_EQ(Name(*ds), ItemName(count - 1));
  EXPECT_TRUE(ds->MoveToPosition(0));
  EXPECT_EQ(ds->AbsolutePosition(), count);
}

TEST_F(PositionIndexTest, SetOfExactlyWholeStepsHasItsLastRecordInTheLastStep) {
  MakeItems(2 * kStep);
  auto ds = Open("Item");
  ExpectRecordsOfTheOffsetQuery(*ds, "SELECT F_NAME FROM Item ORDER BY rowid", Edges(2 * kStep));
  EXPECT_EQ(ds->PositionIndexSizeForTest(), 2u);
  EXPECT_TRUE(ds->MoveToPosition(2 * kStep + 1));
}

TEST_F(PositionIndexTest, OwnNewRecordBeginningAStepIsFoundAtItsPosition) {
  MakeItems(2 * kStep);
  auto ds = Open("Item");
  ASSERT_FALSE(ds->MoveToPosition(kStep));
  ASSERT_EQ(ds->PositionIndexSizeForTest(), 2u);
  ds->NewRecord(0);
  ASSERT_FALSE(ds->SetFieldValue(Variant("F_NAME"), Variant("Newest")));
  ASSERT_EQ(ds->UpdateRecord(), 0);
  EXPECT_EQ(ds->PositionIndexSizeForTest(), 0u);  // dropped: the set changed
  EXPECT_EQ(ds->RecordCount(), 2 * kStep + 1);
  ASSERT_FALSE(ds->MoveToPosition(1));
  ASSERT_FALSE(ds->MoveToPosition(2 * kStep + 1));
  EXPECT_EQ(Name(*ds), "Newest");
  ExpectRecordsOfTheOffsetQuery(*ds, "SELECT F_NAME FROM Item ORDER BY rowid",
                                Edges(2 * kStep + 1));
}

TEST_F(PositionIndexTest, OwnDeletionBeforeTheStepsMovesEveryLaterRecordBackByOne) {
  const int32_t count = 2 * kStep + 5;
  MakeItems(count);
  auto ds = Open("Item");
  ExpectRecordsOfTheOffsetQuery(*ds, "SELECT F_NAME FROM Item ORDER BY rowid", Edges(count));
  ASSERT_FALSE(ds->MoveToPosition(1));
  ds->DeleteRecord();
  ASSERT_TRUE(dialogs_.boxes.empty());
  EXPECT_EQ(ds->PositionIndexSizeForTest(), 0u);
  EXPECT_EQ(ds->RecordCount(), count - 1);
  ExpectRecordsOfTheOffsetQuery(*ds, "SELECT F_NAME FROM Item ORDER BY rowid", Edges(count - 1));
  ASSERT_FALSE(ds->MoveToPosition(kStep + 1));
  EXPECT_EQ(Name(*ds), ItemName(kStep + 1));  // record 0 is gone
}

TEST_F(PositionIndexTest, OwnChangeOfAValueKeepsTheIndexOfAWholeTable) {
  MakeItems(kStep + 3);
  auto ds = Open("Item");
  ASSERT_FALSE(ds->MoveToPosition(kStep + 1));
  ASSERT_FALSE(ds->SetFieldValue(Variant("F_NAME"), Variant("Renamed")));
  ASSERT_EQ(ds->UpdateRecord(), 0);
  // Positions did not move: the index stays.
  EXPECT_EQ(ds->PositionIndexSizeForTest(), 2u);
  ExpectRecordsOfTheOffsetQuery(*ds, "SELECT F_NAME FROM Item ORDER BY rowid",
                                {1, kStep, kStep + 1, kStep + 3});
}

TEST_F(PositionIndexTest, AnotherUsersInsertsAndDeletionsAreSeenByTheNextPositionalMove) {
  const int32_t count = 2 * kStep + 9;
  MakeItems(count);
  auto ds = Open("Item");
  ExpectRecordsOfTheOffsetQuery(*ds, "SELECT F_NAME FROM Item ORDER BY rowid", Edges(count));
  Connection other(path_);
  other.Exec("INSERT INTO Item (ID, F_NAME) VALUES (1, 'First'), (2, 'Second'), (11, 'Between')");
  other.Exec("DELETE FROM Item WHERE ID IN (13, 16, 19, 22)");
  // count + 3 - 4 records now; the move itself sees the change.
  ASSERT_FALSE(ds->MoveToPosition(kStep + 1));
  EXPECT_EQ(Name(*ds), other.Text("SELECT F_NAME FROM Item ORDER BY rowid LIMIT 1 OFFSET " +
                                  std::to_string(kStep)));
  EXPECT_EQ(ds->RecordCount(), count - 1);
  ExpectRecordsOfTheOffsetQuery(*ds, "SELECT F_NAME FROM Item ORDER BY rowid", Edges(count - 1));
  ASSERT_FALSE(ds->MoveToPosition(4));  // after keys 1, 2 and 10
  EXPECT_EQ(Name(*ds), "Between");
  // A row added at the end by another user is reached beyond the count known before.
  other.Exec("INSERT INTO Item (ID, F_NAME) VALUES (100000, 'Last')");
  ASSERT_FALSE(ds->MoveToPosition(count));
  EXPECT_EQ(Name(*ds), "Last");
  EXPECT_EQ(ds->RecordCount(), count);
}

TEST_F(PositionIndexTest, MovesWithinAnExecutedQueryCountOnlyItsRecords) {
  const int32_t count = 4 * kStep + 11;
  MakeItems(count);
  auto ds = Open("Item");
  ASSERT_FALSE(ds->MoveToPosition(3 * kStep));  // an index of the whole table first
  ASSERT_FALSE(ds->NewQuery());
  ASSERT_FALSE(ds->SetFieldValue(Variant("F_NAME"), Variant("item")));
  ASSERT_FALSE(ds->ExecuteQuery());
  const int32_t matching = (count + 1) / 2;
  ASSERT_EQ(ds->RecordCount(), matching);
  const std::string select = "SELECT F_NAME FROM Item WHERE F_NAME LIKE 'Item %' ORDER BY rowid";
  ExpectRecordsOfTheOffsetQuery(*ds, select, Edges(matching));
  EXPECT_EQ(ds->PositionIndexSizeForTest(), 3u);
  EXPECT_TRUE(ds->MoveToPosition(matching + 1));
  // Another user's record that passes the query is counted in its place.
  Connection other(path_);
  other.Exec("INSERT INTO Item (ID, F_NAME) VALUES (5, 'ITEM zero'), (6, 'Other zero')");
  ExpectRecordsOfTheOffsetQuery(*ds,
                                "SELECT F_NAME FROM Item WHERE F_NAME LIKE 'Item %' ORDER BY "
                                "rowid",
                                Edges(matching + 1));
  ASSERT_FALSE(ds->MoveToPosition(1));
  EXPECT_EQ(Name(*ds), "ITEM zero");
  // An own change that takes the record out of the query drops the index.
  ASSERT_FALSE(ds->MoveToPosition(2));
  ASSERT_FALSE(ds->MoveToPosition(kStep + 1));
  ASSERT_FALSE(ds->SetFieldValue(Variant("F_NAME"), Variant("Changed")));
  ASSERT_EQ(ds->UpdateRecord(), 0);
  EXPECT_EQ(ds->PositionIndexSizeForTest(), 0u);
}

TEST_F(PositionIndexTest, MovesOverAViewKeyedByATextColumnReadItsRecordsInKeyOrder) {
  const int32_t count = 3 * kStep + 30;
  MakeItems(count);
  Connection c(path_);
  // Codes in the opposite order of the rowids, and a view that leaves out every fifth record.
  c.Exec(
      "UPDATE Item SET F_CODE = printf('c%06d', 1000000 - ID);"
      "CREATE UNIQUE INDEX Item_code ON Item (F_CODE);"
      "CREATE VIEW ByCode AS SELECT F_CODE, F_NAME, ID FROM Item WHERE ID % 5 <> 0;"
      "CREATE TRIGGER ByCode_delete INSTEAD OF DELETE ON ByCode BEGIN "
      "DELETE FROM Item WHERE ID = OLD.ID; END;"
      "CREATE TABLE tarn_source_key (table_name TEXT PRIMARY KEY, column_name TEXT NOT NULL);"
      "INSERT INTO tarn_source_key VALUES ('ByCode', 'F_CODE');");
  auto ds = Open("ByCode");
  ASSERT_EQ(ds->KeyName(), "F_CODE");
  const int32_t shown =
      static_cast<int32_t>(c.Number("SELECT count(*) FROM Item WHERE ID % 5 <> 0"));
  ASSERT_EQ(ds->RecordCount(), shown);
  const std::string select = "SELECT F_NAME FROM ByCode ORDER BY F_CODE";
  ExpectRecordsOfTheOffsetQuery(*ds, select, Edges(shown));
  EXPECT_EQ(ds->PositionIndexSizeForTest(), static_cast<size_t>((shown + kStep - 1) / kStep));
  // Text keys are kept as they are stored.
  EXPECT_GT(ds->PositionIndexBytesForTest(), ds->PositionIndexSizeForTest() * sizeof(int64_t));
  // An own deletion through the view's trigger, and another user's.
  ASSERT_FALSE(ds->MoveToPosition(kStep));
  ds->DeleteRecord();
  ASSERT_TRUE(dialogs_.boxes.empty());
  c.Exec("DELETE FROM Item WHERE ID IN (SELECT ID FROM ByCode ORDER BY F_CODE LIMIT 3)");
  ExpectRecordsOfTheOffsetQuery(*ds, select, Edges(shown - 4));
  EXPECT_EQ(ds->RecordCount(), shown - 4);
}

}  // namespace
}  // namespace tarnsheets
