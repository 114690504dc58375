// The designed form of `UserInfo`, the model member of the family.
#include "family/form_builders.h"
#include "family/form_table.h"

namespace tarnsheets {
namespace {

using namespace form_build;

constexpr FieldRow kRows[] = {
    Row("F_ULOGINNAME", "Login Name", Txt(0, 0, 9, {1170, 495, 2040, 285}),
        Lbl(7, {45, 495, 1050, 255}), Btn(0, kArrow, 3225, 525)),
    Row("F_NTDOMAIN", "Login Domain", Txt(1, 0, 10, {4545, 495, 1770, 285}),
        Lbl(4, {3465, 495, 1005, 270}), NoBtn()),
    Row("F_USURNAME", "Last Name", Txt(2, 0, 11, {1170, 855, 945, 285}),
        Lbl(0, {45, 855, 1050, 270}), NoBtn()),
    Row("F_UGIVENNAME", "First Name", Txt(3, 0, 12, {3195, 855, 1035, 285}),
        Lbl(1, {2160, 855, 960, 270}), NoBtn()),
    Row("F_UPREFIX", "Mr/Ms", Txt(4, 0, 13, {5040, 855, 1005, 285}), Lbl(2, {4320, 855, 690, 270}),
        Btn(2, kArrow, 6075, 885)),
    Row("F_UJOBTITLE", "Job Title", Txt(5, 0, 14, {1170, 1215, 5100, 285}),
        Lbl(5, {45, 1215, 1050, 270}), NoBtn()),
    Row("TEAM_NAME", "Team Name", Txt(6, 0, 15, {1170, 1575, 3555, 285}),
        Lbl(3, {45, 1575, 1050, 270}), Btn(3, kArrow, 4725, 1620)),
    Row("F_ISACTIVE", "Active", Chk(0, 16, {6030, 1620, 195, 195}), Lbl(8, {5085, 1620, 810, 225}),
        NoBtn()),
    // The button lies past the form's right edge, 600 twips from its editor.
    Row("F_UDUTY", "Description", Txt(7, 2, 17, {7515, 495, 2325, 1440}),
        Lbl(6, {6435, 495, 1065, 495}), Btn(1, kArrow, 10440, 465, 240, 235)),
};

constexpr FormTable kForm{
    "UserInfo",
    "User",
    9975,
    2070,
    kFormBackColor,
    DesignFont{"MS Sans Serif", 13.5, false, 0},
    "",
    Glyph::kNone,
    ThreeFormFixed(
        2, 26,
        CaptionLabelSpec{{0, 0, 1515, 315},
                         kAlignCenter,
                         kSysActiveBorder,
                         0x00FFFFFF,
                         DesignFont{"MS Sans Serif", 12, true, 0}},
        CaptionShapeSpec{{-135, -135, 13905, 585}, true, kSysActiveBorder, kSysActiveBorder, 2}),
    kRows,
    OptionRecord{/*CaptionMenu=*/false, /*RedrawOnlyWhenIdle=*/true, /*StatusElseArm=*/true,
                 /*NegativeCountShows=*/false, /*CaptionSpaceFollows=*/false,
                 /*NewRecordEvent=*/false, /*CaptionDefault=*/"UserInfo"},
};

}  // namespace

const FormTable& UserInfoForm() { return kForm; }

}  // namespace tarnsheets
