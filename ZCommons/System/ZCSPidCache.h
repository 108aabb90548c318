#pragma once

#include <cstdint>
#include <unordered_map>

#include "foundation/Mutex.h"
#include "platform/Workspace.h"

/// Which running application each process is, as far as somebody has asked: one cache for the whole
/// process, filled by the look-ups of `NSWorkspaceUtils` and cleared by
/// `RunningApplicationsMonitor`.
///
/// Writers hold the cache's lock for as long as they need to keep what they find out and what they
/// store together; readers do not, and never wait for them. Thread safety: any thread.
///
///     const ZCSPidCache::Lock lock(cache);
///     cache.setRecord(workspace.runningApplicationWithProcessIdentifier(pid), pid);
class ZARVO_CAPABILITY("mutex") ZCSPidCache {
 public:
  /// Holds the writers' lock, which the holder may take again, for the length of a scope.
  class ZARVO_SCOPED_CAPABILITY Lock {
   public:
    explicit Lock(ZCSPidCache& cache) ZARVO_ACQUIRE(cache);
    ~Lock() ZARVO_RELEASE();
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

   private:
    ZCSPidCache& cache_;
  };

  /// The cache of the process.
  static ZCSPidCache& shared();

  ZCSPidCache() = default;
  ZCSPidCache(const ZCSPidCache&) = delete;
  ZCSPidCache& operator=(const ZCSPidCache&) = delete;

  /// The record stored under `pid`; null when there is none.
  platform::RunningApplicationRef recordForPid(std::int32_t pid) const;

  /// setRecord:forPid:
  ///
  /// Stores `record` under `pid`, in place of the one before.
  void setRecord(platform::RunningApplicationRef record, std::int32_t forPid) ZARVO_REQUIRES(this);

  void removeRecordForPid(std::int32_t pid) ZARVO_REQUIRES(this);

 private:
  foundation::RecursiveMutex writers_;

  // Held for one look-up or change only, so that a reader waits for no writer's work.
  mutable foundation::Mutex mutex_;
  std::unordered_map<std::int32_t, platform::RunningApplicationRef> records_
      ZARVO_GUARDED_BY(mutex_);
};
