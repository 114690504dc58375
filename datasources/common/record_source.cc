#include "datasources/common/record_source.h"

#include <algorithm>
#include <cmath>

namespace tarnsheets {
namespace {

bool IsNewRowStatus(int32_t s) { return s == dsNewRecord || s == dsCopyRecord; }

std::string TrimBlanks(const std::string& text) {
  const size_t a = text.find_first_not_of(" \t");
  if (a == std::string::npos) return std::string();
  return text.substr(a, text.find_last_not_of(" \t") - a + 1);
}

}  // namespace

// The field object: a view on one column of its source.
class RecordSource::Field final : public DataSourceField {
 public:
  Field(RecordSource* source, int index) : source_(source), index_(index) {}

  const std::string& FieldName() const override { return def().name; }
  int32_t DataType() const override { return def().data_type; }
  int32_t DateKind() const override { return def().date_kind; }
  int32_t NumberKind() const override { return def().number_kind; }
  bool Updatable() const override { return def().updatable; }
  std::string ReferenceName() const override { return def().reference; }

  void SetValue(const Variant& value, int32_t /*flag*/) override {
    RecordSource& s = *source_;
    s.BeforeOperation("SetValue");
    if (s.IsClosed()) return;
    if (s.IsQuery()) {
      s.conditions_[index_] = value.AsText();
      return;
    }
    if (s.pending_ == Pending::kNone) {
      if (!s.HasStoredCurrent()) return;
      s.BeginChanges();
    }
    s.pending_values_[index_] = value;
    s.changed_[index_] = true;
  }

  Variant Value(int32_t /*flag*/) const override {
    source_->BeforeOperation("Value");
    if (source_->IsQuery()) {
      const std::string& c = source_->conditions_[index_];
      return c.empty() ? Variant() : Variant(c);
    }
    return source_->CurrentValue(index_);
  }

  std::string Symbol(int32_t /*flag*/) const override {
    source_->BeforeOperation("Symbol");
    if (source_->IsQuery()) return std::string();
    return source_->SymbolOf(index_);
  }

 private:
  const RecordFieldDefinition& def() const { return source_->definitions_[index_]; }

