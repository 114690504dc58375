// MemoryDataSource: the reference data source over rows held in memory.
//
// It honours the whole data-source contract (include/tarnsheets/data_source.h), so that a sheet
// cannot tell it from a database-backed source; engine tests, the script host and host developers'
// own tests use it. Build it from code (fields, AddRow, SetSymbol) or from a JSON fixture
// (memory_fixture.h), then Open it.
//
// How it behaves where the contract leaves the choice open:
// - Fields finds names exactly, with case; another case fails like any unknown name (3265).
// - Values are typed: dates as Date, money and numbers as double, whole numbers as int32, yes/no
//   as numbers or bool. Status 1 answers each field's condition text instead.
// - In status 0 an accepted SetFieldValue makes a pending change of the current record;
// UpdateRecord
//   stores it, UndoRecord discards it, and a move, a new or copied record, or a query step stores
//   it first. Refresh and DeleteRecord drop it.
// - A new or copied record (status 4, 5) is pending at the position after the last record: it
//   counts in RecordCount and AbsolutePosition points at it. Moves are refused while it is
//   pending ("store or cancel it first"); DeleteRecord throws it away whatever AllowDelete says.
// - ExecuteQuery ends with SysDataSourceRefresh, then EditStatusChange; outside status 1 it runs
//   the last query again. Moves, in a set of records, raise MoveRecordBefore/SysMoveRecordAfter
//   also when the target is the current record (MoveFirst on the first).
// - Refusals show a plain message box with the reason (through the Dialogs given, if any) and
//   change nothing.
#ifndef TARNSHEETS_DATASOURCES_MEMORY_MEMORY_DATA_SOURCE_H_
#define TARNSHEETS_DATASOURCES_MEMORY_MEMORY_DATA_SOURCE_H_

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "datasources/memory/value_text.h"
#include "tarnsheets/data_source.h"
#include "tarnsheets/dialogs.h"

namespace tarnsheets {

// The definition of one column.
struct MemoryFieldDefinition {
  std::string name;
  int32_t data_type = kDataTypeText;
  int32_t date_kind = kDateKindDateTime;
  int32_t number_kind = kNumberKindWhole;
  bool updatable = true;
  std::string reference;  // money fields: the field holding the currency code
};

// The title of the memory source's message boxes.
inline constexpr const char kMemorySourceTitle[] = "TarnDataSource";

class MemoryDataSource : public DataSource {
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

  void SetDialogs(Dialogs* dialogs) { dialogs_ = dialogs; }
  void SetMessageTitle(std::string title) { title_ = std::move(title); }

  // --- Life cycle.
  // Opens the set: status 99 to 0 on the first record, then SysDataSourceInit and
  // EditStatusChange. Does nothing when already open.
  void Open();
  // Closes: any pending record or change is dropped, status 99, EditStatusChange.
  void Close();

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
  // field operations "Value", "Symbol", "SetValue"; and "Open"). An unknown name fails with
  // kErrInvalidProcedureCall.
  void FailNextCall(const std::string& operation, int32_t number, std::string description);

  // --- Inspection for tests and hosts.
  // Stored records in the whole table (not only those the last query let through).
  int32_t StoredRowCount() const;
  // True while a change of the current record or a new or copied record is pending.
  bool HasPendingRecord() const { return pending_ != Pending::kNone; }
  // The symbols by currency code.
  const std::map<std::string, std::string>& Symbols() const { return symbols_; }

