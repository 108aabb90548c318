#pragma once

#include <memory>

#include "foundation/Date.h"
#include "foundation/Mutex.h"
#include "platform/Queue.h"
#include "platform/Timer.h"

/// Runs one block on a queue at most once for each burst of requests.
///
/// Three policies, which may be mixed on one object: after calm (debounce), at the end of an
/// interval (trailing throttle), at once (leading throttle). All share one timer: while it is
/// pending, the two throttles ignore requests, and a request for calm pushes it back, whatever it
/// was started for. A pending timer keeps the object alive.
///
/// Thread safety: any thread. A request that is not made on the work queue may come just after the
/// timer has fired, and counts for the burst that ends then.
///
///     const auto save =
///         ZCLExecuteBlockDelayed::initWithTimeout(0.5, 0.1, queue, [store] { store->save(); });
///     save->executeOnceAfterCalm();   // on every change
class ZCLExecuteBlockDelayed : public std::enable_shared_from_this<ZCLExecuteBlockDelayed> {
 public:
  /// initWithTimeout:leeway:queue:block:
  ///
  /// `timeout` is the interval, `leeway` how late the timer may be, both in seconds; `block` runs
  /// on `queue`. A timeout not above 0 is over at once; one beyond 292 years never is.
  static std::shared_ptr<ZCLExecuteBlockDelayed> initWithTimeout(foundation::TimeInterval timeout,
                                                                 foundation::TimeInterval leeway,
                                                                 platform::QueueRef queue,
                                                                 platform::Block block);

  ~ZCLExecuteBlockDelayed();
  ZCLExecuteBlockDelayed(const ZCLExecuteBlockDelayed&) = delete;
  ZCLExecuteBlockDelayed& operator=(const ZCLExecuteBlockDelayed&) = delete;

  /// Has the block run one interval after the last request of a burst.
  void executeOnceAfterCalm();

  /// Has the block run one interval after the first request of a burst.
  void executeOnceForIntervalDelayed();

  /// Has the block run at once; further requests are ignored for one interval.
  void executeOnceForInterval();

  /// Forgets the pending timer, if there is one. Once this has returned on the work queue, that
  /// timer runs nothing more. A block that `executeOnceForInterval` has queued runs all the same.
  void stopUpdateTimer();

 private:
  ZCLExecuteBlockDelayed(foundation::TimeInterval timeout, foundation::TimeInterval leeway,
                         platform::QueueRef queue, platform::Block block);

  void createTimer(platform::Block handler) ZARVO_REQUIRES(mutex_);
  void createTimerThatRunsTheBlock() ZARVO_REQUIRES(mutex_);
  void startTimer() ZARVO_REQUIRES(mutex_);

  const platform::QueueRef workQueue_;
  const foundation::TimeInterval interval_;
  const foundation::TimeInterval leeway_;
  platform::Block block_;  // run on the work queue alone
  foundation::Mutex mutex_;

  // Null when none is pending; its handler holds this object.
  platform::TimerRef updateTimer_ ZARVO_GUARDED_BY(mutex_);
};
