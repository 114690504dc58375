// Faults of the database: each gives a clear failure that carries SQLite's message, and leaves the
// database as it was and a pending record intact.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "datasources/common/data_source_contract_test.h"
#include "datasources/sqlite/sqlite_data_source.h"
#include "datasources/sqlite/sqlite_test_support.h"

namespace tarnsheets {
namespace {

using sqlite_test::Connection;
using sqlite_test::MakeContractDatabase;
using sqlite_test::NewDatabasePath;

// The failure that `fn` throws; a failure of number 0 when it throws none.
Failure Caught(const std::function<void()>& fn) {
  try {
    fn();
  } catch (const Failure& f) {
    return f;
  }
  return Failure(0, "");
}

TEST(SqliteFaultTest, MissingFileFailsWithSqlitesMessageAndCreatesNothing) {
  const std::string path = NewDatabasePath("missing");
  const Failure f = Caught([&] { SqliteDataSource::Create(path, "Deal", nullptr); });
  EXPECT_EQ(f.Number(), kErrDatabase);
  EXPECT_NE(f.Description().find("unable to open database file"), std::string::npos)
      << f.Description();
  EXPECT_NE(f.Description().find(path), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(SqliteFaultTest, MissingTableFailsNamingTheTable) {
  const std::string path = NewDatabasePath("table");
  MakeContractDatabase(path);
  const Failure f = Caught([&] { SqliteDataSource::Create(path, "Nope", nullptr); });
  EXPECT_EQ(f.Number(), kErrDatabase);
  EXPECT_NE(f.Description().find("no table or view \"Nope\""), std::string::npos)
      << f.Description();
  Connection c(path);
  EXPECT_EQ(c.Number("SELECT count(*) FROM sqlite_schema WHERE name LIKE 'tarn_count%Nope'"), 0);
}

TEST(SqliteFaultTest, IndexIsRefusedAsARecordSetNamingWhatItIs) {
  const std::string path = NewDatabasePath("index");
  MakeContractDatabase(path);
  Connection(path).Exec("CREATE INDEX DealByName ON Deal (F_NAME)");
  const Failure f = Caught([&] { SqliteDataSource::Create(path, "DealByName", nullptr); });
  EXPECT_EQ(f.Number(), kErrDatabase);
  EXPECT_NE(
      f.Description().find("\"DealByName\" in \"" + path + "\" is an index, not a table or a view"),
      std::string::npos)
      << f.Description();
}

TEST(SqliteFaultTest, KeyTableThatNamesNoColumnOfTheViewIsRefusedClearly) {
  const std::string path = NewDatabasePath("view_key");
  MakeContractDatabase(path);
  Connection c(path);
  c.Exec("CREATE VIEW Big AS SELECT * FROM Deal WHERE F_REVENUE > 0");
  c.Exec("CREATE TABLE tarn_source_key (table_name TEXT PRIMARY KEY, column_name TEXT)");
  c.Exec("INSERT INTO tarn_source_key VALUES ('Big', 'F_GONE')");
  const Failure f = Caught([&] { SqliteDataSource::Create(path, "Big", nullptr); });
  EXPECT_EQ(f.Number(), kErrDatabase);
  EXPECT_NE(f.Description().find("tarn_source_key row of \"Big\""), std::string::npos)
      << f.Description();
  EXPECT_NE(f.Description().find("no column \"F_GONE\""), std::string::npos) << f.Description();
}

TEST(SqliteFaultTest, CorruptFileFailsWithSqlitesMessageAndIsLeftAsItWas) {
  const std::string good = NewDatabasePath("good");
  MakeContractDatabase(good);
  const std::string bad = NewDatabasePath("corrupt");
  std::filesystem::copy_file(good, bad);
  {
    std::fstream file(bad, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(0);
    const std::string garbage(200, '\x5a');
    file.write(garbage.data(), static_cast<std::streamsize>(garbage.size()));
  }
  const auto size = std::filesystem::file_size(bad);
  const Failure f = Caught([&] { SqliteDataSource::Create(bad, "Deal", nullptr); });
  EXPECT_EQ(f.Number(), kErrDatabase);
  EXPECT_NE(f.Description().find("file is not a database"), std::string::npos) << f.Description();
  EXPECT_EQ(std::filesystem::file_size(bad), size);
}

TEST(SqliteFaultTest, MetadataThatNamesNoColumnIsRefusedClearly) {
  const std::string path = NewDatabasePath("meta");
  MakeContractDatabase(path);
  Connection(path).Exec("INSERT INTO tarn_field_meta VALUES ('Deal', 'F_GONE', 0, 0, 0, 1, NULL)");
  const Failure f = Caught([&] { SqliteDataSource::Create(path, "Deal", nullptr); });
  EXPECT_EQ(f.Number(), kErrDatabase);
  EXPECT_NE(f.Description().find("F_GONE"), std::string::npos) << f.Description();
}

TEST(SqliteFaultTest, FileOpenedReadOnlyIsReadOnlyAndRefusesChanges) {
  const std::string path = NewDatabasePath("ro");
  MakeContractDatabase(path);
  for (bool by_uri : {false, true}) {
    RecordingDialogs dialogs;
    SqliteSourceOptions options;
    options.read_only = !by_uri;
    auto ds = SqliteDataSource::Create(by_uri ? "file:" + path + "?mode=ro" : path, "Deal",
                                       &dialogs, options);
    ds->Open();
    EXPECT_TRUE(ds->ReadOnly());
    EXPECT_EQ(ds->RecordCount(), 3);
    EXPECT_FALSE(ds->MoveLast());
    EXPECT_EQ(ds->Fields(Variant("F_NAME")).Value(0), Variant("Gamma"));
    EXPECT_TRUE(ds->SetFieldValue(Variant("F_NAME"), Variant("x")));
    ds->NewRecord(0);
    EXPECT_EQ(ds->EditStatus(), dsBrowse);
    ASSERT_EQ(dialogs.boxes.size(), 2u);
    EXPECT_NE(dialogs.boxes[0].find("read-only"), std::string::npos);
  }
  Connection c(path);
  EXPECT_EQ(c.Text("SELECT group_concat(F_NAME) FROM Deal"), "Alpha,beta,Gamma");
}

TEST(SqliteFaultTest, WriteRefusedByTheDatabaseGivesAClearFailureAndKeepsTheRecordPending) {
  const std::string path = NewDatabasePath("query_only");
  MakeContractDatabase(path);
  RecordingDialogs dialogs;
  auto ds = SqliteDataSource::Create(path, "Deal", &dialogs);
  ds->Open();
  ds->ExecuteForTest("PRAGMA query_only = 1");
  ASSERT_FALSE(ds->SetFieldValue(Variant("F_NAME"), Variant("never stored")));
  EXPECT_NE(ds->UpdateRecord(), 0);
  ASSERT_EQ(dialogs.boxes.size(), 1u);
  EXPECT_NE(dialogs.boxes[0].find("readonly"), std::string::npos) << dialogs.boxes[0];
  EXPECT_TRUE(ds->HasPendingRecord());
  EXPECT_EQ(ds->Fields(Variant("F_NAME")).Value(0), Variant("never stored"));
  Connection c(path);
  EXPECT_EQ(c.Text("SELECT F_NAME FROM Deal WHERE F_ID = 1"), "Alpha");
}

TEST(SqliteFaultTest, ConstraintViolationGivesAClearFailureAndTheDatabaseIsUnchanged) {
  const std::string path = NewDatabasePath("constraint");
  {
    Connection c(path);
    c.Exec("CREATE TABLE Acct (name TEXT NOT NULL UNIQUE, city TEXT)");
    c.Exec("INSERT INTO Acct VALUES ('Acme', 'Oslo')");
  }
  RecordingDialogs dialogs;
  auto ds = SqliteDataSource::Create(path, "Acct", &dialogs);
  ds->Open();
  ds->NewRecord(0);
  ASSERT_FALSE(ds->SetFieldValue(Variant("city"), Variant("Bergen")));
  EXPECT_NE(ds->UpdateRecord(), 0);
  ASSERT_EQ(dialogs.boxes.size(), 1u);
  EXPECT_NE(dialogs.boxes[0].find("NOT NULL constraint failed: Acct.name"), std::string::npos)
      << dialogs.boxes[0];
  EXPECT_EQ(ds->EditStatus(), dsNewRecord);
  EXPECT_EQ(ds->Fields(Variant("city")).Value(0), Variant("Bergen"));
  ASSERT_FALSE(ds->SetFieldValue(Variant("name"), Variant("Acme")));
  EXPECT_NE(ds->UpdateRecord(), 0);
  ASSERT_EQ(dialogs.boxes.size(), 2u);
  EXPECT_NE(dialogs.boxes[1].find("UNIQUE constraint failed"), std::string::npos);
  Connection c(path);
  EXPECT_EQ(c.Number("SELECT count(*) FROM Acct"), 1);
  EXPECT_EQ(c.Number("SELECT row_count FROM tarn_row_count WHERE table_name = 'Acct'"), 1);
  EXPECT_EQ(ds->RecordCount(), 2);  // the pending record counts
}

TEST(SqliteFaultTest, DiskFullGivesAClearFailureAndTheDatabaseIsUnchanged) {
  const std::string path = NewDatabasePath("full");
  MakeContractDatabase(path);
  RecordingDialogs dialogs;
  auto ds = SqliteDataSource::Create(path, "Deal", &dialogs);
  ds->Open();
  Connection c(path);
  const int64_t pages = c.Number("PRAGMA page_count");
  ds->ExecuteForTest("PRAGMA max_page_count = " + std::to_string(pages));
  ds->NewRecord(0);
  const std::string big(64 * 1024, 'x');
  ASSERT_FALSE(ds->SetFieldValue(Variant("F_NAME"), Variant(big)));
  EXPECT_NE(ds->UpdateRecord(), 0);
  ASSERT_EQ(dialogs.boxes.size(), 1u);
  EXPECT_NE(dialogs.boxes[0].find("database or disk is full"), std::string::npos)
      << dialogs.boxes[0];
  EXPECT_EQ(ds->EditStatus(), dsNewRecord);
  EXPECT_EQ(c.Number("SELECT count(*) FROM Deal"), 3);
  EXPECT_EQ(c.Number("SELECT row_count FROM tarn_row_count WHERE table_name = 'Deal'"), 3);
  ds->UndoRecord();
  EXPECT_EQ(ds->RecordCount(), 3);
}

TEST(SqliteFaultTest, ReadFailureOfAMoveThrowsWithSqlitesMessage) {
  const std::string path = NewDatabasePath("dropped");
  MakeContractDatabase(path);
  auto ds = SqliteDataSource::Create(path, "Deal", nullptr);
  ds->Open();
  Connection(path).Exec("DROP TABLE Deal");
  const Failure f = Caught([&] { ds->MoveNext(); });
  EXPECT_EQ(f.Number(), kErrDatabase);
  EXPECT_NE(f.Description().find("Deal"), std::string::npos) << f.Description();
  EXPECT_EQ(ds->AbsolutePosition(), 1);
}

}  // namespace
}  // namespace tarnsheets
