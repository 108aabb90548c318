#include <cstdint>
#include <cstdlib>

#include "foundation/Data.h"
#include "tests/support/StatementWalk.h"

// The statements joined are the input, and are those that the recognisers find one by one.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  const std::string_view text = foundation::textOf({bytes, length});
  const auto& splitter = FMSQLStatementSplitter::sharedInstance();
  const auto statements = splitter.statementsFromBatchSqlStatement(text);
  const auto expected = support::statementsByRecognisers(text);
  std::string joined;
  for (const FMSplittedStatement& statement : statements) joined += statement.statementString();
  const auto isSame = [](const FMSplittedStatement& statement, std::string_view other) {
    return statement.statementString() == other;
  };
  if (joined != text || !std::ranges::equal(statements, expected, isSame)) std::abort();
  return 0;
}
