#pragma once

#include <utility>

#include "platform/Queue.h"

/// A read/write lock made of blocks on a concurrent queue: readers run side by side, writers alone.
///
/// First come, first served: a reader that comes behind a writer waits for it. `read` and `write`
/// from a block that runs under the same lock could never return and stop the process with a
/// message. Thread safety: any thread.
///
///     const int count = lock.read([&] { return entries.size(); });
///     lock.writeAsync([this] { entries.clear(); });
class ZCLGcdRWLock {
 public:
  ZCLGcdRWLock() : lockQueue_(platform::Queue::concurrentQueue("ZCLGcdRWLock Queue")) {}
  ZCLGcdRWLock(const ZCLGcdRWLock&) = delete;
  ZCLGcdRWLock& operator=(const ZCLGcdRWLock&) = delete;

  /// Runs `block` beside other readers, and returns what it returns. Exceptions pass on.
  template <class F>
  auto read(F&& block) {
    return lockQueue_->sync(std::forward<F>(block));
  }

  /// Runs `block` once everything that came before has ended, with nothing beside it, and returns
  /// what it returns. Exceptions pass on.
  template <class F>
  auto write(F&& block) {
    return lockQueue_->barrierSync(std::forward<F>(block));
  }

  /// As `write`, on another thread; returns at once. An exception that leaves the block ends the
  /// process. What the block has done is seen by every `read` that follows.
  void writeAsync(platform::Block block) { lockQueue_->barrierAsync(std::move(block)); }

 private:
  const platform::QueueRef lockQueue_;
};
