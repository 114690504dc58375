// The seven ways in which entity sheets differ from one another, each shown on the sheets that
// have it and on those that don't, and the one pair of sheets that differ in nothing but their
// forms.
#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "family/family_test_support.h"
#include "tarnsheets/property_bag.h"

namespace tarnsheets {
namespace {

bool Is(const FormTable& form, std::initializer_list<const char*> names) {
  for (const char* name : names) {
    if (form.class_name == name) return true;
  }
  return false;
}

size_t IndexOf(const std::vector<std::string>& list, const std::string& item) {
  return static_cast<size_t>(std::find(list.begin(), list.end(), item) - list.begin());
}

class FamilyDifferenceTest : public FamilySheetTest {
 protected:
  // Counts the pop-up menus the user sees.
  void CountPopups() {
    toolkit_.SetPopupMenuAnswer([this](const Menu& menu) {
      popups_.push_back(menu.Name());
      return std::string();
    });
  }
  // The second row in tab order with a visible text editor.
  std::string SecondTextTag() const {
    int seen = 0;
    for (const FieldRow& row : form_->rows) {
      if (row.editor.kind == EditorKind::kText && row.editor.visible && ++seen == 2) {
        return std::string(row.tag);
      }
    }
    ADD_FAILURE() << "no second text editor on " << form_->class_name;
    return "";
  }
  // Whether the key "Caption" is stored when the sheet's caption is `caption`.
  bool CaptionStored(const std::string& caption) {
    sheet_->SetCaption(caption);
    MemoryPropertyBag bag;
    sheet_->WriteProperties(bag);
    return bag.Contains("Caption");
  }

