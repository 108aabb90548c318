#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <semaphore>
#include <sstream>
#include <thread>

#include <gmock/gmock.h>

#include "foundation/NSException.h"
#include "logging/DDFileLogger.h"
#include "logging/DDLogFileManagerDefault.h"
#include "logging/DDLogMacros.h"
#include "platform/SimulatedClock.h"
#include "tests/support/RecordingConsole.h"
#include "tests/support/RecordingLogger.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using testing::StartsWith;
namespace FileSystem = platform::FileSystem;

/// Says when a file was rolled.
class TellingManager : public DDLogFileManagerDefault {
 public:
  explicit TellingManager(std::string_view folder) : DDLogFileManagerDefault(Key(), folder) {}
  void didArchiveLogFile(std::string_view) override { ++archived; }
  void didRollAndArchiveLogFile(std::string_view) override { rolled.release(); }

  int archived = 0;
  std::counting_semaphore<> rolled{0};
};

/// A registered file logger in a fresh folder.
struct FileLog {
  FileLog() { DDLog::addLogger(logger); }
  ~FileLog() {
    DDLog::removeLogger(logger);
    settle();
  }

  /// Registers a file logger for the rest of the process.
  static std::shared_ptr<DDFileLogger> addLogger(const std::string& folder) {
    auto logger = DDFileLogger::initWithLogFileManager(
        DDLogFileManagerDefault::initWithLogsDirectory(folder));
    DDLog::addLogger(logger);
    return logger;
  }

  static void log(std::string_view text) {
    DDLog::log(false, 31, DDLogFlag::error, 0, __FILE__, __func__, 1, nullptr, "%@", text);
  }

  /// Returns when everything is done that was queued so far.
  void settle() {
    DDLog::flushLog();
    logger->loggerQueue()->sync([] {});
  }

  /// The lines of all log files, newest file first, without the time: "a;b;". Archived files stand
  /// in angles: "c;<a;b;>". What is no file is left out.
  static std::string content(DDLogFileManager& manager) {
    std::string result;
    for (const auto& info : manager.sortedLogFileInfos()) {
      const auto data = FileSystem::readFile(info->filePath());
      if (!data || info->fileAttributes()->type != FileSystem::FileType::regular) continue;
      std::istringstream lines{std::string(foundation::textOf(*data))};
      std::string texts;
      for (std::string line; std::getline(lines, line);) {
        texts += (line.size() < 25 ? "?" + line : line.substr(25)) + ";";
      }
      result += info->isArchived() ? "<" + texts + ">" : texts;
    }
    return result;
  }

  std::string content() {
    settle();
    return content(*manager);
  }

  std::string livePath() {
    settle();
    return manager->sortedLogFilePaths().at(0);
  }

  support::TemporaryFolder folder;
  std::shared_ptr<TellingManager> manager =
      std::make_shared<TellingManager>(folder.path("deep/logs"));
  std::shared_ptr<DDFileLogger> logger = DDFileLogger::initWithLogFileManager(manager);
};

TEST(DDFileLogger, WritesOneLineAMessage) {
  FileLog log;
  EXPECT_FALSE(FileSystem::exists(log.folder.path("deep")));
  log.log("text");
  log.log("with an end\n");
  log.log("two\nlines");
  const auto data = FileSystem::readFile(log.livePath());
  EXPECT_THAT(std::string(foundation::textOf(*data)),
              testing::MatchesRegex("[0-9]{4}/[01][0-9]/[0-3][0-9] "
                                    "[0-2][0-9]:[0-5][0-9]:[0-5][0-9]:[0-9]{3}  text\n.*"));
  log.logger->setLogFormatter(nullptr);
  log.log("bare");
  EXPECT_EQ(log.content(), "text;with an end;two;?lines;?bare;");
  EXPECT_THROW(DDFileLogger::initWithLogFileManager(nullptr),
               foundation::NSInvalidArgumentException);
}

TEST(DDFileLogger, RollsForEachCause) {
  struct {
    const char* cause;
    void (*act)(FileLog& log, platform::SimulatedClock& clock);  // once "1" is written
    const char* content;
  } const rows[] = {
      {"small", [](auto& log, auto&) { log.logger->setMaximumFileSize(28); }, "1;"},
      {"large", [](auto& log, auto&) { log.logger->setMaximumFileSize(27); }, "<1;>"},
      {"grown",
       [](auto& log, auto&) {
         log.logger->setMaximumFileSize(60);
         for (const char* text : {"2", "3", "4"}) log.log(text);
       },
       "4;<1;2;3;>"},
      {"any size",
       [](auto& log, auto&) {
         log.logger->setMaximumFileSize(0);
         log.log("2");
       },
       "1;2;"},
      {"young", [](auto&, auto& clock) { clock.advance(86399); }, "1;"},
      {"old", [](auto&, auto& clock) { clock.advance(86401); }, "<1;>"},
      {"any age",
       [](auto& log, auto& clock) {
         log.logger->setRollingFrequency(0);
         log.settle();
         clock.advance(1e6);
       },
       "1;"},
      {"old by a new limit",
       [](auto& log, auto& clock) {
         clock.advance(1001);
         log.logger->setRollingFrequency(1000);
       },
       "<1;>"},
      {"request on the queue",
       [](auto& log, auto&) {
         log.logger->loggerQueue()->sync([&] { log.logger->rollLogFile(); });
       },
       "<1;>"},
      {"removal", [](auto& log, auto&) { DDLog::removeLogger(log.logger); }, "<1;>"},
  };
  for (const auto& row : rows) {
    platform::SimulatedClock clock(platform::Clock::production().now());  // that of file dates
    const platform::Clock::Replacement guard(clock);
    FileLog log;
    log.log("1");
    log.settle();
    row.act(log, clock);
    EXPECT_EQ(log.content(), row.content) << row.cause;
  }
}

