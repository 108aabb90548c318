#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/Data.h"
#include "foundation/Error.h"
#include "foundation/NSException.h"
#include "foundation/Value.h"

namespace foundation {

/// An archive does not hold what is asked of it, or is damaged.
class NSInvalidUnarchiveOperationException : public NSException {
 public:
  explicit NSInvalidUnarchiveOperationException(const std::string& reason);
};

/// Reads objects back from a keyed archive, XML or binary, of an ArchiveWriter or of the platform.
///
/// An object that was stored once and referred to several times comes back as one. Keys that the
/// class does not ask for are skipped, and objects under them are never made. The mutable forms of
/// NSArray, NSDictionary, NSString and NSData are read like the plain ones.
///
///     auto person = ArchiveReader::unarchivedObjectOfClass<Person>(data);
///     if (!person) return person.error();
///
/// A reader stands for the object that is being read, and is used only inside its `initWithCoder`.
class ArchiveReader {
 public:
  /// unarchiveObjectWithData:
  ///
  /// The root value of the archive; the null object when the root is none. Error 4864 of
  /// "NSCocoaErrorDomain" when the data is no keyed archive, or when something that was asked for
  /// is damaged: a reference to an object that is not there, a class that is not registered, an
  /// object inside itself, more than 512 objects inside each other, data that grows beyond 256 MiB
  /// and 64 times its size. The same when an `initWithCoder` is false, or raises an
  /// NSException, whose reason the error then carries. Any thread.
  static Result<Value> unarchive(DataView archive);

  /// unarchivedObjectOfClass:fromData:
  ///
  /// The root object, never null. Error 4864 also when it is not a `T`.
  template <class T>
  static Result<std::shared_ptr<T>> unarchivedObjectOfClass(DataView archive) {
    const Result<Value> root = unarchive(archive);
    if (!root) return root.error();
    const auto* object = root->as<std::shared_ptr<Object>>();
    auto result = object ? std::dynamic_pointer_cast<T>(*object) : nullptr;
    if (!result) return wrongClass();
    return result;
  }

  ArchiveReader(const ArchiveReader&) = delete;
  ArchiveReader& operator=(const ArchiveReader&) = delete;

  /// Whether something was written under `key`, be it that there is no object.
  bool containsValueForKey(std::string_view key) const;

  /// decodeObjectForKey:
  ///
  /// The object under `key`; nothing when the key is missing, or when it says that there is none.
  /// Raises NSInvalidUnarchiveOperationException when a plain integer stands there, or when the
  /// object cannot be made.
  std::optional<Value> decodeObjectForKey(std::string_view key);

  /// decodeIntegerForKey:
  ///
  /// The integer under `key`; 0 when the key is missing. A real is cut towards zero. Raises
  /// NSRangeException when the number does not fit, NSInvalidUnarchiveOperationException when it is
  /// no number.
  std::int64_t decodeIntegerForKey(std::string_view key) const;

 private:
  class Archive;

  ArchiveReader(Archive& archive, void* fields) : archive_(archive), fields_(fields) {}

  static Error wrongClass();

  Archive& archive_;
  void* fields_;
};

}  // namespace foundation
