#include "platform/Queue.h"

#include <cstdio>
#include <cstdlib>
#include <deque>
#include <exception>

#include "platform/Group.h"
#include "platform/Process.h"
#include "platform/linux/ThreadPool.h"

namespace platform {
namespace {

[[noreturn, gnu::cold]] void stopDeadlock(const std::string& label) {
  std::fprintf(stderr, "sync onto the queue \"%s\" from a block of its own would never return.\n",
               label.c_str());
  std::abort();
}

// An exception that leaves a block has nobody to go to: it ends the process with its message.
void runToEnd(Block& block) noexcept { block(); }

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

struct Queue::Waiter {
  std::uint64_t ticket;  // how many blocks have to be finished before it may go
  foundation::Condition woken;
  Waiter* next = nullptr;
};

namespace {
// Of type Queue::Context*, which is not to be named out here; trivial, so that exit handlers may
// still use it.
thread_local void* innermost = nullptr;
}  // namespace

Queue::Context::Context(Queue* entered) : queue(entered), outer(static_cast<Context*>(innermost)) {
  innermost = this;
}

Queue::Context::~Context() { innermost = outer; }

Queue::Queue(foundation::NullableText label)
    : label_(std::make_shared<const std::string>(label.view())) {}

Queue::~Queue() = default;

QueueRef Queue::serialQueue(foundation::NullableText label) { return QueueRef(new Queue(label)); }

Queue* Queue::current() {
  if (innermost) return static_cast<Context*>(innermost)->queue;
  return Process::isMainThread() ? mainQueue().get() : nullptr;
}

void* Queue::currentSpecific(const void* key) {
  const Queue* const queue = current();
  return queue ? queue->specific(key) : nullptr;
}

void Queue::setSpecific(const void* key, void* value) {
  foundation::MutexLock lock(mutex_);
  if (value) {
    specifics_[key] = value;
  } else {
    specifics_.erase(key);
  }
}

void* Queue::specific(const void* key) const {
  foundation::MutexLock lock(mutex_);
  const auto found = specifics_.find(key);
  return found == specifics_.end() ? nullptr : found->second;
}

bool Queue::isCurrentThreadInside() const {
  for (auto* context = static_cast<Context*>(innermost); context; context = context->outer) {
    if (context->queue == this) return true;
  }
  return false;
}

bool Queue::isInsideSpecific(const void* key) {
  for (auto* context = static_cast<Context*>(innermost); context; context = context->outer) {
    if (context->queue->specific(key)) return true;
  }
  return !innermost && currentSpecific(key);
}

void Queue::forbidDeadlock() const {
  if (isCurrentThreadInside()) stopDeadlock(*label_);
}

void Queue::async(Block block) {
  foundation::MutexLock lock(mutex_);
  incoming_.push_back(std::move(block));
  ++queued_;
  if ((state_.fetch_or(line) & owned) == 0) passOn();
}

void Queue::async(Group& group, Block block) {
  group.enter();
  async([&group, work = std::move(block)]() mutable {
    work();
    work = nullptr;
    group.leave();
  });
}

void Queue::syncCall(FunctionView function) {
  forbidDeadlock();
  acquire();
  struct Release {
    Queue* queue;
    ~Release() { queue->release(); }
  } const release{this};
  const Context context(this);
  function();
}

void Queue::acquire() {
  std::uint32_t expected = idle;
  if (!state_.compare_exchange_strong(expected, owned, std::memory_order_acquire)) acquireInLine();
}

void Queue::acquireInLine() {
  foundation::MutexLock lock(mutex_);
  const bool isOwnedElsewhere = (state_.fetch_or(line) & owned) != 0;
  if (!isOwnedElsewhere && queued_ == finished_) {
    state_.fetch_or(owned);
    return clearLineIfEmpty();
  }
  Waiter waiter{queued_, {}};
  (lastWaiter_ ? lastWaiter_->next : firstWaiter_) = &waiter;
  lastWaiter_ = &waiter;
  {
    const BlockingRegion waiting;
    while (isOwned() || waiter.ticket > finished_) waiter.woken.wait(mutex_);
  }
  Waiter** link = &firstWaiter_;
  Waiter* previous = nullptr;
  for (; *link != &waiter; link = &(*link)->next) previous = *link;
  *link = waiter.next;
  if (lastWaiter_ == &waiter) lastWaiter_ = previous;
  state_.fetch_or(owned);
  clearLineIfEmpty();
}

void Queue::release() {
  std::uint32_t expected = owned;
  if (state_.compare_exchange_strong(expected, idle, std::memory_order_release)) return;
  foundation::MutexLock lock(mutex_);
  state_.fetch_and(~std::uint32_t{owned});
  passOn();
}

void Queue::clearLineIfEmpty() {
  if (!firstWaiter_ && queued_ == finished_) state_.fetch_and(~std::uint32_t{line});
}

// Called whenever the queue is free and something may be in line.
void Queue::passOn() {
  if (firstWaiter_ && firstWaiter_->ticket <= finished_) return firstWaiter_->woken.notifyOne();
  if (queued_ == finished_ || scheduled_) return;
  scheduled_ = true;
  ThreadPool::shared().submit(shared_from_this());
}

// Runs what is in line, at least once, and goes on while no other queue waits for a thread.
void Queue::drain() {
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

void Queue::runBlocks(std::uint64_t count) {
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

namespace {

/// The main thread's queue: nobody else runs its blocks, and the pool has no part in it.
class MainThreadQueue final : public Queue {
 public:
  MainThreadQueue() : Queue("main-thread") {}

  static MainThreadQueue& shared() { return static_cast<MainThreadQueue&>(*Queue::mainQueue()); }

  using Queue::async;

  void async(Block block) override {
    foundation::MutexLock lock(mutex_);
    blocks_.push_back(std::move(block));
    changed_.notifyAll();
  }

  void stop() {
    foundation::MutexLock lock(mutex_);
    stopped_ = true;
    changed_.notifyAll();
  }

  void run() {
    while (Block block = next()) runInside(block);
  }

  void drain() {
    std::deque<Block> batch = takeAll();
    for (Block& block : batch) runInside(block);
  }

 protected:
  void syncCall(FunctionView function) override {
    if (Process::isMainThread()) stopDeadlock(*label());
    Group done;
    std::exception_ptr failure;
    done.enter();
    async([&] {
      try {
        function();
      } catch (...) {
        failure = std::current_exception();
      }
      done.leave();
    });
    done.wait();
    if (failure) std::rethrow_exception(failure);
  }

 private:
  void runInside(Block& block) {
    const Context context(this);
    runToEnd(block);
  }

  // Nothing once the queue has been stopped.
  Block next() {
    foundation::MutexLock lock(mutex_);
    while (blocks_.empty() && !stopped_) changed_.wait(mutex_);
    if (std::exchange(stopped_, false)) return nullptr;
    Block block = std::move(blocks_.front());
    blocks_.pop_front();
    return block;
  }

  std::deque<Block> takeAll() {
    foundation::MutexLock lock(mutex_);
    return std::exchange(blocks_, {});
  }

  foundation::Mutex mutex_;
  foundation::Condition changed_;
  std::deque<Block> blocks_ ZARVO_GUARDED_BY(mutex_);
  bool stopped_ ZARVO_GUARDED_BY(mutex_) = false;
};

}  // namespace

const QueueRef& Queue::mainQueue() {
  static const QueueRef& queue = *new QueueRef(std::make_shared<MainThreadQueue>());
  return queue;
}

namespace MainQueue {

void run() { MainThreadQueue::shared().run(); }

void stop() { MainThreadQueue::shared().stop(); }

void drain() { MainThreadQueue::shared().drain(); }

}  // namespace MainQueue

}  // namespace platform
