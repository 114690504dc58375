#include "datasources/sqlite/sqlite_data_source.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "datasources/memory/data_source_contract_test.h"
#include "datasources/sqlite/sqlite_test_support.h"

namespace tarnsheets {
namespace {

using sqlite_test::Connection;
using sqlite_test::MakeContractDatabase;
using sqlite_test::NewDatabasePath;

INSTANTIATE_TEST_SUITE_P(Sqlite, DataSourceContractTest,
                         ::testing::Values(DataSourceContractFactory{
                             "Sqlite",
                             [](Dialogs* dialogs) {
                               const std::string path = NewDatabasePath("contract");
                               MakeContractDatabase(path);
                               auto s = SqliteDataSource::Create(path, "Deal", dialogs);
                               SqliteDataSource* raw = s.get();
                               return ContractSource{std::move(s), [raw] { raw->Open(); }};
                             }}),
                         [](const ::testing::TestParamInfo<DataSourceContractFactory>& info) {
                           return info.param.name;
                         });

class SqliteDataSourceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    path_ = NewDatabasePath("source");
    MakeContractDatabase(path_);
    SqliteSourceOptions options;
    options.busy_timeout_ms = 50;
    ds_ = SqliteDataSource::Create(path_, "Deal", &dialogs_, options);
    ds_->Open();
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

}  // namespace
}  // namespace tarnsheets
