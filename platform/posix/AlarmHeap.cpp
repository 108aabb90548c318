#include "platform/posix/AlarmHeap.h"

namespace platform {

std::int64_t AlarmHeap::latestTime(const Alarm& alarm) {
  if (alarm.deadline_ > never - alarm.leeway_) return never;
  return alarm.deadline_ + alarm.leeway_;
}

std::uint64_t AlarmHeap::set(const std::shared_ptr<Alarm>& alarm, std::int64_t deadline,
                             std::int64_t interval, std::int64_t leeway) {
  alarm->deadline_ = deadline;
  alarm->interval_ = interval;
  alarm->leeway_ = leeway;
  const std::int64_t time = latestTime(*alarm);
  if (time == never) {
    remove(*alarm);
  } else if (alarm->entry_ == never) {
    entries_.insert_or_assign(Key(time, alarm.get()), alarm);
    alarm->entry_ = time;
  } else if (time < alarm->entry_) {
    move(*alarm, time);
  }
  return ++alarm->ticket_;
}

void AlarmHeap::remove(Alarm& alarm) {
  if (entries_.erase(Key(alarm.entry_, &alarm)) > 0) alarm.entry_ = never;
}

void AlarmHeap::move(Alarm& alarm, std::int64_t time) {
  auto entry = entries_.extract(Key(alarm.entry_, &alarm));
  entry.key().first = time;
  entries_.insert(std::move(entry));
  alarm.entry_ = time;
}

std::int64_t AlarmHeap::nextTime() const {
  return entries_.empty() ? never : entries_.begin()->first.first;
}

std::vector<AlarmHeap::Due> AlarmHeap::takeDue(std::int64_t now) {
  std::vector<Due> due;
  while (!entries_.empty()) {
    const auto first = entries_.begin();
    const std::shared_ptr<Alarm> alarm = first->second.lock();
    if (!alarm) {
      entries_.erase(first);
      continue;
    }
    if (alarm->deadline_ > now) {
      if (first->first.first > now) return due;
      move(*alarm, latestTime(*alarm));
      continue;
    }
    due.push_back({alarm, alarm->ticket_});
    if (alarm->interval_ <= 0) {
      alarm->deadline_ = never;
      remove(*alarm);
      continue;
    }
    const std::int64_t missed = (now - alarm->deadline_) / alarm->interval_;
    alarm->deadline_ += (missed + 1) * alarm->interval_;
    move(*alarm, latestTime(*alarm));
  }
  return due;
}

}  // namespace platform
