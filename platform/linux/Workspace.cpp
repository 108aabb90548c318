#include "platform/Workspace.h"

#include <stdlib.h>

#include <string>
#include <vector>

#include "platform/linux/DataFolders.h"
#include "platform/linux/DesktopEntry.h"
#include "platform/linux/DesktopWorkspace.h"

namespace platform {
namespace {

std::vector<std::string> applicationFolders() {
  std::vector<std::string> folders = dataFolders();
  for (std::string& folder : folders) folder += "/applications";
  return folders;
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
       trustedPathList("PATH", "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin"),
       localeKeys()});
  return workspace;
}

}  // namespace platform
