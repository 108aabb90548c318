#pragma once

#include <memory>

#include "logging/DDFileLogger.h"

/// A file logger whose flush brings what was written to the disk.
class ZCLFileLogger : public DDFileLogger {
 public:
  /// initWithLogFileManager:
  ///
  /// As `DDFileLogger::initWithLogFileManager`.
  static std::shared_ptr<ZCLFileLogger> initWithLogFileManager(
      std::shared_ptr<DDLogFileManager> logFileManager);

  using DDFileLogger::DDFileLogger;

  /// Waits until the file is on the disk, opening one when there is none. Failures are silent. On
  /// the logger's queue.
  void flush() override;
};
