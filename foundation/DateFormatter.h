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

/// Turns dates into text and back by a pattern (Unicode TR 35 date fields), in the POSIX English
/// locale, whatever the process's locale is.
///
/// Parsing is strict: month 13, 30 February, hour 24 or text left over yield nothing. A quote
/// without a partner at the end of a pattern is ignored. Patterns of numeric fields alone (yyyy MM
/// dd HH mm ss SSS) are formatted without the general engine.
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

  /// The date that the whole of `text` tells; nothing when it does not follow the pattern. Fields
  /// that the pattern lacks are those of 1970-01-01 00:00.
  std::optional<Date> dateFromString(std::string_view text) const;

 private:
  class FieldPattern;
  class Engine;

  const Engine& engine() const;

  const std::string pattern_;
  const TimeZone zone_;
  const std::unique_ptr<const FieldPattern> fields_;  // null when the pattern needs the engine
  mutable std::once_flag engineOnce_;
  mutable std::unique_ptr<const Engine> engine_;  // made on first use
};

}  // namespace foundation
