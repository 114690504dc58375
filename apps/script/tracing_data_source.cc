#include "apps/script/tracing_data_source.h"

#include <type_traits>
#include <utility>

namespace tarnsheets {
namespace {

std::string Lit(const Variant& v) { return v.Literal(); }
std::string Lit(bool b) { return b ? "True" : "False"; }
std::string Lit(int32_t n) { return std::to_string(n); }
std::string Lit(const std::string& s) { return Variant(s).Literal(); }
// The result of Fields: an object.
struct FieldObject {};
std::string Lit(FieldObject) { return "Object"; }

// " 3" for a flag that is not 0, else nothing.
std::string Flag(int32_t flag) { return flag == 0 ? "" : " " + std::to_string(flag); }

}  // namespace

// Hears the real source's signals and raises them again to the tracer's listeners.
class TracingDataSource::Relay : public DataSourceEvents {
 public:
  explicit Relay(TracingDataSource& t) : t_(t) {}
  void SysDataSourceInit() override { t_.RaiseSysDataSourceInit(); }
  void SysDataSourceRefresh() override { t_.RaiseSysDataSourceRefresh(); }
  void EditStatusChange() override { t_.RaiseEditStatusChange(); }
  void ChangeSelectRows() override { t_.RaiseChangeSelectRows(); }
  void MoveRecordBefore(bool& cancel) override { cancel = t_.RaiseMoveRecordBefore() || cancel; }
  void SysMoveRecordAfter() override { t_.RaiseSysMoveRecordAfter(); }
  void NewQueryBefore(bool& cancel) override { cancel = t_.RaiseNewQueryBefore() || cancel; }
  void SysNewQueryAfter() override { t_.RaiseSysNewQueryAfter(); }
  void RefineQueryBefore(bool& cancel) override { cancel = t_.RaiseRefineQueryBefore() || cancel; }
  void SysRefineQueryAfter() override { t_.RaiseSysRefineQueryAfter(); }
  void ExecuteQueryBefore(bool& cancel) override {
    cancel = t_.RaiseExecuteQueryBefore() || cancel;
  }
  void CancelQueryBefore(bool& cancel) override { cancel = t_.RaiseCancelQueryBefore() || cancel; }
  void SysCancelQueryAfter() override { t_.RaiseSysCancelQueryAfter(); }
  void SysNewRecordAfter() override { t_.RaiseSysNewRecordAfter(); }
  void SysCopyRecordAfter() override { t_.RaiseSysCopyRecordAfter(); }
  void SysDeleteRecordAfter() override { t_.RaiseSysDeleteRecordAfter(); }
  void SysUndoRecordAfter() override { t_.RaiseSysUndoRecordAfter(); }
  void SysUpdateRecordAfter() override { t_.RaiseSysUpdateRecordAfter(); }
  void ValueChange(const Variant& unused, int32_t field_number) override {
    t_.RaiseValueChange(unused, field_number);
  }
  void SymbolChange(const Variant& unused, int32_t field_number) override {
    t_.RaiseSymbolChange(unused, field_number);
  }
  void ValueQueryChange(const std::string& text) override { t_.RaiseValueQueryChange(text); }

 private:
  TracingDataSource& t_;
};

// A field of the real source whose calls are written as Fields("NAME").OP.
class TracingDataSource::TracedField : public DataSourceField {
 public:
  TracedField(const TracingDataSource& t, DataSourceField& real) : t_(t), real_(real) {}

  const std::string& FieldName() const override {
    name_ = t_.Traced(Prefix() + "FieldName", [&] { return real_.FieldName(); });
    return name_;
  }
  int32_t DataType() const override {
    return t_.Traced(Prefix() + "DataType", [&] { return real_.DataType(); });
  }
  int32_t DateKind() const override {
    return t_.Traced(Prefix() + "DateKind", [&] { return real_.DateKind(); });
  }
  int32_t NumberKind() const override {
    return t_.Traced(Prefix() + "NumberKind", [&] { return real_.NumberKind(); });
  }
  bool Updatable() const override {
    return t_.Traced(Prefix() + "Updatable", [&] { return real_.Updatable(); });
  }
  std::string ReferenceName() const override {
    return t_.Traced(Prefix() + "ReferenceName", [&] { return real_.ReferenceName(); });
  }
  void SetValue(const Variant& value, int32_t flag) override {
    t_.Traced(Prefix() + "SetValue " + Lit(value) + Flag(flag),
              [&] { real_.SetValue(value, flag); });
  }
  Variant Value(int32_t flag) const override {
    return t_.Traced(Prefix() + "Value" + Flag(flag), [&] { return real_.Value(flag); });
  }
  std::string Symbol(int32_t flag) const override {
    return t_.Traced(Prefix() + "Symbol" + Flag(flag), [&] { return real_.Symbol(flag); });
  }

 private:
  // The name is read from the real field without a trace line of its own.
  std::string Prefix() const { return "Fields(" + Lit(real_.FieldName()) + ")."; }

