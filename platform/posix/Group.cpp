#include "platform/Group.h"

#include "foundation/Assertion.h"

namespace platform {

void Group::enter() {
  foundation::MutexLock lock(mutex_);
  ++members_;
}

void Group::leave() {
  std::vector<std::pair<QueueRef, Block>> notifications;
  {
    foundation::MutexLock lock(mutex_);
    ZARVO_ASSERT(members_ > 0);
    if (--members_ > 0) return;
    notifications.swap(notifications_);
    empty_.notifyAll();
  }
  for (auto& [queue, block] : notifications) queue->async(std::move(block));
}

void Group::wait() {
  foundation::MutexLock lock(mutex_);
  if (members_ == 0) return;
  const BlockingRegion waiting;
  while (members_ > 0) empty_.wait(mutex_);
}

bool Group::wait(std::chrono::nanoseconds duration) {
  const auto deadline = std::chrono::steady_clock::now() + duration;
  foundation::MutexLock lock(mutex_);
  const BlockingRegion waiting;
  while (members_ > 0) {
    const auto left = deadline - std::chrono::steady_clock::now();
    if (left <= left.zero()) return false;
    empty_.waitFor(mutex_, left);
  }
  return true;
}

void Group::notify(QueueRef queue, Block block) {
  {
    foundation::MutexLock lock(mutex_);
    if (members_ > 0)
      return notifications_.emplace_back(std::move(queue), std::move(block)), void();
  }
  queue->async(std::move(block));
}

}  // namespace platform
