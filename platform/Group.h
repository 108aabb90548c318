#pragma once

#include <chrono>
#include <utility>
#include <vector>

#include "foundation/Mutex.h"
#include "platform/Queue.h"

namespace platform {

/// Counts pieces of work that are under way, and tells when none is left. Thread safety: any
/// thread. A group may be destroyed as soon as a `wait` has returned.
class Group {
 public:
  void enter();

  /// Ends one piece of work; every `enter` needs one.
  void leave();

  /// Waits until no work is under way; returns at once when none is.
  void wait();

  /// As `wait`, no longer than `duration`; returns whether the work was done.
  bool wait(std::chrono::nanoseconds duration);

  /// Queues `block` on `queue` once no work is under way, at once when none is.
  void notify(QueueRef queue, Block block);

 private:
  foundation::Mutex mutex_;
  foundation::Condition empty_;
  std::size_t members_ ZARVO_GUARDED_BY(mutex_) = 0;
  std::vector<std::pair<QueueRef, Block>> notifications_ ZARVO_GUARDED_BY(mutex_);
};

}  // namespace platform
