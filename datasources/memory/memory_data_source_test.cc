#include "datasources/memory/memory_data_source.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "datasources/common/data_source_contract_test.h"

namespace tarnsheets {
namespace {

using Log = std::vector<std::string>;

std::vector<MemoryFieldDefinition> StandardFields() {
  return {
      {"F_NAME", kDataTypeText, 0, 0, true, ""},
      {"F_REVENUE", kDataTypeMoney, 0, 0, true, "CURR_CODE"},
      {"CURR_CODE", kDataTypeText, 0, 0, true, ""},
      {"F_DATE", kDataTypeDate, kDateKindDate, 0, true, ""},
      {"F_PROB", kDataTypeNumber, 0, kNumberKindPercent, true, ""},
      {"F_FLAG", kDataTypeYesNo, 0, 0, true, ""},
      {"F_ID", kDataTypeWholeNumber, 0, 0, false, ""},
  };
}

std::unique_ptr<MemoryDataSource> StandardSource(Dialogs* dialogs) {
  auto s = std::make_unique<MemoryDataSource>(StandardFields(), dialogs);
  s->AddRow({Variant("Alpha"), Variant(100.0), Variant("USD"), Variant(Date::FromParts(2026, 3, 1)),
             Variant(0.45), Variant(int32_t{1}), Variant(int32_t{1})});
  s->AddRow({Variant("beta"), Variant(-50.5), Variant("CNY"), Variant(Date::FromParts(2026, 4, 15)),
             Variant(0.1), Variant(int32_t{0}), Variant(int32_t{2})});
  s->AddRow({Variant("Gamma"), Variant(2000.0), Variant("USD"),
             Variant(Date::FromParts(2026, 5, 20)), Variant(0.9), Variant::Null(),
             Variant(int32_t{3})});
  s->SetSymbol("USD", "$");
  s->SetSymbol("CNY", "¥");
  return s;
}

INSTANTIATE_TEST_SUITE_P(Memory, DataSourceContractTest,
                         ::testing::Values(DataSourceContractFactory{
                             "Memory",
                             [](Dialogs* dialogs) {
                               auto s = StandardSource(dialogs);
                               MemoryDataSource* raw = s.get();
                               return ContractSource{
                                   std::move(s), [raw] { raw->Open(); },
                                   [raw](int32_t p) { return raw->MoveToPosition(p); }};
                             }}),
                         [](const ::testing::TestParamInfo<DataSourceContractFactory>& info) {
                           return info.param.name;
                         });

class MemoryDataSourceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ds_ = StandardSource(&dialogs_);
    ds_->Open();
  }
  Variant Value(const char* field) { return ds_->Fields(Variant(field)).Value(0); }
  bool Set(const char* field, const char* text) {
    return ds_->SetFieldValue(Variant(field), Variant(text));
  }

  RecordingDialogs dialogs_;
  std::unique_ptr<MemoryDataSource> ds_;
};

int FailureNumber(const std::function<void()>& fn) {
  try {
    fn();
  } catch (const Failure& f) {
    return f.Number();
  }
  return 0;
}

TEST(MemoryDataSourceBuildTest, StartsClosedWithNothingToShow) {
  auto ds = StandardSource(nullptr);
  EXPECT_EQ(ds->EditStatus(), dsClosed);
  EXPECT_EQ(ds->RecordCount(), 0);
  EXPECT_EQ(ds->AbsolutePosition(), 0);
  EXPECT_TRUE(ds->Fields(Variant("F_NAME")).Value(0).IsEmpty());
  EXPECT_TRUE(ds->MoveNext());
  EXPECT_TRUE(ds->SetFieldValue(Variant("F_NAME"), Variant("x")));  // silent without dialogs
}

TEST(MemoryDataSourceBuildTest, BadDefinitionsFailNamingTheField) {
  const auto fails = [](std::vector<MemoryFieldDefinition> defs, const std::string& part) {
    try {
      MemoryDataSource ds(std::move(defs));
    } catch (const Failure& f) {
      EXPECT_EQ(f.Number(), kErrInvalidProcedureCall);
      EXPECT_NE(f.Description().find(part), std::string::npos) << f.Description();
      return;
    }
    ADD_FAILURE() << "no failure for " << part;
  };
  fails({{"A", 0, 0, 0, true, ""}, {"A", 0, 0, 0, true, ""}}, "already used");
  fails({{"", 0, 0, 0, true, ""}}, "has no name");
  fails({{"A", 9, 0, 0, true, ""}}, "type 9");
  fails({{"A", 2, 7, 0, true, ""}}, "dateKind 7");
  fails({{"A", 5, 0, 3, true, ""}}, "numberKind 3");
  fails({{"A", 4, 0, 0, true, "NOPE"}}, "\"NOPE\" names no field");
}

