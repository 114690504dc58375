#include "datasources/recordset/recordset_arguments.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "tarnsheets/failure.h"
#include "tarnsheets/recordset.h"

namespace tarnsheets {
namespace {

int32_t FailureNumberOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const Failure& f) {
    return f.Number();
  }
  return 0;
}

TEST(RecordsetArgumentsTest, ColumnNamesCompareWithoutAsciiCaseOnly) {
  EXPECT_TRUE(EqualsIgnoringAsciiCase("SheetName", "SHEETNAME"));
  EXPECT_FALSE(EqualsIgnoringAsciiCase("Name", "Names"));
  // Bytes outside ASCII stand for themselves: "\xC3\xA9" (e-acute) is no "\xC3\x89" (E-acute).
  EXPECT_FALSE(EqualsIgnoringAsciiCase("caf\xC3\xA9", "CAF\xC3\x89"));
  const std::vector<std::string> columns = {"Id", "Caption"};
  EXPECT_EQ(FindColumnIgnoringCase(columns, "caption"), 1);
  EXPECT_EQ(FindColumnIgnoringCase(columns, "Title"), -1);
}

TEST(RecordsetArgumentsTest, FilterTextIsATextOrNothingForEmptyAndZero) {
  EXPECT_EQ(FilterTextOf(Variant("Id = 1")), "Id = 1");
  EXPECT_EQ(FilterTextOf(Variant()), "");
  EXPECT_EQ(FilterTextOf(Variant(int32_t{0})), "");
  EXPECT_EQ(FailureNumberOf([] { FilterTextOf(Variant(int32_t{3})); }), kErrRecordsetArguments);
  EXPECT_EQ(FailureNumberOf([] { FilterTextOf(Variant(true)); }), kErrRecordsetArguments);
}

TEST(RecordsetArgumentsTest, FilterColumnsAreFoundInTheRecordsetsColumns) {
  const std::vector<std::string> columns = {"Id", "Caption", "Kind"};
  std::vector<size_t> filter_columns;
  const RecordsetFilter filter =
      ParseFilterOver("kind = 'x' AND CAPTION LIKE 'a*'", columns, &filter_columns);
  EXPECT_FALSE(filter.PassesAll());
  EXPECT_EQ(filter_columns, (std::vector<size_t>{2, 1}));
}

TEST(RecordsetArgumentsTest, FilterOnAnUnknownColumnNamesTheFilterAndTheColumn) {
  std::vector<size_t> filter_columns;
  try {
    ParseFilterOver("Colour = 'red'", {"Id"}, &filter_columns);
    FAIL() << "an unknown column was taken";
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), kErrItemNotFound);
    EXPECT_NE(f.Description().find("Filter \"Colour = 'red'\": no column \"Colour\"."),
              std::string::npos)
        << f.Description();
  }
}

TEST(RecordsetArgumentsTest, GetRowsFieldsAreNamesOrOrdinalsAndAllColumnsWhenNoneAreGiven) {
  const std::vector<std::string> columns = {"Id", "Caption", "Kind"};
  EXPECT_EQ(ResolveGetRowsFields(columns, {}), (std::vector<size_t>{0, 1, 2}));
  EXPECT_EQ(ResolveGetRowsFields(columns, {Variant("kind"), Variant(int32_t{0})}),
            (std::vector<size_t>{2, 0}));
  EXPECT_EQ(FailureNumberOf([&] { ResolveGetRowsFields(columns, {Variant("Title")}); }),
            kErrItemNotFound);
  EXPECT_EQ(FailureNumberOf([&] { ResolveGetRowsFields(columns, {Variant(int32_t{3})}); }),
            kErrItemNotFound);
  EXPECT_EQ(FailureNumberOf([&] { ResolveGetRowsFields(columns, {Variant(true)}); }),
            kErrRecordsetArguments);
}

TEST(RecordsetArgumentsTest, GetRowsStartsAtTheCurrentFirstOrLastRow) {
  EXPECT_EQ(GetRowsFirst(kGetRowsRest, Variant(), 2, 5), 2u);
  EXPECT_EQ(GetRowsFirst(1, Variant(kBookmarkCurrent), 2, 5), 2u);
  EXPECT_EQ(GetRowsFirst(1, Variant(kBookmarkFirst), 2, 5), 0u);
  EXPECT_EQ(GetRowsFirst(1, Variant(kBookmarkLast), 2, 5), 4u);
}

TEST(RecordsetArgumentsTest, GetRowsRefusesABadStartABadCountAndAStartPastTheEnd) {
  EXPECT_EQ(FailureNumberOf([] { GetRowsFirst(1, Variant(int32_t{7}), 0, 5); }),
            kErrRecordsetArguments);
  EXPECT_EQ(FailureNumberOf([] { GetRowsFirst(1, Variant("first"), 0, 5); }),
            kErrRecordsetArguments);
  EXPECT_EQ(FailureNumberOf([] { GetRowsFirst(0, Variant(), 0, 5); }), kErrRecordsetArguments);
  EXPECT_EQ(FailureNumberOf([] { GetRowsFirst(-2, Variant(), 0, 5); }), kErrRecordsetArguments);
  EXPECT_EQ(FailureNumberOf([] { GetRowsFirst(1, Variant(), 5, 5); }), kErrNoCurrentRecord);
  EXPECT_EQ(FailureNumberOf([] { GetRowsFirst(1, Variant(kBookmarkLast), 0, 0); }),
            kErrNoCurrentRecord);
}

}  // namespace
}  // namespace tarnsheets
