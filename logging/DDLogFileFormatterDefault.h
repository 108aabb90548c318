#pragma once

#include "foundation/DateFormatter.h"
#include "logging/DDLogFormatter.h"

/// The line format of log files: the local time "2024/03/09 14:05:07:123", two blanks, and the
/// message's text. Never drops a message. Immutable; may serve any number of loggers.
class DDLogFileFormatterDefault : public DDLogFormatter {
 public:
  DDLogFileFormatterDefault();

  std::optional<std::string> formatLogMessage(const DDLogMessage& message) override;
  bool appendLogMessage(std::string& text, const DDLogMessage& message) override;

 private:
  const foundation::DateFormatter dateFormatter_;
};