TEST(MemoryDataSourceBuildTest, RowsCanBeAddedOnlyWhileClosedAndNotLongerThanTheFields) {
  auto ds = StandardSource(nullptr);
  EXPECT_EQ(FailureNumber([&] { ds->AddRow(std::vector<Variant>(8)); }), kErrInvalidProcedureCall);
  ds->AddRow({Variant("Short")});
  EXPECT_EQ(ds->StoredRowCount(), 4);
  ds->Open();
  EXPECT_EQ(FailureNumber([&] { ds->AddRow({Variant("x")}); }), kErrInvalidProcedureCall);
  ds->MoveLast();
  EXPECT_TRUE(ds->Fields(Variant("F_REVENUE")).Value(0).IsEmpty());
}

TEST_F(MemoryDataSourceTest, ExecuteQueryEndsWithRefreshThenEditStatusChangeOnTheFirstRecord) {
  ASSERT_FALSE(ds_->MoveLast());
  ASSERT_FALSE(ds_->NewQuery());
  SignalRecorder rec(ds_.get());
  ds_->AddListener(&rec);
  ASSERT_FALSE(ds_->ExecuteQuery());
  EXPECT_EQ(rec.log, (Log{"ExecuteQueryBefore@1", "SysDataSourceRefresh@0", "EditStatusChange@0"}));
  EXPECT_EQ(rec.positions[1], 1);
}

TEST_F(MemoryDataSourceTest, ExecuteQueryOutsideQueryModeRunsTheLastQueryAgain) {
  ASSERT_FALSE(ds_->NewQuery());
  ASSERT_FALSE(Set("F_NAME", "g"));
  ASSERT_FALSE(ds_->ExecuteQuery());
  SignalRecorder rec(ds_.get());
  ds_->AddListener(&rec);
  ASSERT_FALSE(ds_->ExecuteQuery());
  EXPECT_EQ(rec.log, (Log{"ExecuteQueryBefore@0", "SysDataSourceRefresh@0"}));
  EXPECT_EQ(ds_->RecordCount(), 1);
}

TEST_F(MemoryDataSourceTest, ExecuteQueryFromAPendingNewRecordStoresItAndAnnouncesStatusZero) {
  ds_->NewRecord(0);
  ASSERT_FALSE(Set("F_NAME", "Pending"));
  SignalRecorder rec(ds_.get());
  ds_->AddListener(&rec);
  ASSERT_FALSE(ds_->ExecuteQuery());
  EXPECT_EQ(rec.log, (Log{"ExecuteQueryBefore@4", "SysDataSourceRefresh@0", "EditStatusChange@0"}));
  EXPECT_EQ(ds_->RecordCount(), 4);
  EXPECT_EQ(ds_->StoredRowCount(), 4);
}

TEST_F(MemoryDataSourceTest, NewQueryFromAPendingNewRecordStoresIt) {
  ds_->NewRecord(0);
  ASSERT_FALSE(Set("F_NAME", "Pending"));
  SignalRecorder rec(ds_.get());
  ds_->AddListener(&rec);
  ASSERT_FALSE(ds_->NewQuery());
  EXPECT_EQ(rec.log, (Log{"NewQueryBefore@4", "EditStatusChange@1", "SysNewQueryAfter@1"}));
  EXPECT_EQ(ds_->StoredRowCount(), 4);
  ds_->CancelQuery();
  EXPECT_EQ(ds_->AbsolutePosition(), 4);
  EXPECT_EQ(Value("F_NAME"), Variant("Pending"));
}

TEST_F(MemoryDataSourceTest, NewQueryStartsWithEmptyConditionsAfterARefinedOne) {
  ASSERT_FALSE(ds_->NewQuery());
  ASSERT_FALSE(Set("F_NAME", "g"));
  ASSERT_FALSE(ds_->ExecuteQuery());
  ASSERT_FALSE(ds_->NewQuery());
  EXPECT_TRUE(Value("F_NAME").IsEmpty());
  ASSERT_FALSE(ds_->ExecuteQuery());
  EXPECT_EQ(ds_->RecordCount(), 3);
}

