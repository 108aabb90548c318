#include <thread>

#include <gtest/gtest.h>

#include "ZCommons/System/NSWorkspaceUtils.h"
#include "ZCommons/System/ZCSPidCache.h"
#include "tests/ZCommons/System/FakeWorkspace.h"

namespace {

using support::application;
using Kind = platform::RunningApplicationsChange::Kind;

/// The workspace that the process's one monitor observes: in force to the end.
support::FakeWorkspace& workspace() {
  struct InForce {
    support::FakeWorkspace fake;
    platform::Workspace::Replacement replacement{fake};
  };
  static InForce& inForce = *new InForce;
  return inForce.fake;
}

TEST(NSWorkspaceUtils, AsksOnceForWhatItFindsAndThenWaitsForNobody) {
  workspace().list = {application(11, "org.example.Edit", "Schreiber"), application(12, "tool")};
  EXPECT_EQ(NSWorkspaceUtils::bundleIdentifierByPid(11), "org.example.Edit");
  const int asked = workspace().questions;
  {
    const ZCSPidCache::Lock writing(ZCSPidCache::shared());
    std::thread([] {
      EXPECT_EQ(NSWorkspaceUtils::localizedNameByPid(11), "Schreiber");
      EXPECT_EQ(NSWorkspaceUtils::bundleIdentifierByPid(11), "org.example.Edit");
    }).join();
  }
  EXPECT_EQ(workspace().questions, asked);

  for (int i = 1; i <= 2; ++i) {  // a missing property, and no application: asked each time
    EXPECT_EQ(NSWorkspaceUtils::localizedNameByPid(12), std::nullopt);
    EXPECT_EQ(NSWorkspaceUtils::bundleIdentifierByPid(13), std::nullopt);
    EXPECT_EQ(workspace().questions, asked + 2 * i);
  }
  EXPECT_EQ(ZCSPidCache::shared().recordForPid(12), nullptr);
}

TEST(NSWorkspaceUtils, ForgetsWhatHasEnded) {
  static_cast<void>(workspace());
  NSWorkspaceUtils::initUtils();
  const auto old = application(21, "org.example.Old");
  workspace().list = {old};
  workspace().observers.notify({Kind::insertion, {0}, {old}, {}});
  EXPECT_EQ(NSWorkspaceUtils::bundleIdentifierByPid(21), "org.example.Old");
  workspace().list = {application(21, "org.example.New")};
  EXPECT_EQ(NSWorkspaceUtils::bundleIdentifierByPid(21), "org.example.Old");
  workspace().observers.notify({Kind::removal, {0}, {}, {old}});
  EXPECT_EQ(NSWorkspaceUtils::bundleIdentifierByPid(21), "org.example.New");
  const ZCSPidCache::Lock lock(ZCSPidCache::shared());
  ZCSPidCache::shared().removeRecordForPid(21);  // for another round in this process
}

TEST(NSWorkspaceUtils, ManyThreadsAskWhileApplicationsEnd) {
  const auto app = application(41, "org.example.Edit", "Edit");
  workspace().list = {app};
  NSWorkspaceUtils::initUtils();
  std::atomic<bool> done{false};
  std::vector<std::thread> readers;
  for (int i = 0; i < 3; ++i) {
    readers.emplace_back([&] {
      while (!done) EXPECT_EQ(NSWorkspaceUtils::localizedNameByPid(41), "Edit");
    });
  }
  for (int i = 0; i < 2000; ++i) {
    workspace().observers.notify({Kind::insertion, {0}, {app}, {}});
    workspace().observers.notify({Kind::removal, {0}, {}, {app}});
  }
  done = true;
  for (std::thread& reader : readers) reader.join();
}

}  // namespace
