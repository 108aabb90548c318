#pragma once

#include <memory>
#include <semaphore>
#include <sstream>
#include <string>
#include <vector>

#include "logging/DDFileLogger.h"
#include "logging/DDLog.h"
#include "logging/DDLogFileManagerDefault.h"
#include "tests/support/TemporaryFolder.h"

namespace logging_test {

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
    DDLog::log(false, 31, DDLogFlag::error, 0, "FileLog.h", "log", 1, nullptr, "%@", text);
  }

  /// Returns when everything is done that was queued so far.
  void settle() {
    DDLog::flushLog();
    logger->loggerQueue()->sync([] {});
  }

  /// The texts of the lines of a file, without the time.
  static std::vector<std::string> texts(const std::string& path) {
    const auto content = platform::FileSystem::readFile(path);
    std::vector<std::string> texts;
    std::istringstream lines(content ? std::string(foundation::textOf(*content)) : "");
    for (std::string line; std::getline(lines, line);) {
      texts.push_back(line.size() < 25 ? "?" + line : line.substr(25));
    }
    return texts;
  }

  /// The texts of the lines of all log files in a folder.
  static std::vector<std::string> textsIn(const std::string& folder) {
    std::vector<std::string> all;
    const auto manager = DDLogFileManagerDefault::initWithLogsDirectory(folder);
    for (const std::string& path : manager->unsortedLogFilePaths()) {
      for (std::string& text : texts(path)) all.push_back(std::move(text));
    }
    return all;
  }

  /// The texts of all files, newest first, the archived ones marked: "a,b|c (archived)". What is no
  /// file is left out.
  std::string content() {
    settle();
    std::string result;
    for (const auto& info : manager->sortedLogFileInfos()) {
      if (info->fileAttributes()->type != platform::FileSystem::FileType::regular) continue;
      if (!result.empty()) result += "|";
      for (const std::string& text : texts(info->filePath())) {
        if (!result.empty() && !result.ends_with("|")) result += ",";
        result += text;
      }
      if (info->isArchived()) result += " (archived)";
    }
    return result;
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

}  // namespace logging_test
