#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "platform/Clock.h"

namespace platform {

/// A length of time in nanoseconds, clamped to what 64 bits hold (some 292 years).
constexpr std::int64_t clampedNanoseconds(foundation::Date::duration duration) {
  constexpr foundation::Date::duration limit =
      std::chrono::floor<foundation::Date::duration>(std::chrono::nanoseconds(INT64_MAX - 1));
  return std::chrono::nanoseconds(std::clamp(duration, -limit, limit)).count();
}

/// The alarms of one hand of a clock, ordered by the time until which they may wait.
///
/// An alarm that is set to a later time keeps its entry, which moves only when its old time comes:
/// pushing a deadline back again and again costs neither allocation nor reordering. Not thread
/// safe.
class AlarmHeap {
 public:
  static constexpr std::int64_t never = Alarm::never;

  /// Keeps what was set in the alarm and its entry; returns the ticket.
  std::uint64_t set(const std::shared_ptr<Alarm>& alarm, std::int64_t deadline,
                    std::int64_t interval, std::int64_t leeway);

  /// Drops the alarm's entry; nothing happens when another heap holds it.
  void remove(Alarm& alarm);

  /// When to look again; `never` when no alarm is set.
  std::int64_t nextTime() const;

  struct Due {
    std::shared_ptr<Alarm> alarm;
    std::uint64_t ticket;
  };

  /// The alarms whose deadline has passed at `now`, each with its next deadline set.
  std::vector<Due> takeDue(std::int64_t now);

 private:
  using Key = std::pair<std::int64_t, Alarm*>;

  void move(Alarm& alarm, std::int64_t time);
  static std::int64_t latestTime(const Alarm& alarm);

  std::map<Key, std::weak_ptr<Alarm>> entries_;
};

}  // namespace platform
