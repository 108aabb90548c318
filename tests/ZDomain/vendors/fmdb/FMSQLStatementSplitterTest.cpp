#include <random>

#include <gmock/gmock.h>

#include "ZDomain/vendors/fmdb/FMSQLStatementSplitter.h"
#include "tests/support/RecordingConsole.h"
#include "tests/support/StatementWalk.h"

namespace {

std::vector<std::string> split(std::string_view text) {
  std::vector<std::string> statements;
  const auto& splitter = FMSQLStatementSplitter::sharedInstance();
  for (const FMSplittedStatement& statement : splitter.statementsFromBatchSqlStatement(text)) {
    statements.emplace_back(statement.statementString());
  }
  return statements;
}

}  // namespace

TEST(FMSQLStatementSplitter, CutsOutsideOfQuotes) {
  const std::pair<std::string, std::vector<std::string>> rows[] = {
      {"", {}},
      {" ;; ", {" ;", ";", " "}},
      {R"('it\';s';x)", {R"('it\';s';)", "x"}},
      {R"('\\';x)", {R"('\\';)", "x"}},
      {"\"a;b\" `c;d`;e", {"\"a;b\" `c;d`;", "e"}},
      {"'abc; def", {"'abc;", " def"}},
      {"a\\';b';c", {"a\\';b';", "c"}},
      {"\xFF;'\xC3;'\\\xE2\x82;", {"\xFF;", "'\xC3;'\\\xE2\x82;"}},
  };
  for (const auto& [text, statements] : rows) EXPECT_EQ(split(text), statements) << text;
}

TEST(FMSQLStatementSplitter, CutsAsItsRecognisers) {
  const std::string pieces[] = {"'", "\"", "`", ";", "\\", "a", "\u00E4", "\xC3", "        "};
  std::mt19937 random(1);
  for (int i = 0; i < 20000; ++i) {
    const std::size_t variety = 2 + random() % (std::size(pieces) - 1);
    std::string text;
    for (auto count = random() % 150; count > 0; --count) text += pieces[random() % variety];
    ASSERT_TRUE(std::ranges::equal(split(text), support::statementsByRecognisers(text))) << text;
  }
}

// With work that grows as the square of the length these would take hours.
TEST(FMSQLStatementSplitter, IsLinearInWhateverItIsGiven) {
  for (const std::string piece : {"'", "\\", "'\\", "\\'", "'\"`", "\"\\`\\'\\", "\\;'"}) {
    std::string text = "'";
    while (text.size() < 3'000'000) text += piece;
    EXPECT_FALSE(split(text).empty()) << piece;
  }
}

TEST(FMSQLStatementSplitter, PassesItsSelfTest) {
  const support::RecordingConsole console;
  FMSQLStatementSplitter::test();
  std::vector<std::string> lines = console.lines();
  EXPECT_THAT(lines[0], testing::StartsWith("FMSQLStatementSplitter test with parsed result: ("));
  std::vector<std::string> expected(8, "statement check successed : 1");
  lines[0] = expected[0] = "";
  expected[1] = "statement count :6 expected 6.";
  EXPECT_EQ(lines, expected);
}
