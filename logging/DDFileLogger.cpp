#include "logging/DDFileLogger.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <utility>

#include "foundation/Format.h"
#include "foundation/NSException.h"
#include "logging/DDLogFileFormatterDefault.h"
#include "logging/DDLogFileManagerDefault.h"
#include "logging/DDLogMessage.h"
#include "platform/Console.h"

using foundation::NSGenericException;
using platform::Console;
using platform::FileHandle;
using platform::FileWatch;
using platform::Queue;
using platform::Timer;
namespace FileSystem = platform::FileSystem;

namespace {

constexpr int reportedExceptions = 10;

// Storage of a longer line is not kept for the next.
constexpr std::size_t keptLineCapacity = 64 * 1024;

// Ages beyond this (some 30,000 years) are no more than this: dates have a range.
constexpr foundation::TimeInterval longestAge = 1e12;

constexpr foundation::TimeInterval timerLeeway = 1e-9;

void reportException(std::string_view reason) {
  static constinit std::atomic<std::int32_t> exceptions{0};
  if (exceptions >= reportedExceptions) return;
  const std::int32_t number = ++exceptions;
  if (number > reportedExceptions) return;
  Console::log("DDFileLogger.logMessage: %@", reason);
  if (number < reportedExceptions) return;
  Console::log("DDFileLogger.logMessage: Too many exceptions -- will not log any more of them.");
}

}  // namespace

std::shared_ptr<DDFileLogger> DDFileLogger::init() {
  return initWithLogFileManager(DDLogFileManagerDefault::init());
}

std::shared_ptr<DDFileLogger> DDFileLogger::initWithLogFileManager(
    std::shared_ptr<DDLogFileManager> logFileManager) {
  return std::make_shared<DDFileLogger>(Key(), std::move(logFileManager));
}

DDFileLogger::DDFileLogger(Key, std::shared_ptr<DDLogFileManager> logFileManager)
    : DDAbstractLogger(std::make_shared<DDLogFileFormatterDefault>()),
      logFileManager_(std::move(logFileManager)) {
  if (!logFileManager_) foundation::raiseArgumentException("logFileManager");
}

DDFileLogger::~DDFileLogger() {
  if (currentLogFileHandle_) static_cast<void>(currentLogFileHandle_.synchronize());
}

std::uint64_t DDFileLogger::maximumFileSize() {
  return waitOnLoggerQueue([this] { return maximumFileSize_; });
}

void DDFileLogger::setMaximumFileSize(std::uint64_t size) {
  performOnLoggerQueue([self = shared_from_this(), this, size] {
    maximumFileSize_ = size;
    maybeRollLogFileDueToSize();
  });
}

foundation::TimeInterval DDFileLogger::rollingFrequency() {
  return waitOnLoggerQueue([this] { return rollingFrequency_; });
}

void DDFileLogger::setRollingFrequency(foundation::TimeInterval frequency) {
  performOnLoggerQueue([self = shared_from_this(), this, frequency] {
    rollingFrequency_ = frequency;
    maybeRollLogFileDueToAge();
  });
}

void DDFileLogger::rollLogFile() { rollLogFileWithCompletionBlock(nullptr); }

void DDFileLogger::rollLogFileWithCompletionBlock(platform::Block completion) {
  auto roll = [self = shared_from_this(), this, after = std::move(completion)]() mutable {
    rollLogFileNow();
    if (after) Queue::mainQueue()->async(std::move(after));
  };
  if (isOnInternalLoggerQueue()) return roll();
  performOnLoggerQueue(std::move(roll));
}

void DDFileLogger::logMessage(const DDLogMessage& message) {
  line_.clear();
  if (!formatter()) {
    line_ = message.logMsg();
  } else if (!formatter()->appendLogMessage(line_, message)) {
    return;
  }
  if (!line_.ends_with('\n')) line_ += '\n';
  try {
    writeLine(foundation::dataOf(line_));
  } catch (const std::exception& exception) {
    reportException(exception.what());
  }
  if (line_.capacity() > keptLineCapacity) std::string().swap(line_);
}

void DDFileLogger::willRemoveLogger() { rollLogFileNow(); }

std::optional<std::string> DDFileLogger::loggerName() { return "cocoa.quillwort.fileLogger"; }

