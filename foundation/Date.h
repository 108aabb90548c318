#pragma once

#include <chrono>
#include <cstdint>

namespace foundation {

/// A moment of the wall clock: microseconds since 1970-01-01 00:00 UTC, signed, 64 bits, so it
/// reaches some 292,000 years both ways.
using Date = std::chrono::sys_time<std::chrono::duration<std::int64_t, std::micro>>;

/// A length of time in seconds; may be negative.
using TimeInterval = double;

/// Before every date that a file or a message carries: 0001-01-01 00:00 UTC.
inline constexpr Date distantPast =
    Date(std::chrono::sys_days(std::chrono::year(1) / std::chrono::January / 1));

/// After every date that a file or a message carries: 4001-01-01 00:00 UTC.
inline constexpr Date distantFuture =
    Date(std::chrono::sys_days(std::chrono::year(4001) / std::chrono::January / 1));

/// `interval` as microseconds, cut towards zero and clamped to the range of a date.
constexpr Date::duration durationOf(TimeInterval interval) {
  constexpr double limit = 9.2e18;
  const double microseconds = interval * 1e6;
  if (!(microseconds > -limit)) return Date::duration(static_cast<std::int64_t>(-limit));
  if (microseconds > limit) return Date::duration(static_cast<std::int64_t>(limit));
  return Date::duration(static_cast<std::int64_t>(microseconds));
}

/// Seconds from `earlier` to `later`.
constexpr TimeInterval secondsBetween(Date earlier, Date later) {
  return std::chrono::duration<double>(later - earlier).count();
}

}  // namespace foundation
