// MemoryDataSource: the reference data source over rows held in memory.
//
// It honours the whole data-source contract (include/tarnsheets/data_source.h), so that a sheet
// cannot tell it from a database-backed source; engine tests, the script host and host developers'
// own tests use it. Build it from code (fields, AddRow, SetSymbol) or from a JSON fixture
// (memory_fixture.h), then Open it.
//
// Its status machine, signals and refusals are RecordSource's (datasources/common/record_source.h,
// which also says how it behaves where the contract leaves the choice open); this class holds
// the rows and answers the storage operations. Particular to it:
// - Values are typed as given: dates as Date, money and numbers as double, whole numbers as
//   int32, yes/no as numbers or bool. Status 1 answers each field's condition text instead.
// - Test settings force any status, count or permission, and make the next call of any
//   operation fail.
#ifndef TARNSHEETS_DATASOURCES_MEMORY_MEMORY_DATA_SOURCE_H_
#define TARNSHEETS_DATASOURCES_MEMORY_MEMORY_DATA_SOURCE_H_

#include <map>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "datasources/common/record_source.h"
#include "datasources/common/value_text.h"
#include "tarnsheets/data_source.h"
#include "tarnsheets/dialogs.h"

namespace tarnsheets {

// The definition of one column: name, data type, date and number kind, whether it may be written,
// and for a money field the field holding its currency code.
using MemoryFieldDefinition = RecordFieldDefinition;

// The title of the memory source's message boxes.
inline constexpr const char kMemorySourceTitle[] = "TarnDataSource";

class MemoryDataSource : public RecordSource {
 public:
  // Defines the columns. Fails with kErrInvalidProcedureCall, naming the field, when a name is
  // empty or repeated, a number is outside its table, or a reference names no field. The source
  // starts closed (status 99). `dialogs` may be nullptr: refusals are then silent.
  explicit MemoryDataSource(std::vector<MemoryFieldDefinition> fields, Dialogs* dialogs = nullptr);
  ~MemoryDataSource() override;

  // --- Building, while closed. Each fails with kErrInvalidProcedureCall once the source is open.
  // Appends a row of values in field order; fewer values leave the rest Empty, more fail.
  // The values are stored as given, without validation.
  void AddRow(std::vector<Variant> values, bool editable = true);
  // The symbol shown for a currency code (the value of a money field's reference field).
  void SetSymbol(const std::string& code, const std::string& symbol);
  void SetReadOnly(bool read_only) { read_only_ = read_only; }

  // SetDialogs(Dialogs*) and SetMessageTitle(std::string) set where and under which title
  // refusals are shown.
  using RecordSource::SetMessageTitle;

  // --- Life cycle: Open() and Close() of RecordSource.
  // Open opens the set: status 99 to 0 on the first record, then SysDataSourceInit and
  // EditStatusChange; it does nothing when already open. Close drops any pending record or
  // change, sets status 99 and raises EditStatusChange.

  // --- Test settings for edge cases.
  // Sets EditStatus to any number (nothing else changes) and raises EditStatusChange when it
  // differs from before.
  void ForceEditStatus(int32_t status);
  // RecordCount answers `count` from now on; a negative count returns to the real count. The
  // records and the position are unchanged; no signal.
  void ForceRecordCount(int32_t count);
  // ReadOnly answers `read_only`; no signal (the sheet reads it at its next display).
  void ForceReadOnly(bool read_only) { read_only_ = read_only; }
  // SelectRowsStatus answers `status`; raises ChangeSelectRows when it differs from before.
  void ForceSelectRowsStatus(int32_t status);
  // RowEditable of the current record (row 0) answers `editable`; no signal.
  void ForceRowEditable(bool editable);
  // RowEditable of row `row` (1-based) answers `editable`.
  void SetRowEditable(int32_t row, bool editable);
  // Every SetFieldValue on the field is refused (or again accepted). Unknown names fail (3265).
  void RefuseField(const std::string& name);
  void AcceptField(const std::string& name);
  // The next call of `operation` fails with Failure(number, description), once. Operations are
  // named as in the contract ("MoveNext", "SetFieldValue", "EditStatus", "Fields", ...; the
  // field operations "Value", "Symbol", "SetValue"; "Open" and "MoveToPosition"). An unknown
  // name fails with kErrInvalidProcedureCall.
  void FailNextCall(const std::string& operation, int32_t number, std::string description);

  // --- Inspection for tests and hosts.
  // Stored records in the whole table (not only those the last query let through).
  int32_t StoredRowCount() const;
  // HasPendingRecord() of RecordSource: true while a change of the current record or a new or
  // copied record is pending.
  // The symbols by currency code.
  const std::map<std::string, std::string>& Symbols() const { return symbols_; }

  // --- The contract: RecordSource's, but for the forced record count.
  int32_t RecordCount() const override;

 protected:
  // --- Storage over the rows in memory.
  void BeforeOperation(const char* operation) const override;
  int32_t StoredCount() const override { return static_cast<int32_t>(view_.size()); }
  bool HasStoredCurrent() const override;
  Variant StoredValue(int index) const override;
  bool StoredRowEditable(int32_t row) const override;
  bool RefusesField(int index) const override { return refused_fields_.count(index) != 0; }
  void ReadSetFromStart() override;
  void ReadSetAgain() override;
  bool FindMoveTarget(MoveTo to, bool again) override;
  void EnterMoveTarget() override { position_ = move_target_; }
  int32_t StoreChanges() override;
  int32_t StoreNewRecord() override;
  bool DeleteStoredCurrent() override;
  void ReturnFromNewRecord(int64_t key, int32_t position) override;
  void ReturnFromQuery(int64_t key, int32_t position) override;

 private:
  struct Row {
    std::vector<Variant> values;
    bool editable = true;
  };

  // Makes the record at `position` of the set current, or the nearest one.
  void ReturnTo(int32_t position);
  // The rows that the executed conditions let through, in table order.
  void Rebuild();

  // The data.
  std::vector<Row> table_;
  std::vector<int32_t> view_;  // table indices in the current set
  int32_t move_target_ = 0;    // the position found by FindMoveTarget

  // Test settings.
  std::optional<int32_t> forced_record_count_;
  std::set<int> refused_fields_;
  mutable std::unordered_map<std::string, std::pair<int32_t, std::string>> failures_;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_DATASOURCES_MEMORY_MEMORY_DATA_SOURCE_H_