// What is no regular file has taken a log file's place, and is never opened.
bool DDFileLogger::canBeReused(DDLogFileInfo& info) const {
  const auto& attributes = info.fileAttributes();
  if (attributes && attributes->type != FileSystem::FileType::regular) return false;
  if (maximumFileSize_ > 0 && info.fileSize() >= maximumFileSize_) return false;
  return !(rollingFrequency_ > 0) || info.age() < rollingFrequency_;
}

const std::shared_ptr<DDLogFileInfo>& DDFileLogger::currentLogFileInfo() {
  if (currentLogFileInfo_) return currentLogFileInfo_;
  const auto infos = logFileManager_->sortedLogFileInfos();
  if (!infos.empty() && !infos.front()->isArchived()) {
    const std::shared_ptr<DDLogFileInfo>& newest = infos.front();
    if (canBeReused(*newest)) return currentLogFileInfo_ = newest;
    newest->setIsArchived(true);
    logFileManager_->didArchiveLogFile(newest->filePath());
  }
  currentLogFileInfo_ = DDLogFileInfo::logFileWithPath(logFileManager_->createNewLogFile());
  return currentLogFileInfo_;
}

const FileHandle* DDFileLogger::currentLogFileHandle() {
  if (currentLogFileHandle_) return &currentLogFileHandle_;
  auto opened = FileHandle::openForAppending(currentLogFileInfo()->filePath());
  if (!opened) return nullptr;
  currentLogFileHandle_ = *std::move(opened);
  const auto size = currentLogFileHandle_.size();
  currentLogFileSize_ = size ? *size : 0;
  scheduleTimerToRollLogFileDueToAge();
  watchCurrentLogFile();
  return &currentLogFileHandle_;
}

void DDFileLogger::watchCurrentLogFile() {
  auto watch = FileWatch::watch(currentLogFileHandle_.descriptor(), loggerQueue(),
                                [weak = weakSelf()](FileWatch::Event) {
                                  if (const auto self = weak.lock()) self->rollLogFileNow();
                                });
  if (watch) {
    currentLogFileVnode_ = *std::move(watch);
  } else {
    Console::log("DDFileLogger: cannot watch %@: %@", currentLogFileInfo_->filePath(),
                 watch.error());
  }
}

void DDFileLogger::writeLine(foundation::DataView line) {
  const FileHandle* const file = currentLogFileHandle();
  if (!file) return;
  const foundation::Result<void> written = file->append(line);
  if (!written) foundation::raise<NSGenericException>(written.error().localizedDescription());
  currentLogFileSize_ += line.size();
  maybeRollLogFileDueToSize();
}

// The file on the disk becomes one of the archived ones; the next line makes its successor.
void DDFileLogger::rollLogFileNow() {
  if (!currentLogFileHandle_) return;
  static_cast<void>(currentLogFileHandle_.synchronize());
  currentLogFileHandle_.close();
  const auto rolled = std::exchange(currentLogFileInfo_, nullptr);
  currentLogFileVnode_.reset();
  rollingTimer_.reset();
  rolled->setIsArchived(true);
  logFileManager_->didRollAndArchiveLogFile(rolled->filePath());
}

void DDFileLogger::maybeRollLogFileDueToAge() {
  const bool isTooOld = rollingFrequency_ > 0 && currentLogFileInfo_ &&
                        currentLogFileInfo_->age() >= rollingFrequency_;
  if (isTooOld) {
    rollLogFileNow();
  } else {
    scheduleTimerToRollLogFileDueToAge();
  }
}

void DDFileLogger::maybeRollLogFileDueToSize() {
  if (maximumFileSize_ > 0 && currentLogFileSize_ >= maximumFileSize_) rollLogFileNow();
}

void DDFileLogger::scheduleTimerToRollLogFileDueToAge() {
  rollingTimer_.reset();
  if (!currentLogFileInfo_ || !(rollingFrequency_ > 0)) return;
  const std::optional<foundation::Date> created = currentLogFileInfo_->creationDate();
  if (!created) return;
  rollingTimer_ = Timer::timer(loggerQueue(), [weak = weakSelf()] {
    if (const auto self = weak.lock()) self->maybeRollLogFileDueToAge();
  });
  rollingTimer_->startAt(*created + foundation::durationOf(std::min(rollingFrequency_, longestAge)),
                         0, timerLeeway);
}

std::weak_ptr<DDFileLogger> DDFileLogger::weakSelf() {
  return std::static_pointer_cast<DDFileLogger>(shared_from_this());
}
