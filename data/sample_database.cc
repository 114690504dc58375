#include "data/sample_database.h"

#include <sqlite3.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <set>
#include <string_view>
#include <vector>

#include "datasources/sqlite/sqlite_data_source.h"
#include "datasources/sqlite/sqlite_util.h"
#include "family/form_table.h"

namespace tarnsheets {

extern const char kSampleSchemaSql[];

namespace {

// A small deterministic generator (64-bit LCG, high bits).
class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed * 6364136223846793005ULL + 1442695040888963407ULL) {}
  uint32_t Next() {
    state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<uint32_t>(state_ >> 33);
  }
  int Below(int n) { return static_cast<int>(Next() % static_cast<uint32_t>(n)); }
  template <typename T, size_t N>
  const T& Pick(const T (&items)[N]) {
    return items[Below(static_cast<int>(N))];
  }

 private:
  uint64_t state_;
};

enum class Kind { kText, kYesNo, kDate, kDateTime, kMoney, kPercent, kNumber, kWhole };

struct ColumnSpec {
  std::string name;
  std::string title;
  Kind kind = Kind::kText;
  bool drop_list = false;  // the row has an arrow drop button
};

bool Has(std::string_view s, std::string_view part) { return s.find(part) != std::string::npos; }
bool EndsWith(std::string_view s, std::string_view end) {
  return s.size() >= end.size() && s.substr(s.size() - end.size()) == end;
}

Kind KindOf(std::string_view tag, bool check) {
  static const std::set<std::string_view> kMoney = {"FORE_REVENUE",  "F_EPIAMOUNT",  "F_EPADVPAID",
                                                    "F_EPPAYAMOUNT", "F_EPTTAMOUNT", "F_PRDCOST",
                                                    "F_TTPRICE",     "F_TTVALUE"};
  static const std::set<std::string_view> kPercent = {"FORE_PROBABILITY", "F_CMPLTRATIO",
                                                      "F_TTRDISCOUNT", "TOTAL_DISCOUNT"};
  static const std::set<std::string_view> kNumber = {"F_PLCURREXRT", "F_ACTPLANLOAD",
                                                     "F_ACTREALLOAD", "ACT_DURATION"};
  static const std::set<std::string_view> kWhole = {"F_MDFCOUNT", "F_REVISION", "F_QTLVALIDITY"};
  if (check) return Kind::kYesNo;
  if (kMoney.count(tag)) return Kind::kMoney;
  if (kPercent.count(tag)) return Kind::kPercent;
  if (kNumber.count(tag)) return Kind::kNumber;
  if (kWhole.count(tag)) return Kind::kWhole;
  if (EndsWith(tag, "DATE")) return Kind::kDate;
  if (EndsWith(tag, "TIME") && !Has(tag, "TITLE")) return Kind::kDateTime;
  return Kind::kText;
}

const char* DeclaredType(Kind kind) {
  switch (kind) {
    case Kind::kYesNo:
      return "BOOLEAN";
    case Kind::kDate:
      return "DATE";
    case Kind::kDateTime:
      return "DATETIME";
    case Kind::kMoney:
      return "MONEY";
    case Kind::kPercent:
    case Kind::kNumber:
      return "REAL";
    case Kind::kWhole:
      return "INTEGER";
    default:
      return "TEXT";
  }
}

std::vector<ColumnSpec> ColumnsOf(std::span<const FieldRow> rows) {
  std::vector<ColumnSpec> columns;
  std::set<std::string_view> seen;
  for (const FieldRow& row : rows) {
    if (row.tag.empty() || !seen.insert(row.tag).second) continue;
    ColumnSpec c;
    c.name = std::string(row.tag);
    std::string title(row.title.caption);
    while (!title.empty() && title.back() == ':') title.pop_back();
    c.title = title.empty() ? c.name : title;
    c.kind = KindOf(row.tag, row.editor.kind == EditorKind::kCheck);
    c.drop_list = row.has_button() && row.button.glyph == Glyph::kArrow;
    columns.push_back(std::move(c));
  }
  // An amount needs its currency: a form with money but no currency field gets the column
  // CURR_CODE all the same (not shown on the form; its money fields point at it).
  bool money = false, currency = false;
  for (const ColumnSpec& c : columns) {
    money = money || c.kind == Kind::kMoney;
    currency = currency || c.name == "CURR_CODE";
  }
  if (money && !currency) columns.push_back({"CURR_CODE", "Currency", Kind::kText, false});
  return columns;
}

