#pragma once

#include <chrono>
#include <cstdint>
#include <memory>

#include "foundation/Date.h"
#include "platform/Service.h"

namespace platform {

/// What a clock fires when its time has come; timers are made of it.
class Alarm {
 public:
  Alarm() = default;
  virtual ~Alarm() = default;
  Alarm(const Alarm&) = delete;
  Alarm& operator=(const Alarm&) = delete;

  /// Called by the clock, on a thread of its own, once the deadline has passed. `ticket` is what
  /// the clock's `set` returned. Must be quick.
  virtual void fire(std::uint64_t ticket) = 0;

 private:
  friend class AlarmHeap;

  static constexpr std::int64_t never = INT64_MAX;

  // What was set, in nanoseconds; guarded by the lock of the clock.
  std::int64_t deadline_ = never;
  std::int64_t interval_ = 0;
  std::int64_t leeway_ = 0;
  std::int64_t entry_ = never;  // the time under which the heap holds the alarm; never: it does not
  std::uint64_t ticket_ = 0;
};

/// The time, and what drives every timer. Thread safety: any thread.
class Clock : public Service<Clock> {
 public:
  using MonotonicTime =
      std::chrono::time_point<std::chrono::steady_clock, std::chrono::nanoseconds>;

  static Clock& production();

  /// The wall clock, which may be set forth and back.
  virtual foundation::Date now() = 0;

  /// A clock that only goes on; its zero has no meaning.
  virtual MonotonicTime monotonicNow() = 0;

  /// Which hand of the clock a deadline is told on.
  enum class Hand { monotonic, wall };

  /// Sets when `alarm` fires, in place of what was set before: at `deadline` (nanoseconds on the
  /// hand: of the monotonic clock, or since 1970), at once when that has passed, never when it is
  /// the largest number; when `interval` is above 0, every `interval` nanoseconds after that; up to
  /// `leeway` nanoseconds late. Returns the ticket of this setting, higher than those before it.
  /// An alarm that is destroyed fires no more; one that is to be destroyed while set to a far
  /// deadline is better set to never first.
  virtual std::uint64_t set(const std::shared_ptr<Alarm>& alarm, Hand hand, std::int64_t deadline,
                            std::int64_t interval, std::int64_t leeway) = 0;
};

}  // namespace platform
