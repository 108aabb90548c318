// A log line: sustained, as a burst, suppressed, and what it costs while it waits. Peers: a
// formatted line with one write, and spdlog where it is installed, flushing each line.
#include <fcntl.h>
#include <time.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <semaphore>
#include <thread>

#include <benchmark/benchmark.h>
#include <malloc.h>
#ifdef ZARVO_HAVE_SPDLOG
#include <spdlog/async.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#endif

#include "logging/DDFileLogger.h"
#include "logging/DDLogFileManagerDefault.h"
#include "logging/DDLogMacros.h"
#include "logging/DDLogMessagePool.h"
#include "platform/FileHandle.h"
#include "tests/support/TemporaryFolder.h"

namespace {

constexpr int sustainedLines = 100000;
constexpr int burstLines = 500;
const std::string directory = "/var/lib/Zarvo/ZarvoCore/certificates/";

void logLine(int number) {
  DDLogInfo(41, "(%@) Delete certificate cache entry %d \"%@\".", THIS_FILE, number, directory);
}

/// One registered file logger over a fresh folder, without rolling.
struct FileLog {
  FileLog() {
    logger->setMaximumFileSize(0);
    logger->setRollingFrequency(0);
    DDLog::setGlobalLogLevel(DDLogLevel::info);
    DDLog::addLogger(logger);
    logLine(0);
    DDLog::flushLog();
  }
  ~FileLog() {
    DDLog::removeLogger(logger);
    DDLog::flushLog();
    logger->loggerQueue()->sync([] {});
  }

  const support::TemporaryFolder folder;
  const std::shared_ptr<DDFileLogger> logger = DDFileLogger::initWithLogFileManager(
      DDLogFileManagerDefault::initWithLogsDirectory(folder.path()));
};

template <class Log, class Finish>
void sustain(benchmark::State& state, const Log& log, const Finish& finish) {
  for (auto _ : state) {
    for (int i = 0; i < sustainedLines; ++i) log(i);
    finish();
  }
  state.SetItemsProcessed(state.iterations() * sustainedLines);
}

// Only the caller's time counts: the log is idle again before each burst.
template <class Log, class Finish>
void burst(benchmark::State& state, const Log& log, const Finish& finish) {
  for (auto _ : state) {
    finish();
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < burstLines; ++i) log(i);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    state.SetIterationTime(elapsed.count());
  }
  finish();
  state.SetItemsProcessed(state.iterations() * burstLines);
}

void SustainedOneWrite(benchmark::State& state) {
  const support::TemporaryFolder folder;
  const std::string path = folder.path("log");
  static_cast<void>(platform::FileSystem::createFile(path));
  const auto file = platform::FileHandle::openForAppending(path);
  const auto log = [&](int number) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    struct tm fields {};
    localtime_r(&now.tv_sec, &fields);
    char line[512];
    std::size_t length = strftime(line, sizeof line, "%Y/%m/%d %H:%M:%S", &fields);
    length += static_cast<std::size_t>(
        snprintf(line + length, sizeof line - length,
                 ":%03ld  (%s) Delete certificate cache entry %d \"%s\".\n", now.tv_nsec / 1000000,
                 "LoggingBench", number, directory.c_str()));
    benchmark::DoNotOptimize(write(file->descriptor(), line, length));
  };
  sustain(state, log, [] {});
}

void SustainedLog(benchmark::State& state) {
  const FileLog log;
  sustain(state, logLine, DDLog::flushLog);
}

void BurstLog(benchmark::State& state) {
  const FileLog log;
  burst(state, logLine, DDLog::flushLog);
}

void SuppressedLine(benchmark::State& state) {
  DDLog::setGlobalLogLevel(DDLogLevel::info);
  int number = 0;
  for (auto _ : state) {
    DDLogDebug(41, "(%@) Delete certificate cache entry %d \"%@\".", THIS_FILE, ++number,
               directory);
    benchmark::ClobberMemory();
  }
}

