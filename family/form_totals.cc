// The designed form of `Totals`. F_TTRDISCOUNT has no title of its own: it stands beside
// TOTAL_DISCOUNT under that editor's title, with a button of its own.
#include "family/form_builders.h"
#include "family/form_table.h"

namespace tarnsheets {
namespace {

using namespace form_build;

constexpr FieldRow kRows[] = {
    Row("F_DSCNTRSN", "Discount Reason", Txt(0, 2, 7, {1710, 450, 4050, 855}),
        Lbl(0, {90, 450, 1575, 855}), NoBtn()),
    Row("F_TTPRICE", "Item Total", Txt(1, 0, 8, {7590, 450, 1965, 270}),
        Lbl(1, {6180, 450, 1215, 270}), Btn(0, kDots, 9555, 465)),
    Row("F_TTRDISCOUNT", "", Txt(4, 0, 9, {7590, 765, 690, 270}), NoLbl(),
        Btn(4, kArrow, 8280, 765, 240, 270)),
    Row("TOTAL_DISCOUNT", "Total Discount", Txt(2, 0, 10, {8550, 765, 1005, 270}),
        Lbl(2, {6180, 765, 1215, 270}), Btn(1, kDots, 9555, 780)),
    Row("F_TTVALUE", "Total", Txt(3, 0, 11, {7590, 1080, 1965, 270}),
        Lbl(3, {6180, 1080, 1215, 270}), Btn(2, kDots, 9555, 1095)),
    Row("FORE_SIGNAL", "", HiddenChk(0, 13, {9000, 120, 195, 195}), NoLbl(), NoBtn()),
};

constexpr FormTable kForm{
    "Totals", "Totals",       9915,
    1440,     kFormBackColor, kSansSerif825,
    "",       Glyph::kNone,   FourteenFormFixed(12),
    kRows,    kFamilyOptions,
};

}  // namespace

const FormTable& TotalsForm() { return kForm; }

}  // namespace tarnsheets
