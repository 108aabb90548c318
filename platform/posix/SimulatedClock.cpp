#include "platform/SimulatedClock.h"

#include <algorithm>
#include <vector>

#include "foundation/Mutex.h"
#include "platform/posix/AlarmHeap.h"

namespace platform {
namespace {

void fire(const std::vector<AlarmHeap::Due>& due) {
  for (const AlarmHeap::Due& entry : due) entry.alarm->fire(entry.ticket);
}

}  // namespace

struct SimulatedClock::State {
  foundation::Mutex mutex;
  std::int64_t monotonic ZARVO_GUARDED_BY(mutex) = 0;
  std::int64_t wallOffset ZARVO_GUARDED_BY(mutex) = 0;  // the wall hand less the monotonic one
  AlarmHeap monotonicAlarms ZARVO_GUARDED_BY(mutex);
  AlarmHeap wallAlarms ZARVO_GUARDED_BY(mutex);

  /// Goes on to the next alarm, at the most to `end`; returns what fires there.
  std::vector<AlarmHeap::Due> step(std::int64_t end) ZARVO_REQUIRES(mutex) {
    const std::int64_t wallNext = wallAlarms.nextTime();
    const std::int64_t next =
        std::min(monotonicAlarms.nextTime(),
                 wallNext == AlarmHeap::never ? AlarmHeap::never : wallNext - wallOffset);
    monotonic = std::max(monotonic, std::min(end, next));
    std::vector<AlarmHeap::Due> due = monotonicAlarms.takeDue(monotonic);
    for (AlarmHeap::Due& entry : wallAlarms.takeDue(monotonic + wallOffset)) {
      due.push_back(std::move(entry));
    }
    return due;
  }
};

SimulatedClock::SimulatedClock(foundation::Date now) : state_(std::make_unique<State>()) {
  setNow(now);
}

SimulatedClock::~SimulatedClock() = default;

void SimulatedClock::advance(foundation::TimeInterval interval) {
  std::int64_t end = 0;
  {
    foundation::MutexLock lock(state_->mutex);
    end = state_->monotonic + clampedNanoseconds(foundation::durationOf(interval));
  }
  for (bool arrived = false; !arrived;) {
    std::vector<AlarmHeap::Due> due;
    {
      foundation::MutexLock lock(state_->mutex);
      due = state_->step(end);
      arrived = state_->monotonic >= end && due.empty();
    }
    fire(due);
  }
}

void SimulatedClock::setNow(foundation::Date date) {
  std::vector<AlarmHeap::Due> due;
  {
    foundation::MutexLock lock(state_->mutex);
    state_->wallOffset = clampedNanoseconds(date.time_since_epoch()) - state_->monotonic;
    due = state_->step(state_->monotonic);
  }
  fire(due);
}

foundation::Date SimulatedClock::now() {
  foundation::MutexLock lock(state_->mutex);
  return foundation::Date(std::chrono::floor<foundation::Date::duration>(
      std::chrono::nanoseconds(state_->monotonic + state_->wallOffset)));
}

Clock::MonotonicTime SimulatedClock::monotonicNow() {
  foundation::MutexLock lock(state_->mutex);
  return MonotonicTime(std::chrono::nanoseconds(state_->monotonic));
}

std::uint64_t SimulatedClock::set(const std::shared_ptr<Alarm>& alarm, Hand hand,
                                  std::int64_t deadline, std::int64_t interval, std::int64_t) {
  std::vector<AlarmHeap::Due> due;
  std::uint64_t ticket = 0;
  {
    foundation::MutexLock lock(state_->mutex);
    const bool isWall = hand == Hand::wall;
    (isWall ? state_->monotonicAlarms : state_->wallAlarms).remove(*alarm);
    ticket =
        (isWall ? state_->wallAlarms : state_->monotonicAlarms).set(alarm, deadline, interval, 0);
    due = state_->step(state_->monotonic);
  }
  fire(due);
  return ticket;
}

}  // namespace platform
