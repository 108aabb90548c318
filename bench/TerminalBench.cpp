// A line on the terminal (the null device here) beside one formatted by the C library, one write
// each.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <string>

#include <benchmark/benchmark.h>

#include "bench/AllocationCounter.h"
#include "logging/DDLogLevel.h"
#include "logging/DDLogMessage.h"
#include "logging/DDTTYLogger.h"

namespace {

/// The standard error stream goes nowhere for the length of a scope.
class SilentError {
 public:
  SilentError() : kept_(::dup(STDERR_FILENO)) {
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    ::dup2(nowhere, STDERR_FILENO);
    ::close(nowhere);
  }
  ~SilentError() {
    ::dup2(kept_, STDERR_FILENO);
    ::close(kept_);
  }
  SilentError(const SilentError&) = delete;
  SilentError& operator=(const SilentError&) = delete;

 private:
  const int kept_;
};

DDLogMessage message() {
  DDLogMessage::Contents contents;
  contents.logMsg = "Delete ZarvoCore certificates cache directory.";
  contents.logFlag = DDLogFlag::error;
  return DDLogMessage(contents);
}

void terminalLine(benchmark::State& state) {
  const auto& logger = DDTTYLogger::sharedInstance();
  logger->setColorsEnabled(state.range(0) != 0);
  logger->colorsEnabled();
  const DDLogMessage line = message();
  const SilentError silent;
  logger->logMessage(line);
  const long before = allocationCount();
  for (auto _ : state) logger->logMessage(line);
  state.counters["allocations"] = static_cast<double>(allocationCount() - before);
}

void formattedLine(benchmark::State& state) {
  const std::string text = message().logMsg();
  const SilentError silent;
  for (auto _ : state) {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    tm fields{};
    ::localtime_r(&now.tv_sec, &fields);
    char line[4096];
    const int length = std::snprintf(
        line, sizeof line, "%04d-%02d-%02d %02d:%02d:%02d:%03ld %s[%i:%x] %s\n",
        fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday, fields.tm_hour, fields.tm_min,
        fields.tm_sec, now.tv_nsec / 1'000'000, "program", 4711, 4711U, text.c_str());
    benchmark::DoNotOptimize(::write(STDERR_FILENO, line, static_cast<std::size_t>(length)));
  }
}

BENCHMARK(terminalLine)->Arg(0)->Arg(1);
BENCHMARK(formattedLine);

}  // namespace
