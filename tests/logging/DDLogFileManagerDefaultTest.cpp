#include <gmock/gmock.h>

#include "foundation/Format.h"
#include "logging/DDLog.h"
#include "logging/DDLogFileManagerDefault.h"
#include "platform/SimulatedClock.h"
#include "tests/support/RecordingConsole.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using testing::ElementsAre;
using testing::StartsWith;
namespace FileSystem = platform::FileSystem;

const foundation::Date now =
    *foundation::DateFormatter("yyyy-MM-dd HH:mm", foundation::TimeZone::GMT)
         .dateFromString("2024-03-09 14:05");

TEST(DDLogFileManagerDefault, TellsLogFilesByTheirNames) {
  struct {
    const char* name;  // behind the application name
    bool isLogFile;
  } const rows[] = {
      {" 2024-03-09 14-05.log", true},
      {" 2024-03-09 14-05 2.log", true},
      {" 2024-03-09 14-05 two.log", true},
      {"x 2024-03-09 14-05.log", true},
      {" 2024-03-09 14-05.txt", false},
      {" 2024-03-09 14-05", false},
      {" 2024-03-09 14-5.log", false},
      {" 2024-03-09 14-05 2 3.log", false},
      {" 2024-03-09_14-05 2.log", false},
      {" 2024-02-30 14-05.log", false},
      {" 2024-03-09 14-05x.log", false},
      {"2024-03-09 14-05.log", false},
      {".log", false},
  };
  const auto manager = DDLogFileManagerDefault::init();
  for (const auto& row : rows) {
    EXPECT_EQ(manager->isLogFile(std::string("LoggingTests") + row.name), row.isLogFile)
        << row.name;
  }
  EXPECT_FALSE(manager->isLogFile("Others 2024-03-09 14-05.log"));
}

class WithoutExtension : public DDLogFileManagerDefault {
 public:
  explicit WithoutExtension(std::string_view folder) : DDLogFileManagerDefault(Key(), folder) {}
  std::string newLogFileName() const override { return "name"; }
};

TEST(DDLogFileManagerDefault, NamesFilesAfterTheMinuteAndCounts) {
  platform::SimulatedClock clock(now);
  const platform::Clock::Replacement guard(clock);
  const support::TemporaryFolder folder;
  const auto manager = DDLogFileManagerDefault::initWithLogsDirectory(folder.path("a/b"));
  const std::string prefix = folder.path("a/b/LoggingTests 2024-03-09 14-0");
  EXPECT_EQ(manager->createNewLogFile(), prefix + "5.log");
  EXPECT_EQ(manager->createNewLogFile(), prefix + "5 2.log");
  ASSERT_EQ(symlink("/nowhere", (prefix + "5 3.log").c_str()), 0);
  EXPECT_EQ(manager->createNewLogFile(), prefix + "5 4.log");
  clock.advance(60);
  EXPECT_EQ(manager->createNewLogFile(), prefix + "6.log");

  const auto bare = std::make_shared<WithoutExtension>(folder.path());
  EXPECT_EQ(bare->createNewLogFile(), folder.path("name"));
  EXPECT_EQ(bare->createNewLogFile(), folder.path("name 2"));
  EXPECT_EQ(manager->logFileDateFormatter().stringFromDate(now), "2024-03-09 14-05");
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
    if (row.hasLive) {
      EXPECT_EQ(manager->sortedLogFilePaths().front(), newest) << label;
    }
  }
}

TEST(DDLogFileManagerDefault, TellsItsObserversTheOldAndTheNewCount) {
  const support::TemporaryFolder folder;
  const auto manager = DDLogFileManagerDefault::initWithLogsDirectory(folder.path());
  std::vector<std::string> changes;
  auto observation =
      manager->observeMaximumNumberOfLogFiles([&](std::size_t oldCount, std::size_t newCount) {
        changes.push_back(foundation::format("%zu %zu", oldCount, newCount));
      });
  manager->setMaximumNumberOfLogFiles(7);
  manager->setMaximumNumberOfLogFiles(7);
  observation.stop();
  manager->setMaximumNumberOfLogFiles(8);
  EXPECT_THAT(changes, ElementsAre("5 7", "7 7"));
}

TEST(DDLogFileManagerDefault, SaysWhyItsFolderCannotBeMade) {
  const support::TemporaryFolder folder;
  const support::RecordingConsole console;
  ASSERT_TRUE(FileSystem::createFile(folder.path("file")));
  const auto manager = DDLogFileManagerDefault::initWithLogsDirectory(folder.path("file/logs"));
  EXPECT_EQ(manager->logsDirectory(), folder.path("file/logs"));
  EXPECT_TRUE(manager->unsortedLogFilePaths().empty());
  const auto line = StartsWith("DDFileLogManagerDefault: Error creating logsDirectory: ");
  EXPECT_THAT(console.lines(), ElementsAre(line, line));
}

}  // namespace
