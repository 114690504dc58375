// The designed form of `Currency`: three hidden patterns. Element 0 of each array stays hidden
// for good; the rows are loaded from them at run time, from element 1.
#include "family/form_builders.h"
#include "family/form_table.h"

namespace tarnsheets {
namespace {

using namespace form_build;

constexpr CurrencyFormTable kForm{
    "Currency",
    3855,
    2610,
    kSansSerif825,
    Btn(0, kArrow, 3000, 225),
    0,
    {1785, 225, 1230, 270},
    "Txt_Value",
    1,
    1,
    {225, 225, 1380, 270},
    "Lbl_Title",
    kAlignRight,
    2,
};

}  // namespace

const CurrencyFormTable& CurrencyForm() { return kForm; }

}  // namespace tarnsheets
