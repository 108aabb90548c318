#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "ZDomain/vendors/fmdb/FMSplittedStatement.h"
#include "ZDomain/vendors/fmdb/FMStatementAutomaton.h"
#include "ZDomain/vendors/fmdb/FMStatementRecogniser.h"

/// Cuts a text that holds several SQL statements at each ";" that stands outside of quotes.
///
/// Quoted parts begin and end with ', " or `, and a backslash in them takes the next character's
/// meaning away. A quote without its end quotes nothing. Comments are not known.
///
/// There is one splitter, which lives until the process ends. Thread safety: any number of threads
/// may split at once.
///
///     const auto& splitter = FMSQLStatementSplitter::sharedInstance();
///     for (const auto& statement : splitter.statementsFromBatchSqlStatement(sql)) {
///       database->executeUpdate(statement.statementString());
///     }
class FMSQLStatementSplitter {
 public:
  using Recognisers = std::vector<std::shared_ptr<const FMStatementRecogniser>>;

  static const FMSQLStatementSplitter& sharedInstance();

  FMSQLStatementSplitter(const FMSQLStatementSplitter&) = delete;
  FMSQLStatementSplitter& operator=(const FMSQLStatementSplitter&) = delete;

  /// The statements of `batchSqlStatement`, in order; joined together they are the text, byte by
  /// byte.
  ///
  /// Each has its ";" at its end, and in front whatever stands behind the ";" before. What follows
  /// the last ";", blanks included, is the last statement. An empty text has none. The bytes are
  /// never changed, be they UTF-8 or not.
  std::vector<FMSplittedStatement> statementsFromBatchSqlStatement(
      std::string_view batchSqlStatement) const;

  /// What is recognised, the first that matches first; the last one ends statements.
  const Recognisers& tokenRecognisers() const { return tokenRecognisers_; }

  /// Splits samples, and writes to the console what came out and whether it is right.
  static void test();

 private:
  FMSQLStatementSplitter();

  const Recognisers tokenRecognisers_;
  const FMStatementAutomaton automaton_;
};
