#pragma once

#include <optional>
#include <string>

class DDLogMessage;
class DDLogger;

/// Turns messages into the text that a logger writes.
///
/// Every operation is called on the queue of the logger that the formatter was given to; a
/// formatter given to several loggers is called from several threads.
class DDLogFormatter {
 public:
  virtual ~DDLogFormatter() = default;

  /// The text to write for `message`, or nothing to drop it.
  virtual std::optional<std::string> formatLogMessage(const DDLogMessage& message) = 0;

  /// As `formatLogMessage`, appended to `text`; returns false, with `text` as it was, to drop the
  /// message. Loggers call this one; a formatter that can do without a string of its own overrides
  /// it.
  virtual bool appendLogMessage(std::string& text, const DDLogMessage& message) {
    const std::optional<std::string> formatted = formatLogMessage(message);
    if (formatted) text += *formatted;
    return formatted.has_value();
  }

  /// didAddToLogger:, willRemoveFromLogger: (optional)
  ///
  /// Tell that `logger` took the formatter, and that it is about to let go of it.
  virtual void didAddToLogger(DDLogger&) {}
  virtual void willRemoveFromLogger(DDLogger&) {}
};
