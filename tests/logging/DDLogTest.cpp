#include <sched.h>

#include <future>
#include <semaphore>
#include <thread>

#include <gmock/gmock.h>

#include "logging/DDLog.h"
#include "logging/DDLogMacros.h"
#include "platform/Process.h"
#include "tests/logging/RegisteredClasses.h"
#include "tests/support/RecordingConsole.h"
#include "tests/support/RecordingLogger.h"

namespace {

using logging_test::Downloader;
using support::RecordingLogger;
using testing::ElementsAre;

void logNumber(int number, bool asynchronous = true) {
  DDLog::log(asynchronous, 31, DDLogFlag::info, 0, nullptr, nullptr, 0, nullptr, "%d", number);
}

TEST(DDLog, PassesToEachLoggerWhatItsLevelAdmits) {
  struct {
    std::uint32_t level;
    std::vector<std::string> lines;
  } const rows[] = {{0, {}},
                    {DDLogLevel::error, {"1 error"}},
                    {DDLogLevel::info, {"1 error", "4 info"}},
                    {DDLogLevel::verbose, {"1 error", "4 info", "16 verbose"}},
                    {DDLogFlag::verbose, {"16 verbose"}}};
  std::vector<std::shared_ptr<RecordingLogger>> loggers;
  for (const auto& row : rows) loggers.push_back(RecordingLogger::add(row.level));
  DDLog::addLogger(nullptr);
  DDLog::removeLogger(nullptr);
  DDLogError(1, "error");
  DDLogInfo(2, "info");
  DDLogVerbose(3, "verbose");
  for (std::size_t i = 0; i < std::size(rows); ++i) EXPECT_EQ(loggers[i]->lines(), rows[i].lines);
}

TEST(DDLog, MacrosPassTheCallSiteAndEvaluateNothingWhenOff) {
  const auto logger = RecordingLogger::add();
  int evaluated = 0;
  DDLog::setGlobalLogLevel(7);
  DDLogInfo(41, "(%@ %s) \"%@\" %@ %d", THIS_FILE, __func__, "/d", nullptr, ++evaluated);
  DDLogDebug(42, "%d", ++evaluated);
  DDLog::log(true, 7, 1, 0, nullptr, nullptr, 0, nullptr, nullptr);
  DDLog::log(false, 7, 1, 5, nullptr, nullptr, 0, nullptr, "100%");
  EXPECT_EQ(evaluated, 1);
  EXPECT_THAT(logger->numberedLines(),
              ElementsAre("4 41 (DDLogTest TestBody) \"/d\" (null) 1", "1 0 100%"));
  EXPECT_STREQ(logger->messages()[0].file(), "tests/logging/DDLogTest.cpp");
  EXPECT_EQ(logger->messages()[0].methodName(), "TestBody");
}

void expectOrderAtSeveralLoggers() {
  const auto first = RecordingLogger::add();
  const auto second = RecordingLogger::add();
  std::vector<std::thread> callers;
  for (int caller = 0; caller < 4; ++caller) {
    callers.emplace_back([caller] {
      for (int i = 0; i < 1000; ++i) logNumber(caller * 1000 + i, i % 7 != 0);
    });
  }
  for (std::thread& caller : callers) caller.join();
  const auto lines = first->lines();
  ASSERT_EQ(lines.size(), 4000U);
  EXPECT_EQ(second->lines(), lines);
  int next[4] = {};
  for (const std::string& line : lines) {
    const int number = std::stoi(line.substr(2));
    EXPECT_EQ(number % 1000, next[number / 1000]++);
  }
}

TEST(DDLog, KeepsTheOrderOfEachCaller) { expectOrderAtSeveralLoggers(); }

TEST(DDLog, CallsLoggersInTurnOnOneProcessor) {
  cpu_set_t one;
  CPU_ZERO(&one);
  CPU_SET(static_cast<unsigned>(sched_getcpu()), &one);
  ASSERT_EQ(sched_setaffinity(0, sizeof one, &one), 0);
  ASSERT_EQ(platform::Process::processorCount(), 1U);
  expectOrderAtSeveralLoggers();
}

/// Stays in `logMessage` until it is let through.
struct GatedLogger : RecordingLogger {
  GatedLogger() : RecordingLogger(Key()) {}
  void logMessage(const DDLogMessage& message) override {
    gate.acquire();
    RecordingLogger::logMessage(message);
  }
  std::counting_semaphore<> gate{0};
};

bool isStuck(const std::future<void>& call) {
  return call.wait_for(std::chrono::milliseconds(100)) == std::future_status::timeout;
}

TEST(DDLog, BlocksTheCallerUntilAnErrorIsWrittenOrWhile1000MessagesWait) {
  const auto logger = std::make_shared<GatedLogger>();
  DDLog::addLogger(logger);
  const auto error = std::async(std::launch::async, [] { DDLogError(1, "error"); });
  EXPECT_TRUE(isStuck(error));
  logger->gate.release();
  error.wait();
  for (int i = 0; i < 1000; ++i) logNumber(i);
  const auto next = std::async(std::launch::async, [] { logNumber(1000); });
  EXPECT_TRUE(isStuck(next));
  logger->gate.release();
  next.wait();
  logger->gate.release(1000);
  EXPECT_EQ(logger->messages().size(), 1002U);
}

/// Counts how many of its kind there are.
struct CountedLogger : RecordingLogger {
  CountedLogger() : RecordingLogger(Key()) { ++alive; }
  ~CountedLogger() override {
    --alive;
    alive.notify_all();
  }
  inline static std::atomic<int> alive{0};
};

TEST(DDLog, AddsAndRemovesLoggersUnderFire) {
  std::atomic<bool> done{false};
  std::thread fire([&] {
    for (int i = 0; !done; ++i) logNumber(i);
  });
  for (int i = 0; i < 10000; ++i) {
    const auto logger = std::make_shared<CountedLogger>();
    DDLog::addLogger(logger);
    if (i % 100 != 0) DDLog::removeLogger(logger);
    if (i % 200 == 0) DDLog::removeAllLoggers();
    DDLog::removeLogger(logger);
  }
  done = true;
  fire.join();
  for (int alive = CountedLogger::alive; alive > 0; alive = CountedLogger::alive) {
    CountedLogger::alive.wait(alive);
  }
}

TEST(DDLog, SurvivesALoggerThatThrowsOrLogs) {
  struct Troubled : RecordingLogger {
    Troubled() : RecordingLogger(Key()) {}
    void logMessage(const DDLogMessage& message) override {
      RecordingLogger::logMessage(message);
      if (message.logMsg() == "throw") throw std::runtime_error("trouble");
      if (message.logMsg() == "log") DDLogError(1, "from inside");
      DDLog::flushLog();
    }
  };
  const support::RecordingConsole console;
  const auto logger = std::make_shared<Troubled>();
  DDLog::addLogger(logger);
  DDLogError(1, "throw");
  DDLogError(1, "log");
  DDLog::flushLog();
  EXPECT_THAT(logger->lines(), ElementsAre("1 throw", "1 log", "1 from inside"));
  EXPECT_THAT(console.lines(), ElementsAre("DDLog: exception in logMessage:: trouble"));
}

TEST(DDLog, KnowsTheClassesThatRegisterThemselves) {
  EXPECT_THAT(DDLog::registeredClasses(), ElementsAre(std::type_index(typeid(Downloader))));
  EXPECT_THAT(DDLog::registeredClassNames(), ElementsAre("logging_test::Downloader"));
  DDLog::setLogLevel(7, typeid(Downloader));
  DDLog::setLogLevel(15, typeid(int));
  EXPECT_EQ(DDLog::logLevelForClassWithName("logging_test::Downloader"), 7U);
  DDLog::setLogLevel(15, "logging_test::Downloader");
  DDLog::setLogLevel(31, "Downloader");
  EXPECT_EQ(DDLog::logLevelForClass(typeid(Downloader)), 15U);
  EXPECT_EQ(DDLog::logLevelForClass(typeid(int)), UINT32_MAX);
  EXPECT_EQ(DDLog::logLevelForClassWithName("Downloader"), UINT32_MAX);
}

}  // namespace
