#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>

#include "foundation/Mutex.h"

namespace platform {

/// A counting semaphore. Uncontended, `wait` and `signal` are one atomic step each; a `wait` that
/// finds nothing looks again for some microseconds before it sleeps. It may be destroyed as soon as
/// every `wait` has returned. Thread safety: any thread.
class Semaphore {
 public:
  explicit Semaphore(std::uint32_t value) : state_(value) {}
  Semaphore(const Semaphore&) = delete;
  Semaphore& operator=(const Semaphore&) = delete;

  /// Takes one, waiting without limit until there is one.
  void wait();

  /// As `wait`, no longer than `duration`; returns whether it took one.
  bool wait(std::chrono::nanoseconds duration);

  /// Gives one back, waking a waiter if there is one.
  void signal();

 private:
  static constexpr std::uint64_t sleeper = std::uint64_t{1} << 32;

  bool tryTake();
  void signalSleeper();

  // The value, and above it how many threads sleep that nobody has woken yet; the latter changes
  // under the lock only. One word, so that who signals with nobody asleep never comes back to it.
  std::atomic<std::uint64_t> state_;
  foundation::Mutex mutex_;
  std::uint32_t woken_ ZARVO_GUARDED_BY(mutex_) = 0;  // that do not run yet
  foundation::Condition signalled_;
};

}  // namespace platform
