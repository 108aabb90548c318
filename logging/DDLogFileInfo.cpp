#include "logging/DDLogFileInfo.h"

#include <sys/stat.h>

#include <system_error>

#include "logging/DDLogFileName.h"
#include "platform/Clock.h"
#include "platform/Console.h"

using foundation::Date;
using foundation::Error;
using foundation::Result;
using foundation::Value;
using platform::Console;
namespace FileSystem = platform::FileSystem;

namespace {

constexpr mode_t archivedModeBit = S_ISVTX;

bool carriesStandIn(std::string_view path) {
  const auto attributes = FileSystem::attributes(path);
  return attributes && attributes->type == FileSystem::FileType::regular &&
         (attributes->permissions & archivedModeBit) != 0;
}

Result<void> setStandIn(std::string_view path, bool archived) {
  const auto attributes = FileSystem::attributes(path);
  if (!attributes) return attributes.error();
  const mode_t mode = attributes->permissions & ~archivedModeBit;
  return FileSystem::setPermissions(path, archived ? mode | archivedModeBit : mode);
}

bool standsIn(const Result<void>& result, std::string_view attributeName) {
  return !result && attributeName == DDLogFileInfo::archivedAttribute &&
         FileSystem::isAttributesUnsupported(result.error());
}

std::string systemText(const Error& error) {
  return std::generic_category().message(static_cast<int>(error.code()));
}

// The counter behind the date in the name of a log file, at least 1.
unsigned counterOf(std::string_view name) {
  const std::size_t blank = name.rfind(' ');
  unsigned counter = 0;
  for (const char c : name.substr(blank + 1)) {
    if (c < '0' || c > '9') return c == '.' && counter > 0 ? counter : 1;
    counter = counter * 10 + static_cast<unsigned>(c - '0');
  }
  return 1;
}

std::optional<Date> dateInName(std::string_view name) {
  const std::optional<Date> minute = DDLogFileName::date(name);
  if (!minute) return std::nullopt;
  return *minute + std::chrono::microseconds(counterOf(name) - 1);
}

Value orEmptyText(const std::optional<Date>& date) { return date ? Value(*date) : Value(""); }

Value describe(const std::optional<FileSystem::FileAttributes>& attributes) {
  if (!attributes) return "";
  return foundation::Dictionary{{"size", attributes->size},
                                {"permissions", foundation::format("%o", attributes->permissions)},
                                {"owner", attributes->owner},
                                {"group", attributes->group}};
}

}  // namespace

std::shared_ptr<DDLogFileInfo> DDLogFileInfo::logFileWithPath(std::string_view filePath) {
  return std::make_shared<DDLogFileInfo>(filePath);
}

DDLogFileInfo::DDLogFileInfo(std::string_view filePath) : filePath_(filePath) {}

const std::string& DDLogFileInfo::fileName() {
  if (!fileName_) fileName_ = filePath_.substr(filePath_.rfind('/') + 1);
  return *fileName_;
}

const std::optional<FileSystem::FileAttributes>& DDLogFileInfo::fileAttributes() {
  if (!fileAttributes_) {
    if (const auto attributes = FileSystem::attributes(filePath_)) fileAttributes_ = *attributes;
  }
  return fileAttributes_;
}

std::optional<Date> DDLogFileInfo::creationDate() {
  if (creationDate_ || !fileAttributes()) return creationDate_;
  creationDate_ = fileAttributes()->creationDate;
  if (!creationDate_) creationDate_ = dateInName(fileName());
  if (!creationDate_) creationDate_ = fileAttributes()->modificationDate;
  return creationDate_;
}

std::optional<Date> DDLogFileInfo::modificationDate() {
  if (!modificationDate_ && fileAttributes())
    modificationDate_ = fileAttributes()->modificationDate;
  return modificationDate_;
}

std::uint64_t DDLogFileInfo::fileSize() {
  if (fileSize_ == 0 && fileAttributes()) fileSize_ = fileAttributes()->size;
  return fileSize_;
}

