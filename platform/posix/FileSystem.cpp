#include "platform/FileSystem.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>

#include "foundation/Format.h"
#include "platform/FileHandle.h"
#include "platform/posix/FileSystemNative.h"
#include "platform/posix/FolderEntry.h"
#include "platform/posix/FolderListing.h"
#include "platform/posix/RegularFile.h"
#include "platform/posix/SystemCall.h"

namespace platform::FileSystem {
namespace {

constexpr mode_t permissionBits = 07777;

bool isDirectory(std::string_view path) {
  struct stat status {};
  return callWithPath(path, [&](const char* name) { return stat(name, &status); }) == 0 &&
         S_ISDIR(status.st_mode);
}

// mkdir that is content with a folder that is there; says in `made` whether it made one.
foundation::Result<void> makeFolder(std::string_view path, mode_t mode, bool& made) {
  made = callWithPath(path, [&](const char* name) { return mkdir(name, mode); }) == 0;
  if (made) return {};
  const int code = errno;
  if (isDirectory(path)) return {};
  return systemError("mkdir", path, code);
}

foundation::Result<void> makeFoldersAbove(std::string_view path) {
  std::size_t end = path.find_first_not_of('/');
  while ((end = path.find('/', end)) != std::string_view::npos) {
    bool made;
    if (auto result = makeFolder(path.substr(0, end), 0777, made); !result) return result;
    end = path.find_first_not_of('/', end);
  }
  return {};
}

foundation::Result<void> setFolderPermissions(std::string_view path, mode_t permissions) {
  const FileHandle folder(callWithPath(path, [](const char* name) {
    return open(name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  }));
  if (!folder) return systemError("open", path);
  if (retryInterrupted([&] { return fchmod(folder.descriptor(), permissions); }) == -1) {
    return systemError("chmod", path);
  }
  return {};
}

// Reads on to the end, whatever size the file says it has: those of /proc say 0.
foundation::Result<foundation::Data> readToEnd(const FileHandle& file, std::uint64_t expectedSize) {
  constexpr std::uint64_t leastRead = 4096;
  foundation::Data content(std::max(expectedSize + 1, leastRead));
  std::size_t filled = 0;
  for (;;) {
    const auto count = file.read(content.data() + filled, content.size() - filled);
    if (!count) return count.error();
    if (*count == 0) break;
    filled += *count;
    if (filled == content.size()) content.resize(2 * filled);
  }
  content.resize(filled);
  return content;
}

// A new file beside an entry, which takes the entry's place or vanishes.
class Substitute {
 public:
  Substitute(const FolderEntry& entry, std::string_view path)
      : entry_(entry),
        path_(path),
        name_(foundation::format(".%08x%08x.tmp", arc4random(), arc4random())) {}
  ~Substitute() {
    if (file_) unlinkat(folder(), name_.c_str(), 0);
  }
  Substitute(const Substitute&) = delete;
  Substitute& operator=(const Substitute&) = delete;

  foundation::Result<void> create() {
    struct stat status {};
    const bool replaces =
        fstatat(folder(), entry_.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
        S_ISREG(status.st_mode);
    // Set-id bits are not kept: the content that they were given for is gone.
    const mode_t mode = replaces ? status.st_mode & 0777 : 0666;
    file_ = FileHandle(retryInterrupted([&] {
                         return openat(folder(), name_.c_str(),
                                       O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
                       }),
                       path_);
    if (!file_) return systemError("open", path_);
    if (replaces && fchmod(file_.descriptor(), mode) == -1) return systemError("chmod", path_);
    return {};
  }

  foundation::Result<void> fill(foundation::DataView content) {
    if (auto result = file_.write(content); !result) return result;
    return file_.synchronize();
  }

  foundation::Result<void> takePlace() {
    if (renameat(folder(), name_.c_str(), folder(), entry_.name.c_str()) == -1) {
      return systemError("rename", path_);
    }
    file_.close();
    return {};
  }

 private:
  int folder() const { return entry_.folder.descriptor(); }

  const FolderEntry& entry_;
  const std::string path_;
  const std::string name_;
  FileHandle file_;
};

}  // namespace

bool exists(std::string_view path) {
  struct stat status {};
  return callWithPath(path, [&](const char* name) { return stat(name, &status); }) == 0;
}

foundation::Result<void> setPermissions(std::string_view path, mode_t permissions) {
  const int result = callWithPath(path, [&](const char* name) {
    return fchmodat(AT_FDCWD, name, permissions & permissionBits, AT_SYMLINK_NOFOLLOW);
  });
  if (result == -1) return systemError("chmod", path);
  return {};
}

foundation::Result<void> setModificationDate(std::string_view path, foundation::Date date) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(date);
  timespec times[2] = {};
  times[0].tv_nsec = UTIME_OMIT;
  times[1].tv_sec = seconds.time_since_epoch().count();
  times[1].tv_nsec = std::chrono::nanoseconds(date - seconds).count();
  const int result =
      callWithPath(path, [&](const char* name) { return utimensat(AT_FDCWD, name, times, 0); });
  if (result == -1) return systemError("utimensat", path);
  return {};
}

foundation::Result<void> createDirectory(std::string_view path, std::optional<mode_t> permissions) {
  while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
  // Until the permissions are set, nobody but the owner gets in.
  const mode_t mode = permissions ? 0700 : 0777;
  bool made;
  foundation::Result<void> result = makeFolder(path, mode, made);
  if (!result && result.error().code() == ENOENT) {
    result = makeFoldersAbove(path);
    if (result) result = makeFolder(path, mode, made);
  }
  if (!result || !made || !permissions) return result;
  return setFolderPermissions(path, *permissions & permissionBits);
}

foundation::Result<void> createFile(std::string_view path) {
  const auto file = openRegularFile(path, O_WRONLY | O_CREAT | O_NOFOLLOW, 0666);
  if (!file) return file.error();
  return file->truncate(0);
}

foundation::Result<foundation::Data> readFile(std::string_view path, Caching caching) {
  const auto file = openRegularFile(path, O_RDONLY);
  if (!file) return file.error();
  const auto size = file->size();
  if (!size) return size.error();
  try {
    auto content = readToEnd(*file, *size);
    if (caching == Caching::uncached) dropFromCache(file->descriptor());
    return content;
  } catch (const std::bad_alloc&) {
    return systemError("read", path, ENOMEM);
  } catch (const std::length_error&) {
    return systemError("read", path, EFBIG);
  }
}

foundation::Result<void> writeFileAtomically(std::string_view path, foundation::DataView content) {
  const auto entry = FolderEntry::open("open", path);
  if (!entry) return entry.error();
  Substitute substitute(*entry, path);
  if (auto result = substitute.create(); !result) return result;
  if (auto result = substitute.fill(content); !result) return result;
  return substitute.takePlace();
}

foundation::Result<void> moveItem(std::string_view from, std::string_view to) {
  const int result = callWithPath(from, [&](const char* source) {
    return callWithPath(to, [&](const char* target) { return renameExclusively(source, target); });
  });
  if (result == -1) return systemError("rename", std::string(from).append(" to ").append(to));
  return {};
}

foundation::Result<std::vector<std::string>> contentsOfDirectory(std::string_view path) {
  const FileHandle folder(callWithPath(
      path, [](const char* name) { return open(name, O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
  if (!folder) return systemError("open", path);
  FolderListing listing;
  if (!listing.read(folder.descriptor())) return systemError("read", path);
  std::vector<std::string> names;
  while (const auto entry = listing.next()) names.emplace_back(entry->name);
  return names;
}

}  // namespace platform::FileSystem
