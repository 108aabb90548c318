#include "ZCommons/Files/ZCFFileUtils.h"

#include <exception>
#include <memory>
#include <string_view>

#include "ZCommons/Files/ZCFFileReader.h"
#include "ZCommons/IO/ZCIODigest.h"
#include "ZCommons/IO/ZCIOUtils.h"
#include "ZCommons/Lang/ZCLWildcard.h"
#include "foundation/Error.h"
#include "foundation/Format.h"
#include "foundation/NSException.h"
#include "logging/DDLogMacros.h"
#include "platform/Clock.h"
#include "platform/FileSystem.h"

using foundation::Data;
using foundation::Date;
using foundation::NullableText;
using foundation::Result;
using foundation::StringEncoding;
using foundation::URL;
namespace FileSystem = platform::FileSystem;

namespace {

Result<bool> someLineContains(std::string_view text, std::string_view path) {
  const auto reader = ZCFFileReader::openForReading(path);
  if (!reader) return reader.error();
  ZCIOStream stream(*reader);
  while (const auto line = ZCIOUtils::readLine(stream, ZCFFileUtils::defaultFileEncoding())) {
    if (line->find(text) != std::string::npos) return true;
  }
  if ((*reader)->error()) return *(*reader)->error();
  return false;
}

std::optional<Date> lastWriteTime(const URL& url) {
  if (!url.isFileURL()) return std::nullopt;
  const auto attributes = FileSystem::attributes(url.path());
  if (attributes) return attributes->modificationDate;
  DDLogWarn(98, "(%@) Error getting time for file %@: %@", THIS_FILE, url,
            attributes.error().localizedDescription());
  return std::nullopt;
}

}  // namespace

StringEncoding ZCFFileUtils::defaultFileEncoding() { return StringEncoding::UTF8; }

bool ZCFFileUtils::contains(NullableText text, const URL& inFile) {
  if (text.isNullOrEmpty() || !inFile.isFileURL()) return false;
  std::string problem;
  try {
    const Result<bool> found = someLineContains(text.view(), inFile.path());
    if (found) return *found;
    problem = found.error().localizedDescription();
  } catch (const std::exception& exception) {
    problem = exception.what();
  }
  DDLogWarn(57, "(%@) Cannot read file contents: %@", THIS_FILE, problem);
  return false;
}

Date ZCFFileUtils::fileLastWriteTimeForUrl(const URL& url) {
  return lastWriteTime(url).value_or(foundation::distantFuture);
}

Date ZCFFileUtils::fileCreatedTimeForUrl(const URL& url) {
  if (!url.isFileURL()) return foundation::distantFuture;
  const auto attributes = FileSystem::attributes(url.path());
  if (attributes) return attributes->creationDate.value_or(foundation::distantFuture);
  DDLogWarn(116, "(%@) Error getting time for file %@: %@", THIS_FILE, url,
            attributes.error().localizedDescription());
  return foundation::distantFuture;
}

std::optional<Data> ZCFFileUtils::readQuetlyForUrl(const URL& url) {
  if (!url.isFileURL()) return std::nullopt;
  Result<Data> content = FileSystem::readFile(url.path(), FileSystem::Caching::uncached);
  if (content) return *std::move(content);
  DDLogWarn(140, "(%@) Error reading file %@: %@", THIS_FILE, url,
            content.error().localizedDescription());
  return std::nullopt;
}

void ZCFFileUtils::writeQuetly(NullableText text, const URL& toFile) {
  if (text.isNull() || !toFile.isFileURL()) return;
  const auto written =
      FileSystem::writeFileAtomically(toFile.path(), foundation::dataOf(text.view()));
  if (written) return;
  DDLogWarn(158, "(%@) Error writing to file %@: %@", THIS_FILE, toFile,
            written.error().localizedDescription());
}

void ZCFFileUtils::touchForUrl(const URL& url) {
  if (url.isFileURL() && FileSystem::exists(url.path())) {
    const auto touched =
        FileSystem::setModificationDate(url.path(), platform::Clock::current().now());
    if (touched) return;
    DDLogWarn(172, "(%@) Error touching file %@: %@", THIS_FILE, url,
              touched.error().localizedDescription());
  } else if (!url.isFileURL() || !FileSystem::createFile(url.path())) {
    DDLogWarn(177, "(%@) Error touching file %@: Can't create empty file.", THIS_FILE, url);
  }
}

bool ZCFFileUtils::deleteQuetlyForUrl(const URL& url) {
  if (!url.isFileURL()) return false;
  const auto removed = FileSystem::removeItem(url.path());
  if (removed) return true;
  DDLogWarn(191, "(%@) Error deleting %@: %@", THIS_FILE, url,
            removed.error().localizedDescription());
  return false;
}

std::optional<std::string> ZCFFileUtils::fileChecksum(const URL& fileUrl) {
  if (!fileUrl.isFileURL()) foundation::raiseArgumentException("fileUrl");
  const auto reader = ZCFFileReader::openForReading(fileUrl.path());
  if (!reader) return std::nullopt;
  ZCIOStream stream(*reader);
  ZCIODigest digest(ZCIODigest::Algorithm::MD5);
  std::uint8_t buffer[4096];
  std::int64_t count = 0;
  while ((count = stream.read(buffer, sizeof buffer)) > 0) {
    digest.update({buffer, static_cast<std::size_t>(count)});
  }
  if (count < 0) return std::nullopt;
  std::string checksum;
  for (const std::uint8_t byte : digest.finish()) checksum += foundation::format("%02x", byte);
  return checksum;
}

bool ZCFFileUtils::isFile(const URL& url, std::optional<Date> olderThan) {
  if (!olderThan) return false;
  const std::optional<Date> time = lastWriteTime(url);
  return time && *time <= *olderThan;
}

std::vector<URL> ZCFFileUtils::findFileByName(NullableText fileName,
                                              const std::optional<URL>& inDirectory,
                                              std::size_t level) {
  return findUrlByName(fileName, inDirectory, level, true);
}

std::vector<URL> ZCFFileUtils::findUrlByName(NullableText fileName,
                                             const std::optional<URL>& inDirectory,
                                             std::size_t level, bool ignoreDirectory) {
  if (fileName.isNull()) foundation::raiseArgumentException("fileName");
  if (!inDirectory) foundation::raiseArgumentException("directoryToScan");
  std::vector<URL> found;
  if (!inDirectory->isFileURL()) return found;
  const auto wildcard = ZCLWildcard::wildcard(fileName.view());
  platform::DirectoryEnumerator entries(inDirectory->path());
  while (entries.next()) {
    const bool isDirectory = entries.isDirectory();
    if (level != 0 && entries.level() >= level && isDirectory) entries.skipDescendants();
    if (ignoreDirectory && isDirectory) continue;
    const bool matches =
        entries.name() == fileName.view() || (wildcard && wildcard->matchWildcard(entries.name()));
    if (!matches) continue;
    const URL::Kind kind = isDirectory ? URL::Kind::directory : URL::Kind::file;
    found.push_back(URL::fileURLWithPath(entries.path(), kind));
  }
  return found;
}
