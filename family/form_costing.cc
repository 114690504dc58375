// The designed form of `Costing`. Its logic is that of `Account`; only the form differs.
#include "family/form_builders.h"
#include "family/form_table.h"

namespace tarnsheets {
namespace {

using namespace form_build;

constexpr FieldRow kRows[] = {
    Row("F_PRDNAME", "Product", Txt(0, 0, 7, {1260, 450, 4230, 270}), Lbl(0, {45, 450, 1185, 270}),
        NoBtn()),
    Row("F_PRDSPEC", "Model", Txt(1, 0, 8, {1260, 855, 1365, 270}), Lbl(2, {45, 855, 1185, 270}),
        NoBtn()),
    Row("F_PRDNO", "Part Number", Txt(2, 0, 9, {4005, 855, 1470, 270}),
        Lbl(1, {2700, 855, 1215, 270}), NoBtn()),
    Row("F_PRDCOST", "Costing", Txt(7, 0, 10, {1260, 1215, 1140, 270}),
        Lbl(7, {45, 1215, 1185, 270}), Btn(0, kDots, 2400, 1230)),
    Row("PRDTMPLT_NAME", "Type", Txt(4, 0, 11, {4005, 1245, 1215, 270}),
        Lbl(5, {2700, 1260, 1215, 270}), Btn(2, kArrow, 5220, 1260)),
    Row("PRDTMPLT_UNIT", "Unit", Txt(5, 0, 12, {1260, 1575, 1365, 270}),
        Lbl(4, {45, 1560, 1185, 270}), NoBtn()),
    Row("PRDLINE_DESCRIPT", "Product Line", Txt(3, 0, 13, {4005, 1620, 1200, 270}),
        Lbl(3, {2700, 1620, 1215, 270}), Btn(1, kArrow, 5220, 1635)),
    Row("F_DESCRIPT", "Description", Txt(6, 2, 14, {6615, 450, 3105, 1485}),
        Lbl(6, {5535, 450, 1050, 270}), NoBtn()),
    Row("FORE_SIGNAL", "", HiddenChk(0, 16, {9000, 120, 195, 195}), NoLbl(), NoBtn()),
};

constexpr FormTable kForm{
    "Costing", "Costing",      9915,
    2070,      kFormBackColor, kSansSerif825,
    "",        Glyph::kNone,   FourteenFormFixed(15),
    kRows,     kFamilyOptions,
};

}  // namespace

const FormTable& CostingForm() { return kForm; }

}  // namespace tarnsheets
