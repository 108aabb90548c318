#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "foundation/NSException.h"
#include "foundation/Value.h"

namespace foundation {

/// A key was used that names no property of the object, or none that can be set.
class NSUndefinedKeyException : public NSException {
 public:
  explicit NSUndefinedKeyException(const std::string& reason);
};

/// An object whose properties are read and set by name.
///
/// Scalar properties stand as numbers. How values become properties is told in PropertyValue.h.
class KeyValueCoding {
 public:
  virtual ~KeyValueCoding() = default;

  /// valueForKey:
  ///
  /// The value of the property; nothing when the property is null. Raises NSUndefinedKeyException
  /// ("[<Class 0x…> valueForUndefinedKey:]: this class is not key value coding-compliant for the
  /// key %@.") for a key that names no property, as this implementation does for every key.
  virtual std::optional<Value> valueForKey(std::string_view key) const;

  /// setValue:forKey:
  ///
  /// Sets the property. Nothing and the null object set it to null. Raises NSUndefinedKeyException
  /// ("[<Class 0x…> setValue:forUndefinedKey:]: …", the same text) for a key that names no property
  /// that can be set, as this implementation does for every key; NSInvalidArgumentException when
  /// the property is a scalar and the value null, or the value is not of the property's type.
  virtual void setValueForKey(const std::optional<Value>& value, std::string_view key);
};

}  // namespace foundation
