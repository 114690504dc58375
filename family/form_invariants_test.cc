// What the engine relies on in every designed form: arrays numbered without holes, unique tab
// indices, the tab-order pattern with its two kept exceptions, and the remnants that stay as
// data (hidden check placeholders, button-only rows, editors without titles).
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "family/form_table.h"

namespace tarnsheets {
namespace {

std::vector<int> Indices(std::span<const FieldRow> rows, EditorKind kind) {
  std::vector<int> indices;
  for (const FieldRow& row : rows) {
    if (row.editor.kind == kind) indices.push_back(row.editor.index);
  }
  std::sort(indices.begin(), indices.end());
  return indices;
}

std::vector<int> TitleIndices(std::span<const FieldRow> rows) {
  std::vector<int> indices;
  for (const FieldRow& row : rows) {
    if (row.has_title()) indices.push_back(row.title.index);
  }
  std::sort(indices.begin(), indices.end());
  return indices;
}

std::vector<int> ButtonIndices(std::span<const FieldRow> rows) {
  std::vector<int> indices;
  for (const FieldRow& row : rows) {
    if (row.has_button()) indices.push_back(row.button.index);
  }
  std::sort(indices.begin(), indices.end());
  return indices;
}

std::vector<int> ZeroTo(int count) {
  std::vector<int> v;
  for (int i = 0; i < count; ++i) v.push_back(i);
  return v;
}

const FieldRow* FindRow(std::span<const FieldRow> rows, std::string_view tag) {
  for (const FieldRow& row : rows) {
    if (row.tag == tag) return &row;
  }
  return nullptr;
}

bool IsCompanySheet(const FormTable& form) {
  return form.class_name == "CompanyAccount" || form.class_name == "ShortCompanyAccount";
}

bool HasOwnGeometry(const FormTable& form) {
  return form.class_name == "UserInfo" || IsCompanySheet(form);
}

class EntityFormInvariantsTest : public ::testing::TestWithParam<const FormTable*> {};

TEST_P(EntityFormInvariantsTest, TxtChkAndLblArraysAreNumberedWithoutHoles) {
  const FormTable& form = *GetParam();
  std::vector<int> txt = Indices(form.rows, EditorKind::kText);
  std::vector<int> chk = Indices(form.rows, EditorKind::kCheck);
  std::vector<int> lbl = TitleIndices(form.rows);
  EXPECT_EQ(txt, ZeroTo(static_cast<int>(txt.size()))) << "Txt_Value";
  EXPECT_EQ(chk, ZeroTo(static_cast<int>(chk.size()))) << "Chk_Value";
  EXPECT_EQ(lbl, ZeroTo(static_cast<int>(lbl.size()))) << "Lbl_Title";
  // Every entity sheet has element 0 of each.
  EXPECT_FALSE(txt.empty());
  EXPECT_FALSE(chk.empty());
  EXPECT_FALSE(lbl.empty());
}

TEST_P(EntityFormInvariantsTest, CmdValueIndicesAreUniqueAndCountsAgree) {
  const FormTable& form = *GetParam();
  std::vector<int> cmd = ButtonIndices(form.rows);
  EXPECT_EQ(std::adjacent_find(cmd.begin(), cmd.end()), cmd.end()) << "duplicate Cmd_Value";
  ArrayCounts counts = CountArrays(form.rows);
  EXPECT_EQ(counts.cmd_value, static_cast<int>(cmd.size()));
  EXPECT_EQ(counts.cmd_value_bound, cmd.empty() ? 0 : cmd.back() + 1);
}

TEST_P(EntityFormInvariantsTest, TabIndicesAreUnique) {
  const FormTable& form = *GetParam();
  std::vector<int> tabs = {form.fixed.Pic_TableStart.tab_index, form.fixed.Pic_TableUp.tab_index,
                           form.fixed.Pic_TableDown.tab_index};
  for (const FieldRow& row : form.rows) {
    if (row.has_editor()) tabs.push_back(row.editor.tab_index);
  }
  std::set<int> unique(tabs.begin(), tabs.end());
  EXPECT_EQ(unique.size(), tabs.size());
}

TEST_P(EntityFormInvariantsTest, TagsAreUniqueAndTitlesHaveCaptions) {
  const FormTable& form = *GetParam();
  std::set<std::string_view> tags;
  for (const FieldRow& row : form.rows) {
    EXPECT_TRUE(tags.insert(row.tag).second) << "tag twice: " << row.tag;
    EXPECT_EQ(row.has_title(), !row.title.caption.empty()) << row.tag;
    EXPECT_EQ(row.frame, 0) << row.tag;
  }
}

TEST_P(EntityFormInvariantsTest, TabOrderFollowsThePatternWithItsTwoKeptExceptions) {
  const FormTable& form = *GetParam();
  const int start = form.fixed.Pic_TableStart.tab_index;
  const int up = form.fixed.Pic_TableUp.tab_index;
  const int down = form.fixed.Pic_TableDown.tab_index;
  EXPECT_EQ(start, 0);
  EXPECT_EQ(up, IsCompanySheet(form) ? 1 : 2);

  int previous = -1;
  int last_in_pattern = -1;
  for (const FieldRow& row : form.rows) {
    if (!row.has_editor()) continue;
    const int tab = row.editor.tab_index;
    // The rows stand in tab order.
    EXPECT_GT(tab, previous) << row.tag;
    previous = tab;
    EXPECT_GT(tab, up) << row.tag << ": Pic_TableUp stands before every editor";
    const bool hidden_placeholder = !row.editor.visible;
    const bool competitor_threat = form.class_name == "Competitor" && row.tag == "CPTTRANK_NAME";
    if (hidden_placeholder || competitor_threat) {
      EXPECT_GT(tab, down) << row.tag << " stands behind Pic_TableDown";
    } else {
      EXPECT_LT(tab, down) << row.tag << " stands before Pic_TableDown";
      last_in_pattern = std::max(last_in_pattern, tab);
    }
  }
  // Pic_TableDown is the next focus stop behind the last editor of the pattern: no editor has a
  // tab index between them.
  for (const FieldRow& row : form.rows) {
    if (!row.has_editor()) continue;
    EXPECT_FALSE(row.editor.tab_index > last_in_pattern && row.editor.tab_index < down) << row.tag;
  }
}

TEST_P(EntityFormInvariantsTest, EditorSizesFollowTheirKind) {
  const FormTable& form = *GetParam();
  for (const FieldRow& row : form.rows) {
    if (row.editor.kind == EditorKind::kCheck) {
      EXPECT_EQ(row.editor.rect.Width, 195) << row.tag;
      EXPECT_EQ(row.editor.rect.Height, 195) << row.tag;
      EXPECT_EQ(row.editor.style, 0) << row.tag;
    }
    if (row.editor.kind == EditorKind::kText) {
      EXPECT_GE(row.editor.style, 0);
      EXPECT_LE(row.editor.style, 2);
      const int32_t height = row.editor.rect.Height;
      if (height != 270 && height != 285) {
        EXPECT_NE(row.editor.style, 0) << row.tag << ": a tall editor holds several lines";
      }
    }
  }
}

TEST_P(EntityFormInvariantsTest, FixedControlsStandInTheirGeometry) {
  const FormTable& form = *GetParam();
  const FixedControls& f = form.fixed;
  EXPECT_EQ(form.back_color, 0x00EEEEEEu);
  if (HasOwnGeometry(form)) {
    EXPECT_EQ(f.Pic_TableStart.rect, (DesignRect{7440, 120, 165, 165}));
    EXPECT_EQ(f.Pic_TableUp.rect, (DesignRect{7080, 120, 165, 165}));
    EXPECT_EQ(f.Pic_TableDown.rect, (DesignRect{7260, 120, 165, 165}));
    EXPECT_EQ(f.Cmd_NewRecord.rect, (DesignRect{2910, 75, 840, 315}));
    EXPECT_EQ(f.Cmd_CopyRecord.rect, (DesignRect{3780, 75, 840, 315}));
    EXPECT_EQ(f.Cmd_DeleteRecord.rect, (DesignRect{4680, 75, 840, 315}));
    EXPECT_EQ(f.Cmd_Undo.rect, (DesignRect{5580, 75, 840, 315}));
    EXPECT_EQ(f.UserCommand0.rect, (DesignRect{8040, 120, 735, 285}));
    EXPECT_EQ(f.UserCommand0.caption, "User Command");
    EXPECT_TRUE(f.UserCommand0.tab_stop);
  } else {
    EXPECT_EQ(f.Pic_TableStart.rect, (DesignRect{8280, 150, 165, 165}));
    EXPECT_EQ(f.Pic_TableUp.rect, (DesignRect{7920, 150, 165, 165}));
    EXPECT_EQ(f.Pic_TableDown.rect, (DesignRect{8100, 150, 165, 165}));
    EXPECT_EQ(f.Cmd_NewRecord.rect, (DesignRect{2550, 75, 840, 315}));
    EXPECT_EQ(f.Cmd_CopyRecord.rect, (DesignRect{3420, 75, 840, 315}));
    EXPECT_EQ(f.Cmd_DeleteRecord.rect, (DesignRect{4320, 75, 840, 315}));
    EXPECT_EQ(f.Cmd_Undo.rect, (DesignRect{5220, 75, 840, 315}));
    DesignRect user_command{8865, 90, 840, 315};
    if (form.class_name == "Opportunity" || form.class_name == "Activity") {
      user_command = {8955, 90, 840, 315};
    } else if (form.class_name == "Contact") {
      user_command = {9000, 45, 840, 315};
    }
    EXPECT_EQ(f.UserCommand0.rect, user_command);
    EXPECT_EQ(f.UserCommand0.caption, "UserCommand");
    EXPECT_FALSE(f.UserCommand0.tab_stop);
    EXPECT_EQ(f.Lbl_Caption.rect, (DesignRect{0, 75, 1515, 315}));
    EXPECT_EQ(f.Lbl_Caption.font.name, "MS Sans Serif");
    EXPECT_EQ(f.Lbl_Caption.font.size, 9.75);
    EXPECT_FALSE(f.Lbl_Caption.font.bold);
    DesignRect shape{45, 30, 13905, form.class_name == "Opportunity" ? 2010 : 330};
    EXPECT_EQ(f.Shp_Caption.rect, shape);
    EXPECT_TRUE(f.Shp_Caption.has_back_color);
    EXPECT_EQ(f.Shp_Caption.back_color, 0x8000000Au);
  }
  EXPECT_FALSE(f.UserCommand0.visible);
  EXPECT_EQ(f.Cmd_NewRecord.caption, "New");
  EXPECT_EQ(f.Cmd_CopyRecord.caption, "Copy");
  EXPECT_EQ(f.Cmd_DeleteRecord.caption, "Delete");
  EXPECT_EQ(f.Cmd_Undo.caption, "Cancel");
  for (const FixedControl* button :
       {&f.Cmd_NewRecord, &f.Cmd_CopyRecord, &f.Cmd_DeleteRecord, &f.Cmd_Undo}) {
    EXPECT_FALSE(button->visible);
    EXPECT_FALSE(button->enabled);
  }
  for (const FixedControl* sentinel : {&f.Pic_TableStart, &f.Pic_TableUp, &f.Pic_TableDown}) {
    EXPECT_EQ(sentinel->rect.Width, 165);
    EXPECT_EQ(sentinel->rect.Height, 165);
  }
  EXPECT_EQ(f.Lbl_Caption.alignment, kAlignCenter);
  EXPECT_EQ(f.Lbl_Caption.back_color, 0x8000000Au);
  EXPECT_EQ(f.Lbl_Caption.fore_color, 0x00FFFFFFu);
  EXPECT_EQ(f.Lbl_CaptionSpace.rect, (DesignRect{0, 0, 1515, 240}));
  EXPECT_EQ(f.Lbl_CaptionSpace.back_color, 0x8000000Au);
  EXPECT_EQ(f.Shp_Caption.border_color, 0x8000000Au);
  EXPECT_EQ(f.Shp_Caption.border_width, 2);
  EXPECT_EQ(f.mnu_Menu.name, "mnu_Menu");
  EXPECT_EQ(f.mnu_Menu.caption, "Menu");
  const char* const names[] = {"mnu_NewRecord", "mnu_DeleteRecord", "mnu_CopyRecord", "mnu_Undo"};
  const char* const captions[] = {"NewRecord", "DeleteRecrod", "CopyRecord", "Undo"};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(f.mnu_Menu.items[i].name, names[i]);
    EXPECT_EQ(f.mnu_Menu.items[i].caption, captions[i]);
    EXPECT_FALSE(f.mnu_Menu.items[i].enabled);
  }
}

TEST_P(EntityFormInvariantsTest, FormFontIsTheDesignedOne) {
  const FormTable& form = *GetParam();
  if (IsCompanySheet(form)) {
    EXPECT_EQ(form.font.name, "\u5b8b\u4f53");
    EXPECT_EQ(form.font.size, 14.25);
    EXPECT_EQ(form.font.charset, 134);
  } else if (form.class_name == "UserInfo") {
    EXPECT_EQ(form.font.name, "MS Sans Serif");
    EXPECT_EQ(form.font.size, 13.5);
    EXPECT_EQ(form.font.charset, 0);
  } else {
    EXPECT_EQ(form.font.name, "MS Sans Serif");
    EXPECT_EQ(form.font.size, 8.25);
    EXPECT_EQ(form.font.charset, 0);
  }
  EXPECT_FALSE(form.font.bold);
  Font font = form.font.ToFont();
  EXPECT_EQ(font.name, std::string(form.font.name));
  EXPECT_EQ(font.size, form.font.size);
  EXPECT_EQ(font.charset, form.font.charset);
}

TEST_P(EntityFormInvariantsTest, OnlyExpenseItemCarriesAPictureAndOnlyCompanySheetsATag) {
  const FormTable& form = *GetParam();
  EXPECT_EQ(form.picture, form.class_name == "ExpenseItem" ? Glyph::kArrow : Glyph::kNone);
  EXPECT_EQ(form.tag, IsCompanySheet(form) ? "F_CREATTIME" : "");
}

TEST_P(EntityFormInvariantsTest, CheckPlaceholderIsHiddenOnAllButTheTwoFirstSheets) {
  const FormTable& form = *GetParam();
  const bool real = form.class_name == "UserInfo" || form.class_name == "Opportunity";
  int checks = 0;
  for (const FieldRow& row : form.rows) {
    if (row.editor.kind != EditorKind::kCheck) continue;
    ++checks;
    ASSERT_EQ(row.editor.index, 0);
    if (real) {
      EXPECT_TRUE(row.editor.visible);
      EXPECT_TRUE(row.has_title());
    } else {
      EXPECT_FALSE(row.editor.visible);
      EXPECT_EQ(row.tag, "FORE_SIGNAL");
      EXPECT_FALSE(row.has_title());
      EXPECT_FALSE(row.has_button());
      DesignRect place =
          IsCompanySheet(form) ? DesignRect{9135, 135, 195, 195} : DesignRect{9000, 120, 195, 195};
      EXPECT_EQ(row.editor.rect, place);
    }
  }
  EXPECT_EQ(checks, 1);
}

INSTANTIATE_TEST_SUITE_P(AllEntitySheets, EntityFormInvariantsTest,
                         ::testing::ValuesIn(EntityForms().begin(), EntityForms().end()),
                         [](const ::testing::TestParamInfo<const FormTable*>& info) {
                           return std::string(info.param->class_name);
                         });

TEST(FormTableTest, CmdValueHasExactlyItsDesignedHoles) {
  // The indices that each sheet's Cmd_Value array holds.
  const std::map<std::string_view, std::vector<int>> expected = {
      {"UserInfo", {0, 1, 2, 3}},
      {"Opportunity", {0, 1, 2, 3, 4, 5, 6, 7, 8}},
      {"Competitor", {0, 1, 2, 3, 4, 5}},
      {"Contact", {0, 1, 2, 3}},
      {"Activity", {0, 1, 2, 3, 4, 5, 6, 8, 9, 10, 11}},  // no 7
      {"Expense", {0, 2, 4, 5, 7, 8, 9}},                 // no 1, 3, 6
      {"ExpenseItem", {0, 1, 2, 3, 4, 5, 7, 9, 10}},      // no 6, 8
      {"Costing", {0, 1, 2}},
      {"CompanyAccount", {1, 7}},
      {"ShortCompanyAccount", {1, 2}},              // no 0
      {"PriceList", {0, 1, 2, 3, 4, 5, 7, 9, 10}},  // no 6, 8
      {"Product", {1, 2}},                          // no 0
      {"Quote", {0, 1, 3, 4, 5, 6, 7, 8, 9, 10}},   // no 2
      {"Totals", {0, 1, 2, 4}},                     // no 3
      {"Account", {0, 1, 2, 3, 4, 5}},
      {"Proposal", {0, 1, 2, 3, 4, 5, 6, 7, 9, 10}},  // no 8
      {"Contract", {0, 1, 3, 4, 5, 6, 7, 8, 9, 10}},  // no 2
  };
  ASSERT_EQ(expected.size(), EntityForms().size());
  for (const FormTable* form : EntityForms()) {
    auto it = expected.find(form->class_name);
    ASSERT_NE(it, expected.end()) << form->class_name;
    EXPECT_EQ(ButtonIndices(form->rows), it->second) << form->class_name;
  }
}

TEST(FormTableTest, OptionRecordsGiveEachSheetItsSevenDifferences) {
  struct Expected {
    std::string_view name;
    bool caption_menu, redraw_idle, else_arm, negative_count, space_follows, new_record_event;
    std::string_view caption_default;
  };
  const Expected expected[] = {
      {"UserInfo", false, true, true, false, false, false, "UserInfo"},
      {"Opportunity", false, true, true, false, false, false, "Opportunity"},
      {"Competitor", true, false, true, false, false, true, "Opportunity"},
      {"Contact", true, true, true, false, false, false, "Opportunity"},
      {"Activity", true, true, true, true, false, false, "Opportunity"},
      {"Expense", true, false, true, false, false, false, "Opportunity"},
      {"ExpenseItem", true, false, true, false, false, false, "Opportunity"},
      {"Costing", true, false, true, false, false, false, "Opportunity"},
      {"CompanyAccount", true, false, false, false, false, false, "Opportunity"},
      {"ShortCompanyAccount", true, false, false, false, false, false, "Opportunity"},
      {"PriceList", true, false, true, false, true, false, "Opportunity"},
      {"Product", true, false, true, false, false, false, "Opportunity"},
      {"Quote", true, false, true, false, false, false, "Opportunity"},
      {"Totals", true, false, true, false, false, false, "Opportunity"},
      {"Account", true, false, true, false, false, false, "Opportunity"},
      {"Proposal", true, false, true, false, false, false, "Opportunity"},
      {"Contract", true, false, true, false, false, false, "Opportunity"},
  };
  ASSERT_EQ(std::size(expected), EntityForms().size());
  for (size_t i = 0; i < std::size(expected); ++i) {
    const FormTable& form = *EntityForms()[i];
    const OptionRecord& o = form.options;
    ASSERT_EQ(form.class_name, expected[i].name);
    EXPECT_EQ(o.CaptionMenu, expected[i].caption_menu) << form.class_name;
    EXPECT_EQ(o.RedrawOnlyWhenIdle, expected[i].redraw_idle) << form.class_name;
    EXPECT_EQ(o.StatusElseArm, expected[i].else_arm) << form.class_name;
    EXPECT_EQ(o.NegativeCountShows, expected[i].negative_count) << form.class_name;
    EXPECT_EQ(o.CaptionSpaceFollows, expected[i].space_follows) << form.class_name;
    EXPECT_EQ(o.NewRecordEvent, expected[i].new_record_event) << form.class_name;
    EXPECT_EQ(o.CaptionDefault, expected[i].caption_default) << form.class_name;
  }
}

TEST(FormTableTest, CostingDiffersFromAccountOnlyByItsForm) {
  const OptionRecord& a = AccountForm().options;
  const OptionRecord& c = CostingForm().options;
  EXPECT_EQ(a.CaptionMenu, c.CaptionMenu);
  EXPECT_EQ(a.RedrawOnlyWhenIdle, c.RedrawOnlyWhenIdle);
  EXPECT_EQ(a.StatusElseArm, c.StatusElseArm);
  EXPECT_EQ(a.NegativeCountShows, c.NegativeCountShows);
  EXPECT_EQ(a.CaptionSpaceFollows, c.CaptionSpaceFollows);
  EXPECT_EQ(a.NewRecordEvent, c.NewRecordEvent);
  EXPECT_EQ(a.CaptionDefault, c.CaptionDefault);
}

TEST(FormTableTest, EditorsWithoutTitleStandBesideTheirGroup) {
  const std::vector<std::pair<std::string_view, std::string_view>> untitled = {
      {"ExpenseItem", "M_CONTACT_GIVENNAME"},
      {"Quote", "CONTACT_GIVENNAME"},
      {"Proposal", "CONTACT_GIVENNAME"},
      {"Contract", "CONTACT_GIVENNAME"},
      {"Totals", "F_TTRDISCOUNT"},
  };
  for (const FormTable* form : EntityForms()) {
    for (const FieldRow& row : form->rows) {
      if (!row.has_editor() || row.has_title() || !row.editor.visible) continue;
      bool listed = std::find(untitled.begin(), untitled.end(),
                              std::make_pair(form->class_name, row.tag)) != untitled.end();
      EXPECT_TRUE(listed) << form->class_name << " " << row.tag << " has no title";
    }
  }
  for (const auto& [sheet, tag] : untitled) {
    const FieldRow* row = FindRow(FindEntityForm(sheet)->rows, tag);
    ASSERT_NE(row, nullptr) << sheet << " " << tag;
    EXPECT_EQ(row->editor.kind, EditorKind::kText);
    EXPECT_FALSE(row->has_title());
  }
}

TEST(FormTableTest, ContactPairButtonBelongsToTheSurnameButStandsPastTheGivenName) {
  const std::vector<std::pair<std::string_view, std::string_view>> pairs = {
      {"ExpenseItem", "M_CONTACT_"},
      {"Quote", "CONTACT_"},
      {"Proposal", "CONTACT_"},
      {"Contract", "CONTACT_"}};
  for (const auto& [sheet, prefix] : pairs) {
    const FormTable* form = FindEntityForm(sheet);
    const FieldRow* surname = FindRow(form->rows, std::string(prefix) + "SURNAME");
    const FieldRow* given = FindRow(form->rows, std::string(prefix) + "GIVENNAME");
    ASSERT_NE(surname, nullptr);
    ASSERT_NE(given, nullptr);
    EXPECT_TRUE(surname->has_button()) << sheet;
    EXPECT_FALSE(given->has_button()) << sheet;
    EXPECT_GE(surname->button.rect.Left, given->editor.rect.Left + given->editor.rect.Width)
        << sheet;
  }
}

TEST(FormTableTest, UdutyButtonLiesPastTheFormsRightEdge) {
  for (std::string_view sheet : {"CompanyAccount", "ShortCompanyAccount"}) {
    const FormTable* form = FindEntityForm(sheet);
    const FieldRow* row = FindRow(form->rows, "F_UDUTY");
    ASSERT_NE(row, nullptr);
    EXPECT_FALSE(row->has_editor()) << sheet;
    EXPECT_FALSE(row->has_title()) << sheet;
    EXPECT_EQ(row->button.index, 1);
    EXPECT_EQ(row->button.glyph, Glyph::kArrow);
    EXPECT_EQ(row->button.rect, (DesignRect{10440, 465, 240, 235}));
    EXPECT_GT(row->button.rect.Left, form->width);
  }
  // Only those two forms have a row without an editor.
  for (const FormTable* form : EntityForms()) {
    for (const FieldRow& row : form->rows) {
      if (!row.has_editor()) {
        EXPECT_TRUE(IsCompanySheet(*form)) << form->class_name;
      }
    }
  }
  const FieldRow* user_duty = FindRow(UserInfoForm().rows, "F_UDUTY");
  ASSERT_NE(user_duty, nullptr);
  EXPECT_GT(user_duty->button.rect.Left, UserInfoForm().width);
  EXPECT_EQ(
      user_duty->button.rect.Left - (user_duty->editor.rect.Left + user_duty->editor.rect.Width),
      600);
}

TEST(FormTableTest, TitlesBelongToTheSheetNotToTheColumn) {
  EXPECT_EQ(FindRow(CompetitorForm().rows, "F_ACCTEL")->title.caption, "Main Phone#");
  EXPECT_EQ(FindRow(AccountForm().rows, "F_ACCTEL")->title.caption, "Main Phone#");
  EXPECT_EQ(FindRow(CompanyAccountForm().rows, "F_ACCTEL")->title.caption, "Main Phone Number:");
  EXPECT_EQ(FindRow(PriceListForm().rows, "CURR_CODE")->title.caption, "Currency");
  EXPECT_EQ(FindRow(CompanyAccountForm().rows, "CURR_CODE")->title.caption, "Account Currency:");
  EXPECT_EQ(FindRow(ShortCompanyAccountForm().rows, "CURR_CODE")->title.caption, "Currency:");
  EXPECT_EQ(FindRow(ContactForm().rows, "F_SURNAME")->title.caption, "First Name");
  EXPECT_EQ(FindRow(UserInfoForm().rows, "F_USURNAME")->title.caption, "Last Name");
  EXPECT_EQ(FindRow(ActivityForm().rows, "F_ACTTYPE")->title.caption, "Activity_Type");
  EXPECT_EQ(FindRow(AppointmentForm().rows, "F_ACTTYPE")->title.caption, "Type");
  EXPECT_EQ(FindRow(ActivityForm().rows, "F_ACTCOMMENT")->title.caption, "Comments");
  EXPECT_EQ(FindRow(AppointmentForm().rows, "F_ACTCOMMENT")->title.caption, "Notes");
  EXPECT_NE(FindRow(QuoteForm().rows, "TFILE__NAME"), nullptr);
}

TEST(FormTableTest, MembershipGoesByTagNotByIndex) {
  // In Opportunity Lbl_Title(12) and Txt_Value(10) are one row.
  const FieldRow* row = FindRow(OpportunityForm().rows, "FORE_REVENUE");
  ASSERT_NE(row, nullptr);
  EXPECT_EQ(row->editor.index, 10);
  EXPECT_EQ(row->title.index, 12);
}

TEST(FormTableTest, ExpenseItemStandsFortyFiveTwipsTaller) {
  EXPECT_EQ(ExpenseItemForm().height, ExpenseForm().height + 45);
}

TEST(FormTableTest, ThreeFormsHaveTheirOwnCaptionStrip) {
  const FixedControls& user = UserInfoForm().fixed;
  EXPECT_EQ(user.Lbl_Caption.rect, (DesignRect{0, 0, 1515, 315}));
  EXPECT_EQ(user.Lbl_Caption.font.size, 12);
  EXPECT_TRUE(user.Lbl_Caption.font.bold);
  EXPECT_EQ(user.Shp_Caption.rect, (DesignRect{-135, -135, 13905, 585}));
  EXPECT_TRUE(user.Shp_Caption.has_back_color);
  EXPECT_EQ(user.Pic_TableUp.tab_index, 2);
  for (const FormTable* form : {&CompanyAccountForm(), &ShortCompanyAccountForm()}) {
    const FixedControls& f = form->fixed;
    EXPECT_EQ(f.Lbl_Caption.rect, (DesignRect{15, 0, 2415, 390}));
    EXPECT_EQ(f.Lbl_Caption.font.size, 12);
    EXPECT_FALSE(f.Lbl_Caption.font.bold);
    EXPECT_EQ(f.Shp_Caption.rect, (DesignRect{-90, -1125, 11055, 1650}));
    EXPECT_FALSE(f.Shp_Caption.has_back_color);
    EXPECT_EQ(f.Pic_TableUp.tab_index, 1);
  }
}

TEST(FormTableTest, FindEntityFormKnowsTheSeventeenClassesExactly) {
  for (const FormTable* form : EntityForms()) {
    EXPECT_EQ(FindEntityForm(form->class_name), form);
  }
  EXPECT_EQ(FindEntityForm("Appointment"), nullptr);
  EXPECT_EQ(FindEntityForm("Currency"), nullptr);
  EXPECT_EQ(FindEntityForm("userinfo"), nullptr);
  EXPECT_EQ(FindEntityForm(""), nullptr);
}

TEST(AppointmentFormTest, ArraysAreNumberedWithoutHolesAndTabsAreUnique) {
  const AppointmentFormTable& form = AppointmentForm();
  EXPECT_EQ(form.rows.size(), 20u);
  EXPECT_EQ(Indices(form.rows, EditorKind::kText), ZeroTo(18));
  EXPECT_EQ(Indices(form.rows, EditorKind::kCheck), ZeroTo(2));
  EXPECT_EQ(TitleIndices(form.rows), ZeroTo(20));
  EXPECT_EQ(ButtonIndices(form.rows), ZeroTo(15));
  std::vector<int> tabs = {form.Pic_TableStart.tab_index, form.Pic_TableUp.tab_index,
                           form.Pic_TableDown.tab_index};
  for (const FrameSpec& frame : form.frames) tabs.push_back(frame.tab_index);
  int previous = form.Pic_TableUp.tab_index;
  for (const FieldRow& row : form.rows) {
    tabs.push_back(row.editor.tab_index);
    EXPECT_GT(row.editor.tab_index, previous) << row.tag;
    EXPECT_LT(row.editor.tab_index, form.Pic_TableDown.tab_index) << row.tag;
    EXPECT_TRUE(row.editor.visible) << row.tag;
    previous = row.editor.tab_index;
  }
  std::set<int> unique(tabs.begin(), tabs.end());
  EXPECT_EQ(unique.size(), tabs.size());
}

TEST(AppointmentFormTest, SentinelsAndImagesLieBelowTheForm) {
  const AppointmentFormTable& form = AppointmentForm();
  EXPECT_EQ(form.Pic_TableStart.rect, (DesignRect{2430, 4830, 165, 165}));
  EXPECT_EQ(form.Pic_TableUp.rect, (DesignRect{2070, 4830, 165, 165}));
  EXPECT_EQ(form.Pic_TableDown.rect, (DesignRect{2250, 4830, 165, 165}));
  EXPECT_EQ(form.Pic_TableStart.tab_index, 0);
  EXPECT_EQ(form.Pic_TableUp.tab_index, 1);
  EXPECT_EQ(form.Pic_TableDown.tab_index, 22);
  ASSERT_EQ(form.images.size(), 2u);
  EXPECT_EQ(form.images[0].index, 2);
  EXPECT_EQ(form.images[0].Left, 1350);
  EXPECT_EQ(form.images[0].Top, 4815);
  EXPECT_EQ(form.images[0].picture, Glyph::kArrow);
  EXPECT_EQ(form.images[1].index, 3);
  EXPECT_EQ(form.images[1].Left, 1575);
  EXPECT_EQ(form.images[1].Top, 4815);
  EXPECT_EQ(form.images[1].picture, Glyph::kDots);
  for (const ImageSpec& image : form.images) {
    EXPECT_EQ(image.name, "Image1");
    EXPECT_GT(image.Top, form.height);
  }
  EXPECT_GT(form.Pic_TableStart.rect.Top, form.height);
  EXPECT_EQ(form.back_color, 0x00EEEEEEu);
  for (const FrameSpec& frame : form.frames) EXPECT_EQ(frame.rect.Width, form.width);
}

TEST(CurrencyFormTest, ThreeHiddenPatterns) {
  const CurrencyFormTable& form = CurrencyForm();
  EXPECT_EQ(form.class_name, "Currency");
  EXPECT_EQ(form.width, 3855);
  EXPECT_EQ(form.height, 2610);
  EXPECT_EQ(form.cmd_value.index, 0);
  EXPECT_EQ(form.cmd_value.glyph, Glyph::kArrow);
  EXPECT_EQ(form.cmd_value.rect, (DesignRect{3000, 225, 240, 240}));
  EXPECT_EQ(form.cmd_value_tab_index, 0);
  EXPECT_EQ(form.txt_value_rect, (DesignRect{1785, 225, 1230, 270}));
  EXPECT_EQ(form.txt_value_text, "Txt_Value");
  EXPECT_EQ(form.txt_value_style, 1);
  EXPECT_EQ(form.txt_value_tab_index, 1);
  EXPECT_EQ(form.lbl_title_rect, (DesignRect{225, 225, 1380, 270}));
  EXPECT_EQ(form.lbl_title_caption, "Lbl_Title");
  EXPECT_EQ(form.lbl_title_alignment, kAlignRight);
  EXPECT_EQ(form.lbl_title_tab_index, 2);
}

}  // namespace
}  // namespace tarnsheets
