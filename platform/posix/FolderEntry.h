#pragma once

#include <string>
#include <string_view>

#include "foundation/Error.h"
#include "platform/FileHandle.h"

namespace platform {

/// An entry by its folder, opened to reach its entries, and its name in there.
struct FolderEntry {
  FileHandle folder;
  std::string name;

  /// Opens the folder that holds the last component of `path`. A path whose last component is
  /// empty, "." or ".." names no entry of that folder and is refused (EINVAL); `call` is what the
  /// error names.
  static foundation::Result<FolderEntry> open(std::string_view call, std::string_view path);
};

}  // namespace platform