  RecordSource* source_;
  int index_;
};

RecordSource::RecordSource(Dialogs* dialogs) : dialogs_(dialogs) {}

RecordSource::~RecordSource() = default;

void RecordSource::DefineFields(std::vector<RecordFieldDefinition> definitions) {
  definitions_ = std::move(definitions);
  const size_t n = definitions_.size();
  index_by_name_.clear();
  for (size_t i = 0; i < n; ++i) index_by_name_.emplace(definitions_[i].name, static_cast<int>(i));
  reference_index_.assign(n, -1);
  money_fields_by_reference_.assign(n, {});
  for (size_t i = 0; i < n; ++i) {
    const RecordFieldDefinition& d = definitions_[i];
    if (d.reference.empty()) continue;
    const int reference = index_by_name_.at(d.reference);
    reference_index_[i] = reference;
    if (d.data_type == kDataTypeMoney) money_fields_by_reference_[reference].push_back(int(i));
  }
  fields_.clear();
  for (size_t i = 0; i < n; ++i) fields_.push_back(std::make_unique<Field>(this, int(i)));
  conditions_.assign(n, std::string());
  last_conditions_.assign(n, std::string());
  changed_.assign(n, false);
}

// --- Life cycle -------------------------------------------------------------------------------

void RecordSource::Open() {
  BeforeOperation("Open");
  if (!IsClosed()) return;
  std::fill(conditions_.begin(), conditions_.end(), std::string());
  std::fill(last_conditions_.begin(), last_conditions_.end(), std::string());
  ReadSetFromStart();
  pending_ = Pending::kNone;
  status_ = dsBrowse;
  RaiseSysDataSourceInit();
  RaiseEditStatusChange();
}

void RecordSource::Close() {
  if (IsClosed()) return;
  pending_ = Pending::kNone;
  pending_values_.clear();
  std::fill(changed_.begin(), changed_.end(), false);
  ForgetSet();
  status_ = dsClosed;
  RaiseEditStatusChange();
}

// --- Helpers ----------------------------------------------------------------------------------

Variant RecordSource::CurrentValue(int index) const {
  if (IsClosed()) return Variant();
  if (pending_ != Pending::kNone) return pending_values_[index];
  if (!HasStoredCurrent()) return Variant();
  return StoredValue(index);
}

std::string RecordSource::SymbolOf(int index) const {
  const int reference = reference_index_[index];
  if (definitions_[index].data_type != kDataTypeMoney || reference < 0) return std::string();
  const Variant code = CurrentValue(reference);
  auto it = symbols_.find(code.AsText());
  return it == symbols_.end() ? std::string() : it->second;
}

std::vector<std::string> RecordSource::AllSymbols() const {
  std::vector<std::string> out;
  for (const auto& [code, symbol] : symbols_) out.push_back(symbol);
  return out;
}

FieldShape RecordSource::ShapeOf(int index) const {
  const RecordFieldDefinition& d = definitions_[index];
  return FieldShape{d.data_type, d.date_kind, d.number_kind};
}

int RecordSource::IndexOf(const Variant& key) const {
  // A sheet names the columns by number, one by one, for every editor of every record it shows.
  if (key.Type() == VariantType::kLong) {
    const int32_t n = key.LongValue();
    if (n < 1 || n > static_cast<int32_t>(definitions_.size())) throw ItemNotFound(key);
    return n - 1;
  }
  if (key.IsString()) {
    auto it = index_by_name_.find(key.StringValue());
    if (it == index_by_name_.end()) throw ItemNotFound(key);
    return it->second;
  }
  if (key.IsNumber()) {
    const double n = key.ToDouble();
    if (n != std::floor(n) || n < 1 || n > static_cast<double>(definitions_.size())) {
      throw ItemNotFound(key);
    }
    return static_cast<int>(n) - 1;
  }
  throw Failure(
      kErrTypeMismatch,
      "Type mismatch: a field is named by its name or its number, not by " + key.Literal());
}

std::string RecordSource::Quoted(const Variant& v) const {
  return v.IsString() ? "\"" + v.StringValue() + "\"" : v.Literal();
}

void RecordSource::Say(const std::string& text) const {
  if (dialogs_ != nullptr) dialogs_->MessageBox(title_, text, MessageBoxStyle::kPlain);
}

bool RecordSource::Refuse(const std::string& text) {
  Say(text);
  return true;
}

void RecordSource::BeginChanges() {
  pending_values_.clear();
  pending_values_.reserve(definitions_.size());
  for (size_t i = 0; i < definitions_.size(); ++i) {
    pending_values_.push_back(StoredValue(static_cast<int>(i)));
  }
  std::fill(changed_.begin(), changed_.end(), false);
  pending_ = Pending::kChanges;
}

int32_t RecordSource::StorePending(bool* status_changed) {
  *status_changed = false;
  if (pending_ == Pending::kNone) return 0;
  if (pending_ == Pending::kChanges && !HasStoredCurrent()) {
    // The record that was changed is gone: nothing is left to store.
    pending_ = Pending::kNone;
    pending_values_.clear();
    std::fill(changed_.begin(), changed_.end(), false);
    return 0;
  }
  const bool new_row = pending_ == Pending::kNewRow;
  const int32_t code = new_row ? StoreNewRecord() : StoreChanges();
  if (code != 0) return code;
  if (new_row) {
    const int32_t old = status_;
    if (IsNewRowStatus(status_)) status_ = dsBrowse;
    *status_changed = old != status_;
  }
  pending_ = Pending::kNone;
  pending_values_.clear();
  std::fill(changed_.begin(), changed_.end(), false);
  return 0;
}

bool RecordSource::DropPending() {
  const Pending was = pending_;
  pending_ = Pending::kNone;
  pending_values_.clear();
  std::fill(changed_.begin(), changed_.end(), false);
  if (was != Pending::kNewRow) return false;
  ReturnFromNewRecord(return_key_, return_position_);
  const int32_t old = status_;
  if (IsNewRowStatus(status_)) status_ = dsBrowse;
  return old != status_;
}

bool RecordSource::RowEditableAt(int32_t row) const {
  if (IsClosed()) return false;
  if (row == 0) row = position_;
  if (pending_ == Pending::kNewRow && row == position_) return pending_editable_;
  return StoredRowEditable(row);
}

// --- The contract -----------------------------------------------------------------------------

bool RecordSource::AllowAddNew() const {
  BeforeOperation("AllowAddNew");
  return allow_add_new_;
}
void RecordSource::SetAllowAddNew(bool allow) {
  BeforeOperation("AllowAddNew");
  allow_add_new_ = allow;
}
bool RecordSource::AllowCopy() const {
  BeforeOperation("AllowCopy");
  return allow_copy_;
}
void RecordSource::SetAllowCopy(bool allow) {
  BeforeOperation("AllowCopy");
  allow_copy_ = allow;
}
bool RecordSource::AllowDelete() const {
  BeforeOperation("AllowDelete");
  return allow_delete_;
}
void RecordSource::SetAllowDelete(bool allow) {
  BeforeOperation("AllowDelete");
  allow_delete_ = allow;
}
bool RecordSource::AllowModify() const {
  BeforeOperation("AllowModify");
  return allow_modify_;
}
void RecordSource::SetAllowModify(bool allow) {
  BeforeOperation("AllowModify");
  allow_modify_ = allow;
}

bool RecordSource::ReadOnly() const {
  BeforeOperation("ReadOnly");
  return read_only_;
}

int32_t RecordSource::SelectRowsStatus() const {
  BeforeOperation("SelectRowsStatus");
  return select_rows_status_;
}

int32_t RecordSource::EditStatus() const {
  BeforeOperation("EditStatus");
  return status_;
}

void RecordSource::CatchUp() const {
  // What other users stored is no state of this object: seeing it changes nothing a caller set.
  if (!IsClosed()) const_cast<RecordSource*>(this)->SeeOtherUsersChanges(false);
}

int32_t RecordSource::RecordCount() const {
  BeforeOperation("RecordCount");
  if (IsClosed()) return 0;
  CatchUp();
  return StoredCount() + (pending_ == Pending::kNewRow ? 1 : 0);
}

int32_t RecordSource::AbsolutePosition() const {
  BeforeOperation("AbsolutePosition");
  if (IsClosed()) return 0;
  CatchUp();
  return position_;
}

bool RecordSource::Refresh() {
  BeforeOperation("Refresh");
  if (IsClosed()) return true;
  const bool status_changed = DropPending();
  ReadSetAgain();
  RaiseSysDataSourceRefresh();
  if (status_changed) RaiseEditStatusChange();
  return false;
}

DataSourceField& RecordSource::Fields(const Variant& key) {
  BeforeOperation("Fields");
  return *fields_[IndexOf(key)];
}

int32_t RecordSource::FieldCount() const {
  BeforeOperation("FieldCount");
  return static_cast<int32_t>(definitions_.size());
}

bool RecordSource::CanMove(MoveTo to, int32_t position) const {
  if (IsClosed() || IsQuery() || pending_ == Pending::kNewRow || StoredCount() == 0) return false;
  return to != MoveTo::kPosition || (position >= 1 && position <= StoredCount());
}

bool RecordSource::Move(const char* operation, MoveTo to, int32_t position) {
  BeforeOperation(operation);
  // move_position_ is set again before each search: a listener may move elsewhere meanwhile.
  move_position_ = position;
  if (!IsClosed()) SeeOtherUsersChanges(true);
  if (pending_ == Pending::kNewRow && !IsClosed() && !IsQuery()) {
    return Refuse(
        "The new record is not stored yet. Store it or cancel it before moving to "
        "another record.");
  }
  move_position_ = position;
  if (!CanMove(to, position) || !FindMoveTarget(to, false)) return true;
  if (RaiseMoveRecordBefore()) return true;
  // A listener may have moved, stored or closed meanwhile: decide again from what holds now.
  move_position_ = position;
  if (!CanMove(to, position) || !FindMoveTarget(to, true)) return true;
  bool status_changed = false;
  if (StorePending(&status_changed) != 0) return true;
  EnterMoveTarget();
  RaiseSysMoveRecordAfter();
  return false;
}

bool RecordSource::MoveFirst() { return Move("MoveFirst", MoveTo::kFirst); }
bool RecordSource::MovePrevious() { return Move("MovePrevious", MoveTo::kPrevious); }
bool RecordSource::MoveNext() { return Move("MoveNext", MoveTo::kNext); }
bool RecordSource::MoveLast() { return Move("MoveLast", MoveTo::kLast); }
bool RecordSource::MoveToPosition(int32_t position) {
  return Move("MoveToPosition", MoveTo::kPosition, position);
}

bool RecordSource::RowEditable(int32_t row) const {
  BeforeOperation("RowEditable");
  return RowEditableAt(row);
}

int32_t RecordSource::UpdateRecord() {
  BeforeOperation("UpdateRecord");
  if (pending_ == Pending::kNone || IsClosed() || IsQuery()) return 0;
  if (read_only_) {
    Say("The data is read-only: the record cannot be stored.");
    return 1;
  }
  bool status_changed = false;
  const int32_t code = StorePending(&status_changed);
  if (code != 0) return code;
  if (status_changed) RaiseEditStatusChange();
  RaiseSysUpdateRecordAfter();
  return 0;
}

bool RecordSource::SetFieldValue(const Variant& field, const Variant& value, int32_t /*flag*/) {
  BeforeOperation("SetFieldValue");
  const int index = IndexOf(field);
  const RecordFieldDefinition& def = definitions_[index];
  const std::string& name = def.name;
  if (IsClosed()) return Refuse("No record set is open: " + name + " cannot be changed.");
  if (RefusesField(index)) {
    return Refuse("The value " + Quoted(value) + " is refused for " + name + ".");
  }
  if (IsQuery()) {
    const std::string text = TrimBlanks(value.AsText());
    if (!text.empty()) {
      QueryCondition c;
      std::string reason;
      if (!QueryCondition::Parse(text, ShapeOf(index), AllSymbols(), &c, &reason)) {
        return Refuse("The condition \"" + text + "\" for " + name +
                      " is not understood: " + reason + ".");
      }
    }
    if (conditions_[index] != text) {
      conditions_[index] = text;
      RaiseValueQueryChange(name);
    }
    return false;
  }
  if (pending_ != Pending::kNewRow && !HasStoredCurrent()) {
    return Refuse("There is no current record: " + name + " cannot be changed.");
  }
  if (read_only_) return Refuse("The data is read-only: " + name + " cannot be changed.");
  if (!def.updatable) return Refuse(name + " cannot be changed.");
  if (const std::string why = FieldRefusal(index, pending_ == Pending::kNewRow); !why.empty()) {
    return Refuse(why);
  }
  if (!RowEditableAt(0)) return Refuse("This record cannot be changed.");
  const bool permitted =
      allow_modify_ || (pending_ == Pending::kNewRow && status_ == dsNewRecord && allow_add_new_) ||
      (pending_ == Pending::kNewRow && status_ == dsCopyRecord && allow_copy_);
  if (!permitted) return Refuse("Changing records is not allowed: " + name + " stays as it is.");
  Variant stored;
  std::string reason;
  if (!ReadFieldValue(value, ShapeOf(index), {SymbolOf(index)}, &stored, &reason)) {
    return Refuse("The value " + Quoted(value) + " cannot be stored in " + name + ": " + reason +
                  ".");
  }
  if (pending_ == Pending::kNone) BeginChanges();
  const bool currency_changed = !(pending_values_[index] == stored);
  pending_values_[index] = std::move(stored);
  changed_[index] = true;
  RaiseValueChange(Variant(), index + 1);
  if (currency_changed) {
    for (int money : money_fields_by_reference_[index]) RaiseSymbolChange(Variant(), money + 1);
  }
  return false;
}

void RecordSource::DeleteRecord() {
  BeforeOperation("DeleteRecord");
  if (IsClosed()) return (void)Refuse("No record set is open: there is nothing to delete.");
  if (IsQuery()) return (void)Refuse("Records cannot be deleted while a query is entered.");
  if (pending_ == Pending::kNewRow) {
    // A pending new or copied record can always be thrown away.
    const bool status_changed = DropPending();
    if (status_changed) RaiseEditStatusChange();
    RaiseSysDeleteRecordAfter();
    return;
  }
  if (!HasStoredCurrent()) return (void)Refuse("There is no record to delete.");
  if (read_only_) return (void)Refuse("The data is read-only: the record cannot be deleted.");
  if (!allow_delete_) return (void)Refuse("Deleting records is not allowed.");
  if (const std::string why = DeletionRefusal(); !why.empty()) return (void)Refuse(why);
  if (!RowEditableAt(0)) return (void)Refuse("This record cannot be deleted.");
  if (!DeleteStoredCurrent()) return;
  pending_ = Pending::kNone;
  pending_values_.clear();
  std::fill(changed_.begin(), changed_.end(), false);
  RaiseSysDeleteRecordAfter();
}

void RecordSource::BeginNewRecord(std::vector<Variant> values, bool copy) {
  const int32_t old = status_;
  bool ignored = false;
  if (StorePending(&ignored) != 0) return;
  return_key_ = CurrentKey();
  return_position_ = position_;
  pending_values_ = std::move(values);
  pending_editable_ = true;
  pending_ = Pending::kNewRow;
  position_ = StoredCount() + 1;
  status_ = copy ? dsCopyRecord : dsNewRecord;
  if (old != status_) RaiseEditStatusChange();
  if (copy) {
    RaiseSysCopyRecordAfter();
  } else {
    RaiseSysNewRecordAfter();
  }
}

void RecordSource::CopyRecord() {
  BeforeOperation("CopyRecord");
  if (IsClosed()) return (void)Refuse("No record set is open: there is nothing to copy.");
  if (IsQuery()) return (void)Refuse("Records cannot be copied while a query is entered.");
  if (read_only_) return (void)Refuse("The data is read-only: no record can be added.");
  if (!allow_copy_) return (void)Refuse("Copying records is not allowed.");
  if (const std::string why = NewRecordRefusal(); !why.empty()) return (void)Refuse(why);
  if (pending_ != Pending::kNewRow && !HasStoredCurrent()) {
    return (void)Refuse("There is no record to copy.");
  }
  std::vector<Variant> values;
  values.reserve(definitions_.size());
  for (int i = 0; i < FieldTotal(); ++i) {
    values.push_back(CopiesField(i) ? CurrentValue(i) : Variant::Null());
  }
  BeginNewRecord(std::move(values), true);
}

void RecordSource::NewRecord(int32_t /*flag*/, const Variant& /*optional*/) {
  BeforeOperation("NewRecord");
  if (IsClosed()) return (void)Refuse("No record set is open: no record can be added.");
  if (IsQuery()) return (void)Refuse("Records cannot be added while a query is entered.");
  if (read_only_) return (void)Refuse("The data is read-only: no record can be added.");
  if (!allow_add_new_) return (void)Refuse("Adding records is not allowed.");
  if (const std::string why = NewRecordRefusal(); !why.empty()) return (void)Refuse(why);
  BeginNewRecord(std::vector<Variant>(definitions_.size(), Variant::Null()), false);
}

void RecordSource::UndoRecord() {
  BeforeOperation("UndoRecord");
  if (IsClosed() || IsQuery()) return;
  const bool status_changed = DropPending();
  if (status_changed) RaiseEditStatusChange();
  RaiseSysUndoRecordAfter();
}

bool RecordSource::EnterQuery(bool refine) {
  if (IsClosed()) return Refuse("No record set is open: there is nothing to query.");
  if (refine ? RaiseRefineQueryBefore() : RaiseNewQueryBefore()) return true;
  if (IsClosed()) return true;
  const int32_t old = status_;
  if (!IsQuery()) {
    bool ignored = false;
    if (StorePending(&ignored) != 0) return true;
    query_return_key_ = CurrentKey();
    query_return_position_ = position_;
  }
  if (refine) {
    conditions_ = last_conditions_;
  } else {
    std::fill(conditions_.begin(), conditions_.end(), std::string());
  }
  status_ = dsQuery;
  if (old != status_) RaiseEditStatusChange();
  if (refine) {
    RaiseSysRefineQueryAfter();
  } else {
    RaiseSysNewQueryAfter();
  }
  return false;
}

bool RecordSource::NewQuery() {
  BeforeOperation("NewQuery");
  return EnterQuery(false);
}

bool RecordSource::RefineQuery() {
  BeforeOperation("RefineQuery");
  return EnterQuery(true);
}

bool RecordSource::ExecuteQuery() {
  BeforeOperation("ExecuteQuery");
  if (IsClosed()) return Refuse("No record set is open: there is nothing to query.");
  if (RaiseExecuteQueryBefore()) return true;
  if (IsClosed()) return true;
  const int32_t old = status_;
  if (IsQuery()) {
    last_conditions_ = conditions_;
  } else {
    bool ignored = false;
    if (StorePending(&ignored) != 0) return true;
  }
  ReadSetFromStart();
  status_ = dsBrowse;
  RaiseSysDataSourceRefresh();
  if (old != status_) RaiseEditStatusChange();
  return false;
}

void RecordSource::CancelQuery() {
  BeforeOperation("CancelQuery");
  if (!IsQuery()) return;
  if (RaiseCancelQueryBefore()) return;
  if (!IsQuery()) return;
  std::fill(conditions_.begin(), conditions_.end(), std::string());
  ReturnFromQuery(query_return_key_, query_return_position_);
  status_ = dsBrowse;
  RaiseEditStatusChange();
  RaiseSysCancelQueryAfter();
}

void RecordSource::ParseFieldValue(const Variant& field, Variant& value, int32_t /*flag*/) {
  BeforeOperation("ParseFieldValue");
  const int index = IndexOf(field);
  Variant parsed;
  std::string reason;
  if (!ReadFieldValue(value, ShapeOf(index), {SymbolOf(index)}, &parsed, &reason)) {
    throw Failure(kErrTypeMismatch, "Type mismatch: " + Quoted(value) + " is no value for " +
                                        definitions_[index].name + " (" + reason + ")");
  }
  value = std::move(parsed);
}

}  // namespace tarnsheets
