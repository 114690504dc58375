#include "datasources/common/data_source_contract_test.h"

#include <algorithm>

namespace tarnsheets {
namespace {

using Log = std::vector<std::string>;

int FailureNumber(const std::function<void()>& fn) {
  try {
    fn();
  } catch (const Failure& f) {
    return f.Number();
  }
  return 0;
}

Variant ValueOf(DataSource& ds, const char* field) { return ds.Fields(Variant(field)).Value(0); }

// Reads everything a sheet reads, inside every signal, and checks that it holds together.
class ConsistencyProbe : public DataSourceEvents {
 public:
  explicit ConsistencyProbe(DataSource* ds) : ds_(ds) {}
  int signals = 0;

  void SysDataSourceInit() override { Check("SysDataSourceInit"); }
  void SysDataSourceRefresh() override { Check("SysDataSourceRefresh"); }
  void EditStatusChange() override { Check("EditStatusChange"); }
  void MoveRecordBefore(bool&) override { Check("MoveRecordBefore"); }
  void SysMoveRecordAfter() override { Check("SysMoveRecordAfter"); }
  void NewQueryBefore(bool&) override { Check("NewQueryBefore"); }
  void SysNewQueryAfter() override { Check("SysNewQueryAfter"); }
  void RefineQueryBefore(bool&) override { Check("RefineQueryBefore"); }
  void SysRefineQueryAfter() override { Check("SysRefineQueryAfter"); }
  void ExecuteQueryBefore(bool&) override { Check("ExecuteQueryBefore"); }
  void CancelQueryBefore(bool&) override { Check("CancelQueryBefore"); }
  void SysCancelQueryAfter() override { Check("SysCancelQueryAfter"); }
  void SysNewRecordAfter() override { Check("SysNewRecordAfter"); }
  void SysCopyRecordAfter() override { Check("SysCopyRecordAfter"); }
  void SysDeleteRecordAfter() override { Check("SysDeleteRecordAfter"); }
  void SysUndoRecordAfter() override { Check("SysUndoRecordAfter"); }
  void SysUpdateRecordAfter() override { Check("SysUpdateRecordAfter"); }
  void ValueChange(const Variant&, int32_t n) override {
    Check("ValueChange");
    EXPECT_GE(n, 1);
    EXPECT_LE(n, ds_->FieldCount());
  }
  void SymbolChange(const Variant&, int32_t) override { Check("SymbolChange"); }
  void ValueQueryChange(const std::string&) override {
    Check("ValueQueryChange");
    EXPECT_EQ(ds_->EditStatus(), dsQuery);
  }

