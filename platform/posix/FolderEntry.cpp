#include "platform/posix/FolderEntry.h"

#include <fcntl.h>

#include "platform/posix/FileSystemNative.h"
#include "platform/posix/SystemCall.h"

namespace platform {

foundation::Result<FolderEntry> FolderEntry::open(std::string_view call, std::string_view path) {
  const std::size_t slash = path.rfind('/');
  const bool isBare = slash == std::string_view::npos;
  const std::string_view name = isBare ? path : path.substr(slash + 1);
  if (name.empty() || name == "." || name == ".." || name.find('\0') != std::string_view::npos) {
    return systemError(call, path, EINVAL);
  }
  const std::string_view folder = isBare ? "." : path.substr(0, slash + 1);
  FileHandle handle(callWithPath(
      folder, [](const char* terminated) { return ::open(terminated, openToSearch); }));
  if (!handle) return systemError(call, path);
  return FolderEntry{std::move(handle), std::string(name)};
}

}  // namespace platform
