#include <deque>
#include <exception>

#include "platform/Group.h"
#include "platform/Process.h"
#include "platform/Queue.h"

namespace platform {
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
    if (Process::isMainThread()) stopDeadlock();
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
