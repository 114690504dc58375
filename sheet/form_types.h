// The shape of a designed form: the types in which the sheet family writes each of its forms as
// constant data (family/form_table.h holds the forms themselves). A sheet creates its controls
// from its table when it is created; no logic names a field, so the column names, the default
// titles, the editor kinds, the tab order and the positions live only in the tables.
//
// All lengths are twips, relative to the form (or, on `Appointment`, to the frame that holds the
// control). The tables are plain aggregates with static storage: pointers and spans into them
// stay valid for the life of the program.
#ifndef TARNSHEETS_SHEET_FORM_TYPES_H_
#define TARNSHEETS_SHEET_FORM_TYPES_H_

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "sheet/option_record.h"
#include "tarnsheets/types.h"

namespace tarnsheets {

// Which picture a drop button (or a form picture, or an image) carries. kNone: no picture.
enum class Glyph : uint8_t { kNone, kArrow, kDots };

// An index that is not there: a row without a title, a row without a button, a button-only row
// without an editor, a control whose designed tab index is not part of the table.
inline constexpr int kNoIndex = -1;

// A designed rectangle in twips.
struct DesignRect {
  int32_t Left;
  int32_t Top;
  int32_t Width;
  int32_t Height;

  friend constexpr bool operator==(const DesignRect&, const DesignRect&) = default;
};

// A designed font. `charset` 0 is the default character set; 134 is the simplified Chinese one.
struct DesignFont {
  std::string_view name;
  double size;  // points
  bool bold;
  int16_t charset;

  // The font as a control carries it.
  Font ToFont() const {
    Font font;
    font.name = std::string(name);
    font.size = size;
    font.bold = bold;
    font.charset = charset;
    return font;
  }
};

// ---------------------------------------------------------------------------------------------
// Field rows. A field row is the set of controls that carry one `Tag`: one editor, usually a
// title, sometimes a drop button. Membership goes by `Tag`, never by index.

enum class EditorKind : uint8_t {
  kNone,   // a button-only row: no editor at all
  kText,   // Txt_Value(index), an SFText
  kCheck,  // Chk_Value(index), an SFCheck
};

// The editor of a row.
struct EditorSpec {
  EditorKind kind;
  int index;      // index in Txt_Value or Chk_Value; kNoIndex when kind is kNone
  int style;      // the SFText Style: 0 one line, 1 several lines, 2 several lines with a
                  // vertical scroll bar. 0 for check editors.
  int tab_index;  // the editor's TabIndex; kNoIndex when kind is kNone
  DesignRect rect;
  bool visible;  // false only for the hidden Chk_Value(0) placeholders
};

// The title label of a row, a right-aligned (Alignment 1) `Lbl_Title(index)`. Its caption is the
// English default title, shown until a title record supplies a display name.
struct TitleSpec {
  int index;  // kNoIndex: the row has no title; caption is then empty
  std::string_view caption;
  DesignRect rect;
};

// The drop button of a row, `Cmd_Value(index)`: a graphical command button with TabStop False.
struct ButtonSpec {
  int index;  // kNoIndex: the row has no button
  Glyph glyph;
  DesignRect rect;
};

struct FieldRow {
  std::string_view tag;  // the column name; the same `Tag` on every control of the row
  EditorSpec editor;
  TitleSpec title;
  ButtonSpec button;
  int frame;  // 0: on the form; 1, 2, 3: inside Frame1, Frame2, Frame3 (`Appointment` only)

