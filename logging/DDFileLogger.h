#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "foundation/Date.h"
#include "logging/DDAbstractLogger.h"
#include "logging/DDLogFileManager.h"
#include "platform/FileHandle.h"
#include "platform/FileWatch.h"
#include "platform/Timer.h"

/// A logger that writes lines to a file, and goes on in a new one when the file has grown too large
/// or too old, was deleted or renamed, or on request.
///
/// A line is in the file, with one write, when `logMessage` returns; a line that does not fit on
/// the disk is left out as a whole. A file that could not be made or opened makes every further
/// line vanish; the next start tries another one. Files are opened for appending, and never through
/// a link. Lines that others append to the file do not count towards its size.
///
/// The file logger closes a file by marking it as archived, see `DDLogFileInfo`. A file of an
/// earlier run that is not archived, nor too large or too old, is gone on with.
///
/// Failures are written to the console, failures to write a line at most ten times in the life of
/// the process. Thread safety: any thread, except where it says "on the logger's queue".
///
///     const auto logger = DDFileLogger::initWithLogFileManager(
///         DDLogFileManagerDefault::initWithLogsDirectory("/var/log/example"));
///     logger->setRollingFrequency(3600);
///     DDLog::addLogger(logger);
class DDFileLogger : public DDAbstractLogger {
 public:
  /// A logger with a manager of the default folder.
  static std::shared_ptr<DDFileLogger> init();

  /// initWithLogFileManager:
  ///
  /// Raises NSInvalidArgumentException ("logFileManager") for null. Starts with 1 MiB, one day, and
  /// a `DDLogFileFormatterDefault`; touches no file before the first message.
  static std::shared_ptr<DDFileLogger> initWithLogFileManager(
      std::shared_ptr<DDLogFileManager> logFileManager);

  DDFileLogger(Key, std::shared_ptr<DDLogFileManager> logFileManager);
  ~DDFileLogger() override;

  /// From which size in bytes on a file is closed, tested after each line; 0 for no limit. Reading
  /// waits for the messages logged before; setting takes effect after them.
  std::uint64_t maximumFileSize();
  void setMaximumFileSize(std::uint64_t size);

  /// From which age in seconds on a file is closed; 0 or less for no limit. As `maximumFileSize`.
  foundation::TimeInterval rollingFrequency();
  void setRollingFrequency(foundation::TimeInterval frequency);

  /// Closes the file after the messages logged before; on the logger's queue at once. The next
  /// message makes a new one.
  void rollLogFile();

  /// rollLogFileWithCompletionBlock:
  ///
  /// As `rollLogFile`; `completion` is queued on the main queue afterwards, whether or not there
  /// was a file. May be empty.
  void rollLogFileWithCompletionBlock(platform::Block completion);

  const std::shared_ptr<DDLogFileManager>& logFileManager() const { return logFileManager_; }

  void logMessage(const DDLogMessage& message) override;

  /// Closes the file.
  void willRemoveLogger() override;

  /// "cocoa.quillwort.fileLogger"
  std::optional<std::string> loggerName() override;

 protected:
  /// Facts of the file being written; chooses or makes one when there is none. On the logger's
  /// queue.
  const std::shared_ptr<DDLogFileInfo>& currentLogFileInfo();

  /// The file being written, opened when it is not; null when it cannot be. On the logger's queue.
  const platform::FileHandle* currentLogFileHandle();

 private:
  std::weak_ptr<DDFileLogger> weakSelf();
  bool canBeReused(DDLogFileInfo& info) const;
  void watchCurrentLogFile();
  void writeLine(foundation::DataView line);
  void rollLogFileNow();
  void maybeRollLogFileDueToAge();
  void maybeRollLogFileDueToSize();
  void scheduleTimerToRollLogFileDueToAge();

  static constexpr std::uint64_t defaultMaximumFileSize = 1024 * 1024;
  static constexpr foundation::TimeInterval defaultRollingFrequency = 24 * 60 * 60;

  // All but the manager are touched on the logger's queue only.
  const std::shared_ptr<DDLogFileManager> logFileManager_;
  std::shared_ptr<DDLogFileInfo> currentLogFileInfo_;
  platform::FileHandle currentLogFileHandle_;
  std::uint64_t currentLogFileSize_ = 0;  // where the open file ended, and what was written since
  std::unique_ptr<platform::FileWatch> currentLogFileVnode_;
  platform::TimerRef rollingTimer_;
  std::uint64_t maximumFileSize_ = defaultMaximumFileSize;
  foundation::TimeInterval rollingFrequency_ = defaultRollingFrequency;
  std::string line_;  // kept from line to line for its storage
};
