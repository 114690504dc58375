// Cost of the SQLite data source on the Opportunity table of the sample database, at 10,000 and
// 1,000,000 rows, next to the raw floor: the same reads and writes through SQLite's C API with
// prepared statements on a connection with the same settings (WAL, synchronous NORMAL).
//
//   Open            create the source and open it: first record and exact RecordCount
//   MoveNext        10,000 moves from the first record (each reads one row through the index)
//   MoveLast        MoveFirst then MoveLast
//   FirstMoveToPosition  the first positional move after Refresh: it reads the position index
//                   (one pass over the keys) and then the record; index_bytes is its size
//   MoveToPosition  one positional move to the next of 64 positions drawn once, with a fixed
//                   seed, evenly over the table, the position index read (each steps over at
//                   most 63 keys of the table's index)
//   RawMoveToPosition  the same positions by "ORDER BY rowid LIMIT 1 OFFSET position - 1"
//   RawKeyPass      the floor of reading the position index: every rowid in order
//   FindByExactText a query by example on F_OPPNAME with the whole name of the middle record
//                   (NewQuery, SetFieldValue, ExecuteQuery: a COUNT and the first record)
//   RawFindByExactText  the same two reads with "F_OPPNAME = ?"
//   TextConditionScan / FoldGlobScan / RawEqualsScan  one COUNT over the table with the text
//                   condition as the source writes it, as tarn_fold(..) GLOB, and with "= ?"
//   CountAndPosition  RecordCount plus AbsolutePosition (each first asks SQLite whether another
//                   connection committed: one PRAGMA data_version)
//   StoreEdit       SetFieldValue of one text field plus UpdateRecord (one transaction)
//   Raw...          the floor of each
//
// The database is generated once per size and run into a temporary directory and removed at the
// end. The counter max_rss_kb is the process's peak resident set so far.
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "data/sample_database.h"
#include "datasources/sqlite/sqlite_data_source.h"
#include "datasources/sqlite/sqlite_util.h"

namespace tarnsheets {
namespace {

class Databases {
 public:
  ~Databases() {
    std::error_code ignored;
    if (!dir_.empty()) std::filesystem::remove_all(dir_, ignored);
  }
  // The sample database with `rows` opportunities, built on first use.
  const std::string& Path(int64_t rows) {
    auto it = paths_.find(rows);
    if (it != paths_.end()) return it->second;
    if (dir_.empty()) {
      dir_ = std::filesystem::temp_directory_path() /
             ("tarn_sqlite_bench_" + std::to_string(::getpid()));
      std::filesystem::create_directories(dir_);
    }
    const std::string path = (dir_ / ("opportunities_" + std::to_string(rows) + ".db")).string();
    SampleDatabaseOptions options;
    options.opportunities = rows;
    options.rows_per_table = 10;
    BuildSampleDatabase(path, options);
    return paths_.emplace(rows, path).first->second;
  }

