#include <gtest/gtest.h>

#include "ZCommons/System/RunningApplicationsMonitor.h"
#include "tests/ZCommons/System/FakeWorkspace.h"

namespace {

using support::application;
using Change = platform::RunningApplicationsChange;
using Kind = Change::Kind;
using Pids = std::vector<std::int32_t>;

TEST(RunningApplicationsMonitor, FollowsTheListIndexForIndex) {
  support::FakeWorkspace workspace;
  const platform::Workspace::Replacement replacement(workspace);
  workspace.list = {application(1), application(2), application(3)};
  ZCSPidCache cache;
  auto monitor = RunningApplicationsMonitor::monitor(cache);
  EXPECT_EQ(monitor->appPids(), (Pids{1, 2, 3}));
  for (std::int32_t pid = 0; pid < 10; ++pid) {
    EXPECT_EQ(cache.recordForPid(pid), nullptr) << "the cache is filled on demand only";
    const ZCSPidCache::Lock lock(cache);
    cache.setRecord(application(pid), pid);
  }

  const struct {
    Change change;
    Pids mirror;
    const char* keyPath = "runningApplications";
  } steps[] = {
      {{Kind::insertion, {0, 2}, {application(4), application(5)}, {}}, {4, 1, 5, 2, 3}},
      {{Kind::removal, {1, 2, 4}, {}, {application(1), application(5), application(3)}}, {4, 2}},
      {{Kind::setting, {}, {application(6)}, {}}, {4, 2}},
      {{Kind::replacement, {0}, {application(6)}, {application(4)}}, {4, 2}},
      {{Kind::insertion, {2}, {application(7)}, {}}, {4, 2, 7}},
      {{Kind::removal, {0}, {}, {}}, {4, 2, 7}, "frontmostApplication"},
      {{Kind::removal, {0}, {}, {}}, {4, 2, 7}, nullptr},
      {{Kind::removal, {0, 1, 2, 3}, {}, {}}, {}},
      {{Kind::insertion, {1, 0}, {application(8), application(9)}, {}}, {9}},
  };
  for (const auto& step : steps) {
    monitor->observeValueForKeyPath(step.keyPath, &workspace, step.change, nullptr);
    EXPECT_EQ(monitor->appPids(), step.mirror);
    Pids mirrored;
    for (const auto& app : monitor->runningApps()) mirrored.push_back(app->processIdentifier);
    EXPECT_EQ(mirrored, step.mirror);
  }
  workspace.observers.notify({Kind::removal, {0}, {}, {}});
  EXPECT_EQ(monitor->appPids(), Pids());
  Pids cached;
  for (std::int32_t pid = 0; pid < 10; ++pid) {
    if (cache.recordForPid(pid)) cached.push_back(pid);
  }
  EXPECT_EQ(cached, (Pids{0, 6, 8}));

  workspace.refusesToBeLeft = true;
  EXPECT_NO_THROW(monitor.reset());
  EXPECT_TRUE(workspace.observers.isEmpty());
}

}  // namespace
