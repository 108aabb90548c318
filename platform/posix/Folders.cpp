#include "platform/Folders.h"

#include <errno.h>
#include <pwd.h>
#include <stdlib.h>
#include <unistd.h>

#include <optional>
#include <string>
#include <vector>

#include "platform/posix/SystemCall.h"

namespace platform {
namespace {

using foundation::Result;
using foundation::URL;

URL folderAt(std::string_view path) { return URL::fileURLWithPath(path, URL::Kind::directory); }

// A folder that the user chose by a variable; a process with rights of its own obeys none.
std::optional<std::string_view> chosenFolder(const char* variable) {
  if (geteuid() == 0 || geteuid() != getuid() || getegid() != getgid()) return std::nullopt;
  const char* const path = getenv(variable);
  if (!path || *path != '/') return std::nullopt;
  return path;
}

Result<std::string> homeFolder() {
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

class BaseDirectories final : public Folders {
 public:
  Result<URL> url(SearchPathDirectory directory, SearchPathDomain domain) override {
    if (domain == SearchPathDomain::local) return folderAt("/var/lib");
    const bool isLibrary = directory == SearchPathDirectory::library;
    if (const auto chosen = chosenFolder(isLibrary ? "XDG_STATE_HOME" : "XDG_DATA_HOME")) {
      return folderAt(*chosen);
    }
    auto home = homeFolder();
    if (!home) return home.error();
    return folderAt(*home + (isLibrary ? "/.local/state" : "/.local/share"));
  }

  URL temporaryDirectory() override { return folderAt(chosenFolder("TMPDIR").value_or("/tmp")); }
};

}  // namespace

Folders& Folders::production() {
  static Folders& folders = *new BaseDirectories;
  return folders;
}

}  // namespace platform
