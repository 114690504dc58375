// Every entity sheet, created by class name, driven as a user and a host would: the first record
// on screen, moves, and a typed value on its way to the data source.
#include <algorithm>
#include <string>
#include <vector>

#include "family/family_test_support.h"

namespace tarnsheets {
namespace {

class EntitySheetTest : public FamilySheetTest,
                        public ::testing::WithParamInterface<const FormTable*> {
 protected:
  void SetUp() override {
    FamilySheetTest::SetUp();
    StartFamily(*GetParam());
  }
  bool Contains(const std::vector<std::string>& list, const std::string& item) const {
    return std::find(list.begin(), list.end(), item) != list.end();
  }
};

TEST_P(EntitySheetTest, ShowsTheFirstRecordInEveryEditor) {
  ASSERT_EQ(spy_->AbsolutePosition(), 1);
  EXPECT_EQ(EditorsShowRecord(0), "");
  // The comparison tells records apart: the second record is not what is shown.
  EXPECT_NE(EditorsShowRecord(1), "");
}

TEST_P(EntitySheetTest, TitleLabelsShowTheHostsDisplayNames) {
  for (const FieldRow& row : GetParam()->rows) {
    if (!row.has_title()) continue;
    EXPECT_EQ(engine_->Lbl_Title()(row.title.index).Caption(), "Title of " + std::string(row.tag));
  }
}

TEST_P(EntitySheetTest, EditorsOfAWritableRecordAreUnlocked) {
  for (const FieldRow& row : GetParam()->rows) {
    if (row.editor.kind == EditorKind::kText) {
      EXPECT_FALSE(engine_->Txt_Value()(row.editor.index).Locked()) << row.tag;
    }
  }
}

TEST_P(EntitySheetTest, NextRecordIsOfferedOnTheFirstOfThreeRecords) {
  EXPECT_EQ(sheet_->GetControlStatus("Next Record"), csEnabled);
  EXPECT_EQ(sheet_->GetControlStatus("Previous Record"), csDisabled);
}

TEST_P(EntitySheetTest, MovingNextShowsTheSecondRecordAndTellsTheHost) {
  EXPECT_FALSE(sheet_->ControlCommand("Next Record"));
  EXPECT_EQ(spy_->AbsolutePosition(), 2);
  EXPECT_EQ(EditorsShowRecord(1), "");
  EXPECT_GE(host_.Count("SheetStatusChange"), 1);
  EXPECT_EQ(sheet_->GetControlStatus("Previous Record"), csEnabled);
  EXPECT_EQ(sheet_->GetControlStatus("Next Record"), csEnabled);
}

TEST_P(EntitySheetTest, LastRecordShowsTheThirdAndNextRecordIsNoLongerOffered) {
  EXPECT_FALSE(sheet_->ControlCommand("Last Record"));
  EXPECT_EQ(spy_->AbsolutePosition(), 3);
  EXPECT_EQ(EditorsShowRecord(2), "");
  EXPECT_EQ(sheet_->GetControlStatus("Next Record"), csDisabled);
  EXPECT_EQ(sheet_->GetControlStatus("Last Record"), csEnabled);
}

TEST_P(EntitySheetTest, TypedValueReachesTheDataSourceAndTheHostHearsText) {
  const std::string tag = FirstTextTag();
  TypeOver(tag, "Edited value");
  // Typing alone stores nothing.
  EXPECT_EQ(spy_->Fields(Variant(tag)).Value(0).AsText(), TextValue(tag, 0));
  toolkit_.PressTab();
  EXPECT_TRUE(Contains(spy_->calls, "SetFieldValue " + tag + "=Text:Edited value"))
      << ::testing::PrintToString(spy_->calls);
  EXPECT_EQ(spy_->Fields(Variant(tag)).Value(0).AsText(), "Edited value");
  EXPECT_TRUE(Contains(host_.HostEvents(), "Text " + tag + "=Edited value"))
      << ::testing::PrintToString(host_.HostEvents());
  EXPECT_EQ(Editor(tag).Text(), "Edited value");
  EXPECT_TRUE(spy_->HasPendingRecord());
}

TEST_P(EntitySheetTest, SavedValueIsStoredWithTheRecordAndSurvivesAMove) {
  const std::string tag = FirstTextTag();
  TypeOver(tag, "Kept");
  EXPECT_FALSE(sheet_->Save());
  EXPECT_FALSE(spy_->HasPendingRecord());
  sheet_->ControlCommand("Next Record");
  sheet_->ControlCommand("First Record");
  EXPECT_EQ(Editor(tag).Text(), "Kept");
}

TEST_P(EntitySheetTest, RefusedValueLeavesTheStoredValueAndTellsTheHostNothing) {
  const std::string tag = FirstTextTag();
  spy_->RefuseField(tag);
  TypeOver(tag, "Refused");
  toolkit_.PressTab();
  EXPECT_EQ(spy_->Fields(Variant(tag)).Value(0).AsText(), TextValue(tag, 0));
  EXPECT_EQ(Editor(tag).Text(), TextValue(tag, 0));
  for (const std::string& e : host_.HostEvents()) EXPECT_NE(e.rfind("Text ", 0), 0u) << e;
}

INSTANTIATE_TEST_SUITE_P(EveryEntitySheet, EntitySheetTest, ::testing::ValuesIn(EntityForms()),
                         FormName);

}  // namespace
}  // namespace tarnsheets