TEST_F(MemoryDataSourceTest, CancelQueryKeepsTheLastExecutedQueryForRefine) {
  ASSERT_FALSE(ds_->NewQuery());
  ASSERT_FALSE(Set("F_NAME", "g"));
  ASSERT_FALSE(ds_->ExecuteQuery());
  ASSERT_FALSE(ds_->RefineQuery());
  ASSERT_FALSE(Set("F_NAME", "a"));
  ds_->CancelQuery();
  EXPECT_EQ(ds_->RecordCount(), 1);
  ASSERT_FALSE(ds_->RefineQuery());
  EXPECT_EQ(Value("F_NAME"), Variant("g"));
}

TEST_F(MemoryDataSourceTest, QueryStepsInClosedStatusFailAndSayWhy) {
  ds_->Close();
  SignalRecorder rec(ds_.get());
  ds_->AddListener(&rec);
  EXPECT_TRUE(ds_->NewQuery());
  EXPECT_TRUE(ds_->RefineQuery());
  EXPECT_TRUE(ds_->ExecuteQuery());
  ds_->CancelQuery();
  EXPECT_TRUE(rec.log.empty());
  EXPECT_EQ(dialogs_.boxes.size(), 3u);
}

TEST_F(MemoryDataSourceTest, MovesAreRefusedWhileANewRecordIsPending) {
  ds_->NewRecord(0);
  SignalRecorder rec(ds_.get());
  ds_->AddListener(&rec);
  EXPECT_TRUE(ds_->MoveFirst());
  EXPECT_TRUE(rec.log.empty());
  EXPECT_EQ(ds_->EditStatus(), dsNewRecord);
  EXPECT_EQ(ds_->AbsolutePosition(), 4);
  ASSERT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_EQ(dialogs_.boxes[0],
            "TarnDataSource|The new record is not stored yet. Store it or cancel it before "
            "moving to another record.");
}

TEST_F(MemoryDataSourceTest, NewRecordCountsAsTheRecordAfterTheLast) {
  ds_->NewRecord(0);
  EXPECT_EQ(ds_->RecordCount(), 4);
  EXPECT_EQ(ds_->AbsolutePosition(), 4);
  EXPECT_TRUE(ds_->RowEditable(0));
  EXPECT_TRUE(Value("F_REVENUE").IsNull());
  EXPECT_EQ(ds_->StoredRowCount(), 3);
}

TEST_F(MemoryDataSourceTest, MoveStoresAPendingChangeOfTheRecordItLeaves) {
  ASSERT_FALSE(Set("F_NAME", "Changed"));
  EXPECT_TRUE(ds_->HasPendingRecord());
  ASSERT_FALSE(ds_->MoveNext());
  EXPECT_FALSE(ds_->HasPendingRecord());
  ASSERT_FALSE(ds_->MovePrevious());
  EXPECT_EQ(Value("F_NAME"), Variant("Changed"));
}

TEST_F(MemoryDataSourceTest, RefreshDropsPendingChangesAndSignalsRefresh) {
  ASSERT_FALSE(Set("F_NAME", "Changed"));
  SignalRecorder rec(ds_.get());
  ds_->AddListener(&rec);
  EXPECT_FALSE(ds_->Refresh());
  EXPECT_EQ(rec.log, (Log{"SysDataSourceRefresh@0"}));
  EXPECT_EQ(Value("F_NAME"), Variant("Alpha"));
}

TEST_F(MemoryDataSourceTest, RefreshOfAPendingNewRecordReturnsToStatusZero) {
  ds_->NewRecord(0);
  SignalRecorder rec(ds_.get());
  ds_->AddListener(&rec);
  EXPECT_FALSE(ds_->Refresh());
  EXPECT_EQ(rec.log, (Log{"SysDataSourceRefresh@0", "EditStatusChange@0"}));
  EXPECT_EQ(ds_->RecordCount(), 3);
}

