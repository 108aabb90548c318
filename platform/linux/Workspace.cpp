#include "platform/Workspace.h"

#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Folders.h"
#include "platform/linux/DesktopEntry.h"
#include "platform/linux/DesktopWorkspace.h"

namespace platform {
namespace {

/// A variable of the environment; a program with more rights than its caller's reads none.
std::string variable(const char* name) {
  const bool trusted = geteuid() != 0 && geteuid() == getuid() && getegid() == getgid();
  const char* const value = trusted ? getenv(name) : nullptr;
  return value ? value : "";
}

/// The absolute paths in a list with colons between.
std::vector<std::string> pathList(std::string_view text) {
  std::vector<std::string> paths;
  while (!text.empty()) {
    const std::string_view path = text.substr(0, text.find(':'));
    if (path.starts_with('/')) paths.emplace_back(path);
    text.remove_prefix(std::min(path.size() + 1, text.size()));
  }
  return paths;
}

/// The list that a variable holds, or the usual one.
std::vector<std::string> pathListIn(const char* name, std::string_view usual) {
  std::vector<std::string> paths = pathList(variable(name));
  return paths.empty() ? pathList(usual) : paths;
}

std::vector<std::string> applicationFolders() {
  std::vector<std::string> data;
  const auto own =
      Folders::production().url(SearchPathDirectory::applicationSupport, SearchPathDomain::user);
  if (own) data.emplace_back(own->path());
  for (std::string& folder : pathListIn("XDG_DATA_DIRS", "/usr/local/share:/usr/share")) {
    data.push_back(std::move(folder));
  }
  // Where packages of their own world are told; sessions add these to the variable.
  for (const char* folder : {"/var/lib/flatpak/exports/share", "/var/lib/snapd/desktop"}) {
    if (std::find(data.begin(), data.end(), folder) == data.end()) data.emplace_back(folder);
  }
  for (std::string& folder : data) folder += "/applications";
  return data;
}

std::vector<std::string> localeKeys() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* const value = getenv(name);
    if (value && *value) return desktopEntryLocaleKeys(value);
  }
  return {};
}

}  // namespace

Workspace& Workspace::production() {
  static Workspace& workspace = *new DesktopWorkspace(
      {applicationFolders(),
       pathListIn("PATH", "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin"),
       localeKeys()});
  return workspace;
}

}  // namespace platform
