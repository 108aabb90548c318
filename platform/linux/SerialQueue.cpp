#include "platform/linux/SerialQueue.h"

#include <utility>

namespace platform {
namespace {

// Empties storage to use it again, unless a burst has left it large.
void recycle(std::vector<Block>& blocks) {
  constexpr std::size_t kept = 1024;
  if (blocks.capacity() > kept) {
    blocks = std::vector<Block>();
  } else {
    blocks.clear();
  }
}

}  // namespace

struct SerialQueue::Waiter {
  std::uint64_t ticket;  // how many blocks have to be finished before it may go
  foundation::Condition woken;
  Waiter* next = nullptr;
};

QueueRef Queue::serialQueue(foundation::NullableText label) {
  return std::make_shared<SerialQueue>(label);
}

void SerialQueue::async(Block block) {
  foundation::MutexLock lock(mutex_);
  incoming_.push_back(std::move(block));
  ++queued_;
  if ((state_.fetch_or(line | blocks) & owned) == 0) passOn();
}

void SerialQueue::syncCall(FunctionView function) {
  forbidDeadlock();
  acquire();
  struct Release {
    SerialQueue* queue;
    ~Release() { queue->release(); }
  } const release{this};
  const Context context(this);
  function();
}

void SerialQueue::acquire() {
  std::uint32_t state = state_.load(std::memory_order_relaxed);
  while ((state & (owned | blocks)) == 0) {
    if (state_.compare_exchange_weak(state, state | owned, std::memory_order_acquire)) return;
  }
  acquireInLine();
}

void SerialQueue::acquireInLine() {
  foundation::MutexLock lock(mutex_);
  Waiter waiter{queued_, {}};
  (lastWaiter_ ? lastWaiter_->next : firstWaiter_) = &waiter;
  lastWaiter_ = &waiter;
  state_.fetch_or(line);
  if (!isTakenBy(waiter)) {
    const BlockingRegion waiting;
    do {
      waiter.woken.wait(mutex_);
      state_.fetch_and(~std::uint32_t{woken});
    } while (!isTakenBy(waiter));
  }
  Waiter** link = &firstWaiter_;
  Waiter* previous = nullptr;
  for (; *link != &waiter; link = &(*link)->next) previous = *link;
  *link = waiter.next;
  if (lastWaiter_ == &waiter) lastWaiter_ = previous;
  clearLineIfEmpty();
}

bool SerialQueue::isTakenBy(const Waiter& waiter) {
  return waiter.ticket <= finished_ && (state_.fetch_or(owned) & owned) == 0;
}

void SerialQueue::release() {
  const std::uint32_t state = state_.fetch_and(~std::uint32_t{owned}, std::memory_order_acq_rel);
  if ((state & line) == 0 || (state & woken) != 0) return;
  foundation::MutexLock lock(mutex_);
  if (!isOwned()) passOn();
}

void SerialQueue::clearLineIfEmpty() {
  if (queued_ != finished_) return;
  state_.fetch_and(~std::uint32_t{firstWaiter_ ? blocks : blocks | line});
}

// Called whenever the queue is free and something may be in line.
void SerialQueue::passOn() {
  if (firstWaiter_ && firstWaiter_->ticket <= finished_) {
    state_.fetch_or(woken);
    return firstWaiter_->woken.notifyOne();
  }
  if (queued_ == finished_ || scheduled_) return;
  scheduled_ = true;
  ThreadPool::shared().submit({shared_from_this(), this});
}

// Runs what is in line, at least once, and goes on while no other queue waits for a thread.
void SerialQueue::drain() {
  const Context context(this);
  mutex_.lock();
  scheduled_ = false;
  do {
    const std::uint64_t count = (firstWaiter_ ? firstWaiter_->ticket : queued_) - finished_;
    if (isOwned() || count == 0) break;
    state_.fetch_or(owned);
    mutex_.unlock();
    runBlocks(count);
    mutex_.lock();
    finished_ += count;
    state_.fetch_and(~std::uint32_t{owned});
    clearLineIfEmpty();
  } while (!ThreadPool::shared().isPressed());
  if (!isOwned()) passOn();
  mutex_.unlock();
}

void SerialQueue::runBlocks(std::uint64_t count) {
  for (; count > 0; --count) {
    if (position_ == running_.size()) {
      recycle(running_);
      position_ = 0;
      foundation::MutexLock lock(mutex_);
      running_.swap(incoming_);
    }
    Block block = std::move(running_[position_++]);
    runToEnd(block);
  }
}

}  // namespace platform
