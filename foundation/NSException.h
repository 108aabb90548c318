#pragma once

#include <stdexcept>
#include <string>

#include "foundation/NullableText.h"

namespace foundation {

/// A programming error or another condition that a caller is not expected to handle locally.
///
/// It has a name, which says its kind, and a reason, which `what()` returns. A name that callers
/// may want to catch has a class of its own, derived from this one.
class NSException : public std::runtime_error {
 public:
  NSException(std::string name, const std::string& reason);

  const std::string& name() const { return name_; }
  std::string reason() const { return what(); }

  /// What log lines print: the reason.
  std::string description() const { return what(); }

 private:
  std::string name_;
};

class NSGenericException : public NSException {
 public:
  explicit NSGenericException(const std::string& reason);
};

class NSInvalidArgumentException : public NSException {
 public:
  explicit NSInvalidArgumentException(const std::string& reason);
};

class NSRangeException : public NSException {
 public:
  explicit NSRangeException(const std::string& reason);
};

class NSMallocException : public NSException {
 public:
  explicit NSMallocException(const std::string& reason);
};

class NSInternalInconsistencyException : public NSException {
 public:
  explicit NSInternalInconsistencyException(const std::string& reason);
};

/// Throws an exception of class `E`; out of line, so that the raising code stays small.
template <class E>
[[noreturn, gnu::noinline, gnu::cold]] void raise(const std::string& reason) {
  throw E(reason);
}

/// argumentException:
///
/// Raises NSInvalidArgumentException with the reason "Method argument error: %@", filled with
/// `argumentName`, or with "(NONE)" when it is null.
[[noreturn]] void raiseArgumentException(NullableText argumentName);

/// Raises NSMallocException with the reason "Memory allocation error. Attempt allocate memory for
/// (%@).", filled with `purpose`.
[[noreturn]] void raiseMallocException(NullableText purpose);

}  // namespace foundation
