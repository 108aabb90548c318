#pragma once

#include <atomic>
#include <memory>

#include "foundation/Date.h"
#include "platform/Clock.h"
#include "platform/Queue.h"

namespace platform {

/// Runs a handler on a queue at a set time, once or repeatedly.
///
/// The owner keeps the timer alive; destroying it ends it. Firings that a busy queue has not yet
/// run are one. Once `cancel` or a new setting has returned, no firing of the old one begins,
/// provided the call was made on the timer's queue. The clock is the one in force when the timer is
/// made. Thread safety: any thread.
///
///     const TimerRef timer = Timer::timer(queue, [this] { roll(); });
///     timer->startAfter(60);
class Timer {
 public:
  /// A timer that is not set yet.
  static std::shared_ptr<Timer> timer(QueueRef queue, Block handler);

  ~Timer();
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;

  /// Sets the timer to fire `delay` seconds from now by the monotonic clock (at once when it is not
  /// above 0), then every `interval` seconds when that is above 0. `leeway` seconds late is good
  /// enough. Setting a timer that is already set costs no allocation.
  void startAfter(foundation::TimeInterval delay, foundation::TimeInterval interval = 0,
                  foundation::TimeInterval leeway = 0);

  /// As `startAfter`, at a moment of the wall clock, and following it when it is set.
  void startAt(foundation::Date date, foundation::TimeInterval interval = 0,
               foundation::TimeInterval leeway = 0);

  /// Ends the timer for good.
  void cancel();

 private:
  class Source;
  explicit Timer(std::shared_ptr<Source> source);

  const std::shared_ptr<Source> source_;
};

using TimerRef = std::shared_ptr<Timer>;

/// Queues `block` on `queue`, `delay` seconds from now by the monotonic clock.
void after(foundation::TimeInterval delay, QueueRef queue, Block block);

}  // namespace platform
