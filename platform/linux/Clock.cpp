#include "platform/Clock.h"

#include <sys/timerfd.h>
#include <unistd.h>

#include "foundation/Assertion.h"
#include "foundation/Mutex.h"
#include "platform/linux/EventLoop.h"
#include "platform/posix/AlarmHeap.h"

namespace platform {
namespace {

/// The alarms of one hand, and the descriptor that wakes the event loop for them. The descriptor is
/// made for the first alarm.
class Wheel {
 public:
  explicit Wheel(clockid_t clock) : clock_(clock) {}

  std::uint64_t set(const std::shared_ptr<Alarm>& alarm, std::int64_t deadline,
                    std::int64_t interval, std::int64_t leeway) {
    foundation::MutexLock lock(mutex_);
    const std::uint64_t ticket = alarms_.set(alarm, deadline, interval, leeway);
    rearm();
    return ticket;
  }

  void remove(Alarm& alarm) {
    foundation::MutexLock lock(mutex_);
    alarms_.remove(alarm);
  }

 private:
  // Wakes also when the wall clock is set, since every deadline then lies elsewhere.
  void rearm() ZARVO_REQUIRES(mutex_) {
    const std::int64_t next = alarms_.nextTime();
    if (next == armed_ || (next == AlarmHeap::never && timer_ < 0)) return;
    if (timer_ < 0) open();
    armed_ = next;
    itimerspec time{};
    if (next != AlarmHeap::never) {
      // The past is as good as now, and nothing at all would stop the timer.
      const std::int64_t shown = next > 0 ? next : 1;
      time.it_value.tv_sec = shown / 1'000'000'000;
      time.it_value.tv_nsec = shown % 1'000'000'000;
    }
    timerfd_settime(timer_, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &time, nullptr);
  }

  void open() ZARVO_REQUIRES(mutex_) {
    timer_ = timerfd_create(clock_, TFD_CLOEXEC | TFD_NONBLOCK);
    ZARVO_ASSERT(timer_ >= 0);
    EventLoop::shared().watch(timer_, [this] { ring(); });
  }

  void ring() {
    std::vector<AlarmHeap::Due> due;
    {
      foundation::MutexLock lock(mutex_);
      std::uint64_t expirations = 0;
      static_cast<void>(!read(timer_, &expirations, sizeof expirations));
      armed_ = AlarmHeap::never;
      timespec now{};
      clock_gettime(clock_, &now);
      due = alarms_.takeDue(std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec);
      rearm();
    }
    for (const AlarmHeap::Due& entry : due) entry.alarm->fire(entry.ticket);
  }

  const clockid_t clock_;
  foundation::Mutex mutex_;
  int timer_ ZARVO_GUARDED_BY(mutex_) = -1;
  std::int64_t armed_ ZARVO_GUARDED_BY(mutex_) = AlarmHeap::never;
  AlarmHeap alarms_ ZARVO_GUARDED_BY(mutex_);
};

class SystemClock : public Clock {
 public:
  foundation::Date now() override {
    return std::chrono::time_point_cast<foundation::Date::duration>(
        std::chrono::system_clock::now());
  }

  MonotonicTime monotonicNow() override { return std::chrono::steady_clock::now(); }

  std::uint64_t set(const std::shared_ptr<Alarm>& alarm, Hand hand, std::int64_t deadline,
                    std::int64_t interval, std::int64_t leeway) override {
    const bool isWall = hand == Hand::wall;
    (isWall ? monotonic_ : wall_).remove(*alarm);
    return (isWall ? wall_ : monotonic_).set(alarm, deadline, interval, leeway);
  }

 private:
  Wheel monotonic_{CLOCK_MONOTONIC};
  Wheel wall_{CLOCK_REALTIME};
};

}  // namespace

Clock& Clock::production() {
  static Clock& clock = *new SystemClock;
  return clock;
}

}  // namespace platform
