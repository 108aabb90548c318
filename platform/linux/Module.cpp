#include "platform/Module.h"

#include <unistd.h>

#include <dlfcn.h>
#include <link.h>

#include "platform/linux/ProcFileSystem.h"

namespace platform {

std::string modulePath(const void* address) {
  Dl_info info;
  void* entry = nullptr;
  if (dladdr1(address, &info, &entry, RTLD_DL_LINKMAP) == 0 || !entry) return {};
  // The program's own entry has no name; its file name would be what it was called with.
  const std::string name = static_cast<const link_map*>(entry)->l_name;
  return name.empty() ? ProcFileSystem().executable(getpid()) : name;
}

}  // namespace platform
