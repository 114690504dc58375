// Text conditions of query by example on a SQLite table match exactly the records that the
// memory source's rules (QueryCondition of value_text.h) match: a prefix without regard to case,
// '*' and '?' as wildcards, every other character (SQL's wildcards and brackets too) standing for
// itself, and stored bytes that are no valid UTF-8 read as the memory source reads them (each
// invalid byte one character that matches only itself, as utf8.h says).
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "datasources/common/data_source_contract_test.h"
#include "datasources/common/value_text.h"
#include "datasources/sqlite/sqlite_data_source.h"
#include "datasources/sqlite/sqlite_test_support.h"

namespace tarnsheets {
namespace {

using sqlite_test::Connection;
using sqlite_test::NewDatabasePath;
using sqlite_test::OpenTestSource;
using Ids = std::vector<int>;

class TextConditionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    path_ = NewDatabasePath("text_conditions");
    Connection c(path_);
    c.Exec(
        "CREATE TABLE Names (ID INTEGER PRIMARY KEY, F_NAME TEXT);"
        "INSERT INTO Names VALUES (1, 'Alpha'), (2, 'ALPHABET'), (3, 'alps'), (4, 'Gamma'),"
        "(5, 'ÄRGER'), (6, 'ärgerlich'), (7, 'ΑΘΗΝΑ'), (8, 'МОСКВА'), (9, 'ŁÓDŹ'),"
        "(10, '北京办事处'), (11, '[x] box'), (12, '50% off'), (13, 'a_b'), (14, 'what?'),"
        "(15, 'whats up'), (16, 'star*'), (17, 'start'), (18, ']close'), (19, '^caret'),"
        "(20, NULL), (21, ''), (22, CAST(X'C181' AS TEXT) || 'pple'),"
        "(23, CAST(X'C9' AS TEXT) || 'tude'), (24, 'Étude'), (25, 42), (26, 'a''quote');");
    ds_ = OpenTestSource(path_, "Names", &dialogs_);
  }
  // The IDs of the records that the source shows for `condition` on F_NAME, in order.
  Ids Query(const std::string& condition) {
    EXPECT_FALSE(ds_->NewQuery());
    EXPECT_FALSE(ds_->SetFieldValue(Variant("F_NAME"), Variant(condition))) << condition;
    EXPECT_FALSE(ds_->ExecuteQuery()) << condition;
    Ids ids;
    if (ds_->RecordCount() > 0 && !ds_->MoveFirst()) {
      do {
        ids.push_back(ds_->Fields(Variant("ID")).Value(0).ToLong());
      } while (!ds_->MoveNext());
    }
    EXPECT_EQ(static_cast<size_t>(ds_->RecordCount()), ids.size()) << condition;
    return ids;
  }
  // The IDs that QueryCondition matches for `condition` on the stored names, as text.
  Ids Reference(const std::string& condition) {
    QueryCondition parsed;
    std::string reason;
    EXPECT_TRUE(
        QueryCondition::Parse(condition, FieldShape{kDataTypeText, 0, 0}, {}, &parsed, &reason))
        << reason;
    Connection c(path_);
    Statement s(c.get(), "SELECT ID, F_NAME FROM Names ORDER BY ID", "test query");
    Ids ids;
    while (sqlite3_step(s.get()) == SQLITE_ROW) {
      if (sqlite3_column_type(s.get(), 1) == SQLITE_NULL) {
        EXPECT_FALSE(parsed.Matches(Variant::Null()));
        continue;
      }
      const char* text = reinterpret_cast<const char*>(sqlite3_column_text(s.get(), 1));
      const std::string name(text, static_cast<size_t>(sqlite3_column_bytes(s.get(), 1)));
      if (parsed.Matches(Variant(name))) ids.push_back(sqlite3_column_int(s.get(), 0));
    }
    return ids;
  }
  // The first column of `sql` run on the source's own connection, as text ("NULL" for Null).
  std::string OnSourceConnection(const std::string& sql) {
    Statement s(ds_->ConnectionForTest(), sql, "test query");
    if (sqlite3_step(s.get()) != SQLITE_ROW) return "";
    if (sqlite3_column_type(s.get(), 0) == SQLITE_NULL) return "NULL";
    return std::string(reinterpret_cast<const char*>(sqlite3_column_text(s.get(), 0)),
                       static_cast<size_t>(sqlite3_column_bytes(s.get(), 0)));
  }

  std::string path_;
  RecordingDialogs dialogs_;
  std::unique_ptr<SqliteDataSource> ds_;
};

TEST_F(TextConditionTest, AsciiConditionIsAPrefixWithoutRegardToCase) {
  EXPECT_EQ(Query("alp"), (Ids{1, 2, 3}));
  EXPECT_EQ(Query("ALPHA"), (Ids{1, 2}));
  EXPECT_EQ(Query("Alpha"), (Ids{1, 2}));
  EXPECT_EQ(Query("alphabets"), (Ids{}));
  EXPECT_EQ(Query("lpha"), (Ids{}));  // a prefix, not a part
  EXPECT_EQ(Query("gamma"), (Ids{4}));
  EXPECT_EQ(Query("a'quote"), (Ids{26}));
  EXPECT_EQ(Query("4"), (Ids{25}));  // a number stored in a text column reads as its text
}

TEST_F(TextConditionTest, CapitalsBeyondAsciiFoldToTheirSmallLetters) {
  EXPECT_EQ(Query("ärg"), (Ids{5, 6}));
  EXPECT_EQ(Query("ÄRGERL"), (Ids{6}));
  EXPECT_EQ(Query("αθ"), (Ids{7}));
  EXPECT_EQ(Query("москва"), (Ids{8}));
  EXPECT_EQ(Query("łóDź"), (Ids{9}));
  EXPECT_EQ(Query("北京"), (Ids{10}));
  EXPECT_EQ(Query("ÉTUDE"), (Ids{24}));  // 23 holds the invalid byte C9, which is no É
}

