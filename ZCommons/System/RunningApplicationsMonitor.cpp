#include "ZCommons/System/RunningApplicationsMonitor.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

using platform::RunningApplicationRef;
using platform::RunningApplicationsChange;

namespace {

constexpr std::string_view runningApplicationsKey = "runningApplications";

}  // namespace

std::shared_ptr<RunningApplicationsMonitor> RunningApplicationsMonitor::monitor(
    ZCSPidCache& cache) {
  std::shared_ptr<RunningApplicationsMonitor> monitor(new RunningApplicationsMonitor(cache));
  monitor->fillCache();
  monitor->observe();
  return monitor;
}

RunningApplicationsMonitor::RunningApplicationsMonitor(ZCSPidCache& cache)
    : workspace_(platform::Workspace::current()), cache_(cache) {}

RunningApplicationsMonitor::~RunningApplicationsMonitor() = default;

void RunningApplicationsMonitor::fillCache() {
  std::vector<RunningApplicationRef> list = workspace_.runningApplications();
  const ZCSPidCache::Lock lock(cache_);
  runningApps_ = std::move(list);
  appPids_.clear();
  for (const RunningApplicationRef& app : runningApps_) {
    appPids_.push_back(app->processIdentifier);
  }
}

void RunningApplicationsMonitor::observe() {
  observation_ = workspace_.observeRunningApplications(
      [weak = weak_from_this(), workspace = &workspace_](const RunningApplicationsChange& change) {
        const auto self = weak.lock();
        if (!self) return;
        self->observeValueForKeyPath(runningApplicationsKey, workspace, change, nullptr);
      });
}

void RunningApplicationsMonitor::observeValueForKeyPath(
    foundation::NullableText keyPath, [[maybe_unused]] const platform::Workspace* ofObject,
    const RunningApplicationsChange& change, [[maybe_unused]] const void* context) {
  if (keyPath.view() != runningApplicationsKey) return;
  const ZCSPidCache::Lock lock(cache_);
  if (change.kind == RunningApplicationsChange::Kind::removal) remove(change);
  if (change.kind == RunningApplicationsChange::Kind::insertion) insert(change);
}

// From the last position to the first, so that those still to come keep their meaning.
void RunningApplicationsMonitor::remove(const RunningApplicationsChange& change) {
  for (auto index = change.indexes.rbegin(); index != change.indexes.rend(); ++index) {
    if (*index >= appPids_.size()) continue;
    const auto position = static_cast<std::ptrdiff_t>(*index);
    cache_.removeRecordForPid(appPids_[*index]);
    appPids_.erase(appPids_.begin() + position);
    runningApps_.erase(runningApps_.begin() + position);
  }
}

void RunningApplicationsMonitor::insert(const RunningApplicationsChange& change) {
  const std::size_t count = std::min(change.indexes.size(), change.newRecords.size());
  for (std::size_t i = 0; i < count; ++i) {
    if (change.indexes[i] > appPids_.size()) continue;
    const auto position = static_cast<std::ptrdiff_t>(change.indexes[i]);
    appPids_.insert(appPids_.begin() + position, change.newRecords[i]->processIdentifier);
    runningApps_.insert(runningApps_.begin() + position, change.newRecords[i]);
  }
}

std::vector<RunningApplicationRef> RunningApplicationsMonitor::runningApps() const {
  const ZCSPidCache::Lock lock(cache_);
  return runningApps_;
}

std::vector<std::int32_t> RunningApplicationsMonitor::appPids() const {
  const ZCSPidCache::Lock lock(cache_);
  return appPids_;
}
