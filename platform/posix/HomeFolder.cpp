#include "platform/posix/HomeFolder.h"

#include <errno.h>
#include <pwd.h>
#include <unistd.h>

#include <vector>

#include "platform/posix/SystemCall.h"

namespace platform {

foundation::Result<std::string> homeFolder() {
  const uid_t user = geteuid();
  constexpr std::size_t maximumSize = std::size_t{1} << 20;
  std::vector<char> buffer(1024);
  passwd entry{};
  passwd* found = nullptr;
  int code;
  while ((code = getpwuid_r(user, &entry, buffer.data(), buffer.size(), &found)) != 0) {
    const bool isLonger = code == ERANGE && buffer.size() < maximumSize;
    if (!isLonger && code != EINTR) return systemError("getpwuid", std::to_string(user), code);
    if (isLonger) buffer.resize(2 * buffer.size());
  }
  const bool isAbsolute = found && entry.pw_dir && *entry.pw_dir == '/';
  if (!isAbsolute) return systemError("getpwuid", std::to_string(user), ENOENT);
  return std::string(entry.pw_dir);
}

}  // namespace platform
