// RecordSource: the status machine that every data source of ours runs, whatever holds its rows.
//
// A source over rows in memory and a source over a database table must raise the same signals in
// the same order and refuse the same things with the same texts, so that a sheet cannot tell them
// apart. This class holds what they share: EditStatus and the position, the pending change or
// new record, the query conditions, the Allow* permissions, the field objects and the refusal
// message boxes. It decides every step of the contract and raises its signals; the concrete
// source answers the storage operations below (read the current record, find a move's target,
// store, delete, count, read the set again).
//
// How it behaves where the contract leaves the choice open:
// - Fields finds names exactly, with case; another case fails like any unknown name (3265).
// - In status 0 an accepted SetFieldValue makes a pending change of the current record;
//   UpdateRecord stores it, UndoRecord discards it, and a move, a new or copied record, or a
//   query step stores it first. Refresh and DeleteRecord drop it.
// - A new or copied record (status 4, 5) is pending at the position after the last record: it
//   counts in RecordCount and AbsolutePosition points at it. Moves are refused while it is
//   pending; DeleteRecord throws it away whatever AllowDelete says.
// - ExecuteQuery ends with SysDataSourceRefresh, then EditStatusChange; outside status 1 it runs
//   the last query again. Moves, in a set of records, raise MoveRecordBefore/SysMoveRecordAfter
//   also when the target is the current record (MoveFirst on the first).
// - MoveToPosition, a move of ours for hosts (a scroll bar, a "go to record n" box), behaves as
//   MoveNext does: the same signals, the same refusals, the same result.
// - A source whose rows other users can change sees their changes at its next read of the set
//   (SeeOtherUsersChanges below).
// - Refusals show a plain message box with the reason (through the Dialogs given, if any) and
//   change nothing.
#ifndef TARNSHEETS_DATASOURCES_COMMON_RECORD_SOURCE_H_
#define TARNSHEETS_DATASOURCES_COMMON_RECORD_SOURCE_H_

#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "datasources/common/value_text.h"
#include "tarnsheets/data_source.h"
#include "tarnsheets/dialogs.h"

namespace tarnsheets {

// What a field object answers about its column. The concrete source checks its definitions
// (names given once, numbers inside their tables, references that name a field) before it hands
// them over.
struct RecordFieldDefinition {
  std::string name;
  int32_t data_type = kDataTypeText;
  int32_t date_kind = kDateKindDateTime;
  int32_t number_kind = kNumberKindWhole;
  bool updatable = true;
  std::string reference;  // money fields: the field holding the currency code
};

// The title of our sources' message boxes.
inline constexpr const char kRecordSourceTitle[] = "TarnDataSource";

class RecordSource : public DataSource {
 public:
  ~RecordSource() override;

  void SetDialogs(Dialogs* dialogs) { dialogs_ = dialogs; }

  // --- Life cycle.
  // Opens the set: status 99 to 0 on the first record, then SysDataSourceInit and
  // EditStatusChange. Does nothing when already open.
  void Open();
  // Closes: any pending record or change is dropped, status 99, EditStatusChange.
  void Close();

  // True while a change of the current record or a new or copied record is pending.
  bool HasPendingRecord() const { return pending_ != Pending::kNone; }

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
  // Makes the record at 1-based `position` of the set current, raising the signals of a move
  // (MoveRecordBefore, then, unless cancelled, SysMoveRecordAfter). Returns false when it moved.
  // Returns true, as MoveNext does, and changes nothing when it cannot: the set is closed or in
  // query mode, a new or copied record is pending (said in a message box), `position` is outside
  // 1 to RecordCount (silently), a listener cancelled, or a pending change could not be stored.
  bool MoveToPosition(int32_t position);
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

 protected:
  enum class Pending { kNone, kChanges, kNewRow };
  // kPosition: the 1-based position in move_position_.
  enum class MoveTo { kFirst, kPrevious, kNext, kLast, kPosition };

  explicit RecordSource(Dialogs* dialogs);

  // Takes the fields' definitions and makes their field objects. Called once, before Open.
  // REQUIRES: the names are unique and every reference names one of the fields.
  void DefineFields(std::vector<RecordFieldDefinition> definitions);

