#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>

#include "foundation/Mutex.h"

namespace platform {

/// A counting semaphore. Uncontended, `wait` and `signal` are one atomic step each; a `wait` that
/// finds nothing looks again for some microseconds before it sleeps. Thread safety: any thread.
class Semaphore {
 public:
  explicit Semaphore(std::int64_t value) : value_(value) {}
  Semaphore(const Semaphore&) = delete;
  Semaphore& operator=(const Semaphore&) = delete;

  /// Takes one, waiting without limit until there is one.
  void wait();

  /// As `wait`, no longer than `duration`; returns whether it took one.
  bool wait(std::chrono::nanoseconds duration);

  /// Gives one back, waking a waiter if there is one.
  void signal();

 private:
  bool tryTake();

  std::atomic<std::int64_t> value_;
  std::atomic<std::int32_t> sleepers_{0};
  std::atomic<std::int32_t> woken_{0};  // sleepers that were woken and do not run yet
  foundation::Mutex mutex_;
  foundation::Condition signalled_;
};

}  // namespace platform
