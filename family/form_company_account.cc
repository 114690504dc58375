// The designed form of `CompanyAccount`, one of the two company sheets: its own geometry of the
// fixed controls, the form font "宋体" at 14.25 point in the simplified Chinese character set,
// and a Tag on the form.
#include "family/form_builders.h"
#include "family/form_table.h"

namespace tarnsheets {
namespace {

using namespace form_build;

constexpr FieldRow kRows[] = {
    Row("F_ACCSNAME", "Account Name:", Txt(0, 0, 6, {2295, 675, 2385, 285}),
        Lbl(0, {285, 690, 1830, 240}), NoBtn()),
    Row("F_ACCNAME", "Account Short Name:", Txt(1, 0, 7, {6930, 675, 2385, 285}),
        Lbl(1, {4725, 690, 2130, 240}), NoBtn()),
    Row("F_ACCDESCRIPT", "Account Description:", Txt(2, 2, 8, {2295, 1095, 7020, 645}),
        Lbl(2, {285, 1065, 1830, 330}), NoBtn()),
    Row("F_TAXNO", "Tax No:", Txt(3, 0, 9, {2295, 2295, 2385, 285}), Lbl(3, {285, 2280, 1830, 210}),
        NoBtn()),
    Row("F_BANKNAME", "Bank Name:", Txt(4, 0, 10, {2295, 2700, 2385, 285}),
        Lbl(4, {285, 2700, 1830, 240}), NoBtn()),
    Row("F_BANKNO", "Bank Account", Txt(5, 0, 11, {6930, 2700, 2385, 285}),
        Lbl(5, {5130, 2760, 1725, 240}), NoBtn()),
    Row("CURR_CODE", "Account Currency:", Txt(6, 0, 12, {2295, 3105, 2385, 285}),
        Lbl(6, {285, 3090, 1830, 240}), NoBtn()),
    Row("F_ACCTEL", "Main Phone Number:", Txt(7, 0, 13, {2295, 3510, 2385, 285}),
        Lbl(7, {285, 3540, 1830, 240}), NoBtn()),
    Row("M_ADDR_DETAIL", "Account Address", Txt(9, 0, 14, {2295, 3975, 6795, 285}),
        Lbl(9, {270, 3960, 1830, 240}), Btn(7, kDots, 9090, 3975)),
    Row("F_ACCFAX", "Main Fax Number:", Txt(8, 0, 15, {6930, 3555, 2385, 285}),
        Lbl(8, {5130, 3570, 1725, 240}), NoBtn()),
    Row("F_ACCURL", "URL:", Txt(10, 0, 16, {2295, 4395, 7020, 285}),
        Lbl(10, {285, 4365, 1830, 240}), NoBtn()),
    Row("CREATOR_LOGINNAME", "Creator:", Txt(11, 0, 17, {2295, 5265, 2385, 285}),
        Lbl(11, {285, 5280, 1830, 240}), NoBtn()),
    Row("F_CREATTIME", "Create Time:", Txt(12, 0, 18, {6930, 5265, 2385, 285}),
        Lbl(12, {5130, 5280, 1725, 240}), NoBtn()),
    Row("MRMPSN_LOGINNAME", "Updator:", Txt(13, 0, 19, {2295, 5715, 2385, 285}),
        Lbl(13, {285, 5730, 1830, 240}), NoBtn()),
    Row("F_MRMTIME", "Update Time:", Txt(14, 0, 20, {6930, 5670, 2385, 285}),
        Lbl(14, {5130, 5730, 1725, 240}), NoBtn()),
    Row("F_MDFCOUNT", "Updates", Txt(15, 0, 21, {2295, 6165, 2385, 285}),
        Lbl(15, {285, 6150, 1830, 240}), NoBtn()),
    Row("FORE_SIGNAL", "", HiddenChk(0, 44, {9135, 135, 195, 195}), NoLbl(), NoBtn()),
    // A button of no row: it lies past the form's right edge and is reached only if a host
    // widens the form.
    Row("F_UDUTY", "", NoEditor(), NoLbl(), Btn(1, kArrow, 10440, 465, 240, 235)),
};

constexpr OptionRecord kOptions = [] {
  OptionRecord options = kFamilyOptions;
  options.StatusElseArm = false;
  return options;
}();

constexpr FormTable kForm{
    "CompanyAccount",
    "Company Account",
    10125,
    7080,
    kFormBackColor,
    DesignFont{"宋体", 14.25, false, 134},
    "F_CREATTIME",
    Glyph::kNone,
    CompanyFormFixed(23),
    kRows,
    kOptions,
};

}  // namespace

const FormTable& CompanyAccountForm() { return kForm; }

}  // namespace tarnsheets