 private:
  std::filesystem::path dir_;
  std::map<int64_t, std::string> paths_;
};

Databases& TheDatabases() {
  static Databases databases;
  return databases;
}

void ReportRss(benchmark::State& state) {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  state.counters["max_rss_kb"] = static_cast<double>(usage.ru_maxrss);
}

std::unique_ptr<SqliteDataSource> OpenSource(int64_t rows) {
  auto ds = SqliteDataSource::Create(TheDatabases().Path(rows), "Opportunity", nullptr);
  ds->Open();
  return ds;
}

// A raw connection with the source's settings and the statement of the same move.
struct Raw {
  explicit Raw(int64_t rows) {
    sqlite3_open_v2(TheDatabases().Path(rows).c_str(), &db, SQLITE_OPEN_READWRITE, nullptr);
    ExecuteSql(db, "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL", "bench");
    int columns = 0;
    std::string list = "rowid";
    {
      Statement info(db, "SELECT name FROM pragma_table_info('Opportunity')", "bench");
      while (sqlite3_step(info.get()) == SQLITE_ROW) {
        list += ", " +
                QuoteIdentifier(reinterpret_cast<const char*>(sqlite3_column_text(info.get(), 0)));
        ++columns;
      }
    }
    column_count = columns + 1;
    next = Statement(
        db, "SELECT " + list + " FROM Opportunity WHERE rowid > ? ORDER BY rowid LIMIT 1", "bench");
    first = Statement(db, "SELECT " + list + " FROM Opportunity ORDER BY rowid LIMIT 1", "bench");
    last =
        Statement(db, "SELECT " + list + " FROM Opportunity ORDER BY rowid DESC LIMIT 1", "bench");
    update = Statement(db, "UPDATE Opportunity SET F_OPPNAME = ? WHERE rowid = ?", "bench");
    at = Statement(db, "SELECT " + list + " FROM Opportunity ORDER BY rowid LIMIT 1 OFFSET ?",
                   "bench");
  }
  ~Raw() {
    next = Statement();
    first = Statement();
    last = Statement();
    update = Statement();
    at = Statement();
    sqlite3_close(db);
  }
  // Steps `s` and reads every column as the source does; returns the rowid (0 for none).
  int64_t Read(sqlite3_stmt* s) {
    int64_t rowid = 0;
    if (sqlite3_step(s) == SQLITE_ROW) {
      rowid = sqlite3_column_int64(s, 0);
      for (int c = 1; c < column_count; ++c) {
        SqlValue v = SqlValue::FromColumn(s, c);
        benchmark::DoNotOptimize(v);
      }
    }
    sqlite3_reset(s);
    return rowid;
  }
  sqlite3* db = nullptr;
  int column_count = 0;
  Statement next, first, last, update, at;
};

// 64 positions from 1 to `rows`, the same in every run.
std::vector<int32_t> RandomPositions(int64_t rows) {
  std::mt19937 generator(20260521);
  std::uniform_int_distribution<int32_t> position(1, static_cast<int32_t>(rows));
  std::vector<int32_t> out(64);
  for (int32_t& p : out) p = position(generator);
  return out;
}

void BM_Open(benchmark::State& state) {
  TheDatabases().Path(state.range(0));
  for (auto _ : state) {
    auto ds = OpenSource(state.range(0));
    benchmark::DoNotOptimize(ds->RecordCount());
    if (ds->RecordCount() != state.range(0)) state.SkipWithError("wrong RecordCount");
  }
  ReportRss(state);
}

void BM_RawOpen(benchmark::State& state) {
  const std::string& path = TheDatabases().Path(state.range(0));
  for (auto _ : state) {
    sqlite3* db = nullptr;
    sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE, nullptr);
    ExecuteSql(db, "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL", "bench");
    int64_t count = 0;
    {
      Statement counted(db, "SELECT row_count FROM tarn_row_count WHERE table_name = 'Opportunity'",
                        "bench");
      if (sqlite3_step(counted.get()) == SQLITE_ROW) count = sqlite3_column_int64(counted.get(), 0);
      Statement first(db, "SELECT * FROM Opportunity ORDER BY rowid LIMIT 1", "bench");
      if (sqlite3_step(first.get()) == SQLITE_ROW) {
        for (int c = 0; c < sqlite3_column_count(first.get()); ++c) {
          SqlValue v = SqlValue::FromColumn(first.get(), c);
          benchmark::DoNotOptimize(v);
        }
      }
    }
    sqlite3_close(db);
    if (count != state.range(0)) state.SkipWithError("wrong count");
  }
  ReportRss(state);
}

void BM_MoveNext(benchmark::State& state) {
  auto ds = OpenSource(state.range(0));
  const int64_t moves = std::min<int64_t>(10000, state.range(0) - 1);
  for (auto _ : state) {
    ds->MoveFirst();
    for (int64_t i = 0; i < moves; ++i) {
      if (ds->MoveNext()) state.SkipWithError("MoveNext failed");
    }
    benchmark::DoNotOptimize(ds->Fields(Variant("F_OPPNAME")).Value(0));
  }
  state.SetItemsProcessed(state.iterations() * moves);
  ReportRss(state);
}

void BM_RawMoveNext(benchmark::State& state) {
  Raw raw(state.range(0));
  const int64_t moves = std::min<int64_t>(10000, state.range(0) - 1);
  for (auto _ : state) {
    int64_t rowid = raw.Read(raw.first.get());
    for (int64_t i = 0; i < moves; ++i) {
      sqlite3_bind_int64(raw.next.get(), 1, rowid);
      rowid = raw.Read(raw.next.get());
    }
    benchmark::DoNotOptimize(rowid);
  }
  state.SetItemsProcessed(state.iterations() * moves);
  ReportRss(state);
}

void BM_MoveLast(benchmark::State& state) {
  auto ds = OpenSource(state.range(0));
  for (auto _ : state) {
    if (ds->MoveFirst() || ds->MoveLast()) state.SkipWithError("move failed");
  }
  // Checked once, outside the timing: AbsolutePosition has a row of its own below.
  if (ds->AbsolutePosition() != state.range(0)) state.SkipWithError("wrong position");
  ReportRss(state);
}

void BM_RawMoveLast(benchmark::State& state) {
  Raw raw(state.range(0));
  for (auto _ : state) {
    benchmark::DoNotOptimize(raw.Read(raw.first.get()));
    benchmark::DoNotOptimize(raw.Read(raw.last.get()));
  }
  ReportRss(state);
}

void BM_MoveToPosition(benchmark::State& state) {
  auto ds = OpenSource(state.range(0));
  const std::vector<int32_t> positions = RandomPositions(state.range(0));
  if (ds->MoveToPosition(1)) state.SkipWithError("MoveToPosition failed");  // reads the index
  size_t i = 0;
  for (auto _ : state) {
    if (ds->MoveToPosition(positions[i++ % positions.size()])) {
      state.SkipWithError("MoveToPosition failed");
    }
  }
  if (i > 0 && ds->AbsolutePosition() != positions[(i - 1) % positions.size()]) {
    state.SkipWithError("wrong position");
  }
  ReportRss(state);
}

void BM_FirstMoveToPosition(benchmark::State& state) {
  auto ds = OpenSource(state.range(0));
  const std::vector<int32_t> positions = RandomPositions(state.range(0));
  size_t i = 0;
  for (auto _ : state) {
    state.PauseTiming();
    ds->Refresh();  // drops the position index
    if (ds->PositionIndexSizeForTest() != 0) state.SkipWithError("index not dropped");
    state.ResumeTiming();
    if (ds->MoveToPosition(positions[i++ % positions.size()])) {
      state.SkipWithError("MoveToPosition failed");
    }
  }
  state.counters["index_bytes"] = static_cast<double>(ds->PositionIndexBytesForTest());
  ReportRss(state);
}

void BM_CountAndPosition(benchmark::State& state) {
  auto ds = OpenSource(state.range(0));
  ds->MoveLast();
  for (auto _ : state) {
    if (ds->RecordCount() != state.range(0) || ds->AbsolutePosition() != state.range(0)) {
      state.SkipWithError("wrong count or position");
    }
  }
  ReportRss(state);
}

// The floor of knowing that nobody else wrote: one look at data_version for each answer.
void BM_RawCountAndPosition(benchmark::State& state) {
  Raw raw(state.range(0));
  Statement version(raw.db, "PRAGMA data_version", "bench");
  int64_t sum = 0;
  for (auto _ : state) {
    for (int k = 0; k < 2; ++k) {
      if (sqlite3_step(version.get()) == SQLITE_ROW) sum += sqlite3_column_int64(version.get(), 0);
      sqlite3_reset(version.get());
    }
  }
  benchmark::DoNotOptimize(sum);
  ReportRss(state);
}

void BM_RawMoveToPosition(benchmark::State& state) {
  Raw raw(state.range(0));
  const std::vector<int32_t> positions = RandomPositions(state.range(0));
  size_t i = 0;
  for (auto _ : state) {
    sqlite3_bind_int64(raw.at.get(), 1, positions[i++ % positions.size()] - 1);
    if (raw.Read(raw.at.get()) == 0) state.SkipWithError("no row");
  }
  ReportRss(state);
}

void BM_RawKeyPass(benchmark::State& state) {
  Raw raw(state.range(0));
  Statement keys(raw.db, "SELECT rowid FROM Opportunity ORDER BY rowid", "bench");
  for (auto _ : state) {
    int64_t n = 0;
    std::vector<int64_t> kept;
    while (sqlite3_step(keys.get()) == SQLITE_ROW) {
      if (n++ % SqliteDataSource::kPositionIndexStep == 0) {
        kept.push_back(sqlite3_column_int64(keys.get(), 0));
      }
    }
    sqlite3_reset(keys.get());
    if (n != state.range(0)) state.SkipWithError("wrong count");
    benchmark::DoNotOptimize(kept);
  }
  ReportRss(state);
}

// The name of the middle record (an ASCII one: every third name is Chinese).
std::string MiddleName(Raw& raw, int64_t rows) {
  Statement s(raw.db, "SELECT F_OPPNAME FROM Opportunity WHERE rowid = ?", "bench");
  int64_t rowid = rows / 2;
  while (rowid % 3 == 0) ++rowid;  // row rowid - 1 of the generator
  sqlite3_bind_int64(s.get(), 1, rowid);
  if (sqlite3_step(s.get()) != SQLITE_ROW) return "";
  return reinterpret_cast<const char*>(sqlite3_column_text(s.get(), 0));
}

void BM_FindByExactText(benchmark::State& state) {
  std::string name;
  {
    Raw raw(state.range(0));
    name = MiddleName(raw, state.range(0));
  }
  auto ds = OpenSource(state.range(0));
  for (auto _ : state) {
    if (ds->NewQuery() || ds->SetFieldValue(Variant("F_OPPNAME"), Variant(name)) ||
        ds->ExecuteQuery()) {
      state.SkipWithError("query refused");
    }
    if (ds->RecordCount() != 1 || ds->Fields(Variant("F_OPPNAME")).Value(0) != Variant(name)) {
      state.SkipWithError("wrong record");
    }
  }
  ReportRss(state);
}

void BM_RawFindByExactText(benchmark::State& state) {
  Raw raw(state.range(0));
  const std::string name = MiddleName(raw, state.range(0));
  std::string list;
  for (int c = 0; c < sqlite3_column_count(raw.first.get()); ++c) {
    list += std::string(list.empty() ? "" : ", ") +
            QuoteIdentifier(sqlite3_column_name(raw.first.get(), c));
  }
  Statement count(raw.db, "SELECT count(*) FROM Opportunity WHERE F_OPPNAME = ?", "bench");
  Statement first(raw.db,
                  "SELECT " + list + " FROM Opportunity WHERE F_OPPNAME = ? ORDER BY rowid LIMIT 1",
                  "bench");
  for (auto _ : state) {
    sqlite3_bind_text(count.get(), 1, name.c_str(), -1, SQLITE_TRANSIENT);
    int64_t n = 0;
    if (sqlite3_step(count.get()) == SQLITE_ROW) n = sqlite3_column_int64(count.get(), 0);
    sqlite3_reset(count.get());
    sqlite3_bind_text(first.get(), 1, name.c_str(), -1, SQLITE_TRANSIENT);
    if (n != 1 || raw.Read(first.get()) == 0) state.SkipWithError("wrong record");
  }
  ReportRss(state);
}

// One COUNT over the table on the source's connection (where tarn_fold and tarn_text_matches are
// registered) with `condition`, whose parameter is `operand`.
void CountScan(benchmark::State& state, const std::string& condition, bool as_pattern) {
  std::string name;
  {
    Raw raw(state.range(0));
    name = MiddleName(raw, state.range(0));
  }
  auto ds = OpenSource(state.range(0));
  std::string operand = name;
  if (as_pattern) {
    // The folded prefix pattern: the middle name is ASCII without brackets or wildcards.
    for (char& c : operand) {
      if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    }
    operand += '*';
  }
  Statement count(ds->ConnectionForTest(), "SELECT count(*) FROM Opportunity WHERE " + condition,
                  "bench");
  for (auto _ : state) {
    sqlite3_bind_text(count.get(), 1, operand.c_str(), -1, SQLITE_TRANSIENT);
    int64_t n = 0;
    if (sqlite3_step(count.get()) == SQLITE_ROW) n = sqlite3_column_int64(count.get(), 0);
    sqlite3_reset(count.get());
    if (n != 1) state.SkipWithError("wrong count");
  }
  ReportRss(state);
}

void BM_TextConditionScan(benchmark::State& state) {
  CountScan(state, "tarn_text_matches(F_OPPNAME, ?)", false);
}
void BM_FoldGlobScan(benchmark::State& state) {
  CountScan(state, "tarn_fold(F_OPPNAME) GLOB ?", true);
}
void BM_RawEqualsScan(benchmark::State& state) { CountScan(state, "F_OPPNAME = ?", false); }

void BM_StoreEdit(benchmark::State& state) {
  auto ds = OpenSource(state.range(0));
  ds->MoveLast();
  int64_t n = 0;
  for (auto _ : state) {
    const std::string text = "Edited " + std::to_string(n++);
    if (ds->SetFieldValue(Variant("F_OPPNAME"), Variant(text))) state.SkipWithError("refused");
    if (ds->UpdateRecord() != 0) state.SkipWithError("not stored");
  }
  ReportRss(state);
}

void BM_RawStoreEdit(benchmark::State& state) {
  Raw raw(state.range(0));
  const int64_t rowid = raw.Read(raw.last.get());
  int64_t n = 0;
  for (auto _ : state) {
    const std::string text = "Edited " + std::to_string(n++);
    ExecuteSql(raw.db, "BEGIN IMMEDIATE", "bench");
    sqlite3_bind_text(raw.update.get(), 1, text.c_str(), -1, SQLITE_TRANSIENT);
    sqlite3_bind_int64(raw.update.get(), 2, rowid);
    if (sqlite3_step(raw.update.get()) != SQLITE_DONE) state.SkipWithError("update failed");
    sqlite3_reset(raw.update.get());
    ExecuteSql(raw.db, "COMMIT", "bench");
  }
  ReportRss(state);
}

BENCHMARK(BM_Open)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RawOpen)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MoveNext)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RawMoveNext)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MoveLast)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RawMoveLast)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_FirstMoveToPosition)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_MoveToPosition)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RawMoveToPosition)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RawKeyPass)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_FindByExactText)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RawFindByExactText)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TextConditionScan)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FoldGlobScan)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RawEqualsScan)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CountAndPosition)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RawCountAndPosition)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_StoreEdit)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RawStoreEdit)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tarnsheets

BENCHMARK_MAIN();
