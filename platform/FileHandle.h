#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "foundation/Data.h"
#include "foundation/Error.h"

namespace platform {

/// Owns an open descriptor. Every descriptor made here is close-on-exec. One thread at a time.
class FileHandle {
 public:
  /// No descriptor.
  FileHandle() = default;

  /// Takes over `descriptor`; a negative one is none. `path` is what errors name.
  explicit FileHandle(int descriptor, std::string path = {});
  FileHandle(FileHandle&& other) noexcept
      : descriptor_(std::exchange(other.descriptor_, -1)), path_(std::move(other.path_)) {}
  FileHandle& operator=(FileHandle&& other) noexcept;
  ~FileHandle();

  /// Opens an existing file for reading; a last component that is a link is followed.
  static foundation::Result<FileHandle> openForReading(std::string_view path);

  /// Opens an existing regular file for appending: every write goes to its end, also when others
  /// write. A last component that is a link is not followed, and what is no regular file is
  /// refused, without waiting for a reader of a pipe.
  static foundation::Result<FileHandle> openForAppending(std::string_view path);

  explicit operator bool() const { return descriptor_ >= 0; }
  int descriptor() const { return descriptor_; }

  /// What errors name.
  const std::string& path() const { return path_; }

  /// Reads up to `length` bytes; 0 at the end of the file.
  foundation::Result<std::size_t> read(std::uint8_t* buffer, std::size_t length) const;

  /// Writes all bytes. On an error some may have been written.
  foundation::Result<void> write(foundation::DataView data) const;

  /// Writes all bytes at the end of a file opened for appending, or none: what was written before
  /// an error is cut off again, unless others have written behind it.
  foundation::Result<void> append(foundation::DataView data) const;

  /// The size of the file, or an error.
  foundation::Result<std::uint64_t> size() const;

  /// Cuts the file to `size` bytes.
  foundation::Result<void> truncate(std::uint64_t size) const;

  /// Waits until what was written is on the disk.
  foundation::Result<void> synchronize() const;

  /// Closes the descriptor, if there is one.
  void close();

  /// Gives the descriptor away; the handle then holds none.
  int release() { return std::exchange(descriptor_, -1); }

 private:
  void cutOff(std::size_t length) const;

  int descriptor_ = -1;
  std::string path_;
};

}  // namespace platform
