// The designed form of `Proposal`. The contact pair has one title and one button: both belong to
// the surname row, the button standing past the given-name editor.
#include "family/form_builders.h"
#include "family/form_table.h"

namespace tarnsheets {
namespace {

using namespace form_build;

constexpr FieldRow kRows[] = {
    Row("F_PPSNO", "Proposal #", Txt(0, 0, 7, {930, 450, 1395, 270}), Lbl(0, {45, 450, 855, 270}),
        NoBtn()),
    Row("F_REVISION", "Ver", Txt(10, 0, 8, {3090, 450, 465, 270}), Lbl(1, {2385, 450, 675, 270}),
        NoBtn()),
    Row("F_PPSNAME", "Proposal", Txt(1, 0, 9, {930, 810, 2610, 270}), Lbl(2, {45, 810, 855, 270}),
        NoBtn()),
    Row("PPSTYPE_DESCRIPT", "Type", Txt(2, 0, 10, {930, 1170, 2355, 270}),
        Lbl(3, {45, 1170, 855, 270}), Btn(3, kArrow, 3285, 1185)),
    Row("F_DESCRIPT", "Description", Txt(5, 0, 11, {4635, 450, 1695, 270}),
        Lbl(5, {3585, 465, 1005, 270}), Btn(4, kDots, 6345, 465)),
    Row("ACC_SNAME", "Account", Txt(6, 0, 12, {4635, 810, 1695, 270}),
        Lbl(6, {3585, 795, 1005, 270}), Btn(0, kArrow, 6345, 825)),
    Row("OPP_NAME", "Opportunity", Txt(7, 0, 13, {4635, 1170, 1695, 270}),
        Lbl(7, {3585, 1170, 1005, 270}), Btn(5, kArrow, 6345, 1185)),
    Row("CONTACT_SURNAME", "Contact", Txt(8, 0, 14, {4635, 1530, 660, 270}),
        Lbl(8, {3585, 1530, 1005, 270}), Btn(10, kArrow, 6345, 1575)),
    Row("CONTACT_GIVENNAME", "", Txt(9, 0, 15, {5265, 1530, 1065, 270}), NoLbl(), NoBtn()),
    Row("NODE_NAME", "Template", Txt(11, 0, 16, {7980, 450, 1560, 270}),
        Lbl(10, {6660, 450, 1275, 270}), Btn(9, kArrow, 9540, 465)),
    Row("F_PPSDLVDATE", "Dlv. Date", Txt(3, 0, 17, {7980, 810, 1560, 270}),
        Lbl(9, {6660, 810, 1275, 270}), Btn(2, kArrow, 9540, 825)),
    Row("AUDIT_STATUS", "Audit Status", Txt(12, 0, 18, {7980, 1170, 1560, 270}),
        Lbl(11, {6660, 1170, 1275, 270}), Btn(1, kDots, 9540, 1185)),
    Row("PRIM_LOGINNAME", "Sales Team", Txt(13, 0, 19, {7980, 1530, 1560, 270}),
        Lbl(12, {6660, 1530, 1275, 270}), Btn(7, kDots, 9540, 1545)),
    Row("PPSSTATUS_DESCRIPT", "Status", Txt(4, 0, 20, {930, 1530, 2355, 270}),
        Lbl(4, {45, 1530, 855, 270}), Btn(6, kArrow, 3285, 1545)),
    Row("FORE_SIGNAL", "", HiddenChk(0, 22, {9000, 120, 195, 195}), NoLbl(), NoBtn()),
};

constexpr FormTable kForm{
    "Proposal", "Proposal",     9915,
    1935,       kFormBackColor, kSansSerif825,
    "",         Glyph::kNone,   FourteenFormFixed(21),
    kRows,      kFamilyOptions,
};

}  // namespace

const FormTable& ProposalForm() { return kForm; }

}  // namespace tarnsheets
