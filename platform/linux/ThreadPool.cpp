#include "platform/linux/ThreadPool.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "foundation/Assertion.h"
#include "platform/Process.h"
#include "platform/Queue.h"
#include "platform/linux/SystemThread.h"

namespace platform {
namespace {

constexpr std::chrono::seconds idleTime(10);

thread_local bool isPoolThread = false;

}  // namespace

ThreadPool& ThreadPool::shared() {
  static ThreadPool& pool = *new ThreadPool;
  return pool;
}

ThreadPool::ThreadPool() : processors_(std::max(2U, Process::processorCount())) {}

void ThreadPool::submit(std::shared_ptr<Work> work) {
  foundation::MutexLock lock(mutex_);
  ready_.push_back(std::move(work));
  waiting_.store(ready_.size(), std::memory_order_relaxed);
  ensureWorker();
}

void ThreadPool::ensureWorker() {
  if (ready_.size() <= idle_) return submitted_.notifyOne();
  if (threads_ - stopped_ >= processors_ || threads_ >= threadLimit) return;
  ++threads_;
  if (startSystemThread("zarvo-queue", [this] { work(); })) return;
  --threads_;
  ZARVO_ASSERT(threads_ > 0);
}

bool ThreadPool::awaitWork() {
  while (ready_.empty()) {
    ++idle_;
    const bool notified = submitted_.waitFor(mutex_, idleTime);
    --idle_;
    if (!notified && ready_.empty()) return false;
  }
  return true;
}

void ThreadPool::work() {
  isPoolThread = true;
  mutex_.lock();
  while (awaitWork()) {
    std::shared_ptr<Work> work = std::move(ready_.front());
    ready_.pop_front();
    waiting_.store(ready_.size(), std::memory_order_relaxed);
    mutex_.unlock();
    work->drain();
    work.reset();
    mutex_.lock();
  }
  --threads_;
  mutex_.unlock();
}

void ThreadPool::beginWait() {
  if (!isPoolThread) return;
  foundation::MutexLock lock(mutex_);
  ++stopped_;
  if (!ready_.empty()) ensureWorker();
}

void ThreadPool::endWait() {
  if (!isPoolThread) return;
  foundation::MutexLock lock(mutex_);
  --stopped_;
}

BlockingRegion::BlockingRegion() { ThreadPool::shared().beginWait(); }

BlockingRegion::~BlockingRegion() { ThreadPool::shared().endWait(); }

}  // namespace platform
