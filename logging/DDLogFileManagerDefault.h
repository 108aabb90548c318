#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/DateFormatter.h"
#include "foundation/NullableText.h"
#include "foundation/ObserverList.h"
#include "logging/DDLogFileManager.h"

/// Names, lists, makes and deletes log files in one folder.
///
/// The file being written and `maximumNumberOfLogFiles` archived ones survive: one file more than
/// the setting. What is not named like a log file of this application is never listed or deleted.
/// Failures are written to the console. Thread safety: any thread.
class DDLogFileManagerDefault : public DDLogFileManager,
                                public std::enable_shared_from_this<DDLogFileManagerDefault> {
 protected:
  /// What only factories can make.
  class Key {
   public:
    explicit Key() = default;
  };

 public:
  /// A manager of the default folder.
  static std::shared_ptr<DDLogFileManagerDefault> init();

  /// initWithLogsDirectory:
  ///
  /// A manager of a folder, which is made when it is needed; null for the default folder. Keeps 5
  /// files at first.
  static std::shared_ptr<DDLogFileManagerDefault> initWithLogsDirectory(
      foundation::NullableText logsDirectory);

  DDLogFileManagerDefault(Key, foundation::NullableText logsDirectory);

  std::size_t maximumNumberOfLogFiles() const override { return maximumNumberOfLogFiles_; }

  /// A different count deletes what is too many, soon, on the global logging queue.
  void setMaximumNumberOfLogFiles(std::size_t count) override;

  /// Tells every setting of the count: the old and the new one.
  [[nodiscard]] foundation::Observation observeMaximumNumberOfLogFiles(
      foundation::ObserverList<std::size_t, std::size_t>::Observer observer);

  /// The "Logs" folder of the user's Library, or of the folder for temporary files when there is no
  /// Library, and in it a folder with the name of the process.
  std::string defaultLogsDirectory() const;

  /// The folder, which is made with those above it when it is missing.
  std::string logsDirectory() override;

  /// Whether a name is that of a log file of this application.
  virtual bool isLogFile(std::string_view fileName) const;

  std::vector<std::string> unsortedLogFilePaths() override;
  std::vector<std::string> unsortedLogFileNames() override;
  std::vector<std::shared_ptr<DDLogFileInfo>> unsortedLogFileInfos() override;
  std::vector<std::string> sortedLogFilePaths() override;
  std::vector<std::string> sortedLogFileNames() override;
  std::vector<std::shared_ptr<DDLogFileInfo>> sortedLogFileInfos() override;

  /// The name for a file that is made now, the first time it is tried.
  virtual std::string newLogFileName() const;

  /// The formatter of the dates in file names.
  foundation::DateFormatter logFileDateFormatter() const;

  std::string createNewLogFile() override;

  /// Deletes the oldest files beyond the count. The newest one does not count when it is not
  /// archived: it is being written.
  void deleteOldLogFiles();

 private:
  void maximumNumberOfLogFilesDidChange(std::size_t oldCount, std::size_t newCount);

  static constexpr std::size_t defaultMaximumNumberOfLogFiles = 5;

  std::atomic<std::size_t> maximumNumberOfLogFiles_{defaultMaximumNumberOfLogFiles};
  const std::string logsDirectory_;
  foundation::ObserverList<std::size_t, std::size_t> observers_;
  foundation::Observation ownObservation_;
};