 private:
  void Check(const char* signal) {
    SCOPED_TRACE(signal);
    ++signals;
    const int32_t status = ds_->EditStatus();
    const int32_t count = ds_->RecordCount();
    const int32_t position = ds_->AbsolutePosition();
    EXPECT_GE(count, 0);
    EXPECT_GE(position, 0);
    EXPECT_LE(position, count);
    if (count > 0 && status != dsQuery) {
      EXPECT_GE(position, 1);
    }
    if (status == dsNewRecord || status == dsCopyRecord) {
      EXPECT_GE(count, 1);
    }
    EXPECT_EQ(ds_->RowEditable(0), ds_->RowEditable(position));
    for (int32_t n = 1; n <= ds_->FieldCount(); ++n) {
      DataSourceField& f = ds_->Fields(Variant(n));
      EXPECT_EQ(&ds_->Fields(Variant(f.FieldName())), &f);
      (void)f.Value(0);
      (void)f.Symbol(0);
    }
  }
  DataSource* ds_;
};

TEST_P(DataSourceContractTest, EverySignalFindsTheSourceConsistent) {
  ConsistencyProbe probe(ds_);
  ds_->AddListener(&probe);
  open_();
  ASSERT_FALSE(ds_->MoveNext());
  ASSERT_FALSE(ds_->SetFieldValue(Variant("CURR_CODE"), Variant("USD")));
  ASSERT_EQ(ds_->UpdateRecord(), 0);
  ds_->NewRecord(0);
  ASSERT_FALSE(ds_->SetFieldValue(Variant("F_NAME"), Variant("New")));
  ASSERT_EQ(ds_->UpdateRecord(), 0);
  ds_->CopyRecord();
  ds_->UndoRecord();
  ds_->CopyRecord();
  ds_->DeleteRecord();
  ASSERT_FALSE(ds_->NewQuery());
  ASSERT_FALSE(ds_->SetFieldValue(Variant("F_REVENUE"), Variant(">0")));
  ASSERT_FALSE(ds_->ExecuteQuery());
  ASSERT_FALSE(ds_->RefineQuery());
  ds_->CancelQuery();
  ASSERT_FALSE(ds_->MoveLast());
  ds_->DeleteRecord();
  ASSERT_FALSE(ds_->Refresh());
  while (ds_->RecordCount() > 0) ds_->DeleteRecord();
  ASSERT_FALSE(ds_->NewQuery());
  ASSERT_FALSE(ds_->ExecuteQuery());
  EXPECT_GT(probe.signals, 30);
}

TEST_P(DataSourceContractTest, OpeningRaisesInitThenEditStatusChangeWithStatusAlreadyZero) {
  EXPECT_EQ(ds_->EditStatus(), dsClosed);
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  open_();
  EXPECT_EQ(rec.log, (Log{"SysDataSourceInit@0", "EditStatusChange@0"}));
  EXPECT_EQ(ds_->RecordCount(), 3);
  EXPECT_EQ(ds_->AbsolutePosition(), 1);
  EXPECT_EQ(ds_->FieldCount(), 7);
}

TEST_P(DataSourceContractTest, NewQueryRaisesBeforeThenEditStatusChangeThenAfterInStatusOne) {
  OpenQuietly();
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  EXPECT_FALSE(ds_->NewQuery());
  EXPECT_EQ(rec.log, (Log{"NewQueryBefore@0", "EditStatusChange@1", "SysNewQueryAfter@1"}));
  EXPECT_EQ(ds_->EditStatus(), dsQuery);
  EXPECT_TRUE(ValueOf(*ds_, "F_NAME").IsEmpty());
}

TEST_P(DataSourceContractTest,
       RefineQueryRaisesBeforeThenEditStatusChangeThenAfterKeepingTheLastConditions) {
  OpenQuietly();
  ASSERT_FALSE(ds_->NewQuery());
  ASSERT_FALSE(ds_->SetFieldValue(Variant("F_NAME"), Variant("g")));
  ASSERT_FALSE(ds_->ExecuteQuery());
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  EXPECT_FALSE(ds_->RefineQuery());
  EXPECT_EQ(rec.log, (Log{"RefineQueryBefore@0", "EditStatusChange@1", "SysRefineQueryAfter@1"}));
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("g"));
}

TEST_P(DataSourceContractTest, ExecuteQueryEndsInStatusZeroWithRereadingAndEditStatusChange) {
  OpenQuietly();
  ASSERT_FALSE(ds_->NewQuery());
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  EXPECT_FALSE(ds_->ExecuteQuery());
  ASSERT_FALSE(rec.log.empty());
  EXPECT_EQ(rec.log.front(), "ExecuteQueryBefore@1");
  const bool reread = std::count(rec.log.begin(), rec.log.end(), "SysDataSourceRefresh@0") +
                          std::count(rec.log.begin(), rec.log.end(), "SysMoveRecordAfter@0") >=
                      1;
  EXPECT_TRUE(reread);
  EXPECT_EQ(std::count(rec.log.begin(), rec.log.end(), "EditStatusChange@0"), 1);
  EXPECT_EQ(ds_->EditStatus(), dsBrowse);
  EXPECT_EQ(ds_->RecordCount(), 3);
}

TEST_P(DataSourceContractTest, CancelQueryRaisesBeforeThenEditStatusChangeThenAfterInStatusZero) {
  OpenQuietly();
  ASSERT_FALSE(ds_->MoveNext());
  ASSERT_FALSE(ds_->NewQuery());
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  ds_->CancelQuery();
  EXPECT_EQ(rec.log, (Log{"CancelQueryBefore@1", "EditStatusChange@0", "SysCancelQueryAfter@0"}));
  EXPECT_EQ(ds_->AbsolutePosition(), 2);
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("beta"));
}

TEST_P(DataSourceContractTest, NewRecordRaisesEditStatusChangeThenAfterWithStatusFourInside) {
  OpenQuietly();
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  ds_->NewRecord(0);
  EXPECT_EQ(rec.log, (Log{"EditStatusChange@4", "SysNewRecordAfter@4"}));
  EXPECT_TRUE(ValueOf(*ds_, "F_NAME").IsNull() || ValueOf(*ds_, "F_NAME").IsEmpty());
}

TEST_P(DataSourceContractTest, EditStatusReadInsideSysNewRecordAfterIsFour) {
  OpenQuietly();
  struct Probe : DataSourceEvents {
    DataSource* ds;
    int32_t seen = -1;
    void SysNewRecordAfter() override { seen = ds->EditStatus(); }
  } probe;
  probe.ds = ds_;
  ds_->AddListener(&probe);
  ds_->NewRecord(0);
  EXPECT_EQ(probe.seen, dsNewRecord);
}

TEST_P(DataSourceContractTest, CopyRecordRaisesEditStatusChangeThenAfterWithTheCurrentValues) {
  OpenQuietly();
  ASSERT_FALSE(ds_->MoveNext());
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  ds_->CopyRecord();
  EXPECT_EQ(rec.log, (Log{"EditStatusChange@5", "SysCopyRecordAfter@5"}));
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("beta"));
  EXPECT_EQ(ValueOf(*ds_, "F_REVENUE").ToDouble(), -50.5);
}

TEST_P(DataSourceContractTest, UpdateRecordOfNewRecordStoresItAndReturnsToStatusZero) {
  OpenQuietly();
  ds_->NewRecord(0);
  ASSERT_FALSE(ds_->SetFieldValue(Variant("F_NAME"), Variant("Delta")));
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  EXPECT_EQ(ds_->UpdateRecord(), 0);
  EXPECT_EQ(rec.log, (Log{"EditStatusChange@0", "SysUpdateRecordAfter@0"}));
  EXPECT_EQ(ds_->RecordCount(), 4);
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("Delta"));
}

TEST_P(DataSourceContractTest, UpdateRecordOfCopiedRecordStoresItAndReturnsToStatusZero) {
  OpenQuietly();
  ds_->CopyRecord();
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  EXPECT_EQ(ds_->UpdateRecord(), 0);
  EXPECT_EQ(rec.log, (Log{"EditStatusChange@0", "SysUpdateRecordAfter@0"}));
  EXPECT_EQ(ds_->RecordCount(), 4);
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("Alpha"));
}

