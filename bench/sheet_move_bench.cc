// The cost of a record move as a host sees it: the data source moves and the sheet shows the new
// record in all its editors. Opportunity on the headless toolkit over the in-memory source, at 10
// and 100,000 rows; the cost per move must not grow with the set.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "datasources/memory/memory_data_source.h"
#include "family/form_table.h"
#include "family/glyphs.h"
#include "tarnsheets/sheet.h"
#include "tarnsheets/titles.h"
#include "toolkits/headless/headless_toolkit.h"

namespace tarnsheets {
namespace {

struct Bench {
  explicit Bench(int64_t rows) {
    form = toolkit.CreateForm("Host");
    const FormTable& table = *FindEntityForm("Opportunity");
    sheet = Sheet::Create(toolkit, *form, table, "Opportunity1", FamilyGlyphPictures());
    std::vector<MemoryFieldDefinition> fields;
    for (const FieldRow& row : table.rows) {
      if (!row.has_editor()) continue;
      MemoryFieldDefinition field;
      field.name = std::string(row.tag);
      if (row.editor.kind == EditorKind::kCheck) field.data_type = kDataTypeYesNo;
      fields.push_back(field);
    }
    source = std::make_unique<MemoryDataSource>(fields, &toolkit);
    for (int64_t r = 0; r < rows; ++r) {
      std::vector<Variant> values;
      for (const MemoryFieldDefinition& field : fields) {
        if (field.data_type == kDataTypeYesNo) {
          values.emplace_back(static_cast<int32_t>(r % 2));
        } else {
          values.emplace_back(field.name + " " + std::to_string(r));
        }
      }
      source->AddRow(values);
    }
    for (const MemoryFieldDefinition& field : fields) sheet->SheetTitles().Add(field.name);
    sheet->SetSheetRecordset(source.get());
    source->Open();
  }
  ~Bench() { sheet->SetSheetRecordset(nullptr); }

  HeadlessToolkit toolkit;
  std::shared_ptr<Form> form;
  std::unique_ptr<Sheet> sheet;
  std::unique_ptr<MemoryDataSource> source;
};

void BM_SheetMoveNext(benchmark::State& state) {
  Bench bench(state.range(0));
  for (auto _ : state) {
    if (bench.source->AbsolutePosition() == bench.source->RecordCount()) {
      bench.source->MoveFirst();
    } else {
      bench.source->MoveNext();
    }
  }
}
BENCHMARK(BM_SheetMoveNext)->Arg(10)->Arg(100000);

}  // namespace
}  // namespace tarnsheets

BENCHMARK_MAIN();
