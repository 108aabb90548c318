#pragma once

#include <stdlib.h>

#include <string>
#include <string_view>

#include "platform/FileSystem.h"

namespace support {

/// A fresh folder that is removed with its contents at the end of the scope.
class TemporaryFolder {
 public:
  /// A parent for many short-lived files: in memory, where the system has such a place.
  static std::string_view inMemory() {
    return platform::FileSystem::exists("/dev/shm") ? "/dev/shm" : "/tmp";
  }

  /// Makes the folder in `parent`.
  explicit TemporaryFolder(std::string_view parent = "/tmp")
      : path_(std::string(parent) + "/zarvo-test-XXXXXX") {
    if (!mkdtemp(path_.data())) path_.clear();
  }
  ~TemporaryFolder() { static_cast<void>(platform::FileSystem::removeItem(path_)); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& path() const { return path_; }

  /// A path inside.
  std::string path(std::string_view name) const { return path_ + "/" + std::string(name); }

 private:
  std::string path_;
};

}  // namespace support
