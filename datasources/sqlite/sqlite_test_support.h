// Test helpers: a per-process directory of temporary database files, a direct connection for the
// "other user", and the standard contract set as a SQLite table and as a writable view.
#ifndef TARNSHEETS_DATASOURCES_SQLITE_SQLITE_TEST_SUPPORT_H_
#define TARNSHEETS_DATASOURCES_SQLITE_SQLITE_TEST_SUPPORT_H_

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <atomic>
#include <filesystem>
#include <memory>
#include <string>

#include <unistd.h>

#include "datasources/sqlite/sqlite_data_source.h"
#include "datasources/sqlite/sqlite_util.h"

namespace tarnsheets {
namespace sqlite_test {

// Opens `name` (a table or view) of the file at `path`, opened, with a short busy timeout so
// that tests of locked files do not wait.
inline std::unique_ptr<SqliteDataSource> OpenTestSource(const std::string& path,
                                                        const std::string& name, Dialogs* dialogs) {
  SqliteSourceOptions options;
  options.busy_timeout_ms = 50;
  auto ds = SqliteDataSource::Create(path, name, dialogs, options);
  ds->Open();
  return ds;
}

// A new file name in the process's temporary directory (removed when the tests end).
inline std::string NewDatabasePath(const std::string& stem) {
  static const std::filesystem::path dir = [] {
    std::filesystem::path d =
        std::filesystem::path(::testing::TempDir()) / ("tarn_sqlite_" + std::to_string(::getpid()));
    std::filesystem::create_directories(d);
    struct Remover : ::testing::Environment {
      explicit Remover(std::filesystem::path p) : path(std::move(p)) {}
      void TearDown() override {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
      }
      std::filesystem::path path;
    };
    ::testing::AddGlobalTestEnvironment(new Remover(d));
    return d;
  }();
  static std::atomic<int> counter{0};
  return (dir / (stem + "_" + std::to_string(counter++) + ".db")).string();
}

// A connection of another user; closed on destruction.
class Connection {
 public:
  explicit Connection(const std::string& path,
                      int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_URI) {
    if (sqlite3_open_v2(path.c_str(), &db_, flags, nullptr) != SQLITE_OK) {
      ADD_FAILURE() << "cannot open " << path << ": " << sqlite3_errmsg(db_);
    }
    sqlite3_busy_timeout(db_, 50);
  }
  ~Connection() { sqlite3_close(db_); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // Runs `sql`; returns SQLite's result code (SQLITE_OK on success).
  int Run(const std::string& sql) {
    return sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr);
  }
  void Exec(const std::string& sql) {
    ASSERT_EQ(Run(sql), SQLITE_OK) << sql << ": " << sqlite3_errmsg(db_);
  }
  // The first column of the first row as text ("NULL" for Null, "" for no row).
  std::string Text(const std::string& sql) {
    Statement s(db_, sql, "test query");
    if (sqlite3_step(s.get()) != SQLITE_ROW) return "";
    if (sqlite3_column_type(s.get(), 0) == SQLITE_NULL) return "NULL";
    return reinterpret_cast<const char*>(sqlite3_column_text(s.get(), 0));
  }
  int64_t Number(const std::string& sql) {
    Statement s(db_, sql, "test query");
    if (sqlite3_step(s.get()) != SQLITE_ROW) return -1;
    return sqlite3_column_int64(s.get(), 0);
  }
  sqlite3* get() const { return db_; }