// Chinese titles of the forms' English captions.
const std::map<std::string_view, std::string_view>& ChineseTitles() {
  static const std::map<std::string_view, std::string_view> kTitles = {
      {"Account Address", "客户地址"},
      {"Account Currency", "客户币种"},
      {"Account Description", "客户描述"},
      {"Account Name", "客户名称"},
      {"Account Short Name", "客户简称"},
      {"Account", "客户"},
      {"Active", "有效"},
      {"Activity_Type", "活动类型"},
      {"Actual Work", "实际工作量"},
      {"Address", "地址"},
      {"Alarm", "提醒"},
      {"Amount", "金额"},
      {"Assistant", "助理"},
      {"Asst. #", "助理电话"},
      {"Audit Status", "审核状态"},
      {"Bank Account", "银行账号"},
      {"Bank Name", "开户银行"},
      {"Cash Advance", "预支现金"},
      {"Cellular #", "手机"},
      {"Charge #", "收费编号"},
      {"City", "城市"},
      {"Close Date", "结束日期"},
      {"Comments", "备注"},
      {"Competition Strategy", "竞争策略"},
      {"Competitor", "竞争对手"},
      {"Contact", "联系人"},
      {"Contract #", "合同编号"},
      {"Contract", "合同"},
      {"Costing", "成本核算"},
      {"Country", "国家"},
      {"Create Time", "创建时间"},
      {"Created", "创建日期"},
      {"Creator", "创建人"},
      {"Currency", "币种"},
      {"Date", "日期"},
      {"Dept", "部门"},
      {"Description", "描述"},
      {"Disabled Date", "停用日期"},
      {"Discount Reason", "折扣原因"},
      {"Dlv. Date", "交货日期"},
      {"Due", "到期"},
      {"Duration", "持续时间"},
      {"Efficient Date", "生效日期"},
      {"Email", "电子邮件"},
      {"End Date", "结束日期"},
      {"End", "结束"},
      {"Establishment", "设立"},
      {"Expense #", "费用编号"},
      {"Expense Type", "费用类型"},
      {"Fax #", "传真"},
      {"Fax Number", "传真号码"},
      {"First Name", "名"},
      {"Forecast", "预测"},
      {"Frequency", "频率"},
      {"Home #", "住宅电话"},
      {"Industries", "行业"},
      {"Item Total", "明细合计"},
      {"Job Title", "职务"},
      {"Last Name", "姓"},
      {"Login Domain", "登录域"},
      {"Login Name", "登录名"},
      {"Main Fax Number", "总机传真"},
      {"Main Fax#", "总机传真"},
      {"Main Phone Number", "总机电话"},
      {"Main Phone#", "总机电话"},
      {"Market Orientation", "市场定位"},
      {"Model", "型号"},
      {"Mr/Ms", "称谓"},
      {"Name", "名称"},
      {"Nick Name", "昵称"},
      {"Notes", "说明"},
      {"Opportunity", "商机"},
      {"Paid Amount", "已付金额"},
      {"Paidment Type", "付款方式"},
      {"Part Number", "零件号"},
      {"Percent Complete", "完成百分比"},
      {"Planned Start", "计划开始"},
      {"Price List", "价格表"},
      {"Price Plan", "价格方案"},
      {"Priceing Goal", "定价目标"},
      {"Priority", "优先级"},
      {"Prob%", "可能性%"},
      {"Product Line", "产品线"},
      {"Product", "产品"},
      {"Proposal #", "建议书编号"},
      {"Proposal", "建议书"},
      {"Qt. Date", "报价日期"},
      {"Quote #", "报价单编号"},
      {"Quote", "报价单"},
      {"Rate", "汇率"},
      {"Repeat", "重复"},
      {"Revenue", "收入"},
      {"Sales Stage", "销售阶段"},
      {"Sales Team", "销售团队"},
      {"Sig. Date", "签约日期"},
      {"Site", "地点"},
      {"Source", "来源"},
      {"Start Date", "开始日期"},
      {"Start", "开始"},
      {"State", "省份"},
      {"Status", "状态"},
      {"Target Market", "目标市场"},
      {"Tax No", "税号"},
      {"Team Name", "团队名称"},
      {"Template", "模板"},
      {"Threat", "威胁"},
      {"Total Amount", "总金额"},
      {"Total Discount", "总折扣"},
      {"Total Work", "总工作量"},
      {"Total", "合计"},
      {"Type", "类型"},
      {"URL", "网址"},
      {"Unit", "单位"},
      {"Until", "直到"},
      {"Update Time", "更新时间"},
      {"Updates", "更新次数"},
      {"Updator", "更新人"},
      {"Validity", "有效期"},
      {"Ver", "版本"},
      {"Work #", "工作电话"},
      {"Zip", "邮编"},
      {"UserInfo", "用户信息"},
      {"Activity", "活动"},
      {"Expense", "费用"},
      {"ExpenseItem", "费用明细"},
      {"CompanyAccount", "公司客户"},
      {"ShortCompanyAccount", "公司客户简表"},
      {"PriceList", "价格表"},
      {"Totals", "合计"},
      {"Appointment", "约会"},
      {"CurrencyCode", "币种代码"},
      {"CurrencyName", "币种名称"},
      {"Symbol", "符号"},
      {"ExchangeRate", "汇率"}};
  return kTitles;
}

