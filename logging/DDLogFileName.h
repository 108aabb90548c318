#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "foundation/Date.h"

/// How log files are named: the application name, a blank, the date of creation in GMT and ".log",
/// "com.zarvo.Zarvo 2024-03-09 14-05.log". A counter from 2 on, after a blank behind the date,
/// tells files of one minute apart. Thread safety: any thread.
class DDLogFileName {
 public:
  DDLogFileName() = delete;

  /// Pattern of the date, whose unmatched quote counts for nothing; in GMT.
  static constexpr std::string_view datePattern = "yyyy'-'MM'-'dd' 'HH'-'mm'";

  /// The running program's bundle identifier, else its process name; the same for the life of the
  /// process.
  static const std::string& applicationName();

  static std::string nameForDate(foundation::Date date);

  /// The name with a counter: a blank and `attempt` in front of the extension, or at the end of a
  /// name that has none.
  static std::string nameForAttempt(std::string_view name, unsigned long attempt);

  /// The date that a name tells, to the minute; nothing when it is not the name of a log file of
  /// this application.
  static std::optional<foundation::Date> date(std::string_view name);
};
