// The designed form of `Product`.
#include "family/form_builders.h"
#include "family/form_table.h"

namespace tarnsheets {
namespace {

using namespace form_build;

constexpr FieldRow kRows[] = {
    Row("F_PRDNAME", "Product", Txt(0, 0, 7, {1260, 450, 4230, 270}), Lbl(0, {45, 450, 1095, 270}),
        NoBtn()),
    Row("F_PRDSPEC", "Model", Txt(1, 0, 8, {1260, 855, 1365, 270}), Lbl(2, {45, 855, 1095, 270}),
        NoBtn()),
    Row("F_PRDNO", "Part Number", Txt(2, 0, 9, {4005, 855, 1470, 270}),
        Lbl(1, {2700, 855, 1215, 270}), NoBtn()),
    Row("PRDTMPLT_NAME", "Type", Txt(4, 0, 10, {1260, 1245, 1575, 270}),
        Lbl(5, {45, 1260, 1095, 270}), Btn(2, kArrow, 2835, 1260)),
    Row("PRDTMPLT_UNIT", "Unit", Txt(5, 0, 11, {4500, 1260, 960, 270}),
        Lbl(4, {3150, 1245, 1320, 270}), NoBtn()),
    Row("PRDLINE_DESCRIPT", "Product Line", Txt(3, 0, 12, {1260, 1620, 3945, 270}),
        Lbl(3, {45, 1620, 1095, 270}), Btn(1, kArrow, 5220, 1635)),
    Row("F_DESCRIPT", "Description", Txt(6, 2, 13, {6615, 450, 3105, 1485}),
        Lbl(6, {5535, 450, 1050, 270}), NoBtn()),
    Row("FORE_SIGNAL", "", HiddenChk(0, 15, {9000, 120, 195, 195}), NoLbl(), NoBtn()),
};

constexpr FormTable kForm{
    "Product", "Product",      9915,
    2070,      kFormBackColor, kSansSerif825,
    "",        Glyph::kNone,   FourteenFormFixed(14),
    kRows,     kFamilyOptions,
};

}  // namespace

const FormTable& ProductForm() { return kForm; }

}  // namespace tarnsheets
