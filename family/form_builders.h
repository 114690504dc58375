// Small constexpr helpers that let each form file write its rows and fixed controls in the order
// a designer reads them: field, title, editor, kind, tab, editor geometry, title index and
// geometry, button. Used only by the form files of this directory.
#ifndef TARNSHEETS_FAMILY_FORM_BUILDERS_H_
#define TARNSHEETS_FAMILY_FORM_BUILDERS_H_

#include <string_view>

#include "family/form_table.h"

namespace tarnsheets::form_build {

inline constexpr Glyph kArrow = Glyph::kArrow;
inline constexpr Glyph kDots = Glyph::kDots;

inline constexpr Color kFormBackColor = 0x00EEEEEE;
inline constexpr DesignFont kSansSerif825{"MS Sans Serif", 8.25, false, 0};

// Txt_Value(index) with SFText Style `style` at TabIndex `tab`.
constexpr EditorSpec Txt(int index, int style, int tab, DesignRect rect) {
  return EditorSpec{EditorKind::kText, index, style, tab, rect, true};
}

// A visible Chk_Value(index) at TabIndex `tab`.
constexpr EditorSpec Chk(int index, int tab, DesignRect rect) {
  return EditorSpec{EditorKind::kCheck, index, 0, tab, rect, true};
}

// A Chk_Value(index) that is not Visible: the placeholder that keeps the check array non-empty.
constexpr EditorSpec HiddenChk(int index, int tab, DesignRect rect) {
  return EditorSpec{EditorKind::kCheck, index, 0, tab, rect, false};
}

// A row without an editor (a button that belongs to no editor).
constexpr EditorSpec NoEditor() {
  return EditorSpec{EditorKind::kNone, kNoIndex, 0, kNoIndex, {0, 0, 0, 0}, true};
}

// Index and geometry of a row's Lbl_Title; its caption is given to Row.
struct LabelPart {
  int index;
  DesignRect rect;
};
constexpr LabelPart Lbl(int index, DesignRect rect) { return LabelPart{index, rect}; }
constexpr LabelPart NoLbl() { return LabelPart{kNoIndex, {0, 0, 0, 0}}; }

// Cmd_Value(index) with its glyph at Left, Top; 240 by 240 unless a size is given.
constexpr ButtonSpec Btn(int index, Glyph glyph, int32_t left, int32_t top, int32_t width = 240,
                         int32_t height = 240) {
  return ButtonSpec{index, glyph, {left, top, width, height}};
}
constexpr ButtonSpec NoBtn() { return ButtonSpec{kNoIndex, Glyph::kNone, {0, 0, 0, 0}}; }

// One field row. `title` is the designed caption of the row's Lbl_Title; empty when it has none.
constexpr FieldRow Row(std::string_view tag, std::string_view title, EditorSpec editor,
                       LabelPart label, ButtonSpec button, int frame = 0) {
  return FieldRow{tag, editor, TitleSpec{label.index, title, label.rect}, button, frame};
}

constexpr FixedControl Sentinel(DesignRect rect, int tab) {
  return FixedControl{rect, "", tab, true, true, true};
}

constexpr FixedControl RecordButton(DesignRect rect, std::string_view caption) {
  return FixedControl{rect, caption, kNoIndex, true, false, false};
}

constexpr PopupMenuSpec kPopupMenu{"mnu_Menu",
                                   "Menu",
                                   {{{"mnu_NewRecord", "NewRecord", false},
                                     {"mnu_DeleteRecord", "DeleteRecrod", false},
                                     {"mnu_CopyRecord", "CopyRecord", false},
                                     {"mnu_Undo", "Undo", false}}}};

// The fixed controls of the fourteen forms that share one geometry. `user_command` is the
// place of UserCommand(0) (8865, 90 on most; 8955, 90 on Opportunity and Activity; 9000, 45 on
// Contact); `shape_height` the height of Shp_Caption (330; 2010 on Opportunity).
constexpr FixedControls FourteenFormFixed(int down_tab, int32_t user_command_left = 8865,
                                          int32_t user_command_top = 90,
                                          int32_t shape_height = 330) {
  return FixedControls{
      Sentinel({8280, 150, 165, 165}, 0),
      Sentinel({7920, 150, 165, 165}, 2),
      Sentinel({8100, 150, 165, 165}, down_tab),
      RecordButton({2550, 75, 840, 315}, "New"),
      RecordButton({3420, 75, 840, 315}, "Copy"),
      RecordButton({4320, 75, 840, 315}, "Delete"),
      RecordButton({5220, 75, 840, 315}, "Cancel"),
      FixedControl{{user_command_left, user_command_top, 840, 315},
                   "UserCommand",
                   kNoIndex,
                   false,
                   false,
                   true},
      CaptionLabelSpec{{0, 75, 1515, 315},
                       kAlignCenter,
                       kSysActiveBorder,
                       0x00FFFFFF,
                       DesignFont{"MS Sans Serif", 9.75, false, 0}},
      CaptionSpaceSpec{{0, 0, 1515, 240}, kSysActiveBorder},
      CaptionShapeSpec{{45, 30, 13905, shape_height}, true, kSysActiveBorder, kSysActiveBorder, 2},
      kPopupMenu,
  };
}

// The record buttons, sentinels and UserCommand(0) that UserInfo and the two company forms share.
constexpr FixedControls ThreeFormFixed(int up_tab, int down_tab, CaptionLabelSpec caption_label,
                                       CaptionShapeSpec caption_shape) {
  return FixedControls{
      Sentinel({7440, 120, 165, 165}, 0),
      Sentinel({7080, 120, 165, 165}, up_tab),
      Sentinel({7260, 120, 165, 165}, down_tab),
      RecordButton({2910, 75, 840, 315}, "New"),
      RecordButton({3780, 75, 840, 315}, "Copy"),
      RecordButton({4680, 75, 840, 315}, "Delete"),
      RecordButton({5580, 75, 840, 315}, "Cancel"),
      FixedControl{{8040, 120, 735, 285}, "User Command", kNoIndex, true, false, true},
      caption_label,
      CaptionSpaceSpec{{0, 0, 1515, 240}, kSysActiveBorder},
      caption_shape,
      kPopupMenu,
  };
}

// The fixed controls of the two company forms, which differ only in Pic_TableDown's tab.
constexpr FixedControls CompanyFormFixed(int down_tab) {
  return ThreeFormFixed(1, down_tab,
                        CaptionLabelSpec{{15, 0, 2415, 390},
                                         kAlignCenter,
                                         kSysActiveBorder,
                                         0x00FFFFFF,
                                         DesignFont{"MS Sans Serif", 12, false, 0}},
                        CaptionShapeSpec{{-90, -1125, 11055, 1650}, false, 0, kSysActiveBorder, 2});
}

// The options of the sixteen sheets other than UserInfo, before a sheet's own differences.
constexpr OptionRecord kFamilyOptions{
    /*CaptionMenu=*/true,         /*RedrawOnlyWhenIdle=*/false,
    /*StatusElseArm=*/true,
    /*NegativeCountShows=*/false, /*CaptionSpaceFollows=*/false,
    /*NewRecordEvent=*/false,     /*CaptionDefault=*/"Opportunity"};

}  // namespace tarnsheets::form_build

#endif  // TARNSHEETS_FAMILY_FORM_BUILDERS_H_
