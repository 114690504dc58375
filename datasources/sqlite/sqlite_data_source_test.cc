#include "datasources/sqlite/sqlite_data_source.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "datasources/common/data_source_contract_test.h"
#include "datasources/sqlite/sqlite_test_support.h"

namespace tarnsheets {
namespace {

using sqlite_test::Connection;
using sqlite_test::MakeContractDatabase;
using sqlite_test::MakeContractViewDatabase;
using sqlite_test::NewDatabasePath;
using sqlite_test::OpenTestSource;

// The contract on a table (ordered by rowid) and on a view writable through INSTEAD OF triggers
// (ordered by the key named in tarn_source_key).
ContractSource OpenedLater(std::unique_ptr<SqliteDataSource> s) {
  SqliteDataSource* raw = s.get();
  return ContractSource{std::move(s), [raw] { raw->Open(); },
                        [raw](int32_t p) { return raw->MoveToPosition(p); }};
}

INSTANTIATE_TEST_SUITE_P(
    Sqlite, DataSourceContractTest,
    ::testing::Values(DataSourceContractFactory{"Sqlite",
                                                [](Dialogs* dialogs) {
                                                  const std::string path =
                                                      NewDatabasePath("contract");
                                                  MakeContractDatabase(path);
                                                  return OpenedLater(SqliteDataSource::Create(
                                                      path, "Deal", dialogs));
                                                }},
                      DataSourceContractFactory{
                          "SqliteView",
                          [](Dialogs* dialogs) {
                            const std::string path = NewDatabasePath("contract_view");
                            MakeContractViewDatabase(path);
                            return OpenedLater(SqliteDataSource::Create(path, "DealView", dialogs));
                          }}),
    [](const ::testing::TestParamInfo<DataSourceContractFactory>& info) {
      return info.param.name;
    });

class SqliteDataSourceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    path_ = NewDatabasePath("source");
    MakeContractDatabase(path_);
    ds_ = OpenTestSource(path_, "Deal", &dialogs_);
  }
  Variant Value(const char* field) { return ds_->Fields(Variant(field)).Value(0); }
  bool Set(const char* field, const char* text) {
    return ds_->SetFieldValue(Variant(field), Variant(text));
  }
  std::vector<std::string> Names() {
    std::vector<std::string> names;
    if (ds_->RecordCount() > 0 && !ds_->MoveFirst()) {
      do {
        names.push_back(Value("F_NAME").AsText());
      } while (!ds_->MoveNext());
    }
    return names;
  }
  std::vector<std::string> Query(const char* field, const std::string& condition) {
    EXPECT_FALSE(ds_->NewQuery());
    EXPECT_FALSE(ds_->SetFieldValue(Variant(field), Variant(condition))) << condition;
    EXPECT_FALSE(ds_->ExecuteQuery());
    return Names();
  }

  std::string path_;
  RecordingDialogs dialogs_;
  std::unique_ptr<SqliteDataSource> ds_;
};

using NameList = std::vector<std::string>;

TEST_F(SqliteDataSourceTest, FieldsTakeTheirShapeFromMetadataAndFromDeclaredTypes) {
  EXPECT_EQ(ds_->FieldCount(), 7);
  EXPECT_EQ(ds_->Fields(Variant("F_NAME")).DataType(), kDataTypeText);
  EXPECT_EQ(ds_->Fields(Variant("F_REVENUE")).DataType(), kDataTypeMoney);
  EXPECT_EQ(ds_->Fields(Variant("F_REVENUE")).ReferenceName(), "CURR_CODE");
  EXPECT_EQ(ds_->Fields(Variant("F_DATE")).DataType(), kDataTypeDate);
  EXPECT_EQ(ds_->Fields(Variant("F_DATE")).DateKind(), kDateKindDate);
  EXPECT_EQ(ds_->Fields(Variant("F_PROB")).NumberKind(), kNumberKindPercent);
  EXPECT_EQ(ds_->Fields(Variant("F_FLAG")).DataType(), kDataTypeYesNo);
  EXPECT_EQ(ds_->Fields(Variant("F_ID")).DataType(), kDataTypeWholeNumber);
  EXPECT_FALSE(ds_->Fields(Variant("F_ID")).Updatable());
}

TEST_F(SqliteDataSourceTest, DeclaredTypesGiveDefaultsWhenThereIsNoMetadata) {
  Connection c(path_);
  c.Exec(
      "CREATE TABLE Plain (id INTEGER PRIMARY KEY, amount REAL, price MONEY, seen DATETIME, "
      "at TIME, ok BOOLEAN, note VARCHAR(20), whatever)");
  auto plain = SqliteDataSource::Create(path_, "Plain", nullptr);
  const auto type = [&](const char* f) { return plain->Fields(Variant(f)).DataType(); };
  EXPECT_EQ(type("id"), kDataTypeWholeNumber);
  EXPECT_FALSE(plain->Fields(Variant("id")).Updatable());
  EXPECT_EQ(type("amount"), kDataTypeNumber);
  EXPECT_EQ(plain->Fields(Variant("amount")).NumberKind(), kNumberKindFixed2);
  EXPECT_EQ(type("price"), kDataTypeMoney);
  EXPECT_EQ(type("seen"), kDataTypeDate);
  EXPECT_EQ(plain->Fields(Variant("seen")).DateKind(), kDateKindDateTime);
  EXPECT_EQ(plain->Fields(Variant("at")).DateKind(), kDateKindTime);
  EXPECT_EQ(type("ok"), kDataTypeYesNo);
  EXPECT_EQ(type("note"), kDataTypeText);
  EXPECT_EQ(type("whatever"), kDataTypeText);
  EXPECT_TRUE(plain->Fields(Variant("note")).Updatable());
}

