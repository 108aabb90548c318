#include <cstdint>
#include <cstdlib>

#include "ZCommons/Text/NSDateUtils.h"
#include "foundation/Data.h"
#include "foundation/DateFormatter.h"

using foundation::Date;
using foundation::DateFormatter;
using foundation::TimeZone;

// Each parser reads what the general engine alone reads (EE, ZZ and zz mean what EEE, ZZZ and zzz
// mean, but only to the engine), and its dates come back from their own texts.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  static const DateFormatter sqlite("yyyy-MM-dd HH:mm:ss ZZ", TimeZone::GMT);
  static const DateFormatter http[] = {{"EE, dd MMM yyyy HH:mm:ss zz", TimeZone::GMT},
                                       {"EE MMM d HH:mm:ss yyyy", TimeZone::GMT}};
  if (length > 64) return 0;
  const std::string text(foundation::textOf({bytes, length}));

  const auto stored = NSDateUtils::dateWithSQliteString(text);
  if (stored != sqlite.dateFromString(text + " +0000")) std::abort();

  const auto iso = NSDateUtils::dateWithISO8601String(text);
  if (iso && *iso > Date() && *iso < foundation::distantFuture &&
      NSDateUtils::dateWithISO8601String(NSDateUtils::iso8601String(*iso)) != iso) {
    std::abort();
  }

  const auto header = NSDateUtils::parseHttpDateFromString(text);
  for (const DateFormatter& formatter : http) {
    const auto byEngine = formatter.dateFromString(text);
    if (byEngine && header != byEngine) std::abort();
  }
  if (header && *header > Date() && *header < foundation::distantFuture &&
      NSDateUtils::parseHttpDateFromString(NSDateUtils::formatHttpDate(header)) != header) {
    std::abort();
  }
  return 0;
}