  std::vector<std::string> popups_;
};

class EverySheetDifferenceTest : public FamilyDifferenceTest,
                                 public ::testing::WithParamInterface<const FormTable*> {
 protected:
  void SetUp() override {
    FamilyDifferenceTest::SetUp();
    StartFamily(*GetParam());
  }
};

// --- 1. A press on the caption.

TEST_F(FamilyDifferenceTest, CostingsRightPressOnTheCaptionOpensTheMenu) {
  StartFamily(CostingForm());
  CountPopups();
  ClickInto(FirstTextTag());
  toolkit_.RightClick(engine_->Lbl_Caption());
  EXPECT_EQ(popups_, std::vector<std::string>{"mnu_Menu"});
  EXPECT_EQ(Focused(), "SFText " + FirstTextTag());
}

TEST_F(FamilyDifferenceTest, OpportunitysRightPressOnTheCaptionOpensNoMenuThoughItsTitlesDo) {
  StartFamily(OpportunityForm());
  CountPopups();
  ClickInto(FirstTextTag());
  toolkit_.RightClick(engine_->Lbl_Caption());
  EXPECT_TRUE(popups_.empty());
  EXPECT_EQ(Focused(), "SFText " + FirstTextTag());
  toolkit_.RightClick(engine_->Lbl_Title()(FirstTextRow().title.index));
  EXPECT_EQ(popups_, std::vector<std::string>{"mnu_Menu"});
}

TEST_F(FamilyDifferenceTest, CostingsRightPressOnTheCaptionOfAFreshSheetOpensTheMenuToo) {
  StartFamily(CostingForm());
  CountPopups();
  ASSERT_EQ(engine_->CurrentFieldName(), "");
  toolkit_.RightClick(engine_->Lbl_Caption());
  EXPECT_EQ(popups_, std::vector<std::string>{"mnu_Menu"});
}

TEST_F(FamilyDifferenceTest, ALeftPressOnCostingsCaptionOnlyGivesTheFocusBack) {
  StartFamily(CostingForm());
  CountPopups();
  ClickInto(FirstTextTag());
  toolkit_.Click(engine_->Lbl_Caption());
  EXPECT_TRUE(popups_.empty());
  EXPECT_EQ(Focused(), "SFText " + FirstTextTag());
}

TEST_P(EverySheetDifferenceTest, RightPressOnTheCaptionOpensTheMenuOnAllButUserInfoAndOpportunity) {
  CountPopups();
  ClickInto(FirstTextTag());
  toolkit_.RightClick(engine_->Lbl_Caption());
  const bool opens = !Is(*GetParam(), {"UserInfo", "Opportunity"});
  EXPECT_EQ(popups_.size(), opens ? 1u : 0u);
}

// --- 2. The display after an update.

TEST_P(EverySheetDifferenceTest, UpdateInAnUnknownStatusRedrawsOnlyOnTheSheetsThatWaitForIdle) {
  const std::string first = FirstTextTag();
  const std::string second = SecondTextTag();
  TypeOver(first, "Updated");
  // Leaving the sheet saves the value and enters no other editor.
  toolkit_.FocusOutside();
  ASSERT_TRUE(spy_->HasPendingRecord());
  spy_->ForceEditStatus(7);
  // A text the data source never had: a redraw puts the stored value back.
  engine_->Txt_Value()(TextIndexOf(second)).SetText("stale");
  const int32_t runs = engine_->EditStatusChangeRunsForTest();
  EXPECT_FALSE(sheet_->Save());
  ASSERT_FALSE(spy_->HasPendingRecord());
  const bool waits = Is(*GetParam(), {"UserInfo", "Opportunity", "Contact", "Activity"});
  EXPECT_EQ(Editor(second).Text(), waits ? "stale" : TextValue(second, 0));
  EXPECT_EQ(engine_->EditStatusChangeRunsForTest() - runs, waits ? 0 : 1);
}

TEST_P(EverySheetDifferenceTest, UpdateInBrowseStatusRedrawsOnEverySheet) {
  const std::string first = FirstTextTag();
  const std::string second = SecondTextTag();
  TypeOver(first, "Updated");
  // Leaving the sheet saves the value and enters no other editor.
  toolkit_.FocusOutside();
  engine_->Txt_Value()(TextIndexOf(second)).SetText("stale");
  const int32_t runs = engine_->EditStatusChangeRunsForTest();
  EXPECT_FALSE(sheet_->Save());
  EXPECT_EQ(Editor(second).Text(), TextValue(second, 0));
  EXPECT_EQ(Editor(first).Text(), "Updated");
  EXPECT_EQ(engine_->EditStatusChangeRunsForTest() - runs, 1);
}

// --- 3. The edit status engine's arm for unknown status values.

TEST_F(FamilyDifferenceTest, CompanyAccountWithStatusSevenKeepsItsButtons) {
  StartFamily(CompanyAccountForm(), 1);
  sheet_->SetStyle(1);
  ASSERT_EQ(Pairs(), "NDCU");
  spy_->ForceRecordCount(0);
  spy_->ForceEditStatus(7);
  EXPECT_EQ(Pairs(), "NDCU");
}

TEST_F(FamilyDifferenceTest, AccountWithStatusSevenAndNoRecordsLosesCopyAndDelete) {
  StartFamily(AccountForm(), 1);
  sheet_->SetStyle(1);
  ASSERT_EQ(Pairs(), "NDCU");
  spy_->ForceRecordCount(0);
  spy_->ForceEditStatus(7);
  EXPECT_EQ(Pairs(), "N--U");
  EXPECT_EQ(sheet_->GetControlStatus("Copy Record"), csDisabled);
  EXPECT_EQ(sheet_->GetControlStatus("Delete Record"), csDisabled);
}

TEST_F(FamilyDifferenceTest, AccountWithStatusSevenAndARecordKeepsCopyAndDelete) {
  StartFamily(AccountForm(), 1);
  spy_->ForceEditStatus(7);
  EXPECT_EQ(Pairs(), "NDCU");
}

TEST_P(EverySheetDifferenceTest,
       UnknownStatusWithNoRecordsDisablesCopyAndDeleteButOnCompanySheets) {
  spy_->ForceRecordCount(0);
  spy_->ForceEditStatus(7);
  const bool keeps = Is(*GetParam(), {"CompanyAccount", "ShortCompanyAccount"});
  EXPECT_EQ(Pairs(), keeps ? "NDCU" : "N--U");
}

// --- 4. A negative record count.

TEST_F(FamilyDifferenceTest, ActivityShowsAFieldsValueWhenRecordCountIsNegative) {
  StartFamily(ActivityForm());
  source_ptr_->reported_count = -1;
  EXPECT_EQ(engine_->Display_Txt_Value(FirstTextTag(), 0), TextValue(FirstTextTag(), 0));
}

TEST_F(FamilyDifferenceTest, ActivityShowsTheEmptyTextWhenRecordCountIsZero) {
  StartFamily(ActivityForm());
  source_ptr_->reported_count = 0;
  EXPECT_EQ(engine_->Display_Txt_Value(FirstTextTag(), 0), "");
}

TEST_P(EverySheetDifferenceTest, NegativeRecordCountGivesTheEmptyTextOnAllButActivity) {
  source_ptr_->reported_count = -5;
  const std::string tag = FirstTextTag();
  const bool shows = Is(*GetParam(), {"Activity"});
  EXPECT_EQ(engine_->Display_Txt_Value(tag, 0), shows ? TextValue(tag, 0) : "");
}

// --- 5. The caption space.
//
// The short caption layout already gives Lbl_CaptionSpace the width of Lbl_Caption, so the
// further assignment on PriceList leaves the same width: every sheet ends with the two equal.

TEST_P(EverySheetDifferenceTest, CaptionSpaceHasTheCaptionsWidthAfterACaptionIsSet) {
  const Twips before = engine_->Lbl_Caption().Width();
  sheet_->SetCaption("A much longer caption than any designed one");
  EXPECT_GT(engine_->Lbl_Caption().Width(), before);
  EXPECT_EQ(engine_->Lbl_CaptionSpace().Width(), engine_->Lbl_Caption().Width());
}

// --- 6. The event NewRecord.

enum class NewRecordPath { kMenu, kButton, kCommand };

std::string PathName(const ::testing::TestParamInfo<NewRecordPath>& info) {
  switch (info.param) {
    case NewRecordPath::kMenu:
      return "MenuEntry";
    case NewRecordPath::kButton:
      return "NewRecordButton";
    case NewRecordPath::kCommand:
      return "AddNewRecordCommand";
  }
  return "";
}

class CompetitorNewRecordTest : public FamilyDifferenceTest,
                                public ::testing::WithParamInterface<NewRecordPath> {
 protected:
  void SetUp() override {
    FamilyDifferenceTest::SetUp();
    StartFamily(CompetitorForm());
    sheet_->SetStyle(1);
    tag_ = FirstTextTag();
    // A typed value that nobody has saved yet.
    TypeOver(tag_, "Typed");
    host_.events.clear();
    spy_->calls.clear();
  }
  void StartNewRecord() {
    switch (GetParam()) {
      case NewRecordPath::kMenu:
        toolkit_.SetPopupMenuAnswer([](const Menu&) { return std::string("mnu_NewRecord"); });
        toolkit_.RightClick(engine_->Lbl_Title()(FirstTextRow().title.index));
        break;
      case NewRecordPath::kButton:
        toolkit_.Click(engine_->Cmd_NewRecord());
        break;
      case NewRecordPath::kCommand:
        EXPECT_FALSE(sheet_->ControlCommand("Add New Record"));
        break;
    }
  }
  std::string tag_;
};

TEST_P(CompetitorNewRecordTest, HostSettingUserOneKeepsTheStatusButTheValueIsAlreadySaved) {
  host_.new_record_user = 1;
  StartNewRecord();
  EXPECT_EQ(spy_->EditStatus(), dsBrowse);
  EXPECT_EQ(spy_->calls, std::vector<std::string>{"SetFieldValue " + tag_ + "=Text:Typed"});
  EXPECT_EQ(spy_->Fields(Variant(tag_)).Value(0).AsText(), "Typed");
  const std::vector<std::string> events = host_.HostEvents();
  EXPECT_EQ(std::count(events.begin(), events.end(), "NewRecord"), 1);
  EXPECT_LT(IndexOf(events, "Text " + tag_ + "=Typed"), IndexOf(events, "NewRecord"))
      << ::testing::PrintToString(events);
}

TEST_P(CompetitorNewRecordTest, HostLeavingUserAtZeroLetsTheNewRecordStart) {
  host_.new_record_user = 0;
  StartNewRecord();
  EXPECT_EQ(spy_->EditStatus(), dsNewRecord);
  EXPECT_EQ(spy_->calls,
            (std::vector<std::string>{"SetFieldValue " + tag_ + "=Text:Typed", "NewRecord"}));
  const std::vector<std::string> events = host_.HostEvents();
  EXPECT_EQ(std::count(events.begin(), events.end(), "NewRecord"), 1);
  EXPECT_LT(IndexOf(events, "Text " + tag_ + "=Typed"), IndexOf(events, "NewRecord"))
      << ::testing::PrintToString(events);
  // The new record starts empty.
  EXPECT_EQ(Editor(tag_).Text(), "");
}

TEST_P(CompetitorNewRecordTest, ARefusedValueStopsBeforeTheHostIsAsked) {
  spy_->RefuseField(tag_);
  StartNewRecord();
  EXPECT_EQ(spy_->EditStatus(), dsBrowse);
  const std::vector<std::string> events = host_.HostEvents();
  EXPECT_EQ(std::count(events.begin(), events.end(), "NewRecord"), 0)
      << ::testing::PrintToString(events);
}

INSTANTIATE_TEST_SUITE_P(EveryPath, CompetitorNewRecordTest,
                         ::testing::Values(NewRecordPath::kMenu, NewRecordPath::kButton,
                                           NewRecordPath::kCommand),
                         PathName);

TEST_P(EverySheetDifferenceTest, OnlyCompetitorAsksTheHostBeforeANewRecord) {
  host_.new_record_user = 1;
  EXPECT_FALSE(sheet_->ControlCommand("Add New Record"));
  const std::vector<std::string> events = host_.HostEvents();
  const bool asks = Is(*GetParam(), {"Competitor"});
  EXPECT_EQ(std::count(events.begin(), events.end(), "NewRecord"), asks ? 1 : 0);
  EXPECT_EQ(spy_->EditStatus(), asks ? dsBrowse : dsNewRecord);
}

// --- 7. The default of the saved caption.

TEST_P(EverySheetDifferenceTest, CaptionOpportunityIsStoredOnlyOnUserInfo) {
  EXPECT_EQ(CaptionStored("Opportunity"), Is(*GetParam(), {"UserInfo"}));
}

TEST_P(EverySheetDifferenceTest, CaptionUserInfoIsStoredOnAllButUserInfo) {
  EXPECT_EQ(CaptionStored("UserInfo"), !Is(*GetParam(), {"UserInfo"}));
}

TEST_P(EverySheetDifferenceTest, TheDesignedCaptionIsStoredUnlessItIsTheDefault) {
  MemoryPropertyBag bag;
  sheet_->WriteProperties(bag);
  const std::string caption(GetParam()->caption);
  const bool is_default = caption == (Is(*GetParam(), {"UserInfo"}) ? "UserInfo" : "Opportunity");
  ASSERT_EQ(bag.Contains("Caption"), !is_default);
  if (!is_default) {
    EXPECT_EQ(bag.ReadString("Caption", ""), caption);
  }
}

INSTANTIATE_TEST_SUITE_P(EveryEntitySheet, EverySheetDifferenceTest,
                         ::testing::ValuesIn(EntityForms()), FormName);

// --- Costing is Account over another form.

// Drives a sheet through one script of a user and a host and writes down what they see, with
// each field named by its place in the tab order, so that two forms can be compared.
class SameLogicTest : public FamilyDifferenceTest {
 protected:
  std::vector<std::string> Script(const FormTable& form) {
    StartFamily(form);
    std::vector<std::string> tags = TagsOf(form);
    std::vector<std::string> out;
    auto normal = [&tags](std::string text) {
      // Longest tags first, so that no tag is replaced inside a longer one.
      std::vector<size_t> order(tags.size());
      for (size_t i = 0; i < order.size(); ++i) order[i] = i;
      std::sort(order.begin(), order.end(),
                [&tags](size_t a, size_t b) { return tags[a].size() > tags[b].size(); });
      for (size_t i : order) {
        const std::string mark = "<field " + std::to_string(i) + ">";
        for (size_t at = text.find(tags[i]); at != std::string::npos;
             at = text.find(tags[i], at + mark.size())) {
          text.replace(at, tags[i].size(), mark);
        }
      }
      return text;
    };
    auto step = [&](const std::string& what) {
      out.push_back("== " + what);
      for (const std::string& e : host_.HostEvents()) out.push_back("host: " + normal(e));
      // How many there are follows the number of editors redisplayed, which is the form's.
      out.push_back(std::string("status changed: ") +
                    (host_.Count("SheetStatusChange") > 0 ? "yes" : "no"));
      for (const std::string& c : spy_->calls) out.push_back("source: " + normal(c));
      out.push_back("edit status " + std::to_string(spy_->EditStatus()) + " at " +
                    std::to_string(spy_->AbsolutePosition()) + " of " +
                    std::to_string(spy_->RecordCount()));
      out.push_back("pairs " + Pairs());
      for (const char* name :
           {"New Query", "Refine Query", "Execute Query", "Undo", "Redo", "Cut", "Copy", "Paste",
            "Delete", "Add New Record", "Delete Record", "Copy Record", "Cancel Record",
            "First Record", "Previous Record", "Next Record", "Last Record", "Focus", "Refresh"}) {
        out.push_back(std::string(name) + " " + std::to_string(sheet_->GetControlStatus(name)));
      }
      for (const std::string& p : popups_) out.push_back("popup " + p);
      host_.events.clear();
      spy_->calls.clear();
      popups_.clear();
    };
    const std::string first = FirstTextTag();
    toolkit_.SetPopupMenuAnswer([this](const Menu& menu) {
      popups_.push_back(menu.Name());
      return popup_choice_;
    });
    sheet_->SetStyle(1);
    step("start");
    out.push_back("shows record 1: " + EditorsShowRecord(0));
    TypeOver(first, "Changed");
    step("typed");
    toolkit_.PressTab();
    step("left the field");
    sheet_->ControlCommand("Next Record");
    out.push_back("shows record 2: " + EditorsShowRecord(1));
    step("next record");
    ClickInto(first);
    toolkit_.RightClick(engine_->Lbl_Caption());
    step("caption menu closed");
    popup_choice_ = "mnu_NewRecord";
    toolkit_.RightClick(engine_->Lbl_Caption());
    step("new record from the caption menu");
    TypeOver(first, "Fresh");
    out.push_back("save " + std::to_string(sheet_->Save()));
    step("saved the new record");
    popup_choice_ = "";
    host_.new_record_user = 1;
    toolkit_.Click(engine_->Cmd_NewRecord());
    step("new record button with a host that says no");
    toolkit_.Click(engine_->Cmd_CopyRecord());
    step("copy record");
    toolkit_.Click(engine_->Cmd_Undo());
    step("undo");
    spy_->ForceRecordCount(0);
    spy_->ForceEditStatus(7);
    step("unknown status without records");
    spy_->ForceRecordCount(-1);
    spy_->ForceEditStatus(0);
    source_ptr_->reported_count = -1;
    out.push_back("negative count shows \"" + normal(engine_->Display_Txt_Value(first, 0)) + "\"");
    source_ptr_->reported_count.reset();
    sheet_->SetCaption("Opportunity");
    MemoryPropertyBag bag;
    sheet_->WriteProperties(bag);
    out.push_back(std::string("caption stored: ") + (bag.Contains("Caption") ? "yes" : "no"));
    out.push_back(
        std::string("space follows: ") +
        (engine_->Lbl_CaptionSpace().Width() == engine_->Lbl_Caption().Width() ? "yes" : "no"));
    step("caption");
    sheet_->ControlCommand("Delete Record");
    step("delete record");
    sheet_->ControlCommand("New Query");
    step("new query");
    sheet_->ControlCommand("Execute Query");
    step("execute query");
    return out;
  }