TEST_F(SqliteDataSourceTest, OpenKeepsTheRowCountInTheDatabaseThroughOtherUsersChanges) {
  Connection other(path_);
  EXPECT_EQ(other.Number("SELECT row_count FROM tarn_row_count WHERE table_name = 'Deal'"), 3);
  other.Exec("INSERT INTO Deal (F_NAME) VALUES ('Other 1'), ('Other 2')");
  other.Exec("DELETE FROM Deal WHERE F_NAME = 'beta'");
  EXPECT_EQ(other.Number("SELECT row_count FROM tarn_row_count WHERE table_name = 'Deal'"), 4);
  EXPECT_FALSE(ds_->Refresh());
  EXPECT_EQ(ds_->RecordCount(), 4);
  EXPECT_EQ(Names(), (NameList{"Alpha", "Gamma", "Other 1", "Other 2"}));
}

TEST_F(SqliteDataSourceTest, StoredEditReachesOtherConnectionsOnlyAfterUpdateRecord) {
  Connection other(path_);
  ASSERT_FALSE(Set("F_NAME", "Alpha changed"));
  ASSERT_FALSE(Set("F_DATE", "2027-01-02"));
  EXPECT_EQ(other.Text("SELECT F_NAME FROM Deal WHERE F_ID = 1"), "Alpha");
  EXPECT_EQ(ds_->UpdateRecord(), 0);
  EXPECT_EQ(other.Text("SELECT F_NAME FROM Deal WHERE F_ID = 1"), "Alpha changed");
  EXPECT_EQ(other.Text("SELECT F_DATE FROM Deal WHERE F_ID = 1"), "2027-01-02 00:00:00");
  EXPECT_EQ(Value("F_DATE"), Variant(Date::FromParts(2027, 1, 2)));
}

TEST_F(SqliteDataSourceTest, AnotherConnectionCanWriteWhileASheetShowsARecord) {
  ASSERT_FALSE(ds_->MoveNext());
  ASSERT_FALSE(Set("F_NAME", "pending here"));
  Connection other(path_);
  other.Exec("UPDATE Deal SET F_NAME = 'written there' WHERE F_ID = 3");
  other.Exec("INSERT INTO Deal (F_NAME) VALUES ('new there')");
  EXPECT_EQ(ds_->UpdateRecord(), 0);
  EXPECT_EQ(other.Text("SELECT F_NAME FROM Deal WHERE F_ID = 2"), "pending here");
  EXPECT_FALSE(ds_->MoveNext());
  EXPECT_EQ(Value("F_NAME"), Variant("written there"));
  EXPECT_FALSE(ds_->MoveNext());
  EXPECT_EQ(Value("F_NAME"), Variant("new there"));
  EXPECT_EQ(ds_->AbsolutePosition(), 4);
  EXPECT_EQ(ds_->RecordCount(), 4);
}

TEST_F(SqliteDataSourceTest, ConflictingUpdateIsRefusedWithAClearReasonAndNothingIsLost) {
  Connection other(path_);
  ASSERT_FALSE(Set("F_NAME", "mine"));
  other.Exec("UPDATE Deal SET F_NAME = 'theirs' WHERE F_ID = 1");
  EXPECT_NE(ds_->UpdateRecord(), 0);
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_NE(dialogs_.boxes[0].find("changed by another user"), std::string::npos)
      << dialogs_.boxes[0];
  EXPECT_EQ(other.Text("SELECT F_NAME FROM Deal WHERE F_ID = 1"), "theirs");
  EXPECT_TRUE(ds_->HasPendingRecord());
  EXPECT_EQ(Value("F_NAME"), Variant("mine"));
  // After reading the record again the edit can be repeated and stored.
  EXPECT_FALSE(ds_->Refresh());
  EXPECT_EQ(Value("F_NAME"), Variant("theirs"));
  ASSERT_FALSE(Set("F_NAME", "mine after all"));
  EXPECT_EQ(ds_->UpdateRecord(), 0);
  EXPECT_EQ(other.Text("SELECT F_NAME FROM Deal WHERE F_ID = 1"), "mine after all");
}

TEST_F(SqliteDataSourceTest, ChangeOfAnotherColumnByAnotherUserAlsoRefusesTheUpdate) {
  Connection other(path_);
  ASSERT_FALSE(Set("F_NAME", "mine"));
  other.Exec("UPDATE Deal SET F_REVENUE = 7 WHERE F_ID = 1");
  EXPECT_NE(ds_->UpdateRecord(), 0);
  EXPECT_EQ(other.Text("SELECT F_NAME || '/' || F_REVENUE FROM Deal WHERE F_ID = 1"), "Alpha/7");
}

TEST_F(SqliteDataSourceTest, UpdateOfARowDeletedByAnotherUserIsRefused) {
  Connection other(path_);
  ASSERT_FALSE(Set("F_NAME", "mine"));
  other.Exec("DELETE FROM Deal WHERE F_ID = 1");
  EXPECT_NE(ds_->UpdateRecord(), 0);
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_NE(dialogs_.boxes[0].find("deleted by another user"), std::string::npos);
  EXPECT_EQ(other.Number("SELECT count(*) FROM Deal"), 2);
  EXPECT_TRUE(ds_->HasPendingRecord());
}

TEST_F(SqliteDataSourceTest, DeleteOfARowChangedByAnotherUserIsRefused) {
  Connection other(path_);
  other.Exec("UPDATE Deal SET F_NAME = 'theirs' WHERE F_ID = 1");
  ds_->DeleteRecord();
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_NE(dialogs_.boxes[0].find("changed by another user"), std::string::npos);
  EXPECT_EQ(other.Number("SELECT count(*) FROM Deal"), 3);
  EXPECT_EQ(ds_->RecordCount(), 3);
}

TEST_F(SqliteDataSourceTest, LockedDatabaseGivesAClearFailureAndTheRecordStaysPending) {
  Connection other(path_);
  other.Exec("BEGIN IMMEDIATE; UPDATE Deal SET F_PROB = 0.5 WHERE F_ID = 3");
  ds_->NewRecord(0);
  ASSERT_FALSE(Set("F_NAME", "Delta"));
  EXPECT_NE(ds_->UpdateRecord(), 0);
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_NE(dialogs_.boxes[0].find("database is locked"), std::string::npos) << dialogs_.boxes[0];
  EXPECT_EQ(ds_->EditStatus(), dsNewRecord);
  EXPECT_EQ(Value("F_NAME"), Variant("Delta"));
  other.Exec("COMMIT");
  EXPECT_EQ(ds_->UpdateRecord(), 0);
  EXPECT_EQ(ds_->EditStatus(), dsBrowse);
  EXPECT_EQ(other.Number("SELECT count(*) FROM Deal WHERE F_NAME = 'Delta'"), 1);
}