  bool has_editor() const { return editor.kind != EditorKind::kNone; }
  bool has_title() const { return title.index != kNoIndex; }
  bool has_button() const { return button.index != kNoIndex; }
};

// Alignment values of a label.
inline constexpr int kAlignLeft = 0;
inline constexpr int kAlignRight = 1;
inline constexpr int kAlignCenter = 2;

// ---------------------------------------------------------------------------------------------
// Fixed controls. Every entity sheet holds the same set besides its rows. Three forms
// (`UserInfo`, `CompanyAccount`, `ShortCompanyAccount`) differ in geometry; the other fourteen
// agree, with the few exceptions their tables carry.

// A plain designed control: a focus sentinel, a record button or the UserCommand(0) pattern.
struct FixedControl {
  DesignRect rect;
  std::string_view caption;  // designed caption; empty for picture boxes
  int tab_index;             // kNoIndex when the designed form leaves it to the toolkit
  bool tab_stop;
  bool visible;
  bool enabled;
};

// `Lbl_Caption`: its caption is the form's caption.
struct CaptionLabelSpec {
  DesignRect rect;
  int alignment;
  Color back_color;
  Color fore_color;
  DesignFont font;
};

// `Lbl_CaptionSpace`: the thin strip above the caption label, empty.
struct CaptionSpaceSpec {
  DesignRect rect;
  Color back_color;
};

// `Shp_Caption`: the rectangle shape around the whole sheet.
struct CaptionShapeSpec {
  DesignRect rect;
  bool has_back_color;  // false: the designed shape sets no BackColor (the company sheets)
  Color back_color;     // meaningful only when has_back_color
  Color border_color;
  int border_width;  // pixels; the unit of the caption strip's geometry
};

// A menu item of the pop-up menu.
struct MenuItemSpec {
  std::string_view name;     // "mnu_NewRecord", ...
  std::string_view caption;  // designed caption, replaced at initialisation
  bool enabled;
};

// `mnu_Menu` and its four children, in their order.
struct PopupMenuSpec {
  std::string_view name;     // "mnu_Menu"
  std::string_view caption;  // "Menu"
  std::array<MenuItemSpec, 4> items;
};

struct FixedControls {
  FixedControl Pic_TableStart;
  FixedControl Pic_TableUp;
  FixedControl Pic_TableDown;
  FixedControl Cmd_NewRecord;
  FixedControl Cmd_CopyRecord;
  FixedControl Cmd_DeleteRecord;
  FixedControl Cmd_Undo;
  FixedControl UserCommand0;  // UserCommand(0), the hidden pattern for host buttons
  CaptionLabelSpec Lbl_Caption;
  CaptionSpaceSpec Lbl_CaptionSpace;
  CaptionShapeSpec Shp_Caption;
  PopupMenuSpec mnu_Menu;
};

// ---------------------------------------------------------------------------------------------
// Forms.

// The designed form of an entity sheet.
struct FormTable {
  std::string_view class_name;  // "UserInfo", "Opportunity", ...
  std::string_view caption;     // designed caption of Lbl_Caption
  int32_t width;                // designed size of the form
  int32_t height;
  Color back_color;
  DesignFont font;       // the form's own font, which its controls take
  std::string_view tag;  // the form's Tag; empty but on the two company sheets
  Glyph picture;         // the form's Picture; Glyph::kNone but on ExpenseItem
  FixedControls fixed;
  std::span<const FieldRow> rows;  // in tab order
  OptionRecord options;
};

// The number of controls of each array of a form, and one past the highest index (which differs
// from the count only where an array has holes, as Cmd_Value may).
struct ArrayCounts {
  int txt_value = 0;
  int chk_value = 0;
  int lbl_title = 0;
  int cmd_value = 0;
  int cmd_value_bound = 0;
};

// Counts the controls of the four field arrays in `rows`.
ArrayCounts CountArrays(std::span<const FieldRow> rows);

// ---------------------------------------------------------------------------------------------
// Appointment: no caption strip, no record buttons, no UserCommand, no menu. Its rows lie in
// three frames; each row's rectangles are relative to its frame (FieldRow::frame).

struct FrameSpec {
  std::string_view name;     // "Frame1", "Frame2", "Frame3"
  std::string_view caption;  // designed caption, replaced at creation by messages 700..702
  DesignRect rect;
  int tab_index;
};

// An element of the image array `Image1`, sized by its picture.
struct ImageSpec {
  std::string_view name;  // "Image1"
  int index;
  int32_t Left;
  int32_t Top;
  Glyph picture;
};

struct AppointmentFormTable {
  std::string_view class_name;  // "Appointment"
  int32_t width;
  int32_t height;
  Color back_color;
  DesignFont font;
  FixedControl Pic_TableStart;
  FixedControl Pic_TableUp;
  FixedControl Pic_TableDown;
  std::array<FrameSpec, 3> frames;
  std::array<ImageSpec, 2> images;
  std::span<const FieldRow> rows;  // in tab order
};

// ---------------------------------------------------------------------------------------------
// Currency: three hidden patterns from which the rows are loaded at run time.

struct CurrencyFormTable {
  std::string_view class_name;  // "Currency"
  int32_t width;
  int32_t height;
  DesignFont font;
  // The background is the toolkit's default until Color_Background is applied.
  // Cmd_Value(0): TabStop False, arrow glyph, not Visible.
  ButtonSpec cmd_value;
  int cmd_value_tab_index;
  // Txt_Value(0): text "Txt_Value", Style 1, not Visible.
  DesignRect txt_value_rect;
  std::string_view txt_value_text;
  int txt_value_style;
  int txt_value_tab_index;
  // Lbl_Title(0): caption "Lbl_Title", Alignment 1, not Visible.
  DesignRect lbl_title_rect;
  std::string_view lbl_title_caption;
  int lbl_title_alignment;
  int lbl_title_tab_index;
};

}  // namespace tarnsheets

#endif  // TARNSHEETS_SHEET_FORM_TYPES_H_
