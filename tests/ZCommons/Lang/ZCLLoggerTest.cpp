#include <gmock/gmock.h>

#include "ZCommons/Lang/ZCLLogger.h"
#include "foundation/URL.h"
#include "logging/DDLogMacros.h"
#include "platform/FileSystem.h"
#include "platform/Folders.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using foundation::ChangePhase;
using foundation::URL;
using testing::ElementsAre;
namespace FileSystem = platform::FileSystem;

/// Library and temporary folders in a fresh folder; without a Library when it is told so.
class PrivateFolders : public platform::Folders {
 public:
  foundation::Result<URL> url(platform::SearchPathDirectory, platform::SearchPathDomain) override {
    if (!hasLibrary) return foundation::Error("none", 1, "none");
    return URL::fileURLWithPath(folder.path("Library"));
  }
  URL temporaryDirectory() override { return URL::fileURLWithPath(folder.path("tmp")); }

  bool hasLibrary = true;
  const support::TemporaryFolder folder;
  const platform::Folders::Replacement guard{*this};
};

std::size_t filesIn(const std::string& path) {
  const auto names = FileSystem::contentsOfDirectory(path);
  return names ? names->size() : 0;
}

TEST(ZCLLogger, LogsToTheFolderOfTheIdentifierOnce) {
  const PrivateFolders folders;
  ZCLLogger& logger = ZCLLogger::singleton();
  EXPECT_EQ(logger.fileLogger(), nullptr);
  DDLogError(1, "reaches no logger");
  logger.initLogger("com.example.product");
  logger.initLogger("com.example.other");
  DDLogInfo(1, "text");
  DDLogDebug(1, "below the level");
  logger.flush();
  EXPECT_EQ(filesIn(folders.folder.path("Library/Logs")), 1U);
  const auto manager = logger.fileLogger()->logFileManager();
  EXPECT_EQ(manager->logsDirectory(), folders.folder.path("Library/Logs/com.example.product"));
  const auto content = FileSystem::readFile(manager->sortedLogFilePaths().at(0));
  EXPECT_EQ(foundation::textOf(*content).substr(25), "text\n");
  EXPECT_EQ(logger.fileLogger()->maximumFileSize(), 512000U);
  EXPECT_EQ(manager->maximumNumberOfLogFiles(), 7U);
}

TEST(ZCLLogger, FallsBackToTheTemporaryAndTheDefaultFolder) {
  PrivateFolders folders;
  folders.hasLibrary = false;
  ZCLLogger::singleton().initLogger(nullptr);
  EXPECT_EQ(ZCLLogger::singleton().fileLogger()->logFileManager()->logsDirectory(),
            folders.folder.path("tmp/Logs/ZCLLoggerTests"));
}

TEST(ZCLLogger, ChangesTheLevelAfterTheRollOnTheMainQueue) {
  const PrivateFolders folders;
  ZCLLogger& logger = ZCLLogger::singleton();
  std::vector<std::string> changes;
  const auto observation = logger.observeLogLevel([&](ChangePhase phase) {
    changes.push_back((phase == ChangePhase::willChange ? "will " : "did ") +
                      std::to_string(DDLog::globalLogLevel()));
  });
  logger.setLogLevel(15);
  logger.initLogger("com.example.product");
  DDLogInfo(1, "text");
  struct {
    std::uint32_t level;
    std::uint32_t reported;
  } const rows[] = {{15, 15}, {3, 7}, {31, 7}, {7, 7}};
  for (const auto& row : rows) {
    logger.setLogLevel(row.level);
    logger.flush();
    logger.fileLogger()->loggerQueue()->sync([] {});
    platform::MainQueue::drain();
    EXPECT_EQ(logger.logLevel(), row.reported) << row.level;
  }
  EXPECT_THAT(changes, ElementsAre("will 7", "will 7", "did 15", "will 15", "did 3", "will 3",
                                   "did 31", "will 31", "did 7"));
  logger.flush();
  EXPECT_GT(filesIn(folders.folder.path("Library/Logs/com.example.product")), 1U);
}

TEST(ZCLFileLogger, FlushesQuietlyWhateverTheFileSystemDoes) {
  PrivateFolders folders;
  ASSERT_TRUE(FileSystem::createDirectory(folders.folder.path("Library")));
  ASSERT_TRUE(FileSystem::createFile(folders.folder.path("Library/Logs")));
  ZCLLogger::singleton().initLogger("com.example.product");
  ZCLLogger::singleton().flush();
  DDLogError(1, "lost");
  ZCLLogger::singleton().flush();
}

}  // namespace
