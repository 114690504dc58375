// The designed form of `Appointment`: three frames at the full width, one above the other, the
// focus sentinels and two images below the form's lower edge. Every row's rectangles are
// relative to the frame that holds it.
#include "family/form_builders.h"
#include "family/form_table.h"

namespace tarnsheets {
namespace {

using namespace form_build;

constexpr int kWhat = 1;
constexpr int kWhen = 2;
constexpr int kWho = 3;

constexpr FieldRow kRows[] = {
    // Frame1, "What".
    Row("F_ACTNAME", "Description", Txt(0, 1, 2, {1260, 270, 5985, 285}),
        Lbl(0, {135, 270, 1095, 270}), Btn(11, kDots, 7245, 285), kWhat),
    Row("F_ACTTYPE", "Type", Txt(1, 0, 3, {1260, 630, 1455, 285}), Lbl(1, {135, 630, 1095, 285}),
        Btn(0, kArrow, 2700, 645), kWhat),
    Row("F_ACTCOMMENT", "Notes", Txt(2, 1, 4, {3780, 630, 3465, 285}),
        Lbl(2, {2970, 630, 780, 285}), Btn(1, kDots, 7245, 645), kWhat),
    // Frame2, "When".
    Row("F_ACTPETIME", "Due", Txt(13, 0, 5, {5580, 270, 1650, 285}),
        Lbl(15, {3825, 270, 1680, 285}), Btn(12, kArrow, 7245, 285), kWhen),
    Row("F_ACTPSTIME", "Planned Start", Txt(17, 0, 6, {1890, 270, 1665, 285}),
        Lbl(19, {180, 270, 1680, 285}), Btn(14, kArrow, 3555, 300), kWhen),
    Row("F_ACTPLANLOAD", "Total Work", Txt(14, 0, 7, {1260, 630, 1380, 285}),
        Lbl(16, {135, 630, 1095, 285}), NoBtn(), kWhen),
    Row("F_ACTREALLOAD", "Actual Work", Txt(15, 0, 8, {3690, 630, 1170, 285}),
        Lbl(17, {2430, 630, 1230, 285}), NoBtn(), kWhen),
    Row("F_CMPLTRATIO", "Percent Complete", Txt(16, 0, 9, {6480, 630, 765, 285}),
        Lbl(18, {4635, 630, 1815, 285}), Btn(13, kArrow, 7245, 660), kWhen),
    Row("F_ACTESDATE", "Date", Txt(3, 0, 10, {1260, 990, 1155, 285}), Lbl(3, {135, 990, 1095, 285}),
        Btn(2, kArrow, 2415, 1005), kWhen),
    Row("F_ACTESTIME", "Start", Txt(4, 0, 11, {3690, 990, 945, 285}), Lbl(4, {2700, 990, 960, 285}),
        Btn(3, kArrow, 4635, 1020), kWhen),
    Row("ACT_DURATION", "Duration", Txt(5, 0, 12, {6075, 990, 1170, 285}),
        Lbl(5, {4995, 990, 1050, 285}), Btn(4, kArrow, 7245, 1020), kWhen),
    Row("F_ACTEETIME", "End", Txt(6, 0, 13, {3690, 1350, 945, 285}), Lbl(6, {2700, 1350, 960, 285}),
        Btn(5, kArrow, 4635, 1365), kWhen),
    Row("F_ACTNEEDALRM", "Alarm", Chk(0, 14, {6075, 1395, 195, 195}),
        Lbl(7, {4995, 1395, 1050, 270}), NoBtn(), kWhen),
    Row("F_ACTNEEDREPT", "Repeat", Chk(1, 15, {1260, 1710, 195, 195}),
        Lbl(8, {135, 1710, 1095, 270}), NoBtn(), kWhen),
    Row("FR_NAME", "Frequency", Txt(7, 0, 16, {3690, 1710, 945, 285}),
        Lbl(9, {2700, 1710, 960, 285}), Btn(6, kArrow, 4635, 1725), kWhen),
    Row("F_ACTREPTEDATE", "Until", Txt(8, 0, 17, {6075, 1710, 1170, 285}),
        Lbl(10, {4950, 1710, 1095, 285}), Btn(7, kArrow, 7245, 1710), kWhen),
    // Frame3, "Who".
    Row("CONTACT_SURNAME", "First Name", Txt(9, 0, 18, {1260, 270, 720, 285}),
        Lbl(11, {45, 270, 1185, 285}), Btn(8, kArrow, 1980, 295), kWho),
    Row("CONTACT_GIVENNAME", "Last Name", Txt(10, 0, 19, {4860, 270, 1035, 285}),
        Lbl(12, {3465, 270, 1320, 285}), NoBtn(), kWho),
    Row("ACC_SNAME", "Account", Txt(11, 0, 20, {1260, 675, 1845, 285}),
        Lbl(13, {180, 675, 1050, 285}), Btn(9, kArrow, 3105, 690), kWho),
    Row("OPP_NAME", "Opportunity", Txt(12, 0, 21, {4860, 675, 2340, 285}),
        Lbl(14, {3465, 675, 1320, 285}), Btn(10, kArrow, 7200, 690), kWho),
};

constexpr AppointmentFormTable kForm{
    "Appointment",
    7800,
    4635,
    kFormBackColor,
    kSansSerif825,
    Sentinel({2430, 4830, 165, 165}, 0),
    Sentinel({2070, 4830, 165, 165}, 1),
    Sentinel({2250, 4830, 165, 165}, 22),
    {{
        FrameSpec{"Frame1", "What", {0, 0, 7800, 1140}, 23},
        FrameSpec{"Frame2", "When", {0, 1170, 7800, 2220}, 30},
        FrameSpec{"Frame3", "Who", {0, 3420, 7800, 1185}, 45},
    }},
    {{
        ImageSpec{"Image1", 2, 1350, 4815, Glyph::kArrow},
        ImageSpec{"Image1", 3, 1575, 4815, Glyph::kDots},
    }},
    kRows,
};

}  // namespace

const AppointmentFormTable& AppointmentForm() { return kForm; }

}  // namespace tarnsheets