TEST_F(MemoryDataSourceTest, NewRecordWhileOneIsPendingStoresTheFirst) {
  ds_->NewRecord(0);
  ASSERT_FALSE(Set("F_NAME", "One"));
  SignalRecorder rec(ds_.get());
  ds_->AddListener(&rec);
  ds_->NewRecord(0);
  EXPECT_EQ(rec.log, (Log{"SysNewRecordAfter@4"}));  // the status stayed 4
  EXPECT_EQ(ds_->StoredRowCount(), 4);
  EXPECT_EQ(ds_->RecordCount(), 5);
  ds_->UndoRecord();
  EXPECT_EQ(Value("F_NAME"), Variant("One"));
}

TEST_F(MemoryDataSourceTest, UndoRecordInStatusZeroDiscardsChangesWithoutEditStatusChange) {
  ASSERT_FALSE(Set("F_NAME", "Changed"));
  SignalRecorder rec(ds_.get());
  ds_->AddListener(&rec);
  ds_->UndoRecord();
  EXPECT_EQ(rec.log, (Log{"SysUndoRecordAfter@0"}));
  EXPECT_EQ(Value("F_NAME"), Variant("Alpha"));
}

TEST_F(MemoryDataSourceTest, UpdateRecordOfAChangedStoredRecordRaisesOnlyTheAfterSignal) {
  ASSERT_FALSE(Set("F_NAME", "Changed"));
  SignalRecorder rec(ds_.get());
  ds_->AddListener(&rec);
  EXPECT_EQ(ds_->UpdateRecord(), 0);
  EXPECT_EQ(rec.log, (Log{"SysUpdateRecordAfter@0"}));
}

TEST_F(MemoryDataSourceTest, UpdateRecordOnAReadOnlySourceRefusesWithNonZero) {
  ds_->Fields(Variant("F_NAME")).SetValue(Variant("Sneaked"), 0);
  ds_->ForceReadOnly(true);
  EXPECT_NE(ds_->UpdateRecord(), 0);
  EXPECT_EQ(dialogs_.boxes.size(), 1u);
  EXPECT_TRUE(ds_->HasPendingRecord());
}

TEST_F(MemoryDataSourceTest, SetFieldValueParsesTextByDataType) {
  struct Case {
    const char* field;
    const char* text;
    Variant stored;
  };
  const Case cases[] = {
      {"F_NAME", "  as is  ", Variant("  as is  ")},
      {"F_NAME", "", Variant::Null()},
      {"F_DATE", "2026-07-04", Variant(Date::FromParts(2026, 7, 4))},
      {"F_DATE", "2026/07/04", Variant(Date::FromParts(2026, 7, 4))},
      {"F_DATE", "2026-07-04 13:45:10", Variant(Date::FromParts(2026, 7, 4, 13, 45, 10))},
      {"F_DATE", "2026-07-04 13:45", Variant(Date::FromParts(2026, 7, 4, 13, 45))},
      {"F_DATE", "2026-07-04T13:45:10", Variant(Date::FromParts(2026, 7, 4, 13, 45, 10))},
      {"F_DATE", "13:45:10", Variant(Date::FromParts(1899, 12, 30, 13, 45, 10))},
      {"F_DATE", "13:45", Variant(Date::FromParts(1899, 12, 30, 13, 45))},
      {"F_DATE", "", Variant::Null()},
      {"F_PROB", "45%", Variant(0.45)},
      {"F_PROB", "45", Variant(0.45)},
      {"F_PROB", "12.5 %", Variant(0.125)},
      {"F_PROB", "", Variant::Null()},
      {"F_REVENUE", "1,234.50", Variant(1234.5)},
      {"F_REVENUE", "$1,234.50", Variant(1234.5)},
      {"F_REVENUE", "-$1,234.50", Variant(-1234.5)},
      {"F_REVENUE", "$-1,234.50", Variant(-1234.5)},
      {"F_REVENUE", "1,234.50-", Variant(-1234.5)},
      {"F_REVENUE", "$1,234.50-", Variant(-1234.5)},
      {"F_REVENUE", "-1234.5", Variant(-1234.5)},
      {"F_REVENUE", "$0.00", Variant(0.0)},
      {"F_REVENUE", " ", Variant::Null()},
      {"F_FLAG", "0", Variant(int32_t{0})},
      {"F_FLAG", "-1", Variant(int32_t{-1})},
      {"F_FLAG", "True", Variant(true)},
      {"F_FLAG", "", Variant::Null()},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.field) + " <- \"" + c.text + "\"");
    EXPECT_FALSE(Set(c.field, c.text));
    const Variant v = Value(c.field);
    if (c.stored.Type() == VariantType::kDouble) {
      ASSERT_EQ(v.Type(), VariantType::kDouble);
      EXPECT_DOUBLE_EQ(v.ToDouble(), c.stored.ToDouble());
    } else {
      EXPECT_EQ(v, c.stored) << v.Literal();
    }
  }
  EXPECT_TRUE(dialogs_.boxes.empty());
}

