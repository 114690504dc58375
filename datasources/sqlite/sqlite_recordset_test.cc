#include "datasources/sqlite/sqlite_recordset.h"

#include <gtest/gtest.h>

#include "datasources/sqlite/sqlite_test_support.h"

namespace tarnsheets {
namespace {

using sqlite_test::Connection;
using sqlite_test::NewDatabasePath;

class SqliteRecordsetTest : public ::testing::Test {
 protected:
  void SetUp() override {
    path_ = NewDatabasePath("titles");
    Connection c(path_);
    c.Exec(
        "CREATE TABLE SheetTitles (ColumnName TEXT, EnglishDisplayColumnName TEXT, Name TEXT, "
        "EnglishDecription TEXT, EnglishDisplayName TEXT, MultiLine INTEGER, DisplayFormat TEXT, "
        "DisplayCommand INTEGER);"
        "INSERT INTO SheetTitles VALUES "
        "('Opportunity', 'Opportunity', 'F_OPPNAME', 'The name', 'Opportunity', 0, NULL, 0),"
        "('Opportunity', 'Opportunity', 'FORE_REVENUE', NULL, 'Revenue', 0, '#,##0.00', 1),"
        "('Contact', 'Contact', 'F_NAME', NULL, 'Name', 1, NULL, 0),"
        "('x'' OR ''1''=''1', 'Evil', 'E', NULL, 'Evil', 0, NULL, 0);");
  }
  std::unique_ptr<SqliteRecordset> Open() {
    return SqliteRecordset::Open(path_, "SELECT * FROM SheetTitles");
  }
  std::string path_;
};

TEST_F(SqliteRecordsetTest, FilterSelectsTheGroupAndGetRowsReadsTheNamedColumns) {
  auto rs = Open();
  EXPECT_EQ(rs->RecordCount(), 4);
  rs->SetFilter(Variant("ColumnName='Opportunity'"));
  EXPECT_EQ(rs->Filter(), Variant("ColumnName='Opportunity'"));
  EXPECT_EQ(rs->RecordCount(), 2);
  EXPECT_FALSE(rs->Eof());
  const RowsArray rows =
      rs->GetRows(kGetRowsRest, Variant(int32_t{kBookmarkFirst}),
                  {Variant("Name"), Variant("DisplayFormat"), Variant("displaycommand")});
  EXPECT_EQ(rows.ColumnUpperBound(), 2);
  EXPECT_EQ(rows.RowUpperBound(), 1);
  EXPECT_EQ(rows.At(0, 0), Variant("F_OPPNAME"));
  EXPECT_TRUE(rows.At(1, 0).IsNull());
  EXPECT_EQ(rows.At(1, 1), Variant("#,##0.00"));
  EXPECT_EQ(rows.At(2, 1), Variant(int32_t{1}));
  EXPECT_TRUE(rs->Eof());
}

TEST_F(SqliteRecordsetTest, FilterTextIsEvaluatedByOurFilterAndNeverReachesSql) {
  auto rs = Open();
  rs->SetFilter(Variant("ColumnName='x'' OR ''1''=''1'"));
  EXPECT_EQ(rs->RecordCount(), 1);
  const RowsArray rows = rs->GetRows(kGetRowsRest, Variant(int32_t{kBookmarkFirst}), {});
  EXPECT_EQ(rows.At(2, 0), Variant("E"));
  // A clause of SQL that our grammar does not have is refused, not run.
  try {
    rs->SetFilter(Variant("ColumnName='a' or 1=1"));
    ADD_FAILURE() << "no failure";
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), kErrRecordsetArguments);
    EXPECT_NE(f.Description().find("position 19"), std::string::npos) << f.Description();
  }
  EXPECT_EQ(rs->RecordCount(), 1);
}

TEST_F(SqliteRecordsetTest, FilterThatCannotBeParsedFailsAndLeavesTheFilterInForce) {
  auto rs = Open();
  rs->SetFilter(Variant("ColumnName='Contact'"));
  try {
    rs->SetFilter(Variant("ColumnName='Contact'; DROP TABLE SheetTitles"));
    ADD_FAILURE() << "no failure";
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), kErrRecordsetArguments);
  }
  try {
    rs->SetFilter(Variant("NoSuch='a'"));
    ADD_FAILURE() << "no failure";
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), kErrItemNotFound);
  }
  EXPECT_EQ(rs->Filter(), Variant("ColumnName='Contact'"));
  EXPECT_EQ(rs->RecordCount(), 1);
  Connection c(path_);
  EXPECT_EQ(c.Number("SELECT count(*) FROM SheetTitles"), 4);
}

TEST_F(SqliteRecordsetTest, GetRowsWithNoRowThatPassesFailsWithNoCurrentRecord) {
  auto rs = Open();
  rs->SetFilter(Variant("ColumnName='Nobody'"));
  EXPECT_TRUE(rs->Eof());
  try {
    rs->GetRows(kGetRowsRest, Variant(int32_t{kBookmarkFirst}), {});
    ADD_FAILURE() << "no failure";
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), kErrNoCurrentRecord);
  }
}

TEST_F(SqliteRecordsetTest, QueryThatIsNoSingleSelectIsRefused) {
  for (const char* q : {"SELECT 1; DELETE FROM SheetTitles", "DELETE FROM SheetTitles"}) {
    try {
      SqliteRecordset::Open(path_, q);
      ADD_FAILURE() << q;
    } catch (const Failure& f) {
      EXPECT_TRUE(f.Number() == kErrRecordsetArguments || f.Number() == kErrDatabase) << q;
    }
  }
  Connection c(path_);
  EXPECT_EQ(c.Number("SELECT count(*) FROM SheetTitles"), 4);
}

TEST_F(SqliteRecordsetTest, UnknownTableFailsWithSqlitesMessage) {
  try {
    SqliteRecordset::Open(path_, "SELECT * FROM Nowhere");
    ADD_FAILURE();
  } catch (const Failure& f) {
    EXPECT_NE(f.Description().find("no such table: Nowhere"), std::string::npos) << f.Description();
  }
}

}  // namespace
}  // namespace tarnsheets
