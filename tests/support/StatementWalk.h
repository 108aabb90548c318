#pragma once

#include <algorithm>
#include <string_view>
#include <vector>

#include "ZDomain/vendors/fmdb/FMSQLStatementSplitter.h"

namespace support {

/// The statements of `text`, cut by trying the splitter's recognisers one after the other at every
/// place: slow, and what the splitter has to agree with.
inline std::vector<std::string_view> statementsByRecognisers(std::string_view text) {
  const auto& recognisers = FMSQLStatementSplitter::sharedInstance().tokenRecognisers();
  std::vector<std::string_view> statements;
  std::size_t start = 0;
  for (std::size_t position = 0; position < text.size();) {
    const auto winner = std::ranges::find_if(recognisers, [&](const auto& recogniser) {
      return recogniser->recogniseRangeWithScanner(FMStatementScanner(text), position).length > 0;
    });
    if (winner == recognisers.end()) ++position;
    if (winner != recognisers.begin() + 3) continue;
    statements.push_back(text.substr(start, position - start));
    start = position;
  }
  if (start < text.size()) statements.push_back(text.substr(start));
  return statements;
}

}  // namespace support