  std::string popup_choice_;
};

TEST_F(SameLogicTest, CostingAndAccountShowTheHostTheSameThingsThroughOneScript) {
  const std::vector<std::string> account = Script(AccountForm());
  sheet_->SetSheetRecordset(nullptr);
  sheet_.reset();
  const std::vector<std::string> costing = Script(CostingForm());
  ASSERT_GT(account.size(), 100u);
  ASSERT_EQ(costing.size(), account.size());
  for (size_t i = 0; i < account.size(); ++i) {
    ASSERT_EQ(costing[i], account[i]) << "line " << i;
  }
  // The script reached what it was written for.
  EXPECT_NE(std::find(account.begin(), account.end(), "host: Text <field 0>=Changed"),
            account.end())
      << ::testing::PrintToString(account);
  EXPECT_NE(std::find(account.begin(), account.end(), "pairs N--U"), account.end());
}

TEST_F(SameLogicTest, TheScriptTellsSheetsWithDifferentOptionsApart) {
  const std::vector<std::string> account = Script(AccountForm());
  sheet_->SetSheetRecordset(nullptr);
  sheet_.reset();
  const std::vector<std::string> competitor = Script(CompetitorForm());
  EXPECT_NE(competitor, account);
}

}  // namespace
}  // namespace tarnsheets
