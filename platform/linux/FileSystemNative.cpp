#include "platform/posix/FileSystemNative.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <limits>

#include <stdio.h>

#include "platform/FileSystem.h"
#include "platform/posix/SystemCall.h"

namespace platform {

const int openToSearch = O_PATH | O_DIRECTORY | O_CLOEXEC;

int renameExclusively(const char* from, const char* to) {
  const int result = renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE);
  if (result == 0 || (errno != EINVAL && errno != ENOSYS)) return result;
  // The file system cannot do both in one step.
  struct stat status {};
  if (lstat(to, &status) == 0) {
    errno = EEXIST;
    return -1;
  }
  return rename(from, to);
}

void dropFromCache(int descriptor) { posix_fadvise(descriptor, 0, 0, POSIX_FADV_DONTNEED); }

namespace FileSystem {
namespace {

FileType typeOf(unsigned mode) {
  if (S_ISREG(mode)) return FileType::regular;
  if (S_ISDIR(mode)) return FileType::directory;
  if (S_ISLNK(mode)) return FileType::symbolicLink;
  return FileType::other;
}

foundation::Date dateOf(const statx_timestamp& time) {
  using std::chrono::microseconds;
  constexpr std::int64_t limit = std::numeric_limits<std::int64_t>::max() / 1'000'000 - 1;
  const std::chrono::seconds seconds(std::clamp<std::int64_t>(time.tv_sec, -limit, limit));
  return foundation::Date(microseconds(seconds) + microseconds(time.tv_nsec / 1000));
}

std::string onDiskName(std::string_view name) { return std::string("user.").append(name); }

}  // namespace

foundation::Result<FileAttributes> attributes(std::string_view path) {
  struct statx status {};
  const int result = callWithPath(path, [&](const char* name) {
    return statx(AT_FDCWD, name, AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS | STATX_BTIME, &status);
  });
  if (result == -1) return systemError("stat", path);
  FileAttributes attributes{typeOf(status.stx_mode),
                            static_cast<mode_t>(status.stx_mode & 07777),
                            status.stx_uid,
                            status.stx_gid,
                            status.stx_size,
                            dateOf(status.stx_mtime),
                            std::nullopt};
  if (status.stx_mask & STATX_BTIME) attributes.creationDate = dateOf(status.stx_btime);
  return attributes;
}

bool hasExtendedAttribute(std::string_view path, std::string_view name) {
  return callWithPath(path, [&](const char* file) {
           return callWithPath(onDiskName(name), [&](const char* attribute) {
             return lgetxattr(file, attribute, nullptr, 0);
           });
         }) != -1;
}

foundation::Result<void> setExtendedAttribute(std::string_view path, std::string_view name) {
  const int result = callWithPath(path, [&](const char* file) {
    return callWithPath(onDiskName(name), [&](const char* attribute) {
      return lsetxattr(file, attribute, "", 0, 0);
    });
  });
  if (result == -1) return systemError("setxattr", path);
  return {};
}

foundation::Result<void> removeExtendedAttribute(std::string_view path, std::string_view name) {
  const int result = callWithPath(path, [&](const char* file) {
    return callWithPath(onDiskName(name),
                        [&](const char* attribute) { return lremovexattr(file, attribute); });
  });
  if (result == -1) return systemError("removexattr", path);
  return {};
}

bool isAttributeNotFound(const foundation::Error& error) { return error.code() == ENODATA; }

bool isAttributesUnsupported(const foundation::Error& error) { return error.code() == ENOTSUP; }

}  // namespace FileSystem
}  // namespace platform
