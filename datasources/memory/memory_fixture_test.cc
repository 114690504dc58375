#include "datasources/memory/memory_fixture.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnsheets {
namespace {

const std::string kDir = TARNSHEETS_MEMORY_TESTDATA;

// The description of the failure of loading `json`, or "" when it loaded.
std::string LoadError(const std::string& json) {
  try {
    MemoryFixtureFromText(json, "bad.json");
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), kErrInvalidProcedureCall);
    return f.Description();
  }
  return std::string();
}

TEST(MemoryFixtureTest, LoadsTheOpportunityFixtureClosedWithTypedValues) {
  auto ds = LoadMemoryFixture(kDir + "/opportunity.json");
  EXPECT_EQ(ds->EditStatus(), dsClosed);
  ds->Open();
  EXPECT_EQ(ds->FieldCount(), 7);
  EXPECT_EQ(ds->RecordCount(), 2);
  EXPECT_EQ(ds->Fields(Variant("FORE_REVENUE")).Value(0), Variant(-1234.5));
  EXPECT_EQ(ds->Fields(Variant("FORE_REVENUE")).Symbol(0), "$");
  EXPECT_EQ(ds->Fields(Variant("F_OPPCLSDATE")).Value(0), Variant(Date::FromParts(2026, 3, 1)));
  EXPECT_EQ(ds->Fields(Variant("F_OPPCLSDATE")).DateKind(), kDateKindDate);
  EXPECT_EQ(ds->Fields(Variant("FORE_PROBABILITY")).NumberKind(), kNumberKindPercent);
  EXPECT_EQ(ds->Fields(Variant("FORE_SIGNAL")).Value(0), Variant(int32_t{1}));
  EXPECT_EQ(ds->Fields(Variant("F_ID")).Value(0), Variant(int32_t{1}));
  EXPECT_FALSE(ds->Fields(Variant("F_ID")).Updatable());
  EXPECT_EQ(ds->Fields(Variant("FORE_REVENUE")).ReferenceName(), "CURR_CODE");
  EXPECT_FALSE(ds->ReadOnly());
  ASSERT_FALSE(ds->MoveNext());
  EXPECT_TRUE(ds->Fields(Variant("FORE_REVENUE")).Value(0).IsNull());   // JSON null
  EXPECT_TRUE(ds->Fields(Variant("F_OPPCLSDATE")).Value(0).IsEmpty());  // missing key
  EXPECT_EQ(ds->Fields(Variant("FORE_REVENUE")).Symbol(0), "¥");
  EXPECT_TRUE(ds->RowEditable(0));  // rowEditable shorter than rows: the rest are editable
}

TEST(MemoryFixtureTest, ReadOnlyAndRowEditableAreTaken) {
  auto ds = MemoryFixtureFromText(
      R"({"fields":[{"name":"A","type":0}],"rows":[{"A":"x"},{"A":"y"}],
          "readOnly":true,"rowEditable":[false,true]})",
      "t.json");
  ds->Open();
  EXPECT_TRUE(ds->ReadOnly());
  EXPECT_FALSE(ds->RowEditable(1));
  EXPECT_TRUE(ds->RowEditable(2));
}

TEST(MemoryFixtureTest, MissingFileFailsNamingIt) {
  try {
    LoadMemoryFixture(kDir + "/no_such_fixture.json");
    ADD_FAILURE() << "no failure";
  } catch (const Failure& f) {
    EXPECT_NE(f.Description().find("no_such_fixture.json"), std::string::npos);
    EXPECT_NE(f.Description().find("cannot be opened"), std::string::npos);
  }
}

TEST(MemoryFixtureTest, BrokenJsonFailsWithLineAndColumn) {
  const std::string e = LoadError("{\n  \"fields\": [\n    {\"name\": \"A\" \"type\": 0}\n  ]\n}");
  EXPECT_EQ(e.rfind("bad.json:3:23: malformed JSON", 0), 0u) << e;
}

TEST(MemoryFixtureTest, TruncatedJsonFailsWithItsPosition) {
  const std::string e = LoadError("{\"fields\": [");
  EXPECT_EQ(e.rfind("bad.json:1:", 0), 0u) << e;
  EXPECT_NE(e.find("malformed JSON"), std::string::npos) << e;
}

