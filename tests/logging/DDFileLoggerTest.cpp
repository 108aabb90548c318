#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "foundation/NSException.h"
#include "logging/DDFileLogger.h"
#include "platform/SimulatedClock.h"
#include "tests/logging/FileLog.h"
#include "tests/support/RecordingConsole.h"

namespace {

using logging_test::FileLog;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
namespace FileSystem = platform::FileSystem;

TEST(DDFileLogger, WritesOneLineAMessage) {
  FileLog log;
  EXPECT_FALSE(FileSystem::exists(log.folder.path("deep")));
  log.log("text");
  log.log("with an end\n");
  log.log("two\nlines");
  const auto data = FileSystem::readFile(log.livePath());
  const std::string time =
      "[0-9]{4}/[01][0-9]/[0-3][0-9] [0-2][0-9]:[0-5][0-9]:[0-5][0-9]:[0-9]{3}  ";
  EXPECT_THAT(
      std::string(foundation::textOf(*data)),
      testing::MatchesRegex(time + "text\n" + time + "with an end\n" + time + "two\nlines\n"));
  EXPECT_EQ(*log.logger->loggerQueue()->label(), "cocoa.quillwort.fileLogger");
  EXPECT_EQ(log.logger->maximumFileSize(), 1048576U);
  EXPECT_EQ(log.logger->rollingFrequency(), 86400.0);
  log.logger->setLogFormatter(nullptr);
  log.log("bare");
  EXPECT_THAT(log.content(), StartsWith("text,with an end,two,?lines,?bare"));
  EXPECT_THROW(DDFileLogger::initWithLogFileManager(nullptr),
               foundation::NSInvalidArgumentException);
}

TEST(DDFileLogger, RollsWhenTheFileIsLargeEnough) {
  FileLog log;
  log.logger->setMaximumFileSize(60);
  for (const char* text : {"1", "2", "3", "4"}) log.log(text);
  EXPECT_EQ(log.content(), "4|1,2,3 (archived)");
  log.logger->setMaximumFileSize(10);
  EXPECT_EQ(log.content(), "4 (archived)|1,2,3 (archived)");
  log.logger->setMaximumFileSize(0);
  for (int i = 0; i < 100; ++i) log.log("more");
  EXPECT_EQ(log.manager->sortedLogFilePaths().size(), 3U);
}

TEST(DDFileLogger, RollsWhenTheFileIsOldEnough) {
  platform::SimulatedClock clock(platform::Clock::production().now());  // that of file dates
  const platform::Clock::Replacement guard(clock);
  FileLog log;
  log.log("1");
  log.settle();
  clock.advance(86399);
  EXPECT_EQ(log.content(), "1");
  clock.advance(2);
  EXPECT_EQ(log.content(), "1 (archived)");
  log.logger->setRollingFrequency(0);
  log.log("2");
  log.settle();
  clock.advance(1e6);
  EXPECT_EQ(log.content(), "2|1 (archived)");
  log.logger->setRollingFrequency(1e6);
  EXPECT_EQ(log.content(), "2 (archived)|1 (archived)");
}

TEST(DDFileLogger, RollsOnRequestAndOnRemoval) {
  FileLog log;
  int completions = 0;
  const auto complete = [&] { ++completions; };
  log.logger->rollLogFileWithCompletionBlock(complete);
  log.log("1");
  log.logger->rollLogFileWithCompletionBlock(complete);
  log.log("2");
  log.settle();
  log.logger->loggerQueue()->sync([&] { log.logger->rollLogFile(); });
  log.log("3");
  EXPECT_EQ(completions, 0);
  platform::MainQueue::drain();
  EXPECT_EQ(completions, 2);
  EXPECT_EQ(log.content(), "3|2 (archived)|1 (archived)");
  DDLog::removeLogger(log.logger);
  EXPECT_EQ(log.content(), "3 (archived)|2 (archived)|1 (archived)");
}

// Put something else in a log file's place.
void replaceByLink(const std::string& path) {
  const std::string victim = path.substr(0, path.find("/deep/")) + "/victim";
  EXPECT_TRUE(FileSystem::removeItem(path));
  EXPECT_TRUE(FileSystem::createFile(victim));
  EXPECT_EQ(symlink(victim.c_str(), path.c_str()), 0);
}

void replaceByFolder(const std::string& path) {
  EXPECT_TRUE(FileSystem::removeItem(path));
  EXPECT_TRUE(FileSystem::createDirectory(path));
}

TEST(DDFileLogger, MakesANewFileWhenTheLiveOneIsTakenAway) {
  const std::function<void(const std::string& path)> waysToTakeAway[] = {
      [](auto& path) { EXPECT_TRUE(FileSystem::removeItem(path)); },
      [](auto& path) { EXPECT_TRUE(FileSystem::moveItem(path, path + ".old")); },
      [](auto& path) { EXPECT_TRUE(FileSystem::removeItem(path.substr(0, path.find("/logs/")))); },
      replaceByLink,
      replaceByFolder,
  };
  for (const auto& takeAway : waysToTakeAway) {
    const support::RecordingConsole console;
    FileLog log;
    log.log("1");
    takeAway(log.livePath());
    log.manager->rolled.acquire();
    log.log("2");
    EXPECT_EQ(log.content(), "2") << &takeAway - waysToTakeAway;
    EXPECT_THAT(FileLog::texts(log.folder.path("victim")), ElementsAre());
  }
}

TEST(DDFileLogger, GoesOnWithTheLastFileUnlessItIsTooLargeTooOldOrNoFile) {
  struct {
    const char* name;
    std::function<void(DDFileLogger&, const std::string& path)> prepare;
    const char* content;
    int archived;
  } const rows[] = {
      {"fresh", [](auto&, auto&) {}, "1,2", 0},
      {"too large", [](auto& logger, auto&) { logger.setMaximumFileSize(27); },
       "2 .archived.[|]1 .archived.", 1},
      {"just small enough", [](auto& logger, auto&) { logger.setMaximumFileSize(28); },
       "1,2 .archived.", 0},
      {"too old", [](auto& logger, auto&) { logger.setRollingFrequency(1e-9); },
       "2( .archived.)?[|]1 .archived.", 1},
      {"archived", [](auto&, auto& path) { DDLogFileInfo(path).setIsArchived(true); },
       "2[|]1 .archived.", 0},
      {"a link", [](auto&, auto& path) { replaceByLink(path); }, "2", 1},
      {"a folder", [](auto&, auto& path) { replaceByFolder(path); }, "2", 1},
  };
  for (const auto& row : rows) {
    const support::RecordingConsole console;
    FileLog log;
    log.log("1");
    const std::string path = log.livePath();
    DDLog::removeLogger(log.logger);
    log.settle();
    DDLogFileInfo(path).setIsArchived(false);
    log.logger = DDFileLogger::initWithLogFileManager(log.manager);
    row.prepare(*log.logger, path);
    DDLog::addLogger(log.logger);
    log.log("2");
    EXPECT_THAT(log.content(), testing::MatchesRegex(row.content)) << row.name;
    EXPECT_EQ(log.manager->archived, row.archived) << row.name;
  }
}

TEST(DDFileLogger, LeavesOutWholeLinesThatDoNotFit) {
  signal(SIGXFSZ, SIG_IGN);
  const support::RecordingConsole console;
  FileLog log;
  log.log("before");
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  const rlimit small{100, limit.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  for (int i = 0; i < 20; ++i) log.log("a line that is too long for the space that is left there");
  log.log("short");
  setrlimit(RLIMIT_FSIZE, &limit);
  log.log("after");
  EXPECT_EQ(log.content(), "before,short,after");
  EXPECT_THAT(console.lines(), testing::Contains(HasSubstr("File too large")).Times(10));
  EXPECT_EQ(console.lines().at(10),
            "DDFileLogger.logMessage: Too many exceptions -- will not log any more of them.");
}

TEST(DDFileLogger, GivesUpOnAFileThatCannotBeMade) {
  const support::RecordingConsole console;
  FileLog log;
  ASSERT_TRUE(FileSystem::createFile(log.folder.path("deep")));
  log.log("1");
  ASSERT_TRUE(FileSystem::removeItem(log.folder.path("deep")));
  log.log("2");
  EXPECT_EQ(log.content(), "");
  EXPECT_THAT(console.lines(), Each(StartsWith("DDFileLogManagerDefault: Error creating")));
}

// Tells each line number through a pipe once the log call has returned.
[[noreturn]] void logUntilKilled(const std::string& folder, int report) {
  FileLog::addLogger(folder);
  for (int number = 0;; ++number) {
    FileLog::log(std::to_string(number));
    if (write(report, &number, sizeof number) != sizeof number) _exit(1);
  }
}

TEST(DDFileLogger, HasEveryErrorWhoseCallReturnedWhenItIsKilled) {
  for (int round = 1; round <= 8; ++round) {
    const support::TemporaryFolder folder;
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) logUntilKilled(folder.path(), ends[1]);
    close(ends[1]);
    int last = -1;
    for (int number; read(ends[0], &number, sizeof number) == sizeof number; last = number) {
      if (number == round * 97) kill(child, SIGKILL);
    }
    close(ends[0]);
    waitpid(child, nullptr, 0);
    const auto texts = FileLog::textsIn(folder.path());
    for (int i = 0; i <= last; ++i) {
      EXPECT_EQ(texts.at(static_cast<std::size_t>(i)), std::to_string(i));
    }
  }
}

}  // namespace