TEST_P(DataSourceContractTest, UndoRecordOfNewRecordDiscardsItAndReturnsToTheFormerRecord) {
  OpenQuietly();
  ASSERT_FALSE(ds_->MoveLast());
  ds_->NewRecord(0);
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  ds_->UndoRecord();
  EXPECT_EQ(rec.log, (Log{"EditStatusChange@0", "SysUndoRecordAfter@0"}));
  EXPECT_EQ(ds_->RecordCount(), 3);
  EXPECT_EQ(ds_->AbsolutePosition(), 3);
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("Gamma"));
}

TEST_P(DataSourceContractTest, UndoRecordOfCopiedRecordDiscardsIt) {
  OpenQuietly();
  ds_->CopyRecord();
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  ds_->UndoRecord();
  EXPECT_EQ(rec.log, (Log{"EditStatusChange@0", "SysUndoRecordAfter@0"}));
  EXPECT_EQ(ds_->RecordCount(), 3);
}

TEST_P(DataSourceContractTest, MoveRaisesBeforeOnTheOldRecordAndAfterOnTheNew) {
  OpenQuietly();
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  EXPECT_FALSE(ds_->MoveNext());
  EXPECT_EQ(rec.log, (Log{"MoveRecordBefore@0", "SysMoveRecordAfter@0"}));
  EXPECT_EQ(rec.positions, (std::vector<int32_t>{1, 2}));
  EXPECT_FALSE(ds_->MoveLast());
  EXPECT_EQ(ds_->AbsolutePosition(), 3);
  EXPECT_FALSE(ds_->MovePrevious());
  EXPECT_EQ(ds_->AbsolutePosition(), 2);
  EXPECT_FALSE(ds_->MoveFirst());
  EXPECT_EQ(ds_->AbsolutePosition(), 1);
  EXPECT_EQ(rec.log.size(), 8u);
}

TEST_P(DataSourceContractTest, MovePastEitherEndFailsWithoutSignals) {
  OpenQuietly();
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  EXPECT_TRUE(ds_->MovePrevious());
  ASSERT_FALSE(ds_->MoveLast());
  rec.log.clear();
  EXPECT_TRUE(ds_->MoveNext());
  EXPECT_TRUE(rec.log.empty());
  EXPECT_EQ(ds_->AbsolutePosition(), 3);
}

TEST_P(DataSourceContractTest, DeleteRecordRaisesSysDeleteRecordAfterAndKeepsASensiblePosition) {
  OpenQuietly();
  ASSERT_FALSE(ds_->MoveNext());
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  ds_->DeleteRecord();
  EXPECT_EQ(rec.log, (Log{"SysDeleteRecordAfter@0"}));
  EXPECT_EQ(ds_->RecordCount(), 2);
  EXPECT_EQ(ds_->AbsolutePosition(), 2);
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("Gamma"));
  ds_->DeleteRecord();  // the last record: the position goes to the new last
  EXPECT_EQ(ds_->AbsolutePosition(), 1);
  ds_->DeleteRecord();
  EXPECT_EQ(ds_->RecordCount(), 0);
  EXPECT_EQ(ds_->AbsolutePosition(), 0);
  rec.log.clear();
  ds_->DeleteRecord();  // nothing left: nothing happens, and the source says why
  EXPECT_TRUE(rec.log.empty());
  EXPECT_EQ(ds_->RecordCount(), 0);
  EXPECT_FALSE(dialogs_.boxes.empty());
}

TEST_P(DataSourceContractTest, CancelledBeforeSignalsLeaveStatusPositionAndSetAndRaiseNoAfter) {
  struct Step {
    const char* before;
    std::function<bool(DataSource&)> run;  // returns the failure result, where there is one
    bool in_query;
  };
  const std::vector<Step> steps = {
      {"MoveRecordBefore", [](DataSource& d) { return d.MoveNext(); }, false},
      {"MoveRecordBefore", [](DataSource& d) { return d.MoveFirst(); }, false},
      {"NewQueryBefore", [](DataSource& d) { return d.NewQuery(); }, false},
      {"RefineQueryBefore", [](DataSource& d) { return d.RefineQuery(); }, false},
      {"ExecuteQueryBefore", [](DataSource& d) { return d.ExecuteQuery(); }, true},
      {"CancelQueryBefore",
       [](DataSource& d) {
         d.CancelQuery();
         return true;
       },
       true},
  };
  OpenQuietly();
  ASSERT_FALSE(ds_->MoveNext());
  for (const Step& step : steps) {
    SCOPED_TRACE(step.before);
    if (step.in_query) {
      ASSERT_FALSE(ds_->NewQuery());
      ASSERT_FALSE(ds_->SetFieldValue(Variant("F_NAME"), Variant("zzz")));
    }
    const int32_t status = ds_->EditStatus();
    const int32_t position = ds_->AbsolutePosition();
    const int32_t count = ds_->RecordCount();
    SignalRecorder rec(ds_);
    rec.cancel.insert(step.before);
    ds_->AddListener(&rec);
    EXPECT_TRUE(step.run(*ds_));
    ds_->RemoveListener(&rec);
    EXPECT_EQ(rec.log, (Log{std::string(step.before) + "@" + std::to_string(status)}));
    EXPECT_EQ(ds_->EditStatus(), status);
    EXPECT_EQ(ds_->AbsolutePosition(), position);
    EXPECT_EQ(ds_->RecordCount(), count);
    if (step.in_query) {
      EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("zzz"));
      ds_->CancelQuery();
    }
  }
}

