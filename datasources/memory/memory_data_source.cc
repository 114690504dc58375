#include "datasources/memory/memory_data_source.h"

#include <algorithm>
#include <cmath>

namespace tarnsheets {
namespace {

const char* const kOperations[] = {"AllowAddNew",     "AllowCopy",    "AllowDelete",
                                   "AllowModify",     "ReadOnly",     "SelectRowsStatus",
                                   "EditStatus",      "RecordCount",  "AbsolutePosition",
                                   "Refresh",         "Fields",       "FieldCount",
                                   "MoveFirst",       "MovePrevious", "MoveNext",
                                   "MoveLast",        "RowEditable",  "UpdateRecord",
                                   "SetFieldValue",   "DeleteRecord", "CopyRecord",
                                   "NewRecord",       "UndoRecord",   "NewQuery",
                                   "RefineQuery",     "ExecuteQuery", "CancelQuery",
                                   "ParseFieldValue", "Value",        "Symbol",
                                   "SetValue",        "Open"};

Failure BadDefinition(const std::string& what) { return Failure(kErrInvalidProcedureCall, what); }

bool IsNewRowStatus(int32_t s) { return s == dsNewRecord || s == dsCopyRecord; }

}  // namespace

// The field object: a view on one column of its source.
class MemoryDataSource::Field final : public DataSourceField {
 public:
  Field(MemoryDataSource* source, int index) : source_(source), index_(index) {}

  std::string FieldName() const override { return def().name; }
  int32_t DataType() const override { return def().data_type; }
  int32_t DateKind() const override { return def().date_kind; }
  int32_t NumberKind() const override { return def().number_kind; }
  bool Updatable() const override { return def().updatable; }
  std::string ReferenceName() const override { return def().reference; }

  void SetValue(const Variant& value, int32_t /*flag*/) override {
    MemoryDataSource& s = *source_;
    s.CheckFail("SetValue");
    if (s.IsClosed()) return;
    if (s.IsQuery()) {
      s.conditions_[index_] = value.AsText();
      return;
    }
    if (s.pending_ == Pending::kNone) {
      if (!s.HasStoredCurrent()) return;
      s.pending_values_ = s.table_[s.view_[s.position_ - 1]].values;
      s.pending_ = Pending::kChanges;
    }
    s.pending_values_[index_] = value;
  }

  Variant Value(int32_t /*flag*/) const override {
    source_->CheckFail("Value");
    if (source_->IsQuery()) {
      const std::string& c = source_->conditions_[index_];
      return c.empty() ? Variant() : Variant(c);
    }
    return source_->CurrentValue(index_);
  }

  std::string Symbol(int32_t /*flag*/) const override {
    source_->CheckFail("Symbol");
    if (source_->IsQuery()) return std::string();
    return source_->SymbolOf(index_);
  }

 private:
  const MemoryFieldDefinition& def() const { return source_->defs_[index_]; }

