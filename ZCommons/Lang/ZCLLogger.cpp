#include "ZCommons/Lang/ZCLLogger.h"

#include <optional>
#include <string>
#include <utility>

#include "foundation/URL.h"
#include "logging/DDLog.h"
#include "logging/DDLogFileManagerDefault.h"
#include "platform/Folders.h"

using foundation::ChangePhase;
using foundation::NullableText;
using foundation::URL;
using platform::Folders;

namespace {

constexpr foundation::TimeInterval rollingFrequency = 86400;
constexpr std::size_t maximumNumberOfLogFiles = 7;
constexpr std::uint64_t maximumFileSize = 512000;

std::optional<std::string> logsDirectory(NullableText bundleIdentifier) {
  if (bundleIdentifier.isNull()) return std::nullopt;
  Folders& folders = Folders::current();
  const auto library =
      folders.url(platform::SearchPathDirectory::library, platform::SearchPathDomain::user);
  const URL base = library ? *library : folders.temporaryDirectory();
  return std::string(base.URLByAppendingPathComponent("Logs")
                         .URLByAppendingPathComponent(bundleIdentifier.view())
                         .path());
}

}  // namespace

ZCLLogger& ZCLLogger::singleton() {
  static ZCLLogger& logger = *new ZCLLogger;
  return logger;
}

ZCLLogger::ZCLLogger() { DDLog::setGlobalLogLevel(normalLogLevel); }

void ZCLLogger::initLogger(NullableText bundleIdentifier) {
  foundation::MutexLock lock(mutex_);
  if (initialized_) return;
  const auto manager =
      DDLogFileManagerDefault::initWithLogsDirectory(logsDirectory(bundleIdentifier));
  fileLogger_ = ZCLFileLogger::initWithLogFileManager(manager);
  fileLogger_->setRollingFrequency(rollingFrequency);
  manager->setMaximumNumberOfLogFiles(maximumNumberOfLogFiles);
  fileLogger_->setMaximumFileSize(maximumFileSize);
  DDLog::addLogger(fileLogger_);
  initialized_ = true;
}

std::uint32_t ZCLLogger::logLevel() const {
  return DDLog::globalLogLevel() == debugLogLevel ? debugLogLevel : normalLogLevel;
}

void ZCLLogger::setLogLevel(std::uint32_t level) {
  logLevelObservers_.notify(ChangePhase::willChange);
  const std::shared_ptr<ZCLFileLogger> logger = fileLogger();
  if (!logger) return;
  logger->rollLogFileWithCompletionBlock([this, level] {
    DDLog::setGlobalLogLevel(level);
    logLevelObservers_.notify(ChangePhase::didChange);
  });
}

foundation::Observation ZCLLogger::observeLogLevel(LogLevelObserver observer) {
  return logLevelObservers_.add(std::move(observer));
}

void ZCLLogger::flush() { DDLog::flushLog(); }

std::shared_ptr<ZCLFileLogger> ZCLLogger::fileLogger() const {
  foundation::MutexLock lock(mutex_);
  return fileLogger_;
}