TEST(MemoryFixtureTest, WrongValuesFailWithTheirJsonPathAndWhatIsWrong) {
  struct Case {
    const char* json;
    const char* expected;
  };
  const Case cases[] = {
      {R"([1])", "at /: expected an object at the top, found an array"},
      {R"({"rows":[]})", "at /: the key \"fields\" is missing"},
      {R"({"fields":[],"colour":1})", "at /colour: unknown key \"colour\""},
      {R"({"fields":{}})", "at /fields: expected an array, found an object"},
      {R"({"fields":[{"name":"A","type":9}]})", "at /fields/0/type: 9 is not one of 0 to 6"},
      {R"({"fields":[{"name":"A","type":"0"}]})",
       "at /fields/0/type: expected an integer, found a string"},
      {R"({"fields":[{"name":"A"}]})", "at /fields/0: the key \"type\" is missing"},
      {R"({"fields":[{"type":0}]})", "at /fields/0: the key \"name\" is missing"},
      {R"({"fields":[{"name":"","type":0}]})", "at /fields/0/name: the name is empty"},
      {R"({"fields":[{"name":"A","type":0},{"name":"A","type":1}]})",
       "at /fields/1/name: the name \"A\" is used twice"},
      {R"({"fields":[{"name":"A","type":2,"dateKind":5}]})",
       "at /fields/0/dateKind: 5 is not one of 0 to 4"},
      {R"({"fields":[{"name":"A","type":5,"numberKind":3}]})",
       "at /fields/0/numberKind: 3 is not one of 0 to 2"},
      {R"({"fields":[{"name":"A","type":0,"updatable":1}]})",
       "at /fields/0/updatable: expected true or false, found an integer"},
      {R"({"fields":[{"name":"A","type":4,"reference":"CUR"}]})",
       "at /fields/0/reference: \"CUR\" names no field of the fixture"},
      {R"({"fields":[{"name":"A","type":0,"size":3}]})", "at /fields/0/size: unknown key \"size\""},
      {R"({"fields":[{"name":"A","type":0}],"rows":[{"B":"x"}]})",
       "at /rows/0/B: \"B\" is no field"},
      {R"({"fields":[{"name":"A","type":0}],"rows":[["x"]]})",
       "at /rows/0: expected an object of field names and values, found an array"},
      {R"({"fields":[{"name":"A","type":0}],"rows":[{"A":5}]})",
       "at /rows/0/A: expected a string for a text field, found an integer"},
      {R"({"fields":[{"name":"D","type":2}],"rows":[{},{"D":"2026-13-01"}]})",
       "at /rows/1/D: \"2026-13-01\" is not a date"},
      {R"({"fields":[{"name":"N","type":6}],"rows":[{"N":1.5}]})",
       "at /rows/0/N: expected an integer for a whole-number field, found a number with a "
       "fraction"},
      {R"({"fields":[{"name":"M","type":4}],"rows":[{"M":"12"}]})",
       "at /rows/0/M: expected a number for a number or money field, found a string"},
      {R"({"fields":[{"name":"F","type":1}],"rows":[{"F":"yes"}]})",
       "at /rows/0/F: expected an integer or a Boolean for a yes/no field, found a string"},
      {R"({"fields":[],"symbols":{"USD":1}})",
       "at /symbols/USD: expected a string, found an integer"},
      {R"({"fields":[],"readOnly":"no"})", "at /readOnly: expected true or false, found a string"},
      {R"({"fields":[],"rows":[{}],"rowEditable":[true,false]})",
       "at /rowEditable: it has 2 entries for 1 rows"},
      {R"({"fields":[],"rows":[{}],"rowEditable":[1]})",
       "at /rowEditable/0: expected true or false, found an integer"},
  };
  for (const Case& c : cases) {
    const std::string e = LoadError(c.json);
    EXPECT_EQ(e.rfind(std::string("bad.json: ") + c.expected, 0), 0u)
        << "json: " << c.json << "\nerror: " << e;
  }
}

}  // namespace
}  // namespace tarnsheets
