#include "platform/FileHandle.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <limits>

#include "platform/posix/RegularFile.h"
#include "platform/posix/SystemCall.h"

namespace platform {

FileHandle::FileHandle(int descriptor, std::string path)
    : descriptor_(descriptor), path_(std::move(path)) {}

FileHandle& FileHandle::operator=(FileHandle&& other) noexcept {
  if (this != &other) {
    close();
    descriptor_ = std::exchange(other.descriptor_, -1);
    path_ = std::move(other.path_);
  }
  return *this;
}

FileHandle::~FileHandle() { close(); }

foundation::Result<FileHandle> FileHandle::openForReading(std::string_view path) {
  FileHandle file(
      callWithPath(path,
                   [](const char* terminated) { return open(terminated, O_RDONLY | O_CLOEXEC); }),
      std::string(path));
  if (!file) return systemError("open", path);
  return file;
}

foundation::Result<FileHandle> FileHandle::openForAppending(std::string_view path) {
  return openRegularFile(path, O_WRONLY | O_APPEND | O_NOFOLLOW);
}

foundation::Result<std::size_t> FileHandle::read(std::uint8_t* buffer, std::size_t length) const {
  const ssize_t count = retryInterrupted([&] { return ::read(descriptor_, buffer, length); });
  if (count == -1) return systemError("read", path_);
  return static_cast<std::size_t>(count);
}

foundation::Result<void> FileHandle::write(foundation::DataView data) const {
  while (!data.empty()) {
    const ssize_t count =
        retryInterrupted([&] { return ::write(descriptor_, data.data(), data.size()); });
    if (count == -1) return systemError("write", path_);
    if (count == 0) return systemError("write", path_, EIO);
    data = data.subspan(static_cast<std::size_t>(count));
  }
  return {};
}

foundation::Result<void> FileHandle::append(foundation::DataView data) const {
  std::size_t written = 0;
  while (written < data.size()) {
    const ssize_t count = retryInterrupted(
        [&] { return ::write(descriptor_, data.data() + written, data.size() - written); });
    if (count > 0) {
      written += static_cast<std::size_t>(count);
      continue;
    }
    foundation::Error error = systemError("write", path_, count == 0 ? EIO : errno);
    cutOff(written);
    return error;
  }
  return {};
}

// The offset stands behind what this handle wrote last: at the end unless others have gone on.
void FileHandle::cutOff(std::size_t length) const {
  if (length == 0) return;
  const off_t end = lseek(descriptor_, 0, SEEK_CUR);
  const foundation::Result<std::uint64_t> fileSize = size();
  if (end < 0 || !fileSize || *fileSize != static_cast<std::uint64_t>(end)) return;
  static_cast<void>(truncate(*fileSize - length));
}

foundation::Result<std::uint64_t> FileHandle::size() const {
  struct stat status {};
  if (fstat(descriptor_, &status) == -1) return systemError("fstat", path_);
  return static_cast<std::uint64_t>(status.st_size);
}

foundation::Result<void> FileHandle::truncate(std::uint64_t size) const {
  if (size > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max())) {
    return systemError("ftruncate", path_, EFBIG);
  }
  const int result =
      retryInterrupted([&] { return ftruncate(descriptor_, static_cast<off_t>(size)); });
  if (result == -1) return systemError("ftruncate", path_);
  return {};
}

foundation::Result<void> FileHandle::synchronize() const {
  if (retryInterrupted([&] { return fsync(descriptor_); }) == -1) {
    return systemError("fsync", path_);
  }
  return {};
}

void FileHandle::close() {
  if (descriptor_ < 0) return;
  // An interrupted close has closed: a second one could hit another thread's new descriptor.
  const int error = errno;
  ::close(std::exchange(descriptor_, -1));
  errno = error;
}

}  // namespace platform