std::string Chinese(const std::string& english) {
  auto it = ChineseTitles().find(english);
  return it == ChineseTitles().end() ? english : std::string(it->second);
}

// Realistic values, in English and in Chinese.
const char* const kCompanies[] = {"Acme Trading",         "Northwind Supply", "Blue River Systems",
                                  "上海星辰科技有限公司", "北京华信咨询",     "深圳远航电子",
                                  "Harbor Logistics",     "杭州云帆软件",     "Summit Foods",
                                  "广州明德贸易"};
const char* const kGiven[] = {"Anna", "Brian", "Chloe", "David", "Emma",
                              "伟",   "芳",    "静",    "强",    "磊"};
const char* const kSurnames[] = {"Smith", "Jones", "Brown", "Miller", "王",
                                 "李",    "张",    "刘",    "陈",     "Wilson"};
const char* const kCities[] = {"Shanghai", "Beijing", "Shenzhen", "London", "Boston",
                               "上海",     "北京",    "广州",     "杭州",   "Singapore"};
const char* const kProvinces[] = {"Shanghai", "Beijing", "Guangdong", "MA",
                                  "Zhejiang", "广东",    "浙江",      "江苏"};
const char* const kCountries[] = {"China", "中国", "USA", "United Kingdom", "Singapore"};
const char* const kStreets[] = {"88 Century Avenue", "1 Harbour Road",    "南京西路1266号",
                                "中关村大街27号",    "200 Market Street", "深南大道6008号"};
const char* const kCurrencies[] = {"USD", "CNY", "EUR", "GBP", "JPY"};
const char* const kWords[] = {"Expansion", "Renewal", "Upgrade", "Pilot", "Framework",
                              "续约",      "扩容",    "升级",    "试点",  "框架协议"};
const char* const kNotes[] = {"Customer asked for a second demo.",
                              "Budget approved in Q2.",
                              "客户希望下周再次演示。",
                              "预算已在第二季度批准。",
                              "Waiting for the signed contract.",
                              "等待签署合同。"};

struct LookupList {
  std::string_view column;
  std::vector<std::pair<std::string_view, std::string_view>> values;
};

const std::vector<LookupList>& KnownLookups() {
  static const std::vector<LookupList> kLists = {
      {"SSTAGE_NAME",
       {{"Prospecting", "初步接触"},
        {"Qualification", "需求确认"},
        {"Proposal", "方案建议"},
        {"Negotiation", "商务谈判"},
        {"Closed Won", "赢单"},
        {"Closed Lost", "丢单"}}},
      {"CLUESRC_DESCRIPT",
       {{"Trade Show", "展会"},
        {"Web Site", "网站"},
        {"Referral", "客户推荐"},
        {"Cold Call", "电话拜访"}}},
      {"F_ACTTYPE", {{"Call", "电话"}, {"Meeting", "会议"}, {"Visit", "拜访"}, {"Email", "邮件"}}},
      {"ACT_PRIORITY", {{"High", "高"}, {"Medium", "中"}, {"Low", "低"}}},
      {"ACT_STATUS", {{"Planned", "计划中"}, {"In Progress", "进行中"}, {"Done", "已完成"}}},
      {"F_ACCTYPE",
       {{"Customer", "客户"},
        {"Partner", "合作伙伴"},
        {"Reseller", "经销商"},
        {"Prospect", "潜在客户"}}},
      {"F_ACCSTATUS", {{"Active", "有效"}, {"Dormant", "休眠"}, {"Closed", "关闭"}}},
      {"CURR_CODE",
       {{"USD", "美元"}, {"CNY", "人民币"}, {"EUR", "欧元"}, {"GBP", "英镑"}, {"JPY", "日元"}}},
  };
  return kLists;
}

