// TracingDataSource: a data source that forwards every call to a real one and writes each call,
// with its arguments and result, as a line "ds> OP ARGS -> RESULT". It listens to the real
// source and raises each of its signals again to its own listeners, so a sheet bound to the
// tracer behaves exactly as one bound to the real source.
//
// A call is written when it returns, so calls made from inside it (a sheet redisplaying during
// SetFieldValue) come before it. Operations without a result are written without " -> RESULT";
// a failure is written as "-> ! NUMBER DESCRIPTION" and passed on. Flag arguments that every
// caller passes as 0 are left out of the line when they are 0.
#ifndef TARNSHEETS_APPS_SCRIPT_TRACING_DATA_SOURCE_H_
#define TARNSHEETS_APPS_SCRIPT_TRACING_DATA_SOURCE_H_

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "tarnsheets/data_source.h"

namespace tarnsheets {

class TracingDataSource : public DataSource {
 public:
  using Writer = std::function<void(const std::string& line)>;

  // REQUIRES: `real` outlives the tracer.
  TracingDataSource(DataSource& real, Writer writer);
  ~TracingDataSource() override;

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
  class Relay;
  class TracedField;
  friend class Relay;
  friend class TracedField;

  // Runs `fn`, writing "ds> OP -> RESULT" (or the failure) when it returns.
  template <typename Fn>
  auto Traced(const std::string& op, Fn&& fn) const -> decltype(fn());
  void Write(const std::string& line) const { writer_(line); }

  DataSource& real_;
  Writer writer_;
  std::unique_ptr<Relay> relay_;
  // One wrapper per field object of the real source, created on first use.
  std::map<const DataSourceField*, std::unique_ptr<TracedField>> fields_;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_APPS_SCRIPT_TRACING_DATA_SOURCE_H_