TEST_F(SqliteDataSourceTest, NoReadTransactionStaysOpenBetweenCalls) {
  ASSERT_FALSE(ds_->MoveNext());
  (void)Value("F_NAME");
  // A checkpoint that must wait for no reader completes only when no read transaction is open.
  Connection other(path_);
  other.Exec("INSERT INTO Deal (F_NAME) VALUES ('x')");
  int log = -1, done = -1;
  ASSERT_EQ(
      sqlite3_wal_checkpoint_v2(other.get(), nullptr, SQLITE_CHECKPOINT_TRUNCATE, &log, &done),
      SQLITE_OK)
      << sqlite3_errmsg(other.get());
  EXPECT_EQ(other.Text("PRAGMA journal_mode"), "wal");
}

TEST_F(SqliteDataSourceTest, InjectionAttemptsInValuesAreStoredAsPlainText) {
  const std::string evil = "x'); DROP TABLE Deal; --\"";
  ASSERT_FALSE(ds_->SetFieldValue(Variant("F_NAME"), Variant(evil)));
  ASSERT_EQ(ds_->UpdateRecord(), 0);
  Connection other(path_);
  EXPECT_EQ(other.Text("SELECT F_NAME FROM Deal WHERE F_ID = 1"), evil);
  EXPECT_EQ(other.Number("SELECT count(*) FROM Deal"), 3);
}

TEST_F(SqliteDataSourceTest, InjectionAttemptsInQueryConditionsAreMatchedAsPlainText) {
  const std::string evil = "a' OR '1'='1";
  ASSERT_FALSE(ds_->SetFieldValue(Variant("F_NAME"), Variant(evil)));
  ASSERT_EQ(ds_->UpdateRecord(), 0);
  EXPECT_EQ(Query("F_NAME", evil), (NameList{evil}));
  EXPECT_EQ(Query("F_NAME", "' OR 1=1 --"), (NameList{}));
  EXPECT_EQ(Query("F_NAME", "x\"); DROP TABLE Deal; --"), (NameList{}));
  EXPECT_EQ(Query("F_NAME", "[a-z]*"), (NameList{}));  // brackets stand for themselves
  EXPECT_EQ(Query("F_NAME", "G"), (NameList{"Gamma"}));
  Connection other(path_);
  EXPECT_EQ(other.Number("SELECT count(*) FROM Deal"), 3);
}

TEST_F(SqliteDataSourceTest, TextConditionsFoldCaseBeyondAscii) {
  ASSERT_FALSE(Set("F_NAME", "ÄRGER"));
  ASSERT_FALSE(ds_->MoveNext());
  ASSERT_FALSE(Set("F_NAME", "北京办事处"));
  ASSERT_EQ(ds_->UpdateRecord(), 0);
  EXPECT_EQ(Query("F_NAME", "är"), (NameList{"ÄRGER"}));
  EXPECT_EQ(Query("F_NAME", "北京"), (NameList{"北京办事处"}));
  EXPECT_EQ(Query("F_NAME", "*办事?"), (NameList{"北京办事处"}));
}

TEST_F(SqliteDataSourceTest, ConditionsAreKeptByRefineQueryAndCountedInTheDatabase) {
  EXPECT_EQ(Query("F_REVENUE", ">0"), (NameList{"Alpha", "Gamma"}));
  EXPECT_EQ(ds_->RecordCount(), 2);
  ASSERT_FALSE(ds_->RefineQuery());
  EXPECT_EQ(Value("F_REVENUE"), Variant(">0"));
  ASSERT_FALSE(Set("CURR_CODE", "usd"));
  ASSERT_FALSE(Set("F_DATE", ">=2026-05-20"));
  ASSERT_FALSE(ds_->ExecuteQuery());
  EXPECT_EQ(ds_->RecordCount(), 1);
  EXPECT_EQ(Value("F_NAME"), Variant("Gamma"));
}

TEST_F(SqliteDataSourceTest, DateConditionsTakeTheWholeDay) {
  Connection other(path_);
  other.Exec("UPDATE Deal SET F_DATE = '2026-03-01 15:30:00' WHERE F_ID = 1");
  EXPECT_FALSE(ds_->Refresh());
  EXPECT_EQ(Query("F_DATE", "2026-03-01"), (NameList{"Alpha"}));
  EXPECT_EQ(Query("F_DATE", "<=2026-03-01"), (NameList{"Alpha"}));
  EXPECT_EQ(Query("F_DATE", ">2026-03-01"), (NameList{"beta", "Gamma"}));
  EXPECT_EQ(Query("F_DATE", "<>2026-03-01"), (NameList{"beta", "Gamma"}));
  EXPECT_EQ(Query("F_DATE", "2026-03-01 15:30:00"), (NameList{"Alpha"}));
  EXPECT_EQ(Query("F_DATE", "2026/03/01..2026/04/15"), (NameList{"Alpha", "beta"}));
}

TEST_F(SqliteDataSourceTest, DeletingTheLastRecordStandsOnTheOneBefore) {
  ASSERT_FALSE(ds_->MoveLast());
  ds_->DeleteRecord();
  EXPECT_EQ(ds_->RecordCount(), 2);
  EXPECT_EQ(ds_->AbsolutePosition(), 2);
  EXPECT_EQ(Value("F_NAME"), Variant("beta"));
  Connection other(path_);
  EXPECT_EQ(other.Number("SELECT row_count FROM tarn_row_count WHERE table_name = 'Deal'"), 2);
}

