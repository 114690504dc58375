// The data-source contract: everything a sheet shows, changes and moves through.
//
// A sheet never touches a database. The host hands it one DataSource; the source owns the set of
// records, the current position and EditStatus, and tells every listener what happened through
// DataSourceEvents. The sheet keeps no copy of any of it and reads it afresh at every step.
//
// Conventions of this interface:
// - Booleans are C++ bool; true stands for the 16-bit True (-1) of the system.
// - A bool result of an operation that can fail is true for failure and false for success
//   (the moves, the query steps, Refresh, SetFieldValue). UpdateRecord returns 0 on success.
// - Results that no caller looks at are void here.
// - The flags "that every caller passes as 0" are kept as int32_t parameters defaulting to 0;
//   implementations ignore them.
// - Signals are raised synchronously, on the caller's thread, to every listener in the order in
//   which they were added. When a signal is raised the source is consistent: EditStatus,
//   AbsolutePosition, RecordCount and every value already hold what the signal announces.
//   Listeners may call back into the source from inside any signal (read, SetFieldValue, move,
//   add or remove listeners); a listener removed during a signal is not called again, one added
//   during a signal first hears the next one. A listener must not destroy the source from inside
//   one of its signals.
#ifndef TARNSHEETS_DATA_SOURCE_H_
#define TARNSHEETS_DATA_SOURCE_H_

#include <cstdint>
#include <string>
#include <vector>

#include "tarnsheets/failure.h"
#include "tarnsheets/variant.h"

namespace tarnsheets {

// EditStatus numbers (DataSourceStatus). The numbers are what is compared: 2 and 3 behave as
// dsBrowse in every sheet decision, and any other number is tolerated.
enum DataSourceStatus : int32_t {
  dsBrowse = 0,      // a record set is open and nothing is pending
  dsQuery = 1,       // query entry: the values are query conditions, not a record
  dsNewRecord = 4,   // a new record is being entered and is not stored yet
  dsCopyRecord = 5,  // a copy of a record is being entered and is not stored yet
  dsClosed = 99,     // nothing is open: no command, move or edit is possible
};

// DataType of a field: how a sheet shows its value.
inline constexpr int32_t kDataTypeText = 0;         // the value as text
inline constexpr int32_t kDataTypeYesNo = 1;        // check editor; 0 is off, anything else on
inline constexpr int32_t kDataTypeDate = 2;         // date and/or time, layout by DateKind
inline constexpr int32_t kDataTypePlainText = 3;    // text, treated exactly as kDataTypeText
inline constexpr int32_t kDataTypeMoney = 4;        // Symbol joined with the amount, "#,##0.00"
inline constexpr int32_t kDataTypeNumber = 5;       // layout by NumberKind
inline constexpr int32_t kDataTypeWholeNumber = 6;  // number without decimals, "#,##0"

// DateKind of a date field: its default layout.
inline constexpr int32_t kDateKindDateTime = 0;    // "yyyy-mm-dd hh:nn:ss"
inline constexpr int32_t kDateKindDateMinute = 1;  // "yyyy-mm-dd hh:nn"
inline constexpr int32_t kDateKindDate = 2;        // "yyyy-mm-dd"
inline constexpr int32_t kDateKindTime = 3;        // "hh:nn:ss"
inline constexpr int32_t kDateKindMinute = 4;      // "hh:nn"

// NumberKind of a number field: its default layout.
inline constexpr int32_t kNumberKindWhole = 0;    // "#,##0"
inline constexpr int32_t kNumberKindFixed2 = 1;   // "#,##0.00"
inline constexpr int32_t kNumberKindPercent = 2;  // "#0%"

// The default layout of a DateKind or NumberKind; the empty text for a number outside the table.
constexpr const char* DateKindLayout(int32_t date_kind) {
  switch (date_kind) {
    case kDateKindDateTime:
      return "yyyy-mm-dd hh:nn:ss";
    case kDateKindDateMinute:
      return "yyyy-mm-dd hh:nn";
    case kDateKindDate:
      return "yyyy-mm-dd";
    case kDateKindTime:
      return "hh:nn:ss";
    case kDateKindMinute:
      return "hh:nn";
    default:
      return "";
  }
}
constexpr const char* NumberKindLayout(int32_t number_kind) {
  switch (number_kind) {
    case kNumberKindWhole:
      return "#,##0";
    case kNumberKindFixed2:
      return "#,##0.00";
    case kNumberKindPercent:
      return "#0%";
    default:
      return "";
  }
}

// The failure of Fields for a key that names no field: an unknown name (names compare exactly,
// with case), a number outside 1..FieldCount. Keys of another type (Empty, Null, Boolean, date)
// fail with kErrTypeMismatch. Both come from failure.h.
// "Item cannot be found in the collection corresponding to the requested name or ordinal.",
// followed by the key as a literal: ` (key "F_NAME")` or ` (key 12)`.
Failure ItemNotFound(const Variant& key);

// One column of the source, and the current record's value in it. Owned by its DataSource; a
// reference stays valid as long as the source and until its set of fields is read anew (a
// SysDataSourceInit or SysDataSourceRefresh may announce new field objects).
class DataSourceField {
 public:
  virtual ~DataSourceField() = default;

