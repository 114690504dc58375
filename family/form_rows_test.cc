// Every designed form against its field table, written out row by row: one line per field row,
// in the columns a designer reads (field, title, editor, kind, tab, editor geometry, title index,
// title geometry, button index, glyph and place, with the size only where it is not 240 by 240).
// The lines are written out independently of the tables under test; each table row is formatted
// the same way and compared line by line.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "family/form_table.h"

namespace tarnsheets {
namespace {

struct ExpectedForm {
  std::string_view class_name;
  std::string_view text;
};

// Header line "Class|Caption|Width by Height|down <Pic_TableDown tab>", then the rows. On
// Appointment a line "FrameN|caption|L, T, W, H|tab" opens the rows of that frame.
constexpr ExpectedForm kExpectedForms[] = {
    {"UserInfo", R"(
UserInfo|User|9975 by 2070|down 26
F_ULOGINNAME|Login Name|Txt_Value(0)|text|9|1170, 495, 2040, 285|7|45, 495, 1050, 255|0 arrow 3225, 525
F_NTDOMAIN|Login Domain|Txt_Value(1)|text|10|4545, 495, 1770, 285|4|3465, 495, 1005, 270|
F_USURNAME|Last Name|Txt_Value(2)|text|11|1170, 855, 945, 285|0|45, 855, 1050, 270|
F_UGIVENNAME|First Name|Txt_Value(3)|text|12|3195, 855, 1035, 285|1|2160, 855, 960, 270|
F_UPREFIX|Mr/Ms|Txt_Value(4)|text|13|5040, 855, 1005, 285|2|4320, 855, 690, 270|2 arrow 6075, 885
F_UJOBTITLE|Job Title|Txt_Value(5)|text|14|1170, 1215, 5100, 285|5|45, 1215, 1050, 270|
TEAM_NAME|Team Name|Txt_Value(6)|text|15|1170, 1575, 3555, 285|3|45, 1575, 1050, 270|3 arrow 4725, 1620
F_ISACTIVE|Active|Chk_Value(0)|check|16|6030, 1620, 195, 195|8|5085, 1620, 810, 225|
F_UDUTY|Description|Txt_Value(7)|text 2|17|7515, 495, 2325, 1440|6|6435, 495, 1065, 495|1 arrow 10440, 465, 240, 235
)"},
    {"Opportunity", R"(
Opportunity|Opportunity|9915 by 2070|down 23
F_OPPNAME|Opportunity|Txt_Value(0)|text|7|1125, 450, 1965, 270|0|90, 450, 1005, 270|
F_OPPDESCRIPT|Description|Txt_Value(1)|text 1|8|1125, 855, 1695, 270|1|90, 855, 1005, 270|0 dots 2820, 870
PRIM_LOGINNAME|Sales Team|Txt_Value(2)|text|9|1125, 1260, 1695, 270|2|90, 1260, 1005, 270|1 dots 2820, 1275
SSTAGE_NAME|Sales Stage|Txt_Value(3)|text|10|1125, 1650, 1695, 270|3|90, 1650, 1005, 270|2 arrow 2820, 1665
ACC_SNAME|Account|Txt_Value(4)|text|11|3960, 450, 2460, 270|4|3165, 450, 765, 270|3 arrow 6420, 465
ADDR_DETAIL|Address|Txt_Value(5)|text|12|3960, 855, 945, 270|5|3165, 855, 765, 270|4 dots 4890, 870
ADDR_SITE|Site|Txt_Value(14)|text|13|5850, 855, 795, 270|15|5055, 855, 765, 270|
ADDR_CITY|City|Txt_Value(6)|text|14|3960, 1260, 1140, 270|6|3165, 1260, 765, 270|
ADDR_PROVINCE|State|Txt_Value(8)|text|15|5865, 1260, 795, 270|8|4905, 1260, 915, 270|
ADDR_POSTALCODE|Zip|Txt_Value(7)|text|16|3960, 1650, 1125, 270|7|3165, 1650, 765, 270|
ADDR_COUNTRY|Country|Txt_Value(9)|text|17|5865, 1650, 795, 270|9|4905, 1650, 915, 270|
FORE_REVENUE|Revenue|Txt_Value(10)|text|18|7770, 465, 1755, 270|12|6705, 465, 1035, 270|5 dots 9540, 465
F_OPPCLSDATE|Close Date|Txt_Value(11)|text|19|7770, 855, 1755, 270|10|6705, 855, 1035, 270|6 arrow 9540, 870
FORE_PROBABILITY|Prob%|Txt_Value(12)|text|20|7770, 1260, 720, 270|11|6705, 1260, 1035, 270|7 arrow 8490, 1275
FORE_SIGNAL|Forecast|Chk_Value(0)|check|21|9585, 1260, 195, 195|13|8790, 1260, 765, 270|
CLUESRC_DESCRIPT|Source|Txt_Value(13)|text|22|7770, 1650, 1755, 270|14|6705, 1650, 1035, 270|8 arrow 9540, 1665
)"},
    {"Competitor", R"(
Competitor|Competitor|9915 by 2070|down 21
F_ACCSNAME|Competitor|Txt_Value(0)|text|7|975, 450, 1980, 270|0|45, 450, 915, 270|
CPTTTYPE_NAME|Type|Txt_Value(6)|text|8|990, 855, 1710, 270|6|30, 855, 915, 270|1 arrow 2700, 870
M_IND_NAME|Industries|Txt_Value(8)|text|9|990, 1260, 1710, 270|8|30, 1260, 915, 270|3 dots 2700, 1275
F_CPTTSTATUS|Status|Txt_Value(9)|text|10|990, 1650, 1710, 270|9|30, 1650, 915, 270|4 arrow 2700, 1665
F_ACCDESCRIPT|Description|Txt_Value(7)|text 1|11|4275, 870, 1440, 270|7|3015, 870, 1230, 270|2 dots 5715, 885
F_ACCTEL|Main Phone#|Txt_Value(10)|text|12|4275, 1260, 1665, 270|10|3015, 1260, 1230, 270|
F_ACCFAX|Main Fax#|Txt_Value(11)|text|13|4275, 1650, 1665, 270|11|3015, 1650, 1230, 270|
F_ACCURL|URL|Txt_Value(12)|text|14|7110, 450, 2685, 270|12|6150, 450, 915, 270|
M_ADDR_DETAIL|Address|Txt_Value(1)|text|15|7095, 855, 915, 270|1|6300, 855, 765, 270|0 dots 7995, 870
M_ADDR_SITE|Site|Txt_Value(14)|text|16|8985, 840, 795, 270|14|8190, 840, 765, 270|
M_ADDR_CITY|City|Txt_Value(2)|text|17|7110, 1260, 1125, 270|2|6300, 1260, 765, 270|
M_ADDR_PROVINCE|State|Txt_Value(3)|text|18|9000, 1260, 795, 270|3|8055, 1260, 915, 270|
M_ADDR_POSTALCODE|Zip|Txt_Value(4)|text|19|7095, 1650, 1125, 270|4|6300, 1650, 765, 270|
M_ADDR_COUNTRY|Country|Txt_Value(5)|text|20|9000, 1650, 795, 270|5|8040, 1650, 915, 270|
FORE_SIGNAL|(none)|Chk_Value(0)|check|22|9000, 120, 195, 195|||
CPTTRANK_NAME|Threat|Txt_Value(13)|text 1|44|4275, 450, 1440, 270|13|3015, 450, 1230, 270|5 arrow 5715, 465
)"},
    {"Contact", R"(
Contact|Contact|9915 by 2070|down 28
F_SURNAME|First Name|Txt_Value(0)|text|7|1170, 405, 585, 270|0|90, 405, 1020, 270|
F_GIVENNAME|Last Name|Txt_Value(1)|text|8|2835, 405, 825, 270|1|1755, 405, 1065, 270|
F_PREFIX|Mr/Ms|Txt_Value(2)|text|9|4545, 405, 630, 270|2|3690, 405, 795, 270|2 arrow 5175, 420
F_NICKNAME|Nick Name|Txt_Value(18)|text|10|1170, 720, 585, 270|18|90, 720, 1020, 270|
F_DEPT|Dept|Txt_Value(4)|text|11|2835, 720, 825, 270|4|1755, 720, 1065, 270|
F_JOBTITLE|Job Title|Txt_Value(3)|text|12|4545, 720, 855, 270|3|3465, 720, 1020, 270|
F_OFFICETEL|Work #|Txt_Value(5)|text|13|1170, 1035, 1530, 270|5|45, 1035, 1065, 270|
F_HOMETEL|Home #|Txt_Value(6)|text|14|3825, 1035, 1575, 270|6|2745, 1035, 1050, 270|
F_OFFICEFAX|Fax #|Txt_Value(7)|text|15|1170, 1350, 1530, 270|7|45, 1350, 1065, 270|
F_MOBILETEL|Cellular #|Txt_Value(8)|text|16|3825, 1350, 1575, 270|8|2745, 1350, 1050, 270|
F_ASSNAME|Assistant|Txt_Value(9)|text|17|1170, 1665, 1530, 270|9|45, 1665, 1065, 270|
F_ASSTEL|Asst. #|Txt_Value(10)|text|18|3825, 1665, 1575, 270|10|2745, 1665, 1050, 270|
ACC_SNAME|Account|Txt_Value(11)|text|19|6345, 405, 3240, 270|11|5490, 405, 780, 285|0 arrow 9585, 420
O_ADDR_DETAIL|Address|Txt_Value(12)|text|20|6345, 720, 1305, 270|12|5490, 720, 780, 285|1 dots 7650, 735
O_ADDR_SITE|Site|Txt_Value(20)|text|21|8640, 720, 1185, 270|20|7770, 720, 780, 285|
O_ADDR_CITY|City|Txt_Value(13)|text|22|6345, 1035, 1500, 270|13|5490, 1035, 780, 285|
O_ADDR_PROVINCE|State|Txt_Value(14)|text|23|8640, 1035, 1185, 270|14|7695, 1035, 915, 285|
O_ADDR_POSTALCODE|Zip|Txt_Value(15)|text|24|6345, 1350, 1500, 270|15|5490, 1350, 780, 285|
O_ADDR_COUNTRY|Country|Txt_Value(16)|text|25|8640, 1350, 1185, 270|16|7695, 1350, 915, 285|
F_EMAIL|Email|Txt_Value(17)|text|26|6345, 1665, 1500, 270|17|5490, 1665, 780, 285|
PRIM_LOGINNAME|Sales Team|Txt_Value(19)|text|27|8940, 1665, 645, 270|19|7920, 1665, 1005, 270|3 dots 9585, 1680
FORE_SIGNAL|(none)|Chk_Value(0)|check|29|9000, 120, 195, 195|||
)"},
    {"Activity", R"(
Activity|Activity|9915 by 2070|down 36
F_ACTTYPE|Activity_Type|Txt_Value(0)|text|7|1350, 450, 1230, 285|0|45, 450, 1260, 270|0 arrow 2580, 465
F_ACTPETIME|Due|Txt_Value(1)|text|8|4545, 450, 1530, 285|1|2790, 450, 1725, 270|1 arrow 6090, 465
F_ACTPSTIME|Planned Start|Txt_Value(2)|text|9|8055, 450, 1485, 285|2|6390, 450, 1635, 285|2 arrow 9540, 480
F_ACTNAME|Description|Txt_Value(3)|text 1|10|1350, 765, 4155, 285|3|45, 765, 1260, 270|3 dots 5505, 780
ACT_PRIORITY|Priority|Txt_Value(4)|text|11|1350, 1080, 1230, 285|4|45, 1080, 1260, 270|4 arrow 2580, 1095
ACT_STATUS|Status|Txt_Value(5)|text|12|3960, 1080, 1530, 285|5|2790, 1080, 1140, 270|5 arrow 5505, 1095
CONTACT_SURNAME|First Name|Txt_Value(6)|text|13|1350, 1395, 1230, 285|6|45, 1395, 1260, 270|6 arrow 2580, 1410
CONTACT_GIVENNAME|Last Name|Txt_Value(7)|text|14|3960, 1395, 1770, 285|7|2790, 1395, 1140, 270|
ACC_SNAME|Account|Txt_Value(8)|text|15|1350, 1710, 4155, 285|8|45, 1710, 1260, 270|8 arrow 5505, 1725
F_ACTESDATE|Date|Txt_Value(9)|text|16|6795, 765, 1440, 285|9|5805, 780, 960, 285|9 arrow 8250, 795
F_ACTESTIME|Start|Txt_Value(10)|text|17|6795, 1080, 720, 285|10|5805, 1080, 960, 285|10 arrow 7530, 1110
ACT_DURATION|Duration|Txt_Value(11)|text|18|8895, 1080, 630, 285|11|7785, 1080, 1095, 285|11 arrow 9540, 1110
F_ACTCOMMENT|Comments|Txt_Value(12)|text 2|19|6795, 1395, 2970, 585|12|5805, 1395, 915, 585|
FORE_SIGNAL|(none)|Chk_Value(0)|check|37|9000, 120, 195, 195|||
)"},
    {"Expense", R"(
Expense|Expense|9915 by 2070|down 18
F_EPNO|Expense #|Txt_Value(0)|text|7|1200, 450, 1980, 270|0|45, 450, 1080, 270|
F_EPTITLE|Name|Txt_Value(1)|text|8|1200, 870, 1980, 270|1|45, 870, 1080, 270|
F_EPDESCRIPT|Description|Txt_Value(2)|text 1|9|1170, 1260, 1770, 690|2|45, 1260, 1080, 735|2 dots 2955, 1260, 240, 690
F_ORGCHARGENO|Charge #|Txt_Value(3)|text|10|4545, 450, 1710, 270|3|3270, 450, 1230, 270|
ACC_SNAME|Account|Txt_Value(4)|text|11|4545, 870, 1470, 270|4|3270, 870, 1230, 270|4 arrow 6030, 885
OPP_NAME|Opportunity|Txt_Value(5)|text|12|4545, 1260, 1485, 270|5|3270, 1260, 1230, 270|5 arrow 6030, 1275
F_CREATTIME|Created|Txt_Value(6)|text|13|4560, 1665, 1710, 270|6|3270, 1665, 1230, 270|
F_EPADVPAID|Cash Advance|Txt_Value(7)|text|14|8070, 450, 1470, 270|7|6345, 450, 1680, 270|7 dots 9555, 465
F_EPTTAMOUNT|Total Amount|Txt_Value(8)|text|15|8070, 870, 1470, 270|8|6345, 870, 1680, 270|8 dots 9555, 885
F_EPPAYAMOUNT|Paid Amount|Txt_Value(9)|text|16|8070, 1260, 1470, 270|9|6345, 1260, 1680, 270|9 dots 9540, 1275
AUDIT_STATUS|Audit Status|Txt_Value(10)|text|17|8070, 1665, 1470, 270|10|6345, 1665, 1680, 270|0 dots 9540, 1680
FORE_SIGNAL|(none)|Chk_Value(0)|check|19|9000, 120, 195, 195|||
)"},
    {"ExpenseItem", R"(
ExpenseItem|ExpenseItem|9915 by 2115|down 19
F_EPISDATE|Start Date|Txt_Value(0)|text|7|1350, 450, 1530, 270|0|45, 450, 1260, 270|0 arrow 2880, 465
F_EPIEDATE|End Date|Txt_Value(1)|text|8|1335, 870, 1530, 270|1|45, 870, 1260, 270|1 arrow 2880, 885
EPITYPE_NAME|Expense Type|Txt_Value(7)|text|9|1335, 1305, 1530, 270|7|45, 1305, 1260, 270|7 arrow 2880, 1320
F_EPIAMOUNT|Amount|Txt_Value(6)|text|10|1350, 1710, 1530, 270|6|45, 1710, 1260, 270|3 dots 2880, 1725
F_EPIDESCRIPT|Description|Txt_Value(2)|text 1|11|4785, 450, 1650, 690|2|3150, 450, 1590, 735|2 dots 6435, 450, 240, 690
F_EPIESTABLISH|Establishment|Txt_Value(8)|text|12|4785, 1305, 1875, 270|8|3150, 1305, 1590, 270|
PAYMTHD_DESCRIPT|Paidment Type|Txt_Value(9)|text|13|4785, 1710, 1650, 270|9|3150, 1710, 1590, 270|9 arrow 6435, 1725
F_ORGCHARGENO|Charge #|Txt_Value(3)|text|14|8070, 450, 1710, 270|3|6735, 450, 1305, 270|
ACC_SNAME|Account|Txt_Value(4)|text|15|8070, 870, 1470, 270|4|6735, 870, 1305, 270|4 arrow 9555, 885
OPP_NAME|Opportunity|Txt_Value(5)|text|16|8070, 1305, 1470, 270|5|6735, 1305, 1305, 270|5 arrow 9555, 1320
M_CONTACT_SURNAME|Contact|Txt_Value(10)|text|17|8070, 1710, 570, 270|10|6735, 1710, 1305, 270|10 dots 9555, 1725
M_CONTACT_GIVENNAME|(none)|Txt_Value(11)|text|18|8640, 1710, 885, 270|||
FORE_SIGNAL|(none)|Chk_Value(0)|check|20|9000, 120, 195, 195|||
)"},
    {"Costing", R"(
Costing|Costing|9915 by 2070|down 15
F_PRDNAME|Product|Txt_Value(0)|text|7|1260, 450, 4230, 270|0|45, 450, 1185, 270|
F_PRDSPEC|Model|Txt_Value(1)|text|8|1260, 855, 1365, 270|2|45, 855, 1185, 270|
F_PRDNO|Part Number|Txt_Value(2)|text|9|4005, 855, 1470, 270|1|2700, 855, 1215, 270|
F_PRDCOST|Costing|Txt_Value(7)|text|10|1260, 1215, 1140, 270|7|45, 1215, 1185, 270|0 dots 2400, 1230
PRDTMPLT_NAME|Type|Txt_Value(4)|text|11|4005, 1245, 1215, 270|5|2700, 1260, 1215, 270|2 arrow 5220, 1260
PRDTMPLT_UNIT|Unit|Txt_Value(5)|text|12|1260, 1575, 1365, 270|4|45, 1560, 1185, 270|
PRDLINE_DESCRIPT|Product Line|Txt_Value(3)|text|13|4005, 1620, 1200, 270|3|2700, 1620, 1215, 270|1 arrow 5220, 1635
F_DESCRIPT|Description|Txt_Value(6)|text 2|14|6615, 450, 3105, 1485|6|5535, 450, 1050, 270|
FORE_SIGNAL|(none)|Chk_Value(0)|check|16|9000, 120, 195, 195|||
)"},
    {"CompanyAccount", R"(
CompanyAccount|Company Account|10125 by 7080|down 23
F_ACCSNAME|Account Name:|Txt_Value(0)|text|6|2295, 675, 2385, 285|0|285, 690, 1830, 240|
F_ACCNAME|Account Short Name:|Txt_Value(1)|text|7|6930, 675, 2385, 285|1|4725, 690, 2130, 240|
F_ACCDESCRIPT|Account Description:|Txt_Value(2)|text 2|8|2295, 1095, 7020, 645|2|285, 1065, 1830, 330|
F_TAXNO|Tax No:|Txt_Value(3)|text|9|2295, 2295, 2385, 285|3|285, 2280, 1830, 210|
F_BANKNAME|Bank Name:|Txt_Value(4)|text|10|2295, 2700, 2385, 285|4|285, 2700, 1830, 240|
F_BANKNO|Bank Account|Txt_Value(5)|text|11|6930, 2700, 2385, 285|5|5130, 2760, 1725, 240|
CURR_CODE|Account Currency:|Txt_Value(6)|text|12|2295, 3105, 2385, 285|6|285, 3090, 1830, 240|
F_ACCTEL|Main Phone Number:|Txt_Value(7)|text|13|2295, 3510, 2385, 285|7|285, 3540, 1830, 240|
M_ADDR_DETAIL|Account Address|Txt_Value(9)|text|14|2295, 3975, 6795, 285|9|270, 3960, 1830, 240|7 dots 9090, 3975
F_ACCFAX|Main Fax Number:|Txt_Value(8)|text|15|6930, 3555, 2385, 285|8|5130, 3570, 1725, 240|
F_ACCURL|URL:|Txt_Value(10)|text|16|2295, 4395, 7020, 285|10|285, 4365, 1830, 240|
CREATOR_LOGINNAME|Creator:|Txt_Value(11)|text|17|2295, 5265, 2385, 285|11|285, 5280, 1830, 240|
F_CREATTIME|Create Time:|Txt_Value(12)|text|18|6930, 5265, 2385, 285|12|5130, 5280, 1725, 240|
MRMPSN_LOGINNAME|Updator:|Txt_Value(13)|text|19|2295, 5715, 2385, 285|13|285, 5730, 1830, 240|
F_MRMTIME|Update Time:|Txt_Value(14)|text|20|6930, 5670, 2385, 285|14|5130, 5730, 1725, 240|
F_MDFCOUNT|Updates|Txt_Value(15)|text|21|2295, 6165, 2385, 285|15|285, 6150, 1830, 240|
FORE_SIGNAL|(none)|Chk_Value(0)|check|44|9135, 135, 195, 195|||
F_UDUTY|(none)|(none)||||||1 arrow 10440, 465, 240, 235
)"},
    {"ShortCompanyAccount", R"(
ShortCompanyAccount|Short Company Account|10125 by 2070|down 17
F_ACCSNAME|Name:|Txt_Value(0)|text|6|1125, 495, 2385, 285|0|45, 495, 1065, 285|
F_ACCDESCRIPT|Description:|Txt_Value(1)|text 2|7|1125, 900, 2385, 1095|1|45, 900, 1065, 330|
F_TAXNO|Tax No:|Txt_Value(2)|text|8|5085, 525, 1530, 285|2|3645, 525, 1365, 285|
F_BANKNAME|Bank Name:|Txt_Value(3)|text|9|5085, 900, 1530, 285|3|3645, 900, 1365, 240|
F_BANKNO|Bank Account|Txt_Value(4)|text|10|5085, 1305, 1530, 285|4|3645, 1350, 1365, 240|
CURR_CODE|Currency:|Txt_Value(5)|text|11|5085, 1710, 1530, 285|5|3645, 1755, 1365, 240|
F_ACCTEL|Main Phone Number:|Txt_Value(6)|text|12|8145, 495, 1800, 285|6|6705, 495, 1335, 240|
M_ADDR_DETAIL|Address|Txt_Value(8)|text|13|8145, 1305, 1500, 285|8|6705, 1305, 1335, 240|2 dots 9675, 1350
F_ACCFAX|Fax Number:|Txt_Value(7)|text|14|8145, 900, 1800, 285|7|6705, 900, 1335, 240|
F_ACCURL|URL:|Txt_Value(9)|text|15|8145, 1665, 1800, 285|9|6705, 1710, 1335, 240|
FORE_SIGNAL|(none)|Chk_Value(0)|check|32|9135, 135, 195, 195|||
F_UDUTY|(none)|(none)||||||1 arrow 10440, 465, 240, 235
)"},
    {"PriceList", R"(
PriceList|Price Plan|9915 by 2070|down 18
F_PLNAME|Price Plan|Txt_Value(0)|text|7|1665, 450, 2160, 270|0|0, 450, 1620, 270|
CMPTSTTG_NAME|Competition Strategy|Txt_Value(2)|text|8|1665, 870, 1905, 270|2|0, 870, 1620, 270|1 arrow 3570, 885
MAIN_PRICE_GOAL|Priceing Goal|Txt_Value(3)|text|9|1665, 1260, 1905, 270|3|0, 1260, 1620, 270|2 dots 3570, 1275
CURR_CODE|Currency|Txt_Value(1)|text|10|1665, 1665, 705, 270|1|0, 1665, 1620, 270|0 arrow 2385, 1680
F_PLCURREXRT|Rate|Txt_Value(10)|text|11|3240, 1665, 570, 270|10|2655, 1665, 540, 270|
F_EDATE|Efficient Date|Txt_Value(4)|text|12|5085, 450, 1305, 270|4|3810, 450, 1230, 270|3 arrow 6390, 465
F_TDATE|Disabled Date|Txt_Value(5)|text|13|5085, 870, 1305, 270|5|3810, 870, 1230, 270|4 arrow 6390, 885
F_DESCRIPT|Description|Txt_Value(6)|text 1|14|5085, 1260, 1305, 675|6|3810, 1260, 1230, 675|10 dots 6390, 1275, 240, 645
MAIN_MARKET_ORIENTATION|Market Orientation|Txt_Value(7)|text|15|8145, 450, 1305, 270|7|6660, 450, 1455, 270|9 dots 9450, 465
F_TARGETMARKET|Target Market|Txt_Value(8)|text 1|16|8145, 870, 1305, 675|8|6660, 870, 1455, 675|5 dots 9450, 900, 240, 645
AUDIT_STATUS|Audit Status|Txt_Value(9)|text|17|8145, 1665, 1305, 270|9|6660, 1665, 1455, 270|7 dots 9450, 1680
FORE_SIGNAL|(none)|Chk_Value(0)|check|19|9000, 120, 195, 195|||
)"},
    {"Product", R"(
Product|Product|9915 by 2070|down 14
F_PRDNAME|Product|Txt_Value(0)|text|7|1260, 450, 4230, 270|0|45, 450, 1095, 270|
F_PRDSPEC|Model|Txt_Value(1)|text|8|1260, 855, 1365, 270|2|45, 855, 1095, 270|
F_PRDNO|Part Number|Txt_Value(2)|text|9|4005, 855, 1470, 270|1|2700, 855, 1215, 270|
PRDTMPLT_NAME|Type|Txt_Value(4)|text|10|1260, 1245, 1575, 270|5|45, 1260, 1095, 270|2 arrow 2835, 1260
PRDTMPLT_UNIT|Unit|Txt_Value(5)|text|11|4500, 1260, 960, 270|4|3150, 1245, 1320, 270|
PRDLINE_DESCRIPT|Product Line|Txt_Value(3)|text|12|1260, 1620, 3945, 270|3|45, 1620, 1095, 270|1 arrow 5220, 1635
F_DESCRIPT|Description|Txt_Value(6)|text 2|13|6615, 450, 3105, 1485|6|5535, 450, 1050, 270|
FORE_SIGNAL|(none)|Chk_Value(0)|check|15|9000, 120, 195, 195|||
)"},
    {"Quote", R"(
Quote|Quote|9915 by 1935|down 23
F_QTLNO|Quote #|Txt_Value(0)|text|7|930, 450, 1395, 270|0|45, 450, 855, 270|
F_REVISION|Ver|Txt_Value(1)|text|8|3090, 450, 465, 270|1|2385, 450, 675, 270|
F_QTLNAME|Quote|Txt_Value(2)|text|9|930, 810, 2610, 270|2|45, 810, 855, 270|
QTLTYPE_DESCRIPT|Type|Txt_Value(3)|text|10|930, 1170, 750, 270|3|45, 1170, 855, 270|3 arrow 1710, 1185
QTLSTATUS_DESCRIPT|Status|Txt_Value(4)|text|11|2610, 1170, 675, 270|4|1980, 1170, 585, 270|6 arrow 3285, 1185
F_QTLTIME|Qt. Date|Txt_Value(10)|text|12|930, 1530, 1020, 270|9|45, 1530, 855, 270|
F_QTLVALIDITY|Validity|Txt_Value(11)|text|13|2610, 1530, 885, 270|10|1980, 1530, 585, 270|
F_DESCRIPT|Description|Txt_Value(5)|text 1|14|4635, 450, 1695, 270|5|3585, 465, 1005, 270|4 dots 6345, 465
ACC_SNAME|Account|Txt_Value(6)|text|15|4635, 810, 1695, 270|6|3585, 795, 1005, 270|0 arrow 6345, 825
OPP_NAME|Opportunity|Txt_Value(7)|text|16|4635, 1170, 1695, 270|7|3585, 1170, 1005, 270|5 arrow 6345, 1185
CONTACT_SURNAME|Contact|Txt_Value(8)|text|17|4635, 1530, 660, 270|8|3585, 1530, 1005, 270|10 arrow 6345, 1560
CONTACT_GIVENNAME|(none)|Txt_Value(9)|text|18|5265, 1530, 1065, 270|||
TFILE__NAME|Template|Txt_Value(15)|text|19|7980, 810, 1560, 270|14|6660, 810, 1275, 270|9 arrow 9540, 825
PL_NAME|Price List|Txt_Value(14)|text|20|7980, 450, 1560, 270|13|6660, 450, 1275, 270|8 arrow 9540, 465
AUDIT_STATUS|Audit Status|Txt_Value(12)|text|21|7980, 1170, 1560, 270|11|6660, 1170, 1275, 270|1 dots 9540, 1185
PRIM_LOGINNAME|Sales Team|Txt_Value(13)|text|22|7980, 1530, 1560, 270|12|6660, 1530, 1275, 270|7 dots 9540, 1545
FORE_SIGNAL|(none)|Chk_Value(0)|check|24|9000, 120, 195, 195|||
)"},
    {"Totals", R"(
Totals|Totals|9915 by 1440|down 12
F_DSCNTRSN|Discount Reason|Txt_Value(0)|text 2|7|1710, 450, 4050, 855|0|90, 450, 1575, 855|
F_TTPRICE|Item Total|Txt_Value(1)|text|8|7590, 450, 1965, 270|1|6180, 450, 1215, 270|0 dots 9555, 465
F_TTRDISCOUNT|(none)|Txt_Value(4)|text|9|7590, 765, 690, 270|||4 arrow 8280, 765, 240, 270
TOTAL_DISCOUNT|Total Discount|Txt_Value(2)|text|10|8550, 765, 1005, 270|2|6180, 765, 1215, 270|1 dots 9555, 780
F_TTVALUE|Total|Txt_Value(3)|text|11|7590, 1080, 1965, 270|3|6180, 1080, 1215, 270|2 dots 9555, 1095
FORE_SIGNAL|(none)|Chk_Value(0)|check|13|9000, 120, 195, 195|||
)"},
    {"Account", R"(
Account|Account|9915 by 2070|down 22
F_ACCSNAME|Account|Txt_Value(0)|text|7|840, 450, 2700, 270|0|45, 450, 765, 270|
M_ADDR_DETAIL|Address|Txt_Value(1)|text|8|840, 855, 1005, 270|1|45, 855, 765, 270|0 dots 1830, 855
M_ADDR_SITE|Site|Txt_Value(14)|text|9|2745, 855, 795, 270|14|1830, 855, 870, 270|
M_ADDR_CITY|City|Txt_Value(2)|text|10|840, 1260, 1200, 270|2|45, 1260, 765, 270|
M_ADDR_PROVINCE|State|Txt_Value(3)|text|11|2745, 1260, 795, 270|3|1785, 1260, 915, 270|
M_ADDR_POSTALCODE|Zip|Txt_Value(4)|text|12|840, 1650, 1185, 270|4|45, 1650, 765, 270|
M_ADDR_COUNTRY|Country|Txt_Value(5)|text|13|2745, 1650, 795, 270|5|1785, 1650, 915, 270|
F_ACCTYPE|Type|Txt_Value(6)|text|14|4545, 450, 1710, 270|6|3585, 450, 915, 270|1 arrow 6255, 465
F_ACCDESCRIPT|Description|Txt_Value(7)|text 1|15|4545, 870, 1710, 270|7|3585, 870, 915, 270|2 dots 6255, 885
M_IND_NAME|Industries|Txt_Value(8)|text|16|4545, 1260, 1710, 270|8|3585, 1260, 915, 270|3 dots 6255, 1275
F_ACCSTATUS|Status|Txt_Value(9)|text|17|4545, 1665, 1710, 270|9|3585, 1665, 915, 270|4 arrow 6255, 1680
F_ACCTEL|Main Phone#|Txt_Value(10)|text|18|8145, 450, 1560, 270|10|6660, 450, 1365, 270|
F_ACCFAX|Main Fax#|Txt_Value(11)|text|19|8145, 870, 1560, 270|11|6660, 870, 1365, 270|
F_ACCURL|URL|Txt_Value(12)|text|20|8145, 1260, 1560, 270|12|6660, 1260, 1365, 270|
PRIM_LOGINNAME|Sales Team|Txt_Value(13)|text|21|8145, 1665, 1305, 270|13|6660, 1665, 1365, 270|5 dots 9450, 1680
FORE_SIGNAL|(none)|Chk_Value(0)|check|23|9000, 120, 195, 195|||
)"},
    {"Proposal", R"(
Proposal|Proposal|9915 by 1935|down 21
F_PPSNO|Proposal #|Txt_Value(0)|text|7|930, 450, 1395, 270|0|45, 450, 855, 270|
F_REVISION|Ver|Txt_Value(10)|text|8|3090, 450, 465, 270|1|2385, 450, 675, 270|
F_PPSNAME|Proposal|Txt_Value(1)|text|9|930, 810, 2610, 270|2|45, 810, 855, 270|
PPSTYPE_DESCRIPT|Type|Txt_Value(2)|text|10|930, 1170, 2355, 270|3|45, 1170, 855, 270|3 arrow 3285, 1185
F_DESCRIPT|Description|Txt_Value(5)|text|11|4635, 450, 1695, 270|5|3585, 465, 1005, 270|4 dots 6345, 465
ACC_SNAME|Account|Txt_Value(6)|text|12|4635, 810, 1695, 270|6|3585, 795, 1005, 270|0 arrow 6345, 825
OPP_NAME|Opportunity|Txt_Value(7)|text|13|4635, 1170, 1695, 270|7|3585, 1170, 1005, 270|5 arrow 6345, 1185
CONTACT_SURNAME|Contact|Txt_Value(8)|text|14|4635, 1530, 660, 270|8|3585, 1530, 1005, 270|10 arrow 6345, 1575
CONTACT_GIVENNAME|(none)|Txt_Value(9)|text|15|5265, 1530, 1065, 270|||
NODE_NAME|Template|Txt_Value(11)|text|16|7980, 450, 1560, 270|10|6660, 450, 1275, 270|9 arrow 9540, 465
F_PPSDLVDATE|Dlv. Date|Txt_Value(3)|text|17|7980, 810, 1560, 270|9|6660, 810, 1275, 270|2 arrow 9540, 825
AUDIT_STATUS|Audit Status|Txt_Value(12)|text|18|7980, 1170, 1560, 270|11|6660, 1170, 1275, 270|1 dots 9540, 1185
PRIM_LOGINNAME|Sales Team|Txt_Value(13)|text|19|7980, 1530, 1560, 270|12|6660, 1530, 1275, 270|7 dots 9540, 1545
PPSSTATUS_DESCRIPT|Status|Txt_Value(4)|text|20|930, 1530, 2355, 270|4|45, 1530, 855, 270|6 arrow 3285, 1545
FORE_SIGNAL|(none)|Chk_Value(0)|check|22|9000, 120, 195, 195|||
)"},
    {"Contract", R"(
Contract|Contract|9915 by 1935|down 21
F_SCNO|Contract #|Txt_Value(0)|text|7|930, 450, 2610, 270|0|45, 450, 855, 270|
F_SCNAME|Contract|Txt_Value(1)|text|8|930, 810, 2610, 270|1|45, 810, 855, 270|
SCTYPE_DESCRIPT|Type|Txt_Value(2)|text|9|930, 1170, 2355, 270|2|45, 1170, 855, 270|3 arrow 3285, 1185
F_SCSDATE|Sig. Date|Txt_Value(3)|text|10|930, 1530, 990, 270|3|45, 1530, 855, 270|
SCSTATUS_DESCRIPT|Status|Txt_Value(4)|text|11|2610, 1530, 675, 270|4|1980, 1530, 585, 270|6 arrow 3285, 1545
F_DESCRIPT|Description|Txt_Value(5)|text|12|4635, 450, 1695, 270|5|3585, 465, 1005, 270|4 dots 6345, 465
ACC_SNAME|Account|Txt_Value(6)|text|13|4635, 810, 1695, 270|6|3585, 795, 1005, 270|0 arrow 6345, 825
OPP_NAME|Opportunity|Txt_Value(7)|text|14|4635, 1170, 1695, 270|7|3585, 1170, 1005, 270|5 arrow 6345, 1185
CONTACT_SURNAME|Contact|Txt_Value(8)|text|15|4635, 1530, 660, 270|8|3585, 1530, 1005, 270|10 arrow 6345, 1575
CONTACT_GIVENNAME|(none)|Txt_Value(9)|text|16|5265, 1530, 1065, 270|||
PL_NAME|Price List|Txt_Value(10)|text|17|7980, 450, 1560, 270|9|6660, 450, 1275, 270|8 arrow 9540, 465
NODE_NAME|Template|Txt_Value(11)|text|18|7980, 810, 1560, 270|10|6660, 810, 1275, 270|9 arrow 9540, 825
AUDIT_STATUS|Audit Status|Txt_Value(12)|text|19|7980, 1170, 1560, 270|11|6660, 1170, 1275, 270|1 dots 9540, 1185
PRIM_LOGINNAME|Sales Team|Txt_Value(13)|text|20|7980, 1530, 1560, 270|12|6660, 1530, 1275, 270|7 dots 9540, 1545
FORE_SIGNAL|(none)|Chk_Value(0)|check|22|9000, 120, 195, 195|||
)"},
    {"Appointment", R"(
Appointment||7800 by 4635
Frame1|What|0, 0, 7800, 1140|23
F_ACTNAME|Description|Txt_Value(0)|text 1|2|1260, 270, 5985, 285|0|135, 270, 1095, 270|11 dots 7245, 285
F_ACTTYPE|Type|Txt_Value(1)|text|3|1260, 630, 1455, 285|1|135, 630, 1095, 285|0 arrow 2700, 645
F_ACTCOMMENT|Notes|Txt_Value(2)|text 1|4|3780, 630, 3465, 285|2|2970, 630, 780, 285|1 dots 7245, 645
Frame2|When|0, 1170, 7800, 2220|30
F_ACTPETIME|Due|Txt_Value(13)|text|5|5580, 270, 1650, 285|15|3825, 270, 1680, 285|12 arrow 7245, 285
F_ACTPSTIME|Planned Start|Txt_Value(17)|text|6|1890, 270, 1665, 285|19|180, 270, 1680, 285|14 arrow 3555, 300
F_ACTPLANLOAD|Total Work|Txt_Value(14)|text|7|1260, 630, 1380, 285|16|135, 630, 1095, 285|
F_ACTREALLOAD|Actual Work|Txt_Value(15)|text|8|3690, 630, 1170, 285|17|2430, 630, 1230, 285|
F_CMPLTRATIO|Percent Complete|Txt_Value(16)|text|9|6480, 630, 765, 285|18|4635, 630, 1815, 285|13 arrow 7245, 660
F_ACTESDATE|Date|Txt_Value(3)|text|10|1260, 990, 1155, 285|3|135, 990, 1095, 285|2 arrow 2415, 1005
F_ACTESTIME|Start|Txt_Value(4)|text|11|3690, 990, 945, 285|4|2700, 990, 960, 285|3 arrow 4635, 1020
ACT_DURATION|Duration|Txt_Value(5)|text|12|6075, 990, 1170, 285|5|4995, 990, 1050, 285|4 arrow 7245, 1020
F_ACTEETIME|End|Txt_Value(6)|text|13|3690, 1350, 945, 285|6|2700, 1350, 960, 285|5 arrow 4635, 1365
F_ACTNEEDALRM|Alarm|Chk_Value(0)|check|14|6075, 1395, 195, 195|7|4995, 1395, 1050, 270|
F_ACTNEEDREPT|Repeat|Chk_Value(1)|check|15|1260, 1710, 195, 195|8|135, 1710, 1095, 270|
FR_NAME|Frequency|Txt_Value(7)|text|16|3690, 1710, 945, 285|9|2700, 1710, 960, 285|6 arrow 4635, 1725
F_ACTREPTEDATE|Until|Txt_Value(8)|text|17|6075, 1710, 1170, 285|10|4950, 1710, 1095, 285|7 arrow 7245, 1710
Frame3|Who|0, 3420, 7800, 1185|45
CONTACT_SURNAME|First Name|Txt_Value(9)|text|18|1260, 270, 720, 285|11|45, 270, 1185, 285|8 arrow 1980, 295
CONTACT_GIVENNAME|Last Name|Txt_Value(10)|text|19|4860, 270, 1035, 285|12|3465, 270, 1320, 285|
ACC_SNAME|Account|Txt_Value(11)|text|20|1260, 675, 1845, 285|13|180, 675, 1050, 285|9 arrow 3105, 690
OPP_NAME|Opportunity|Txt_Value(12)|text|21|4860, 675, 2340, 285|14|3465, 675, 1320, 285|10 arrow 7200, 690
)"},
};

// The class list of the family: class, designed caption, form size, and the number of controls
// of Txt_Value, Chk_Value, Lbl_Title and Cmd_Value.
constexpr std::string_view kExpectedClassList = R"(
UserInfo|User|9975 by 2070|8|1|9|4
Opportunity|Opportunity|9915 by 2070|15|1|16|9
Competitor|Competitor|9915 by 2070|15|1|15|6
Contact|Contact|9915 by 2070|21|1|21|4
Activity|Activity|9915 by 2070|13|1|13|11
Expense|Expense|9915 by 2070|11|1|11|7
ExpenseItem|ExpenseItem|9915 by 2115|12|1|11|9
Costing|Costing|9915 by 2070|8|1|8|3
CompanyAccount|Company Account|10125 by 7080|16|1|16|2
ShortCompanyAccount|Short Company Account|10125 by 2070|10|1|10|2
PriceList|Price Plan|9915 by 2070|11|1|11|9
Product|Product|9915 by 2070|7|1|7|2
Quote|Quote|9915 by 1935|16|1|15|10
Totals|Totals|9915 by 1440|5|1|4|4
Account|Account|9915 by 2070|15|1|15|6
Proposal|Proposal|9915 by 1935|14|1|13|10
Contract|Contract|9915 by 1935|14|1|13|10
)";

std::vector<std::string> Lines(std::string_view text) {
  std::vector<std::string> lines;
  std::istringstream in{std::string(text)};
  std::string line;
  while (std::getline(in, line)) {
    if (!line.empty()) lines.push_back(line);
  }
  return lines;
}

std::string Rect(const DesignRect& r) {
  std::ostringstream out;
  out << r.Left << ", " << r.Top << ", " << r.Width << ", " << r.Height;
  return out.str();
}

std::string FormatRow(const FieldRow& row) {
  std::ostringstream out;
  out << row.tag << '|' << (row.has_title() ? std::string(row.title.caption) : "(none)") << '|';
  switch (row.editor.kind) {
    case EditorKind::kNone:
      out << "(none)||||";
      break;
    case EditorKind::kText:
      out << "Txt_Value(" << row.editor.index << ")|text";
      if (row.editor.style != 0) out << ' ' << row.editor.style;
      out << '|' << row.editor.tab_index << '|' << Rect(row.editor.rect) << '|';
      break;
    case EditorKind::kCheck:
      out << "Chk_Value(" << row.editor.index << ")|check|" << row.editor.tab_index << '|'
          << Rect(row.editor.rect) << '|';
      break;
  }
  if (row.has_title())
    out << row.title.index << '|' << Rect(row.title.rect);
  else
    out << '|';
  out << '|';
  if (row.has_button()) {
    const DesignRect& r = row.button.rect;
    out << row.button.index << ' ' << GlyphName(row.button.glyph) << ' ' << r.Left << ", " << r.Top;
    if (r.Width != 240 || r.Height != 240) out << ", " << r.Width << ", " << r.Height;
  }
  return out.str();
}

std::string FormatHeader(const FormTable& form) {
  std::ostringstream out;
  out << form.class_name << '|' << form.caption << '|' << form.width << " by " << form.height
      << "|down " << form.fixed.Pic_TableDown.tab_index;
  return out.str();
}

const ExpectedForm* FindExpected(std::string_view class_name) {
  for (const ExpectedForm& expected : kExpectedForms) {
    if (expected.class_name == class_name) return &expected;
  }
  return nullptr;
}

class EntityFormRowsTest : public ::testing::TestWithParam<const FormTable*> {};

TEST_P(EntityFormRowsTest, HeaderAndEveryRowMatchTheWrittenFieldTable) {
  const FormTable& form = *GetParam();
  const ExpectedForm* expected = FindExpected(form.class_name);
  ASSERT_NE(expected, nullptr) << form.class_name;
  std::vector<std::string> lines = Lines(expected->text);
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(FormatHeader(form), lines[0]);
  ASSERT_EQ(form.rows.size(), lines.size() - 1) << form.class_name << ": number of field rows";
  for (size_t i = 0; i < form.rows.size(); ++i) {
    EXPECT_EQ(FormatRow(form.rows[i]), lines[i + 1]) << form.class_name << " row " << i;
  }
}

INSTANTIATE_TEST_SUITE_P(AllEntitySheets, EntityFormRowsTest,
                         ::testing::ValuesIn(EntityForms().begin(), EntityForms().end()),
                         [](const ::testing::TestParamInfo<const FormTable*>& info) {
                           return std::string(info.param->class_name);
                         });

TEST(AppointmentFormRowsTest, FramesAndEveryRowMatchTheWrittenFieldTable) {
  const AppointmentFormTable& form = AppointmentForm();
  const ExpectedForm* expected = FindExpected("Appointment");
  ASSERT_NE(expected, nullptr);
  std::vector<std::string> lines = Lines(expected->text);
  ASSERT_FALSE(lines.empty());
  std::ostringstream header;
  header << form.class_name << "||" << form.width << " by " << form.height;
  EXPECT_EQ(header.str(), lines[0]);

  size_t next_row = 0;
  int frame = 0;
  for (size_t i = 1; i < lines.size(); ++i) {
    if (lines[i].rfind("Frame", 0) == 0) {
      ASSERT_LT(frame, 3) << lines[i];
      const FrameSpec& spec = form.frames[frame++];
      std::ostringstream formatted;
      formatted << spec.name << '|' << spec.caption << '|' << Rect(spec.rect) << '|'
                << spec.tab_index;
      EXPECT_EQ(formatted.str(), lines[i]);
      continue;
    }
    ASSERT_LT(next_row, form.rows.size()) << "missing row for: " << lines[i];
    const FieldRow& row = form.rows[next_row++];
    EXPECT_EQ(FormatRow(row), lines[i]) << "Appointment row " << next_row - 1;
    EXPECT_EQ(row.frame, frame) << row.tag;
  }
  EXPECT_EQ(frame, 3);
  EXPECT_EQ(next_row, form.rows.size()) << "rows beyond the written table";
}

TEST(FamilyClassListTest, SeventeenSheetsInOrderWithCaptionSizeAndArrayCounts) {
  std::vector<std::string> lines = Lines(kExpectedClassList);
  ASSERT_EQ(lines.size(), 17u);
  ASSERT_EQ(EntityForms().size(), 17u);
  for (size_t i = 0; i < lines.size(); ++i) {
    const FormTable& form = *EntityForms()[i];
    ArrayCounts counts = CountArrays(form.rows);
    std::ostringstream formatted;
    formatted << form.class_name << '|' << form.caption << '|' << form.width << " by "
              << form.height << '|' << counts.txt_value << '|' << counts.chk_value << '|'
              << counts.lbl_title << '|' << counts.cmd_value;
    EXPECT_EQ(formatted.str(), lines[i]);
  }
}

}  // namespace
}  // namespace tarnsheets
