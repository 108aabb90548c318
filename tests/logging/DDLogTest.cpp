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
  const std::uint32_t levels[] = {0, 1, 3, 7, 15, 31, 16};
  std::vector<std::shared_ptr<RecordingLogger>> loggers;
  for (const std::uint32_t level : levels) loggers.push_back(RecordingLogger::add(level));
  DDLog::addLogger(nullptr);
  DDLog::removeLogger(nullptr);
  DDLogError(1, "error");
  DDLogWarn(2, "warning");
  DDLogInfo(3, "info");
  DDLogDebug(4, "debug");
  DDLogVerbose(5, "verbose");
  const std::vector<std::string> all = {"1 error", "2 warning", "4 info", "8 debug", "16 verbose"};
  for (std::size_t i = 0; i < std::size(levels); ++i) {
    std::vector<std::string> admitted;
    for (const std::string& line : all) {
      if (std::stoul(line) & levels[i]) admitted.push_back(line);
    }
    EXPECT_EQ(loggers[i]->lines(), admitted) << levels[i];
  }
}

TEST(DDLog, MacrosPassTheCallSiteAndEvaluateNothingWhenOff) {
  const auto logger = RecordingLogger::add();
  const std::string directory = "/d";
  int evaluated = 0;
  DDLog::setGlobalLogLevel(7);
  DDLogInfo(41, "(%@ %s) \"%@\" %@ %d", THIS_FILE, __func__, directory, nullptr, ++evaluated);
  DDLogDebug(42, "%d", ++evaluated);
  DDLog::log(true, 7, 1, 0, nullptr, nullptr, 0, nullptr, nullptr);
  DDLog::log(false, 7, 1, 5, nullptr, nullptr, 0, nullptr, "100%");
  const auto messages = logger->messages();
  ASSERT_EQ(messages.size(), 2U);
  EXPECT_EQ(evaluated, 1);
  EXPECT_EQ(messages[0].logMsg(), "(DDLogTest TestBody) \"/d\" (null) 1");
  EXPECT_STREQ(messages[0].file(), "tests/logging/DDLogTest.cpp");
  EXPECT_EQ(messages[0].methodName(), "TestBody");
  EXPECT_EQ(messages[0].lineNumber(), 41);
  EXPECT_EQ(messages[0].logLevel(), 7U);
  EXPECT_EQ(messages[0].logContext(), 0);
  EXPECT_EQ(messages[0].options(), 0U);
  EXPECT_EQ(messages[0].tag(), nullptr);
  EXPECT_EQ(messages[1].logMsg(), "100%");
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
class GatedLogger : public RecordingLogger {
 public:
  using RecordingLogger::RecordingLogger;
  static std::shared_ptr<GatedLogger> add() {
    auto logger = std::make_shared<GatedLogger>(Key());
    DDLog::addLogger(logger);
    return logger;
  }
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
  const auto logger = GatedLogger::add();
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

class CountedLogger : public RecordingLogger {
 public:
  explicit CountedLogger(Key key) : RecordingLogger(key) { ++alive; }
  ~CountedLogger() override {
    --alive;
    alive.notify_all();
  }
  static std::shared_ptr<CountedLogger> make() { return std::make_shared<CountedLogger>(Key()); }
  inline static std::atomic<int> alive{0};
};

TEST(DDLog, AddsAndRemovesLoggersUnderFire) {
  std::atomic<bool> done{false};
  std::thread fire([&] {
    for (int i = 0; !done; ++i) logNumber(i);
  });
  for (int i = 0; i < 10000; ++i) {
    const auto logger = CountedLogger::make();
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
  class Troubled : public RecordingLogger {
   public:
    explicit Troubled() : RecordingLogger(Key()) {}
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
  EXPECT_TRUE(DDLog::isRegisteredClass(typeid(Downloader)));
  EXPECT_FALSE(DDLog::isRegisteredClass(typeid(RecordingLogger)));
  EXPECT_THAT(DDLog::registeredClasses(), ElementsAre(std::type_index(typeid(Downloader))));
  EXPECT_THAT(DDLog::registeredClassNames(), ElementsAre("logging_test::Downloader"));
  EXPECT_EQ(DDLog::logLevelForClass(typeid(Downloader)), 3U);
  EXPECT_EQ(DDLog::logLevelForClass(typeid(int)), UINT32_MAX);
  DDLog::setLogLevel(7, typeid(Downloader));
  DDLog::setLogLevel(7, typeid(int));
  EXPECT_EQ(DDLog::logLevelForClassWithName("logging_test::Downloader"), 7U);
  DDLog::setLogLevel(15, "logging_test::Downloader");
  DDLog::setLogLevel(15, "Downloader");
  EXPECT_EQ(Downloader::ddLogLevel(), 15U);
  EXPECT_EQ(DDLog::logLevelForClassWithName("Downloader"), UINT32_MAX);
}

}  // namespace
