#include <stdlib.h>
#include <unistd.h>

#include <thread>

#include <gmock/gmock.h>

#include "logging/DDLogMacros.h"
#include "tests/logging/FileLog.h"
#include "tests/support/RecordingLogger.h"

namespace {

using logging_test::FileLog;

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
    std::size_t lines;
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
    EXPECT_GE(FileLog::textsIn(folder.path()).size(), row.lines) << row.name;
  }
}

}  // namespace