TEST_F(SqliteDataSourceTest, CopiedRecordGetsAKeyOfItsOwn) {
  Connection c(path_);
  c.Exec("CREATE TABLE Keyed (id INTEGER PRIMARY KEY, name TEXT)");
  c.Exec("INSERT INTO Keyed VALUES (10, 'ten'), (20, 'twenty')");
  auto keyed = SqliteDataSource::Create(path_, "Keyed", &dialogs_);
  keyed->Open();
  keyed->CopyRecord();
  EXPECT_TRUE(keyed->Fields(Variant("id")).Value(0).IsNull());
  EXPECT_EQ(keyed->UpdateRecord(), 0);
  EXPECT_EQ(keyed->Fields(Variant("id")).Value(0), Variant(int32_t{21}));
  EXPECT_EQ(keyed->Fields(Variant("name")).Value(0), Variant("ten"));
  EXPECT_EQ(keyed->AbsolutePosition(), 3);
  EXPECT_EQ(c.Number("SELECT count(*) FROM Keyed WHERE name = 'ten'"), 2);
}

TEST_F(SqliteDataSourceTest, MoveWithAPendingChangeStoresItFirstAndStaysWhenStoringFails) {
  ASSERT_FALSE(Set("F_NAME", "moved away"));
  EXPECT_FALSE(ds_->MoveNext());
  Connection other(path_);
  EXPECT_EQ(other.Text("SELECT F_NAME FROM Deal WHERE F_ID = 1"), "moved away");
  ASSERT_FALSE(Set("F_NAME", "conflict"));
  other.Exec("UPDATE Deal SET F_NAME = 'theirs' WHERE F_ID = 2");
  EXPECT_TRUE(ds_->MoveNext());
  EXPECT_EQ(ds_->AbsolutePosition(), 2);
  EXPECT_EQ(Value("F_NAME"), Variant("conflict"));
  EXPECT_TRUE(ds_->HasPendingRecord());
}

// --- Other users' changes ---------------------------------------------------------------------

// Counts the statements that the source's connection runs.
class StatementCounter {
 public:
  explicit StatementCounter(sqlite3* db) : db_(db) {
    sqlite3_trace_v2(db_, SQLITE_TRACE_STMT, &StatementCounter::Note, this);
  }
  ~StatementCounter() { sqlite3_trace_v2(db_, 0, nullptr, nullptr); }
  std::vector<std::string> statements;

 private:
  static int Note(unsigned, void* self, void* statement, void*) {
    static_cast<StatementCounter*>(self)->statements.push_back(
        sqlite3_sql(static_cast<sqlite3_stmt*>(statement)));
    return 0;
  }
  sqlite3* db_;
};

// Count and position belong to the record shown: they read nothing of their own and change with
// the next read of the set, as the record's values do.
TEST_F(SqliteDataSourceTest,
       RowsInsertedAndDeletedBeforeTheCurrentOneByAnotherUserShowAtTheNextRead) {
  ASSERT_FALSE(ds_->MoveLast());
  Connection other(path_);
  other.Exec("INSERT INTO Deal (rowid, F_NAME) VALUES (0, 'Zero'), (-1, 'Minus')");
  other.Exec("DELETE FROM Deal WHERE F_NAME = 'beta'");
  EXPECT_EQ(ds_->RecordCount(), 3);
  EXPECT_EQ(ds_->AbsolutePosition(), 3);
  EXPECT_EQ(Value("F_NAME"), Variant("Gamma"));
  EXPECT_FALSE(ds_->Refresh());
  EXPECT_EQ(ds_->RecordCount(), 4);
  EXPECT_EQ(ds_->AbsolutePosition(), 4);
  EXPECT_EQ(Value("F_NAME"), Variant("Gamma"));
  EXPECT_FALSE(ds_->MovePrevious());
  EXPECT_EQ(Value("F_NAME"), Variant("Alpha"));
  EXPECT_EQ(ds_->AbsolutePosition(), 3);
  EXPECT_FALSE(ds_->MoveFirst());
  EXPECT_EQ(Value("F_NAME"), Variant("Minus"));
  EXPECT_EQ(ds_->AbsolutePosition(), 1);
}

TEST_F(SqliteDataSourceTest,
       NextMoveAfterAnotherUsersInsertsAndDeletionBeforeTheCurrentRowIsRight) {
  ASSERT_FALSE(ds_->MoveNext());
  Connection other(path_);
  other.Exec("INSERT INTO Deal (rowid, F_NAME) VALUES (0, 'Zero'), (-1, 'Minus')");
  other.Exec("DELETE FROM Deal WHERE F_NAME = 'Alpha'");
  // The sheet reads nothing in between: the move itself must see the change.
  EXPECT_FALSE(ds_->MoveNext());
  EXPECT_EQ(Value("F_NAME"), Variant("Gamma"));
  EXPECT_EQ(ds_->AbsolutePosition(), 4);
  EXPECT_EQ(ds_->RecordCount(), 4);
  EXPECT_TRUE(ds_->MoveNext());
  EXPECT_EQ(ds_->AbsolutePosition(), 4);
}

TEST_F(SqliteDataSourceTest, NextMoveAfterAnotherUsersChangesAroundTheCurrentRowIsRight) {
  Connection other(path_);
  other.Exec("INSERT INTO Deal (rowid, F_NAME) VALUES (0, 'Zero')");
  other.Exec("DELETE FROM Deal WHERE F_NAME = 'Gamma'");
  EXPECT_FALSE(ds_->MoveNext());
  EXPECT_EQ(Value("F_NAME"), Variant("beta"));
  EXPECT_EQ(ds_->AbsolutePosition(), 3);
  EXPECT_EQ(ds_->RecordCount(), 3);
  EXPECT_TRUE(ds_->MoveNext());
  EXPECT_EQ(ds_->AbsolutePosition(), 3);
}

