#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include <optional>
#include <vector>

#include "platform/FileSystem.h"
#include "platform/posix/FolderEntry.h"
#include "platform/posix/FolderListing.h"
#include "platform/posix/SystemCall.h"
#include "platform/posix/TreeCursor.h"

namespace platform {
namespace {

// A stack of names in one piece of memory, each ended by a zero byte.
class NameStack {
 public:
  bool isEmpty() const { return names_.empty(); }
  void push(const char* name) { names_.append(name) += '\0'; }
  const char* top() const { return names_.c_str() + topPosition(); }
  void pop() { names_.resize(topPosition()); }

 private:
  std::size_t topPosition() const {
    const std::size_t before =
        names_.size() < 2 ? std::string::npos : names_.rfind('\0', names_.size() - 2);
    return before == std::string::npos ? 0 : before + 1;
  }

  std::string names_;
};

// The removal of one item.
//
// A folder is emptied of all that is no folder as soon as it is entered; its folders then follow
// one by one, from a list that was read once. Every call names an entry of the folder the cursor is
// in, so whatever others put under a name meanwhile, only what stands inside is touched.
class Removal {
 public:
  Removal(FolderEntry item, std::string_view path)
      : cursor_(std::move(item.folder)), above_(path.substr(0, path.size() - item.name.size())) {
    levels_.emplace_back();
    levels_.back().folders.push(item.name.c_str());
  }

  foundation::Result<void> run() {
    const char* const item = levels_.back().folders.top();
    if (unlinkEntry(item)) return {};
    if (errno == ENOENT) return systemError("unlink", pathOf(item));
    while (levels_.size() > 1 || !levels_.back().folders.isEmpty()) {
      if (cursor_.isLost() || levels_.back().folders.isEmpty()) {
        leaveFolder();
      } else {
        enterFolder();
      }
    }
    if (error_) return *error_;
    return {};
  }

 private:
  // A folder that the walk is in. The one it goes on to is on top of its folders.
  struct Level {
    NameStack folders;
    bool failed = false;  // something inside stays: no use in trying to remove the folder
  };

  // Others may fill folders again for ever, and dig deeper for ever while folders are moved away
  // behind them: both end here.
  static constexpr std::size_t maximumDepth = std::size_t{1} << 18;
  static constexpr int maximumRepeats = 64;

  bool unlinkEntry(const char* name) const {
    return retryInterrupted([&] { return unlinkat(cursor_.descriptor(), name, 0); }) == 0;
  }

  bool removeEmptyFolder(const char* name) const {
    return retryInterrupted([&] { return unlinkat(cursor_.descriptor(), name, AT_REMOVEDIR); }) ==
           0;
  }

  void enterFolder() {
    NameStack& folders = levels_.back().folders;
    const char* const name = folders.top();
    if (levels_.size() > maximumDepth) {
      fail("open", name, ENAMETOOLONG);
    } else if (cursor_.enter(name)) {
      levels_.emplace_back();
      emptyOfFiles();
      return;
    } else if (errno == ENOTDIR || errno == ELOOP) {
      unlinkNonFolder(name);
    } else if (const int code = errno; !removeEmptyFolder(name) && errno != ENOENT) {
      fail("open", name, code);
    }
    folders.pop();
  }

  void emptyOfFiles() {
    if (!listing_.read(cursor_.descriptor())) fail("read", ".", errno);
    Level& level = levels_.back();
    while (const auto entry = listing_.next()) {
      if (entry->type != DT_DIR && (unlinkEntry(entry->name) || errno == ENOENT)) continue;
      // What cannot be unlinked may be a folder; if it is none, entering it will tell.
      level.folders.push(entry->name);
    }
  }

  void unlinkNonFolder(const char* name) {
    if (!unlinkEntry(name) && errno != ENOENT) fail("unlink", name, errno);
  }

  void leaveFolder() {
    const bool failed = levels_.back().failed;
    levels_.pop_back();
    Level& level = levels_.back();
    if (!cursor_.leave()) {
      fail("open ..", level.folders.top(), ESTALE);
    } else if (failed) {
      level.failed = true;
    } else if (!removeEmptied(level.folders.top())) {
      return;
    }
    level.folders.pop();
  }

  // False when the folder has to be entered once more.
  bool removeEmptied(const char* name) {
    if (removeEmptyFolder(name) || errno == ENOENT) return true;
    if (errno == ENOTDIR) {
      unlinkNonFolder(name);
      return true;
    }
    const bool refilled = errno == ENOTEMPTY || errno == EEXIST;
    if (refilled && repeats_ < maximumRepeats) {
      ++repeats_;
      return false;
    }
    fail("rmdir", name, errno);
    return true;
  }

  // Notes that an entry of the current folder stays.
  void fail(std::string_view call, std::string_view name, int code) {
    levels_.back().failed = true;
    if (!error_) error_ = systemError(call, pathOf(name), code);
  }

  std::string pathOf(std::string_view name) const {
    std::string path = above_;
    for (std::size_t i = 0; i + 1 < levels_.size(); ++i) {
      path.append(levels_[i].folders.top()) += '/';
    }
    return path.append(name);
  }

  TreeCursor cursor_;
  const std::string above_;
  std::vector<Level> levels_;
  FolderListing listing_;
  int repeats_ = 0;
  std::optional<foundation::Error> error_;
};

}  // namespace

foundation::Result<void> FileSystem::removeItem(std::string_view path) {
  auto item = FolderEntry::open("unlink", path);
  if (!item) return item.error();
  return Removal(*std::move(item), path).run();
}

}  // namespace platform
