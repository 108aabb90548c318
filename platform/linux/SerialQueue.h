#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "platform/Queue.h"
#include "platform/linux/ThreadPool.h"

namespace platform {

/// The queue that runs one block at a time.
///
/// It is owned by the thread that runs its blocks. `state_` tells whether it is, whether anything
/// is in line, and whether that includes blocks; a queue that is free and has no blocks in line is
/// taken by that word alone. All else is changed under the lock. Whoever gives the queue up with
/// something in line passes it on: to the first waiter that may go, else to the pool. A waiter
/// that was woken and has not come yet needs no second wake. Waiters and blocks are told apart by
/// number: a waiter remembers how many blocks were queued before it, and may go once so many have
/// run.
class SerialQueue final : public Queue, private ThreadPool::Work {
 public:
  explicit SerialQueue(foundation::NullableText label) : Queue(label) {}

  using Queue::async;
  void async(Block block) override;

 protected:
  void syncCall(FunctionView function) override;

 private:
  struct Waiter;

  void drain() override;
  void runBlocks(std::uint64_t count);
  void acquire();
  void acquireInLine();
  void release();
  bool isTakenBy(const Waiter& waiter) ZARVO_REQUIRES(mutex_);
  void passOn() ZARVO_REQUIRES(mutex_);
  bool isOwned() const ZARVO_REQUIRES(mutex_) { return (state_.load() & owned) != 0; }
  void clearLineIfEmpty() ZARVO_REQUIRES(mutex_);

  enum State : std::uint32_t { idle = 0, owned = 1, line = 2, blocks = 4, woken = 8 };
  std::atomic<std::uint32_t> state_{idle};
  mutable foundation::Mutex mutex_;
  std::vector<Block> incoming_ ZARVO_GUARDED_BY(mutex_);
  std::uint64_t queued_ ZARVO_GUARDED_BY(mutex_) = 0;
  std::uint64_t finished_ ZARVO_GUARDED_BY(mutex_) = 0;
  bool scheduled_ ZARVO_GUARDED_BY(mutex_) = false;  // the pool is going to call `drain`
  Waiter* firstWaiter_ ZARVO_GUARDED_BY(mutex_) = nullptr;
  Waiter* lastWaiter_ ZARVO_GUARDED_BY(mutex_) = nullptr;

  std::vector<Block> running_;  // taken from `incoming_`; the owner's, like the next
  std::size_t position_ = 0;    // of the first block in `running_` that has not run
};

}  // namespace platform