TEST_F(SqliteDataSourceTest, MoveToPositionBeyondTheKnownCountSeesAnotherUsersRows) {
  Connection other(path_);
  other.Exec("INSERT INTO Deal (F_NAME) VALUES ('Delta'), ('Epsilon')");
  EXPECT_FALSE(ds_->MoveToPosition(5));
  EXPECT_EQ(Value("F_NAME"), Variant("Epsilon"));
  EXPECT_EQ(ds_->AbsolutePosition(), 5);
  EXPECT_EQ(ds_->RecordCount(), 5);
  other.Exec("DELETE FROM Deal WHERE F_NAME IN ('Alpha', 'beta')");
  EXPECT_TRUE(ds_->MoveToPosition(4));
  EXPECT_EQ(ds_->AbsolutePosition(), 3);
  EXPECT_FALSE(ds_->MoveToPosition(1));
  EXPECT_EQ(Value("F_NAME"), Variant("Gamma"));
}

TEST_F(SqliteDataSourceTest, PositionNeverExceedsTheCountWhenAnotherUserDeletesRowsBefore) {
  ASSERT_FALSE(ds_->MoveLast());
  ASSERT_EQ(ds_->AbsolutePosition(), 3);
  Connection other(path_);
  other.Exec("DELETE FROM Deal WHERE F_NAME IN ('Alpha', 'beta')");
  EXPECT_EQ(ds_->RecordCount(), 3);
  EXPECT_EQ(ds_->AbsolutePosition(), 3);
  // The last record is the last: there is no next one, and the first one is this one.
  EXPECT_TRUE(ds_->MoveNext());
  EXPECT_EQ(ds_->RecordCount(), 1);
  EXPECT_EQ(ds_->AbsolutePosition(), 1);
  EXPECT_FALSE(ds_->MoveFirst());
  EXPECT_EQ(Value("F_NAME"), Variant("Gamma"));
}

TEST_F(SqliteDataSourceTest, CurrentRowDeletedByAnotherUserStillLeadsToItsNextNeighbour) {
  ASSERT_FALSE(ds_->MoveNext());
  Connection other(path_);
  other.Exec("DELETE FROM Deal WHERE F_NAME = 'beta'");
  EXPECT_EQ(ds_->RecordCount(), 3);
  EXPECT_EQ(ds_->AbsolutePosition(), 2);
  EXPECT_EQ(Value("F_NAME"), Variant("beta"));  // still shown until the user moves
  EXPECT_FALSE(ds_->MoveNext());
  EXPECT_EQ(Value("F_NAME"), Variant("Gamma"));
  EXPECT_EQ(ds_->AbsolutePosition(), 2);
  EXPECT_FALSE(ds_->MovePrevious());
  EXPECT_EQ(Value("F_NAME"), Variant("Alpha"));
  EXPECT_EQ(ds_->AbsolutePosition(), 1);
}

TEST_F(SqliteDataSourceTest, CurrentRowDeletedByAnotherUserStillLeadsToItsPreviousNeighbour) {
  ASSERT_FALSE(ds_->MoveNext());
  Connection other(path_);
  other.Exec("DELETE FROM Deal WHERE F_NAME = 'beta'");
  other.Exec("INSERT INTO Deal (rowid, F_NAME) VALUES (0, 'Zero')");
  EXPECT_FALSE(ds_->MovePrevious());
  EXPECT_EQ(Value("F_NAME"), Variant("Alpha"));
  EXPECT_EQ(ds_->AbsolutePosition(), 2);
  EXPECT_EQ(ds_->RecordCount(), 3);
}

TEST_F(SqliteDataSourceTest, LastRowDeletedByAnotherUserHasNoNextAndLeadsBackToTheNewLast) {
  ASSERT_FALSE(ds_->MoveLast());
  Connection other(path_);
  other.Exec("DELETE FROM Deal WHERE F_NAME = 'Gamma'");
  EXPECT_TRUE(ds_->MoveNext());
  EXPECT_EQ(ds_->RecordCount(), 2);
  EXPECT_LE(ds_->AbsolutePosition(), ds_->RecordCount());
  EXPECT_FALSE(ds_->MovePrevious());
  EXPECT_EQ(Value("F_NAME"), Variant("beta"));
  EXPECT_EQ(ds_->AbsolutePosition(), 2);
}

TEST_F(SqliteDataSourceTest, OnlyRowDeletedByAnotherUserLeavesAnEmptySet) {
  Connection other(path_);
  other.Exec("DELETE FROM Deal");
  EXPECT_TRUE(ds_->MoveNext());
  EXPECT_EQ(ds_->RecordCount(), 0);
  EXPECT_EQ(ds_->AbsolutePosition(), 0);
  EXPECT_TRUE(ds_->MoveFirst());
}

TEST_F(SqliteDataSourceTest, PendingNewRecordStaysAfterTheLastWhenAnotherUserInserts) {
  ds_->NewRecord(0);
  ASSERT_FALSE(Set("F_NAME", "Delta"));
  Connection other(path_);
  other.Exec("INSERT INTO Deal (F_NAME) VALUES ('Other')");
  EXPECT_EQ(ds_->RecordCount(), 4);
  EXPECT_EQ(ds_->AbsolutePosition(), 4);
  EXPECT_EQ(ds_->UpdateRecord(), 0);
  EXPECT_EQ(ds_->RecordCount(), 5);
  EXPECT_EQ(ds_->AbsolutePosition(), 5);
  EXPECT_EQ(Value("F_NAME"), Variant("Delta"));
  EXPECT_FALSE(ds_->MovePrevious());
  EXPECT_EQ(Value("F_NAME"), Variant("Other"));
}

TEST_F(SqliteDataSourceTest, UndoneNewRecordReturnsToThePlaceOfTheFormerRecordAfterOtherInserts) {
  ASSERT_FALSE(ds_->MoveNext());
  ds_->NewRecord(0);
  Connection other(path_);
  other.Exec("INSERT INTO Deal (rowid, F_NAME) VALUES (0, 'Zero')");
  ds_->UndoRecord();
  EXPECT_EQ(Value("F_NAME"), Variant("beta"));
  EXPECT_EQ(ds_->AbsolutePosition(), 3);
  EXPECT_EQ(ds_->RecordCount(), 4);
}

