#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "foundation/Data.h"
#include "foundation/Date.h"
#include "foundation/NullableText.h"
#include "foundation/StringEncoding.h"
#include "foundation/URL.h"

/// Small chores on files, and the search of folders.
///
/// A failure is told by a neutral result and a warning in the log; a URL that is no file URL gives
/// the neutral result without one, unless an operation says otherwise. Thread safety: any thread.
class ZCFFileUtils {
 public:
  ZCFFileUtils() = delete;

  /// The encoding of text files: UTF-8.
  static foundation::StringEncoding defaultFileEncoding();

  /// contains:inFile:
  ///
  /// Whether some line of the file contains `text`; false for a null or empty text. The file is
  /// read line by line, so a match never spans a line end.
  static bool contains(foundation::NullableText text, const foundation::URL& inFile);

  /// fileLastWriteTimeForUrl:
  ///
  /// When the content was last changed; `foundation::distantFuture` when that cannot be had.
  static foundation::Date fileLastWriteTimeForUrl(const foundation::URL& url);

  /// fileCreatedTimeForUrl:
  ///
  /// When the file was made; `foundation::distantFuture` when that cannot be had, or the file
  /// system does not record it.
  static foundation::Date fileCreatedTimeForUrl(const foundation::URL& url);

  /// readQuetlyForUrl:
  ///
  /// The whole content, read past the system's cache; nothing on failure.
  static std::optional<foundation::Data> readQuetlyForUrl(const foundation::URL& url);

  /// writeQuetly:toFile:
  ///
  /// Replaces the file's content by `text` in one step. A null text writes nothing.
  static void writeQuetly(foundation::NullableText text, const foundation::URL& toFile);

  /// touchForUrl:
  ///
  /// Sets the time of the last change to now, or makes an empty file where there is none. A URL
  /// that is no file URL is a place where no file can be made: a warning.
  static void touchForUrl(const foundation::URL& url);

  /// deleteQuetlyForUrl:
  ///
  /// Removes a file, a link, or a folder with all its contents; returns whether all of it is gone.
  static bool deleteQuetlyForUrl(const foundation::URL& url);

  /// fileChecksum:
  ///
  /// The MD5 digest of the content in 32 lower-case hexadecimal digits; nothing, without a log
  /// line, when the file cannot be read. Memory is constant whatever the size. Raises
  /// NSInvalidArgumentException ("fileUrl") for a URL that is no file URL.
  static std::optional<std::string> fileChecksum(const foundation::URL& fileUrl);

  /// isFile:olderThan:
  ///
  /// Whether the content was last changed at or before the date; false without a date, and for a
  /// file whose time cannot be read.
  static bool isFile(const foundation::URL& url, std::optional<foundation::Date> olderThan);

  /// findFileByName:inDirectory:level:
  ///
  /// As `findUrlByName` with folders left out.
  static std::vector<foundation::URL> findFileByName(
      foundation::NullableText fileName, const std::optional<foundation::URL>& inDirectory,
      std::size_t level);

  /// findUrlByName:inDirectory:level:ignoreDirectory:
  ///
  /// The visible entries below a folder whose name is `fileName` or matches it as a wildcard (see
  /// ZCLWildcard), in the file system's order. Names that start with a dot, and all below them, are
  /// never seen; what cannot be read is passed over without a log line.
  ///
  /// `level` says how deep: 1 for the folder's own entries, 0 for no limit. Links are told, not
  /// followed. With `ignoreDirectory` folders are left out, not what is in them. Raises
  /// NSInvalidArgumentException for a null name ("fileName") or folder ("directoryToScan").
  static std::vector<foundation::URL> findUrlByName(
      foundation::NullableText fileName, const std::optional<foundation::URL>& inDirectory,
      std::size_t level, bool ignoreDirectory);
};
