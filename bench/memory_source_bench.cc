// Cost of the operations a sheet runs on every keystroke and record step, on the in-memory
// data source: a move (with its two signals), reading a value, and SetFieldValue (parse, store,
// ValueChange). Each runs at 10 and at 100,000 rows; the cost must not grow with the rows.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "datasources/memory/memory_data_source.h"

namespace tarnsheets {
namespace {

// A listener that reads what a sheet reads on each signal.
class ReadingListener : public DataSourceEvents {
 public:
  explicit ReadingListener(DataSource* ds) : ds_(ds) {}
  void SysMoveRecordAfter() override { Read(); }
  void ValueChange(const Variant&, int32_t n) override {
    benchmark::DoNotOptimize(ds_->Fields(Variant(n)).Value(0));
  }

 private:
  void Read() {
    benchmark::DoNotOptimize(ds_->AbsolutePosition());
    benchmark::DoNotOptimize(ds_->Fields(Variant("F_NAME")).Value(0));
  }
  DataSource* ds_;
};

std::unique_ptr<MemoryDataSource> MakeSource(int64_t rows) {
  auto ds = std::make_unique<MemoryDataSource>(std::vector<MemoryFieldDefinition>{
      {"F_NAME", kDataTypeText, 0, 0, true, ""},
      {"F_REVENUE", kDataTypeMoney, 0, 0, true, "CURR_CODE"},
      {"CURR_CODE", kDataTypeText, 0, 0, true, ""},
      {"F_DATE", kDataTypeDate, kDateKindDate, 0, true, ""},
  });
  for (int64_t r = 0; r < rows; ++r) {
    ds->AddRow({Variant("Row " + std::to_string(r)), Variant(static_cast<double>(r)),
                Variant("USD"), Variant(Date::FromParts(2026, 1, 1))});
  }
  ds->SetSymbol("USD", "$");
  ds->Open();
  return ds;
}

void BM_MoveNextPrevious(benchmark::State& state) {
  auto ds = MakeSource(state.range(0));
  ReadingListener listener(ds.get());
  ds->AddListener(&listener);
  ds->MoveLast();
  ds->MovePrevious();
  bool forward = true;
  for (auto _ : state) {
    benchmark::DoNotOptimize(forward ? ds->MoveNext() : ds->MovePrevious());
    forward = !forward;
  }
}
BENCHMARK(BM_MoveNextPrevious)->Arg(10)->Arg(100000);

void BM_MoveFirstLast(benchmark::State& state) {
  auto ds = MakeSource(state.range(0));
  bool first = true;
  for (auto _ : state) {
    benchmark::DoNotOptimize(first ? ds->MoveFirst() : ds->MoveLast());
    first = !first;
  }
}
BENCHMARK(BM_MoveFirstLast)->Arg(10)->Arg(100000);

void BM_ReadValue(benchmark::State& state) {
  auto ds = MakeSource(state.range(0));
  ds->MoveLast();
  for (auto _ : state) {
    benchmark::DoNotOptimize(ds->Fields(Variant("F_REVENUE")).Value(0));
    benchmark::DoNotOptimize(ds->Fields(Variant("F_REVENUE")).Symbol(0));
  }
}
BENCHMARK(BM_ReadValue)->Arg(10)->Arg(100000);

void BM_SetFieldValueText(benchmark::State& state) {
  auto ds = MakeSource(state.range(0));
  ReadingListener listener(ds.get());
  ds->AddListener(&listener);
  ds->MoveLast();
  const Variant field("F_NAME");
  const Variant a("First"), b("Second");
  bool flip = false;
  for (auto _ : state) {
    benchmark::DoNotOptimize(ds->SetFieldValue(field, flip ? a : b));
    flip = !flip;
  }
}
BENCHMARK(BM_SetFieldValueText)->Arg(10)->Arg(100000);

void BM_SetFieldValueMoney(benchmark::State& state) {
  auto ds = MakeSource(state.range(0));
  ReadingListener listener(ds.get());
  ds->AddListener(&listener);
  ds->MoveLast();
  const Variant field("F_REVENUE");
  const Variant a("-$1,234.50"), b("2,000.00-");
  bool flip = false;
  for (auto _ : state) {
    benchmark::DoNotOptimize(ds->SetFieldValue(field, flip ? a : b));
    flip = !flip;
  }
}
BENCHMARK(BM_SetFieldValueMoney)->Arg(10)->Arg(100000);

}  // namespace
}  // namespace tarnsheets

BENCHMARK_MAIN();
