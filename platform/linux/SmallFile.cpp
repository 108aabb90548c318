#include "platform/linux/SmallFile.h"

#include <fcntl.h>

#include <array>

#include "platform/FileHandle.h"
#include "platform/posix/RegularFile.h"

namespace platform {

std::optional<std::string> readSmallFile(const std::string& path, std::size_t limit) {
  const foundation::Result<FileHandle> file = openRegularFile(path, O_RDONLY);
  if (!file) return std::nullopt;
  std::string content;
  std::array<std::uint8_t, 4096> buffer;
  while (content.size() <= limit) {
    const foundation::Result<std::size_t> count = file->read(buffer.data(), buffer.size());
    if (!count) return std::nullopt;
    if (*count == 0) return content;
    content += foundation::textOf({buffer.data(), *count});
  }
  return std::nullopt;
}

}  // namespace platform