  const TracingDataSource& t_;
  DataSourceField& real_;
  mutable std::string name_;  // the name last read through the trace
};

TracingDataSource::TracingDataSource(DataSource& real, Writer writer)
    : real_(real), writer_(std::move(writer)), relay_(std::make_unique<Relay>(*this)) {
  real_.AddListener(relay_.get());
}

TracingDataSource::~TracingDataSource() { real_.RemoveListener(relay_.get()); }

template <typename Fn>
auto TracingDataSource::Traced(const std::string& op, Fn&& fn) const -> decltype(fn()) {
  using Result = decltype(fn());
  try {
    if constexpr (std::is_void_v<Result>) {
      fn();
      Write("ds> " + op);
    } else {
      Result result = fn();
      Write("ds> " + op + " -> " + Lit(result));
      return result;
    }
  } catch (const Failure& failure) {
    Write("ds> " + op + " -> ! " + std::to_string(failure.Number()) + " " +
          Lit(failure.Description()));
    throw;
  }
}

bool TracingDataSource::AllowAddNew() const {
  return Traced("AllowAddNew", [&] { return real_.AllowAddNew(); });
}
void TracingDataSource::SetAllowAddNew(bool allow) {
  Traced("AllowAddNew = " + Lit(allow), [&] { real_.SetAllowAddNew(allow); });
}
bool TracingDataSource::AllowCopy() const {
  return Traced("AllowCopy", [&] { return real_.AllowCopy(); });
}
void TracingDataSource::SetAllowCopy(bool allow) {
  Traced("AllowCopy = " + Lit(allow), [&] { real_.SetAllowCopy(allow); });
}
bool TracingDataSource::AllowDelete() const {
  return Traced("AllowDelete", [&] { return real_.AllowDelete(); });
}
void TracingDataSource::SetAllowDelete(bool allow) {
  Traced("AllowDelete = " + Lit(allow), [&] { real_.SetAllowDelete(allow); });
}
bool TracingDataSource::AllowModify() const {
  return Traced("AllowModify", [&] { return real_.AllowModify(); });
}
void TracingDataSource::SetAllowModify(bool allow) {
  Traced("AllowModify = " + Lit(allow), [&] { real_.SetAllowModify(allow); });
}
bool TracingDataSource::ReadOnly() const {
  return Traced("ReadOnly", [&] { return real_.ReadOnly(); });
}
int32_t TracingDataSource::SelectRowsStatus() const {
  return Traced("SelectRowsStatus", [&] { return real_.SelectRowsStatus(); });
}
int32_t TracingDataSource::EditStatus() const {
  return Traced("EditStatus", [&] { return real_.EditStatus(); });
}
int32_t TracingDataSource::RecordCount() const {
  return Traced("RecordCount", [&] { return real_.RecordCount(); });
}
int32_t TracingDataSource::AbsolutePosition() const {
  return Traced("AbsolutePosition", [&] { return real_.AbsolutePosition(); });
}
bool TracingDataSource::Refresh() {
  return Traced("Refresh", [&] { return real_.Refresh(); });
}
DataSourceField& TracingDataSource::Fields(const Variant& key) {
  DataSourceField* real_field = nullptr;
  Traced("Fields " + Lit(key), [&] {
    real_field = &real_.Fields(key);
    return FieldObject{};
  });
  std::unique_ptr<TracedField>& wrapper = fields_[real_field];
  if (!wrapper) wrapper = std::make_unique<TracedField>(*this, *real_field);
  return *wrapper;
}
int32_t TracingDataSource::FieldCount() const {
  return Traced("FieldCount", [&] { return real_.FieldCount(); });
}
bool TracingDataSource::MoveFirst() {
  return Traced("MoveFirst", [&] { return real_.MoveFirst(); });
}
bool TracingDataSource::MovePrevious() {
  return Traced("MovePrevious", [&] { return real_.MovePrevious(); });
}
bool TracingDataSource::MoveNext() {
  return Traced("MoveNext", [&] { return real_.MoveNext(); });
}
bool TracingDataSource::MoveLast() {
  return Traced("MoveLast", [&] { return real_.MoveLast(); });
}
bool TracingDataSource::RowEditable(int32_t row) const {
  return Traced("RowEditable " + Lit(row), [&] { return real_.RowEditable(row); });
}
int32_t TracingDataSource::UpdateRecord() {
  return Traced("UpdateRecord", [&] { return real_.UpdateRecord(); });
}
bool TracingDataSource::SetFieldValue(const Variant& field, const Variant& value, int32_t flag) {
  return Traced("SetFieldValue " + Lit(field) + " " + Lit(value) + Flag(flag),
                [&] { return real_.SetFieldValue(field, value, flag); });
}
void TracingDataSource::DeleteRecord() {
  Traced("DeleteRecord", [&] { real_.DeleteRecord(); });
}
void TracingDataSource::CopyRecord() {
  Traced("CopyRecord", [&] { real_.CopyRecord(); });
}
void TracingDataSource::NewRecord(int32_t flag, const Variant& optional) {
  Traced("NewRecord" + Flag(flag) + (optional.IsEmpty() ? "" : " " + Lit(optional)),
         [&] { real_.NewRecord(flag, optional); });
}
void TracingDataSource::UndoRecord() {
  Traced("UndoRecord", [&] { real_.UndoRecord(); });
}
bool TracingDataSource::NewQuery() {
  return Traced("NewQuery", [&] { return real_.NewQuery(); });
}
bool TracingDataSource::RefineQuery() {
  return Traced("RefineQuery", [&] { return real_.RefineQuery(); });
}
bool TracingDataSource::ExecuteQuery() {
  return Traced("ExecuteQuery", [&] { return real_.ExecuteQuery(); });
}
void TracingDataSource::CancelQuery() {
  Traced("CancelQuery", [&] { real_.CancelQuery(); });
}
void TracingDataSource::ParseFieldValue(const Variant& field, Variant& value, int32_t flag) {
  const std::string op = "ParseFieldValue " + Lit(field) + " " + Lit(value) + Flag(flag);
  Traced(op, [&] {
    real_.ParseFieldValue(field, value, flag);
    return value;
  });
}

}  // namespace tarnsheets
