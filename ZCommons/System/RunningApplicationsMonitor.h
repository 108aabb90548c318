#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "ZCommons/System/ZCSPidCache.h"
#include "foundation/NullableText.h"
#include "foundation/ObserverList.h"
#include "platform/Workspace.h"

/// Keeps the pid cache right: mirrors the workspace's list of running applications, and takes the
/// process ids of those that end out of the cache.
///
/// Ends its observation when it is destroyed. Thread safety: any thread; changes are handled one at
/// a time, under the cache's lock.
class RunningApplicationsMonitor : public std::enable_shared_from_this<RunningApplicationsMonitor> {
 public:
  /// init
  ///
  /// A monitor of the workspace in force that has taken its list and observes it, for `cache`,
  /// which must outlive it.
  static std::shared_ptr<RunningApplicationsMonitor> monitor(
      ZCSPidCache& cache = ZCSPidCache::shared());

  ~RunningApplicationsMonitor();
  RunningApplicationsMonitor(const RunningApplicationsMonitor&) = delete;
  RunningApplicationsMonitor& operator=(const RunningApplicationsMonitor&) = delete;

  /// Takes the workspace's list over anew. The cache stays as it is.
  void fillCache();

  /// observeValueForKeyPath:ofObject:change:context:
  ///
  /// Handles a change of the list. Only the key path "runningApplications" counts, and of the
  /// changes only removals and insertions; positions outside the mirror are passed over.
  void observeValueForKeyPath(foundation::NullableText keyPath, const platform::Workspace* ofObject,
                              const platform::RunningApplicationsChange& change,
                              const void* context);

  /// The mirror of the workspace's list, and the process id of each of its records.
  std::vector<platform::RunningApplicationRef> runningApps() const;
  std::vector<std::int32_t> appPids() const;

 private:
  explicit RunningApplicationsMonitor(ZCSPidCache& cache);

  void observe();
  void remove(const platform::RunningApplicationsChange& change) ZARVO_REQUIRES(cache_);
  void insert(const platform::RunningApplicationsChange& change) ZARVO_REQUIRES(cache_);

  platform::Workspace& workspace_;
  ZCSPidCache& cache_;

  // appPids_[i] is the process id of runningApps_[i].
  std::vector<platform::RunningApplicationRef> runningApps_ ZARVO_GUARDED_BY(cache_);
  std::vector<std::int32_t> appPids_ ZARVO_GUARDED_BY(cache_);
  foundation::Observation observation_;
};