TEST_P(DataSourceContractTest, FieldsByNumberAndByNameFindTheSameField) {
  OpenQuietly();
  for (int32_t n = 1; n <= ds_->FieldCount(); ++n) {
    DataSourceField& by_number = ds_->Fields(Variant(n));
    DataSourceField& by_name = ds_->Fields(Variant(by_number.FieldName()));
    EXPECT_EQ(&by_number, &by_name);
    EXPECT_EQ(by_name.FieldName(), by_number.FieldName());
  }
  EXPECT_EQ(ds_->Fields(Variant(int16_t{2})).FieldName(), "F_REVENUE");
  EXPECT_EQ(ds_->Fields(Variant(2.0)).FieldName(), "F_REVENUE");
}

TEST_P(DataSourceContractTest, UnknownFieldKeysFailWithItemNotFound) {
  OpenQuietly();
  EXPECT_EQ(FailureNumber([&] { ds_->Fields(Variant("F_NOPE")); }), kErrItemNotFound);
  // Names compare exactly, with case.
  EXPECT_EQ(FailureNumber([&] { ds_->Fields(Variant("f_name")); }), kErrItemNotFound);
  EXPECT_EQ(FailureNumber([&] { ds_->Fields(Variant(int32_t{0})); }), kErrItemNotFound);
  EXPECT_EQ(FailureNumber([&] { ds_->Fields(Variant(int32_t{8})); }), kErrItemNotFound);
  EXPECT_EQ(FailureNumber([&] { ds_->Fields(Variant::Null()); }), kErrTypeMismatch);
  try {
    ds_->Fields(Variant("F_NOPE"));
  } catch (const Failure& f) {
    EXPECT_NE(f.Description().find("\"F_NOPE\""), std::string::npos) << f.Description();
  }
}

TEST_P(DataSourceContractTest, FieldsDescribeTheirColumns) {
  OpenQuietly();
  DataSourceField& revenue = ds_->Fields(Variant("F_REVENUE"));
  EXPECT_EQ(revenue.DataType(), kDataTypeMoney);
  EXPECT_EQ(revenue.ReferenceName(), "CURR_CODE");
  EXPECT_EQ(revenue.Symbol(0), "$");
  EXPECT_EQ(ds_->Fields(Variant("F_DATE")).DateKind(), kDateKindDate);
  EXPECT_EQ(ds_->Fields(Variant("F_PROB")).NumberKind(), kNumberKindPercent);
  EXPECT_FALSE(ds_->Fields(Variant("F_ID")).Updatable());
  EXPECT_TRUE(ds_->Fields(Variant("F_NAME")).Updatable());
  EXPECT_EQ(ValueOf(*ds_, "F_DATE"), Variant(Date::FromParts(2026, 3, 1)));
  ASSERT_FALSE(ds_->MoveNext());
  EXPECT_EQ(revenue.Symbol(0), "¥");
}

TEST_P(DataSourceContractTest, RowEditableZeroAnswersForTheCurrentRecord) {
  OpenQuietly();
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(ds_->RowEditable(0), ds_->RowEditable(ds_->AbsolutePosition()));
    ds_->MoveNext();
  }
}

TEST_P(DataSourceContractTest, UpdateRecordWithNothingPendingReturnsZeroAlsoInQueryMode) {
  OpenQuietly();
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  EXPECT_EQ(ds_->UpdateRecord(), 0);
  ASSERT_FALSE(ds_->NewQuery());
  ASSERT_FALSE(ds_->SetFieldValue(Variant("F_NAME"), Variant("a")));
  rec.log.clear();
  EXPECT_EQ(ds_->UpdateRecord(), 0);
  EXPECT_EQ(ds_->EditStatus(), dsQuery);
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("a"));
}

TEST_P(DataSourceContractTest, SelectRowsStatusIsNotOneByDefault) {
  OpenQuietly();
  EXPECT_NE(ds_->SelectRowsStatus(), 1);
  EXPECT_FALSE(ds_->ReadOnly());
}

TEST_P(DataSourceContractTest,
       AcceptedValueRaisesValueChangeWithTheFieldNumberAndIsReadableInside) {
  OpenQuietly();
  struct Probe : DataSourceEvents {
    DataSource* ds;
    std::vector<int32_t> numbers;
    Variant seen;
    void ValueChange(const Variant&, int32_t n) override {
      numbers.push_back(n);
      seen = ds->Fields(Variant(n)).Value(0);
    }
  } probe;
  probe.ds = ds_;
  ds_->AddListener(&probe);
  EXPECT_FALSE(ds_->SetFieldValue(Variant("F_NAME"), Variant("Omega")));
  EXPECT_EQ(probe.numbers, (std::vector<int32_t>{1}));
  EXPECT_EQ(probe.seen, Variant("Omega"));
  EXPECT_EQ(ds_->EditStatus(), dsBrowse);
}

TEST_P(DataSourceContractTest, ChangedCurrencyRaisesSymbolChangeOnItsMoneyField) {
  OpenQuietly();
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  EXPECT_FALSE(ds_->SetFieldValue(Variant("CURR_CODE"), Variant("CNY")));
  EXPECT_EQ(rec.log, (Log{"ValueChange(3)@0", "SymbolChange(2)@0"}));
  EXPECT_EQ(ds_->Fields(Variant("F_REVENUE")).Symbol(0), "¥");
  rec.log.clear();
  EXPECT_FALSE(ds_->SetFieldValue(Variant("F_NAME"), Variant("x")));
  EXPECT_EQ(rec.log, (Log{"ValueChange(1)@0"}));
}

