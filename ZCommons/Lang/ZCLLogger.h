#pragma once

#include <cstdint>
#include <memory>

#include "ZCommons/Lang/ZCLFileLogger.h"
#include "foundation/Mutex.h"
#include "foundation/NullableText.h"
#include "foundation/ObserverList.h"

/// Turns logging on for a program: one rolling file logger in the user's logs folder, and the
/// global log level in two settings.
///
/// The global level is 7 (error, warning, info) from the first use on; no line reaches a file
/// before `initLogger`. Lives until the process ends. Thread safety: any thread.
///
///     ZCLLogger::singleton().initLogger("com.example.Product");
///     DDLogInfo(__LINE__, "(%@) Start.", THIS_FILE);
class ZCLLogger {
 public:
  using LogLevelObserver = foundation::ObserverList<foundation::ChangePhase>::Observer;

  /// Levels: normal admits error, warning and info, debug also debug.
  static constexpr std::uint32_t normalLogLevel = 7;
  static constexpr std::uint32_t debugLogLevel = 15;

  /// The one instance.
  static ZCLLogger& singleton();

  ZCLLogger(const ZCLLogger&) = delete;
  ZCLLogger& operator=(const ZCLLogger&) = delete;

  /// initLogger:
  ///
  /// Registers a file logger: files of at most 512,000 bytes and one day, 7 of them kept beside the
  /// one being written. They lie in the folder named `bundleIdentifier` in "Logs" of the user's
  /// Library folder, or of the folder for temporary files when there is no Library; for null in the
  /// default folder of `DDLogFileManagerDefault`. Only the first call does anything.
  void initLogger(foundation::NullableText bundleIdentifier);

  /// 15 when the global level is 15, else 7.
  std::uint32_t logLevel() const;

  /// Starts a new log file, then sets the global level to `level`, any mask of flags.
  ///
  /// Observers are told that the level will change at once, and that it did change when the file
  /// has been rolled and the level set, on the main queue; a program that does not run its main
  /// queue waits for that for ever. Before `initLogger` the level stays as it is.
  void setLogLevel(std::uint32_t level);

  /// Tells the changes of "logLevel".
  [[nodiscard]] foundation::Observation observeLogLevel(LogLevelObserver observer);

  /// Returns once all lines logged before are on the disk.
  void flush();

  /// The file logger; null before `initLogger`.
  std::shared_ptr<ZCLFileLogger> fileLogger() const;

 private:
  ZCLLogger();

  mutable foundation::Mutex mutex_;
  bool initialized_ ZARVO_GUARDED_BY(mutex_) = false;
  std::shared_ptr<ZCLFileLogger> fileLogger_ ZARVO_GUARDED_BY(mutex_);
  foundation::ObserverList<foundation::ChangePhase> logLevelObservers_;
};