TEST_F(MemoryDataSourceTest, CheckEditorValuesAreStoredAsNumbersAndQueryCyclesThroughTexts) {
  EXPECT_FALSE(ds_->SetFieldValue(Variant("F_FLAG"), Variant(int16_t{0})));
  EXPECT_EQ(Value("F_FLAG"), Variant(int32_t{0}));
  EXPECT_TRUE(Value("F_FLAG").EqualsZero());
  EXPECT_FALSE(ds_->SetFieldValue(Variant("F_FLAG"), Variant(int16_t{1})));
  EXPECT_FALSE(Value("F_FLAG").EqualsZero());
  ASSERT_FALSE(ds_->NewQuery());
  for (const char* next : {"1", "0", ""}) {
    EXPECT_FALSE(Set("F_FLAG", next));
    EXPECT_EQ(Value("F_FLAG").AsText(), next);
  }
  EXPECT_TRUE(Value("F_FLAG").IsEmpty());
}

TEST_F(MemoryDataSourceTest, WholeNumberFieldsStoreInt32) {
  auto ds = std::make_unique<MemoryDataSource>(
      std::vector<MemoryFieldDefinition>{{"N", kDataTypeWholeNumber, 0, 0, true, ""}}, &dialogs_);
  ds->AddRow({Variant(int32_t{1})});
  ds->Open();
  EXPECT_FALSE(ds->SetFieldValue(Variant("N"), Variant("12,345")));
  EXPECT_EQ(ds->Fields(Variant("N")).Value(0), Variant(int32_t{12345}));
  EXPECT_FALSE(ds->SetFieldValue(Variant("N"), Variant(int16_t{7})));
  EXPECT_EQ(ds->Fields(Variant("N")).Value(0), Variant(int32_t{7}));
  EXPECT_TRUE(ds->SetFieldValue(Variant("N"), Variant("99999999999")));
}

TEST_F(MemoryDataSourceTest, MoneyTakesOnlyTheFieldsOwnSymbol) {
  EXPECT_TRUE(Set("F_REVENUE", "¥10"));  // the record is in USD
  ASSERT_FALSE(ds_->MoveNext());         // beta is in CNY
  EXPECT_FALSE(Set("F_REVENUE", "¥10"));
  EXPECT_EQ(Value("F_REVENUE"), Variant(10.0));
  EXPECT_EQ(dialogs_.boxes.size(), 1u);
}

TEST_F(MemoryDataSourceTest, UnparseableValuesAreRefusedPerDataTypeWithTheReason) {
  struct Case {
    const char* field;
    const char* text;
    const char* reason_part;
  };
  const Case cases[] = {
      {"F_DATE", "2026-02-30", "is not a date"}, {"F_DATE", "tomorrow", "is not a date"},
      {"F_REVENUE", "12abc", "not an amount"},   {"F_REVENUE", "1,23.00", "not an amount"},
      {"F_REVENUE", "--5", "not an amount"},     {"F_REVENUE", "5%", "percent sign"},
      {"F_PROB", "lots", "not a number"},        {"F_FLAG", "yes", "yes/no"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.field) + " <- \"" + c.text + "\"");
    const Variant before = Value(c.field);
    dialogs_.boxes.clear();
    EXPECT_TRUE(Set(c.field, c.text));
    EXPECT_EQ(Value(c.field), before);
    ASSERT_EQ(dialogs_.boxes.size(), 1u);
    EXPECT_NE(dialogs_.boxes[0].find(c.reason_part), std::string::npos) << dialogs_.boxes[0];
    EXPECT_NE(dialogs_.boxes[0].find(c.field), std::string::npos) << dialogs_.boxes[0];
  }
  EXPECT_FALSE(ds_->HasPendingRecord());
}

