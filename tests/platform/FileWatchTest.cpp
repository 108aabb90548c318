#include "platform/FileWatch.h"

#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <future>

#include "platform/FileHandle.h"
#include "platform/FileSystem.h"
#include "tests/support/TemporaryFolder.h"

using platform::FileHandle;
using platform::FileWatch;
using platform::Queue;
using platform::QueueRef;

namespace {

class FileWatchTest : public testing::Test {
 protected:
  FileWatchTest() {
    EXPECT_TRUE(platform::FileSystem::createFile(path));
    handle = *FileHandle::openForAppending(path);
    watch = *FileWatch::watch(handle.descriptor(), queue,
                              [this](FileWatch::Event event) { told.set_value(event); });
  }

  support::TemporaryFolder folder;
  std::string path = folder.path("log");
  QueueRef queue = Queue::serialQueue("watch");
  std::promise<FileWatch::Event> told;
  FileHandle handle;
  std::unique_ptr<FileWatch> watch;
};

}  // namespace

TEST_F(FileWatchTest, TellsADeletionThoughTheFileIsOpenAndOtherAttributesChangedBefore) {
  chmod(path.c_str(), 0600);
  unlink(path.c_str());
  EXPECT_EQ(told.get_future().get(), FileWatch::Event::deleted);
}

TEST_F(FileWatchTest, TellsARenaming) {
  rename(path.c_str(), folder.path("other").c_str());
  EXPECT_EQ(told.get_future().get(), FileWatch::Event::renamed);
}

TEST_F(FileWatchTest, FollowsTheFileAndEndsWithTheWatch) {
  std::promise<FileWatch::Event> second;
  const auto other = *FileWatch::watch(handle.descriptor(), queue, [&](FileWatch::Event event) {
    second.set_value(event);
  });
  watch->cancel();
  unlink(path.c_str());
  EXPECT_EQ(second.get_future().get(), FileWatch::Event::deleted);
  queue->sync([] {});
  EXPECT_EQ(told.get_future().wait_for(std::chrono::seconds(0)), std::future_status::timeout);
}
