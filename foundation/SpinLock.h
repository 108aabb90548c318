#pragma once

#include <atomic>
#include <thread>

#include "foundation/ThreadSafety.h"

namespace foundation {

/// A lock for sections of some tens of instructions: one atomic step to take, a store to give up.
/// Who finds it taken tries again, and soon lets other threads run in between.
class ZARVO_CAPABILITY("mutex") SpinLock {
 public:
  void lock() ZARVO_ACQUIRE() {
    for (int i = 0; taken_.exchange(true, std::memory_order_acquire); ++i) {
      constexpr int patience = 32;
      while (taken_.load(std::memory_order_relaxed)) {
        if (++i > patience) std::this_thread::yield();
      }
    }
  }

  void unlock() ZARVO_RELEASE() { taken_.store(false, std::memory_order_release); }

 private:
  std::atomic<bool> taken_{false};
};

/// Holds a `SpinLock` for the length of a scope.
class ZARVO_SCOPED_CAPABILITY SpinLockGuard {
 public:
  explicit SpinLockGuard(SpinLock& lock) ZARVO_ACQUIRE(lock) : lock_(lock) { lock_.lock(); }
  ~SpinLockGuard() ZARVO_RELEASE() { lock_.unlock(); }
  SpinLockGuard(const SpinLockGuard&) = delete;
  SpinLockGuard& operator=(const SpinLockGuard&) = delete;

 private:
  SpinLock& lock_;
};

}  // namespace foundation
