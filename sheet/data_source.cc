#include "tarnsheets/data_source.h"

#include <algorithm>
#include <utility>

namespace tarnsheets {

Failure ItemNotFound(const Variant& key) {
  return Failure(kErrItemNotFound,
                 "Item cannot be found in the collection corresponding to the requested name or "
                 "ordinal. (key " +
                     key.Literal() + ")");
}

DataSource::~DataSource() = default;

void DataSource::AddListener(DataSourceEvents* listener) {
  if (listener == nullptr || HasListener(listener)) return;
  listeners_.push_back(listener);
}

void DataSource::RemoveListener(DataSourceEvents* listener) {
  listeners_.erase(std::remove(listeners_.begin(), listeners_.end(), listener), listeners_.end());
}

bool DataSource::HasListener(const DataSourceEvents* listener) const {
  return std::find(listeners_.begin(), listeners_.end(), listener) != listeners_.end();
}

// Walks a copy of the list, so that listeners may add or remove listeners from inside the
// signal; one removed meanwhile is skipped, one added meanwhile waits for the next signal.
template <typename Fn>
void DataSource::Raise(Fn&& fn) {
  if (listeners_.empty()) return;
  const std::vector<DataSourceEvents*> present = listeners_;
  for (DataSourceEvents* listener : present) {
    if (HasListener(listener)) fn(*listener);
  }
}

void DataSource::RaiseSysDataSourceInit() {
  Raise([](DataSourceEvents& l) { l.SysDataSourceInit(); });
}
void DataSource::RaiseSysDataSourceRefresh() {
  Raise([](DataSourceEvents& l) { l.SysDataSourceRefresh(); });
}
void DataSource::RaiseEditStatusChange() {
  Raise([](DataSourceEvents& l) { l.EditStatusChange(); });
}
void DataSource::RaiseChangeSelectRows() {
  Raise([](DataSourceEvents& l) { l.ChangeSelectRows(); });
}
bool DataSource::RaiseMoveRecordBefore() {
  bool cancel = false;
  Raise([&cancel](DataSourceEvents& l) { l.MoveRecordBefore(cancel); });
  return cancel;
}
void DataSource::RaiseSysMoveRecordAfter() {
  Raise([](DataSourceEvents& l) { l.SysMoveRecordAfter(); });
}
bool DataSource::RaiseNewQueryBefore() {
  bool cancel = false;
  Raise([&cancel](DataSourceEvents& l) { l.NewQueryBefore(cancel); });
  return cancel;
}
void DataSource::RaiseSysNewQueryAfter() {
  Raise([](DataSourceEvents& l) { l.SysNewQueryAfter(); });
}
bool DataSource::RaiseRefineQueryBefore() {
  bool cancel = false;
  Raise([&cancel](DataSourceEvents& l) { l.RefineQueryBefore(cancel); });
  return cancel;
}
void DataSource::RaiseSysRefineQueryAfter() {
  Raise([](DataSourceEvents& l) { l.SysRefineQueryAfter(); });
}
bool DataSource::RaiseExecuteQueryBefore() {
  bool cancel = false;
  Raise([&cancel](DataSourceEvents& l) { l.ExecuteQueryBefore(cancel); });
  return cancel;
}
bool DataSource::RaiseCancelQueryBefore() {
  bool cancel = false;
  Raise([&cancel](DataSourceEvents& l) { l.CancelQueryBefore(cancel); });
  return cancel;
}
void DataSource::RaiseSysCancelQueryAfter() {
  Raise([](DataSourceEvents& l) { l.SysCancelQueryAfter(); });
}
void DataSource::RaiseSysNewRecordAfter() {
  Raise([](DataSourceEvents& l) { l.SysNewRecordAfter(); });
}
void DataSource::RaiseSysCopyRecordAfter() {
  Raise([](DataSourceEvents& l) { l.SysCopyRecordAfter(); });
}
void DataSource::RaiseSysDeleteRecordAfter() {
  Raise([](DataSourceEvents& l) { l.SysDeleteRecordAfter(); });
}
void DataSource::RaiseSysUndoRecordAfter() {
  Raise([](DataSourceEvents& l) { l.SysUndoRecordAfter(); });
}
void DataSource::RaiseSysUpdateRecordAfter() {
  Raise([](DataSourceEvents& l) { l.SysUpdateRecordAfter(); });
}
void DataSource::RaiseValueChange(const Variant& unused, int32_t field_number) {
  Raise([&](DataSourceEvents& l) { l.ValueChange(unused, field_number); });
}
void DataSource::RaiseSymbolChange(const Variant& unused, int32_t field_number) {
  Raise([&](DataSourceEvents& l) { l.SymbolChange(unused, field_number); });
}
void DataSource::RaiseValueQueryChange(const std::string& text) {
  Raise([&](DataSourceEvents& l) { l.ValueQueryChange(text); });
}

}  // namespace tarnsheets