  // --- The contract.
  bool AllowAddNew() const override;
  void SetAllowAddNew(bool allow) override;
  bool AllowCopy() const override;
  void SetAllowCopy(bool allow) override;
  bool AllowDelete() const override;
  void SetAllowDelete(bool allow) override;
  bool AllowModify() const override;
  void SetAllowModify(bool allow) override;
  bool ReadOnly() const override;
  int32_t SelectRowsStatus() const override;
  int32_t EditStatus() const override;
  int32_t RecordCount() const override;
  int32_t AbsolutePosition() const override;
  bool Refresh() override;
  DataSourceField& Fields(const Variant& key) override;
  int32_t FieldCount() const override;
  bool MoveFirst() override;
  bool MovePrevious() override;
  bool MoveNext() override;
  bool MoveLast() override;
  bool RowEditable(int32_t row) const override;
  int32_t UpdateRecord() override;
  bool SetFieldValue(const Variant& field, const Variant& value, int32_t flag = 0) override;
  void DeleteRecord() override;
  void CopyRecord() override;
  void NewRecord(int32_t flag = 0, const Variant& optional = Variant()) override;
  void UndoRecord() override;
  bool NewQuery() override;
  bool RefineQuery() override;
  bool ExecuteQuery() override;
  void CancelQuery() override;
  void ParseFieldValue(const Variant& field, Variant& value, int32_t flag = 0) override;

 private:
  class Field;
  friend class Field;

  struct Row {
    std::vector<Variant> values;
    bool editable = true;
  };
  enum class Pending { kNone, kChanges, kNewRow };
  enum class MoveTo { kFirst, kPrevious, kNext, kLast };

  bool IsClosed() const { return status_ == dsClosed; }
  bool IsQuery() const { return status_ == dsQuery; }
  // A stored record is current (not a pending new one).
  bool HasStoredCurrent() const;
  const Variant& CurrentValue(int index) const;
  std::vector<Variant> CurrentValues() const;
  std::string SymbolOf(int index) const;
  std::vector<std::string> AllSymbols() const;
  FieldShape ShapeOf(int index) const;
  // The 0-based index of the field named or numbered by `key`; throws as Fields does.
  int IndexOf(const Variant& key) const;
  bool Move(const char* operation, MoveTo to);
  // RowEditable without the test failures of the operation.
  bool RowEditableAt(int32_t row) const;
  // Stores a pending change or new record without any signal. Returns true when the status
  // number changed.
  bool StorePendingSilently();
  // Drops what is pending. Returns true when the status number changed.
  bool DropPending();
  bool EnterQuery(bool refine);
  // The rows that the executed conditions let through, in table order.
  void Rebuild();
  bool Refuse(const std::string& text);
  void Say(const std::string& text) const;
  void CheckFail(const char* operation) const;
  std::string Quoted(const Variant& v) const;

  // Definitions; fixed at construction.
  std::vector<MemoryFieldDefinition> defs_;
  std::vector<std::unique_ptr<Field>> fields_;
  std::unordered_map<std::string, int> index_by_name_;
  std::vector<std::vector<int>> money_fields_by_reference_;

  // The data.
  std::vector<Row> table_;
  std::vector<int32_t> view_;  // table indices in the current set
  std::map<std::string, std::string> symbols_;

  // State; every signal is raised only after these hold their new values.
  int32_t status_ = dsClosed;
  int32_t position_ = 0;  // 1-based in view_, view_.size() + 1 for a pending new row
  Pending pending_ = Pending::kNone;
  std::vector<Variant> pending_values_;
  bool pending_editable_ = true;
  int32_t return_position_ = 0;               // where UndoRecord of a new row goes back to
  int32_t query_return_position_ = 0;         // where CancelQuery goes back to
  std::vector<std::string> conditions_;       // being entered in status 1
  std::vector<std::string> last_conditions_;  // of the last executed query

  // Permissions and settings.
  bool allow_add_new_ = true;
  bool allow_copy_ = true;
  bool allow_delete_ = true;
  bool allow_modify_ = true;
  bool read_only_ = false;
  int32_t select_rows_status_ = 0;
  std::optional<int32_t> forced_record_count_;
  std::set<int> refused_fields_;
  mutable std::unordered_map<std::string, std::pair<int32_t, std::string>> failures_;

  Dialogs* dialogs_ = nullptr;
  std::string title_ = kMemorySourceTitle;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_DATASOURCES_MEMORY_MEMORY_DATA_SOURCE_H_