TEST_P(DataSourceContractTest, PendingChangeIsStoredByUpdateRecordAndDiscardedByUndoRecord) {
  OpenQuietly();
  ASSERT_FALSE(ds_->SetFieldValue(Variant("F_NAME"), Variant("Changed")));
  ds_->UndoRecord();
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("Alpha"));
  ASSERT_FALSE(ds_->SetFieldValue(Variant("F_NAME"), Variant("Changed")));
  EXPECT_EQ(ds_->UpdateRecord(), 0);
  ds_->UndoRecord();
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("Changed"));
}

TEST_P(DataSourceContractTest, SetValueStoresWithoutValidationAndWithoutSignals) {
  OpenQuietly();
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  ds_->Fields(Variant("F_REVENUE")).SetValue(Variant("not money"), 0);
  EXPECT_TRUE(rec.log.empty());
  EXPECT_EQ(ValueOf(*ds_, "F_REVENUE"), Variant("not money"));
}

TEST_P(DataSourceContractTest, ParseFieldValueTurnsTheDisplayTextIntoTheStoredFormInPlace) {
  OpenQuietly();
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  Variant money("-$1,234.50");
  ds_->ParseFieldValue(Variant("F_REVENUE"), money, 0);
  EXPECT_EQ(money, Variant(-1234.5));
  Variant percent("45%");
  ds_->ParseFieldValue(Variant("F_PROB"), percent, 0);
  EXPECT_DOUBLE_EQ(percent.ToDouble(), 0.45);
  Variant date("2026-03-01");
  ds_->ParseFieldValue(Variant("F_DATE"), date, 0);
  EXPECT_EQ(date, Variant(Date::FromParts(2026, 3, 1)));
  Variant empty("");
  ds_->ParseFieldValue(Variant("F_DATE"), empty, 0);
  EXPECT_TRUE(empty.IsNull());
  EXPECT_TRUE(rec.log.empty());
  EXPECT_EQ(ValueOf(*ds_, "F_REVENUE"), Variant(100.0));  // nothing stored
  Variant bad("abc");
  EXPECT_EQ(FailureNumber([&] { ds_->ParseFieldValue(Variant("F_REVENUE"), bad, 0); }),
            kErrTypeMismatch);
  EXPECT_EQ(bad, Variant("abc"));
}

TEST_P(DataSourceContractTest, RefusedValueReturnsTrueSaysWhyAndChangesNothing) {
  OpenQuietly();
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  EXPECT_TRUE(ds_->SetFieldValue(Variant("F_DATE"), Variant("next tuesday")));
  EXPECT_TRUE(rec.log.empty());
  EXPECT_EQ(ValueOf(*ds_, "F_DATE"), Variant(Date::FromParts(2026, 3, 1)));
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_EQ(dialogs_.styles[0], MessageBoxStyle::kPlain);
  EXPECT_NE(dialogs_.boxes[0].find("F_DATE"), std::string::npos) << dialogs_.boxes[0];
}

TEST_P(DataSourceContractTest, FieldThatIsNotUpdatableRefusesValues) {
  OpenQuietly();
  EXPECT_TRUE(ds_->SetFieldValue(Variant("F_ID"), Variant("7")));
  EXPECT_EQ(ValueOf(*ds_, "F_ID").ToDouble(), 1);
  EXPECT_EQ(dialogs_.boxes.size(), 1u);
}

TEST_P(DataSourceContractTest, QueryConditionsFilterTheSetOnExecute) {
  OpenQuietly();
  const auto run = [&](const char* field, const char* condition) {
    EXPECT_FALSE(ds_->NewQuery());
    EXPECT_FALSE(ds_->SetFieldValue(Variant(field), Variant(condition)))
        << field << " " << condition;
    EXPECT_FALSE(ds_->ExecuteQuery());
    std::vector<std::string> names;
    if (ds_->RecordCount() > 0 && !ds_->MoveFirst()) {
      do {
        names.push_back(ValueOf(*ds_, "F_NAME").AsText());
      } while (!ds_->MoveNext());
    }
    return names;
  };
  using Names = std::vector<std::string>;
  EXPECT_EQ(run("F_NAME", "b"), (Names{"beta"}));
  EXPECT_EQ(run("F_NAME", "A"), (Names{"Alpha"}));  // without regard to case
  EXPECT_EQ(run("F_NAME", "*a"), (Names{"Alpha", "beta", "Gamma"}));
  EXPECT_EQ(run("F_NAME", "?amm"), (Names{"Gamma"}));
  EXPECT_EQ(run("F_REVENUE", ">0"), (Names{"Alpha", "Gamma"}));
  EXPECT_EQ(run("F_REVENUE", "<0"), (Names{"beta"}));
  EXPECT_EQ(run("F_REVENUE", "<=100"), (Names{"Alpha", "beta"}));
  EXPECT_EQ(run("F_REVENUE", ">=2000"), (Names{"Gamma"}));
  EXPECT_EQ(run("F_REVENUE", "<>100"), (Names{"beta", "Gamma"}));
  EXPECT_EQ(run("F_REVENUE", "=-50.5"), (Names{"beta"}));
  EXPECT_EQ(run("F_REVENUE", "-100..1,000"), (Names{"Alpha", "beta"}));
  EXPECT_EQ(run("F_DATE", "2026-04-01..2026-05-20"), (Names{"beta", "Gamma"}));
  EXPECT_EQ(run("F_DATE", "<2026-04-15"), (Names{"Alpha"}));
  EXPECT_EQ(run("F_DATE", "2026-03-01"), (Names{"Alpha"}));
  EXPECT_EQ(run("F_PROB", ">40%"), (Names{"Alpha", "Gamma"}));
  EXPECT_EQ(run("F_ID", "2..3"), (Names{"beta", "Gamma"}));
  EXPECT_EQ(run("F_FLAG", "1"), (Names{"Alpha"}));
  EXPECT_EQ(run("F_FLAG", "0"), (Names{"beta", "Gamma"}));  // Null counts as 0
  EXPECT_EQ(run("F_FLAG", ""), (Names{"Alpha", "beta", "Gamma"}));
  EXPECT_EQ(run("F_NAME", "zzz"), (Names{}));
  EXPECT_EQ(ds_->AbsolutePosition(), 0);
}