TEST_F(SqliteDataSourceTest, OtherUsersChangesAreSeenWithinAnExecutedQuery) {
  EXPECT_EQ(Query("F_REVENUE", ">0"), (NameList{"Alpha", "Gamma"}));
  ASSERT_EQ(ds_->AbsolutePosition(), 2);
  Connection other(path_);
  other.Exec("INSERT INTO Deal (rowid, F_NAME, F_REVENUE) VALUES (0, 'Rich', 5), (-1, 'Poor', -5)");
  EXPECT_EQ(ds_->RecordCount(), 2);
  EXPECT_EQ(ds_->AbsolutePosition(), 2);
  EXPECT_FALSE(ds_->MovePrevious());
  EXPECT_EQ(Value("F_NAME"), Variant("Alpha"));
  EXPECT_EQ(ds_->RecordCount(), 3);
  EXPECT_EQ(ds_->AbsolutePosition(), 2);
  EXPECT_FALSE(ds_->MoveFirst());
  EXPECT_EQ(Value("F_NAME"), Variant("Rich"));
}

TEST_F(SqliteDataSourceTest, MoveRunsNothingButItsReadWhileNobodyElseWrites) {
  ASSERT_FALSE(Set("F_NAME", "mine"));
  ASSERT_EQ(ds_->UpdateRecord(), 0);  // the source's own commit is no other user's
  StatementCounter counter(ds_->ConnectionForTest());
  ASSERT_FALSE(ds_->MoveNext());
  // The move reads one row; after the source's own commit it then asks once whether others
  // wrote too.
  ASSERT_EQ(counter.statements.size(), 2u);
  EXPECT_NE(counter.statements[0].find("rowid > ?"), std::string::npos) << counter.statements[0];
  EXPECT_EQ(counter.statements[1], "PRAGMA data_version");
  counter.statements.clear();
  EXPECT_FALSE(ds_->MoveNext());
  EXPECT_FALSE(ds_->MovePrevious());
  ASSERT_EQ(counter.statements.size(), 2u);
  EXPECT_NE(counter.statements[0].find("rowid > ?"), std::string::npos) << counter.statements[0];
  EXPECT_NE(counter.statements[1].find("rowid < ?"), std::string::npos) << counter.statements[1];
  // RecordCount and AbsolutePosition read nothing: they belong to the record last read.
  counter.statements.clear();
  EXPECT_EQ(ds_->AbsolutePosition(), 2);
  EXPECT_EQ(ds_->RecordCount(), 3);
  EXPECT_TRUE(counter.statements.empty());
  // After another user's commit the move's read sees it; count and position are read once, and
  // the target again with them.
  Connection other(path_);
  other.Exec("INSERT INTO Deal (rowid, F_NAME) VALUES (0, 'Zero')");
  counter.statements.clear();
  ASSERT_FALSE(ds_->MoveNext());
  ASSERT_EQ(counter.statements.size(), 5u);
  EXPECT_EQ(counter.statements[1], "PRAGMA data_version");
  EXPECT_EQ(ds_->AbsolutePosition(), 4);
  EXPECT_EQ(ds_->RecordCount(), 4);
  EXPECT_EQ(Value("F_NAME"), Variant("Gamma"));
}

// --- Views --------------------------------------------------------------------------------------

class SqliteViewTest : public ::testing::Test {
 protected:
  void SetUp() override {
    path_ = NewDatabasePath("view");
    MakeContractViewDatabase(path_);
  }
  std::unique_ptr<SqliteDataSource> Open(const std::string& name) {
    return OpenTestSource(path_, name, &dialogs_);
  }
  static std::vector<std::string> Column(SqliteDataSource& ds, const char* field) {
    std::vector<std::string> out;
    if (ds.RecordCount() > 0 && !ds.MoveFirst()) {
      do {
        out.push_back(ds.Fields(Variant(field)).Value(0).AsText());
      } while (!ds.MoveNext());
    }
    return out;
  }

  std::string path_;
  RecordingDialogs dialogs_;
};

TEST_F(SqliteViewTest, ViewIsOrderedByItsKeyThroughTheIndexOfItsTable) {
  Connection c(path_);
  c.Exec("INSERT INTO DealBase (F_ID, F_NAME) VALUES (0, 'Zero')");
  auto ds = Open("DealView");
  EXPECT_TRUE(ds->IsView());
  EXPECT_EQ(ds->KeyName(), "F_ID");
  EXPECT_EQ(ds->RecordCount(), 4);
  EXPECT_EQ(Column(*ds, "F_NAME"), (NameList{"Zero", "Alpha", "beta", "Gamma"}));
  const std::string plan = ds->NextMovePlanForTest();
  EXPECT_NE(plan.find("SEARCH DealBase USING INTEGER PRIMARY KEY"), std::string::npos) << plan;
  EXPECT_EQ(plan.find("TEMP B-TREE"), std::string::npos) << plan;
}

TEST_F(SqliteViewTest, ViewWithoutTriggersIsReadOnlyAndKeyedByItsFirstColumn) {
  Connection c(path_);
  c.Exec("CREATE VIEW Earning AS SELECT F_ID, F_NAME, F_REVENUE FROM DealBase WHERE F_REVENUE > 0");
  auto ds = Open("Earning");
  EXPECT_EQ(ds->KeyName(), "F_ID");
  EXPECT_TRUE(ds->ReadOnly());
  EXPECT_EQ(ds->RecordCount(), 2);
  for (const char* f : {"F_ID", "F_NAME", "F_REVENUE"}) {
    EXPECT_FALSE(ds->Fields(Variant(f)).Updatable()) << f;
  }
  EXPECT_EQ(Column(*ds, "F_NAME"), (NameList{"Alpha", "Gamma"}));
  EXPECT_TRUE(ds->SetFieldValue(Variant("F_NAME"), Variant("x")));
  ds->NewRecord(0);
  EXPECT_EQ(ds->EditStatus(), dsBrowse);
  ds->DeleteRecord();
  EXPECT_EQ(ds->RecordCount(), 2);
  ASSERT_EQ(dialogs_.boxes.size(), 3u);
  for (const std::string& box : dialogs_.boxes) {
    EXPECT_NE(box.find("read-only"), std::string::npos) << box;
  }
  EXPECT_EQ(c.Text("SELECT group_concat(F_NAME) FROM DealBase"), "Alpha,beta,Gamma");
}

