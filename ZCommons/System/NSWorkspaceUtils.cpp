#include "ZCommons/System/NSWorkspaceUtils.h"

#include <memory>

#include "ZCommons/System/RunningApplicationsMonitor.h"
#include "ZCommons/System/ZCSPidCache.h"
#include "foundation/Assertion.h"
#include "platform/Workspace.h"

namespace {

using platform::RunningApplication;
using platform::RunningApplicationRef;
using Property = std::optional<std::string> RunningApplication::*;

std::optional<std::string> propertyByPid(Property property, std::int32_t pid) {
  NSWorkspaceUtils::initUtils();
  ZCSPidCache& cache = ZCSPidCache::shared();
  const RunningApplicationRef cached = cache.recordForPid(pid);
  if (cached && *cached.*property) return *cached.*property;

  const ZCSPidCache::Lock lock(cache);
  const RunningApplicationRef asked =
      platform::Workspace::current().runningApplicationWithProcessIdentifier(pid);
  if (!asked || !(*asked.*property)) return std::nullopt;
  cache.setRecord(asked, pid);
  return *asked.*property;
}

}  // namespace

void NSWorkspaceUtils::initUtils() {
  static const auto& monitor =
      *new std::shared_ptr<RunningApplicationsMonitor>(RunningApplicationsMonitor::monitor());
  ZARVO_ASSERT(monitor != nullptr);
}

std::optional<std::string> NSWorkspaceUtils::bundleIdentifierByPid(std::int32_t pid) {
  return propertyByPid(&RunningApplication::bundleIdentifier, pid);
}

std::optional<std::string> NSWorkspaceUtils::localizedNameByPid(std::int32_t pid) {
  return propertyByPid(&RunningApplication::localizedName, pid);
}