class Builder {
 public:
  Builder(sqlite3* db, uint64_t seed) : db_(db), random_(seed) {}

  void CreateEntityTable(const std::string& table, const std::vector<ColumnSpec>& columns) {
    std::string sql = "CREATE TABLE " + QuoteIdentifier(table) + " (";
    for (size_t i = 0; i < columns.size(); ++i) {
      sql +=
          (i ? ", " : "") + QuoteIdentifier(columns[i].name) + " " + DeclaredType(columns[i].kind);
    }
    ExecuteSql(db_, sql + ")", "create the table " + table);
    bool has_currency = false;
    for (const ColumnSpec& c : columns) has_currency = has_currency || c.name == "CURR_CODE";
    Statement meta(db_, "INSERT INTO tarn_field_meta VALUES (?1, ?2, ?3, ?4, ?5, 1, ?6)",
                   "describe the columns of " + table);
    for (const ColumnSpec& c : columns) {
      int data_type = 0, date_kind = 0, number_kind = 0;
      switch (c.kind) {
        case Kind::kYesNo:
          data_type = 1;
          break;
        case Kind::kDate:
          data_type = 2;
          date_kind = 2;
          break;
        case Kind::kDateTime:
          data_type = 2;
          date_kind = 1;
          break;
        case Kind::kMoney:
          data_type = 4;
          break;
        case Kind::kPercent:
          data_type = 5;
          number_kind = 2;
          break;
        case Kind::kNumber:
          data_type = 5;
          number_kind = 1;
          break;
        case Kind::kWhole:
          data_type = 6;
          break;
        default:
          break;
      }
      ResetOnExit reset(meta.get());
      sqlite3_bind_text(meta.get(), 1, table.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(meta.get(), 2, c.name.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_int(meta.get(), 3, data_type);
      sqlite3_bind_int(meta.get(), 4, date_kind);
      sqlite3_bind_int(meta.get(), 5, number_kind);
      if (c.kind == Kind::kMoney && has_currency) {
        sqlite3_bind_text(meta.get(), 6, "CURR_CODE", -1, SQLITE_STATIC);
      }
      Step(meta.get(), "describe the columns of " + table);
    }
  }

  void FillEntityTable(const std::string& table, const std::vector<ColumnSpec>& columns,
                       int64_t rows) {
    std::string names, marks;
    for (size_t i = 0; i < columns.size(); ++i) {
      names += (i ? ", " : "") + QuoteIdentifier(columns[i].name);
      marks += i ? ", ?" : "?";
    }
    Statement insert(
        db_, "INSERT INTO " + QuoteIdentifier(table) + " (" + names + ") VALUES (" + marks + ")",
        "fill the table " + table);
    for (int64_t r = 0; r < rows; ++r) {
      ResetOnExit reset(insert.get());
      for (size_t i = 0; i < columns.size(); ++i) {
        BindValue(insert.get(), static_cast<int>(i) + 1, table, columns[i], r);
      }
      Step(insert.get(), "fill the table " + table);
    }
  }

  void AddTitles(const std::string& group, const std::string& caption,
                 const std::vector<ColumnSpec>& columns) {
    Statement s(db_,
                "INSERT INTO SheetTitles VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11)",
                "write the titles of " + group);
    for (const ColumnSpec& c : columns) {
      ResetOnExit reset(s.get());
      const std::string zh = Chinese(c.title);
      const std::string english_description = c.title + " of the " + caption;
      const std::string chinese_description = Chinese(caption) + "的" + zh;
      const char* format = c.kind == Kind::kDate ? "yyyy-mm-dd" : nullptr;
      const std::string english_caption = caption;
      const std::string chinese_caption = Chinese(caption);
      sqlite3_bind_text(s.get(), 1, group.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(s.get(), 2, english_caption.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(s.get(), 3, chinese_caption.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(s.get(), 4, c.name.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(s.get(), 5, english_description.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(s.get(), 6, chinese_description.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(s.get(), 7, c.title.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(s.get(), 8, zh.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_int(s.get(), 9, Has(c.name, "DESCRIPT") || Has(c.name, "COMMENT") ? 1 : 0);
      if (format != nullptr) sqlite3_bind_text(s.get(), 10, format, -1, SQLITE_STATIC);
      sqlite3_bind_int(s.get(), 11, c.drop_list ? 1 : 0);
      Step(s.get(), "write the titles of " + group);
    }
  }

  void AddLookups(const std::vector<ColumnSpec>& columns) {
    Statement s(db_, "INSERT OR IGNORE INTO LookupValue VALUES (?1, ?2, ?3, ?4)",
                "write the lookup values");
    for (const ColumnSpec& c : columns) {
      if (!c.drop_list || c.kind != Kind::kText) continue;
      const LookupList* known = nullptr;
      for (const LookupList& l : KnownLookups()) {
        if (l.column == c.name) known = &l;
      }
      std::vector<std::pair<std::string, std::string>> values;
      if (known != nullptr) {
        for (const auto& [en, zh] : known->values) values.emplace_back(en, zh);
      } else {
        for (int i = 1; i <= 4; ++i) {
          values.emplace_back(c.title + " " + std::to_string(i),
                              Chinese(c.title) + std::to_string(i));
        }
      }
      for (size_t i = 0; i < values.size(); ++i) {
        ResetOnExit reset(s.get());
        sqlite3_bind_text(s.get(), 1, c.name.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_int(s.get(), 2, static_cast<int>(i) + 1);
        sqlite3_bind_text(s.get(), 3, values[i].first.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(s.get(), 4, values[i].second.c_str(), -1, SQLITE_TRANSIENT);
        Step(s.get(), "write the lookup values");
      }
    }
  }

 private:
  void Step(sqlite3_stmt* s, const std::string& what) {
    if (sqlite3_step(s) != SQLITE_DONE) throw DatabaseFailure(db_, what);
  }

  void BindText(sqlite3_stmt* s, int index, const std::string& text) {
    sqlite3_bind_text(s, index, text.c_str(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
  }

  std::string DateText(bool with_time) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d %02d:%02d:00", 2024 + random_.Below(3),
                  1 + random_.Below(12), 1 + random_.Below(28),
                  with_time ? 8 + random_.Below(10) : 0, with_time ? 15 * random_.Below(4) : 0);
    return buffer;
  }

  void BindValue(sqlite3_stmt* s, int index, const std::string& table, const ColumnSpec& c,
                 int64_t row) {
    const std::string& n = c.name;
    switch (c.kind) {
      case Kind::kYesNo:
        sqlite3_bind_int(s, index, random_.Below(2));
        return;
      case Kind::kDate:
        BindText(s, index, DateText(false));
        return;
      case Kind::kDateTime:
        BindText(s, index, DateText(true));
        return;
      case Kind::kMoney:
        sqlite3_bind_double(s, index, (1000 + random_.Below(500000)) * 10 / 100.0);
        return;
      case Kind::kPercent:
        sqlite3_bind_double(s, index, random_.Below(21) * 5 / 100.0);
        return;
      case Kind::kNumber:
        sqlite3_bind_double(s, index, (1 + random_.Below(800)) / 8.0);
        return;
      case Kind::kWhole:
        sqlite3_bind_int(s, index, 1 + random_.Below(30));
        return;
      case Kind::kText:
        break;
    }
    if (n == "CURR_CODE") {  // a code of the currency table, in both languages
      BindText(s, index, random_.Pick(kCurrencies));
      return;
    }
    for (const LookupList& l : KnownLookups()) {
      if (l.column == n) {
        const auto& v = l.values[random_.Below(static_cast<int>(l.values.size()))];
        BindText(s, index, std::string(row % 3 == 2 ? v.second : v.first));
        return;
      }
    }
    std::string value;
    if (Has(n, "GIVENNAME")) {
      value = random_.Pick(kGiven);
    } else if (Has(n, "SURNAME")) {
      value = random_.Pick(kSurnames);
    } else if (Has(n, "LOGINNAME") || n == "F_NICKNAME") {
      value = std::string("user") + std::to_string(1 + random_.Below(40));
    } else if (Has(n, "CITY")) {
      value = random_.Pick(kCities);
    } else if (Has(n, "PROVINCE")) {
      value = random_.Pick(kProvinces);
    } else if (Has(n, "COUNTRY")) {
      value = random_.Pick(kCountries);
    } else if (Has(n, "POSTALCODE")) {
      value = std::to_string(100000 + random_.Below(800000));
    } else if (Has(n, "ADDR_DETAIL")) {
      value = random_.Pick(kStreets);
    } else if (Has(n, "TEL") || Has(n, "FAX")) {
      value = "+86 21 " + std::to_string(5000 + random_.Below(4000)) + " " +
              std::to_string(1000 + random_.Below(9000));
    } else if (Has(n, "EMAIL")) {
      value = "contact" + std::to_string(row + 1) + "@example.com";
    } else if (Has(n, "URL")) {
      value = "https://www.example.com/" + std::to_string(row + 1);
    } else if (Has(n, "ACC") && Has(n, "NAME")) {
      value = random_.Pick(kCompanies);
    } else if (Has(n, "DESCRIPT") || Has(n, "COMMENT")) {
      value = random_.Pick(kNotes);
    } else if (Has(n, "NO") && !Has(n, "NODE")) {
      value = table.substr(0, 3) + "-" + std::to_string(100000 + row);
    } else {
      const bool chinese = row % 3 == 2;
      value = (chinese ? Chinese(c.title) : c.title) + " " + random_.Pick(kWords) + " " +
              std::to_string(row + 1);
    }
    BindText(s, index, value);
  }

  sqlite3* db_;
  Random random_;
};

}  // namespace

void BuildSampleDatabase(const std::string& path, const SampleDatabaseOptions& options) {
  if (std::filesystem::exists(path)) {
    throw Failure(kErrDatabase, "The sample database \"" + path + "\" exists already.");
  }
  sqlite3* db = nullptr;
  if (sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) !=
      SQLITE_OK) {
    Failure f = DatabaseFailure(db, "create \"" + path + "\"");
    sqlite3_close(db);
    throw f;
  }
  try {
    ExecuteSql(db, "PRAGMA journal_mode = WAL; PRAGMA synchronous = OFF; BEGIN",
               "prepare \"" + path + "\"");
    ExecuteSql(db, kSampleSchemaSql, "create the fixed tables");
    Builder builder(db, options.seed);
    std::vector<std::string> tables;
    for (const FormTable* form : EntityForms()) {
      const std::string table(form->class_name);
      const std::vector<ColumnSpec> columns = ColumnsOf(form->rows);
      builder.CreateEntityTable(table, columns);
      builder.FillEntityTable(
          table, columns, table == "Opportunity" ? options.opportunities : options.rows_per_table);
      builder.AddTitles(table, std::string(form->class_name), columns);
      builder.AddLookups(columns);
      tables.push_back(table);
    }
    const std::vector<ColumnSpec> appointment = ColumnsOf(AppointmentForm().rows);
    builder.CreateEntityTable("Appointment", appointment);
    builder.FillEntityTable("Appointment", appointment, options.rows_per_table);
    builder.AddTitles("Appointment", "Appointment", appointment);
    builder.AddLookups(appointment);
    tables.push_back("Appointment");

    ExecuteSql(db,
               "INSERT INTO Currency VALUES ('USD', 'US Dollar', '美元', '$', 1.0),"
               "('CNY', 'Chinese Yuan', '人民币', '¥', 0.138),"
               "('EUR', 'Euro', '欧元', '€', 1.08),"
               "('GBP', 'Pound Sterling', '英镑', '£', 1.27),"
               "('JPY', 'Japanese Yen', '日元', '円', 0.0067);"
               "INSERT INTO tarn_field_meta VALUES ('Currency', 'ExchangeRate', 5, 0, 1, 1, NULL);",
               "write the currencies");
    builder.AddTitles("Currency", "Currency",
                      {{"CurrencyCode", "CurrencyCode", Kind::kText, false},
                       {"CurrencyName", "CurrencyName", Kind::kText, false},
                       {"Symbol", "Symbol", Kind::kText, false},
                       {"ExchangeRate", "ExchangeRate", Kind::kNumber, true}});
    tables.push_back("Currency");
    ExecuteSql(db, "COMMIT", "write \"" + path + "\"");
    for (const std::string& table : tables) InstallRowCounter(db, table);
    ExecuteSql(db, "PRAGMA synchronous = NORMAL; PRAGMA wal_checkpoint(TRUNCATE)",
               "finish \"" + path + "\"");
  } catch (...) {
    sqlite3_close(db);
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
    std::filesystem::remove(path + "-wal", ignored);
    std::filesystem::remove(path + "-shm", ignored);
    throw;
  }
  sqlite3_close(db);
}

}  // namespace tarnsheets
