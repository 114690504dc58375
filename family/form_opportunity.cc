// The designed form of `Opportunity`. Its Chk_Value(0) is a real, visible field, and its border
// shape stands as tall as the form.
#include "family/form_builders.h"
#include "family/form_table.h"

namespace tarnsheets {
namespace {

using namespace form_build;

constexpr FieldRow kRows[] = {
    Row("F_OPPNAME", "Opportunity", Txt(0, 0, 7, {1125, 450, 1965, 270}),
        Lbl(0, {90, 450, 1005, 270}), NoBtn()),
    Row("F_OPPDESCRIPT", "Description", Txt(1, 1, 8, {1125, 855, 1695, 270}),
        Lbl(1, {90, 855, 1005, 270}), Btn(0, kDots, 2820, 870)),
    Row("PRIM_LOGINNAME", "Sales Team", Txt(2, 0, 9, {1125, 1260, 1695, 270}),
        Lbl(2, {90, 1260, 1005, 270}), Btn(1, kDots, 2820, 1275)),
    Row("SSTAGE_NAME", "Sales Stage", Txt(3, 0, 10, {1125, 1650, 1695, 270}),
        Lbl(3, {90, 1650, 1005, 270}), Btn(2, kArrow, 2820, 1665)),
    Row("ACC_SNAME", "Account", Txt(4, 0, 11, {3960, 450, 2460, 270}),
        Lbl(4, {3165, 450, 765, 270}), Btn(3, kArrow, 6420, 465)),
    Row("ADDR_DETAIL", "Address", Txt(5, 0, 12, {3960, 855, 945, 270}),
        Lbl(5, {3165, 855, 765, 270}), Btn(4, kDots, 4890, 870)),
    Row("ADDR_SITE", "Site", Txt(14, 0, 13, {5850, 855, 795, 270}), Lbl(15, {5055, 855, 765, 270}),
        NoBtn()),
    Row("ADDR_CITY", "City", Txt(6, 0, 14, {3960, 1260, 1140, 270}), Lbl(6, {3165, 1260, 765, 270}),
        NoBtn()),
    Row("ADDR_PROVINCE", "State", Txt(8, 0, 15, {5865, 1260, 795, 270}),
        Lbl(8, {4905, 1260, 915, 270}), NoBtn()),
    Row("ADDR_POSTALCODE", "Zip", Txt(7, 0, 16, {3960, 1650, 1125, 270}),
        Lbl(7, {3165, 1650, 765, 270}), NoBtn()),
    Row("ADDR_COUNTRY", "Country", Txt(9, 0, 17, {5865, 1650, 795, 270}),
        Lbl(9, {4905, 1650, 915, 270}), NoBtn()),
    Row("FORE_REVENUE", "Revenue", Txt(10, 0, 18, {7770, 465, 1755, 270}),
        Lbl(12, {6705, 465, 1035, 270}), Btn(5, kDots, 9540, 465)),
    Row("F_OPPCLSDATE", "Close Date", Txt(11, 0, 19, {7770, 855, 1755, 270}),
        Lbl(10, {6705, 855, 1035, 270}), Btn(6, kArrow, 9540, 870)),
    Row("FORE_PROBABILITY", "Prob%", Txt(12, 0, 20, {7770, 1260, 720, 270}),
        Lbl(11, {6705, 1260, 1035, 270}), Btn(7, kArrow, 8490, 1275)),
    Row("FORE_SIGNAL", "Forecast", Chk(0, 21, {9585, 1260, 195, 195}),
        Lbl(13, {8790, 1260, 765, 270}), NoBtn()),
    Row("CLUESRC_DESCRIPT", "Source", Txt(13, 0, 22, {7770, 1650, 1755, 270}),
        Lbl(14, {6705, 1650, 1035, 270}), Btn(8, kArrow, 9540, 1665)),
};

constexpr OptionRecord kOptions = [] {
  OptionRecord options = kFamilyOptions;
  options.CaptionMenu = false;
  options.RedrawOnlyWhenIdle = true;
  return options;
}();

constexpr FormTable kForm{
    "Opportunity",
    "Opportunity",
    9915,
    2070,
    kFormBackColor,
    kSansSerif825,
    "",
    Glyph::kNone,
    FourteenFormFixed(23, 8955, 90, 2010),
    kRows,
    kOptions,
};

}  // namespace

const FormTable& OpportunityForm() { return kForm; }

}  // namespace tarnsheets
