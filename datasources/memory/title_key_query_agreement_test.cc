// Title keys and query by example read the same texts alike: a title added under one text is
// found under another exactly when a query by example for each text finds a record holding the
// other, because both fold case by utf8::FoldCodePoint.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "datasources/common/data_source_contract_test.h"
#include "datasources/memory/memory_data_source.h"
#include "tarnsheets/titles.h"

namespace tarnsheets {
namespace {

struct TextPair {
  const char* what;
  const char* stored;  // the title key, and the name in the record
  const char* typed;   // the key looked up, and the query condition
  bool same;
};

constexpr TextPair kPairs[] = {
    {"ASCII", "Alpha", "ALPHA", true},
    {"Greek with tonos", "ΆΝΝΑ", "άννα", true},
    {"Greek final sigma", "ΟΔΟΣ", "οδος", true},
    {"Armenian", "ԱՐԱՄ", "արամ", true},
    {"Latin Extended Additional", "ẀALES", "ẁales", true},
    {"fullwidth Latin", "ＡＢＣ", "ａｂｃ", true},
    {"Deseret", "\U00010400", "\U00010428", true},
    {"CJK unchanged", "北京办事处", "北京办事处", true},
    {"Turkish dotted capital I", "İstanbul", "istanbul", false},
    {"fullwidth is not ASCII", "ＡＢＣ", "abc", false},
    {"an invalid byte is not a letter", "\xC9tude", "étude", false},
    {"an overlong form is not a letter", "\xC1\x81pple", "apple", false},
};

// Whether a title added under `stored` is found under `typed`.
bool TitleFound(const char* stored, const char* typed) {
  RecordingDialogs dialogs;
  ClsSheetsTitles titles(dialogs);
  EXPECT_NE(titles.Add(stored), nullptr) << stored;
  return titles.Item(Variant(std::string(typed))) != nullptr;
}

// Whether a query by example for `typed` finds the one record, holding `stored`.
bool QueryFinds(const char* stored, const char* typed) {
  RecordingDialogs dialogs;
  MemoryDataSource source({{"F_NAME", kDataTypeText, 0, 0, true, ""}}, &dialogs);
  source.AddRow({Variant(std::string(stored))});
  source.Open();
  EXPECT_FALSE(source.NewQuery());
  EXPECT_FALSE(source.SetFieldValue(Variant("F_NAME"), Variant(std::string(typed))));
  EXPECT_FALSE(source.ExecuteQuery());
  return source.RecordCount() == 1;
}

TEST(TitleKeyQueryAgreementTest, TitleKeysFindTheSameTextsAsQueryByExample) {
  for (const TextPair& pair : kPairs) {
    EXPECT_EQ(TitleFound(pair.stored, pair.typed), pair.same) << pair.what;
    EXPECT_EQ(TitleFound(pair.typed, pair.stored), pair.same) << pair.what;
    // A query is a prefix: the texts are the same when each finds the other.
    EXPECT_EQ(QueryFinds(pair.stored, pair.typed) && QueryFinds(pair.typed, pair.stored), pair.same)
        << pair.what;
  }
}

}  // namespace
}  // namespace tarnsheets