  MemoryDataSource* source_;
  int index_;
};

MemoryDataSource::MemoryDataSource(std::vector<MemoryFieldDefinition> fields, Dialogs* dialogs)
    : defs_(std::move(fields)), dialogs_(dialogs) {
  for (size_t i = 0; i < defs_.size(); ++i) {
    const MemoryFieldDefinition& d = defs_[i];
    const std::string where = "field " + std::to_string(i + 1) + " (\"" + d.name + "\")";
    if (d.name.empty()) throw BadDefinition("field " + std::to_string(i + 1) + " has no name");
    if (!index_by_name_.emplace(d.name, static_cast<int>(i)).second) {
      throw BadDefinition(where + ": the name is already used by another field");
    }
    if (d.data_type < kDataTypeText || d.data_type > kDataTypeWholeNumber) {
      throw BadDefinition(where + ": type " + std::to_string(d.data_type) +
                          " is not one of 0 to 6");
    }
    if (d.date_kind < kDateKindDateTime || d.date_kind > kDateKindMinute) {
      throw BadDefinition(where + ": dateKind " + std::to_string(d.date_kind) +
                          " is not one of 0 to 4");
    }
    if (d.number_kind < kNumberKindWhole || d.number_kind > kNumberKindPercent) {
      throw BadDefinition(where + ": numberKind " + std::to_string(d.number_kind) +
                          " is not one of 0 to 2");
    }
  }
  money_fields_by_reference_.resize(defs_.size());
  for (size_t i = 0; i < defs_.size(); ++i) {
    const MemoryFieldDefinition& d = defs_[i];
    if (d.reference.empty()) continue;
    auto it = index_by_name_.find(d.reference);
    if (it == index_by_name_.end()) {
      throw BadDefinition("field " + std::to_string(i + 1) + " (\"" + d.name +
                          "\"): the reference \"" + d.reference + "\" names no field");
    }
    if (d.data_type == kDataTypeMoney) money_fields_by_reference_[it->second].push_back(int(i));
  }
  for (size_t i = 0; i < defs_.size(); ++i) {
    fields_.push_back(std::make_unique<Field>(this, static_cast<int>(i)));
  }
  conditions_.assign(defs_.size(), std::string());
  last_conditions_.assign(defs_.size(), std::string());
}

MemoryDataSource::~MemoryDataSource() = default;

// --- Building ---------------------------------------------------------------------------------

void MemoryDataSource::AddRow(std::vector<Variant> values, bool editable) {
  if (!IsClosed()) throw BadDefinition("rows can be added only while the source is closed");
  if (values.size() > defs_.size()) {
    throw BadDefinition("a row of " + std::to_string(values.size()) + " values for " +
                        std::to_string(defs_.size()) + " fields");
  }
  values.resize(defs_.size());
  table_.push_back(Row{std::move(values), editable});
}

void MemoryDataSource::SetSymbol(const std::string& code, const std::string& symbol) {
  symbols_[code] = symbol;
}

// --- Life cycle -------------------------------------------------------------------------------

void MemoryDataSource::Open() {
  CheckFail("Open");
  if (!IsClosed()) return;
  std::fill(conditions_.begin(), conditions_.end(), std::string());
  std::fill(last_conditions_.begin(), last_conditions_.end(), std::string());
  Rebuild();
  position_ = view_.empty() ? 0 : 1;
  pending_ = Pending::kNone;
  status_ = dsBrowse;
  RaiseSysDataSourceInit();
  RaiseEditStatusChange();
}

void MemoryDataSource::Close() {
  if (IsClosed()) return;
  pending_ = Pending::kNone;
  pending_values_.clear();
  status_ = dsClosed;
  RaiseEditStatusChange();
}

// --- Test settings ----------------------------------------------------------------------------

void MemoryDataSource::ForceEditStatus(int32_t status) {
  const int32_t old = status_;
  status_ = status;
  if (old != status_) RaiseEditStatusChange();
}

void MemoryDataSource::ForceRecordCount(int32_t count) {
  if (count < 0) {
    forced_record_count_.reset();
  } else {
    forced_record_count_ = count;
  }
}

void MemoryDataSource::ForceSelectRowsStatus(int32_t status) {
  const int32_t old = select_rows_status_;
  select_rows_status_ = status;
  if (old != status) RaiseChangeSelectRows();
}

void MemoryDataSource::ForceRowEditable(bool editable) {
  if (pending_ == Pending::kNewRow) {
    pending_editable_ = editable;
  } else if (HasStoredCurrent()) {
    table_[view_[position_ - 1]].editable = editable;
  }
}

void MemoryDataSource::SetRowEditable(int32_t row, bool editable) {
  if (row == 0) {
    ForceRowEditable(editable);
  } else if (row >= 1 && row <= static_cast<int32_t>(view_.size())) {
    table_[view_[row - 1]].editable = editable;
  } else if (pending_ == Pending::kNewRow && row == position_) {
    pending_editable_ = editable;
  } else {
    throw PlatformFailure(kErrSubscriptOutOfRange);
  }
}

void MemoryDataSource::RefuseField(const std::string& name) {
  refused_fields_.insert(IndexOf(Variant(name)));
}

void MemoryDataSource::AcceptField(const std::string& name) {
  refused_fields_.erase(IndexOf(Variant(name)));
}

void MemoryDataSource::FailNextCall(const std::string& operation, int32_t number,
                                    std::string description) {
  if (std::find(std::begin(kOperations), std::end(kOperations), operation) ==
      std::end(kOperations)) {
    throw BadDefinition("\"" + operation + "\" is no operation of the data source");
  }
  failures_[operation] = {number, std::move(description)};
}

int32_t MemoryDataSource::StoredRowCount() const { return static_cast<int32_t>(table_.size()); }

// --- Helpers ----------------------------------------------------------------------------------

void MemoryDataSource::CheckFail(const char* operation) const {
  if (failures_.empty()) return;
  auto it = failures_.find(operation);
  if (it == failures_.end()) return;
  Failure f(it->second.first, it->second.second);
  failures_.erase(it);
  throw f;
}

bool MemoryDataSource::HasStoredCurrent() const {
  return pending_ != Pending::kNewRow && position_ >= 1 &&
         position_ <= static_cast<int32_t>(view_.size());
}

const Variant& MemoryDataSource::CurrentValue(int index) const {
  static const Variant kNothing;
  if (IsClosed()) return kNothing;
  if (pending_ != Pending::kNone) return pending_values_[index];
  if (!HasStoredCurrent()) return kNothing;
  return table_[view_[position_ - 1]].values[index];
}

std::vector<Variant> MemoryDataSource::CurrentValues() const {
  std::vector<Variant> out;
  out.reserve(defs_.size());
  for (size_t i = 0; i < defs_.size(); ++i) out.push_back(CurrentValue(static_cast<int>(i)));
  return out;
}

std::string MemoryDataSource::SymbolOf(int index) const {
  const MemoryFieldDefinition& d = defs_[index];
  if (d.data_type != kDataTypeMoney || d.reference.empty()) return std::string();
  const Variant& code = CurrentValue(index_by_name_.at(d.reference));
  auto it = symbols_.find(code.AsText());
  return it == symbols_.end() ? std::string() : it->second;
}

std::vector<std::string> MemoryDataSource::AllSymbols() const {
  std::vector<std::string> out;
  for (const auto& [code, symbol] : symbols_) out.push_back(symbol);
  return out;
}

FieldShape MemoryDataSource::ShapeOf(int index) const {
  const MemoryFieldDefinition& d = defs_[index];
  return FieldShape{d.data_type, d.date_kind, d.number_kind};
}

int MemoryDataSource::IndexOf(const Variant& key) const {
  if (key.IsString()) {
    auto it = index_by_name_.find(key.StringValue());
    if (it == index_by_name_.end()) throw ItemNotFound(key);
    return it->second;
  }
  if (key.IsNumber()) {
    const double n = key.ToDouble();
    if (n != std::floor(n) || n < 1 || n > static_cast<double>(defs_.size())) {
      throw ItemNotFound(key);
    }
    return static_cast<int>(n) - 1;
  }
  throw Failure(
      kErrTypeMismatch,
      "Type mismatch: a field is named by its name or its number, not by " + key.Literal());
}

std::string MemoryDataSource::Quoted(const Variant& v) const {
  return v.IsString() ? "\"" + v.StringValue() + "\"" : v.Literal();
}

void MemoryDataSource::Say(const std::string& text) const {
  if (dialogs_ != nullptr) dialogs_->MessageBox(title_, text, MessageBoxStyle::kPlain);
}

bool MemoryDataSource::Refuse(const std::string& text) {
  Say(text);
  return true;
}

bool MemoryDataSource::StorePendingSilently() {
  if (pending_ == Pending::kChanges) {
    if (HasStoredCurrent()) table_[view_[position_ - 1]].values = std::move(pending_values_);
    pending_values_.clear();
    pending_ = Pending::kNone;
    return false;
  }
  if (pending_ == Pending::kNewRow) {
    table_.push_back(Row{std::move(pending_values_), pending_editable_});
    pending_values_.clear();
    view_.push_back(static_cast<int32_t>(table_.size() - 1));
    position_ = static_cast<int32_t>(view_.size());
    pending_ = Pending::kNone;
    const int32_t old = status_;
    if (IsNewRowStatus(status_)) status_ = dsBrowse;
    return old != status_;
  }
  return false;
}

bool MemoryDataSource::DropPending() {
  const Pending was = pending_;
  pending_ = Pending::kNone;
  pending_values_.clear();
  if (was != Pending::kNewRow) return false;
  position_ = std::min<int32_t>(return_position_, static_cast<int32_t>(view_.size()));
  if (position_ < 1 && !view_.empty()) position_ = 1;
  const int32_t old = status_;
  if (IsNewRowStatus(status_)) status_ = dsBrowse;
  return old != status_;
}

void MemoryDataSource::Rebuild() {
  std::vector<QueryCondition> conditions;
  std::vector<int> fields;
  for (size_t i = 0; i < defs_.size(); ++i) {
    if (last_conditions_[i].empty()) continue;
    QueryCondition c;
    std::string reason;
    // Conditions were checked when entered; one that no longer parses lets nothing through.
    if (!QueryCondition::Parse(last_conditions_[i], ShapeOf(static_cast<int>(i)), AllSymbols(), &c,
                               &reason)) {
      view_.clear();
      return;
    }
    conditions.push_back(std::move(c));
    fields.push_back(static_cast<int>(i));
  }
  view_.clear();
  for (size_t r = 0; r < table_.size(); ++r) {
    bool match = true;
    for (size_t k = 0; k < conditions.size() && match; ++k) {
      match = conditions[k].Matches(table_[r].values[fields[k]]);
    }
    if (match) view_.push_back(static_cast<int32_t>(r));
  }
}

// --- The contract -----------------------------------------------------------------------------

bool MemoryDataSource::AllowAddNew() const {
  CheckFail("AllowAddNew");
  return allow_add_new_;
}
void MemoryDataSource::SetAllowAddNew(bool allow) {
  CheckFail("AllowAddNew");
  allow_add_new_ = allow;
}
bool MemoryDataSource::AllowCopy() const {
  CheckFail("AllowCopy");
  return allow_copy_;
}
void MemoryDataSource::SetAllowCopy(bool allow) {
  CheckFail("AllowCopy");
  allow_copy_ = allow;
}
bool MemoryDataSource::AllowDelete() const {
  CheckFail("AllowDelete");
  return allow_delete_;
}
void MemoryDataSource::SetAllowDelete(bool allow) {
  CheckFail("AllowDelete");
  allow_delete_ = allow;
}
bool MemoryDataSource::AllowModify() const {
  CheckFail("AllowModify");
  return allow_modify_;
}
void MemoryDataSource::SetAllowModify(bool allow) {
  CheckFail("AllowModify");
  allow_modify_ = allow;
}

bool MemoryDataSource::ReadOnly() const {
  CheckFail("ReadOnly");
  return read_only_;
}

int32_t MemoryDataSource::SelectRowsStatus() const {
  CheckFail("SelectRowsStatus");
  return select_rows_status_;
}

int32_t MemoryDataSource::EditStatus() const {
  CheckFail("EditStatus");
  return status_;
}

int32_t MemoryDataSource::RecordCount() const {
  CheckFail("RecordCount");
  if (forced_record_count_) return *forced_record_count_;
  if (IsClosed()) return 0;
  return static_cast<int32_t>(view_.size()) + (pending_ == Pending::kNewRow ? 1 : 0);
}

int32_t MemoryDataSource::AbsolutePosition() const {
  CheckFail("AbsolutePosition");
  return IsClosed() ? 0 : position_;
}

bool MemoryDataSource::Refresh() {
  CheckFail("Refresh");
  if (IsClosed()) return true;
  const bool status_changed = DropPending();
  Rebuild();
  if (position_ > static_cast<int32_t>(view_.size())) position_ = int32_t(view_.size());
  if (position_ < 1 && !view_.empty()) position_ = 1;
  RaiseSysDataSourceRefresh();
  if (status_changed) RaiseEditStatusChange();
  return false;
}

DataSourceField& MemoryDataSource::Fields(const Variant& key) {
  CheckFail("Fields");
  return *fields_[IndexOf(key)];
}

int32_t MemoryDataSource::FieldCount() const {
  CheckFail("FieldCount");
  return static_cast<int32_t>(defs_.size());
}

bool MemoryDataSource::Move(const char* operation, MoveTo to) {
  CheckFail(operation);
  const auto target = [this, to]() -> int32_t {
    const int32_t n = static_cast<int32_t>(view_.size());
    if (IsClosed() || IsQuery() || pending_ == Pending::kNewRow || n == 0) return 0;
    switch (to) {
      case MoveTo::kFirst:
        return 1;
      case MoveTo::kLast:
        return n;
      case MoveTo::kNext:
        return position_ >= 1 && position_ < n ? position_ + 1 : 0;
      case MoveTo::kPrevious:
        return position_ > 1 && position_ <= n ? position_ - 1 : 0;
    }
    return 0;
  };
  if (pending_ == Pending::kNewRow && !IsClosed() && !IsQuery()) {
    return Refuse(
        "The new record is not stored yet. Store it or cancel it before moving to "
        "another record.");
  }
  if (target() == 0) return true;
  if (RaiseMoveRecordBefore()) return true;
  // A listener may have moved, stored or closed meanwhile: decide again from what holds now.
  const int32_t to_position = target();
  if (to_position == 0) return true;
  StorePendingSilently();
  position_ = to_position;
  RaiseSysMoveRecordAfter();
  return false;
}

bool MemoryDataSource::MoveFirst() { return Move("MoveFirst", MoveTo::kFirst); }
bool MemoryDataSource::MovePrevious() { return Move("MovePrevious", MoveTo::kPrevious); }
bool MemoryDataSource::MoveNext() { return Move("MoveNext", MoveTo::kNext); }
bool MemoryDataSource::MoveLast() { return Move("MoveLast", MoveTo::kLast); }

bool MemoryDataSource::RowEditable(int32_t row) const {
  CheckFail("RowEditable");
  return RowEditableAt(row);
}

bool MemoryDataSource::RowEditableAt(int32_t row) const {
  if (IsClosed()) return false;
  if (row == 0) row = position_;
  if (pending_ == Pending::kNewRow && row == position_) return pending_editable_;
  if (row < 1 || row > static_cast<int32_t>(view_.size())) return false;
  return table_[view_[row - 1]].editable;
}

int32_t MemoryDataSource::UpdateRecord() {
  CheckFail("UpdateRecord");
  if (pending_ == Pending::kNone || IsClosed() || IsQuery()) return 0;
  if (read_only_) {
    Say("The data is read-only: the record cannot be stored.");
    return 1;
  }
  const bool status_changed = StorePendingSilently();
  if (status_changed) RaiseEditStatusChange();
  RaiseSysUpdateRecordAfter();
  return 0;
}

bool MemoryDataSource::SetFieldValue(const Variant& field, const Variant& value, int32_t /*flag*/) {
  CheckFail("SetFieldValue");
  const int index = IndexOf(field);
  const MemoryFieldDefinition& def = defs_[index];
  const std::string& name = def.name;
  if (IsClosed()) return Refuse("No record set is open: " + name + " cannot be changed.");
  if (refused_fields_.count(index) != 0) {
    return Refuse("The value " + Quoted(value) + " is refused for " + name + ".");
  }
  if (IsQuery()) {
    std::string text = value.AsText();
    const size_t a = text.find_first_not_of(" \t");
    text = a == std::string::npos ? std::string()
                                  : text.substr(a, text.find_last_not_of(" \t") - a + 1);
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
  if (pending_ == Pending::kNone) {
    pending_values_ = table_[view_[position_ - 1]].values;
    pending_ = Pending::kChanges;
  }
  const bool currency_changed = !(pending_values_[index] == stored);
  pending_values_[index] = std::move(stored);
  RaiseValueChange(Variant(), index + 1);
  if (currency_changed) {
    for (int money : money_fields_by_reference_[index]) RaiseSymbolChange(Variant(), money + 1);
  }
  return false;
}

void MemoryDataSource::DeleteRecord() {
  CheckFail("DeleteRecord");
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
  if (!RowEditableAt(0)) return (void)Refuse("This record cannot be deleted.");
  pending_ = Pending::kNone;
  pending_values_.clear();
  const int32_t table_index = view_[position_ - 1];
  view_.erase(view_.begin() + (position_ - 1));
  table_.erase(table_.begin() + table_index);
  for (int32_t& t : view_) {
    if (t > table_index) --t;
  }
  if (position_ > static_cast<int32_t>(view_.size())) position_ = int32_t(view_.size());
  RaiseSysDeleteRecordAfter();
}

void MemoryDataSource::CopyRecord() {
  CheckFail("CopyRecord");
  if (IsClosed()) return (void)Refuse("No record set is open: there is nothing to copy.");
  if (IsQuery()) return (void)Refuse("Records cannot be copied while a query is entered.");
  if (read_only_) return (void)Refuse("The data is read-only: no record can be added.");
  if (!allow_copy_) return (void)Refuse("Copying records is not allowed.");
  if (pending_ != Pending::kNewRow && !HasStoredCurrent()) {
    return (void)Refuse("There is no record to copy.");
  }
  std::vector<Variant> values = CurrentValues();
  const int32_t old = status_;
  StorePendingSilently();
  return_position_ = position_;
  pending_values_ = std::move(values);
  pending_editable_ = true;
  pending_ = Pending::kNewRow;
  position_ = static_cast<int32_t>(view_.size()) + 1;
  status_ = dsCopyRecord;
  if (old != status_) RaiseEditStatusChange();
  RaiseSysCopyRecordAfter();
}

void MemoryDataSource::NewRecord(int32_t /*flag*/, const Variant& /*optional*/) {
  CheckFail("NewRecord");
  if (IsClosed()) return (void)Refuse("No record set is open: no record can be added.");
  if (IsQuery()) return (void)Refuse("Records cannot be added while a query is entered.");
  if (read_only_) return (void)Refuse("The data is read-only: no record can be added.");
  if (!allow_add_new_) return (void)Refuse("Adding records is not allowed.");
  const int32_t old = status_;
  StorePendingSilently();
  return_position_ = position_;
  pending_values_.assign(defs_.size(), Variant::Null());
  pending_editable_ = true;
  pending_ = Pending::kNewRow;
  position_ = static_cast<int32_t>(view_.size()) + 1;
  status_ = dsNewRecord;
  if (old != status_) RaiseEditStatusChange();
  RaiseSysNewRecordAfter();
}

void MemoryDataSource::UndoRecord() {
  CheckFail("UndoRecord");
  if (IsClosed() || IsQuery()) return;
  const bool status_changed = DropPending();
  if (status_changed) RaiseEditStatusChange();
  RaiseSysUndoRecordAfter();
}

bool MemoryDataSource::EnterQuery(bool refine) {
  if (IsClosed()) return Refuse("No record set is open: there is nothing to query.");
  if (refine ? RaiseRefineQueryBefore() : RaiseNewQueryBefore()) return true;
  if (IsClosed()) return true;
  const int32_t old = status_;
  if (!IsQuery()) {
    StorePendingSilently();
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

bool MemoryDataSource::NewQuery() {
  CheckFail("NewQuery");
  return EnterQuery(false);
}

bool MemoryDataSource::RefineQuery() {
  CheckFail("RefineQuery");
  return EnterQuery(true);
}

bool MemoryDataSource::ExecuteQuery() {
  CheckFail("ExecuteQuery");
  if (IsClosed()) return Refuse("No record set is open: there is nothing to query.");
  if (RaiseExecuteQueryBefore()) return true;
  if (IsClosed()) return true;
  const int32_t old = status_;
  if (IsQuery()) {
    last_conditions_ = conditions_;
  } else {
    StorePendingSilently();
  }
  Rebuild();
  position_ = view_.empty() ? 0 : 1;
  status_ = dsBrowse;
  RaiseSysDataSourceRefresh();
  if (old != status_) RaiseEditStatusChange();
  return false;
}

void MemoryDataSource::CancelQuery() {
  CheckFail("CancelQuery");
  if (!IsQuery()) return;
  if (RaiseCancelQueryBefore()) return;
  if (!IsQuery()) return;
  std::fill(conditions_.begin(), conditions_.end(), std::string());
  position_ = std::min<int32_t>(query_return_position_, static_cast<int32_t>(view_.size()));
  if (position_ < 1 && !view_.empty()) position_ = 1;
  status_ = dsBrowse;
  RaiseEditStatusChange();
  RaiseSysCancelQueryAfter();
}

void MemoryDataSource::ParseFieldValue(const Variant& field, Variant& value, int32_t /*flag*/) {
  CheckFail("ParseFieldValue");
  const int index = IndexOf(field);
  Variant parsed;
  std::string reason;
  if (!ReadFieldValue(value, ShapeOf(index), {SymbolOf(index)}, &parsed, &reason)) {
    throw Failure(kErrTypeMismatch, "Type mismatch: " + Quoted(value) + " is no value for " +
                                        defs_[index].name + " (" + reason + ")");
  }
  value = std::move(parsed);
}

}  // namespace tarnsheets
