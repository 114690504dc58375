// The designed form of `Account`.
#include "family/form_builders.h"
#include "family/form_table.h"

namespace tarnsheets {
namespace {

using namespace form_build;

constexpr FieldRow kRows[] = {
    Row("F_ACCSNAME", "Account", Txt(0, 0, 7, {840, 450, 2700, 270}), Lbl(0, {45, 450, 765, 270}),
        NoBtn()),
    Row("M_ADDR_DETAIL", "Address", Txt(1, 0, 8, {840, 855, 1005, 270}),
        Lbl(1, {45, 855, 765, 270}), Btn(0, kDots, 1830, 855)),
    Row("M_ADDR_SITE", "Site", Txt(14, 0, 9, {2745, 855, 795, 270}), Lbl(14, {1830, 855, 870, 270}),
        NoBtn()),
    Row("M_ADDR_CITY", "City", Txt(2, 0, 10, {840, 1260, 1200, 270}), Lbl(2, {45, 1260, 765, 270}),
        NoBtn()),
    Row("M_ADDR_PROVINCE", "State", Txt(3, 0, 11, {2745, 1260, 795, 270}),
        Lbl(3, {1785, 1260, 915, 270}), NoBtn()),
    Row("M_ADDR_POSTALCODE", "Zip", Txt(4, 0, 12, {840, 1650, 1185, 270}),
        Lbl(4, {45, 1650, 765, 270}), NoBtn()),
    Row("M_ADDR_COUNTRY", "Country", Txt(5, 0, 13, {2745, 1650, 795, 270}),
        Lbl(5, {1785, 1650, 915, 270}), NoBtn()),
    Row("F_ACCTYPE", "Type", Txt(6, 0, 14, {4545, 450, 1710, 270}), Lbl(6, {3585, 450, 915, 270}),
        Btn(1, kArrow, 6255, 465)),
    Row("F_ACCDESCRIPT", "Description", Txt(7, 1, 15, {4545, 870, 1710, 270}),
        Lbl(7, {3585, 870, 915, 270}), Btn(2, kDots, 6255, 885)),
    Row("M_IND_NAME", "Industries", Txt(8, 0, 16, {4545, 1260, 1710, 270}),
        Lbl(8, {3585, 1260, 915, 270}), Btn(3, kDots, 6255, 1275)),
    Row("F_ACCSTATUS", "Status", Txt(9, 0, 17, {4545, 1665, 1710, 270}),
        Lbl(9, {3585, 1665, 915, 270}), Btn(4, kArrow, 6255, 1680)),
    Row("F_ACCTEL", "Main Phone#", Txt(10, 0, 18, {8145, 450, 1560, 270}),
        Lbl(10, {6660, 450, 1365, 270}), NoBtn()),
    Row("F_ACCFAX", "Main Fax#", Txt(11, 0, 19, {8145, 870, 1560, 270}),
        Lbl(11, {6660, 870, 1365, 270}), NoBtn()),
    Row("F_ACCURL", "URL", Txt(12, 0, 20, {8145, 1260, 1560, 270}),
        Lbl(12, {6660, 1260, 1365, 270}), NoBtn()),
    Row("PRIM_LOGINNAME", "Sales Team", Txt(13, 0, 21, {8145, 1665, 1305, 270}),
        Lbl(13, {6660, 1665, 1365, 270}), Btn(5, kDots, 9450, 1680)),
    Row("FORE_SIGNAL", "", HiddenChk(0, 23, {9000, 120, 195, 195}), NoLbl(), NoBtn()),
};

constexpr FormTable kForm{
    "Account", "Account",      9915,
    2070,      kFormBackColor, kSansSerif825,
    "",        Glyph::kNone,   FourteenFormFixed(22),
    kRows,     kFamilyOptions,
};

}  // namespace

const FormTable& AccountForm() { return kForm; }

}  // namespace tarnsheets
