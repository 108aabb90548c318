#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "logging/DDLogger.h"

/// The dispatcher's record of one registered logger.
struct DDLoggerNode {
  /// nodeWithLogger:loggerQueue:logLevel:
  static DDLoggerNode nodeWithLogger(std::shared_ptr<DDLogger> logger,
                                     platform::QueueRef loggerQueue, std::uint32_t logLevel) {
    return {std::move(logger), std::move(loggerQueue), logLevel};
  }

  std::shared_ptr<DDLogger> logger;
  platform::QueueRef loggerQueue;  ///< where the logger is called
  std::uint32_t logLevel;          ///< mask of the flags that the logger gets
};
