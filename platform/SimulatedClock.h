#pragma once

#include <memory>

#include "platform/Clock.h"

namespace platform {

/// A clock that stands still until it is told to go on; for tests. Put it in force with
/// `Clock::Replacement` before the timers under test are made, and keep it until they are gone.
///
/// Thread safety: any thread; `advance` from one thread at a time.
class SimulatedClock : public Clock {
 public:
  /// Starts at `now`.
  explicit SimulatedClock(foundation::Date now);
  ~SimulatedClock() override;

  /// Lets `interval` seconds pass on both hands. Alarms that come due fire in their order, each
  /// with the clock at its time; what their handlers do runs on their queues, and alarms set by
  /// handlers count from the time at which they are set.
  void advance(foundation::TimeInterval interval);

  /// Moves the wall clock alone, as a user who sets it would.
  void setNow(foundation::Date date);

  foundation::Date now() override;
  MonotonicTime monotonicNow() override;
  std::uint64_t set(const std::shared_ptr<Alarm>& alarm, Hand hand, std::int64_t deadline,
                    std::int64_t interval, std::int64_t leeway) override;

 private:
  struct State;
  const std::unique_ptr<State> state_;
};

}  // namespace platform