class StuckLogger : public DDAbstractLogger {
 public:
  static std::shared_ptr<StuckLogger> init() { return std::make_shared<StuckLogger>(Key()); }
  explicit StuckLogger(Key) {}
  void logMessage(const DDLogMessage&) override { gate.acquire(); }
  std::counting_semaphore<> gate{0};
};

// Reports what a waiting line takes of memory beyond its text, the allocator's share included.
void WaitingMessage(benchmark::State& state) {
  const auto logger = StuckLogger::init();
  DDLog::setGlobalLogLevel(DDLogLevel::info);
  DDLog::addLogger(logger);
  DDLog::flushLog();
  const std::string text(80, 'x');
  double bytes = 0;
  for (auto _ : state) {
    const std::size_t before = mallinfo2().uordblks;
    for (int i = 0; i < burstLines; ++i) DDLogInfo(41, "%@", text);
    bytes = static_cast<double>(mallinfo2().uordblks - before) / burstLines;
    logger->gate.release(burstLines);
    DDLog::flushLog();
  }
  const double place = sizeof(DDLogMessagePool) / 1024.0;  // made in advance
  state.counters["bytes_beyond_text"] = bytes + place - static_cast<double>(text.size());
  DDLog::removeLogger(logger);
  DDLog::flushLog();
}

#ifdef ZARVO_HAVE_SPDLOG
constexpr const char* linePattern = "%Y/%m/%d %H:%M:%S:%e  %v";

template <class Logger>
void logTo(Logger& logger, int number) {
  logger.info("({}) Delete certificate cache entry {} \"{}\".", "LoggingBench", number, directory);
}

void SustainedSpdlogSync(benchmark::State& state) {
  const support::TemporaryFolder folder;
  const auto logger = spdlog::basic_logger_mt("sync", folder.path("log"));
  logger->set_pattern(linePattern);
  logger->flush_on(spdlog::level::info);
  sustain(
      state, [&](int number) { logTo(*logger, number); }, [] {});
  spdlog::drop_all();
}

/// An asynchronous logger with a thread of its own, and a queue as long as ours.
struct SpdlogAsync {
  SpdlogAsync() {
    logger->set_pattern(linePattern);
    logger->flush_on(spdlog::level::info);
  }
  void finish() const {
    while (pool->queue_size() > 0) std::this_thread::yield();
  }

  const support::TemporaryFolder folder;
  const std::shared_ptr<spdlog::details::thread_pool> pool =
      std::make_shared<spdlog::details::thread_pool>(1000U, 1U);
  const std::shared_ptr<spdlog::async_logger> logger = std::make_shared<spdlog::async_logger>(
      "async", std::make_shared<spdlog::sinks::basic_file_sink_mt>(folder.path("log")), pool,
      spdlog::async_overflow_policy::block);
};

void SustainedSpdlogAsync(benchmark::State& state) {
  const SpdlogAsync log;
  sustain(
      state, [&](int number) { logTo(*log.logger, number); }, [&] { log.finish(); });
}

void BurstSpdlogAsync(benchmark::State& state) {
  const SpdlogAsync log;
  burst(
      state, [&](int number) { logTo(*log.logger, number); }, [&] { log.finish(); });
}
#endif

#define SUSTAINED(name)               \
  BENCHMARK(name)                     \
      ->Unit(benchmark::kMillisecond) \
      ->UseRealTime()                 \
      ->Iterations(3)                 \
      ->Repetitions(7)                \
      ->ReportAggregatesOnly()
#define BURST(name)                   \
  BENCHMARK(name)                     \
      ->Unit(benchmark::kMicrosecond) \
      ->UseManualTime()               \
      ->Iterations(100)               \
      ->Repetitions(7)                \
      ->ReportAggregatesOnly()

SUSTAINED(SustainedOneWrite);
SUSTAINED(SustainedLog);
BURST(BurstLog);
#ifdef ZARVO_HAVE_SPDLOG
SUSTAINED(SustainedSpdlogSync);
SUSTAINED(SustainedSpdlogAsync);
BURST(BurstSpdlogAsync);
#endif
BENCHMARK(SuppressedLine);
BENCHMARK(WaitingMessage)->Iterations(20);

}  // namespace
