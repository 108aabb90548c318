#include "platform/Folders.h"

#include <stdlib.h>
#include <unistd.h>

#include <optional>
#include <string>

#include "platform/posix/HomeFolder.h"

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
