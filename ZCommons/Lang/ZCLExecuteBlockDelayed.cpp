#include "ZCommons/Lang/ZCLExecuteBlockDelayed.h"

#include <utility>

using foundation::MutexLock;
using foundation::TimeInterval;
using platform::Block;
using platform::QueueRef;
using platform::Timer;

std::shared_ptr<ZCLExecuteBlockDelayed> ZCLExecuteBlockDelayed::initWithTimeout(
    TimeInterval timeout, TimeInterval leeway, QueueRef queue, Block block) {
  return std::shared_ptr<ZCLExecuteBlockDelayed>(
      new ZCLExecuteBlockDelayed(timeout, leeway, std::move(queue), std::move(block)));
}

ZCLExecuteBlockDelayed::ZCLExecuteBlockDelayed(TimeInterval timeout, TimeInterval leeway,
                                               QueueRef queue, Block block)
    : workQueue_(std::move(queue)), interval_(timeout), leeway_(leeway), block_(std::move(block)) {}

ZCLExecuteBlockDelayed::~ZCLExecuteBlockDelayed() { stopUpdateTimer(); }

void ZCLExecuteBlockDelayed::executeOnceAfterCalm() {
  MutexLock lock(mutex_);
  if (updateTimer_) return startTimer();
  createTimerThatRunsTheBlock();
}

void ZCLExecuteBlockDelayed::executeOnceForIntervalDelayed() {
  MutexLock lock(mutex_);
  if (!updateTimer_) createTimerThatRunsTheBlock();
}

void ZCLExecuteBlockDelayed::executeOnceForInterval() {
  MutexLock lock(mutex_);
  if (updateTimer_) return;
  createTimer([self = shared_from_this()] { self->stopUpdateTimer(); });
  workQueue_->async([self = shared_from_this()] { self->block_(); });
}

void ZCLExecuteBlockDelayed::stopUpdateTimer() {
  MutexLock lock(mutex_);
  updateTimer_ = nullptr;
}

void ZCLExecuteBlockDelayed::createTimerThatRunsTheBlock() {
  createTimer([self = shared_from_this()] {
    self->stopUpdateTimer();
    self->block_();
  });
}

void ZCLExecuteBlockDelayed::createTimer(Block handler) {
  updateTimer_ = Timer::timer(workQueue_, std::move(handler));
  startTimer();
}

void ZCLExecuteBlockDelayed::startTimer() {
  updateTimer_->startAfter(interval_, interval_, leeway_);
}
