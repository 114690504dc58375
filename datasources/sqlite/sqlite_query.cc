#include "datasources/sqlite/sqlite_query.h"

#include <string>
#include <utility>

#include "datasources/common/value_text.h"
#include "datasources/sqlite/sqlite_data_source.h"
#include "tarnsheets/data_source.h"

namespace tarnsheets {
namespace {

bool IsTextType(int32_t t) { return t == kDataTypeText || t == kDataTypePlainText; }

std::string_view Trim(std::string_view s) {
  const size_t a = s.find_first_not_of(" \t");
  if (a == std::string_view::npos) return {};
  return s.substr(a, s.find_last_not_of(" \t") - a + 1);
}

SqlValue RealValue(double d) {
  SqlValue v;
  v.type = SQLITE_FLOAT;
  v.real = d;
  return v;
}

// A query operand: [lo, hi) for a date without time, exact otherwise.
struct Operand {
  SqlValue lo, hi;
  bool exact = true;
};

bool ReadOperand(std::string_view text, int32_t data_type, int32_t number_kind,
                 const std::vector<std::string>& symbols, Operand* out) {
  text = Trim(text);
  if (data_type == kDataTypeDate) {
    std::string s(text);
    const size_t blank = s.find_first_of(" T");
    for (size_t i = 0; i < s.size() && i < blank; ++i) {
      if (s[i] == '/') s[i] = '-';
    }
    Date d;
    if (!ParseIsoDate(s, &d)) return false;
    out->exact = s.find(':') != std::string::npos;
    out->lo = SqlTextValue(StoredDateText(d));
    out->hi = out->exact ? out->lo : SqlTextValue(StoredDateText(Date{d.serial + 1}));
    return true;
  }
  double v = 0;
  std::string reason;
  const bool percent = data_type == kDataTypeNumber && number_kind == kNumberKindPercent;
  if (!ReadAmount(text, data_type == kDataTypeMoney ? symbols : std::vector<std::string>{}, percent,
                  &v, &reason)) {
    return false;
  }
  out->lo = out->hi = RealValue(v);
  out->exact = true;
  return true;
}

}  // namespace

bool ConditionClause(std::string_view condition, const std::string& column, int32_t data_type,
                     int32_t number_kind, const std::vector<std::string>& symbols,
                     std::string* clause_sql, std::vector<SqlValue>* params) {
  const std::string_view text = Trim(condition);
  const std::string col = QuoteIdentifier(column);
  std::string clause;
  if (IsTextType(data_type)) {
    // A prefix without regard to case; '*' and '?' are the wildcards, everything else (SQL's
    // own wildcards and brackets too) stands for itself.
    clause = "tarn_text_matches(" + col + ", ?)";
    params->push_back(SqlTextValue(std::string(text)));
  } else if (data_type == kDataTypeYesNo) {
    if (text == "1") {
      clause = col + " IS NOT NULL AND " + col + " <> 0";
    } else if (text == "0") {
      clause = col + " IS NULL OR " + col + " = 0";
    } else {
      return false;
    }
  } else if (data_type == kDataTypeDate || data_type == kDataTypeMoney ||
             data_type == kDataTypeNumber || data_type == kDataTypeWholeNumber) {
    Operand a, b;
    const size_t range = text.find("..");
    if (range != std::string_view::npos) {
      if (!ReadOperand(text.substr(0, range), data_type, number_kind, symbols, &a) ||
          !ReadOperand(text.substr(range + 2), data_type, number_kind, symbols, &b)) {
        return false;
      }
      clause = col + " >= ? AND " + col + (b.exact ? " <= ?" : " < ?");
      params->push_back(a.lo);
      params->push_back(b.exact ? b.lo : b.hi);
    } else {
      static const char* const kOps[] = {"<=", ">=", "<>", "<", ">", "="};
      std::string op = "=";
      std::string_view operand = text;
      for (const char* o : kOps) {
        const std::string_view token(o);
        if (text.substr(0, token.size()) == token) {
          op = o;
          operand = text.substr(token.size());
          break;
        }
      }
      if (!ReadOperand(operand, data_type, number_kind, symbols, &a)) return false;
      if (a.exact) {
        clause = col + " " + op + " ?";
        params->push_back(a.lo);
      } else if (op == "=") {
        clause = col + " >= ? AND " + col + " < ?";
        params->push_back(a.lo);
        params->push_back(a.hi);
      } else if (op == "<>") {
        clause = "(" + col + " < ? OR " + col + " >= ?)";
        params->push_back(a.lo);
        params->push_back(a.hi);
      } else if (op == "<" || op == ">=") {
        clause = col + " " + op + " ?";
        params->push_back(a.lo);
      } else {  // "<=" and ">" take the whole day
        clause = col + (op == "<=" ? " < ?" : " >= ?");
        params->push_back(a.hi);
      }
      // Texts in a number column compare with no number, as in the memory source.
      if (data_type != kDataTypeDate) clause += " AND typeof(" + col + ") <> 'text'";
    }
  } else {
    return false;
  }
  *clause_sql = std::move(clause);
  return true;
}

bool SqliteDataSource::BuildWhere(const std::vector<std::string>& conditions, Where* where) {
  where->sql.clear();
  where->params.clear();
  for (size_t i = 0; i < columns_.size(); ++i) {
    if (Trim(conditions[i]).empty()) continue;
    const Column& c = columns_[i];
    const bool compared = c.data_type == kDataTypeDate || c.data_type == kDataTypeMoney ||
                          c.data_type == kDataTypeNumber || c.data_type == kDataTypeWholeNumber;
    std::string clause;
    if (!ConditionClause(conditions[i], c.name, c.data_type, c.number_kind,
                         compared ? AllSymbols() : std::vector<std::string>{}, &clause,
                         &where->params)) {
      return false;
    }
    if (!where->sql.empty()) where->sql += " AND ";
    where->sql += "(" + clause + ")";
  }
  return true;
}

}  // namespace tarnsheets
