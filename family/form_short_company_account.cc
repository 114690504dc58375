// The designed form of `ShortCompanyAccount`, the short one of the two company sheets.
#include "family/form_builders.h"
#include "family/form_table.h"

namespace tarnsheets {
namespace {

using namespace form_build;

constexpr FieldRow kRows[] = {
    Row("F_ACCSNAME", "Name:", Txt(0, 0, 6, {1125, 495, 2385, 285}), Lbl(0, {45, 495, 1065, 285}),
        NoBtn()),
    Row("F_ACCDESCRIPT", "Description:", Txt(1, 2, 7, {1125, 900, 2385, 1095}),
        Lbl(1, {45, 900, 1065, 330}), NoBtn()),
    Row("F_TAXNO", "Tax No:", Txt(2, 0, 8, {5085, 525, 1530, 285}), Lbl(2, {3645, 525, 1365, 285}),
        NoBtn()),
    Row("F_BANKNAME", "Bank Name:", Txt(3, 0, 9, {5085, 900, 1530, 285}),
        Lbl(3, {3645, 900, 1365, 240}), NoBtn()),
    Row("F_BANKNO", "Bank Account", Txt(4, 0, 10, {5085, 1305, 1530, 285}),
        Lbl(4, {3645, 1350, 1365, 240}), NoBtn()),
    Row("CURR_CODE", "Currency:", Txt(5, 0, 11, {5085, 1710, 1530, 285}),
        Lbl(5, {3645, 1755, 1365, 240}), NoBtn()),
    Row("F_ACCTEL", "Main Phone Number:", Txt(6, 0, 12, {8145, 495, 1800, 285}),
        Lbl(6, {6705, 495, 1335, 240}), NoBtn()),
    Row("M_ADDR_DETAIL", "Address", Txt(8, 0, 13, {8145, 1305, 1500, 285}),
        Lbl(8, {6705, 1305, 1335, 240}), Btn(2, kDots, 9675, 1350)),
    Row("F_ACCFAX", "Fax Number:", Txt(7, 0, 14, {8145, 900, 1800, 285}),
        Lbl(7, {6705, 900, 1335, 240}), NoBtn()),
    Row("F_ACCURL", "URL:", Txt(9, 0, 15, {8145, 1665, 1800, 285}), Lbl(9, {6705, 1710, 1335, 240}),
        NoBtn()),
    Row("FORE_SIGNAL", "", HiddenChk(0, 32, {9135, 135, 195, 195}), NoLbl(), NoBtn()),
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
    "ShortCompanyAccount",
    "Short Company Account",
    10125,
    2070,
    kFormBackColor,
    DesignFont{"宋体", 14.25, false, 134},
    "F_CREATTIME",
    Glyph::kNone,
    CompanyFormFixed(17),
    kRows,
    kOptions,
};

}  // namespace

const FormTable& ShortCompanyAccountForm() { return kForm; }

}  // namespace tarnsheets
