#include "logging/DDAbstractLogger.h"

#include <typeinfo>
#include <utility>

#include "foundation/ClassName.h"
#include "logging/DDLog.h"

using platform::Queue;
using platform::QueueRef;

DDAbstractLogger::DDAbstractLogger(std::shared_ptr<DDLogFormatter> formatter)
    : formatter_(std::move(formatter)) {}

DDAbstractLogger::~DDAbstractLogger() {
  if (queue_) queue_->setSpecific(this, nullptr);
}

void DDAbstractLogger::logMessage(const DDLogMessage&) {}

std::shared_ptr<DDLogFormatter> DDAbstractLogger::logFormatter() {
  return waitOnLoggerQueue([this] { return formatter_; });
}

void DDAbstractLogger::setLogFormatter(std::shared_ptr<DDLogFormatter> formatter) {
  performOnLoggerQueue([self = shared_from_this(), taken = std::move(formatter)] {
    if (self->formatter_ == taken) return;
    if (self->formatter_) self->formatter_->willRemoveFromLogger(*self);
    self->formatter_ = taken;
    if (taken) taken->didAddToLogger(*self);
  });
}

QueueRef DDAbstractLogger::loggerQueue() {
  std::call_once(queueOnce_, [this] {
    queue_ = Queue::serialQueue(loggerName());
    queue_->setSpecific(this, this);
  });
  return queue_;
}

std::optional<std::string> DDAbstractLogger::loggerName() {
  return foundation::className(typeid(*this));
}

bool DDAbstractLogger::isOnGlobalLoggingQueue() const {
  return Queue::currentSpecific(DDLog::loggingQueueKey()) != nullptr;
}

bool DDAbstractLogger::isOnInternalLoggerQueue() const {
  return Queue::currentSpecific(this) != nullptr;
}

void DDAbstractLogger::performOnLoggerQueue(platform::Block step) {
  globalLoggingQueue().async(
      [queue = loggerQueue(), last = std::move(step)]() mutable { queue->async(std::move(last)); });
}

Queue& DDAbstractLogger::globalLoggingQueue() { return *DDLog::loggingQueue(); }
