#include "platform/linux/ConcurrentQueue.h"

#include <thread>
#include <utility>

namespace platform {

struct ConcurrentQueue::Waiter {
  foundation::Condition woken;
  bool admitted = false;
};

/// The calling thread's stay on the queue.
class ConcurrentQueue::Turn {
 public:
  Turn(ConcurrentQueue& queue, Access access) : queue_(queue), access_(access) {
    queue_.acquire(access_);
  }
  ~Turn() { queue_.release(access_); }
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;

 private:
  ConcurrentQueue& queue_;
  const Access access_;
};

QueueRef Queue::concurrentQueue(foundation::NullableText label) {
  return std::make_shared<ConcurrentQueue>(label);
}

void ConcurrentQueue::async(Block block) { enqueue({Access::shared, std::move(block), nullptr}); }

void ConcurrentQueue::barrierAsync(Block block) {
  enqueue({Access::exclusive, std::move(block), nullptr});
}

void ConcurrentQueue::syncCall(FunctionView function) {
  forbidDeadlock();
  const Turn turn(*this, Access::shared);
  const Context context(this);
  function();
}

void ConcurrentQueue::barrierSyncCall(FunctionView function) {
  forbidDeadlock();
  const Turn turn(*this, Access::exclusive);
  const Context context(this);
  function();
}

void ConcurrentQueue::enqueue(Entry entry) {
  foundation::MutexLock lock(mutex_);
  line_.push_back(std::move(entry));
  state_.fetch_or(line);
  passOn();
}

// A short stay is over sooner than a thread falls asleep; who has been in line goes first all the
// same.
void ConcurrentQueue::acquire(Access access) {
  constexpr int attempts = 16;
  for (int i = 0; i < attempts; ++i) {
    std::uint32_t state = state_.load(std::memory_order_relaxed);
    if ((state & line) != 0) break;
    while (isOpen(state, access)) {
      if (state_.compare_exchange_weak(state, state + share(access), std::memory_order_acquire)) {
        return;
      }
    }
    std::this_thread::yield();
  }
  acquireInLine(access);
}

void ConcurrentQueue::acquireInLine(Access access) {
  Waiter waiter;
  foundation::MutexLock lock(mutex_);
  line_.push_back({access, nullptr, &waiter});
  state_.fetch_or(line);
  passOn();
  if (waiter.admitted) return;
  const BlockingRegion waiting;
  while (!waiter.admitted) waiter.woken.wait(mutex_);
}

void ConcurrentQueue::release(Access access) {
  const std::uint32_t own = share(access);
  if (state_.fetch_sub(own, std::memory_order_acq_rel) != (own | line)) return;
  foundation::MutexLock lock(mutex_);
  passOn();
}

// With something in line nobody comes in but through here, so what is read holds, except that
// blocks may end meanwhile: the last of them passes on itself.
bool ConcurrentQueue::admit(Access access) {
  if (!isOpen(state_.load() & ~line, access)) return false;
  state_.fetch_add(share(access));
  return true;
}

void ConcurrentQueue::start(Entry entry) {
  if (entry.waiter) {
    entry.waiter->admitted = true;
    return entry.waiter->woken.notifyOne();
  }
  started_.push_back(std::move(entry));
  ThreadPool::shared().submit({shared_from_this(), this});
}

void ConcurrentQueue::passOn() {
  while (!line_.empty() && admit(line_.front().access)) {
    Entry entry = std::move(line_.front());
    line_.pop_front();
    start(std::move(entry));
  }
  if (line_.empty()) state_.fetch_and(~line);
}

void ConcurrentQueue::drain() {
  mutex_.lock();
  Entry entry = std::move(started_.front());
  started_.pop_front();
  mutex_.unlock();
  {
    const Context context(this);
    runToEnd(entry.block);
    entry.block = nullptr;
  }
  release(entry.access);
}

}  // namespace platform
