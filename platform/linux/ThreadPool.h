#pragma once

#include <atomic>
#include <cstddef>
#include <deque>
#include <memory>

#include "foundation/Mutex.h"

namespace platform {

/// The threads that run the queues' blocks.
///
/// As many threads work at once as there are processors (at least two); a thread that waits for
/// others does not count, so that another takes its place. A thread that finds nothing to do for a
/// while ends. Made on first use and never destroyed.
class ThreadPool {
 public:
  /// What a queue has for a thread of the pool to do.
  class Work {
   public:
    virtual void drain() = 0;

   protected:
    ~Work() = default;
  };

  static ThreadPool& shared();

  /// Lets a thread call `drain`; what the pointer shares lives until then.
  void submit(std::shared_ptr<Work> work);

  /// Whether other queues wait for a thread.
  bool isPressed() const { return waiting_.load(std::memory_order_relaxed) > 0; }

  /// Tells that the calling thread stops working for a while, and that it goes on. Without effect
  /// on threads that are not the pool's.
  void beginWait();
  void endWait();

 private:
  static constexpr unsigned threadLimit = 512;

  ThreadPool();
  void work();
  bool awaitWork() ZARVO_REQUIRES(mutex_);
  void ensureWorker() ZARVO_REQUIRES(mutex_);

  const unsigned processors_;
  foundation::Mutex mutex_;
  foundation::Condition submitted_;
  std::deque<std::shared_ptr<Work>> ready_ ZARVO_GUARDED_BY(mutex_);
  std::atomic<std::size_t> waiting_{0};  // the size of `ready_`, for a look without the lock
  unsigned threads_ ZARVO_GUARDED_BY(mutex_) = 0;
  unsigned idle_ ZARVO_GUARDED_BY(mutex_) = 0;     // threads asleep in `awaitWork`
  unsigned stopped_ ZARVO_GUARDED_BY(mutex_) = 0;  // threads between `beginWait` and `endWait`
};

}  // namespace platform
