#include <gtest/gtest.h>

#include "ZCommons/System/RunningApplicationsMonitor.h"
#include "tests/ZCommons/System/FakeWorkspace.h"

namespace {

using support::application;
using Change = platform::RunningApplicationsChange;
using Kind = Change::Kind;
using Pids = std::vector<std::int32_t>;

class RunningApplicationsMonitorTest : public testing::Test {
 protected:
  void expectPids(const Pids& pids) const {
    EXPECT_EQ(monitor_->appPids(), pids);
    Pids mirrored;
    for (const auto& app : monitor_->runningApps()) mirrored.push_back(app->processIdentifier);
    EXPECT_EQ(mirrored, pids);
  }

  Pids cached() const {
    Pids pids;
    for (std::int32_t pid = 0; pid < 10; ++pid) {
      if (cache_.recordForPid(pid)) pids.push_back(pid);
    }
    return pids;
  }

  support::FakeWorkspace workspace_;
  const platform::Workspace::Replacement replacement_{workspace_};
  ZCSPidCache cache_;
  std::shared_ptr<RunningApplicationsMonitor> monitor_;
};

TEST_F(RunningApplicationsMonitorTest, FollowsTheListIndexForIndex) {
  workspace_.setList({application(1), application(2), application(3)});
  monitor_ = RunningApplicationsMonitor::monitor(cache_);
  expectPids({1, 2, 3});
  EXPECT_EQ(cached(), Pids()) << "the cache is filled on demand only";
  for (std::int32_t pid = 0; pid < 10; ++pid) {
    const ZCSPidCache::Lock lock(cache_);
    cache_.setRecord(application(pid), pid);
  }

  const struct {
    Change change;
    Pids mirror;
    Pids cached;
  } steps[] = {
      {{Kind::insertion, {0, 2}, {application(4), application(5)}, {}},
       {4, 1, 5, 2, 3},
       {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}},
      {{Kind::removal, {1, 2, 4}, {}, {application(1), application(5), application(3)}},
       {4, 2},
       {0, 2, 4, 6, 7, 8, 9}},
      {{Kind::setting, {}, {application(6)}, {}}, {4, 2}, {0, 2, 4, 6, 7, 8, 9}},
      {{Kind::replacement, {0}, {application(6)}, {application(4)}}, {4, 2}, {0, 2, 4, 6, 7, 8, 9}},
      {{Kind::insertion, {2}, {application(7)}, {}}, {4, 2, 7}, {0, 2, 4, 6, 7, 8, 9}},
      {{Kind::removal, {0, 1, 2, 3}, {}, {}}, {}, {0, 6, 8, 9}},
      {{Kind::insertion, {1, 0}, {application(8), application(9)}, {}}, {9}, {0, 6, 8, 9}},
  };
  for (const auto& step : steps) {
    workspace_.tell(step.change);
    expectPids(step.mirror);
    EXPECT_EQ(cached(), step.cached);
  }
}

TEST_F(RunningApplicationsMonitorTest, IgnoresOtherKeyPaths) {
  workspace_.setList({application(1)});
  monitor_ = RunningApplicationsMonitor::monitor(cache_);
  const Change removal{Kind::removal, {0}, {}, {}};
  monitor_->observeValueForKeyPath("frontmostApplication", &workspace_, removal, nullptr);
  monitor_->observeValueForKeyPath(nullptr, &workspace_, removal, nullptr);
  expectPids({1});
}

TEST_F(RunningApplicationsMonitorTest, LeavesTheWorkspaceEvenWhenItRaises) {
  monitor_ = RunningApplicationsMonitor::monitor(cache_);
  ASSERT_TRUE(workspace_.isObserved());
  workspace_.refusesToBeLeft = true;
  EXPECT_NO_THROW(monitor_.reset());
  EXPECT_FALSE(workspace_.isObserved());
}

}  // namespace