TEST_F(MemoryDataSourceTest, RefusalsNameTheirReason) {
  const auto refused = [&](const char* field, const std::string& part) {
    dialogs_.boxes.clear();
    EXPECT_TRUE(Set(field, "1"));
    ASSERT_EQ(dialogs_.boxes.size(), 1u);
    EXPECT_NE(dialogs_.boxes[0].find(part), std::string::npos) << dialogs_.boxes[0];
  };
  refused("F_ID", "F_ID cannot be changed");
  ds_->ForceRowEditable(false);
  refused("F_NAME", "This record cannot be changed");
  ds_->ForceRowEditable(true);
  ds_->SetAllowModify(false);
  refused("F_NAME", "Changing records is not allowed");
  ds_->SetAllowModify(true);
  ds_->ForceReadOnly(true);
  refused("F_NAME", "read-only");
  EXPECT_TRUE(ds_->ReadOnly());
}

TEST_F(MemoryDataSourceTest, EmptySetRefusesValuesOutsideQueryMode) {
  while (ds_->RecordCount() > 0) ds_->DeleteRecord();
  EXPECT_TRUE(Set("F_NAME", "x"));
  EXPECT_NE(dialogs_.boxes.back().find("no current record"), std::string::npos);
  ASSERT_FALSE(ds_->NewQuery());
  EXPECT_FALSE(Set("F_NAME", "x"));  // conditions need no record
}

TEST_F(MemoryDataSourceTest, ForcedEditStatusRaisesEditStatusChange) {
  SignalRecorder rec(ds_.get());
  ds_->AddListener(&rec);
  ds_->ForceEditStatus(7);
  EXPECT_EQ(rec.log, (Log{"EditStatusChange@7"}));
  ds_->ForceEditStatus(7);
  EXPECT_EQ(rec.log.size(), 1u);
  EXPECT_EQ(ds_->EditStatus(), 7);
  EXPECT_FALSE(ds_->MoveNext());  // 7 is tolerated as an open status
}

TEST_F(MemoryDataSourceTest, ForcedSelectRowsStatusRaisesChangeSelectRows) {
  SignalRecorder rec(ds_.get());
  ds_->AddListener(&rec);
  ds_->ForceSelectRowsStatus(1);
  EXPECT_EQ(ds_->SelectRowsStatus(), 1);
  ds_->ForceSelectRowsStatus(1);
  ds_->ForceSelectRowsStatus(2);
  EXPECT_EQ(rec.log, (Log{"ChangeSelectRows@0", "ChangeSelectRows@0"}));
}

TEST_F(MemoryDataSourceTest, ForcedRecordCountIsAnsweredUntilCleared) {
  ds_->ForceRecordCount(0);
  EXPECT_EQ(ds_->RecordCount(), 0);
  EXPECT_EQ(ds_->AbsolutePosition(), 1);
  ds_->ForceRecordCount(-1);
  EXPECT_EQ(ds_->RecordCount(), 3);
}

TEST_F(MemoryDataSourceTest, ForcedRowEditableAnswersForTheCurrentRecordOnly) {
  ASSERT_FALSE(ds_->MoveNext());
  ds_->ForceRowEditable(false);
  EXPECT_FALSE(ds_->RowEditable(0));
  EXPECT_FALSE(ds_->RowEditable(2));
  EXPECT_TRUE(ds_->RowEditable(1));
  EXPECT_TRUE(ds_->RowEditable(3));
  EXPECT_FALSE(ds_->RowEditable(4));
}

TEST_F(MemoryDataSourceTest, RefusedFieldRefusesEverySetUntilAcceptedAgain) {
  ds_->RefuseField("F_NAME");
  EXPECT_TRUE(Set("F_NAME", "x"));
  ASSERT_FALSE(ds_->NewQuery());
  EXPECT_TRUE(Set("F_NAME", "x"));
  ds_->AcceptField("F_NAME");
  EXPECT_FALSE(Set("F_NAME", "x"));
  EXPECT_EQ(dialogs_.boxes.size(), 2u);
  EXPECT_EQ(FailureNumber([&] { ds_->RefuseField("F_NOPE"); }), kErrItemNotFound);
}

