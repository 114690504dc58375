#include "datasources/memory/memory_fixture.h"

#include <cmath>
#include <fstream>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>

namespace tarnsheets {
namespace {

using nlohmann::json;

// Raised while reading; turned into a Failure naming the origin.
struct FixtureError {
  std::string where;
  std::string what;
};

[[noreturn]] void Fail(const std::string& where, const std::string& what) {
  throw FixtureError{where, what};
}

std::string Pointer(const std::string& parent, const std::string& key) {
  std::string escaped;
  for (char c : key) {
    if (c == '~') {
      escaped += "~0";
    } else if (c == '/') {
      escaped += "~1";
    } else {
      escaped += c;
    }
  }
  return parent + "/" + escaped;
}

std::string Pointer(const std::string& parent, size_t index) {
  return parent + "/" + std::to_string(index);
}

// Line and column (both from 1) of a byte offset.
std::string LineColumn(std::string_view text, size_t offset) {
  size_t line = 1, column = 1;
  for (size_t i = 0; i < offset && i < text.size(); ++i) {
    if (text[i] == '\n') {
      ++line;
      column = 1;
    } else {
      ++column;
    }
  }
  return std::to_string(line) + ":" + std::to_string(column);
}

const char* KindOf(const json& j) {
  switch (j.type()) {
    case json::value_t::null:
      return "null";
    case json::value_t::object:
      return "an object";
    case json::value_t::array:
      return "an array";
    case json::value_t::string:
      return "a string";
    case json::value_t::boolean:
      return "a Boolean";
    case json::value_t::number_integer:
    case json::value_t::number_unsigned:
      return "an integer";
    case json::value_t::number_float:
      return "a number with a fraction";
    default:
      return "an unknown value";
  }
}

void Expect(bool ok, const json& j, const std::string& where, const char* wanted) {
  if (!ok) Fail(where, std::string("expected ") + wanted + ", found " + KindOf(j));
}

int32_t ReadInt(const json& j, const std::string& where, int32_t lo, int32_t hi) {
  Expect(j.is_number_integer(), j, where, "an integer");
  const int64_t v = j.get<int64_t>();
  if (v < lo || v > hi) {
    Fail(where,
         std::to_string(v) + " is not one of " + std::to_string(lo) + " to " + std::to_string(hi));
  }
  return static_cast<int32_t>(v);
}

void OnlyKeys(const json& obj, const std::string& where,
              std::initializer_list<const char*> allowed) {
  for (auto it = obj.begin(); it != obj.end(); ++it) {
    bool known = false;
    for (const char* a : allowed) known = known || it.key() == a;
    if (!known) Fail(Pointer(where, it.key()), "unknown key \"" + it.key() + "\"");
  }
}

Variant ReadCell(const json& j, const MemoryFieldDefinition& def, const std::string& where) {
  if (j.is_null()) return Variant::Null();
  switch (def.data_type) {
    case kDataTypeText:
    case kDataTypePlainText:
      Expect(j.is_string(), j, where, "a string for a text field");
      return Variant(j.get<std::string>());
    case kDataTypeYesNo:
      if (j.is_boolean()) return Variant(j.get<bool>());
      Expect(j.is_number_integer(), j, where, "an integer or a Boolean for a yes/no field");
      return Variant(ReadInt(j, where, std::numeric_limits<int32_t>::min(),
                             std::numeric_limits<int32_t>::max()));
    case kDataTypeDate: {
      Expect(j.is_string(), j, where, "a date string for a date field");
      Date d;
      const std::string s = j.get<std::string>();
      if (!ParseIsoDate(s, &d)) {
        Fail(where, "\"" + s + "\" is not a date of the form yyyy-mm-dd hh:nn:ss, yyyy-mm-dd or " +
                        "hh:nn:ss");
      }
      return Variant(d);
    }
    case kDataTypeWholeNumber:
      Expect(j.is_number_integer(), j, where, "an integer for a whole-number field");
      return Variant(ReadInt(j, where, std::numeric_limits<int32_t>::min(),
                             std::numeric_limits<int32_t>::max()));
    default:
      Expect(j.is_number(), j, where, "a number for a number or money field");
      return Variant(j.get<double>());
  }
}

std::unique_ptr<MemoryDataSource> Build(const json& root, Dialogs* dialogs) {
  Expect(root.is_object(), root, "/", "an object at the top");
  OnlyKeys(root, "", {"fields", "rows", "symbols", "readOnly", "rowEditable"});
  if (!root.contains("fields")) Fail("/", "the key \"fields\" is missing");
  const json& fields = root["fields"];
  Expect(fields.is_array(), fields, "/fields", "an array");
  std::vector<MemoryFieldDefinition> defs;
  for (size_t i = 0; i < fields.size(); ++i) {
    const std::string at = Pointer("/fields", i);
    const json& f = fields[i];
    Expect(f.is_object(), f, at, "an object");
    OnlyKeys(f, at, {"name", "type", "dateKind", "numberKind", "updatable", "reference"});
    MemoryFieldDefinition d;
    if (!f.contains("name")) Fail(at, "the key \"name\" is missing");
    Expect(f["name"].is_string(), f["name"], at + "/name", "a string");
    d.name = f["name"].get<std::string>();
    if (d.name.empty()) Fail(at + "/name", "the name is empty");
    for (const MemoryFieldDefinition& other : defs) {
      if (other.name == d.name) Fail(at + "/name", "the name \"" + d.name + "\" is used twice");
    }
    if (!f.contains("type")) Fail(at, "the key \"type\" is missing");
    d.data_type = ReadInt(f["type"], at + "/type", 0, 6);
    if (f.contains("dateKind")) d.date_kind = ReadInt(f["dateKind"], at + "/dateKind", 0, 4);
    if (f.contains("numberKind")) {
      d.number_kind = ReadInt(f["numberKind"], at + "/numberKind", 0, 2);
    }
    if (f.contains("updatable")) {
      Expect(f["updatable"].is_boolean(), f["updatable"], at + "/updatable", "true or false");
      d.updatable = f["updatable"].get<bool>();
    }
    if (f.contains("reference")) {
      Expect(f["reference"].is_string(), f["reference"], at + "/reference", "a string");
      d.reference = f["reference"].get<std::string>();
    }
    defs.push_back(std::move(d));
  }
  for (size_t i = 0; i < defs.size(); ++i) {
    if (defs[i].reference.empty()) continue;
    bool found = false;
    for (const MemoryFieldDefinition& other : defs)
      found = found || other.name == defs[i].reference;
    if (!found) {
      Fail(Pointer("/fields", i) + "/reference",
           "\"" + defs[i].reference + "\" names no field of the fixture");
    }
  }

  std::vector<std::vector<Variant>> rows;
  if (root.contains("rows")) {
    const json& jrows = root["rows"];
    Expect(jrows.is_array(), jrows, "/rows", "an array");
    for (size_t r = 0; r < jrows.size(); ++r) {
      const std::string at = Pointer("/rows", r);
      const json& row = jrows[r];
      Expect(row.is_object(), row, at, "an object of field names and values");
      std::vector<Variant> values(defs.size());
      for (auto it = row.begin(); it != row.end(); ++it) {
        size_t k = 0;
        while (k < defs.size() && defs[k].name != it.key()) ++k;
        if (k == defs.size()) Fail(Pointer(at, it.key()), "\"" + it.key() + "\" is no field");
        values[k] = ReadCell(it.value(), defs[k], Pointer(at, it.key()));
      }
      rows.push_back(std::move(values));
    }
  }

  std::vector<std::pair<std::string, std::string>> symbols;
  if (root.contains("symbols")) {
    const json& js = root["symbols"];
    Expect(js.is_object(), js, "/symbols", "an object of currency codes and symbols");
    for (auto it = js.begin(); it != js.end(); ++it) {
      Expect(it.value().is_string(), it.value(), Pointer("/symbols", it.key()), "a string");
      symbols.emplace_back(it.key(), it.value().get<std::string>());
    }
  }

  bool read_only = false;
  if (root.contains("readOnly")) {
    Expect(root["readOnly"].is_boolean(), root["readOnly"], "/readOnly", "true or false");
    read_only = root["readOnly"].get<bool>();
  }

  std::vector<bool> editable(rows.size(), true);
  if (root.contains("rowEditable")) {
    const json& je = root["rowEditable"];
    Expect(je.is_array(), je, "/rowEditable", "an array of true or false");
    if (je.size() > rows.size()) {
      Fail("/rowEditable", "it has " + std::to_string(je.size()) + " entries for " +
                               std::to_string(rows.size()) + " rows");
    }
    for (size_t r = 0; r < je.size(); ++r) {
      Expect(je[r].is_boolean(), je[r], Pointer("/rowEditable", r), "true or false");
      editable[r] = je[r].get<bool>();
    }
  }

  auto source = std::make_unique<MemoryDataSource>(std::move(defs), dialogs);
  for (size_t r = 0; r < rows.size(); ++r) source->AddRow(std::move(rows[r]), editable[r]);
  for (const auto& [code, symbol] : symbols) source->SetSymbol(code, symbol);
  source->SetReadOnly(read_only);
  return source;
}

}  // namespace

std::unique_ptr<MemoryDataSource> MemoryFixtureFromText(std::string_view text,
                                                        const std::string& origin,
                                                        Dialogs* dialogs) {
  json root;
  try {
    root = json::parse(text.begin(), text.end());
  } catch (const json::parse_error& e) {
    // The parser reports the offset just past the last character it read: the position names
    // the end of the offending token.
    const size_t offset = e.byte > 0 ? e.byte - 1 : 0;
    std::string what = e.what();
    const size_t colon = what.find("syntax error");
    if (colon != std::string::npos) what = what.substr(colon);
    throw Failure(kErrInvalidProcedureCall,
                  origin + ":" + LineColumn(text, offset) + ": malformed JSON: " + what);
  }
  try {
    return Build(root, dialogs);
  } catch (const FixtureError& e) {
    throw Failure(kErrInvalidProcedureCall, origin + ": at " + e.where + ": " + e.what);
  }
}

std::unique_ptr<MemoryDataSource> LoadMemoryFixture(const std::string& path, Dialogs* dialogs) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    throw Failure(kErrInvalidProcedureCall, path + ": the fixture file cannot be opened");
  }
  std::ostringstream buffer;
  buffer << in.rdbuf();
  return MemoryFixtureFromText(buffer.str(), path, dialogs);
}

}  // namespace tarnsheets
