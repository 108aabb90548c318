#pragma once

#include <sys/types.h>

#include <vector>

#include "platform/FileHandle.h"

namespace platform {

/// A place in a tree of folders in which others may move and swap things meanwhile.
///
/// Goes down by one name at a time, never through a link, and comes back up to the folder it came
/// from or not at all. The descriptors of the uppermost folders and of the one just above stay
/// open; between them the cursor goes up through "..", and only when that leads to the device and
/// inode that it came from. A folder found elsewhere loses the cursor up to the next folder whose
/// descriptor is open. At most six descriptors are open, whatever the depth.
class TreeCursor {
 public:
  /// Starts in `top`, which stays open.
  explicit TreeCursor(FileHandle top) : current_(std::move(top)) {}

  /// The folder the cursor is in; -1 when it is lost.
  int descriptor() const { return current_.descriptor(); }
  bool isLost() const { return !current_; }

  /// Goes down into the folder `name`, which is opened for reading. On an error, with errno set,
  /// the cursor stays where it is: ENOTDIR or ELOOP when `name` is no folder.
  bool enter(const char* name);

  /// Goes up by one level; false when the cursor is lost there.
  bool leave();

 private:
  struct Folder {
    FileHandle handle;  // none once the cursor is deeper down
    dev_t device = 0;   // what the folder is known by without a handle
    ino_t inode = 0;
  };

  static constexpr std::size_t keptOpen = 3;

  static void forgetHandle(Folder& folder);
  FileHandle reopenAbove(const Folder& folder) const;

  FileHandle current_;
  std::vector<Folder> above_;
};

}  // namespace platform