TEST_F(MemoryDataSourceTest, FailNextCallFailsOnceWithTheGivenNumberAndDescription) {
  ds_->FailNextCall("MoveNext", 3021, "Either BOF or EOF is True");
  try {
    ds_->MoveNext();
    ADD_FAILURE() << "MoveNext did not fail";
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), 3021);
    EXPECT_EQ(f.Description(), "Either BOF or EOF is True");
  }
  EXPECT_EQ(ds_->AbsolutePosition(), 1);
  EXPECT_FALSE(ds_->MoveNext());
  ds_->FailNextCall("UpdateRecord", 5, "boom");
  EXPECT_EQ(FailureNumber([&] { ds_->UpdateRecord(); }), 5);
  EXPECT_EQ(ds_->UpdateRecord(), 0);
  ds_->FailNextCall("Value", 94, "Invalid use of Null");
  EXPECT_EQ(FailureNumber([&] { (void)Value("F_NAME"); }), 94);
  ds_->FailNextCall("EditStatus", 7, "Out of memory");
  EXPECT_EQ(FailureNumber([&] { (void)ds_->EditStatus(); }), 7);
  EXPECT_EQ(FailureNumber([&] { ds_->FailNextCall("Jump", 1, "x"); }), kErrInvalidProcedureCall);
}

TEST_F(MemoryDataSourceTest, FailingSetFieldValueChangesNothing) {
  SignalRecorder rec(ds_.get());
  ds_->AddListener(&rec);
  ds_->FailNextCall("SetFieldValue", 13, "Type mismatch");
  EXPECT_EQ(FailureNumber([&] { Set("F_NAME", "x"); }), 13);
  EXPECT_TRUE(rec.log.empty());
  EXPECT_EQ(Value("F_NAME"), Variant("Alpha"));
  EXPECT_FALSE(ds_->HasPendingRecord());
}

TEST_F(MemoryDataSourceTest, CloseReturnsToStatusNinetyNine) {
  SignalRecorder rec(ds_.get());
  ds_->AddListener(&rec);
  ds_->Close();
  EXPECT_EQ(rec.log, (Log{"EditStatusChange@99"}));
  EXPECT_EQ(ds_->RecordCount(), 0);
  rec.log.clear();
  ds_->Open();
  EXPECT_EQ(rec.log, (Log{"SysDataSourceInit@0", "EditStatusChange@0"}));
}

TEST_F(MemoryDataSourceTest, SymbolFollowsThePendingCurrency) {
  ds_->NewRecord(0);
  EXPECT_EQ(ds_->Fields(Variant("F_REVENUE")).Symbol(0), "");
  ASSERT_FALSE(Set("CURR_CODE", "CNY"));
  EXPECT_EQ(ds_->Fields(Variant("F_REVENUE")).Symbol(0), "¥");
  EXPECT_FALSE(Set("F_REVENUE", "¥-3"));
  EXPECT_EQ(Value("F_REVENUE"), Variant(-3.0));
}

TEST_F(MemoryDataSourceTest, CopyRecordCopiesEveryValueOfTheCurrentRecord) {
  ASSERT_FALSE(ds_->MoveLast());
  ds_->CopyRecord();
  EXPECT_EQ(Value("F_NAME"), Variant("Gamma"));
  EXPECT_TRUE(Value("F_FLAG").IsNull());
  EXPECT_EQ(Value("F_DATE"), Variant(Date::FromParts(2026, 5, 20)));
  EXPECT_EQ(ds_->EditStatus(), dsCopyRecord);
}

TEST_F(MemoryDataSourceTest, ConditionsAreHeldAsTextAndCleanedOfBlanks) {
  ASSERT_FALSE(ds_->NewQuery());
  EXPECT_FALSE(Set("F_REVENUE", "  >= 10  "));
  EXPECT_EQ(Value("F_REVENUE"), Variant(">= 10"));
  EXPECT_FALSE(Set("F_REVENUE", ""));
  EXPECT_TRUE(Value("F_REVENUE").IsEmpty());
  SignalRecorder rec(ds_.get());
  ds_->AddListener(&rec);
  EXPECT_FALSE(Set("F_REVENUE", ""));  // unchanged: no signal
  EXPECT_TRUE(rec.log.empty());
}

TEST_F(MemoryDataSourceTest, RowsAddedByUpdateRecordStayEditable) {
  ds_->NewRecord(0);
  ASSERT_EQ(ds_->UpdateRecord(), 0);
  EXPECT_TRUE(ds_->RowEditable(4));
  EXPECT_TRUE(ds_->RowEditable(0));
}

}  // namespace
}  // namespace tarnsheets
