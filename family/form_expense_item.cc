// The designed form of `ExpenseItem`. It alone carries a Picture on the form (the arrow glyph)
// and stands 45 twips taller than its neighbours. The contact pair has one title and one
// button: both belong to the surname row, the button standing past the given-name editor.
#include "family/form_builders.h"
#include "family/form_table.h"

namespace tarnsheets {
namespace {

using namespace form_build;

constexpr FieldRow kRows[] = {
    Row("F_EPISDATE", "Start Date", Txt(0, 0, 7, {1350, 450, 1530, 270}),
        Lbl(0, {45, 450, 1260, 270}), Btn(0, kArrow, 2880, 465)),
    Row("F_EPIEDATE", "End Date", Txt(1, 0, 8, {1335, 870, 1530, 270}),
        Lbl(1, {45, 870, 1260, 270}), Btn(1, kArrow, 2880, 885)),
    Row("EPITYPE_NAME", "Expense Type", Txt(7, 0, 9, {1335, 1305, 1530, 270}),
        Lbl(7, {45, 1305, 1260, 270}), Btn(7, kArrow, 2880, 1320)),
    Row("F_EPIAMOUNT", "Amount", Txt(6, 0, 10, {1350, 1710, 1530, 270}),
        Lbl(6, {45, 1710, 1260, 270}), Btn(3, kDots, 2880, 1725)),
    Row("F_EPIDESCRIPT", "Description", Txt(2, 1, 11, {4785, 450, 1650, 690}),
        Lbl(2, {3150, 450, 1590, 735}), Btn(2, kDots, 6435, 450, 240, 690)),
    Row("F_EPIESTABLISH", "Establishment", Txt(8, 0, 12, {4785, 1305, 1875, 270}),
        Lbl(8, {3150, 1305, 1590, 270}), NoBtn()),
    Row("PAYMTHD_DESCRIPT", "Paidment Type", Txt(9, 0, 13, {4785, 1710, 1650, 270}),
        Lbl(9, {3150, 1710, 1590, 270}), Btn(9, kArrow, 6435, 1725)),
    Row("F_ORGCHARGENO", "Charge #", Txt(3, 0, 14, {8070, 450, 1710, 270}),
        Lbl(3, {6735, 450, 1305, 270}), NoBtn()),
    Row("ACC_SNAME", "Account", Txt(4, 0, 15, {8070, 870, 1470, 270}),
        Lbl(4, {6735, 870, 1305, 270}), Btn(4, kArrow, 9555, 885)),
    Row("OPP_NAME", "Opportunity", Txt(5, 0, 16, {8070, 1305, 1470, 270}),
        Lbl(5, {6735, 1305, 1305, 270}), Btn(5, kArrow, 9555, 1320)),
    Row("M_CONTACT_SURNAME", "Contact", Txt(10, 0, 17, {8070, 1710, 570, 270}),
        Lbl(10, {6735, 1710, 1305, 270}), Btn(10, kDots, 9555, 1725)),
    Row("M_CONTACT_GIVENNAME", "", Txt(11, 0, 18, {8640, 1710, 885, 270}), NoLbl(), NoBtn()),
    Row("FORE_SIGNAL", "", HiddenChk(0, 20, {9000, 120, 195, 195}), NoLbl(), NoBtn()),
};

constexpr FormTable kForm{
    "ExpenseItem", "ExpenseItem",         9915,  2115,           kFormBackColor, kSansSerif825, "",
    Glyph::kArrow, FourteenFormFixed(19), kRows, kFamilyOptions,
};

}  // namespace

const FormTable& ExpenseItemForm() { return kForm; }

}  // namespace tarnsheets
