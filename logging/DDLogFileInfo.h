#pragma once

#include <compare>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/Date.h"
#include "foundation/Value.h"
#include "platform/FileSystem.h"

/// Facts about one log file, read when first asked for and then kept.
///
/// A log file that is no longer written carries the extended attribute "quillwort.log.archived".
/// Where the file system keeps no such attributes, the sticky bit of the file's mode stands in for
/// it; a file with either counts as archived. Links are never followed.
///
/// Failures are written to the console. Thread safety: one thread at a time.
class DDLogFileInfo : public foundation::Object {
 public:
  static constexpr std::string_view archivedAttribute = "quillwort.log.archived";

  /// logFileWithPath:
  static std::shared_ptr<DDLogFileInfo> logFileWithPath(std::string_view filePath);

  /// initWithFilePath:
  explicit DDLogFileInfo(std::string_view filePath);

  const std::string& filePath() const { return filePath_; }

  /// The last component of the path.
  const std::string& fileName();

  /// What the file system says; nothing when it cannot be read, which is tried again next time.
  const std::optional<platform::FileSystem::FileAttributes>& fileAttributes();

  /// When the file was made; nothing when its attributes cannot be read.
  ///
  /// Where the file system does not record it: the date in the file's name, where files of one
  /// minute keep the order of their counters; without one, the modification date.
  std::optional<foundation::Date> creationDate();

  std::optional<foundation::Date> modificationDate();

  /// Size in bytes. 0 is not kept, but read again next time.
  std::uint64_t fileSize();

  /// Seconds since the creation date; 0 when there is none.
  foundation::TimeInterval age();

  /// Whether the file is archived; asked of the file system each time.
  bool isArchived();

  /// setIsArchived:
  void setIsArchived(bool archived);

  /// Forgets what was read, except for the size.
  void reset();

  /// renameFile:
  ///
  /// Moves the file to another name in its folder, and describes that file from now on, also when
  /// the move failed. The name it has already changes nothing.
  void renameFile(std::string_view newFileName);

  /// hasExtendedAttributeWithName:, addExtendedAttributeWithName:, removeExtendedAttributeWithName:
  ///
  /// Removing one that is not there is no failure.
  bool hasExtendedAttributeWithName(std::string_view attributeName);
  void addExtendedAttributeWithName(std::string_view attributeName);
  void removeExtendedAttributeWithName(std::string_view attributeName);

  /// reverseCompareByCreationDate:, reverseCompareByModificationDate:
  ///
  /// Order by date, newest first: "less" when this file is the newer one. No date is the oldest.
  std::weak_ordering reverseCompareByCreationDate(DDLogFileInfo& another);
  std::weak_ordering reverseCompareByModificationDate(DDLogFileInfo& another);

  /// All facts as a dictionary's text, an absent one as the empty text.
  std::string description() const override;

  /// Files are equal when their paths are.
  bool isEqual(const foundation::Object& other) const override;
  std::size_t hash() const override;

 private:
  std::string filePath_;
  std::optional<std::string> fileName_;
  std::optional<platform::FileSystem::FileAttributes> fileAttributes_;
  std::optional<foundation::Date> creationDate_;
  std::optional<foundation::Date> modificationDate_;
  std::uint64_t fileSize_ = 0;  // 0: not read yet
};
