#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/Date.h"

namespace foundation {

/// The zone that a date's fields are told in. `local` is the process's zone at first use.
enum class TimeZone { GMT, local };

class DateFieldPattern;

/// Turns dates into text and back by a pattern (Unicode TR 35 date fields), in the POSIX English
/// locale, whatever the process's locale is.
///
/// Parsing is strict: month 13, 30 February, hour 24 or text left over yield nothing. A quote
/// without a partner at the end of a pattern is ignored. The calendar is Julian before 15 October
/// 1582. Patterns of plain fields (yyyy yy MM MMM dd d EEE EEEE HH mm ss SSS, at the end zzz or ZZZ
/// in GMT) and literals are written, and usual texts read, without the general engine.
///
/// Immutable; any number of threads may use one at once.
///
///     DateFormatter("yyyy-MM-dd", TimeZone::GMT).stringFromDate(date);   // 2024-03-09
class DateFormatter {
 public:
  DateFormatter(std::string_view pattern, TimeZone zone);
  ~DateFormatter();
  DateFormatter(const DateFormatter&) = delete;
  DateFormatter& operator=(const DateFormatter&) = delete;

  /// The date's text; milliseconds are cut, not rounded.
  std::string stringFromDate(Date date) const;

  /// As `stringFromDate`, appended to `output`.
  void appendStringFromDate(std::string& output, Date date) const;

  /// Where the window of two-digit years starts unless a caller knows better: 1950.
  static constexpr Date usualTwoDigitStart =
      std::chrono::sys_days(std::chrono::year(1950) / std::chrono::January / 1);

  /// The date that the whole of `text` tells; nothing when it does not follow the pattern, or is
  /// longer than 1024 bytes. Fields that the pattern lacks are those of 1970-01-01 00:00. A year of
  /// two digits, where the pattern is "yy", lies in the hundred years from `twoDigitStart` on.
  std::optional<Date> dateFromString(std::string_view text,
                                     Date twoDigitStart = usualTwoDigitStart) const;

  /// As `dateFromString` for a text as `stringFromDate` writes it, but that a blank may be several.
  /// Never runs the general engine; nothing for a text or a pattern that would need it.
  std::optional<Date> dateFromPlainString(std::string_view text,
                                          Date twoDigitStart = usualTwoDigitStart) const;

 private:
  class Engine;

  const Engine& engine() const;

  const std::string pattern_;
  const TimeZone zone_;
  std::unique_ptr<const DateFieldPattern> fields_;  // null when the pattern needs the engine
  mutable std::once_flag engineOnce_;
  mutable std::unique_ptr<const Engine> engine_;  // made on first use
};

}  // namespace foundation