  // 1. The column's name, the same text by which Fields finds it. The reference stays valid as
  // long as this field object does.
  virtual const std::string& FieldName() const = 0;
  // 2. kDataType... (a source may answer other numbers; a sheet then shows nothing for it).
  virtual int32_t DataType() const = 0;
  // 3. kDateKind...
  virtual int32_t DateKind() const = 0;
  // 4. kNumberKind...
  virtual int32_t NumberKind() const = 0;
  // 5. True when the field may be written at all.
  virtual bool Updatable() const = 0;
  // 6. For a money field, the name of the field that holds its currency; otherwise "".
  virtual std::string ReferenceName() const = 0;
  // 7. Stores `value` in the current record without validation and without any signal. In
  // query mode it sets the field's condition the same way.
  virtual void SetValue(const Variant& value, int32_t flag = 0) = 0;
  // 8. The current value; Null or Empty for no value. In query mode the field's condition as
  // text, Empty when it has none.
  virtual Variant Value(int32_t flag = 0) const = 0;
  // 9. For a money field, the currency symbol to stand before the amount; otherwise "".
  virtual std::string Symbol(int32_t flag = 0) const = 0;
};

// The signals of a DataSource. Every method has an empty default, so a listener overrides only
// what it needs. On the Before signals, leaving `cancel` true stops the operation: status,
// position and set stay as they were and no After signal follows. Every listener of one Before
// signal sees the same `cancel`, as the previous listeners left it.
class DataSourceEvents {
 public:
  virtual ~DataSourceEvents() = default;

  // The source has opened and knows its fields.
  virtual void SysDataSourceInit() {}
  // Refresh, or any other re-reading of the set (ExecuteQuery), has finished.
  virtual void SysDataSourceRefresh() {}
  // EditStatus changed.
  virtual void EditStatusChange() {}
  // SelectRowsStatus changed.
  virtual void ChangeSelectRows() {}
  // Before the current record changes.
  virtual void MoveRecordBefore(bool& cancel) { (void)cancel; }
  // After the current record changed.
  virtual void SysMoveRecordAfter() {}
  virtual void NewQueryBefore(bool& cancel) { (void)cancel; }
  virtual void SysNewQueryAfter() {}
  virtual void RefineQueryBefore(bool& cancel) { (void)cancel; }
  virtual void SysRefineQueryAfter() {}
  virtual void ExecuteQueryBefore(bool& cancel) { (void)cancel; }
  virtual void CancelQueryBefore(bool& cancel) { (void)cancel; }
  virtual void SysCancelQueryAfter() {}
  virtual void SysNewRecordAfter() {}
  virtual void SysCopyRecordAfter() {}
  virtual void SysDeleteRecordAfter() {}
  virtual void SysUndoRecordAfter() {}
  virtual void SysUpdateRecordAfter() {}
  // A field's value changed; `field_number` is its 1-based number. `unused` carries nothing a
  // sheet reads.
  virtual void ValueChange(const Variant& unused, int32_t field_number) {
    (void)unused;
    (void)field_number;
  }
  // The currency symbol of the money field `field_number` changed.
  virtual void SymbolChange(const Variant& unused, int32_t field_number) {
    (void)unused;
    (void)field_number;
  }
  // A query condition changed. `text` carries nothing a sheet reads (the memory source passes
  // the field's name).
  virtual void ValueQueryChange(const std::string& text) { (void)text; }
};

// The data source. Abstract: implementations are created by their own factories (for example
// datasources/memory). The operations stand in the order of their places in the interface.
//
// Failures: an operation may throw Failure; the sheet passes such a failure on as its own rules
// say. What the user must know about a refusal (why a value or a record was not taken) the
// source shows itself, in a plain message box; the sheet never does.
class DataSource {
 public:
  DataSource() = default;
  DataSource(const DataSource&) = delete;
  DataSource& operator=(const DataSource&) = delete;
  virtual ~DataSource();

