#include <atomic>
#include <thread>

#include <gtest/gtest.h>

#include "ZCommons/System/NSWorkspaceUtils.h"
#include "ZCommons/System/ZCSPidCache.h"
#include "tests/ZCommons/System/FakeWorkspace.h"

namespace {

using support::application;
using Change = platform::RunningApplicationsChange;

/// The workspace that the process's one monitor observes: in force to the end.
support::FakeWorkspace& workspace() {
  static support::FakeWorkspace& workspace = *new support::FakeWorkspace;
  [[maybe_unused]] static auto& replacement = *new platform::Workspace::Replacement(workspace);
  return workspace;
}

TEST(NSWorkspaceUtils, AsksOnceForWhatItFinds) {
  workspace().setList({application(11, "org.example.Edit", "Schreiber"), application(12, "tool")});
  EXPECT_EQ(NSWorkspaceUtils::bundleIdentifierByPid(11), "org.example.Edit");
  const int asked = workspace().questions();
  EXPECT_EQ(NSWorkspaceUtils::localizedNameByPid(11), "Schreiber");
  EXPECT_EQ(NSWorkspaceUtils::bundleIdentifierByPid(11), "org.example.Edit");
  EXPECT_EQ(workspace().questions(), asked);

  for (int i = 1; i <= 2; ++i) {  // a missing property, and no application: asked each time
    EXPECT_EQ(NSWorkspaceUtils::localizedNameByPid(12), std::nullopt);
    EXPECT_EQ(NSWorkspaceUtils::bundleIdentifierByPid(13), std::nullopt);
    EXPECT_EQ(workspace().questions(), asked + 2 * i);
  }
  EXPECT_EQ(ZCSPidCache::shared().recordForPid(12), nullptr);
}

TEST(NSWorkspaceUtils, ForgetsWhatHasEnded) {
  workspace().setList({});
  NSWorkspaceUtils::initUtils();
  NSWorkspaceUtils::initUtils();
  const auto old = application(21, "org.example.Old");
  {
    const ZCSPidCache::Lock lock(ZCSPidCache::shared());
    ZCSPidCache::shared().removeRecordForPid(21);
  }
  workspace().setList({old});
  workspace().tell({Change::Kind::insertion, {0}, {old}, {}});
  EXPECT_EQ(NSWorkspaceUtils::bundleIdentifierByPid(21), "org.example.Old");
  workspace().setList({application(21, "org.example.New")});
  EXPECT_EQ(NSWorkspaceUtils::bundleIdentifierByPid(21), "org.example.Old");
  workspace().tell({Change::Kind::removal, {0}, {}, {old}});
  EXPECT_EQ(NSWorkspaceUtils::bundleIdentifierByPid(21), "org.example.New");
}

TEST(NSWorkspaceUtils, AnswersFromTheCacheWhileSomebodyWrites) {
  workspace().setList({application(31, "org.example.Edit")});
  ASSERT_TRUE(NSWorkspaceUtils::bundleIdentifierByPid(31));
  const ZCSPidCache::Lock lock(ZCSPidCache::shared());
  std::optional<std::string> answer;
  std::thread([&] { answer = NSWorkspaceUtils::bundleIdentifierByPid(31); }).join();
  EXPECT_EQ(answer, "org.example.Edit");
}

TEST(NSWorkspaceUtils, ManyThreadsAskWhileApplicationsEnd) {
  const auto app = application(41, "org.example.Edit", "Edit");
  workspace().setList({app});
  NSWorkspaceUtils::initUtils();
  std::atomic<bool> done{false};
  std::vector<std::thread> readers;
  for (int i = 0; i < 3; ++i) {
    readers.emplace_back([&] {
      while (!done) EXPECT_EQ(NSWorkspaceUtils::localizedNameByPid(41), "Edit");
    });
  }
  for (int i = 0; i < 2000; ++i) {
    workspace().tell({Change::Kind::insertion, {0}, {app}, {}});
    workspace().tell({Change::Kind::removal, {0}, {}, {app}});
  }
  done = true;
  for (std::thread& reader : readers) reader.join();
}

}  // namespace
