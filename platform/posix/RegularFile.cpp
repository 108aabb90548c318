#include "platform/posix/RegularFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "platform/posix/SystemCall.h"

namespace platform {

foundation::Result<FileHandle> openRegularFile(std::string_view path, int flags, mode_t mode) {
  FileHandle file(callWithPath(path,
                               [&](const char* terminated) {
                                 return open(terminated, flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY,
                                             mode);
                               }),
                  std::string(path));
  struct stat status {};
  if (!file || fstat(file.descriptor(), &status) == -1) return systemError("open", path);
  if (S_ISDIR(status.st_mode)) return systemError("open", path, EISDIR);
  if (!S_ISREG(status.st_mode)) return systemError("open", path, EINVAL);
  return file;
}

bool isRegularFile(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace platform
