// The designed form of `Expense`.
#include "family/form_builders.h"
#include "family/form_table.h"

namespace tarnsheets {
namespace {

using namespace form_build;

constexpr FieldRow kRows[] = {
    Row("F_EPNO", "Expense #", Txt(0, 0, 7, {1200, 450, 1980, 270}), Lbl(0, {45, 450, 1080, 270}),
        NoBtn()),
    Row("F_EPTITLE", "Name", Txt(1, 0, 8, {1200, 870, 1980, 270}), Lbl(1, {45, 870, 1080, 270}),
        NoBtn()),
    Row("F_EPDESCRIPT", "Description", Txt(2, 1, 9, {1170, 1260, 1770, 690}),
        Lbl(2, {45, 1260, 1080, 735}), Btn(2, kDots, 2955, 1260, 240, 690)),
    Row("F_ORGCHARGENO", "Charge #", Txt(3, 0, 10, {4545, 450, 1710, 270}),
        Lbl(3, {3270, 450, 1230, 270}), NoBtn()),
    Row("ACC_SNAME", "Account", Txt(4, 0, 11, {4545, 870, 1470, 270}),
        Lbl(4, {3270, 870, 1230, 270}), Btn(4, kArrow, 6030, 885)),
    Row("OPP_NAME", "Opportunity", Txt(5, 0, 12, {4545, 1260, 1485, 270}),
        Lbl(5, {3270, 1260, 1230, 270}), Btn(5, kArrow, 6030, 1275)),
    Row("F_CREATTIME", "Created", Txt(6, 0, 13, {4560, 1665, 1710, 270}),
        Lbl(6, {3270, 1665, 1230, 270}), NoBtn()),
    Row("F_EPADVPAID", "Cash Advance", Txt(7, 0, 14, {8070, 450, 1470, 270}),
        Lbl(7, {6345, 450, 1680, 270}), Btn(7, kDots, 9555, 465)),
    Row("F_EPTTAMOUNT", "Total Amount", Txt(8, 0, 15, {8070, 870, 1470, 270}),
        Lbl(8, {6345, 870, 1680, 270}), Btn(8, kDots, 9555, 885)),
    Row("F_EPPAYAMOUNT", "Paid Amount", Txt(9, 0, 16, {8070, 1260, 1470, 270}),
        Lbl(9, {6345, 1260, 1680, 270}), Btn(9, kDots, 9540, 1275)),
    Row("AUDIT_STATUS", "Audit Status", Txt(10, 0, 17, {8070, 1665, 1470, 270}),
        Lbl(10, {6345, 1665, 1680, 270}), Btn(0, kDots, 9540, 1680)),
    Row("FORE_SIGNAL", "", HiddenChk(0, 19, {9000, 120, 195, 195}), NoLbl(), NoBtn()),
};

constexpr FormTable kForm{
    "Expense", "Expense",      9915,
    2070,      kFormBackColor, kSansSerif825,
    "",        Glyph::kNone,   FourteenFormFixed(18),
    kRows,     kFamilyOptions,
};

}  // namespace

const FormTable& ExpenseForm() { return kForm; }

}  // namespace tarnsheets
