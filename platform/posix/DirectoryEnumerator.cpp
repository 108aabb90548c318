#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <utility>

#include "platform/FileSystem.h"
#include "platform/posix/FolderListing.h"
#include "platform/posix/SystemCall.h"
#include "platform/posix/TreeCursor.h"

namespace platform {

class DirectoryEnumerator::Walk {
 public:
  explicit Walk(std::string_view directory) : path_(directory) {}

  bool next() {
    if (!cursor_) {
      open();
    } else if (std::exchange(isDescending_, false)) {
      enter();
    }
    while (!levels_.empty()) {
      if (nextOfLevel()) return true;
      levels_.pop_back();
      if (!levels_.empty()) cursor_->leave();
    }
    return false;
  }

  std::string_view name() const { return std::string_view(path_).substr(levels_.back().nameAt); }
  std::string_view path() const { return path_; }
  std::size_t level() const { return levels_.size(); }
  bool isDirectory() const { return isDirectory_; }
  void skipDescendants() { isDescending_ = false; }

 private:
  struct Level {
    FolderListing listing;
    std::size_t nameAt;  // where in the path the names of the level stand
  };

  void open() {
    FileHandle top(callWithPath(path_, [](const char* terminated) {
      return ::open(terminated, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    }));
    const bool isOpen = static_cast<bool>(top);
    cursor_.emplace(std::move(top));
    if (isOpen) pushLevel();
  }

  void enter() {
    if (cursor_->enter(path_.c_str() + levels_.back().nameAt)) pushLevel();
  }

  void pushLevel() {
    if (!path_.ends_with('/')) path_ += '/';
    Level& level = levels_.emplace_back();
    level.nameAt = path_.size();
    static_cast<void>(level.listing.read(cursor_->descriptor()));
  }

  bool nextOfLevel() {
    if (cursor_->isLost()) return false;
    Level& level = levels_.back();
    while (const auto entry = level.listing.next()) {
      if (entry->name[0] == '.') continue;
      path_.resize(level.nameAt);
      path_ += entry->name;
      isDirectory_ = isDescending_ = isFolder(*entry);
      return true;
    }
    return false;
  }

  bool isFolder(const FolderListing::Entry& entry) const {
    if (entry.type != DT_UNKNOWN) return entry.type == DT_DIR;
    struct stat status {};
    return fstatat(cursor_->descriptor(), entry.name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISDIR(status.st_mode);
  }

  std::string path_;
  std::optional<TreeCursor> cursor_;  // none until the walk begins
  std::vector<Level> levels_;
  bool isDirectory_ = false;
  bool isDescending_ = false;
};

DirectoryEnumerator::DirectoryEnumerator(std::string_view directory)
    : walk_(std::make_unique<Walk>(directory)) {}

DirectoryEnumerator::~DirectoryEnumerator() = default;

bool DirectoryEnumerator::next() { return walk_->next(); }
std::string_view DirectoryEnumerator::name() const { return walk_->name(); }
std::string_view DirectoryEnumerator::path() const { return walk_->path(); }
std::size_t DirectoryEnumerator::level() const { return walk_->level(); }
bool DirectoryEnumerator::isDirectory() const { return walk_->isDirectory(); }
void DirectoryEnumerator::skipDescendants() { walk_->skipDescendants(); }

}  // namespace platform
