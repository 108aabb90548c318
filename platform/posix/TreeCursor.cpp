#include "platform/posix/TreeCursor.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "platform/posix/FileSystemNative.h"
#include "platform/posix/SystemCall.h"

namespace platform {

bool TreeCursor::enter(const char* name) {
  FileHandle below(retryInterrupted(
      [&] { return openat(descriptor(), name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC); }));
  if (!below) return false;
  above_.push_back({std::move(current_)});
  current_ = std::move(below);
  if (above_.size() > keptOpen + 1) forgetHandle(above_[above_.size() - 2]);
  return true;
}

bool TreeCursor::leave() {
  Folder folder = std::move(above_.back());
  above_.pop_back();
  current_ = folder.handle || isLost() ? std::move(folder.handle) : reopenAbove(folder);
  return !isLost();
}

void TreeCursor::forgetHandle(Folder& folder) {
  if (!folder.handle) return;
  struct stat status {};
  if (fstat(folder.handle.descriptor(), &status) == 0) {
    folder.device = status.st_dev;
    folder.inode = status.st_ino;
  }
  folder.handle.close();
}

FileHandle TreeCursor::reopenAbove(const Folder& folder) const {
  FileHandle above(retryInterrupted([&] { return openat(descriptor(), "..", openToSearch); }));
  struct stat status {};
  const bool same = above && fstat(above.descriptor(), &status) == 0 &&
                    status.st_dev == folder.device && status.st_ino == folder.inode;
  return same ? std::move(above) : FileHandle();
}

}  // namespace platform
