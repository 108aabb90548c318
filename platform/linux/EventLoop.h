#pragma once

#include <functional>
#include <map>
#include <memory>

#include "foundation/Mutex.h"

namespace platform {

/// One thread that waits for descriptors to become readable, for timers and watches.
///
/// Made on first use and never destroyed. Thread safety: any thread.
class EventLoop {
 public:
  static EventLoop& shared();

  /// Calls `callback` on the loop's thread whenever `descriptor` is readable, until `unwatch`. The
  /// callback must be quick, and read what makes the descriptor readable. The descriptor stays the
  /// caller's, who closes it after `unwatch`.
  void watch(int descriptor, std::function<void()> callback);

  /// Ends the watch. A call that has begun on the loop's thread may still be running.
  void unwatch(int descriptor);

 private:
  using Callback = std::shared_ptr<const std::function<void()>>;

  EventLoop();
  void run();
  Callback callback(int descriptor);

  const int epoll_;
  foundation::Mutex mutex_;
  std::map<int, Callback> callbacks_ ZARVO_GUARDED_BY(mutex_);
};

}  // namespace platform
