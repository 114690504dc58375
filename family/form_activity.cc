// The designed form of `Activity`.
#include "family/form_builders.h"
#include "family/form_table.h"

namespace tarnsheets {
namespace {

using namespace form_build;

constexpr FieldRow kRows[] = {
    Row("F_ACTTYPE", "Activity_Type", Txt(0, 0, 7, {1350, 450, 1230, 285}),
        Lbl(0, {45, 450, 1260, 270}), Btn(0, kArrow, 2580, 465)),
    Row("F_ACTPETIME", "Due", Txt(1, 0, 8, {4545, 450, 1530, 285}), Lbl(1, {2790, 450, 1725, 270}),
        Btn(1, kArrow, 6090, 465)),
    Row("F_ACTPSTIME", "Planned Start", Txt(2, 0, 9, {8055, 450, 1485, 285}),
        Lbl(2, {6390, 450, 1635, 285}), Btn(2, kArrow, 9540, 480)),
    Row("F_ACTNAME", "Description", Txt(3, 1, 10, {1350, 765, 4155, 285}),
        Lbl(3, {45, 765, 1260, 270}), Btn(3, kDots, 5505, 780)),
    Row("ACT_PRIORITY", "Priority", Txt(4, 0, 11, {1350, 1080, 1230, 285}),
        Lbl(4, {45, 1080, 1260, 270}), Btn(4, kArrow, 2580, 1095)),
    Row("ACT_STATUS", "Status", Txt(5, 0, 12, {3960, 1080, 1530, 285}),
        Lbl(5, {2790, 1080, 1140, 270}), Btn(5, kArrow, 5505, 1095)),
    Row("CONTACT_SURNAME", "First Name", Txt(6, 0, 13, {1350, 1395, 1230, 285}),
        Lbl(6, {45, 1395, 1260, 270}), Btn(6, kArrow, 2580, 1410)),
    Row("CONTACT_GIVENNAME", "Last Name", Txt(7, 0, 14, {3960, 1395, 1770, 285}),
        Lbl(7, {2790, 1395, 1140, 270}), NoBtn()),
    Row("ACC_SNAME", "Account", Txt(8, 0, 15, {1350, 1710, 4155, 285}),
        Lbl(8, {45, 1710, 1260, 270}), Btn(8, kArrow, 5505, 1725)),
    Row("F_ACTESDATE", "Date", Txt(9, 0, 16, {6795, 765, 1440, 285}), Lbl(9, {5805, 780, 960, 285}),
        Btn(9, kArrow, 8250, 795)),
    Row("F_ACTESTIME", "Start", Txt(10, 0, 17, {6795, 1080, 720, 285}),
        Lbl(10, {5805, 1080, 960, 285}), Btn(10, kArrow, 7530, 1110)),
    Row("ACT_DURATION", "Duration", Txt(11, 0, 18, {8895, 1080, 630, 285}),
        Lbl(11, {7785, 1080, 1095, 285}), Btn(11, kArrow, 9540, 1110)),
    Row("F_ACTCOMMENT", "Comments", Txt(12, 2, 19, {6795, 1395, 2970, 585}),
        Lbl(12, {5805, 1395, 915, 585}), NoBtn()),
    Row("FORE_SIGNAL", "", HiddenChk(0, 37, {9000, 120, 195, 195}), NoLbl(), NoBtn()),
};

constexpr OptionRecord kOptions = [] {
  OptionRecord options = kFamilyOptions;
  options.RedrawOnlyWhenIdle = true;
  options.NegativeCountShows = true;
  return options;
}();

constexpr FormTable kForm{
    "Activity", "Activity",     9915,
    2070,       kFormBackColor, kSansSerif825,
    "",         Glyph::kNone,   FourteenFormFixed(36, 8955, 90),
    kRows,      kOptions,
};

}  // namespace

const FormTable& ActivityForm() { return kForm; }

}  // namespace tarnsheets
