#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "foundation/Data.h"
#include "foundation/Error.h"
#include "foundation/NSException.h"
#include "foundation/Value.h"
#include "foundation/archive/PropertyList.h"

namespace foundation {

/// Something that cannot be archived was handed to an archive writer.
class NSInvalidArchiveOperationException : public NSException {
 public:
  explicit NSInvalidArchiveOperationException(const std::string& reason);
};

/// Writes objects into a keyed archive: a property list in the platform's layout ("$version",
/// "$archiver", "$top" with "root", "$objects" with "$null" first), which the platform's own tools
/// read.
///
/// A shared object is stored once, however many refer to it. Objects that refer to each other in a
/// circle are refused: nobody would ever release what is read back.
/// Texts, numbers and data are stored as they are; arrays, dictionaries, dates and the null object
/// as objects of NSArray ("NS.objects"), NSDictionary ("NS.keys", "NS.objects"), NSDate ("NS.time",
/// seconds since 2001, and "NS.microseconds" since 1970 where those would be rounded) and NSNull. A
/// text that no property list holds (see PropertyList) is an NSString of "NS.bytes". Types of
/// numbers are kept as in a PropertyList.
///
///     auto data = ArchiveWriter::archivedData(person, PropertyListFormat::Binary);
///
/// A writer stands for the object that is being written, and is used only inside its
/// `encodeWithCoder`. Keys are UTF-8 texts without a zero byte, else NSInvalidArgumentException
/// ("key") is raised; a value written twice under one key replaces the first.
class ArchiveWriter {
 public:
  /// archivedDataWithRootObject:format:
  ///
  /// An archive of `root`. Error 4866 of "NSCocoaErrorDomain" when a shared object in it is not of
  /// a registered archivable class or is inside itself, when objects are nested more than 512 deep,
  /// when the archive is too large for the format (1 GiB), or when an `encodeWithCoder` raises an
  /// NSException, whose reason it then carries. Any thread.
  static Result<Data> archivedData(const Value& root,
                                   PropertyListFormat format = PropertyListFormat::Binary);

  ArchiveWriter(const ArchiveWriter&) = delete;
  ArchiveWriter& operator=(const ArchiveWriter&) = delete;

  /// encodeObject:forKey:
  ///
  /// Writes `object`, or that there is none. Raises NSInvalidArchiveOperationException for a shared
  /// object whose class is not registered.
  void encodeObject(const std::optional<Value>& object, std::string_view key);

  /// encodeInteger:forKey:
  void encodeInteger(std::int64_t value, std::string_view key);

 private:
  struct Archive;

  ArchiveWriter(Archive& archive, void* fields) : archive_(archive), fields_(fields) {}

  Archive& archive_;
  void* fields_;
};

}  // namespace foundation