TEST_F(SqliteViewTest, ViewWithAnUpdateTriggerOnlyRefusesNewRecordsAndDeletionsSayingWhy) {
  Connection c(path_);
  c.Exec(
      "CREATE VIEW Names AS SELECT F_ID, F_NAME, F_PROB FROM DealBase;"
      "CREATE TRIGGER Names_update INSTEAD OF UPDATE OF F_NAME ON Names BEGIN "
      "UPDATE DealBase SET F_NAME = NEW.F_NAME WHERE F_ID = OLD.F_ID; END;");
  auto ds = Open("Names");
  EXPECT_FALSE(ds->ReadOnly());
  EXPECT_TRUE(ds->Fields(Variant("F_NAME")).Updatable());
  EXPECT_FALSE(ds->Fields(Variant("F_PROB")).Updatable());
  EXPECT_FALSE(ds->Fields(Variant("F_ID")).Updatable());
  ds->NewRecord(0);
  EXPECT_EQ(ds->EditStatus(), dsBrowse);
  ds->CopyRecord();
  EXPECT_EQ(ds->EditStatus(), dsBrowse);
  ds->DeleteRecord();
  EXPECT_EQ(ds->RecordCount(), 3);
  EXPECT_TRUE(ds->SetFieldValue(Variant("F_PROB"), Variant("50%")));
  ASSERT_EQ(dialogs_.boxes.size(), 4u);
  EXPECT_NE(dialogs_.boxes[0].find("takes no new records"), std::string::npos) << dialogs_.boxes[0];
  EXPECT_NE(dialogs_.boxes[1].find("takes no new records"), std::string::npos);
  EXPECT_NE(dialogs_.boxes[2].find("deletes no records"), std::string::npos) << dialogs_.boxes[2];
  EXPECT_NE(dialogs_.boxes[3].find("F_PROB cannot be changed"), std::string::npos)
      << dialogs_.boxes[3];
  ASSERT_FALSE(ds->SetFieldValue(Variant("F_NAME"), Variant("Alpha renamed")));
  EXPECT_EQ(ds->UpdateRecord(), 0);
  EXPECT_EQ(c.Text("SELECT F_NAME FROM DealBase WHERE F_ID = 1"), "Alpha renamed");
}

TEST_F(SqliteViewTest, ViewWithATextKeyFromTheKeyTableIsOrderedAndFoundByIt) {
  Connection c(path_);
  c.Exec(
      "CREATE UNIQUE INDEX DealBase_name ON DealBase (F_NAME);"
      "CREATE VIEW ByName AS SELECT F_REVENUE, F_NAME, F_ID FROM DealBase;"
      "CREATE TRIGGER ByName_update INSTEAD OF UPDATE OF F_REVENUE, F_NAME ON ByName BEGIN "
      "UPDATE DealBase SET F_REVENUE = NEW.F_REVENUE, F_NAME = NEW.F_NAME "
      "WHERE F_ID = OLD.F_ID; END;"
      "INSERT INTO tarn_source_key VALUES ('ByName', 'F_NAME');");
  auto ds = Open("ByName");
  EXPECT_EQ(ds->KeyName(), "F_NAME");
  // Text keys order as SQLite compares them: capitals first.
  EXPECT_EQ(Column(*ds, "F_NAME"), (NameList{"Alpha", "Gamma", "beta"}));
  const std::string plan = ds->NextMovePlanForTest();
  EXPECT_NE(plan.find("USING INDEX DealBase_name"), std::string::npos) << plan;
  EXPECT_EQ(plan.find("TEMP B-TREE"), std::string::npos) << plan;
  ASSERT_FALSE(ds->MoveToPosition(2));
  EXPECT_EQ(ds->CurrentKeyForTest().text, "Gamma");
  // A changed key moves the record to its new place.
  ASSERT_FALSE(ds->SetFieldValue(Variant("F_NAME"), Variant("Aardvark")));
  EXPECT_EQ(ds->UpdateRecord(), 0);
  EXPECT_EQ(ds->AbsolutePosition(), 1);
  EXPECT_EQ(ds->CurrentKeyForTest().text, "Aardvark");
  EXPECT_FALSE(ds->MoveNext());
  EXPECT_EQ(ds->Fields(Variant("F_NAME")).Value(0), Variant("Alpha"));
  EXPECT_EQ(c.Text("SELECT F_NAME FROM DealBase WHERE F_ID = 3"), "Aardvark");
}

TEST_F(SqliteViewTest, StoresGoThroughTheTriggersOfTheView) {
  auto ds = Open("DealView");
  Connection c(path_);
  ASSERT_FALSE(ds->SetFieldValue(Variant("F_REVENUE"), Variant("$7")));
  EXPECT_EQ(ds->UpdateRecord(), 0);
  EXPECT_EQ(c.Number("SELECT F_REVENUE FROM DealBase WHERE F_ID = 1"), 7);
  ds->NewRecord(0);
  ASSERT_FALSE(ds->SetFieldValue(Variant("F_NAME"), Variant("Delta")));
  EXPECT_EQ(ds->UpdateRecord(), 0);
  EXPECT_EQ(ds->Fields(Variant("F_ID")).Value(0), Variant(int32_t{4}));
  EXPECT_EQ(ds->AbsolutePosition(), 4);
  EXPECT_EQ(ds->RecordCount(), 4);
  EXPECT_EQ(c.Number("SELECT F_ID FROM DealBase WHERE F_NAME = 'Delta'"), 4);
  ds->CopyRecord();
  EXPECT_EQ(ds->UpdateRecord(), 0);
  EXPECT_EQ(ds->Fields(Variant("F_ID")).Value(0), Variant(int32_t{5}));
  EXPECT_EQ(c.Number("SELECT count(*) FROM DealBase WHERE F_NAME = 'Delta'"), 2);
  ASSERT_FALSE(ds->MoveFirst());
  ds->DeleteRecord();
  EXPECT_EQ(c.Number("SELECT count(*) FROM DealBase WHERE F_ID = 1"), 0);
  EXPECT_EQ(ds->RecordCount(), 4);
  EXPECT_EQ(ds->Fields(Variant("F_NAME")).Value(0), Variant("beta"));
  EXPECT_TRUE(dialogs_.boxes.empty());
}

