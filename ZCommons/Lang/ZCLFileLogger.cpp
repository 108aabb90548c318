#include "ZCommons/Lang/ZCLFileLogger.h"

#include <utility>

std::shared_ptr<ZCLFileLogger> ZCLFileLogger::initWithLogFileManager(
    std::shared_ptr<DDLogFileManager> logFileManager) {
  return std::make_shared<ZCLFileLogger>(Key(), std::move(logFileManager));
}

void ZCLFileLogger::flush() {
  try {
    const platform::FileHandle* const file = currentLogFileHandle();
    if (file) static_cast<void>(file->synchronize());
  } catch (...) {
    // A log that cannot reach the disk has nobody to tell.
  }
}