  // 1. Whether NewRecord is permitted.
  virtual bool AllowAddNew() const = 0;
  virtual void SetAllowAddNew(bool allow) = 0;
  // 2. Whether CopyRecord is permitted.
  virtual bool AllowCopy() const = 0;
  virtual void SetAllowCopy(bool allow) = 0;
  // 3. Whether DeleteRecord is permitted on a stored record. Throwing away a pending new or
  // copied record through DeleteRecord is always permitted.
  virtual bool AllowDelete() const = 0;
  virtual void SetAllowDelete(bool allow) = 0;
  // 4. Whether values of stored records may be changed.
  virtual bool AllowModify() const = 0;
  virtual void SetAllowModify(bool allow) = 0;
  // 5. True when the whole source is read-only, whatever else is set.
  virtual bool ReadOnly() const = 0;
  // 6. 1 while a selection of several rows is in force elsewhere; any other value when not.
  virtual int32_t SelectRowsStatus() const = 0;
  // 7. DataSourceStatus; already holds the new value whenever a signal is raised.
  virtual int32_t EditStatus() const = 0;
  // 8. Number of records, 0 when empty. A pending new or copied record counts.
  virtual int32_t RecordCount() const = 0;
  // 9. 1-based position of the current record; 0 when there is none.
  virtual int32_t AbsolutePosition() const = 0;
  // 10. Reads the set again and signals SysDataSourceRefresh. True on failure.
  virtual bool Refresh() = 0;
  // 11. The field named by `key` (its name as text, compared exactly, with case: "f_name" does
  // not find F_NAME) or numbered by it (1 to FieldCount; any numeric Variant with a whole value).
  // An unknown name or a number out of range throws ItemNotFound(key) (3265); a key of another
  // type (Empty, Null, Boolean, date) throws kErrTypeMismatch. A number and the name of the
  // same field give the same object.
  virtual DataSourceField& Fields(const Variant& key) = 0;
  // 12. Number of fields.
  virtual int32_t FieldCount() const = 0;
  // 13-16. Moves, each announced by MoveRecordBefore and SysMoveRecordAfter. True on failure
  // (nothing to move to, cancelled, not possible in this status).
  virtual bool MoveFirst() = 0;
  virtual bool MovePrevious() = 0;
  virtual bool MoveNext() = 0;
  virtual bool MoveLast() = 0;
  // 17. True when row `row` (1-based; 0 for the current record) may be changed by this user.
  virtual bool RowEditable(int32_t row) const = 0;
  // 18. Stores the pending record; 0 on success, anything else on refusal. With nothing
  // pending, in any status, it returns 0 and does nothing.
  virtual int32_t UpdateRecord() = 0;
  // 19. Validates `value` (which may be an editor's text) and stores it in the current record,
  // or in query mode as the field's condition. False when stored, true when refused (the source
  // has then said why).
  virtual bool SetFieldValue(const Variant& field, const Variant& value, int32_t flag = 0) = 0;
  // 20. Deletes the current record (or throws away the pending new or copied record).
  virtual void DeleteRecord() = 0;
  // 21. Begins a new record with the current record's values, status dsCopyRecord.
  virtual void CopyRecord() = 0;
  // 22. Begins an empty new record, status dsNewRecord. `optional` is left out by every caller.
  virtual void NewRecord(int32_t flag = 0, const Variant& optional = Variant()) = 0;
  // 23. Discards the pending record or the pending changes.
  virtual void UndoRecord() = 0;
  // 24. Enters query mode with empty conditions. True on failure.
  virtual bool NewQuery() = 0;
  // 25. Enters query mode keeping the conditions of the last query. True on failure.
  virtual bool RefineQuery() = 0;
  // 26. Runs the query and leaves query mode. True on failure.
  virtual bool ExecuteQuery() = 0;
  // 27. Leaves query mode without running it.
  virtual void CancelQuery() = 0;
  // 28. Replaces the display text in `value` by the field's stored form, in place, without
  // storing it. A text that is no value of the field throws kErrTypeMismatch and leaves `value`.
  virtual void ParseFieldValue(const Variant& field, Variant& value, int32_t flag = 0) = 0;

  // Listeners. One is the sheet; hosts may add more. Adding a listener twice has no effect;
  // removing one that is not there has none either. The source does not own its listeners:
  // REQUIRES: a listener is removed before it is destroyed.
  void AddListener(DataSourceEvents* listener);
  void RemoveListener(DataSourceEvents* listener);
  bool HasListener(const DataSourceEvents* listener) const;

 protected:
  // Raise a signal to every listener present now. The Before raisers return `cancel`.
  void RaiseSysDataSourceInit();
  void RaiseSysDataSourceRefresh();
  void RaiseEditStatusChange();
  void RaiseChangeSelectRows();
  bool RaiseMoveRecordBefore();
  void RaiseSysMoveRecordAfter();
  bool RaiseNewQueryBefore();
  void RaiseSysNewQueryAfter();
  bool RaiseRefineQueryBefore();
  void RaiseSysRefineQueryAfter();
  bool RaiseExecuteQueryBefore();
  bool RaiseCancelQueryBefore();
  void RaiseSysCancelQueryAfter();
  void RaiseSysNewRecordAfter();
  void RaiseSysCopyRecordAfter();
  void RaiseSysDeleteRecordAfter();
  void RaiseSysUndoRecordAfter();
  void RaiseSysUpdateRecordAfter();
  void RaiseValueChange(const Variant& unused, int32_t field_number);
  void RaiseSymbolChange(const Variant& unused, int32_t field_number);
  void RaiseValueQueryChange(const std::string& text);

 private:
  template <typename Fn>
  void Raise(Fn&& fn);

  // Changed only by AddListener and RemoveListener, also from inside a signal.
  std::vector<DataSourceEvents*> listeners_;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_DATA_SOURCE_H_