  // --- Storage operations: what the concrete source answers.
  // Called first by every operation of the contract, by the field objects' Value, Symbol and
  // SetValue, and by Open, with the operation's name; may throw to make the operation fail.
  virtual void BeforeOperation(const char* /*operation*/) const {}
  // Brings the count and the position up to date with what other users stored since the set was
  // read. Called by RecordCount and AbsolutePosition, which should not read for it (a sheet asks
  // them many times for each record it shows), and first by every move (`before_move`, with
  // move_position_ set), before anything is decided; a source whose FindMoveTarget reads the
  // database anyway may leave the check of a move to it. It must not change the current record
  // nor raise a signal. May throw.
  virtual void SeeOtherUsersChanges(bool /*before_move*/) {}
  // Records in the set, without a pending new record.
  virtual int32_t StoredCount() const = 0;
  // A stored record is current (none while a new or copied record is pending).
  virtual bool HasStoredCurrent() const = 0;
  // The current stored record's value of field `index`. REQUIRES: HasStoredCurrent().
  virtual Variant StoredValue(int index) const = 0;
  // Whether stored row `row` (1-based, any number) may be changed.
  virtual bool StoredRowEditable(int32_t row) const = 0;
  // What identifies the current stored record for a later return to it (0 when none).
  virtual int64_t CurrentKey() const { return 0; }
  // Whether field `index` of the current record goes into a copy of it.
  virtual bool CopiesField(int /*index*/) const { return true; }
  // A SetFieldValue of field `index` is refused whatever its value.
  virtual bool RefusesField(int /*index*/) const { return false; }
  // Why field `index`, which is Updatable, takes no value in the record being edited: a new or
  // copied one (`new_record`) or a stored one; empty when it takes values.
  virtual std::string FieldRefusal(int /*index*/, bool /*new_record*/) const {
    return std::string();
  }
  // Why the storage takes no new (or copied) records, or deletes none; empty when it does. The
  // text is shown as the refusal of NewRecord, CopyRecord or DeleteRecord.
  virtual std::string NewRecordRefusal() const { return std::string(); }
  virtual std::string DeletionRefusal() const { return std::string(); }
  // Reads the set from its start with the conditions of the last query (all empty at Open) and
  // makes its first record current.
  virtual void ReadSetFromStart() = 0;
  // Reads the set again with the same conditions, keeping the current record where it can.
  virtual void ReadSetAgain() = 0;
  // Empties what the source holds of the set when it closes.
  virtual void ForgetSet() {}
  // Finds the target of a move and remembers it for EnterMoveTarget; false when there is none.
  // Called only in an open set of at least one record, outside query mode, with no new record
  // pending. `again` is true for the second call, after MoveRecordBefore: a listener may have
  // changed the set meanwhile.
  virtual bool FindMoveTarget(MoveTo to, bool again) = 0;
  // Makes the target found last current.
  virtual void EnterMoveTarget() = 0;
  // Stores the pending change of the current stored record (pending_values_, changed_).
  // Returns 0, or after saying why a non-zero number; the change then stays pending.
  virtual int32_t StoreChanges() = 0;
  // Stores the pending new or copied record and makes it current with its position. Returns 0,
  // or after saying why a non-zero number; the record then stays pending.
  virtual int32_t StoreNewRecord() = 0;
  // Deletes the current stored record and makes its neighbour current. False, after saying
  // why, when it could not; nothing has changed then.
  virtual bool DeleteStoredCurrent() = 0;
  // After a pending new record is dropped: makes the record of `key` at `position` current again
  // (the current one when the new record began), or the nearest that still is.
  virtual void ReturnFromNewRecord(int64_t key, int32_t position) = 0;
  // After CancelQuery: the same for the record that was current when the query began.
  virtual void ReturnFromQuery(int64_t key, int32_t position) = 0;

  // --- Helpers for the concrete source.
  bool IsClosed() const { return status_ == dsClosed; }
  bool IsQuery() const { return status_ == dsQuery; }
  int FieldTotal() const { return static_cast<int>(definitions_.size()); }
  // The 0-based index of the field named or numbered by `key`; throws as Fields does.
  int IndexOf(const Variant& key) const;
  FieldShape ShapeOf(int index) const;
  std::vector<std::string> AllSymbols() const;
  // Shows `text` in a plain message box.
  void Say(const std::string& text) const;
  // Says `text` and returns true (the failure result).
  bool Refuse(const std::string& text);
  void SetMessageTitle(std::string title) { title_ = std::move(title); }
  // RowEditable without BeforeOperation.
  bool RowEditableAt(int32_t row) const;

  // State; every signal is raised only after these hold their new values. Changed by this class
  // and by the concrete source's storage operations.
  int32_t status_ = dsClosed;
  int32_t position_ = 0;       // 1-based; StoredCount() + 1 for a pending new row
  int32_t move_position_ = 0;  // the target of MoveTo::kPosition while FindMoveTarget runs
  Pending pending_ = Pending::kNone;
  std::vector<Variant> pending_values_;
  std::vector<bool> changed_;  // fields changed by the pending change
  bool pending_editable_ = true;
  std::vector<std::string> conditions_;       // being entered in status 1
  std::vector<std::string> last_conditions_;  // of the last executed query

  // Permissions and settings.
  bool allow_add_new_ = true;
  bool allow_copy_ = true;
  bool allow_delete_ = true;
  bool allow_modify_ = true;
  bool read_only_ = false;
  int32_t select_rows_status_ = 0;
  std::map<std::string, std::string> symbols_;  // currency code to symbol

 private:
  class Field;
  friend class Field;

  Variant CurrentValue(int index) const;
  std::string SymbolOf(int index) const;
  std::string Quoted(const Variant& v) const;
  // Makes a pending change of the current record from its stored values.
  void BeginChanges();
  // `position` is the target of MoveTo::kPosition, unused otherwise.
  bool Move(const char* operation, MoveTo to, int32_t position = 0);
  // The move is possible at all in what holds now.
  bool CanMove(MoveTo to, int32_t position) const;
  // SeeOtherUsersChanges for the const readers.
  void CatchUp() const;
  // Stores what is pending without any signal. Returns 0 on success (and sets *status_changed
  // when a new record ends status 4 or 5); otherwise the storage's non-zero number, with the
  // record still pending.
  int32_t StorePending(bool* status_changed);
  // Drops what is pending. Returns true when the status number changed.
  bool DropPending();
  // Begins a new (copy false) or copied record of `values`.
  void BeginNewRecord(std::vector<Variant> values, bool copy);
  bool EnterQuery(bool refine);

  // Definitions; fixed by DefineFields.
  std::vector<RecordFieldDefinition> definitions_;
  std::vector<int> reference_index_;  // -1: none
  std::vector<std::unique_ptr<Field>> fields_;
  std::unordered_map<std::string, int> index_by_name_;
  std::vector<std::vector<int>> money_fields_by_reference_;

  // Where UndoRecord of a new row and CancelQuery go back to.
  int64_t return_key_ = 0;
  int32_t return_position_ = 0;
  int64_t query_return_key_ = 0;
  int32_t query_return_position_ = 0;

  Dialogs* dialogs_ = nullptr;
  std::string title_ = kRecordSourceTitle;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_DATASOURCES_COMMON_RECORD_SOURCE_H_
