#include "ZDomain/vendors/fmdb/FMSQLStatementSplitter.h"

#include <algorithm>
#include <string>

#include "ZDomain/vendors/fmdb/FMStatementKeywordRecogniser.h"
#include "ZDomain/vendors/fmdb/FMStatementQuotedRecogniser.h"
#include "foundation/Value.h"
#include "platform/Console.h"

namespace {

std::shared_ptr<const FMStatementRecogniser> quotes(const char* quote, const char* name,
                                                    bool shouldQuoteEscapeSequence) {
  auto recogniser =
      FMStatementQuotedRecogniser::quotedRecogniserWithStartQuote(quote, quote, "\\", name);
  recogniser->setShouldQuoteEscapeSequence(shouldQuoteEscapeSequence);
  return recogniser;
}

// The odd name is part of the contract.
FMSQLStatementSplitter::Recognisers makeRecognisers() {
  return {quotes("'", "SingleQuote", true), quotes("\"", "DoubleQuote", false),
          quotes("`", "SqlashQuote", false),
          FMStatementKeywordRecogniser::recogniserForKeyword(";")};
}

constexpr std::string_view samples[] = {
    "SELECT TABLE IF EXISTS ';' `web_offline_track`;",
    R"(select TABLE IF NOT EXISTS `web_offline_track` (
`track_id` INTEGER NOT NULL, `album_id` INTEGER, `artist_id` INTEGER, `name` TEXT DEFAULT ";",
`file_name` TEXT, `relative;_path` TEXT, `duration` REAL DEFAULT 0, `bitrate` INTEGER,
`size` INTEGER, `md5` TEXT, `cover` BLOB, `lyric` TEXT, `genre` TEXT, `year` INTEGER,
`track_number` INTEGER, `play_count` INTEGER DEFAULT 0, `download_state` INTEGER DEFAULT 0,
`download_time` REAL, `last_play_time` REAL, `extra_info` TEXT,
PRIMARY KEY (`track_id`));)",
    "create TABLE select IF EXISTS `web_playl;ist_order`;",
    R"(select TABLE IF NOT EXISTS `web_playlist_order` (`playlist_id` INTEGER NOT NULL,
`track_id` INTEGER NOT NULL, `order_index` INTEGER, PRIMARY KEY (`playlist_id`, `track_id`));)",
    R"('\\';)",
    "'blah blah",
};

foundation::Array descriptions(const std::vector<FMSplittedStatement>& statements) {
  foundation::Array result;
  for (const FMSplittedStatement& statement : statements) result.push_back(statement.description());
  return result;
}

}  // namespace

FMSQLStatementSplitter::FMSQLStatementSplitter()
    : tokenRecognisers_(makeRecognisers()), automaton_(tokenRecognisers_) {}

const FMSQLStatementSplitter& FMSQLStatementSplitter::sharedInstance() {
  static const FMSQLStatementSplitter& instance = *new FMSQLStatementSplitter();
  return instance;
}

std::vector<FMSplittedStatement> FMSQLStatementSplitter::statementsFromBatchSqlStatement(
    std::string_view batchSqlStatement) const {
  std::vector<std::size_t> ends = automaton_.statementEnds(batchSqlStatement);
  const std::size_t lastEnd = ends.empty() ? 0 : ends.back();
  if (lastEnd < batchSqlStatement.size()) ends.push_back(batchSqlStatement.size());
  const auto batch = std::make_shared<const std::string>(batchSqlStatement);
  std::vector<FMSplittedStatement> statements;
  statements.reserve(ends.size());
  std::size_t start = 0;
  for (const std::size_t end : ends) {
    statements.emplace_back(batch, std::string_view(*batch).substr(start, end - start));
    start = end;
  }
  return statements;
}

void FMSQLStatementSplitter::test() {
  using platform::Console;
  std::string batch;
  for (const std::string_view sample : samples) batch += sample;
  const auto statements = sharedInstance().statementsFromBatchSqlStatement(batch);
  Console::log("%@ test with parsed result: %@", "FMSQLStatementSplitter",
               foundation::Value(descriptions(statements)));
  Console::log("statement count :%lu expected %lu.", statements.size(), std::size(samples));
  const std::size_t checked = std::min(statements.size(), std::size(samples));
  for (std::size_t i = 0; i < checked; ++i) {
    Console::log("statement check successed : %d", samples[i] == statements[i].statementString());
  }
}
