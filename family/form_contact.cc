// The designed form of `Contact`. Its "First Name" stands on F_SURNAME and "Last Name" on
// F_GIVENNAME, the reverse of `UserInfo`; the titles belong to the form.
#include "family/form_builders.h"
#include "family/form_table.h"

namespace tarnsheets {
namespace {

using namespace form_build;

constexpr FieldRow kRows[] = {
    Row("F_SURNAME", "First Name", Txt(0, 0, 7, {1170, 405, 585, 270}),
        Lbl(0, {90, 405, 1020, 270}), NoBtn()),
    Row("F_GIVENNAME", "Last Name", Txt(1, 0, 8, {2835, 405, 825, 270}),
        Lbl(1, {1755, 405, 1065, 270}), NoBtn()),
    Row("F_PREFIX", "Mr/Ms", Txt(2, 0, 9, {4545, 405, 630, 270}), Lbl(2, {3690, 405, 795, 270}),
        Btn(2, kArrow, 5175, 420)),
    Row("F_NICKNAME", "Nick Name", Txt(18, 0, 10, {1170, 720, 585, 270}),
        Lbl(18, {90, 720, 1020, 270}), NoBtn()),
    Row("F_DEPT", "Dept", Txt(4, 0, 11, {2835, 720, 825, 270}), Lbl(4, {1755, 720, 1065, 270}),
        NoBtn()),
    Row("F_JOBTITLE", "Job Title", Txt(3, 0, 12, {4545, 720, 855, 270}),
        Lbl(3, {3465, 720, 1020, 270}), NoBtn()),
    Row("F_OFFICETEL", "Work #", Txt(5, 0, 13, {1170, 1035, 1530, 270}),
        Lbl(5, {45, 1035, 1065, 270}), NoBtn()),
    Row("F_HOMETEL", "Home #", Txt(6, 0, 14, {3825, 1035, 1575, 270}),
        Lbl(6, {2745, 1035, 1050, 270}), NoBtn()),
    Row("F_OFFICEFAX", "Fax #", Txt(7, 0, 15, {1170, 1350, 1530, 270}),
        Lbl(7, {45, 1350, 1065, 270}), NoBtn()),
    Row("F_MOBILETEL", "Cellular #", Txt(8, 0, 16, {3825, 1350, 1575, 270}),
        Lbl(8, {2745, 1350, 1050, 270}), NoBtn()),
    Row("F_ASSNAME", "Assistant", Txt(9, 0, 17, {1170, 1665, 1530, 270}),
        Lbl(9, {45, 1665, 1065, 270}), NoBtn()),
    Row("F_ASSTEL", "Asst. #", Txt(10, 0, 18, {3825, 1665, 1575, 270}),
        Lbl(10, {2745, 1665, 1050, 270}), NoBtn()),
    Row("ACC_SNAME", "Account", Txt(11, 0, 19, {6345, 405, 3240, 270}),
        Lbl(11, {5490, 405, 780, 285}), Btn(0, kArrow, 9585, 420)),
    Row("O_ADDR_DETAIL", "Address", Txt(12, 0, 20, {6345, 720, 1305, 270}),
        Lbl(12, {5490, 720, 780, 285}), Btn(1, kDots, 7650, 735)),
    Row("O_ADDR_SITE", "Site", Txt(20, 0, 21, {8640, 720, 1185, 270}),
        Lbl(20, {7770, 720, 780, 285}), NoBtn()),
    Row("O_ADDR_CITY", "City", Txt(13, 0, 22, {6345, 1035, 1500, 270}),
        Lbl(13, {5490, 1035, 780, 285}), NoBtn()),
    Row("O_ADDR_PROVINCE", "State", Txt(14, 0, 23, {8640, 1035, 1185, 270}),
        Lbl(14, {7695, 1035, 915, 285}), NoBtn()),
    Row("O_ADDR_POSTALCODE", "Zip", Txt(15, 0, 24, {6345, 1350, 1500, 270}),
        Lbl(15, {5490, 1350, 780, 285}), NoBtn()),
    Row("O_ADDR_COUNTRY", "Country", Txt(16, 0, 25, {8640, 1350, 1185, 270}),
        Lbl(16, {7695, 1350, 915, 285}), NoBtn()),
    Row("F_EMAIL", "Email", Txt(17, 0, 26, {6345, 1665, 1500, 270}),
        Lbl(17, {5490, 1665, 780, 285}), NoBtn()),
    Row("PRIM_LOGINNAME", "Sales Team", Txt(19, 0, 27, {8940, 1665, 645, 270}),
        Lbl(19, {7920, 1665, 1005, 270}), Btn(3, kDots, 9585, 1680)),
    Row("FORE_SIGNAL", "", HiddenChk(0, 29, {9000, 120, 195, 195}), NoLbl(), NoBtn()),
};

constexpr OptionRecord kOptions = [] {
  OptionRecord options = kFamilyOptions;
  options.RedrawOnlyWhenIdle = true;
  return options;
}();

constexpr FormTable kForm{
    "Contact", "Contact",      9915,
    2070,      kFormBackColor, kSansSerif825,
    "",        Glyph::kNone,   FourteenFormFixed(28, 9000, 45),
    kRows,     kOptions,
};

}  // namespace

const FormTable& ContactForm() { return kForm; }

}  // namespace tarnsheets