 private:
  sqlite3* db_ = nullptr;
};

// The standard set of the contract suite as the table "Deal", with its metadata and currencies.
inline void MakeContractDatabase(const std::string& path) {
  Connection c(path);
  c.Exec(
      "CREATE TABLE Deal (F_NAME TEXT, F_REVENUE MONEY, CURR_CODE TEXT, F_DATE DATE, "
      "F_PROB REAL, F_FLAG BOOLEAN, F_ID INTEGER);"
      "CREATE TABLE tarn_field_meta (table_name TEXT NOT NULL, column_name TEXT NOT NULL, "
      "data_type INTEGER, date_kind INTEGER, number_kind INTEGER, updatable INTEGER, "
      "reference_name TEXT, PRIMARY KEY (table_name, column_name));"
      "INSERT INTO tarn_field_meta VALUES ('Deal', 'F_REVENUE', 4, NULL, NULL, NULL, "
      "'CURR_CODE'), ('Deal', 'F_PROB', 5, NULL, 2, NULL, NULL), "
      "('Deal', 'F_ID', 6, NULL, NULL, 0, NULL);"
      "CREATE TABLE Currency (CurrencyCode TEXT PRIMARY KEY, Symbol TEXT);"
      "INSERT INTO Currency VALUES ('USD', '$'), ('CNY', '¥');"
      "INSERT INTO Deal VALUES ('Alpha', 100, 'USD', '2026-03-01 00:00:00', 0.45, 1, 1),"
      "('beta', -50.5, 'CNY', '2026-04-15 00:00:00', 0.1, 0, 2),"
      "('Gamma', 2000, 'USD', '2026-05-20 00:00:00', 0.9, NULL, 3);");
}

// The same set behind the view "DealView" over the table "DealBase", whose F_ID is an INTEGER
// PRIMARY KEY: the view is keyed by F_ID through tarn_source_key and writable through INSTEAD OF
// triggers (F_ID itself is not written; the base table assigns it).
inline void MakeContractViewDatabase(const std::string& path) {
  Connection c(path);
  c.Exec(
      "CREATE TABLE DealBase (F_NAME TEXT, F_REVENUE MONEY, CURR_CODE TEXT, F_DATE DATE, "
      "F_PROB REAL, F_FLAG BOOLEAN, F_ID INTEGER PRIMARY KEY);"
      "CREATE VIEW DealView AS SELECT F_NAME, F_REVENUE, CURR_CODE, F_DATE, F_PROB, F_FLAG, F_ID "
      "FROM DealBase;"
      "CREATE TRIGGER DealView_insert INSTEAD OF INSERT ON DealView BEGIN "
      "INSERT INTO DealBase (F_NAME, F_REVENUE, CURR_CODE, F_DATE, F_PROB, F_FLAG) VALUES "
      "(NEW.F_NAME, NEW.F_REVENUE, NEW.CURR_CODE, NEW.F_DATE, NEW.F_PROB, NEW.F_FLAG); END;"
      "CREATE TRIGGER DealView_update INSTEAD OF UPDATE OF F_NAME, F_REVENUE, CURR_CODE, F_DATE, "
      "F_PROB, F_FLAG ON DealView BEGIN UPDATE DealBase SET F_NAME = NEW.F_NAME, F_REVENUE = "
      "NEW.F_REVENUE, CURR_CODE = NEW.CURR_CODE, F_DATE = NEW.F_DATE, F_PROB = NEW.F_PROB, "
      "F_FLAG = NEW.F_FLAG WHERE F_ID = OLD.F_ID; END;"
      "CREATE TRIGGER DealView_delete INSTEAD OF DELETE ON DealView BEGIN "
      "DELETE FROM DealBase WHERE F_ID = OLD.F_ID; END;"
      "CREATE TABLE tarn_source_key (table_name TEXT PRIMARY KEY, column_name TEXT NOT NULL);"
      "INSERT INTO tarn_source_key VALUES ('DealView', 'F_ID');"
      "CREATE TABLE tarn_field_meta (table_name TEXT NOT NULL, column_name TEXT NOT NULL, "
      "data_type INTEGER, date_kind INTEGER, number_kind INTEGER, updatable INTEGER, "
      "reference_name TEXT, PRIMARY KEY (table_name, column_name));"
      "INSERT INTO tarn_field_meta VALUES ('DealView', 'F_REVENUE', 4, NULL, NULL, NULL, "
      "'CURR_CODE'), ('DealView', 'F_PROB', 5, NULL, 2, NULL, NULL), "
      "('DealView', 'F_ID', 6, NULL, NULL, 0, NULL);"
      "CREATE TABLE Currency (CurrencyCode TEXT PRIMARY KEY, Symbol TEXT);"
      "INSERT INTO Currency VALUES ('USD', '$'), ('CNY', '¥');"
      "INSERT INTO DealBase VALUES ('Alpha', 100, 'USD', '2026-03-01 00:00:00', 0.45, 1, 1),"
      "('beta', -50.5, 'CNY', '2026-04-15 00:00:00', 0.1, 0, 2),"
      "('Gamma', 2000, 'USD', '2026-05-20 00:00:00', 0.9, NULL, 3);");
}

}  // namespace sqlite_test
}  // namespace tarnsheets

#endif  // TARNSHEETS_DATASOURCES_SQLITE_SQLITE_TEST_SUPPORT_H_
