#pragma once

#include <memory>
#include <optional>
#include <string>

#include "logging/DDLogFormatter.h"
#include "platform/Queue.h"

class DDLogMessage;

/// Something that writes messages; `DDLog::addLogger` registers it. Most loggers derive from
/// `DDAbstractLogger`.
///
/// What is optional does nothing here, which is the same as not offering it. An exception that
/// leaves an operation is written to the console and goes no further.
class DDLogger {
 public:
  virtual ~DDLogger() = default;

  /// Writes one message. Always called on the logger's queue.
  virtual void logMessage(const DDLogMessage& message) = 0;

  /// The formatter; null when the message texts are written as they are.
  virtual std::shared_ptr<DDLogFormatter> logFormatter() = 0;
  virtual void setLogFormatter(std::shared_ptr<DDLogFormatter> formatter) = 0;

  /// Called on the logger's queue after the logger was registered (optional).
  virtual void didAddLogger() {}

  /// Called on the logger's queue when the logger is being removed (optional).
  virtual void willRemoveLogger() {}

  /// Writes out what is buffered; called on the logger's queue (optional).
  virtual void flush() {}

  /// The serial queue that the logger is called on; null to be given one (optional).
  virtual platform::QueueRef loggerQueue() { return nullptr; }

  /// Label of the queue that a logger without one is given (optional).
  virtual std::optional<std::string> loggerName() { return std::nullopt; }
};
