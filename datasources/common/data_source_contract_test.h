// The behaviour every DataSource must show, written once and run against each source through a
// factory. A source's test program links tarnsheets_contract_suite and instantiates the suite
// with its own factories:
//   INSTANTIATE_TEST_SUITE_P(Memory, DataSourceContractTest,
//                            ::testing::Values(DataSourceContractFactory{"Memory", make}), ...);
// (the memory source in memory_data_source_test.cc, SQLite over a table and over a view in
// sqlite_data_source_test.cc).
//
// The factory builds a closed source over the standard set below and says how to open it:
//   fields  F_NAME text, F_REVENUE money (reference CURR_CODE), CURR_CODE text,
//           F_DATE date (dateKind 2), F_PROB number (numberKind 2, percent), F_FLAG yes/no,
//           F_ID whole number, not updatable
//   rows    "Alpha",  100,    "USD", 2026-03-01, 0.45, 1,    1
//           "beta",   -50.5,  "CNY", 2026-04-15, 0.1,  0,    2
//           "Gamma",  2000,   "USD", 2026-05-20, 0.9,  Null, 3
//   symbols USD "$", CNY "¥"; every row editable, not read-only.
#ifndef TARNSHEETS_DATASOURCES_COMMON_DATA_SOURCE_CONTRACT_TEST_H_
#define TARNSHEETS_DATASOURCES_COMMON_DATA_SOURCE_CONTRACT_TEST_H_

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "tarnsheets/data_source.h"
#include "tarnsheets/dialogs.h"

namespace tarnsheets {

struct ContractSource {
  std::unique_ptr<DataSource> source;
  std::function<void()> open;  // status 99 to 0, with its signals
  // The source's positional move for hosts (MoveToPosition); true on failure, as MoveNext.
  std::function<bool(int32_t position)> move_to_position = {};
};

struct DataSourceContractFactory {
  std::string name;
  std::function<ContractSource(Dialogs* dialogs)> make;
};

// Records message boxes as "title|text".
class RecordingDialogs : public Dialogs {
 public:
  void MessageBox(const std::string& title, const std::string& text,
                  MessageBoxStyle style) override {
    boxes.push_back(title + "|" + text);
    styles.push_back(style);
  }
  std::vector<std::string> boxes;
  std::vector<MessageBoxStyle> styles;
};

// Records every signal as "Name@EditStatus", EditStatus read inside the signal, and cancels the
// Before signals named in `cancel`.
class SignalRecorder : public DataSourceEvents {
 public:
  explicit SignalRecorder(DataSource* source) : source_(source) {}

  std::vector<std::string> log;
  std::vector<int32_t> positions;  // AbsolutePosition inside each signal
  std::set<std::string> cancel;

  void SysDataSourceInit() override { Note("SysDataSourceInit"); }
  void SysDataSourceRefresh() override { Note("SysDataSourceRefresh"); }
  void EditStatusChange() override { Note("EditStatusChange"); }
  void ChangeSelectRows() override { Note("ChangeSelectRows"); }
  void MoveRecordBefore(bool& c) override { Before("MoveRecordBefore", c); }
  void SysMoveRecordAfter() override { Note("SysMoveRecordAfter"); }
  void NewQueryBefore(bool& c) override { Before("NewQueryBefore", c); }
  void SysNewQueryAfter() override { Note("SysNewQueryAfter"); }
  void RefineQueryBefore(bool& c) override { Before("RefineQueryBefore", c); }
  void SysRefineQueryAfter() override { Note("SysRefineQueryAfter"); }
  void ExecuteQueryBefore(bool& c) override { Before("ExecuteQueryBefore", c); }
  void CancelQueryBefore(bool& c) override { Before("CancelQueryBefore", c); }
  void SysCancelQueryAfter() override { Note("SysCancelQueryAfter"); }
  void SysNewRecordAfter() override { Note("SysNewRecordAfter"); }
  void SysCopyRecordAfter() override { Note("SysCopyRecordAfter"); }
  void SysDeleteRecordAfter() override { Note("SysDeleteRecordAfter"); }
  void SysUndoRecordAfter() override { Note("SysUndoRecordAfter"); }
  void SysUpdateRecordAfter() override { Note("SysUpdateRecordAfter"); }
  void ValueChange(const Variant&, int32_t n) override {
    Note("ValueChange(" + std::to_string(n) + ")");
  }
  void SymbolChange(const Variant&, int32_t n) override {
    Note("SymbolChange(" + std::to_string(n) + ")");
  }
  void ValueQueryChange(const std::string&) override { Note("ValueQueryChange"); }

 private:
  void Note(const std::string& name) {
    log.push_back(name + "@" + std::to_string(source_->EditStatus()));
    positions.push_back(source_->AbsolutePosition());
  }
  void Before(const std::string& name, bool& c) {
    Note(name);
    if (cancel.count(name) != 0) c = true;
  }
  DataSource* source_;
};

class DataSourceContractTest : public ::testing::TestWithParam<DataSourceContractFactory> {
 protected:
  void SetUp() override {
    ContractSource made = GetParam().make(&dialogs_);
    owned_ = std::move(made.source);
    open_ = std::move(made.open);
    move_to_position_ = std::move(made.move_to_position);
    ds_ = owned_.get();
  }
  // Opens the source before any listener of the test is attached.
  void OpenQuietly() { open_(); }

  RecordingDialogs dialogs_;
  std::unique_ptr<DataSource> owned_;
  std::function<void()> open_;
  std::function<bool(int32_t)> move_to_position_;
  DataSource* ds_ = nullptr;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_DATASOURCES_COMMON_DATA_SOURCE_CONTRACT_TEST_H_
