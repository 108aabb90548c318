#pragma once

#include <memory>
#include <string>
#include <vector>

#include "foundation/Mutex.h"
#include "logging/DDAbstractLogger.h"
#include "logging/DDLog.h"

namespace support {

/// A logger that keeps its messages.
class RecordingLogger : public DDAbstractLogger {
 public:
  /// A logger that is registered already.
  static std::shared_ptr<RecordingLogger> add(std::uint32_t logLevel = DDLogLevel::verbose) {
    auto logger = std::make_shared<RecordingLogger>(Key());
    DDLog::addLogger(logger, logLevel);
    return logger;
  }

  explicit RecordingLogger(Key) {}

  void logMessage(const DDLogMessage& message) override {
    foundation::MutexLock lock(mutex_);
    messages_.push_back(message);
  }

  /// The messages so far, those that still wait included.
  std::vector<DDLogMessage> messages() {
    DDLog::flushLog();
    foundation::MutexLock lock(mutex_);
    return messages_;
  }

  /// Each message as its flag, a blank, and its text: "4 (ZCFFileUtils) Delete …".
  std::vector<std::string> lines() {
    std::vector<std::string> lines;
    for (const DDLogMessage& message : messages()) {
      lines.push_back(std::to_string(message.logFlag()) + " " + message.logMsg());
    }
    return lines;
  }

  /// Each message as its flag, its line number and its text: "2 191 (ZCFFileUtils) Error …".
  std::vector<std::string> numberedLines() {
    std::vector<std::string> lines;
    for (const DDLogMessage& message : messages()) {
      lines.push_back(std::to_string(message.logFlag()) + " " +
                      std::to_string(message.lineNumber()) + " " + message.logMsg());
    }
    return lines;
  }

 private:
  foundation::Mutex mutex_;
  std::vector<DDLogMessage> messages_ ZARVO_GUARDED_BY(mutex_);
};

}  // namespace support