foundation::TimeInterval DDLogFileInfo::age() {
  const std::optional<Date> created = creationDate();
  return created ? foundation::secondsBetween(*created, platform::Clock::current().now()) : 0;
}

bool DDLogFileInfo::isArchived() {
  return hasExtendedAttributeWithName(archivedAttribute) || carriesStandIn(filePath_);
}

void DDLogFileInfo::setIsArchived(bool archived) {
  if (archived) {
    addExtendedAttributeWithName(archivedAttribute);
  } else {
    removeExtendedAttributeWithName(archivedAttribute);
  }
}

void DDLogFileInfo::reset() {
  fileName_.reset();
  fileAttributes_.reset();
  creationDate_.reset();
  modificationDate_.reset();
}

void DDLogFileInfo::renameFile(std::string_view newFileName) {
  if (newFileName == fileName()) return;
  const std::string newPath =
      filePath_.substr(0, filePath_.rfind('/') + 1) + std::string(newFileName);
  // The test is the wrong way round on purpose: a target that is there is left alone, and then the
  // move fails.
  if (!FileSystem::exists(newPath)) {
    const Result<void> removed = FileSystem::removeItem(newPath);
    if (removed)
      Console::log("DDLogFileInfo: Error deleting archive (%@): %@", fileName(), nullptr);
  }
  const Result<void> moved = FileSystem::moveItem(filePath_, newPath);
  if (!moved)
    Console::log("DDLogFileInfo: Error renaming file (%@): %@", fileName(), moved.error());
  filePath_ = newPath;
  reset();
}

bool DDLogFileInfo::hasExtendedAttributeWithName(std::string_view attributeName) {
  return FileSystem::hasExtendedAttribute(filePath_, attributeName);
}

void DDLogFileInfo::addExtendedAttributeWithName(std::string_view attributeName) {
  Result<void> result = FileSystem::setExtendedAttribute(filePath_, attributeName);
  if (standsIn(result, attributeName)) result = setStandIn(filePath_, true);
  if (result) return;
  Console::log("DDLogFileInfo: setxattr(%@, %@): error = %s", attributeName, fileName(),
               systemText(result.error()));
}

void DDLogFileInfo::removeExtendedAttributeWithName(std::string_view attributeName) {
  Result<void> result = FileSystem::removeExtendedAttribute(filePath_, attributeName);
  if (standsIn(result, attributeName)) result = setStandIn(filePath_, false);
  if (result || FileSystem::isAttributeNotFound(result.error())) return;
  Console::log("DDLogFileInfo: removexattr(%@, %@): error = %s", attributeName, fileName(),
               systemText(result.error()));
}

std::weak_ordering DDLogFileInfo::reverseCompareByCreationDate(DDLogFileInfo& another) {
  return another.creationDate() <=> creationDate();
}

std::weak_ordering DDLogFileInfo::reverseCompareByModificationDate(DDLogFileInfo& another) {
  return another.modificationDate() <=> modificationDate();
}

std::string DDLogFileInfo::description() const {
  DDLogFileInfo facts(*this);
  return Value(foundation::Dictionary{
                   {"filePath", filePath_},
                   {"fileName", facts.fileName()},
                   {"fileAttributes", describe(facts.fileAttributes())},
                   {"creationDate", orEmptyText(facts.creationDate())},
                   {"modificationDate", orEmptyText(facts.modificationDate())},
                   {"fileSize", facts.fileSize()},
                   {"age", facts.age()},
                   {"isArchived", facts.isArchived()},
               })
      .description();
}

bool DDLogFileInfo::isEqual(const foundation::Object& other) const {
  const auto* const info = dynamic_cast<const DDLogFileInfo*>(&other);
  return info && info->filePath_ == filePath_;
}

std::size_t DDLogFileInfo::hash() const { return std::hash<std::string>()(filePath_); }
