#include "logging/DDLogFileManagerDefault.h"

#include <algorithm>

#include "foundation/Format.h"
#include "logging/DDLog.h"
#include "logging/DDLogFileName.h"
#include "platform/Bundle.h"
#include "platform/Clock.h"
#include "platform/Console.h"
#include "platform/FileSystem.h"
#include "platform/Folders.h"

using foundation::NullableText;
using foundation::URL;
using platform::Folders;
namespace FileSystem = platform::FileSystem;

namespace {

using FileInfos = std::vector<std::shared_ptr<DDLogFileInfo>>;

// Whether a candidate for a new file is free. A link takes its place even if it leads nowhere.
bool isTaken(const std::string& path) { return static_cast<bool>(FileSystem::attributes(path)); }

}  // namespace

std::shared_ptr<DDLogFileManagerDefault> DDLogFileManagerDefault::init() {
  return initWithLogsDirectory(nullptr);
}

std::shared_ptr<DDLogFileManagerDefault> DDLogFileManagerDefault::initWithLogsDirectory(
    NullableText logsDirectory) {
  return std::make_shared<DDLogFileManagerDefault>(Key(), logsDirectory);
}

DDLogFileManagerDefault::DDLogFileManagerDefault(Key, NullableText logsDirectory)
    : logsDirectory_(logsDirectory.isNull() ? defaultLogsDirectory() : logsDirectory.string()),
      ownObservation_(observers_.add([this](std::size_t oldCount, std::size_t newCount) {
        maximumNumberOfLogFilesDidChange(oldCount, newCount);
      })) {}

void DDLogFileManagerDefault::setMaximumNumberOfLogFiles(std::size_t count) {
  observers_.notify(maximumNumberOfLogFiles_.exchange(count), count);
}

foundation::Observation DDLogFileManagerDefault::observeMaximumNumberOfLogFiles(
    foundation::ObserverList<std::size_t, std::size_t>::Observer observer) {
  return observers_.add(std::move(observer));
}

void DDLogFileManagerDefault::maximumNumberOfLogFilesDidChange(std::size_t oldCount,
                                                               std::size_t newCount) {
  if (oldCount == newCount) return;
  DDLog::loggingQueue()->async([weakSelf = weak_from_this()] {
    if (const auto self = weakSelf.lock()) self->deleteOldLogFiles();
  });
}

std::string DDLogFileManagerDefault::defaultLogsDirectory() const {
  const auto library = Folders::current().url(platform::SearchPathDirectory::library,
                                              platform::SearchPathDomain::user);
  const URL base = library ? *library : Folders::current().temporaryDirectory();
  return std::string(base.URLByAppendingPathComponent("Logs")
                         .URLByAppendingPathComponent(platform::Bundle::current().processName())
                         .path());
}

std::string DDLogFileManagerDefault::logsDirectory() {
  if (FileSystem::exists(logsDirectory_)) return logsDirectory_;
  const foundation::Result<void> created = FileSystem::createDirectory(logsDirectory_);
  if (!created) {
    platform::Console::log("DDFileLogManagerDefault: Error creating logsDirectory: %@",
                           created.error());
  }
  return logsDirectory_;
}

bool DDLogFileManagerDefault::isLogFile(std::string_view fileName) const {
  return DDLogFileName::date(fileName).has_value();
}

std::vector<std::string> DDLogFileManagerDefault::unsortedLogFileNames() {
  const auto entries = FileSystem::contentsOfDirectory(logsDirectory());
  std::vector<std::string> names;
  if (!entries) return names;
  std::copy_if(entries->begin(), entries->end(), std::back_inserter(names),
               [this](const std::string& name) { return isLogFile(name); });
  return names;
}

std::vector<std::string> DDLogFileManagerDefault::unsortedLogFilePaths() {
  std::vector<std::string> paths = unsortedLogFileNames();
  for (std::string& path : paths) path = logsDirectory_ + "/" + path;
  return paths;
}

FileInfos DDLogFileManagerDefault::unsortedLogFileInfos() {
  FileInfos infos;
  for (const std::string& path : unsortedLogFilePaths()) {
    infos.push_back(DDLogFileInfo::logFileWithPath(path));
  }
  return infos;
}

// File systems tell a date of creation in ticks of some milliseconds. Of files of one tick the one
// that is not archived comes first: it is the one being written.
FileInfos DDLogFileManagerDefault::sortedLogFileInfos() {
  FileInfos infos = unsortedLogFileInfos();
  std::stable_partition(infos.begin(), infos.end(),
                        [](const auto& info) { return !info->isArchived(); });
  std::stable_sort(infos.begin(), infos.end(), [](const auto& a, const auto& b) {
    return a->reverseCompareByCreationDate(*b) < 0;
  });
  return infos;
}

std::vector<std::string> DDLogFileManagerDefault::sortedLogFilePaths() {
  std::vector<std::string> paths;
  for (const auto& info : sortedLogFileInfos()) paths.push_back(info->filePath());
  return paths;
}

std::vector<std::string> DDLogFileManagerDefault::sortedLogFileNames() {
  std::vector<std::string> names;
  for (const auto& info : sortedLogFileInfos()) names.push_back(info->fileName());
  return names;
}

std::string DDLogFileManagerDefault::newLogFileName() const {
  return DDLogFileName::nameForDate(platform::Clock::current().now());
}

foundation::DateFormatter DDLogFileManagerDefault::logFileDateFormatter() const {
  return {DDLogFileName::datePattern, foundation::TimeZone::GMT};
}

std::string DDLogFileManagerDefault::createNewLogFile() {
  const std::string name = newLogFileName();
  const std::string directory = logsDirectory() + "/";
  std::string path = directory + name;
  for (unsigned long attempt = 2; isTaken(path); ++attempt) {
    path = directory + DDLogFileName::nameForAttempt(name, attempt);
  }
  static_cast<void>(FileSystem::createFile(path));
  deleteOldLogFiles();
  return path;
}

void DDLogFileManagerDefault::deleteOldLogFiles() {
  const std::size_t kept = maximumNumberOfLogFiles_;
  if (kept == 0) return;
  FileInfos infos = sortedLogFileInfos();
  if (!infos.empty() && !infos.front()->isArchived()) infos.erase(infos.begin());
  for (std::size_t i = kept; i < infos.size(); ++i) {
    static_cast<void>(FileSystem::removeItem(infos[i]->filePath()));
  }
}
