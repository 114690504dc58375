#include "data/sample_database.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <filesystem>
#include <set>

#include "datasources/common/data_source_contract_test.h"
#include "datasources/sqlite/sqlite_data_source.h"
#include "datasources/sqlite/sqlite_recordset.h"
#include "datasources/sqlite/sqlite_util.h"
#include "family/form_table.h"
#include "tarnsheets/titles.h"

namespace tarnsheets {
namespace {

class SampleDatabaseTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    dir_ = new std::filesystem::path(std::filesystem::path(::testing::TempDir()) /
                                     ("tarn_sample_" + std::to_string(::getpid())));
    std::filesystem::create_directories(*dir_);
    path_ = new std::string((*dir_ / "sample.db").string());
    SampleDatabaseOptions options;
    options.opportunities = 300;
    options.rows_per_table = 12;
    BuildSampleDatabase(*path_, options);
  }
  static void TearDownTestSuite() {
    std::error_code ignored;
    std::filesystem::remove_all(*dir_, ignored);
    delete dir_;
    delete path_;
  }
  // The first column of the first row of `sql` on the sample database, as text.
  static std::string Text(const std::string& sql, const std::string& path = *path_) {
    sqlite3* db = nullptr;
    sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READONLY, nullptr);
    std::string out;
    {
      Statement s(db, sql, "test");
      if (sqlite3_step(s.get()) == SQLITE_ROW && sqlite3_column_text(s.get(), 0) != nullptr) {
        out = reinterpret_cast<const char*>(sqlite3_column_text(s.get(), 0));
      }
    }
    sqlite3_close(db);
    return out;
  }

  static std::filesystem::path* dir_;
  static std::string* path_;
};
std::filesystem::path* SampleDatabaseTest::dir_ = nullptr;
std::string* SampleDatabaseTest::path_ = nullptr;

TEST_F(SampleDatabaseTest, EveryEntitySheetHasATableWithItsTagsAsColumns) {
  for (const FormTable* form : EntityForms()) {
    const std::string table(form->class_name);
    auto ds = SqliteDataSource::Create(*path_, table, nullptr);
    for (const FieldRow& row : form->rows) {
      if (row.tag.empty()) continue;
      EXPECT_NO_THROW(ds->Fields(Variant(std::string(row.tag)))) << table << "." << row.tag;
    }
    ds->Open();
    EXPECT_EQ(ds->RecordCount(), table == "Opportunity" ? 300 : 12) << table;
  }
  auto appointment = SqliteDataSource::Create(*path_, "Appointment", nullptr);
  for (const FieldRow& row : AppointmentForm().rows) {
    if (!row.tag.empty()) {
      EXPECT_NO_THROW(appointment->Fields(Variant(std::string(row.tag)))) << row.tag;
    }
  }
}

TEST_F(SampleDatabaseTest, MoneyShowsTheSymbolOfItsCurrency) {
  auto ds = SqliteDataSource::Create(*path_, "Opportunity", nullptr);
  ds->Open();
  DataSourceField& revenue = ds->Fields(Variant("FORE_REVENUE"));
  EXPECT_EQ(revenue.DataType(), kDataTypeMoney);
  EXPECT_EQ(ds->Fields(Variant("FORE_PROBABILITY")).NumberKind(), kNumberKindPercent);
  EXPECT_EQ(ds->Fields(Variant("F_OPPCLSDATE")).DataType(), kDataTypeDate);
  EXPECT_TRUE(ds->Fields(Variant("F_OPPCLSDATE")).Value(0).IsDate());
  EXPECT_EQ(revenue.ReferenceName(), "CURR_CODE");
  auto quote = SqliteDataSource::Create(*path_, "Expense", nullptr);
  quote->Open();
  std::set<std::string> symbols;
  do {
    for (int32_t n = 1; n <= quote->FieldCount(); ++n) {
      DataSourceField& f = quote->Fields(Variant(n));
      if (f.DataType() == kDataTypeMoney && !f.ReferenceName().empty()) symbols.insert(f.Symbol(0));
    }
  } while (!quote->MoveNext());
  EXPECT_FALSE(symbols.empty());
  for (const std::string& s : symbols) {
    EXPECT_TRUE(s == "$" || s == "¥" || s == "€" || s == "£" || s == "円") << s;
  }
}

TEST_F(SampleDatabaseTest, RowsAreInEnglishAndChinese) {
  EXPECT_NE(Text("SELECT count(*) FROM Opportunity WHERE F_OPPNAME GLOB '*商机*'"), "0");
  EXPECT_NE(Text("SELECT count(*) FROM Opportunity WHERE F_OPPNAME GLOB 'Opportunity*'"), "0");
  EXPECT_EQ(Text("SELECT count(*) FROM Currency"), "5");
  EXPECT_EQ(Text("SELECT Symbol FROM Currency WHERE CurrencyCode = 'CNY'"), "¥");
  EXPECT_NE(Text("SELECT count(*) FROM LookupValue WHERE ColumnName = 'SSTAGE_NAME'"), "0");
}

TEST_F(SampleDatabaseTest, TitlesOfEveryFormAreReadInBothLanguages) {
  struct NoBoxes : Dialogs {
    void MessageBox(const std::string& title, const std::string& text, MessageBoxStyle) override {
      ADD_FAILURE() << title << ": " << text;
    }
  } dialogs;
  auto rs = SqliteRecordset::Open(*path_, "SELECT * FROM SheetTitles");
  const FormTable& opportunity = OpportunityForm();
  ClsSheetsTitles titles(dialogs);
  ASSERT_FALSE(titles.ReadTitlesInformation(*rs, "Opportunity"));
  EXPECT_EQ(titles.CaptionName(), Variant("Opportunity"));
  EXPECT_EQ(titles.GetFieldDisplayName("FORE_REVENUE"), "Revenue");
  EXPECT_EQ(titles.GetFieldDisplayName("F_OPPNAME"),
            std::string(opportunity.rows[0].title.caption));
  for (const FormTable* form : EntityForms()) {
    rs->SetFilter(Variant("ColumnName='" + std::string(form->class_name) + "'"));
    EXPECT_GT(rs->RecordCount(), 0) << form->class_name;
  }
  EXPECT_EQ(Text("SELECT ChineseDisplayName FROM SheetTitles WHERE ColumnName = 'Opportunity' "
                 "AND Name = 'FORE_REVENUE'"),
            "收入");
  rs->SetFilter(Variant("ColumnName='Currency'"));
  EXPECT_EQ(rs->RecordCount(), 4);
}

TEST_F(SampleDatabaseTest, TheSameSeedGivesTheSameDatabase) {
  const std::string again = (*dir_ / "again.db").string();
  SampleDatabaseOptions options;
  options.opportunities = 300;
  options.rows_per_table = 12;
  BuildSampleDatabase(again, options);
  const std::string digest =
      "SELECT group_concat(F_OPPNAME || FORE_REVENUE || F_OPPCLSDATE, '|') FROM Opportunity";
  EXPECT_EQ(Text(digest, again), Text(digest));
  EXPECT_FALSE(Text(digest).empty());
}

TEST_F(SampleDatabaseTest, ExistingFileIsNotOverwritten) {
  try {
    BuildSampleDatabase(*path_);
    ADD_FAILURE() << "no failure";
  } catch (const Failure& f) {
    EXPECT_NE(f.Description().find("exists already"), std::string::npos);
  }
  EXPECT_EQ(Text("SELECT count(*) FROM Opportunity"), "300");
}

}  // namespace
}  // namespace tarnsheets