TEST_P(DataSourceContractTest, ConditionsOfSeveralFieldsMustAllHold) {
  OpenQuietly();
  ASSERT_FALSE(ds_->NewQuery());
  ASSERT_FALSE(ds_->SetFieldValue(Variant("CURR_CODE"), Variant("usd")));
  ASSERT_FALSE(ds_->SetFieldValue(Variant("F_REVENUE"), Variant(">500")));
  ASSERT_FALSE(ds_->ExecuteQuery());
  EXPECT_EQ(ds_->RecordCount(), 1);
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("Gamma"));
}

TEST_P(DataSourceContractTest, ChangedConditionRaisesValueQueryChange) {
  OpenQuietly();
  ASSERT_FALSE(ds_->NewQuery());
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  EXPECT_FALSE(ds_->SetFieldValue(Variant("F_REVENUE"), Variant(">10")));
  EXPECT_EQ(rec.log, (Log{"ValueQueryChange@1"}));
  EXPECT_EQ(ValueOf(*ds_, "F_REVENUE"), Variant(">10"));
  EXPECT_EQ(ds_->Fields(Variant("F_REVENUE")).Symbol(0), "");
}

TEST_P(DataSourceContractTest, UnparseableConditionIsRefusedWithAPlainMessage) {
  OpenQuietly();
  ASSERT_FALSE(ds_->NewQuery());
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  for (const char* c : {">abc", "1..", "..5", "<="}) {
    EXPECT_TRUE(ds_->SetFieldValue(Variant("F_REVENUE"), Variant(c))) << c;
  }
  EXPECT_TRUE(ds_->SetFieldValue(Variant("F_DATE"), Variant("soon")));
  EXPECT_TRUE(ds_->SetFieldValue(Variant("F_FLAG"), Variant("2")));
  EXPECT_TRUE(rec.log.empty());
  EXPECT_TRUE(ValueOf(*ds_, "F_REVENUE").IsEmpty());
  ASSERT_EQ(dialogs_.boxes.size(), 6u);
  for (MessageBoxStyle s : dialogs_.styles) EXPECT_EQ(s, MessageBoxStyle::kPlain);
}

TEST_P(DataSourceContractTest, ListenerThatMovesInsideSysMoveRecordAfterIsSafe) {
  OpenQuietly();
  struct Mover : DataSourceEvents {
    DataSource* ds;
    int depth = 0;
    void SysMoveRecordAfter() override {
      if (depth++ == 0) ds->MoveNext();
    }
  } mover;
  mover.ds = ds_;
  ds_->AddListener(&mover);
  EXPECT_FALSE(ds_->MoveNext());
  EXPECT_EQ(ds_->AbsolutePosition(), 3);
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("Gamma"));
}

TEST_P(DataSourceContractTest, ListenerThatMovesInsideMoveRecordBeforeLeavesAConsistentSet) {
  OpenQuietly();
  struct Mover : DataSourceEvents {
    DataSource* ds;
    int depth = 0;
    void MoveRecordBefore(bool&) override {
      if (depth++ == 0) ds->MoveLast();
    }
  } mover;
  mover.ds = ds_;
  ds_->AddListener(&mover);
  ds_->MoveNext();  // may fail now that the last record is current; must not break anything
  EXPECT_GE(ds_->AbsolutePosition(), 1);
  EXPECT_LE(ds_->AbsolutePosition(), ds_->RecordCount());
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("Gamma"));
}

TEST_P(DataSourceContractTest, ListenerThatSetsValuesInsideValueChangeIsSafe) {
  OpenQuietly();
  struct Setter : DataSourceEvents {
    DataSource* ds;
    void ValueChange(const Variant&, int32_t n) override {
      if (n == 1) ds->SetFieldValue(Variant("CURR_CODE"), Variant("CNY"));
    }
  } setter;
  setter.ds = ds_;
  SignalRecorder rec(ds_);
  ds_->AddListener(&setter);
  ds_->AddListener(&rec);
  EXPECT_FALSE(ds_->SetFieldValue(Variant("F_NAME"), Variant("Zeta")));
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("Zeta"));
  EXPECT_EQ(ValueOf(*ds_, "CURR_CODE"), Variant("CNY"));
  // The nested change is heard first, then the outer one.
  EXPECT_EQ(rec.log, (Log{"ValueChange(3)@0", "SymbolChange(2)@0", "ValueChange(1)@0"}));
}

