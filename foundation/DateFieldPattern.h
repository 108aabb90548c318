#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/Date.h"

namespace foundation {

// The dates of plain fields: the general engine's calendar is Julian before the first day, and
// years have more than four digits from the second on.
inline constexpr std::chrono::sys_days plainFieldsStart =
    std::chrono::year(1582) / std::chrono::October / 15;
inline constexpr std::chrono::sys_days plainFieldsEnd =
    std::chrono::year(10000) / std::chrono::January / 1;

/// A date pattern of plain fields, read and written without the general engine: numbers (yyyy yy
/// MM dd d HH mm ss SSS), English names (MMM EEE EEEE), the zone GMT at the end (zzz ZZZ) and
/// literals.
///
/// What it reads is what the engine would read. Where that is in doubt it reads nothing, and the
/// engine decides. Immutable.
class DateFieldPattern {
 public:
  /// Nothing when the pattern has fields of other kinds or a quote without a partner.
  static std::unique_ptr<const DateFieldPattern> parse(std::string_view pattern);

  /// Whether the pattern tells a zone, so that it serves for GMT only.
  bool hasZone() const;

  /// Appends the text of a date from `plainFieldsStart` to before `plainFieldsEnd`.
  void append(std::string& output, Date date) const;

  /// The date of a `text` whose fields have their usual widths and spellings (a blank may be a run
  /// of them) and fit each other; a year of two digits is the one in the hundred years from
  /// `twoDigitStart` on.
  std::optional<Date> read(std::string_view text, Date twoDigitStart) const;

 private:
  enum class Field : std::uint8_t {
    year,
    month,
    day,
    hour,
    minute,
    second,
    millisecond,
    shortYear,
    plainDay,
    monthName,
    weekday,
    weekdayName,
    zoneName,
    zoneOffset,
    literal
  };
  struct Token {
    Field field;
    char text;
  };
  struct Reading;

  static std::size_t readToken(Token token, std::string_view text, Reading& reading);

  std::vector<Token> tokens_;
};

}  // namespace foundation
