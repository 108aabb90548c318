#pragma once

#include <atomic>
#include <cstdint>
#include <deque>

#include "platform/Queue.h"
#include "platform/linux/ThreadPool.h"

namespace platform {

/// The queue whose blocks run side by side, except for barriers.
///
/// `state_` counts the blocks that run (or have been given to the pool), and tells whether a
/// barrier is one of them and whether anything is in line. Without a barrier and a line, `sync`
/// comes and goes by that word alone. The line is first come, first served, so that neither readers
/// nor barriers starve; whoever leaves the queue with something in line passes it on, under the
/// lock.
class ConcurrentQueue final : public Queue, private ThreadPool::Work {
 public:
  explicit ConcurrentQueue(foundation::NullableText label) : Queue(label) {}

  using Queue::async;
  void async(Block block) override;
  void barrierAsync(Block block) override;

 protected:
  void syncCall(FunctionView function) override;
  void barrierSyncCall(FunctionView function) override;

 private:
  enum class Access { shared, exclusive };
  struct Waiter;

  /// A block for the pool, or else a thread that waits to run its own.
  struct Entry {
    Access access;
    Block block;
    Waiter* waiter;
  };

  class Turn;

  void drain() override;
  void enqueue(Entry entry);
  void acquire(Access access);
  void acquireInLine(Access access);
  void release(Access access);
  bool admit(Access access) ZARVO_REQUIRES(mutex_);
  void start(Entry entry) ZARVO_REQUIRES(mutex_);
  void passOn() ZARVO_REQUIRES(mutex_);

  static constexpr std::uint32_t barrier = 1U << 30;
  static constexpr std::uint32_t line = 1U << 31;

  static constexpr std::uint32_t share(Access access) {
    return access == Access::shared ? 1 : barrier;
  }

  // Whether a queue with this state, and nothing in line, lets one more in.
  static constexpr bool isOpen(std::uint32_t state, Access access) {
    return access == Access::shared ? (state & (barrier | line)) == 0 : state == 0;
  }

  std::atomic<std::uint32_t> state_{0};
  foundation::Mutex mutex_;
  std::deque<Entry> line_ ZARVO_GUARDED_BY(mutex_);
  std::deque<Entry> started_ ZARVO_GUARDED_BY(mutex_);  // each has been submitted to the pool once
};

}  // namespace platform
