#include <sys/stat.h>
#include <unistd.h>

#include <future>

#include <gtest/gtest.h>
#include <stdio.h>

#include "platform/FileHandle.h"
#include "platform/FileSystem.h"
#include "platform/FileWatch.h"
#include "tests/support/TemporaryFolder.h"

using platform::FileWatch;
using platform::Queue;

TEST(FileWatch, FollowsAnOpenFileUntilItIsCancelled) {
  const support::TemporaryFolder folder;
  const std::string path = folder.path("log");
  const std::string newPath = folder.path("other");
  ASSERT_TRUE(platform::FileSystem::createFile(path));
  const auto handle = *platform::FileHandle::openForAppending(path);
  const platform::QueueRef queue = Queue::serialQueue("watch");
  const auto watch = [&](std::promise<FileWatch::Event>& told) {
    return *FileWatch::watch(handle.descriptor(), queue,
                             [&told](FileWatch::Event event) { told.set_value(event); });
  };

  std::promise<FileWatch::Event> renamed, deleted, nothing;
  const auto first = watch(renamed);
  rename(path.c_str(), newPath.c_str());
  EXPECT_EQ(renamed.get_future().get(), FileWatch::Event::renamed);
  first->cancel();

  const auto cancelled = watch(nothing);
  const auto second = watch(deleted);
  cancelled->cancel();
  // Other attributes are no event.
  chmod(newPath.c_str(), 0600);
  unlink(newPath.c_str());
  EXPECT_EQ(deleted.get_future().get(), FileWatch::Event::deleted);
  queue->sync([] {});
  EXPECT_EQ(nothing.get_future().wait_for(std::chrono::seconds(0)), std::future_status::timeout);
}
