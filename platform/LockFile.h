#pragma once

#include <string_view>

#include "foundation/Error.h"
#include "platform/FileHandle.h"

namespace platform {

/// A file that processes lock to exclude one another, by the system's advisory whole-file lock
/// (flock). The lock belongs to the opened file, so two of them exclude each other also within one
/// process, and ends with the process. One thread at a time.
class LockFile {
 public:
  /// Opens the file, creating it with mode 0600 when there is none. Children do not inherit it.
  static foundation::Result<LockFile> open(std::string_view path);

  /// Takes the lock without waiting; an error when another has it.
  foundation::Result<void> tryLock() const;

  /// Takes the lock, waiting as long as another has it.
  foundation::Result<void> lock() const;

  foundation::Result<void> unlock() const;

 private:
  explicit LockFile(FileHandle handle) : handle_(std::move(handle)) {}

  foundation::Result<void> apply(int operation) const;

  FileHandle handle_;
};

}  // namespace platform
