#pragma once

#include <sys/types.h>

#include <vector>

#include "foundation/Error.h"
#include "platform/Service.h"

namespace platform {

/// The kernel's table of all processes. Thread safety: any thread.
class ProcessTable : public Service<ProcessTable> {
 public:
  struct Entry {
    pid_t pid;
    pid_t parent;
  };

  static ProcessTable& production();

  /// Every process that could be read, in the kernel's order; an error (an errno value as code)
  /// when the table cannot be read at all. Processes that end meanwhile are left out.
  virtual foundation::Result<std::vector<Entry>> processes() = 0;
};

}  // namespace platform