TEST_F(TextConditionTest, StarAndQuestionMarkAreWildcards) {
  EXPECT_EQ(Query("*办事?"), (Ids{10}));
  EXPECT_EQ(Query("a?p"), (Ids{1, 2, 3}));
  EXPECT_EQ(Query("??pple"), (Ids{22}));  // 22 holds two invalid bytes, then "pple"
  EXPECT_EQ(Query("*PH"), (Ids{1, 2}));
  EXPECT_EQ(Query("what?"), (Ids{14, 15}));
  EXPECT_EQ(Query("star*"), (Ids{16, 17}));
  EXPECT_EQ(Query("?*?*?*?*?*?*?*?"), (Ids{2, 6, 15}));  // at least eight characters
}

TEST_F(TextConditionTest, SqlWildcardsAndBracketsTypedInAConditionStandForThemselves) {
  EXPECT_EQ(Query("["), (Ids{11}));
  EXPECT_EQ(Query("[x]"), (Ids{11}));
  EXPECT_EQ(Query("[a-z]"), (Ids{}));
  EXPECT_EQ(Query("[^a]"), (Ids{}));
  EXPECT_EQ(Query("]"), (Ids{18}));
  EXPECT_EQ(Query("^"), (Ids{19}));
  EXPECT_EQ(Query("50%"), (Ids{12}));
  EXPECT_EQ(Query("%"), (Ids{}));
  EXPECT_EQ(Query("a_"), (Ids{13}));
  EXPECT_EQ(Query("_"), (Ids{}));
}

TEST_F(TextConditionTest, NullMatchesNoTextConditionAndAnEmptyTextOnlyAStar) {
  Ids all_but_null;
  for (int id = 1; id <= 26; ++id) {
    if (id != 20) all_but_null.push_back(id);
  }
  EXPECT_EQ(Query("*"), all_but_null);
  Ids all_but_empty = all_but_null;
  std::erase(all_but_empty, 21);
  EXPECT_EQ(Query("?"), all_but_empty);
}

TEST_F(TextConditionTest, BytesThatAreNoValidUtf8MatchAsTheMemorySourceReadsThem) {
  // C1 81 is an overlong form of 'A': two invalid bytes, no letter; each matches itself.
  EXPECT_EQ(Query("apple"), (Ids{}));
  EXPECT_EQ(Query("APP"), (Ids{}));
  EXPECT_EQ(Query("\xC1\x81PPLE"), (Ids{22}));
  // The invalid byte C9 counts as one character and is not the letter U+00C9.
  EXPECT_EQ(Query("?tude"), (Ids{23, 24}));
  EXPECT_EQ(Query("\xC9"), (Ids{23}));
  EXPECT_EQ(Query("\xC3\x89"), (Ids{24}));
}

TEST_F(TextConditionTest, EveryConditionMatchesTheRecordsThatQueryConditionMatches) {
  const char* const conditions[] = {
      "a",     "A",    "al",    "alpha",    "ärger", "Ä",   "α",     "Α",    "м",   "ł",
      "Ł",     "北",   "*",     "?",        "??",    "*a",  "*A*",   "?l*s", "*?",  "[",
      "[x",    "[x]*", "]",     "50% o",    "a_b",   "a_c", "what?", "what", "*t*", "st?r",
      "star*", "^c",   "apple", "\xC1\x81", "é",     "É",   "\xC9",  "4",    "42",  "*2",
      "a'",    "x",    "ΑΘΗΝΑ", "ŁÓDŹ",     "*办事", "**",  "?*?",   "*?*?", "*ö*", "*Ö"};
  for (const char* condition : conditions) {
    EXPECT_EQ(Query(condition), Reference(condition)) << condition;
  }
}

TEST_F(TextConditionTest, FoldFunctionFoldsAsciiAndBeyondAsTheConditionsDo) {
  EXPECT_EQ(OnSourceConnection("SELECT tarn_fold('MiXed ASCII 123')"), "mixed ascii 123");
  EXPECT_EQ(OnSourceConnection("SELECT tarn_fold('already small')"), "already small");
  EXPECT_EQ(OnSourceConnection("SELECT tarn_fold('ÄRGER Ω ŁÓDŹ МОСКВА 北京')"),
            "ärger ω łódź москва 北京");
  EXPECT_EQ(OnSourceConnection("SELECT tarn_fold(NULL)"), "NULL");
  EXPECT_EQ(OnSourceConnection("SELECT tarn_fold(42)"), "42");
  EXPECT_EQ(OnSourceConnection("SELECT tarn_fold('')"), "");
  // An invalid byte stands as it is.
  EXPECT_EQ(OnSourceConnection("SELECT tarn_fold(CAST(X'C9' AS TEXT) || 'TUDE')"), "\xC9tude");
  // Greek with tonos, final sigma, Armenian, Latin Extended Additional and fullwidth Latin fold
  // as title keys do.
  EXPECT_EQ(OnSourceConnection("SELECT tarn_fold('ΆΝΝΑ ΟΔΟΣ Ս Ẁ ＡＢＣ')"), "άννα οδοσ ս ẁ ａｂｃ");
  EXPECT_EQ(OnSourceConnection("SELECT tarn_fold('οδος')"), "οδοσ");
}

}  // namespace
}  // namespace tarnsheets
