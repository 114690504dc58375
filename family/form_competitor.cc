// The designed form of `Competitor`. Txt_Value(13) (CPTTRANK_NAME) stands at tab 44, far
// behind Pic_TableDown, so the focus ring reaches it only after the hidden check placeholder.
#include "family/form_builders.h"
#include "family/form_table.h"

namespace tarnsheets {
namespace {

using namespace form_build;

constexpr FieldRow kRows[] = {
    Row("F_ACCSNAME", "Competitor", Txt(0, 0, 7, {975, 450, 1980, 270}),
        Lbl(0, {45, 450, 915, 270}), NoBtn()),
    Row("CPTTTYPE_NAME", "Type", Txt(6, 0, 8, {990, 855, 1710, 270}), Lbl(6, {30, 855, 915, 270}),
        Btn(1, kArrow, 2700, 870)),
    Row("M_IND_NAME", "Industries", Txt(8, 0, 9, {990, 1260, 1710, 270}),
        Lbl(8, {30, 1260, 915, 270}), Btn(3, kDots, 2700, 1275)),
    Row("F_CPTTSTATUS", "Status", Txt(9, 0, 10, {990, 1650, 1710, 270}),
        Lbl(9, {30, 1650, 915, 270}), Btn(4, kArrow, 2700, 1665)),
    Row("F_ACCDESCRIPT", "Description", Txt(7, 1, 11, {4275, 870, 1440, 270}),
        Lbl(7, {3015, 870, 1230, 270}), Btn(2, kDots, 5715, 885)),
    Row("F_ACCTEL", "Main Phone#", Txt(10, 0, 12, {4275, 1260, 1665, 270}),
        Lbl(10, {3015, 1260, 1230, 270}), NoBtn()),
    Row("F_ACCFAX", "Main Fax#", Txt(11, 0, 13, {4275, 1650, 1665, 270}),
        Lbl(11, {3015, 1650, 1230, 270}), NoBtn()),
    Row("F_ACCURL", "URL", Txt(12, 0, 14, {7110, 450, 2685, 270}), Lbl(12, {6150, 450, 915, 270}),
        NoBtn()),
    Row("M_ADDR_DETAIL", "Address", Txt(1, 0, 15, {7095, 855, 915, 270}),
        Lbl(1, {6300, 855, 765, 270}), Btn(0, kDots, 7995, 870)),
    Row("M_ADDR_SITE", "Site", Txt(14, 0, 16, {8985, 840, 795, 270}),
        Lbl(14, {8190, 840, 765, 270}), NoBtn()),
    Row("M_ADDR_CITY", "City", Txt(2, 0, 17, {7110, 1260, 1125, 270}),
        Lbl(2, {6300, 1260, 765, 270}), NoBtn()),
    Row("M_ADDR_PROVINCE", "State", Txt(3, 0, 18, {9000, 1260, 795, 270}),
        Lbl(3, {8055, 1260, 915, 270}), NoBtn()),
    Row("M_ADDR_POSTALCODE", "Zip", Txt(4, 0, 19, {7095, 1650, 1125, 270}),
        Lbl(4, {6300, 1650, 765, 270}), NoBtn()),
    Row("M_ADDR_COUNTRY", "Country", Txt(5, 0, 20, {9000, 1650, 795, 270}),
        Lbl(5, {8040, 1650, 915, 270}), NoBtn()),
    Row("FORE_SIGNAL", "", HiddenChk(0, 22, {9000, 120, 195, 195}), NoLbl(), NoBtn()),
    Row("CPTTRANK_NAME", "Threat", Txt(13, 1, 44, {4275, 450, 1440, 270}),
        Lbl(13, {3015, 450, 1230, 270}), Btn(5, kArrow, 5715, 465)),
};

constexpr OptionRecord kOptions = [] {
  OptionRecord options = kFamilyOptions;
  options.NewRecordEvent = true;
  return options;
}();

constexpr FormTable kForm{
    "Competitor", "Competitor",          9915,  2070,     kFormBackColor, kSansSerif825, "",
    Glyph::kNone, FourteenFormFixed(21), kRows, kOptions,
};

}  // namespace

const FormTable& CompetitorForm() { return kForm; }

}  // namespace tarnsheets