TEST(DDFileLogger, CompletesARollOnTheMainQueueAlsoWithoutAFile) {
  FileLog log;
  int completions = 0;
  for (int i = 0; i < 2; ++i) {
    log.logger->rollLogFileWithCompletionBlock([&] { ++completions; });
    log.log("1");
  }
  EXPECT_EQ(log.content(), "1;<1;>");
  EXPECT_EQ(completions, 0);
  platform::MainQueue::drain();
  EXPECT_EQ(completions, 2);
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
  void (*const waysToTakeAway[])(const std::string& path) = {
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
    EXPECT_EQ(log.content(), "2;") << &takeAway - waysToTakeAway;
    const auto victim = FileSystem::readFile(log.folder.path("victim"));
    EXPECT_TRUE(!victim || victim->empty());
  }
}

TEST(DDFileLogger, GoesOnWithTheLastFileUnlessItIsTooLargeTooOldOrNoFile) {
  struct {
    const char* name;
    void (*prepare)(DDFileLogger&, const std::string& path);
    const char* content;
    int archived;
  } const rows[] = {
      {"fresh", [](auto&, auto&) {}, "1;2;", 0},
      {"too large", [](auto& logger, auto&) { logger.setMaximumFileSize(27); }, "<2;><1;>", 1},
      {"just small enough", [](auto& logger, auto&) { logger.setMaximumFileSize(28); }, "<1;2;>",
       0},
      {"too old", [](auto& logger, auto&) { logger.setRollingFrequency(1e-9); }, "<?2;>?<1;>", 1},
      {"archived", [](auto&, auto& path) { DDLogFileInfo(path).setIsArchived(true); }, "2;<1;>", 0},
      {"a link", [](auto&, auto& path) { replaceByLink(path); }, "2;", 1},
      {"a folder", [](auto&, auto& path) { replaceByFolder(path); }, "2;", 1},
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
  EXPECT_EQ(log.content(), "before;short;after;");
  EXPECT_THAT(console.lines(), testing::Contains(testing::HasSubstr("File too large")).Times(10));
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
  EXPECT_THAT(console.lines(), testing::Contains(StartsWith("DDFileLogManagerDefault: Error "
                                                            "creating logsDirectory: ")));
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
    std::string returned;
    for (int number; read(ends[0], &number, sizeof number) == sizeof number;) {
      returned += std::to_string(number) + ";";
      if (number == round * 97) kill(child, SIGKILL);
    }
    close(ends[0]);
    waitpid(child, nullptr, 0);
    EXPECT_THAT(FileLog::content(*DDLogFileManagerDefault::initWithLogsDirectory(folder.path())),
                StartsWith(returned));
  }
}

/// Logs when it is destroyed.
struct LateWitness {
  ~LateWitness() {
    DDLogInfo(1, "late");
    DDLogError(1, "later");
  }
};

/// Ends the process while a message is being formatted.
class ExitingFormatter : public DDLogFormatter {
 public:
  std::optional<std::string> formatLogMessage(const DDLogMessage&) override { exit(0); }
};

void logMany(int count) {
  for (int i = 0; i < count; ++i) DDLogInfo(1, "%d", i);
}

// Each program ends within the time and with status 0; `lines` are the least that it must leave.
TEST(DDLogExit, NeitherHangsNorDiesNorLosesWhatCanBeWritten) {
  struct {
    const char* name;
    void (*program)(const std::string& folder);
    int lines;
  } const rows[] = {
      {"1000 messages wait",
       [](auto& folder) {
         FileLog::addLogger(folder);
         logMany(1000);
       },
       1000},
      {"from another thread",
       [](auto& folder) {
         FileLog::addLogger(folder);
         std::thread([] {
           DDLogInfo(1, "before");
           exit(0);
         }).detach();
         while (true) DDLogInfo(1, "main");
       },
       1},
      {"static destructors log",
       [](auto& folder) {
         static const LateWitness madeBeforeTheLog;
         FileLog::addLogger(folder);
         static const LateWitness madeAfterTheLog;
       },
       4},
      {"inside a formatter",
       [](auto& folder) {
         static const LateWitness madeBeforeTheLog;
         support::RecordingLogger::add();
         FileLog::addLogger(folder)->setLogFormatter(std::make_shared<ExitingFormatter>());
         logMany(2000);
         pause();
       },
       0},
      {"inside the formatter of the only logger",
       [](auto& folder) {
         static const auto logger = FileLog::addLogger(folder);
         logger->setLogFormatter(std::make_shared<ExitingFormatter>());
         DDLogError(1, "error");
       },
       0},
  };
  for (const auto& row : rows) {
    const support::TemporaryFolder folder;
    const auto run = [&] {
      alarm(60);
      row.program(folder.path());
      exit(0);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(0), "") << row.name;
    const auto manager = DDLogFileManagerDefault::initWithLogsDirectory(folder.path());
    EXPECT_GE(std::ranges::count(FileLog::content(*manager), ';'), row.lines) << row.name;
  }
}

}  // namespace
