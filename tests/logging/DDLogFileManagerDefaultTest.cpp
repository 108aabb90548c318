#include <gmock/gmock.h>

#include "foundation/Format.h"
#include "logging/DDLog.h"
#include "logging/DDLogFileManagerDefault.h"
#include "platform/SimulatedClock.h"
#include "tests/support/TemporaryFolder.h"

namespace {

namespace FileSystem = platform::FileSystem;

TEST(DDLogFileManagerDefault, TellsLogFilesByTheirNames) {
  const auto manager = DDLogFileManagerDefault::init();
  const auto isLogFile = [&](const std::string& behindTheApplicationName) {
    return manager->isLogFile("LoggingTests" + behindTheApplicationName);
  };
  for (const char* name : {" 2024-03-09 14-05.log", " 2024-03-09 14-05 2.log",
                           " 2024-03-09 14-05 two.log", "x 2024-03-09 14-05.log"}) {
    EXPECT_TRUE(isLogFile(name)) << name;
  }
  for (const char* name :
       {" 2024-03-09 14-05.txt", " 2024-03-09 14-05", " 2024-03-09 14-5.log",
        " 2024-03-09 14-05 2 3.log", " 2024-03-09_14-05 2.log", " 2024-02-30 14-05.log",
        " 2024-03-09 14-05x.log", "2024-03-09 14-05.log", ".log"}) {
    EXPECT_FALSE(isLogFile(name)) << name;
  }
  EXPECT_FALSE(manager->isLogFile("Others 2024-03-09 14-05.log"));
}

TEST(DDLogFileManagerDefault, NamesFilesAfterTheMinuteAndCounts) {
  const support::TemporaryFolder folder;
  const auto manager = DDLogFileManagerDefault::initWithLogsDirectory(folder.path("a/b"));
  platform::SimulatedClock clock(
      *manager->logFileDateFormatter().dateFromString("2024-03-09 14-05"));
  const platform::Clock::Replacement guard(clock);
  const std::string prefix = folder.path("a/b/LoggingTests 2024-03-09 14-0");
  EXPECT_EQ(manager->createNewLogFile(), prefix + "5.log");
  EXPECT_EQ(manager->createNewLogFile(), prefix + "5 2.log");
  ASSERT_EQ(symlink("/nowhere", (prefix + "5 3.log").c_str()), 0);
  EXPECT_EQ(manager->createNewLogFile(), prefix + "5 4.log");
  clock.advance(60);
  EXPECT_EQ(manager->createNewLogFile(), prefix + "6.log");
}

TEST(DDLogFileManagerDefault, KeepsTheLiveFileAndAsManyArchivedOnesAsSet) {
  struct {
    std::size_t maximum;
    std::size_t archived;
    bool hasLive;
    std::size_t left;
  } const rows[] = {
      {0, 9, true, 10}, {1, 9, true, 2}, {7, 9, true, 8}, {7, 9, false, 7},
      {7, 7, true, 8},  {9, 3, true, 4}, {1, 0, true, 1}, {1, 0, false, 0},
  };
  for (const auto& row : rows) {
    const support::TemporaryFolder folder;
    const auto manager = DDLogFileManagerDefault::initWithLogsDirectory(folder.path());
    manager->setMaximumNumberOfLogFiles(0);
    const std::string stranger = folder.path("Others 2024-03-09 14-05.log");
    ASSERT_TRUE(FileSystem::createFile(stranger));
    std::string newest;
    for (std::size_t i = 0; i < row.archived; ++i) {
      newest = manager->createNewLogFile();
      DDLogFileInfo(newest).setIsArchived(true);
    }
    if (row.hasLive) newest = manager->createNewLogFile();
    manager->setMaximumNumberOfLogFiles(row.maximum);
    DDLog::flushLog();
    const std::string label = foundation::format("%zu of %zu", row.maximum, row.archived);
    EXPECT_EQ(manager->unsortedLogFileNames().size(), row.left) << label;
    EXPECT_TRUE(FileSystem::exists(stranger)) << label;
    EXPECT_EQ(FileSystem::exists(newest), row.left > 0) << label;
  }
}

}  // namespace
