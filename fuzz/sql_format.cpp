#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "ZDomain/vendors/fmdb/FMDatabase.h"
#include "foundation/Data.h"

// Any format, with arguments of every kind in turn: one "?" more for each object, and never more
// text than the "NULL"s of missing arguments add.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  const std::string_view format = foundation::textOf({bytes, length});
  const FMArgument arguments[] = {1,
                                  "text",
                                  nullptr,
                                  2.5,
                                  foundation::Null(),
                                  'c',
                                  3U,
                                  4LL,
                                  5ULL,
                                  6.5f,
                                  true,
                                  foundation::Date(),
                                  foundation::dataOf(format)};
  FMArgumentList list(arguments);
  std::string sql;
  foundation::Array objects;
  FMDatabase::extractSQL(format, list, sql, objects);
  const auto marks = std::count(sql.begin(), sql.end(), '?');
  const auto literal = std::count(format.begin(), format.end(), '?');
  if (marks != literal + static_cast<std::ptrdiff_t>(objects.size())) std::abort();
  if (sql.size() > 2 * format.size()) std::abort();
  return 0;
}
