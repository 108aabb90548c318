#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "logging/DDLogFileInfo.h"

/// What a file logger needs of the folder that its files lie in.
///
/// A logger calls it on its own queue. "Sorted" is newest first, by date of creation.
class DDLogFileManager {
 public:
  virtual ~DDLogFileManager() = default;

  /// How many archived files are kept beside the one that is being written; 0 keeps all.
  virtual std::size_t maximumNumberOfLogFiles() const = 0;
  virtual void setMaximumNumberOfLogFiles(std::size_t count) = 0;

  virtual std::string logsDirectory() = 0;

  virtual std::vector<std::string> unsortedLogFilePaths() = 0;
  virtual std::vector<std::string> unsortedLogFileNames() = 0;
  virtual std::vector<std::shared_ptr<DDLogFileInfo>> unsortedLogFileInfos() = 0;
  virtual std::vector<std::string> sortedLogFilePaths() = 0;
  virtual std::vector<std::string> sortedLogFileNames() = 0;
  virtual std::vector<std::shared_ptr<DDLogFileInfo>> sortedLogFileInfos() = 0;

  /// Makes a new file and returns its path, also when the file could not be made.
  virtual std::string createNewLogFile() = 0;

  /// didArchiveLogFile: (optional)
  ///
  /// Tells that a file of an earlier run was marked as archived.
  virtual void didArchiveLogFile(std::string_view) {}

  /// didRollAndArchiveLogFile: (optional)
  ///
  /// Tells that the file being written was closed and marked as archived.
  virtual void didRollAndArchiveLogFile(std::string_view) {}
};
