#include "ZCommons/System/ZCSPidCache.h"

#include <utility>

using platform::RunningApplicationRef;

ZCSPidCache::Lock::Lock(ZCSPidCache& cache) ZARVO_NO_THREAD_SAFETY_ANALYSIS : cache_(cache) {
  cache_.writers_.lock();
}

ZCSPidCache::Lock::~Lock() ZARVO_NO_THREAD_SAFETY_ANALYSIS { cache_.writers_.unlock(); }

ZCSPidCache& ZCSPidCache::shared() {
  static ZCSPidCache& cache = *new ZCSPidCache;
  return cache;
}

RunningApplicationRef ZCSPidCache::recordForPid(std::int32_t pid) const {
  const foundation::MutexLock lock(mutex_);
  const auto found = records_.find(pid);
  return found == records_.end() ? nullptr : found->second;
}

void ZCSPidCache::setRecord(RunningApplicationRef record, std::int32_t forPid) {
  const foundation::MutexLock lock(mutex_);
  records_.insert_or_assign(forPid, std::move(record));
}

void ZCSPidCache::removeRecordForPid(std::int32_t pid) {
  const foundation::MutexLock lock(mutex_);
  records_.erase(pid);
}
