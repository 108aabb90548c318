#include "platform/linux/DataFolders.h"

#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "platform/Folders.h"

namespace platform {
namespace {

std::vector<std::string> absolutePaths(std::string_view list) {
  std::vector<std::string> paths;
  while (!list.empty()) {
    const std::string_view path = list.substr(0, list.find(':'));
    if (path.starts_with('/')) paths.emplace_back(path);
    list.remove_prefix(std::min(path.size() + 1, list.size()));
  }
  return paths;
}

}  // namespace

std::string trustedVariable(const char* name) {
  const bool trusted = geteuid() != 0 && geteuid() == getuid() && getegid() == getgid();
  const char* const value = trusted ? getenv(name) : nullptr;
  return value ? value : "";
}

std::vector<std::string> trustedPathList(const char* name, std::string_view usual) {
  std::vector<std::string> paths = absolutePaths(trustedVariable(name));
  return paths.empty() ? absolutePaths(usual) : paths;
}

std::vector<std::string> dataFolders() {
  std::vector<std::string> folders;
  const auto own =
      Folders::production().url(SearchPathDirectory::applicationSupport, SearchPathDomain::user);
  if (own) folders.emplace_back(own->path());
  for (std::string& folder : trustedPathList("XDG_DATA_DIRS", "/usr/local/share:/usr/share")) {
    folders.push_back(std::move(folder));
  }
  // Where packages of their own world are told; sessions add these to the variable.
  for (const char* folder : {"/var/lib/flatpak/exports/share", "/var/lib/snapd/desktop"}) {
    if (std::find(folders.begin(), folders.end(), folder) == folders.end()) {
      folders.emplace_back(folder);
    }
  }
  return folders;
}

}  // namespace platform