TEST_P(DataSourceContractTest, ListenerThatSavesInsideMoveRecordBeforeKeepsTheValue) {
  OpenQuietly();
  struct Saver : DataSourceEvents {
    DataSource* ds;
    void MoveRecordBefore(bool&) override {
      ds->SetFieldValue(Variant("F_NAME"), Variant("Saved on leaving"));
    }
  } saver;
  saver.ds = ds_;
  ds_->AddListener(&saver);
  EXPECT_FALSE(ds_->MoveNext());
  ds_->RemoveListener(&saver);
  ASSERT_FALSE(ds_->MoveFirst());
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("Saved on leaving"));
}

TEST_P(DataSourceContractTest, ListenerThatRemovesItselfInsideASignalIsNotCalledAgain) {
  OpenQuietly();
  struct Leaver : DataSourceEvents {
    DataSource* ds;
    int calls = 0;
    void SysMoveRecordAfter() override {
      ++calls;
      ds->RemoveListener(this);
    }
  } leaver;
  leaver.ds = ds_;
  SignalRecorder rec(ds_);
  ds_->AddListener(&leaver);
  ds_->AddListener(&rec);
  EXPECT_FALSE(ds_->MoveNext());
  EXPECT_FALSE(ds_->MoveNext());
  EXPECT_EQ(leaver.calls, 1);
  EXPECT_EQ(std::count(rec.log.begin(), rec.log.end(), "SysMoveRecordAfter@0"), 2);
}

TEST_P(DataSourceContractTest, ListenerRemovedByAnotherDuringASignalIsSkipped) {
  OpenQuietly();
  SignalRecorder second(ds_);
  struct Remover : DataSourceEvents {
    DataSource* ds;
    DataSourceEvents* other;
    void SysMoveRecordAfter() override { ds->RemoveListener(other); }
  } remover;
  remover.ds = ds_;
  remover.other = &second;
  ds_->AddListener(&remover);
  ds_->AddListener(&second);
  EXPECT_FALSE(ds_->MoveNext());
  EXPECT_EQ(second.log, (Log{"MoveRecordBefore@0"}));
}

TEST_P(DataSourceContractTest, NewRecordOnAnEmptySetCanBeStored) {
  OpenQuietly();
  while (ds_->RecordCount() > 0) ds_->DeleteRecord();
  ds_->NewRecord(0);
  EXPECT_EQ(ds_->EditStatus(), dsNewRecord);
  EXPECT_GE(ds_->RecordCount(), 1);
  EXPECT_GE(ds_->AbsolutePosition(), 1);
  EXPECT_FALSE(ds_->SetFieldValue(Variant("F_NAME"), Variant("First")));
  EXPECT_EQ(ds_->UpdateRecord(), 0);
  EXPECT_EQ(ds_->RecordCount(), 1);
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("First"));
}

TEST_P(DataSourceContractTest, DeleteRecordThrowsAwayAPendingNewRecordEvenWhenDeletionIsForbidden) {
  OpenQuietly();
  ds_->SetAllowDelete(false);
  ds_->NewRecord(0);
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  ds_->DeleteRecord();
  EXPECT_EQ(ds_->EditStatus(), dsBrowse);
  EXPECT_EQ(ds_->RecordCount(), 3);
  EXPECT_EQ(rec.log.back(), "SysDeleteRecordAfter@0");
}

TEST_P(DataSourceContractTest, ForbiddenOperationsDoNothingAndSayWhy) {
  OpenQuietly();
  ds_->SetAllowAddNew(false);
  ds_->SetAllowCopy(false);
  ds_->SetAllowDelete(false);
  ds_->SetAllowModify(false);
  EXPECT_FALSE(ds_->AllowAddNew());
  EXPECT_FALSE(ds_->AllowCopy());
  EXPECT_FALSE(ds_->AllowDelete());
  EXPECT_FALSE(ds_->AllowModify());
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  ds_->NewRecord(0);
  ds_->CopyRecord();
  ds_->DeleteRecord();
  EXPECT_TRUE(ds_->SetFieldValue(Variant("F_NAME"), Variant("x")));
  EXPECT_TRUE(rec.log.empty());
  EXPECT_EQ(ds_->EditStatus(), dsBrowse);
  EXPECT_EQ(ds_->RecordCount(), 3);
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("Alpha"));
  EXPECT_EQ(dialogs_.boxes.size(), 4u);
}

TEST_P(DataSourceContractTest, NewRecordIsEditableWithAllowAddNewThoughModifyingIsForbidden) {
  OpenQuietly();
  ds_->SetAllowModify(false);
  ds_->NewRecord(0);
  EXPECT_FALSE(ds_->SetFieldValue(Variant("F_NAME"), Variant("New")));
  ds_->UndoRecord();
  ds_->SetAllowCopy(true);
  ds_->CopyRecord();
  EXPECT_FALSE(ds_->SetFieldValue(Variant("F_NAME"), Variant("Copy")));
}

// --- The positional move of hosts ------------------------------------------------------------

