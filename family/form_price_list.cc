// The designed form of `PriceList`, captioned "Price Plan".
#include "family/form_builders.h"
#include "family/form_table.h"

namespace tarnsheets {
namespace {

using namespace form_build;

constexpr FieldRow kRows[] = {
    Row("F_PLNAME", "Price Plan", Txt(0, 0, 7, {1665, 450, 2160, 270}), Lbl(0, {0, 450, 1620, 270}),
        NoBtn()),
    Row("CMPTSTTG_NAME", "Competition Strategy", Txt(2, 0, 8, {1665, 870, 1905, 270}),
        Lbl(2, {0, 870, 1620, 270}), Btn(1, kArrow, 3570, 885)),
    Row("MAIN_PRICE_GOAL", "Priceing Goal", Txt(3, 0, 9, {1665, 1260, 1905, 270}),
        Lbl(3, {0, 1260, 1620, 270}), Btn(2, kDots, 3570, 1275)),
    Row("CURR_CODE", "Currency", Txt(1, 0, 10, {1665, 1665, 705, 270}),
        Lbl(1, {0, 1665, 1620, 270}), Btn(0, kArrow, 2385, 1680)),
    Row("F_PLCURREXRT", "Rate", Txt(10, 0, 11, {3240, 1665, 570, 270}),
        Lbl(10, {2655, 1665, 540, 270}), NoBtn()),
    Row("F_EDATE", "Efficient Date", Txt(4, 0, 12, {5085, 450, 1305, 270}),
        Lbl(4, {3810, 450, 1230, 270}), Btn(3, kArrow, 6390, 465)),
    Row("F_TDATE", "Disabled Date", Txt(5, 0, 13, {5085, 870, 1305, 270}),
        Lbl(5, {3810, 870, 1230, 270}), Btn(4, kArrow, 6390, 885)),
    Row("F_DESCRIPT", "Description", Txt(6, 1, 14, {5085, 1260, 1305, 675}),
        Lbl(6, {3810, 1260, 1230, 675}), Btn(10, kDots, 6390, 1275, 240, 645)),
    Row("MAIN_MARKET_ORIENTATION", "Market Orientation", Txt(7, 0, 15, {8145, 450, 1305, 270}),
        Lbl(7, {6660, 450, 1455, 270}), Btn(9, kDots, 9450, 465)),
    Row("F_TARGETMARKET", "Target Market", Txt(8, 1, 16, {8145, 870, 1305, 675}),
        Lbl(8, {6660, 870, 1455, 675}), Btn(5, kDots, 9450, 900, 240, 645)),
    Row("AUDIT_STATUS", "Audit Status", Txt(9, 0, 17, {8145, 1665, 1305, 270}),
        Lbl(9, {6660, 1665, 1455, 270}), Btn(7, kDots, 9450, 1680)),
    Row("FORE_SIGNAL", "", HiddenChk(0, 19, {9000, 120, 195, 195}), NoLbl(), NoBtn()),
};

constexpr OptionRecord kOptions = [] {
  OptionRecord options = kFamilyOptions;
  options.CaptionSpaceFollows = true;
  return options;
}();

constexpr FormTable kForm{
    "PriceList",  "Price Plan",          9915,  2070,     kFormBackColor, kSansSerif825, "",
    Glyph::kNone, FourteenFormFixed(18), kRows, kOptions,
};

}  // namespace

const FormTable& PriceListForm() { return kForm; }

}  // namespace tarnsheets