TEST_F(SqliteViewTest, ChangeOfARowThatAnotherUserChangedIsRefusedThroughTheView) {
  auto ds = Open("DealView");
  Connection other(path_);
  ASSERT_FALSE(ds->SetFieldValue(Variant("F_NAME"), Variant("mine")));
  other.Exec("UPDATE DealBase SET F_PROB = 0.5 WHERE F_ID = 1");
  EXPECT_NE(ds->UpdateRecord(), 0);
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_NE(dialogs_.boxes[0].find("changed by another user"), std::string::npos)
      << dialogs_.boxes[0];
  EXPECT_EQ(other.Text("SELECT F_NAME FROM DealBase WHERE F_ID = 1"), "Alpha");
  EXPECT_TRUE(ds->HasPendingRecord());
  EXPECT_FALSE(ds->Refresh());
  ASSERT_FALSE(ds->SetFieldValue(Variant("F_NAME"), Variant("mine")));
  EXPECT_EQ(ds->UpdateRecord(), 0);
  EXPECT_EQ(other.Text("SELECT F_NAME || '/' || F_PROB FROM DealBase WHERE F_ID = 1"), "mine/0.5");
}

TEST_F(SqliteViewTest, ChangeOrDeletionOfARowThatAnotherUserDeletedIsRefusedThroughTheView) {
  auto ds = Open("DealView");
  Connection other(path_);
  ASSERT_FALSE(ds->SetFieldValue(Variant("F_NAME"), Variant("mine")));
  other.Exec("DELETE FROM DealBase WHERE F_ID = 1");
  EXPECT_NE(ds->UpdateRecord(), 0);
  ds->UndoRecord();
  ds->DeleteRecord();
  ASSERT_EQ(dialogs_.boxes.size(), 2u);
  EXPECT_NE(dialogs_.boxes[0].find("deleted by another user"), std::string::npos)
      << dialogs_.boxes[0];
  EXPECT_NE(dialogs_.boxes[1].find("already deleted by another user"), std::string::npos)
      << dialogs_.boxes[1];
  EXPECT_EQ(other.Number("SELECT count(*) FROM DealBase"), 2);
}

TEST_F(SqliteViewTest, DeletionOfARowThatAnotherUserChangedIsRefusedThroughTheView) {
  auto ds = Open("DealView");
  Connection other(path_);
  other.Exec("UPDATE DealBase SET F_NAME = 'theirs' WHERE F_ID = 1");
  ds->DeleteRecord();
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_NE(dialogs_.boxes[0].find("changed by another user"), std::string::npos);
  EXPECT_EQ(other.Number("SELECT count(*) FROM DealBase"), 3);
  EXPECT_EQ(ds->RecordCount(), 3);
}

TEST_F(SqliteViewTest, ViewCountsOtherUsersRowsAtTheNextMove) {
  auto ds = Open("DealView");
  ASSERT_FALSE(ds->MoveNext());
  Connection other(path_);
  other.Exec("INSERT INTO DealBase (F_ID, F_NAME) VALUES (0, 'Zero'), (10, 'Ten')");
  EXPECT_FALSE(ds->MoveNext());
  EXPECT_EQ(ds->Fields(Variant("F_NAME")).Value(0), Variant("Gamma"));
  EXPECT_EQ(ds->AbsolutePosition(), 4);
  EXPECT_EQ(ds->RecordCount(), 5);
}

TEST_F(SqliteViewTest, NewRecordThatTheViewDoesNotShowIsStoredAndTheLastRecordIsCurrent) {
  Connection c(path_);
  c.Exec(
      "CREATE VIEW Earning AS SELECT F_ID, F_NAME, F_REVENUE FROM DealBase WHERE F_REVENUE > 0;"
      "CREATE TRIGGER Earning_insert INSTEAD OF INSERT ON Earning BEGIN "
      "INSERT INTO DealBase (F_NAME, F_REVENUE) VALUES (NEW.F_NAME, NEW.F_REVENUE); END;");
  auto ds = Open("Earning");
  ds->NewRecord(0);
  ASSERT_FALSE(ds->SetFieldValue(Variant("F_NAME"), Variant("Loss")));
  ASSERT_FALSE(ds->SetFieldValue(Variant("F_REVENUE"), Variant("-3")));
  EXPECT_EQ(ds->UpdateRecord(), 0);
  EXPECT_EQ(ds->EditStatus(), dsBrowse);
  EXPECT_EQ(c.Number("SELECT count(*) FROM DealBase WHERE F_NAME = 'Loss'"), 1);
  EXPECT_EQ(ds->RecordCount(), 2);
  EXPECT_EQ(ds->AbsolutePosition(), 2);
  EXPECT_EQ(ds->Fields(Variant("F_NAME")).Value(0), Variant("Gamma"));
  // Without an UPDATE trigger the columns take values in new records only.
  EXPECT_TRUE(ds->Fields(Variant("F_NAME")).Updatable());
  EXPECT_TRUE(ds->SetFieldValue(Variant("F_NAME"), Variant("Gamma renamed")));
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_NE(dialogs_.boxes[0].find("F_NAME of a stored record cannot be changed"),
            std::string::npos)
      << dialogs_.boxes[0];
  EXPECT_FALSE(ds->HasPendingRecord());
}

}  // namespace
}  // namespace tarnsheets