TEST_P(DataSourceContractTest, MoveToPositionRaisesTheSignalsOfAMoveAndLandsOnThatRecord) {
  ASSERT_TRUE(move_to_position_) << "the source offers no positional move";
  OpenQuietly();
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  EXPECT_FALSE(move_to_position_(3));
  EXPECT_EQ(rec.log, (Log{"MoveRecordBefore@0", "SysMoveRecordAfter@0"}));
  EXPECT_EQ(rec.positions, (std::vector<int32_t>{1, 3}));
  EXPECT_EQ(ds_->AbsolutePosition(), 3);
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("Gamma"));
  EXPECT_FALSE(move_to_position_(2));
  EXPECT_EQ(ds_->AbsolutePosition(), 2);
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("beta"));
  // Moves by one step go on from there.
  EXPECT_FALSE(ds_->MovePrevious());
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("Alpha"));
  EXPECT_FALSE(move_to_position_(1));  // the current record: signals as MoveFirst on the first
  EXPECT_EQ(rec.log.size(), 8u);
  EXPECT_TRUE(dialogs_.boxes.empty());
}

TEST_P(DataSourceContractTest, MoveToPositionOutsideTheSetFailsWithoutSignalsOrWords) {
  ASSERT_TRUE(move_to_position_);
  OpenQuietly();
  ASSERT_FALSE(ds_->MoveNext());
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  for (int32_t position : {0, 4, -1, 1000000}) {
    EXPECT_TRUE(move_to_position_(position)) << position;
  }
  EXPECT_TRUE(rec.log.empty());
  EXPECT_TRUE(dialogs_.boxes.empty());
  EXPECT_EQ(ds_->AbsolutePosition(), 2);
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("beta"));
}

TEST_P(DataSourceContractTest, MoveToPositionIsRefusedWhileANewRecordIsPending) {
  ASSERT_TRUE(move_to_position_);
  OpenQuietly();
  ds_->NewRecord(0);
  ASSERT_FALSE(ds_->SetFieldValue(Variant("F_NAME"), Variant("Delta")));
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  EXPECT_TRUE(move_to_position_(1));
  EXPECT_TRUE(rec.log.empty());
  EXPECT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_EQ(ds_->EditStatus(), dsNewRecord);
  EXPECT_EQ(ds_->AbsolutePosition(), 4);
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("Delta"));
}

TEST_P(DataSourceContractTest, MoveToPositionFailsInAClosedSetAndInQueryMode) {
  ASSERT_TRUE(move_to_position_);
  EXPECT_TRUE(move_to_position_(1));
  EXPECT_EQ(ds_->EditStatus(), dsClosed);
  OpenQuietly();
  ASSERT_FALSE(ds_->NewQuery());
  SignalRecorder rec(ds_);
  ds_->AddListener(&rec);
  EXPECT_TRUE(move_to_position_(2));
  EXPECT_TRUE(rec.log.empty());
  EXPECT_EQ(ds_->EditStatus(), dsQuery);
}

TEST_P(DataSourceContractTest, CancelledMoveToPositionLeavesStatusPositionAndRecord) {
  ASSERT_TRUE(move_to_position_);
  OpenQuietly();
  SignalRecorder rec(ds_);
  rec.cancel.insert("MoveRecordBefore");
  ds_->AddListener(&rec);
  EXPECT_TRUE(move_to_position_(3));
  EXPECT_EQ(rec.log, (Log{"MoveRecordBefore@0"}));
  EXPECT_EQ(ds_->AbsolutePosition(), 1);
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("Alpha"));
}

TEST_P(DataSourceContractTest, MoveToPositionStoresAPendingChangeFirst) {
  ASSERT_TRUE(move_to_position_);
  OpenQuietly();
  ASSERT_FALSE(ds_->SetFieldValue(Variant("F_NAME"), Variant("Alpha changed")));
  EXPECT_FALSE(move_to_position_(3));
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("Gamma"));
  ASSERT_FALSE(move_to_position_(1));
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("Alpha changed"));
}

TEST_P(DataSourceContractTest, MoveToPositionCountsWithinTheExecutedQuery) {
  ASSERT_TRUE(move_to_position_);
  OpenQuietly();
  ASSERT_FALSE(ds_->NewQuery());
  ASSERT_FALSE(ds_->SetFieldValue(Variant("F_REVENUE"), Variant(">0")));
  ASSERT_FALSE(ds_->ExecuteQuery());
  ASSERT_EQ(ds_->RecordCount(), 2);
  EXPECT_FALSE(move_to_position_(2));
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("Gamma"));
  EXPECT_EQ(ds_->AbsolutePosition(), 2);
  EXPECT_TRUE(move_to_position_(3));
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("Gamma"));
}

TEST_P(DataSourceContractTest, ListenerThatMovesToAnotherPositionInsideMoveRecordBeforeWins) {
  ASSERT_TRUE(move_to_position_);
  OpenQuietly();
  struct Mover : DataSourceEvents {
    std::function<bool(int32_t)> move;
    bool done = false;
    void MoveRecordBefore(bool&) override {
      if (done) return;
      done = true;
      move(2);
    }
  } mover;
  mover.move = move_to_position_;
  ds_->AddListener(&mover);
  // The listener's move comes first; the outer one is then decided again from there.
  EXPECT_FALSE(move_to_position_(3));
  EXPECT_EQ(ds_->AbsolutePosition(), 3);
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("Gamma"));
  ConsistencyProbe probe(ds_);
  ds_->AddListener(&probe);
  EXPECT_FALSE(move_to_position_(1));
  EXPECT_EQ(ValueOf(*ds_, "F_NAME"), Variant("Alpha"));
  EXPECT_GT(probe.signals, 0);
}

}  // namespace
}  // namespace tarnsheets
