#include "datasources/memory/memory_data_source.h"

#include <algorithm>
#include <iterator>

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
                                   "SetValue",        "Open",         "MoveToPosition"};

Failure BadDefinition(const std::string& what) { return Failure(kErrInvalidProcedureCall, what); }

}  // namespace

MemoryDataSource::MemoryDataSource(std::vector<MemoryFieldDefinition> fields, Dialogs* dialogs)
    : RecordSource(dialogs) {
  std::unordered_map<std::string, int> index_by_name;
  for (size_t i = 0; i < fields.size(); ++i) {
    const MemoryFieldDefinition& d = fields[i];
    const std::string where = "field " + std::to_string(i + 1) + " (\"" + d.name + "\")";
    if (d.name.empty()) throw BadDefinition("field " + std::to_string(i + 1) + " has no name");
    if (!index_by_name.emplace(d.name, static_cast<int>(i)).second) {
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
  for (size_t i = 0; i < fields.size(); ++i) {
    const MemoryFieldDefinition& d = fields[i];
    if (!d.reference.empty() && index_by_name.count(d.reference) == 0) {
      throw BadDefinition("field " + std::to_string(i + 1) + " (\"" + d.name +
                          "\"): the reference \"" + d.reference + "\" names no field");
    }
  }
  DefineFields(std::move(fields));
  SetMessageTitle(kMemorySourceTitle);
}

MemoryDataSource::~MemoryDataSource() = default;

void MemoryDataSource::AddRow(std::vector<Variant> values, bool editable) {
  if (!IsClosed()) throw BadDefinition("rows can be added only while the source is closed");
  const size_t fields = static_cast<size_t>(FieldTotal());
  if (values.size() > fields) {
    throw BadDefinition("a row of " + std::to_string(values.size()) + " values for " +
                        std::to_string(fields) + " fields");
  }
  values.resize(fields);
  table_.push_back(Row{std::move(values), editable});
}

void MemoryDataSource::SetSymbol(const std::string& code, const std::string& symbol) {
  symbols_[code] = symbol;
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

int32_t MemoryDataSource::RecordCount() const {
  if (!forced_record_count_) return RecordSource::RecordCount();
  BeforeOperation("RecordCount");
  return *forced_record_count_;
}

// --- Storage ----------------------------------------------------------------------------------

void MemoryDataSource::BeforeOperation(const char* operation) const {
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

Variant MemoryDataSource::StoredValue(int index) const {
  return table_[view_[position_ - 1]].values[index];
}

bool MemoryDataSource::StoredRowEditable(int32_t row) const {
  if (row < 1 || row > static_cast<int32_t>(view_.size())) return false;
  return table_[view_[row - 1]].editable;
}

void MemoryDataSource::Rebuild() {
  std::vector<QueryCondition> conditions;
  std::vector<int> fields;
  for (int i = 0; i < FieldTotal(); ++i) {
    if (last_conditions_[i].empty()) continue;
    QueryCondition c;
    std::string reason;
    // Conditions were checked when entered; one that no longer parses lets nothing through.
    if (!QueryCondition::Parse(last_conditions_[i], ShapeOf(i), AllSymbols(), &c, &reason)) {
      view_.clear();
      return;
    }
    conditions.push_back(std::move(c));
    fields.push_back(i);
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

void MemoryDataSource::ReadSetFromStart() {
  Rebuild();
  position_ = view_.empty() ? 0 : 1;
}

void MemoryDataSource::ReadSetAgain() {
  Rebuild();
  if (position_ > static_cast<int32_t>(view_.size())) position_ = int32_t(view_.size());
  if (position_ < 1 && !view_.empty()) position_ = 1;
}

bool MemoryDataSource::FindMoveTarget(MoveTo to, bool /*again*/) {
  // Positions only: the target is found afresh each time, from what holds now.
  const int32_t n = static_cast<int32_t>(view_.size());
  move_target_ = 0;
  switch (to) {
    case MoveTo::kFirst:
      move_target_ = 1;
      break;
    case MoveTo::kLast:
      move_target_ = n;
      break;
    case MoveTo::kNext:
      move_target_ = position_ >= 1 && position_ < n ? position_ + 1 : 0;
      break;
    case MoveTo::kPrevious:
      move_target_ = position_ > 1 && position_ <= n ? position_ - 1 : 0;
      break;
    case MoveTo::kPosition:
      move_target_ = move_position_ >= 1 && move_position_ <= n ? move_position_ : 0;
      break;
  }
  return move_target_ != 0;
}

int32_t MemoryDataSource::StoreChanges() {
  table_[view_[position_ - 1]].values = std::move(pending_values_);
  return 0;
}

int32_t MemoryDataSource::StoreNewRecord() {
  table_.push_back(Row{std::move(pending_values_), pending_editable_});
  view_.push_back(static_cast<int32_t>(table_.size() - 1));
  position_ = static_cast<int32_t>(view_.size());
  return 0;
}

bool MemoryDataSource::DeleteStoredCurrent() {
  const int32_t table_index = view_[position_ - 1];
  view_.erase(view_.begin() + (position_ - 1));
  table_.erase(table_.begin() + table_index);
  for (int32_t& t : view_) {
    if (t > table_index) --t;
  }
  if (position_ > static_cast<int32_t>(view_.size())) position_ = int32_t(view_.size());
  return true;
}

void MemoryDataSource::ReturnTo(int32_t position) {
  position_ = std::min<int32_t>(position, static_cast<int32_t>(view_.size()));
  if (position_ < 1 && !view_.empty()) position_ = 1;
}

void MemoryDataSource::ReturnFromNewRecord(int64_t /*key*/, int32_t position) {
  ReturnTo(position);
}

void MemoryDataSource::ReturnFromQuery(int64_t /*key*/, int32_t position) { ReturnTo(position); }

}  // namespace tarnsheets
