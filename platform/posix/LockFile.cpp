#include "platform/LockFile.h"

#include <fcntl.h>
#include <sys/file.h>

#include <string>

#include "platform/Queue.h"
#include "platform/posix/SystemCall.h"

using foundation::Result;

namespace platform {

Result<LockFile> LockFile::open(std::string_view path) {
  const int descriptor = callWithPath(path, [](const char* name) {
    return ::open(name, O_RDWR | O_CREAT | O_CLOEXEC | O_NOCTTY, S_IRUSR | S_IWUSR);
  });
  if (descriptor < 0) return systemError("open", path);
  return LockFile(FileHandle(descriptor, std::string(path)));
}

Result<void> LockFile::apply(int operation) const {
  const int result = retryInterrupted([&] { return ::flock(handle_.descriptor(), operation); });
  if (result != 0) return systemError("flock", handle_.path());
  return {};
}

Result<void> LockFile::tryLock() const { return apply(LOCK_EX | LOCK_NB); }

Result<void> LockFile::lock() const {
  const BlockingRegion waiting;
  return apply(LOCK_EX);
}

Result<void> LockFile::unlock() const { return apply(LOCK_UN); }

}  // namespace platform
